#include "platform/runtime/Text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "platform/runtime/CaseFoldTable.h"

namespace vx {
namespace {

constexpr std::uint64_t kOnes = 0x0101010101010101u;
constexpr std::uint64_t kHighBits = 0x8080808080808080u;

std::uint8_t ByteAt(std::string_view text, std::size_t at) { return static_cast<std::uint8_t>(text[at]); }

std::int32_t Sign(std::int32_t value) { return (value > 0) - (value < 0); }

template <class T>
std::int32_t Order(T a, T b) {
  return (a > b) - (a < b);
}

constexpr std::uint8_t AsciiLower(std::uint8_t byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<std::uint8_t>(byte + 32) : byte;
}
constexpr std::uint8_t AsciiUpper(std::uint8_t byte) {
  return static_cast<std::uint8_t>(UpperAscii(static_cast<char>(byte)));
}

// -- Eight bytes at a time --------------------------------------------------------------------------------------------

std::uint64_t LoadEight(const char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

/// The bytes of `word`, which are all ASCII, with A to Z lowered. No carry leaves a byte: 0x7F + 0x3F is 0xBE.
std::uint64_t LowerEight(std::uint64_t word) {
  const std::uint64_t fromA = word + kOnes * (0x80 - 'A');
  const std::uint64_t pastZ = word + kOnes * (0x80 - 'Z' - 1);
  return word | ((fromA & ~pastZ & kHighBits) >> 2);
}

/// The first byte in memory becomes the highest, whatever the machine's order.
std::uint64_t FirstByteHighest(std::uint64_t word) {
  std::array<std::uint8_t, 8> bytes;
  std::memcpy(bytes.data(), &word, sizeof word);
  std::uint64_t answer = 0;
  for (const std::uint8_t byte : bytes) answer = answer << 8 | byte;
  return answer;
}

/// Up to eight bytes from `at` (below the size) on, the first highest, zeros behind the text's end.
std::uint64_t EightAt(std::string_view text, std::size_t at) {
  std::uint64_t word = 0;
  if (text.size() - at >= 8)
    word = LoadEight(text.data() + at);
  else
    std::memcpy(&word, text.data() + at, text.size() - at);
  return FirstByteHighest(word);
}

/// `byte` as the one at `at` (0 to 7) of eight.
std::uint64_t PlacedByte(char byte, std::size_t at) {
  return std::uint64_t{static_cast<std::uint8_t>(byte)} << (56 - 8 * at);
}

/// Walks over the common folded beginning as long as both sides are ASCII, whole words only. Answers a difference or 0.
std::int32_t CompareAsciiWords(std::string_view a, std::string_view b, std::size_t& at) {
  const std::size_t common = std::min(a.size(), b.size());
  for (; at + 8 <= common; at += 8) {
    const std::uint64_t left = LoadEight(a.data() + at);
    const std::uint64_t right = LoadEight(b.data() + at);
    if ((left | right) & kHighBits) return 0;
    if (left == right) continue;
    const std::uint64_t leftFold = LowerEight(left);
    const std::uint64_t rightFold = LowerEight(right);
    if (leftFold != rightFold) return Order(FirstByteHighest(leftFold), FirstByteHighest(rightFold));
  }
  return 0;
}

// -- Mapping of single code points ------------------------------------------------------------------------------------

char32_t MapByRanges(std::span<const TCaseRange> ranges, char32_t code) {
  const auto after = std::upper_bound(ranges.begin(), ranges.end(), code,
                                      [](char32_t wanted, const TCaseRange& range) { return wanted < range.First; });
  if (after == ranges.begin()) return code;
  const TCaseRange& range = *(after - 1);
  if (code > range.Last || (code - range.First) % range.Step != 0) return code;
  return static_cast<char32_t>(static_cast<std::int32_t>(code) + range.Delta);
}

/// The ranges, with the letters of two bytes or less, by far the most common, unrolled.
class TCaseMap {
 public:
  explicit TCaseMap(std::span<const TCaseRange> ranges) : ranges_(ranges) {
    for (char32_t code = 0; code < low_.size(); ++code) low_[code] = MapByRanges(ranges, code);
  }
  char32_t operator()(char32_t code) const { return code < low_.size() ? low_[code] : MapByRanges(ranges_, code); }

 private:
  std::array<char32_t, 0x800> low_{};
  std::span<const TCaseRange> ranges_;
};

const TCaseMap& FoldMap() {
  static const TCaseMap map(FoldRanges());
  return map;
}
const TCaseMap& UpperMap() {
  static const TCaseMap map(UpperRanges());
  return map;
}
const TCaseMap& LowerMap() {
  static const TCaseMap map(LowerRanges());
  return map;
}

// -- UTF-8 ------------------------------------------------------------------------------------------------------------

/// What a lead byte promises: its length, the bounds of the second byte (which rule out overlong forms, surrogates and
/// too great values), and the bits it carries. Length 0: no lead byte.
struct TLead {
  std::uint8_t Length, SecondFrom, SecondTo, Bits;
};

TLead LeadOf(std::uint8_t byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {2, 0x80, 0xBF, static_cast<std::uint8_t>(byte & 0x1F)};
  if (byte >= 0xE0 && byte <= 0xEF) {
    const std::uint8_t from = byte == 0xE0 ? 0xA0 : 0x80;
    const std::uint8_t to = byte == 0xED ? 0x9F : 0xBF;
    return {3, from, to, static_cast<std::uint8_t>(byte & 0x0F)};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    const std::uint8_t from = byte == 0xF0 ? 0x90 : 0x80;
    const std::uint8_t to = byte == 0xF4 ? 0x8F : 0xBF;
    return {4, from, to, static_cast<std::uint8_t>(byte & 0x07)};
  }
  return {0, 0, 0, 0};
}

bool IsTail(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// Writes the UTF-8 of `code`, of a malformed one its byte. Answers the length, at most 4.
std::size_t Encode(char32_t code, char* out) {
  const auto put = [out](std::size_t at, char32_t byte) {
    out[at] = static_cast<char>(static_cast<std::uint8_t>(byte));
  };
  const auto tail = [code](int shift) { return 0x80 | (code >> shift & 0x3F); };
  if (code >= kMalformed) return put(0, code - kMalformed), 1;
  if (code < 0x80) return put(0, code), 1;
  if (code < 0x800) return put(0, 0xC0 | code >> 6), put(1, tail(0)), 2;
  if (code < 0x10000) return put(0, 0xE0 | code >> 12), put(1, tail(6)), put(2, tail(0)), 3;
  return put(0, 0xF0 | code >> 18), put(1, tail(12)), put(2, tail(6)), put(3, tail(0)), 4;
}

/// As Encode, but in the form in which malformed bytes sort last.
std::size_t EncodeFolded(char32_t code, char* out) {
  if (code < kMalformed) return Encode(code, out);
  *out = '\xFF';
  return 1 + Encode(code, out + 1);
}

char32_t NextFolded(std::string_view text, std::size_t& at) {
  const std::uint8_t byte = ByteAt(text, at);
  if (byte >= 0x80) return FoldMap()(NextCodePoint(text, at));
  ++at;
  return AsciiLower(byte);
}

std::string MapText(std::string_view text, const TCaseMap& map) {
  std::string answer;
  answer.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendCodePoint(answer, map(NextCodePoint(text, at)));
  return answer;
}

template <std::uint8_t (*Map)(std::uint8_t)>
std::string MapAscii(std::string_view text) {
  std::string answer(text);
  for (char& letter : answer) letter = static_cast<char>(Map(static_cast<std::uint8_t>(letter)));
  return answer;
}

/// Byte by byte after `Map`, from `at` on.
template <std::uint8_t (*Map)(std::uint8_t)>
std::int32_t CompareMapped(std::string_view a, std::string_view b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t at = 0; at < common; ++at) {
    const std::int32_t order = Order(Map(ByteAt(a, at)), Map(ByteAt(b, at)));
    if (order != 0) return order;
  }
  return Order(a.size(), b.size());
}

}  // namespace

// -- Compares ---------------------------------------------------------------------------------------------------------

std::int32_t CompareStr(std::string_view a, std::string_view b) { return Sign(a.compare(b)); }

std::int32_t CompareText(std::string_view a, std::string_view b) { return CompareMapped<AsciiLower>(a, b); }

std::int32_t AnsiCompareText(std::string_view a, std::string_view b) {
  std::size_t left = 0;
  if (const std::int32_t order = CompareAsciiWords(a, b, left)) return order;
  std::size_t right = left;
  while (left < a.size() && right < b.size()) {
    const std::int32_t order = Order(NextFolded(a, left), NextFolded(b, right));
    if (order != 0) return order;
  }
  return Order(left < a.size(), right < b.size());
}

std::int32_t CompareUpper(std::string_view a, std::string_view b) {
  if (IsAscii(a) && IsAscii(b)) return CompareMapped<AsciiUpper>(a, b);
  return CompareStr(AnsiUpperCase(a), AnsiUpperCase(b));
}

bool SameText(std::string_view a, std::string_view b) { return AnsiCompareText(a, b) == 0; }

// -- Keys -------------------------------------------------------------------------------------------------------------

std::string FoldCase(std::string_view text) {
  if (IsAscii(text)) return LowerCase(text);
  std::string answer;
  answer.reserve(text.size() + 8);
  std::array<char, 8> bytes;
  for (std::size_t at = 0; at < text.size();)
    answer.append(bytes.data(), EncodeFolded(NextFolded(text, at), bytes.data()));
  return answer;
}

std::uint64_t FoldPrefix8(std::string_view text) { return FoldEight(text, 0); }

std::uint64_t FoldEight(std::string_view text, std::size_t at) {
  if (IsAscii(text.substr(0, at + 8))) return at < text.size() ? LowerEight(EightAt(text, at)) : 0;
  std::uint64_t word = 0;
  std::array<char, 8> bytes;
  std::size_t size = 0;
  for (std::size_t next = 0; next < text.size() && size < at + 8;) {
    const std::size_t count = EncodeFolded(NextFolded(text, next), bytes.data());
    for (std::size_t i = 0; i < count; ++i, ++size)
      if (size >= at && size < at + 8) word |= PlacedByte(bytes[i], size - at);
  }
  return word;
}

std::uint64_t FoldSlotPrefix8(const char* text, std::size_t room) {
  if (room < 8) return FoldPrefix8({text, strnlen(text, room)});
  std::uint64_t word = FirstByteHighest(LoadEight(text));
  const std::uint64_t notZero = ((word & ~kHighBits) + ~kHighBits) | word;  // the high bit of each byte that isn't 0
  if (const std::uint64_t zeros = ~notZero & kHighBits) word &= ~(~std::uint64_t{0} >> std::countl_zero(zeros));
  return (word & kHighBits) == 0 ? LowerEight(word) : FoldPrefix8({text, strnlen(text, room)});
}

// -- Letter case ------------------------------------------------------------------------------------------------------

std::string AnsiUpperCase(std::string_view text) { return IsAscii(text) ? UpperCase(text) : MapText(text, UpperMap()); }
std::string AnsiLowerCase(std::string_view text) { return IsAscii(text) ? LowerCase(text) : MapText(text, LowerMap()); }
std::string UpperCase(std::string_view text) { return MapAscii<AsciiUpper>(text); }
std::string LowerCase(std::string_view text) { return MapAscii<AsciiLower>(text); }

std::string_view Trimmed(std::string_view text) {
  const auto isBlank = [](char byte) { return static_cast<std::uint8_t>(byte) <= ' '; };
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}
std::string Trim(std::string_view text) { return std::string(Trimmed(text)); }

// -- Code points ------------------------------------------------------------------------------------------------------

char32_t NextCodePoint(std::string_view text, std::size_t& at) {
  const std::uint8_t first = ByteAt(text, at);
  ++at;
  if (first < 0x80) return first;
  const TLead lead = LeadOf(first);
  const std::size_t left = text.size() - at;
  if (lead.Length == 0 || left + 1 < lead.Length) return kMalformed + first;
  const std::uint8_t second = ByteAt(text, at);
  if (second < lead.SecondFrom || second > lead.SecondTo) return kMalformed + first;
  char32_t code = char32_t{lead.Bits} << 6 | (second & 0x3Fu);
  for (std::size_t tail = 1; tail + 1 < lead.Length; ++tail) {
    const std::uint8_t byte = ByteAt(text, at + tail);
    if (!IsTail(byte)) return kMalformed + first;
    code = code << 6 | (byte & 0x3Fu);
  }
  at += lead.Length - 1u;
  return code;
}

void AppendCodePoint(std::string& text, char32_t code) {
  std::array<char, 4> bytes;
  text.append(bytes.data(), Encode(code, bytes.data()));
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<std::uint8_t>(byte) < 0x80; });
}

bool IsValidUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();)
    if (NextCodePoint(text, at) >= kMalformed) return false;
  return true;
}

std::size_t CodePointCount(std::string_view text) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < text.size(); ++count) NextCodePoint(text, at);
  return count;
}

std::string_view CutAtCodePoint(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return text;
  // The code point that holds byte `maxBytes` begins at most three bytes before it.
  for (std::size_t start = maxBytes > 3 ? maxBytes - 3 : 0; start < maxBytes; ++start) {
    std::size_t end = start;
    if (IsTail(ByteAt(text, start))) continue;
    if (NextCodePoint(text, end) < kMalformed && end > maxBytes) return text.substr(0, start);
  }
  return text.substr(0, maxBytes);
}

}  // namespace vx
