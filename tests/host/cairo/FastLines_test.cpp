// Lines of many points against Cairo's own stroke of them.
#include "host/cairo/FastLines.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "PixelKit.h"

namespace vx {
namespace {

constexpr TSize kSize{90, 70};

/// Of the 255 from white to black; measured: 24 in the worst pixel of the worst picture. Cairo looks at a pixel in 15
/// rows and we in 8, so an edge that is nearly level may be off by half of an eighth, and two edges by twice that.
constexpr std::int32_t kMostApart = 28;
constexpr double kMostOnAverage = 6;  ///< over the inked pixels; most pictures have 1

/// Up and down in each column, a walk from column to column, or points anywhere; some of them twice.
std::vector<TPoint> AnyLine(test::TRandom& random) {
  std::vector<TPoint> points;
  const std::int32_t kind = random.Below(4);
  TPoint at = random.Point(kSize);
  for (std::int32_t i = 0; points.size() < 70; ++i) {
    if (kind == 0) at = {i / 2, random.Below(kSize.Height)};
    if (kind == 1) at = {i, at.Y + random.Between(-3, 3)};
    if (kind == 2) at = {at.X + random.Between(-9, 9), at.Y + random.Between(-9, 9)};
    if (kind == 3) at = random.Below(3) == 0 ? random.Point(kSize) : TPoint{at.X, random.Between(-4, kSize.Height)};
    points.push_back(at);
    if (random.Below(9) == 0) points.push_back(at);
  }
  return points;
}

/// How far apart two pictures are at most and on the average of inked pixels.
std::pair<std::int32_t, double> Apart(const TCairoDevice& a, const TCairoDevice& b) {
  std::int32_t most = 0;
  double sum = 0;
  double inked = 1;
  for (std::int32_t y = 0; y < a.ImageSize().Height; ++y)
    for (std::int32_t x = 0; x < a.ImageSize().Width; ++x) {
      const std::int32_t apart = std::abs(RedOf(a.PixelAt({x, y})) - RedOf(b.PixelAt({x, y})));
      most = std::max(most, apart);
      sum += apart;
      inked += b.PixelAt({x, y}) != clWhite ? 1 : 0;
    }
  return {most, sum / inked};
}

/// `plain` are the points that Cairo gets.
void ExpectTheSamePicture(const std::vector<TPoint>& points, const std::vector<TPoint>& plain, const TPenData& pen,
                          double scale, const TRegion& clip) {
  TCairoDevice ours(kSize, scale);
  TCairoDevice cairos(kSize, scale);
  for (TCairoDevice* const device : {&ours, &cairos}) device->IntersectClip(clip);
  ours.Polyline(points, {pen, {}});
  cairos.TCairoPainter::Polyline(plain, {pen, {}});
  const auto [most, average] = Apart(ours, cairos);
  EXPECT_LE(most, kMostApart);
  EXPECT_LE(average, kMostOnAverage);
}

/// With more seeds there are pictures in which Cairo leaves a pixel in the midst of an upright line white.
TEST(FastLines, LookLikeCairosStroke) {
  for (std::uint32_t seed = 1; seed <= 200 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    test::TRandom random(seed);
    const std::vector<TPoint> points = AnyLine(random);
    const TRegion clip = seed % 2 == 0 ? random.Region(kSize) : TRegion::OfRect(TRect::At({}, kSize));
    const double scale = 1 + random.Below(5) / 2.0;
    ExpectTheSamePicture(points, points, {clBlack, random.Between(1, 3)}, scale, clip);
  }
}

/// Where Cairo is asked for what lies just outside of the picture.
TEST(FastLines, KeepTheirDirectionFarOutside) {
  for (std::uint32_t seed = 1; seed <= 50 && !testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    test::TRandom random(seed);
    std::vector<TPoint> points;
    std::vector<TPoint> plain;
    for (int i = 0; i < 24; ++i) {
      const TPoint from = random.Point(kSize);
      const TPoint by{random.Between(1, 9), random.Between(-9, 9)};
      points.insert(points.end(), {from, {from.X + by.X * 200'000'000, from.Y + by.Y * 200'000'000}, from});
      plain.insert(plain.end(), {from, {from.X + by.X * 300, from.Y + by.Y * 300}, from});
    }
    ExpectTheSamePicture(points, plain, {clBlack, random.Between(1, 2)}, 1, TRegion::OfRect({5, 5, 60, 60}));
  }
}

TEST(FastLines, TakeSolidLinesOfManyPointsOnly) {
  const TPixelGrid grid(1);
  const auto takes = [&](std::size_t count, const TPenData& pen) {
    return TFastLines::Takes(count, TStroking({pen, {}}, grid));
  };
  EXPECT_TRUE(takes(3200, {clRed, 1}));
  EXPECT_TRUE(takes(3200, {clRed, 2, psInsideFrame}));
  EXPECT_FALSE(takes(3200, {clRed, 2, psDash}));
  EXPECT_FALSE(takes(3200, {clRed, 2, psClear}));
  EXPECT_FALSE(takes(3200, {clRed, 100}));
  EXPECT_FALSE(takes(3, {clRed, 1}));
}

/// A line on one point is a dot, and the memory of a line before it leaves no trace.
TEST(FastLines, AreDotsOnOnePoint) {
  for (const std::int32_t width : {1, 2, 3}) {
    TCairoDevice device(kSize);
    device.Polyline(std::vector<TPoint>(70, {-5, 9}), {{clBlack, width}, {}});
    test::TRandom random(3);
    device.Polyline(AnyLine(random), {{clWhite, width}, {}});
    device.Polyline(std::vector<TPoint>(70, {40, 9}), {{clBlack, width}, {}});
    TCairoDevice expected(kSize);
    expected.Polyline(std::vector<TPoint>{{40, 9}}, {{clBlack, width}, {}});
    EXPECT_LE(Apart(device, expected).first, kMostApart);
  }
}

}  // namespace
}  // namespace vx
