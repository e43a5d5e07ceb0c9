#include "data/VXRAMLists.h"

#include <algorithm>

#include "data/VXRAMSort.h"

namespace vx {

namespace {

/// Items of a list that a stranger's compare may lead astray or change under our feet: every access is checked.
struct TCheckedItems {
  TVXList& list;
  void* Get(std::int32_t i) const { return list.Items(i); }
  void Swap(std::int32_t i, std::int32_t j) const { list.Exchange(i, j); }
};

}  // namespace

const TClass& TVXList::StaticClass() {
  static const TClass info("TVXList", &TList::StaticClass());
  return info;
}

void TVXList::SortEx(const TVXListSortCompareMethod& compare) { QuickSort(TCheckedItems{*this}, Count(), compare); }

const TClass& TVXStringParser::StaticClass() {
  static const TClass info("TVXStringParser", &TObject::StaticClass());
  return info;
}

TVXStringParser::TVXStringParser(std::string separator, std::string text)
    : separator_(std::move(separator)), text_(std::move(text)) {}

std::size_t TVXStringParser::ItemEnd(std::size_t from) const {
  const std::size_t at = separator_.empty() ? std::string::npos : text_.find(separator_, from);
  return std::min(at, text_.size());
}

std::int32_t TVXStringParser::GetCount() const {
  std::int32_t count = 0;
  for (std::size_t at = 0; at < text_.size(); at = ItemEnd(at) + separator_.size()) {
    ++count;
    if (separator_.empty()) break;
  }
  return count;
}

std::string TVXStringParser::GetItemByIndex(std::int32_t index) const {
  std::size_t at = 0;
  for (std::int32_t i = 0; index >= 0 && at < text_.size(); ++i) {
    const std::size_t end = ItemEnd(at);
    if (i == index) return text_.substr(at, end - at);
    if (end == text_.size()) break;
    at = end + separator_.size();
  }
  throw Exception("StringParser : Index out of Bounds");
}

}  // namespace vx
