#include "UserError.h"

#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kLongestQuoted = 60;  // code points
constexpr std::size_t kMostListed = 8;
constexpr char32_t kControlPictures = 0x2400;
constexpr char32_t kDeletePicture = 0x2421;

std::string MessageAt(const TPlace& place, const std::string& message) {
  std::string text = place.file.empty() ? std::string() : OneLine(place.file);
  if (place.line > 0) text += ":" + std::to_string(place.line);
  if (!text.empty()) text += ": ";
  if (!place.column.empty()) text += "column " + Quoted(place.column) + ": ";
  return text + message;
}

char32_t Shown(char32_t code) {
  if (code < 0x20) return kControlPictures + code;
  if (code == 0x7F) return kDeletePicture;
  const bool isInvisible = (code >= 0x80 && code < 0xA0) || code == 0x2028 || code == 0x2029;
  return isInvisible || code >= kMalformed ? 0xFFFD : code;
}

}  // namespace

EUserError::EUserError(TPlace place, const std::string& message)
    : TNamedException(MessageAt(place, message)), place_(std::move(place)) {}

std::string OneLine(std::string_view text) {
  std::string shown;
  for (std::size_t at = 0; at < text.size();) AppendCodePoint(shown, Shown(NextCodePoint(text, at)));
  return shown;
}

std::string Quoted(std::string_view text) {
  std::string shown = "\"";
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (++count > kLongestQuoted) return shown + "…\"";
    AppendCodePoint(shown, Shown(NextCodePoint(text, at)));
  }
  return shown + "\"";
}

std::string QuotedList(const std::vector<std::string>& names) {
  std::string list;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i == kMostListed) return list + ", …";
    list += (i > 0 ? ", " : "") + Quoted(names[i]);
  }
  return list;
}

}  // namespace vx::kestrix
