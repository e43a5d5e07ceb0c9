#include "platform/component/EnumInfo.h"

#include "platform/runtime/Text.h"

namespace vx {

std::string GetEnumName(const TEnumTable& table, std::int64_t ordinal) {
  if (ordinal < 0 || ordinal >= static_cast<std::int64_t>(table.Names.size())) return std::to_string(ordinal);
  return std::string(table.Names[static_cast<std::size_t>(ordinal)]);
}

std::int32_t GetEnumValue(const TEnumTable& table, std::string_view text) {
  for (std::size_t i = 0; i < table.Names.size(); ++i)
    if (CompareText(table.Names[i], text) == 0) return static_cast<std::int32_t>(i);
  return -1;
}

std::string SetToText(const TEnumTable& table, std::uint64_t bits) {
  std::string text;
  for (std::int64_t ordinal = 0; bits != 0; ++ordinal, bits >>= 1)
    if ((bits & 1) != 0) text += (text.empty() ? "" : ",") + GetEnumName(table, ordinal);
  return "[" + text + "]";
}

std::optional<std::uint64_t> TextToSet(const TEnumTable& table, std::string_view text) {
  std::string trimmed = Trim(text);
  std::string_view rest = trimmed;
  if (rest.size() >= 2 && rest.front() == '[' && rest.back() == ']') rest = rest.substr(1, rest.size() - 2);
  std::uint64_t bits = 0;
  if (Trim(rest).empty()) return bits;
  for (bool more = true; more;) {
    const std::size_t comma = rest.find(',');
    more = comma != std::string_view::npos;
    const std::int32_t ordinal = GetEnumValue(table, Trim(rest.substr(0, comma)));
    if (ordinal < 0 || ordinal > 63) return std::nullopt;
    bits |= std::uint64_t{1} << ordinal;
    if (more) rest.remove_prefix(comma + 1);
  }
  return bits;
}

}  // namespace vx
