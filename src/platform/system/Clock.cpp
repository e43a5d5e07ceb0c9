#include "platform/system/Clock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <utility>

namespace vx {

namespace {

class TSystemClock : public IClock {
 public:
  TDateTime Now() override {
    using std::chrono::floor;
    const auto now = floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    const auto second = floor<std::chrono::seconds>(now);
    const std::time_t sinceEpoch = std::chrono::system_clock::to_time_t(second);
    std::tm local{};
    if (localtime_r(&sinceEpoch, &local) == nullptr) gmtime_r(&sinceEpoch, &local);
    const int lastSecond = std::min(local.tm_sec, 59);  // a leap second lasts as long as its predecessor says
    return EncodeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
           EncodeTime(local.tm_hour, local.tm_min, lastSecond, static_cast<std::int32_t>((now - second).count()));
  }
};

IClock*& ClockInForce() {
  static IClock* clock = &SystemClock();
  return clock;
}

}  // namespace

IClock& SystemClock() {
  static TSystemClock clock;
  return clock;
}

IClock& Clock() { return *ClockInForce(); }

void SetClock(IClock* clock) { ClockInForce() = clock != nullptr ? clock : &SystemClock(); }

TDateTime Now() { return Clock().Now(); }
TDateTime Date() { return std::trunc(Now()); }

TDateTime Time() {
  const TDateTime now = Now();
  return now - std::trunc(now);
}

TClockScope::TClockScope(IClock& clock) : saved_(std::exchange(ClockInForce(), &clock)) {}

TClockScope::~TClockScope() { SetClock(saved_); }

}  // namespace vx
