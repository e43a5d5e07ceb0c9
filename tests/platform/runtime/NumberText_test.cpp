#include "platform/runtime/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <span>
#include <string>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::Cut;
using test::kInfinity;
using test::kNaN;
using test::MessageOf;

class NumberText : public testing::Test {
 protected:
  TLocaleScope scope_{ClassicLocale()};
};

TEST_F(NumberText, PrintsFifteenDigits) {
  for (const std::string& same : Cut("0 1 -17.5 123456789012345 999999999999999 1E15 -1.5E20 1E100 0.0001 1E-5 "
                                     "1.25E-7 4.94065645841247E-324 INF -INF"))
    EXPECT_EQ(FloatToStr(std::strtod(same.c_str(), nullptr)), same);
  constexpr std::pair<double, const char*> kCases[] = {{-0.0, "0"},
                                                       {0.1 + 0.2, "0.3"},
                                                       {1.0 / 3, "0.333333333333333"},
                                                       {2.0 / 3, "0.666666666666667"},
                                                       {999999999999999.9, "1E15"},
                                                       {1.7976931348623157e308, "1.79769313486232E308"},
                                                       {kNaN, "NAN"}};
  for (const auto& [value, text] : kCases) EXPECT_EQ(FloatToStr(value), text);
  Locale().DecimalSeparator = ',';
  EXPECT_EQ(FloatToStr(-1.5e20), "-1,5E20");
}

TEST_F(NumberText, PrintsDecimals) {
  struct TCase {
    double value;
    std::int32_t precision, decimals;
    const char* text;
  };
  // Exact halves go away from zero; what only looks like a half goes where it belongs. Nothing is left of a small
  // number, not even its sign.
  const TCase few[] = {{1.5, 15, 2, "1.50"},  {-60, 15, 0, "-60"},     {0.5, 15, 0, "1"},        {2.5, 15, 0, "3"},
                       {-2.5, 15, 0, "-3"},   {0.125, 15, 2, "0.13"},  {1.005, 15, 2, "1.00"},   {0.375, 15, 2, "0.38"},
                       {99.5, 15, 0, "100"},  {-0.001, 15, 2, "0.00"}, {1e-300, 15, 3, "0.000"}, {kNaN, 15, 2, "NAN"},
                       {1e15, 15, 2, "1E15"}, {1.5, 100, -3, "2"}};
  // Digits beyond the precision are zeros.
  const TCase many[] = {{1234567.891, 15, 1, "1234567.9"},
                        {1234.5678, 6, 4, "1234.5700"},
                        {99999.96, 6, 2, "100000.00"},
                        {99999.94, 6, 2, "99999.90"},
                        {999999999999999.9, 15, 2, "1E15"},
                        {1.5, -1, 40, "2.000000000000000000"},
                        {1.0 / 3, 15, 18, "0.333333333333333000"},
                        {123456789012345, 15, 2, "123456789012345.00"},
                        {0x1p63, 15, 0, "9.22337203685478E18"},
                        {123456789.123456789, 15, 10, "123456789.1234570000"}};
  for (const std::span<const TCase> cases : std::initializer_list<std::span<const TCase>>{few, many})
    for (const TCase& c : cases)
      EXPECT_EQ(FloatToStrF(c.value, ffFixed, c.precision, c.decimals), c.text) << c.value << ", " << c.decimals;
  EXPECT_EQ(FloatToStrF(1234.5678, ffGeneral, 6, 0), "1234.57");
  Locale().DecimalSeparator = ',';
  EXPECT_EQ(FloatToStrF(1.5, ffFixed, 15, 3), "1,500");
}

TEST_F(NumberText, PrintsExponentsGroupsAndMoney) {
  struct TCase {
    double value;
    TFloatFormat format;
    std::int32_t precision, digits;
    const char* text;
  };
  constexpr TCase kCases[] = {{1e15, ffExponent, 3, 4, "1.00E+0015"},
                              {0, ffExponent, 1, 0, "0E+0"},
                              {2.5e15, ffExponent, 1, 0, "3E+15"},
                              {-0.125, ffExponent, 2, 0, "-1.3E-1"},
                              {9.5, ffExponent, 1, 0, "1E+1"},
                              {5e-324, ffExponent, 1, 3, "5E-324"},
                              {-1.25e-7, ffExponent, 2, 2, "-1.2E-07"},
                              {1.7e308, ffExponent, 40, 9, "1.70000000000000E+0308"},
                              {999, ffNumber, 15, 0, "999"},
                              {-1000, ffNumber, 15, 1, "-1,000.0"},
                              {123456789012345, ffNumber, 15, 1, "123,456,789,012,345.0"},
                              {1e15, ffNumber, 15, 2, "1E15"},
                              {-1e20, ffNumber, 15, 2, "-1E20"},
                              {1234.5, ffCurrency, 15, 2, "$1,234.50"},
                              {-1234.5, ffCurrency, 15, 0, "($1,235)"},
                              {-0.001, ffCurrency, 15, 2, "$0.00"}};
  for (const TCase& c : kCases) EXPECT_EQ(FloatToStrF(c.value, c.format, c.precision, c.digits), c.text) << c.value;
  TSystemLocaleItems items;
  items.Radix = ",";
  items.Currency = "+\u20AC";
  Locale() = SettingsOf(items);
  EXPECT_EQ(FloatToStrF(-1234.5, ffCurrency, 15, 2), "-1.234,50 \u20AC");
  EXPECT_EQ(FloatToStrF(1.5, ffExponent, 2, 0), "1,5E+0");
}

TEST_F(NumberText, ReadsWholeTexts) {
  struct TCase {
    const char* text;
    double value;
  };
  constexpr TCase kCases[] = {{"0", 0},      {" 12.5 ", 12.5}, {"-12.5", -12.5}, {"+3", 3},      {".5", 0.5},
                              {"5.", 5},     {"1e3", 1000},    {"1E-3", 0.001},  {"\t7\r\n", 7}, {"1E+3", 1000},
                              {"-.5e1", -5}, {"007", 7},       {"1e308", 1e308}, {"0.1", 0.1}};
  for (const TCase& c : kCases) EXPECT_EQ(StrToFloat(c.text), c.value) << c.text;
  Locale().DecimalSeparator = ',';
  EXPECT_EQ(StrToFloat("-12,5"), -12.5);
  EXPECT_EQ(MessageOf<EConvertError>([] { StrToFloat("12.5"); }), "'12.5' is not a valid floating point value");
}

TEST_F(NumberText, RefusesWhatIsNoNumber) {
  for (const std::string text :
       {"",          " ",   "-",     "+",    ".",   "e5",  "1e",  "1e+",  "--1",   "+-1",   "-+1",       "++1", "1 2",
        "12 apples", "1,5", "1.2.3", "0x10", "nan", "NAN", "inf", "-INF", "1e400", "1_000", "1\xC2\xA0", "1.5d"})
    EXPECT_EQ(MessageOf<EConvertError>([&] { StrToFloat(text); }),
              "'" + text + "' is not a valid floating point value");
  double untouched = 42;
  EXPECT_FALSE(TryStrToFloat(std::string(1 << 20, '9') + "x", untouched));
  EXPECT_FALSE(TryStrToFloat(std::string(1 << 20, '9'), untouched));
  EXPECT_FALSE(TryStrToFloat(std::string("1\0", 2) + "5", untouched));
  EXPECT_EQ(untouched, 42);
}

TEST_F(NumberText, ReadsIntegers) {
  EXPECT_EQ(StrToInt(" -2147483648 "), std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(StrToInt("+2147483647"), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(StrToInt("007"), 7);
  for (const std::string text : {"", "-", "+", "2147483648", "-2147483649", "1.0", "0x10", "$10", "1e3", "+-1", "1 2"})
    EXPECT_EQ(MessageOf<EConvertError>([&] { StrToInt(text); }), "'" + text + "' is not a valid integer value");
  EXPECT_EQ(IntToStr(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST_F(NumberText, ReadsBackWhatItPrints) {
  constexpr std::uint32_t kSeed = 20'240'229;
  SCOPED_TRACE("seed " + std::to_string(kSeed));
  std::mt19937_64 random(kSeed);
  for (const char separator : {'.', ','}) {
    Locale().DecimalSeparator = separator;
    for (int i = 0; i < 20'000; ++i) {
      const double mantissa =
          static_cast<double>(static_cast<std::int64_t>(random() % 2'000'000'000'000'000) - 1'000'000'000'000'000);
      const double value = mantissa * std::pow(10.0, static_cast<double>(random() % 200) - 100);
      ASSERT_NEAR(StrToFloat(FloatToStr(value)) / (value == 0 ? 1 : value), value == 0 ? 0 : 1, 5.1e-15) << value;
    }
  }
}

TEST(NumberRounding, GoesToTheEvenNumberAndStaysInRange) {
  struct TCase {
    double value;
    std::int64_t rounded, truncated;
  };
  const TCase cases[] = {{0.5, 0, 0},    {1.5, 2, 1},    {2.5, 2, 2},    {-0.5, 0, 0}, {-1.5, -2, -1},
                         {-2.5, -2, -2}, {2.4999, 2, 2}, {-2.7, -3, -2}, {kNaN, 0, 0}};
  for (const double edge : {0x1p63, 1e300, kInfinity}) {
    EXPECT_EQ(Round(edge), INT64_MAX);
    EXPECT_EQ(Trunc(edge), INT64_MAX);
    EXPECT_EQ(Round(-edge), INT64_MIN);
    EXPECT_EQ(Trunc(-edge), INT64_MIN);
  }
  for (const TCase& c : cases) {
    EXPECT_EQ(Round(c.value), c.rounded) << c.value;
    EXPECT_EQ(Trunc(c.value), c.truncated) << c.value;
  }
}

}  // namespace
}  // namespace vx
