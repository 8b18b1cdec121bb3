#pragma once

// Draws the 108 houses; in the lit pass also the fire on every third one, without
// moving the fountains on. Keeps the modelview matrix. The lit pass leaves the fire
// texture bound, the blend function additive and the colour white.
void drawHouses(bool shadowPass);
