#include "platform/system/Clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>

namespace vx {
namespace {

// Zones lie within fourteen hours of the universal time, and their clocks show the same seconds nearly everywhere; so
// this holds on any machine.
TEST(Clock, ShowsTheMachinesLocalTimeByDefault) {
  const auto universal = [] {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return EncodeDate(1970, 1, 1) + std::chrono::duration<double, std::ratio<86'400>>(since).count();
  };
  const TDateTime before = universal(), now = Now(), after = universal();
  EXPECT_GE(now, before - 15.0 / 24);
  EXPECT_LE(now, after + 15.0 / 24);
  const double zone = (now - before) * 96;  // in quarters of an hour, of which all zones in use are made
  EXPECT_NEAR(zone, std::round(zone), (after - before) * 96 + 0.001);
}

TEST(Clock, IsTheApplicationsToChoose) {
  TFixedClock clock(EncodeDate(2026, 11, 23) + 0.25), other(1);
  {
    const TClockScope scope(clock);
    EXPECT_EQ(Now(), EncodeDate(2026, 11, 23) + 0.25);
    EXPECT_EQ(Date(), EncodeDate(2026, 11, 23));
    EXPECT_EQ(Time(), 0.25);
    SetClock(&other);
    EXPECT_EQ(Date(), 1);
  }
  EXPECT_EQ(&Clock(), &SystemClock());
  SetClock(&other);
  SetClock(nullptr);
  EXPECT_EQ(&Clock(), &SystemClock());
}

}  // namespace
}  // namespace vx
