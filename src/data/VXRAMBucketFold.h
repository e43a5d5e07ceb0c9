// VXRAMBucketFold.h: how the row of a bucket is computed from its source rows.
//
// Made once for a run over many buckets: what becomes of each field is settled when it is made, not for each row. Rows
// are added one by one, in the order in which the bucket holds them:
//
//   TVXRAMBucketFold fold(cursor);
//   fold.Compute(bucket);                              // from all its rows
//   fold.AddRow(bucket, row); …; fold.Finish(bucket);  // the same for a new bucket, while its rows pass by
//   fold.Extend(bucket, row);                          // one more row behind those of the last Finish
//
// While rows are added, an averaged field of the bucket's row holds the sum. Finish divides it, and keeps the sum aside
// for Extend, so that every way adds the same numbers in the same order and ends in the same bits.
#pragma once

#include <cstdint>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

class TVXRAMBucketFold {
 public:
  explicit TVXRAMBucketFold(const TVXRAMCursorBucketer& cursor);

  /// Every value from the source rows, every status added to what it was. Raises ENilAccess, values cleared, where a
  /// bucketed name before the first date field is no field's.
  void Compute(TVXRAMBucketInfo& bucket) const;

  /// True if Compute can't fail, so that rows may be added as they come.
  bool CanStream() const { return !dateFails_ && layoutIsSound_; }
  void AddRow(TVXRAMBucketInfo& bucket, const TVXRAMRow* row) const;
  /// `bucket` holds all rows that were added.
  void Finish(TVXRAMBucketInfo& bucket) const;
  /// AddRow for the row that was put behind those of the last Finish; nothing may have changed since.
  void Extend(TVXRAMBucketInfo& bucket, const TVXRAMRow* row) const;
  /// The bucket's row as it was made: every value zero, every field null.
  void Reset(TVXRAMBucketInfo& bucket) const;

  /// Whether both do the same to every field.
  bool operator==(const TVXRAMBucketFold& other) const;

 private:
  struct TColumn {
    TVXRAMFieldSlot slot;
    TVXBucketType type;
    bool operator==(const TColumn&) const = default;
  };

  void SettleDate();
  void Begin(TVXRAMBucketInfo& bucket) const;
  void ClearValues(TVXRAMRow* target) const;
  bool IsWhole(const TVXRAMRow* row) const { return TVXRAMRowPool::SizeOf(row) >= wholeSize_; }
  template <bool Whole>
  void Fold(TVXRAMBucketState& state, const TVXRAMRow* row, TVXRAMRow* target) const;
  template <bool Whole>
  void AddStatuses(TVXRAMBucketState& state, const TVXRAMRow* row, TVXRAMRow* target) const;
  void Divide(TVXRAMBucketInfo& bucket) const;
  void ShowLastRow(const TVXRAMFieldSlot& slot, const TVXRAMRow* last, TVXRAMRow* target) const;

  const TVXRAMCursorBucketer& cursor_;
  std::vector<TColumn> folded_;           // in definition order
  std::vector<TVXRAMFieldSlot> shown_;    // fields that show the last row
  std::vector<TVXRAMFieldSlot> grouped_;  // date fields that show the bucket's date
  TVXRAMFieldSlot dateSlot_;              // of the rows' date
  bool hasDate_ = false;
  bool dateFails_ = false;  // a name before the date is no field's
  bool layoutIsSound_ = true;
  std::int32_t wholeSize_ = 0;  // a row of this size or more holds every field
};

}  // namespace vx
