#include "compare.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <map>
#include <sstream>

namespace compare {
namespace {

using Words = std::vector<std::string>;

// The sums in a record add up thousands of rounded floats.
constexpr double TOLERANCE = 0.002;
constexpr double RELATIVE_TOLERANCE = 2e-7;

using Fields = std::map<std::string, std::string>;  // labels, and what follows them

// A text in quotes is a label; what is in brackets is a state. Of the others, the first word is.
Fields fieldsOf(const std::string &line) {
    Fields fields;
    std::size_t end = 0;
    for (std::size_t at = 0; (at = line.find_first_not_of(' ', end)) < line.size();) {
        const std::size_t quoted = line[at] == '"' ? line.find('"', at + 1) : at;
        end = std::min(line.find("  ", quoted), line.size());
        const std::size_t labelEnd = std::min(line.find(' ', quoted), end);
        if (line[at] == '[') {
            fields["state"] = ' ' + line.substr(at, end - at);
        } else {
            fields[line.substr(at, labelEnd - at)] = line.substr(labelEnd, end - labelEnd);
        }
    }
    return fields;
}

// The first word after the indentation ends it.
std::string beginning(const std::string &line) {
    return line.substr(0, line.find(' ', 3));
}

// What a line about a drawing, which ends with a state, calls it: "parts x3: ".
std::string drawingOf(const std::string &line) {
    const std::size_t quote = line.rfind('"');
    const std::size_t end = line.find("  ", quote < line.size() ? quote : 2);
    return line.find("  [") < line.size() ? line.substr(2, end - 2) + ": " : "";
}

bool sameWord(const std::string &a, const std::string &b) {
    const std::optional<double> x = readNumber(a);
    const std::optional<double> y = readNumber(b);
    return a == b ||
           (x && y && std::fabs(*x - *y) <= TOLERANCE + RELATIVE_TOLERANCE * std::fabs(*x));
}

// What the i-th of a field's values is called, before a space: "y ", "sum ", or nothing.
std::string partName(const Words &values, std::size_t i) {
    if (i > 0 && values[i - 1] == "~") {
        return "sum ";
    }
    return values.size() > 1 && i < 4 ? std::string(1, "xyzw"[i]) + ' ' : "";
}

// "LABEL OLD -> NEW" for each value that differs, or for all of the field where their number does.
Words differences(const std::string &label, const std::string &wanted, const std::string &got) {
    const Words a = wordsOf(wanted);
    const Words b = wordsOf(got);
    if (a.size() != b.size() || wanted.find('[') < wanted.size()) {
        return {label + wanted + " ->" + got};
    }
    Words all;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!sameWord(a[i], b[i])) {
            all.push_back(label + ' ' + partName(a, i) + a[i] + " -> " + b[i]);
        }
    }
    return all;
}

}  // namespace

Words wordsOf(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
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
    if (beginning(expected) != beginning(actual)) {
        return "\n  expected " + expected + "\n  actual   " + actual;
    }
    Fields wanted = fieldsOf(expected);
    Fields got = fieldsOf(actual);
    for (const auto &[label, values] : got) {
        wanted.try_emplace(label, " nothing");
    }
    std::string text;
    for (const auto &[label, values] : wanted) {
        const std::string other = got.try_emplace(label, " nothing").first->second;
        if (!same(values, other)) {
            for (const std::string &one : differences(label, values, other)) {
                text += (text.empty() ? drawingOf(expected) : ", ") + one;
            }
        }
    }
    return text;
}

}  // namespace compare
