#pragma once

#include <string>
#include <vector>

// The commands of a round's script; rounds.cpp lists them.
namespace commands {

// What the round has reported so far, line by line.
inline std::vector<std::string> reported;

// Sends what the program prints from now on to a file in the current folder, to be reported.
void capturePrinted();

// Does what the line of a script says, and reports what came of it. Throws std::invalid_argument,
// which says why, where that can't be done.
void play(const std::string &line);

}  // namespace commands
