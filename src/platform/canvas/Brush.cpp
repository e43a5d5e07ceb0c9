#include "platform/canvas/Brush.h"

#include "platform/component/Published.h"

namespace vx {

const TClass& TBrush::StaticClass() {
  // Streams set the style behind the colour, so a clear brush stays clear.
  static const TClass info = TClassBuilder<TBrush>("TBrush", TGraphicsObject::StaticClass())
                                 .Property("Color", &TBrush::Color, &TBrush::SetColor)
                                 .Default(clWhite)
                                 .Property("Style", &TBrush::Style, &TBrush::SetStyle)
                                 .Default(bsSolid)
                                 .Build();
  return info;
}

void TBrush::Assign(const TPersistent* source) {
  if (const auto* const brush = As<TBrush>(source))
    SetData(brush->Data());
  else
    TGraphicsObject::Assign(source);
}

}  // namespace vx
