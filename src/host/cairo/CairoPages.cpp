#include "host/cairo/CairoPages.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <cmath>
#include <map>
#include <new>
#include <string_view>

#include "host/cairo/CairoWork.h"
#include "host/cairo/PictureFile.h"

namespace vx {

namespace {

constexpr double kLongestSide = 14400;
constexpr double kFewestPixels = 36;  // per inch
constexpr double kMostPixels = 4800;

const TPaper& Checked(const TPaper& paper) {
  const auto isIn = [](double value, double low, double high) { return value >= low && value <= high; };  // NaN isn't
  const TSize pixels = paper.Pixels();
  if (!isIn(paper.PixelsPerInch, kFewestPixels, kMostPixels) || !isIn(paper.Width, 0, kLongestSide) ||
      !isIn(paper.Height, 0, kLongestSide) || pixels.Width < 1 || pixels.Height < 1)
    throw EGraphicError("A page of " + std::to_string(paper.Width) + " by " + std::to_string(paper.Height) +
                        " points with " + std::to_string(paper.PixelsPerInch) + " pixels to the inch can't be made");
  return paper;
}

cairo_status_t AppendBytes(void* to, const unsigned char* bytes, unsigned int count) {
  try {
    static_cast<std::string*>(to)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
}

cairo_surface_t* SurfaceOf(TPageFormat format, const TPaper& paper, std::string& bytes) {
  if (format == TPageFormat::kSvg)
    return cairo_svg_surface_create_for_stream(AppendBytes, &bytes, paper.Width, paper.Height);
  cairo_surface_t* const surface = cairo_pdf_surface_create_for_stream(AppendBytes, &bytes, paper.Width, paper.Height);
  cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE, "");
  return surface;
}

// -- Names in SVG -----------------------------------------------------------------------------------------------------

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Cairo numbers surfaces over the life of the process. Each such name gets its place among those of the file.
std::string WithSteadyNames(std::string_view svg) {
  std::map<std::string, std::size_t, std::less<>> places;
  std::string steady;
  for (std::size_t at = 0; at < svg.size();) {
    const std::string_view rest = svg.substr(at);
    const std::size_t word = rest.starts_with("surface") ? 7 : rest.starts_with("image") ? 5 : 0;
    const bool isName = word > 0 && at > 0 && (svg[at - 1] == '"' || svg[at - 1] == '#');
    std::size_t end = word;
    while (isName && end < rest.size() && IsDigit(rest[end])) ++end;
    if (!isName || end == word) {
      steady += svg[at++];
      continue;
    }
    const auto [place, isNew] = places.emplace(rest.substr(word, end - word), places.size() + 1);
    steady.append(rest.substr(0, word)).append(std::to_string(place->second));
    at += end;
  }
  return steady;
}

}  // namespace

TSize TPaper::Pixels() const {
  const auto whole = [this](double points) {
    const double pixels = std::floor(points * PixelsPerInch / 72 + 1e-6);
    return pixels >= 1 && pixels <= kLongestSide / 72 * kMostPixels ? static_cast<std::int32_t>(pixels) : 0;
  };
  return {whole(Width), whole(Height)};
}

TCairoPages::TCairoPages(TPageFormat format, const TPaper& paper)
    : TCairoPainter(Checked(paper).Pixels(), 1.0), format_(format) {
  Work().Use(SurfaceOf(format, paper, bytes_));
  cairo_t* const context = Work().Context.get();
  if (format == TPageFormat::kSvg) {  // paper is white, what shows an SVG need not be
    SetSource(context, clWhite);
    cairo_paint(context);
  }
  cairo_scale(context, 72 / paper.PixelsPerInch, 72 / paper.PixelsPerInch);
}

/// Cairo writes its rest while the bytes are there.
TCairoPages::~TCairoPages() { cairo_surface_finish(Work().Surface.get()); }

void TCairoPages::NewPage() {
  if (format_ == TPageFormat::kSvg) throw EGraphicError("A picture in SVG has one page only");
  if (isFinished_) return;
  cairo_show_page(Work().Context.get());
  Work().Bitmaps.EndPage();
  ++pageCount_;
}

const std::string& TCairoPages::Finish() {
  if (isFinished_) return bytes_;
  cairo_surface_finish(Work().Surface.get());
  CheckCairo(cairo_status(Work().Context.get()));
  CheckCairo(cairo_surface_status(Work().Surface.get()));
  if (format_ == TPageFormat::kSvg) bytes_ = WithSteadyNames(bytes_);
  isFinished_ = true;
  return bytes_;
}

void TCairoPages::SaveToFile(const std::string& path) { WritePictureFile(path, Finish()); }

}  // namespace vx
