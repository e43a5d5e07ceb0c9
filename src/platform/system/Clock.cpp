#include "platform/system/Clock.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <thread>

#include "platform/runtime/NumberText.h"

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
  std::int64_t Ticks() override {
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::floor<std::chrono::milliseconds>(since).count();
  }
  void Wait(std::int32_t milliseconds) override {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  }
};

}  // namespace

IClock& SystemClock() {
  static TSystemClock clock;
  return clock;
}

std::int64_t IClock::Ticks() {
  const TDateTime now = Now();
  const TDateTime day = std::clamp(std::trunc(now), kFirstDate, kLastDate);
  return Round(day) * kMillisecondsPerDay + Round(std::abs(now - std::trunc(now)) * kMillisecondsPerDay);
}

IClock& Clock() {
  IClock* const clock = TInForce<IClock*>::Current();
  return clock != nullptr ? *clock : SystemClock();
}

void SetClock(IClock* clock) { TInForce<IClock*>::Current() = clock; }

TDateTime Now() { return Clock().Now(); }
TDateTime Date() { return std::trunc(Now()); }

TDateTime Time() {
  const TDateTime now = Now();
  return now - std::trunc(now);
}

void Wait(std::int32_t milliseconds) {
  if (milliseconds > 0) Clock().Wait(milliseconds);
}

}  // namespace vx
