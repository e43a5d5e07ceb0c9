#include "platform/runtime/DateTime.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::Cut;
using test::kInfinity;
using test::kNaN;
using test::MessageOf;

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

// The standard library's calendar, over all of ours.
TEST(DateTime, CountsEveryDayOfTheCalendar) {
  using std::chrono::sys_days;
  using std::chrono::year;
  constexpr sys_days kEpoch = year{1899} / 12 / 30;
  for (sys_days today = year{1} / 1 / 1; today < sys_days{year{10000} / 1 / 1}; today += std::chrono::days{1}) {
    const std::chrono::year_month_day civil{today};
    const TDay expected = {int{civil.year()}, unsigned{civil.month()}, unsigned{civil.day()}};
    const auto [y, m, d] = expected;
    const auto date = static_cast<TDateTime>((today - kEpoch).count());
    const auto weekday = static_cast<std::int32_t>(std::chrono::weekday{today}.c_encoding()) + 1;
    const bool agrees = EncodeDate(y, m, d) == date && DayOf(date + 0.75 * (date < 0 ? -1 : 1)) == expected &&
                        DayOfWeek(date) == weekday;
    ASSERT_TRUE(agrees) << y << "-" << m << "-" << d << " counted as " << date;
  }
}

TEST(DateTime, TakesFractionsApart) {
  const auto partsOf = [](TDateTime date) { return std::pair(DayOf(date), ClockOf(date)); };
  const auto expect = [](const TDay& day, const TClock& clock) { return std::pair(day, clock); };
  constexpr double kMillisecond = 1.0 / kMillisecondsPerDay;
  constexpr TDay kNoDay = {0, 0, 0};
  constexpr TClock kMidnight = {0, 0, 0, 0};
  EXPECT_EQ(partsOf(0), expect({1899, 12, 30}, kMidnight));
  // Before the first day the whole part counts backwards and the fraction forwards.
  EXPECT_EQ(partsOf(-1.25), expect({1899, 12, 29}, {6, 0, 0, 0}));
  EXPECT_EQ(partsOf(-0.25), expect({1899, 12, 30}, {6, 0, 0, 0}));
  EXPECT_EQ(partsOf(kFirstDate - 0.75), expect({1, 1, 1}, {18, 0, 0, 0}));
  EXPECT_EQ(partsOf(1 + 0.5 * kMillisecond), expect({1899, 12, 31}, {0, 0, 0, 1}));
  EXPECT_EQ(partsOf(2 - kMillisecond), expect({1899, 12, 31}, {23, 59, 59, 999}));
  // A fraction that rounds up to a whole day carries into the date.
  EXPECT_EQ(partsOf(36526 - 0.4 * kMillisecond), expect({2000, 1, 1}, kMidnight));
  EXPECT_EQ(partsOf(-2 - (1 - 0.4 * kMillisecond)), expect({1899, 12, 29}, kMidnight));
  for (const double outside : {std::nextafter(2958466.0, 0), -693594.0, 1e300, kNaN, -kInfinity})
    EXPECT_EQ(partsOf(outside), expect(kNoDay, kMidnight)) << outside;
  EXPECT_EQ(partsOf(2958466.5), expect(kNoDay, {12, 0, 0, 0}));
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
  const auto dateError = [](std::int32_t y, std::int32_t m, std::int32_t d) {
    return MessageOf<EConvertError>([&] { EncodeDate(y, m, d); });
  };
  EXPECT_EQ(dateError(1900, 2, 29), "'1900-02-29' is not a valid date");
  EXPECT_EQ(dateError(0, 1, 1), "'0000-01-01' is not a valid date");
  EXPECT_EQ(dateError(10000, 1, 1), "'10000-01-01' is not a valid date");
  EXPECT_EQ(dateError(2024, -1, INT32_MIN), "'2024--1--2147483648' is not a valid date");
  EXPECT_EQ(MessageOf<EConvertError>([] { EncodeTime(24, 0, 0, 0); }), "'24:00:00.000' is not a valid time");
  EXPECT_EQ(MessageOf<EConvertError>([] { EncodeTime(23, 59, 59, 1000); }), "'23:59:59.1000' is not a valid time");
}

// -- To text --------------------------------------------------------------------------------------------------------

TEST_F(DateText, FollowsTheFormat) {
  const TDateTime day = EncodeDate(2024, 3, 5), evening = day + EncodeTime(21, 7, 4, 60);
  using TCase = std::pair<const char*, const char*>;
  // The month after an hour is the minutes; only fields count, and only the one before. Quotes hold the other quote,
  // may be empty, and may lack their end.
  const TCase inTheMorning[] = {{"d dd ddd dddd", "5 05 Tue Tuesday"},
                                {"m mm mmm mmmm", "3 03 Mar March"},
                                {"y yy yyy yyyy", "24 24 2024 2024"},
                                {"mmmmmmm yyyyyyy hhh", "March 2024 09"},
                                {"h hh n nn s ss z zzzz", "9 09 7 07 4 04 60 060"},
                                {"YYYY-MM-DD HH:NN:SS", "2024-03-05 09:07:04"},
                                {"h'h'm|hh:ss:mm", "9h7|09:04:03"},
                                {"mm hmm mm", "03 907 03"},
                                {"d/m/y é %x", "5/3/24 é %x"},
                                {"'d'\"m\"''d'\"'m'", "dm5\"3"},
                                {"'\"'dd\"'\" yyyy", "\"05' 2024"}};
  for (const auto& [format, text] : inTheMorning) EXPECT_EQ(FormatDateTime(format, evening - 0.5), text) << format;
  // The half of the day: anywhere in the format, but not in quotes.
  const TCase inTheEvening[] = {{"t|tt", "9:07 PM|9:07:04 PM"}, {"c", "3/5/2024 9:07:04 PM"},
                                {"", "3/5/2024 9:07:04 PM"},    {"h am/pm|h AM/PM", "9 pm|9 PM"},
                                {"A/P hampm a/p", "P 9PM p"},   {"hh 'ampm'", "21 ampm"},
                                {"h a am", "21 a a7"},          {"yyyy'mm", "2024mm"}};
  for (const auto& [format, text] : inTheEvening) EXPECT_EQ(FormatDateTime(format, evening), text) << format;
  EXPECT_EQ(FormatDateTime("c hh:nn ampm", day), "3/5/2024 12:00 AM");
  EXPECT_EQ(FormatDateTime("ddddd|dddddd|dddddddd|'", day), "3/5/2024|Tuesday, March 5, 2024|Tuesday, March 5, 2024|");
  EXPECT_EQ(FormatDateTime("ddd d mmm m yyyy hh:nn", kNaN), " 0  0 0000 00:00");
  EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh", 3e6 + 0.5), "0000-00-00 12");
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
  };
  // What the format doesn't name comes behind, year first.
  const TCase cases[] = {{"M/d/yyyy", '/', "3/5/2024"},
                         {"M/d/yyyy", '/', "  03 / 05 / 2024 "},
                         {"dd.MM.yyyy", '.', "5.3.2024"},
                         {"yyyy-MM-dd", '-', "2024-03-05"},
                         {"ddd d-M-yyyy", '-', "5-3-2024"},
                         {"yyyy. M. d.", '.', "2024. 3. 5."},
                         {"d M yyyy", ' ', "5  3 2024"},
                         {"d", '/', "5/2024/3"},
                         {"", '/', "2024/3/5"}};
  for (const TCase& c : cases) {
    SCOPED_TRACE(std::string(c.format) + " reads " + c.text);
    Locale().ShortDateFormat = c.format;
    Locale().DateSeparator = c.separator;
    EXPECT_EQ(DayOf(StrToDate(c.text)), TDay(2024, 3, 5));
  }
  Locale() = ClassicLocale();
  constexpr std::pair<const char*, int> kYears[] = {
      {"3/5/39", 2039}, {"3/5/40", 1940}, {"3/5/0", 2000}, {"3/5/099", 99}};
  for (const auto& [text, year] : kYears) EXPECT_EQ(DayOf(StrToDate(text)), TDay(year, 3, 5)) << text;
}

TEST_F(DateText, RefusesWhatIsNoDateOrTime) {
  for (const std::string& text :
       Cut("| |/|3|3/5|3/5/|3//2024|/3/5/2024|3/5/2024/1|3-5-2024|2/29/2023|13/1/2024|3/5/10000|3/5/0000|3/-5/2024|"
           "3/5/2024x|Mar/5/2024|3/5/99999999999999999999|3/5/2024//",
           '|'))
    EXPECT_EQ(MessageOf<EConvertError>([&] { StrToDate(text); }), "'" + text + "' is not a valid date");
  for (const std::string& text :
       Cut("|:|24:00|9:60|9:30:60|0:30 AM|13:00 PM|9:|9:30:|:30|9:30 XM|AM|AM 9 PM|9:30 PM x|9:30:15.1234|9:30:15.|"
           "-9:30|9:30:15:00|9999999999:00|9 AM:30 PM|9 PM:|PM:30|9 PM 30 15|9 30",
           '|'))
    EXPECT_EQ(MessageOf<EConvertError>([&] { StrToTime(text); }), "'" + text + "' is not a valid time");
}

TEST_F(DateText, ReadsTimes) {
  for (const std::string& text :
       Cut("21:30|9:30pm|PM 9:30| 09 : 30 : 00 Pm|21:30:0.0|9:30PM:00|9 PM 30|9 PM:30:0.0", '|'))
    EXPECT_EQ(ClockOf(StrToTime(text)), TClock(21, 30, 0, 0)) << text;
  EXPECT_EQ(ClockOf(StrToTime("9")), TClock(9, 0, 0, 0));
  EXPECT_EQ(ClockOf(StrToTime("9:30:15.5")), TClock(9, 30, 15, 500));
  EXPECT_EQ(ClockOf(StrToTime("23:59:59.099")), TClock(23, 59, 59, 99));
  EXPECT_EQ(ClockOf(StrToTime("12:30 AM")), TClock(0, 30, 0, 0));
  EXPECT_EQ(ClockOf(StrToTime("12:30 PM")), TClock(12, 30, 0, 0));

  Locale() = German();
  EXPECT_EQ(ClockOf(StrToTime("21:30:15,5")), TClock(21, 30, 15, 500));
  EXPECT_EQ(ClockOf(StrToTime("9:30 PM")), TClock(21, 30, 0, 0)) << "the English signs are understood everywhere";
  Locale().TimePMString = "ΜΜ";
  EXPECT_EQ(ClockOf(StrToTime("9:30 μμ")), TClock(21, 30, 0, 0));
}

}  // namespace
}  // namespace vx
