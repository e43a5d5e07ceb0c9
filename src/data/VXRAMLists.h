// VXRAMLists.h: the list of rows with its sort, and the splitter of texts like "Start.D;Name".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/component/Event.h"
#include "platform/runtime/List.h"

namespace vx {

/// Answers below, at or above 0 as the first stands before, beside or behind the second.
using TVXListSortCompareMethod = TEvent<std::int32_t(void*, void*)>;

class TVXList : public TList {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Sorts by the engine's quicksort, whose moves are fixed (QuickSort.h). Not stable. `compare` is called as often and
  /// in the order of those moves. It may raise, which leaves the list half sorted with every item still in it; answers
  /// that contradict each other end in the list's range error or in some order, never beyond the list.
  void SortEx(const TVXListSortCompareMethod& compare);
};

/// Splits a text at a separator of one or more characters. A separator at the very end adds no empty item; others do.
///   TVXStringParser(";", "a;b").GetCount()      // 2
///   TVXStringParser(";", ";a;b").GetCount()     // 3
class TVXStringParser : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXStringParser(std::string separator, std::string text);

  std::int32_t GetCount() const;
  /// An index outside 0 to GetCount - 1 raises "StringParser : Index out of Bounds".
  std::string GetItemByIndex(std::int32_t index) const;

  const std::string& GetText() const { return text_; }
  void SetText(std::string text);
  const std::string& GetSeparator() const { return separator_; }

 private:
  std::string separator_;
  std::string text_;
  std::vector<std::pair<std::size_t, std::size_t>> items_;  // where each begins, and its length
};

}  // namespace vx
