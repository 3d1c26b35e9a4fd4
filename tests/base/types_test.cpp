#include "yon/base/types.h"

#include <gtest/gtest.h>

namespace {

TEST(Types, LengthsSaturateBelowNpos) {
    EXPECT_EQ(yon::toLength(0), 0u);
    EXPECT_EQ(yon::toLength(yon::npos - 1), yon::npos - 1);
    EXPECT_EQ(yon::toLength(yon::npos), yon::npos - 1);
    EXPECT_EQ(yon::toLength(~std::size_t{0}), yon::npos - 1);
}

}  // namespace
