#include "compare.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(Compare, NamesTheWordsThatDiffer) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"  parts x1551  at 1 2 3 ~ 41.5  normal 0 1 0 ~ 112.2  [lit smooth]",
         "  parts x1551  at 1 2 4 ~ 41.5  normal 0 1 0 ~ 209.3  [lit smooth]",
         "parts x1551: at z 3 -> 4, normal sum 112.2 -> 209.3"},
        {"  parts x3  normal 0 1 0 ~ 8  [lit smooth]", "  parts x2  [blend one zero, lit smooth]",
         "parts x3: normal 0 1 0 ~ 8 -> nothing, parts x3 -> x2, "
         "state [lit smooth] -> [blend one zero, lit smooth]"},
        {"  status 1  health 95  zoom -1", "  status 1  zoom 1  action 2",
         "action nothing -> 2, health 95 -> nothing, zoom -1 -> 1"},
        {"  \"   A  B\" screen  at 1 2 3  []", "  \"   A  B\" screen  at 1 2 9  []",
         "\"   A  B\" screen: at z 3 -> 9"},
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
