#pragma once

// Lit shapes in immediate mode, with normals, centred on the origin of the current
// modelview frame. They set no colour or state and leave the matrix as it was; the
// scaled shapes need GL_NORMALIZE. Lengths are in units of that frame.

// Facing of a disc; any value other than UP draws as DOWN.
enum NORMAL : int { UP = 0, DOWN = 1 };

// A solid ellipsoid with the given semi-axes; `slices` is also its number of
// stacks, which run along z.
void drawEllipsoid(float rx, float ry, float rz, int slices);

// A solid box with the given edge lengths.
void drawBox(float sx, float sy, float sz);

// A disc in the plane y = 0, as `segments` triangles (none for 0 or less). The
// facing chooses the normal only; the winding is the same for both.
void drawCircle(float radius, int segments, NORMAL facing);

// A capped cylinder or truncated cone along y: radius r0 at -length/2, r1 at
// +length/2. The sides shade continuously; where r0 is 0 the side normals are
// zero vectors. A segment count of 0 or less draws no faces.
void drawCylinder(float r0, float r1, float length, int segments);
