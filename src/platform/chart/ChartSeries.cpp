#include "platform/chart/ChartSeries.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/chart/Chart.h"
#include "platform/runtime/List.h"

namespace vx {

TChartSeries::TChartSeries(TComponent* owner) : TComponent(owner) {
  xValues_ = New<TChartValueList>(this, "X");
  yValues_ = New<TChartValueList>(this, "Y");
  xValues_->Order = loAscending;
}

const TClass& TChartSeries::StaticClass() {
  static const TClass info("TChartSeries", &TComponent::StaticClass());
  return info;
}

void TChartSeries::TearDown() {
  SetParentChart(nullptr);
  TComponent::TearDown();
}

// -- Points ---------------------------------------------------------------------------------------------------------

std::int32_t TChartSeries::AddXY(double x, double y, const std::string& label, TColor color) {
  xValues_->TempValue = x;
  yValues_->TempValue = y;
  const std::int32_t index = Count();
  labels_.push_back(label);
  colors_.push_back(color);
  for (const auto& list : lists_) list->Append(list->TempValue);
  AddValue(index);
  return index;
}

void TChartSeries::AddValue(std::int32_t) {}

std::int32_t TChartSeries::Add(double y, const std::string& label, TColor color) {
  return AddXY(Count(), y, label, color);
}

std::int32_t TChartSeries::AddNull(double x, const std::string& label) {
  return AddXY(x, std::numeric_limits<double>::quiet_NaN(), label);
}

void TChartSeries::Delete(std::int32_t index) {
  CheckIndex(index);
  labels_.erase(labels_.begin() + index);
  colors_.erase(colors_.begin() + index);
  for (const auto& list : lists_) list->Delete(index);
}

void TChartSeries::Clear() {
  labels_.clear();
  colors_.clear();
  for (const auto& list : lists_) list->Clear();
}

const std::string& TChartSeries::XLabel(std::int32_t index) const {
  CheckIndex(index);
  return labels_[static_cast<std::size_t>(index)];
}

TColor TChartSeries::ValueColor(std::int32_t index) const {
  CheckIndex(index);
  const TColor color = colors_[static_cast<std::size_t>(index)];
  return color == clDefault ? color_ : color;
}

bool TChartSeries::IsNull(std::int32_t index) const {
  return !std::isfinite(XValue(index)) || !std::isfinite(YValue(index));
}

void TChartSeries::CheckIndex(std::int32_t index) const {
  if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
}

std::vector<std::int32_t> TChartSeries::DrawingOrder() const {
  const std::vector<double>& x = xValues_->Values();
  const auto at = [&x](std::int32_t index) { return x[static_cast<std::size_t>(index)]; };
  std::vector<std::int32_t> order;
  for (std::int32_t i = 0; i < Count(); ++i)
    if (std::isfinite(at(i))) order.push_back(i);
  const auto before = [&at](std::int32_t a, std::int32_t b) { return at(a) < at(b); };
  if (xValues_->Order == loAscending && !std::is_sorted(order.begin(), order.end(), before))
    std::stable_sort(order.begin(), order.end(), before);
  return order;
}

// -- Channels -------------------------------------------------------------------------------------------------------

TChartValueList& TChartSeries::ValueLists(std::int32_t index) const {
  if (index < 0 || index >= ValueListCount()) RaiseListError(kListIndexError, index);
  return *lists_[static_cast<std::size_t>(index)];
}

void TChartSeries::Adopt(TChartValueList* list) { lists_.emplace_back(list); }

double TChartSeries::MinXValue() const { return xValues_->MinValue(); }
double TChartSeries::MaxXValue() const { return xValues_->MaxValue(); }
double TChartSeries::MinYValue() const { return yValues_->MinValue(); }
double TChartSeries::MaxYValue() const { return yValues_->MaxValue(); }

// -- Chart ----------------------------------------------------------------------------------------------------------

void TChartSeries::SetParentChart(TCustomChart* chart) {
  if (chart == parent_) return;
  if (parent_ != nullptr) parent_->RemoveSeries(this);
  if (chart != nullptr) chart->AddSeries(this);
}

void TChartSeries::DrawShape(TCanvas& canvas, const TSeriesShape& shape) const {
  const TCanvasStateSaver saved(canvas);
  for (const TBarBox& bar : shape.Bars) {
    canvas.SetBrushColor(bar.Color);
    canvas.FillRect(bar.Box);
  }
  canvas.SetPen(shape.Pen);
  for (const std::vector<TPoint>& line : shape.Lines) canvas.Polyline(line);
  for (const TPointerBox& pointer : shape.Pointers) DrawPointer(canvas, pointer);
}

void DrawPointer(TCanvas& canvas, const TPointerBox& pointer) {
  const TRect& box = pointer.Box;
  const TPoint middle{(box.Left + box.Right - 1) / 2, (box.Top + box.Bottom - 1) / 2};
  const TPoint last{box.Right - 1, box.Bottom - 1};
  canvas.SetPen({pointer.Color});
  canvas.SetBrushColor(pointer.Color);
  switch (pointer.Style) {
    case psRectangle:
      return canvas.Rectangle(box);
    case psCircle:
      return canvas.Ellipse(box);
    case psTriangle:
      return canvas.Polygon({{middle.X, box.Top}, last, {box.Left, last.Y}});
    case psDiamond:
      return canvas.Polygon({{middle.X, box.Top}, {last.X, middle.Y}, {middle.X, last.Y}, {box.Left, middle.Y}});
  }
}

}  // namespace vx
