#include "colour/ColorModels_UNT.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "platform/canvas/SystemColors.h"
#include "platform/runtime/Format.h"

namespace vx {

namespace {

// The digits are the model's own, and part of its results.
constexpr double kHalfRoot3 = 0.866025403785;
constexpr double kRoot3 = 1.73205080757;
constexpr double kFullTurn = 6.28318530718;  // radians
constexpr double kHalfTurn = 3.14159265359;  // radians, where degrees are made of them and back
constexpr double kAlmostZero = 0.001;
constexpr double kBytesInOne = 256.0;  // kept, not 255: white isn't quite 1

bool IsAlmostZero(double value) { return std::fabs(value) < kAlmostZero; }

/// At most 1; 0 for what is no number.
double Capped(double value) { return value > -std::numeric_limits<double>::infinity() ? std::min(value, 1.0) : 0.0; }

/// 0 for what is no number.
double Clamped(double value, double greatest) { return value > 0 ? std::min(value, greatest) : 0.0; }
double Clamped(double value) { return Clamped(value, 1.0); }

/// The whole part of a hue modulo 360, and its fraction: at least 0, below 360.
double WithinCircle(double hue) {
  if (!std::isfinite(hue)) return 0;
  const double within = std::fmod(hue, 360.0);
  const double positive = within < 0 ? within + 360 : within;
  return positive < 360 ? positive : 0;  // the sum of 360 and next to nothing is 360
}

std::int32_t ByteOf(double channel) { return static_cast<std::int32_t>(Clamped(kBytesInOne * channel, 255)); }

// -- HLS --------------------------------------------------------------------------------------------------------------

double ArcTan(double y, double x) {
  constexpr double kPi = std::numbers::pi;
  if (x == 0) return y >= 0 ? kPi / 2 : -kPi / 2;
  return std::atan(y / x) + (x < 0 ? kPi : 0);
}

/// Degrees from blue.
double OpponentHue(double r, double g, double b) {
  const double angle = ArcTan(kHalfRoot3 * r - kHalfRoot3 * g, -0.5 * r - 0.5 * g + b) + kFullTurn;
  return (angle - std::trunc(angle / kFullTurn) * kFullTurn) * 180 / kHalfTurn;
}

double SaturationOf(double max, double min, double lightness) {
  const double most = lightness <= 0.5 ? max + min : 2 - max - min;
  return most == 0 ? 0 : (max - min) / most;  // it is 0 only between channels below 0
}

// The channel between the greatest and the least, from these two and the tangent of the hue.
double BlueBetween(double r, double g, double t) {
  return IsAlmostZero(t) ? r : (kHalfRoot3 * r - kHalfRoot3 * g + (g / 2 + r / 2) * t) / t;
}
double GreenBetween(double r, double b, double t) {
  return IsAlmostZero(t - kRoot3) ? b : (kHalfRoot3 * r + (r / 2 - b) * t) / (kHalfRoot3 - t / 2);
}
double RedBetween(double g, double b, double t) {
  return IsAlmostZero(t + kRoot3) ? b : (kHalfRoot3 * g + (b - g / 2) * t) / (kHalfRoot3 + t / 2);
}

}  // namespace

// -- Conversions ------------------------------------------------------------------------------------------------------

namespace ColorModels_UNT {

void RGB24bitsToReal(TColor color, double& r, double& g, double& b) {
  const TColor plain = ColorToRGB(color);
  r = RedOf(plain) / kBytesInOne;
  g = GreenOf(plain) / kBytesInOne;
  b = BlueOf(plain) / kBytesInOne;
}

TColor RGBRealTo24bits(double r, double g, double b) { return TColor{ByteOf(r) | ByteOf(g) << 8 | ByteOf(b) << 16}; }

void RGBToHSV(double r, double g, double b, double& h, double& s, double& v) {
  r = Capped(r);
  g = Capped(g);
  b = Capped(b);
  v = std::max({r, g, b});
  const double min = std::min({r, g, b});
  s = v == 0 ? 0 : (v - min) / v;
  h = 0;
  if (s == 0) return;
  const auto lack = [&](double channel) { return (v - channel) / (v - min); };
  if (r == v)
    h = g == min ? 5 + lack(b) : 1 - lack(g);
  else if (g == v)
    h = b == min ? 1 + lack(r) : 3 - lack(b);
  else
    h = r == min ? 3 + lack(g) : 5 - lack(r);
  h *= 60;
}

void HSVToRGB(double h, double s, double v, double& r, double& g, double& b) {
  h = WithinCircle(h);
  s = Capped(s);
  v = Capped(v);
  const double sector = std::trunc(h / 60);
  const double f = h / 60 - sector;
  const double p = (1 - s) * v;
  const double q = (1 - s * f) * v;
  const double t = (1 - (1 - f) * s) * v;
  const auto put = [&](double red, double green, double blue) { r = red, g = green, b = blue; };
  switch (static_cast<std::int32_t>(sector)) {
    case 0:
      return put(v, t, p);
    case 1:
      return put(q, v, p);
    case 2:
      return put(p, v, t);
    case 3:
      return put(p, q, v);
    case 4:
      return put(t, p, v);
    default:
      return put(v, p, q);
  }
}

void RGBToHLS(double r, double g, double b, double& h, double& l, double& s) {
  r = Capped(r);
  g = Capped(g);
  b = Capped(b);
  const double max = std::max({r, g, b});
  const double min = std::min({r, g, b});
  l = (max + min) / 2;
  s = max == min ? 0 : SaturationOf(max, min, l);
  h = max == min ? 0 : OpponentHue(r, g, b);
}

void HLSToRGB(double h, double l, double s, double& r, double& g, double& b) {
  h = WithinCircle(h);
  l = Capped(l);
  s = Capped(s);
  if (s < kAlmostZero) {
    r = g = b = l;
    return;
  }
  const double high = l <= 0.5 ? l + s * l : l + s - s * l;
  const double low = l <= 0.5 ? l - s * l : l - s + s * l;
  const double t = std::tan(h * kHalfTurn / 180);
  const auto put = [&](double red, double green, double blue) { r = red, g = green, b = blue; };
  switch (static_cast<std::int32_t>(h / 60)) {
    case 0:
      return put(RedBetween(low, high, t), low, high);
    case 1:
      return put(high, low, BlueBetween(high, low, t));
    case 2:
      return put(high, GreenBetween(high, low, t), low);
    case 3:
      return put(RedBetween(high, low, t), high, low);
    case 4:
      return put(low, high, BlueBetween(low, high, t));
    default:
      return put(low, GreenBetween(low, high, t), high);
  }
}

}  // namespace ColorModels_UNT

// -- TColorMixer ------------------------------------------------------------------------------------------------------

const TClass& TColorMixer::StaticClass() {
  static const TClass info("TColorMixer", &TObject::StaticClass());
  return info;
}

void TColorMixer::Set_Color(TColor color) {
  color_ = color;
  RGB24bitsToReal(color, red_, green_, blue_);
}

TMatchPalette TColorMixer::Get_MatchPalette() const {
  switch (static_cast<std::uint32_t>(color_) >> 24) {
    case 0x00:
      return mpSystem;
    case 0x01:
      return mpCurrentlyRealized;
    case 0x02:
      return mpDCLogicalPalette;
    case 0x80:
      return mpScreenElement;
    default:
      return mpInvalid;
  }
}

void TColorMixer::Set_MatchPalette(TMatchPalette value) {
  if (value > mpDCLogicalPalette) throw Exception(Format("Cannot assign %x to TColorMixer.MatchPalette", {+value}));
  color_ = TColor{(color_ & 0x00FFFFFF) | value << 24};
}

double TColorMixer::Get_GreyTone() const { return 0.212671 * red_ + 0.71516 * green_ + 0.072169 * blue_; }

void TColorMixer::ComputeColor() { color_ = RGBRealTo24bits(red_, green_, blue_); }

void TColorMixer::ComputeColorKeepingPalette() {
  color_ = TColor{RGBRealTo24bits(red_, green_, blue_) | (color_ & 0x0F000000)};
}

// -- Whole colours ----------------------------------------------------------------------------------------------------

void TColorMixer::SetRGB(double r, double g, double b) {
  red_ = Capped(r);
  green_ = Capped(g);
  blue_ = Capped(b);
  ComputeColor();
}

void TColorMixer::SetCMY(double c, double m, double y) { SetRGB(1 - c, 1 - m, 1 - y); }

void TColorMixer::SetHSV(double h, double s, double v) {
  HSVToRGB(h, s, v, red_, green_, blue_);
  ComputeColor();
}

void TColorMixer::SetHLS(double h, double l, double s) {
  HLSToRGB(h, l, s, red_, green_, blue_);
  ComputeColor();
}

// -- Single components ------------------------------------------------------------------------------------------------

void TColorMixer::Set_Red(double value) {
  red_ = Clamped(value);
  ComputeColorKeepingPalette();
}
void TColorMixer::Set_Green(double value) {
  green_ = Clamped(value);
  ComputeColorKeepingPalette();
}
void TColorMixer::Set_Blue(double value) {
  blue_ = Clamped(value);
  ComputeColorKeepingPalette();
}

void TColorMixer::Set_Cyan(double value) { Set_Red(1 - value); }
void TColorMixer::Set_Magenta(double value) { Set_Green(1 - value); }
void TColorMixer::Set_Yellow(double value) { Set_Blue(1 - value); }

TColorMixer::THSV TColorMixer::HSV() const {
  THSV hsv{};
  RGBToHSV(red_, green_, blue_, hsv.H, hsv.S, hsv.V);
  return hsv;
}

void TColorMixer::PutHSV(const THSV& hsv) {
  HSVToRGB(hsv.H, hsv.S, hsv.V, red_, green_, blue_);
  ComputeColorKeepingPalette();
}

double TColorMixer::Get_HSVHue() const { return HSV().H; }
double TColorMixer::Get_HSVSaturation() const { return HSV().S; }
double TColorMixer::Get_HSVValue() const { return HSV().V; }

void TColorMixer::Set_HSVHue(double value) {
  const THSV was = HSV();
  PutHSV({Clamped(value, 360), was.S, was.V});
}
void TColorMixer::Set_HSVSaturation(double value) {
  const THSV was = HSV();
  PutHSV({was.H, Clamped(value), was.V});
}
void TColorMixer::Set_HSVValue(double value) {
  const THSV was = HSV();
  PutHSV({was.H, was.S, Clamped(value)});
}

TColorMixer::THLS TColorMixer::HLS() const {
  THLS hls{};
  RGBToHLS(red_, green_, blue_, hls.H, hls.L, hls.S);
  return hls;
}

void TColorMixer::PutHLS(const THLS& hls) {
  HLSToRGB(hls.H, hls.L, hls.S, red_, green_, blue_);
  ComputeColorKeepingPalette();
}

double TColorMixer::Get_HLSHue() const { return HLS().H; }
double TColorMixer::Get_HLSLightness() const { return HLS().L; }
double TColorMixer::Get_HLSSaturation() const { return HLS().S; }

void TColorMixer::Set_HLSHue(double value) {
  const THLS was = HLS();
  PutHLS({Clamped(value, 360), was.L, was.S});
}
void TColorMixer::Set_HLSLightness(double value) {
  const THLS was = HLS();
  PutHLS({was.H, Clamped(value), was.S});
}
void TColorMixer::Set_HLSSaturation(double value) {
  const THLS was = HLS();
  PutHLS({was.H, was.L, Clamped(value)});
}

}  // namespace vx
