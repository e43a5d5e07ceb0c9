// Durations as users type them, and as they are shown.
//
//   byte 0      decimals, 'a' to 's', with a decimal point; 'A' to 'S' with a decimal comma
//   byte 1      the default unit, '0' to '7'
//   the rest    the text; its first eight bytes serve as a duration that is printed, too
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "DurationPlace.h"
#include "Property.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;
using vx::fuzz::Runs;

constexpr double kLongest = 2147483646.0;

struct TTyped {
  std::string_view text;
  TVXDurUnit unit;         ///< the default
  std::int32_t decimals;   ///< for printing
  std::string_view input;  ///< with the choices, to be told
};

/// What the text reads as; nothing if it is refused with one of the two messages.
std::optional<TVXDurationWithUnit> Read(std::string_view text, const TTyped& typed) {
  TVXDurationWithUnit read;
  const bool reads = Runs<EVXDateFuncException>(
      [&] {
        try {
          read = StrToDurationWithUnit(text, typed.unit);
        } catch (const EVXDateFuncException& error) {
          Hold(error.Message().starts_with("Invalid duration unit: ") ||
                   error.Message() == "Invalid duration: ." + std::string(text) + ".",
               "a refusal has one of two messages", typed.input);
          throw;
        }
      },
      "only EVXDateFuncException comes out of StrToDurationWithUnit", typed.input);
  return reads ? std::optional(read) : std::nullopt;
}

bool SameDuration(const std::optional<TVXDurationWithUnit>& a, const std::optional<TVXDurationWithUnit>& b) {
  return a.has_value() == b.has_value() && (!a || (a->Value == b->Value && a->DurUnit == b->DurUnit));
}

/// A second, plain reading: the number in front, and what is behind it looked up among all units.
std::optional<TVXDurationWithUnit> PlainReading(const TTyped& typed) {
  std::string rest = Trim(typed.text);
  if (rest.empty()) return TVXDurationWithUnit{};
  const double sign = rest.starts_with('-') ? -1 : 1;
  rest.erase(0, sign < 0 ? 1 : 0);
  const std::size_t end =
      std::min(rest.find_first_not_of(std::string("0123456789") + Locale().DecimalSeparator), rest.size());
  double number = 0;
  if (!TryStrToFloat(rest.substr(0, end), number)) return std::nullopt;
  const std::string name = Trim(rest.substr(end));
  const TVXDurUnit missing = typed.unit == vxduAuto ? vxduSec : typed.unit;
  for (const auto unit : {vxduSec, vxduMin, vxduHour, vxduDay, vxduWeek, vxduMonth, vxduYear})
    if (name.empty() ? unit == missing : AnsiLowerCase(name) == DurUnitString[unit])
      return TVXDurationWithUnit{sign * std::fmin(number * DurValue[unit], kLongest), unit};
  return std::nullopt;
}

/// Half of the last decimal of a number in that unit, and a little for the 15 digits that are printed.
double StepOf(const TTyped& typed, TVXDurUnit unit, double seconds) {
  return 0.5 * std::pow(10.0, -typed.decimals) * GetDurInSecond(1, unit) + std::fabs(seconds) * 1e-14;
}

void HoldReadsBack(double seconds, TVXDurUnit unit, const TTyped& typed) {
  const std::string printed = DurationToStr(seconds, typed.decimals, unit);
  const auto again = Read(printed, typed);
  Hold(again && std::fabs(again->Value - seconds) <= StepOf(typed, again->DurUnit, seconds),
       "a duration that is printed reads back: " + printed, typed.input);
  if (unit == vxduAuto || again->Value == 0) return;
  Hold(again->DurUnit == unit, "a unit that is printed reads back: " + printed, typed.input);
  Hold(DurationToStr(again->Value, typed.decimals, unit) == printed, "what reads back prints alike: " + printed,
       typed.input);
}

/// The pieces of the text, a number and a unit each, are as long as the duration.
void HoldExpanded(std::int32_t seconds, const TTyped& typed) {
  const std::string printed = DurationToExpandedStr(seconds);
  Hold((seconds < 0) == printed.starts_with('-'), "a negative duration has a sign: " + printed, typed.input);
  double sum = 0;
  for (std::string_view rest = std::string_view(printed).substr(seconds < 0 ? 1 : 0); !rest.empty();) {
    const std::size_t end = std::min(rest.find(' ', rest.find(' ') + 1), rest.size());
    const auto piece = Read(rest.substr(0, end), typed);
    Hold(piece.has_value(), "each piece reads: " + printed, typed.input);
    sum += piece->Value;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  Hold(sum == std::fabs(static_cast<double>(seconds)), "the pieces add up: " + printed, typed.input);
}

void HoldTyped(const TTyped& typed) {
  const auto read = Read(typed.text, typed);
  Hold(SameDuration(read, PlainReading(typed)), "a plain reading agrees", typed.input);
  if (!read) return;
  Hold(std::fabs(read->Value) <= kLongest, "a duration is within the bounds", typed.input);
  Hold(StrToDuration(typed.text, typed.unit) == read->Value, "both readers agree", typed.input);
  if (Trim(typed.text).empty()) return Hold(read->Value == 0, "no text is no duration", typed.input);
  Hold(read->DurUnit >= vxduSec && read->DurUnit <= vxduYear, "a duration has a unit", typed.input);
  HoldReadsBack(read->Value, read->DurUnit, typed);
  HoldReadsBack(read->Value, vxduAuto, typed);
  HoldExpanded(static_cast<std::int32_t>(read->Value), typed);
}

void HoldCode(const TTyped& typed) {
  TVXDurUnit unit = vxduAuto;
  const bool known = Runs<EVXDateFuncException>([&] { unit = GetStrToDurUnit(typed.text); },
                                                "only EVXDateFuncException comes out of GetStrToDurUnit", typed.input);
  Hold(DurUnitPrefStrToDurUnit(typed.text) == unit, "a code is the same unit to both", typed.input);
  Hold(!known || SameText(PrefDurUnitString[unit], typed.text), "a known code is in the table", typed.input);
}

/// A number without any sense as a duration.
void HoldNumber(const TTyped& typed) {
  double seconds = 0;
  if (typed.text.size() < sizeof seconds) return;
  std::memcpy(&seconds, typed.text.data(), sizeof seconds);
  const std::string printed = DurationToStr(seconds, typed.decimals, typed.unit);
  Hold(printed.find(' ') != std::string::npos && printed.size() < 400, "a number and a unit are printed", typed.input);
  const double back = GetDurInSecond(GetDurationValue(seconds, typed.unit), typed.unit);
  Hold(!(std::fabs(seconds) < 1e300 && std::fabs(seconds) > 1e-290) ||
           std::fabs(back - seconds) <= std::fabs(seconds) * 1e-15,
       "a duration in a unit is as long", typed.input);
  if (std::fabs(seconds) <= kLongest) {
    HoldReadsBack(seconds, typed.unit, typed);
    HoldExpanded(static_cast<std::int32_t>(seconds), typed);
  }
  std::int32_t whole = 0;
  std::memcpy(&whole, typed.text.data(), sizeof whole);
  HoldExpanded(whole, typed);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const TLocaleScope place(vx::fuzz::PlaceOf(data[0]));
  const std::string_view input = vx::fuzz::TextOf(data, size);
  const auto decimals = static_cast<std::int32_t>(((data[0] & 0x1Fu) + 31u) % 32u % 19u);
  const TTyped typed{input.substr(2), static_cast<TVXDurUnit>(data[1] % 8u), decimals, input};
  HoldTyped(typed);
  HoldCode(typed);
  HoldNumber(typed);
  return 0;
}
