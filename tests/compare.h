#pragma once

#include <optional>
#include <string>
#include <vector>

// Compares the lines of two records: see record.h for the fields that a line is made of.
namespace compare {

// Whether two lines say the same. A number may be off by as much as another compiler's or
// processor's arithmetic.
bool same(const std::string &a, const std::string &b);

// In which fields the lines differ: "normal 0 1 0 ~ 112.2216 -> 0 1 0 ~ 209.3". Both lines, one
// below the other, where they begin otherwise and so tell different things.
std::string difference(const std::string &expected, const std::string &actual);

// The words between spaces.
std::vector<std::string> wordsOf(const std::string &text);

// The number that is the whole word.
std::optional<double> readNumber(const std::string &word);

}  // namespace compare
