// Bitmap.h: a picture in memory, as plain pixels.
//
// A TBitmap is a value: copied with its pixels, compared pixel by pixel. It needs no host; a host draws on pictures,
// reads them from files and writes them (host/cairo), and a canvas puts them where a painter says.
//
//   TBitmap arrow({16, 16});                      // all pixels transparent
//   arrow.SetPixel({3, 5}, clRed);                // opaque
//   arrow.MakeTransparent(arrow.Pixel({0, 15}));  // the usual mask of a glyph: the colour at its lower left
//
// Errors. A side beyond kMaxSide, or more than kMaxPixels, raises EGraphicError, which names the size; a picture of 0
// by 0 is a picture without pixels. A pixel or row outside raises EGraphicError, too.
//
// Colours are kept as plain ones: a system colour is looked up when it is put in.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/canvas/Color.h"
#include "platform/canvas/Geometry.h"
#include "platform/runtime/Exceptions.h"

namespace vx {

/// A picture that can't be made, read or written.
class EGraphicError : public TNamedException<EGraphicError> {
 public:
  static constexpr const char* kName = "EGraphicError";
  using TNamedException::TNamedException;
};

class TBitmap {
 public:
  static constexpr std::int32_t kMaxSide = 32767;
  static constexpr std::int64_t kMaxPixels = std::int64_t{1} << 27;  ///< half a gigabyte of memory

  TBitmap() = default;
  explicit TBitmap(TSize size);

  TSize Size() const { return size_; }
  bool IsEmpty() const { return pixels_.empty(); }

  /// The colour of a pixel, whatever its opacity.
  TColor Pixel(TPoint point) const;
  /// 0 is transparent, 255 opaque.
  std::uint8_t Alpha(TPoint point) const;
  void SetPixel(TPoint point, TColor color, std::uint8_t alpha = 255);
  void Fill(TColor color, std::uint8_t alpha = 255);
  /// Pixels of exactly this colour become transparent, whatever their opacity; the colour stays.
  void MakeTransparent(TColor color);

  /// One row from left to right, each pixel 0xAARRGGBB, not multiplied by its opacity.
  std::span<std::uint32_t> Row(std::int32_t y);
  std::span<const std::uint32_t> Row(std::int32_t y) const;

  bool operator==(const TBitmap&) const = default;

 private:
  std::size_t Place(TPoint point) const;

  TSize size_;
  std::vector<std::uint32_t> pixels_;
};

/// Raises EGraphicError for a size outside of the limits, with "A picture of 0 by 5 pixels can't be made: …".
/// `smallest` is the least side that is let through.
void CheckPictureSize(TSize size, std::int32_t smallest);

}  // namespace vx
