// PictureFile.h: the bytes of a picture reach their file whole or not at all.
#pragma once

#include <string>
#include <string_view>

namespace vx {

/// Writes beside `path` first and then renames, so that a failure leaves an older file as it was. What is no plain file
/// (a pipe, /dev/null) is written to. Raises EGraphicError, "Cannot write picture.png: …", with the system's reason.
void WritePictureFile(const std::string& path, std::string_view bytes);

/// Raises EGraphicError, "Cannot read picture.png: …", also for a file of more than `limit` bytes, and as soon as the
/// first bytes aren't those of `signature`, with `unlike` as the reason: an endless device is not read to its end.
std::string ReadPictureFile(const std::string& path, std::string_view signature, std::string_view unlike,
                            std::size_t limit);

}  // namespace vx
