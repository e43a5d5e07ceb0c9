// CanvasDevice.h: what a canvas needs of the thing it draws on.
//
// A device is small and has no state of its own but the clip: each primitive comes with the pen, brush or font that it
// uses. The rich side, with current pen and position, is TCanvas. Tests draw on a TRecordingDevice; hosts bring devices
// for images, pages and windows.
//
// Pixels. A line covers both of its end pixels. The outline of a closed shape lies within its rectangle; FillRect,
// which has no outline, covers the rectangle. Text is drawn over what is there, from the top left of its line box,
// without a background. Text is UTF-8; broken bytes are shown, never an error. Coordinates far outside of the picture
// are fine.
#pragma once

#include <span>
#include <string_view>

#include "platform/canvas/Geometry.h"
#include "platform/canvas/Graphics.h"

namespace vx {

/// Measures text as the device that is going to draw it will. Layout asks for nothing more than this.
class ITextMeter {
 public:
  virtual ~ITextMeter() = default;
  /// Width and line height of `text` on one line, in pixels, rounded up.
  virtual TSize MeasureText(std::string_view text, const TFont& font) const = 0;
};

class ICanvasDevice : public ITextMeter {
 public:
  virtual TSize Size() const = 0;

  // -- Clip ---------------------------------------------------------------------------------------------------------
  /// Keeps the clip until the matching RestoreClip. Pairs nest.
  virtual void SaveClip() = 0;
  virtual void RestoreClip() = 0;
  /// From here on only what also lies within `rect` is drawn.
  virtual void IntersectClip(const TRect& rect) = 0;

  // -- Primitives ---------------------------------------------------------------------------------------------------
  virtual void FillRect(const TRect& rect, const TBrush& brush) = 0;
  virtual void Rectangle(const TRect& rect, const TPen& pen, const TBrush& brush) = 0;
  virtual void Ellipse(const TRect& rect, const TPen& pen, const TBrush& brush) = 0;
  /// Closed; an overlap of the shape with itself is filled.
  virtual void Polygon(std::span<const TPoint> points, const TPen& pen, const TBrush& brush) = 0;
  /// Open. One point alone is a dot as wide as the pen.
  virtual void Polyline(std::span<const TPoint> points, const TPen& pen) = 0;
  virtual void TextOut(TPoint topLeft, std::string_view text, const TFont& font) = 0;
};

}  // namespace vx
