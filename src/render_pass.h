#pragma once

// The pass that a drawing operation of the scene works for. In the shadow pass, whose
// state and matrix the frame sets up, only geometry counts: no fires and no particle
// steps. The models' lists bind their textures all the same, with texturing off.
constexpr bool LIT = false;
constexpr bool SHADOW = true;
