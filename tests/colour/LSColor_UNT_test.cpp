#include "colour/LSColor_UNT.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "colour/ColourKit.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"

namespace vx {
namespace {

constexpr TColor kBase = TColor{0x004080C0};  // HLS 150, 0.5, 0.5

/// The colour's six digits, where it is one for what is drawn on.
std::string Shown(const TLSColor& color) {
  const bool isUsual = (color.Get_Color() & 0xFF000000) == 0x02000000;
  return isUsual ? ColorToText(color.Get_Color()) : ColorToString(color.Get_Color());
}

/// Has a shade for a part, and reads it after loading.
class TShaded : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass() {
    static const TClass info = TClassBuilder<TShaded>("TShaded", TComponent::StaticClass())
                                   .Property("Shade", [](TShaded& shaded) { return shaded.Shade.get(); })
                                   .Build();
    return info;
  }
  const TClass& ClassType() const override { return StaticClass(); }
  void Loaded() override {
    TComponent::Loaded();
    atLoaded = Shown(*Shade) + " " + std::to_string(changes);
    Shade->Remix();
  }

  int changes = 0;
  std::string atLoaded;
  TOwned<TLSColor> Shade = MakeShade();

 private:
  TOwned<TLSColor> MakeShade() {
    auto shade = Make<TLSColor>(this);
    shade->OnChange = [this](TObject*) { ++changes; };
    return shade;
  }
};

TEST(LSColor, IsShiftedFromItsBase) {
  struct TCase {
    const char* name;
    TColor base;
    bool relative;
    double lightness, saturation;
    TColor color;
  };
  constexpr TCase kCases[] = {
      {"no shift", kBase, true, 0, 0, TColor{0x024080C0}},
      {"no shift keeps a system colour", clWindow, true, 0, 0, clWindow},
      {"another palette is replaced", TColor{0x1F4080C0}, true, 0, 0, TColor{0x024080C0}},
      {"lighter", kBase, true, 0.2505, 0, TColor{0x02A0BFDF}},
      {"past white", kBase, true, 3, 0, TColor{0x02FFFFFF}},
      {"past black", kBase, true, -3, 0, TColor{0x02000000}},
      {"more saturated", kBase, true, 0, 0.2505, TColor{0x022080E0}},
      {"both", kBase, true, -0.2495, 0.5, TColor{0x02004080}},
      {"a system colour, lighter", clWindow, true, -0.5, 0, TColor{0x027E7E7E}},
      {"absolute", kBase, false, 0.7505, 1, TColor{0x0280C0FF}},
      {"absolute zeros", kBase, false, 0, 0, TColor{0x02000000}},
  };
  for (const TCase& each : kCases) {
    SCOPED_TRACE(each.name);
    const auto color = Make<TLSColor>();
    EXPECT_EQ(color->Get_Color(), TColor{0x02FFFFFF});
    color->SetProps(each.base, each.relative, each.lightness, each.saturation);
    EXPECT_TRUE(test::AreNear(color->Get_Color(), each.color)) << ColorToString(color->Get_Color());
  }
}

TEST(LSColor, KeepsAbsoluteValuesOverANewBase) {
  const auto color = Make<TLSColor>();
  color->SetProps(kBase, false, 0.25, 0);
  color->Set_Color(clLime);
  EXPECT_EQ(Shown(*color), "404040");
  color->SetProps(kBase, true, 0.25, 0.25);
  color->Set_Color(clLime);
  EXPECT_EQ(Shown(*color), "00ff00");
  EXPECT_EQ(color->Get_Lightness(), 0);
  EXPECT_EQ(color->Get_Saturation(), 0);
}

TEST(LSColor, KeepsWhatIsSeenWhenRelativeTurns) {
  const auto color = Make<TLSColor>();
  color->SetProps(kBase, true, 0.125, 0.25);
  const TColor seen = color->Get_Color();
  color->Set_Relative(false);
  EXPECT_NEAR(color->Get_Lightness(), 0.625, 1e-9);
  EXPECT_NEAR(color->Get_Saturation(), 0.75, 1e-9);
  EXPECT_EQ(color->Get_Color(), seen);
  color->Set_Relative(true);
  EXPECT_NEAR(color->Get_Lightness(), 0.125, 1e-9);
  EXPECT_NEAR(color->Get_Saturation(), 0.25, 1e-9);
  EXPECT_EQ(Shown(*color), ColorToText(seen));
}

/// A control, as far as colours look at it.
class TWindowed : public TComponent, public IOnDisplay {
 public:
  using TComponent::TComponent;
  const IDisplay* WindowDisplay() const override { return Window; }
  const IDisplay* Window = nullptr;
};

TEST(LSColor, ShowsItsBaseOnAPaletteDisplay) {
  test::TScreenScope screen;
  const auto owner = Make<TWindowed>();
  owner->Window = &Display();
  const auto shown = [&](TComponent* of, std::int32_t palette) {
    screen.palette = palette;
    const auto color = Make<TLSColor>(of);
    color->SetProps(kBase, true, 1, 0);
    color->Remix();
    return Shown(*color);
  };
  EXPECT_EQ(shown(owner.get(), 16), "c08040");
  EXPECT_EQ(shown(owner.get(), 256), "c08040");
  EXPECT_EQ(shown(owner.get(), 4096), "ffffff");
  EXPECT_EQ(shown(owner.get(), 0), "ffffff");
  EXPECT_EQ(shown(nullptr, 256), "ffffff");
  EXPECT_EQ(shown(Make<TComponent>().get(), 256), "ffffff");
  owner->Window = nullptr;
  EXPECT_EQ(shown(owner.get(), 256), "ffffff");  // its window isn't there yet
  owner->Window = &Display();
  const TLoading loading(*owner);
  EXPECT_EQ(shown(owner.get(), 256), "ffffff");
}

TEST(LSColor, TellsOfEachChangeOnce) {
  const auto other = Make<TLSColor>();
  other->SetProps(clLime, false, 0.25, 0.5);
  const auto owner = Make<TShaded>();
  TLSColor& shade = *owner->Shade;
  shade.Set_Color(kBase);
  shade.Set_BaseRGB(kBase);
  shade.Set_Lightness(0.25);
  shade.Set_Saturation(0.25);
  shade.SetProps(kBase, true, 0, 0);
  EXPECT_EQ(owner->changes, 5);
  shade.Set_Relative(false);
  EXPECT_THROW(shade.Assign(owner.get()), EConvertError);
  EXPECT_EQ(owner->changes, 5);
  shade.Assign(other.get());
  EXPECT_EQ(owner->changes, 6);
  EXPECT_EQ(shade.Get_Color(), other->Get_Color());
  EXPECT_FALSE(shade.Get_Relative());
}

TEST(LSColor, ComesBackFromAStream) {
  RegisterClass(TShaded::StaticClass());
  const auto was = Make<TShaded>();
  was->Shade->SetProps(clBtnFace, false, 0.75, 0.125);
  const std::string text = ComponentToText(*was);
  EXPECT_EQ(text,
            "object TShaded\n  Shade.BaseRGB = clBtnFace\n  Shade.Lightness = 0.75\n  Shade.Relative = False\n"
            "  Shade.Saturation = 0.125\nend\n");
  const TOwned<TComponent> read = TextToComponent(text);
  const auto& is = *Cast<TShaded>(read.get());
  EXPECT_EQ(is.atLoaded, "ffffff 0");
  EXPECT_EQ(is.Shade->Get_Lightness(), 0.75);
  EXPECT_EQ(is.Shade->Get_Color(), was->Shade->Get_Color());
  UnregisterClass(TShaded::StaticClass());
}

TEST(LighterColor, MovesTowardsWhite) {
  EXPECT_EQ(ColorToText(GetLighterColor(clNavy, 30)), "1919ff");
  EXPECT_EQ(GetLighterColor(clNavy, 100), clWhite);
  EXPECT_EQ(GetLighterColor(clNavy, 150), clWhite);
  EXPECT_EQ(GetLighterColor(clNavy, 0), clNavy);
  EXPECT_EQ(GetLighterColor(clNavy, -5), clNavy);
  EXPECT_EQ(GetLighterColor(TColor{0x02000080}, 100), TColor{0x02FFFFFF});
  test::TScreenScope screen;
  for (const auto& [palette, color] : {std::pair(256, clBtnFace), {16, clWhite}, {0, clWhite}}) {
    screen.palette = palette;
    EXPECT_EQ(GetLighterColorWithDC(screen, clBtnFace, 100), color) << palette;
  }
}

}  // namespace
}  // namespace vx
