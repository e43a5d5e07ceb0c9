// CairoDevice.h: draws on an image in memory, with Cairo and Pango, and writes it as PNG.
//
//   TCairoDevice device({800, 450});          // white at first
//   TCanvas canvas(device);
//   canvas.TextOut({10, 10}, "Orders");
//   device.SaveToFile("orders.png");          // whole or not at all
//
// Scale. A device of 800 by 450 with scale 2 makes an image of 1600 by 900 for a painter that still sees 800 by 450:
// twice the detail, the same layout. Lines, at any scale, begin and end on whole image pixels, so that upright and
// level ones are crisp; a line is never thinner than one of them.
//
// Text is shaped by Pango, with whatever font stands in for a missing one, and measured as it is drawn: unhinted in
// width, so that a text is equally wide, but for a pixel of rounding, at each scale.
//
// Errors. A side outside of 1 to kMaxSide, a picture of more than kMaxPixels, or a file that can't be written raises
// EGraphicError, which names the size or the file. A device owns all it uses, fonts included; devices in different
// threads don't meet.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/canvas/CanvasDevice.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

/// A picture that can't be made, or can't be written.
class EGraphicError : public TNamedException<EGraphicError> {
 public:
  static constexpr const char* kName = "EGraphicError";
  using TNamedException::TNamedException;
};

class TCairoDevice : public ICanvasDevice {
 public:
  static constexpr std::int32_t kMaxSide = 32767;
  static constexpr std::int64_t kMaxPixels = std::int64_t{1} << 27;  ///< half a gigabyte of memory

  /// `size` is what painters see; the limits hold for the image, `size` times `scale`, rounded.
  explicit TCairoDevice(TSize size, double scale = 1.0);
  ~TCairoDevice() override;

  // -- The image ----------------------------------------------------------------------------------------------------
  TSize ImageSize() const { return image_; }
  /// Colour of one pixel of the image; EGraphicError outside of it.
  TColor PixelAt(TPoint point) const;
  /// The image as the bytes of a PNG file.
  std::string EncodePng() const;
  /// Writes beside `path` first and then renames, so that a failure leaves an older file as it was.
  void SaveToFile(const std::string& path) const;

  // -- ICanvasDevice -------------------------------------------------------------------------------------------------
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
  struct THandles;

  double Edge(std::int32_t pixel) const;
  double Centre(std::int32_t pixel, double width) const;
  double WidthOf(const TPen& pen) const;
  void PathOf(const TRect& rect, double inset);
  void PathOf(std::span<const TPoint> points, double width);
  void Fill(const TBrush& brush);
  enum class TCorners { kSharp, kRound };
  void Stroke(const TPen& pen, TCorners corners);
  void SetText(std::string_view text, const TFont& font) const;

  TSize size_;
  TSize image_;
  double scale_;
  std::unique_ptr<THandles> handles_;
};

}  // namespace vx
