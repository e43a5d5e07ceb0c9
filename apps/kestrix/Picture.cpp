#include "Picture.h"

#include "platform/canvas/RecordingDevice.h"

namespace vx::kestrix {

std::string DrawingTextOf(const TCustomChart& chart, TSize size) {
  TRecordingDevice device(size);
  TCanvas canvas(device);
  chart.Draw(canvas);
  return device.Text();
}

}  // namespace vx::kestrix
