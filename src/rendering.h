#pragma once

// GLUT's display callback. Draws one whole frame for the current mode and swaps the
// buffers. In battle it also counts down the message timers, and the enemy makes its
// move in the frame in which the player's message has run out.
void displayCallback();

// Fills `projection` (column-major) with the projection onto the plane
// a x + b y + c z + d w = 0 (`plane` = a, b, c, d) along the rays from the homogeneous
// position `light` (x, y, z, w): with e the dot product of the two, the element in
// row r and column c is e - light[r] * plane[c] where r = c, else -light[r] * plane[c].
// The planar shadow matrix of the OpenGL literature.
void shadowTransform(float projection[4][4], const float *plane, const float *light);
