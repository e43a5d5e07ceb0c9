// Geometry.h: points, sizes and rectangles in whole pixels.
//
// A point names a pixel. A rectangle holds the pixels from (Left, Top) up to, and without, (Right, Bottom): its width
// is Right - Left, and two rectangles that share an edge share no pixel. The members answer copies (`Moved`,
// `Inflated`); nothing here changes in place, so that geometry can be computed once and read by many.
//
//   constexpr TRect box{10, 20, 40, 30};
//   box.Width();                       // 30
//   box.Contains({39, 29});            // true
//   box.Intersects({40, 20, 50, 30});  // false: they only touch
//
// Coordinates beyond kFarthest are not meant: sums are not checked. Canvases and projections bring them to it.
#pragma once

#include <algorithm>
#include <cstdint>

namespace vx {

/// Far outside of any picture, and small enough that sums of a few coordinates don't overflow.
inline constexpr std::int32_t kFarthest = 1 << 28;

struct TPoint {
  std::int32_t X = 0;
  std::int32_t Y = 0;

  [[nodiscard]] constexpr bool operator==(const TPoint&) const = default;
};

struct TSize {
  std::int32_t Width = 0;
  std::int32_t Height = 0;

  [[nodiscard]] constexpr bool operator==(const TSize&) const = default;
};

struct TRect {
  std::int32_t Left = 0;
  std::int32_t Top = 0;
  std::int32_t Right = 0;
  std::int32_t Bottom = 0;

  /// The rectangle of this size whose first pixel is `corner`.
  [[nodiscard]] static constexpr TRect At(TPoint corner, TSize size) {
    return {corner.X, corner.Y, corner.X + size.Width, corner.Y + size.Height};
  }

  [[nodiscard]] constexpr bool operator==(const TRect&) const = default;
  [[nodiscard]] constexpr std::int32_t Width() const { return Right - Left; }
  [[nodiscard]] constexpr std::int32_t Height() const { return Bottom - Top; }
  [[nodiscard]] constexpr TSize Size() const { return {Width(), Height()}; }
  [[nodiscard]] constexpr TPoint TopLeft() const { return {Left, Top}; }
  /// True if not one pixel lies within.
  [[nodiscard]] constexpr bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
  [[nodiscard]] constexpr bool Contains(TPoint p) const {
    return p.X >= Left && p.X < Right && p.Y >= Top && p.Y < Bottom;
  }
  /// True if `inner` has no pixel outside of this one.
  [[nodiscard]] constexpr bool Encloses(const TRect& inner) const {
    return inner.IsEmpty() ||
           (inner.Left >= Left && inner.Right <= Right && inner.Top >= Top && inner.Bottom <= Bottom);
  }
  /// True if both share at least one pixel.
  [[nodiscard]] constexpr bool Intersects(const TRect& other) const { return !Intersected(other).IsEmpty(); }
  /// What both share; possibly empty, with the right side left of the left one.
  [[nodiscard]] constexpr TRect Intersected(const TRect& other) const {
    return {std::max(Left, other.Left), std::max(Top, other.Top), std::min(Right, other.Right),
            std::min(Bottom, other.Bottom)};
  }
  [[nodiscard]] constexpr TRect Moved(std::int32_t dx, std::int32_t dy) const {
    return {Left + dx, Top + dy, Right + dx, Bottom + dy};
  }
  /// Grown by `dx` and `dy` on each side; negative values shrink.
  [[nodiscard]] constexpr TRect Inflated(std::int32_t dx, std::int32_t dy) const {
    return {Left - dx, Top - dy, Right + dx, Bottom + dy};
  }
};

}  // namespace vx
