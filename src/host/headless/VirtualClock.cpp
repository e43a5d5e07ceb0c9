#include "host/headless/VirtualClock.h"

#include <algorithm>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/NumberText.h"

namespace vx {
namespace {

std::int64_t StartOf(TDateTime date) {
  if (!(date >= kFirstDate && date < kLastDate + 1))
    throw EConvertError("A clock can't start at " + FloatToStr(date) + ": no such date");
  return TFixedClock(date).Ticks();
}

}  // namespace

TVirtualClock::TVirtualClock(TDateTime start) : start_(StartOf(start)) {}

TDateTime TVirtualClock::Now() {
  const std::int64_t now = start_ + ticks_;
  const std::int64_t ofDay = (now % kMillisecondsPerDay + kMillisecondsPerDay) % kMillisecondsPerDay;
  const auto day = static_cast<TDateTime>((now - ofDay) / kMillisecondsPerDay);
  const TDateTime time = static_cast<TDateTime>(ofDay) / kMillisecondsPerDay;
  return day < 0 ? day - time : day + time;
}

void TVirtualClock::Wait(std::int32_t milliseconds) { ticks_ += std::max(milliseconds, 0); }
void TVirtualClock::MoveTo(std::int64_t ticks) { ticks_ = std::max(ticks_, ticks); }

}  // namespace vx
