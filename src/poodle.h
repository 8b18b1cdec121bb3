#pragma once

#include "interpolate.h"

// The articulated poodle: 37 ellipsoids and 10 cylinders in a tree of joints.
//
// Model frame: the nose points along -x, y is up, the left side is +z, the origin
// lies on the ground under the body. In the rest pose the toes touch y = 0 (the
// lowest point is at about -0.007) and the top-knot reaches y = 2.6.
class Poodle {
public:
    // Does nothing: a global poodle starts in the rest pose, being zero-filled.
    Poodle() {}  // NOLINT(modernize-use-equals-default)

    // Takes a copy of the pose.
    void update(const Params &params);

    // Draws the body in the current modelview frame, which it leaves as it was.
    // The caller provides the body's colour, lighting with GL_COLOR_MATERIAL and
    // GL_NORMALIZE, and texturing off. The parts from the left pupil on are drawn
    // in the poodle's own colours: leaves the current colour white.
    void draw() const;

private:
    Params pose;
};
