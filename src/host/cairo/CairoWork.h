// CairoWork.h: what a painter on Cairo works with.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/cairo/CairoHandles.h"
#include "host/cairo/CairoPainter.h"
#include "host/cairo/CairoText.h"
#include "host/cairo/PixelGrid.h"

namespace vx {

/// The bitmaps of a page. Cairo holds each surface until the page ends, and knows again by itself what it has written
/// to the file: equal bitmaps share one surface.
class TSharedBitmaps {
 public:
  /// The surface given, or the equal one from before; for as long as this page lasts.
  cairo_surface_t* Shared(TSurface surface) {
    const std::string_view bytes = BytesOf(surface.get());
    const std::size_t hash = std::hash<std::string_view>()(bytes);
    for (auto [at, end] = surfaces_.equal_range(hash); at != end; ++at)
      if (WidthOf(at->second.get()) == WidthOf(surface.get()) && BytesOf(at->second.get()) == bytes)
        return at->second.get();
    size_ += bytes.size();
    return surfaces_.emplace(hash, std::move(surface))->second.get();
  }
  /// Small ones are kept, for they may come on each page.
  void EndPage() {
    if (size_ <= kMostKept) return;
    surfaces_.clear();
    size_ = 0;
  }

 private:
  static constexpr std::size_t kMostKept = std::size_t{1} << 26;  ///< bytes from page to page

  static int WidthOf(cairo_surface_t* surface) { return cairo_image_surface_get_width(surface); }
  static std::string_view BytesOf(cairo_surface_t* surface) {
    const auto rows = static_cast<std::size_t>(cairo_image_surface_get_height(surface));
    return {reinterpret_cast<const char*>(cairo_image_surface_get_data(surface)),
            rows * static_cast<std::size_t>(cairo_image_surface_get_stride(surface))};
  }

  std::unordered_multimap<std::size_t, TSurface> surfaces_;  ///< by the hash of their bytes
  std::size_t size_ = 0;
};

struct TCairoPainter::TWork {
  explicit TWork(double scale) : Grid(scale), Text(scale) {}

  /// Takes the surface over, and draws on it from now on.
  void Use(cairo_surface_t* surface) {
    Surface.reset(surface);
    Context.reset(cairo_create(surface));
    CheckCairo(cairo_status(Context.get()));
  }

  TPixelGrid Grid;
  TCairoText Text;
  TSharedBitmaps Bitmaps;
  TSurface Surface;
  TContext Context;
  /// For each saved clip: whether another one came after it. Cairo copies what it saves, so it is asked only then.
  std::vector<bool> SavedClips;
};

}  // namespace vx
