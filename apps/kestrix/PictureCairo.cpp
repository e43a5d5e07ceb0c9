#include "PictureCairo.h"

#include "UserError.h"
#include "host/cairo/CairoDevice.h"
#include "host/cairo/CairoPages.h"

namespace vx::kestrix {

namespace {

std::string PngOf(const TPictureLook& look, const TPicturePainter& paint) {
  TCairoDevice device(look.Size, TCairoOptions{.Scale = look.Scale, .Antialias = look.IsSmooth});
  TCanvas canvas(device);
  paint(canvas);
  return device.EncodePng();
}

std::string PagesOf(TPageFormat format, const TPictureLook& look, const std::vector<TPicturePainter>& pages) {
  TCairoPages device(format, TPaper::OfPixels(look.Size, look.PixelsPerInch));
  TCanvas canvas(device);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (i > 0) device.NewPage();
    const TCanvasStateSaver saved(canvas);
    pages[i](canvas);
  }
  return device.Finish();
}

}  // namespace

std::string CairoPictureOf(TPictureKind kind, const TPictureLook& look, const std::vector<TPicturePainter>& pages) try {
  if (kind == TPictureKind::kPng) return PngOf(look, pages.front());
  return PagesOf(kind == TPictureKind::kSvg ? TPageFormat::kSvg : TPageFormat::kPdf, look, pages);
} catch (const EGraphicError& error) {
  throw EUserError(error.Message());
}

}  // namespace vx::kestrix
