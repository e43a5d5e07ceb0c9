#include "JsonText.h"

#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendEscaped(std::string& json, char32_t code) {
  constexpr std::string_view kPlain = "\"\\\n\r\t";
  constexpr std::string_view kLetters = "\"\\nrt";
  constexpr std::string_view kHex = "0123456789abcdef";
  const std::size_t plain = code < 0x80 ? kPlain.find(static_cast<char>(code)) : std::string_view::npos;
  if (plain != std::string_view::npos)
    json.append({'\\', kLetters[plain]});
  else if (code < 0x20)
    json.append({'\\', 'u', '0', '0', kHex[code >> 4u], kHex[code & 15u]});
  else
    AppendCodePoint(json, code >= kMalformed ? kReplacement : code);
}

}  // namespace

std::string JsonText(std::string_view text) {
  std::string json = "\"";
  for (std::size_t at = 0; at < text.size();) AppendEscaped(json, NextCodePoint(text, at));
  return json + "\"";
}

}  // namespace vx::kestrix
