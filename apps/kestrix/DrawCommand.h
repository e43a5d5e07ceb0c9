// DrawCommand.h: "kestrix draw": drawing commands in a text file become a picture or pages.
//
// The text is what a chart writes into a .txt, or a person by hand (platform/canvas/RecordingDevice.h has the words).
// It is read whole and checked before anything is drawn: a mistake is told as "bars.txt:7:12: …".
#pragma once

#include "Command.h"

namespace vx::kestrix {

TRunCommand AddDraw(CLI::App& app);

}  // namespace vx::kestrix
