// SVG and PDF.
#include "host/cairo/CairoPages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "host/cairo/CairoDevice.h"
#include "host/cairo/CairoWork.h"
#include "platform/canvas/Canvas.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Something of all that a page may hold.
void DrawSomething(ICanvasDevice& device) {
  device.Ellipse({10, 10, 90, 60}, {{clNavy, 2, psDash}, {clYellow, bsDiagCross}, clAqua});
  device.Gradient({100, 10, 180, 60}, {clWhite, clNavy, gdFromCenter});
  TBitmap bitmap({3, 2});
  bitmap.SetPixel({1, 1}, clRed, 128);
  device.Draw(bitmap, {0, 0, 3, 2}, {100, 70, 160, 110});
  const TFontData font{.Height = 14};
  device.TextOut({10, 80}, "Orders surface7", {font, clLime, 20});
}

std::string BytesOf(TPageFormat format, std::int32_t pages = 1) {
  TCairoPages device(format, TPaper::OfPixels({200, 150}));
  DrawSomething(device);
  while (device.PageCount() < pages) {
    device.NewPage();
    DrawSomething(device);
  }
  return device.Finish();
}

std::size_t CountOf(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != text.npos; at = text.find(word, at + 1)) ++count;
  return count;
}

TEST(CairoPages, AreTheSameBytesOnEveryRunAndHoldNoDate) {
  for (const auto format : {TPageFormat::kSvg, TPageFormat::kPdf}) {
    const std::string bytes = BytesOf(format);
    EXPECT_EQ(bytes, BytesOf(format));
    EXPECT_EQ(CountOf(bytes, "Date"), 0u);
  }
}

TEST(CairoPages, OfPdfAreCountedAndSizedInPointsWithTextAsText) {
  const std::string pdf = BytesOf(TPageFormat::kPdf, 3);
  EXPECT_TRUE(pdf.starts_with("%PDF-"));
  EXPECT_TRUE(pdf.ends_with("%%EOF\n"));
  EXPECT_EQ(CountOf(pdf, "/Type /Page") - CountOf(pdf, "/Type /Pages"), 3u);
  EXPECT_EQ(CountOf(pdf, "/MediaBox [ 0 0 150 112.5 ]"), 3u);  // 96 pixels to the inch of 72 points
  EXPECT_GT(CountOf(pdf, "/FontFile"), 0u);
  EXPECT_GT(CountOf(pdf, "/ToUnicode"), 0u);
  EXPECT_GT(CountOf(pdf, "/Subtype /Image"), 0u);
}

TEST(CairoPages, OfSvgStandByThemselves) {
  const std::string svg = BytesOf(TPageFormat::kSvg);
  EXPECT_EQ(CountOf(svg, "width=\"150pt\" height=\"112.5pt\""), 1u);
  EXPECT_GT(CountOf(svg, "data:image/png;base64,"), 0u);
  EXPECT_EQ(CountOf(svg, "href=\"http"), 0u);
  TCairoPages device(TPageFormat::kSvg, TPaper::OfPixels({20, 10}));
  EXPECT_EQ(MessageOf<EGraphicError>([&] { device.NewPage(); }), "A picture in SVG has one page only");
}

TEST(CairoPages, CountPixelsByTheResolutionOfThePrinter) {
  EXPECT_EQ(TPaper::A4().Pixels(), (TSize{793, 1122}));
  EXPECT_EQ(TCairoPages(TPageFormat::kPdf, TPaper::A4(600)).Size(), (TSize{4960, 7015}));
  EXPECT_EQ(TPaper::OfPixels({1001, 777}, 300).Pixels(), (TSize{1001, 777}));
  for (const TPaper& paper : {TPaper{}, TPaper{100, test::kNaN}, TPaper{14401, 10}, TPaper{10, 10, 0},
                              TPaper{10, 10, 1e9}, TPaper{-5, 10}, TPaper::OfPixels({INT32_MAX, 10})})
    EXPECT_TRUE(MessageOf<EGraphicError>([&] { TCairoPages(TPageFormat::kPdf, paper); }).ends_with("can't be made"));
}

TEST(CairoPages, ArePaperOnWhichNothingIsInverted) {
  for (const auto format : {TPageFormat::kSvg, TPageFormat::kPdf}) {
    TCairoPages blank(format, TPaper::A4());
    TCairoPages inverted(format, TPaper::A4());
    EXPECT_TRUE(inverted.IsPaper());
    const TInk ink{{clRed, 3, psSolid, pmXor}, {clBlue, bsSolid}};
    const std::vector<TPoint> points{{1, 1}, {50, 70}, {90, 10}};
    inverted.FillRect({0, 0, 50, 50}, ink);
    inverted.Rectangle({0, 0, 50, 50}, ink);
    inverted.RoundRect({0, 0, 50, 50}, {9, 9}, ink);
    inverted.Ellipse({0, 0, 50, 50}, ink);
    inverted.Arc({0, 0, 50, 50}, {0, 90}, asPie, ink);
    inverted.Polygon(points, ink);
    inverted.Polyline(points, ink);
    EXPECT_EQ(inverted.Finish(), blank.Finish());
  }
}

TEST(CairoPages, HoldABitmapOnceHoweverOftenItIsDrawn) {
  for (const auto format : {TPageFormat::kSvg, TPageFormat::kPdf}) {
    TCairoPages device(format, TPaper::A4());
    for (int i = 0; i < 20; ++i) {
      TBitmap bitmap({60, 60});
      bitmap.SetPixel({3, 4}, clRed);
      device.Draw(bitmap, {0, 0, 60, 60}, TRect::At({i * 9, i}, {40 + i, 50}));
      device.Draw(bitmap, {3, 4, 4, 8}, TRect::At({i * 9, 100 + i}, {40, 50}));  // as many pixels as the next one
      device.Draw(bitmap, {3, 4, 7, 5}, TRect::At({i * 9, 200 + i}, {40, 50}));
      if (format == TPageFormat::kPdf && i % 5 == 0) device.NewPage();
    }
    const std::string_view image = format == TPageFormat::kSvg ? "data:image/png" : "/Subtype /Image";
    EXPECT_EQ(CountOf(device.Finish(), image), format == TPageFormat::kSvg ? 3u : 6u);  // a mask each in PDF
    EXPECT_TRUE(format == TPageFormat::kSvg || device.PageCount() == 5);
    if (format == TPageFormat::kPdf) device.NewPage();
    EXPECT_LE(device.PageCount(), 5);
  }
}

TEST(CairoPages, ShowALineOnOnePlaceAsADot) {
  for (const auto format : {TPageFormat::kSvg, TPageFormat::kPdf})
    for (const std::int32_t width : {1, 3}) {
      const auto bytesOf = [&](std::size_t count) {
        TCairoPages device(format, TPaper::A4());
        device.Polyline(std::vector<TPoint>(count, {40, 50}), {{clRed, width, psDot}, {}});
        return device.Finish();
      };
      EXPECT_EQ(bytesOf(2), bytesOf(1));
      EXPECT_NE(bytesOf(2), bytesOf(0));
    }
}

/// As if Cairo had run out of memory.
template <class TDevice>
struct TBroken : TDevice {
  using TDevice::TDevice;
  void Break() {
    constexpr double kNegative = -1;
    cairo_set_dash(this->Work().Context.get(), &kNegative, 1, 0);
  }
};

TEST(CairoPages, AndPicturesAreNotMadeOfHalfADrawing) {
  const test::TTestFolder folder;
  const auto isRefused = [](auto&& make) {
    return MessageOf<EGraphicError>(make).starts_with("A picture can't be made: ");
  };
  TBroken<TCairoDevice> picture({9, 9});
  picture.Break();
  EXPECT_TRUE(isRefused([&] { picture.EncodePng(); }));
  EXPECT_TRUE(isRefused([&] { picture.ToBitmap(); }));
  EXPECT_TRUE(isRefused([&] { picture.PixelAt({1, 1}); }));
  TBroken<TCairoPages> pages(TPageFormat::kPdf, TPaper::A4());
  pages.Break();
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(isRefused([&] { pages.SaveToFile(folder.Path("a.pdf")); }));
  EXPECT_EQ(folder.List(), "");
}

TEST(CairoPages, ReachTheirFileWholeOrNotAtAllAndTakeNothingMore) {
  const test::TTestFolder folder;
  TCairoPages device(TPageFormat::kPdf, TPaper::A4());
  EXPECT_TRUE(MessageOf<EGraphicError>([&] {
                device.SaveToFile(folder.Path("no/a.pdf"));
              }).starts_with("Cannot write " + folder.Path("no/a.pdf")));
  device.SaveToFile(folder.Path("a.pdf"));
  DrawSomething(device);
  EXPECT_EQ(folder.Read("a.pdf"), device.Finish());
  EXPECT_EQ(folder.List(), "a.pdf");
}

}  // namespace
}  // namespace vx
