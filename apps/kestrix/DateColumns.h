// DateColumns.h: the date of a record, which stands in one column, or in a year, a month and a day column.
//
//   const TDateColumns date = NeedDateColumns(headings, "Order Year,Order Month,Order Day");
//   const TColumnPlan plan = PlanColumns(source, WishesOfFold(wishes, headings, date, {profit}));
//   source.ForEach([&](const TCsvRecord& record) { … DateOf(source, plan, record, date, {vxgrOneMonth}) … });
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ColumnPlan.h"
#include "CsvSource.h"
#include "datetime/VXDateGroup_UNT.h"
#include "platform/runtime/DateTime.h"

namespace vx::kestrix {

/// Positions of one column, or of the year, the month and the day.
using TDateColumns = std::vector<std::size_t>;

/// The columns that --date names. Raises EUserError for unknown ones, and for two or more than three.
TDateColumns NeedDateColumns(const std::vector<std::string>& headings, std::string_view text);
/// The one column of dates, where --date is missing. Raises EUserError if there is none, or more than one.
TDateColumns OnlyDateColumn(const TColumnPlan& plan);

/// What records that are folded by date need their columns to be, whatever was found or wished.
TTypeWishes WishesOfFold(TTypeWishes wishes, const std::vector<std::string>& headings, const TDateColumns& date,
                         const std::vector<std::size_t>& numbers);

/// What a date is folded into, and which of its days is shown. The weeks are those of GVXStartOfWeek.
struct TPeriod {
  TVXGroupMode by = vxgrOneDay;
  bool isLabelledAtEnd = false;
};

/// The date of a record, with its time of day if there is one; none if the cell, or one of the three, is null. Raises
/// EUserError for a cell that isn't a date, for a day that the calendar doesn't have, and for one whose period is shown
/// by such a day.
std::optional<TDateTime> DateOf(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record,
                                const TDateColumns& columns, const TPeriod& period);

}  // namespace vx::kestrix
