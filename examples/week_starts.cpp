// Any weekday as the start of a week: where the week of one Thursday begins, and what number it has.
#include <cstdio>

#include "datetime/VXDateFunc_UNT.h"
#include "datetime/VXDateGroup_UNT.h"
#include "platform/runtime/Locale.h"

using namespace vx;

namespace {

std::string Day(TDateTime date) { return FormatDateTime("ddd yyyy-mm-dd", date); }

void PrintWeekOf(TDateTime date) {
  std::uint16_t year = 0;
  const int week = DateToWeekNumber(date, year);
  std::printf("day %d of the week from %s to %s, week %2d of %d\n", GetDayOfWeek(date),
              Day(GetFirstDayOfWeek(date)).c_str(), Day(GetNextGroupDate(vxgrOneWeek, date) - 1).c_str(), week, year);
}

}  // namespace

int main() {
  Locale() = ClassicLocale();  // English names of days on every machine
  const TDateTime date = EncodeDate(2026, 1, 1);

  std::printf("%s is\n", Day(date).c_str());
  for (GVXStartOfWeek = 1; GVXStartOfWeek <= 7; ++GVXStartOfWeek) PrintWeekOf(date);

  std::puts("\nBy ISO 8601, where weeks begin on Monday and the fourth of January is in the first, it is");
  GVXStartOfWeek = 2;
  GVXFirstWeekTriggerDay = 4;
  PrintWeekOf(date);
  std::puts("and the days around the turn of the next year are");
  for (TDateTime day = EncodeDate(2026, 12, 27); day <= EncodeDate(2027, 1, 4); day += 1) {
    std::uint16_t year = 0;
    const int week = DateToWeekNumber(day, year);
    std::printf("%s in week %2d of %d\n", Day(day).c_str(), week, year);
  }
}
