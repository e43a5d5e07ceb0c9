// Chart.h: a chart of series over a left and a bottom axis, with a title and a legend.
//
//   auto chart = Make<TChart>(nullptr);
//   auto* bars = New<TBarSeries>(chart.get());        // the chart frees it
//   chart->AddSeries(bars);                           // and shows it
//   bars->Add(12, "Mon"); bars->Add(7, "Tue");
//   chart->Title().Text = "Orders";
//   chart->Draw(canvas);
//
// Drawing has two steps. LayoutChart (ChartLayout.h) computes where everything lies, as a value, from the chart, a
// size and a text meter; DrawChart paints such a value. Draw does both on a canvas.
//
// A chart shows series, it doesn't own them: a series is freed by its owner, and leaves the chart then. Any number of
// charts may live side by side; drawing changes nothing in them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/canvas/Canvas.h"
#include "platform/chart/ChartAxis.h"
#include "platform/chart/ChartLegend.h"
#include "platform/chart/ChartSeries.h"
#include "platform/component/Component.h"

namespace vx {

class TChartTitle : public TPersistent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  bool Visible = true;
  std::string Text;
};

class TCustomChart : public TComponent {
 public:
  explicit TCustomChart(TComponent* owner = nullptr) : TComponent(owner) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  // -- Series -------------------------------------------------------------------------------------------------------
  std::int32_t SeriesCount() const { return static_cast<std::int32_t>(series_.size()); }
  /// In drawing order; EListError outside 0 to SeriesCount - 1.
  TChartSeries& Series(std::int32_t index) const;
  /// Shows `series` here, last, and no longer on another chart. Without effect if it is here already.
  void AddSeries(TChartSeries* series);
  /// Without effect on a series that isn't here.
  void RemoveSeries(TChartSeries* series);
  /// The series' own colour, else the one that its place gives it.
  TColor ColorOf(std::int32_t index) const;

  // -- Parts --------------------------------------------------------------------------------------------------------
  TChartTitle& Title() { return title_; }
  const TChartTitle& Title() const { return title_; }
  TChartLegend& Legend() { return legend_; }
  const TChartLegend& Legend() const { return legend_; }
  TChartAxis& LeftAxis() { return leftAxis_; }
  const TChartAxis& LeftAxis() const { return leftAxis_; }
  TChartAxis& BottomAxis() { return bottomAxis_; }
  const TChartAxis& BottomAxis() const { return bottomAxis_; }

  // -- Drawing ------------------------------------------------------------------------------------------------------
  /// Fills the whole canvas.
  void Draw(TCanvas& canvas) const;

 protected:
  ~TCustomChart() override = default;

 private:
  std::vector<TChartSeries*> series_;
  TChartTitle title_;
  TChartLegend legend_;
  TChartAxis leftAxis_{/*horizontal=*/false};
  TChartAxis bottomAxis_{/*horizontal=*/true};
};

/// The chart for applications.
class TChart : public TCustomChart {
 public:
  using TCustomChart::TCustomChart;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

 protected:
  ~TChart() override = default;
};

}  // namespace vx
