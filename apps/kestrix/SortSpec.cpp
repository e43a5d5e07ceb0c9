#include "SortSpec.h"

#include <algorithm>
#include <optional>

#include "ColumnNames.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

struct TSortItem {
  std::size_t column = 0;
  char order = 'A';
};

/// A heading alone, or one with a point and a letter behind it.
std::optional<TSortItem> ItemOf(std::string_view text, const std::vector<std::string>& headings) {
  if (const auto whole = FindHeading(headings, text)) return TSortItem{*whole, 'A'};
  const std::string_view item = Trimmed(text);
  const std::size_t point = item.rfind('.');
  if (point == std::string_view::npos) return std::nullopt;
  const auto column = FindHeading(headings, item.substr(0, point));
  if (!column) return std::nullopt;
  const std::string_view order = item.substr(point + 1);
  return order == "A" || order == "D" ? std::optional(TSortItem{*column, order.front()}) : std::nullopt;
}

/// Says what is wrong with an item that isn't one.
[[noreturn]] void FailOn(std::string_view text, const std::vector<std::string>& headings) {
  const std::string_view item = Trimmed(text);
  const std::size_t point = item.rfind('.');
  const std::string_view name = item.substr(0, point);
  if (point != std::string_view::npos && FindHeading(headings, name))
    throw EUserError("--sort " + Quoted(item) + ": behind the point stands A for ascending or D for descending");
  const bool hasOrder = item.ends_with(".A") || item.ends_with(".D");
  NeedHeading(headings, hasOrder ? name : item);
  throw EUserError("--sort " + Quoted(item) + " is no column");
}

}  // namespace

std::string SortSpecification(std::string_view text, const TColumnPlan& plan) {
  const std::vector<std::string> headings = HeadingsOfPlan(plan);
  std::string sort;
  while (!text.empty()) {
    // The longest beginning that is an item, since headings may hold semicolons.
    std::size_t end = text.size();
    auto item = ItemOf(text, headings);
    while (!item && end > 0) {
      const std::size_t separator = text.rfind(';', end - 1);
      if (separator == std::string_view::npos) FailOn(text.substr(0, end), headings);
      end = separator;
      item = ItemOf(text.substr(0, end), headings);
    }
    if (!item) FailOn({}, headings);
    sort += (sort.empty() ? "" : ";") + plan.columns[item->column].field + "." + item->order;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return sort;
}

}  // namespace vx::kestrix
