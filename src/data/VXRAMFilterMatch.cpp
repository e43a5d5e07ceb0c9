#include "data/VXRAMFilterMatch.h"

#include <cmath>
#include <utility>

namespace vx {

namespace {

/// Integers up to here are doubles without rounding.
constexpr double kExactIntegers = 9007199254740992.0;

/// A number that compares as a double exactly as it compares as a Variant.
bool IsPlainNumber(const Variant& value) {
  return value.IsNumber() && !std::isnan(value.AsDouble()) &&
         (!value.IsInteger() || std::abs(value.AsDouble()) < kExactIntegers);
}

}  // namespace

Variant RowVariant(const TVXRAMRow* row, const TVXRAMFieldSlot& slot) {
  if (RowStatus(row, slot) != vxfsAssigned) return Variant::Null();
  switch (slot.type) {
    case vxrftBoolean:
      return Variant(RowValue<std::uint8_t>(row, slot) != 0);
    case vxrftCurrency:
    case vxrftFloat:
      return Variant(RowValue<double>(row, slot));
    case vxrftDateTime:
      return Variant::Date(RowValue<double>(row, slot));
    case vxrftDuration:
    case vxrftInteger:
      return Variant(RowValue<std::int32_t>(row, slot));
    case vxrftSmallint:
      return Variant(std::int32_t{RowValue<std::int16_t>(row, slot)});
    case vxrftString:
      return Variant(RowText(row, slot));
    case vxrftWord:
      return Variant(std::int32_t{RowValue<std::uint16_t>(row, slot)});
  }
  return Variant();
}

TVXRAMFilterMatch::TVXRAMFilterMatch(const TVXRAMFieldSlot& slot, Variant value)
    : slot_(slot), value_(std::move(value)), match_(Choose()) {
  if (IsPlainNumber(value_)) number_ = value_.AsDouble();
}

bool TVXRAMFilterMatch::Plainly(const TVXRAMRow* row) const {
  if (value_.IsNull()) return RowStatus(row, slot_) == vxfsNull;
  if (RowStatus(row, slot_) != vxfsAssigned || slot_.type > kLastFieldType) return false;
  return VarCompare(RowVariant(row, slot_), value_) == vrEqual;
}

template <class T>
bool TVXRAMFilterMatch::MatchNumber(const TVXRAMFilterMatch& self, const TVXRAMRow* row) {
  return RowStatus(row, self.slot_) == vxfsAssigned &&
         static_cast<double>(RowValue<T>(row, self.slot_)) == self.number_;
}

TVXRAMFilterMatch::TMatch TVXRAMFilterMatch::Choose() const {
  const TMatch plainly = [](const TVXRAMFilterMatch& self, const TVXRAMRow* row) { return self.Plainly(row); };
  if (slot_.type == vxrftString && value_.Kind() == vkString)
    return [](const TVXRAMFilterMatch& self, const TVXRAMRow* row) {
      return RowStatus(row, self.slot_) == vxfsAssigned && RowText(row, self.slot_) == self.value_.Text();
    };
  if (!IsPlainNumber(value_)) return plainly;
  switch (slot_.type) {
    case vxrftCurrency:
    case vxrftDateTime:
    case vxrftFloat:
      return &MatchNumber<double>;
    case vxrftDuration:
    case vxrftInteger:
      return &MatchNumber<std::int32_t>;
    case vxrftSmallint:
      return &MatchNumber<std::int16_t>;
    case vxrftWord:
      return &MatchNumber<std::uint16_t>;
    default:
      return plainly;
  }
}

}  // namespace vx
