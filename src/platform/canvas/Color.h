// Color.h: colours as one number.
//
// A TColor is 0x00BBGGRR: red in the lowest byte. As text (ColorToText) a colour is written the way people read it,
// red, green, blue: clRed is "ff0000". It is a type of its own, so that a count can't be taken for a colour;
// TColor{0x00FF8000} makes one from a number.
#pragma once

#include <cstdint>
#include <string>

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
  clDefault = INT32_MIN,  ///< no colour given: whoever draws chooses. Never reaches a canvas.
};

constexpr TColor RGBColor(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
  return TColor{red | green << 8 | blue << 16};
}
constexpr std::uint8_t RedOf(TColor color) { return static_cast<std::uint8_t>(color & 0xFF); }
constexpr std::uint8_t GreenOf(TColor color) { return static_cast<std::uint8_t>(color >> 8 & 0xFF); }
constexpr std::uint8_t BlueOf(TColor color) { return static_cast<std::uint8_t>(color >> 16 & 0xFF); }

/// Six hexadecimal digits, small letters, red first.
std::string ColorToText(TColor color);

}  // namespace vx
