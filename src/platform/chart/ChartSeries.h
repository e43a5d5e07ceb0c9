// ChartSeries.h: a series of points on a chart.
//
// A series owns its channels (X, Y and whatever is added) and, for each point, a label and a colour. It belongs to at
// most one chart, which shows it but doesn't own it: the owner is a component, often the chart itself.
//
//   auto* chart = New<TChart>(form);
//   auto* line = New<TLineSeries>(chart);
//   chart->AddSeries(line);
//   line->SetTitle("Orders");
//   line->AddXY(EncodeDate(2024, 1, 1), 250);
//   line->AddNull(EncodeDate(2024, 2, 1));      // the line is interrupted here
//
// Null points. A point whose value (or place) is not a finite number is null, however it came in: it keeps its index
// and, if X is finite, its place on the axis, but nothing is drawn. A bar leaves its room empty, a line is
// interrupted. A period for which no point was added at all is different: its room on the axis stays too, and a line
// goes straight over it.
//
// Order. Points are drawn by rising X (XValues().Order), whatever the order in which they came; an index names a
// point by when it came.
//
// A position outside raises EListError.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/canvas/Canvas.h"
#include "platform/chart/ChartValueList.h"
#include "platform/chart/SeriesShape.h"
#include "platform/component/Component.h"

namespace vx {

class TCustomChart;

class TChartSeries : public TComponent {
 public:
  explicit TChartSeries(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  // -- Points -------------------------------------------------------------------------------------------------------
  std::int32_t Count() const { return static_cast<std::int32_t>(labels_.size()); }
  /// Adds a point and answers its index. `color` may be left to the series.
  virtual std::int32_t AddXY(double x, double y, const std::string& label = {}, TColor color = clDefault);
  /// X is the number of points so far.
  std::int32_t Add(double y, const std::string& label = {}, TColor color = clDefault);
  /// Keeps a place without a value.
  std::int32_t AddNull(double x, const std::string& label = {});
  virtual void Delete(std::int32_t index);
  virtual void Clear();

  double XValue(std::int32_t index) const { return xValues_->Value(index); }
  double YValue(std::int32_t index) const { return yValues_->Value(index); }
  const std::string& XLabel(std::int32_t index) const;
  /// The point's own colour, else that of the series, which may be clDefault.
  TColor ValueColor(std::int32_t index) const;
  bool IsNull(std::int32_t index) const;

  // -- Channels -----------------------------------------------------------------------------------------------------
  TChartValueList& XValues() const { return *xValues_; }
  TChartValueList& YValues() const { return *yValues_; }
  std::int32_t ValueListCount() const { return static_cast<std::int32_t>(lists_.size()); }
  /// In the order of their making: X, Y, then the others.
  TChartValueList& ValueLists(std::int32_t index) const;
  /// Called by the constructor of a channel.
  void Adopt(TChartValueList* list);

  // -- Look ---------------------------------------------------------------------------------------------------------
  const std::string& Title() const { return title_; }
  void SetTitle(std::string title) { title_ = std::move(title); }
  /// clDefault lets the chart choose.
  TColor SeriesColor() const { return color_; }
  void SetSeriesColor(TColor color) { color_ = color; }
  /// An inactive series keeps its points but isn't shown, not even in the legend.
  bool Active() const { return active_; }
  void SetActive(bool active) { active_ = active; }
  TCustomChart* ParentChart() const { return parent_; }
  /// Null takes it off its chart.
  void SetParentChart(TCustomChart* chart);

  // -- What the axes need to know -----------------------------------------------------------------------------------
  /// Of the finite values; not a number if there are none. The places of null points count.
  virtual double MinXValue() const;
  virtual double MaxXValue() const;
  virtual double MinYValue() const;
  virtual double MaxYValue() const;
  virtual TZero WantsZero() const { return TZero::kWhenNear; }
  /// True if it takes a place of its own beside other series of its kind, as bars do.
  virtual bool StandsBeside() const { return false; }

  // -- Drawing ------------------------------------------------------------------------------------------------------
  virtual TSeriesShape CalcShape(const TSeriesFrame& frame) const = 0;
  /// The little picture in the legend, within `icon`; DrawShape paints it.
  virtual TSeriesShape CalcLegendShape(const TRect& icon, const TSeriesFrame& frame) const = 0;
  virtual void DrawShape(TCanvas& canvas, const TSeriesShape& shape) const;

 protected:
  ~TChartSeries() override = default;
  /// Called by AddXY when the new point is in all channels; `index` is the new point's.
  virtual void AddValue(std::int32_t index);
  /// Indexes of the points with a place on the axis, in the order in which they are drawn. O(n) if they came in order.
  std::vector<std::int32_t> DrawingOrder() const;

 private:
  friend class TCustomChart;

  void CheckIndex(std::int32_t index) const;

  std::vector<TOwned<TChartValueList>> lists_;
  TChartValueList* xValues_ = nullptr;
  TChartValueList* yValues_ = nullptr;
  std::vector<std::string> labels_;
  std::vector<TColor> colors_;
  std::string title_;
  TColor color_ = clDefault;
  bool active_ = true;
  TCustomChart* parent_ = nullptr;
};

/// Paints one pointer, filled, with an outline of the same colour.
void DrawPointer(TCanvas& canvas, const TPointerBox& pointer);

}  // namespace vx
