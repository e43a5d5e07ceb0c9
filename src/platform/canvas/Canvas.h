// Canvas.h: the drawing surface that painters see.
//
// A TCanvas holds a pen, a brush, a font, a background, a position, a projection and a clip, and hands each primitive
// with its state to a device, which it doesn't own and which must outlive it. It has no virtual members and no globals;
// two canvases never disturb each other. One primitive exists once, and a painter never asks which device it is on.
//
//   TRecordingDevice device({200, 100});
//   TCanvas canvas(device);
//   const TCanvasStateSaver saved(canvas);   // all of the state comes back at the end of the scope
//   canvas.SetBrushColor(clWindow);
//   canvas.Ellipse({10, 46, 18, 54});
//
// How pixels are covered is told in CanvasDevice.h. System colours may be used anywhere; they are looked up when a
// primitive is drawn. Angles are degrees, anticlockwise from three o'clock.
//
// Nothing here raises for what is drawn. An angle that isn't a number, a sweep of 0, an empty rectangle and clNone draw
// nothing; coordinates may lie anywhere. What can't be seen isn't handed on: a line of a clear pen, a shape of a clear
// pen and a clear brush. Nothing is allocated here for a primitive, but by DrawText, PolygonWithZ and where coordinates
// lie beyond kFarthest.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas/CanvasDevice.h"
#include "platform/canvas/Projection.h"

namespace vx {

/// How DrawText places text in its rectangle.
struct TTextLayout {
  enum TAlign : std::uint8_t { kNear, kCentre, kFar };
  TAlign Horizontal = kNear;
  TAlign Vertical = kNear;
  bool WordWrap = false;    ///< lines break at blanks, and within a word that is wider than the rectangle
  bool EndEllipsis = true;  ///< a line that is too wide, and the last for which there is room, end in "…" instead of
                            ///< being clipped
};

class TCanvas {
 public:
  explicit TCanvas(ICanvasDevice& device) : device_(device) {}
  TCanvas(const TCanvas&) = delete;
  TCanvas& operator=(const TCanvas&) = delete;

  TSize Size() const { return device_.Size(); }
  /// For layout that is computed before anything is drawn.
  const ITextMeter& TextMeter() const { return device_; }
  /// True where what is drawn with pmXor is skipped: painters of animations needn't wait between their steps.
  bool IsPaper() const { return device_.IsPaper(); }
  /// Shows what has been drawn so far.
  void Present() { device_.Present(); }

  // -- State --------------------------------------------------------------------------------------------------------
  const TPenData& Pen() const { return state_.Pen; }
  void SetPen(const TPenData& pen) { state_.Pen = pen; }
  void SetPenColor(TColor color) { state_.Pen.Color = color; }
  void SetPenWidth(std::int32_t width) { state_.Pen.Width = width; }
  void SetPenStyle(TPenStyle style) { state_.Pen.Style = style; }
  void SetPenMode(TPenMode mode) { state_.Pen.Mode = mode; }

  const TBrushData& Brush() const { return state_.Brush; }
  void SetBrush(const TBrushData& brush) { state_.Brush = brush; }
  /// A clear brush that is given a colour becomes solid.
  void SetBrushColor(TColor color);
  void SetBrushStyle(TBrushStyle style) { state_.Brush.Style = style; }

  const TFontData& Font() const { return state_.Font; }
  void SetFont(const TFontData& font);
  void SetFontColor(TColor color) { state_.Font.Color = color; }
  void SetFontHeight(std::int32_t height) { state_.Font.Height = height; }
  void SetFontStyle(TFontStyles style) { state_.Font.Style = style; }

  /// Fills gaps and the ground of text while the back mode is cbmOpaque.
  TColor BackColor() const { return state_.BackColor; }
  void SetBackColor(TColor color) { state_.BackColor = color; }
  TCanvasBackMode BackMode() const { return state_.BackMode; }
  void SetBackMode(TCanvasBackMode mode) { state_.BackMode = mode; }

  const TProjection& Projection() const { return state_.Projection; }
  void SetProjection(const TProjection& projection) { state_.Projection = projection; }

  /// Keeps all of the state until the matching Restore; EInvalidOperation for a Restore without one.
  /// Prefer TCanvasStateSaver.
  void Save();
  void Restore();
  /// How many Saves wait for their Restore.
  std::size_t SaveCount() const { return saved_.size(); }
  /// Narrows the clip; only Restore widens it.
  void IntersectClip(const TRect& rect);
  void IntersectClip(const TRegion& region) { device_.IntersectClip(region); }

  // -- Lines --------------------------------------------------------------------------------------------------------
  TPoint Position() const { return state_.Position; }
  void MoveTo(TPoint point) { state_.Position = point; }
  /// From the position to `point`, both included; `point` is the new position.
  void LineTo(TPoint point);
  /// Leaves the position alone.
  void Line(TPoint from, TPoint to);
  void Polyline(std::span<const TPoint> points);
  void Arc(const TRect& rect, TArc arc);

  // -- Closed shapes: outline of the pen, filled by the brush -------------------------------------------------------
  void Rectangle(const TRect& rect);
  /// `corner` is width and height of the ellipse whose quarters round the corners off.
  void RoundRect(const TRect& rect, TSize corner);
  void Ellipse(const TRect& rect);
  void Chord(const TRect& rect, TArc arc);
  void Pie(const TRect& rect, TArc arc);
  void Polygon(std::span<const TPoint> points);
  void Polygon(std::initializer_list<TPoint> points) { Polygon(std::span(points.begin(), points.size())); }

  // -- Filled, without an outline -----------------------------------------------------------------------------------
  void FillRect(const TRect& rect);
  void Gradient(const TRect& rect, const TGradient& gradient);
  void SetPixel(TPoint point, TColor color);

  // -- Frames -------------------------------------------------------------------------------------------------------
  /// One pixel wide, in the brush's colour and the pen's mode.
  void FrameRect(const TRect& rect);
  /// `width` nested frames, the upper left half in one colour, the lower right half, with both corners between them, in
  /// another: a raised or sunken panel. Answers what lies within. No more than kMostFrames are drawn.
  static constexpr std::int32_t kMostFrames = 1024;
  TRect Frame3D(const TRect& rect, TColor topLeft, TColor bottomRight, std::int32_t width);
  /// Every second pixel of the edge inverted: drawn twice it is gone. Skipped on paper.
  void DrawFocusRect(const TRect& rect);

  // -- Pictures -----------------------------------------------------------------------------------------------------
  void Draw(TPoint topLeft, const TBitmap& bitmap);
  void StretchDraw(const TRect& target, const TBitmap& bitmap);
  /// The part `source` of the bitmap, stretched to `target`. Where `source` reaches out of the bitmap, that share of
  /// `target` is left alone.
  void CopyRect(const TRect& target, const TBitmap& bitmap, const TRect& source);

  // -- Text ---------------------------------------------------------------------------------------------------------
  /// The ground stays, or is filled in the back colour (SetBackMode); the brush has no part in it.
  void TextOut(TPoint topLeft, std::string_view text) { TextOutRotated(topLeft, 0, text); }
  /// Turned about the top left of its line box.
  void TextOutRotated(TPoint topLeft, double angle, std::string_view text);
  /// Clipped to `rect`, whose ground is filled by the brush unless that is clear.
  void TextRect(const TRect& rect, TPoint topLeft, std::string_view text);
  /// Placed in `rect` and clipped to it. Line feeds break lines (BreakText tells more). Answers the height of all
  /// lines, also of those that there was no room for.
  std::int32_t DrawText(const TRect& rect, std::string_view text, const TTextLayout& layout);
  TSize TextExtent(std::string_view text) const { return device_.MeasureText(text, state_.Font); }
  std::int32_t TextWidth(std::string_view text) const { return TextExtent(text).Width; }
  std::int32_t TextHeight(std::string_view text) const { return TextExtent(text).Height; }
  TFontMetrics FontMetrics() const { return device_.MeasureFont(state_.Font); }

  // -- In depth: where the projection puts it -----------------------------------------------------------------------
  // Rectangles are given by any two opposite corners here: bars grow up and down. They hold the pixels up to, and
  // without, the right and the bottom one, as everywhere, whereas lines end with their last pixel: the frame around a
  // point at a distance of 4 is {x - 4, y - 4, x + 5, y + 5}. Turned, an outline runs along its corners and lies half
  // outside of them.
  TPoint Project(double x, double y, double z) const { return state_.Projection.Project(x, y, z); }
  void MoveTo3D(std::int32_t x, std::int32_t y, std::int32_t z);
  void LineTo3D(std::int32_t x, std::int32_t y, std::int32_t z);
  /// Leaves the position alone.
  void LineWithZ(TPoint from, TPoint to, std::int32_t z);
  /// Upright where the projection keeps rectangles, else as a polygon of its corners, whose sides then lie on the
  /// first and last pixels of `rect`.
  void RectangleWithZ(const TRect& rect, std::int32_t z);
  /// Where the projection doesn't keep rectangles, a polygon of 64 corners.
  void EllipseWithZ(const TRect& rect, std::int32_t z);
  void TriangleWithZ(TPoint a, TPoint b, TPoint c, std::int32_t z);
  void PolygonWithZ(std::span<const TPoint> points, std::int32_t z);
  void PolygonWithZ(std::initializer_list<TPoint> points, std::int32_t z) {
    PolygonWithZ(std::span(points.begin(), points.size()), z);
  }

 private:
  struct TState {
    TPenData Pen;
    TBrushData Brush;
    TFontData Font;
    TPoint Position;
    TColor BackColor = clWhite;
    TCanvasBackMode BackMode = cbmTransparent;
    TProjection Projection;
  };

  bool IsSkipped() const { return state_.Pen.Mode == pmXor && device_.IsPaper(); }
  TColor Back() const;
  TInk Ink() const;
  /// The current font in a plain colour.
  const TFontData& PlainFont();
  template <class TDraw>
  void DrawShape(const TRect& rect, const TDraw& draw) const;
  template <class TDraw>
  void DrawPoints(std::span<const TPoint> points, const TInk& ink, const TDraw& draw) const;
  void DrawArc(const TRect& rect, TArc arc, TArcShape shape);
  void DrawFrame(const TRect& rect, const TPenData& pen);
  void Elide(std::vector<std::string>& lines, const TRect& rect, std::int64_t lineHeight) const;
  void DrawLines(const TRect& rect, std::span<const std::string> lines, const TTextLayout& layout);

  ICanvasDevice& device_;
  TState state_;
  std::vector<TState> saved_;
  TFontData plainFont_;  ///< kept, so that its name needs memory once
};

/// Leaves the canvas as it was found, also when an exception passes, and when what was drawn in between has forgotten a
/// Restore.
class TCanvasStateSaver {
 public:
  explicit TCanvasStateSaver(TCanvas& canvas) : canvas_(canvas), count_(canvas.SaveCount()) { canvas_.Save(); }
  ~TCanvasStateSaver() {
    while (canvas_.SaveCount() > count_) canvas_.Restore();
  }
  TCanvasStateSaver(const TCanvasStateSaver&) = delete;
  TCanvasStateSaver& operator=(const TCanvasStateSaver&) = delete;

 private:
  TCanvas& canvas_;
  std::size_t count_;
};

}  // namespace vx
