// Dates and times as users type them, in many countries.
//
//   byte 0      the locale, '0' to ';'; '?' makes one of the lines that follow (see Hostile)
//   byte 1      the clock and whether no text means today, '0' to '7'
//   the rest    the text; its first eight bytes serve as a date that is printed, too
#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>

#include "DateModel.h"
#include "Property.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/Text.h"
#include "platform/system/Clock.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;
using vx::fuzz::Runs;

constexpr TDateTime kLow = 25570, kHigh = 50422;  // the first and the last day that may be typed
constexpr TDateTime kSecond = 1.0 / 86400;

// -- Where and when ---------------------------------------------------------------------------------------------------

struct TCountry {
  const char *date, *time;
  char dateSeparator, timeSeparator;
  const char *am, *pm;
  bool readsBack = true;  ///< what SysDateToStr prints is unambiguous
  bool isNumeric = true;  ///< so is what DateToStr prints, to the platform's own reader
};

constexpr TCountry kCountries[] = {
    {"M/d/yyyy", "h:mm:ss AMPM", '/', ':', "AM", "PM"},
    {"d.M.yyyy", "H:mm:ss", '.', ':', "", ""},
    {"yyyy-MM-dd", "HH:mm:ss", '-', ':', "", ""},
    {"M/d/yy", "h:mm:ss AMPM", '/', ':', "am", "pm"},
    {"d-mmm-yyyy", "HH:mm:ss", '-', ':', "AM", "PM", true, false},
    {"dd/MM/yy", "H:mm:ss", '/', '.', "", "", true, true},
    {"d/M/yyyy", "h:mm:ss AMPM", '/', ':', "\u03C0.\u03BC.", "\u03BC.\u03BC."},
    {"yyyy/M/d", "AMPM h:mm:ss", '/', ':', "\u5348\u524D", "\u5348\u5F8C", false},  // one first letter for both
    {"d.M.yyyy", "H:mm:ss", '.', '.', "", "", false},                               // one separator for both
    {"d M yyyy", "H:mm:ss", ' ', ':', "", "", false},
    {"dddd, d/M/yyyy", "HH:mm", '/', ':', "AM", "PM", false, false},
    {"", "", '/', ':', "AM", "PM", false, false},
};

TLocaleSettings SettingsOf(const TCountry& country) {
  TLocaleSettings settings = ClassicLocale();
  settings.ShortDateFormat = country.date;
  settings.LongTimeFormat = country.time;
  settings.DateSeparator = country.dateSeparator;
  settings.TimeSeparator = country.timeSeparator;
  settings.TimeAMString = country.am;
  settings.TimePMString = country.pm;
  return settings;
}

bool MaySeparate(char c) {
  return c >= ' ' && c <= '~' && std::string_view("0123456789").find(c) == std::string_view::npos &&
         UpperCase({&c, 1}) == LowerCase({&c, 1});
}

/// Any bytes as a country's settings: a line each for the two formats, AM, PM, and the two separators, for which only
/// ASCII that is no letter or digit is taken. Takes the lines from the text.
TLocaleSettings Hostile(std::string_view& text) {
  const auto line = [&text] {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string result(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return result;
  };
  TLocaleSettings settings = ClassicLocale();
  settings.ShortDateFormat = line();
  settings.LongTimeFormat = line();
  settings.TimeAMString = line();
  settings.TimePMString = line();
  const std::string separators = line();
  if (!separators.empty() && MaySeparate(separators[0])) settings.DateSeparator = separators[0];
  if (separators.size() > 1 && MaySeparate(separators[1])) settings.TimeSeparator = separators[1];
  return settings;
}

/// The last is outside the dates that may be typed.
TDateTime ClockOf(unsigned choice) {
  switch (choice % 4) {
    case 0:
      return EncodeDate(2024, 2, 29) + EncodeTime(13, 45, 7, 250);
    case 1:
      return EncodeDate(2026, 12, 31) + EncodeTime(23, 59, 59, 999);
    case 2:
      return EncodeDate(1999, 1, 30);
    default:
      return EncodeDate(2041, 5, 31) + EncodeTime(0, 30, 0, 0);
  }
}

// -- Properties -------------------------------------------------------------------------------------------------------

struct TTyped {
  std::string_view text;
  bool emptyIsToday;
  std::string_view input;  ///< with the choices, to be told
};

/// What the text reads as; nothing if it is refused with the one message.
std::optional<TDateTime> Read(std::string_view text, const TTyped& typed) {
  TDateTime date = 0;
  const bool read = Runs<EVXDateFuncException>(
      [&] {
        try {
          date = StrToSysDate(text, typed.emptyIsToday);
        } catch (const EVXDateFuncException& error) {
          Hold(error.Message() == "Invalid date: " + std::string(text) + " (should be between " + DateToStr(kLow) +
                                      " and " + DateToStr(kHigh) + ").",
               "there is one message for all that may be wrong", typed.input);
          throw;
        }
      },
      "only EVXDateFuncException comes out of StrToSysDate", typed.input);
  return read ? std::optional(date) : std::nullopt;
}

void HoldReadsBack(TDateTime date, const TTyped& typed) {
  const std::string printed = SysDateToStr(date);
  const auto again = Read(printed, typed);
  Hold(again && std::fabs(*again - date) < kSecond && SysDateToStr(*again) == printed,
       "a date that is printed reads back: " + printed, typed.input);
}

void HoldTyped(const TTyped& typed, bool readsBack) {
  const auto date = Read(typed.text, typed);
  Hold(vx::fuzz::TDateModel::Read(typed.text, typed.emptyIsToday) == date, "a plain reading agrees", typed.input);
  Hold(Read(" \t" + std::string(typed.text) + "\r\n ", typed) == date, "blanks around a text don't count", typed.input);
  const std::string upper = AnsiUpperCase(typed.text);
  if (SameText(upper, typed.text))  // it isn't where a dotless i became an I
    Hold(Read(upper, typed) == date, "letter case doesn't count", typed.input);
  if (!date) return;
  if (*date == (typed.emptyIsToday ? Date() : 0)) return;
  Hold(*date >= kLow && *date < kHigh + 1, "a date is within the bounds", typed.input);
  if (readsBack) HoldReadsBack(*date, typed);
}

/// The platform's own readers, on the same text.
void HoldPlatform(const TTyped& typed, bool isNumeric) {
  TDateTime value = 0;
  if (Runs<EConvertError>([&] { value = StrToDate(typed.text); }, "StrToDate raises EConvertError", typed.input)) {
    Hold(value >= kFirstDate && value <= kLastDate && value == std::trunc(value), "a date is a day of the calendar",
         typed.input);
    if (isNumeric && value >= EncodeDate(1940, 1, 1) && value < EncodeDate(2040, 1, 1))
      Hold(StrToDate(DateToStr(value)) == value, "DateToStr reads back", typed.input);
  }
  if (Runs<EConvertError>([&] { value = StrToTime(typed.text); }, "StrToTime raises EConvertError", typed.input)) {
    Hold(value >= 0 && value < 1, "a time is within its day", typed.input);
    if (isNumeric)
      Hold(TimeToStr(StrToTime(TimeToStr(value))) == TimeToStr(value), "TimeToStr reads back", typed.input);
  }
}

void HoldPieces(const TTyped& typed) {
  const std::string date = ExtractDate(typed.text), time = ExtractTime(typed.text);
  Hold(typed.text.starts_with(date) && typed.text.ends_with(time), "pieces stand at the ends", typed.input);
  Hold(GetEmptyDate(typed.text).ends_with(" " + time) && GetEmptyTime(typed.text).starts_with(date + " "),
       "a blanked text keeps its other piece", typed.input);
  Hold(GetEmptyDateTime().size() == GetSysDateTimeMask().size(), "an empty mask is as long as the mask", typed.input);
}

/// A number without any sense as a date.
void HoldNumber(const TTyped& typed) {
  double date = 0;
  if (typed.text.size() < sizeof date) return;
  std::memcpy(&date, typed.text.data(), sizeof date);
  Hold(SysDateToStr(date) == SysDateToStr(date), "printing is steady", typed.input);
  Hold(std::fabs(date) > 1e6 || (GetDayOfWeek(date) >= 1 && GetDayOfWeek(date) <= 7), "a week has seven days",
       typed.input);
  std::uint16_t year = 0;
  Runs<EConvertError>(
      [&] {
        const std::int32_t week = DateToWeekNumber(date, year);
        Hold(week >= 1 && week <= 53, "a year has up to 53 weeks", typed.input);
      },
      "DateToWeekNumber raises EConvertError", typed.input);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view input = vx::fuzz::TextOf(data, size);
  std::string_view text = input.substr(2);
  const TCountry& country = kCountries[(data[0] + std::size(kCountries) * 16 - '0') % std::size(kCountries)];
  const bool isHostile = data[0] == '?';
  const TLocaleScope place(isHostile ? Hostile(text) : SettingsOf(country));
  const unsigned choice = data[1] % 8u;
  TFixedClock clock(ClockOf(choice));
  const TClockScope time(clock);

  const TTyped typed{text, choice >= 4, input};
  HoldTyped(typed, country.readsBack && !isHostile);
  HoldPlatform(typed, country.isNumeric && !isHostile);
  HoldPieces(typed);
  HoldNumber(typed);
  return 0;
}
