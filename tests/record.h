#pragma once

#include <string>
#include <vector>

// What the recording OpenGL has drawn, as text that a person can review.
//
// A line is made of fields, two spaces apart. The first is the name of a thing, with its texture
// before it if it has one, and how many there are. Each of the others is a word and its values:
// "at", the mean place of all corners; "colour", "normal" and "st" (the texture coordinate), their
// means, where the picture depends on them. After a mean stands "~" and one more number: the sum of
// all values, weighted by the number of their corner, which shows what a mean hides. The last field
// is the state, in brackets. Places are in world units, those of texts and panels on the "screen"
// in overlay coordinates.
namespace record {

using Lines = std::vector<std::string>;

enum Detail {
    NAMES,  // how many there are of everything, and no more
    RUNS,   // a line for a run of the same things in the same state; alternating things make one
            // run each, and so do all parts of poodles
    PARTS   // a run for each ellipsoid, and for each kind of polygon between two
};

// What was drawn since the last recording::clear(), in the order in which it began.
Lines drawings(Detail detail);

// How the world was seen: the rows of the matrix from it to the screen, and the viewport. One line
// in a good frame.
Lines views();

// What the last drawing left: colour, normal, bindings and the state in brackets.
std::string leftBehind();

// The window, lights and textures, as they are now.
Lines objects();

// Each of the footprints from number `first` on; those up to `last` in one line.
Lines footprints(unsigned first);
Lines footprints(unsigned first, unsigned last);

}  // namespace record
