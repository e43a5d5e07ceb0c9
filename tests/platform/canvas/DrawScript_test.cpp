#include "platform/canvas/DrawScript.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "platform/canvas/RecordingDevice.h"

namespace vx {
namespace {

std::string Played(std::string_view text) {
  TRecordingCanvas canvas;
  PlayDrawing(text, canvas);
  return canvas.Text();
}

/// Also a fuzz input.
constexpr const char* kEveryPrimitive = R"(
pen ff0000 3 dash xor
back 00ff00
line 0,0 10,10
polyline 0,0 5,5 9,0
pen 00ff00 32767 dashdotdot
line -5,-5 -5,-5
pen 000000 clear
brush 0000ff fdiagonal
rectangle 0,0 10,10
brush 0000ff
polygon 0,0 5,5 9,0
save
clip 0,0 80,60
clipregion 0,0 80,10 0,10 10,50 70,10 80,50 0,50 80,60
pen 808080 insideframe
ellipse 10,46 18,54
roundrect 0,0 40,20 8,6
save
clipregion
pen 808080 alternate
arc 0,0 10,10 90 180
brush clear
chord 0,0 10,10 -0.5 1e-05
pie 0,0 10,10 359.99999999999994 -360
restore
brush 123456 diagcross
fill 0,0 10,10
restore
gradient 0,0 80,60 ffffff 0000ff frombottomleft
bitmap 1 4x2 ff0000*3 00ff00 0000ff80*2 00000000 ffffff
draw 1 0,0 4,2 10,10 50,30
bitmap 2 1x1 ff0000
draw 2 0,0 1,1 0,0 9,9
draw 1 1,0 4,2 10,10 50,30
back none
font 000000 12
text 5,5 "Jan \22\5c\0a\7f)"
                                        "\xC3\xA9\xFF\" -90.5\n"
                                        R"(back ffffff
font 808080 9 bold italic underline strikeout "Serif"
text 5,5 ""
present
save
)";

TEST(DrawScript, PlaysEveryPrimitiveToTheSameText) { EXPECT_EQ("\n" + Played(kEveryPrimitive), kEveryPrimitive); }

TEST(DrawScript, TakesWhatPeopleWrite) {
  EXPECT_EQ(Played("# a drawing\r\n\r\nsize 80,60\r\n\t line  1,2\t3,4 \r\n#line\npen FF0000 1\npolyline 1,1 2,2\n"
                   "bitmap 7 1x2 ff0000ff FF0000\ndraw 7 -1,0 2,2 0,0 6,2\ntext 1,1 \"a\""),
            "line 1,2 3,4\npen ff0000\nline 1,1 2,2\nbitmap 1 1x2 ff0000*2\ndraw 1 0,0 1,2 2,0 4,2\n"
            "font 000000 12\ntext 1,1 \"a\"\n");
  EXPECT_EQ(Played(""), "");
}

TEST(DrawScript, LeavesTheCanvasToASaver) {
  TRecordingCanvas canvas;
  canvas.SetPen({clRed, 3});
  {
    const TCanvasStateSaver saved(canvas);
    PlayDrawing("save\nsave\nline 0,0 1,1\n", canvas);  // starts with a black pen
  }
  canvas.Line({0, 0}, {2, 2});
  EXPECT_EQ(canvas.Text(), "save\nsave\nsave\nline 0,0 1,1\nrestore\nrestore\nrestore\npen ff0000 3\nline 0,0 2,2\n");
  EXPECT_THROW(PlayDrawing("line 0,0 3,3\nrestore", canvas), EDrawScriptError);
  EXPECT_EQ(canvas.Text().find("3,3"), std::string::npos) << "nothing is drawn of a broken text";
}

TEST(DrawScript, TellsTheSize) {
  EXPECT_EQ(DrawingSize("\n# x\nsize 640,480\nnonsense"), (TSize{640, 480}));
  EXPECT_EQ(DrawingSize("line 0,0 1,1\nsize 640,480"), std::nullopt);
  EXPECT_EQ(DrawingSize(""), std::nullopt);
  EXPECT_THROW(DrawingSize("size 0,5"), EDrawScriptError);
}

TEST(DrawScript, NamesWhereAndWhatIsWrong) {
  const std::string longName = "font 000000 12 \"" + std::string(256, 'a') + "\"";
  struct TCase {
    const char* text;
    const char* message;
  };
  const TCase kCases[] = {
      {"circle 0,0 5,5", "Line 1, column 1: \"circle\" where a command (line, rectangle, text …) was expected"},
      {"\n#\npen purple", "Line 3, column 5: \"purple\" where a colour (rrggbb) was expected"},
      {"pen", "Line 1, column 4: the line ends where a colour (rrggbb) was expected"},
      {"pen ff0000 2 wavy",
       "Line 1, column 14: \"wavy\" where a width, a style (dash, dot …), xor or the end of the line was expected"},
      {"pen ff0000 99999999999",
       "Line 1, column 12: \"99999999999\" where a width, a style (dash, dot …), xor or the end of the line was "
       "expected"},
      {"brush ff0000 clear",
       "Line 1, column 14: \"clear\" where a hatch (horizontal, cross …) or the end of the line was expected"},
      {"font ff0000 bold", "Line 1, column 13: \"bold\" where a height in pixels was expected"},
      {"font ff0000 9 italic bold",
       "Line 1, column 22: \"bold\" where bold, italic, underline, strikeout, a name in quotes or the end of the line "
       "was "
       "expected"},
      {"line 1,2 3", "Line 1, column 10: \"3\" where a point (x,y) was expected"},
      {"line 1,2 3,2147483648", "Line 1, column 10: \"3,2147483648\" where a point (x,y) was expected"},
      {"line 1,2 3,4 5,6", "Line 1, column 14: \"5,6\" where the end of the line was expected"},
      {"polygon", "Line 1, column 8: the line ends where a point (x,y) was expected"},
      {"arc 0,0 9,9 inf 1", "Line 1, column 13: \"inf\" where a start in degrees was expected"},
      {"pie 0,0 9,9 1 nan", "Line 1, column 15: \"nan\" where a sweep in degrees was expected"},
      {"gradient 0,0 9,9 ff0000 00ff00 up",
       "Line 1, column 32: \"up\" where a direction (topbottom, leftright, fromcenter …) was expected"},
      {"clipregion 0,0 9,9 8,0 12,9",
       "Line 1, column 20: a rectangle that is neither right of the one before it in its band, nor below that band"},
      {"clipregion 5,0 5,9", "Line 1, column 12: an empty rectangle in a region"},
      {"bitmap 1 2x2 ff0000*3", "Line 1, column 10: 3 pixels instead of 4"},
      {"bitmap 1 2x2 ff0000*0",
       "Line 1, column 14: \"ff0000*0\" where pixels (rrggbb, rrggbbaa, rrggbb*count) was expected"},
      {"bitmap 1 0x2", "Line 1, column 10: \"0x2\" where a size from 1x1 to 32767x32767 was expected"},
      {"bitmap 1 4096x2049 ff0000*8392704", "Line 1, column 10: more than 8388608 pixels in all bitmaps"},
      {"draw 1 0,0 1,1 0,0 1,1", "Line 1, column 6: no bitmap has the number 1"},
      {longName.c_str(), "Line 1, column 16: a name of more than 255 bytes"},
      {"text 0,0 abc", "Line 1, column 10: \"abc\" where a text in quotes was expected"},
      {"text 0,0 \"abc", "Line 1, column 10: the text isn't ended by a quote"},
      {"text 0,0 \"\xC3\xA9\\2", "Line 1, column 12: a backslash without its two hexadecimal digits"},
      {"text 0,0 \"\xC3\xA9\" 90 1", "Line 1, column 17: \"1\" where the end of the line was expected"},
      {"save\nrestore\n restore", "Line 3, column 1: \"restore\" without its \"save\""},
      {"save\nsize 5,5", "Line 2, column 1: \"size\" stands before all other lines or not at all"},
      {"size 5", "Line 1, column 6: \"5\" where a size from 1,1 to 32767,32767 was expected"},
      {"x\x01\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx",
       "Line 1, column 1: \"x\\01\\22xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\"… where a command (line, rectangle, text "
       "…) was "
       "expected"},
  };
  for (const TCase& c : kCases) {
    try {
      Played(c.text);
      ADD_FAILURE() << c.text;
    } catch (const EDrawScriptError& error) {
      EXPECT_EQ(error.Message(), c.message);
    }
  }
  std::string saves;
  for (std::size_t i = 0; i <= kMostSaves; ++i) saves += "save\n";
  EXPECT_THROW(Played(saves), EDrawScriptError);
}

// -- Any drawing at all -----------------------------------------------------------------------------------------------

/// Draws anything that a canvas can.
class TRandomPainter {
 public:
  TRandomPainter(TCanvas& canvas, std::uint32_t seed) : canvas_(canvas), random_(seed) {}

  void Paint() {
    switch (Pick(8)) {
      case 0:
        return ChangeInk();
      case 1:
        return ChangeState();
      case 2:
        return Nest();
      case 3:
        return DrawLine();
      case 4:
        return DrawShape();
      case 5:
        return DrawFrame();
      case 6:
        return DrawPicture();
      default:
        return DrawLetters();
    }
  }

 private:
  std::uint32_t Pick(std::uint32_t count) { return static_cast<std::uint32_t>(random_() % count); }
  std::int32_t Coordinate() {
    return Pick(50) == 0 ? static_cast<std::int32_t>(random_()) : static_cast<std::int32_t>(Pick(60)) - 20;
  }
  TPoint Point() { return {Coordinate(), Coordinate()}; }
  TRect Rect() { return {Coordinate(), Coordinate(), Coordinate(), Coordinate()}; }
  double Angle() { return Pick(20) == 0 ? HUGE_VAL : Coordinate() * 10.0 / (1 + Pick(4)); }
  TColor Color() {
    constexpr TColor kColors[] = {clRed, clWhite, clBlack, clNone, clWindow, clBtnText, TColor{0x02345678}};
    return kColors[Pick(std::size(kColors))];
  }
  std::vector<TPoint> Points() {
    std::vector<TPoint> points(Pick(5));
    for (TPoint& point : points) point = Point();
    return points;
  }
  std::string Letters() {
    std::string text(Pick(20), ' ');
    for (char& c : text) c = Pick(3) == 0 ? static_cast<char>(Pick(256)) : "ab \n\""[Pick(5)];
    return text;
  }
  TBitmap Picture() {
    TBitmap bitmap({static_cast<std::int32_t>(Pick(4)), static_cast<std::int32_t>(Pick(3))});
    for (std::int32_t y = 0; y < bitmap.Size().Height; ++y)
      for (std::uint32_t& pixel : bitmap.Row(y)) pixel = 0xFF0000FF - 0x40000000 * Pick(3);
    return bitmap;
  }

  void ChangeInk() {
    canvas_.SetPen({Color(), static_cast<std::int32_t>(Pick(4)), static_cast<TPenStyle>(Pick(8)),
                    static_cast<TPenMode>(Pick(8) == 0)});
    canvas_.SetBrush({Color(), static_cast<TBrushStyle>(Pick(8))});
    canvas_.SetBackColor(Color());
  }
  void ChangeState() {
    canvas_.SetFont({Pick(2) == 0   ? "Serif"
                     : Pick(4) == 0 ? ""
                                    : TFontData{}.Name,
                     static_cast<std::int32_t>(Pick(30)), static_cast<TFontStyles>(Pick(16)), Color()});
    canvas_.SetBackMode(static_cast<TCanvasBackMode>(Pick(3)));
    constexpr TPoint kCentre{20, 20};
    canvas_.SetProjection(Pick(2) == 0 ? TProjection::Orthogonal(0.5, 0.5)
                                       : TProjection::Rotated({kCentre, 40, Angle(), Angle(), 50, 100}));
  }
  void Nest() {
    switch (Pick(5)) {
      case 0:
        return canvas_.Save();
      case 1:
        return canvas_.SaveCount() > 0 ? canvas_.Restore() : canvas_.Present();
      case 2:
        return canvas_.IntersectClip(Rect());
      case 3:
        return canvas_.IntersectClip(TRegion::OfRect(Rect()).Subtracted(TRegion::OfRect(Rect())));
      default:
        return canvas_.IntersectClip(TRegion::OfEllipse({0, 0, 20, 20}, {0, 0, 20, 20}));
    }
  }
  void DrawLine() {
    switch (Pick(6)) {
      case 0:
        return canvas_.LineTo(Point());
      case 1:
        return canvas_.Polyline(Points());
      case 2:
        return canvas_.Arc(Rect(), {Angle(), Angle()});
      case 3:
        return canvas_.LineTo3D(Coordinate(), Coordinate(), Coordinate());
      case 4:
        return canvas_.LineWithZ(Point(), Point(), Coordinate());
      default:
        return canvas_.Line(Point(), Point());
    }
  }
  void DrawShape() {
    switch (Pick(10)) {
      case 0:
        return canvas_.Rectangle(Rect());
      case 1:
        return canvas_.RoundRect(Rect(), {Coordinate(), Coordinate()});
      case 2:
        return canvas_.Ellipse(Rect());
      case 3:
        return canvas_.Chord(Rect(), {Angle(), Angle()});
      case 4:
        return canvas_.Pie(Rect(), {Angle(), Angle()});
      case 5:
        return canvas_.Polygon(Points());
      case 6:
        return canvas_.RectangleWithZ(Rect(), Coordinate());
      case 7:
        return canvas_.EllipseWithZ(Rect(), Coordinate());
      case 8:
        return canvas_.PolygonWithZ(Points(), Coordinate());
      default:
        return canvas_.FillRect(Rect());
    }
  }
  void DrawFrame() {
    canvas_.FrameRect(Rect());
    canvas_.Frame3D(Rect(), Color(), Color(), static_cast<std::int32_t>(Pick(3)));
    canvas_.DrawFocusRect(Rect());
  }
  void DrawPicture() {
    canvas_.Gradient(Rect(), {Color(), Color(), static_cast<TGradientDirection>(Pick(7))});
    canvas_.SetPixel(Point(), Color());
    canvas_.Draw(Point(), Picture());
    canvas_.CopyRect(Rect(), Picture(), {-1, 0, static_cast<std::int32_t>(Pick(4)), 2});
  }
  void DrawLetters() {
    canvas_.TextOutRotated(Point(), Angle(), Letters());
    canvas_.TextRect(Rect(), Point(), Letters());
    canvas_.DrawText(Rect(), Letters(), {.WordWrap = Pick(2) == 0, .EndEllipsis = Pick(2) == 0});
  }

  TCanvas& canvas_;
  std::mt19937 random_;
};

TEST(DrawScript, PlaysWhateverWasRecordedToTheSameText) {
  std::size_t bytes = 0;
  for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRecordingCanvas canvas;
    TRandomPainter painter(canvas, seed);
    for (std::uint32_t i = 0; i < seed % 40; ++i) painter.Paint();
    ASSERT_EQ(Played(canvas.Text()), canvas.Text());
    bytes += canvas.Text().size();
  }
  EXPECT_GT(bytes, 1'000'000u) << "the painter paints";
}

}  // namespace
}  // namespace vx
