#include "platform/canvas/Color.h"

namespace vx {

std::string ColorToText(TColor color) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t part : {RedOf(color), GreenOf(color), BlueOf(color)}) {
    text += kDigits[part >> 4];
    text += kDigits[part & 15];
  }
  return text;
}

}  // namespace vx
