// Durations: to text and back.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Format.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr double kLongestShown = 9223372036854775808.0;  // 2 to the power 63
constexpr double kLongestTyped = 2147483646.0;           // fits a count of seconds of 32 bits
constexpr std::int32_t kDigits = 15;

std::size_t RowOf(TVXDurUnit unit) {
  if (unit >= DurValue.size()) throw ENilAccess("duration unit " + std::to_string(+unit));
  return unit;
}

/// Seconds of the unit; vxduAuto counts as seconds.
double SecondsOf(TVXDurUnit unit) { return std::abs(DurValue[RowOf(unit)]); }

/// The coarsest unit that the duration fills. Less than a second is told in seconds.
TVXDurUnit UnitFor(double seconds) {
  std::size_t unit = vxduYear;
  while (unit > vxduSec && !(DurValue[unit] <= seconds)) --unit;
  return static_cast<TVXDurUnit>(unit);
}

/// The unit that is shown by this text, which is in lower case.
std::optional<TVXDurUnit> UnitShownAs(std::string_view text) {
  for (std::size_t unit = vxduSec; unit <= vxduYear; ++unit)
    if (text == AnsiLowerCase(DurUnitString[unit])) return static_cast<TVXDurUnit>(unit);
  return std::nullopt;
}

std::optional<TVXDurUnit> UnitOfCode(std::string_view code) {
  const std::string upper = AnsiUpperCase(code);
  for (std::size_t unit = vxduAuto; unit <= vxduYear; ++unit)
    if (upper == UpperCase(PrefDurUnitString[unit])) return static_cast<TVXDurUnit>(unit);
  return std::nullopt;
}

[[noreturn]] void RaiseUnknownUnit(std::string_view text) {
  throw EVXDateFuncException(Format(LoadStr(14666), {text}));
}

/// Bytes of the number in front.
std::size_t NumberLength(std::string_view text) {
  const char separator = Locale().DecimalSeparator;
  const auto end = std::find_if_not(text.begin(), text.end(),
                                    [separator](char c) { return (c >= '0' && c <= '9') || c == separator; });
  return static_cast<std::size_t>(end - text.begin());
}

}  // namespace

namespace VXDateFunc_UNT {

double GetDurationValue(double seconds, TVXDurUnit unit) { return seconds / SecondsOf(unit); }
double GetDurInSecond(double value, TVXDurUnit unit) { return value * SecondsOf(unit); }

// -- To text ----------------------------------------------------------------------------------------------------------

std::string DurationToStr(double seconds, std::int32_t decimals, TVXDurUnit unit) {
  const bool negative = seconds < 0;  // Kept: such a duration has no bound.
  const double length = negative ? -seconds : std::min(seconds, kLongestShown);
  if (unit == vxduAuto) unit = UnitFor(length);
  std::string text = negative ? "-" : "";
  text += FloatToStrF(GetDurationValue(length, unit), ffFixed, kDigits, decimals);
  return text.append(" ").append(DurUnitString[unit]);
}

std::string DurationToExpandedStr(std::int32_t seconds) {
  if (seconds == 0) return "0 " + DurUnitString[vxduSec];
  std::string text = seconds < 0 ? "-" : "";
  std::int64_t rest = std::abs(std::int64_t{seconds});
  const std::size_t start = text.size();
  for (std::size_t unit = vxduYear; unit >= vxduSec; --unit) {
    if (DurValue[unit] > rest) continue;
    if (text.size() > start) text += ' ';
    text.append(std::to_string(rest / DurValue[unit])).append(" ").append(DurUnitString[unit]);
    rest %= DurValue[unit];
  }
  return text;
}

// -- From text --------------------------------------------------------------------------------------------------------

TVXDurationWithUnit StrToDurationWithUnit(std::string_view text, TVXDurUnit defaultUnit) {
  TVXDurationWithUnit result;
  std::string_view rest = Trimmed(text);
  if (rest.empty()) return result;
  const bool negative = rest.front() == '-';
  if (negative) rest.remove_prefix(1);
  const std::string_view number = rest.substr(0, NumberLength(rest));
  const std::string unitText = AnsiLowerCase(Trimmed(rest.substr(number.size())));
  const auto unit = unitText.empty() ? std::max(defaultUnit, vxduSec) : UnitShownAs(unitText);
  if (!unit) RaiseUnknownUnit(unitText);
  result.DurUnit = *unit;
  double value = 0;
  if (!TryStrToFloat(number, value)) throw EVXDateFuncException(Format(LoadStr(14667), {text}));
  value = std::min(GetDurInSecond(value, *unit), kLongestTyped);
  result.Value = negative ? -value : value;
  return result;
}

double StrToDuration(std::string_view text, TVXDurUnit defaultUnit) {
  return StrToDurationWithUnit(text, defaultUnit).Value;
}

TVXDurUnit GetStrToDurUnit(std::string_view code) {
  const auto unit = UnitOfCode(code);
  if (!unit) RaiseUnknownUnit(code);
  return *unit;
}

TVXDurUnit DurUnitPrefStrToDurUnit(std::string_view code) { return UnitOfCode(code).value_or(vxduAuto); }

}  // namespace VXDateFunc_UNT

}  // namespace vx
