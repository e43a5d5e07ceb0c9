#include "platform/canvas/Font.h"

#include <algorithm>
#include <limits>

#include "platform/component/Published.h"
#include "platform/runtime/NumberText.h"

namespace vx {

namespace {

constexpr std::int32_t kGreatest = std::numeric_limits<std::int32_t>::max();

/// -value * numerator / denominator, brought into 32 bits.
std::int32_t Converted(std::int32_t value, std::int32_t numerator, std::int32_t denominator) {
  const std::int64_t converted = -Round(static_cast<double>(value) * numerator / denominator);
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(converted, -kGreatest, kGreatest));
}

using TStyleSet = TSetOf<TFontStyle>;

TStyleSet StyleSet(const TFont& font) { return TStyleSet::FromBits(font.Style()); }
void SetStyleSet(TFont& font, TStyleSet style) { font.SetStyle(static_cast<TFontStyles>(style.Bits())); }

}  // namespace

const TClass& TFont::StaticClass() {
  static const TClass info = TClassBuilder<TFont>("TFont", TGraphicsObject::StaticClass())
                                 .Property("Charset", &TFont::Charset, &TFont::SetCharset)
                                 .Default(DEFAULT_CHARSET)
                                 .Property("Color", &TFont::Color, &TFont::SetColor)
                                 .Default(clWindowText)
                                 .Property("Height", &TFont::Height, &TFont::SetHeight)
                                 .Property("Name", &TFont::Name, &TFont::SetName)
                                 .Property("Pitch", &TFont::Pitch, &TFont::SetPitch)
                                 .Default(fpDefault)
                                 .Property("Size", &TFont::Size, &TFont::SetSize)
                                 .Stored(false)
                                 .Property("Style", &StyleSet, &SetStyleSet)
                                 .Default(TStyleSet())
                                 .Build();
  return info;
}

TFontData TFont::Data() const {
  const std::int32_t signedHeight = state_.Height == 0 ? TState().Height : state_.Height;
  const std::int32_t height = signedHeight > 0 ? signedHeight : -std::max(signedHeight, -kGreatest);
  return {.Name = state_.Name, .Height = height, .Style = state_.Style, .Color = state_.Color};
}

void TFont::SetData(const TFontData& data) {
  TState state = state_;
  state.Name = data.Name;
  state.Height = -std::max(data.Height, -kGreatest);
  state.Style = data.Style;
  state.Color = data.Color;
  Change(state_, state);
}

void TFont::Assign(const TPersistent* source) {
  if (const auto* const font = As<TFont>(source))
    Change(state_, font->state_);
  else
    TGraphicsObject::Assign(source);
}

std::int32_t TFont::Size() const { return Converted(state_.Height, kPointsPerInch, kPixelsPerInch); }

void TFont::SetSize(std::int32_t size) { SetHeight(Converted(size, kPixelsPerInch, kPointsPerInch)); }

}  // namespace vx
