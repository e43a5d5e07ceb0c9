// Picture.h: a chart as the bytes of a file.
#pragma once

#include <string>

#include "platform/canvas/Geometry.h"
#include "platform/chart/Chart.h"

namespace vx::kestrix {

/// Raises EUserError for a size that no picture can have. There only in programs built with Cairo.
std::string PngOf(const TCustomChart& chart, TSize size);

/// The drawing commands, a line each.
std::string DrawingTextOf(const TCustomChart& chart, TSize size);

}  // namespace vx::kestrix
