#include "compare.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <regex>
#include <sstream>

namespace compare {
namespace {

using Words = std::vector<std::string>;

// The sums in a record add up thousands of rounded floats.
constexpr double TOLERANCE = 0.002;
constexpr double RELATIVE_TOLERANCE = 2e-7;

// A field ends before two spaces, but not within quotes.
const std::regex FIELD(R"((?:"[^"]*"|\S)(?:"[^"]*"|\S| (?=\S))*)");

bool sameWord(const std::string &a, const std::string &b) {
    const std::optional<double> x = readNumber(a);
    const std::optional<double> y = readNumber(b);
    return a == b ||
           (x && y && std::fabs(*x - *y) <= TOLERANCE + RELATIVE_TOLERANCE * std::fabs(*x));
}

// The fields of a line that the other one has not, after the first one, which names the thing.
std::string fieldsLacking(const Words &other, const Words &fields) {
    std::string line;
    for (const std::string &field : fields) {
        if (&field == &fields.front() ||
            std::none_of(other.begin(), other.end(), [&](auto &one) { return same(field, one); })) {
            line += "  " + field;
        }
    }
    return line;
}

}  // namespace

Words wordsOf(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

Words fieldsOf(const std::string &line) {
    return {std::sregex_token_iterator(line.begin(), line.end(), FIELD), {}};
}

std::optional<double> readNumber(const std::string &word) {
    char *end = nullptr;
    const double number = std::strtod(word.c_str(), &end);
    return word.empty() || *end != '\0' ? std::nullopt : std::optional(number);
}

bool same(const std::string &a, const std::string &b) {
    const Words x = wordsOf(a);
    const Words y = wordsOf(b);
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), sameWord);
}

std::string difference(const std::string &expected, const std::string &actual) {
    const Words wanted = fieldsOf(expected);
    const Words got = fieldsOf(actual);
    return "\n  expected" + fieldsLacking(got, wanted) + "\n  actual  " +
           fieldsLacking(wanted, got);
}

}  // namespace compare
