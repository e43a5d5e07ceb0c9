#include "BucketCommand.h"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <set>
#include <utility>

#include "ColumnNames.h"
#include "Conditions.h"
#include "DateColumns.h"
#include "SortSpec.h"
#include "UserError.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr int kMostDecimals = 6;  // a column with more shows every digit
constexpr int kAverageDecimals = 2;

// -- What is asked for ------------------------------------------------------------------------------------------------

/// A column that is shown behind period and groups.
struct TFolded {
  std::optional<TVXBucketType> type;  // none: number of records
  std::size_t column = 0;
};

/// The wishes, looked up.
struct TQuery {
  TDateColumns date;
  std::vector<std::size_t> groups;
  std::vector<TFolded> folded;
  std::vector<TCondition> conditions;
};

TQuery ResolveColumns(const TBucketOptions& options, const std::vector<std::string>& headings) {
  TQuery query;
  if (!options.date.empty()) query.date = NeedDateColumns(headings, options.date);
  for (const std::string& group : options.groups) query.groups.push_back(NeedHeading(headings, group));
  for (const TBucketAggregate& aggregate : options.aggregates) {
    query.folded.push_back({aggregate.type, aggregate.type ? NeedHeading(headings, aggregate.column) : 0});
    if (aggregate.type && query.date == TDateColumns{query.folded.back().column})
      throw EUserError("--date and --" + NameOfAggregate(*aggregate.type) + " are the same column, " +
                       Quoted(headings[query.date[0]]));
  }
  if (query.folded.empty()) query.folded.emplace_back();
  return query;
}

/// The columns that are folded, each once.
std::vector<std::size_t> NumberColumns(const TQuery& query) {
  std::set<std::size_t> columns;
  for (const TFolded& folded : query.folded)
    if (folded.type) columns.insert(folded.column);
  return {columns.begin(), columns.end()};
}

// -- Columns ----------------------------------------------------------------------------------------------------------

std::string Capitalized(std::string word) {
  word.front() = static_cast<char>(word.front() - 'a' + 'A');
  return word;
}

std::string HeadingOf(const TFolded& folded, const TColumnPlan& plan) {
  if (!folded.type) return "Count";
  return Capitalized(NameOfAggregate(*folded.type)) + " of " + plan.columns[folded.column].heading;
}

/// "Month", the groups, "Sum of Profit".
std::vector<std::string> ShownHeadings(const TQuery& query, const TColumnPlan& plan, TVXGroupMode by) {
  std::vector<std::string> names = {Capitalized(NameOfGroupMode(by))};
  for (const std::size_t group : query.groups) names.push_back(plan.columns[group].heading);
  for (const TFolded& folded : query.folded) names.push_back(HeadingOf(folded, plan));
  return HeadingsOf({names.begin(), names.end()});
}

/// Behind date and number of the group: the groups, since they are shown and sorted by, then a column for each value.
TColumnPlan FoldPlanOf(const TQuery& query, const TColumnPlan& plan) {
  std::vector<TColumn> values;
  for (const std::size_t group : query.groups)
    values.push_back(FoldColumn(plan.columns[group].heading, plan.columns[group].type, plan.columns[group].longestText,
                                plan.columns[group].longestLine));
  for (const TFolded& folded : query.folded)
    values.push_back(FoldColumn(HeadingOf(folded, plan), folded.type ? TColumnType::Float : TColumnType::Integer));
  return PlanOfFold(plan.columns[query.date.front()].heading, std::move(values), plan.records);
}

/// Where a shown column stands in the table that is folded.
std::size_t PlaceOf(std::size_t shown) { return shown == 0 ? kFoldDate : kFirstValue + shown - 1; }

/// --sort in the engine's words, then what makes the order whole. A column of the file stands for what is shown of it:
/// the date for the period, a value for the first that is made of it.
std::string SortOf(const std::string& sort, const TQuery& query, const TColumnPlan& plan, const TColumnPlan& fold,
                   const std::vector<std::string>& headings) {
  TColumnPlan known;
  const auto add = [&](const std::string& heading, std::size_t shown) {
    known.columns.push_back(fold.columns[PlaceOf(shown)]);
    known.columns.back().heading = heading;
  };
  for (std::size_t i = 0; i < headings.size(); ++i) add(headings[i], i);
  if (query.date.size() == 1) add(plan.columns[query.date.front()].heading, 0);
  for (std::size_t i = 0; i < query.folded.size(); ++i)
    if (query.folded[i].type) add(plan.columns[query.folded[i].column].heading, 1 + query.groups.size() + i);
  std::string whole = SortSpecification(sort, known);
  for (std::size_t i = 0; i <= query.groups.size(); ++i)
    whole += (whole.empty() ? "" : ";") + fold.columns[PlaceOf(i)].field + ".A";
  return whole;
}

// -- Records ----------------------------------------------------------------------------------------------------------

/// Digits behind the point.
int DecimalsOf(double value) {
  if (value == std::trunc(value)) return 0;
  const std::string text = NumberText(value);
  const std::size_t point = text.find('.');
  const bool isPlain = point != std::string::npos && text.find('e') == std::string::npos;
  return isPlain ? static_cast<int>(text.size() - point - 1) : kMostDecimals + 1;
}

/// Takes the records of a source into a table that is folded.
class TRecordTaker {
 public:
  TRecordTaker(const TCsvSource& source, const TColumnPlan& plan, const TQuery& query, const TPeriod& period,
               TFoldTable& table)
      : source_(source),
        plan_(plan),
        query_(query),
        period_(period),
        table_(table),
        numberColumns_(NumberColumns(query)) {
    numbers_.resize(plan.columns.size());
  }

  void Take(const TCsvRecord& record) {
    for (const TCondition& condition : query_.conditions)
      if (!Matches(condition, ReadCell(source_, plan_, record, condition.column))) return;
    const auto date = DateOf(source_, plan_, record, query_.date, period_);
    if (!date) {
      ++withoutDate_;
      return;
    }
    values_.clear();
    key_.clear();
    for (const std::size_t column : query_.groups) TakeGroup(record, column);
    for (const std::size_t column : numberColumns_) TakeNumber(record, column);
    for (const TFolded& folded : query_.folded)
      if (folded.type)
        values_.push_back(numbers_[folded.column].value);
      else
        values_.emplace_back(std::int32_t{1});
    table_.Add(*date, groups_.NumberOf(key_), values_);
  }

  /// The most decimals of the column's values.
  int Decimals(std::size_t column) const { return numbers_[column].decimals; }

  void Tell(std::ostream& err) const {
    if (withoutDate_ > 0)
      err << "kestrix: " << withoutDate_ << (withoutDate_ == 1 ? " record" : " records")
          << " without a date left out\n";
    for (const std::size_t column : numberColumns_)
      if (const std::size_t count = numbers_[column].nulls; count > 0 && ShowsNulls(column))
        err << "kestrix: column " << Quoted(plan_.columns[column].heading) << ": " << count
            << (count == 1 ? " null counts" : " nulls count") << " as zero\n";
  }

 private:
  void TakeGroup(const TCsvRecord& record, std::size_t column) {
    TCellValue value = ReadCell(source_, plan_, record, column);
    if (auto* const text = std::get_if<std::string>(&value)) *text = Trim(*text);
    key_ += CellText(value);
    key_ += '\0';  // no cell holds one
    values_.push_back(std::move(value));
  }

  void TakeNumber(const TCsvRecord& record, std::size_t column) {
    TNumbers& numbers = numbers_[column];
    numbers.value = ReadCell(source_, plan_, record, column);
    if (IsNull(numbers.value)) {
      ++numbers.nulls;
      return;
    }
    // A part of the date is read as an integer.
    if (const auto* integer = std::get_if<std::int32_t>(&numbers.value)) numbers.value = static_cast<double>(*integer);
    if (numbers.decimals <= kMostDecimals)
      numbers.decimals = std::max(numbers.decimals, DecimalsOf(std::get<double>(numbers.value)));
  }

  /// A null doesn't change a sum, but all else.
  bool ShowsNulls(std::size_t column) const {
    return std::any_of(query_.folded.begin(), query_.folded.end(), [column](const TFolded& folded) {
      return folded.column == column && folded.type && folded.type != vxbtCumulate;
    });
  }

  /// Of a column that is folded.
  struct TNumbers {
    TCellValue value;  // of the record under way
    std::size_t nulls = 0;
    int decimals = 0;
  };

  const TCsvSource& source_;
  const TColumnPlan& plan_;
  const TQuery& query_;
  const TPeriod period_;
  TFoldTable& table_;
  TGroupNumbers groups_;
  std::vector<std::size_t> numberColumns_;
  std::vector<TNumbers> numbers_;  // by column
  std::size_t withoutDate_ = 0;
  std::vector<TCellValue> values_;  // of the record under way
  std::string key_;
};

// -- Rows -------------------------------------------------------------------------------------------------------------

using TRow = std::vector<TCellValue>;

/// No number of the result is beyond all numbers.
void CheckRow(const TRow& row, const std::vector<std::string>& headings) {
  for (std::size_t i = 0; i < row.size(); ++i)
    if (const auto* number = std::get_if<double>(&row[i]); number != nullptr && !std::isfinite(*number))
      throw EUserError(Quoted(headings[i]) + " of " + CellText(row[0]) + " is too large a number");
}

/// The last day of a century is counted from its name: the bucketer would give the last day of the century after it.
TCellValue LastDayOfCentury(const TCellValue& name) {
  return TMoment{GetNextGroupDate(vxgrOneYear, std::get<TMoment>(name).days) - 1, false};
}

TFoldWish WishOf(const TBucketOptions& options, const TQuery& query) {
  TFoldWish wish;
  wish.by = options.by;
  wish.isLabelledAtEnd = options.isLabelledAtEnd && options.by != vxgrOneCentury;
  wish.order = options.isDescending ? vxrcoDescending : vxrcoAscending;
  for (std::size_t i = 0; i < query.folded.size(); ++i)
    wish.folds.emplace_back(PlaceOf(1 + query.groups.size() + i), query.folded[i].type.value_or(vxbtCumulate));
  return wish;
}

std::vector<TRow> RowsOf(TFoldTable& table, const TFoldWish& wish, const TBucketOptions& options,
                         const std::vector<std::string>& headings) {
  TBuckets buckets(table, wish);
  const bool isCenturyAtEnd = options.isLabelledAtEnd && !wish.isLabelledAtEnd;
  std::vector<TRow> rows;
  while ((!options.limit || rows.size() < *options.limit) && buckets.Next()) {
    TRow row;
    for (std::size_t i = 0; i < headings.size(); ++i) row.push_back(buckets.Value(PlaceOf(i)));
    if (isCenturyAtEnd) row[0] = LastDayOfCentury(row[0]);
    CheckRow(row, headings);
    rows.push_back(std::move(row));
  }
  return rows;
}

// -- Totals -----------------------------------------------------------------------------------------------------------

/// The value of two periods that follow one another. A period of nulls counts as zero, as a null record does.
double Joined(TVXBucketType type, double before, double value) {
  switch (type) {
    case vxbtCumulate:
    case vxbtAverage:
      return before + value;
    case vxbtMinValue:
      return std::min(before, value);
    case vxbtMaxValue:
      return std::max(before, value);
    case vxbtFirstBucket:
      return before;
    case vxbtLastBucket:
      break;
  }
  return value;
}

/// One value over all records, from the years: they are the coarsest periods of which a calendar has all.
struct TTotal {
  TVXBucketType type = vxbtCumulate;
  double value = 0;
  bool isFirst = true;
  bool isNull = true;

  void Add(const TCellValue& year) {
    const auto* integer = std::get_if<std::int32_t>(&year);
    const double number = integer != nullptr ? *integer : IsNull(year) ? 0 : std::get<double>(year);
    value = std::exchange(isFirst, false) ? number : Joined(type, value, number);
    isNull = isNull && IsNull(year);
  }
};

TRow TotalsOf(TFoldTable& table, const TQuery& query, TFoldWish wish, const std::vector<std::string>& headings) {
  std::vector<TTotal> totals;
  for (auto& [place, type] : wish.folds) {
    totals.push_back({type});
    if (type == vxbtAverage) type = vxbtCumulate;  // divided at the end, by all records
  }
  TBuckets years(table, {.by = vxgrOneYear, .folds = wish.folds, .isByGroup = false});
  std::int32_t count = 0;
  for (; years.Next(); count += years.RecordCount())
    for (std::size_t i = 0; i < totals.size(); ++i) totals[i].Add(years.Value(wish.folds[i].first));

  TRow row(1 + query.groups.size());
  row[0].emplace<std::string>("Total");
  for (std::size_t i = 0; i < totals.size(); ++i)
    if (!query.folded[i].type)
      row.emplace_back(count);
    else if (totals[i].isNull)
      row.emplace_back();
    else
      row.emplace_back(totals[i].type == vxbtAverage ? totals[i].value / count : totals[i].value);
  CheckRow(row, headings);
  return row;
}

// -- The command ------------------------------------------------------------------------------------------------------

/// Weeks begin on that day until the end of the scope.
class TStartOfWeek {
 public:
  explicit TStartOfWeek(std::optional<std::int32_t> day)
      : before_(std::exchange(GVXStartOfWeek, day.value_or(GVXStartOfWeek))) {}
  ~TStartOfWeek() { GVXStartOfWeek = before_; }
  TStartOfWeek(const TStartOfWeek&) = delete;
  TStartOfWeek& operator=(const TStartOfWeek&) = delete;

 private:
  std::int32_t before_;
};

std::vector<TWrittenColumn> WrittenColumns(const TQuery& query, const TColumnPlan& fold, const TRecordTaker& taker,
                                           const std::vector<std::string>& headings) {
  std::vector<TWrittenColumn> columns;
  for (std::size_t i = 0; i < headings.size(); ++i)
    columns.push_back({headings[i], IsNumberType(fold.columns[PlaceOf(i)].type)});
  for (std::size_t i = 0; i < query.folded.size(); ++i) {
    const TFolded& folded = query.folded[i];
    if (!folded.type) continue;
    const int decimals = taker.Decimals(folded.column);
    if (decimals > kMostDecimals) continue;
    columns[1 + query.groups.size() + i].decimals =
        folded.type == vxbtAverage ? std::max(decimals, kAverageDecimals) : decimals;
  }
  return columns;
}

}  // namespace

void RunBucket(const TBucketOptions& options, const TStreams& streams) {
  TResult result(options.output, PathsOf(options.input), streams);
  TInputs inputs(options.input, streams);
  TCsvSource& source = inputs.Source();
  TQuery query = ResolveColumns(options, source.Headings());
  const TColumnPlan plan =
      PlanColumns(source, WishesOfFold(options.input.wishes, source.Headings(), query.date, NumberColumns(query)));
  if (query.date.empty()) query.date = OnlyDateColumn(plan);
  for (const std::string& condition : options.where) query.conditions.push_back(ParseCondition(condition, plan));
  const std::vector<std::string> headings = ShownHeadings(query, plan, options.by);
  const TColumnPlan fold = FoldPlanOf(query, plan);
  TFoldWish wish = WishOf(options, query);
  wish.sort = SortOf(options.sort, query, plan, fold, headings);
  CheckMemory(source, fold, options.input.limits);

  const TStartOfWeek startOfWeek(options.startOfWeek);
  TFoldTable table(fold);
  TRecordTaker taker(source, plan, query, {wish.by, wish.isLabelledAtEnd}, table);
  source.ForEach([&taker](const TCsvRecord& record) { taker.Take(record); });
  inputs.TellSkipped();
  taker.Tell(streams.err);

  const std::vector<TRow> rows = RowsOf(table, wish, options, headings);
  const TRow totals = options.wantsTotals ? TotalsOf(table, query, wish, headings) : TRow();
  const auto writer = MakeTableWriter(options.format, result.Out());
  writer->Begin(WrittenColumns(query, fold, taker, headings));
  for (const TRow& row : rows) writer->Row(row);
  if (options.wantsTotals) writer->Totals(totals);
  writer->End();
  result.Finish();
}

}  // namespace vx::kestrix
