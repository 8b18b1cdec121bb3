#include "compare.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(Compare, TellsTheFieldsThatDiffer) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"  parts x3  at 1 2 3 ~ 41.5  normal 0 1 0 ~ 8  [lit smooth]",
         "  parts x3  at 1 2 3 ~ 41.5  normal 0 1 0 ~ 9  [blend one zero, lit smooth]",
         "\n  expected  parts x3  normal 0 1 0 ~ 8  [lit smooth]"
         "\n  actual    parts x3  normal 0 1 0 ~ 9  [blend one zero, lit smooth]"},
        {"  status 1  health 95  zoom -1", "  status 1  zoom -1",
         "\n  expected  status 1  health 95\n  actual    status 1"},
        {"  \"   A  B\" screen  at 1 2 3  []", "  \"   A  B\" screen  at 1 2 9  []",
         "\n  expected  \"   A  B\" screen  at 1 2 3\n  actual    \"   A  B\" screen  at 1 2 9"},
        {"> press w", "  status 1", "\n  expected  > press w\n  actual    status 1"},
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
