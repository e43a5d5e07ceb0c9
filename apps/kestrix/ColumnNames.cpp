#include "ColumnNames.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "Suggest.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

/// Gives each name a number behind it until nobody has it.
class TUniqueNames {
 public:
  std::string Add(const std::string& name) {
    std::string unique = name;
    for (std::size_t number = 2; !taken_.insert(FoldCase(unique)).second; ++number)
      unique = name + " (" + std::to_string(std::max(number, ++numbers_[FoldCase(name)])) + ")";
    return unique;
  }

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, std::size_t> numbers_;  // so that 10,000 equal names don't cost 10,000 tries each
};

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

}  // namespace

std::vector<std::string> HeadingsOf(const std::vector<std::string_view>& cells) {
  TUniqueNames unique;
  std::vector<std::string> headings;
  for (const std::string_view cell : cells) {
    const std::string name = Trim(cell);
    headings.push_back(unique.Add(name.empty() ? "Column " + std::to_string(headings.size() + 1) : name));
  }
  return headings;
}

std::vector<std::string> NumberedHeadings(std::size_t count) {
  return HeadingsOf(std::vector<std::string_view>(count));
}

std::vector<std::string> FieldNamesOf(const std::vector<std::string>& headings) {
  TUniqueNames unique;
  std::vector<std::string> names;
  for (std::string name : headings) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '.' || c == ';'; }, '_');
    names.push_back(unique.Add(name));
  }
  return names;
}

std::optional<std::size_t> FindHeading(const std::vector<std::string>& headings, std::string_view name) {
  const std::string_view wanted = Trimmed(name);
  const auto find = [&](auto isSame) -> std::optional<std::size_t> {
    const auto found = std::find_if(headings.begin(), headings.end(), isSame);
    return found == headings.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - headings.begin()));
  };
  const auto exact = find([&](const std::string& heading) { return heading == wanted; });
  return exact ? exact : find([&](const std::string& heading) { return SameText(heading, wanted); });
}

std::size_t NeedHeading(const std::vector<std::string>& headings, std::string_view name) {
  const auto found = FindHeading(headings, name);
  if (found) return *found;
  const std::string hint = DidYouMean(name, headings);
  throw EUserError("no column " + Quoted(Trimmed(name)) +
                   (hint.empty() ? "; there are " + QuotedList(headings) : hint));
}

std::vector<std::size_t> NeedHeadings(const std::vector<std::string>& headings, std::string_view names,
                                      char separator) {
  std::vector<std::size_t> found;
  const std::vector<std::string_view> parts = Split(names, separator);
  for (std::size_t i = 0; i < parts.size(); ++i) {
    // The longest run of parts that is a heading, for headings with separators in them; else the part alone, and its
    // error.
    const char* const begin = parts[i].data();
    std::size_t last = parts.size() - 1;
    const auto run = [&] {
      return std::string_view(begin, static_cast<std::size_t>(parts[last].data() + parts[last].size() - begin));
    };
    while (last > i && !FindHeading(headings, run())) --last;
    found.push_back(NeedHeading(headings, run()));
    i = last;
  }
  return found;
}

std::pair<std::size_t, std::string_view> NeedHeadingAndValue(const std::vector<std::string>& headings,
                                                             const char* option, std::string_view text) {
  const std::size_t first = text.find('=');
  if (first == std::string_view::npos)
    throw EUserError(std::string(option) + " " + Quoted(text) + " should be COLUMN=VALUE");
  for (std::size_t at = first; at != std::string_view::npos; at = text.find('=', at + 1))
    if (const auto column = FindHeading(headings, text.substr(0, at))) return {*column, Trimmed(text.substr(at + 1))};
  return {NeedHeading(headings, text.substr(0, first)), {}};
}

}  // namespace vx::kestrix
