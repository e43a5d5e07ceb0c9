// The texts, all of them, and how a translation replaces them.
#include "platform/runtime/StringResources.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/Golden.h"

namespace vx {
namespace {

TEST(StringResources, AreTheseTexts) {
  std::string all;
  for (std::int32_t id = kFirstResourceString; id <= kLastResourceString; ++id) {
    std::string text = LoadStr(id);
    if (text.empty()) continue;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos;) text.replace(at, 1, "\\n");
    all += std::to_string(id) + " \"" + text + "\"\n";
  }
  EXPECT_TRUE(test::MatchesGolden("platform/string-resources.txt", all));
  using TLimits = std::numeric_limits<std::int32_t>;
  for (const std::int32_t unknown : {TLimits::min(), -1, 0, 14600, 14668, 14723, TLimits::max()})
    EXPECT_EQ(LoadStr(unknown), "") << unknown;
}

TEST(StringResources, AreReplacedInSetsAndTakenBack) {
  const auto loaded = [] { return LoadStr(14672) + "|" + LoadStr(14673) + "|" + LoadStr(14680) + "|" + LoadStr(7); };
  const std::string originals = loaded();
  std::string week = "Semaine";
  EXPECT_EQ(SetResourceStrings({{14672, "Journee"}, {14673, week}, {14672, "Jour"}, {7, "sept"}}), 1);
  week.assign("none");
  SetResourceString(14680, "");
  EXPECT_EQ(loaded(), "Jour|Semaine||sept");
  ResetResourceStrings();
  EXPECT_EQ(loaded(), originals);
}

}  // namespace
}  // namespace vx
