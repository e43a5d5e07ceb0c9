// Text.h: UTF-8 text: four compares, letter case, and code points.
//
// Text is UTF-8 in std::string. Nothing here demands that it is well-formed: each byte that belongs to no well-formed
// code point (overlong forms, surrogates and values past U+10FFFF included) counts as a letter of its own, after all
// others, and is kept by every change of case.
//
// The four compares are never exchanged. Each answers -1, 0 or 1.
//
//   CompareStr       the bytes as they are
//   CompareText      letters A to Z fold to a to z, all else by bytes
//   AnsiCompareText  every letter folds (simple folding of Unicode), then code points; what a person takes for equal
//   CompareUpper     the bytes of both texts after AnsiUpperCase
//
//   AnsiCompareText("ÉCOLE", "école");   // 0
//   CompareText("ÉCOLE", "école");       // -1: É is no letter to it, and its bytes come first
//   CompareText("_", "a");               // -1: 0x5F before 0x61
//   CompareUpper("_", "a");              // 1: 0x5F after 0x41
//
// Cost: O(length), without allocation except where said; runs of ASCII are taken eight bytes at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vx {

// -- Compares ---------------------------------------------------------------------------------------------------------

std::int32_t CompareStr(std::string_view a, std::string_view b);
std::int32_t CompareText(std::string_view a, std::string_view b);
std::int32_t AnsiCompareText(std::string_view a, std::string_view b);
/// Allocates unless both are ASCII.
std::int32_t CompareUpper(std::string_view a, std::string_view b);

/// AnsiCompareText finds no difference.
bool SameText(std::string_view a, std::string_view b);

// -- Keys for sorting and hashing -------------------------------------------------------------------------------------

/// A text whose order by bytes (memcmp, then length) is that of AnsiCompareText. Well-formed text folds to well-formed
/// text; a malformed byte becomes 0xFF and itself.
std::string FoldCase(std::string_view text);

/// The first eight bytes of FoldCase as a number, the first byte highest, zeros behind a shorter text. Where two
/// prefixes differ they are in the order of the texts; where they are equal nothing is known yet.
std::uint64_t FoldPrefix8(std::string_view text);

/// The eight bytes of FoldCase from `at` on, in the same way.
std::uint64_t FoldEight(std::string_view text, std::size_t at);

/// FoldPrefix8 of a text that ends at its first zero byte, or after `room` bytes if it has none.
std::uint64_t FoldSlotPrefix8(const char* text, std::size_t room);

// -- Letter case ------------------------------------------------------------------------------------------------------

/// One code point becomes one code point, so "ß" stays; malformed bytes stay.
std::string AnsiUpperCase(std::string_view text);
std::string AnsiLowerCase(std::string_view text);
/// One letter of ASCII; any other byte stays.
constexpr char UpperAscii(char byte) { return byte >= 'a' && byte <= 'z' ? static_cast<char>(byte - 32) : byte; }
/// Letters of ASCII only.
std::string UpperCase(std::string_view text);
std::string LowerCase(std::string_view text);

// -- Blanks -----------------------------------------------------------------------------------------------------------

/// Without the bytes 0 to 32 at both ends.
std::string Trim(std::string_view text);
/// The same, as a part of `text`.
std::string_view Trimmed(std::string_view text);

// -- Code points ------------------------------------------------------------------------------------------------------

/// A malformed byte b counts as the code point kMalformed + b.
inline constexpr char32_t kMalformed = 0x110000;

/// The code point at `at` (below the size), which moves behind it.
char32_t NextCodePoint(std::string_view text, std::size_t& at);
/// Appends the UTF-8 of `code`; of a malformed one its byte.
void AppendCodePoint(std::string& text, char32_t code);

/// No byte above 0x7F.
bool IsAscii(std::string_view text);
bool IsValidUtf8(std::string_view text);
/// Number of code points, each malformed byte counted as one.
std::size_t CodePointCount(std::string_view text);
/// The longest part from the beginning that has at most `maxBytes` bytes and splits no code point.
std::string_view CutAtCodePoint(std::string_view text, std::size_t maxBytes);

}  // namespace vx
