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

TVXStringParser::TVXStringParser(std::string separator, std::string text) : separator_(std::move(separator)) {
  SetText(std::move(text));
}

void TVXStringParser::SetText(std::string text) {
  text_ = std::move(text);
  items_.clear();
  for (std::size_t at = 0; at < text_.size();) {
    const std::size_t found = separator_.empty() ? std::string::npos : text_.find(separator_, at);
    const std::size_t end = std::min(found, text_.size());
    items_.emplace_back(at, end - at);
    at = end + separator_.size();
    if (end == text_.size()) break;
  }
}

std::int32_t TVXStringParser::GetCount() const { return static_cast<std::int32_t>(items_.size()); }

std::string TVXStringParser::GetItemByIndex(std::int32_t index) const {
  if (index < 0 || index >= GetCount()) throw Exception("StringParser : Index out of Bounds");
  const auto& [begin, length] = items_[static_cast<std::size_t>(index)];
  return text_.substr(begin, length);
}

}  // namespace vx
