#pragma once

#include <string>

// Drawing operations called by themselves, as the game doesn't.
namespace scenes {

// Draws the scene of this name; ends the test program if there is none.
void draw(const std::string &name);

}  // namespace scenes
