#include "platform/chart/ChartLayout.h"

#include <gtest/gtest.h>

#include "platform/canvas/RecordingDevice.h"
#include "platform/chart/BarSeries.h"
#include "platform/chart/LineSeries.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Locale.h"
#include "support/ChartSamples.h"
#include "support/Golden.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::kNaN;

using test::kChartData;
using test::kChartSizes;
using test::LabelFault;
using test::SampleChart;
using test::TChartSample;

std::string ToText(TSize size) { return std::to_string(size.Width) + " by " + std::to_string(size.Height); }

void ExpectNoLabelFault(const TChartSample& sample, TSize size) {
  const auto chart = SampleChart(sample);
  TRecordingCanvas canvas(size);
  const TChartLayout layout = LayoutChart(*chart, size, canvas.TextMeter());
  ASSERT_EQ(LabelFault(layout), "");
  DrawChart(canvas, *chart, layout);
}

TEST(ChartLayout, LetsNoLabelOverlapAnotherOrLeaveThePicture) {
  const TLocaleScope scope(ClassicLocale());
  for (const TSize size : kChartSizes)
    for (const auto& data : kChartData)
      for (const std::int32_t seriesCount : {1, 2, 5, 13})
        for (const bool bars : {true, false}) {
          SCOPED_TRACE(data.name + std::string(bars ? ", bars" : ", lines") + ", series " +
                       std::to_string(seriesCount) + ", " + ToText(size));
          ExpectNoLabelFault({data.values, seriesCount, bars}, size);
        }
  for (const TSize tiny : {TSize{1, 1}, TSize{3, 900}, TSize{900, 3}, TSize{40, 40}, TSize{}, TSize{32767, 1}}) {
    SCOPED_TRACE(ToText(tiny));
    ExpectNoLabelFault({{1, 2, 3}, 13, true}, tiny);
  }
}

TEST(ChartLayout, FindsRoomForWhatMattersInEveryUsualSize) {
  const TLocaleScope scope(ClassicLocale());
  for (const TSize size : kChartSizes) {
    if (size.Width < 250 || size.Height < 150) continue;
    SCOPED_TRACE(ToText(size));
    const auto chart = SampleChart({{10, 20, 15, 30, 25, 12, 18, 9, 40, 22, 31, 17}, 13, true});
    const TRecordingDevice device(size);
    const TChartLayout layout = LayoutChart(*chart, size, device);
    EXPECT_FALSE(layout.Title.Text.empty());
    EXPECT_GE(layout.Left.Labels.size(), 3u);
    EXPECT_GE(layout.Bottom.Labels.size(), 2u);
    EXPECT_GE(layout.LegendLabels.size(), 4u);
    EXPECT_GE(layout.Plot.Height(), size.Height / 4);
    EXPECT_GE(layout.Plot.Width(), size.Width * 2 / 3);
  }
}

TEST(ChartLayout, KeepsThePlaceOfEmptyPeriods) {
  const auto chart = Make<TChart>(nullptr);
  auto* bars = New<TBarSeries>(chart.get());
  chart->AddSeries(bars);
  for (const double x : {0.0, 1.0, 4.0}) bars->AddXY(x, 10);
  for (int x = 0; x <= 5; ++x) chart->BottomAxis().Items.push_back({double(x), std::to_string(x)});
  const TRecordingDevice device({640, 480});
  const TChartLayout layout = LayoutChart(*chart, {640, 480}, device);
  ASSERT_EQ(layout.Bottom.Ticks.size(), 6u);
  EXPECT_EQ(layout.Bottom.Labels.size(), 6u);
  const auto& shape = layout.Series[0].Shape;
  ASSERT_EQ(shape.Bars.size(), 3u);
  for (const auto& [bar, tick] : {std::pair{0u, 0u}, {1u, 1u}, {2u, 4u}}) {
    const TRect box = shape.Bars[bar].Box;
    EXPECT_NEAR((box.Left + box.Right) / 2, layout.Bottom.Ticks[tick], 1);
    EXPECT_EQ(box.Width(), shape.Bars[0].Box.Width());
  }
}

std::string BottomLabels(const TCustomChart& chart, std::int32_t width) {
  std::string text;
  for (const TLabelBox& label : LayoutChart(chart, {width, 300}, TRecordingDevice()).Bottom.Labels)
    text += label.Text + "|";
  return text;
}

TEST(ChartLayout, ThinsOutTheLabelsOfPeriodsEvenly) {
  const TLocaleScope scope(ClassicLocale());
  const auto chart = SampleChart({std::vector<double>(36, 5.0), 1, true});
  EXPECT_EQ(BottomLabels(*chart, 250), "Jan 2022|Jan 2023|Jan 2024|");
  EXPECT_EQ(BottomLabels(*chart, 500), "Jan 2022|Jul 2022|Jan 2023|Jul 2023|Jan 2024|Jul 2024|");
  EXPECT_EQ(BottomLabels(*chart, 700),
            "Jan 2022|May 2022|Sep 2022|Jan 2023|May 2023|Sep 2023|Jan 2024|May 2024|Sep 2024|");
}

TEST(ChartLayout, LabelsPointsByTheirOwnTextsOrDatesWhereThereAreNoPeriods) {
  const TLocaleScope scope(ClassicLocale());
  const auto chart = Make<TChart>(nullptr);
  auto* series = New<TLineSeries>(chart.get());
  chart->AddSeries(series);
  series->AddXY(EncodeDate(2024, 3, 1), 1);
  series->AddXY(EncodeDate(2024, 1, 1), 2);
  series->XValues().DateTime = true;
  EXPECT_EQ(BottomLabels(*chart, 640), "1/1/2024|3/1/2024|");
  chart->BottomAxis().OnLabelText = [](double date) { return FormatDateTime("mmm", date); };
  EXPECT_EQ(BottomLabels(*chart, 640), "Jan|Mar|");
  series->Clear();
  series->Add(1, "Monday");
  series->Add(2, "Tuesday");
  EXPECT_EQ(BottomLabels(*chart, 640), "Monday|Tuesday|");
  series->Clear();
  series->XValues().DateTime = false;
  chart->BottomAxis().OnLabelText = nullptr;
  for (int i = 0; i <= 10; ++i) series->Add(i);
  EXPECT_EQ(BottomLabels(*chart, 640), "0|1|2|3|4|5|6|7|8|9|10|");
}

TEST(ChartLayout, LeavesOutInactiveSeriesAndTheLegendOfASingleOne) {
  const auto chart = SampleChart({{1, 2, 3}, 2, true});
  const TRecordingDevice device;
  EXPECT_EQ(LayoutChart(*chart, {640, 480}, device).LegendPictures.size(), 2u);
  chart->Series(0).SetActive(false);
  const TChartLayout layout = LayoutChart(*chart, {640, 480}, device);
  EXPECT_TRUE(layout.LegendLabels.empty());
  ASSERT_EQ(layout.Series.size(), 1u);
  EXPECT_EQ(layout.Series[0].Index, 1);
  EXPECT_EQ(layout.Series[0].Shape.Bars[0].Color, kSeriesColors[1]);  // a series keeps its colour when others hide
}

TEST(TextFit, ElidesAtACodePoint) {
  const TRecordingDevice device;
  const TFontData font{.Height = 10};  // six pixels for each code point
  const struct {
    const char* text;
    std::int32_t width;
    const char* fitted;
  } kCases[] = {
      {"Footwear", 48, "Footwear"},
      {"Footwear", 47, "Footwe\xE2\x80\xA6"},
      {"Golf Gear", 36, "Golf\xE2\x80\xA6"},  // no blank before the sign
      {"\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9", 18, "\xC3\xA9\xC3\xA9\xE2\x80\xA6"},
      {"Footwear", 6, "\xE2\x80\xA6"},
      {"Footwear", 5, ""},
      {"", 0, ""},
      {"two\nlines\t", 100, "two lines "},
  };
  for (const auto& c : kCases) EXPECT_EQ(ElideText(c.text, c.width, font, device), c.fitted) << c.text << c.width;
  EXPECT_LE(ElideText(std::string(10'000'000, 'x'), 600, font, device).size(), 110u);
}

TEST(Legend, CountsWhatFindsNoPlace) {
  const TRecordingDevice device;
  const TChartStyle style = StyleFor({250, 150});
  const std::vector<std::string> names(40, "A long name");
  const auto entries = LayoutLegend(names, {8, 8, 242, 142}, style, device);
  ASSERT_FALSE(entries.empty());
  const std::size_t shown = entries.size() - 1;
  EXPECT_EQ(entries.back().Label.Text, "+" + std::to_string(names.size() - shown));
  EXPECT_EQ(entries.back().Index, -1);
  EXPECT_TRUE(LayoutLegend(names, {8, 8, 242, 20}, style, device).empty());
}

// -- Drawings -------------------------------------------------------------------------------------------------------

TEST(ChartDrawing, OfSmallCharts) {
  const TLocaleScope scope(ClassicLocale());
  const auto bars = SampleChart({{30, 12.5, kNaN, -8}, 2, true});
  const auto lines = SampleChart({{30, 12.5, kNaN, 8, 20, 14}, 2, false});
  Cast<TLineSeries>(&lines->Series(1))->Pointer.Visible = true;
  for (const auto& [chart, golden] :
       {std::pair{bars.get(), "chart/small-bars.txt"}, {lines.get(), "chart/small-lines.txt"}}) {
    TRecordingCanvas canvas({320, 200});
    chart->Draw(canvas);
    EXPECT_TRUE(test::MatchesGolden(golden, canvas.Text()));
  }
}

}  // namespace
}  // namespace vx
