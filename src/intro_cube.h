#pragma once

// Draws the title cube for one frame and moves its turn on by half a degree, with
// a swing away from the viewer and back. Sets `status` to TOWN where the start was
// chosen and face 0 is in front. Needs texturing on and the title camera's view;
// keeps the modelview matrix, leaves the colour white.
void IntroCube();
