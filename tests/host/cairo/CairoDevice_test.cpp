#include "host/cairo/CairoDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "platform/canvas/Canvas.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// The pixels as rows of letters: "." white, "#" black, "?" anything between.
std::string Pixels(const TCairoDevice& device) {
  std::string rows = "\n";
  for (std::int32_t y = 0; y < device.ImageSize().Height; ++y, rows += '\n')
    for (std::int32_t x = 0; x < device.ImageSize().Width; ++x) {
      const TColor color = device.PixelAt({x, y});
      rows += color == clWhite ? '.' : color == clBlack ? '#' : '?';
    }
  return rows;
}

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

TEST(CairoFile, WritesIntoADeviceInsteadOfReplacingIt) {
  TCairoDevice({2, 2}).SaveToFile("/dev/null");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace vx
