#include "host/cairo/PixelGrid.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vx {

namespace {

/// The same on both sides of zero: what is moved by whole pixels keeps its shape.
double Rounded(double place) { return std::floor(place + 0.5); }

std::int32_t WholeOf(double length, std::int32_t least) {
  return std::max(least, static_cast<std::int32_t>(std::round(length)));
}

bool AreWithin(std::span<const TDot> dots, double reach) {
  return std::ranges::all_of(dots, [reach](TDot dot) { return std::abs(dot.X) <= reach && std::abs(dot.Y) <= reach; });
}

/// One of the four lines that bound what can be reached: `Sign` times the coordinate is at most `Reach`.
struct TBound {
  double TDot::*Coordinate;
  double Sign;
  double Reach;

  double Excess(TDot dot) const { return Sign * (dot.*Coordinate) - Reach; }
  /// Where a line crosses, whose ends lie on different sides.
  TDot Crossing(TDot from, TDot to) const {
    const double share = Excess(from) / (Excess(from) - Excess(to));
    TDot dot{from.X + share * (to.X - from.X), from.Y + share * (to.Y - from.Y)};
    dot.*Coordinate = Sign * Reach;
    return dot;
  }
};
constexpr std::array<TBound, 4> BoundsOf(double reach) {
  return {{{&TDot::X, 1, reach}, {&TDot::X, -1, reach}, {&TDot::Y, 1, reach}, {&TDot::Y, -1, reach}}};
}

/// What is left of a line, if anything.
std::optional<std::array<TDot, 2>> Shortened(TDot from, TDot to, double reach) {
  for (const TBound& bound : BoundsOf(reach)) {
    const bool isFromIn = bound.Excess(from) <= 0;
    const bool isToIn = bound.Excess(to) <= 0;
    if (!isFromIn && !isToIn) return std::nullopt;
    if (!isFromIn)
      from = bound.Crossing(from, to);
    else if (!isToIn)
      to = bound.Crossing(from, to);
  }
  return std::array{from, to};
}

std::vector<TDot> Cut(std::span<const TDot> polygon, const TBound& bound) {
  std::vector<TDot> kept;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const TDot& from = polygon[i];
    const TDot& to = polygon[(i + 1) % polygon.size()];
    const bool isIn = bound.Excess(from) <= 0;
    if (isIn) kept.push_back(from);
    if (isIn != (bound.Excess(to) <= 0)) kept.push_back(bound.Crossing(from, to));
  }
  return kept;
}

}  // namespace

// -- Dashes -----------------------------------------------------------------------------------------------------------

TDashes::TDashes(std::span<const std::int32_t> lengths) : count_(lengths.size()) {
  std::ranges::copy(lengths, lengths_.begin());
  for (const std::int32_t length : lengths) period_ += length;
}

bool TDashes::IsInked(std::int64_t at) const {
  if (IsSolid()) return true;
  at %= period_;
  std::size_t i = 0;
  for (; i + 1 < count_ && at >= lengths_[i]; ++i) at -= lengths_[i];
  return i % 2 == 0;
}

TDashes TPixelGrid::DashesOf(const TPenData& pen) const {
  if (pen.Style == psAlternate) {
    const auto dot = static_cast<std::int32_t>(WidthOf(pen));
    return TDashes(std::array{dot, dot});
  }
  constexpr std::array<double, 6> kPattern{3, 2, 1, 2, 1, 2};  // a style uses some of them
  constexpr struct { std::size_t First, Count; } kUsed[] = {{0, 0}, {0, 2}, {2, 2}, {0, 4}, {0, 6}, {0, 0}, {0, 0}};
  const double unit = std::max(WidthOf(pen), 1.5 * scale_);  // dashes of a thin line are longer than it is wide
  std::array<std::int32_t, 6> lengths{};
  const auto [first, count] = kUsed[pen.Style];
  for (std::size_t i = 0; i < count; ++i) lengths[i] = WholeOf(kPattern[first + i] * unit, 1);
  return TDashes(std::span(lengths).first(count));
}

// -- The grid ---------------------------------------------------------------------------------------------------------

double TPixelGrid::Edge(std::int32_t pixel) const { return std::clamp(Rounded(pixel * scale_), -kFarOut, kFarOut); }

double TPixelGrid::Centre(std::int32_t pixel, double width) const {
  if (width == 0) return Rounded(pixel * scale_);  // what has no outline covers what FillRect would
  const double middle = (pixel + 0.5) * scale_;
  return std::fmod(width, 2) == 1 ? std::floor(middle) + 0.5 : Rounded(middle);
}

std::vector<TDot> TPixelGrid::DotsOf(std::span<const TPoint> points, double width) const {
  std::vector<TDot> dots;
  dots.reserve(points.size());
  for (const TPoint& point : points) dots.push_back(Centre(point, width));
  return dots;
}

TRect TPixelGrid::ImageRect(const TRect& rect) const {
  const auto edge = [this](std::int32_t pixel) { return static_cast<std::int32_t>(Edge(pixel)); };
  return {edge(rect.Left), edge(rect.Top), edge(rect.Right), edge(rect.Bottom)};
}

double TPixelGrid::WidthOf(const TPenData& pen) const {
  if (pen.Style == psClear) return 0;
  const std::int32_t width = IsThin(pen) ? 1 : std::min(pen.Width, kWidestPen);
  return std::max(1.0, std::round(width * scale_));
}

std::int32_t TPixelGrid::HatchPeriod() const { return WholeOf(8 * scale_, 2); }
std::int32_t TPixelGrid::HatchWidth() const { return WholeOf(scale_, 1); }

// -- Far away ---------------------------------------------------------------------------------------------------------

std::vector<TDot> WithinReach(std::vector<TDot> polygon, double reach) {
  if (AreWithin(polygon, reach)) return polygon;
  for (const TBound& bound : BoundsOf(reach)) polygon = Cut(polygon, bound);
  return polygon;
}

std::vector<std::vector<TDot>> PartsWithinReach(std::vector<TDot> line, double reach) {
  if (AreWithin(line, reach)) return {std::move(line)};
  std::vector<std::vector<TDot>> parts;
  for (std::size_t i = 1; i < line.size(); ++i) {
    const auto part = Shortened(line[i - 1], line[i], reach);
    if (!part) continue;
    const auto& [from, to] = *part;
    const bool continues = !parts.empty() && parts.back().back().X == from.X && parts.back().back().Y == from.Y;
    if (!continues) parts.push_back({from});
    parts.back().push_back(to);
  }
  return parts;
}

}  // namespace vx
