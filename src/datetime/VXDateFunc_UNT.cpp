#include "datetime/VXDateFunc_UNT.h"

#include <cstddef>

#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"

namespace vx {

std::int32_t GVXStartOfWeek = 1;
std::int32_t GVXFirstWeekTriggerDay = 1;

namespace {

constexpr std::string_view kAmPm = "AMPM";

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Format letters are single bytes, and no byte of a longer UTF-8 character looks like one. So runs are found by bytes,
// and characters are only counted where a position is told or a character is skipped.

/// Bytes of the character at `at`; a malformed one counts byte by byte.
std::size_t CharacterSize(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  if ((static_cast<unsigned char>(text[at]) & 0xC0u) != 0xC0u) return 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) ++end;
  return end - at;
}

/// Length of the run of the upper-case `letter` at `at`.
std::size_t RunLength(std::string_view text, std::size_t at, char letter) {
  std::size_t end = at;
  while (end < text.size() && Upper(text[end]) == letter) ++end;
  return end - at;
}

/// What a run of a letter of ShortDateFormat becomes; empty if it vanishes.
std::string_view DateField(char letter, std::size_t run) {
  if (letter == 'M') return run <= 2 ? "mm" : run == 3 ? "mmm" : "";
  if (letter == 'D') return run <= 2 ? "dd" : "";
  return run == 2 ? "yy" : run == 4 ? "yyyy" : "";
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

// -- Formats --------------------------------------------------------------------------------------------------------

std::int32_t ComputeNbChar(char character, std::int32_t start, std::string_view text) {
  if (start < 1 || static_cast<unsigned char>(character) >= 0x80) return 0;
  std::size_t at = 0;
  while (--start > 0 && at < text.size()) at += CharacterSize(text, at);
  return static_cast<std::int32_t>(RunLength(text, at, Upper(character)));
}

std::string GetDateFormat() {
  const std::string_view format = Locale().ShortDateFormat;
  std::string result;
  for (std::size_t at = 0; at < format.size();) {
    const char letter = Upper(format[at]);
    const bool isField = letter == 'M' || letter == 'D' || letter == 'Y';
    const std::size_t run = isField ? RunLength(format, at, letter) : 1;
    result += isField ? DateField(letter, run) : format.substr(at, 1);
    at += run;
  }
  return result;
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
    const char letter = Upper(format[at]);
    const bool isField = letter == 'H' || letter == 'M' || letter == 'S';
    result += isField ? TimeField(letter) : format.substr(at, 1);
    at += isField ? RunLength(format, at, letter) : 1;
  }
  return result;
}

std::string GetDateTimeFormat() { return GetDateFormat() + " " + GetTimeFormat(); }

bool Is24HoursFormat() { return Locale().LongTimeFormat.find(kAmPm) == std::string::npos; }

// -- Text -----------------------------------------------------------------------------------------------------------

std::string SysDateToStr(TDateTime date) { return FormatDateTime(GetDateTimeFormat(), date); }
std::string SysDateToDateStr(TDateTime date) { return FormatDateTime(GetDateFormat(), date); }

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

}  // namespace VXDateFunc_UNT

}  // namespace vx
