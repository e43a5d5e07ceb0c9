#include "platform/canvas/SystemColors.h"

#include "platform/runtime/Exceptions.h"

namespace vx {

namespace {

/// kCount or more for a colour that has no place.
std::size_t PlaceOf(TColor color) {
  return static_cast<std::uint32_t>(color) - static_cast<std::uint32_t>(clScrollBar);
}

std::size_t CheckedPlace(TColor color) {
  const std::size_t place = PlaceOf(color);
  if (place >= TSystemColors::kCount) throw EConvertError(ColorToString(color) + " is not a system colour");
  return place;
}

constexpr TColor Plain(TColor color) { return TColor{color & 0xFFFFFF}; }

/// Written as people read it: 0xRRGGBB.
constexpr TColor Rgb(std::uint32_t rgb) {
  return RGBColor(static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
                  static_cast<std::uint8_t>(rgb));
}

TSystemColors& Current() {
  static TSystemColors colors = LightSystemColors();
  return colors;
}

}  // namespace

TColor TSystemColors::Get(TColor color) const { return colors_[CheckedPlace(color)]; }

void TSystemColors::Set(TColor color, TColor value) { colors_[CheckedPlace(color)] = Plain(value); }

const TSystemColors& LightSystemColors() {
  static constexpr TSystemColors colors({
      Rgb(0xDADDE1),  // clScrollBar
      Rgb(0x3B6A8F),  // clBackground
      Rgb(0x1F5A8C),  // clActiveCaption
      Rgb(0xD0D5DB),  // clInactiveCaption
      Rgb(0xF7F8F9),  // clMenu
      Rgb(0xFFFFFF),  // clWindow
      Rgb(0x6B7178),  // clWindowFrame
      Rgb(0x000000),  // clMenuText
      Rgb(0x000000),  // clWindowText
      Rgb(0xFFFFFF),  // clCaptionText
      Rgb(0xB8BEC5),  // clActiveBorder
      Rgb(0xD9DCE0),  // clInactiveBorder
      Rgb(0x9AA1A9),  // clAppWorkSpace
      Rgb(0x14549E),  // clHighlight
      Rgb(0xFFFFFF),  // clHighlightText
      Rgb(0xECEEF0),  // clBtnFace
      Rgb(0xA3A9B0),  // clBtnShadow
      Rgb(0x757B82),  // clGrayText
      Rgb(0x000000),  // clBtnText
      Rgb(0x4A5158),  // clInactiveCaptionText
      Rgb(0xFFFFFF),  // clBtnHighlight
      Rgb(0x5F656C),  // cl3DDkShadow
      Rgb(0xF6F7F8),  // cl3DLight
      Rgb(0x000000),  // clInfoText
      Rgb(0xFFF9D9),  // clInfoBk
  });
  return colors;
}

const TSystemColors& DarkSystemColors() {
  static constexpr TSystemColors colors({
      Rgb(0x3A3D40),  // clScrollBar
      Rgb(0x1B2A36),  // clBackground
      Rgb(0x1E4A6E),  // clActiveCaption
      Rgb(0x2E3134),  // clInactiveCaption
      Rgb(0x2B2D2F),  // clMenu
      Rgb(0x262626),  // clWindow
      Rgb(0x7A7F85),  // clWindowFrame
      Rgb(0xF0F0F0),  // clMenuText
      Rgb(0xF0F0F0),  // clWindowText
      Rgb(0xFFFFFF),  // clCaptionText
      Rgb(0x4A4E53),  // clActiveBorder
      Rgb(0x37393C),  // clInactiveBorder
      Rgb(0x191B1D),  // clAppWorkSpace
      Rgb(0x1A5796),  // clHighlight
      Rgb(0xFFFFFF),  // clHighlightText
      Rgb(0x34373A),  // clBtnFace
      Rgb(0x1F2123),  // clBtnShadow
      Rgb(0x8C9297),  // clGrayText
      Rgb(0xF0F0F0),  // clBtnText
      Rgb(0xA0A5AA),  // clInactiveCaptionText
      Rgb(0x5A5F64),  // clBtnHighlight
      Rgb(0x101112),  // cl3DDkShadow
      Rgb(0x44484C),  // cl3DLight
      Rgb(0xF0F0F0),  // clInfoText
      Rgb(0x45412E),  // clInfoBk
  });
  return colors;
}

const TSystemColors& SystemColors() { return Current(); }

void SetSystemColors(const TSystemColors& colors) { Current() = colors; }

TColor ColorToRGB(TColor color) {
  if (!IsSystemColor(color)) return Plain(color);
  return PlaceOf(color) < TSystemColors::kCount ? Current().Get(color) : clBlack;
}

}  // namespace vx
