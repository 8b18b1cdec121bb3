#pragma once

#include <string>
#include <vector>

// What the recording OpenGL has drawn, as text that a person can review.
//
// A line tells one thing, or a run of the same things in the same state: the name, how many,
// then, of all their corners, the mean place, and for what the picture depends on the mean
// colour, normal and texture coordinate; then the state in brackets. After each mean stands
// "~" and a sum in which every corner counts otherwise, so that none can change unseen.
// Things that alternate are told once, each with its number. Places are world units; those
// of texts and panels on the screen are overlay coordinates, marked "screen".
namespace record {

using Lines = std::vector<std::string>;

// The drawings since the last recording::clear(). A poodle is one run of "parts"; with
// `everyPart`, each ellipsoid and each kind of polygon is a run of its own.
Lines drawings(bool everyPart);

// What the last drawing left: colour, normal, bindings and the state in brackets.
std::string leftBehind();

// Lights, textures and display lists, as they are now.
Lines objects();

// The footprints from number `first` on.
Lines footprints(int first);

}  // namespace record
