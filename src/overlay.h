#pragma once

// Text and panels over the scene. Overlay coordinates lie over the whole window,
// whatever its size: x from -0.4 at the left edge to 1.2 at the right, y from 0 at
// the top to 1.4 at the bottom.

// The translucent panels, by number.
enum Box { STATUS_BOX = 1, TALK_PANEL_BOX = 2, OPTIONS_BOX = 3, MESSAGE_BOX = 4 };

// Pushes the projection matrix and puts the overlay coordinates there.
void setOrthographicProjection();
// Pops the projection matrix. Both leave the modelview matrix selected.
void resetPerspectiveProjection();

// Writes `text` from the raster position (x, y, z) of the current matrices on, in a
// GLUT bitmap font and the current colour. Changes no other state.
void renderBitmapString(float x, float y, float z, void *font, const char *text);

// Writes `text` in 24-point Times Roman, its baseline starting at (x, y) in overlay
// coordinates, in the current colour. Leaves texturing and lighting on; keeps the
// matrices, the depth test and blending.
void draw2DText(float x, float y, const char *text);

// Adds the panel with the number `box` onto the picture (Box; any other number draws
// nothing). Leaves texturing and lighting on and, after a panel, the depth test on,
// blending off, the blend function additive and the colour (0, 0, 1, 0.95).
void draw2DBox(int box);
