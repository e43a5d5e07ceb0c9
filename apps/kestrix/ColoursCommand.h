// ColoursCommand.h: "kestrix colours": colours in all models, lighter, against white and black, and what an application
// makes of a scheme.
//
//   clNavy
//     Colour           number $00800000, name clNavy, web #000080
//     Bytes            red 0, green 0, blue 128
//     HLS              hue 0.00, lightness 0.2500, saturation 1.0000
//     …
#pragma once

#include "Command.h"

namespace vx::kestrix {

TRunCommand AddColours(CLI::App& app);

}  // namespace vx::kestrix
