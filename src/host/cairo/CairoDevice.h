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
// Antialiasing. Slanted lines and round shapes are smoothed unless the options say otherwise. Without it each pixel has
// one colour of those drawn with: lines of one pixel, polygons, rectangles, ellipses and rounded rectangles then follow
// the arithmetic in PixelPainter.h. What is drawn with pmXor is drawn so in any case: each pixel of the shape changes
// once, and the same shape again leaves no trace. Text is always smoothed.
//
// Errors. A side outside of 1 to kMaxSide, a picture of more than kMaxPixels, or a file that can't be written raises
// EGraphicError, which names the size or the file. Nothing that is drawn raises but for memory; what Cairo could not
// draw raises EGraphicError when the image is asked for.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/cairo/CairoPainter.h"

namespace vx {

class TFastLines;
class TPixelPainter;

struct TCairoOptions {
  double Scale = 1.0;     ///< image pixels for each pixel that painters see
  bool Antialias = true;  ///< of shapes
};

class TCairoDevice : public TCairoPainter {
 public:
  static constexpr std::int32_t kMaxSide = TBitmap::kMaxSide;
  static constexpr std::int64_t kMaxPixels = TBitmap::kMaxPixels;  ///< half a gigabyte of memory

  /// `size` is what painters see; the limits hold for the image, `size` times `scale`, rounded.
  explicit TCairoDevice(TSize size, double scale = 1.0) : TCairoDevice(size, TCairoOptions{.Scale = scale}) {}
  TCairoDevice(TSize size, const TCairoOptions& options);
  ~TCairoDevice() override;

  // -- The image ----------------------------------------------------------------------------------------------------
  TSize ImageSize() const { return image_; }
  /// Colour of one pixel of the image; EGraphicError outside of it.
  TColor PixelAt(TPoint point) const;
  /// A copy of the image, opaque.
  TBitmap ToBitmap() const;
  /// The image as the bytes of a PNG file; the same drawing gives the same bytes.
  std::string EncodePng() const;
  /// Writes beside `path` first and then renames, so that a failure leaves an older file as it was.
  void SaveToFile(const std::string& path) const;

  // -- ICanvasDevice, where an image does it otherwise than a page ----------------------------------------------------
  void SaveClip() override;
  void RestoreClip() override;
  void IntersectClip(const TRegion& region) override;
  using TCairoPainter::IntersectClip;
  void FillRect(const TRect& rect, const TInk& ink) override;
  void Rectangle(const TRect& rect, const TInk& ink) override;
  void RoundRect(const TRect& rect, TSize corner, const TInk& ink) override;
  void Ellipse(const TRect& rect, const TInk& ink) override;
  void Arc(const TRect& rect, TArc arc, TArcShape shape, const TInk& ink) override;
  void Polygon(std::span<const TPoint> points, const TInk& ink) override;
  void Polyline(std::span<const TPoint> points, const TInk& ink) override;
  void Draw(const TBitmap& bitmap, const TRect& source, const TRect& target) override;

 private:
  struct TLayer;
  using TPaint = std::function<void(const TInk& ink)>;
  using TShapeOf = std::function<TRegion(const TRect& rect, std::int32_t inset)>;

  void Settle() const;
  std::span<const std::uint32_t> RowAt(std::int32_t y) const;
  /// Calls `paint` on a sheet of its own, and inverts what it has left there; `bounds` are image pixels.
  void Invert(const TRect& bounds, const TInk& ink, const TPaint& paint);
  void InvertBand(const TRect& band, const TPaint& paint, const TInk& ink);
  void MergeInverted(const TLayer& sheet);
  void WithPixels(const std::function<void(const TPixelPainter&)>& paint);
  void StrokeFast(std::span<const TPoint> points, const TInk& ink);
  void PaintRound(const TRect& rect, const TInk& ink, const TShapeOf& shapeOf);
  TRect BoundsOf(const TRect& rect) const;
  TRect BoundsOf(std::span<const TPoint> points, const TInk& ink) const;
  bool IsSmooth() const;
  bool IsPixelLine(std::span<const TPoint> points, const TInk& ink) const;

  TSize image_;
  std::unique_ptr<TLayer> layer_;  ///< what is drawn on at present
  std::vector<std::shared_ptr<const TRegion>> savedClips_;
  std::unique_ptr<TFastLines> fastLines_;  ///< with its memory from line to line
};

}  // namespace vx
