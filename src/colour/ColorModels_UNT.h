// ColorModels_UNT.h: one colour in the terms of several models.
//
//   model   components                    for
//   RGB     red, green, blue              what a screen mixes
//   CMY     cyan, magenta, yellow         what ink takes away: 1 - red, 1 - green, 1 - blue
//   HSV     hue, saturation, value        choosing a colour
//   HLS     hue, lightness, saturation    making a colour lighter, darker, or less of a colour
//
// Hues are degrees from 0 to 360, all else runs from 0 to 1. The hue of HSV starts at red. That of HLS is another one:
// the angle of the colour among its opponents, measured from blue; blue is at 0 degrees, red at 120, green at 240.
//
//   const auto mixer = Make<TColorMixer>(clNavy);
//   mixer->Set_HLSLightness(0.75);                     // the same hue, much lighter
//   canvas.Brush().SetColor(mixer->Get_Color());
//
// A byte stands for its 256th part: 255 is 0.99609375, so that white isn't quite 1, and back it is 255 again. Every
// byte comes back from the real channels as it was; by HSV or HLS and back it may come back one smaller, since channels
// are cut and not rounded.
//
// What lies beyond the ranges. Channels above 1 count as 1 everywhere, a channel below 0 has the byte 0, and a hue is
// taken modulo 360. What is no number counts as 0. Nothing here raises but Set_MatchPalette.
//
// Cost: some ten nanoseconds for HSV, a few tens for HLS, which takes an arc tangent there and a tangent back.
#pragma once

#include <cstdint>

#include "platform/canvas/Color.h"
#include "platform/runtime/Object.h"

namespace vx {

/// How a display with a palette is asked for a colour: the top byte of a TColor.
enum TMatchPalette : std::uint8_t {
  mpSystem,             ///< 00: the nearest of the system's palette
  mpCurrentlyRealized,  ///< 01: the nearest of the palette in force
  mpDCLogicalPalette,   ///< 02: the nearest of the palette of what is drawn on
  mpScreenElement,      ///< 80: a system colour, which is no colour of a palette
  mpInvalid,            ///< anything else
};
/// mpSystem to mpDCLogicalPalette: those that can be assigned.
using TValidMatchPalette = TMatchPalette;

namespace ColorModels_UNT {

/// The channels of a colour; a system colour as it is now (ColorToRGB).
void RGB24bitsToReal(TColor color, double& r, double& g, double& b);
/// A plain colour. Each byte is the whole part of 256 times the channel, 255 at most.
TColor RGBRealTo24bits(double r, double g, double b);

/// A grey has hue 0. Pure red has 360, not 0; the way back takes both.
void RGBToHSV(double r, double g, double b, double& h, double& s, double& v);
void HSVToRGB(double h, double s, double v, double& r, double& g, double& b);

/// A grey has hue and saturation 0.
void RGBToHLS(double r, double g, double b, double& h, double& l, double& s);
/// A saturation below 0.001 counts as 0.
void HLSToRGB(double h, double l, double s, double& r, double& g, double& b);

}  // namespace ColorModels_UNT

using ColorModels_UNT::HLSToRGB;
using ColorModels_UNT::HSVToRGB;
using ColorModels_UNT::RGB24bitsToReal;
using ColorModels_UNT::RGBRealTo24bits;
using ColorModels_UNT::RGBToHLS;
using ColorModels_UNT::RGBToHSV;

/// A colour that can be read and written by any component of any model. Its channels are what it keeps; all other
/// models are worked out when they are read.
///
/// Set_Color takes a colour as it is. SetRGB, SetCMY, SetHSV and SetHLS make a plain one of mpSystem. A writer of a
/// single component clamps it to its range and keeps the low nibble of the colour's top byte, so that
/// mpDCLogicalPalette stays; a system colour becomes a plain one.
class TColorMixer : public TObject {
 public:
  explicit TColorMixer(TColor color) { Set_Color(color); }
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TColor Get_Color() const { return color_; }
  void Set_Color(TColor color);
  TMatchPalette Get_MatchPalette() const;
  /// Replaces the top byte of the colour, whatever it was; the channels stay. Exception for a value that can't be
  /// assigned.
  void Set_MatchPalette(TMatchPalette value);

  // -- Whole colours: channels are capped at 1 ------------------------------------------------------------------------
  void SetRGB(double r, double g, double b);
  void SetCMY(double c, double m, double y);
  void SetHSV(double h, double s, double v);
  void SetHLS(double h, double l, double s);

  // -- Single components ----------------------------------------------------------------------------------------------
  double Get_Red() const { return red_; }
  double Get_Green() const { return green_; }
  double Get_Blue() const { return blue_; }
  void Set_Red(double value);
  void Set_Green(double value);
  void Set_Blue(double value);

  double Get_Cyan() const { return 1 - red_; }
  double Get_Magenta() const { return 1 - green_; }
  double Get_Yellow() const { return 1 - blue_; }
  void Set_Cyan(double value);
  void Set_Magenta(double value);
  void Set_Yellow(double value);

  double Get_HSVHue() const;
  double Get_HSVSaturation() const;
  double Get_HSVValue() const;
  void Set_HSVHue(double value);
  void Set_HSVSaturation(double value);
  void Set_HSVValue(double value);

  double Get_HLSHue() const;
  double Get_HLSLightness() const;
  double Get_HLSSaturation() const;
  void Set_HLSHue(double value);
  void Set_HLSLightness(double value);
  void Set_HLSSaturation(double value);

  /// How bright the colour is to the eye: the luminance weights of the primaries of ITU-R BT.709.
  double Get_GreyTone() const;

 private:
  struct THSV {
    double H, S, V;
  };
  struct THLS {
    double H, L, S;
  };

  THSV HSV() const;
  THLS HLS() const;
  void PutHSV(const THSV& hsv);
  void PutHLS(const THLS& hls);
  void ComputeColor();
  void ComputeColorKeepingPalette();

  TColor color_ = clBlack;
  double red_ = 0;
  double green_ = 0;
  double blue_ = 0;
};

}  // namespace vx
