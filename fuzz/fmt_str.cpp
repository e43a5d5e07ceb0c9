// FmtStr and its specifiers, beside a plain way to do the same.
//
//   byte 0      decimals of durations, 'a' to 'j'; with a decimal comma, 'A' to 'J'
//   byte 1      their unit, '0' to '7'
//   to the first line feed   a letter for each argument: i(nteger), b(yte), I(nt64), d(ate), f(loat), B(oolean),
//               n(ull), s(ome text), %: a text with a specifier in it
//   the rest    the format
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DurationPlace.h"
#include "Property.h"
#include "base/VXResMsgsUtils_UNT.h"
#include "platform/runtime/NumberText.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;

struct TUse {
  std::string_view format;
  std::vector<Variant> args;
  TVXDurUnit unit;
  std::int32_t decimals;
  std::string_view input;
};

std::optional<Variant> ArgumentOf(char letter) {
  switch (letter) {
    case 'i':
      return 5400;
    case 'b':
      return std::uint8_t{7};
    case 'I':
      return std::int64_t{1} << 40;
    case 'd':
      return Variant::Date(45351.75);
    case 'f':
      return -1234.56789;
    case 'B':
      return true;
    case 'n':
      return Variant::Null();
    case 's':
      return "text";
    case '%':
      return "%0:s%";
    default:
      return std::nullopt;
  }
}

// -- The plain way: whole texts, letter by letter ---------------------------------------------------------------------

/// A specifier at the beginning of a text.
struct TParts {
  std::size_t length = 0;  ///< 0 for none
  std::string digits;
  bool isLong = false;
  char letter = 0;
};

char Small(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

TParts PartsOf(const std::string& text) {
  TParts parts;
  std::string rest = text.empty() || text[0] != '%' ? "" : text.substr(1);
  while (!rest.empty() && rest[0] >= '0' && rest[0] <= '9') {
    parts.digits += rest[0];
    rest.erase(0, 1);
  }
  if (!parts.digits.empty()) {
    if (rest.empty() || rest[0] != ':') return {};
    rest.erase(0, 1);
  }
  if (!rest.empty() && Small(rest[0]) == 'l') {
    parts.isLong = true;
    rest.erase(0, 1);
  }
  if (rest.empty() || std::string("dfuatpms").find(Small(rest[0])) == std::string::npos) return {};
  parts.letter = Small(rest[0]);
  parts.length = text.size() - rest.size() + 1;
  return parts;
}

/// A position of ten digits and more is beyond 32 bits, or at least beyond all arguments.
std::int64_t PositionOf(std::string digits) {
  while (digits.size() > 1 && digits[0] == '0') digits.erase(0, 1);
  return digits.size() > 10 ? INT32_MAX : std::min<std::int64_t>(std::atoll(digits.c_str()), INT32_MAX);
}

std::string Told(const char* before, std::int64_t position, const char* behind) {
  return before + std::to_string(position) + behind;
}

std::string PlainText(const Variant& value, const TParts& parts, std::int64_t position, const TUse& use) {
  if (value.Kind() == vkString) return value.Text();
  switch (parts.letter) {
    case 'a':
      if (value.Kind() == vkDate) return SysDateToStr(value.AsDate());
      break;
    case 't':
      if (value.Kind() == vkDate) return TimeToStr(value.AsDate());
      break;
    case 'd':
      if (value.IsInteger()) return std::to_string(value.AsInt64());
      break;
    case 'f':
      if (value.Kind() == vkDouble) return FloatToStrF(value.AsDouble(), ffFixed, 15, parts.isLong ? 4 : 2);
      break;
    case 'm':
      if (value.Kind() == vkDouble) return FloatToStrF(value.AsDouble(), ffCurrency, 15, 2);
      break;
    case 'u':
      if (!value.IsInteger()) break;
      if (!parts.isLong) return DurationToStr(static_cast<double>(value.AsInt64()), use.decimals, use.unit);
      if (value.AsInt64() > INT32_MAX) return Told("<Error converting parameter ", position, ">");
      return DurationToExpandedStr(value.AsInteger());
    default:
      break;
  }
  return Told("<Parameter ", position, " is not of the correct type>");
}

std::string PlainFmtStr(const TUse& use) {
  std::string rest(use.format), result, text;
  std::int64_t position = 0;
  while (!rest.empty()) {
    const TParts parts = PartsOf(rest);
    if (parts.length == 0) {
      result += rest[0];
      rest.erase(0, 1);
      continue;
    }
    rest.erase(0, parts.length);
    if (!parts.digits.empty()) position = PositionOf(parts.digits);
    if (parts.letter == 'p') {
    } else if (position >= static_cast<std::int64_t>(use.args.size())) {
      text = Told("<Index specifier ", position, " out of range>");
    } else {
      text = PlainText(use.args[static_cast<std::size_t>(position)], parts, position, use);
    }
    result += text;
    position = std::min<std::int64_t>(position + 1, INT32_MAX);
  }
  return result;
}

// -- Properties -------------------------------------------------------------------------------------------------------

void HoldExtracts(const TUse& use) {
  std::string_view source = use.format, spec = "untouched";
  std::int32_t index = -1;
  bool isLong = true;
  char type = '?';
  const bool taken = ExtractFormatString(source, index, isLong, spec, type);
  const TParts parts = PartsOf(std::string(use.format));
  Hold(taken == (parts.length > 0), "the same is a specifier", use.input);
  if (!taken) {
    Hold(source == use.format && index == -1 && isLong && type == '?' && spec == "untouched",
         "a refusal touches nothing", use.input);
    return;
  }
  Hold(source == use.format.substr(parts.length) && spec == use.format.substr(0, parts.length),
       "the specifier is taken from the source", use.input);
  Hold(
      index == (parts.digits.empty() ? -1 : PositionOf(parts.digits)) && isLong == parts.isLong && type == parts.letter,
      "its parts are told", use.input);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const TLocaleScope place(vx::fuzz::PlaceOf(data[0]));
  const std::string_view input = vx::fuzz::TextOf(data, size);
  const std::size_t line = std::min(input.find('\n', 2), input.size());
  TUse use{input.substr(std::min(line + 1, input.size())),
           {},
           static_cast<TVXDurUnit>(data[1] % 8u),
           static_cast<std::int32_t>(((data[0] & 0x1Fu) + 31u) % 32u % 10u),
           input};
  for (const char letter : input.substr(2, line - 2))
    if (const auto argument = ArgumentOf(letter)) use.args.push_back(*argument);
  Hold(FmtStr(use.format, use.args, use.unit, use.decimals) == PlainFmtStr(use), "the plain way gives the same", input);
  HoldExtracts(use);
  return 0;
}
