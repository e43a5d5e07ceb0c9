#include "Encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

/// 0x80 to 0x9F of the Western code page; the five holes have no meaning.
constexpr std::array<char16_t, 32> kWestern = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                               0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char32_t Western(unsigned char byte) { return byte >= 0x80 && byte < 0xA0 ? kWestern[byte - 0x80u] : byte; }

/// What a walk over the whole text finds.
struct TSurvey {
  std::size_t firstBroken = std::string::npos;
  bool hasLetters = false;  ///< well-formed code points beyond ASCII
};

TSurvey Survey(std::string_view text) {
  TSurvey survey;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const char32_t code = NextCodePoint(text, at);
    if (code >= kMalformed) {
      if (survey.firstBroken == std::string::npos) survey.firstBroken = start;
    } else if (code >= 0x80) {
      survey.hasLetters = true;
    }
  }
  return survey;
}

std::size_t LineAt(std::string_view text, std::size_t position) {
  return 1 +
         static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

template <class Repair>
std::string Repaired(std::string_view text, Repair repair) {
  std::string result;
  result.reserve(text.size() + text.size() / 16);
  for (std::size_t at = 0; at < text.size();) {
    const char32_t code = NextCodePoint(text, at);
    AppendCodePoint(result, code >= kMalformed ? repair(static_cast<unsigned char>(code - kMalformed)) : code);
  }
  return result;
}

TDecodedText Mended(const std::string& bytes, const TSurvey& survey) {
  const std::size_t line = LineAt(bytes, survey.firstBroken);
  if (survey.hasLetters)
    return {Repaired(bytes, [](unsigned char) { return kReplacement; }), line,
            "broken UTF-8; the bytes that make no letter are shown as \xEF\xBF\xBD"};
  return {Repaired(bytes, Western), line, "not UTF-8; read in the Western code page (Latin-1)"};
}

/// Reads 16-bit units, the high byte at `high` (0 or 1) of each pair.
class TUtf16Reader {
 public:
  TUtf16Reader(std::string_view bytes, std::size_t high) : bytes_(bytes), high_(high) {}
  bool AtEnd() const { return at_ + 2 > bytes_.size(); }
  char32_t Next() {
    const char32_t unit = Take();
    if (unit < 0xD800 || unit > 0xDFFF) return unit;
    if (unit > 0xDBFF || AtEnd()) return kReplacement;
    const char32_t second = Take();
    if (second >= 0xDC00 && second <= 0xDFFF) return 0x10000 + ((unit - 0xD800) << 10) + (second - 0xDC00);
    at_ -= 2;
    return kReplacement;
  }

 private:
  char32_t Take() {
    const auto high = static_cast<unsigned char>(bytes_[at_ + high_]);
    const auto low = static_cast<unsigned char>(bytes_[at_ + 1 - high_]);
    at_ += 2;
    return static_cast<char32_t>(high) << 8 | low;
  }

  std::string_view bytes_;
  std::size_t high_;
  std::size_t at_ = 2;  // behind the mark
};

std::string FromUtf16(std::string_view bytes, std::size_t high) {
  std::string text;
  text.reserve(bytes.size());
  TUtf16Reader reader(bytes, high);
  while (!reader.AtEnd()) AppendCodePoint(text, reader.Next());
  if (bytes.size() % 2 != 0) AppendCodePoint(text, kReplacement);
  return text;
}

}  // namespace

TDecodedText DecodeText(std::string bytes) {
  if (bytes.starts_with("\xFF\xFE")) return {FromUtf16(bytes, 1), 0, {}};
  if (bytes.starts_with("\xFE\xFF")) return {FromUtf16(bytes, 0), 0, {}};
  const bool hasMark = bytes.starts_with(kUtf8Mark);
  if (hasMark) bytes.erase(0, kUtf8Mark.size());
  if (IsValidUtf8(bytes)) return {std::move(bytes), 0, {}, true, hasMark};
  return Mended(bytes, Survey(bytes));
}

}  // namespace vx::kestrix
