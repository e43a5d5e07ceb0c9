#include "platform/chart/ChartSeries.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>

#include "platform/chart/BarSeries.h"
#include "platform/chart/Chart.h"
#include "platform/chart/LineSeries.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::kInfinity;
using test::kNaN;

/// A plot of 100 by 100 pixels for values from 0 to 99, right and up.
constexpr TSeriesFrame kFrame{
    .Plot = {0, 0, 100, 100}, .Horizontal = {0, 99, 0, 99}, .Vertical = {0, 99, 99, 0}, .Color = clRed};

using TLines = std::vector<std::vector<TPoint>>;

TEST(ChartSeries, GivesEveryChannelOneValueForEachPoint) {
  const auto series = Make<TLineSeries>(nullptr);
  series->AddXY(1, 10);
  auto* sizes = New<TChartValueList>(series.get(), "Size");
  sizes->TempValue = 3.5;
  EXPECT_EQ(series->AddXY(2, 20, "two", clBlue), 1);
  EXPECT_EQ(series->Add(30), 2);
  series->Delete(0);
  EXPECT_EQ(series->ValueListCount(), 3);
  EXPECT_EQ(sizes->Values(), (std::vector<double>{3.5, 3.5}));
  EXPECT_EQ(series->XValues().Values(), (std::vector<double>{2, 2}));
  EXPECT_EQ(series->YValues().Values(), (std::vector<double>{20, 30}));
  EXPECT_EQ(series->XLabel(0), "two");
  EXPECT_EQ(series->ValueColor(0), clBlue);
  EXPECT_EQ(series->ValueColor(1), clDefault);
  series->Clear();
  EXPECT_EQ(sizes->Count(), 0);
  EXPECT_THROW(series->YValue(0), EListError);
  EXPECT_THROW(series->Delete(0), EListError);
  EXPECT_THROW(series->ValueLists(3), EListError);
}

TEST(ChartSeries, FindsItsBoundsAmongTheFiniteValues) {
  const auto series = Make<TLineSeries>(nullptr);
  EXPECT_TRUE(std::isnan(series->MinYValue()));
  for (const double y : {kNaN, 5.0, -kInfinity, -2.0, kInfinity}) series->Add(y);
  EXPECT_EQ(series->MinYValue(), -2);
  EXPECT_EQ(series->MaxYValue(), 5);
  series->YValues().SetValue(1, 9);
  EXPECT_EQ(series->MaxYValue(), 9);
  const auto bars = Make<TBarSeries>(nullptr);
  EXPECT_EQ(bars->MinYValue(), 0);
  bars->Add(7);
  EXPECT_EQ(bars->MinYValue(), 0);
  EXPECT_EQ(bars->MaxYValue(), 7);
}

TEST(LineSeries, IsInterruptedByNullsOnly) {
  const auto series = Make<TLineSeries>(nullptr);
  series->AddXY(10, 0);
  series->AddXY(30, 1);  // no point at 20: the line goes over it
  series->AddNull(40);
  series->AddXY(50, 2);  // alone
  series->AddXY(60, kInfinity);
  series->AddXY(kNaN, 3);  // without a place: as if it weren't there
  series->AddXY(70, 4);
  series->AddXY(80, 5);
  const TSeriesShape shape = series->CalcShape(kFrame);
  EXPECT_EQ(shape.Lines, (TLines{{{10, 99}, {30, 98}}, {{70, 95}, {80, 94}}}));
  ASSERT_EQ(shape.Pointers.size(), 1u);
  EXPECT_EQ(shape.Pointers[0], (TPointerBox{{47, 94, 54, 101}, psCircle, 3, clRed}));
}

TEST(LineSeries, JoinsPointsByRisingXWhateverTheOrderOfAdding) {
  const auto series = Make<TLineSeries>(nullptr);
  for (const double x : {30.0, 10.0, 20.0, 10.0}) series->AddXY(x, series->Count());
  EXPECT_EQ(series->CalcShape(kFrame).Lines, (TLines{{{10, 98}, {10, 96}, {20, 97}, {30, 99}}}));
  series->XValues().Order = loNone;
  EXPECT_EQ(series->CalcShape(kFrame).Lines, (TLines{{{30, 99}, {10, 98}, {20, 97}, {10, 96}}}));
}

TEST(LineSeries, ThinsALineToTheExtremesOfEachColumn) {
  EXPECT_EQ(ColumnExtremes({{1, 5}, {1, 9}, {1, 2}, {1, 4}, {1, 6}, {2, 7}, {3, 1}, {3, 1}}),
            (std::vector<TPoint>{{1, 5}, {1, 9}, {1, 2}, {1, 6}, {2, 7}, {3, 1}}));
  EXPECT_TRUE(ColumnExtremes({}).empty());
  const auto series = Make<TLineSeries>(nullptr);
  for (int i = 0; i < 10000; ++i) series->AddXY(i / 101.0, i % 97);
  EXPECT_LE(series->CalcShape(kFrame).Lines[0].size(), 400u);
  series->Pointer.Visible = true;
  EXPECT_EQ(series->CalcShape(kFrame).Pointers.size(), 10000u);
}

TEST(BarSeries, SharesTheRoomSideBySideInWholePixels) {
  const auto series = Make<TBarSeries>(nullptr);
  series->AddXY(50, 40);
  std::vector<TRect> boxes;
  for (std::int32_t place = 0; place < 3; ++place) {
    TSeriesFrame frame = kFrame;
    frame.Bars = {.Step = 20, .Index = place, .Count = 3};
    boxes.push_back(series->CalcShape(frame).Bars[0].Box);
  }
  // 76 hundredths of 20 pixels are five for each, around the middle of pixel 50.
  EXPECT_EQ(boxes, (std::vector<TRect>{{43, 59, 48, 99}, {48, 59, 53, 99}, {53, 59, 58, 99}}));
}

TEST(BarSeries, ShowsEachValueThatIsNotZeroAndKeepsToThePlot) {
  TSeriesFrame frame = kFrame;
  frame.Vertical = {-50, 49, 99, 0};  // zero is row 49
  const auto series = Make<TBarSeries>(nullptr);
  for (const double y : {20.0, -20.0, 0.001, -0.001, 0.0, 1e9, -1e9, kNaN}) series->Add(y);
  const TSeriesShape shape = series->CalcShape(frame);
  std::vector<std::pair<std::int32_t, std::int32_t>> rows;
  for (const TBarBox& bar : shape.Bars) rows.emplace_back(bar.Box.Top, bar.Box.Bottom);
  EXPECT_EQ(rows, (decltype(rows){{29, 49}, {50, 70}, {48, 49}, {50, 51}, {49, 49}, {0, 49}, {50, 100}}));
}

TEST(Chart, ShowsASeriesOnOneChartOnlyAndForgetsItWhenItIsFreed) {
  const auto one = Make<TChart>(nullptr);
  auto other = Make<TChart>(nullptr);
  auto* series = New<TLineSeries>(one.get());
  one->AddSeries(series);
  one->AddSeries(series);
  other->AddSeries(series);
  EXPECT_EQ(one->SeriesCount(), 0);
  EXPECT_EQ(series->ParentChart(), other.get());
  other.reset();  // the series is not its own
  EXPECT_EQ(series->ParentChart(), nullptr);
  series->SetParentChart(one.get());
  series->Free();
  EXPECT_EQ(one->SeriesCount(), 0);
  EXPECT_THROW(one->Series(0), EListError);
  EXPECT_THROW(one->AddSeries(nullptr), ENilAccess);
}

// -- Colours --------------------------------------------------------------------------------------------------------

struct TLinear {
  double r, g, b;
};

TLinear ToLinear(TColor color) {
  const auto linear = [](std::uint8_t part) {
    const double c = part / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  return {linear(RedOf(color)), linear(GreenOf(color)), linear(BlueOf(color))};
}

/// How the colour looks to an eye without green cones (Machado, Oliveira and Fernandes, 2009).
TLinear WithoutGreenCones(TLinear c) {
  return {0.367322 * c.r + 0.860646 * c.g - 0.227968 * c.b, 0.280085 * c.r + 0.672501 * c.g + 0.047413 * c.b,
          -0.011820 * c.r + 0.042940 * c.g + 0.968881 * c.b};
}

/// Distance in CIELAB: about 2 can just be seen.
double Distance(TLinear a, TLinear b) {
  const auto lab = [](TLinear c) {
    const auto f = [](double t) { return t > 0.008856 ? std::cbrt(std::max(t, 0.0)) : 7.787 * t + 16.0 / 116; };
    const double x = f((0.4124 * c.r + 0.3576 * c.g + 0.1805 * c.b) / 0.9505);
    const double y = f(0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b);
    const double z = f((0.0193 * c.r + 0.1192 * c.g + 0.9505 * c.b) / 1.089);
    return std::array{116 * y - 16, 500 * (x - y), 200 * (y - z)};
  };
  const auto p = lab(a);
  const auto q = lab(b);
  return std::hypot(p[0] - q[0], p[1] - q[1], p[2] - q[2]);
}

TEST(SeriesColors, DifferFromEachOtherAndFromThePaperForMostEyes) {
  for (std::size_t i = 0; i < kSeriesColors.size(); ++i) {
    const TLinear one = ToLinear(kSeriesColors[i]);
    EXPECT_GT(Distance(one, ToLinear(clWhite)), 25) << ColorToText(kSeriesColors[i]);
    for (std::size_t j = 0; j < i; ++j) {
      SCOPED_TRACE(ColorToText(kSeriesColors[i]) + " and " + ColorToText(kSeriesColors[j]));
      const TLinear other = ToLinear(kSeriesColors[j]);
      EXPECT_GT(Distance(one, other), 35);
      EXPECT_GT(Distance(WithoutGreenCones(one), WithoutGreenCones(other)), 18);
    }
  }
}

}  // namespace
}  // namespace vx
