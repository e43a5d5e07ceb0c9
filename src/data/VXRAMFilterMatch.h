// VXRAMFilterMatch.h: does a row have the value that a filter asks for?
//
// Made once for a run over many rows: field, type and value are looked at when it is made, not for each row.
#pragma once

#include "data/VXRAMRowPool.h"
#include "platform/runtime/Variant.h"

namespace vx {

/// The value of a field as a Variant: Boolean, double, date, integer or text by its type; Null for a null field.
/// `slot.type` must be a type.
Variant RowVariant(const TVXRAMRow* row, const TVXRAMFieldSlot& slot);

class TVXRAMFilterMatch {
 public:
  TVXRAMFilterMatch(const TVXRAMFieldSlot& slot, Variant value);

  /// A null value is matched by null fields alone, any other by assigned fields that equal it. A field of no known type
  /// never matches. Raises EVariantError if value and field can't be compared.
  bool operator()(const TVXRAMRow* row) const { return match_(*this, row); }

  /// The same by Variants, for each row anew: what the quicker ways must agree with.
  bool Plainly(const TVXRAMRow* row) const;

 private:
  using TMatch = bool (*)(const TVXRAMFilterMatch&, const TVXRAMRow*);

  TMatch Choose() const;
  template <class T>
  static bool MatchNumber(const TVXRAMFilterMatch& self, const TVXRAMRow* row);

  TVXRAMFieldSlot slot_;
  Variant value_;
  double number_ = 0;  // the value, where it is compared as a number
  TMatch match_;
};

}  // namespace vx
