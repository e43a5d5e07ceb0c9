#include "platform/chart/ChartValueList.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/chart/ChartSeries.h"
#include "platform/runtime/List.h"

namespace vx {

TChartValueList::TChartValueList(TChartSeries* owner, std::string name)
    : owner_(Need(owner, "series of a value list")), name_(std::move(name)) {
  values_.resize(static_cast<std::size_t>(owner->Count()), TempValue);
  owner->Adopt(this);
}

const TClass& TChartValueList::StaticClass() {
  static const TClass info("TChartValueList", &TPersistent::StaticClass());
  return info;
}

double TChartValueList::Value(std::int32_t index) const {
  if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  return values_[static_cast<std::size_t>(index)];
}

void TChartValueList::SetValue(std::int32_t index, double value) {
  if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  values_[static_cast<std::size_t>(index)] = value;
  boundsKnown_ = false;
}

double TChartValueList::MinValue() const {
  FindBounds();
  return min_;
}

double TChartValueList::MaxValue() const {
  FindBounds();
  return max_;
}

void TChartValueList::FindBounds() const {
  if (boundsKnown_) return;
  min_ = std::numeric_limits<double>::infinity();
  max_ = -min_;
  for (const double value : values_)
    if (std::isfinite(value)) {
      min_ = std::min(min_, value);
      max_ = std::max(max_, value);
    }
  if (min_ > max_) min_ = max_ = std::numeric_limits<double>::quiet_NaN();
  boundsKnown_ = true;
}

void TChartValueList::Append(double value) {
  values_.push_back(value);
  boundsKnown_ = false;
}

void TChartValueList::Delete(std::int32_t index) {
  if (index < 0 || index >= Count()) RaiseListError(kListIndexError, index);
  values_.erase(values_.begin() + index);
  boundsKnown_ = false;
}

void TChartValueList::Clear() {
  values_.clear();
  boundsKnown_ = false;
}

}  // namespace vx
