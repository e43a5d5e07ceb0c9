// Color.h: colours as one number.
//
// A TColor is 0x00BBGGRR: red in the lowest byte. It is a type of its own, so that a count can't be taken for a colour;
// TColor{0x00FF8000} makes one from a number. The top byte tells how the rest is meant: 00, 01 and 02 stand before a
// plain colour (01 and 02 ask a display with a palette for its nearest entry, which changes nothing on others); 80
// stands before the number of a system colour, a colour that the person at the screen has chosen (SystemColors.h).
//
// Texts. ColorToText writes a plain colour the way people read it, red, green, blue: clRed is "ff0000". ColorToString
// writes what a form or a rule keeps: the name where there is one, else the number.
//
//   ColorToString(clRed);              // "clRed"
//   ColorToString(TColor{0x123456});   // "$00123456"
//   StringToColor("clWindow");         // clWindow
//   StringToColor("$00123456");        // 0x123456
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/component/EnumInfo.h"

namespace vx {

enum TColor : std::int32_t {
  clBlack = 0x000000,
  clMaroon = 0x000080,
  clGreen = 0x008000,
  clOlive = 0x008080,
  clNavy = 0x800000,
  clPurple = 0x800080,
  clTeal = 0x808000,
  clGray = 0x808080,
  clSilver = 0xC0C0C0,
  clRed = 0x0000FF,
  clLime = 0x00FF00,
  clYellow = 0x00FFFF,
  clBlue = 0xFF0000,
  clFuchsia = 0xFF00FF,
  clAqua = 0xFFFF00,
  clWhite = 0xFFFFFF,
  // What the person at the screen has chosen; the low byte is the place in TSystemColors.
  clScrollBar = INT32_MIN,
  clBackground = INT32_MIN + 1,
  clActiveCaption = INT32_MIN + 2,
  clInactiveCaption = INT32_MIN + 3,
  clMenu = INT32_MIN + 4,
  clWindow = INT32_MIN + 5,
  clWindowFrame = INT32_MIN + 6,
  clMenuText = INT32_MIN + 7,
  clWindowText = INT32_MIN + 8,
  clCaptionText = INT32_MIN + 9,
  clActiveBorder = INT32_MIN + 10,
  clInactiveBorder = INT32_MIN + 11,
  clAppWorkSpace = INT32_MIN + 12,
  clHighlight = INT32_MIN + 13,
  clHighlightText = INT32_MIN + 14,
  clBtnFace = INT32_MIN + 15,
  clBtnShadow = INT32_MIN + 16,
  clGrayText = INT32_MIN + 17,
  clBtnText = INT32_MIN + 18,
  clInactiveCaptionText = INT32_MIN + 19,
  clBtnHighlight = INT32_MIN + 20,
  cl3DDkShadow = INT32_MIN + 21,
  cl3DLight = INT32_MIN + 22,
  clInfoText = INT32_MIN + 23,
  clInfoBk = INT32_MIN + 24,

  clNone = 0x1FFFFFFF,  ///< no colour at all: what takes it draws nothing
  /// No colour given: whoever draws chooses. The same number as clScrollBar, so a chart can't be told to use that one.
  clDefault = INT32_MIN,
};

constexpr TColor RGBColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return TColor{red | green << 8 | blue << 16};
}
constexpr std::uint8_t RedOf(TColor color) { return static_cast<std::uint8_t>(color & 0xFF); }
constexpr std::uint8_t GreenOf(TColor color) { return static_cast<std::uint8_t>(color >> 8 & 0xFF); }
constexpr std::uint8_t BlueOf(TColor color) { return static_cast<std::uint8_t>(color >> 16 & 0xFF); }

constexpr bool IsSystemColor(TColor color) { return color < 0; }

/// Six hexadecimal digits, small letters, red first, of the three colour bytes.
std::string ColorToText(TColor color);

/// The name of a colour of the list above, without regard to letter case; false if it is none, and `color` is as it
/// was. ColorToIdent is the way back.
bool IdentToColor(std::string_view name, TColor& color);
bool ColorToIdent(TColor color, std::string& name);
/// Hands out all names, in the order of the list above.
void GetColorValues(const std::function<void(const std::string&)>& take);
/// The name, or "$" and eight hexadecimal digits.
std::string ColorToString(TColor color);
/// A name, or a number: decimal, or hexadecimal after "$" or "0x"; blanks around it are skipped. EConvertError, which
/// names the text, for others.
TColor StringToColor(std::string_view text);

template <>
struct TEnumInfo<TColor> {
  static constexpr std::string_view kTypeName = "TColor";
  static std::string NameOf(TColor color) {
    std::string name;
    ColorToIdent(color, name);
    return name;
  }
  static std::optional<TColor> ValueOf(std::string_view name) {
    TColor color{};
    return IdentToColor(name, color) ? std::optional(color) : std::nullopt;
  }
};

}  // namespace vx
