#include "platform/chart/ChartAxis.h"

namespace vx {

const TClass& TChartAxis::StaticClass() {
  static const TClass info("TChartAxis", &TPersistent::StaticClass());
  return info;
}

void TChartAxis::SetMinMax(double minimum, double maximum) {
  automatic_ = false;
  minimum_ = minimum;
  maximum_ = maximum;
}

namespace {

void DrawGrid(TCanvas& canvas, const TAxisLayout& axis, const TRect& plot, bool horizontal) {
  for (const std::int32_t at : axis.Ticks)
    if (horizontal)
      canvas.Line({at, plot.Top}, {at, plot.Bottom - 1});
    else
      canvas.Line({plot.Left, at}, {plot.Right - 1, at});
}

void DrawTicks(TCanvas& canvas, const TAxisLayout& axis, const TRect& plot, std::int32_t length) {
  for (const std::int32_t at : axis.Ticks) canvas.Line({at, plot.Bottom}, {at, plot.Bottom + length - 1});
}

}  // namespace

void DrawAxis(TCanvas& canvas, const TAxisLayout& axis, const TRect& plot, const TChartAxis& settings,
              const TChartStyle& style) {
  const TCanvasStateSaver saved(canvas);
  canvas.SetPen(style.GridPen);
  if (settings.GridVisible) DrawGrid(canvas, axis, plot, settings.Horizontal());
  canvas.SetPen(style.AxisPen);
  if (settings.Horizontal()) DrawTicks(canvas, axis, plot, style.TickLength);
}

void DrawLabel(TCanvas& canvas, const TLabelBox& label) {
  if (!label.Text.empty()) canvas.TextOut(label.Box.TopLeft(), label.Text);
}

void DrawLabels(TCanvas& canvas, const std::vector<TLabelBox>& labels) {
  for (const TLabelBox& label : labels) DrawLabel(canvas, label);
}

}  // namespace vx
