#include "platform/runtime/Locale.h"

#include <gtest/gtest.h>

#include <string>

namespace vx {
namespace {

TSystemLocaleItems Items(std::string date, std::string time, std::string am = "AM", std::string pm = "PM") {
  TSystemLocaleItems items;
  items.DateFormat = std::move(date);
  items.TimeFormat = std::move(time);
  items.TimeFormat12 = "%I:%M:%S %p";
  items.AM = std::move(am);
  items.PM = std::move(pm);
  items.Radix = ".";
  return items;
}

TEST(Locale, TurnsPatternsIntoFormats) {
  struct TCase {
    const char* name;
    TSystemLocaleItems items;
    const char* date;
    char dateSeparator;
    const char* time;
    char timeSeparator;
  };
  const TCase cases[] = {
      {"American", Items("%m/%d/%Y", "%r"), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
      {"German", Items("%d.%m.%Y", "%T", "", ""), "d.M.yyyy", '.', "HH:mm:ss", ':'},
      {"Swedish", Items("%Y-%m-%d", "%H:%M:%S", "", ""), "yyyy-M-d", '-', "HH:mm:ss", ':'},
      // Dates are keys: two digits of a year would let centuries fall together.
      {"TwoDigitYear", Items("%d/%m/%y", "%H:%M:%S"), "d/M/yyyy", '/', "HH:mm:ss", ':'},
      {"Finnish", Items("%d.%m.%Y", "%H.%M.%S"), "d.M.yyyy", '.', "HH:mm:ss", '.'},
      {"Hungarian", Items("%Y-%m-%d.", "%k.%M.%S"), "yyyy-M-d", '-', "HH:mm:ss", '.'},
      // Signs that are no single bytes can't stand between fields.
      {"Japanese", Items("%Y年%m月%d日", "%H時%M分%S秒"), "yyyy/M/d", '/', "HH:mm:ss", ':'},
      {"Korean", Items("%Y년 %m월 %d일", "%p %I시 %M분", "오전", "오후"), "yyyy/M/d", '/', "AMPM h:mm:ss", ':'},
      {"NameOfMonth", Items("%a %d-%b-%Y", "%l:%M %P"), "d-MMM-yyyy", '-', "h:mm:ss AMPM", ':'},
      {"FlagsAndAlternatives", Items("%-d.%_m.%EY", "%OH:%OM"), "d.M.yyyy", '.', "HH:mm:ss", ':'},
      {"Shorthands", Items("%F", "%R"), "yyyy-M-d", '-', "HH:mm:ss", ':'},
      // Twelve hours without a sign for the halves would lose half of the day.
      {"TwelveHoursWithoutSigns", Items("%D", "%r", "", ""), "M/d/yyyy", '/', "HH:mm:ss", ':'},
      {"Nothing", Items("", ""), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
      {"Broken", Items("%", "%E"), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
      {"FieldMissing", Items("%d.%m.", "%M"), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
      {"TwoMonths", Items("%b %m %d %Y", "%S"), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
      {"Long", Items(std::string(1 << 20, '%'), std::string(1 << 20, '-')), "M/d/yyyy", '/', "h:mm:ss AMPM", ':'},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.name);
    const TLocaleSettings settings = SettingsOf(c.items);
    EXPECT_EQ(settings.ShortDateFormat, c.date);
    EXPECT_EQ(settings.DateSeparator, c.dateSeparator);
    EXPECT_EQ(settings.LongTimeFormat, c.time);
    EXPECT_EQ(settings.TimeSeparator, c.timeSeparator);
  }
}

TEST(Locale, TakesOnlySeparatorsOfOneByte) {
  struct TCase {
    const char *radix, *thousands;
    char decimal, group;
  };
  constexpr TCase kCases[] = {
      {".", ",", '.', ','}, {",", ".", ',', '.'}, {",", "\u202F", ',', ' '}, {"\u066B", "\u066C", '.', ' '},
      {".", "", '.', ','},  {",", "", ',', '.'},  {",", ",", ',', '.'},      {"", "", '.', ','},
  };
  for (const TCase& c : kCases) {
    TSystemLocaleItems items = Items("%F", "%T");
    items.Radix = c.radix;
    items.ThousandsSeparator = c.thousands;
    EXPECT_EQ(SettingsOf(items).DecimalSeparator, c.decimal) << c.radix << c.thousands;
    EXPECT_EQ(SettingsOf(items).ThousandSeparator, c.group) << c.radix << c.thousands;
  }
}

TEST(Locale, TakesNamesWholeOrNotAtAll) {
  TSystemLocaleItems items = Items("%F", "%T");
  items.ShortDays = {"dim.", "lun.", "mar.", "mer.", "jeu.", "ven.", "sam."};
  items.LongMonths.fill("août");
  items.ShortMonths.fill("ao\xFBt");  // of another code set
  items.LongDays.fill("jour");
  items.LongDays[3].clear();
  const TLocaleSettings settings = SettingsOf(items);
  EXPECT_EQ(settings.ShortDayNames[1], "lun.");
  EXPECT_EQ(settings.LongMonthNames[7], "août");
  EXPECT_EQ(settings.ShortMonthNames, ClassicLocale().ShortMonthNames);
  EXPECT_EQ(settings.LongDayNames, ClassicLocale().LongDayNames);
}

TEST(Locale, ScopesNestAndRestore) {
  const TLocaleSettings before = Locale();
  {
    const TLocaleScope outer(ClassicLocale());
    Locale().DecimalSeparator = ',';
    {
      const TLocaleScope inner(ClassicLocale());
      EXPECT_EQ(Locale().DecimalSeparator, '.');
    }
    EXPECT_EQ(Locale().DecimalSeparator, ',');
  }
  EXPECT_TRUE(Locale() == before);
}

}  // namespace
}  // namespace vx
