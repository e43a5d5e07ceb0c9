#include "platform/canvas/Color.h"

#include <charconv>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

struct TNamedColor {
  std::string_view Name;
  TColor Color;
};

/// Of two names for one number the first is written.
constexpr TNamedColor kNamedColors[] = {
    {"clBlack", clBlack},
    {"clMaroon", clMaroon},
    {"clGreen", clGreen},
    {"clOlive", clOlive},
    {"clNavy", clNavy},
    {"clPurple", clPurple},
    {"clTeal", clTeal},
    {"clGray", clGray},
    {"clSilver", clSilver},
    {"clRed", clRed},
    {"clLime", clLime},
    {"clYellow", clYellow},
    {"clBlue", clBlue},
    {"clFuchsia", clFuchsia},
    {"clAqua", clAqua},
    {"clWhite", clWhite},
    {"clScrollBar", clScrollBar},
    {"clBackground", clBackground},
    {"clActiveCaption", clActiveCaption},
    {"clInactiveCaption", clInactiveCaption},
    {"clMenu", clMenu},
    {"clWindow", clWindow},
    {"clWindowFrame", clWindowFrame},
    {"clMenuText", clMenuText},
    {"clWindowText", clWindowText},
    {"clCaptionText", clCaptionText},
    {"clActiveBorder", clActiveBorder},
    {"clInactiveBorder", clInactiveBorder},
    {"clAppWorkSpace", clAppWorkSpace},
    {"clHighlight", clHighlight},
    {"clHighlightText", clHighlightText},
    {"clBtnFace", clBtnFace},
    {"clBtnShadow", clBtnShadow},
    {"clGrayText", clGrayText},
    {"clBtnText", clBtnText},
    {"clInactiveCaptionText", clInactiveCaptionText},
    {"clBtnHighlight", clBtnHighlight},
    {"cl3DDkShadow", cl3DDkShadow},
    {"cl3DLight", cl3DLight},
    {"clInfoText", clInfoText},
    {"clInfoBk", clInfoBk},
    {"clNone", clNone},
    {"clDefault", clDefault},
};

/// The digits of a hexadecimal number without what stands before them; empty if `text` is none.
std::string_view HexDigits(std::string_view text) {
  if (text.starts_with('$')) return text.substr(1);
  if (text.starts_with("0x") || text.starts_with("0X")) return text.substr(2);
  return {};
}

bool ReadHex(std::string_view digits, std::uint32_t& value) {
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
  return error == std::errc() && stop == end;
}

void AppendHex(std::string& text, std::uint32_t value, unsigned count, std::string_view digits) {
  while (count > 0) text += digits[value >> 4 * --count & 15];
}

}  // namespace

std::string ColorToText(TColor color) {
  std::string text;
  for (const std::uint8_t part : {RedOf(color), GreenOf(color), BlueOf(color)})
    AppendHex(text, part, 2, "0123456789abcdef");
  return text;
}

bool IdentToColor(std::string_view name, TColor& color) {
  for (const TNamedColor& each : kNamedColors) {
    if (CompareText(each.Name, name) != 0) continue;
    color = each.Color;
    return true;
  }
  return false;
}

bool ColorToIdent(TColor color, std::string& name) {
  for (const TNamedColor& each : kNamedColors) {
    if (each.Color != color) continue;
    name = each.Name;
    return true;
  }
  return false;
}

void GetColorValues(const std::function<void(const std::string&)>& take) {
  for (const TNamedColor& each : kNamedColors) take(std::string(each.Name));
}

std::string ColorToString(TColor color) {
  std::string text;
  if (ColorToIdent(color, text)) return text;
  text = "$";
  AppendHex(text, static_cast<std::uint32_t>(color), 8, "0123456789ABCDEF");
  return text;
}

TColor StringToColor(std::string_view text) {
  const std::string_view word = Trimmed(text);
  TColor color{};
  if (IdentToColor(word, color)) return color;
  if (std::uint32_t bits = 0; ReadHex(HexDigits(word), bits)) return static_cast<TColor>(bits);
  if (std::int32_t number = 0; TryStrToInt(word, number)) return TColor{number};
  throw EConvertError("'" + std::string(text) + "' is not a colour");
}

}  // namespace vx
