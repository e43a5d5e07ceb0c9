#include "platform/chart/ChartStyle.h"

#include <algorithm>
#include <cmath>

namespace vx {
namespace {

constexpr double kUsualWidth = 800;
constexpr double kUsualHeight = 450;
constexpr double kGrowth = 0.7;
constexpr double kSmallestScale = 0.8;
constexpr double kLargestScale = 6;

constexpr TColor kTextColor = RGBColor(0x33, 0x33, 0x33);
constexpr TColor kGridColor = RGBColor(0xE4, 0xE4, 0xE4);
constexpr TColor kAxisColor = RGBColor(0x80, 0x80, 0x80);

double ScaleFor(TSize picture) {
  const double larger = std::min(picture.Width / kUsualWidth, picture.Height / kUsualHeight);
  return std::clamp(std::pow(std::max(larger, 0.01), kGrowth), kSmallestScale, kLargestScale);
}

}  // namespace

std::int32_t TChartStyle::Scaled(double length) const {
  return std::max(1, static_cast<std::int32_t>(std::lround(length * Scale)));
}

TChartStyle StyleFor(TSize picture) {
  TChartStyle style{.Scale = ScaleFor(picture)};
  style.TitleFont = {.Height = style.Scaled(15), .Style = fsBold, .Color = kTextColor};
  style.LabelFont = {.Height = style.Scaled(12), .Style = fsNone, .Color = kTextColor};
  style.GridPen = {kGridColor, style.Scaled(0.8)};
  style.AxisPen = {kAxisColor, style.Scaled(0.8)};
  style.Margin = style.Scaled(10);
  style.Gap = style.Scaled(7);
  style.TickLength = style.Scaled(4);
  return style;
}

}  // namespace vx
