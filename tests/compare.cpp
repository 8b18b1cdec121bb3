#include "compare.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <sstream>

namespace compare {
namespace {

using Words = std::vector<std::string>;

// The sums in a record add up thousands of rounded floats.
constexpr double TOLERANCE = 0.002;
constexpr double RELATIVE_TOLERANCE = 2e-7;

struct Field {
    std::string label;
    Words values;
};

// A text in quotes is a label; what is in brackets is a state. Of the others, the first word is.
std::vector<Field> fieldsOf(const std::string &line) {
    std::vector<Field> fields;
    for (std::size_t at = line.find_first_not_of(' '); at < line.size();
         at = line.find_first_not_of(' ', at)) {
        const std::size_t quoted = line[at] == '"' ? line.find('"', at + 1) : at;
        const std::size_t end = std::min(line.find("  ", quoted), line.size());
        const std::string text = line.substr(at, end - at);
        const std::size_t labelEnd = std::min(line.find(' ', quoted), end) - at;
        fields.push_back(text[0] == '['
                             ? Field{"state", {text}}
                             : Field{text.substr(0, labelEnd), wordsOf(text.substr(labelEnd))});
        at = end;
    }
    return fields;
}

std::string join(const Words &words) {
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

bool sameWord(const std::string &a, const std::string &b) {
    double x = 0;
    double y = 0;
    return a == b || (readNumber(a, x) && readNumber(b, y) &&
                      std::fabs(x - y) <= TOLERANCE + RELATIVE_TOLERANCE * std::fabs(x));
}

// What the i-th value of a field is called, before a space: "y ", "sum ", or nothing.
std::string nameOf(const Field &field, std::size_t i) {
    const auto tilde = std::find(field.values.begin(), field.values.end(), "~");
    const auto parts = static_cast<std::size_t>(tilde - field.values.begin());
    if (i > parts) {
        return "sum ";
    }
    return parts < 2 || parts > 4
               ? ""
               : std::string(field.label == "colour" ? "rgba" : "xyzw", i, 1) + ' ';
}

// Adds "LABEL OLD -> NEW" for each of the field's values that differs.
void addDifferences(const Field &expected, const Field &actual, Words &all) {
    const Words &a = expected.values;
    const Words &b = actual.values;
    if (a.size() != b.size()) {
        all.push_back(expected.label + ' ' + join(a) + " -> " + join(b));
        return;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!sameWord(a[i], b[i])) {
            all.push_back(expected.label + ' ' + nameOf(expected, i) + a[i] + " -> " + b[i]);
        }
    }
}

}  // namespace

Words wordsOf(const std::string &text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

bool readNumber(const std::string &word, double &number) {
    char *end = nullptr;
    number = std::strtod(word.c_str(), &end);
    return !word.empty() && *end == '\0';
}

bool same(const std::string &a, const std::string &b) {
    const Words x = wordsOf(a);
    const Words y = wordsOf(b);
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), sameWord);
}

std::string difference(const std::string &expected, const std::string &actual) {
    const std::vector<Field> wanted = fieldsOf(expected);
    std::vector<Field> got = fieldsOf(actual);
    if (wanted.empty() || got.empty() || wanted[0].label != got[0].label) {
        return "\n  expected " + expected + "\n  actual   " + actual;
    }
    Words all;
    for (const Field &field : wanted) {
        const auto other = std::find_if(got.begin(), got.end(), [&field](const Field &candidate) {
            return candidate.label == field.label;
        });
        addDifferences(field, other == got.end() ? Field{"", {"nothing"}} : *other, all);
        if (other != got.end()) {
            got.erase(other);
        }
    }
    for (const Field &field : got) {
        all.push_back(field.label + " nothing -> " + join(field.values));
    }
    std::string text;
    for (const std::string &one : all) {
        text += (text.empty() ? "" : ", ") + one;
    }
    return text;
}

}  // namespace compare
