// BarSeries.h: a bar for each point, from zero to its value.
//
// Bars of several series stand side by side: the room around a value on the bottom axis is as wide as the narrowest
// distance of neighbours, a part of it (BarWidthPercent) belongs to bars, and each active bar series of the chart has
// an equal share, in the order of the series. A null point leaves its share empty. A value that isn't zero shows at
// least one pixel.
#pragma once

#include "platform/chart/ChartSeries.h"

namespace vx {

/// How the bars of several series share their room.
enum TMultiBar : std::uint8_t {
  mbNone,  ///< each has all of it; later series cover earlier ones
  mbSide,  ///< side by side
};

class TBarSeries : public TChartSeries {
 public:
  explicit TBarSeries(TComponent* owner = nullptr) : TChartSeries(owner) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  double MinYValue() const override;
  double MaxYValue() const override;
  TZero WantsZero() const override { return TZero::kAlways; }
  bool StandsBeside() const override { return true; }
  TSeriesShape CalcShape(const TSeriesFrame& frame) const override;
  TSeriesShape CalcLegendShape(const TRect& icon, const TSeriesFrame& frame) const override;

  TMultiBar MultiBar = mbSide;
  std::int32_t BarWidthPercent = 76;  ///< 1 to 100

 protected:
  ~TBarSeries() override = default;

 private:
  TRect BoxOf(double x, double y, const TSeriesFrame& frame) const;
};

}  // namespace vx
