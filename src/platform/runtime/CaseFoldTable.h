// CaseFoldTable.h: the letters' simple case mappings, as data.
//
// Text.cpp alone reads this. The tables are made by tools/make_case_fold_table.py from Unicode's own data; another
// convention (a language's own I, say) is another file that gives the same three functions.
#pragma once

#include <cstdint>
#include <span>

namespace vx {

/// Every `Step`-th code point from `First` to `Last` maps to itself plus `Delta`.
struct TCaseRange {
  char32_t First;
  char32_t Last;
  std::int32_t Delta;
  char32_t Step;
};

/// In rising order, and disjoint.
std::span<const TCaseRange> FoldRanges();
std::span<const TCaseRange> UpperRanges();
std::span<const TCaseRange> LowerRanges();

}  // namespace vx
