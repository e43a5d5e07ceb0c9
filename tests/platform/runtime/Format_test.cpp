// Placeholders, hostile formats, and arguments that look like placeholders.
#include "platform/runtime/Format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

using TArgs = std::initializer_list<TFormatArg>;

std::string ErrorOf(const std::string& format, TArgs args) {
  try {
    return "made " + Format(format, args);
  } catch (const EConvertError& error) {
    return error.Message();
  }
}

TEST(Format, FillsPlaceholders) {
  const TLocaleScope locale(ClassicLocale());
  const std::string text = "Orders";
  EXPECT_EQ(Format("", {}), "");
  EXPECT_EQ(Format("100%%", {}), "100%");
  EXPECT_EQ(Format("%s has %d rows", {text, 30871}), "Orders has 30871 rows");
  EXPECT_EQ(Format("%1:s before %0:s", {"a", "b"}), "b before a");
  EXPECT_EQ(Format("%1:s %s %0:s %s", {"a", "b", "c"}), "b c a b");  // an index moves on what follows it
  EXPECT_EQ(Format("%.2d:%.2d:%.2d", {7, -5, 123}), "07:-05:123");
  EXPECT_EQ(Format("%5d|%-5d|%5.3d", {42, 42, 42}), "   42|42   |  042");
  EXPECT_EQ(Format("%x %X %.4x", {255, 255, 255}), "FF FF 00FF");
  EXPECT_EQ(Format("%x %u %x", {-1, -1, std::int64_t{-1}}), "FFFFFFFF 4294967295 FFFFFFFFFFFFFFFF");
  EXPECT_EQ(Format("%x", {std::int16_t{-1}}), "FFFFFFFF");
  EXPECT_EQ(Format("%d %d", {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::uint64_t>::max()}),
            "-9223372036854775808 18446744073709551615");
  EXPECT_EQ(Format("%f %.1f %.0f %g", {2, 0.25, 1.5, 0.1}), "2.00 0.3 2 0.1");
  EXPECT_EQ(Format("%.2e %n %.0m", {1500, 1234.5, 1234.5}), "1.5E+003 1,234.50 $1,235");
  EXPECT_EQ(Format("[%5s|%-5s|%.2s]", {"éa", "éa", "éab"}), "[   éa|éa   |éa]");
  EXPECT_EQ(Format("%s", {static_cast<const char*>(nullptr)}), "");
  EXPECT_EQ(Format("%s%s", {"%s", "%d%n%1:s"}), "%s%d%n%1:s");  // an argument is no format
  EXPECT_EQ(Format("%%%s", {"s"}), "%s");
  Locale().DecimalSeparator = ',';
  EXPECT_EQ(Format("%.1f", {1.5}), "1,5");
}

TEST(Format, HostileFormatsRaiseAndQuoteThemselves) {
  const struct {
    const char* format;
    const char* wrong;
  } cases[] = {
      {"%:s", "':' without an index"},
      {"%99999999999999999999:s", "no argument 1000000, there are 2"},
      {"%2:s", "no argument 2, there are 2"},
      {"%s%d%s", "no argument 2, there are 2"},
      {"%99999999999999999999s", "a width over 1024"},
      {"%.99999999999999999999d", "a precision over 1024"},
      {"%0:-%", "unknown letter '%'"},
      {"%d", "argument 0 is no number"},
      {"%1:s", "argument 1 is no text"},
      {"%f", "argument 0 is no number"},
  };
  for (const char* cut : {"a%", "%0:", "%-", "%5."})
    EXPECT_EQ(ErrorOf(cut, {"x", 1}), "Format '" + std::string(cut) + "': a placeholder without its letter");
  for (const std::string letter : {"q", "k", "*", "\xFF"})
    EXPECT_EQ(ErrorOf("%" + letter, {"x"}), "Format '%" + letter + "': unknown letter '" + letter + "'");
  for (const auto& each : cases)
    EXPECT_EQ(ErrorOf(each.format, {"x", 1}), "Format '" + std::string(each.format) + "': " + each.wrong);
  EXPECT_EQ(ErrorOf("%x", {1.5}), "Format '%x': argument 0 is no integer");
  EXPECT_EQ(ErrorOf(std::string("%\0s", 3), {"x"}).find("made"), std::string::npos);
}

}  // namespace
}  // namespace vx
