// Charts with real fonts.
#include <gtest/gtest.h>

#include <random>

#include "host/cairo/CairoDevice.h"
#include "platform/chart/LineSeries.h"
#include "platform/runtime/Locale.h"
#include "support/ChartSamples.h"

namespace vx {
namespace {

TEST(CairoChart, LetsNoLabelOverlapAnotherOrLeaveThePicture) {
  const TLocaleScope scope(ClassicLocale());
  const TCairoDevice meter({1, 1});  // the size of the image doesn't change the fonts
  for (const TSize size : test::kChartSizes)
    for (const auto& data : test::kChartData)
      for (const std::int32_t seriesCount : {1, 13}) {
        SCOPED_TRACE(data.name + std::string(", series ") + std::to_string(seriesCount) + ", " +
                     std::to_string(size.Width) + " by " + std::to_string(size.Height));
        const auto chart = test::SampleChart({data.values, seriesCount, true});
        ASSERT_EQ(test::LabelFault(LayoutChart(*chart, size, meter)), "");
      }
}

TEST(CairoChart, PutsBarsOnTheVeryPixelsOfTheLayout) {
  const auto chart = test::SampleChart({{5, 3, 8}, 2, true});
  TCairoDevice device({250, 150});
  TCanvas canvas(device);
  chart->Draw(canvas);
  const TRect bar = LayoutChart(*chart, {250, 150}, device).Series[1].Shape.Bars[2].Box;
  EXPECT_EQ(device.PixelAt(bar.TopLeft()), kSeriesColors[1]);
  EXPECT_EQ(device.PixelAt({bar.Right - 1, bar.Bottom - 1}), kSeriesColors[1]);
  EXPECT_NE(device.PixelAt({bar.Left, bar.Top - 1}), kSeriesColors[1]);
  EXPECT_EQ(device.PixelAt({0, 0}), clWhite);
}

/// The plain twin of the thinning.
TEST(CairoChart, ShowsAThinnedLineAsItShowsTheWholeOne) {
  for (std::uint32_t seed = 1; seed <= 40; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<TPoint> line;
    const auto columns = static_cast<std::int32_t>(random() % 60 + 1);
    for (std::int32_t x = 0; x < columns; ++x)
      for (auto i = random() % 30; i > 0; --i) line.push_back({x + 2, static_cast<std::int32_t>(random() % 90 + 5)});
    TCairoDevice whole({64, 100});
    TCairoDevice thinned({64, 100});
    const TInk ink{{clNavy, static_cast<std::int32_t>(random() % 3 + 1)}, {}};
    whole.Polyline(line, ink);
    thinned.Polyline(ColumnExtremes(line), ink);
    for (std::int32_t y = 0; y < 100; ++y)
      for (std::int32_t x = 0; x < 64; ++x) {
        const TColor a = whole.PixelAt({x, y});
        const TColor b = thinned.PixelAt({x, y});
        ASSERT_NEAR(RedOf(a), RedOf(b), 16) << x << "," << y;  // shorter lines are smoothed more finely
      }
  }
}

}  // namespace
}  // namespace vx
