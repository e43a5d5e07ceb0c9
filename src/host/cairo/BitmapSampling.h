// BitmapSampling.h: parts of bitmaps for Cairo, at their own size or another one.
#pragma once

#include "host/cairo/CairoHandles.h"

namespace vx {

/// The part `source`, which lies within the bitmap, pixel by pixel.
TSurface SurfaceOf(const TBitmap& bitmap, const TRect& source);

/// The part `shown` of what the part `source` of the bitmap becomes when it is stretched to `target`. Each pixel is
/// the average of what it covers of the bitmap, by area, where the bitmap is reduced, and the pixel under its middle
/// where it is enlarged, for each direction by itself. What `source` has outside of the bitmap is transparent.
/// `shown` lies within `target` and is a picture's size at most.
TSurface StretchedSurface(const TBitmap& bitmap, const TRect& source, const TRect& target, const TRect& shown);

}  // namespace vx
