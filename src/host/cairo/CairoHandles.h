// CairoHandles.h: owners for the objects of C libraries.
#pragma once

#include <cairo.h>

#include <memory>
#include <string>

#include "platform/canvas/Bitmap.h"

namespace vx {

/// Frees a C object by its own function.
template <auto Release>
struct TRelease {
  template <class T>
  void operator()(T* object) const {
    Release(object);
  }
};
template <class T, auto Release>
using THandle = std::unique_ptr<T, TRelease<Release>>;

using TSurface = THandle<cairo_surface_t, cairo_surface_destroy>;
using TContext = THandle<cairo_t, cairo_destroy>;
using TPattern = THandle<cairo_pattern_t, cairo_pattern_destroy>;

/// Raises EGraphicError with Cairo's own reason.
inline void CheckCairo(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS)
    throw EGraphicError(std::string("A picture can't be made: ") + cairo_status_to_string(status));
}

inline void SetSource(cairo_t* context, TColor color) {
  cairo_set_source_rgb(context, RedOf(color) / 255.0, GreenOf(color) / 255.0, BlueOf(color) / 255.0);
}

}  // namespace vx
