#include "platform/runtime/DateTime.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using TDay = std::tuple<int, int, int>;
using TClock = std::tuple<int, int, int, int>;

TDay DayOf(TDateTime date) {
  std::uint16_t year = 1, month = 1, day = 1;
  DecodeDate(date, year, month, day);
  return {year, month, day};
}

TClock ClockOf(TDateTime time) {
  std::uint16_t hour = 1, minute = 1, second = 1, millisecond = 1;
  DecodeTime(time, hour, minute, second, millisecond);
  return {hour, minute, second, millisecond};
}

template <class TCall>
std::string ConvertErrorOf(TCall call) {
  try {
    call();
  } catch (const EConvertError& error) {
    return error.Message();
  }
  return "no error";
}

class DateText : public testing::Test {
 protected:
  static TLocaleSettings German() {
    TLocaleSettings settings = ClassicLocale();
    settings.ShortDateFormat = "dd.MM.yyyy";
    settings.LongTimeFormat = "HH:mm:ss";
    settings.DateSeparator = '.';
    settings.DecimalSeparator = ',';
    settings.TimeAMString = settings.TimePMString = "";
    return settings;
  }

  TLocaleScope scope_{ClassicLocale()};
};

/// The plainest calendar there is: the next day, by a table of months.
TDay NextDay(const TDay& today) {
  const auto [year, month, day] = today;
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (day < kDays[month - 1] + (month == 2 && leap ? 1 : 0)) return {year, month, day + 1};
  return month < 12 ? TDay{year, month + 1, 1} : TDay{year + 1, 1, 1};
}

TEST(DateTime, CountsEveryDayOfTheCalendar) {
  TDay expected = {1, 1, 1};
  std::int32_t weekday = 2;  // 0001-01-01 was a Monday
  for (TDateTime date = kFirstDate; date <= kLastDate; date += 1, expected = NextDay(expected)) {
    const auto [year, month, day] = expected;
    const bool agrees = DayOf(date) == expected && EncodeDate(year, month, day) == date && DayOfWeek(date) == weekday;
    ASSERT_TRUE(agrees) << year << "-" << month << "-" << day << " counted as " << date << ", weekday " << weekday;
    weekday = weekday % 7 + 1;
  }
  EXPECT_EQ(expected, TDay(10000, 1, 1));
  EXPECT_EQ(DayOf(0), TDay(1899, 12, 30));
}

TEST(DateTime, TakesFractionsApart) {
  struct TCase {
    const char* name;
    TDateTime date;
    TDay day;
    TClock clock;
  };
  const TCase cases[] = {
      {"Zero", 0, {1899, 12, 30}, {0, 0, 0, 0}},
      {"Evening", 45351.75, {2024, 2, 29}, {18, 0, 0, 0}},
      // Before the first day the whole part counts backwards and the fraction forwards.
      {"MorningBeforeTheFirstDay", -1.25, {1899, 12, 29}, {6, 0, 0, 0}},
      {"NegativeFractionOfTheFirstDay", -0.25, {1899, 12, 30}, {6, 0, 0, 0}},
      {"EveningOfTheFirstOfAllDays", -693593.75, {1, 1, 1}, {18, 0, 0, 0}},
      {"HalfAMillisecondUp", 1 + 0.5 / kMillisecondsPerDay, {1899, 12, 31}, {0, 0, 0, 1}},
      {"LastMillisecond", 2 - 1.0 / kMillisecondsPerDay, {1899, 12, 31}, {23, 59, 59, 999}},
      {"CarryIntoTheDay", 2 - 0.4 / kMillisecondsPerDay, {1900, 1, 1}, {0, 0, 0, 0}},
      {"CarryIntoTheYear", 36526 - 0.4 / kMillisecondsPerDay, {2000, 1, 1}, {0, 0, 0, 0}},
      {"CarryBeforeTheFirstDay", -2 - (1 - 0.4 / kMillisecondsPerDay), {1899, 12, 29}, {0, 0, 0, 0}},
      {"CarryOutOfTheCalendar", std::nextafter(2958466.0, 0), {0, 0, 0}, {0, 0, 0, 0}},
      {"BeforeTheCalendar", -693594, {0, 0, 0}, {0, 0, 0, 0}},
      {"BehindTheCalendar", 2958466.5, {0, 0, 0}, {12, 0, 0, 0}},
      {"Huge", 1e300, {0, 0, 0}, {0, 0, 0, 0}},
      {"NotANumber", kNaN, {0, 0, 0}, {0, 0, 0, 0}},
      {"Infinite", -kInfinity, {0, 0, 0}, {0, 0, 0, 0}},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(DayOf(c.date), c.day);
    EXPECT_EQ(ClockOf(c.date), c.clock);
  }
  EXPECT_EQ(DayOfWeek(2958466), 7) << "weeks go on where the calendar ends";
  EXPECT_EQ(DayOfWeek(-693594), 1);
  EXPECT_EQ(DayOfWeek(kNaN), 0);
}

TEST(DateTime, KeepsEverySecondOfADay) {
  for (const TDateTime day : {0.0, 45351.0, kLastDate}) {
    for (int second = 0; second < 86'400; ++second) {
      const TClock clock = {second / 3600, second / 60 % 60, second % 60, second % 1000};
      const auto [h, n, s, z] = clock;
      ASSERT_EQ(ClockOf(day + EncodeTime(h, n, s, z)), clock);
    }
  }
}

TEST(DateTime, RefusesDaysAndTimesThatDontExist) {
  EXPECT_EQ(ConvertErrorOf([] { EncodeDate(1900, 2, 29); }), "'1900-02-29' is not a valid date");
  EXPECT_EQ(ConvertErrorOf([] { EncodeDate(0, 1, 1); }), "'0000-01-01' is not a valid date");
  EXPECT_EQ(ConvertErrorOf([] { EncodeDate(10000, 1, 1); }), "'10000-01-01' is not a valid date");
  EXPECT_EQ(ConvertErrorOf([] { EncodeDate(2024, 13, 0); }), "'2024-13-00' is not a valid date");
  EXPECT_EQ(ConvertErrorOf([] { EncodeDate(2024, -1, std::numeric_limits<std::int32_t>::min()); }),
            "'2024--1--2147483648' is not a valid date");
  EXPECT_EQ(ConvertErrorOf([] { EncodeTime(24, 0, 0, 0); }), "'24:00:00.000' is not a valid time");
  EXPECT_EQ(ConvertErrorOf([] { EncodeTime(23, 59, 59, 1000); }), "'23:59:59.1000' is not a valid time");
  EXPECT_EQ(EncodeDate(2000, 2, 29), 36585);
}

// -- To text --------------------------------------------------------------------------------------------------------

TEST_F(DateText, FollowsTheFormat) {
  const TDateTime morning = EncodeDate(2024, 3, 5) + EncodeTime(9, 7, 4, 60);
  const TDateTime evening = EncodeDate(2024, 3, 5) + EncodeTime(21, 7, 4, 60);
  const TDateTime midnight = EncodeDate(2024, 3, 5);
  struct TCase {
    const char* format;
    TDateTime date;
    const char* text;
  };
  const TCase cases[] = {
      {"d dd ddd dddd", morning, "5 05 Tue Tuesday"},
      {"m mm mmm mmmm", morning, "3 03 Mar March"},
      {"y yy yyy yyyy", morning, "24 24 2024 2024"},
      {"ddddd|dddddd|dddddddd", morning, "3/5/2024|Tuesday, March 5, 2024|Tuesday, March 5, 2024"},
      {"mmmmmmm yyyyyyy hhh zzzz", morning, "March 2024 09 060"},
      {"h hh n nn s ss z zzz", morning, "9 09 7 07 4 04 60 060"},
      {"YYYY-MM-DD HH:NN:SS", morning, "2024-03-05 09:07:04"},
      // The month after an hour is the minutes; only fields count, and only the one before.
      {"hh:mm", morning, "09:07"},
      {"h'h'm", morning, "9h7"},
      {"hh:ss:mm", morning, "09:04:03"},
      {"hmm mm", morning, "907 03"},
      {"mm hh", morning, "03 09"},
      {"t|tt", evening, "9:07 PM|9:07:04 PM"},
      {"c", evening, "3/5/2024 9:07:04 PM"},
      {"c", midnight, "3/5/2024"},
      {"", evening, "3/5/2024 9:07:04 PM"},
      // The half of the day: anywhere in the format, but not in quotes.
      {"h am/pm|h AM/PM", evening, "9 pm|9 PM"},
      {"h a/p", morning, "9 a"},
      {"A/P hh", evening, "P 09"},
      {"hampm", evening, "9PM"},
      {"hh:nn ampm", midnight, "12:00 AM"},
      {"hh 'ampm'", evening, "21 ampm"},
      {"h a am", evening, "21 a a7"},
      // Quotes hold the other quote, may be empty, and may lack their end.
      {"'d'\"m\"''yyyy", morning, "dm2024"},
      {"'\"'dd\"'\"", morning, "\"05'"},
      {"yyyy'mm", morning, "2024mm"},
      {"'", morning, ""},
      {"d/m/y é %x", morning, "5/3/24 é %x"},
  };
  for (const TCase& c : cases) EXPECT_EQ(FormatDateTime(c.format, c.date), c.text) << c.format;
}

TEST_F(DateText, AsksTheLocaleAtEachCall) {
  const TDateTime date = EncodeDate(2024, 3, 5) + 0.9;
  EXPECT_EQ(DateTimeToStr(date), "3/5/2024 9:36:00 PM");
  Locale() = German();
  Locale().LongTimeFormat = "HH:mm:ss AMPM";
  Locale().TimeSeparator = '.';
  Locale().TimePMString = "nachm.";
  EXPECT_EQ(DateToStr(date), "05.03.2024");
  EXPECT_EQ(TimeToStr(date), "09.36.00 nachm.");
  EXPECT_EQ(FormatDateTime("d/m", date), "5.3");
}

TEST_F(DateText, PrintsWhatIsNoDate) {
  EXPECT_EQ(FormatDateTime("ddd d mmm m yyyy hh:nn", kNaN), " 0  0 0000 00:00");
  EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh", 3e6 + 0.5), "0000-00-00 12");
}

TEST_F(DateText, SurvivesHostileFormats) {
  for (const char letter : std::string("cdmyhnszta/:'\"x\xC3"))
    for (const std::size_t length : {1u, 7u, 100u, 1u << 20})
      EXPECT_LE(FormatDateTime(std::string(length, letter), 45351.75).size(), length + 40) << letter << length;
  // Formats that name themselves or each other come to an end.
  Locale().ShortDateFormat = "c ddddd yyyy tt";
  Locale().LongDateFormat = "dddddd";
  Locale().LongTimeFormat = "tt c hh";
  EXPECT_EQ(FormatDateTime("c", 45351.75), "  2024    18");
}

// -- From text ------------------------------------------------------------------------------------------------------

TEST_F(DateText, ReadsDatesInTheOrderOfTheLocale) {
  struct TCase {
    const char* format;
    char separator;
    const char* text;
    TDay expected;
  };
  const TCase cases[] = {
      {"M/d/yyyy", '/', "3/5/2024", {2024, 3, 5}},
      {"M/d/yyyy", '/', "  03 / 05 / 2024 ", {2024, 3, 5}},
      {"dd.MM.yyyy", '.', "5.3.2024", {2024, 3, 5}},
      {"yyyy-MM-dd", '-', "2024-03-05", {2024, 3, 5}},
      {"yyyy. M. d.", '.', "2024. 3. 5.", {2024, 3, 5}},
      {"ddd d-M-yyyy", '-', "5-3-2024", {2024, 3, 5}},
      {"d M yyyy", ' ', "5  3 2024", {2024, 3, 5}},
      // What the format doesn't name comes behind, year first.
      {"d", '/', "5/2024/3", {2024, 3, 5}},
      {"", '/', "2024/3/5", {2024, 3, 5}},
      // Two digits of a year.
      {"M/d/yy", '/', "3/5/39", {2039, 3, 5}},
      {"M/d/yy", '/', "3/5/40", {1940, 3, 5}},
      {"M/d/yyyy", '/', "3/5/0", {2000, 3, 5}},
      {"M/d/yyyy", '/', "3/5/099", {99, 3, 5}},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(std::string(c.format) + " reads " + c.text);
    Locale().ShortDateFormat = c.format;
    Locale().DateSeparator = c.separator;
    EXPECT_EQ(DayOf(StrToDate(c.text)), c.expected);
  }
}

TEST_F(DateText, RefusesWhatIsNoDate) {
  for (const std::string text :
       {"", " ", "/", "3", "3/5", "3/5/", "3//2024", "/3/5/2024", "3/5/2024/1", "3-5-2024", "2/29/2023", "13/1/2024",
        "3/5/10000", "3/5/0000", "3/-5/2024", "3/5/2024x", "Mar/5/2024", "3/5/99999999999999999999", "3/5/2024//"})
    EXPECT_EQ(ConvertErrorOf([&] { StrToDate(text); }), "'" + text + "' is not a valid date");
}

TEST_F(DateText, ReadsTimes) {
  struct TCase {
    const char* text;
    TClock expected;
  };
  const TCase cases[] = {
      {"9", {9, 0, 0, 0}},
      {"9:30", {9, 30, 0, 0}},
      {" 09 : 30 : 15 ", {9, 30, 15, 0}},
      {"9:30:15.5", {9, 30, 15, 500}},
      {"9:30:15.025", {9, 30, 15, 25}},
      {"23:59:59.999", {23, 59, 59, 999}},
      {"12:30 AM", {0, 30, 0, 0}},
      {"12:30 PM", {12, 30, 0, 0}},
      {"9:30pm", {21, 30, 0, 0}},
      {"PM 9:30", {21, 30, 0, 0}},
      {"1 Pm ", {13, 0, 0, 0}},
  };
  for (const TCase& c : cases) EXPECT_EQ(ClockOf(StrToTime(c.text)), c.expected) << c.text;

  Locale() = German();
  EXPECT_EQ(ClockOf(StrToTime("21:30:15,5")), TClock(21, 30, 15, 500));
  EXPECT_EQ(ClockOf(StrToTime("9:30 PM")), TClock(21, 30, 0, 0)) << "the English signs are understood everywhere";
  Locale().TimePMString = "ΜΜ";
  EXPECT_EQ(ClockOf(StrToTime("9:30 μμ")), TClock(21, 30, 0, 0));
}

TEST_F(DateText, RefusesWhatIsNoTime) {
  for (const std::string text :
       {"", ":", "24:00", "9:60", "9:30:60", "0:30 AM", "13:00 PM", "9:", "9:30:", ":30", "9:30 XM", "AM", "AM 9 PM",
        "9:30 PM x", "9:30:15.1234", "9:30:15.", "-9:30", "9:30:15:00", "9999999999:00"})
    EXPECT_EQ(ConvertErrorOf([&] { StrToTime(text); }), "'" + text + "' is not a valid time");
}

TEST_F(DateText, ReadsBackWhatItPrints) {
  TLocaleSettings iso = German();
  iso.ShortDateFormat = "yyyy-MM-dd";
  iso.DateSeparator = '-';
  for (const TLocaleSettings& settings : {ClassicLocale(), German(), iso}) {
    Locale() = settings;
    SCOPED_TRACE(settings.ShortDateFormat);
    for (TDateTime date = EncodeDate(1899, 12, 30); date <= EncodeDate(2100, 12, 31); date += 1)
      ASSERT_EQ(StrToDate(DateToStr(date)), date);
    for (int second = 0; second < 86'400; second += 7)
      ASSERT_EQ(ClockOf(StrToTime(TimeToStr(second / 86'400.0))), ClockOf(second / 86'400.0));
  }
}

}  // namespace
}  // namespace vx
