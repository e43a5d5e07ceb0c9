// QuickSortRanked.h: where the house's quicksort would leave equal items, once the sorted order is known.
//
// Items that all differ have but one order, however it is found. Only equal ones stand where the fixed moves of
// QuickSort.h put them. Who has sorted by the quickest means at hand gives each item its rank, and the moves are made
// over ranks: small, compared without a call, swapped in blocks. A part whose items all differ needs no more moves, and
// in a part of equal items the moves swap halves, whatever the items are.
//
//   before   c a B b     as they stood, with their ranks   (3 c) (0 a) (1 B) (1 b)
//   sorted   a B b c     in some right order               (0 a) (1 B) (1 b) (3 c)
//   QuickSortRanked(before, sorted);                    // sorted: a b B c, as QuickSort leaves them
//
// Cost: O(n) where all differ or all are equal; else that of the moves down to such parts, at 8 bytes an item.
#pragma once

#include <cstdint>
#include <span>

namespace vx {

struct TRankedItem {
  std::uint32_t rank;  ///< the position of the first of its equals in the sorted order
  std::uint32_t item;
};

/// Brings the items of `sorted` into the order in which QuickSort over `before` would leave them. The spans hold the
/// same items; `before` is in any order afterwards.
void QuickSortRanked(std::span<TRankedItem> before, std::span<TRankedItem> sorted);

}  // namespace vx
