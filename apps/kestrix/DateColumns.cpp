#include "DateColumns.h"

#include <algorithm>

#include "CellValue.h"
#include "ColumnNames.h"
#include "Folding.h"
#include "TableLoader.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHint = "--date COLUMN or --date \"YEAR,MONTH,DAY\"";

/// Year, month and day of a record; null if one of them is.
std::optional<TDateTime> DateOfParts(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record,
                                     const TDateColumns& columns) {
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

[[noreturn]] void FailForSeveral(const TColumnPlan& plan, const TDateColumns& found) {
  std::vector<std::string> names;
  for (const std::size_t column : found) names.push_back(plan.columns[column].heading);
  throw EUserError("--date is missing, and there are several columns of dates: " + QuotedList(names));
}

/// Whether the calendar has the day that shows the period of a date.
bool HasPeriod(const TPeriod& period, TDateTime date) try {
  constexpr TDateTime kSafeFirst = -693'228, kSafeEnd = 2'921'577;  // the years 2 to 9898
  if (date >= kSafeFirst && date < kSafeEnd) return true;
  const TDateTime shown =
      period.isLabelledAtEnd ? GetNextGroupDate(period.by, date) - 1 : GetGroupDate(period.by, date);
  std::uint16_t year = 0, month = 0, day = 0;
  DecodeDate(shown, year, month, day);
  return year > 0;
} catch (const EConvertError&) {
  return false;
}

}  // namespace

TDateColumns NeedDateColumns(const std::vector<std::string>& headings, std::string_view text) {
  TDateColumns columns = NeedHeadings(headings, text, ',');
  if (columns.size() != 1 && columns.size() != 3)
    throw EUserError("--date " + Quoted(text) + " should be one column, or a year, a month and a day column");
  return columns;
}

TDateColumns OnlyDateColumn(const TColumnPlan& plan) {
  TDateColumns found;
  for (std::size_t i = 0; i < plan.columns.size(); ++i)
    if (IsDateType(plan.columns[i].type)) found.push_back(i);
  if (found.empty()) throw EUserError(std::string("--date is missing, and no column holds dates; say ") + kHint);
  if (found.size() > 1) FailForSeveral(plan, found);
  return found;
}

TTypeWishes WishesOfFold(TTypeWishes wishes, const std::vector<std::string>& headings, const TDateColumns& date,
                         const std::vector<std::size_t>& numbers) {
  const TColumnType dateType = date.size() == 3 ? TColumnType::Integer : TColumnType::DateTime;
  for (const std::size_t column : date) wishes.types.emplace_back(headings[column], dateType);
  for (const std::size_t column : numbers)
    if (std::find(date.begin(), date.end(), column) == date.end())
      wishes.types.emplace_back(headings[column], TColumnType::Float);
  return wishes;
}

std::optional<TDateTime> DateOf(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record,
                                const TDateColumns& columns, const TPeriod& period) {
  std::optional<TDateTime> date;
  if (columns.size() == 3) {
    date = DateOfParts(source, plan, record, columns);
  } else if (const TCellValue cell = ReadCell(source, plan, record, columns[0]); !IsNull(cell)) {
    date = std::get<TMoment>(cell).days;
  }
  if (date && !HasPeriod(period, *date))
    source.Fail(record, columns[0],
                "the " + NameOfGroupMode(period.by) + " of " + CellText(TMoment{*date, false}) +
                    " needs a day beyond the calendar, the years 1 to 9999");
  return date;
}

}  // namespace vx::kestrix
