#include "host/cairo/PixelPainter.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace vx {

namespace {

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) { return a / b - (a % b != 0 && (a < 0) != (b < 0) ? 1 : 0); }

bool IsFlat(TPoint from, TPoint to) { return std::abs(to.X - from.X) >= std::abs(to.Y - from.Y); }

/// A line as one coordinate over the other; ends in whichever order give the same pixels.
class TSlope {
 public:
  TSlope(TPoint from, TPoint to) : isFlat_(IsFlat(from, to)), from_(Turned(from)), to_(Turned(to)) {
    if (from_.X > to_.X) std::swap(from_, to_);
  }

  /// The pixel at `x` along the longer side.
  TPoint PixelAt(std::int32_t x) const {
    const std::int64_t length = std::int64_t{to_.X} - from_.X;
    const std::int64_t rise = std::int64_t{to_.Y} - from_.Y;
    const std::int64_t y = from_.Y + FloorDiv(2 * (std::int64_t{x} - from_.X) * rise + length, 2 * length);
    return Turned({x, static_cast<std::int32_t>(y)});
  }
  bool IsFlatter() const { return isFlat_; }
  std::int32_t First() const { return from_.X; }
  std::int32_t Last() const { return to_.X; }

 private:
  TPoint Turned(TPoint point) const { return isFlat_ ? point : TPoint{point.Y, point.X}; }

  bool isFlat_;
  TPoint from_;
  TPoint to_;
};

/// True if neither this rectangle of a clip nor one after it has a part of `target`.
bool IsBeyond(const TRect& clip, const TRect& target) {
  return clip.Top >= target.Bottom || (clip.Bottom >= target.Bottom && clip.Left >= target.Right);
}

}  // namespace

// -- Filling ----------------------------------------------------------------------------------------------------------

std::uint32_t TFilling::PixelAt(std::int32_t x, std::int32_t y) const {
  const auto isInk = [this](std::int32_t place) { return place % Period < Width; };
  const bool falling = Style == bsFDiagonal || Style == bsDiagCross;
  const bool rising = Style == bsBDiagonal || Style == bsDiagCross;
  const bool level = Style == bsHorizontal || Style == bsCross;
  const bool upright = Style == bsVertical || Style == bsCross;
  const bool inked = Style == bsSolid || (level && isInk(y)) || (upright && isInk(x)) ||
                     (falling && isInk(x + Period - y % Period)) || (rising && isInk(x + y));
  return inked ? Fore : Back;
}

/// The rectangles of the clip from the first that has a part of `target`, for bands lie below each other, and the
/// rectangles of one band from left to right.
std::span<const TRect> TPixelPainter::ClipFrom(const TRect& target) const {
  const auto first = std::ranges::partition_point(clip_, [&target](const TRect& rect) {
    return rect.Bottom <= target.Top || (rect.Top <= target.Top && rect.Right <= target.Left);
  });
  return clip_.subspan(static_cast<std::size_t>(first - clip_.begin()));
}

void TPixelPainter::Fill(const TRect& rect, std::uint32_t pixel) const {
  if (pixel == 0 || rect.IsEmpty()) return;
  for (const TRect& clip : ClipFrom(rect)) {
    if (IsBeyond(clip, rect)) break;
    const TRect part = clip.Intersected(rect);
    if (part.IsEmpty()) continue;
    for (std::int32_t y = part.Top; y < part.Bottom; ++y)
      std::fill_n(target_.RowAt(y) + (part.Left - target_.Bounds.Left), part.Width(), pixel);
  }
}

void TPixelPainter::Fill(const TRect& rect, const TFilling& filling) const {
  if (filling.Style == bsClear || rect.IsEmpty()) return;
  if (filling.Style == bsSolid) return Fill(rect, filling.Fore);
  for (const TRect& clip : ClipFrom(rect)) {
    if (IsBeyond(clip, rect)) break;
    const TRect part = clip.Intersected(rect);
    for (std::int32_t y = part.Top; y < part.Bottom; ++y) {
      std::uint32_t* const row = target_.RowAt(y) - target_.Bounds.Left;
      for (std::int32_t x = part.Left; x < part.Right; ++x)
        if (const std::uint32_t pixel = filling.PixelAt(x, y)) row[x] = pixel;
    }
  }
}

void TPixelPainter::Fill(const TRegion& region, const TFilling& filling) const {
  for (const TRect& rect : region.Rects()) Fill(rect, filling);
}

void TPixelPainter::Fill(const TRegion& region, std::uint32_t pixel) const {
  for (const TRect& rect : region.Rects()) Fill(rect, pixel);
}

TRegion OutlineOf(const TRegion& outer, const TRegion& inner) {
  TRegion core = outer;
  for (const TPoint by : {TPoint{1, 0}, TPoint{-1, 0}, TPoint{0, 1}, TPoint{0, -1}})
    core = core.Intersected(outer.Moved(by.X, by.Y));
  return outer.Subtracted(core.Intersected(inner));
}

// -- Lines ------------------------------------------------------------------------------------------------------------

void TPixelPainter::Frame(const TRect& rect, const TStroking& stroking) const {
  const std::int32_t width = stroking.Width;
  if (rect.IsEmpty() || width == 0) return;
  if (2 * width >= std::min(rect.Width(), rect.Height())) return Fill(rect, stroking.Fore);
  const std::int64_t across = rect.Width();
  const std::int64_t down = rect.Height() - width;
  Band({rect.Left, rect.Top, rect.Right, rect.Top + width}, kRight, 0, stroking);
  Band({rect.Right - width, rect.Top + width, rect.Right, rect.Bottom}, kDown, across, stroking);
  Band({rect.Left, rect.Bottom - width, rect.Right - width, rect.Bottom}, kLeft, across + down, stroking);
  Band({rect.Left, rect.Top + width, rect.Left + width, rect.Bottom - width}, kUp, 2 * across + down - width, stroking);
}

/// One upright or level stretch, whose dashes begin at `phase`.
void TPixelPainter::Band(const TRect& rect, TWay way, std::int64_t phase, const TStroking& stroking) const {
  if (stroking.Dashes.IsSolid()) return Fill(rect, stroking.Fore);
  const bool isLevel = way == kRight || way == kLeft;
  const TRect& bounds = target_.Bounds;
  const std::int32_t first = isLevel ? std::max(rect.Left, bounds.Left) : std::max(rect.Top, bounds.Top);
  const std::int32_t end = isLevel ? std::min(rect.Right, bounds.Right) : std::min(rect.Bottom, bounds.Bottom);
  for (std::int32_t at = first; at < end; ++at) {
    const std::int64_t along = way == kRight  ? at - rect.Left
                               : way == kDown ? at - rect.Top
                               : way == kLeft ? rect.Right - 1 - at
                                              : rect.Bottom - 1 - at;
    const TRect slice = isLevel ? TRect{at, rect.Top, at + 1, rect.Bottom} : TRect{rect.Left, at, rect.Right, at + 1};
    Fill(slice, stroking.PixelAt(phase + along));
  }
}

/// One pixel wide in any direction; `phase` is that of the pixel at `from`.
void TPixelPainter::Slope(TPoint from, TPoint to, std::int64_t phase, const TStroking& stroking) const {
  const TSlope slope(from, to);
  const TRect& bounds = target_.Bounds;
  const bool isFlat = slope.IsFlatter();
  const std::int32_t start = isFlat ? from.X : from.Y;
  const std::int32_t first = std::max(slope.First(), isFlat ? bounds.Left : bounds.Top);
  const std::int32_t last = std::min(slope.Last(), (isFlat ? bounds.Right : bounds.Bottom) - 1);
  for (std::int32_t at = first; at <= last; ++at) {
    const TPoint pixel = slope.PixelAt(at);
    Fill({pixel.X, pixel.Y, pixel.X + 1, pixel.Y + 1}, stroking.PixelAt(phase + std::abs(at - start)));
  }
}

TRect TPixelPainter::WithoutStart(TRect rect, TWay way, std::int32_t length) {
  switch (way) {
    case kRight:
      rect.Left += length;
      break;
    case kDown:
      rect.Top += length;
      break;
    case kLeft:
      rect.Right -= length;
      break;
    case kUp:
      rect.Bottom -= length;
      break;
  }
  return rect;
}

/// One part of a line; the first pixel of later parts has been drawn as the last one of the part before.
void TPixelPainter::Step(TPoint from, TPoint to, bool isFirst, std::int64_t phase, const TStroking& stroking) const {
  const std::int32_t width = stroking.Width;
  if (from.X != to.X && from.Y != to.Y) return Slope(from, to, phase, stroking);
  const TWay way = to.X > from.X ? kRight : to.X < from.X ? kLeft : to.Y > from.Y ? kDown : kUp;
  const TRect whole{std::min(from.X, to.X), std::min(from.Y, to.Y), std::max(from.X, to.X) + width,
                    std::max(from.Y, to.Y) + width};
  if (isFirst) return Band(whole, way, phase, stroking);
  Band(WithoutStart(whole, way, width), way, phase + width, stroking);
}

void TPixelPainter::Polyline(std::span<const TPoint> points, const TStroking& stroking) const {
  if (points.size() == 1) Step(points[0], points[0], true, 0, stroking);
  std::int64_t phase = 0;
  for (std::size_t i = 1; i < points.size(); ++i) {
    const TPoint from = points[i - 1];
    const TPoint to = points[i];
    Step(from, to, i == 1, phase, stroking);
    phase += std::max(std::abs(to.X - from.X), std::abs(to.Y - from.Y));
  }
}

}  // namespace vx
