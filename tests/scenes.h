#pragma once

#include <string>

// Drawing operations called by themselves, as the game doesn't.
namespace scenes {

// Draws the scene of this name. False if there is none.
bool draw(const std::string &name);

}  // namespace scenes
