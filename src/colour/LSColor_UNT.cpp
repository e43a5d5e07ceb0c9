#include "colour/LSColor_UNT.h"

#include <algorithm>

#include "platform/component/Published.h"

namespace vx {

const TClass& TLSColor::StaticClass() {
  // No defaults: an owner may begin with other values, and what is equal to ours must come back all the same.
  static const TClass info = TClassBuilder<TLSColor>("TLSColor", TPersistent::StaticClass())
                                 .Property("BaseRGB", &TLSColor::Get_BaseRGB, &TLSColor::Set_BaseRGB)
                                 .Property("Lightness", &TLSColor::Get_Lightness, &TLSColor::Set_Lightness)
                                 .Property("Relative", &TLSColor::Get_Relative, &TLSColor::Set_Relative)
                                 .Property("Saturation", &TLSColor::Get_Saturation, &TLSColor::Set_Saturation)
                                 .Build();
  return info;
}

TLSColor::TLSColor(TComponent* owner) : owner_(owner), mixer_(Make<TColorMixer>(clWhite)) { MatchDrawnOn(); }

void TLSColor::Assign(const TPersistent* source) {
  if (const auto* const color = As<TLSColor>(source)) {
    baseRGB_ = color->baseRGB_;
    relative_ = color->relative_;
    lightness_ = color->lightness_;
    saturation_ = color->saturation_;
    Remix();
  } else {
    TPersistent::Assign(source);
  }
  Changed();
}

// -- Properties -------------------------------------------------------------------------------------------------------

void TLSColor::Set_Color(TColor color) {
  baseRGB_ = color;
  if (relative_) lightness_ = saturation_ = 0;
  Remix();
  Changed();
}

void TLSColor::Set_BaseRGB(TColor value) {
  baseRGB_ = value;
  RemixUnlessLoading();
}

void TLSColor::Set_Lightness(LSPropType value) {
  lightness_ = value;
  RemixUnlessLoading();
}

void TLSColor::Set_Saturation(LSPropType value) {
  saturation_ = value;
  RemixUnlessLoading();
}

void TLSColor::SetProps(TColor base, bool relative, LSPropType lightness, LSPropType saturation) {
  baseRGB_ = base;
  relative_ = relative;
  lightness_ = lightness;
  saturation_ = saturation;
  RemixUnlessLoading();
}

void TLSColor::Set_Relative(bool value) {
  relative_ = value;
  if (IsLoading()) return;
  lightness_ = mixer_->Get_HLSLightness();
  saturation_ = mixer_->Get_HLSSaturation();
  if (!relative_) return;
  mixer_->Set_Color(baseRGB_);
  lightness_ -= mixer_->Get_HLSLightness();
  saturation_ -= mixer_->Get_HLSSaturation();
  Remix();
}

void TLSColor::Changed() { OnChange(this); }

// -- Mixing -----------------------------------------------------------------------------------------------------------

bool TLSColor::IsLoading() const {
  const TComponent* const owner = owner_.Get();
  return owner != nullptr && owner->Is(csLoading);
}

bool TLSColor::IsOnPaletteDisplay() const {
  const auto* const window = dynamic_cast<const IOnDisplay*>(owner_.Get());
  const IDisplay* const display = window != nullptr && !IsLoading() ? window->WindowDisplay() : nullptr;
  const std::int32_t size = display != nullptr ? display->PaletteSize() : 0;
  return size == 16 || size == 256;
}

void TLSColor::RemixUnlessLoading() {
  if (IsLoading()) return;
  Remix();
  Changed();
}

void TLSColor::Remix() {
  mixer_->Set_Color(baseRGB_);
  if (!IsOnPaletteDisplay()) Shift();
  MatchDrawnOn();
}

void TLSColor::Shift() {
  if (!relative_) {
    mixer_->Set_HLSLightness(lightness_);
    mixer_->Set_HLSSaturation(saturation_);
    return;
  }
  // A write makes a plain colour of a system colour and may cost a channel its last bit: not for a shift by nothing.
  if (lightness_ != 0) mixer_->Set_HLSLightness(mixer_->Get_HLSLightness() + lightness_);
  if (saturation_ != 0) mixer_->Set_HLSSaturation(mixer_->Get_HLSSaturation() + saturation_);
}

void TLSColor::MatchDrawnOn() {
  if (mixer_->Get_MatchPalette() != mpScreenElement) mixer_->Set_MatchPalette(mpDCLogicalPalette);
}

namespace LSColor_UNT {

TColor GetLighterColor(TColor color, std::int32_t percent) {
  const auto mixer = Make<TColorMixer>(color);
  mixer->Set_HLSLightness(std::min(mixer->Get_HLSLightness() + std::clamp(percent, 0, 100) / 100.0, 1.0));
  return mixer->Get_Color();
}

TColor GetLighterColorWithDC(const IDisplay& dc, TColor color, std::int32_t percent) {
  return dc.PaletteSize() == 256 ? color : GetLighterColor(color, percent);
}

}  // namespace LSColor_UNT

}  // namespace vx
