// Brush.h: a brush as a property of a component; see GraphicsObject.h.
//
//   brush->SetStyle(bsClear);
//   brush->SetColor(clRed);            // solid again: who wants a colour wants to see it
//   canvas.SetBrush(brush->Data());
#pragma once

#include <string_view>

#include "platform/canvas/Graphics.h"
#include "platform/canvas/GraphicsObject.h"
#include "platform/component/EnumInfo.h"

namespace vx {

template <>
struct TEnumInfo<TBrushStyle> {
  static constexpr std::string_view kTypeName = "TBrushStyle";
  static constexpr std::string_view kPrefix = "bs";
  static constexpr std::string_view kNames[] = {"bsSolid",     "bsClear",     "bsHorizontal", "bsVertical",
                                                "bsFDiagonal", "bsBDiagonal", "bsCross",      "bsDiagCross"};
};

class TBrush : public TGraphicsObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const TBrushData& Data() const { return data_; }
  void SetData(const TBrushData& data) { Change(data_, data); }
  /// Of another brush.
  void Assign(const TPersistent* source) override;

  TColor Color() const { return data_.Color; }
  /// A clear brush that is given a colour, be it the one it has, becomes solid.
  void SetColor(TColor color) { SetData({color, data_.Style == bsClear ? bsSolid : data_.Style}); }
  TBrushStyle Style() const { return data_.Style; }
  void SetStyle(TBrushStyle style) { Change(data_.Style, style); }

 private:
  TBrushData data_;
};

}  // namespace vx
