// Canvas.h: the drawing surface that painters see.
//
// A TCanvas holds a pen, a brush, a font, a position and a clip, and hands each primitive with its state to a device,
// which it doesn't own and which must outlive it. It has no virtual members and no globals; two canvases never disturb
// each other. One primitive exists once, and a painter never asks which device it is on.
//
//   TRecordingDevice device({200, 100});
//   TCanvas canvas(device);
//   const TCanvasStateSaver saved(canvas);   // pen, brush, font, position and clip come back at the end of the scope
//   canvas.SetBrushColor(clWhite);
//   canvas.Ellipse({10, 46, 18, 54});
//
// How pixels are covered is told in CanvasDevice.h.
#pragma once

#include <initializer_list>
#include <span>
#include <string_view>
#include <vector>

#include "platform/canvas/CanvasDevice.h"

namespace vx {

class TCanvas {
 public:
  explicit TCanvas(ICanvasDevice& device) : device_(device) {}
  TCanvas(const TCanvas&) = delete;
  TCanvas& operator=(const TCanvas&) = delete;

  TSize Size() const { return device_.Size(); }
  /// For layout that is computed before anything is drawn.
  const ITextMeter& TextMeter() const { return device_; }

  // -- State --------------------------------------------------------------------------------------------------------
  const TPen& Pen() const { return state_.Pen; }
  void SetPen(const TPen& pen) { state_.Pen = pen; }
  void SetPenColor(TColor color) { state_.Pen.Color = color; }
  void SetPenWidth(std::int32_t width) { state_.Pen.Width = width; }
  void SetPenStyle(TPenStyle style) { state_.Pen.Style = style; }

  const TBrush& Brush() const { return state_.Brush; }
  void SetBrush(const TBrush& brush) { state_.Brush = brush; }
  /// A clear brush that is given a colour becomes solid.
  void SetBrushColor(TColor color);
  void SetBrushStyle(TBrushStyle style) { state_.Brush.Style = style; }

  const TFont& Font() const { return state_.Font; }
  void SetFont(const TFont& font) { state_.Font = font; }
  void SetFontColor(TColor color) { state_.Font.Color = color; }
  void SetFontHeight(std::int32_t height) { state_.Font.Height = height; }
  void SetFontStyle(TFontStyles style) { state_.Font.Style = style; }

  /// Keeps all of the state until the matching Restore; EInvalidOperation for a Restore without one.
  /// Prefer TCanvasStateSaver.
  void Save();
  void Restore();
  /// Narrows the clip; only Restore widens it.
  void IntersectClip(const TRect& rect) { device_.IntersectClip(rect); }

  // -- Lines --------------------------------------------------------------------------------------------------------
  TPoint Position() const { return state_.Position; }
  void MoveTo(TPoint point) { state_.Position = point; }
  /// From the position to `point`, both included; `point` is the new position.
  void LineTo(TPoint point);
  /// Leaves the position alone.
  void Line(TPoint from, TPoint to);
  void Polyline(std::span<const TPoint> points);

  // -- Closed shapes: outline of the pen, filled by the brush -------------------------------------------------------
  void Rectangle(const TRect& rect) { device_.Rectangle(rect, state_.Pen, state_.Brush); }
  void Ellipse(const TRect& rect) { device_.Ellipse(rect, state_.Pen, state_.Brush); }
  void Polygon(std::span<const TPoint> points) { device_.Polygon(points, state_.Pen, state_.Brush); }
  void Polygon(std::initializer_list<TPoint> points) { Polygon(std::span(points.begin(), points.size())); }
  /// Without an outline.
  void FillRect(const TRect& rect) { device_.FillRect(rect, state_.Brush); }

  // -- Text ---------------------------------------------------------------------------------------------------------
  void TextOut(TPoint topLeft, std::string_view text) { device_.TextOut(topLeft, text, state_.Font); }
  TSize TextExtent(std::string_view text) const { return device_.MeasureText(text, state_.Font); }
  std::int32_t TextWidth(std::string_view text) const { return TextExtent(text).Width; }
  std::int32_t TextHeight(std::string_view text) const { return TextExtent(text).Height; }

 private:
  struct TState {
    TPen Pen;
    TBrush Brush;
    TFont Font;
    TPoint Position;
  };

  ICanvasDevice& device_;
  TState state_;
  std::vector<TState> saved_;
};

/// Leaves the canvas as it was found, also when an exception passes.
class TCanvasStateSaver {
 public:
  explicit TCanvasStateSaver(TCanvas& canvas) : canvas_(canvas) { canvas_.Save(); }
  ~TCanvasStateSaver() { canvas_.Restore(); }
  TCanvasStateSaver(const TCanvasStateSaver&) = delete;
  TCanvasStateSaver& operator=(const TCanvasStateSaver&) = delete;

 private:
  TCanvas& canvas_;
};

}  // namespace vx
