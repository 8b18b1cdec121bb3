#pragma once

#include <optional>
#include <string>
#include <vector>

// Compares the lines of two records: see record.h for the fields that a line is made of.
namespace compare {

// Whether two lines say the same. A number may be off by as much as another compiler's or
// processor's arithmetic.
bool same(const std::string &a, const std::string &b);

// Both lines, one below the other, without the fields that are the same; the first stays, it names
// the thing.
std::string difference(const std::string &expected, const std::string &actual);

// The fields that two spaces part; those in quotes part none.
std::vector<std::string> fieldsOf(const std::string &line);

// The words between spaces.
std::vector<std::string> wordsOf(const std::string &text);

// The number that is the whole word.
std::optional<double> readNumber(const std::string &word);

}  // namespace compare
