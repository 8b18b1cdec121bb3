#pragma once

// The town's two lights, both positional: colours as red, green, blue, alpha, positions as
// x, y, z, w in the world. Never written.

extern float sun_ambient[4];
extern float sun_diffuse[4];
extern float sun_specular[4];
extern float sun_position[4];  // the planar shadows are cast from here
extern float fill_ambient[4];
extern float fill_diffuse[4];
extern float fill_specular[4];
extern float fill_position[4];

// Enables lighting and both lights. Their positions go through the modelview matrix, which
// is to be the identity.
void setLights();

// What every drawing operation relies on, for the whole run: smooth shading, the lights, the
// depth test, colours as materials, and normals brought to unit length. Needs the identity, as
// setLights does.
void setDrawingState();
