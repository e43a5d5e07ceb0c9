#include "host/cairo/CairoDevice.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "platform/canvas/Canvas.h"

namespace vx {
namespace {

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

void DrawSamples(TCanvas& canvas) {
  canvas.SetBrushColor(clBlack);
  canvas.Line({1, 1}, {4, 1});
  canvas.Line({6, 1}, {6, 3});
  canvas.FillRect({1, 3, 3, 5});
  canvas.SetBrushStyle(bsClear);
  canvas.Rectangle({8, 1, 11, 5});
}

TEST(CairoDevice, CoversWholePixelsWithLevelAndUprightLines) {
  TCairoDevice device({12, 6});
  TCanvas canvas(device);
  DrawSamples(canvas);
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
  const struct {
    TSize size;
    double scale;
    const char* message;
  } kCases[] = {
      {{0, 10}, 1, "A picture of 0 by 10 pixels can't be made: each side must be from 1 to 32767"},
      {{10, -1}, 1, "A picture of 10 by -1 pixels can't be made: each side must be from 1 to 32767"},
      {{32768, 10}, 1, "A picture of 32768 by 10 pixels can't be made: each side must be from 1 to 32767"},
      {{20000, 10}, 2, "A picture of 20000 by 10 pixels can't be made: each side must be from 1 to 32767"},
      {{10, 10},
       std::numeric_limits<double>::quiet_NaN(),
       "A picture of 10 by 10 pixels can't be made: each side must be from 1 to 32767"},
      {{32767, 32767}, 1, "A picture of 32767 by 32767 pixels can't be made: it would have more than 134217728 pixels"},
  };
  for (const auto& c : kCases) {
    try {
      TCairoDevice device(c.size, c.scale);
      ADD_FAILURE() << "no error for: " << c.message;
    } catch (const EGraphicError& error) {
      EXPECT_EQ(error.Message(), c.message);
    }
  }
  EXPECT_NO_THROW(TCairoDevice({32767, 1}));
}

/// A folder of its own, gone with the test.
class CairoFile : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }
  std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_), {}));
  }
  static std::string Read(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
  }

 private:
  const std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) /
      (std::string("cairo-") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(CairoFile, IsAPngOfTheGivenSizeAndReplacesAnOlderOne) {
  std::ofstream(Path("a.png")) << "old";
  const TCairoDevice device({300, 20}, 2);
  device.SaveToFile(Path("a.png"));
  const std::string png = Read(Path("a.png"));
  ASSERT_GT(png.size(), 24u);
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1A\n");
  EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x58\0\0\0\x28", 8));  // width 600, height 40
  EXPECT_EQ(FileCount(), 1u);
}

TEST_F(CairoFile, NamesTheFileThatCannotBeWrittenAndLeavesNothingBehind) {
  std::filesystem::create_directory(Path("folder"));
  const TCairoDevice device({2, 2});
  for (const std::string& path : {Path("missing/a.png"), Path("folder"), std::string("/proc/version")}) {
    try {
      device.SaveToFile(path);
      ADD_FAILURE() << "no error for " << path;
    } catch (const EGraphicError& error) {
      EXPECT_EQ(error.Message().rfind("Cannot write " + path + ": ", 0), 0u) << error.Message();
    }
  }
  EXPECT_EQ(FileCount(), 1u);
}

TEST_F(CairoFile, WritesIntoADeviceInsteadOfReplacingIt) {
  TCairoDevice({2, 2}).SaveToFile("/dev/null");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

}  // namespace
}  // namespace vx
