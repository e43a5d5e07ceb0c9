#include "TextTypes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <span>

#include "platform/runtime/DateTime.h"
#include "support/TestKit.h"

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
  const char* expected;  // day first
  bool isExchangeable = false;
};

TEST(CellText, ReadsDatesInTheirSpellings) {
  constexpr TDateCase kCases[] = {
      {"2015/2/1", "2015-02-01"},     {"20150221", "2015-02-21"},         {"21.2.2015", "2015-02-21"},
      {"3.4.15", "2015-04-03"},       {"03/04/2015", "2015-04-03", true}, {"04/04/2015", "2015-04-04"},
      {"13/04/2015", "2015-04-13"},   {"3-4-1969", "1969-04-03", true},   {"1/2/69", "2069-02-01", true},
      {"1/2/70", "1970-02-01", true}, {"21 Feb 2015", "2015-02-21"},      {"21-FEB-15", "2015-02-21"},
      {"1. sept 2015", "2015-09-01"}, {"May 1 2015", "2015-05-01"},       {"29.02.2016", "2016-02-29"},
      {"0001-01-01", "0001-01-01"}};
  constexpr TDateCase kTimes[] = {
      {"2015-02-21 14:07", "2015-02-21 14:07:00"},          {"2015-02-21T14:07:30Z", "2015-02-21 14:07:30"},
      {"2/1/2015 2:07:05 pm", "2015-01-02 14:07:05", true}, {"2015-02-21 12:00 AM", "2015-02-21 00:00:00"},
      {"1850-01-02 18:00", "1850-01-02 18:00:00"},          {"February 21, 2015", "2015-02-21 00:00:00"},
      {"9999-12-31 23:59:59", "9999-12-31 23:59:59"}};
  for (const std::span<const TDateCase> cases : std::initializer_list<std::span<const TDateCase>>{kCases, kTimes})
    for (const auto& [text, expected, isExchangeable] : cases) {
      SCOPED_TRACE(text);
      const auto date = ReadDate(text, TDateOrder::DayFirst);
      ASSERT_TRUE(date);
      EXPECT_EQ(FormatDateTime("yyyy-mm-dd hh':'nn':'ss", date->days),
                std::string(expected) + (std::strlen(expected) > 10 ? "" : " 00:00:00"));
      EXPECT_EQ(date->couldBeExchanged, isExchangeable);
    }
  EXPECT_EQ(ReadDate("03/04/2015", TDateOrder::MonthFirst)->days, EncodeDate(2015, 3, 4));
  EXPECT_FALSE(ReadDate("13/04/2015", TDateOrder::MonthFirst));
}

TEST(CellText, RefusesWhatIsNoDate) {
  // A zone isn't dropped without a word.
  for (const char* text : {"29.02.2015", "2015-13-01", "0000-01-01", "2015-02-30", "2015-02", "2015-02-21 24:00",
                           "2015-02-21 14:60", "2015-02-21 13:00 pm", "2015-02-21 14:07+02:00", "2015-02-21x",
                           "2015-02.21", "1/2/3", "Ma 1 2015", "14:07", "12", "99999999999999999999", "", "-"})
    EXPECT_FALSE(ReadDate(text, TDateOrder::DayFirst)) << text;
}

TEST(CellText, DatesAreReadAsTheyAreWrittenOnEveryDay) {
  for (double day = EncodeDate(1890, 1, 1); day < EncodeDate(2110, 1, 1); ++day)
    for (const char* format : {"yyyy-mm-dd", "d.m.yyyy", "d-mmm-yyyy", "mmmm d, yyyy"})
      ASSERT_EQ(ReadDate(FormatDateTime(format, day), TDateOrder::DayFirst)->days, day) << day << ' ' << format;
}

std::string TypeOf(const std::string& cells, char decimal) {
  const TNullWords nulls;
  TTypeFinder finder(nulls, /*mayHaveDecimalComma=*/true);
  for (const std::string& cell : test::Cut(cells, '|')) finder.Add(cell, 1);
  return std::string(TypeName(finder.Type(decimal)));
}

TEST(TypeFinder, FindsTheNarrowestTypeOfAllCells) {
  // Columns with ";" between. A leading zero makes text, zero alone doesn't; digits beyond 32 bits are text, too.
  const std::pair<const char*, const char*> cases[] = {
      {"string",
       "|-| NA ;1|n/a;1|02;1|2147483648;1.5|12345678901234567890;1.5|2,5;nan|inf;14:07;2015-01-02|2015-02-30;"
       "13/01/2015|01/13/2015;1|2015-01-02"},
      {"integer", "1|-2|2147483647;1|  -  ||NA;0|1;201501|201512;20150101"},
      {"float", "0|0.5|-0;1.5|2147483648;1|2.5|1e-3"},
      {"boolean", "true|NO||Yes"},
      {"date", "2015-01-02|-|1850-01-01;1.2.2015|31.12.2015"},
      {"datetime", "2015-01-02|2015-01-02 10:00"},
  };
  for (const auto& [type, columns] : cases)
    for (const std::string& cells : test::Cut(columns, ';')) {
      EXPECT_EQ(TypeOf(cells, '.'), type) << cells;
      EXPECT_EQ(TypeOf(cells, ','), type == std::string("float") ? "string" : type) << cells;
    }
  EXPECT_EQ(TypeOf("1|2,5", '.') + TypeOf("1|2,5", ',') + TypeOf("", '.'), "stringfloatstring");
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
