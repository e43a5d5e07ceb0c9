// SystemColors.h: the colours that the person at the screen has chosen.
//
// A system colour (clWindow, clBtnFace …) is a number that stands for a place in this table. A canvas looks it up at
// the moment of drawing, so a picture that is drawn again after a change of scheme shows the new colours; what is kept
// in a property stays the number.
//
//   ColorToRGB(clWindow);                  // 0xFFFFFF under the light scheme
//   SetSystemColors(DarkSystemColors());
//   ColorToRGB(clWindow);                  // 0x262626
//
// The table in force belongs to the application; main thread only. Whoever keeps colours computed from system colours
// listens by SetSystemColors' caller: an application tells its windows.
#pragma once

#include <array>
#include <cstddef>

#include "platform/canvas/Color.h"

namespace vx {

/// One plain colour for each of the 25 system colours, from clScrollBar to clInfoBk.
class TSystemColors {
 public:
  static constexpr std::size_t kCount = 25;

  constexpr TSystemColors() = default;  ///< all black
  /// Plain colours, in the order of the numbers.
  constexpr explicit TSystemColors(const std::array<TColor, kCount>& colors) : colors_(colors) {}

  /// `color` is one of the system colours; EConvertError, which names it, for others.
  TColor Get(TColor color) const;
  /// `value` is taken without its top byte, so the table holds plain colours only.
  void Set(TColor color, TColor value);

  bool operator==(const TSystemColors&) const = default;

 private:
  std::array<TColor, kCount> colors_{};
};

/// Dark text on white windows and light grey controls: what is in force at the start.
const TSystemColors& LightSystemColors();
/// Light text on dark windows. Text on its ground has a contrast of at least 7 to 1 in both schemes, disabled text 3.
const TSystemColors& DarkSystemColors();

const TSystemColors& SystemColors();
void SetSystemColors(const TSystemColors& colors);

/// The plain colour, without its top byte: a system colour by the table in force, black for a number beyond the table.
TColor ColorToRGB(TColor color);

}  // namespace vx
