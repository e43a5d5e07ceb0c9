#include "support/ChartSamples.h"

#include <limits>

#include "platform/chart/BarSeries.h"
#include "platform/chart/LineSeries.h"
#include "platform/runtime/DateTime.h"

namespace vx::test {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string ToText(const TLabelBox& label) {
  const TRect& box = label.Box;
  return "\"" + label.Text + "\" at " + std::to_string(box.Left) + "," + std::to_string(box.Top) + " " +
         std::to_string(box.Right) + "," + std::to_string(box.Bottom);
}

std::vector<double> Months(std::size_t count, double scale) {
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = scale * static_cast<double>(i * 7919 % 1000);
  return values;
}

}  // namespace

const std::vector<TChartData> kChartData = {
    {"empty", {}},
    {"one point", {42}},
    {"all equal", {7, 7, 7, 7}},
    {"all zero", {0, 0, 0}},
    {"tiny", {1e-12, 3e-12, 2e-12}},
    {"huge", {1e15, 3.5e15, -2e15}},
    {"as large as numbers get", {1.7e308, -1.7e308, 0}},
    {"large with small differences", {1e9, 1e9 + 1, 1e9 + 2}},
    {"negative", {-5, -1234567, -80}},
    {"no numbers", {kNan, kInfinity, -kInfinity}},
    {"some numbers", {kNan, 3, kInfinity, -4, -kInfinity}},
    {"three years", Months(36, 12.5)},
    {"forty years", Months(480, 1e4)},
};

TOwned<TChart> SampleChart(const TChartSample& sample) {
  auto chart = Make<TChart>(nullptr);
  chart->Title().Text = "Ordered quantity by month and product department, all markets";
  chart->LeftAxis().Title = "Pieces";
  chart->BottomAxis().Title = "Month of the order";
  for (std::size_t i = 0; i < sample.values.size(); ++i) {
    const auto month = static_cast<std::int32_t>(i);
    const TDateTime date = EncodeDate(2022 + month / 12, month % 12 + 1, 1);
    chart->BottomAxis().Items.push_back({date, FormatDateTime("mmm yyyy", date)});
  }
  for (std::int32_t s = 0; s < sample.seriesCount; ++s) {
    TChartSeries* series =
        sample.bars ? static_cast<TChartSeries*>(New<TBarSeries>(chart.get())) : New<TLineSeries>(chart.get());
    series->SetTitle("Product department number " + std::to_string(s + 1) + " and what belongs to it");
    chart->AddSeries(series);
    for (std::size_t i = 0; i < sample.values.size(); ++i)
      series->AddXY(chart->BottomAxis().Items[i].Value, sample.values[i] / (s + 1));
  }
  return chart;
}

std::string LabelFault(const TChartLayout& layout) {
  const std::vector<TLabelBox> labels = layout.Labels();
  const TRect picture = TRect::At({}, layout.Size);
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (!picture.Encloses(labels[i].Box)) return ToText(labels[i]) + " leaves the picture";
    for (std::size_t j = 0; j < i; ++j)
      if (labels[i].Box.Intersects(labels[j].Box)) return ToText(labels[i]) + " overlaps " + ToText(labels[j]);
  }
  return {};
}

}  // namespace vx::test
