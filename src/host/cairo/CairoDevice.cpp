#include "host/cairo/CairoDevice.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <numbers>

#include "platform/runtime/Text.h"

namespace vx {
namespace {

/// Frees a C object by its own function.
template <auto Release>
struct TRelease {
  template <class T>
  void operator()(T* object) const {
    Release(object);
  }
};
template <class T, auto Release>
using THandle = std::unique_ptr<T, TRelease<Release>>;

/// Cairo counts in 24 bits; what lies further out than this can't be seen and keeps its direction well enough.
constexpr double kFarOut = 1 << 21;

/// Text beyond this is not looked at: no picture is as wide, and shaping costs more than its length.
constexpr std::size_t kLongestText = 1 << 16;

std::string SizeToText(TSize size) { return std::to_string(size.Width) + " by " + std::to_string(size.Height); }

std::int32_t Scaled(std::int32_t side, double scale) {
  const double scaled = std::round(side * scale);
  return scaled >= 1 && scaled <= TCairoDevice::kMaxSide ? static_cast<std::int32_t>(scaled) : 0;
}

TSize CheckedImageSize(TSize size, double scale) {
  const TSize image{Scaled(size.Width, scale), Scaled(size.Height, scale)};
  if (image.Width == 0 || image.Height == 0)
    throw EGraphicError("A picture of " + SizeToText(size) + " pixels can't be made: each side must be from 1 to " +
                        std::to_string(TCairoDevice::kMaxSide));
  if (std::int64_t{image.Width} * image.Height > TCairoDevice::kMaxPixels)
    throw EGraphicError("A picture of " + SizeToText(size) + " pixels can't be made: it would have more than " +
                        std::to_string(TCairoDevice::kMaxPixels) + " pixels");
  return image;
}

void SetSource(cairo_t* context, TColor color) {
  cairo_set_source_rgb(context, RedOf(color) / 255.0, GreenOf(color) / 255.0, BlueOf(color) / 255.0);
}

void SetDashes(cairo_t* context, TPenStyle style, double width) {
  constexpr std::array<double, 6> kPattern{3, 2, 1, 2, 1, 2};  // in pen widths; a style uses the first few
  constexpr int kUsed[] = {0, 2, 2, 4, 6, 0};
  std::array<double, 6> dashes{};
  const std::size_t first = style == psDot ? 2 : 0;
  const int used = kUsed[style];
  for (std::size_t i = 0; i < static_cast<std::size_t>(used); ++i)
    dashes[i] = kPattern[first + i] * std::max(width, 1.5);
  cairo_set_dash(context, dashes.data(), used, 0);
}

/// Pango demands well-formed text: what is broken, and a zero, is shown as the sign for that.
std::string Showable(std::string_view text) {
  text = CutAtCodePoint(text, kLongestText);
  std::string showable;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t code = NextCodePoint(text, at);
    AppendCodePoint(showable, code == 0 || code >= kMalformed ? U'\uFFFD' : code);
  }
  return showable;
}

using TAttributes = THandle<PangoAttrList, pango_attr_list_unref>;

TAttributes AttributesOf(const TFont& font) {
  TAttributes attributes(pango_attr_list_new());
  if ((font.Style & fsUnderline) != 0)
    pango_attr_list_insert(attributes.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
  if ((font.Style & fsStrikeOut) != 0) pango_attr_list_insert(attributes.get(), pango_attr_strikethrough_new(1));
  return attributes;
}

cairo_status_t AppendBytes(void* to, const unsigned char* bytes, unsigned int count) {
  try {
    static_cast<std::string*>(to)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

void Check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS)
    throw EGraphicError(std::string("A picture can't be made: ") + cairo_status_to_string(status));
}

}  // namespace

struct TCairoDevice::THandles {
  explicit THandles(TSize image)
      : surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, image.Width, image.Height)),
        context(cairo_create(surface.get())),
        fonts(pango_cairo_font_map_new()),
        shaper(pango_font_map_create_context(fonts.get())),
        layout(pango_layout_new(shaper.get())) {
    Check(cairo_status(context.get()));
  }

  THandle<cairo_surface_t, cairo_surface_destroy> surface;
  THandle<cairo_t, cairo_destroy> context;
  THandle<PangoFontMap, g_object_unref> fonts;
  THandle<PangoContext, g_object_unref> shaper;
  THandle<PangoLayout, g_object_unref> layout;
};

TCairoDevice::TCairoDevice(TSize size, double scale)
    : size_(size), image_(CheckedImageSize(size, scale)), scale_(scale), handles_(std::make_unique<THandles>(image_)) {
  const THandle<cairo_font_options_t, cairo_font_options_destroy> options(cairo_font_options_create());
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  pango_cairo_context_set_font_options(handles_->shaper.get(), options.get());
  pango_context_set_round_glyph_positions(handles_->shaper.get(), 0);
  pango_layout_set_single_paragraph_mode(handles_->layout.get(), 1);
  SetSource(handles_->context.get(), clWhite);
  cairo_paint(handles_->context.get());
}

TCairoDevice::~TCairoDevice() = default;

// -- The image ------------------------------------------------------------------------------------------------------

TColor TCairoDevice::PixelAt(TPoint point) const {
  if (!TRect::At({}, image_).Contains(point))
    throw EGraphicError("Pixel " + std::to_string(point.X) + ", " + std::to_string(point.Y) +
                        " is outside of a picture of " + SizeToText(image_) + " pixels");
  cairo_surface_t* const surface = handles_->surface.get();
  cairo_surface_flush(surface);
  const unsigned char* row =
      cairo_image_surface_get_data(surface) + std::ptrdiff_t{point.Y} * cairo_image_surface_get_stride(surface);
  const std::uint32_t pixel = reinterpret_cast<const std::uint32_t*>(row)[point.X];
  return RGBColor(static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
                  static_cast<std::uint8_t>(pixel));
}

std::string TCairoDevice::EncodePng() const {
  std::string bytes;
  Check(cairo_surface_write_to_png_stream(handles_->surface.get(), AppendBytes, &bytes));
  return bytes;
}

namespace {

/// A device or a pipe is written to; only a plain file gives way to a new one.
bool IsPlainOrMissing(const std::string& path) {
  std::error_code ignored;
  const auto type = std::filesystem::status(path, ignored).type();
  return type == std::filesystem::file_type::regular || type == std::filesystem::file_type::not_found;
}

}  // namespace

void TCairoDevice::SaveToFile(const std::string& path) const {
  const std::string png = EncodePng();
  const bool replaces = IsPlainOrMissing(path);
  const std::string beside = replaces ? path + ".part" : path;
  errno = 0;
  std::ofstream file(beside, std::ios::binary);
  file.write(png.data(), static_cast<std::streamsize>(png.size()));
  const bool wasOpen = file.is_open();
  file.close();
  if (file && (!replaces || std::rename(beside.c_str(), path.c_str()) == 0)) return;
  const std::string reason = std::strerror(errno);
  if (replaces && wasOpen) std::remove(beside.c_str());
  throw EGraphicError("Cannot write " + path + ": " + reason);
}

// -- Clip ------------------------------------------------------------------------------------------------------------

void TCairoDevice::SaveClip() { cairo_save(handles_->context.get()); }
void TCairoDevice::RestoreClip() { cairo_restore(handles_->context.get()); }

void TCairoDevice::IntersectClip(const TRect& rect) {
  cairo_new_path(handles_->context.get());
  PathOf(rect, 0);
  cairo_clip(handles_->context.get());
}

// -- Primitives ------------------------------------------------------------------------------------------------------

void TCairoDevice::FillRect(const TRect& rect, const TBrush& brush) {
  cairo_new_path(handles_->context.get());
  PathOf(rect, 0);
  Fill(brush);
  cairo_new_path(handles_->context.get());
}

void TCairoDevice::Rectangle(const TRect& rect, const TPen& pen, const TBrush& brush) {
  cairo_new_path(handles_->context.get());
  PathOf(rect, WidthOf(pen) / 2);
  Fill(brush);
  Stroke(pen, TCorners::kSharp);
}

void TCairoDevice::Ellipse(const TRect& rect, const TPen& pen, const TBrush& brush) {
  cairo_t* const context = handles_->context.get();
  const double inset = WidthOf(pen) / 2;
  const double radiusX = (Edge(rect.Right) - Edge(rect.Left)) / 2 - inset;
  const double radiusY = (Edge(rect.Bottom) - Edge(rect.Top)) / 2 - inset;
  if (radiusX <= 0 || radiusY <= 0) return;
  cairo_matrix_t whole;
  cairo_get_matrix(context, &whole);
  cairo_new_path(context);
  cairo_translate(context, Edge(rect.Left) + inset + radiusX, Edge(rect.Top) + inset + radiusY);
  cairo_scale(context, radiusX, radiusY);
  cairo_arc(context, 0, 0, 1, 0, 2 * std::numbers::pi);
  cairo_close_path(context);
  cairo_set_matrix(context, &whole);  // the pen stays round
  Fill(brush);
  Stroke(pen, TCorners::kRound);
}

void TCairoDevice::Polygon(std::span<const TPoint> points, const TPen& pen, const TBrush& brush) {
  PathOf(points, WidthOf(pen));
  cairo_close_path(handles_->context.get());
  Fill(brush);
  Stroke(pen, TCorners::kRound);
}

void TCairoDevice::Polyline(std::span<const TPoint> points, const TPen& pen) {
  PathOf(points, WidthOf(pen));
  if (points.size() == 1) cairo_close_path(handles_->context.get());
  Stroke(pen, TCorners::kRound);
}

void TCairoDevice::TextOut(TPoint topLeft, std::string_view text, const TFont& font) {
  SetText(text, font);
  cairo_t* const context = handles_->context.get();
  PangoLayout* const layout = handles_->layout.get();
  const double baseline = std::ceil(static_cast<double>(pango_layout_get_baseline(layout)) / PANGO_SCALE);
  SetSource(context, font.Color);
  cairo_move_to(context, Edge(topLeft.X), Edge(topLeft.Y) + baseline);
  pango_cairo_show_layout_line(context, pango_layout_get_line_readonly(layout, 0));
  cairo_new_path(context);
}

TSize TCairoDevice::MeasureText(std::string_view text, const TFont& font) const {
  SetText(text, font);
  int width = 0;
  int height = 0;
  pango_layout_get_size(handles_->layout.get(), &width, &height);
  const auto pixels = [this](int units) {
    return static_cast<std::int32_t>(std::ceil(units / (PANGO_SCALE * scale_)));
  };
  return {pixels(width), pixels(height)};
}

void TCairoDevice::SetText(std::string_view text, const TFont& font) const {
  const THandle<PangoFontDescription, pango_font_description_free> description(pango_font_description_new());
  pango_font_description_set_family(description.get(), Showable(font.Name).c_str());
  const double height = std::clamp(font.Height * scale_, 1.0, double{kMaxSide});
  pango_font_description_set_absolute_size(description.get(), height * PANGO_SCALE);
  if ((font.Style & fsBold) != 0) pango_font_description_set_weight(description.get(), PANGO_WEIGHT_BOLD);
  if ((font.Style & fsItalic) != 0) pango_font_description_set_style(description.get(), PANGO_STYLE_ITALIC);
  PangoLayout* const layout = handles_->layout.get();
  pango_layout_set_font_description(layout, description.get());
  pango_layout_set_attributes(layout, AttributesOf(font).get());
  const std::string showable = Showable(text);
  pango_layout_set_text(layout, showable.data(), static_cast<int>(showable.size()));
}

// -- From pixels to paths --------------------------------------------------------------------------------------------

/// Where a pixel begins in the image.
double TCairoDevice::Edge(std::int32_t pixel) const {
  return std::clamp(std::round(pixel * scale_), -kFarOut, kFarOut);
}

/// Where a line `width` wide runs so that it covers whole image pixels around the pixel's middle.
double TCairoDevice::Centre(std::int32_t pixel, double width) const {
  const double middle = std::clamp((pixel + 0.5) * scale_, -kFarOut, kFarOut);
  const bool odd = std::fmod(width, 2) == 1;
  return odd ? std::floor(middle) + 0.5 : std::round(middle);
}

double TCairoDevice::WidthOf(const TPen& pen) const {
  return pen.Style == psClear ? 0 : std::max(1.0, std::round(std::max(pen.Width, 1) * scale_));
}

/// `inset` image pixels within the rectangle, which is where the middle of an outline runs.
void TCairoDevice::PathOf(const TRect& rect, double inset) {
  const double width = std::max(Edge(rect.Right) - Edge(rect.Left) - 2 * inset, 0.0);
  const double height = std::max(Edge(rect.Bottom) - Edge(rect.Top) - 2 * inset, 0.0);
  cairo_rectangle(handles_->context.get(), Edge(rect.Left) + inset, Edge(rect.Top) + inset, width, height);
}

void TCairoDevice::PathOf(std::span<const TPoint> points, double width) {
  cairo_t* const context = handles_->context.get();
  cairo_new_path(context);
  for (const TPoint& p : points) cairo_line_to(context, Centre(p.X, width), Centre(p.Y, width));
}

/// Keeps the path.
void TCairoDevice::Fill(const TBrush& brush) {
  if (brush.Style == bsClear) return;
  SetSource(handles_->context.get(), brush.Color);
  cairo_set_fill_rule(handles_->context.get(), CAIRO_FILL_RULE_WINDING);
  cairo_fill_preserve(handles_->context.get());
}

/// Ends the path.
void TCairoDevice::Stroke(const TPen& pen, TCorners corners) {
  cairo_t* const context = handles_->context.get();
  if (pen.Style != psClear) {
    const double width = WidthOf(pen);
    SetSource(context, pen.Color);
    cairo_set_line_width(context, width);
    SetDashes(context, pen.Style, width);
    // A square end covers the end pixel of a thin line; a thick one looks better with round ends and corners.
    cairo_set_line_cap(context, pen.Style != psSolid ? CAIRO_LINE_CAP_BUTT
                                : width <= 1         ? CAIRO_LINE_CAP_SQUARE
                                                     : CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(context,
                        corners == TCorners::kSharp || width <= 1 ? CAIRO_LINE_JOIN_MITER : CAIRO_LINE_JOIN_ROUND);
    cairo_stroke_preserve(context);
  }
  cairo_new_path(context);
}

}  // namespace vx
