#include "host/cairo/CairoText.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/cairo/CairoHandles.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

/// Pango counts in 32 bits, 1024 to a pixel. Text is cut after this many pixels of its height times its bytes; no
/// picture is as wide.
constexpr double kLongestLine = 1 << 19;
/// Larger letters are drawn as shapes instead of being kept as pictures, which would take a megabyte each.
constexpr double kLargestKept = 512;

/// Longer texts are measured each time.
constexpr std::size_t kLongestKept = 1000;
/// What a kept size takes besides the bytes of its text, about.
constexpr std::size_t kEntrySize = 96;

using TAttributes = THandle<PangoAttrList, pango_attr_list_unref>;
using TDescription = THandle<PangoFontDescription, pango_font_description_free>;
using TMetrics = THandle<PangoFontMetrics, pango_font_metrics_unref>;
using TFontMap = THandle<PangoFontMap, g_object_unref>;
using TShaper = THandle<PangoContext, g_object_unref>;
using TLayout = THandle<PangoLayout, g_object_unref>;
using TGlyphs = THandle<PangoGlyphString, pango_glyph_string_free>;

bool IsPlainByte(char byte) { return byte >= ' ' && byte < 127; }

/// What ends lines, has no fixed width or stands for an object: a layout treats it in its own way.
bool IsLaidOut(char32_t code) {
  return code < ' ' || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029 || code == 0xFFFC;
}

/// A text as Pango takes it.
class TShowable {
 public:
  /// Pango demands well-formed text: what is broken, and a zero, is shown as the sign for that.
  TShowable(std::string_view text, std::size_t longest) : text_(CutAtCodePoint(text, longest)) {
    if (std::ranges::all_of(text_, IsPlainByte)) return;
    for (std::size_t at = 0; at < text_.size();) {
      const char32_t code = NextCodePoint(text_, at);
      isPlain_ = isPlain_ && !IsLaidOut(code);
      AppendCodePoint(mended_, code == 0 || code >= kMalformed ? U'\uFFFD' : code);
    }
    text_ = mended_;
  }
  TShowable(const TShowable&) = delete;
  TShowable& operator=(const TShowable&) = delete;

  std::string_view Text() const { return text_; }
  int Length() const { return static_cast<int>(text_.size()); }
  /// True if the text is as wide as its glyphs are together.
  bool IsPlain() const { return isPlain_ && !text_.empty(); }

 private:
  std::string mended_;
  std::string_view text_;
  bool isPlain_ = true;
};

TAttributes AttributesOf(const TFontData& font) {
  TAttributes attributes(pango_attr_list_new());
  if ((font.Style & fsUnderline) != 0)
    pango_attr_list_insert(attributes.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
  if ((font.Style & fsStrikeOut) != 0) pango_attr_list_insert(attributes.get(), pango_attr_strikethrough_new(1));
  return attributes;
}

TDescription DescriptionOf(const TFontData& font, double height) {
  TDescription description(pango_font_description_new());
  const std::string family(TShowable(font.Name, 255).Text());
  pango_font_description_set_family(description.get(), family.c_str());
  pango_font_description_set_absolute_size(description.get(), height * PANGO_SCALE);
  if ((font.Style & fsBold) != 0) pango_font_description_set_weight(description.get(), PANGO_WEIGHT_BOLD);
  if ((font.Style & fsItalic) != 0) pango_font_description_set_style(description.get(), PANGO_STYLE_ITALIC);
  return description;
}

TShaper ShaperOf(PangoFontMap* fonts, const TFontData& font, double height) {
  TShaper shaper(pango_font_map_create_context(fonts));
  const THandle<cairo_font_options_t, cairo_font_options_destroy> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(shaper.get(), options.get());
  pango_context_set_round_glyph_positions(shaper.get(), 0);
  pango_context_set_font_description(shaper.get(), DescriptionOf(font, height).get());
  return shaper;
}

/// Of a text as it is looked up: by its bytes, wherever they are.
struct TTextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

}  // namespace

/// A font that is ready for use, and what it has been asked for. It measures in Pango's units and keeps pixels.
class TCairoText::TFace {
 public:
  TFace(PangoFontMap* fonts, const TFontData& font, double height)
      : font_(font),
        height_(height),
        shaper_(ShaperOf(fonts, font, height)),
        layout_(pango_layout_new(shaper_.get())),
        glyphs_(pango_glyph_string_new()) {
    pango_layout_set_single_paragraph_mode(layout_.get(), 1);
    pango_layout_set_attributes(layout_.get(), AttributesOf(font).get());
  }

  bool IsFor(const TFontData& font) const {
    return font.Height == font_.Height && font.Style == font_.Style && font.Name == font_.Name;
  }
  double Height() const { return height_; }
  std::optional<TFontMetrics>& Metrics() { return metrics_; }

  const TSize* KeptSize(std::string_view text) const {
    if (text.size() > kLongestKept) return nullptr;
    const auto found = sizes_.find(text);
    return found != sizes_.end() ? &found->second : nullptr;
  }
  void Keep(std::string_view text, TSize size) { sizes_.emplace(text, size); }
  void Forget() { sizes_.clear(); }

  TSize Measure(std::string_view text) {
    const TShowable showable(text, Longest());
    if (showable.IsPlain()) return SizeOfGlyphs(showable);
    TSize size;
    pango_layout_get_size(LaidOut(showable), &size.Width, &size.Height);
    return size;
  }
  PangoLayout* LaidOut(std::string_view text) { return LaidOut(TShowable(text, Longest())); }

  std::int32_t AverageWidth() const {
    const TMetrics metrics(pango_context_get_metrics(shaper_.get(), nullptr, nullptr));
    return pango_font_metrics_get_approximate_char_width(metrics.get());
  }

 private:
  std::size_t Longest() const { return static_cast<std::size_t>(kLongestLine / height_); }

  /// What a layout would answer, without the places where it could break the text.
  TSize SizeOfGlyphs(const TShowable& text) {
    std::int32_t width = 0;
    std::int32_t ascent = 0;
    std::int32_t descent = 0;
    GList* const items = pango_itemize(shaper_.get(), text.Text().data(), 0, text.Length(), nullptr, nullptr);
    for (const GList* each = items; each != nullptr; each = each->next) {
      const PangoRectangle box = BoxOf(*static_cast<PangoItem*>(each->data), text);
      width += box.width;
      ascent = std::max(ascent, PANGO_ASCENT(box));
      descent = std::max(descent, PANGO_DESCENT(box));
    }
    g_list_free_full(items, [](gpointer item) { pango_item_free(static_cast<PangoItem*>(item)); });
    return {width, ascent + descent};
  }

  PangoRectangle BoxOf(const PangoItem& item, const TShowable& text) {
    const std::string_view whole = text.Text();
    pango_shape_with_flags(whole.data() + item.offset, item.length, whole.data(), text.Length(), &item.analysis,
                           glyphs_.get(), PANGO_SHAPE_NONE);
    PangoRectangle box;
    pango_glyph_string_extents(glyphs_.get(), item.analysis.font, nullptr, &box);
    return box;
  }

  PangoLayout* LaidOut(const TShowable& text) {
    pango_layout_set_text(layout_.get(), text.Text().data(), text.Length());
    return layout_.get();
  }

  TFontData font_;
  double height_;
  TShaper shaper_;
  TLayout layout_;
  TGlyphs glyphs_;
  std::unordered_map<std::string, TSize, TTextHash, std::equal_to<>> sizes_;
  std::optional<TFontMetrics> metrics_;
};

struct TCairoText::TFaces {
  /// The one for a font that has been used lately.
  TFace* Find(const TFontData& font) {
    if (Last != nullptr && Last->IsFor(font)) return Last;
    const auto found = std::ranges::find_if(All, [&](const auto& face) { return face->IsFor(font); });
    return found != All.end() ? Last = found->get() : nullptr;
  }
  TFace& Add(const TFontData& font, double height) {
    if (All.size() == kMostFonts) {
      All.clear();
      Kept = 0;
    }
    Last = All.emplace_back(std::make_unique<TFace>(Fonts.get(), font, height)).get();
    return *Last;
  }
  void Keep(TFace& face, std::string_view text, TSize size) {
    if (text.size() > kLongestKept) return;
    if (Kept > kMostKept) {
      for (const auto& each : All) each->Forget();
      Kept = 0;
    }
    face.Keep(text, size);
    Kept += text.size() + kEntrySize;
  }

  TFontMap Fonts{pango_cairo_font_map_new()};
  std::vector<std::unique_ptr<TFace>> All;
  TFace* Last = nullptr;
  std::size_t Kept = 0;  ///< bytes
};

TCairoText::TCairoText(double scale) : scale_(scale), faces_(std::make_unique<TFaces>()) {}
TCairoText::~TCairoText() = default;

TCairoText::TFace& TCairoText::FaceOf(const TFontData& font) const {
  if (TFace* const face = faces_->Find(font)) return *face;
  return faces_->Add(font, std::clamp(font.Height * scale_, 1.0, double{TBitmap::kMaxSide}));
}

std::int32_t TCairoText::PixelsOf(std::int32_t units) const {
  const double pixels = std::ceil(std::max(units, 0) / (PANGO_SCALE * scale_));
  return static_cast<std::int32_t>(std::min<double>(pixels, kFarthest));
}

TSize TCairoText::PixelsOf(TSize units) const { return {PixelsOf(units.Width), PixelsOf(units.Height)}; }

TSize TCairoText::Measure(std::string_view text, const TFontData& font) const {
  TFace& face = FaceOf(font);
  if (const TSize* const kept = face.KeptSize(text)) return *kept;
  const TSize size = PixelsOf(face.Measure(text));
  faces_->Keep(face, text, size);
  return size;
}

TFontMetrics TCairoText::Measure(const TFontData& font) const {
  TFace& face = FaceOf(font);
  if (!face.Metrics()) {
    const std::int32_t ascent = PixelsOf(pango_layout_get_baseline(face.LaidOut("x")));
    face.Metrics() = {ascent, Measure("x", font).Height - ascent, PixelsOf(face.AverageWidth())};
  }
  return *face.Metrics();
}

void TCairoText::Draw(cairo_t* context, std::string_view text, const TFontData& font) const {
  TFace& face = FaceOf(font);
  PangoLayout* const layout = face.LaidOut(text);
  PangoLayoutLine* const line = pango_layout_get_line_readonly(layout, 0);
  cairo_move_to(context, 0, std::ceil(static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE));
  if (face.Height() <= kLargestKept) {
    pango_cairo_show_layout_line(context, line);
  } else {
    pango_cairo_layout_line_path(context, line);
    cairo_fill(context);
  }
  cairo_new_path(context);
}

}  // namespace vx
