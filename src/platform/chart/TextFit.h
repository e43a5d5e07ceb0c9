// TextFit.h: makes a text fit a width.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/canvas/CanvasDevice.h"

namespace vx {

/// A text and the place that it takes.
struct TLabelBox {
  TRect Box;
  std::string Text;

  bool operator==(const TLabelBox&) const = default;
};

/// `text` on one line, control characters as blanks. If it is wider than `width`, as many code points from its
/// beginning as leave room for "…", and that; empty if not even that fits. Measures O(log length) times.
std::string ElideText(std::string_view text, std::int32_t width, const TFont& font, const ITextMeter& meter);

}  // namespace vx
