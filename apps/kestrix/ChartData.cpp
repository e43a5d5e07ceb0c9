#include "ChartData.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "CellValue.h"
#include "TableLoader.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kMostPeriods = 50'000;
constexpr double kLargestDrawn = 1e300;  ///< no axis reaches further
constexpr const char* kOthers = "others";
constexpr const char* kBlank = "(blank)";

enum TField : std::int32_t { kDate, kSeries, kValue };

// -- Records ----------------------------------------------------------------------------------------------------------

/// Year, month and day of a record; null if one of them is.
std::optional<TDateTime> DateOfParts(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record,
                                     const std::vector<std::size_t>& columns) {
  std::vector<std::int32_t> parts;
  for (const std::size_t column : columns) {
    const TCellValue part = ReadCell(source, plan, record, column);
    if (IsNull(part)) return std::nullopt;
    parts.push_back(std::get<std::int32_t>(part));
  }
  const auto date = DayNumber(parts[0], parts[1], parts[2]);
  if (!date)
    source.Fail(record, columns[2],
                Quoted(std::to_string(parts[0]) + "-" + std::to_string(parts[1]) + "-" + std::to_string(parts[2])) +
                    " is not a date");
  return date;
}

std::optional<TDateTime> DateOf(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record,
                                const std::vector<std::size_t>& columns) {
  if (columns.size() == 3) return DateOfParts(source, plan, record, columns);
  const TCellValue date = ReadCell(source, plan, record, columns[0]);
  return IsNull(date) ? std::nullopt : std::optional(std::get<TMoment>(date).days);
}

/// A value that is also a part of the date is loaded as an integer.
double NumberOf(const TCellValue& value) {
  const auto* integer = std::get_if<std::int32_t>(&value);
  return integer != nullptr ? *integer : std::get<double>(value);
}

/// Numbers names in order of first appearance.
class TSeriesNames {
 public:
  explicit TSeriesNames(std::vector<std::string>& names) : names_(names) {}
  std::int32_t NumberOf(std::string_view cell) {
    const std::string_view text = Trimmed(cell);
    const auto [found, isNew] =
        numbers_.try_emplace(std::string(text.empty() ? kBlank : text), static_cast<std::int32_t>(names_.size()));
    if (isNew) names_.push_back(found->first);
    return found->second;
  }

 private:
  std::vector<std::string>& names_;
  std::unordered_map<std::string, std::int32_t> numbers_;
};

}  // namespace

TPointSet ReadPoints(TCsvSource& source, const TColumnPlan& plan, const TChartColumns& columns) {
  TPointSet set;
  TSeriesNames names(set.series);
  if (!columns.series) set.series.push_back(plan.columns[columns.value].heading);
  source.ForEach([&](const TCsvRecord& record) {
    const auto date = DateOf(source, plan, record, columns.date);
    const TCellValue value = ReadCell(source, plan, record, columns.value);
    if (!date || IsNull(value)) {
      ++(date ? set.withoutValue : set.withoutDate);
      return;
    }
    const std::int32_t series = columns.series ? names.NumberOf(record.cells[*columns.series]) : 0;
    set.points.push_back({*date, series, NumberOf(value)});
  });
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

TOwned<TVXRAMTable> TableOfPoints(const TPointSet& set) {
  auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Date", vxrftDateTime);
  AddField(*table, "Series", vxrftInteger);
  AddField(*table, "Value", vxrftFloat);
  const auto record = table->NewRecord();
  for (const TChartPoint& point : set.points) {
    record->Field(kDate).AssignValue(point.date);
    record->Field(kSeries).AssignValue(point.series);
    record->Field(kValue).AssignValue(point.value);
    std::int32_t id = kNoRecordId;
    table->AddRecordAndValues(*record, -1, -1, id, /*append=*/true);
  }
  return table;
}

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

/// An open bucketer, closed at the end of the scope.
class TBuckets {
 public:
  TBuckets(TVXRAMTable& table, TVXGroupMode by, TVXBucketType aggregate) : table_(table) {
    auto folds = Make<TVXBucketFieldDefs>(nullptr);
    folds->Add("Value", aggregate);
    // The date first: its text has one length for all groups, so that no two keys can run into each other.
    auto wish =
        Make<TVXRAMCursorBucketerDesc>(nullptr, -1, vxrcoAscending, "Date;Series", nullptr, Variant(), folds.get(),
                                       vxgrOneDay, by, "Date;Series", /*bucketByStartOfGroup=*/true);
    table.OpenCursor(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), wish.get(), cursor_);
    cursor_->GoToFirstRec();
  }
  ~TBuckets() { table_.CloseCursor(cursor_); }
  TBuckets(const TBuckets&) = delete;
  TBuckets& operator=(const TBuckets&) = delete;

  bool Next() { return cursor_->GoToNextRec() == kDone; }
  template <class T>
  T Value(TField field) const {
    T value{};
    std::int32_t size = sizeof value;
    bool isNull = false;
    cursor_->GetFieldValue(field, &value, size, isNull);
    return value;
  }

 private:
  TVXRAMTable& table_;
  TVXRAMCursor* cursor_ = nullptr;
};

}  // namespace

TFoldedChart FoldPoints(const TPointSet& set, TVXGroupMode by, TVXBucketType aggregate) try {
  TFoldedChart chart{{}, set.series, {}};
  if (set.points.empty()) return chart;
  chart.periods = PeriodsOf(set, by);
  chart.values.assign(chart.series.size(), std::vector<std::optional<double>>(chart.periods.size()));
  const auto table = TableOfPoints(set);
  TBuckets buckets(*table, by, aggregate);
  std::size_t period = 0;
  while (buckets.Next()) {
    while (chart.periods[period] < buckets.Value<double>(kDate)) ++period;
    const auto series = static_cast<std::size_t>(buckets.Value<std::int32_t>(kSeries));
    const auto value = buckets.Value<double>(kValue);
    if (!(std::fabs(value) <= kLargestDrawn))
      throw EUserError("the values of " + Quoted(chart.series[series]) + " in the period of " +
                       CellText(TMoment{chart.periods[period], false}) + " are too large to draw");
    chart.values[series][period] = value;
  }
  return chart;
} catch (const EConvertError& error) {
  throw EUserError("a date lies in a period beyond the calendar: " + error.Message());
}

}  // namespace vx::kestrix
