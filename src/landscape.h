#pragma once

// The scenery round the town. All three keep the modelview matrix.

// Draws the three trees; in the lit pass also a fire in each, which moves both
// fountains on by one step per tree. The lit pass leaves the fire texture bound,
// the blend function additive and the colour white.
void drawTrees(bool shadowPass);

void drawForest();  // the two forest blocks
void drawCastle();
