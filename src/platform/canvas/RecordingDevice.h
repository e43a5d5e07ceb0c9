// RecordingDevice.h: drawing as text, for tests.
//
// Each primitive becomes one line; before it stand the lines of the state that it uses, when that has changed since it
// was last written. A picture starts with a black pen of one pixel and a clear brush as if they had been written; the
// font is written before the first text.
//
//   save                          restore            nested; what a save has kept counts as written again
//   pen rrggbb [width] [style]    brush rrggbb|clear
//   font rrggbb height [bold] [italic] [underline] [strikeout] ["name" if it isn't the usual one]
//   clip 0,0 80,60                a rectangle: first pixel, and the first beyond it
//   line 0,0 10,10                polyline 0,0 5,5 9,0            polygon 0,0 5,5 9,0
//   rectangle 0,0 10,10           fill 0,0 10,10                  ellipse 10,46 18,54
//   text 5,5 "Jan 2024"           quotes, backslashes and control characters are written \xx (hexadecimal)
//
// Colours are written red, green, blue. Text has a fixed metric, so that no fonts are needed: a code point is six
// tenths of the font's height wide, rounded up for the whole text, and a line is as high as the font.
#pragma once

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
  TSize MeasureText(std::string_view text, const TFont& font) const override;
  void SaveClip() override;
  void RestoreClip() override;
  void IntersectClip(const TRect& rect) override;
  void FillRect(const TRect& rect, const TBrush& brush) override;
  void Rectangle(const TRect& rect, const TPen& pen, const TBrush& brush) override;
  void Ellipse(const TRect& rect, const TPen& pen, const TBrush& brush) override;
  void Polygon(std::span<const TPoint> points, const TPen& pen, const TBrush& brush) override;
  void Polyline(std::span<const TPoint> points, const TPen& pen) override;
  void TextOut(TPoint topLeft, std::string_view text, const TFont& font) override;

 private:
  /// What the reader of the text so far takes for the current state.
  struct TWritten {
    TPen Pen;
    TBrush Brush{clWhite, bsClear};
    TFont Font{.Name = {}};
  };

  void Write(const TPen& pen);
  void Write(const TBrush& brush);
  void Write(const TFont& font);
  void WriteLine(std::string_view word, std::string_view rest);

  TSize size_;
  std::string text_;
  TWritten written_;
  std::vector<TWritten> saved_;
};

/// A canvas that comes with its recording device.
class TRecordingCanvas : private TRecordingDevice, public TCanvas {
 public:
  explicit TRecordingCanvas(TSize size = {640, 480})
      : TRecordingDevice(size), TCanvas(static_cast<TRecordingDevice&>(*this)) {}

  using TCanvas::Ellipse;
  using TCanvas::FillRect;
  using TCanvas::IntersectClip;
  using TCanvas::Polygon;
  using TCanvas::Polyline;
  using TCanvas::Rectangle;
  using TCanvas::Size;
  using TCanvas::TextOut;
  using TRecordingDevice::Text;
};

}  // namespace vx
