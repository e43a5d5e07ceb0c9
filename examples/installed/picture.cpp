// A program of a stranger who draws: the component cairo brings Cairo and Pango along.
#include <iostream>

#include "host/cairo/CairoDevice.h"
#include "platform/canvas/Canvas.h"

using namespace vx;

int main() {
  TCairoDevice device({120, 40});
  TCanvas canvas(device);
  canvas.TextOut({10, 10}, "Drill");
  device.SaveToFile("picture.png");
  std::cout << "picture.png, " << device.ImageSize().Width << " by " << device.ImageSize().Height << '\n';
}
