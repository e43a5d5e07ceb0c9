// LSColor_UNT.h: a colour that stays a shade away from another.
//
// TLSColor is a property of a component: a base colour, often a system colour, and how much lighter and more saturated
// than it the colour is. When the person at the screen chooses another scheme, the shade follows.
//
//   TLSColor shade with BaseRGB = clWindow, Lightness = -0.1     // a tenth darker than a window, whatever that is
//   shade->Set_Relative(false);                                  // the same colour, from now on at this lightness
//
// Lightness and saturation are those of HLS (ColorModels_UNT.h), from 0 to 1. With Relative they are added to those of
// the base colour, and what leaves the range is cut; without, they replace them.
//
// A part of a component gets it as its owner. While that is loading, the published properties are stored as they come
// and nothing is worked out: the owner's Loaded() calls Remix(). (Set_Color and Assign work at once at any time.)
// Without an owner each property works at once, so that Relative, which comes between the other two, would change a
// Lightness that was just read.
//
// Where the owner's window (IOnDisplay) is on a display with a palette, of 16 or 256 entries, the colour is its base: a
// mixed one would be drawn as dots. An owner without a window can't be asked, and the colour is mixed.
//
// The editor of such a property in a form's editor isn't here yet: it is a window, and waits for the controls.
#pragma once

#include <cstdint>

#include "colour/ColorModels_UNT.h"
#include "platform/canvas/Display.h"
#include "platform/component/Component.h"
#include "platform/component/Event.h"

namespace vx {

/// A lightness or a saturation.
using LSPropType = double;

/// Published are BaseRGB, Lightness, Relative and Saturation.
class TLSColor : public TPersistent {
 public:
  /// White, unshifted, relative.
  explicit TLSColor(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// From a TLSColor the four properties; owner and event stay.
  void Assign(const TPersistent* source) override;
  TPersistent* GetOwner() const override { return owner_.Get(); }

  /// What is drawn with: a system colour as it is, or a plain one of mpDCLogicalPalette.
  TColor Get_Color() const { return mixer_->Get_Color(); }
  /// A new base colour. With Relative there is no shift any more; without, Lightness and Saturation rule over it.
  void Set_Color(TColor color);

  TColor Get_BaseRGB() const { return baseRGB_; }
  LSPropType Get_Lightness() const { return lightness_; }
  bool Get_Relative() const { return relative_; }
  LSPropType Get_Saturation() const { return saturation_; }
  void Set_BaseRGB(TColor value);
  void Set_Lightness(LSPropType value);
  /// Turns a shift into what it leads to, or back: the colour stays as it is seen. OnChange isn't fired.
  void Set_Relative(bool value);
  void Set_Saturation(LSPropType value);
  /// All four at once, with one OnChange.
  void SetProps(TColor base, bool relative, LSPropType lightness, LSPropType saturation);

  /// Works the colour out anew: after loading, and when the system colours have changed. Doesn't fire OnChange.
  void Remix();

  TNotifyEvent OnChange;

 protected:
  /// Fires OnChange.
  virtual void Changed();

 private:
  bool IsLoading() const;
  bool IsOnPaletteDisplay() const;
  void RemixUnlessLoading();
  void Shift();
  void MatchDrawnOn();

  TComponentRef<> owner_;
  TOwned<TColorMixer> mixer_;
  TColor baseRGB_ = clWhite;
  LSPropType lightness_ = 0;
  bool relative_ = true;
  LSPropType saturation_ = 0;
};

namespace LSColor_UNT {

// Kept for callers that know lightness and saturation as a type of their own: the value passes unchanged.
constexpr LSPropType RealToLSPropType(double value) { return value; }
constexpr double LSPropTypeToReal(LSPropType value) { return value; }
constexpr LSPropType ToLSPropTypeNoScaling(double value) { return value; }

/// `percent`, from 0 to 100, is what is added to the lightness: at 100 every colour is white. Numbers outside count as
/// the nearer end.
TColor GetLighterColor(TColor color, std::int32_t percent);
/// The same, for what is drawn on `dc`: where that has a palette of 256 entries, the colour itself.
TColor GetLighterColorWithDC(const IDisplay& dc, TColor color, std::int32_t percent);

}  // namespace LSColor_UNT

using LSColor_UNT::GetLighterColor;
using LSColor_UNT::GetLighterColorWithDC;
using LSColor_UNT::LSPropTypeToReal;
using LSColor_UNT::RealToLSPropType;
using LSColor_UNT::ToLSPropTypeNoScaling;

}  // namespace vx
