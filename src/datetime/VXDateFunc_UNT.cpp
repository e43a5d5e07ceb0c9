#include "datetime/VXDateFunc_UNT.h"

#include <algorithm>
#include <cstddef>

#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"

namespace vx {

std::int32_t GVXStartOfWeek = 1;
std::int32_t GVXFirstWeekTriggerDay = 1;

namespace {

/// Filled at the unit's start and by each translation.
std::array<std::string, 8> unitTexts;
std::int32_t unitUsers = 0;

void LoadUnitTexts() {
  constexpr std::array<std::int32_t, 8> kIds = {14659, 14660, 14661, 14662, 14663, 14664, 14669, 14670};
  if (unitUsers > 0) std::transform(kIds.begin(), kIds.end(), unitTexts.begin(), LoadStr);
}

}  // namespace

const std::array<std::string, 8>& DurUnitString = unitTexts;

namespace {

constexpr std::string_view kAmPm = "AMPM";

// Format letters are single bytes, and no byte of a longer UTF-8 character looks like one. So runs are found by bytes,
// and characters are only counted where a position is told or a character is skipped.

/// Bytes of the character at `at`.
std::size_t CharacterSize(std::string_view text, std::size_t at) {
  std::size_t end = at;
  NextCodePoint(text, end);
  return end - at;
}

/// Length of the run of the upper-case `letter` at `at`.
std::size_t RunLength(std::string_view text, std::size_t at, char letter) {
  std::size_t end = at;
  while (end < text.size() && UpperAscii(text[end]) == letter) ++end;
  return end - at;
}

/// What a run of a letter of ShortDateFormat becomes; empty if it vanishes.
std::string_view DateField(char letter, std::size_t run) {
  if (letter == 'M') return run <= 2 ? "mm" : run == 3 ? "mmm" : "";
  if (letter == 'D') return run <= 2 ? "dd" : "";
  return run == 2 ? "yy" : run == 4 ? "yyyy" : "";
}

/// The same in a mask: digits, and letters for a month's name.
std::string_view DateMaskField(char letter, std::size_t run) {
  constexpr std::string_view kDigits = "9999";
  const std::string_view field = DateField(letter, run);
  return field == "mmm" ? "aaa" : kDigits.substr(0, field.size());
}

/// Walks a date format: `field` makes text of the runs of M, D and Y that begin before `end`, `other` of the other
/// bytes.
template <class TField, class TOther>
std::string WalkDateFormat(std::string_view format, std::size_t end, TField field, TOther other) {
  std::string result;
  for (std::size_t at = 0; at < end;) {
    const char letter = UpperAscii(format[at]);
    if (letter == 'M' || letter == 'D' || letter == 'Y') {
      const std::size_t run = RunLength(format, at, letter);
      result += field(letter, run);
      at += run;
    } else {
      result += other(format[at++]);
    }
  }
  return result;
}

/// Where the last character begins.
// Kept: a mask is made of what begins before it, so yyyy/M/d has no digits for the day.
std::size_t LastCharacter(std::string_view format) {
  std::size_t at = format.empty() ? 0 : format.size() - 1;
  while (at > 0 && (static_cast<unsigned char>(format[at]) & 0xC0u) == 0x80u) --at;
  return at;
}

/// A mask with nothing typed.
std::string Blanked(std::string mask) {
  std::replace_if(
      mask.begin(), mask.end(), [](char c) { return c == '9' || UpperAscii(c) == 'A'; }, ' ');
  return mask;
}

std::string_view TimeField(char letter) { return letter == 'H' ? "hh" : letter == 'M' ? "mm" : "ss"; }

/// Copies "AMPM", a blank unless exactly one character follows, and drops that character. Answers where to go on.
/// Kept: the blank at the end of h:mm:ss AMPM is part of every date text, and so of every key made of one.
std::size_t AppendAmPm(std::string& result, std::string_view format, std::size_t at) {
  result += kAmPm;
  const std::size_t behind = at + kAmPm.size();
  const std::size_t next = behind < format.size() ? behind + CharacterSize(format, behind) : behind;
  if (next != format.size() || behind == format.size()) result += ' ';
  return next;
}

TDateTime January(std::uint16_t year, std::int32_t day) { return EncodeDate(year, 1, day); }

// Kept: the rule suits weeks of ISO 8601 and is used for all settings alike.
std::int32_t WeeksInYear(std::uint16_t year) {
  const std::int32_t first = GetDayOfWeek(January(year, 1));
  return first == 4 || (first == 3 && IsLeapYear(year)) ? 53 : 52;
}

}  // namespace

namespace VXDateFunc_UNT {

// -- Formats and masks ------------------------------------------------------------------------------------------------

std::int32_t ComputeNbChar(char character, std::int32_t start, std::string_view text) {
  if (start < 1 || static_cast<unsigned char>(character) >= 0x80) return 0;
  std::size_t at = 0;
  while (--start > 0 && at < text.size()) at += CharacterSize(text, at);
  return static_cast<std::int32_t>(RunLength(text, at, UpperAscii(character)));
}

std::string GetDateFormat() {
  const std::string_view format = Locale().ShortDateFormat;
  return WalkDateFormat(format, format.size(), DateField, [](char c) { return c; });
}

std::string GetTimeFormat() {
  const std::string_view format = Locale().LongTimeFormat;
  const std::size_t amPm = format.find(kAmPm);
  std::string result;
  for (std::size_t at = 0; at < format.size();) {
    if (at == amPm) {
      at = AppendAmPm(result, format, at);
      continue;
    }
    const char letter = UpperAscii(format[at]);
    const bool isField = letter == 'H' || letter == 'M' || letter == 'S';
    result += isField ? TimeField(letter) : format.substr(at, 1);
    at += isField ? RunLength(format, at, letter) : 1;
  }
  return result;
}

std::string GetDateTimeFormat() { return GetDateFormat() + " " + GetTimeFormat(); }

bool Is24HoursFormat() { return Locale().LongTimeFormat.find(kAmPm) == std::string::npos; }

std::string GetSysDateMask() {
  const std::string_view format = Locale().ShortDateFormat;
  return WalkDateFormat(format, LastCharacter(format), DateMaskField,
                        [separator = Locale().DateSeparator](char c) { return c == separator ? '/' : c; });
}

std::string GetSysTimeMask() {
  const TLocaleSettings& locale = Locale();
  const std::string_view format = locale.LongTimeFormat;
  const std::size_t end = LastCharacter(format);
  std::string mask;
  for (std::size_t at = 0; at < end;) {
    const char letter = UpperAscii(format[at]);
    if (letter == 'A') {
      mask.append(std::max(CodePointCount(locale.TimeAMString), CodePointCount(locale.TimePMString)), 'a');
      for (std::size_t skipped = 0; skipped < kAmPm.size() && at < format.size(); ++skipped)
        at += CharacterSize(format, at);
    } else if (letter == 'H' || letter == 'N' || letter == 'M' || letter == 'S') {
      mask += "99";
      at += RunLength(format, at, letter);
    } else {
      mask += format[at] == locale.TimeSeparator ? ':' : format[at];
      ++at;
    }
  }
  return mask;
}

std::string GetSysDateTimeMask() { return GetSysDateMask() + " " + GetSysTimeMask(); }

// -- Dates to text ----------------------------------------------------------------------------------------------------

std::string SysDateToStr(TDateTime date) { return FormatDateTime(GetDateTimeFormat(), date); }
std::string SysDateToDateStr(TDateTime date) { return FormatDateTime(GetDateFormat(), date); }

// Kept: without a blank the text is a time, not a date.
std::string ExtractDate(std::string_view dateTime) {
  const std::size_t blank = dateTime.find(' ');
  return std::string(blank == std::string_view::npos ? std::string_view() : dateTime.substr(0, blank));
}

std::string ExtractTime(std::string_view dateTime) {
  return std::string(dateTime.substr(dateTime.rfind(' ') + 1));  // npos + 1 is 0
}

std::string GetEmptyDateTime() { return Blanked(GetSysDateTimeMask()); }
std::string GetEmptyDate(std::string_view dateTime) { return Blanked(GetSysDateMask()) + " " + ExtractTime(dateTime); }
std::string GetEmptyTime(std::string_view dateTime) { return ExtractDate(dateTime) + " " + Blanked(GetSysTimeMask()); }

// -- Weeks ----------------------------------------------------------------------------------------------------------

std::int32_t GetDayOfWeek(TDateTime date) {
  const std::int64_t day = std::int64_t{DayOfWeek(date)} - (std::int64_t{GVXStartOfWeek} - 1);
  return static_cast<std::int32_t>(day > 0 ? day : day + 7);
}

TDateTime GetFirstDayOfWeek(TDateTime date) { return date - (static_cast<double>(GetDayOfWeek(date)) - 1); }

std::uint8_t DateToWeekNumber(TDateTime date, std::uint16_t& year) {
  std::uint16_t month = 0, day = 0;
  DecodeDate(date, year, month, day);
  const TDateTime trigger = January(year, GVXFirstWeekTriggerDay);
  const bool firstIsWhole = GetDayOfWeek(trigger) >= GVXFirstWeekTriggerDay;
  const TDateTime origin = GetFirstDayOfWeek(trigger) + (firstIsWhole ? 7 : 0);
  if (date < origin) {
    if (firstIsWhole) return 1;
    return static_cast<std::uint8_t>(WeeksInYear(--year));
  }
  const std::int64_t week = Trunc(GetFirstDayOfWeek(date) - origin) / 7 + (firstIsWhole ? 2 : 1);
  if (WeeksInYear(year) >= week) return static_cast<std::uint8_t>(week);
  ++year;
  return 1;
}

// -- Start and end ----------------------------------------------------------------------------------------------------

void InitializeUnit() {
  if (unitUsers++ > 0) return;
  GVXStartOfWeek = 1;
  GVXFirstWeekTriggerDay = 1;
  LoadUnitTexts();
}

void FinalizeUnit() {
  if (unitUsers == 0 || --unitUsers > 0) return;
  unitTexts.fill({});
}

}  // namespace VXDateFunc_UNT

namespace {

/// The program's own use of the unit.
struct TUnitUse {
  TUnitUse() {
    FollowResourceStrings(LoadUnitTexts);
    VXDateFunc_UNT::InitializeUnit();
  }
  ~TUnitUse() { VXDateFunc_UNT::FinalizeUnit(); }
};
const TUnitUse unitUse;

}  // namespace

}  // namespace vx
