#include "platform/canvas/Pen.h"

#include "platform/component/Published.h"

namespace vx {

const TClass& TPen::StaticClass() {
  static const TClass info = TClassBuilder<TPen>("TPen", TGraphicsObject::StaticClass())
                                 .Property("Color", &TPen::Color, &TPen::SetColor)
                                 .Default(clBlack)
                                 .Property("Mode", &TPen::Mode, &TPen::SetMode)
                                 .Default(pmCopy)
                                 .Property("Style", &TPen::Style, &TPen::SetStyle)
                                 .Default(psSolid)
                                 .Property("Width", &TPen::Width, &TPen::SetWidth)
                                 .Default(1)
                                 .Build();
  return info;
}

void TPen::Assign(const TPersistent* source) {
  if (const auto* const pen = As<TPen>(source))
    SetData(pen->Data());
  else
    TGraphicsObject::Assign(source);
}

}  // namespace vx
