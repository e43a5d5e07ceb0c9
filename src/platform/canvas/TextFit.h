// TextFit.h: makes a text fit a width.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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
std::string ElideText(std::string_view text, std::int32_t width, const TFontData& font, const ITextMeter& meter);
/// The same for a text that goes on where it can't be shown: it ends in "…" even if it fits.
std::string ElideAlways(std::string_view text, std::int32_t width, const TFontData& font, const ITextMeter& meter);

/// The lines of `text`, control characters as blanks: broken at line feeds (a carriage return before one belongs to
/// it), and, where a width is given, at the last blank that leaves the line no wider than that; within a word only if
/// that is too wide for a line of its own. Blanks at such a break are dropped; each line has at least one code point of
/// a text that isn't empty. Only the first 64 KB are looked at: more never fits a picture.
std::vector<std::string> BreakText(std::string_view text, std::optional<std::int32_t> width, const TFontData& font,
                                   const ITextMeter& meter);

}  // namespace vx
