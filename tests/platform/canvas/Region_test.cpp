#include "platform/canvas/Region.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <ostream>
#include <random>
#include <utility>
#include <vector>

namespace vx {
namespace {

constexpr std::int32_t kSide = 40;
constexpr TRect kWindow{0, 0, kSide, kSide};
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

/// The plain way: a field for each pixel.
struct TGrid {
  std::array<std::array<bool, kSide>, kSide> Rows{};

  bool operator==(const TGrid&) const = default;
  friend void PrintTo(const TGrid& grid, std::ostream* out) {
    for (const auto& row : grid.Rows) {
      *out << '\n';
      for (const bool isIn : row) *out << (isIn ? '#' : '.');
    }
  }
};

template <class Holds>
TGrid GridOf(Holds holds) {
  TGrid grid;
  for (std::int32_t y = 0; y < kSide; ++y)
    for (std::int32_t x = 0; x < kSide; ++x)
      grid.Rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = holds(TPoint{x, y});
  return grid;
}
bool Holds(const TGrid& grid, TPoint p) {
  return grid.Rows[static_cast<std::size_t>(p.Y)][static_cast<std::size_t>(p.X)];
}

/// The region of a grid, row by row: by what OfRect and United do alone.
TRegion RegionOf(const TGrid& grid) {
  TRegion region;
  for (std::int32_t y = kSide; y-- > 0;)
    for (std::int32_t x = 0; x < kSide; ++x)
      if (Holds(grid, {x, y})) region = region.United(TRegion::OfRect({x, y, x + 1, y + 1}));
  return region;
}

/// Disjoint, in bands from top to bottom, all within `bounds`; and then what they cover.
TGrid CheckedGrid(const TRegion& region) {
  TGrid grid;
  const TRect* last = nullptr;
  for (const TRect& rect : region.Rects()) {
    EXPECT_FALSE(rect.IsEmpty());
    EXPECT_TRUE(region.Bounds().Encloses(rect) && kWindow.Encloses(rect));
    if (last != nullptr) {
      const bool follows = last->Top == rect.Top && last->Bottom == rect.Bottom && last->Right < rect.Left;
      EXPECT_TRUE(follows || last->Bottom <= rect.Top);
    }
    last = &rect;
    for (std::int32_t y = rect.Top; y < rect.Bottom; ++y)
      for (std::int32_t x = rect.Left; x < rect.Right; ++x)
        grid.Rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = true;
  }
  return grid;
}

using TRandom = std::mt19937;
std::int32_t From(TRandom& random, std::int32_t low, std::int32_t high) {
  return std::uniform_int_distribution(low, high)(random);
}
TPoint RandomPoint(TRandom& random) { return {From(random, -5, 45), From(random, -5, 45)}; }
TRect RandomRect(TRandom& random) {
  return TRect::At(RandomPoint(random), {From(random, -1, 30), From(random, -1, 30)});
}

bool IsInEllipse(const TRect& rect, TPoint p) {
  const std::int64_t x = 2 * p.X + 1 - rect.Left - rect.Right;
  const std::int64_t y = 2 * p.Y + 1 - rect.Top - rect.Bottom;
  const std::int64_t w = rect.Width();
  const std::int64_t h = rect.Height();
  return rect.Contains(p) && x * x * h * h + y * y * w * w <= w * w * h * h;
}

/// Cut off is what lies in the quarter at a corner, outside of the ellipse there.
bool IsInRoundRect(const TRect& rect, TSize corner, TPoint p) {
  if (!rect.Contains(p)) return false;
  const std::int32_t width = std::clamp(corner.Width, 0, rect.Width());
  const std::int32_t height = std::clamp(corner.Height, 0, rect.Height());
  const std::int32_t x = std::min(p.X - rect.Left, rect.Right - 1 - p.X);  // from the nearest corner
  const std::int32_t y = std::min(p.Y - rect.Top, rect.Bottom - 1 - p.Y);
  const bool isInQuarter = 2 * x + 1 < width && 2 * y + 1 < height;
  return !isInQuarter || IsInEllipse({0, 0, width, height}, {x, y});
}

/// How often the sides left of the pixel's middle, or through it, go round it.
bool IsInPolygon(std::span<const TPoint> points, TPoint p, TPolygonCorners corners = TPolygonCorners::kCorners) {
  const int half = corners == TPolygonCorners::kCorners ? 1 : 0;
  int winding = 0;
  for (std::size_t i = 0; i < points.size(); ++i) {
    TPoint upper = points[i];
    TPoint lower = points[(i + 1) % points.size()];
    const int turn = upper.Y < lower.Y ? 1 : -1;
    if (turn < 0) std::swap(upper, lower);
    if (p.Y < upper.Y || p.Y >= lower.Y) continue;
    const std::int64_t dy = lower.Y - upper.Y;
    if ((2 * p.Y + half - 2 * upper.Y) * std::int64_t{lower.X - upper.X} <= (2 * p.X + half - 2 * upper.X) * dy)
      winding += turn;
  }
  return winding != 0;
}

struct TShape {
  TRegion Region;
  TGrid Grid;
};

TShape RandomShape(TRandom& random) {
  const TRect rect = RandomRect(random);
  const TSize corner{From(random, -1, 25), From(random, -1, 25)};
  std::vector<TPoint> points(static_cast<std::size_t>(From(random, 0, 9)));
  for (TPoint& point : points) point = RandomPoint(random);
  constexpr auto kMiddles = TPolygonCorners::kMiddles;
  switch (From(random, 0, 4)) {
    case 0:
      return {TRegion::OfRect(rect.Intersected(kWindow)), GridOf([&](TPoint p) { return rect.Contains(p); })};
    case 1:
      return {TRegion::OfEllipse(rect, kWindow), GridOf([&](TPoint p) { return IsInEllipse(rect, p); })};
    case 2:
      return {TRegion::OfRoundRect(rect, corner, kWindow),
              GridOf([&](TPoint p) { return IsInRoundRect(rect, corner, p); })};
    case 3:
      return {TRegion::OfPolygon(points, kWindow, kMiddles),
              GridOf([&](TPoint p) { return IsInPolygon(points, p, kMiddles); })};
    default:
      return {TRegion::OfPolygon(points, kWindow), GridOf([&](TPoint p) { return IsInPolygon(points, p); })};
  }
}

TEST(Region, ShapesAndSetsAreThoseOfThePlainPixels) {
  TRandom random(7);
  for (int round = 0; round < 1000; ++round) {
    const TShape a = RandomShape(random);
    const TShape b = RandomShape(random);
    ASSERT_EQ(CheckedGrid(a.Region), a.Grid) << round;
    const TRegion both = a.Region.Intersected(b.Region);
    const TRegion rest = a.Region.Subtracted(b.Region);
    const TRegion either = both.United(b.Region).United(rest);
    const auto isIn = [](const TGrid& grid) { return [&grid](TPoint p) { return Holds(grid, p); }; };
    const auto inA = isIn(a.Grid);
    const auto inB = isIn(b.Grid);
    ASSERT_EQ(CheckedGrid(both), GridOf([&](TPoint p) { return inA(p) && inB(p); })) << round;
    ASSERT_EQ(CheckedGrid(rest), GridOf([&](TPoint p) { return inA(p) && !inB(p); })) << round;
    ASSERT_EQ(CheckedGrid(either), GridOf([&](TPoint p) { return inA(p) || inB(p); })) << round;
    ASSERT_EQ(GridOf([&](TPoint p) { return either.Contains(p); }), CheckedGrid(either)) << round;
    ASSERT_EQ(either, a.Region.United(b.Region)) << "equal sets have equal rectangles";
    ASSERT_EQ(either.Moved(3, -4).Moved(-3, 4), either);
    if (round % 50 != 0) continue;
    ASSERT_EQ(RegionOf(CheckedGrid(either)), either) << round;
  }
}

TEST(Region, BoundsHoldAllPixelsAndNoMore) {
  const TRegion region = TRegion::OfRect({5, 9, 7, 10}).United(TRegion::OfRect({-2, 3, 1, 4}));
  EXPECT_EQ(region.Bounds(), (TRect{-2, 3, 7, 10}));
  EXPECT_EQ(region.Moved(2, 1).Bounds(), (TRect{0, 4, 9, 11}));
  EXPECT_EQ(TRegion().Bounds(), TRect{});
  EXPECT_FALSE(TRegion().Contains({0, 0}));
}

TEST(Region, OfAbsurdCoordinatesIsStillExact) {
  const TRegion all = TRegion::OfRect({kMin, kMin, kMax, kMax});
  EXPECT_EQ(all.Subtracted(TRegion::OfRect({0, 0, 1, 1})).Rects().size(), 4u);
  EXPECT_EQ(all.Intersected(TRegion::OfRect(kWindow)), TRegion::OfRect(kWindow));
  EXPECT_EQ(TRegion::OfEllipse({kMin, kMin, kMax, kMax}, kWindow), TRegion::OfRect(kWindow));
  EXPECT_EQ(TRegion::OfRoundRect({kMin, kMin, kMax, kMax}, {kMax, kMax}, kWindow), TRegion::OfRect(kWindow));

  const TPoint below[] = {{kMin, kMin}, {kMax, kMax}, {kMin, kMax}};
  EXPECT_EQ(CheckedGrid(TRegion::OfPolygon(below, kWindow)), GridOf([](TPoint p) { return p.X < p.Y; }));

  // At three quarters of the way round, a circle so large is a straight line.
  constexpr std::int32_t kUnit = 1 << 27;
  const TRect window = kWindow.Moved(3 * kUnit - kSide / 2, 4 * kUnit - kSide / 2);
  const TRegion rim = TRegion::OfEllipse({-5 * kUnit, -5 * kUnit, 5 * kUnit, 5 * kUnit}, window);
  EXPECT_EQ(CheckedGrid(rim.Moved(-window.Left, -window.Top)),
            GridOf([](TPoint p) { return 3 * (p.X - kSide / 2) + 4 * (p.Y - kSide / 2) < -3; }));
}

TEST(Region, OfAWedgeIsTheSameHoweverFarItsPointsAre) {
  for (std::int32_t i = 0; i < 8 * 8 * 8 * 8; ++i) {
    const auto wedge = [i](std::int32_t scale) {
      const TPoint points[] = {
          {0, 0}, {(i % 8 - 4) * scale, (i / 8 % 8 - 4) * scale}, {(i / 64 % 8 - 4) * scale, (i / 512 - 4) * scale}};
      return TRegion::OfPolygon(points, kWindow.Moved(-20, -20));
    };
    ASSERT_EQ(wedge(1 << 29), wedge(1000)) << i;
  }
}

TEST(Region, OverlapsOfAPolygonBelongToItUnlessTheyTurnBack) {
  const TPoint pentagram[] = {{20, 0}, {32, 38}, {0, 14}, {40, 14}, {8, 38}};
  EXPECT_TRUE(TRegion::OfPolygon(pentagram, kWindow).Contains({20, 20}));
  const TPoint ring[] = {{0, 0}, {9, 0}, {9, 9}, {0, 9}, {0, 0}, {3, 3}, {3, 6}, {6, 6}, {6, 3}, {3, 3}};
  EXPECT_EQ(TRegion::OfPolygon(ring, kWindow), TRegion::OfRect({0, 0, 9, 9}).Subtracted(TRegion::OfRect({3, 3, 6, 6})));
}

}  // namespace
}  // namespace vx
