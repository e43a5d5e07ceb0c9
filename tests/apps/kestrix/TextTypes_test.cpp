#include "TextTypes.h"

#include <gtest/gtest.h>

#include "platform/runtime/DateTime.h"

namespace vx::kestrix {
namespace {

TEST(CellText, ReadsIntegersOf32Bits) {
  for (const char* text : {"0", "-1", "+7", "007", "2147483647", "-2147483648", " 12 "})
    EXPECT_TRUE(ReadInteger(text)) << text;
  for (const char* text :
       {"", "-", "+", "1.0", "2147483648", "-2147483649", "99999999999999999999", "0x1F", "1e3", "1 2", "--1", "+-1"})
    EXPECT_FALSE(ReadInteger(text)) << text;
  EXPECT_EQ(ReadInteger("-007"), -7);
}

TEST(CellText, ReadsFloatsOfOneDecimalCharacter) {
  EXPECT_EQ(ReadFloat("0.25"), 0.25);
  EXPECT_EQ(ReadFloat(" -.5e-1 "), -0.05);
  EXPECT_EQ(ReadFloat("1,5", ','), 1.5);
  EXPECT_EQ(ReadFloat("1e308"), 1e308);
  for (const char* text :
       {"", ".", "e5", "1e", "1e999", "nan", "inf", "-inf", "0x10", "1,5", "1.2.3", "1 000", "1_000", "+-1"})
    EXPECT_FALSE(ReadFloat(text)) << text;
  EXPECT_FALSE(ReadFloat("1.5", ','));
  EXPECT_FALSE(ReadFloat(std::string(100000, '9')));
}

struct TDateCase {
  const char* text;
  const char* expected;  // day first; "-" for none
  bool isExchangeable = false;
};

TEST(CellText, ReadsDatesInTheirSpellings) {
  const TDateCase cases[] = {
      {"2015-02-21", "2015-02-21 00:00:00"},
      {"2015/2/1", "2015-02-01 00:00:00"},
      {"20150221", "2015-02-21 00:00:00"},
      {"21.2.2015", "2015-02-21 00:00:00"},
      {"3.4.15", "2015-04-03 00:00:00"},
      {"03/04/2015", "2015-04-03 00:00:00", true},
      {"04/04/2015", "2015-04-04 00:00:00"},
      {"13/04/2015", "2015-04-13 00:00:00"},
      {"3-4-1969", "1969-04-03 00:00:00", true},
      {"1/2/69", "2069-02-01 00:00:00", true},
      {"1/2/70", "1970-02-01 00:00:00", true},
      {"21 Feb 2015", "2015-02-21 00:00:00"},
      {"21-FEB-15", "2015-02-21 00:00:00"},
      {"1. sept 2015", "2015-09-01 00:00:00"},
      {"February 21, 2015", "2015-02-21 00:00:00"},
      {"May 1 2015", "2015-05-01 00:00:00"},
      {"2015-02-21 14:07", "2015-02-21 14:07:00"},
      {"2015-02-21T14:07:30Z", "2015-02-21 14:07:30"},
      {"2/1/2015 2:07:05 pm", "2015-01-02 14:07:05", true},
      {"2015-02-21 12:00 AM", "2015-02-21 00:00:00"},
      {"1850-01-02 18:00", "1850-01-02 18:00:00"},
      {"29.02.2016", "2016-02-29 00:00:00"},
      {"0001-01-01", "0001-01-01 00:00:00"},
      {"9999-12-31 23:59:59", "9999-12-31 23:59:59"},
      {"29.02.2015", "-"},
      {"2015-13-01", "-"},
      {"0000-01-01", "-"},
      {"2015-02-30", "-"},
      {"2015-02", "-"},
      {"2015-02-21 24:00", "-"},
      {"2015-02-21 14:60", "-"},
      {"2015-02-21 13:00 pm", "-"},
      {"2015-02-21 14:07+02:00", "-"},  // a zone isn't dropped without a word
      {"2015-02-21x", "-"},
      {"2015-02.21", "-"},
      {"1/2/3", "-"},
      {"Ma 1 2015", "-"},
      {"14:07", "-"},
      {"12", "-"},
      {"99999999999999999999", "-"},
      {"", "-"},
      {"-", "-"},
  };
  for (const auto& [text, expected, isExchangeable] : cases) {
    SCOPED_TRACE(text);
    const auto date = ReadDate(text, TDateOrder::DayFirst);
    EXPECT_EQ(date ? FormatDateTime("yyyy-mm-dd hh':'nn':'ss", date->days) : "-", expected);
    EXPECT_EQ(date && date->couldBeExchanged, isExchangeable);
  }
  EXPECT_EQ(ReadDate("03/04/2015", TDateOrder::MonthFirst)->days, EncodeDate(2015, 3, 4));
  EXPECT_FALSE(ReadDate("13/04/2015", TDateOrder::MonthFirst));
}

TEST(CellText, DatesAreReadAsTheyAreWrittenOnEveryDay) {
  for (double day = EncodeDate(1890, 1, 1); day < EncodeDate(2110, 1, 1); ++day)
    for (const char* format : {"yyyy-mm-dd", "d.m.yyyy", "d-mmm-yyyy", "mmmm d, yyyy"})
      ASSERT_EQ(ReadDate(FormatDateTime(format, day), TDateOrder::DayFirst)->days, day) << day << ' ' << format;
}

struct TTypeCase {
  const char* name;
  std::vector<const char*> cells;
  const char* type;
  const char* withComma;  ///< the type where a comma may be the decimal character, and is
};

TEST(TypeFinder, FindsTheNarrowestTypeOfAllCells) {
  const TTypeCase cases[] = {
      {"nothing", {}, "string", "string"},
      {"only nulls", {"", "-", " NA "}, "string", "string"},
      {"integers", {"1", "-2", "2147483647"}, "integer", "integer"},
      {"nulls among numbers", {"1", "  -  ", "", "NA"}, "integer", "integer"},
      {"other words are text", {"1", "n/a"}, "string", "string"},
      {"one leading zero makes text", {"1", "02"}, "string", "string"},
      {"zero alone doesn't", {"0", "0.5", "-0"}, "float", "string"},
      {"digits beyond 32 bits", {"1", "2147483648"}, "string", "string"},
      {"amounts beyond 32 bits", {"1.5", "2147483648"}, "float", "string"},
      {"too many digits for a float", {"1.5", "12345678901234567890"}, "string", "string"},
      {"floats", {"1", "2.5", "1e-3"}, "float", "string"},
      {"decimal commas", {"1", "2,5"}, "string", "float"},
      {"both decimals", {"1.5", "2,5"}, "string", "string"},
      {"no numbers", {"nan", "inf"}, "string", "string"},
      {"Booleans", {"true", "NO", "", "Yes"}, "boolean", "boolean"},
      {"zero and one are numbers", {"0", "1"}, "integer", "integer"},
      {"ISO dates", {"2015-01-02", "-", "1850-01-01"}, "date", "date"},
      {"one time makes date-times", {"2015-01-02", "2015-01-02 10:00"}, "datetime", "datetime"},
      {"German dates", {"1.2.2015", "31.12.2015"}, "date", "date"},
      {"year and month in one number", {"201501", "201512"}, "integer", "integer"},
      {"compact dates are numbers", {"20150101"}, "integer", "integer"},
      {"times are text", {"14:07"}, "string", "string"},
      {"one bad date", {"2015-01-02", "2015-02-30"}, "string", "string"},
      {"dates of both orders", {"13/01/2015", "01/13/2015"}, "string", "string"},
      {"number then date", {"1", "2015-01-02"}, "string", "string"},
  };
  const TNullWords nulls;
  for (const TTypeCase& each : cases) {
    SCOPED_TRACE(each.name);
    TTypeFinder finder(nulls, /*mayHaveDecimalComma=*/true);
    for (const char* cell : each.cells) finder.Add(cell, 1);
    EXPECT_EQ(TypeName(finder.Type('.')), each.type);
    EXPECT_EQ(TypeName(finder.Type(',')), each.withComma);
  }
}

struct TOrderCase {
  std::vector<const char*> cells;
  TDateOrder order;
  bool isOpen;
};

TEST(TypeFinder, LetsTheColumnDecideBetweenDayAndMonth) {
  const TOrderCase cases[] = {
      {{"03/04/2015", "13/04/2015"}, TDateOrder::DayFirst, false},
      {{"03/04/2015", "04/13/2015"}, TDateOrder::MonthFirst, false},
      {{"03/04/2015", "01/02/2015"}, TDateOrder::MonthFirst, true},  // preferred
      {{"03/03/2015"}, TDateOrder::MonthFirst, false},               // no other date comes out
      {{"3.4.2015"}, TDateOrder::MonthFirst, false},
  };
  const TNullWords nulls;
  for (const TOrderCase& each : cases) {
    SCOPED_TRACE(each.cells.front());
    TTypeFinder finder(nulls);
    for (const char* cell : each.cells) finder.Add(cell, 1);
    EXPECT_EQ(finder.Type('.'), TColumnType::Date);
    EXPECT_EQ(finder.DateOrder(TDateOrder::MonthFirst), each.order);
    EXPECT_EQ(finder.IsDateOrderOpen(), each.isOpen);
  }
}

}  // namespace
}  // namespace vx::kestrix
