// ChartLayout.h: a chart's geometry as a value, and the painter of it.
//
// LayoutChart is a pure function of the chart, the size of the picture and the text meter of the device that will
// draw. No label of its result overlaps another or leaves the picture; where there isn't room for one it is elided,
// thinned out or left away. Any size is possible, also one in which nothing but the series fits.
//
// From the top: title, title of the left axis, plot with the labels of the left axis beside it, labels of the bottom
// axis, its title, legend.
//
// Cost: O(points) and some text measuring per label.
#pragma once

#include <vector>

#include "platform/chart/Chart.h"
#include "platform/chart/ChartStyle.h"
#include "platform/chart/SeriesShape.h"

namespace vx {

struct TSeriesLayout {
  std::int32_t Index = -1;  ///< of the series on the chart
  TSeriesShape Shape;
};

struct TLegendPicture {
  std::int32_t SeriesIndex = -1;
  TSeriesShape Shape;
};

struct TChartLayout {
  TSize Size;
  TChartStyle Style;
  TRect Plot;
  TLabelBox Title;  ///< empty text for none
  TAxisLayout Left;
  TAxisLayout Bottom;
  std::vector<TSeriesLayout> Series;  ///< the active ones, in drawing order
  std::vector<TLabelBox> LegendLabels;
  std::vector<TLegendPicture> LegendPictures;

  /// Every text with its place.
  std::vector<TLabelBox> Labels() const;
};

TChartLayout LayoutChart(const TCustomChart& chart, TSize size, const ITextMeter& meter);
/// `layout` must be of this chart as it is now.
void DrawChart(TCanvas& canvas, const TCustomChart& chart, const TChartLayout& layout);

}  // namespace vx
