// ChartSamples.h: charts to try layouts with, and the judge of their labels. Used with every text meter there is.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "platform/chart/Chart.h"
#include "platform/chart/ChartLayout.h"

namespace vx::test {

struct TChartSample {
  std::vector<double> values;  ///< of the first series, a month each; the others have parts of them
  std::int32_t seriesCount = 1;
  bool bars = true;
};

/// Long names, a title, axis titles, periods from January 2022.
TOwned<TChart> SampleChart(const TChartSample& sample);

struct TChartData {
  const char* name;
  std::vector<double> values;
};

/// What values may do to an axis.
extern const std::vector<TChartData> kChartData;

/// From too small for anything, by 250 x 150, to 4K.
inline constexpr std::array kChartSizes = {TSize{120, 80},    TSize{250, 150},   TSize{251, 400},  TSize{400, 150},
                                           TSize{640, 480},   TSize{800, 450},   TSize{1024, 300}, TSize{300, 1200},
                                           TSize{1920, 1080}, TSize{2560, 1440}, TSize{3840, 2160}};

/// Names the first label that overlaps another or leaves the picture; empty if there is none.
std::string LabelFault(const TChartLayout& layout);

}  // namespace vx::test
