// CairoPainter.h: the primitives of a canvas as Cairo's paths, for images and pages alike.
//
// What all devices of this host have in common: TCairoDevice makes an image of it, TCairoPages a file of pages. Upright
// and level lines begin and end on whole pixels (PixelGrid.h), dashes are whole pixels long, corners of thin lines are
// mitred up to the right angle only, so that the tip of a line chart doesn't stick out. The angles of an arc are those
// of the circle that is stretched to the ellipse: 45 degrees point to the corner of its rectangle.
//
// A painter owns all it uses, fonts included; painters in different threads don't meet. Nothing that is drawn raises.
#pragma once

#include <memory>

#include "platform/canvas/CanvasDevice.h"

namespace vx {

class TPixelGrid;

class TCairoPainter : public ICanvasDevice {
 public:
  ~TCairoPainter() override;
  TCairoPainter(const TCairoPainter&) = delete;
  TCairoPainter& operator=(const TCairoPainter&) = delete;

  TSize Size() const override { return size_; }
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

 protected:
  struct TWork;  // CairoWork.h

  /// `scale` pixels of the surface for each that painters see.
  TCairoPainter(TSize size, double scale);
  TWork& Work() const { return *work_; }
  const TPixelGrid& Grid() const;

 private:
  bool IsSkipped(const TInk& ink) const { return IsPaper() && ink.Pen.Mode == pmXor; }
  enum class TCorners { kSharp, kUsual, kRound };  ///< usual ones are sharp if the pen is thin
  void Paint(const TInk& ink, TCorners corners);
  void FillPath(const TInk& ink);
  void FillWithTiles(const TInk& ink);
  void FillWithLines(const TInk& ink);
  void StrokePath(const TInk& ink, TCorners corners);
  void PathOfEllipse(const TRect& rect, double inset, TArc arc, TArcShape shape);
  void PathOfRoundRect(const TRect& rect, double inset, TSize corner);
  double ReachOf(const TInk& ink) const;
  bool IsAllOutline(const TRect& rect, const TInk& ink) const;

  TSize size_;
  std::unique_ptr<TWork> work_;
};

}  // namespace vx
