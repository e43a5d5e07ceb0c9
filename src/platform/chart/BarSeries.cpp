#include "platform/chart/BarSeries.h"

#include <algorithm>
#include <cmath>

namespace vx {
namespace {

std::int32_t Rounded(double position) { return static_cast<std::int32_t>(std::floor(position + 0.5)); }

}  // namespace

const TClass& TBarSeries::StaticClass() {
  static const TClass info("TBarSeries", &TChartSeries::StaticClass());
  return info;
}

// A bar begins at zero: fmin and fmax leave out what isn't a number, so a series without points asks for nothing but
// that.
double TBarSeries::MinYValue() const { return std::fmin(TChartSeries::MinYValue(), 0.0); }
double TBarSeries::MaxYValue() const { return std::fmax(TChartSeries::MaxYValue(), 0.0); }

TRect TBarSeries::BoxOf(double x, double y, const TSeriesFrame& frame) const {
  const TBarPlace place = MultiBar == mbSide ? frame.Bars : TBarPlace{frame.Bars.Step};
  const double room = frame.Horizontal.ToPosition(x + place.Step) - frame.Horizontal.ToPosition(x);
  const double all = room * std::clamp(BarWidthPercent, 1, 100) / 100;
  // Whole pixels where there are enough: thin bars of unequal width would look like unequal values.
  const double width = all >= place.Count ? std::floor(all / place.Count) : all / place.Count;
  const double left = frame.Horizontal.ToPosition(x) + 0.5 + width * (place.Index - place.Count / 2.0);

  const std::int32_t origin = std::clamp(frame.Vertical.ToPixel(0), frame.Plot.Top, frame.Plot.Bottom - 1);
  const std::int32_t end = std::clamp(frame.Vertical.ToPixel(y), frame.Plot.Top, frame.Plot.Bottom - 1);
  TRect box{Rounded(left), std::min(origin, end), Rounded(left + width), std::max(origin, end)};
  box.Right = std::max(box.Right, box.Left + 1);
  if (y < 0) box = box.Moved(0, 1);  // the axis' own line belongs to neither side
  if (box.Height() == 0 && y > 0) --box.Top;
  if (box.Height() == 0 && y < 0) ++box.Bottom;
  return box;
}

TSeriesShape TBarSeries::CalcShape(const TSeriesFrame& frame) const {
  TSeriesShape shape;
  for (const std::int32_t index : DrawingOrder()) {
    if (IsNull(index)) continue;
    const TColor own = ValueColor(index);
    shape.Bars.push_back({BoxOf(XValue(index), YValue(index), frame), index, own == clDefault ? frame.Color : own});
  }
  return shape;
}

TSeriesShape TBarSeries::CalcLegendShape(const TRect& icon, const TSeriesFrame& frame) const {
  const std::int32_t side = std::min(icon.Width(), icon.Height());
  const TRect box =
      TRect::At({icon.Left + (icon.Width() - side) / 2, icon.Top + (icon.Height() - side) / 2}, {side, side});
  return {.Pen = {}, .Bars = {{box, -1, frame.Color}}, .Lines = {}, .Pointers = {}};
}

}  // namespace vx
