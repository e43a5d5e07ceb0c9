#include "colour/ColorModels_UNT.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "colour/ColourKit.h"
#include "platform/canvas/SystemColors.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::Apart;
using test::AreNear;
using test::kInfinity;
using test::kNaN;
using test::MessageOf;

constexpr double kWhite = 0.99609375;  // 255 / 256
constexpr double kNear = 1e-9;

struct TTriple {
  double a = 0, b = 0, c = 0;
};

using TConversion = void (*)(double, double, double, double&, double&, double&);

TTriple By(TConversion convert, const TTriple& from) {
  TTriple to;
  convert(from.a, from.b, from.c, to.a, to.b, to.c);
  return to;
}

TColor ColorOf(const TTriple& rgb) { return RGBRealTo24bits(rgb.a, rgb.b, rgb.c); }

void ExpectNear(const TTriple& got, const TTriple& expected) {
  EXPECT_NEAR(got.a, expected.a, kNear);
  EXPECT_NEAR(got.b, expected.b, kNear);
  EXPECT_NEAR(got.c, expected.c, kNear);
}

// -- The whole domain -------------------------------------------------------------------------------------------------

/// What a model loses there and back.
struct TLoss {
  std::int32_t bytes = 0;    ///< the most of a channel's byte
  double channels = 0;       ///< the most of a real channel
  std::int32_t changed = 0;  ///< how many colours

  void Add(TColor color, const TTriple& was, const TTriple& is) {
    channels = std::max({channels, std::fabs(was.a - is.a), std::fabs(was.b - is.b), std::fabs(was.c - is.c)});
    const std::int32_t apart = Apart(color, ColorOf(is));
    bytes = std::max(bytes, apart);
    if (apart > 0) ++changed;
  }
  void Print(const char* model) const {
    std::printf("%s there and back: %d colours of 16777216 change, by %d at most, a real channel by %.2g\n", model,
                changed, bytes, channels);
  }
};

TEST(ColorModels, LoseAtMostOneStepOfAChannelThereAndBack) {
  const auto mixer = Make<TColorMixer>(clBlack);
  TLoss hsv, hls;
  for (std::int32_t number = 0; number < 0x1000000; ++number) {
    const TColor color{number};
    mixer->Set_Color(color);
    const TTriple rgb{mixer->Get_Red(), mixer->Get_Green(), mixer->Get_Blue()};
    mixer->SetRGB(rgb.a, rgb.b, rgb.c);
    ASSERT_EQ(mixer->Get_Color(), color);
    hsv.Add(color, rgb, By(HSVToRGB, By(RGBToHSV, rgb)));
    hls.Add(color, rgb, By(HLSToRGB, By(RGBToHLS, rgb)));
  }
  hsv.Print("HSV");
  hls.Print("HLS");
  EXPECT_EQ(hsv.bytes, 1);
  EXPECT_EQ(hls.bytes, 1);
  EXPECT_LT(hsv.channels, 1e-14);
  EXPECT_LT(hls.channels, 1e-12);  // the digits of the model's constants
}

// -- Values -----------------------------------------------------------------------------------------------------------

struct TKnownColor {
  const char* name;
  TTriple rgb, hsv, hls;
};

constexpr TKnownColor kKnownColors[] = {
    // Each pure colour is two ties: its two lesser channels, and from there the mixed ones, where red wins over green
    // and green over blue. Pure red closes the circle at 360 instead of opening it.
    {"red", {1, 0, 0}, {360, 1, 1}, {120, 0.5, 1}},
    {"yellow", {1, 1, 0}, {60, 1, 1}, {180, 0.5, 1}},
    {"green", {0, 1, 0}, {120, 1, 1}, {240, 0.5, 1}},
    {"cyan", {0, 1, 1}, {180, 1, 1}, {300, 0.5, 1}},
    {"blue", {0, 0, 1}, {240, 1, 1}, {0, 0.5, 1}},
    {"magenta", {1, 0, 1}, {300, 1, 1}, {60, 0.5, 1}},
    {"black", {0, 0, 0}, {0, 0, 0}, {0, 0, 0}},
    {"white", {kWhite, kWhite, kWhite}, {0, 0, kWhite}, {0, kWhite, 0}},
    // One colour for each order of the channels. The hues of HLS are not the HSV ones, turned: only every 60th degree
    // is.
    {"r>g>b", {0.75, 0.5, 0.25}, {30, 2 / 3.0, 0.75}, {150, 0.5, 0.5}},
    {"r>b>g", {0.75, 0.25, 0.5}, {330, 2 / 3.0, 0.75}, {90, 0.5, 0.5}},
    {"g>r>b", {0.5, 0.75, 0.25}, {90, 2 / 3.0, 0.75}, {210, 0.5, 0.5}},
    {"g>b>r", {0.25, 0.75, 0.5}, {150, 2 / 3.0, 0.75}, {270, 0.5, 0.5}},
    {"b>g>r", {0.25, 0.5, 0.75}, {210, 2 / 3.0, 0.75}, {330, 0.5, 0.5}},
    {"b>r>g", {0.5, 0.25, 0.75}, {270, 2 / 3.0, 0.75}, {30, 0.5, 0.5}},
    {"between", {1, 0.25, 0}, {15, 1, 1}, {133.89788624799544, 0.5, 1}},
    {"pale", {1, 0.9, 0.8}, {30, 0.2, 1}, {150, 0.9, 1}},
};

TEST(ColorModels, AgreeOnKnownColors) {
  for (const TKnownColor& known : kKnownColors) {
    SCOPED_TRACE(known.name);
    ExpectNear(By(RGBToHSV, known.rgb), known.hsv);
    ExpectNear(By(HSVToRGB, known.hsv), known.rgb);
    ExpectNear(By(RGBToHLS, known.rgb), known.hls);
    ExpectNear(By(HLSToRGB, known.hls), known.rgb);
  }
}

TEST(ColorModels, TakeWhatLiesBeyondTheRanges) {
  struct TCase {
    TConversion convert;
    TTriple beyond, within;
  };
  const TCase kCases[] = {
      {RGBToHSV, {7, kInfinity, kNaN}, {1, 1, 0}},
      {RGBToHLS, {7, kInfinity, -kInfinity}, {1, 1, 0}},
      {HSVToRGB, {400.5, 2, kInfinity}, {40.5, 1, 1}},
      {HSVToRGB, {-0.5, kNaN, 0.5}, {359.5, 0, 0.5}},
      {HSVToRGB, {360, 1, 1}, {0, 1, 1}},
      {HSVToRGB, {1e300, 1, 1}, {std::fmod(1e300, 360), 1, 1}},
      {HSVToRGB, {-1e-300, 1, 1}, {0, 1, 1}},
      {HSVToRGB, {-kInfinity, 1, 1}, {0, 1, 1}},
      {HLSToRGB, {-30, 0.5, 2}, {330, 0.5, 1}},
      {HLSToRGB, {kNaN, 0.5, 0.0009}, {0, 0.5, 0}},
      {HLSToRGB, {360, kInfinity, 1}, {0, 1, 1}},
  };
  for (const TCase& each : kCases) {
    SCOPED_TRACE(testing::Message() << each.beyond.a << ", " << each.beyond.b << ", " << each.beyond.c);
    ExpectNear(By(each.convert, each.beyond), By(each.convert, each.within));
  }
  EXPECT_EQ(By(RGBToHLS, {-1, 0, 1}).c, 0);  // nothing to be divided by
  EXPECT_EQ(RGBRealTo24bits(-0.5, kNaN, kInfinity), clBlue);
  EXPECT_EQ(RGBRealTo24bits(0.5, 127.999 / 256, -kInfinity), TColor{0x7F80});
}

// -- TColorMixer ------------------------------------------------------------------------------------------------------

TEST(ColorMixer, ReadsAColorInAllModels) {
  const auto mixer = Make<TColorMixer>(TColor{0x02FFFFFF});
  EXPECT_EQ(mixer->Get_Red(), kWhite);
  EXPECT_EQ(mixer->Get_Yellow(), 1 - kWhite);
  EXPECT_EQ(mixer->Get_Color(), TColor{0x02FFFFFF});
  EXPECT_NEAR(mixer->Get_GreyTone(), kWhite, kNear);
  mixer->Set_Color(RGBColor(64, 128, 192));
  EXPECT_NEAR(mixer->Get_GreyTone(), 0.212671 / 4 + 0.71516 / 2 + 0.072169 * 0.75, kNear);
  mixer->Set_Color(clWindow);
  EXPECT_EQ(mixer->Get_Color(), clWindow);
  EXPECT_EQ(RGBRealTo24bits(mixer->Get_Red(), mixer->Get_Green(), mixer->Get_Blue()), ColorToRGB(clWindow));
}

TEST(ColorMixer, KnowsThePaletteByTheTopByte) {
  constexpr std::pair<std::uint32_t, TMatchPalette> kTops[] = {
      {0x00, mpSystem},  {0x01, mpCurrentlyRealized}, {0x02, mpDCLogicalPalette}, {0x80, mpScreenElement},
      {0x03, mpInvalid}, {0x1F, mpInvalid},           {0x81, mpInvalid},          {0x82, mpInvalid}};
  for (const auto& [top, palette] : kTops) {
    const auto color = static_cast<TColor>(top << 24 | 5);
    const auto mixer = Make<TColorMixer>(color);
    EXPECT_EQ(mixer->Get_MatchPalette(), palette) << top;
    mixer->Set_MatchPalette(mpDCLogicalPalette);
    EXPECT_EQ(mixer->Get_Color(), TColor{0x02000005}) << top;
  }
  const auto mixer = Make<TColorMixer>(clRed);
  for (const auto& [value, digits] : {std::pair(mpScreenElement, "3"), {mpInvalid, "4"}, {TMatchPalette{255}, "FF"}})
    EXPECT_EQ(MessageOf<Exception>([&, v = value] { mixer->Set_MatchPalette(v); }),
              "Cannot assign " + std::string(digits) + " to TColorMixer.MatchPalette");
  EXPECT_EQ(mixer->Get_Color(), clRed);
}

TEST(ColorMixer, TakesWholeColorsWithoutThePalette) {
  const auto taken = [](void (TColorMixer::*set)(double, double, double), const TTriple& value) {
    const auto mixer = Make<TColorMixer>(TColor{0x02123456});
    (mixer.get()->*set)(value.a, value.b, value.c);
    EXPECT_LE(mixer->Get_Red(), 1);
    return mixer->Get_Color();
  };
  EXPECT_EQ(taken(&TColorMixer::SetRGB, {2, 0.5, 0.25}), RGBColor(255, 128, 64));
  EXPECT_EQ(taken(&TColorMixer::SetCMY, {-1, 0.5, 0.75}), RGBColor(255, 128, 64));
  EXPECT_EQ(taken(&TColorMixer::SetHSV, {480, 1, 7}), clLime);
  EXPECT_EQ(taken(&TColorMixer::SetHLS, {360, 0.5, 7}), clBlue);
}

struct TComponentCase {
  const char* name;
  double (TColorMixer::*get)() const;
  void (TColorMixer::*set)(double);
  double greatest;
  double value;
  std::int32_t color;  ///< what 0x024080C0 becomes when the value is written
};

// Blue 0x40, green 0x80, red 0xC0: HSV 30, 2 / 3, 0.75; HLS 150, 0.5, 0.5.
constexpr TComponentCase kComponents[] = {
    {"Red", &TColorMixer::Get_Red, &TColorMixer::Set_Red, 1, 0.5, 0x02408080},
    {"Green", &TColorMixer::Get_Green, &TColorMixer::Set_Green, 1, 0.25, 0x024040C0},
    {"Blue", &TColorMixer::Get_Blue, &TColorMixer::Set_Blue, 1, 0.75, 0x02C080C0},
    {"Cyan", &TColorMixer::Get_Cyan, &TColorMixer::Set_Cyan, 1, 0.75, 0x02408040},
    {"Magenta", &TColorMixer::Get_Magenta, &TColorMixer::Set_Magenta, 1, 0.25, 0x0240C0C0},
    {"Yellow", &TColorMixer::Get_Yellow, &TColorMixer::Set_Yellow, 1, 0.5, 0x028080C0},
    {"HSVHue", &TColorMixer::Get_HSVHue, &TColorMixer::Set_HSVHue, 360, 90, 0x0240C080},
    {"HSVSaturation", &TColorMixer::Get_HSVSaturation, &TColorMixer::Set_HSVSaturation, 1, 0.5, 0x026090C0},
    {"HSVValue", &TColorMixer::Get_HSVValue, &TColorMixer::Set_HSVValue, 1, 0.376, 0x02204060},
    {"HLSHue", &TColorMixer::Get_HLSHue, &TColorMixer::Set_HLSHue, 360, 331, 0x02C07E40},
    {"HLSLightness", &TColorMixer::Get_HLSLightness, &TColorMixer::Set_HLSLightness, 1, 0.751, 0x02A0C0E0},
    {"HLSSaturation", &TColorMixer::Get_HLSSaturation, &TColorMixer::Set_HLSSaturation, 1, 0.2502, 0x026080A0},
};

TEST(ColorMixer, WritesOneComponentAndKeepsThePalette) {
  for (const TComponentCase& each : kComponents) {
    SCOPED_TRACE(each.name);
    const auto mixer = Make<TColorMixer>(TColor{0x024080C0});
    const auto written = [&](double value) {
      mixer->Set_Color(TColor{0x024080C0});
      (mixer.get()->*each.set)(value);
      return (mixer.get()->*each.get)();
    };
    EXPECT_NEAR(written(each.value), each.value, kNear);
    EXPECT_TRUE(AreNear(mixer->Get_Color(), TColor{each.color})) << ColorToString(mixer->Get_Color());
    // Beyond its range a component is what it is at the end.
    written(each.greatest);
    const TColor greatest = mixer->Get_Color();
    written(0);
    const TColor least = mixer->Get_Color();
    for (const auto& [value, color] : {std::pair(each.greatest + 1, greatest), {kInfinity, greatest}, {-1.0, least}}) {
      written(value);
      EXPECT_EQ(mixer->Get_Color(), color) << value;
    }
  }
  const auto mixer = Make<TColorMixer>(clWindow);
  mixer->Set_Red(0);
  EXPECT_EQ(mixer->Get_Color(), TColor{ColorToRGB(clWindow) & 0xFFFF00});  // the 8 of 80 is no palette
}

}  // namespace
}  // namespace vx
