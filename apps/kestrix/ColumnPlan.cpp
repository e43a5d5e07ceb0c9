#include "ColumnPlan.h"

#include <algorithm>

#include "ColumnNames.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

using TFinders = std::vector<TTypeFinder>;

/// A comma, if it is one in any column of numbers: a file has one way of writing them.
char DecimalOf(const TFinders& finders) {
  const auto needsComma = [](const TTypeFinder& finder) { return finder.NeedsDecimalComma(); };
  return std::any_of(finders.begin(), finders.end(), needsComma) ? ',' : '.';
}

using TWishedTypes = std::vector<std::pair<std::size_t, TColumnType>>;

TWishedTypes ResolveWishes(const TTypeWishes& wishes, const std::vector<std::string>& headings) {
  TWishedTypes types;
  for (const auto& [heading, type] : wishes.types) types.emplace_back(NeedHeading(headings, heading), type);
  return types;
}

void RemarkOnDates(const TCsvSource& source, const TColumn& column) {
  const bool isDayFirst = column.dateOrder == TDateOrder::DayFirst;
  source.Remark({source.Name(), 0, column.heading}, std::string("day and month could be exchanged; read as ") +
                                                        (isDayFirst ? "day/month/year" : "month/day/year") +
                                                        " (--date-order " + (isDayFirst ? "mdy" : "dmy") +
                                                        " for the other)");
}

TColumn ColumnOf(const TTypeFinder& finder, char decimal, TDateOrder preferred) {
  TColumn column;
  column.type = finder.Type(decimal);
  column.dateOrder = finder.DateOrder(preferred);
  column.longestText = finder.LongestText();
  column.longestLine = finder.LongestLine();
  return column;
}

}  // namespace

TColumnPlan PlanColumns(TCsvSource& source, const TTypeWishes& wishes) {
  TColumnPlan plan;
  const std::vector<std::string>& headings = source.Headings();
  TFinders finders(headings.size(),
                   TTypeFinder(source.Options().nulls, source.MayHaveDecimalComma() || wishes.decimal == ','));
  const TWishedTypes wishedTypes = ResolveWishes(wishes, headings);
  for (const auto& [column, type] : wishedTypes) finders[column].Expect(type);
  source.ForEach([&](const TCsvRecord& record) {
    ++plan.records;
    for (std::size_t i = 0; i < finders.size(); ++i) finders[i].Add(record.cells[i], record.line);
  });
  plan.decimal = wishes.decimal.value_or(DecimalOf(finders));
  const std::vector<std::string> fields = FieldNamesOf(headings);
  for (std::size_t i = 0; i < finders.size(); ++i) {
    plan.columns.push_back(ColumnOf(finders[i], plan.decimal, wishes.dateOrder.value_or(TDateOrder::DayFirst)));
    plan.columns[i].heading = headings[i];
    plan.columns[i].field = fields[i];
  }
  for (const auto& [column, type] : wishedTypes) plan.columns[column].type = type;
  for (std::size_t i = 0; i < finders.size(); ++i)
    if (!wishes.dateOrder && IsDateType(plan.columns[i].type) && finders[i].IsDateOrderOpen())
      RemarkOnDates(source, plan.columns[i]);
  return plan;
}

std::vector<std::string> HeadingsOfPlan(const TColumnPlan& plan) {
  std::vector<std::string> headings;
  for (const TColumn& column : plan.columns) headings.push_back(column.heading);
  return headings;
}

std::pair<std::string, TColumnType> ParseTypeWish(std::string_view wish) {
  const std::size_t equals = wish.rfind('=');
  if (equals == std::string_view::npos) throw EUserError("--type " + Quoted(wish) + " should be COLUMN=TYPE");
  const std::string_view name = Trimmed(wish.substr(equals + 1));
  const auto type = TypeOfName(name);
  if (!type)
    throw EUserError("no type " + Quoted(name) + "; there are boolean, integer, float, date, datetime and string");
  return {Trim(wish.substr(0, equals)), *type};
}

}  // namespace vx::kestrix
