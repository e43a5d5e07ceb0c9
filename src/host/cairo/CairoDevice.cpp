#include "host/cairo/CairoDevice.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/cairo/BitmapSampling.h"
#include "host/cairo/CairoWork.h"
#include "host/cairo/FastLines.h"
#include "host/cairo/PictureFile.h"
#include "host/cairo/PixelPainter.h"
#include "host/cairo/PngFile.h"

namespace vx {

namespace {

/// A sheet for what is inverted is at most about this large; larger shapes are drawn in several bands.
constexpr std::int32_t kSheetPixels = 1 << 22;

TSize CheckedImageSize(TSize size, double scale) {
  const auto scaled = [scale](std::int32_t side) {
    const double length = std::round(side * scale);
    return length >= 1 && length <= TBitmap::kMaxSide ? static_cast<std::int32_t>(length) : 0;
  };
  const TSize image{scaled(size.Width), scaled(size.Height)};
  if (image.Width == 0 || image.Height == 0)
    throw EGraphicError("A picture of " + std::to_string(size.Width) + " by " + std::to_string(size.Height) +
                        " pixels can't be made: each side must be from 1 to " + std::to_string(TBitmap::kMaxSide));
  CheckPictureSize(image, 1);
  return image;
}

/// Top left of what a line covers at each point.
std::vector<TPoint> PixelsOf(std::span<const TDot> dots, double width) {
  std::vector<TPoint> pixels;
  pixels.reserve(dots.size());
  for (const TDot& dot : dots)
    pixels.push_back({static_cast<std::int32_t>(std::floor(dot.X - width / 2)),
                      static_cast<std::int32_t>(std::floor(dot.Y - width / 2))});
  return pixels;
}

std::shared_ptr<const TRegion> SharedClip(const TRect& rect) {
  return std::make_shared<const TRegion>(TRegion::OfRect(rect));
}

TInk Copied(const TInk& ink) {
  TInk copied = ink;
  copied.Pen.Mode = pmCopy;
  return copied;
}

}  // namespace

/// An image and what is needed to write its pixels.
struct TCairoDevice::TLayer {
  std::uint32_t* First() const { return reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(Surface)); }
  TPixelTarget Target() const {
    return {First(), cairo_image_surface_get_stride(Surface) / std::ptrdiff_t{4}, Bounds, *Clip};
  }

  cairo_surface_t* Surface;             ///< owned by the painter's work
  TRect Bounds;                         ///< the image pixels that it shows
  std::shared_ptr<const TRegion> Clip;  ///< never null; shared with those that are saved
  bool IsSmooth;
};

TCairoDevice::TCairoDevice(TSize size, const TCairoOptions& options)
    : TCairoPainter(size, options.Scale),
      image_(CheckedImageSize(size, options.Scale)),
      fastLines_(std::make_unique<TFastLines>()) {
  Work().Use(cairo_image_surface_create(CAIRO_FORMAT_RGB24, image_.Width, image_.Height));
  const TRect bounds = TRect::At({}, image_);
  layer_ = std::make_unique<TLayer>(TLayer{Work().Surface.get(), bounds, SharedClip(bounds), options.Antialias});
  if (!options.Antialias) cairo_set_antialias(Work().Context.get(), CAIRO_ANTIALIAS_NONE);
  WithPixels([&bounds](const TPixelPainter& pixels) { pixels.Fill(bounds, PixelOf(clWhite)); });
}

TCairoDevice::~TCairoDevice() = default;

// -- The image --------------------------------------------------------------------------------------------------------

/// Makes the pixels those of all that was drawn. Cairo draws nothing more after an error: better none than half of it.
void TCairoDevice::Settle() const {
  CheckCairo(cairo_status(Work().Context.get()));
  cairo_surface_flush(Work().Surface.get());
  CheckCairo(cairo_surface_status(Work().Surface.get()));
}

std::span<const std::uint32_t> TCairoDevice::RowAt(std::int32_t y) const {
  return {layer_->Target().RowAt(y), static_cast<std::size_t>(image_.Width)};
}

TColor TCairoDevice::PixelAt(TPoint point) const {
  if (!TRect::At({}, image_).Contains(point))
    throw EGraphicError("Pixel " + std::to_string(point.X) + ", " + std::to_string(point.Y) +
                        " is outside of a picture of " + std::to_string(image_.Width) + " by " +
                        std::to_string(image_.Height) + " pixels");
  Settle();
  const std::uint32_t pixel = RowAt(point.Y)[static_cast<std::size_t>(point.X)];
  return RGBColor(static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
                  static_cast<std::uint8_t>(pixel));
}

TBitmap TCairoDevice::ToBitmap() const {
  Settle();
  TBitmap bitmap(image_);
  for (std::int32_t y = 0; y < image_.Height; ++y)
    std::ranges::transform(RowAt(y), bitmap.Row(y).begin(), [](std::uint32_t pixel) { return pixel | 0xFF000000u; });
  return bitmap;
}

std::string TCairoDevice::EncodePng() const {
  Settle();
  return vx::EncodePng(image_, false, [this](std::int32_t y) { return RowAt(y); });
}

void TCairoDevice::SaveToFile(const std::string& path) const { WritePictureFile(path, EncodePng()); }

// -- Clip -------------------------------------------------------------------------------------------------------------

void TCairoDevice::SaveClip() {
  savedClips_.push_back(layer_->Clip);
  TCairoPainter::SaveClip();
}

void TCairoDevice::RestoreClip() {
  if (savedClips_.empty()) return;
  layer_->Clip = std::move(savedClips_.back());
  savedClips_.pop_back();
  TCairoPainter::RestoreClip();
}

void TCairoDevice::IntersectClip(const TRegion& region) {
  std::vector<TRect> rects;
  for (const TRect& rect : region.Rects()) rects.push_back(Grid().ImageRect(rect));
  layer_->Clip = std::make_shared<const TRegion>(layer_->Clip->Intersected(TRegion::OfRects(rects)));
  TCairoPainter::IntersectClip(region);
}

// -- Inverting --------------------------------------------------------------------------------------------------------

void TCairoDevice::Invert(const TRect& bounds, const TInk& ink, const TPaint& paint) {
  const TRect shown = bounds.Intersected(layer_->Clip->Bounds());
  if (shown.IsEmpty()) return;
  const TInk copied = Copied(ink);
  const std::int32_t height = std::max(1, kSheetPixels / shown.Width());
  for (std::int32_t top = shown.Top; top < shown.Bottom; top += height)
    InvertBand({shown.Left, top, shown.Right, std::min(top + height, shown.Bottom)}, paint, copied);
}

void TCairoDevice::InvertBand(const TRect& band, const TPaint& paint, const TInk& ink) {
  TSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, band.Width(), band.Height()));
  TContext context(cairo_create(surface.get()));
  CheckCairo(cairo_status(context.get()));
  cairo_translate(context.get(), -band.Left, -band.Top);
  cairo_set_antialias(context.get(), CAIRO_ANTIALIAS_NONE);
  auto sheet = std::make_unique<TLayer>(TLayer{surface.get(), band, SharedClip(band), false});
  const auto exchange = [&] {
    std::swap(Work().Surface, surface);
    std::swap(Work().Context, context);
    std::swap(layer_, sheet);
  };
  exchange();
  try {
    paint(ink);
    Settle();
  } catch (...) {
    exchange();
    throw;
  }
  exchange();
  MergeInverted(*sheet);
}

void TCairoDevice::MergeInverted(const TLayer& sheet) {
  cairo_surface_flush(layer_->Surface);
  const TPixelTarget from = sheet.Target();
  const TPixelTarget to = layer_->Target();
  for (const TRect& clip : to.Clip.Rects()) {
    const TRect part = clip.Intersected(from.Bounds);
    for (std::int32_t y = part.Top; y < part.Bottom; ++y)
      for (std::int32_t x = part.Left; x < part.Right; ++x)
        if (const std::uint32_t pixel = from.RowAt(y)[x - from.Bounds.Left]; pixel != 0)
          to.RowAt(y)[x - to.Bounds.Left] ^= pixel & 0xFFFFFF;
  }
  cairo_surface_mark_dirty(layer_->Surface);
}

// -- From pixels to those of the image --------------------------------------------------------------------------------

bool TCairoDevice::IsSmooth() const { return layer_->IsSmooth; }

TRect TCairoDevice::BoundsOf(const TRect& rect) const { return Grid().ImageRect(rect); }

TRect TCairoDevice::BoundsOf(std::span<const TPoint> points, const TInk& ink) const {
  if (points.empty()) return {};
  const auto [left, right] = std::ranges::minmax(points, {}, &TPoint::X);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &TPoint::Y);
  const auto margin = static_cast<std::int32_t>(Grid().WidthOf(ink.Pen)) + 1;
  const TRect first = Grid().ImageRect({left.X, top.Y, right.X, bottom.Y});
  return first.Inflated(margin, margin);
}

/// True for a line that is told pixel by pixel.
bool TCairoDevice::IsPixelLine(std::span<const TPoint> points, const TInk& ink) const {
  if (ink.Pen.Style == psClear || !IsThin(ink.Pen)) return false;
  if ((!IsSmooth() || ink.Pen.Style == psAlternate) && Grid().WidthOf(ink.Pen) == 1) return true;
  for (std::size_t i = 1; i < points.size(); ++i)
    if (points[i - 1].X != points[i].X && points[i - 1].Y != points[i].Y) return false;
  return true;
}

void TCairoDevice::WithPixels(const std::function<void(const TPixelPainter&)>& paint) {
  cairo_surface_flush(layer_->Surface);
  paint(TPixelPainter(layer_->Target()));
  cairo_surface_mark_dirty(layer_->Surface);
}

// -- Shapes -----------------------------------------------------------------------------------------------------------

void TCairoDevice::FillRect(const TRect& rect, const TInk& ink) {
  if (ink.Pen.Mode == pmXor) return Invert(BoundsOf(rect), ink, [&](const TInk& plain) { FillRect(rect, plain); });
  WithPixels([&](const TPixelPainter& pixels) { pixels.Fill(Grid().ImageRect(rect), TFilling(ink, Grid())); });
}

void TCairoDevice::Rectangle(const TRect& rect, const TInk& ink) {
  if (ink.Pen.Mode == pmXor) return Invert(BoundsOf(rect), ink, [&](const TInk& plain) { Rectangle(rect, plain); });
  WithPixels([&](const TPixelPainter& pixels) {
    pixels.Fill(Grid().ImageRect(rect), TFilling(ink, Grid()));
    pixels.Frame(Grid().ImageRect(rect), TStroking(ink, Grid()));
  });
}

void TCairoDevice::RoundRect(const TRect& rect, TSize corner, const TInk& ink) {
  if (ink.Pen.Mode == pmXor)
    return Invert(BoundsOf(rect), ink, [&](const TInk& plain) { RoundRect(rect, corner, plain); });
  if (IsSmooth() || !Grid().DashesOf(ink.Pen).IsSolid()) return TCairoPainter::RoundRect(rect, corner, ink);
  const auto length = [this](std::int32_t side) { return static_cast<std::int32_t>(std::max(Grid().Edge(side), 0.0)); };
  const TSize size{length(corner.Width), length(corner.Height)};
  PaintRound(rect, ink, [&](const TRect& image, std::int32_t inset) {
    const TSize within{std::max(size.Width - 2 * inset, 0), std::max(size.Height - 2 * inset, 0)};
    return TRegion::OfRoundRect(image.Inflated(-inset, -inset), within, layer_->Clip->Bounds().Inflated(1, 1));
  });
}

void TCairoDevice::Ellipse(const TRect& rect, const TInk& ink) {
  if (ink.Pen.Mode == pmXor) return Invert(BoundsOf(rect), ink, [&](const TInk& plain) { Ellipse(rect, plain); });
  if (IsSmooth() || !Grid().DashesOf(ink.Pen).IsSolid()) return TCairoPainter::Ellipse(rect, ink);
  PaintRound(rect, ink, [this](const TRect& image, std::int32_t inset) {
    return TRegion::OfEllipse(image.Inflated(-inset, -inset), layer_->Clip->Bounds().Inflated(1, 1));
  });
}

void TCairoDevice::PaintRound(const TRect& rect, const TInk& ink, const TShapeOf& shapeOf) {
  const TRect image = Grid().ImageRect(rect);
  if (image.IsEmpty()) return;
  const TStroking stroking(ink, Grid());
  const TRegion outer = shapeOf(image, 0);
  WithPixels([&](const TPixelPainter& pixels) {
    pixels.Fill(outer, TFilling(ink, Grid()));
    if (stroking.Width > 0) pixels.Fill(OutlineOf(outer, shapeOf(image, stroking.Width)), stroking.Fore);
  });
}

void TCairoDevice::Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) {
  if (ink.Pen.Mode == pmXor)
    return Invert(BoundsOf(rect), ink, [&](const TInk& plain) { Arc(rect, arc, shape, plain); });
  TCairoPainter::Arc(rect, arc, shape, ink);
}

void TCairoDevice::Polygon(std::span<const TPoint> points, const TInk& ink) {
  if (ink.Pen.Mode == pmXor)
    return Invert(BoundsOf(points, ink), ink, [&](const TInk& plain) { Polygon(points, plain); });
  const double width = Grid().WidthOf(ink.Pen);
  const bool isLine = width == 1;
  if (points.empty() || IsSmooth() || !(isLine || ink.Pen.Style == psClear)) return TCairoPainter::Polygon(points, ink);
  std::vector<TPoint> pixels = PixelsOf(WithinReach(Grid().DotsOf(points, width)), width);
  if (pixels.empty()) return;
  WithPixels([&](const TPixelPainter& painter) {
    const auto corners = isLine ? TPolygonCorners::kMiddles : TPolygonCorners::kCorners;
    painter.Fill(TRegion::OfPolygon(pixels, layer_->Clip->Bounds(), corners), TFilling(ink, Grid()));
    if (!isLine) return;
    pixels.push_back(pixels.front());
    painter.Polyline(pixels, TStroking(ink, Grid()));
  });
}

void TCairoDevice::Polyline(std::span<const TPoint> points, const TInk& ink) {
  if (ink.Pen.Mode == pmXor)
    return Invert(BoundsOf(points, ink), ink, [&](const TInk& plain) { Polyline(points, plain); });
  if (!IsPixelLine(points, ink)) {
    if (IsSmooth() && TFastLines::Takes(points.size(), TStroking(ink, Grid()))) return StrokeFast(points, ink);
    return TCairoPainter::Polyline(points, ink);
  }
  const double width = Grid().WidthOf(ink.Pen);
  WithPixels([&](const TPixelPainter& pixels) {
    for (const auto& part : PartsWithinReach(Grid().DotsOf(points, width)))
      pixels.Polyline(PixelsOf(part, width), TStroking(ink, Grid()));
  });
}

void TCairoDevice::StrokeFast(std::span<const TPoint> points, const TInk& ink) {
  const TStroking stroking(ink, Grid());
  cairo_surface_flush(layer_->Surface);
  fastLines_->Stroke(PartsWithinReach(Grid().DotsOf(points, stroking.Width)), stroking, IsThin(ink.Pen),
                     layer_->Target());
  cairo_surface_mark_dirty(layer_->Surface);
}

// -- Pictures ---------------------------------------------------------------------------------------------------------

void TCairoDevice::Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) {
  const TRect image = Grid().ImageRect(target);
  const TRect shown = image.Intersected(layer_->Clip->Bounds());
  if (shown.IsEmpty() || source.IsEmpty() || bitmap.IsEmpty()) return;
  const TSurface surface = StretchedSurface(bitmap, source, image, shown);
  cairo_t* const context = Work().Context.get();
  cairo_set_source_surface(context, surface.get(), shown.Left, shown.Top);
  cairo_paint(context);
}

}  // namespace vx
