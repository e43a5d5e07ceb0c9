// Encoding.h: the bytes of a file as UTF-8 text.
//
// Files come as UTF-8, with or without a byte order mark; as UTF-16 with a mark, which spreadsheets write; and in the
// one-byte code page of Western systems. What is meant is decided for the file as a whole:
//
//   a mark of UTF-16              converted; a lone surrogate becomes U+FFFD
//   well-formed UTF-8             as it is, without its mark
//   no letter of UTF-8 in it,     each byte beyond ASCII is read in the Western code page (Latin-1 with the
//   but bytes beyond ASCII        quotation marks, dashes and the euro of Windows)
//   both                          the broken bytes become U+FFFD each, the rest stays
//
// The last two are told once, with the first line that has such a byte: text stays readable, and nobody is left in
// doubt.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vx::kestrix {

struct TDecodedText {
  std::string text;        ///< well-formed UTF-8 without a mark
  std::size_t line = 0;    ///< first line that was not as it should be; 0 if all was
  std::string remark;      ///< what was done about it, for the user; empty if nothing was
  bool isAsItWas = false;  ///< with the mark of UTF-8 before it, if there was one, `text` is the file's bytes
  bool hadMark = false;    ///< of UTF-8
};

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// O(size). Well-formed UTF-8 isn't copied.
TDecodedText DecodeText(std::string bytes);

}  // namespace vx::kestrix
