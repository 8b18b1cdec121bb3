#include "compare.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

const std::string PARTS =
    "  parts x3  at 1 2 3 ~ 41.5  colour 1 1 0.5 1 ~ 22  normal 0 1 0 ~ 112.2216  [lit smooth]";

std::string changed(const std::string &from, const std::string &to) {
    std::string line = PARTS;
    return line.replace(line.find(from), from.size(), to);
}

TEST(Compare, NamesTheWordsThatDiffer) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {PARTS, changed("112.2216", "209.3"), "normal sum 112.2216 -> 209.3"},
        {PARTS, changed("2 3 ~ 41.5", "2 4 ~ 42"), "at z 3 -> 4, at sum 41.5 -> 42"},
        {PARTS, changed("0.5 1 ~", "0.5 0 ~"), "colour a 1 -> 0"},
        {PARTS, changed("x3", "x2"), "parts x3 -> x2"},
        {PARTS, changed("  [lit", "  [blend one zero, lit"),
         "state [lit smooth] -> [blend one zero, lit smooth]"},
        {PARTS, changed("  normal 0 1 0 ~ 112.2216", ""), "normal 0 1 0 ~ 112.2216 -> nothing"},
        {"  status 1  health 95  zoom -1", "  status 1  zoom 1  action 2",
         "health 95 -> nothing, zoom -1 -> 1, action nothing -> 2"},
        {"  \"   A  B\" screen  at 1 2 3", "  \"   A  B\" screen  at 1 2 9", "at z 3 -> 9"},
        {"> press w", "  status 1", "\n  expected > press w\n  actual     status 1"},
    };
    for (const auto &[expected, actual, said] : cases) {
        EXPECT_FALSE(compare::same(expected, actual)) << actual;
        EXPECT_EQ(compare::difference(expected, actual), said);
    }
}

TEST(Compare, ForgivesWhatArithmeticDiffersBy) {
    EXPECT_TRUE(compare::same("  at 0 ~ 500000", "  at 0.0019 ~ 500000.1"));
    EXPECT_FALSE(compare::same("  at 0", "  at 0.0021"));
    EXPECT_FALSE(compare::same("  at 500000", "  at 500000.2"));
    EXPECT_FALSE(compare::same("  at 1", "  at 1 1"));
    EXPECT_FALSE(compare::same("  at 1", "  at nan"));
}

}  // namespace
