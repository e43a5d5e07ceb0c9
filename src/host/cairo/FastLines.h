// FastLines.h: solid lines of many points, smoothed, many times as fast as a general stroke.
//
// What a chart draws of a long series: for each column of pixels the line goes up and down, and most of it is upright.
// Upright and level stretches become whole pixels; what is left is united place by place (RowCoverage.h). Ends and
// corners are those of CairoPainter.h, and the picture is that of Cairo's stroke to the eye: no pixel differs by more
// than the test states.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/cairo/RowCoverage.h"

namespace vx {

class TFastLines {
 public:
  /// True for lines that are drawn here: solid, and narrow enough, and so long that finer smoothing would not be seen.
  static bool Takes(std::size_t count, const TStroking& stroking);

  /// A line in one or more parts. `isThin` as in PixelGrid.h: square ends and pointed corners instead of round ones.
  void Stroke(std::vector<std::vector<TDot>> parts, const TStroking& stroking, bool isThin, const TPixelTarget& target);

 private:
  void MakeEndsSquare(std::vector<TDot>& line) const;
  void AddAligned(TDot from, TDot to);
  void AddSlanted(TDot from, TDot to);
  void AddCorner(TDot before, TDot at, TDot after);
  void AddRounds(std::span<const TDot> line, std::int32_t width);

  TRowCoverage coverage_;
  double half_ = 0;  ///< the width of the line
};

}  // namespace vx
