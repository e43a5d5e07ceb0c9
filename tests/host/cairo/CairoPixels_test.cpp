// Pictures without antialiasing against plain arithmetic, and what is crisp in every picture.
#include <gtest/gtest.h>

#include <vector>

#include "PixelKit.h"
#include "platform/canvas/Canvas.h"

namespace vx {
namespace {

using test::IsOnLine;
using test::Pixels;
using test::PixelsOf;
using test::Winding;

constexpr TSize kSize{26, 19};
constexpr TInk kLine{{clBlack, 1}, {clBlack, bsClear}};
constexpr TInk kSolid{{clBlack, 1, psClear}, {clBlack, bsSolid}};
constexpr TInk kBoth{{clBlack, 1}, {clBlack, bsSolid}};

TCairoDevice Plain() { return TCairoDevice(kSize, TCairoOptions{.Antialias = false}); }

TEST(CairoPixels, OfLinesArePlainArithmetic) {
  test::TRandom random(1);
  for (int i = 0; i < 2000; ++i) {
    const std::array line{random.Point(kSize), random.Point(kSize)};
    SCOPED_TRACE(testing::PrintToString(i));
    auto device = Plain();
    device.Polyline(line, kLine);
    ASSERT_EQ(Pixels(device), PixelsOf(kSize, [&](TPoint p) { return IsOnLine(p, line[0], line[1]); }));
    auto reversed = Plain();
    reversed.Polyline(std::array{line[1], line[0]}, kLine);
    ASSERT_EQ(Pixels(device), Pixels(reversed));
  }
}

TEST(CairoPixels, OfPolygonsArePlainArithmetic) {
  test::TRandom random(2);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(testing::PrintToString(i));
    const auto points = random.Points(random.Between(1, 7), kSize);
    const auto isOnEdge = [&](TPoint p) {
      for (std::size_t k = 0; k < points.size(); ++k)
        if (IsOnLine(p, points[k], points[(k + 1) % points.size()])) return true;
      return false;
    };
    auto outlined = Plain();
    outlined.Polygon(points, kBoth);
    ASSERT_EQ(Pixels(outlined), PixelsOf(kSize, [&](TPoint p) { return isOnEdge(p) || Winding(p, points) != 0; }));
    auto edge = Plain();
    edge.Polygon(points, kLine);
    ASSERT_EQ(Pixels(edge), PixelsOf(kSize, isOnEdge));
    // Without an outline the points are corners of pixels.
    std::vector<TPoint> doubled;
    for (const TPoint p : points) doubled.push_back({2 * p.X, 2 * p.Y});
    auto filled = Plain();
    filled.Polygon(points, kSolid);
    ASSERT_EQ(Pixels(filled), PixelsOf(kSize, [&](TPoint p) {
                return Winding({2 * p.X + 1, 2 * p.Y + 1}, doubled) != 0;
              }));
  }
}

TEST(CairoPixels, OfRectanglesArePlainArithmeticSmoothedOrNot) {
  test::TRandom random(3);
  for (int i = 0; i < 1000; ++i) {
    SCOPED_TRACE(testing::PrintToString(i));
    const TRect rect = random.Rect(kSize);
    const std::int32_t width = random.Between(1, 5);
    TCairoDevice device(kSize, TCairoOptions{.Antialias = i % 2 == 0});
    device.Rectangle(rect, {{clBlack, width}, {clBlack, bsClear}});
    const TRect within = rect.Inflated(-width, -width);
    ASSERT_EQ(Pixels(device), PixelsOf(kSize, [&](TPoint p) { return rect.Contains(p) && !within.Contains(p); }));
    device.FillRect(rect, kSolid);
    ASSERT_EQ(Pixels(device), PixelsOf(kSize, [&](TPoint p) { return rect.Contains(p); }));
  }
}

/// What a neighbour of an inked pixel may say.
bool IsBlack(const TCairoDevice& device, TPoint p) {
  return TRect::At({}, device.ImageSize()).Contains(p) && device.PixelAt(p) == clBlack;
}

TEST(CairoPixels, OfEllipsesAreSymmetricTouchAllSidesAndHaveAClosedOutline) {
  for (std::int32_t width = 1; width <= 24; ++width)
    for (std::int32_t height = 1; height <= 16; ++height) {
      SCOPED_TRACE(std::to_string(width) + " by " + std::to_string(height));
      const TRect rect = TRect::At({1, 1}, {width, height});
      auto device = Plain();
      device.Ellipse(rect, kLine);
      bool touches[4] = {};
      for (std::int32_t y = 0; y < kSize.Height; ++y)
        for (std::int32_t x = 0; x < kSize.Width; ++x) {
          const bool inked = IsBlack(device, {x, y});
          if (!inked) continue;
          ASSERT_TRUE(rect.Contains({x, y}));
          ASSERT_TRUE(IsBlack(device, {width + 1 - x, y}) && IsBlack(device, {x, height + 1 - y}));
          touches[0] |= x == 1;
          touches[1] |= y == 1;
          touches[2] |= x == width;
          touches[3] |= y == height;
        }
      const bool isSliver = width * width < height || height * height < width;  // no middle in the last row
      ASSERT_TRUE(isSliver || (touches[0] && touches[1] && touches[2] && touches[3]));
      // Filled in another colour, no pixel of the inside is a neighbour of the ground.
      auto filled = Plain();
      filled.Ellipse(rect, {{clBlack, 1}, {clRed, bsSolid}});
      for (std::int32_t y = 1; y <= height; ++y)
        for (std::int32_t x = 1; x <= width; ++x)
          if (filled.PixelAt({x, y}) == clRed) {
            for (const TPoint by : {TPoint{1, 0}, {-1, 0}, {0, 1}, {0, -1}})
              ASSERT_NE(filled.PixelAt({x + by.X, y + by.Y}), clWhite);
          }
    }
}

/// Any primitive with any pen and brush; what Cairo draws, whose pixels hang on the clip a little, on demand only.
void DrawAny(ICanvasDevice& device, test::TRandom random, TPenMode mode, bool isPlain = false) {
  const auto style = isPlain ? psSolid : static_cast<TPenStyle>(random.Below(psAlternate + 1));
  const TInk ink{{clNavy, isPlain ? 1 : random.Between(1, 4), style, mode},
                 {clYellow, static_cast<TBrushStyle>(random.Below(bsDiagCross + 1))},
                 random.Below(2) == 0 ? clNone : clLime};
  const TRect rect = random.Rect(kSize);
  const TArc arc{1.0 * random.Below(360), 1.0 * random.Between(-300, 300)};
  switch (random.Below(isPlain ? 6 : 7)) {
    case 0:
      return device.Rectangle(rect, ink);
    case 1:
      return device.RoundRect(rect, {random.Below(12), random.Below(12)}, ink);
    case 2:
      return device.Ellipse(rect, ink);
    case 3:
      return device.FillRect(rect, ink);
    case 4:
      return device.Polygon(random.Points(random.Between(1, 6), kSize), ink);
    case 5:
      return device.Polyline(random.Points(random.Between(1, 6), kSize), ink);
    default:
      return device.Arc(rect, arc, static_cast<TArcShape>(random.Below(3)), ink);
  }
}

TEST(CairoPixels, OfAClipAreThoseOfThePictureWithoutIt) {
  for (std::uint32_t seed = 1; seed <= 600; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    test::TRandom random(seed);
    const TRegion clip = random.Region(kSize);
    auto whole = Plain();
    DrawAny(whole, random, pmCopy, true);
    auto clipped = Plain();
    clipped.SaveClip();
    clipped.IntersectClip(clip);
    DrawAny(clipped, random, pmCopy, true);
    clipped.RestoreClip();
    for (std::int32_t y = 0; y < kSize.Height; ++y)
      for (std::int32_t x = 0; x < kSize.Width; ++x)
        ASSERT_EQ(clipped.PixelAt({x, y}), clip.Contains({x, y}) ? whole.PixelAt({x, y}) : clWhite) << x << "," << y;
  }
}

TEST(CairoPixels, OfXorAreInvertedOnceAndComeBack) {
  constexpr TColor kGround{0x123456};
  for (std::uint32_t seed = 1; seed <= 1200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const bool isPlain = seed % 2 == 0;
    test::TRandom random(seed);
    const TRegion clip = random.Region(kSize);
    auto copied = Plain();
    TCairoDevice device(kSize);
    device.FillRect(TRect::At({}, kSize), {{}, {kGround, bsSolid}});
    copied.IntersectClip(clip);
    device.IntersectClip(clip);
    DrawAny(copied, random, pmCopy, isPlain);
    DrawAny(device, random, pmXor, isPlain);
    for (std::int32_t y = 0; y < kSize.Height; ++y)
      for (std::int32_t x = 0; x < kSize.Width; ++x) {
        const TColor now = device.PixelAt({x, y});
        const TColor ink = copied.PixelAt({x, y});
        ASSERT_TRUE(!isPlain || now == (ink == clWhite ? kGround : kGround ^ ink)) << x << "," << y;
        const bool isOfInk = now == (kGround ^ clNavy) || now == (kGround ^ clYellow) || now == (kGround ^ clLime);
        ASSERT_TRUE(now == kGround || (clip.Contains({x, y}) && isOfInk)) << x << "," << y;
      }
    DrawAny(device, random, pmXor, isPlain);
    for (std::int32_t y = 0; y < kSize.Height; ++y)
      for (std::int32_t x = 0; x < kSize.Width; ++x) ASSERT_EQ(device.PixelAt({x, y}), kGround) << x << "," << y;
  }
}

TEST(CairoPixels, OfDashesRunOnThroughTheCorners) {
  TCairoDevice device({16, 12});
  device.Rectangle({1, 1, 15, 6}, {{clBlack, 1, psAlternate}, {clBlack, bsClear}});
  device.Polyline(std::vector<TPoint>{{1, 8}, {12, 8}, {12, 11}}, {{clBlack, 1, psDash}, {}});
  device.Polyline(std::vector<TPoint>{{1, 10}, {8, 10}}, {{clBlack, 1, psDot}, {}});
  EXPECT_EQ(Pixels(device), R"(
................
.#.#.#.#.#.#.#..
..............#.
.#..............
..............#.
.#.#.#.#.#.#.#..
................
................
.#####...####...
............#...
.##...##........
................
)");
}

/// Neighbouring shapes join: hatches stand where they stand in the picture.
TEST(CairoPixels, OfHatchesCountFromTheOriginOfThePicture) {
  test::TRandom random(4);
  for (std::int32_t scale = 1; scale <= 3; ++scale)
    for (int style = bsHorizontal; style <= bsDiagCross; ++style) {
      SCOPED_TRACE(std::to_string(style) + " at " + std::to_string(scale));
      const TRect rect = random.Rect(kSize);
      TCairoDevice device(kSize, scale);
      device.FillRect(rect, {{}, {clBlack, static_cast<TBrushStyle>(style)}});
      const auto isLine = [&](std::int32_t place) { return (place + 800 * scale) % (8 * scale) < scale; };
      const auto isInked = [&](TPoint p) {
        const bool lines[] = {false,
                              false,
                              isLine(p.Y),
                              isLine(p.X),
                              isLine(p.X - p.Y),
                              isLine(p.X + p.Y),
                              isLine(p.X) || isLine(p.Y),
                              isLine(p.X - p.Y) || isLine(p.X + p.Y)};
        return rect.Contains({p.X / scale, p.Y / scale}) && lines[style];
      };
      ASSERT_EQ(Pixels(device), PixelsOf(device.ImageSize(), isInked));
    }
}

TEST(CairoPixels, OfFarLinesKeepTheirDirection) {
  auto device = Plain();
  device.Polyline(std::vector<TPoint>{{0, 0}, {1'600'000'000, 800'000'000}}, kLine);
  EXPECT_TRUE(IsBlack(device, {20, 10}));
  device.Polyline(std::vector<TPoint>{{-2'000'000'000, 9}, {2'000'000'000, 9}}, kLine);
  EXPECT_TRUE(IsBlack(device, {0, 9}) && IsBlack(device, {25, 9}));
  TCairoDevice smooth(kSize);
  smooth.Polygon(std::vector<TPoint>{{0, 0}, {1'600'000'000, 800'000'000}, {0, 800'000'000}}, kSolid);
  EXPECT_TRUE(IsBlack(smooth, {3, 8}));
  EXPECT_EQ(smooth.PixelAt({20, 4}), clWhite);
}

TEST(CairoPixels, OfFarSmoothLinesKeepTheirDirection) {
  for (std::int32_t far = 1 << 13; far <= 1 << 28; far *= 2) {
    SCOPED_TRACE(far);
    for (const bool isPolygon : {false, true}) {
      const std::vector<TPoint> points{{60, 45}, {60 + far, 45 - far}, {60, 45}};
      TCairoDevice device({120, 90});
      const TInk ink{{clBlack, 3}, {clBlack, bsClear}};
      if (isPolygon)
        device.Polygon(points, ink);
      else
        device.Polyline(points, ink);
      for (std::int32_t by = 0; by <= 40; by += 5) {
        EXPECT_EQ(device.PixelAt({60 + by, 45 - by}), clBlack);
        EXPECT_EQ(device.PixelAt({63 + by, 45 - by + 1}), clWhite);
        EXPECT_EQ(device.PixelAt({57 + by, 45 - by - 1}), clWhite);
      }
    }
  }
}

}  // namespace
}  // namespace vx
