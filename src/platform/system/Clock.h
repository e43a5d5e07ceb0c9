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

#include "platform/runtime/DateTime.h"

namespace vx {

class IClock {
 public:
  virtual ~IClock() = default;
  /// Local date and time.
  virtual TDateTime Now() = 0;
};

// -- The application's clock ------------------------------------------------------------------------------------------

/// The machine's clock, in the time zone of the program's start.
IClock& SystemClock();
/// The clock in force.
IClock& Clock();
/// Puts a clock in force, which the caller owns and keeps; null for SystemClock().
void SetClock(IClock* clock);

TDateTime Now();
TDateTime Date();  ///< today at midnight
TDateTime Time();  ///< the time of day, below 1

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
  explicit TClockScope(IClock& clock);
  ~TClockScope();
  TClockScope(const TClockScope&) = delete;
  TClockScope& operator=(const TClockScope&) = delete;

 private:
  IClock* saved_;
};

}  // namespace vx
