// VirtualClock.h: a clock that goes on when it is told to.
//
//   TVirtualClock clock(EncodeDate(2026, 11, 23));
//   clock.Wait(250);
//   clock.Now();                     // exactly EncodeDate(2026, 11, 23) + EncodeTime(0, 0, 0, 250)
//
// It counts whole milliseconds, so that no sum of waits gathers an error.
#pragma once

#include "platform/system/Clock.h"

namespace vx {

class TVirtualClock : public IClock {
 public:
  /// EConvertError if `start` isn't in the calendar; it is rounded to the millisecond.
  explicit TVirtualClock(TDateTime start);
  TDateTime Now() override;
  /// Milliseconds since the start.
  std::int64_t Ticks() override { return ticks_; }
  void Wait(std::int32_t milliseconds) override;
  /// Without effect on a moment that has passed.
  void MoveTo(std::int64_t ticks);

 private:
  std::int64_t start_;  // milliseconds since 1899-12-30, in one row also before that day
  std::int64_t ticks_ = 0;
};

}  // namespace vx
