// RecordingWords.h: the words of recorded drawings, for the device that writes them and the script that reads them.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/canvas/CanvasDevice.h"

namespace vx::recording {

/// By ordinal; the empty word is not written.
inline constexpr std::array<std::string_view, 8> kPenStyles = {"",           "dash",  "dot",         "dashdot",
                                                               "dashdotdot", "clear", "insideframe", "alternate"};
inline constexpr std::array<std::string_view, 8> kBrushStyles = {"",          "clear",     "horizontal", "vertical",
                                                                 "fdiagonal", "bdiagonal", "cross",      "diagcross"};
inline constexpr std::array<std::string_view, 4> kFontStyles = {"bold", "italic", "underline", "strikeout"};
inline constexpr std::array<std::string_view, 7> kGradientDirections = {
    "topbottom", "bottomtop", "leftright", "rightleft", "fromcenter", "fromtopleft", "frombottomleft"};
inline constexpr std::array<std::string_view, 3> kArcShapes = {"arc", "chord", "pie"};
inline constexpr std::string_view kXor = "xor";
inline constexpr std::string_view kClear = kBrushStyles[bsClear];
inline constexpr std::string_view kNone = "none";

/// In quotes; quotes, backslashes and control characters as a backslash and two hexadecimal digits.
std::string Quoted(std::string_view text);

}  // namespace vx::recording
