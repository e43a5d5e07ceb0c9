// CairoPages.h: draws on paper, as SVG or as PDF with several pages.
//
//   TCairoPages pages(TPageFormat::kPdf, TPaper::A4());
//   TCanvas canvas(pages);
//   canvas.TextOut({60, 60}, "Orders");
//   pages.NewPage();
//   pages.SaveToFile("orders.pdf");              // whole or not at all
//
// A page is vectors: shapes are as sharp as the printer is, text is text with its font embedded in PDF, and outlines of
// its letters in SVG. Bitmaps are embedded as they are. What is drawn with pmXor is skipped. The same drawing gives the
// same bytes on every run: there is no date in the file.
//
// Painters see whole pixels, as many as they ask for: 96 to the inch are those of a screen, so that a page looks as a
// picture does; a printer's 600 give a finer layout.
//
// Errors. EGraphicError for paper that can't be had, a second page of SVG, a file that can't be written, and for what
// Cairo could not draw, each time that the file is asked for.
#pragma once

#include <cstdint>
#include <string>

#include "host/cairo/CairoPainter.h"

namespace vx {

enum class TPageFormat : std::uint8_t { kSvg, kPdf };

struct TPaper {
  double Width = 0;  ///< points, 72 to the inch; at most 14,400, which are 200 inches
  double Height = 0;
  double PixelsPerInch = 96;  ///< 36 to 4,800

  static TPaper A4(double pixelsPerInch = 96) { return {210 / 25.4 * 72, 297 / 25.4 * 72, pixelsPerInch}; }
  /// A page that just holds so many pixels.
  static TPaper OfPixels(TSize size, double pixelsPerInch = 96) {
    return {size.Width * 72.0 / pixelsPerInch, size.Height * 72.0 / pixelsPerInch, pixelsPerInch};
  }
  /// The whole pixels on it.
  TSize Pixels() const;
};

class TCairoPages : public TCairoPainter {
 public:
  TCairoPages(TPageFormat format, const TPaper& paper);
  ~TCairoPages() override;

  bool IsPaper() const override { return true; }
  /// Ends the page; the clip holds on.
  void NewPage();
  std::int32_t PageCount() const { return pageCount_; }

  /// Ends the last page, and answers the bytes of the file. What is drawn from then on is lost.
  const std::string& Finish();
  /// Finishes, then writes beside `path` first and renames, so that a failure leaves an older file as it was.
  void SaveToFile(const std::string& path);

 private:
  TPageFormat format_;
  std::int32_t pageCount_ = 1;
  std::string bytes_;
  bool isFinished_ = false;
};

}  // namespace vx
