// VXRAMBucketBuilder.h: how many rows find their buckets in one walk.
//
// The key of a bucket is a text, and so it stays. But rows whose bucketed fields hold the same bytes (dates: the same
// bucket date) have the same text, so that one is made for each new combination only, and a row's bucket is found by
// hashing its few bytes. A row is folded into its bucket while it is at hand. Which rows a bucket has is dealt out at
// the end, when each list's length is known: eight bytes a row, and nothing more.
//
// Scratch: eight bytes a row, and about 100 for each combination.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

class TVXRAMBucketBuilder {
 public:
  /// For an empty list. With `fold`, which must be able to stream, the values of the buckets are computed too.
  TVXRAMBucketBuilder(TVXRAMBucketList& list, const TVXList& rows, const TVXRAMBucketFold* fold);
  ~TVXRAMBucketBuilder();

  /// Raises EConvertError at a row whose date has no group: the rows before it are in their buckets then, and no bucket
  /// has values.
  void Run();

 private:
  class TRowKeys;

  void TakeBlock(std::size_t first);
  void Fetch(std::size_t first);
  void DealRows();
  void Finish();
  void Undo();

  TVXRAMBucketList& list_;
  std::span<void* const> rows_;
  const TVXRAMBucketFold* fold_;
  std::unique_ptr<TRowKeys> keys_;
  std::vector<TVXRAMBucketInfo*> bucketOf_;  // each row's
};

}  // namespace vx
