// PixelPainter.h: shapes without antialiasing, pixel by pixel by plain arithmetic.
//
// Writes straight into an image. All coordinates are those of image pixels. What is written is the same whichever way
// round a shape is drawn:
//
//   A line from one pixel to another has one pixel in each column (or row, if it is steeper than that): the one whose
//   middle is nearest, and the lower (or right) one of two.
//   A polygon holds the pixels of its outline, and those whose middles lie within it.
//   An outline of an ellipse holds the pixels of the ellipse that have a neighbour outside.
//
// The fast way for what is upright or level in any image, and the only one for pmXor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "host/cairo/PixelGrid.h"
#include "platform/canvas/Region.h"

namespace vx {

/// An opaque pixel of an image.
constexpr std::uint32_t PixelOf(TColor color) {
  return 0xFF000000u | std::uint32_t{RedOf(color)} << 16 | std::uint32_t{GreenOf(color)} << 8 | BlueOf(color);
}
/// 0 for clNone, which no opaque pixel is: leaves alone what is there.
constexpr std::uint32_t PixelOrNothing(TColor color) { return color == clNone ? 0 : PixelOf(color); }

/// What an area is filled with: a solid colour, or a hatch.
struct TFilling {
  TFilling(const TInk& ink, const TPixelGrid& grid)
      : Fore(PixelOf(ink.Brush.Color)),
        Back(PixelOrNothing(ink.Back)),
        Style(ink.Brush.Style),
        Period(grid.HatchPeriod()),
        Width(grid.HatchWidth()) {}

  /// 0 for a pixel that is left alone. `x` and `y` are not negative.
  std::uint32_t PixelAt(std::int32_t x, std::int32_t y) const;

  std::uint32_t Fore;
  std::uint32_t Back;
  TBrushStyle Style;
  std::int32_t Period;
  std::int32_t Width;
};

/// What a line is drawn with.
struct TStroking {
  TStroking(const TInk& ink, const TPixelGrid& grid)
      : Fore(PixelOf(ink.Pen.Color)),
        Back(PixelOrNothing(ink.Back)),
        Width(static_cast<std::int32_t>(grid.WidthOf(ink.Pen))),
        Dashes(grid.DashesOf(ink.Pen)) {}

  std::uint32_t PixelAt(std::int64_t along) const { return Dashes.IsInked(along) ? Fore : Back; }

  std::uint32_t Fore;
  std::uint32_t Back;
  std::int32_t Width;
  TDashes Dashes;
};

/// The pixels of an image that may be written.
struct TPixelTarget {
  std::uint32_t* RowAt(std::int32_t y) const { return First + std::ptrdiff_t{y - Bounds.Top} * RowLength; }

  std::uint32_t* First;      ///< of the top left pixel of Bounds
  std::ptrdiff_t RowLength;  ///< in pixels
  TRect Bounds;
  const TRegion& Clip;  ///< within Bounds
};

class TPixelPainter {
 public:
  explicit TPixelPainter(const TPixelTarget& target) : target_(target), clip_(target.Clip.Rects()) {}

  void Fill(const TRect& rect, std::uint32_t pixel) const;
  void Fill(const TRect& rect, const TFilling& filling) const;
  void Fill(const TRegion& region, const TFilling& filling) const;
  void Fill(const TRegion& region, std::uint32_t pixel) const;

  /// The edge of a rectangle, inwards. Dashes run clockwise from the top left.
  void Frame(const TRect& rect, const TStroking& stroking) const;
  /// `points` are the top left pixels of what the line covers at each point: upright and level lines of any width,
  /// others if they are one pixel wide. Dashes run on through the corners.
  void Polyline(std::span<const TPoint> points, const TStroking& stroking) const;

 private:
  enum TWay : std::uint8_t { kRight, kDown, kLeft, kUp };

  static TRect WithoutStart(TRect rect, TWay way, std::int32_t length);
  void Band(const TRect& rect, TWay way, std::int64_t phase, const TStroking& stroking) const;
  void Slope(TPoint from, TPoint to, std::int64_t phase, const TStroking& stroking) const;
  void Step(TPoint from, TPoint to, bool isFirst, std::int64_t phase, const TStroking& stroking) const;
  std::span<const TRect> ClipFrom(const TRect& target) const;

  const TPixelTarget target_;
  const std::span<const TRect> clip_;
};

/// The edge of a shape: what doesn't lie in `inner`, and all pixels with a neighbour outside of `outer`.
TRegion OutlineOf(const TRegion& outer, const TRegion& inner);

}  // namespace vx
