// Golden.h: compares a text with the approved one that is kept in the source tree.
//
//   EXPECT_TRUE(MatchesGolden("chart/bars.txt", canvas.Text()));
//
// The golden is tests/golden/<name>. On a mismatch, or where there is no golden yet, the new text is written beside it
// as <name>.new and the first differing lines are printed. Look at it; `./dev approve` makes it the golden. A test
// never changes a golden itself.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vx::test {

testing::AssertionResult MatchesGolden(const std::string& name, std::string_view text);

}  // namespace vx::test
