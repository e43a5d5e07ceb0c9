// LineSeries.h: points joined by a line.
//
// Each stretch between null points is one line; a point that stands alone between two of them shows its pointer, as
// if those were visible. Lines with many more points than the plot has columns are thinned to what the columns can
// show, see ColumnExtremes; with pointers, every point is drawn.
#pragma once

#include "platform/chart/ChartSeries.h"

namespace vx {

class TLineSeries : public TChartSeries {
 public:
  explicit TLineSeries(TComponent* owner = nullptr) : TChartSeries(owner) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TSeriesShape CalcShape(const TSeriesFrame& frame) const override;
  TSeriesShape CalcLegendShape(const TRect& icon, const TSeriesFrame& frame) const override;

  /// clDefault is the colour of the series; the width is for a picture of usual size.
  TPenData LinePen{clDefault, 2, psSolid};
  TSeriesPointer Pointer;

 protected:
  ~TLineSeries() override = default;

 private:
  TPenData PenFor(const TSeriesFrame& frame) const;
  void AddPointer(TSeriesShape& shape, TPoint at, std::int32_t index, const TSeriesFrame& frame) const;
  bool MayBeThinned(const TPenData& pen) const { return pen.Style == psSolid && !Pointer.Visible; }
};

/// What the pixels show of a line: of each run of points in one pixel column the first, the highest, the lowest and
/// the last, in their order. Covers exactly the same pixels as the whole line. O(n).
std::vector<TPoint> ColumnExtremes(const std::vector<TPoint>& line);

}  // namespace vx
