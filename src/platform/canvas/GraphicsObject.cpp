#include "platform/canvas/GraphicsObject.h"

namespace vx {

const TClass& TGraphicsObject::StaticClass() {
  static const TClass info("TGraphicsObject", &TPersistent::StaticClass());
  return info;
}

}  // namespace vx
