// SeriesShape.h: what a series looks like, as a value.
//
// A series computes its shape from a frame (axes, colour, sizes) that it is given, and paints a shape without asking
// where it came from. So the chart, the legend's little picture and, later, the search for the point under the mouse
// use the same boxes, and can't drift apart.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/canvas/Geometry.h"
#include "platform/canvas/Graphics.h"
#include "platform/chart/ChartScale.h"

namespace vx {

enum TPointerStyle : std::uint8_t { psRectangle, psCircle, psTriangle, psDiamond };

/// The sign on each point of a line. Sizes are half of the width and height, in pixels of a picture of usual size.
struct TSeriesPointer {
  bool Visible = false;
  TPointerStyle Style = psCircle;
  std::int32_t HorizSize = 3;
  std::int32_t VertSize = 3;
};

struct TBarBox {
  TRect Box;
  std::int32_t ValueIndex = -1;
  TColor Color = clBlack;

  bool operator==(const TBarBox&) const = default;
};

struct TPointerBox {
  TRect Box;
  TPointerStyle Style = psCircle;
  std::int32_t ValueIndex = -1;
  TColor Color = clBlack;

  bool operator==(const TPointerBox&) const = default;
};

/// All that a series paints, in chart pixels.
struct TSeriesShape {
  TPenData Pen{};  ///< of the lines
  std::vector<TBarBox> Bars{};
  std::vector<std::vector<TPoint>> Lines{};  ///< each drawn in one go; between them lie null points
  std::vector<TPointerBox> Pointers{};
};

/// The bars' places on the bottom axis: `Count` series share the room around each value, of which this one has place
/// `Index`.
struct TBarPlace {
  double Step = 1;  ///< distance of neighbouring values, in axis units
  std::int32_t Index = 0;
  std::int32_t Count = 1;
};

/// The surroundings of a series, given to it: it never asks for them.
struct TSeriesFrame {
  TRect Plot{};
  TAxisMap Horizontal{};
  TAxisMap Vertical{};
  TColor Color = clBlack;  ///< for all that has no colour of its own
  double Scale = 1;        ///< of line widths and pointers
  TBarPlace Bars{};
};

}  // namespace vx
