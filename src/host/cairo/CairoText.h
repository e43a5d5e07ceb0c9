// CairoText.h: shapes, measures and draws text with Pango.
//
// A TCairoText belongs to one device and owns all it uses, fonts included. Text is measured as it is drawn: unhinted in
// width, so that a text is equally wide, but for a pixel of rounding, at each scale. Broken bytes, zeros and line feeds
// are shown as signs; text that is far longer than any picture is wide is looked at no further.
//
// Cost. A font is prepared once. The size of a text is kept: measured again it costs a hash and no allocation. What is
// kept is bounded, to kMostKept bytes of texts and kMostFonts fonts; beyond that all is forgotten and begins anew.
#pragma once

#include <cairo.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/canvas/CanvasDevice.h"

namespace vx {

class TCairoText {
 public:
  static constexpr std::size_t kMostKept = 4 << 20;
  static constexpr std::size_t kMostFonts = 64;

  /// `scale` image pixels for each pixel that painters count.
  explicit TCairoText(double scale);
  ~TCairoText();
  TCairoText(const TCairoText&) = delete;
  TCairoText& operator=(const TCairoText&) = delete;

  TSize Measure(std::string_view text, const TFontData& font) const;
  TFontMetrics Measure(const TFontData& font) const;
  /// In the context's present source, from the top left of the line box, which is the origin of the context.
  void Draw(cairo_t* context, std::string_view text, const TFontData& font) const;

 private:
  class TFace;
  struct TFaces;

  TFace& FaceOf(const TFontData& font) const;
  TSize PixelsOf(TSize units) const;
  std::int32_t PixelsOf(std::int32_t units) const;

  double scale_;
  std::unique_ptr<TFaces> faces_;  ///< what is kept between calls
};

}  // namespace vx
