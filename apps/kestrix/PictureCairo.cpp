#include "Picture.h"
#include "UserError.h"
#include "host/cairo/CairoDevice.h"

namespace vx::kestrix {

std::string PngOf(const TCustomChart& chart, TSize size) try {
  TCairoDevice device(size);
  TCanvas canvas(device);
  chart.Draw(canvas);
  return device.EncodePng();
} catch (const EGraphicError& error) {
  throw EUserError(error.Message());
}

}  // namespace vx::kestrix
