// Sizes that are kept, and sizes without a layout.
#include <gtest/gtest.h>
#include <pango/pangocairo.h>

#include "PixelKit.h"
#include "host/cairo/CairoHandles.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr char32_t kLetters[] = {'a',  'W',       'f',       'i',       ' ',       '-',       '1',           '\t',
                                 '\n', U'é',      U'ß',      U'Ω',      U'ж',      U'א',      U'م',          U'中',
                                 U'€', U'\u0301', U'\u00AD', U'\u00A0', U'\u2028', U'\u200D', U'\U0001F600', U'\uFFFD'};

std::string AnyText(test::TRandom& random) {
  std::string text;
  for (std::int32_t length = random.Between(1, 12); length > 0; --length)
    AppendCodePoint(text, kLetters[random.Below(std::size(kLetters))]);
  return text;
}

TFontData AnyFont(test::TRandom& random) {
  return {random.Below(2) == 0 ? "DejaVu Sans" : "Serif", random.Between(4, 40),
          static_cast<TFontStyles>(random.Below(16)), clBlack};
}

/// Of a layout that is made for the text alone.
TSize LaidOut(std::string_view text, const TFontData& font) {
  const THandle<PangoFontMap, g_object_unref> fonts(pango_cairo_font_map_new());
  const THandle<PangoContext, g_object_unref> context(pango_font_map_create_context(fonts.get()));
  const THandle<cairo_font_options_t, cairo_font_options_destroy> options(cairo_font_options_create());
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(context.get(), options.get());
  pango_context_set_round_glyph_positions(context.get(), 0);
  const THandle<PangoFontDescription, pango_font_description_free> face(pango_font_description_new());
  pango_font_description_set_family(face.get(), font.Name.c_str());
  pango_font_description_set_absolute_size(face.get(), font.Height * PANGO_SCALE);
  if ((font.Style & fsBold) != 0) pango_font_description_set_weight(face.get(), PANGO_WEIGHT_BOLD);
  if ((font.Style & fsItalic) != 0) pango_font_description_set_style(face.get(), PANGO_STYLE_ITALIC);
  const THandle<PangoLayout, g_object_unref> layout(pango_layout_new(context.get()));
  pango_layout_set_single_paragraph_mode(layout.get(), 1);
  pango_layout_set_font_description(layout.get(), face.get());
  pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
  TSize size;
  pango_layout_get_size(layout.get(), &size.Width, &size.Height);
  const auto pixels = [](std::int32_t units) { return (units + PANGO_SCALE - 1) / PANGO_SCALE; };
  return {pixels(size.Width), pixels(size.Height)};
}

TEST(CairoText, IsAsLargeAsInALayout) {
  const TCairoDevice device({2, 2});
  test::TRandom random(1);
  for (int i = 0; i < 400; ++i) {
    const std::string text = AnyText(random);
    const TFontData font = AnyFont(random);
    ASSERT_EQ(device.MeasureText(text, font), LaidOut(text, font)) << testing::PrintToString(text);
  }
  EXPECT_EQ(device.MeasureText("Caf\xC3", {}), LaidOut("Caf\uFFFD", {}));
}

/// More fonts and more texts than are kept; longer ones than are kept, too.
TEST(CairoText, IsAsLargeAgainAsAtFirst) {
  const TCairoDevice kept({2, 2});
  test::TRandom random(2);
  std::vector<std::pair<std::string, TFontData>> samples;
  for (int i = 0; i < 300; ++i) samples.emplace_back(AnyText(random), AnyFont(random));
  samples.emplace_back(std::string(2000, 'x'), TFontData{});
  samples.emplace_back(std::string(), TFontData{});
  std::vector<TSize> first;
  for (const auto& [text, font] : samples) first.push_back(kept.MeasureText(text, font));
  for (int i = 0; i < 50'000; ++i) kept.MeasureText("Order " + std::to_string(i), {});
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const auto& [text, font] = samples[i];
    const TFontMetrics metrics = kept.MeasureFont(font);
    EXPECT_EQ(kept.MeasureText(text, font), first[i]);
    EXPECT_EQ(kept.MeasureText(text, font), TCairoDevice({2, 2}).MeasureText(text, font));
    EXPECT_EQ(kept.MeasureFont(font), metrics);
    EXPECT_EQ(metrics.Height(), kept.MeasureText("x", font).Height);
  }
}

}  // namespace
}  // namespace vx
