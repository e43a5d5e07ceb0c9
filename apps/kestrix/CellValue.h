// CellValue.h: one value on its way from a row to the user.
//
// Texts are made for exchange, the same on every machine: dates as 2015-02-21 or 2015-02-21 14:07:00, numbers with a
// point and as many digits as tell them apart from all others, Booleans as True and False.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "TextTypes.h"
#include "platform/runtime/Variant.h"

namespace vx::kestrix {

struct TMoment {
  double days = 0;  ///< since 1899-12-30
  bool hasTime = false;
};

/// std::monostate is null.
using TCellValue = std::variant<std::monostate, bool, std::int32_t, double, TMoment, std::string>;

inline bool IsNull(const TCellValue& value) { return std::holds_alternative<std::monostate>(value); }

/// Empty for null.
std::string CellText(const TCellValue& value);
/// "12", "0.25", "1e+300"; reading it gives the same number.
std::string NumberText(double value);
/// For people: with so many decimals, unless the number is too large to have any.
std::string NumberText(double value, int decimals);

/// -1, 0 or 1 for two values of one type that aren't null: text by locale without letter case, as a sort orders it.
std::int32_t CompareCells(const TCellValue& a, const TCellValue& b);
/// Two values of one type are the same: text exactly, as a filter compares it.
bool AreSameCells(const TCellValue& a, const TCellValue& b);
/// Both are null, or values of one type and the same; a day is another value than the midnight with which it begins.
bool AreSameValues(const TCellValue& a, const TCellValue& b);

/// What a user wrote, as a value of that type; null if it isn't one. Decimal point and ISO date are always read.
TCellValue CellOfText(std::string_view text, TColumnType type, TDateOrder order, char decimal);

/// For a cursor's filter.
Variant VariantOf(const TCellValue& value);

}  // namespace vx::kestrix
