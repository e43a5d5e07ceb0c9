#include "platform/chart/LineSeries.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

namespace vx {
namespace {

constexpr std::size_t kPointsPerColumn = 2;  // a line is thinned above this

std::int32_t Scaled(std::int32_t length, double scale) {
  return std::max(1, static_cast<std::int32_t>(std::lround(length * scale)));
}

void Thin(std::vector<std::vector<TPoint>>& lines, std::int32_t columns) {
  for (auto& line : lines)
    if (line.size() > kPointsPerColumn * static_cast<std::size_t>(std::max(columns, 1))) line = ColumnExtremes(line);
}

}  // namespace

const TClass& TLineSeries::StaticClass() {
  static const TClass info("TLineSeries", &TChartSeries::StaticClass());
  return info;
}

TPenData TLineSeries::PenFor(const TSeriesFrame& frame) const {
  const TColor color = LinePen.Color == clDefault ? frame.Color : LinePen.Color;
  return {color, Scaled(LinePen.Width, frame.Scale), LinePen.Style};
}

void TLineSeries::AddPointer(TSeriesShape& shape, TPoint at, std::int32_t index, const TSeriesFrame& frame) const {
  const std::int32_t h = Scaled(Pointer.HorizSize, frame.Scale);
  const std::int32_t v = Scaled(Pointer.VertSize, frame.Scale);
  const TColor own = index < 0 ? clDefault : ValueColor(index);
  shape.Pointers.push_back(
      {{at.X - h, at.Y - v, at.X + h + 1, at.Y + v + 1}, Pointer.Style, index, own == clDefault ? frame.Color : own});
}

TSeriesShape TLineSeries::CalcShape(const TSeriesFrame& frame) const {
  TSeriesShape shape{.Pen = PenFor(frame)};
  std::int32_t last = -1;  // index of the point before, while the line goes on
  const auto endLine = [&] {
    if (last >= 0 && shape.Lines.back().size() == 1) {
      if (!Pointer.Visible) AddPointer(shape, shape.Lines.back()[0], last, frame);
      shape.Lines.pop_back();
    }
    last = -1;
  };
  for (const std::int32_t index : DrawingOrder()) {
    if (IsNull(index)) {
      endLine();
      continue;
    }
    const TPoint at{frame.Horizontal.ToPixel(XValue(index)), frame.Vertical.ToPixel(YValue(index))};
    if (last < 0) shape.Lines.emplace_back();
    shape.Lines.back().push_back(at);
    if (Pointer.Visible) AddPointer(shape, at, index, frame);
    last = index;
  }
  endLine();
  if (MayBeThinned(shape.Pen)) Thin(shape.Lines, frame.Plot.Width());
  return shape;
}

TSeriesShape TLineSeries::CalcLegendShape(const TRect& icon, const TSeriesFrame& frame) const {
  TSeriesShape shape{.Pen = PenFor(frame)};
  const std::int32_t y = (icon.Top + icon.Bottom) / 2;
  shape.Lines = {{{icon.Left, y}, {icon.Right - 1, y}}};
  if (Pointer.Visible) AddPointer(shape, {(icon.Left + icon.Right) / 2, y}, -1, frame);
  return shape;
}

std::vector<TPoint> ColumnExtremes(const std::vector<TPoint>& line) {
  std::vector<TPoint> thinned;
  for (auto first = line.begin(); first != line.end();) {
    const auto end = std::find_if(first, line.end(), [first](TPoint p) { return p.X != first->X; });
    const auto higher = [](TPoint a, TPoint b) { return a.Y < b.Y; };
    const auto [top, bottom] = std::minmax_element(first, end, higher);
    std::array kept{first, top, bottom, std::prev(end)};
    std::sort(kept.begin(), kept.end());
    const auto last = std::unique(kept.begin(), kept.end(), [](auto a, auto b) { return *a == *b; });
    std::transform(kept.begin(), last, std::back_inserter(thinned), [](auto point) { return *point; });
    first = end;
  }
  return thinned;
}

}  // namespace vx
