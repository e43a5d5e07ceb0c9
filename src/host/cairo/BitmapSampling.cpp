#include "host/cairo/BitmapSampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace vx {

namespace {

struct TPart {
  std::int32_t Pixel;
  double Share;
};

/// What each pixel of one side of the target takes of the bitmap; one after the other.
struct TAxis {
  std::vector<TPart> Parts;
  std::vector<std::size_t> Ends;  ///< of the parts of each target pixel

  std::span<const TPart> Of(std::size_t pixel) const {
    const std::size_t begin = pixel == 0 ? 0 : Ends[pixel - 1];
    return std::span(Parts).subspan(begin, Ends[pixel] - begin);
  }
};

/// From `Source` to `Target`, each a first pixel and a length.
struct TStretch {
  double SourceFirst, SourceLength, TargetFirst, TargetLength;
  std::int32_t Side;  ///< of the bitmap

  double SourceAt(double target) const { return SourceFirst + (target - TargetFirst) * SourceLength / TargetLength; }
};

void AddNearest(TAxis& axis, const TStretch& stretch, std::int32_t pixel) {
  const double place = std::floor(stretch.SourceAt(pixel + 0.5));
  if (place >= 0 && place < stretch.Side) axis.Parts.push_back({static_cast<std::int32_t>(place), 1});
}

void AddAverage(TAxis& axis, const TStretch& stretch, std::int32_t pixel) {
  const double from = std::clamp(stretch.SourceAt(pixel), 0.0, 1.0 * stretch.Side);
  const double to = std::clamp(stretch.SourceAt(pixel + 1.0), 0.0, 1.0 * stretch.Side);
  const double whole = stretch.SourceLength / stretch.TargetLength;
  for (double at = std::floor(from); at < to; ++at)
    if (const double share = std::min(at + 1, to) - std::max(at, from); share > 0)
      axis.Parts.push_back({static_cast<std::int32_t>(at), share / whole});
}

TAxis AxisOf(const TStretch& stretch, std::int32_t first, std::int32_t end) {
  TAxis axis;
  for (std::int32_t pixel = first; pixel < end; ++pixel) {
    if (stretch.SourceLength <= stretch.TargetLength)
      AddNearest(axis, stretch, pixel);
    else
      AddAverage(axis, stretch, pixel);
    axis.Ends.push_back(axis.Parts.size());
  }
  return axis;
}

/// Sums of red, green and blue, multiplied by their opacity, and of the opacity.
using TSums = std::array<double, 4>;

void Add(TSums& sums, std::uint32_t pixel, double share) {
  const double alpha = share * (pixel >> 24);
  sums[0] += alpha * (pixel >> 16 & 0xFF);
  sums[1] += alpha * (pixel >> 8 & 0xFF);
  sums[2] += alpha * (pixel & 0xFF);
  sums[3] += alpha;
}

/// As Cairo has pixels: colours multiplied by the opacity.
std::uint32_t PremultipliedOf(const TSums& sums) {
  const auto byte = [](double value) { return static_cast<std::uint32_t>(std::min(value, 255.0) + 0.5); };
  return byte(sums[3]) << 24 | byte(sums[0] / 255) << 16 | byte(sums[1] / 255) << 8 | byte(sums[2] / 255);
}

std::uint32_t Premultiplied(std::uint32_t pixel) {
  if (pixel >> 24 == 0xFF) return pixel;
  if (pixel >> 24 == 0) return 0;
  TSums sums{};
  Add(sums, pixel, 1);
  return PremultipliedOf(sums);
}

std::uint32_t Sampled(const TBitmap& bitmap, std::span<const TPart> across, std::span<const TPart> down) {
  if (across.size() == 1 && down.size() == 1 && across[0].Share == 1 && down[0].Share == 1)
    return Premultiplied(bitmap.Row(down[0].Pixel)[static_cast<std::size_t>(across[0].Pixel)]);
  TSums sums{};
  for (const TPart& y : down) {
    const auto row = bitmap.Row(y.Pixel);
    for (const TPart& x : across) Add(sums, row[static_cast<std::size_t>(x.Pixel)], x.Share * y.Share);
  }
  return PremultipliedOf(sums);
}

/// Its rows are made by `fill`, from the top.
template <class Fill>
TSurface FilledSurface(TSize size, Fill fill) {
  TSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.Width, size.Height));
  CheckCairo(cairo_surface_status(surface.get()));
  unsigned char* const pixels = cairo_image_surface_get_data(surface.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface.get());
  for (std::int32_t y = 0; y < size.Height; ++y) fill(y, reinterpret_cast<std::uint32_t*>(pixels + y * stride));
  cairo_surface_mark_dirty(surface.get());
  return surface;
}

}  // namespace

TSurface SurfaceOf(const TBitmap& bitmap, const TRect& source) {
  const auto left = static_cast<std::size_t>(source.Left);
  const auto width = static_cast<std::size_t>(source.Width());
  return FilledSurface({source.Width(), source.Height()}, [&](std::int32_t y, std::uint32_t* row) {
    std::ranges::transform(bitmap.Row(source.Top + y).subspan(left, width), row, Premultiplied);
  });
}

TSurface StretchedSurface(const TBitmap& bitmap, const TRect& source, const TRect& target, const TRect& shown) {
  const auto length = [](std::int32_t from, std::int32_t to) { return double{1} * to - from; };
  const TAxis across = AxisOf({1.0 * source.Left, length(source.Left, source.Right), 1.0 * target.Left,
                               length(target.Left, target.Right), bitmap.Size().Width},
                              shown.Left, shown.Right);
  const TAxis down = AxisOf({1.0 * source.Top, length(source.Top, source.Bottom), 1.0 * target.Top,
                             length(target.Top, target.Bottom), bitmap.Size().Height},
                            shown.Top, shown.Bottom);
  return FilledSurface({shown.Width(), shown.Height()}, [&](std::int32_t y, std::uint32_t* row) {
    const auto parts = down.Of(static_cast<std::size_t>(y));
    for (std::size_t x = 0; x < across.Ends.size(); ++x) row[x] = Sampled(bitmap, across.Of(x), parts);
  });
}

}  // namespace vx
