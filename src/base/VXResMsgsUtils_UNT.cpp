#include "base/VXResMsgsUtils_UNT.h"

#include <limits>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Format.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/StringResources.h"

namespace vx::VXResMsgsUtils_UNT {
namespace {

constexpr std::int32_t kOutOfRange = 14677;
constexpr std::int32_t kNotConverted = 14678;
constexpr std::int32_t kWrongType = 14679;
constexpr std::int32_t kUnknownMessage = 14680;
constexpr std::int32_t kLastPosition = std::numeric_limits<std::int32_t>::max();

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// `index` with one more digit; the last position for all that lies beyond.
std::int32_t WithDigit(std::int32_t index, char digit) {
  const std::int64_t longer = std::int64_t{index} * 10 + (digit - '0');
  return longer < kLastPosition ? static_cast<std::int32_t>(longer) : kLastPosition;
}

/// A message about a position. A translation without its "%d", or with a wrong one, is shown as it is.
std::string Complaint(std::int32_t id, std::int32_t position) {
  std::string text = GetResMsg(id);
  try {
    return Format(text, {position});
  } catch (const EConvertError&) {
    return text;
  }
}

struct TSpecifier {
  std::int32_t Position = 0;
  bool Long = false;
  char Type = 0;
};

struct TDurationForm {
  TVXDurUnit Unit;
  std::int32_t Decimals;
};

std::string DurationText(const Variant& value, const TSpecifier& specifier, const TDurationForm& form) {
  return specifier.Long ? DurationToExpandedStr(value.AsInteger())
                        : DurationToStr(value.AsDouble(), form.Decimals, form.Unit);
}

/// The text of an argument that is none. May raise where a value has no text.
std::string ConvertedText(const Variant& value, const TSpecifier& specifier, const TDurationForm& form) {
  const char type = specifier.Type;
  if (type == 'd' && value.IsInteger()) return IntToStr(value.AsInt64());
  if (type == 'u' && value.IsInteger()) return DurationText(value, specifier, form);
  if (type == 'a' && value.Kind() == vkDate) return SysDateToStr(value.AsDate());
  if (type == 't' && value.Kind() == vkDate) return TimeToStr(value.AsDate());
  if (type == 'f' && value.Kind() == vkDouble) return Format(specifier.Long ? "%.4f" : "%f", {value.AsDouble()});
  if (type == 'm' && value.Kind() == vkDouble) return Format("%m", {value.AsDouble()});
  return Complaint(kWrongType, specifier.Position);
}

std::string ArgumentText(std::span<const Variant> args, const TSpecifier& specifier, const TDurationForm& form) {
  const auto position = static_cast<std::size_t>(specifier.Position);
  if (position >= args.size()) return Complaint(kOutOfRange, specifier.Position);
  const Variant& value = args[position];
  if (value.Kind() == vkString) return value.Text();
  try {
    return ConvertedText(value, specifier, form);
  } catch (const Exception&) {
    return Complaint(kNotConverted, specifier.Position);
  }
}

}  // namespace

std::string GetResMsg(std::int32_t id) {
  std::string text = LoadStr(id);
  if (!text.empty()) return text;
  text = LoadStr(kUnknownMessage);
  if (text.empty()) text = "The requested message id was not found in the application resources!";
  return text + " (" + IntToStr(id) + ")";
}

bool ExtractFormatString(std::string_view& source, std::int32_t& index, bool& longFlag, std::string_view& spec,
                         char& type) {
  std::size_t at = 0;
  // A zero byte fits nowhere, so it stands for the end, too.
  const auto peek = [&] { return at < source.size() ? source[at] : '\0'; };
  if (peek() != '%') return false;
  ++at;
  const std::size_t digits = at;
  std::int32_t given = 0;
  for (; IsDigit(peek()); ++at) given = WithDigit(given, peek());
  const bool hasIndex = at > digits;
  if (hasIndex && peek() != ':') return false;
  if (hasIndex) ++at;
  const bool isLong = peek() == 'l' || peek() == 'L';
  if (isLong) ++at;
  const char letter = static_cast<char>(peek() | 0x20);  // in small; what is no letter doesn't become one
  if (std::string_view("dfuatpms").find(letter) == std::string_view::npos) return false;
  ++at;
  if (hasIndex) index = given;
  longFlag = isLong;
  spec = source.substr(0, at);
  type = letter;
  source.remove_prefix(at);
  return true;
}

std::string FmtStr(std::string_view format, std::span<const Variant> args, TVXDurUnit unit, std::int32_t decimals) {
  const TDurationForm form{unit, decimals};
  std::string result, text;
  TSpecifier specifier;
  for (std::size_t percent; (percent = format.find('%')) != std::string_view::npos;) {
    result.append(format, 0, percent);
    format.remove_prefix(percent);
    std::string_view spec;
    if (!ExtractFormatString(format, specifier.Position, specifier.Long, spec, specifier.Type)) {
      result += '%';
      format.remove_prefix(1);
      continue;
    }
    if (specifier.Type != 'p') text = ArgumentText(args, specifier, form);
    result += text;
    if (specifier.Position < kLastPosition) ++specifier.Position;
  }
  return result.append(format);
}

std::string FmtStr(std::string_view format, std::initializer_list<Variant> args, TVXDurUnit unit,
                   std::int32_t decimals) {
  return FmtStr(format, std::span(args.begin(), args.size()), unit, decimals);
}

std::string FmtStr(std::string_view format, const Variant& args, TVXDurUnit unit, std::int32_t decimals) {
  const bool isArray = args.Kind() == vkArray;
  return FmtStr(format, isArray ? std::span<const Variant>(args.Elements()) : std::span(&args, 1), unit, decimals);
}

std::string FmtMsg(std::int32_t id, std::span<const Variant> args, TVXDurUnit unit, std::int32_t decimals) {
  return FmtStr(GetResMsg(id), args, unit, decimals);
}

std::string FmtMsg(std::int32_t id, std::initializer_list<Variant> args, TVXDurUnit unit, std::int32_t decimals) {
  return FmtStr(GetResMsg(id), args, unit, decimals);
}

std::string FmtMsg(std::int32_t id, const Variant& args, TVXDurUnit unit, std::int32_t decimals) {
  return FmtStr(GetResMsg(id), args, unit, decimals);
}

}  // namespace vx::VXResMsgsUtils_UNT
