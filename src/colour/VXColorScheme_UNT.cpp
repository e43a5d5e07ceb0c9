#include "colour/VXColorScheme_UNT.h"

#include <algorithm>

#include "colour/ColorModels_UNT.h"
#include "platform/canvas/Display.h"

namespace vx {

namespace {

constexpr TColor kNotComputed = clNone;

struct TApplicationColors {
  TColor ReadOnly = kNotComputed;
  TColor Denied = kNotComputed;
};

TApplicationColors applicationColors;  // reset from the start

/// `color` at another lightness, which is cut at white.
TColor WithLightness(TColor color, double lightness) {
  const auto mixer = Make<TColorMixer>(color);
  mixer->Set_HLSLightness(lightness);
  mixer->Set_MatchPalette(mpDCLogicalPalette);
  return mixer->Get_Color();
}

/// Shades of a window that has a colour of its own. A dark one is told from them only by lighter ones.
TApplicationColors ShadesOfWindow(double lightness, bool isBright) {
  return {WithLightness(clWindow, lightness * (isBright ? 1 - 0.1 : 1 + 0.2)),
          WithLightness(clWindow, lightness * (isBright ? 1 - 0.6 : 1 + 0.7))};
}

/// Shades of the controls' face, beside a window that is grey or nearly so.
TApplicationColors ShadesOfFace(double windowLightness, bool isBright) {
  const double readOnly = isBright ? windowLightness * 0.9 : std::max(windowLightness * 1.3, 0.25);
  return {WithLightness(clBtnFace, readOnly), WithLightness(clBtnFace, readOnly * (isBright ? 0.5 : 1.8))};
}

TApplicationColors Compute() {
  // The windows of an application are on the display in force.
  if (Display().BitsPerPixel() <= 8) return {clBtnFace, clBtnShadow};
  const auto window = Make<TColorMixer>(clWindow);
  const bool isBright = window->Get_GreyTone() > 0.5;
  const bool isSaturated = window->Get_HLSSaturation() > 0.1;
  return (isSaturated ? ShadesOfWindow : ShadesOfFace)(window->Get_HLSLightness(), isBright);
}

}  // namespace

namespace VXColorScheme_UNT {

TColor GetApplicationReadOnlyColor() {
  if (applicationColors.ReadOnly == kNotComputed) applicationColors = Compute();
  return applicationColors.ReadOnly;
}

TColor GetApplicationDeniedColor() {
  if (applicationColors.Denied == kNotComputed) applicationColors = Compute();
  return applicationColors.Denied;
}

void ResetApplicationColors() { applicationColors = {}; }

}  // namespace VXColorScheme_UNT

}  // namespace vx
