// Font.h: a font as a property of a component; see GraphicsObject.h.
//
//   font->SetSize(9);                  // points
//   font->Height();                    // -12
//   font->Data().Height;               // 12
//
// Height keeps the sign that it was given: negative for the size of the letters (the em), positive for that of a whole
// line. Devices know the em alone, and Data() takes either for it. 0 is the height of a new font.
//
// Charset and Pitch are kept for those who store them. Devices find letters by Unicode, and fonts by their name.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/canvas/Graphics.h"
#include "platform/canvas/GraphicsObject.h"
#include "platform/component/EnumInfo.h"

namespace vx {

enum TFontPitch : std::uint8_t {
  fpDefault,   ///< as the font has it
  fpVariable,  ///< each letter as wide as it needs
  fpFixed,     ///< all letters alike
};
template <>
struct TEnumInfo<TFontPitch> {
  static constexpr std::string_view kTypeName = "TFontPitch";
  static constexpr std::string_view kPrefix = "fp";
  static constexpr std::string_view kNames[] = {"fpDefault", "fpVariable", "fpFixed"};
};

/// One of the TFontStyles, by the place of its bit: how the set is published.
enum class TFontStyle : std::uint8_t { Bold, Italic, Underline, StrikeOut };
template <>
struct TEnumInfo<TFontStyle> {
  static constexpr std::string_view kTypeName = "TFontStyle";
  static constexpr std::string_view kPrefix = "fs";
  static constexpr std::string_view kNames[] = {"fsBold", "fsItalic", "fsUnderline", "fsStrikeOut"};
};

/// The charset of a font that has all letters.
inline constexpr std::uint8_t DEFAULT_CHARSET = 1;

class TFont : public TGraphicsObject {
 public:
  static constexpr std::int32_t kPixelsPerInch = 96;
  static constexpr std::int32_t kPointsPerInch = 72;

  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// What a canvas draws with; the height without its sign.
  TFontData Data() const;
  /// The height becomes that of the em; charset and pitch stay.
  void SetData(const TFontData& data);
  /// Of another font, with charset, pitch and the sign of the height.
  void Assign(const TPersistent* source) override;

  std::uint8_t Charset() const { return state_.Charset; }
  void SetCharset(std::uint8_t charset) { Change(state_.Charset, charset); }
  TColor Color() const { return state_.Color; }
  void SetColor(TColor color) { Change(state_.Color, color); }
  /// Pixels.
  std::int32_t Height() const { return state_.Height; }
  void SetHeight(std::int32_t height) { Change(state_.Height, height); }
  /// A family.
  const std::string& Name() const { return state_.Name; }
  void SetName(const std::string& name) { Change(state_.Name, name); }
  TFontPitch Pitch() const { return state_.Pitch; }
  void SetPitch(TFontPitch pitch) { Change(state_.Pitch, pitch); }
  /// Points of 1/72 inch at 96 pixels an inch: the height in another unit, with the opposite sign. Each size comes back
  /// as it was set, up to 1,610,612,735.
  std::int32_t Size() const;
  void SetSize(std::int32_t size);
  TFontStyles Style() const { return state_.Style; }
  void SetStyle(TFontStyles style) { Change(state_.Style, style); }

 private:
  struct TState {
    std::string Name = TFontData().Name;
    std::int32_t Height = -TFontData().Height;
    TColor Color = clWindowText;
    TFontStyles Style = fsNone;
    TFontPitch Pitch = fpDefault;
    std::uint8_t Charset = DEFAULT_CHARSET;

    bool operator==(const TState&) const = default;
  };
  TState state_;
};

}  // namespace vx
