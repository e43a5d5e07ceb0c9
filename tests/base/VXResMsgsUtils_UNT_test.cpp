// Messages by number, and what FmtStr makes of odd formats and arguments.
#include "base/VXResMsgsUtils_UNT.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "platform/runtime/Format.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/StringResources.h"

namespace vx {
namespace {

std::string OutOfRange(std::int64_t position) { return Format("<Index specifier %d out of range>", {position}); }
std::string WrongType(std::int32_t position) { return Format("<Parameter %d is not of the correct type>", {position}); }

TEST(ResMsgs, AnUnknownIdEndsInItsNumber) {
  EXPECT_EQ(GetResMsg(14672), "Day");
  EXPECT_EQ(GetResMsg(-7), "Requested message ID not found in application resources. (-7)");
  SetResourceStrings({{14672, ""}, {14680, ""}});
  EXPECT_EQ(GetResMsg(14672), "The requested message id was not found in the application resources! (14672)");
  EXPECT_EQ(FmtStr("%d", {}), "<Index specifier 0 out of range>");
  SetResourceString(14677, "%q");
  EXPECT_EQ(FmtStr("%d", {}), "%q") << "a bad translation is shown, not raised";
  ResetResourceStrings();
  EXPECT_EQ(FmtMsg(14665, {"x", "a", "b"}), "Invalid date: x (should be between a and b).");
}

TEST(FmtStr, FillsWhatIsASpecifierAndKeepsTheRest) {
  const TLocaleScope locale(ClassicLocale());
  const std::vector<Variant> args = {"text", 7, 1234.5, Variant::Date(45351.75), "%0:s", std::int64_t{1} << 40, true};
  const struct {
    const char* format;
    std::string text;
  } cases[] = {
      {"", ""},
      {"%s|%D|%f|%a|%s", "text|7|1234.50|02/29/2024 06:00:00 PM |%0:s"},
      {"%1:d %0:s %d", "7 text 7"},  // an index moves on what follows it
      {"%2:lf %2:m %3:t", "1234.5000 $1,234.50 6:00:00 PM"},
      {"%1:u %1:lu %1:LU", "7.0 s 7 s 7 s"},
      {"%0:u %0:m %0:t", "text text text"},    // a text fits everywhere
      {"%p%0:s%p%p%1:d%p", "texttexttext77"},  // nothing stands before the first
      {"%5:d %5:u %5:lu", "1099511627776 34865.3 y <Error converting parameter 5>"},
      {"%1:s%1:f%1:a%2:d%3:f%6:d%6:s",
       WrongType(1) + WrongType(1) + WrongType(1) + WrongType(2) + WrongType(3) + WrongType(6) + WrongType(6)},
      {"%7:d,%d,%0:s", OutOfRange(7) + "," + OutOfRange(8) + ",text"},
      {"%2147483647:s%s", OutOfRange(2147483647) + OutOfRange(2147483647)},
      {"%4294967296:s", OutOfRange(2147483647)},
      {"%99999999999999999999:s", OutOfRange(2147483647)},
      {"100%%s", "100%text"},
      {"%% %0s %l %ll %lls %0: %0:: %: %-s %x %\xC3\xA9 %0:l % s %0:%1:d",
       "%% %0s %l %ll %lls %0: %0:: %: %-s %x %\xC3\xA9 %0:l % s %0:7"},
      {"%", "%"},
      {"%0", "%0"},
      {"%0:", "%0:"},
  };
  for (const auto& each : cases) EXPECT_EQ(FmtStr(each.format, args, vxduAuto, 1), each.text) << each.format;
  EXPECT_EQ(FmtStr("%d %d", Variant::Array({1, 2})), "1 2");
  EXPECT_EQ(FmtStr("%u", 5400, vxduMin, 1), "90.0 min");
  EXPECT_EQ(FmtStr(std::string("%s\0%s", 5), {"a", "b"}), std::string("a\0b", 3));
}

TEST(FmtStr, TakesLinearTime) {
  std::string format, wanted;
  for (std::int32_t i = 0; i < 100'000; ++i) {
    format += i % 2 == 0 ? "%0:d" : "%";
    wanted += i % 2 == 0 ? "7" : "%";
  }
  EXPECT_EQ(FmtStr(format, {7}), wanted);
}

TEST(ExtractFormatString, TakesASpecifierOrTouchesNothing) {
  std::string_view source = "%12:LDrest", spec;
  std::int32_t index = 5;
  bool isLong = false;
  char type = 0;
  const auto state = [&] {
    return Format("%s|%d|%d|%s|%s", {source, index, int{isLong}, spec, std::string_view(&type, 1)});
  };
  EXPECT_TRUE(ExtractFormatString(source, index, isLong, spec, type));
  EXPECT_EQ(state(), "rest|12|1|%12:LD|d");
  source = "%sx";
  EXPECT_TRUE(ExtractFormatString(source, index, isLong, spec, type));
  EXPECT_EQ(state(), "x|12|0|%s|s");
  for (const char* none : {"", "x%s", "%", "%7", "%7:", "%7:l", "%7s", "%l", "%%s"}) {
    source = none;
    EXPECT_FALSE(ExtractFormatString(source, index, isLong, spec, type)) << none;
    EXPECT_EQ(state(), std::string(none) + "|12|0|%s|s");
  }
}

}  // namespace
}  // namespace vx
