// ColourKit.h: how far colours are apart; another screen and other system colours, for one test.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "colour/VXColorScheme_UNT.h"
#include "platform/canvas/Display.h"
#include "platform/canvas/SystemColors.h"

namespace vx::test {

/// The largest difference of a channel's byte.
inline std::int32_t Apart(TColor a, TColor b) {
  return std::max({std::abs(RedOf(a) - RedOf(b)), std::abs(GreenOf(a) - GreenOf(b)), std::abs(BlueOf(a) - BlueOf(b))});
}

/// The same but for the last step of a channel, which is the mathematical library's to say.
inline bool AreNear(TColor a, TColor b) { return (a ^ b) >> 24 == 0 && Apart(a, b) <= 1; }

/// Puts back the system colours, the display and the application's colours.
class TScreenScope : public IDisplay {
 public:
  TScreenScope() : colors_(SystemColors()) {
    SetDisplay(this);
    ResetApplicationColors();
  }
  ~TScreenScope() override {
    SetDisplay(nullptr);
    SetSystemColors(colors_);
    ResetApplicationColors();
  }
  TScreenScope(const TScreenScope&) = delete;
  TScreenScope& operator=(const TScreenScope&) = delete;

  std::int32_t BitsPerPixel() const override { return bits; }
  std::int32_t PaletteSize() const override { return palette; }
  static void Set(TColor system, TColor value) {
    TSystemColors colors = SystemColors();
    colors.Set(system, value);
    SetSystemColors(colors);
  }

  std::int32_t bits = 24;
  std::int32_t palette = 0;

 private:
  TSystemColors colors_;
};

}  // namespace vx::test
