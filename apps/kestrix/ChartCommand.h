// ChartCommand.h: "kestrix chart": values by period as a picture.
//
// Records whose date or value is null are left out, and counted on the error output. Periods without records keep their
// place on the axis. The picture's kind follows from the end of the output's name: .png, or .txt for the list of
// drawing commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "ChartData.h"
#include "Command.h"
#include "Inputs.h"
#include "platform/canvas/Geometry.h"
#include "platform/chart/Chart.h"

namespace vx::kestrix {

struct TChartOptions {
  TInputOptions input;
  std::string date;  ///< a column, or year, month and day columns, separated by commas
  std::string value;
  std::string series;  ///< empty: one series
  TVXGroupMode by = vxgrOneMonth;
  TVXBucketType aggregate = vxbtCumulate;
  bool hasBars = false;  ///< lines otherwise
  std::size_t top = 12;  ///< series shown before "others"
  TSize size{1000, 560};
  std::optional<std::string> title;
  std::string output;
};

/// The command's options; see ChartOptions.cpp.
TRunCommand AddChart(CLI::App& app);
/// Raises EUserError and EInterrupted.
void RunChart(const TChartOptions& options, const TStreams& streams);

/// The chart of folded values, as RunChart draws it.
TOwned<TChart> MakeChart(const TFoldedChart& folded, const TChartOptions& options, const std::string& title);

}  // namespace vx::kestrix
