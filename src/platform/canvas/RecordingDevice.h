// RecordingDevice.h: drawing as text, for tests.
//
// Each primitive becomes one line; before it stand the lines of the state that it uses, when that has changed since it
// was last written. A picture starts with a black pen of one pixel, a clear brush and no colour for gaps as if they had
// been written; the font is written before the first text. What is filled without an outline uses the pen's mode alone.
// DrawScript.h reads the text.
//
//   save                          restore            nested; what a save has kept counts as written again
//   pen rrggbb [width] [style] [xor]
//   brush rrggbb [horizontal|vertical|fdiagonal|bdiagonal|cross|diagcross]         brush clear
//   back rrggbb|none              fills the gaps of dashes and hatches, and the ground of text
//   font rrggbb height [bold] [italic] [underline] [strikeout] ["name" if it isn't the usual one]
//   clip 0,0 80,60                a rectangle: first pixel, and the first beyond it
//   clipregion 0,0 80,60 …        the rectangles of a region; none for an empty one
//   line 0,0 10,10                polyline 0,0 5,5 9,0            polygon 0,0 5,5 9,0
//   rectangle 0,0 10,10           fill 0,0 10,10                  ellipse 10,46 18,54
//   roundrect 0,0 40,20 8,8       the size of the corner's ellipse last
//   arc 0,0 10,10 90 180          chord …                         pie …: start and sweep in degrees last
//   gradient 0,0 80,60 ffffff 0000ff leftright
//   bitmap 1 4x2 ff0000*3 00ff00 0000ff80 …     pixels row by row, *n for n alike, a fourth byte for the opacity where
//                                               it isn't full; written once, before its first use, however many equal
//                                               ones are drawn
//   draw 1 0,0 4,2 10,10 50,30    a bitmap: the part of it, and where that goes
//   text 5,5 "Jan 2024" [angle]   quotes, backslashes and control characters are written \xx (hexadecimal)
//   present
//
// Colours are written red, green, blue. Text has a fixed metric, so that no fonts are needed: a code point is six
// tenths of the font's height wide, rounded up for the whole text, and a line is as high as the font.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/canvas/Canvas.h"

namespace vx {

class TRecordingDevice : public ICanvasDevice {
 public:
  explicit TRecordingDevice(TSize size = {640, 480}) : size_(size) {}

  /// All that was drawn so far; each line ends in a line feed.
  const std::string& Text() const { return text_; }

  TSize Size() const override { return size_; }
  void Present() override { WriteLine("present"); }
  TSize MeasureText(std::string_view text, const TFontData& font) const override;
  TFontMetrics MeasureFont(const TFontData& font) const override;
  void SaveClip() override;
  void RestoreClip() override;
  void IntersectClip(const TRect& rect) override;
  void IntersectClip(const TRegion& region) override;
  void FillRect(const TRect& rect, const TInk& ink) override;
  void Rectangle(const TRect& rect, const TInk& ink) override;
  void RoundRect(const TRect& rect, TSize corner, const TInk& ink) override;
  void Ellipse(const TRect& rect, const TInk& ink) override;
  void Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) override;
  void Polygon(std::span<const TPoint> points, const TInk& ink) override;
  void Polyline(std::span<const TPoint> points, const TInk& ink) override;
  void Gradient(const TRect& rect, const TGradient& gradient) override;
  void Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) override;
  void TextOut(TPoint topLeft, std::string_view text, const TTextInk& ink) override;

 private:
  /// What the reader of the text so far takes for the current state.
  struct TWritten {
    TPenData Pen;
    TBrushData Brush{clWhite, bsClear};
    TColor Back = clNone;
    std::optional<TFontData> Font;
  };

  void Write(const TPenData& pen);
  void Write(const TBrushData& brush);
  void WriteBack(TColor back);
  void Write(const TFontData& font);
  void WriteLineState(const TInk& ink);
  void WriteShapeState(const TInk& ink);
  std::size_t BitmapNumber(const TBitmap& bitmap);
  void WriteLine(std::string_view word, std::string_view rest = {});

  TSize size_;
  std::string text_;
  TWritten written_;
  std::vector<TWritten> saved_;
  std::vector<TBitmap> bitmaps_;  ///< all different; compared again at each use, which is quicker than writing
};

/// A canvas that comes with its recording device.
class TRecordingCanvas : private TRecordingDevice, public TCanvas {
 public:
  explicit TRecordingCanvas(TSize size = {640, 480})
      : TRecordingDevice(size), TCanvas(static_cast<TRecordingDevice&>(*this)) {}

  using TCanvas::Arc;
  using TCanvas::Draw;
  using TCanvas::Ellipse;
  using TCanvas::FillRect;
  using TCanvas::Gradient;
  using TCanvas::IntersectClip;
  using TCanvas::IsPaper;
  using TCanvas::Polygon;
  using TCanvas::Polyline;
  using TCanvas::Present;
  using TCanvas::Rectangle;
  using TCanvas::RoundRect;
  using TCanvas::Size;
  using TCanvas::TextOut;
  using TRecordingDevice::Text;
};

}  // namespace vx
