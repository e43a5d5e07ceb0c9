#include "platform/chart/ChartScale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "platform/runtime/Locale.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::kInfinity;
using test::kNaN;

std::string ToText(const TAxisRange& range) {
  std::string text;
  for (const double tick : TicksOf(range)) text += (text.empty() ? "" : " | ") + TickText(tick, range);
  return text;
}

TEST(ChooseRange, HasRoundTicksAround) {
  using enum TZero;
  const struct {
    double low, high;
    TZero zero;
    std::int32_t intervals;
    const char* ticks;
  } kRanges[] = {
      {0, 100, kWhenNear, 5, "0 | 20 | 40 | 60 | 80 | 100"},
      {3, 97, kWhenNear, 5, "0 | 20 | 40 | 60 | 80 | 100"},
      // 0.3 / 0.1 is a little below 3; the bound must not slip to 0.2.
      {0.3, 0.7, kNever, 4, "0.3 | 0.4 | 0.5 | 0.6 | 0.7"},
      {40, 100, kWhenNear, 5, "0 | 20 | 40 | 60 | 80 | 100"},
      {90, 100, kWhenNear, 5, "90 | 92 | 94 | 96 | 98 | 100"},
      {90, 100, kAlways, 5, "0 | 20 | 40 | 60 | 80 | 100"},
      {-97, -3, kWhenNear, 5, "-100 | -80 | -60 | -40 | -20 | 0"},
      {-30, 70, kWhenNear, 6, "-40 | -20 | 0 | 20 | 40 | 60 | 80"},
      {-30, 70, kWhenNear, 5, "-50 | 0 | 50 | 100"},  // fewer steps where both bounds grow
      {42, 42, kWhenNear, 5, "0 | 10 | 20 | 30 | 40 | 50"},
      {-42, -42, kAlways, 5, "-50 | -40 | -30 | -20 | -10 | 0"},
      {0, 0, kAlways, 5, "0.0 | 0.2 | 0.4 | 0.6 | 0.8 | 1.0"},
      {7, 7, kNever, 4, "6.0 | 6.5 | 7.0 | 7.5 | 8.0"},
      {kNaN, kNaN, kWhenNear, 2, "0.0 | 0.5 | 1.0"},
      {5, 3, kWhenNear, 2, "0.0 | 0.5 | 1.0"},
      {-kInfinity, kInfinity, kWhenNear, 2, "-1e300 | 0 | 1e300"},
      {1e-9, 4e-9, kWhenNear, 4, "0 | 1e-9 | 2e-9 | 3e-9 | 4e-9"},
      {0, 1e-310, kWhenNear, 2, "0.0 | 0.5 | 1.0"},
      // Large numbers are shortened where nothing is lost.
      {0, 4e6, kAlways, 2, "0 | 2,000,000 | 4,000,000"},
      {0, 3e7, kAlways, 3, "0 | 10M | 20M | 30M"},
      {1e9, 1.5e9, kNever, 5, "1.0G | 1.1G | 1.2G | 1.3G | 1.4G | 1.5G"},
      {1e9, 1e9 + 2e5, kNever, 2, "1,000.0M | 1,000.1M | 1,000.2M"},
      {1e9, 1e9 + 2, kNever, 2, "1,000,000,000 | 1,000,000,001 | 1,000,000,002"},
      {1e15, 1e15 + 0.25, kWhenNear, 2, "0 | 5e14 | 1.0e15"},
  };
  const TLocaleScope scope(ClassicLocale());
  for (const auto& c : kRanges)
    EXPECT_EQ(ToText(ChooseRange(c.low, c.high, c.zero, c.intervals)), c.ticks) << c.low << " to " << c.high;
}

TEST(ChooseRange, HoldsAllValuesInFewSteps) {
  for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto wild = [&random] {
      const double mantissa = std::uniform_real_distribution<double>(-10, 10)(random);
      return mantissa * std::pow(10, std::uniform_int_distribution<int>(-320, 308)(random));
    };
    const auto [low, high] = std::minmax({wild(), wild()});
    const auto intervals = static_cast<std::int32_t>(random() % 12);
    const TAxisRange range = ChooseRange(low, high, static_cast<TZero>(random() % 3), intervals);
    const double slack = range.Step * 1e-6;
    ASSERT_LT(range.Minimum, range.Maximum);
    ASSERT_GT(range.Step, 0);
    ASSERT_LE(range.Minimum, std::max(low, -1e300) + slack);
    ASSERT_GE(range.Maximum, std::min(high, 1e300) - slack);
    const std::size_t ticks = TicksOf(range).size();
    ASSERT_GE(ticks, 2u);
    ASSERT_LE(ticks, static_cast<std::size_t>(std::max(intervals, 2)) + 1);
  }
}

TEST(ChooseRange, GivenByTheUserIsKeptAndItsTicksLieWithin) {
  const TLocaleScope scope(ClassicLocale());
  EXPECT_EQ(ToText(FixedRange(7, 33, 5)), "10 | 20 | 30");
  EXPECT_EQ(FixedRange(7, 33, 5).Minimum, 7);
  EXPECT_EQ(FixedRange(3, 3, 4), ChooseRange(3, 3, TZero::kNever, 4));
  EXPECT_LE(TicksOf({0, 1e9, 1e-9}).size(), 1000u);  // a step that makes no sense
  Locale().DecimalSeparator = ',';
  Locale().ThousandSeparator = '.';
  EXPECT_EQ(ToText({1234567, 1234568, 0.5}), "1.234.567,0 | 1.234.567,5 | 1.234.568,0");
}

TEST(AxisMap, PutsBothBoundsOnTheirPixelsAndBack) {
  const TAxisMap down{0, 100, 299, 0};
  EXPECT_EQ(down.ToPixel(0), 299);
  EXPECT_EQ(down.ToPixel(100), 0);
  EXPECT_EQ(down.ToPixel(50), 150);
  for (std::int32_t pixel = 0; pixel < 300; ++pixel) ASSERT_EQ(down.ToPixel(down.ToValue(pixel)), pixel);
}

TEST(AxisMap, StaysWithinThirtyTwoBits) {
  const TAxisMap map{0, 1e-300, 0, 32767};
  EXPECT_GT(map.ToPixel(1e300), 1'000'000);
  EXPECT_LT(map.ToPixel(-1e300), -1'000'000);
  const TAxisMap wide{-1e300, 1e300, 10, 20};
  EXPECT_EQ(wide.ToPixel(0), 15);
  EXPECT_EQ((TAxisMap{2, 4, 7, 7}.ToValue(7)), 2);
}

}  // namespace
}  // namespace vx
