#include "datetime/VXDateFunc_UNT.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <utility>

#include "datetime/WeekScope.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch = std::chrono::year{1899} / 12 / 30;
constexpr sys_days kEnd = std::chrono::year{2101} / 1 / 1;

TDateTime NumberOf(sys_days day) { return static_cast<TDateTime>((day - kEpoch).count()); }

class SysDateText : public testing::Test {
 protected:
  TLocaleScope scope_{ClassicLocale()};
};

TEST_F(SysDateText, NormalisesDateFormats) {
  // Lengths without a meaning vanish, and names of days with them.
  constexpr std::pair<const char*, const char*> kCases[] = {{"M/d/yyyy", "mm/dd/yyyy"},
                                                            {"dd.mmm.yy", "dd.mmm.yy"},
                                                            {"ddd, d MMMM yyyy", ", dd  yyyy"},
                                                            {"y-yyy-yyyyy", "--"},
                                                            {"mMm", "mmm"},
                                                            {"d 'de' M", "dd 'dde' mm"},
                                                            {"yyyy年M月d日", "yyyy年mm月dd日"},
                                                            {"", ""}};
  for (const auto& [format, expected] : kCases) {
    Locale().ShortDateFormat = format;
    EXPECT_EQ(GetDateFormat(), expected) << format;
  }
}

TEST_F(SysDateText, NormalisesTimeFormats) {
  // The character behind the sign is dropped; a blank takes its place unless nothing follows it.
  constexpr std::pair<const char*, const char*> kCases[] = {{"h:mm:ss AMPM", "hh:mm:ss AMPM "},
                                                            {"H:m:s", "hh:mm:ss"},
                                                            {"hhhh:mmmm", "hh:mm"},
                                                            {"h:nn:ss", "hh:nn:ss"},
                                                            {"AMPMh", "AMPM"},
                                                            {"AMPM時h", "AMPM hh"},
                                                            {"hAMPMAMPM", "hhAMPM mmPmm"},
                                                            {"h ampm", "hh ammpmm"},
                                                            {"h am/pm", "hh amm/pmm"},
                                                            {"", ""}};
  for (const auto& [format, expected] : kCases) {
    Locale().LongTimeFormat = format;
    EXPECT_EQ(GetTimeFormat(), expected) << format;
    EXPECT_EQ(Is24HoursFormat(), std::string(format).find("AMPM") == std::string::npos);
  }
}

TEST_F(SysDateText, PrintsByTheNormalisedFormats) {
  EXPECT_EQ(GetDateTimeFormat(), "mm/dd/yyyy hh:mm:ss AMPM ");
  EXPECT_EQ(SysDateToStr(EncodeDate(2024, 3, 5) + 0.75), "03/05/2024 06:00:00 PM ");
  EXPECT_EQ(SysDateToStr(0), "12/30/1899 12:00:00 AM ");
  EXPECT_EQ(SysDateToDateStr(EncodeDate(2024, 3, 5) + 0.75), "03/05/2024");
  Locale().ShortDateFormat = "d.M.yyyy";
  Locale().LongTimeFormat = "H:mm:ss";
  Locale().TimeSeparator = '.';
  EXPECT_EQ(SysDateToStr(EncodeDate(2024, 3, 5) + 0.25), "05.03.2024 06.00.00");
}

TEST_F(SysDateText, CountsRunsInCharacters) {
  EXPECT_EQ(ComputeNbChar('M', 1, "mMm/d"), 3);
  EXPECT_EQ(ComputeNbChar('m', 2, "MMm/d"), 2);
  EXPECT_EQ(ComputeNbChar('m', 4, "mMm/d"), 0);
  EXPECT_EQ(ComputeNbChar('m', 3, "年月mm"), 2);
  EXPECT_EQ(ComputeNbChar('/', 1, "//"), 2);
  for (const std::int32_t outside :
       {std::numeric_limits<std::int32_t>::min(), 0, 3, std::numeric_limits<std::int32_t>::max()})
    EXPECT_EQ(ComputeNbChar('m', outside, "mm"), 0) << outside;
  EXPECT_EQ(ComputeNbChar('\xE5', 1, "年"), 0) << "a part of a character is none";
}

// -- Weeks ----------------------------------------------------------------------------------------------------------

TEST(Weeks, BeginOnTheChosenDay) {
  for (std::int32_t start = 1; start <= 7; ++start) {
    const TWeekScope scope(start, 1);
    for (sys_days day = kEpoch; day < kEnd; day += std::chrono::days{1}) {
      const auto since = (std::chrono::weekday{day} - std::chrono::weekday{static_cast<unsigned>(start - 1)}).count();
      ASSERT_EQ(GetDayOfWeek(NumberOf(day)), since + 1) << NumberOf(day) << ", start " << start;
      ASSERT_EQ(GetFirstDayOfWeek(NumberOf(day) + 0.5), NumberOf(day) - static_cast<double>(since) + 0.5);
    }
  }
}

// ISO 8601 by its own words: a week belongs to the year that its Thursday lies in. With weeks from Monday and the
// fourth of January as trigger the two agree on every day: the week of the fourth is the one that holds the year's
// first Thursday, and a year that begins on a Thursday, or on a Wednesday if it is a leap year, has 53 of them.
TEST(Weeks, AreThoseOfTheStandardFromMondayWithTheFourth) {
  const TWeekScope scope(2, 4);
  for (sys_days day = kEpoch; day < kEnd; day += std::chrono::days{1}) {
    const sys_days thursday = day - (std::chrono::weekday{day} - std::chrono::Monday) + std::chrono::days{3};
    const std::chrono::year year = year_month_day{thursday}.year();
    const auto week = (thursday - sys_days{year / 1 / 1}).count() / 7 + 1;
    std::uint16_t counted = 0;
    ASSERT_EQ(DateToWeekNumber(NumberOf(day), counted), week) << NumberOf(day);
    ASSERT_EQ(counted, static_cast<int>(year)) << NumberOf(day);
  }
}

// By default the week of the first of January is the first, and a year has 53 weeks where the standard, asked for weeks
// from Sunday, would have them. The two rules don't fit: some weeks are parted at the turn of the year.
TEST(Weeks, CountFromTheFirstOfJanuaryByDefault) {
  const TWeekScope scope(1, 1);
  const auto sundayOf = [](sys_days day) { return day - (std::chrono::weekday{day} - std::chrono::Sunday); };
  for (sys_days day = kEpoch; day < kEnd; day += std::chrono::days{1}) {
    std::chrono::year year = year_month_day{day}.year();
    const std::chrono::weekday first{sys_days{year / 1 / 1}};
    const bool isLong = first == std::chrono::Wednesday || (first == std::chrono::Tuesday && year.is_leap());
    auto week = (sundayOf(day) - sundayOf(year / 1 / 1)).count() / 7 + 1;
    if (week > (isLong ? 53 : 52)) week = 1, ++year;
    std::uint16_t counted = 0;
    ASSERT_EQ(DateToWeekNumber(NumberOf(day) + 0.75, counted), week) << NumberOf(day);
    ASSERT_EQ(counted, static_cast<int>(year)) << NumberOf(day);
  }
}

TEST(Weeks, RaiseWhereTheCalendarHasNoSuchDay) {
  std::uint16_t year = 0;
  for (const std::int32_t trigger : {0, 32, -1, 65537, std::numeric_limits<std::int32_t>::min()}) {
    const TWeekScope scope(1, trigger);
    EXPECT_THROW(DateToWeekNumber(45351, year), EConvertError) << trigger;
  }
  const TWeekScope scope(2, 4);
  EXPECT_THROW(DateToWeekNumber(std::numeric_limits<double>::quiet_NaN(), year), EConvertError);
  EXPECT_THROW(DateToWeekNumber(1e300, year), EConvertError);
}

TEST(Weeks, StayDefinedForAnyStart) {
  for (const std::int32_t start :
       {0, 8, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
    const TWeekScope scope(start, 4);
    std::uint16_t year = 0;
    DateToWeekNumber(45351, year);
    GetFirstDayOfWeek(std::numeric_limits<double>::infinity());
  }
}

}  // namespace
}  // namespace vx
