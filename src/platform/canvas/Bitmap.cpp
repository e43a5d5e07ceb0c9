#include "platform/canvas/Bitmap.h"

#include <algorithm>

#include "platform/canvas/SystemColors.h"

namespace vx {

namespace {

constexpr std::uint32_t kColorBits = 0xFFFFFF;

std::uint32_t PixelOf(TColor color, std::uint8_t alpha) {
  const TColor plain = ColorToRGB(color);
  return std::uint32_t{alpha} << 24 | std::uint32_t{RedOf(plain)} << 16 | std::uint32_t{GreenOf(plain)} << 8 |
         std::uint32_t{BlueOf(plain)};
}

TColor ColorOf(std::uint32_t pixel) {
  return RGBColor(static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
                  static_cast<std::uint8_t>(pixel));
}

std::string SizeText(TSize size) { return std::to_string(size.Width) + " by " + std::to_string(size.Height); }

}  // namespace

void CheckPictureSize(TSize size, std::int32_t smallest) {
  const auto fail = [size](const std::string& reason) {
    throw EGraphicError("A picture of " + SizeText(size) + " pixels can't be made: " + reason);
  };
  for (const std::int32_t side : {size.Width, size.Height})
    if (side < smallest || side > TBitmap::kMaxSide)
      fail("each side must be from " + std::to_string(smallest) + " to " + std::to_string(TBitmap::kMaxSide));
  if (std::int64_t{size.Width} * size.Height > TBitmap::kMaxPixels)
    fail("it would have more than " + std::to_string(TBitmap::kMaxPixels) + " pixels");
}

TBitmap::TBitmap(TSize size) : size_(size) {
  CheckPictureSize(size, 0);
  pixels_.resize(static_cast<std::size_t>(size.Width) * static_cast<std::size_t>(size.Height));
}

std::size_t TBitmap::Place(TPoint point) const {
  if (!TRect::At({}, size_).Contains(point))
    throw EGraphicError("Pixel " + std::to_string(point.X) + ", " + std::to_string(point.Y) +
                        " lies outside of a picture of " + SizeText(size_) + " pixels");
  return static_cast<std::size_t>(point.Y) * static_cast<std::size_t>(size_.Width) + static_cast<std::size_t>(point.X);
}

TColor TBitmap::Pixel(TPoint point) const { return ColorOf(pixels_[Place(point)]); }

std::uint8_t TBitmap::Alpha(TPoint point) const { return static_cast<std::uint8_t>(pixels_[Place(point)] >> 24); }

void TBitmap::SetPixel(TPoint point, TColor color, std::uint8_t alpha) {
  pixels_[Place(point)] = PixelOf(color, alpha);
}

void TBitmap::Fill(TColor color, std::uint8_t alpha) { std::ranges::fill(pixels_, PixelOf(color, alpha)); }

void TBitmap::MakeTransparent(TColor color) {
  const std::uint32_t wanted = PixelOf(color, 0);
  for (std::uint32_t& pixel : pixels_)
    if ((pixel & kColorBits) == wanted) pixel = wanted;
}

std::span<std::uint32_t> TBitmap::Row(std::int32_t y) {
  if (size_.Width == 0) return {};
  return std::span(pixels_).subspan(Place({0, y}), static_cast<std::size_t>(size_.Width));
}

std::span<const std::uint32_t> TBitmap::Row(std::int32_t y) const {
  if (size_.Width == 0) return {};
  return std::span(pixels_).subspan(Place({0, y}), static_cast<std::size_t>(size_.Width));
}

}  // namespace vx
