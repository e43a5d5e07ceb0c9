#include "platform/chart/Chart.h"

#include <algorithm>

#include "platform/chart/ChartLayout.h"
#include "platform/runtime/List.h"

namespace vx {

const TClass& TChartTitle::StaticClass() {
  static const TClass info("TChartTitle", &TPersistent::StaticClass());
  return info;
}

const TClass& TCustomChart::StaticClass() {
  static const TClass info("TCustomChart", &TComponent::StaticClass());
  return info;
}

const TClass& TChart::StaticClass() {
  static const TClass info("TChart", &TCustomChart::StaticClass());
  return info;
}

void TCustomChart::TearDown() {
  while (!series_.empty()) RemoveSeries(series_.back());
  TComponent::TearDown();
}

TChartSeries& TCustomChart::Series(std::int32_t index) const {
  if (index < 0 || index >= SeriesCount()) RaiseListError(kListIndexError, index);
  return *series_[static_cast<std::size_t>(index)];
}

void TCustomChart::AddSeries(TChartSeries* series) {
  TChartSeries& added = Need(series, "series to add");
  if (added.parent_ == this) return;
  if (added.parent_ != nullptr) added.parent_->RemoveSeries(series);
  series_.push_back(series);
  added.parent_ = this;
}

void TCustomChart::RemoveSeries(TChartSeries* series) {
  if (std::erase(series_, series) != 0) series->parent_ = nullptr;
}

TColor TCustomChart::ColorOf(std::int32_t index) const {
  const TColor own = Series(index).SeriesColor();
  return own == clDefault ? SeriesColorAt(index) : own;
}

void TCustomChart::Draw(TCanvas& canvas) const {
  DrawChart(canvas, *this, LayoutChart(*this, canvas.Size(), canvas.TextMeter()));
}

}  // namespace vx
