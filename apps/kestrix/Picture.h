// Picture.h: one drawing as the bytes of a file, whatever kind of file.
//
//   const TPictureKind kind = KindOfPicture("orders.svg");
//   const std::string bytes = PictureOf(kind, {.Size = {1000, 560}}, {[&](TCanvas& canvas) { chart.Draw(canvas); }});
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/canvas/Canvas.h"

namespace vx::kestrix {

enum class TPictureKind {
  kText,  ///< the size, then the drawing commands, a line each
  kPng,
  kSvg,
  kPdf,  ///< a page for each painter
};

struct TPictureLook {
  TSize Size;                 ///< what a painter sees, in pixels
  double Scale = 1;           ///< image pixels for each of them, in a PNG
  double PixelsPerInch = 96;  ///< of a page: how large a pixel is on paper
  bool IsSmooth = true;       ///< antialiased, in a PNG
};

using TPicturePainter = std::function<void(TCanvas&)>;

/// By the end of the name; PNG for standard output. EUserError for other names, and for a kind that a program without
/// Cairo can't make.
TPictureKind KindOfPicture(const std::string& output);

/// Kinds but PDF have one picture: EUserError for several painters. EUserError, too, for a size that no picture can
/// have.
std::string PictureOf(TPictureKind kind, const TPictureLook& look, const std::vector<TPicturePainter>& pages);

/// "1000x560"; nothing if it isn't of this form, or a side is not from 1 to 32767.
std::optional<TSize> SizeOfText(std::string_view text);
/// The same for an option's value: EUserError, which names the option.
TSize NeedSize(const std::string& text);

}  // namespace vx::kestrix
