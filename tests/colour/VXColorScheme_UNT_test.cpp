#include "colour/VXColorScheme_UNT.h"

#include <gtest/gtest.h>

#include <utility>

#include "colour/ColorModels_UNT.h"
#include "colour/ColourKit.h"

namespace vx {
namespace {

/// Greys and colours with the lightness that is told, in 256ths.
struct TSchemeCase {
  const char* name;
  TColor window, face;
  TColor readOnly, denied;
};

constexpr TSchemeCase kSchemes[] = {
    {"white", clWhite, clSilver, RGBColor(229, 229, 229), RGBColor(114, 114, 114)},
    {"the face's hue beside a grey", clWhite, RGBColor(255, 0, 0), RGBColor(255, 202, 202), RGBColor(229, 0, 0)},
    {"dark grey", RGBColor(64, 64, 64), clSilver, RGBColor(83, 83, 83), RGBColor(149, 149, 149)},
    {"middling grey", RGBColor(110, 110, 110), clSilver, RGBColor(143, 143, 143), clWhite},
    {"black", clBlack, clGray, RGBColor(64, 64, 64), RGBColor(115, 115, 115)},
    {"bright colour", RGBColor(255, 255, 128), clGray, RGBColor(255, 255, 89), RGBColor(153, 153, 0)},
    {"dark colour", RGBColor(0, 0, 128), clGray, RGBColor(0, 0, 153), RGBColor(0, 0, 217)},
};

TEST(ColorScheme, FollowsTheWindow) {
  for (const TSchemeCase& each : kSchemes) {
    SCOPED_TRACE(each.name);
    test::TScreenScope screen;
    screen.Set(clWindow, each.window);
    screen.Set(clBtnFace, each.face);
    for (const auto& [got, expected] :
         {std::pair(GetApplicationReadOnlyColor(), each.readOnly), {GetApplicationDeniedColor(), each.denied}})
      EXPECT_TRUE(test::AreNear(got, TColor{expected | 0x02000000})) << ColorToString(got);
  }
}

TEST(ColorScheme, IsWorkedOutOnceForBoth) {
  test::TScreenScope screen;
  const TColor readOnly = GetApplicationReadOnlyColor();
  const TColor denied = GetApplicationDeniedColor();
  SetSystemColors(DarkSystemColors());
  screen.bits = 8;
  EXPECT_EQ(GetApplicationReadOnlyColor(), readOnly);
  EXPECT_EQ(GetApplicationDeniedColor(), denied);
  ResetApplicationColors();
  EXPECT_EQ(GetApplicationDeniedColor(), clBtnShadow);
  screen.bits = 9;
  EXPECT_EQ(GetApplicationReadOnlyColor(), clBtnFace);
  ResetApplicationColors();
  EXPECT_EQ(Make<TColorMixer>(GetApplicationReadOnlyColor())->Get_MatchPalette(), mpDCLogicalPalette);
}

}  // namespace
}  // namespace vx
