#include "host/cairo/FastLines.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vx {

namespace {

constexpr std::size_t kFewestPoints = 64;
/// Wider lines have few points that matter, and round corners that cover much.
constexpr std::int32_t kWidest = 8;
/// As Cairo has it: a corner is pointed up to this ratio of its length to the width of the line.
constexpr double kMiterLimit = 1.5;
/// What is smaller can't be seen; in pixels.
constexpr double kSmallest = 1.0 / 128;

bool IsSame(TDot a, TDot b) { return a.X == b.X && a.Y == b.Y; }
bool IsAligned(TDot a, TDot b) { return a.X == b.X || a.Y == b.Y; }
TDot Sum(TDot a, TDot b) { return {a.X + b.X, a.Y + b.Y}; }
TDot Difference(TDot a, TDot b) { return {a.X - b.X, a.Y - b.Y}; }
TDot Times(TDot a, double factor) { return {a.X * factor, a.Y * factor}; }

/// One pixel long.
TDot DirectionOf(TDot from, TDot to) {
  const TDot way = Difference(to, from);
  return Times(way, 1 / std::sqrt(way.X * way.X + way.Y * way.Y));
}

/// A quarter to the right of where it points.
TDot Turned(TDot direction) { return {-direction.Y, direction.X}; }

/// The pixels that a line reaches.
TRect BoundsOf(std::span<const TDot> dots, double margin) {
  const auto [left, right] = std::ranges::minmax(dots, {}, &TDot::X);
  const auto [top, bottom] = std::ranges::minmax(dots, {}, &TDot::Y);
  return {static_cast<std::int32_t>(std::floor(left.X - margin)), static_cast<std::int32_t>(std::floor(top.Y - margin)),
          static_cast<std::int32_t>(std::ceil(right.X + margin)),
          static_cast<std::int32_t>(std::ceil(bottom.Y + margin))};
}

TRect United(const TRect& a, const TRect& b) {
  if (a.IsEmpty()) return b;
  return {std::min(a.Left, b.Left), std::min(a.Top, b.Top), std::max(a.Right, b.Right), std::max(a.Bottom, b.Bottom)};
}

template <class Take>
void EachStretch(const std::vector<std::vector<TDot>>& parts, Take take) {
  for (const std::vector<TDot>& line : parts)
    for (std::size_t i = 1; i < line.size(); ++i) take(line[i - 1], line[i]);
}

/// The places of a pixel that a round pen covers, whose middle lies `middle` from the pixel's top left.
std::uint64_t PlacesOfRound(TDot middle, double radius) {
  std::uint64_t places = 0;
  for (std::int32_t bit = 0; bit < 64; ++bit) {
    const TDot by = Difference(TRowCoverage::PlaceOf(bit), middle);
    if (by.X * by.X + by.Y * by.Y < radius * radius) places |= std::uint64_t{1} << bit;
  }
  return places;
}

}  // namespace

bool TFastLines::Takes(std::size_t count, const TStroking& stroking) {
  return count >= kFewestPoints && stroking.Width > 0 && stroking.Width <= kWidest && stroking.Dashes.IsSolid();
}

void TFastLines::Stroke(std::vector<std::vector<TDot>> parts, const TStroking& stroking, bool isThin,
                        const TPixelTarget& target) {
  half_ = stroking.Width / 2.0;
  TRect bounds;
  for (std::vector<TDot>& line : parts) {
    line.erase(std::unique(line.begin(), line.end(), IsSame), line.end());
    if (isThin) MakeEndsSquare(line);
    bounds = United(bounds, BoundsOf(line, stroking.Width));
  }
  coverage_.Begin(bounds.Intersected(target.Clip.Bounds()));
  EachStretch(parts, [this](TDot from, TDot to) {
    if (IsAligned(from, to)) AddAligned(from, to);
  });
  EachStretch(parts, [this](TDot from, TDot to) {
    if (!IsAligned(from, to)) AddSlanted(from, to);
  });
  for (const std::vector<TDot>& line : parts) {
    if (!isThin) AddRounds(line, stroking.Width);
    for (std::size_t i = 2; isThin && i < line.size(); ++i) AddCorner(line[i - 2], line[i - 1], line[i]);
  }
  coverage_.Paint(target, stroking.Fore);
}

void TFastLines::MakeEndsSquare(std::vector<TDot>& line) const {
  if (line.size() == 1) {
    line = {Sum(line[0], {-half_, 0}), Sum(line[0], {half_, 0})};
    return;
  }
  const std::size_t last = line.size() - 1;
  const TDot back = DirectionOf(line[1], line[0]);
  const TDot ahead = DirectionOf(line[last - 1], line[last]);
  line[0] = Sum(line[0], Times(back, half_));
  line[last] = Sum(line[last], Times(ahead, half_));
}

/// An upright or level stretch: its whole pixels, and the halves of those that it ends in the middle of.
void TFastLines::AddAligned(TDot from, TDot to) {
  const TDot margin = from.X == to.X ? TDot{half_, 0} : TDot{0, half_};
  const TDot least = Difference({std::min(from.X, to.X), std::min(from.Y, to.Y)}, margin);
  const TDot most = Sum({std::max(from.X, to.X), std::max(from.Y, to.Y)}, margin);
  const TRect whole{static_cast<std::int32_t>(std::ceil(least.X)), static_cast<std::int32_t>(std::ceil(least.Y)),
                    static_cast<std::int32_t>(std::floor(most.X)), static_cast<std::int32_t>(std::floor(most.Y))};
  coverage_.AddRect(whole);
  using C = TRowCoverage;
  if (least.Y < whole.Top) coverage_.AddPixels({whole.Left, whole.Top - 1, whole.Right, whole.Top}, C::kLowerHalf);
  if (most.Y > whole.Bottom)
    coverage_.AddPixels({whole.Left, whole.Bottom, whole.Right, whole.Bottom + 1}, C::kUpperHalf);
  if (least.X < whole.Left) coverage_.AddPixels({whole.Left - 1, whole.Top, whole.Left, whole.Bottom}, C::kRightHalf);
  if (most.X > whole.Right) coverage_.AddPixels({whole.Right, whole.Top, whole.Right + 1, whole.Bottom}, C::kLeftHalf);
}

void TFastLines::AddSlanted(TDot from, TDot to) {
  const TDot across = Times(Turned(DirectionOf(from, to)), half_);
  coverage_.AddShape(std::array{Sum(from, across), Sum(to, across), Difference(to, across), Difference(from, across)});
}

/// What a corner has on its outer side: a tip, or a straight cut where that would be long.
void TFastLines::AddCorner(TDot before, TDot at, TDot after) {
  const TDot in = DirectionOf(before, at);
  const TDot out = DirectionOf(at, after);
  const double sine = in.X * out.Y - in.Y * out.X;
  const double cosine = in.X * out.X + in.Y * out.Y;
  if (std::abs(sine) * half_ * half_ / 2 < kSmallest) return;
  const double outwards = sine > 0 ? -half_ : half_;
  const TDot first = Times(Turned(in), outwards);
  const TDot second = Times(Turned(out), outwards);
  if (2 > kMiterLimit * kMiterLimit * (1 + cosine))
    return coverage_.AddShape(std::array{at, Sum(at, first), Sum(at, second)});
  const TDot tip = Times(Sum(first, second), 1 / (1 + cosine));
  coverage_.AddShape(std::array{at, Sum(at, first), Sum(at, tip), Sum(at, second)});
}

/// Round ends and corners. The pen stands on whole pixels at every point.
void TFastLines::AddRounds(std::span<const TDot> line, std::int32_t width) {
  std::array<std::uint64_t, kWidest * kWidest> stamp;
  for (std::int32_t i = 0; i < width * width; ++i)
    stamp[static_cast<std::size_t>(i)] = PlacesOfRound({half_ - i % width, half_ - i / width}, half_);
  for (const TDot& dot : line) {
    const TPoint corner{static_cast<std::int32_t>(std::floor(dot.X - half_)),
                        static_cast<std::int32_t>(std::floor(dot.Y - half_))};
    if (coverage_.IsCovered(TRect::At(corner, {width, width}))) continue;
    for (std::int32_t i = 0; i < width * width; ++i)
      coverage_.AddPixel({corner.X + i % width, corner.Y + i / width}, stamp[static_cast<std::size_t>(i)]);
  }
}

}  // namespace vx
