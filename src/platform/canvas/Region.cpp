#include "platform/canvas/Region.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <utility>

namespace vx {

namespace {

/// Puts rectangles together, band after band from top to bottom, and joins a band to the one above if both are alike.
class TBands {
 public:
  void Begin(std::int32_t top, std::int32_t bottom) {
    top_ = top;
    bottom_ = bottom;
    begin_ = rects_.size();
  }
  /// From left to right; parts don't touch.
  void Add(std::int32_t left, std::int32_t right) { rects_.push_back({left, top_, right, bottom_}); }
  void End() {
    if (begin_ == rects_.size()) return;
    if (ContinuesAbove()) {
      for (std::size_t i = above_; i < begin_; ++i) rects_[i].Bottom = bottom_;
      rects_.resize(begin_);
    } else {
      above_ = begin_;
    }
  }
  std::vector<TRect> Take() { return std::move(rects_); }

 private:
  bool ContinuesAbove() const {
    const auto isAlike = [this](const TRect& a, const TRect& b) {
      return a.Left == b.Left && a.Right == b.Right && a.Bottom == top_;
    };
    return std::equal(rects_.begin() + Offset(above_), rects_.begin() + Offset(begin_), rects_.begin() + Offset(begin_),
                      rects_.end(), isAlike);
  }
  static std::ptrdiff_t Offset(std::size_t index) { return static_cast<std::ptrdiff_t>(index); }

  std::vector<TRect> rects_;
  std::int32_t top_ = 0;
  std::int32_t bottom_ = 0;
  std::size_t above_ = 0;  // first of the band above
  std::size_t begin_ = 0;  // and of this one
};

// -- Uniting, intersecting, subtracting -------------------------------------------------------------------------------

constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

/// Goes down a region, band by band.
class TBandCursor {
 public:
  explicit TBandCursor(std::span<const TRect> rects) : rest_(rects) { FindBand(); }

  bool IsAtEnd() const { return rest_.empty(); }
  /// The rectangles that row `y` crosses.
  std::span<const TRect> At(std::int64_t y) const { return !IsAtEnd() && y >= rest_[0].Top ? Band() : rest_.first(0); }
  /// The first row below `y` from which something else may stand.
  std::int64_t NextChange(std::int64_t y) const {
    if (IsAtEnd()) return kNever;
    return y < rest_[0].Top ? rest_[0].Top : rest_[0].Bottom;
  }
  void MoveTo(std::int64_t y) {
    while (!IsAtEnd() && rest_[0].Bottom <= y) {
      rest_ = rest_.subspan(count_);
      FindBand();
    }
  }

 private:
  std::span<const TRect> Band() const { return rest_.first(count_); }
  void FindBand() {
    count_ = 0;
    while (count_ < rest_.size() && rest_[count_].Top == rest_[0].Top) ++count_;
  }

  std::span<const TRect> rest_;
  std::size_t count_ = 0;
};

/// Goes along one band, from edge to edge.
class TEdgeCursor {
 public:
  explicit TEdgeCursor(std::span<const TRect> band) : band_(band) {}

  bool IsInside() const { return edge_ % 2 != 0; }
  std::int64_t Next() const {
    if (edge_ == 2 * band_.size()) return kNever;
    const TRect& rect = band_[edge_ / 2];
    return IsInside() ? rect.Right : rect.Left;
  }
  void Pass(std::int64_t x) {
    if (Next() == x) ++edge_;
  }

 private:
  std::span<const TRect> band_;
  std::size_t edge_ = 0;
};

/// `keeps` tells whether a pixel belongs to the result, by whether it lies in each of the two.
template <class Keeps>
void CombineBand(TEdgeCursor a, TEdgeCursor b, Keeps keeps, TBands& result) {
  bool wasInside = false;
  std::int32_t left = 0;
  for (std::int64_t x = std::min(a.Next(), b.Next()); x != kNever; x = std::min(a.Next(), b.Next())) {
    a.Pass(x);
    b.Pass(x);
    const bool isInside = keeps(a.IsInside(), b.IsInside());
    if (isInside == wasInside) continue;
    if (wasInside) result.Add(left, static_cast<std::int32_t>(x));
    left = static_cast<std::int32_t>(x);
    wasInside = isInside;
  }
}

template <class Keeps>
std::vector<TRect> Combine(std::span<const TRect> first, std::span<const TRect> second, Keeps keeps) {
  TBandCursor a(first);
  TBandCursor b(second);
  TBands result;
  std::int64_t y = std::numeric_limits<std::int64_t>::min();
  for (;;) {
    const std::int64_t next = std::min(a.NextChange(y), b.NextChange(y));
    if (next == kNever) return result.Take();
    const auto rowsOfA = a.At(y);
    const auto rowsOfB = b.At(y);
    if (!rowsOfA.empty() || !rowsOfB.empty()) {
      result.Begin(static_cast<std::int32_t>(y), static_cast<std::int32_t>(next));
      CombineBand(TEdgeCursor(rowsOfA), TEdgeCursor(rowsOfB), keeps, result);
      result.End();
    }
    a.MoveTo(y = next);
    b.MoveTo(y);
  }
}

// -- Rounded corners --------------------------------------------------------------------------------------------------

/// A product of two numbers of 64 bits, its upper half first.
using TProduct = std::array<std::uint64_t, 2>;

TProduct Product(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kLow = 0xFFFFFFFF;
  const std::uint64_t low = (a & kLow) * (b & kLow);
  const std::uint64_t first = (a >> 32) * (b & kLow) + (low >> 32);
  const std::uint64_t second = (a & kLow) * (b >> 32) + (first & kLow);
  return {(a >> 32) * (b >> 32) + (first >> 32) + (second >> 32), second << 32 | (low & kLow)};
}

/// Half pixels from the middle of an ellipse `width` by `height` pixels, all below 2^32:
/// (x / width)^2 + (y / height)^2 <= 1 without rounding.
bool IsInEllipse(std::uint64_t x, std::uint64_t y, std::uint64_t width, std::uint64_t height) {
  return y <= height && Product(x * x, height * height) <= Product(width * width, (height - y) * (height + y));
}

/// How many pixels a corner takes away from each end of a row, whose middle lies `y` half pixels from the middle of the
/// corner's ellipse.
std::int64_t CutOfRow(std::int64_t y, std::int64_t width, std::int64_t height) {
  std::int64_t low = 0;
  std::int64_t high = width / 2;
  while (low < high) {
    const std::int64_t middle = (low + high) / 2;
    const auto x = static_cast<std::uint64_t>(width - 2 * middle - 1);
    if (IsInEllipse(x, static_cast<std::uint64_t>(y), static_cast<std::uint64_t>(width),
                    static_cast<std::uint64_t>(height)))
      high = middle;
    else
      low = middle + 1;
  }
  return low;
}

// -- Polygons ---------------------------------------------------------------------------------------------------------

/// A side of a polygon, from its upper to its lower end.
struct TSide {
  TPoint Upper;
  TPoint Lower;
  std::int32_t Turn;  ///< 1 for a side that was drawn downwards, else -1

  /// The first pixel of the row whose middle doesn't lie left of the side. With k rows from the upper end it is
  ///   X + ceil(((2k + h) * dx - h * dy) / 2dy),
  /// where h halves of a pixel lead from the points to the middles, and k * dx is taken apart so that all fits into 64
  /// bits.
  std::int64_t CrossingAt(std::int32_t row, TPolygonCorners corners) const {
    const std::int64_t h = corners == TPolygonCorners::kCorners ? 1 : 0;
    const std::int64_t dx = std::int64_t{Lower.X} - Upper.X;
    const std::int64_t dy = std::int64_t{Lower.Y} - Upper.Y;
    const std::int64_t k = std::int64_t{row} - Upper.Y;
    const std::int64_t whole = FloorDiv(dx, dy);
    const auto rest = static_cast<std::uint64_t>(k) * static_cast<std::uint64_t>(dx - whole * dy);  // below dy * dy
    const auto quotient = static_cast<std::int64_t>(rest / static_cast<std::uint64_t>(dy));
    const auto remainder = static_cast<std::int64_t>(rest % static_cast<std::uint64_t>(dy));
    return Upper.X + k * whole + quotient - FloorDiv(h * (dy - dx) - 2 * remainder, 2 * dy);
  }

 private:
  static std::int64_t FloorDiv(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }
};

struct TCrossing {
  std::int32_t X;
  std::int32_t Turn;
};

/// The sides that cross rows of `within`, by their upper ends.
std::vector<TSide> SidesOf(std::span<const TPoint> points, const TRect& within) {
  std::vector<TSide> sides;
  for (std::size_t i = 0; i < points.size(); ++i) {
    TSide side{points[i], points[(i + 1) % points.size()], 1};
    if (side.Lower.Y < side.Upper.Y) side = {side.Lower, side.Upper, -1};
    if (side.Upper.Y < side.Lower.Y && side.Lower.Y > within.Top && side.Upper.Y < within.Bottom) sides.push_back(side);
  }
  std::ranges::sort(sides, {}, [](const TSide& side) { return side.Upper.Y; });
  return sides;
}

/// Goes down the rows of a polygon.
class TPolygonScan {
 public:
  TPolygonScan(std::span<const TPoint> points, const TRect& within, TPolygonCorners corners)
      : within_(within), corners_(corners), sides_(SidesOf(points, within)) {}

  std::vector<TRect> Run() {
    if (sides_.empty()) return {};
    for (std::int32_t row = std::max(within_.Top, sides_[0].Upper.Y); row < within_.Bottom; ++row) {
      FindActive(row);
      if (active_.empty() && next_ == sides_.size()) break;
      Scan(row);
    }
    return bands_.Take();
  }

 private:
  void FindActive(std::int32_t row) {
    std::erase_if(active_, [row](const TSide& side) { return side.Lower.Y <= row; });
    for (; next_ < sides_.size() && sides_[next_].Upper.Y <= row; ++next_)
      if (sides_[next_].Lower.Y > row) active_.push_back(sides_[next_]);
  }

  void Scan(std::int32_t row) {
    crossings_.clear();
    for (const TSide& side : active_)
      crossings_.push_back({static_cast<std::int32_t>(
                                std::clamp<std::int64_t>(side.CrossingAt(row, corners_), within_.Left, within_.Right)),
                            side.Turn});
    std::ranges::sort(crossings_, {}, &TCrossing::X);
    bands_.Begin(row, row + 1);
    AddParts();
    bands_.End();
  }

  void AddParts() {
    std::int32_t winding = 0;
    std::int32_t left = 0;
    for (std::size_t i = 0; i < crossings_.size();) {
      const std::int32_t x = crossings_[i].X;
      const bool wasInside = winding != 0;
      for (; i < crossings_.size() && crossings_[i].X == x; ++i) winding += crossings_[i].Turn;
      if (wasInside && winding == 0) bands_.Add(left, x);
      if (!wasInside) left = x;
    }
  }

  const TRect within_;
  const TPolygonCorners corners_;
  const std::vector<TSide> sides_;
  std::size_t next_ = 0;
  std::vector<TSide> active_;
  std::vector<TCrossing> crossings_;
  TBands bands_;
};

}  // namespace

TRegion TRegion::OfRect(const TRect& rect) {
  TRegion region;
  if (!rect.IsEmpty()) region.rects_.push_back(rect);
  return region;
}

/// Joins halves, so that each rectangle takes part in few unions.
TRegion TRegion::OfRects(std::span<const TRect> rects) {
  if (rects.size() < 2) return rects.empty() ? TRegion() : OfRect(rects[0]);
  const std::size_t half = rects.size() / 2;
  return OfRects(rects.first(half)).United(OfRects(rects.subspan(half)));
}

TRegion TRegion::OfEllipse(const TRect& rect, const TRect& within) {
  constexpr std::int32_t kAll = std::numeric_limits<std::int32_t>::max();
  return OfRoundRect(rect, {kAll, kAll}, within);
}

TRegion TRegion::OfRoundRect(const TRect& rect, TSize corner, const TRect& within) {
  const TRect shown = rect.Intersected(within);
  if (shown.IsEmpty()) return {};
  const std::int64_t width = std::clamp<std::int64_t>(corner.Width, 0, std::int64_t{rect.Right} - rect.Left);
  const std::int64_t height = std::clamp<std::int64_t>(corner.Height, 0, std::int64_t{rect.Bottom} - rect.Top);
  TBands bands;
  for (std::int32_t row = shown.Top; row < shown.Bottom; ++row) {
    const std::int64_t fromEnd = 2 * std::min(std::int64_t{row} - rect.Top, std::int64_t{rect.Bottom} - 1 - row) + 1;
    const std::int64_t cut = fromEnd < height ? CutOfRow(height - fromEnd, width, height) : 0;
    const auto left = std::max<std::int64_t>(shown.Left, rect.Left + cut);
    const auto right = std::min<std::int64_t>(shown.Right, rect.Right - cut);
    bands.Begin(row, row + 1);
    if (left < right) bands.Add(static_cast<std::int32_t>(left), static_cast<std::int32_t>(right));
    bands.End();
  }
  return TRegion(bands.Take());
}

TRegion TRegion::OfPolygon(std::span<const TPoint> points, const TRect& within, TPolygonCorners corners) {
  if (within.IsEmpty()) return {};
  return TRegion(TPolygonScan(points, within, corners).Run());
}

TRegion TRegion::United(const TRegion& other) const {
  return TRegion(Combine(rects_, other.rects_, [](bool a, bool b) { return a || b; }));
}

TRegion TRegion::Intersected(const TRegion& other) const {
  return TRegion(Combine(rects_, other.rects_, [](bool a, bool b) { return a && b; }));
}

TRegion TRegion::Subtracted(const TRegion& other) const {
  return TRegion(Combine(rects_, other.rects_, [](bool a, bool b) { return a && !b; }));
}

TRegion TRegion::Moved(std::int32_t dx, std::int32_t dy) const {
  TRegion moved = *this;
  for (TRect& rect : moved.rects_) rect = rect.Moved(dx, dy);
  return moved;
}

bool TRegion::Contains(TPoint point) const {
  const auto isBefore = [point](const TRect& rect) {
    return rect.Bottom <= point.Y || (rect.Top <= point.Y && rect.Right <= point.X);
  };
  const auto found = std::ranges::partition_point(rects_, isBefore);
  return found != rects_.end() && found->Contains(point);
}

TRect TRegion::Bounds() const {
  if (IsEmpty()) return {};
  TRect bounds{rects_.front().Left, rects_.front().Top, rects_.front().Right, rects_.back().Bottom};
  for (const TRect& rect : rects_) {
    bounds.Left = std::min(bounds.Left, rect.Left);
    bounds.Right = std::max(bounds.Right, rect.Right);
  }
  return bounds;
}

}  // namespace vx
