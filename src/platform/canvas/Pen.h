// Pen.h: a pen as a property of a component; see GraphicsObject.h.
//
//   pen->SetColor(clRed);              // tells OnChange
//   canvas.SetPen(pen->Data());
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/canvas/Graphics.h"
#include "platform/canvas/GraphicsObject.h"
#include "platform/component/EnumInfo.h"

namespace vx {

template <>
struct TEnumInfo<TPenStyle> {
  static constexpr std::string_view kTypeName = "TPenStyle";
  static constexpr std::string_view kPrefix = "ps";
  static constexpr std::string_view kNames[] = {"psSolid",      "psDash",  "psDot",         "psDashDot",
                                                "psDashDotDot", "psClear", "psInsideFrame", "psAlternate"};
};

template <>
struct TEnumInfo<TPenMode> {
  static constexpr std::string_view kTypeName = "TPenMode";
  static constexpr std::string_view kPrefix = "pm";
  static constexpr std::string_view kNames[] = {"pmCopy", "pmXor"};
};

class TPen : public TGraphicsObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const TPenData& Data() const { return data_; }
  void SetData(const TPenData& data) { Change(data_, data); }
  /// Of another pen.
  void Assign(const TPersistent* source) override;

  TColor Color() const { return data_.Color; }
  void SetColor(TColor color) { Change(data_.Color, color); }
  TPenMode Mode() const { return data_.Mode; }
  void SetMode(TPenMode mode) { Change(data_.Mode, mode); }
  TPenStyle Style() const { return data_.Style; }
  void SetStyle(TPenStyle style) { Change(data_.Style, style); }
  /// Pixels; less than one counts as one.
  std::int32_t Width() const { return data_.Width; }
  void SetWidth(std::int32_t width) { Change(data_.Width, width); }

 private:
  TPenData data_;
};

}  // namespace vx
