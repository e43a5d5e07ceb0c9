// ChartStyle.h: sizes and colours of a chart, from the size of its picture.
//
// All lengths follow from one scale, which is 1 for a picture of 800 by 450 pixels. It grows more slowly than the
// picture: a large one shows more, not just bigger letters, and a small one stays readable.
//
//   size           250 x 150   800 x 450   1920 x 1080   3840 x 2160
//   label height          10          12            22            36
#pragma once

#include <array>
#include <cstdint>

#include "platform/canvas/Geometry.h"
#include "platform/canvas/Graphics.h"

namespace vx {

struct TChartStyle {
  double Scale = 1;
  TFontData TitleFont{};
  TFontData LabelFont{};
  TPenData GridPen{};
  TPenData AxisPen{};
  std::int32_t Margin = 0;      ///< between the picture's edge and all that is drawn
  std::int32_t Gap = 0;         ///< between parts
  std::int32_t TickLength = 0;  ///< of the marks on the bottom axis

  /// `length` pixels of a picture of usual size, at least one.
  std::int32_t Scaled(double length) const;
};

TChartStyle StyleFor(TSize picture);

/// Colours for series without one, in order; thirteen that also differ for eyes that don't tell red from green.
inline constexpr std::array kSeriesColors = {
    RGBColor(0x2F, 0x6F, 0xB0), RGBColor(0xE8, 0x87, 0x0E), RGBColor(0x00, 0xA5, 0x5A), RGBColor(0xE1, 0x3C, 0x3C),
    RGBColor(0x69, 0x2D, 0x78), RGBColor(0x4B, 0xB4, 0xD2), RGBColor(0x4B, 0x5A, 0x00), RGBColor(0xE1, 0x78, 0xFF),
    RGBColor(0xB4, 0xD2, 0x5A), RGBColor(0x87, 0x3C, 0x3C), RGBColor(0x1E, 0x69, 0xF0), RGBColor(0xFF, 0xB4, 0x96),
    RGBColor(0xD2, 0x1E, 0x78)};

/// The colour of the series at `index`; begins again after the last one.
constexpr TColor SeriesColorAt(std::int32_t index) {
  return kSeriesColors[static_cast<std::size_t>(index) % kSeriesColors.size()];
}

}  // namespace vx
