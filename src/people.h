#pragma once

// Draws the three enemy poodles and, in the town but not in battle, the five
// townspeople. The first call also appends the footprints of those that it draws to
// the scene, and clears INITCOLLBOXES. Keeps the modelview matrix. Leaves texturing
// on and the colour white after the lit pass; off and grey after the shadow pass.
void drawPeople(bool shadowPass);

// Draws one townsperson at (x, z), world units, turned by `angle` degrees about y;
// appends the footprint while INITCOLLBOXES is set, which it does not clear.
void drawNPC(int x, int z, int angle);
