#pragma once

// Draws the six pictures of the sky round the town, fixed in the world, unlit and
// modulated by the current colour. Needs the identity in the modelview matrix, which
// is kept, and texturing on. Clamps the six textures to their edges; leaves the last
// of them bound and GL_LIGHTING enabled.
void drawSkyBox();
