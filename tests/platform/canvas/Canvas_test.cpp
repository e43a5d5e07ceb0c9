#include "platform/canvas/Canvas.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>
#include <random>

#include "platform/canvas/RecordingDevice.h"
#include "platform/canvas/SystemColors.h"
#include "platform/canvas/TextFit.h"
#include "platform/runtime/Exceptions.h"

namespace vx {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMost = INT32_MAX, kLeast = INT32_MIN;

class TPaper : public TRecordingDevice {
 public:
  bool IsPaper() const override { return true; }
};

TEST(Canvas, SaverBringsBackPenBrushFontAndPositionAlsoAfterAnException) {
  TRecordingCanvas canvas;
  EXPECT_THROW(canvas.Restore(), EInvalidOperation) << "without a save";
  canvas.SetPen({clRed, 3, psDash});
  canvas.SetFontHeight(20);
  canvas.MoveTo({7, 8});
  const auto draw = [&canvas] {
    const TCanvasStateSaver saved(canvas);
    canvas.SetPenColor(clBlue);
    canvas.SetBrush({clGreen, bsClear});
    canvas.SetFont({.Name = "Serif"});
    canvas.LineTo({1, 1});
    throw EAbort("stop");
  };
  EXPECT_THROW(draw(), EAbort);
  EXPECT_EQ(canvas.Pen(), (TPenData{clRed, 3, psDash}));
  EXPECT_EQ(canvas.Brush(), TBrushData{});
  EXPECT_EQ(canvas.Font(), TFontData{.Height = 20});
  EXPECT_EQ(canvas.Position(), (TPoint{7, 8}));
}

TEST(Canvas, SaverAlsoRestoresWhatWasLeftSavedWithin) {
  TRecordingCanvas canvas;
  canvas.Save();
  {
    const TCanvasStateSaver saved(canvas);
    canvas.Save();
    canvas.SetPenWidth(7);
    canvas.Save();
  }
  EXPECT_EQ(canvas.SaveCount(), 1u);
  EXPECT_EQ(canvas.Pen(), TPenData{});
  EXPECT_EQ(canvas.Text(), "save\nsave\nsave\nsave\nrestore\nrestore\nrestore\n");
}

TEST(Canvas, KeepsNothingOfASaveThatTheDeviceRefuses) {
  class TFull : public TRecordingDevice {
    void SaveClip() override { throw std::bad_alloc(); }
  } device;
  TCanvas canvas(device);
  EXPECT_THROW(canvas.TextRect({0, 0, 9, 9}, {0, 0}, "a"), std::bad_alloc);
  EXPECT_EQ(canvas.SaveCount(), 0u);
}

TEST(Canvas, LineToMovesThePositionAndLineDoesNot) {
  TRecordingCanvas canvas;
  canvas.MoveTo({1, 2});
  canvas.LineTo({3, 4});
  canvas.Line({9, 9}, {8, 8});
  canvas.LineTo({5, 6});
  canvas.Polyline({});
  EXPECT_EQ("\n" + canvas.Text(), R"(
line 1,2 3,4
line 9,9 8,8
line 3,4 5,6
)");
}

TEST(Canvas, LooksSystemColoursUpWhenItDraws) {
  TRecordingCanvas canvas;
  canvas.SetPen({clWindowText, 1, psDash});
  canvas.SetBrush({TColor{0x02804020}, bsCross});  // a palette's nearest entry: the plain colour
  canvas.SetBackColor(clWindow);
  canvas.SetFontColor(clGrayText);
  const auto draw = [&canvas] {
    canvas.Rectangle({0, 0, 9, 9});
    canvas.SetBackMode(cbmOpaque);
    canvas.Rectangle({0, 0, 9, 9});
    canvas.TextOut({1, 1}, "a");
    canvas.Gradient({0, 0, 9, 9}, {clBtnFace, clWhite, gdFromTopLeft});
    canvas.SetPixel({3, 4}, clHighlight);
  };
  TSystemColors colors = SystemColors();
  const TSystemColors before = colors;
  colors.Set(clWindowText, TColor{0x010203});
  colors.Set(clWindow, TColor{0x040506});
  colors.Set(clGrayText, TColor{0x070809});
  colors.Set(clBtnFace, TColor{0x0A0B0C});
  colors.Set(clHighlight, TColor{0x0D0E0F});
  SetSystemColors(colors);
  draw();
  SetSystemColors(before);
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen 030201 dash
brush 204080 cross
rectangle 0,0 9,9
back 060504
rectangle 0,0 9,9
font 090807 12
text 1,1 "a"
gradient 0,0 9,9 0c0b0a ffffff fromtopleft
brush 0f0e0d
fill 3,4 4,5
)");
}

TEST(Canvas, HandsOnNothingThatCantBeSeen) {
  TRecordingCanvas canvas;
  for (const double bad : {kNaN, HUGE_VAL, -HUGE_VAL}) {
    canvas.Arc({0, 0, 9, 9}, {bad, 90});
    canvas.Pie({0, 0, 9, 9}, {0, bad});
    canvas.TextOutRotated({0, 0}, bad, "a");
  }
  canvas.Chord({0, 0, 9, 9}, {30, 0});
  for (const TRect empty : {TRect{5, 5, 5, 9}, TRect{9, 0, 0, 9}, TRect{kMost - 5, 0, kMost, 9}}) {
    canvas.Rectangle(empty);
    canvas.FillRect(empty);
    canvas.RoundRect(empty, {4, 4});
    canvas.Ellipse(empty);
    canvas.Pie(empty, {});
    canvas.Gradient(empty, {});
    canvas.FrameRect(empty);
    canvas.DrawFocusRect(empty);
    canvas.TextRect(empty, {0, 0}, "a");
    canvas.DrawText(empty, "a", {});
    canvas.StretchDraw(empty, TBitmap({2, 2}));
  }
  EXPECT_EQ(canvas.Frame3D({9, 0, 0, 9}, clRed, clRed, 1), (TRect{10, 1, -1, 8}));
  canvas.Draw({0, 0}, TBitmap());
  canvas.Polyline({});
  canvas.Polygon(std::span<const TPoint>());
  canvas.PolygonWithZ(std::span<const TPoint>(), 5);
  canvas.RectangleWithZ({3, 3, 3, 9}, 5);
  canvas.Gradient({0, 0, 9, 9}, {clNone, clRed});
  canvas.SetPixel({0, 0}, clNone);
  canvas.SetPenColor(clNone);
  canvas.SetBrushColor(clNone);
  canvas.SetFontColor(clNone);
  canvas.Line({0, 0}, {5, 5});
  canvas.Arc({0, 0, 9, 9}, {});
  canvas.Rectangle({0, 0, 9, 9});
  canvas.FillRect({0, 0, 9, 9});
  canvas.FrameRect({0, 0, 9, 9});
  canvas.TextOut({0, 0}, "a");
  EXPECT_EQ(canvas.Text(), "");
}

TEST(Canvas, TakesOneOfPenAndBrushForClearIfItsColourIsNone) {
  TRecordingCanvas canvas;
  canvas.SetPen({clNone, 3, psDash});
  canvas.Rectangle({0, 0, 9, 9});
  canvas.SetPen({clRed, 0});
  canvas.SetBrushColor(clNone);
  canvas.Rectangle({0, 0, 9, 9});
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen 000000 3 clear
brush ffffff
rectangle 0,0 9,9
pen ff0000
brush clear
rectangle 0,0 9,9
)");
}

TEST(Canvas, BringsAbsurdNumbersWithinReach) {
  TRecordingCanvas canvas;
  canvas.SetPenWidth(kMost);
  canvas.Line({kLeast, kMost}, {3, 4});
  canvas.Polygon({{kMost, 0}, {0, kLeast}, {7, 7}});
  canvas.RoundRect({kLeast, kLeast, kMost, kMost}, {-5, kMost});
  canvas.IntersectClip(TRect{kMost, 0, kLeast, 9});
  canvas.Pie({0, 0, 9, 9}, {-725, 1e300});
  canvas.TextOutRotated({kMost, kLeast}, 3690.5, "a");
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen 000000 32767
line -268435456,268435456 3,4
brush ffffff
polygon 268435456,0 0,-268435456 7,7
roundrect -268435456,-268435456 268435456,268435456 0,268435456
clip 268435456,0 -268435456,9
pie 0,0 9,9 -5 360
font 000000 12
text 268435456,-268435456 "a" 90.5
)");
}

TEST(Canvas, SkipsOnPaperWhatIsDrawnWithXor) {
  TPaper paper;
  TCanvas canvas(paper);
  canvas.DrawFocusRect({0, 0, 9, 9});
  canvas.SetPenMode(pmXor);
  canvas.Line({0, 0}, {1, 1});
  canvas.Polygon({{0, 0}, {1, 1}, {2, 0}});
  canvas.FillRect({0, 0, 9, 9});
  canvas.Ellipse({0, 0, 9, 9});
  canvas.Arc({0, 0, 9, 9}, {});
  canvas.FrameRect({0, 0, 9, 9});
  canvas.Frame3D({0, 0, 9, 9}, clWhite, clBlack, 1);
  EXPECT_EQ(paper.Text(), "");
  canvas.SetPixel({1, 1}, clRed);  // has no mode
  EXPECT_EQ(paper.Text(), "brush ff0000\nfill 1,1 2,2\n");
}

TEST(Canvas, FramesAreLinesWithinTheRectangle) {
  TRecordingCanvas canvas;
  canvas.SetPen({clRed, 5, psDot});
  canvas.SetBrush({clBlue, bsCross});
  canvas.FrameRect({0, 0, 9, 9});
  EXPECT_EQ(canvas.Frame3D({10, 10, 20, 16}, clWhite, clGray, 2), (TRect{12, 12, 18, 14}));
  canvas.Frame3D({0, 0, 1, 3}, clWhite, clGray, 9);
  canvas.DrawFocusRect({0, 0, 9, 9});
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen 0000ff
rectangle 0,0 9,9
pen ffffff
polyline 10,14 10,10 18,10
pen 808080
polyline 19,10 19,15 10,15
pen ffffff
polyline 11,13 11,11 17,11
pen 808080
polyline 18,11 18,14 11,14
polyline 0,0 0,2 0,2
pen ffffff alternate xor
rectangle 0,0 9,9
)");
}

TEST(Canvas, CopiesOnlyWhatLiesInTheBitmap) {
  TRecordingCanvas canvas;
  TBitmap bitmap({4, 2});
  bitmap.Fill(clRed);
  bitmap.SetPixel({3, 0}, clLime, 128);
  canvas.Draw({10, 20}, bitmap);
  canvas.StretchDraw({0, 0, 40, 20}, bitmap);
  canvas.CopyRect({0, 0, 60, 20}, bitmap, {-1, 0, 5, 2});  // ten pixels for each, the outer ones left alone
  canvas.CopyRect({0, 0, 60, 20}, bitmap, {4, 0, 5, 2});
  canvas.CopyRect({0, 0, 60, 20}, bitmap, {kLeast, kLeast, kMost, kMost});  // too small to be seen
  bitmap.SetPixel({0, 0}, clBlue);
  canvas.Draw({0, 0}, bitmap);
  EXPECT_EQ("\n" + canvas.Text(), R"(
bitmap 1 4x2 ff0000*3 00ff0080 ff0000*4
draw 1 0,0 4,2 10,20 14,22
draw 1 0,0 4,2 0,0 40,20
draw 1 0,0 4,2 10,0 50,20
bitmap 2 4x2 0000ff ff0000*2 00ff0080 ff0000*4
draw 2 0,0 4,2 0,0 4,2
)");
}

// -- Text -------------------------------------------------------------------------------------------------------------

TEST(Canvas, TextRectFillsItsGroundAndClips) {
  TRecordingCanvas canvas;
  canvas.TextRect({0, 0, 30, 20}, {2, 2}, "31");
  canvas.SetBrushStyle(bsClear);
  canvas.TextRect({30, 0, 60, 20}, {32, 2}, "1");
  EXPECT_EQ("\n" + canvas.Text(), R"(
brush ffffff
fill 0,0 30,20
save
clip 0,0 30,20
font 000000 12
text 2,2 "31"
restore
save
clip 30,0 60,20
font 000000 12
text 32,2 "1"
restore
)");
}

/// Each line as "x,y text".
std::string Lines(std::string_view text, const TRect& rect, const TTextLayout& layout, std::int32_t& height) {
  TRecordingCanvas canvas;
  canvas.SetFontHeight(10);  // six pixels a letter
  height = canvas.DrawText(rect, text, layout);
  std::string lines;
  for (std::size_t at = 0; (at = canvas.Text().find("\ntext ", at)) != std::string::npos; ++at)
    lines += canvas.Text().substr(at + 6, canvas.Text().find('\n', at + 1) - at - 6) + ";";
  return lines;
}

TEST(Canvas, DrawTextPlacesBreaksAndElides) {
  using enum TTextLayout::TAlign;
  constexpr TRect kBox{100, 100, 130, 120};  // five letters, two lines
  struct TCase {
    const char* text;
    TTextLayout layout;
    const char* lines;
    std::int32_t height;
  };
  const TCase kCases[] = {
      {"abc", {}, "100,100 \"abc\";", 10},
      {"abc", {kCentre, kCentre}, "106,105 \"abc\";", 10},
      {"abc", {kFar, kFar}, "112,110 \"abc\";", 10},
      {"a\r\nb\n\nc", {kNear, kNear, false, false}, "100,100 \"a\";100,110 \"b\";", 40},
      {"a\nb\nc", {}, "100,100 \"a\";100,110 \"b\xE2\x80\xA6\";", 30},
      {"abcdefgh", {}, "100,100 \"abcd\xE2\x80\xA6\";", 10},
      {"abcdefgh", {kCentre, kNear, false, false}, "91,100 \"abcdefgh\";", 10},  // both ends clipped
      {"a\tb", {}, "100,100 \"a b\";", 10},
      {"ab cd ef", {kNear, kNear, true}, "100,100 \"ab cd\";100,110 \"ef\";", 20},
      {"ab   cdef  ", {kFar, kNear, true}, "118,100 \"ab\";106,110 \"cdef\";", 20},
      {"abcdefgh", {kNear, kNear, true}, "100,100 \"abcde\";100,110 \"fgh\";", 20},
      {"a bcdefgh", {kNear, kNear, true}, "100,100 \"a\";100,110 \"bcde\xE2\x80\xA6\";", 30},
      {"ab cd ef gh ij", {kNear, kNear, true, false}, "100,100 \"ab cd\";100,110 \"ef gh\";", 30},
      {"ab cd ef gh ij", {kNear, kFar, true, false}, "100,100 \"ef gh\";100,110 \"ij\";", 30},
      {"\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9",
       {kNear, kNear, true},
       "100,100 \"\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\";100,110 \"\xC3\xA9\";",
       20},
      {"", {kNear, kNear, true}, "", 10},
  };
  for (const TCase& c : kCases) {
    std::int32_t height = 0;
    EXPECT_EQ(Lines(c.text, kBox, c.layout, height), c.lines) << c.text;
    EXPECT_EQ(height, c.height) << c.text;
  }
  std::int32_t height = 0;
  Lines(std::string(100'000, 'x'), {0, 0, 1, 1}, {.WordWrap = true}, height);
  EXPECT_EQ(height, 655'360) << "one letter a line, of the first 64 KB";
  Lines("x", {kLeast, kLeast, kMost, kMost}, {kFar, kFar}, height);
  EXPECT_EQ(height, 10);
}

/// The rule by itself: the longest beginning that fits, back to a blank if there is one behind a word.
std::vector<std::string> BrokenPlainly(std::string text, std::size_t letters) {
  std::vector<std::string> lines;
  while (text.size() > letters) {
    std::size_t at = std::min(text.rfind(' ', letters), text.size());
    if (at == text.size() || text.find_first_not_of(' ') >= at) at = std::max<std::size_t>(letters, 1);
    lines.push_back(text.substr(0, at));
    lines.back().erase(lines.back().find_last_not_of(' ') + 1);
    text.erase(0, std::min(text.find_first_not_of(' ', at), text.size()));
    if (text.empty()) return lines;
  }
  lines.push_back(text);
  return lines;
}

TEST(TextFit, BreaksAsThePlainWayDoes) {
  const TRecordingDevice meter;
  const TFontData font{.Height = 10};
  std::mt19937 random(6);
  for (int i = 0; i < 3000; ++i) {
    std::string text(random() % (i % 10 == 0 ? 200 : 12), ' ');
    for (char& c : text) c = "ab "[random() % 3];
    const std::size_t letters = random() % (i % 3 == 0 ? 70 : 6);
    ASSERT_EQ(BreakText(text, static_cast<std::int32_t>(letters * 6), font, meter), BrokenPlainly(text, letters))
        << '"' << text << "\" in " << letters;
  }
}

// -- In depth ---------------------------------------------------------------------------------------------------------

void DrawInDepth(TCanvas& canvas) {
  canvas.MoveTo3D(0, 0, 10);
  canvas.LineTo3D(10, 0, 20);
  canvas.LineWithZ({0, 0}, {5, 5}, 10);
  canvas.RectangleWithZ({10, 20, 18, 12}, 10);  // corners may be the wrong way round
  canvas.EllipseWithZ({10, 20, 18, 12}, 10);
  canvas.TriangleWithZ({0, 0}, {4, 0}, {0, 4}, 10);
  canvas.PolygonWithZ({{0, 0}, {4, 0}, {4, 4}, {0, 4}}, 10);
}

TEST(Canvas, DrawsInDepthWhereTheProjectionPutsIt) {
  TRecordingCanvas canvas;
  canvas.SetProjection(TProjection::Orthogonal(1, 0.5));
  DrawInDepth(canvas);
  EXPECT_EQ(canvas.Position(), (TPoint{30, -10}));
  EXPECT_EQ("\n" + canvas.Text(), R"(
line 10,-5 30,-10
line 10,-5 15,0
brush ffffff
rectangle 20,7 28,15
ellipse 20,7 28,15
polygon 10,-5 14,-5 10,-1
polygon 10,-5 14,-5 14,-1 10,-1
)");
}

TEST(Canvas, DrawsTurnedRectanglesAndEllipsesAsPolygons) {
  TRecordingCanvas canvas;
  canvas.SetProjection(
      TProjection::Rotated({.Centre = {}, .Rotation = 90, .Elevation = 90}));  // (x, y, z) is seen at (-z, -x)
  DrawInDepth(canvas);
  const std::string text = canvas.Text();
  EXPECT_NE(text.find("\npolygon -10,-10 -10,-17 -10,-17 -10,-10\n"), std::string::npos) << text;
  EXPECT_EQ(text.find("rectangle"), std::string::npos);
  EXPECT_EQ(text.find("ellipse"), std::string::npos);
  EXPECT_NE(text.find("polygon -10,0 -10,-4 -10,-4 -10,0\n"), std::string::npos) << text;
}

// -- The recording device ---------------------------------------------------------------------------------------------

TEST(RecordingDevice, WritesAStateOnlyWhenItIsUsedAndHasChanged) {
  TRecordingCanvas canvas;
  canvas.SetPenColor(clRed);  // never used: never written
  canvas.SetPen({TColor{0x0000FF80}, 2, psDot});
  canvas.Line({0, 0}, {1, 1});
  canvas.Line({1, 1}, {2, 2});
  canvas.SetBrushStyle(bsClear);
  canvas.Rectangle({0, 0, 9, 9});
  canvas.SetBrushColor(clBlue);  // a clear brush with a new colour is solid
  canvas.FillRect({0, 0, 4, 4});
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen 80ff00 2 dot
line 0,0 1,1
line 1,1 2,2
rectangle 0,0 9,9
brush 0000ff
fill 0,0 4,4
)");
}

TEST(RecordingDevice, WritesTheModeForFillsAndTheBackColourForGaps) {
  TRecordingCanvas canvas;
  canvas.SetBackMode(cbmOpaque);
  canvas.SetBackColor(clYellow);
  canvas.SetPen({clRed, 1, psSolid, pmXor});
  canvas.FillRect({0, 0, 4, 4});
  canvas.SetPenColor(clBlue);  // not used by fills
  canvas.FillRect({4, 0, 8, 4});
  canvas.SetPenMode(pmCopy);
  canvas.Rectangle({0, 0, 4, 4});
  canvas.SetPenStyle(psDot);
  canvas.Line({0, 0}, {4, 4});
  canvas.TextOut({0, 0}, "a");
  canvas.SetBackMode(cbmNone);
  canvas.SetPenStyle(psInsideFrame);
  canvas.Line({0, 0}, {4, 4});
  canvas.SetBrushStyle(bsFDiagonal);
  canvas.FillRect({0, 0, 4, 4});
  canvas.Present();
  EXPECT_EQ("\n" + canvas.Text(), R"(
pen ff0000 xor
brush ffffff
fill 0,0 4,4
fill 4,0 8,4
pen 0000ff
rectangle 0,0 4,4
pen 0000ff dot
back ffff00
line 0,0 4,4
font 000000 12
text 0,0 "a"
pen 0000ff insideframe
line 0,0 4,4
brush ffffff fdiagonal
back none
fill 0,0 4,4
present
)");
}

TEST(RecordingDevice, AfterARestoreWritesWhatTheSaveTookBack) {
  TRecordingCanvas canvas;
  canvas.SetBrushColor(clWhite);
  for (const std::int32_t x : {10, 32}) {
    const TCanvasStateSaver saved(canvas);
    canvas.IntersectClip({0, 0, 80, 60});
    canvas.Ellipse({x, 46, x + 8, 54});
  }
  EXPECT_EQ("\n" + canvas.Text(), R"(
save
clip 0,0 80,60
brush ffffff
ellipse 10,46 18,54
restore
save
clip 0,0 80,60
brush ffffff
ellipse 32,46 40,54
restore
)");
}

TEST(RecordingDevice, KeepsEachPrimitiveOnOneLineWhateverTheText) {
  TRecordingCanvas canvas;
  canvas.TextOut({1, 2}, "a\"b\\c\nd\xC3\xA9");
  canvas.SetFont({"Serif", 9, fsBold | fsItalic, clGray});
  canvas.TextOut({3, 4}, "");
  canvas.Polygon({{0, 0}, {5, 5}, {9, 0}});
  EXPECT_EQ("\n" + canvas.Text(),
            "\nfont 000000 12\n"
            "text 1,2 \"a\\22b\\5cc\\0ad\xC3\xA9\"\n"
            "font 808080 9 bold italic \"Serif\"\n"
            "text 3,4 \"\"\n"
            "brush ffffff\n"
            "polygon 0,0 5,5 9,0\n");
}

TEST(RecordingDevice, MeasuresCodePointsNotBytes) {
  TRecordingCanvas canvas;
  canvas.SetFontHeight(12);
  EXPECT_EQ(canvas.TextExtent("\xC3\xA9\xE2\x80\xA6"), (TSize{15, 12}));  // two code points, 14.4 pixels
  EXPECT_EQ(canvas.TextWidth(""), 0);
  canvas.SetFontHeight(13);
  EXPECT_EQ(canvas.FontMetrics(), (TFontMetrics{.Ascent = 10, .Descent = 3, .AverageWidth = 8}));
  canvas.SetFontHeight(kMost);
  EXPECT_EQ(canvas.FontMetrics().Height(), kMost);
  EXPECT_EQ(canvas.TextWidth("ab"), kMost);
}

TEST(Rect, SharesNoPixelWithANeighbourThatItTouches) {
  constexpr TRect box{10, 20, 40, 30};
  static_assert(box.Contains({39, 29}) && !box.Contains({40, 29}) && !box.Contains({39, 30}));
  static_assert(!box.Intersects({40, 20, 50, 30}) && box.Intersects({39, 29, 50, 40}));
  static_assert(box.Encloses({100, 100, 100, 100}));  // nothing is everywhere
  EXPECT_EQ(box.Intersected({0, 25, 20, 90}), (TRect{10, 25, 20, 30}));
}

}  // namespace
}  // namespace vx
