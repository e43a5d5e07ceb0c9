#include "platform/canvas/Display.h"

#include "platform/system/InForce.h"

namespace vx {

namespace {

class TDeepDisplay final : public IDisplay {
 public:
  std::int32_t BitsPerPixel() const override { return 32; }
  std::int32_t PaletteSize() const override { return 0; }
};

}  // namespace

const IDisplay& Display() {
  static const TDeepDisplay deep;
  const IDisplay* const display = TInForce<const IDisplay*>::Current();
  return display != nullptr ? *display : deep;
}

void SetDisplay(const IDisplay* display) { TInForce<const IDisplay*>::Current() = display; }

}  // namespace vx
