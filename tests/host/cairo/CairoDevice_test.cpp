#include "host/cairo/CairoDevice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <functional>
#include <vector>

#include "PixelKit.h"
#include "platform/canvas/Canvas.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;
using test::Pixels;

TEST(CairoDevice, CoversWholePixelsWithLevelAndUprightLines) {
  TCairoDevice device({12, 6});
  TCanvas canvas(device);
  canvas.SetBrushColor(clBlack);
  canvas.Line({1, 1}, {4, 1});
  canvas.Line({6, 1}, {6, 3});
  canvas.FillRect({1, 3, 3, 5});
  canvas.SetBrushStyle(bsClear);
  canvas.Rectangle({8, 1, 11, 5});
  EXPECT_EQ(Pixels(device), R"(
............
.####.#.###.
......#.#.#.
.##...#.#.#.
.##.....###.
............
)");
}

TEST(CairoDevice, AtTwiceTheScaleEachPixelIsFour) {
  TCairoDevice device({8, 3}, 2.0);
  TCanvas canvas(device);
  canvas.SetBrushColor(clBlack);
  canvas.FillRect({0, 0, 1, 1});
  canvas.SetBrushStyle(bsClear);
  canvas.Rectangle({3, 0, 7, 3});
  EXPECT_EQ(Pixels(device), R"(
##....########..
##....########..
......##....##..
......##....##..
......########..
......########..
)");
}

TEST(CairoDevice, DrawsNothingOutsideOfTheClipAndGivesItBack) {
  TCairoDevice device({6, 3});
  TCanvas canvas(device);
  canvas.SetBrushColor(clBlack);
  {
    const TCanvasStateSaver saved(canvas);
    canvas.IntersectClip({1, 1, 3, 3});
    canvas.IntersectClip({2, 0, 9, 9});
    canvas.FillRect({0, 0, 6, 3});
  }
  canvas.FillRect({5, 0, 6, 1});
  EXPECT_EQ(Pixels(device), R"(
.....#
..#...
..#...
)");
}

TEST(CairoDevice, DrawsTextWithinWhatItMeasured) {
  std::int32_t width = 0;
  for (const double scale : {1.0, 1.5, 3.0}) {
    SCOPED_TRACE(scale);
    TCairoDevice device({200, 60}, scale);
    TCanvas canvas(device);
    canvas.SetFont({.Height = 20, .Style = fsBold});
    const std::string text = "Mjgk 1\xE2\x80\xA6";
    const TRect box = TRect::At({20, 15}, canvas.TextExtent(text));
    if (width == 0) width = box.Width();
    EXPECT_NEAR(box.Width(), width, 1);  // the same at each scale
    canvas.TextOut(box.TopLeft(), text);
    std::int32_t inked = 0;
    for (std::int32_t y = 0; y < device.ImageSize().Height; ++y)
      for (std::int32_t x = 0; x < device.ImageSize().Width; ++x)
        if (device.PixelAt({x, y}) != clWhite) {
          ++inked;
          ASSERT_TRUE(box.Contains({static_cast<std::int32_t>(x / scale), static_cast<std::int32_t>(y / scale)}))
              << x << "," << y;
        }
    EXPECT_GT(inked, 100 * scale);
  }
}

TEST(CairoDevice, ShowsBrokenTextAndFarAwayShapes) {
  TCairoDevice device({40, 20});
  TCanvas canvas(device);
  const std::string broken = std::string("a\xFF\xC3") + '\0' + "\n\xED\xA0\x80";
  EXPECT_GT(canvas.TextWidth(broken), 0);
  canvas.TextOut({0, 0}, broken);
  canvas.TextOut({0, 0}, "");
  canvas.SetFont({.Name = "No Such Family \xFF", .Height = -5});
  EXPECT_GT(canvas.TextWidth("x"), 0);
  canvas.Line({INT32_MIN, INT32_MIN}, {INT32_MAX, INT32_MAX});
  canvas.Ellipse({5, 5, 5, 5});
  canvas.Polygon({});
  canvas.SetPen({clBlack, INT32_MAX, psDashDotDot});
  canvas.Polyline(std::array{TPoint{3, 3}});
  EXPECT_FALSE(device.EncodePng().empty());  // Cairo's state is whole
}

/// True for white but for the last bits, which are the rasteriser's.
bool IsWhite(TColor color) { return std::min({RedOf(color), GreenOf(color), BlueOf(color)}) > 251; }

/// The smallest rectangle that holds all pixels that aren't white, in image pixels.
TRect InkOf(const TCairoDevice& device) {
  TRect ink{INT32_MAX, INT32_MAX, 0, 0};
  for (std::int32_t y = 0; y < device.ImageSize().Height; ++y)
    for (std::int32_t x = 0; x < device.ImageSize().Width; ++x)
      if (!IsWhite(device.PixelAt({x, y})))
        ink = {std::min(ink.Left, x), std::min(ink.Top, y), std::max(ink.Right, x + 1), std::max(ink.Bottom, y + 1)};
  return ink;
}

TEST(CairoDevice, KeepsOutlinesOfClosedShapesWithinTheirRectangleAtAnyScale) {
  const TRect rect{4, 3, 34, 27};
  const struct {
    const char* name;
    std::function<void(ICanvasDevice&, const TInk&)> draw;
  } kShapes[] = {
      {"rectangle", [&](ICanvasDevice& device, const TInk& ink) { device.Rectangle(rect, ink); }},
      {"rounded",
       [&](ICanvasDevice& device, const TInk& ink) {
         device.RoundRect(rect, {9, 7}, ink);
       }},
      {"ellipse", [&](ICanvasDevice& device, const TInk& ink) { device.Ellipse(rect, ink); }},
      {"arc",
       [&](ICanvasDevice& device, const TInk& ink) {
         device.Arc(rect, {10, 355}, asArc, ink);
       }},
      {"chord",
       [&](ICanvasDevice& device, const TInk& ink) {
         device.Arc(rect, {370, -345}, asChord, ink);
       }},
      {"pie",
       [&](ICanvasDevice& device, const TInk& ink) {
         device.Arc(rect, {-350, 1e6}, asPie, ink);
       }},
  };
  for (const auto& [name, draw] : kShapes)
    for (const double scale : {1.0, 1.5, 2.0})
      for (const bool antialias : {true, false})
        for (const std::int32_t width : {1, 4, 60}) {
          SCOPED_TRACE(name + std::string(" ") + std::to_string(scale) + " " + std::to_string(width));
          TCairoDevice device({40, 30}, TCairoOptions{scale, antialias});
          draw(device, {{clNavy, width}, {clYellow, bsSolid}});
          const auto edge = [scale](std::int32_t at) {
            return static_cast<std::int32_t>(std::floor(at * scale + 0.5));
          };
          const TRect ink = InkOf(device);
          const TRect expected{edge(rect.Left), edge(rect.Top), edge(rect.Right), edge(rect.Bottom)};
          ASSERT_TRUE((width == 60 && name == std::string("arc")) || expected.Encloses(ink));
          ASSERT_TRUE(width != 4 || ink == expected);
        }
}

TEST(CairoDevice, ArcsGoRoundAnticlockwiseFromThreeOClock) {
  TCairoDevice device({21, 21});
  device.Arc({0, 0, 21, 21}, {0, 90}, asPie, {{clBlack, 1, psClear}, {clBlack, bsSolid}});
  EXPECT_EQ(device.PixelAt({14, 6}), clBlack);
  for (const TPoint elsewhere : {TPoint{6, 6}, {6, 14}, {14, 14}}) EXPECT_EQ(device.PixelAt(elsewhere), clWhite);
  device.Arc({0, 0, 21, 21}, {0, -90}, asPie, {{clBlack, 1, psClear}, {clRed, bsSolid}});
  EXPECT_EQ(device.PixelAt({14, 14}), clRed);
  TCairoDevice empty({21, 21});
  empty.Arc({0, 0, 21, 21}, {45, 0}, asPie, {{clBlack, 3}, {clBlack, bsSolid}});
  EXPECT_TRUE(InkOf(empty).IsEmpty());
}

TEST(CairoDevice, GradientsBeginAndEndInTheirColours) {
  const struct {
    TGradientDirection direction;
    TPoint start, end;
  } kDirections[] = {
      {gdTopBottom, {7, 2}, {7, 21}},   {gdBottomTop, {7, 21}, {7, 2}},    {gdLeftRight, {3, 9}, {32, 9}},
      {gdRightLeft, {32, 9}, {3, 9}},   {gdFromTopLeft, {3, 2}, {32, 21}}, {gdFromBottomLeft, {3, 21}, {32, 2}},
      {gdFromCenter, {17, 11}, {3, 2}},
  };
  for (const auto& [direction, start, end] : kDirections) {
    SCOPED_TRACE(int{direction});
    TCairoDevice device({40, 30});
    device.Gradient({3, 2, 33, 22}, {clYellow, clBlue, direction});
    EXPECT_EQ(InkOf(device), (TRect{3, 2, 33, 22}));
    EXPECT_LE(BlueOf(device.PixelAt(start)), direction == gdFromCenter ? 16 : 1);
    EXPECT_GE(BlueOf(device.PixelAt(end)), direction == gdFromCenter ? 239 : 254);
    EXPECT_NEAR(BlueOf(device.PixelAt({17, 11})), direction == gdFromCenter ? 0 : 128, 16);
  }
}

TEST(CairoDevice, StretchesBitmapsSharpWhenEnlargedAndAveragedWhenReduced) {
  TBitmap bitmap({2, 2});
  bitmap.SetPixel({0, 0}, clBlack);
  bitmap.SetPixel({1, 1}, clBlack, 128);
  bitmap.SetPixel({0, 1}, clRed, 0);
  TCairoDevice device({10, 6});
  device.Draw(bitmap, {0, 0, 2, 2}, {1, 1, 5, 4});
  device.Draw(bitmap, {-1, 0, 1, 1}, {6, 1, 10, 3});  // what lies beside the bitmap is transparent
  device.Draw(bitmap, {0, 0, 0, 2}, {0, 0, 9, 9});
  EXPECT_EQ(Pixels(device), R"(
..........
.##.....##
...??...##
...??.....
..........
..........
)");
  EXPECT_EQ(device.PixelAt({4, 3}), (TColor{0x7F7F7F}));
  TCairoDevice small({1, 1});
  small.Draw(bitmap, {0, 0, 2, 2}, {0, 0, 1, 1});
  EXPECT_EQ(small.PixelAt({0, 0}), (TColor{0x9F9F9F}));  // 255 * (1 - (1 + 128 / 255) / 4)
  TCairoDevice part({3, 3});
  part.SaveClip();
  part.IntersectClip(TRect{1, 1, 2, 2});
  part.Draw(bitmap, {0, 0, 1, 1}, {-2'000'000, -2'000'000, 2'000'000, 2'000'000});
  EXPECT_EQ(InkOf(part), (TRect{1, 1, 2, 2}));
}

TEST(CairoDevice, TurnsTextAboutTheTopLeftOfItsLineAndFillsItsGround) {
  const TFontData font{.Height = 12};
  const TSize size = TCairoDevice({1, 1}).MeasureText("Orders", font);
  const struct {
    double angle;
    TRect box;
  } kTurns[] = {{0, TRect::At({60, 60}, size)},
                {90, TRect::At({60, 60 - size.Width}, {size.Height, size.Width})},
                {180, TRect::At({60 - size.Width, 60 - size.Height}, size)},
                {-90, TRect::At({60 - size.Height, 60}, {size.Height, size.Width})}};
  for (const auto& [angle, box] : kTurns) {
    SCOPED_TRACE(angle);
    TCairoDevice device({120, 120});
    device.TextOut({60, 60}, "Orders", {font, clAqua, angle});
    EXPECT_TRUE(box.Inflated(1, 1).Encloses(InkOf(device)));
    EXPECT_TRUE(InkOf(device).Inflated(1, 1).Encloses(box));
    EXPECT_EQ(device.PixelAt({box.Left + 1, box.Top + 1}), clAqua);
  }
}

TEST(CairoDevice, TellsOfAFontWhatItsLinesMeasure) {
  for (const double scale : {1.0, 1.5, 2.0}) {
    const TCairoDevice device({1, 1}, scale);
    const TFontData font{.Height = 20};
    const TFontMetrics metrics = device.MeasureFont(font);
    EXPECT_EQ(metrics.Height(), device.MeasureText("x", font).Height);
    EXPECT_GT(metrics.Ascent, 2 * metrics.Descent);
    EXPECT_NEAR(metrics.AverageWidth, 12, 2);
  }
}

// -- What nobody means ------------------------------------------------------------------------------------------------

void DrawAbsurdly(ICanvasDevice& device, const TInk& ink, std::span<const TRect> rects,
                  std::span<const TPoint> points) {
  for (const TRect& rect : rects) {
    device.FillRect(rect, ink);
    device.Rectangle(rect, ink);
    device.RoundRect(rect, {INT32_MAX, 3}, ink);
    device.RoundRect(rect, {-5, INT32_MIN}, ink);
    device.Ellipse(rect, ink);
    for (const auto shape : {asArc, asChord, asPie}) device.Arc(rect, {-1e300, 1e-300}, shape, ink);
    device.Arc(rect, {1e18, 200}, asPie, ink);
    device.Gradient(rect, {clWhite, clBlack, gdFromCenter});
    device.Draw(TBitmap({2, 2}), {0, 0, 2, 2}, rect);
    device.Draw(TBitmap({2, 2}), rect, {0, 0, 9, 9});
    device.Draw(TBitmap(), rect, rect);
    device.SaveClip();
    device.IntersectClip(rect);
    device.Polygon(points, ink);
    device.IntersectClip(TRegion());
    device.Polyline(points, ink);
    device.RestoreClip();
  }
  device.RestoreClip();  // one too many
  device.Polygon({}, ink);
  device.Polyline({}, ink);
  for (const TPoint& point : points) device.Polyline(std::span(&point, 1), ink);
}

TEST(CairoHostile, CoordinatesAndPensDrawSomethingOrNothing) {
  std::vector<TRect> rects;
  std::vector<TPoint> points;
  for (const std::int32_t a : {INT32_MIN, -1'000'000, 0, 1'000'000, INT32_MAX})
    for (const std::int32_t b : {INT32_MIN, 0, 5, INT32_MAX}) {
      rects.push_back({a, b, b, a});
      rects.push_back({a, a, b, b});
      points.push_back({a, b});
    }
  for (const double scale : {0.3, 1.0, 3.0})
    for (const bool antialias : {true, false})
      for (int style = psSolid; style <= psAlternate; ++style) {
        TCairoDevice device({20, 15}, TCairoOptions{scale, antialias});
        const auto mode = style % 2 == 0 ? pmXor : pmCopy;
        const TBrushData brush{clGreen, static_cast<TBrushStyle>(style)};
        for (const std::int32_t width : {INT32_MIN, 1, 3, INT32_MAX})
          DrawAbsurdly(device, {{clRed, width, static_cast<TPenStyle>(style), mode}, brush, clBlue}, rects, points);
        device.FillRect({0, 0, 20, 15}, {{}, {clLime, bsSolid}});
        ASSERT_EQ(device.PixelAt({2, 2}), clLime);  // Cairo's state is whole
      }
}

TEST(CairoHostile, TextsAndFontsTakeABoundedTime) {
  TCairoDevice device({50, 50});
  const std::string text(1 << 20, 'W');
  for (const std::int32_t height : {INT32_MIN, 0, 12, 5'000, INT32_MAX}) {
    const TFontData font{.Height = height, .Style = fsBold | fsUnderline};
    device.TextOut({INT32_MIN, 40}, text, {font, clAqua, 33});
    device.TextOut({-9, -9}, text, {font});
    EXPECT_GT(device.MeasureText(text, font).Width, 0);
    EXPECT_GE(device.MeasureFont(font).Height(), 1);
  }
  EXPECT_FALSE(device.EncodePng().empty());
}

TEST(CairoHostile, DashesOfAnEndlessLineRunTogether) {
  for (const std::int32_t turns : {100, 10'000}) {
    std::vector<TPoint> points;
    for (std::int32_t i = 0; i < turns; ++i) points.push_back({i % 2 == 0 ? 0 : 99, i % 4 < 2 ? 10 : 11});
    TCairoDevice device({100, 20});
    device.Polyline(points, {{clBlack, 1, psDot}, {}, clWhite});
    TCairoDevice solid({100, 20});
    solid.Polyline(std::span(points).first(60), {{clBlack, 1}, {}});
    EXPECT_EQ(device.EncodePng() == solid.EncodePng(), turns > 100);
  }
}

TEST(CairoDevice, RefusesASizeThatNoPictureCanHave) {
  const auto errorOf = [](TSize size, double scale) {
    return MessageOf<EGraphicError>([&] { TCairoDevice(size, scale); });
  };
  const std::string sides = " pixels can't be made: each side must be from 1 to 32767";
  EXPECT_EQ(errorOf({0, 10}, 1), "A picture of 0 by 10" + sides);
  EXPECT_EQ(errorOf({10, -1}, 1), "A picture of 10 by -1" + sides);
  EXPECT_EQ(errorOf({32768, 10}, 1), "A picture of 32768 by 10" + sides);
  EXPECT_EQ(errorOf({20000, 10}, 2), "A picture of 20000 by 10" + sides);
  EXPECT_EQ(errorOf({10, 10}, test::kNaN), "A picture of 10 by 10" + sides);
  EXPECT_EQ(errorOf({32767, 32767}, 1),
            "A picture of 32767 by 32767 pixels can't be made: it would have more than 134217728 pixels");
  EXPECT_NO_THROW(TCairoDevice({32767, 1}));
}

TEST(CairoFile, IsAPngOfTheGivenSizeAndReplacesAnOlderOne) {
  const test::TTestFolder folder;
  folder.Write("a.png", "old");
  const TCairoDevice device({300, 20}, 2);
  device.SaveToFile(folder.Path("a.png"));
  const std::string png = folder.Read("a.png");
  ASSERT_GT(png.size(), 24u);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1A\n");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x58\0\0\0\x28", 8));  // width 600, height 40
  EXPECT_EQ(folder.List(), "a.png");
}

TEST(CairoFile, NamesTheFileThatCannotBeWrittenAndLeavesNothingBehind) {
  const test::TTestFolder folder;
  std::filesystem::create_directory(folder.Path("folder"));
  const TCairoDevice device({2, 2});
  for (const std::string& path : {folder.Path("missing/a.png"), folder.Path("folder"), std::string("/proc/version")}) {
    const std::string error = MessageOf<EGraphicError>([&] { device.SaveToFile(path); });
    EXPECT_TRUE(error.starts_with("Cannot write " + path + ": ")) << error;
  }
  EXPECT_EQ(folder.List(), "folder");
}

TEST(CairoFile, LeavesLinksAndFilesOfLikeNamesAlone) {
  const test::TTestFolder folder;
  TCairoDevice({2, 2}).SaveToFile(folder.Path("a.png"));
  std::filesystem::create_symlink("a.png", folder.Path("link.png"));
  std::filesystem::create_directory(folder.Path("a.png.part"));
  const TCairoDevice device({3, 3});
  device.SaveToFile(folder.Path("link.png"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.png")));
  EXPECT_EQ(folder.Read("a.png"), device.EncodePng());
  EXPECT_TRUE(std::filesystem::exists(folder.Path("a.png.part")));
  EXPECT_FALSE(std::filesystem::exists(folder.Path("a.png.part2")));
}

TEST(CairoFile, WritesIntoADeviceInsteadOfReplacingIt) {
  TCairoDevice({2, 2}).SaveToFile("/dev/null");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace vx
