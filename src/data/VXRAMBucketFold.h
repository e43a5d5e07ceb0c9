// VXRAMBucketFold.h: how the row of a bucket is computed from its source rows.
//
// Made once for a run over many buckets: what each field does is settled when it is made, not for each row.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

class TVXRAMBucketFold {
 public:
  explicit TVXRAMBucketFold(const TVXRAMCursorBucketer& cursor);

  /// Computes the bucket's row: every value from the source rows, every status added to what it was.
  void Compute(const TVXRAMBucketInfo& bucket);

 private:
  /// The dates of the first and the last row so far, 0 for none: one pair for all fields of a bucket.
  struct TDates {
    TDateTime first = 0;
    TDateTime last = 0;
  };
  struct TColumn {
    TVXRAMFieldSlot slot;
    TVXBucketType type;
  };

  TDateTime RowDate(const TVXRAMRow* row);
  void ShowLastRow(const TVXRAMFieldSlot& slot, const TVXList& rows, TVXRAMRow* target) const;
  void FoldRow(const TVXRAMRow* row, std::int32_t number, std::int32_t count, TDates& dates, TVXRAMRow* target);
  template <class T>
  static void FoldValue(const TColumn& column, const TVXRAMRow* row, std::int32_t number, std::int32_t count,
                        TDateTime date, TDates& dates, TVXRAMRow* target);

  const TVXRAMCursorBucketer& cursor_;
  std::vector<TColumn> folded_;           // in definition order
  std::vector<TVXRAMFieldSlot> shown_;    // fields that show the last row
  std::vector<TVXRAMFieldSlot> grouped_;  // date fields that show the bucket's date
  std::optional<TVXRAMFieldSlot> dateSlot_;
  bool dateIsKnown_ = false;
};

}  // namespace vx
