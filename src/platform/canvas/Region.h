// Region.h: any set of pixels, as a clip or to test a mouse position against.
//
// A TRegion holds disjoint rectangles in bands, from top to bottom and in each band from left to right; equal sets of
// pixels have equal rectangles, whatever they were made of. Shapes are taken without antialiasing and without rounding:
// a pixel belongs to a shape if its middle lies within. Shapes that aren't rectangles are clipped to `within`, so that
// absurd coordinates cost no more than the rows of it.
//
//   TRegion frame = TRegion::OfRect({0, 0, 100, 50}).Subtracted(TRegion::OfRect({10, 10, 90, 40}));
//   frame.Contains({5, 5});       // true
//   frame.Contains({50, 25});     // false
//   frame.Rects().size();         // 4
//
// Uniting, intersecting and subtracting cost as much as both have rectangles together, and a rectangle more for each
// band that one cuts in the other. Contains is a binary search.
#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "platform/canvas/Geometry.h"

namespace vx {

/// What the points of a polygon name.
enum class TPolygonCorners : std::uint8_t {
  kCorners,  ///< the upper left corners of pixels, as those of a rectangle: {0, 0}, {9, 0}, {9, 9}, {0, 9} are nine
             ///< rows of nine pixels
  kMiddles,  ///< the middles of pixels, as those of a line
};

class TRegion {
 public:
  TRegion() = default;  ///< no pixel
  static TRegion OfRect(const TRect& rect);
  /// The pixels of all of them. O(n log n) for rectangles of a region.
  static TRegion OfRects(std::span<const TRect> rects);
  /// A middle on the line itself lies within.
  static TRegion OfEllipse(const TRect& rect, const TRect& within);
  /// `corner` is width and height of the ellipse whose quarters round the corners off; at most the size of `rect`.
  static TRegion OfRoundRect(const TRect& rect, TSize corner, const TRect& within);
  /// Closed; where the polygon overlaps itself the pixel belongs to it, unless both ways round cancel each other (the
  /// rule of the non-zero winding). A middle on the line lies within at the left, and not at the right.
  static TRegion OfPolygon(std::span<const TPoint> points, const TRect& within,
                           TPolygonCorners corners = TPolygonCorners::kCorners);

  TRegion United(const TRegion& other) const;
  TRegion Intersected(const TRegion& other) const;
  TRegion Subtracted(const TRegion& other) const;
  TRegion Moved(std::int32_t dx, std::int32_t dy) const;

  bool IsEmpty() const { return rects_.empty(); }
  bool Contains(TPoint point) const;
  /// The smallest rectangle that holds all pixels; an empty one for none.
  TRect Bounds() const;
  std::span<const TRect> Rects() const { return rects_; }

  bool operator==(const TRegion&) const = default;

 private:
  explicit TRegion(std::vector<TRect> rects) : rects_(std::move(rects)) {}

  std::vector<TRect> rects_;
};

}  // namespace vx
