#pragma once

// The pass that a drawing operation of the scene works for. In the shadow pass,
// whose state and matrix the frame sets up, it draws geometry only: no fires, no
// texture binding and no particle steps.
constexpr bool LIT = false;
constexpr bool SHADOW = true;
