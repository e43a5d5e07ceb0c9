#include "datetime/VXDateGroup_UNT.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "datetime/WeekScope.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/StringResources.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::kInfinity;
using test::kNaN;

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days kEpoch = year{1899} / 12 / 30;
constexpr sys_days kEnd = year{2101} / 1 / 1;
constexpr auto kNoMode = static_cast<TVXGroupMode>(5);

TDateTime NumberOf(sys_days day) { return static_cast<TDateTime>((day - kEpoch).count()); }

// -- The model: groups by the standard library's calendar -----------------------------------------------------------

sys_days LabelOf(TVXGroupMode mode, sys_days day) {
  const year_month_day date{day};
  const auto weekday = std::chrono::weekday{static_cast<unsigned>(GVXStartOfWeek - 1)};
  if (mode == vxgrOneDay) return day;
  if (mode == vxgrOneWeek) return day - (std::chrono::weekday{day} - weekday);
  if (mode == vxgrOneMonth) return date.year() / date.month() / 1;
  if (mode == vxgrOneYear) return date.year() / 1 / 1;
  int closing = static_cast<int>(date.year());
  while (closing % 100 != 0) ++closing;
  return year{closing} / 1 / 1;
}

sys_days NextLabelOf(TVXGroupMode mode, sys_days day) {
  const year_month_day label{LabelOf(mode, day)};
  if (mode == vxgrOneDay) return sys_days{label} + days{1};
  if (mode == vxgrOneWeek) return sys_days{label} + days{7};
  if (mode == vxgrOneMonth) return label + std::chrono::months{1};
  return label + std::chrono::years{mode == vxgrOneYear ? 1 : 100};
}

/// The stretch of a mode's horizon: from the first day of the first group, or from its last day.
double StretchOf(TVXGroupMode mode, sys_days from, sys_days to, bool alignOnStart) {
  const sys_days begin = alignOnStart ? LabelOf(mode, from) : NextLabelOf(mode, from) - days{1};
  const sys_days limit = alignOnStart ? to : NextLabelOf(mode, to) - days{1};
  sys_days end = begin;
  for (std::int32_t group = 0; group < GetGroupHorizon(mode); ++group) end = NextLabelOf(mode, end);
  return end - days{1} > limit ? 0 : static_cast<double>((end - begin).count());
}

// -- Groups ---------------------------------------------------------------------------------------------------------

void ExpectTheCalendarsGroups(TVXGroupMode mode) {
  for (sys_days day = kEpoch; day < kEnd; day += days{1}) {
    const TDateTime noon = NumberOf(day) + 0.5;
    ASSERT_EQ(GetGroupDate(mode, noon), NumberOf(LabelOf(mode, day))) << +mode << ", " << noon;
    ASSERT_EQ(GetNextGroupDate(mode, noon), NumberOf(NextLabelOf(mode, day))) << +mode << ", " << noon;
  }
}

TEST(DateGroup, AgreesWithTheCalendarOnEveryDay) {
  for (const auto mode : {vxgrOneDay, vxgrOneMonth, vxgrOneYear, vxgrOneCentury}) ExpectTheCalendarsGroups(mode);
  for (std::int32_t start = 1; start <= 7; ++start) {
    const TWeekScope scope(start);
    ExpectTheCalendarsGroups(vxgrOneWeek);
  }
}

TEST(DateGroup, StandsAtTheEdgesOfTheCalendar) {
  EXPECT_EQ(GetGroupDate(vxgrOneDay, -1.25), -1);
  EXPECT_EQ(GetGroupDate(vxgrOneYear, -0.25), EncodeDate(1899, 1, 1));
  EXPECT_EQ(GetGroupDate(vxgrOneCentury, kFirstDate), EncodeDate(100, 1, 1));
  EXPECT_EQ(GetGroupDate(vxgrOneYear, kLastDate), EncodeDate(9999, 1, 1));
  EXPECT_EQ(GetNextGroupDate(vxgrOneDay, kLastDate), kLastDate + 1);
  EXPECT_THROW(GetGroupDate(vxgrOneCentury, EncodeDate(9901, 1, 1)), EConvertError);
  EXPECT_THROW(GetNextGroupDate(vxgrOneYear, kLastDate), EConvertError);
  for (const double noDate : {kNaN, 1e300, -1e9}) {
    EXPECT_THROW(GetGroupDate(vxgrOneMonth, noDate), EConvertError);
    GetNextGroupDate(vxgrOneDay, noDate);
    GetNextGroupDate(vxgrOneWeek, noDate);
  }
}

TEST(DateGroup, TakesAnUnknownModeForDaysButHasNoRowForIt) {
  EXPECT_EQ(GetGroupDate(kNoMode, 45351.75), 45351);
  EXPECT_EQ(GetNextGroupDate(kNoMode, 45351.75), 45352);
  EXPECT_THROW(GetGroupName(kNoMode), ENilAccess);
  EXPECT_THROW(GetGroupDateHorizon(kNoMode, 0, 100, true), ENilAccess);
  EXPECT_THROW(GetGroupDateHorizon(kNoMode, 0, 100, false), ENilAccess);
}

// -- Spans ----------------------------------------------------------------------------------------------------------

TEST(DateGroup, ChoosesTheFinestModeThatFits) {
  struct TCase {
    double span;
    TVXGroupMode mode;
  };
  const TCase cases[] = {{-1e300, vxgrOneDay}, {0, vxgrOneDay},         {14.99, vxgrOneDay},     {15, vxgrOneWeek},
                         {97, vxgrOneWeek},    {98, vxgrOneMonth},      {389, vxgrOneMonth},     {390, vxgrOneYear},
                         {73364, vxgrOneYear}, {73365, vxgrOneCentury}, {1e300, vxgrOneCentury}, {kNaN, vxgrOneDay}};
  for (const TCase& c : cases) EXPECT_EQ(BestGroupMode(100, 100 + c.span), c.mode) << c.span;
}

TEST(DateGroup, MeasuresAHorizonAsTheCalendarDoes) {
  std::mt19937 random(20'240'229);
  SCOPED_TRACE("seed 20240229");
  for (sys_days from = kEpoch; from < kEnd; from += days{1}) {
    const TWeekScope scope(static_cast<std::int32_t>(random() % 7 + 1));
    const auto mode = static_cast<TVXGroupMode>(random() % 4);
    // Close to the edge between fitting and not, as often as far from it.
    const double around = GetGroupHorizon(mode) * GetGroupIncrement(mode);
    const sys_days to = from + days{static_cast<int>(around) + static_cast<int>(random() % 80) - 40};
    for (const bool alignOnStart : {true, false}) {
      ASSERT_EQ(GetGroupDateHorizon(mode, NumberOf(from) + 0.5, NumberOf(to), alignOnStart),
                StretchOf(mode, from, to, alignOnStart))
          << "mode " << +mode << " from " << NumberOf(from) << " to " << NumberOf(to) << ", on start " << alignOnStart
          << ", weeks from " << GVXStartOfWeek;
    }
  }
}

TEST(DateGroup, MeasuresTwelveMonthsOrElevenAndADay) {
  const TDateTime from = EncodeDate(2024, 1, 10), to = EncodeDate(2026, 1, 1);
  EXPECT_EQ(GetGroupDateHorizon(vxgrOneMonth, from, to, true), 366) << "from the first of January";
  EXPECT_EQ(GetGroupDateHorizon(vxgrOneMonth, from, to, false), 336) << "from the last day of January";
}

TEST(DateGroup, MeasuresNoHorizonBeyondTheCalendar) {
  for (const bool alignOnStart : {true, false}) {
    // Ninety-nine centuries are more than the calendar has.
    EXPECT_EQ(GetGroupDateHorizon(vxgrOneCentury, 45301, EncodeDate(9800, 1, 1), alignOnStart), 0);
    for (const double from : {kNaN, kInfinity, -kInfinity, 1e300}) {
      EXPECT_EQ(GetGroupDateHorizon(vxgrOneDay, from, kInfinity, alignOnStart), 0) << from;
      EXPECT_THROW(GetGroupDateHorizon(vxgrOneYear, from, kInfinity, alignOnStart), EConvertError) << from;
    }
  }
}

// -- Start and end --------------------------------------------------------------------------------------------------

/// Starts the unit anew under other circumstances, and again when these are over.
class TUnitScope {
 public:
  TUnitScope() { Restart(); }
  ~TUnitScope() { Restart(); }
  TUnitScope(const TUnitScope&) = delete;
  TUnitScope& operator=(const TUnitScope&) = delete;

 private:
  static void Restart() {
    VXDateGroup_UNT::FinalizeUnit();
    VXDateGroup_UNT::InitializeUnit();
  }
};

TEST(DateGroupUnit, CopiesTheLocaleWhenItStarts) {
  const TLocaleScope before(ClassicLocale());
  const TUnitScope unit;
  Locale().ShortDateFormat = "yyyy-MM-dd";
  VXDateGroup_UNT::InitializeUnit();  // a second user starts nothing
  EXPECT_EQ(GetGroupDateFormat(vxgrOneDay), "M/d/yyyy");
  EXPECT_EQ(GetGroupDateFormat(vxgrOneWeek), "M/d/yyyy");
  EXPECT_EQ(GetGroupDateFormat(vxgrOneMonth), "mmm yyyy");
  VXDateGroup_UNT::FinalizeUnit();  // and ends nothing
  EXPECT_EQ(GetGroupName(vxgrOneCentury), "Century");
  {
    const TUnitScope again;
    EXPECT_EQ(GetGroupDateFormat(vxgrOneDay), "yyyy-MM-dd");
  }
  Locale() = ClassicLocale();
}

TEST(DateGroupUnit, FollowsATranslation) {
  SetResourceStrings({{14672, "Tag"}, {14676, "Jahrhundert"}});
  EXPECT_EQ(GetGroupName(vxgrOneDay) + GetGroupName(vxgrOneCentury), "TagJahrhundert");
  ResetResourceStrings();
  EXPECT_EQ(GetGroupName(vxgrOneDay), "Day");
}

}  // namespace
}  // namespace vx
