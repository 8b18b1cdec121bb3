#pragma once

#include <functional>
#include <map>
#include <string>

// Drawing operations called by themselves, as the game doesn't.
extern const std::map<std::string, std::function<void()>> SCENES;
