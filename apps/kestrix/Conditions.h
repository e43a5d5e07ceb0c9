// Conditions.h: what --where says about a column.
//
//   Order Quantity>=3         Customer Market=Europe         Discount % is null         Profit is not null
//
// The value is read as the column's type. Text is the same only if it is the same to the letter; less and greater go by
// locale without letter case, as a sort does. A null matches nothing but "is null"; nothing behind "=" asks for nulls,
// too.
#pragma once

#include <cstddef>
#include <string_view>

#include "CellValue.h"
#include "ColumnPlan.h"

namespace vx::kestrix {

enum class TOperator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, IsNull, IsNotNull };

struct TCondition {
  std::size_t column = 0;
  TOperator op = TOperator::Equal;
  TCellValue value;
};

/// Raises EUserError for an unknown column, a missing operator, or a value that isn't one of the column's type.
TCondition ParseCondition(std::string_view text, const TColumnPlan& plan);

bool Matches(const TCondition& condition, const TCellValue& value);

}  // namespace vx::kestrix
