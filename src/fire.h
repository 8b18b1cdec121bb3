#pragma once

#include "fireworks.h"

// How a fountain is drawn: Fireworks::draw or Fireworks::draw_no_update.
using Fountain_Draw = void (Fireworks::*)();

// Draws both fountains as two crossed planes of flames that turn with the player's
// heading, 1.4 units above the origin of the current modelview frame, which is
// kept. Leaves the last particle's colour and the normal (0, 1, 0) current, the depth test on and
// blending off, the fire texture bound and the blend function additive.
//
// Leaves the camera's view in the projection matrix, whatever was there before: in a frame it is
// there already, and each fire loads it once more.
void drawFire(float scale, Fountain_Draw draw);
