#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/Text.h"
#include "platform/system/Clock.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::Cut;
using test::MessageOf;

constexpr TDateTime kToday = 46349;  // 2026-11-23
const TDateTime kTimeOfDay = EncodeTime(10, 30, 15, 250);

class ReadDates : public testing::Test {
 protected:
  TLocaleScope locale_{ClassicLocale()};
  TFixedClock clock_{kToday + kTimeOfDay};
  TClockScope scope_{clock_};
};

// -- Printing and reading back ----------------------------------------------------------------------------------------

struct TCountry {
  const char* date;
  const char* time;
  const char* separators;  ///< of dates, times and decimals
  const char* am;
  const char* pm;
  const char* months;   ///< empty for the classic names
  const char* printed;  ///< 2024-03-05, 18:07:09
  const char* mask;
};

constexpr const char* kFrench = "janv. févr. mars avr. mai juin juil. août sept. oct. nov. déc.";

// The blank at the end of a time with a sign stays; a format that ends in a field of one letter has a mask without it.
constexpr TCountry kCountries[] = {
    {"M/d/yyyy", "h:mm:ss AMPM", "/:.", "AM", "PM", "", "03/05/2024 06:07:09 PM ", "99/99/9999 99:99:99 aa"},
    {"d/MM/yyyy", "h:mm:ss AMPM", "/:.", "a.m.", "p.m.", "", "05/03/2024 06:07:09 p.m. ", "99/99/9999 99:99:99 aaaa"},
    {"dd.MM.yyyy", "HH:mm:ss", ".:,", "", "", "", "05.03.2024 18:07:09", "99/99/9999 99:99:99"},
    {"d.M.yyyy", "H:mm:ss", "..,", "ap.", "ip.", "", "05.03.2024 18.07.09", "99/99/9999 99:99:99"},
    {"yyyy-MM-dd", "HH:mm:ss", "-:,", "fm", "em", "", "2024-03-05 18:07:09", "9999/99/99 99:99:99"},
    {"yyyy/M/d", "H:mm:ss", "/:.", "午前", "午後", "", "2024/03/05 18:07:09", "9999/99/ 99:99:99"},
    {"yy/MM/dd", "h:mm:ss AMPM", "/:.", "AM", "PM", "", "24/03/05 06:07:09 PM ", "99/99/99 99:99:99 aa"},
    {"dd-MMM-yy", "hh:mm:ss AMPM", "-:.", "AM", "PM", "", "05-Mar-24 06:07:09 PM ", "99/aaa/99 99:99:99 aa"},
    {"dd/MMM/yyyy", "HH:mm:ss", "/:,", "", "", kFrench, "05/mars/2024 18:07:09", "99/aaa/9999 99:99:99"},
    {"d/M/yyyy", "h:mm:ss AMPM", "/:,", "πμ", "μμ", "", "05/03/2024 06:07:09 μμ ", "99/99/9999 99:99:99 aa"},
    {"yyyy-M-d", "AMPM h:mm:ss", "-:.", "上", "下", "", "2024-03-05 下 06:07:09", "9999/99/ a 99:99:99"},
    {"M-d-yy", "h:nn:s", "-:,", "v", "n", "", "03-05-24 18:07:09", "99/99/99 99:99:"},
};

TLocaleSettings SettingsOf(const TCountry& country) {
  TLocaleSettings settings = ClassicLocale();
  settings.ShortDateFormat = country.date;
  settings.LongTimeFormat = country.time;
  settings.DateSeparator = country.separators[0];
  settings.TimeSeparator = country.separators[1];
  settings.DecimalSeparator = country.separators[2];
  settings.TimeAMString = country.am;
  settings.TimePMString = country.pm;
  const std::vector<std::string> months = Cut(country.months);
  std::copy(months.begin(), months.end(), settings.ShortMonthNames.begin());
  return settings;
}

/// A date that looks like a time reads at midnight: it has the other separator, or a letter of the signs, as March has.
bool LooksLikeATime(const std::string& text) {
  const std::string upper = AnsiUpperCase(text);
  const auto holds = [&upper](const std::string& sign) {
    return IsAscii(sign) && !sign.empty() && upper.find(UpperCase(sign)[0]) != std::string::npos;
  };
  return text.find(Locale().TimeSeparator) != std::string::npos || holds(Locale().TimeAMString) ||
         holds(Locale().TimePMString);
}

TEST_F(ReadDates, GivesBackWhatWasPrintedInTwelveCountries) {
  for (const TCountry& country : kCountries) {
    SCOPED_TRACE(country.printed);
    Locale() = SettingsOf(country);
    EXPECT_EQ(SysDateToStr(45356 + EncodeTime(18, 7, 9, 0)), country.printed);
    EXPECT_EQ(GetSysDateTimeMask(), country.mask);
    std::string untouched = GetEmptyDateTime();  // as a masked edit shows it
    std::replace(untouched.begin(), untouched.end(), '/', Locale().DateSeparator);
    std::replace(untouched.begin(), untouched.end(), ':', Locale().TimeSeparator);
    EXPECT_EQ(StrToSysDate(untouched, false), 0);
    for (std::int32_t day = 25570; day <= 50422; ++day) {
      const TDateTime date = day + (day * 7919 % 86'400) / 86'400.0;
      constexpr double kMillisecond = 1.0 / kMillisecondsPerDay;
      ASSERT_NEAR(StrToSysDate(SysDateToStr(date), false), date, kMillisecond) << SysDateToStr(date);
      ASSERT_NEAR(StrToSysDate(DateTimeToStr(date), false), date, kMillisecond) << DateTimeToStr(date);
      const std::string alone = SysDateToDateStr(date);
      ASSERT_NEAR(StrToSysDate(alone, true), day + (LooksLikeATime(alone) ? 0 : kTimeOfDay), kMillisecond) << alone;
    }
  }
}

// -- What users type --------------------------------------------------------------------------------------------------

TEST_F(ReadDates, FillsWhatIsMissing) {
  struct TCase {
    const char* text;
    TDateTime expected;
  };
  const TDateTime dec5 = EncodeDate(2026, 12, 5), present = kTimeOfDay;
  const TCase cases[] = {
      {"", 0},
      {" / / ", 0},
      {"  /  /       :  :", 0},
      {" * ", kToday + EncodeTime(10, 30, 15, 0)},
      // A date alone carries the time of day. Days, months and years come from the clock.
      {"3/", EncodeDate(2026, 3, 23) + present},
      {"9", EncodeDate(2026, 9, 23) + present},
      {"/4", EncodeDate(2026, 11, 4) + present},
      {"//2024", EncodeDate(2024, 11, 23) + present},
      {"12 / 5", dec5 + present},
      {" 12/5/26\t", dec5 + present},
      {"1/2/1970", 25570 + present},
      {"1/17/2038", 50422 + present},
      // A time alone is today's.
      {"12:", kToday + 0.5},
      {":15", kToday + EncodeTime(12, 15, 0, 0)},
      {"9:30p", kToday + EncodeTime(21, 30, 0, 0)},
      {"9:30:15 p", kToday + EncodeTime(21, 30, 15, 0)},
      {"9 p", kToday + EncodeTime(21, 0, 0, 0)},
      {"9 : 30 AnyWord", kToday + EncodeTime(9, 30, 0, 0)},
      // Fields of a mask that were left blank.
      {"  /  /     07:00:00 AM", kToday + EncodeTime(7, 0, 0, 0)},
      {"12/05/     07:00:00 AM", dec5 + EncodeTime(7, 0, 0, 0)},
      {"12/5 /     07:  :   AM", dec5 + EncodeTime(7, 0, 0, 0)},
      {"12/05/2026   :  :", dec5},
      {"12/5/2026/ 9", dec5 + present},
      {"1/17/2038 23:59", 50422 + EncodeTime(23, 59, 0, 0)},
  };
  for (const TCase& c : cases) EXPECT_DOUBLE_EQ(StrToSysDate(c.text, false), c.expected) << c.text;
  for (const char* text : {"", " \n", "/", ":::"}) EXPECT_EQ(StrToSysDate(text, true), kToday) << text;
}

TEST_F(ReadDates, TakesTwoDigitsOfAYearByTheLengthOfItsField) {
  Locale().ShortDateFormat = "M/d/yy";
  EXPECT_EQ(std::trunc(StrToSysDate("3/5/70", false)), EncodeDate(1970, 3, 5));
  EXPECT_EQ(std::trunc(StrToSysDate("3/5/5", false)), EncodeDate(2005, 3, 5));
  EXPECT_EQ(std::trunc(StrToSysDate("3/5", false)), EncodeDate(2026, 3, 5));
  for (const char* text : {"3/5/39", "3/5/40", "3/5/1998", "3/5/2147483647"})
    EXPECT_THROW(StrToSysDate(text, false), EVXDateFuncException) << text;
}

TEST_F(ReadDates, TellsOneMessageForWhateverIsWrong) {
  for (const std::string& text :
       Cut("1/1/1970|1/18/2038| 1/18/2038 0:00|2/29/2023|13/1/2024|3/x/2024|x|9:60|25:00|13:00 PM|AM|"
           "3/5/2024 9:x|%s|5/5/99999999999999999999|1:2:3:4:p\xFF",
           '|')) {
    const auto message = MessageOf<EVXDateFuncException>([&] { StrToSysDate(text, false); });
    EXPECT_EQ(message, "Invalid date: " + text + " (should be between 1/2/1970 and 1/17/2038).");
  }
}

// A walk that starts anew at each token would take days.
TEST_F(ReadDates, EndsForTextsOfAnyLength) {
  for (const std::string& piece : {std::string(1, '\0') + "x", std::string("/"), std::string(":"), std::string(" "),
                                   std::string(" /"), std::string(": "), std::string("9"), std::string("9/"),
                                   std::string("p"), std::string("1p "), std::string("\xC3"), std::string("é:")}) {
    std::string text = "1";
    while (text.size() < 2'000'000) text += piece;
    try {
      StrToSysDate(text, false);
      StrToSysDate(text.substr(1), false);
    } catch (const EVXDateFuncException& error) {
      EXPECT_LT(error.Message().size(), text.size() + 100);
    }
  }
}

// -- Pieces -----------------------------------------------------------------------------------------------------------

TEST_F(ReadDates, CutsAndBlanksTextsOfDateAndTime) {
  EXPECT_EQ(ExtractDate("a b c"), "a");
  EXPECT_EQ(ExtractTime("a b c"), "c");
  EXPECT_EQ(ExtractDate("a"), "") << "a text without a blank is a time";
  EXPECT_EQ(ExtractTime("a"), "a");
  EXPECT_EQ(GetEmptyDateTime(), "  /  /       :  :     ");
  EXPECT_EQ(GetEmptyDate("03/05/2024 06:00:00"), "  /  /     06:00:00");
  EXPECT_EQ(GetEmptyTime("03/05/2024 06:00:00"), "03/05/2024   :  :     ");
  Locale().ShortDateFormat = Locale().LongTimeFormat = "";
  EXPECT_EQ(GetEmptyDateTime(), " ");
  Locale().ShortDateFormat = "yyyy年M月d日";
  Locale().LongTimeFormat = "h時amx";
  EXPECT_EQ(GetSysDateTimeMask(), "9999年99月99 99時aa") << "without the last character";
}

}  // namespace
}  // namespace vx
