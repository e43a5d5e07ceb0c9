#include "platform/canvas/Canvas.h"

#include <gtest/gtest.h>

#include "platform/canvas/RecordingDevice.h"
#include "platform/runtime/Exceptions.h"

namespace vx {
namespace {

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
  EXPECT_EQ(canvas.Pen(), (TPen{clRed, 3, psDash}));
  EXPECT_EQ(canvas.Brush(), TBrush{});
  EXPECT_EQ(canvas.Font(), TFont{.Height = 20});
  EXPECT_EQ(canvas.Position(), (TPoint{7, 8}));
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
