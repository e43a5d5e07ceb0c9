// Durations: printed in a unit that suits them, and read as people type them.
#include <cstdio>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"

using namespace vx;

int main() {
  Locale() = ClassicLocale();  // the same on every machine

  std::puts("seconds   suited     in hours  in full");
  for (const std::int32_t seconds : {0, 45, 90, 5400, -3600, 100'000, 2'628'000, 40'000'000})
    std::printf("%8d  %9s  %10s  %s\n", seconds, DurationToStr(seconds, 2, vxduAuto).c_str(),
                DurationToStr(seconds, 1, vxduHour).c_str(), DurationToExpandedStr(seconds).c_str());

  std::puts("\ntyped        seconds  unit");
  for (const char* typed : {"1.5 h", "90", "-2 MIN", "1 mo", "100 y", "5 m", "1.2.3 h"}) {
    try {
      const TVXDurationWithUnit read = StrToDurationWithUnit(typed, vxduMin);  // minutes unless the text says otherwise
      std::printf("%-8s  %10.0f  %s\n", typed, read.Value, DurUnitString[read.DurUnit].c_str());
    } catch (const EVXDateFuncException& error) {
      std::printf("%-8s  %s\n", typed, error.Message().c_str());
    }
  }
}
