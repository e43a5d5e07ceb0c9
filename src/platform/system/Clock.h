// Clock.h: what time it is.
//
// All of the system asks one clock, which belongs to the application: the system's own by default, a clock of the host
// where time is virtual.
//
//   Now();                                    // 46349.4375: 2026-11-23, 10:30 local time
//
//   TFixedClock clock(EncodeDate(2026, 11, 23));   // time stands still, for a test or a replay
//   const TClockScope scope(clock);
//   Date();                                   // 46349
//
// Times are local, to the millisecond. Main thread only.
#pragma once

#include <cstdint>

#include "platform/runtime/DateTime.h"
#include "platform/system/InForce.h"

namespace vx {

class IClock {
 public:
  virtual ~IClock() = default;
  /// Local date and time.
  virtual TDateTime Now() = 0;
  /// Milliseconds since some moment: what timers count in. Unlike Now() it doesn't jump where the machine's time is put
  /// right. As it stands here it is Now() in milliseconds.
  virtual std::int64_t Ticks();
  /// Lets time go on; see the function Wait(). As it stands here it doesn't: the clock shows what it was set to.
  virtual void Wait(std::int32_t milliseconds) { static_cast<void>(milliseconds); }
};

// -- The application's clock ------------------------------------------------------------------------------------------

/// The machine's clock, in the time zone of the program's start.
IClock& SystemClock();
/// The clock in force.
IClock& Clock();
/// Puts a clock in force, which the caller owns and keeps; null for SystemClock(). It counts until the scope ends in
/// which it is set.
void SetClock(IClock* clock);

TDateTime Now();
TDateTime Date();  ///< today at midnight
TDateTime Time();  ///< the time of day, below 1

/// Lets `milliseconds` pass on the clock, as between the pictures of an animation: a person sees what was drawn so far.
/// Nothing else happens meanwhile: messages and timers that fall due wait for the next ProcessMessages(), so that a
/// painter isn't called within its own painting. Zero or less returns at once. Only the machine's own clock makes the
/// program sleep.
void Wait(std::int32_t milliseconds);

// -- Other clocks -----------------------------------------------------------------------------------------------------

/// Shows what it was set to.
class TFixedClock : public IClock {
 public:
  explicit TFixedClock(TDateTime now) : now_(now) {}
  TDateTime Now() override { return now_; }
  void Set(TDateTime now) { now_ = now; }

 private:
  TDateTime now_;
};

/// Puts a clock in force for the life of the object, then the one before.
class TClockScope {
 public:
  explicit TClockScope(IClock& clock) : scope_(&clock) {}

 private:
  TInForce<IClock*>::TScope scope_;
};

}  // namespace vx
