#pragma once

#include <set>
#include <string>

// The game's plain state by name, for tests that say what a step changes.
namespace globals {

// Every global that differs from the last call, from its setting, or at first from 0, in the order
// of their table: "status 1  eye.z 4.8". Fractions have up to four decimals.
std::string changes();

// From now on, changes() names these alone: "eye.z", or "eye" for all its coordinates. False if
// there is none of some name.
bool watch(const std::set<std::string> &names);

// Sets one of them. False if there is none of this name.
bool set(const std::string &name, double value);

}  // namespace globals

// The number with up to four decimals, without trailing zeros or a negative zero.
std::string text(double number);
