#include "ChartData.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "CellValue.h"
#include "Folding.h"
#include "TableLoader.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kMostPeriods = 50'000;
constexpr double kLargestDrawn = 1e300;  ///< no axis reaches further
constexpr const char* kOthers = "others";
constexpr const char* kBlank = "(blank)";

// -- Records ----------------------------------------------------------------------------------------------------------

/// A value that is also a part of the date is loaded as an integer.
double NumberOf(const TCellValue& value) {
  const auto* integer = std::get_if<std::int32_t>(&value);
  return integer != nullptr ? *integer : std::get<double>(value);
}

std::string SeriesOf(std::string_view cell) {
  const std::string_view text = Trimmed(cell);
  return std::string(text.empty() ? kBlank : text);
}

}  // namespace

TPointSet ReadPoints(TCsvSource& source, const TColumnPlan& plan, const TChartColumns& columns, TVXGroupMode by) {
  TPointSet set;
  TGroupNumbers names;
  if (!columns.series) names.NumberOf(plan.columns[columns.value].heading);
  source.ForEach([&](const TCsvRecord& record) {
    const auto date = DateOf(source, plan, record, columns.date, {by});
    const TCellValue value = ReadCell(source, plan, record, columns.value);
    if (!date || IsNull(value)) {
      ++(date ? set.withoutValue : set.withoutDate);
      return;
    }
    const std::int32_t series = columns.series ? names.NumberOf(SeriesOf(record.cells[*columns.series])) : 0;
    set.points.push_back({*date, series, NumberOf(value)});
  });
  set.series = names.Texts();
  return set;
}

void KeepLargest(TPointSet& set, std::size_t count) {
  std::vector<double> sizes(set.series.size());
  for (const TChartPoint& point : set.points) sizes[static_cast<std::size_t>(point.series)] += std::fabs(point.value);
  std::vector<std::size_t> order(set.series.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return sizes[a] > sizes[b]; });

  std::vector<std::string> names;
  std::vector<std::int32_t> newNumbers(order.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    newNumbers[order[i]] = static_cast<std::int32_t>(std::min(i, count));
    if (i <= count) names.push_back(i < count ? set.series[order[i]] : kOthers);
  }
  for (TChartPoint& point : set.points) point.series = newNumbers[static_cast<std::size_t>(point.series)];
  set.series = std::move(names);
}

// -- Folding ----------------------------------------------------------------------------------------------------------

namespace {

/// The groups of the dates from first to last. A century's date lies at its end, so the order of groups is asked of the
/// groups.
std::vector<TDateTime> PeriodsOf(const TPointSet& set, TVXGroupMode by) {
  const auto [first, last] = std::minmax_element(
      set.points.begin(), set.points.end(), [](const TChartPoint& a, const TChartPoint& b) { return a.date < b.date; });
  std::vector<TDateTime> periods = {GetGroupDate(by, first->date)};
  const TDateTime lastPeriod = GetGroupDate(by, last->date);
  while (periods.back() < lastPeriod) {
    if (periods.size() == kMostPeriods)
      throw EUserError("the dates reach from " + CellText(TMoment{first->date, false}) + " to " +
                       CellText(TMoment{last->date, false}) + ", more than " + std::to_string(kMostPeriods) +
                       " periods; choose a coarser --by");
    periods.push_back(GetNextGroupDate(by, periods.back()));
  }
  return periods;
}

}  // namespace

TColumnPlan PlanOfPoints(const std::string& date, std::size_t count) {
  return PlanOfFold(date, {FoldColumn("Value", TColumnType::Float)}, count);
}

TFoldedChart FoldPoints(const TPointSet& set, TVXGroupMode by, TVXBucketType aggregate) {
  TFoldedChart chart{{}, set.series, {}};
  if (set.points.empty()) return chart;
  chart.periods = PeriodsOf(set, by);
  chart.values.assign(chart.series.size(), std::vector<std::optional<double>>(chart.periods.size()));
  const TColumnPlan plan = PlanOfPoints("Date", set.points.size());
  TFoldTable table(plan);
  for (const TChartPoint& point : set.points) table.Add(point.date, point.series, {point.value});
  TBuckets buckets(table, {.by = by, .folds = {{kFirstValue, aggregate}}});
  std::size_t period = 0;
  while (buckets.Next()) {
    while (chart.periods[period] < std::get<TMoment>(buckets.Value(kFoldDate)).days) ++period;
    const auto series = static_cast<std::size_t>(std::get<std::int32_t>(buckets.Value(kFoldGroup)));
    const auto value = std::get<double>(buckets.Value(kFirstValue));
    if (!(std::fabs(value) <= kLargestDrawn))
      throw EUserError("the values of " + Quoted(chart.series[series]) + " in the period of " +
                       CellText(TMoment{chart.periods[period], false}) + " are too large to draw");
    chart.values[series][period] = value;
  }
  return chart;
}

}  // namespace vx::kestrix
