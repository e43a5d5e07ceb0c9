// ColumnPlan.h: which columns a source has, and of which types: found out, unless the user says it.
//
//   TTypeWishes wishes;
//   wishes.types = {{"Order ID", TColumnType::Text}};
//   const TColumnPlan plan = PlanColumns(source, wishes);
//
// One walk over the source. What was decided between equally good readings is told as a remark: a date whose day and
// month could be exchanged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CsvSource.h"
#include "TextTypes.h"

namespace vx::kestrix {

struct TColumn {
  std::string heading;  ///< what the user sees
  std::string field;    ///< what the table calls it
  TColumnType type = TColumnType::Text;
  TDateOrder dateOrder = TDateOrder::DayFirst;
  std::size_t longestText = 0;  ///< bytes
  std::size_t longestLine = 0;  ///< where that stands
};

struct TTypeWishes {
  std::vector<std::pair<std::string, TColumnType>> types;  ///< by heading
  std::optional<char> decimal;                             ///< '.' or ','
  std::optional<TDateOrder> dateOrder;
};

struct TColumnPlan {
  std::vector<TColumn> columns;
  char decimal = '.';
  std::size_t records = 0;
};

/// Raises EUserError for a wish about an unknown column, and for bad records as TCsvSource::ForEach does.
TColumnPlan PlanColumns(TCsvSource& source, const TTypeWishes& wishes);

std::vector<std::string> HeadingsOfPlan(const TColumnPlan& plan);

/// "Order ID=string" taken apart. Raises EUserError for an unknown type.
std::pair<std::string, TColumnType> ParseTypeWish(std::string_view wish);

}  // namespace vx::kestrix
