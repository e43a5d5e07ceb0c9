#include "platform/canvas/Projection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace vx {

static void PrintTo(const TPoint& p, std::ostream* out) { *out << p.X << "," << p.Y; }

namespace {

constexpr TPoint kCentre{100, 50};

TProjection Turned(double rotation, double elevation, double perspective = 0, double distance = 100) {
  return TProjection::Rotated({.Centre = kCentre,
                               .Depth = 40,
                               .Rotation = rotation,
                               .Elevation = elevation,
                               .Perspective = perspective,
                               .Distance = distance});
}

TEST(Projection, PutsPointsWhereTheArithmeticSays) {
  struct TCase {
    const char* name;
    TProjection projection;
    double x, y, z;
    TPoint seen;
  };
  const TCase kCases[] = {
      {"flat", TProjection::Flat(), 10, 20, 50, {10, 20}},
      {"orthogonal", TProjection::Orthogonal(1, 0.5), 10, 20, 8, {18, 16}},
      {"down and to the left", TProjection::Orthogonal(-1, -0.25), 10, 20, 8, {2, 22}},
      {"a half goes right and down", TProjection::Orthogonal(0.5, 0.5), -2, -2, 1, {-1, -2}},
      {"the front is half the depth before the centre", Turned(90, 0), 100, 50, 0, {120, 50}},
      {"the right side goes away: seen at the centre", Turned(90, 0), 170, 50, 20, {100, 50}},
      {"half a turn mirrors", Turned(180, 0), 110, 60, 20, {90, 60}},
      {"30 degrees: 40 cos 30", Turned(30, 0), 140, 50, 20, {135, 50}},
      {"and the back to the left by 20 sin 30", Turned(30, 0), 100, 50, 40, {90, 50}},
      {"the back is lifted", Turned(0, 90), 100, 50, 40, {100, 30}},
      {"by 20 sin 30, and lower things less", Turned(0, 30), 100, 90, 40, {100, 75}},  // 50 + 40 cos 30 - 20 sin 30
      {"both, in this order: -40 sin 90 sin 30", Turned(90, 30), 140, 50, 20, {100, 30}},
      {"backwards", Turned(-90, 0), 100, 50, 0, {80, 50}},
      // The eye 100 before the centre, the back 20 behind it: 60 * 100 / 120.
      {"far is small", Turned(0, 0, 100), 160, 110, 40, {150, 100}},
      {"near is large", Turned(0, 0, 100), 140, 50, 0, {150, 50}},
      {"half a perspective: 66 * 100 / 110", Turned(0, 0, 50), 166, 50, 40, {160, 50}},
      {"turned away: 0, but the front 20 / 1.6", Turned(90, 0, 100), 160, 50, 0, {113, 50}},  // 12.5
      {"behind the eye: no more than sixteenfold", Turned(0, 0, 100, 10), 101, 50, 0, {116, 50}},
      {"no distance is parallel", Turned(0, 0, 100, 0), 160, 110, 40, {160, 110}},
      {"zoomed", TProjection::Flat().Zoomed({10, 10}, 200, 3, -4), 15, 12, 9, {23, 10}},
      {"zoomed twice", TProjection::Flat().Zoomed({0, 0}, 200, 1, 0).Zoomed({0, 0}, 300, 0, 1), 5, 5, 0, {33, 31}},
      {"zoomed and turned", Turned(90, 0).Zoomed({0, 0}, 50, 0, 0), 100, 50, 0, {60, 25}},
  };
  for (const TCase& c : kCases) EXPECT_EQ(c.projection.Project(c.x, c.y, c.z), c.seen) << c.name;
}

TEST(Projection, KeepsRectanglesWhereSidesStayLevelAndUpright) {
  for (const TProjection& keeps : {TProjection::Flat(), TProjection::Orthogonal(1, 1), Turned(0, 0, 80), Turned(30, 0),
                                   Turned(0, 30), Turned(180, 360), Turned(0, 0).Zoomed({1, 2}, 50, 3, 4)})
    EXPECT_TRUE(keeps.KeepsRectangles());
  for (const TProjection& turns : {Turned(30, 30), Turned(30, 0, 10), Turned(0, 30, 10), Turned(330, 320)})
    EXPECT_FALSE(turns.KeepsRectangles());
}

TEST(Projection, HoldsForAnyAngles) {
  std::mt19937 random(8);
  const auto pick = [&random](double least, double most) {
    return least + (most - least) * (static_cast<double>(random()) / 4294967296.0);
  };
  for (int i = 0; i < 5000; ++i) {
    const double r = pick(-720, 720), e = pick(-720, 720);
    const TProjection parallel = Turned(r, e), deep = Turned(r, e, pick(0, 100));
    ASSERT_EQ(parallel.Project(kCentre.X, kCentre.Y, 20), kCentre);
    ASSERT_EQ(deep.Project(kCentre.X, kCentre.Y, 20), kCentre) << "the centre stays";
    // What lies opposite is seen opposite, and nothing is seen farther away than it is.
    const double x = pick(-90, 90), y = pick(-90, 90), z = pick(-90, 90);
    const TPoint there = parallel.Project(100 + x, 50 + y, 20 + z),
                 opposite = parallel.Project(100 - x, 50 - y, 20 - z);
    ASSERT_LE(std::abs(there.X + opposite.X - 200), 1);
    ASSERT_LE(std::abs(there.Y + opposite.Y - 100), 1);
    ASSERT_LE(std::hypot(there.X - 100, there.Y - 50), std::hypot(x, y, z) + 1);
    ASSERT_EQ(Turned(0, 0, 0).Project(x, y, z), TProjection::Flat().Project(x, y, z));
    ASSERT_EQ(parallel.Project(x, y, z), Turned(r + 360, e - 720).Project(x, y, z));
    ASSERT_EQ(parallel.Project(x, y, z), parallel.Zoomed({7, 9}, 100, 0, 0).Project(x, y, z));
  }
}

TEST(Projection, TakesAnyNumber) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN(), kHuge = 1e308;
  EXPECT_EQ(TProjection::Orthogonal(kNaN, HUGE_VAL), TProjection::Flat());
  EXPECT_EQ(Turned(kNaN, HUGE_VAL, kNaN, kNaN), Turned(0, 0));
  EXPECT_EQ(TProjection::Flat().Zoomed({5, 5}, kNaN, 0, 0), TProjection::Flat());
  EXPECT_EQ(TProjection::Flat().Project(kNaN, HUGE_VAL, -HUGE_VAL), (TPoint{0, 0}));
  EXPECT_EQ(TProjection::Flat().Project(kHuge, -kHuge, 0), (TPoint{kFarthest, -kFarthest}));
  for (const double zoom : {-5.0, 0.0, kHuge})
    for (const double z : {-kHuge, 0.0, kHuge}) {
      const TPoint seen = Turned(30, 40, 100, 1e-300).Zoomed({INT32_MAX, INT32_MIN}, zoom, 1, 1).Project(kHuge, z, z);
      EXPECT_LE(std::max(std::abs(seen.X), std::abs(seen.Y)), kFarthest);
    }
}

}  // namespace
}  // namespace vx
