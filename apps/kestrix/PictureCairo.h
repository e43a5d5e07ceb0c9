// PictureCairo.h: drawings by way of Cairo. There only in programs built with it.
#pragma once

#include "Picture.h"

namespace vx::kestrix {

/// Any kind but text. EUserError for a size that no picture can have.
std::string CairoPictureOf(TPictureKind kind, const TPictureLook& look, const std::vector<TPicturePainter>& pages);

}  // namespace vx::kestrix
