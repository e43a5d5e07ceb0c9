#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/StringResources.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::Cut;
using test::kInfinity;
using test::kNaN;
using test::MessageOf;

constexpr auto kNoUnit = static_cast<TVXDurUnit>(8);

class Durations : public testing::Test {
 protected:
  TLocaleScope scope_{ClassicLocale()};
};

TEST_F(Durations, PrintInAUnitThatSuitsThem) {
  struct TCase {
    double seconds;
    std::int32_t decimals;
    TVXDurUnit unit;
    const char* text;
  };
  const TCase cases[] = {{0, 0, vxduAuto, "0 s"},
                         {0.5, 1, vxduAuto, "0.5 s"},
                         {59, 0, vxduAuto, "59 s"},
                         {90, 2, vxduAuto, "1.50 min"},
                         {-90, 1, vxduAuto, "-1.5 min"},
                         {-3600, 0, vxduMin, "-60 min"},
                         {604'799, 2, vxduAuto, "7.00 d"},
                         {604'800, 0, vxduAuto, "1 w"},
                         {2'628'000, 0, vxduAuto, "1 mo"},
                         {31'536'000, 0, vxduAuto, "1 y"},
                         {1e300, 0, vxduSec, "9.22337203685478E18 s"},
                         {-1e19, 0, vxduSec, "-1E19 s"},
                         {-kInfinity, 0, vxduAuto, "-INF y"},
                         {kNaN, 3, vxduAuto, "NAN s"}};
  for (const TCase& c : cases) EXPECT_EQ(DurationToStr(c.seconds, c.decimals, c.unit), c.text);
  Locale().DecimalSeparator = ',';
  EXPECT_EQ(DurationToStr(5400, 1, vxduHour), "1,5 h");
  EXPECT_THROW(DurationToStr(1, 0, kNoUnit), ENilAccess);
}

TEST_F(Durations, PrintInFull) {
  using TLimits = std::numeric_limits<std::int32_t>;
  constexpr std::pair<std::int32_t, const char*> kCases[] = {
      {0, "0 s"}, {3661, "1 h 1 min 1 s"}, {-86'400, "-1 d"}, {TLimits::min(), "-68 y 1 mo 4 d 17 h 14 min 8 s"}};
  for (const auto& [seconds, text] : kCases) EXPECT_EQ(DurationToExpandedStr(seconds), text);
}

TEST_F(Durations, ReadANumberAndAUnit) {
  struct TCase {
    const char* text;
    TVXDurUnit unit;
    double seconds;
    TVXDurUnit readUnit;
  };
  const TCase cases[] = {{"1.5 h", vxduAuto, 5400, vxduHour},
                         {"90", vxduMin, 5400, vxduMin},
                         {"90", vxduAuto, 90, vxduSec},
                         {" -2MIN ", vxduSec, -120, vxduMin},
                         {"1 mo", vxduSec, 2'628'000, vxduMonth},
                         {".5d", vxduSec, 43'200, vxduDay},
                         {"  ", vxduDay, 0, vxduAuto},
                         {"3000000000", vxduSec, 2147483646, vxduSec},
                         {"-100 y", vxduSec, -2147483646, vxduYear}};
  for (const TCase& c : cases) {
    const auto read = StrToDurationWithUnit(c.text, c.unit);
    EXPECT_EQ(read.Value, c.seconds) << c.text;
    EXPECT_EQ(read.DurUnit, c.readUnit) << c.text;
  }
  const auto unitError = [](const std::string& unit) { return "Invalid duration unit: " + unit + "."; };
  const auto message = [](std::string_view text) {
    return MessageOf<EVXDateFuncException>([&] { StrToDuration(text, vxduSec); });
  };
  EXPECT_EQ(message("5 M"), unitError("m")) << "the code of stored preferences";
  EXPECT_EQ(message("- 5"), unitError("5"));
  EXPECT_EQ(message("+5"), unitError("+5"));
  EXPECT_EQ(message("1,000 s"), unitError(",000 s"));
  EXPECT_EQ(message("5 hours"), unitError("hours"));
  for (const std::string& text :
       Cut("h|-|1.2.3 s| .|" + std::string(1'000'000, '9') + "|" + std::string(1'000'000, '.'), '|'))
    EXPECT_EQ(message(text), "Invalid duration: ." + text + ".");
  EXPECT_EQ(message(std::string(1'000'000, '\xFF')), unitError(std::string(1'000'000, '\xFF')));
  EXPECT_THROW(StrToDuration("1", kNoUnit), ENilAccess);
}

TEST_F(Durations, ReadBackWhatTheyPrint) {
  SCOPED_TRACE("seed 3661");
  std::mt19937 random(3661);
  for (int round = 0; round < 20'000; ++round) {
    const auto unit = static_cast<TVXDurUnit>(random() % 8);
    const double seconds = static_cast<double>(static_cast<std::int32_t>(random())) / (round % 2 == 0 ? 1 : 1000);
    Locale().DecimalSeparator = round % 3 == 0 ? ',' : '.';
    const std::string text = DurationToStr(seconds, 15, unit);
    ASSERT_NEAR(StrToDuration(text, vxduAuto), seconds, 1e-7 + std::abs(seconds) * 1e-13) << text;
  }
}

TEST_F(Durations, KnowTheCodesOfPreferences) {
  for (std::size_t unit = 0; unit < 8; ++unit) EXPECT_EQ(GetStrToDurUnit(PrefDurUnitString[unit]), unit);
  EXPECT_EQ(DurUnitPrefStrToDurUnit("MO"), vxduMonth);
  EXPECT_EQ(DurUnitPrefStrToDurUnit("min"), vxduAuto);
  EXPECT_EQ(MessageOf<EVXDateFuncException>([] { GetStrToDurUnit("min"); }), "Invalid duration unit: min.");
}

TEST_F(Durations, FollowATranslation) {
  SetResourceString(14661, "Минуты");
  EXPECT_EQ(DurationToStr(60, 0, vxduMin), "1 Минуты");
  EXPECT_EQ(StrToDuration("2 МИНУТЫ", vxduSec), 120);
  VXDateFunc_UNT::FinalizeUnit();
  EXPECT_EQ(DurUnitString[vxduMin], "");
  ResetResourceStrings();
  EXPECT_EQ(DurUnitString[vxduMin], "") << "nobody uses the unit";
  VXDateFunc_UNT::InitializeUnit();
  EXPECT_EQ(DurUnitString[vxduMin], "min");
}

}  // namespace
}  // namespace vx
