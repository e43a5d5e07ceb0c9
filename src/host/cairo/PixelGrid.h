// PixelGrid.h: from the pixels that painters count to those of the image, and what dashes and hatches are in these.
//
// Everything upright or level begins and ends on whole image pixels at any scale, which makes it crisp. What lies far
// outside is cut off at kFarOut, where nobody sees it, without a change of direction.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/canvas/CanvasDevice.h"

namespace vx {

/// A place in an image; whole numbers are the edges of its pixels.
struct TDot {
  double X = 0;
  double Y = 0;
};

/// Lengths of ink and gap in turn, in image pixels; none for a solid line.
class TDashes {
 public:
  TDashes() = default;
  explicit TDashes(std::span<const std::int32_t> lengths);

  bool IsSolid() const { return count_ == 0; }
  std::span<const std::int32_t> Lengths() const { return std::span(lengths_).first(count_); }
  std::int64_t Period() const { return period_; }
  bool IsInked(std::int64_t at) const;

 private:
  std::array<std::int32_t, 6> lengths_{};
  std::size_t count_ = 0;
  std::int64_t period_ = 0;
};

class TPixelGrid {
 public:
  /// Cairo counts in 24 bits; no picture and no pen is as large.
  static constexpr double kFarOut = 1 << 21;

  explicit TPixelGrid(double scale) : scale_(scale) {}

  double Scale() const { return scale_; }
  /// Where a pixel begins.
  double Edge(std::int32_t pixel) const;
  /// Where a line `width` wide runs so that it covers whole image pixels around the pixel's middle; not cut off.
  double Centre(std::int32_t pixel, double width) const;
  TDot Centre(TPoint point, double width) const { return {Centre(point.X, width), Centre(point.Y, width)}; }
  std::vector<TDot> DotsOf(std::span<const TPoint> points, double width) const;
  TRect ImageRect(const TRect& rect) const;

  /// Of a line, in image pixels: whole, and at least one; 0 for a pen that draws nothing.
  double WidthOf(const TPenData& pen) const;
  TDashes DashesOf(const TPenData& pen) const;

  // -- Hatches, in image pixels ---------------------------------------------------------------------------------------
  std::int32_t HatchPeriod() const;
  std::int32_t HatchWidth() const;

 private:
  double scale_;
};

/// Ends of square shape, and corners that are pointed: lines whose pixels can be told one by one.
inline bool IsThin(const TPenData& pen) { return pen.Width <= 1 || pen.Style == psAlternate; }

/// The polygon without what lies beyond `reach` in any direction.
std::vector<TDot> WithinReach(std::vector<TDot> polygon, double reach = TPixelGrid::kFarOut);
/// The parts of an open line within `reach`: one, if no point lies beyond.
std::vector<std::vector<TDot>> PartsWithinReach(std::vector<TDot> line, double reach = TPixelGrid::kFarOut);

}  // namespace vx
