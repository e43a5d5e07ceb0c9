// PngFile.h: pictures to and from PNG.
//
//   TBitmap logo = LoadPngFile("logo.png");
//   SavePngFile("copy.png", logo);              // LoadPngFile gives the same picture again, opacity included
//
// Every kind of PNG is read: grey, with a palette, 1 to 16 bits, interlaced, with an opacity or one transparent colour.
// Of 16 bits the upper eight are kept, rounded; gammas and colour profiles are passed over. Written are eight bits of
// red, green and blue, and of opacity where a pixel isn't opaque. The same picture gives the same bytes.
//
// Errors. EGraphicError, which names the file and what is wrong with it: "Cannot read logo.png: it is not a PNG". The
// size that a file tells of is checked before anything is decoded, both against the limits of TBitmap and against the
// length of the file: a file that is far too short for its size costs no memory.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "platform/canvas/Bitmap.h"

namespace vx {

/// The picture in the bytes of a PNG file. `name` stands for it in errors.
TBitmap LoadPng(std::string_view bytes, std::string_view name = "the picture");
TBitmap LoadPngFile(const std::string& path);

/// The bytes of a PNG file; EGraphicError for a picture without pixels.
std::string EncodePng(const TBitmap& bitmap);
/// Writes the file whole or not at all.
void SavePngFile(const std::string& path, const TBitmap& bitmap);

/// Answers one row of a picture, as TBitmap::Row does.
using TRowSource = std::function<std::span<const std::uint32_t>(std::int32_t y)>;
/// A picture of rows that stand elsewhere. Without `hasAlpha` the top byte of a pixel may be anything.
std::string EncodePng(TSize size, bool hasAlpha, const TRowSource& rowAt);

}  // namespace vx
