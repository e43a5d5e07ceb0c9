// PixelKit.h: pictures as text, and shapes by the plainest arithmetic there is.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "host/cairo/CairoDevice.h"

namespace vx::test {

/// The pixels as rows of letters: "." white, "#" black, "?" anything between.
inline std::string Pixels(const TCairoDevice& device) {
  std::string rows = "\n";
  for (std::int32_t y = 0; y < device.ImageSize().Height; ++y, rows += '\n')
    for (std::int32_t x = 0; x < device.ImageSize().Width; ++x) {
      const TColor color = device.PixelAt({x, y});
      rows += color == clWhite ? '.' : color == clBlack ? '#' : '?';
    }
  return rows;
}

/// As Pixels has it: black where `isInked` says so.
inline std::string PixelsOf(TSize size, const std::function<bool(TPoint)>& isInked) {
  std::string rows = "\n";
  for (std::int32_t y = 0; y < size.Height; ++y, rows += '\n')
    for (std::int32_t x = 0; x < size.Width; ++x) rows += isInked({x, y}) ? '#' : '.';
  return rows;
}

/// Within the ends, at most half a pixel from the line, and not on the upper (or left) one of two that are as near.
inline bool IsOnLine(TPoint p, TPoint a, TPoint b) {
  if (std::abs(b.X - a.X) < std::abs(b.Y - a.Y)) return IsOnLine({p.Y, p.X}, {a.Y, a.X}, {b.Y, b.X});
  if (a.X > b.X) std::swap(a, b);
  const std::int32_t length = b.X - a.X;
  const std::int32_t off = 2 * ((p.Y - a.Y) * length - (p.X - a.X) * (b.Y - a.Y));
  return p.X >= a.X && p.X <= b.X && off > -length - (length == 0) && off <= length && (length > 0 || p == a);
}

/// How often the polygon goes round the point; one on a side is within at the left only.
inline std::int32_t Winding(TPoint p, std::span<const TPoint> polygon) {
  std::int32_t winding = 0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const TPoint a = polygon[i];
    const TPoint b = polygon[(i + 1) % polygon.size()];
    const std::int32_t side = (b.X - a.X) * (p.Y - a.Y) - (p.X - a.X) * (b.Y - a.Y);
    if (a.Y <= p.Y && b.Y > p.Y && side <= 0) ++winding;
    if (b.Y <= p.Y && a.Y > p.Y && side >= 0) --winding;
  }
  return winding;
}

class TRandom {
 public:
  explicit TRandom(std::uint32_t seed) : engine_(seed) {}
  std::int32_t Below(std::int32_t end) { return static_cast<std::int32_t>(engine_() % static_cast<unsigned>(end)); }
  std::int32_t Between(std::int32_t first, std::int32_t last) { return first + Below(last - first + 1); }
  TPoint Point(TSize size) { return {Between(-4, size.Width + 3), Between(-4, size.Height + 3)}; }
  std::vector<TPoint> Points(std::int32_t count, TSize size) {
    std::vector<TPoint> points;
    while (count-- > 0) points.push_back(Point(size));
    return points;
  }
  TRect Rect(TSize size) {
    const TPoint corner = Point(size);
    return TRect::At(corner, {Between(0, size.Width), Between(0, size.Height)});
  }
  TRegion Region(TSize size) {
    return TRegion::OfEllipse(Rect(size), TRect::At({}, size)).United(TRegion::OfRect(Rect(size)));
  }

 private:
  std::mt19937 engine_;
};

}  // namespace vx::test
