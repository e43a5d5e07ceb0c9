// ChartLegend.h: the strip below the plot that names the series.
//
// Entries stand in one row if they fit, else in columns of equal width; names that are too long end in "…". The strip
// takes at most a quarter of the room that it is offered; if not even then all series have a place, the last entry
// says how many more there are ("+7").
//
// The layout works on neutral entries, a text each: legend and series don't know each other.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/canvas/CanvasDevice.h"
#include "platform/canvas/TextFit.h"
#include "platform/chart/ChartStyle.h"
#include "platform/runtime/Object.h"

namespace vx {

class TChartLegend : public TPersistent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  bool Visible = true;
};

struct TLegendEntry {
  std::int32_t Index = -1;  ///< of the text; -1 for the entry that counts the rest, which has no picture
  TRect Icon;
  TLabelBox Label;
};

/// Entries at the bottom of `area`; none if there isn't room for a row.
std::vector<TLegendEntry> LayoutLegend(const std::vector<std::string>& texts, const TRect& area,
                                       const TChartStyle& style, const ITextMeter& meter);

}  // namespace vx
