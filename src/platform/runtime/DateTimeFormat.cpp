#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <utility>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::size_t kUsualLength = 31;
constexpr std::array<std::string_view, 3> kAmPmFields = {"AMPM", "AM/PM", "A/P"};

bool IsQuote(char c) { return c == '\'' || c == '"'; }

/// Position of the quote that closes the one at `at`; the end of the format if none does.
std::size_t ClosingQuote(std::string_view format, std::size_t at) {
  return std::min(format.find(format[at], at + 1), format.size());
}

/// The am/pm field that begins at `at`, in upper case; empty if there is none.
std::string_view AmPmFieldAt(std::string_view format, std::size_t at) {
  for (const std::string_view field : kAmPmFields) {
    const std::string_view here = format.substr(at, field.size());
    if (std::equal(here.begin(), here.end(), field.begin(), field.end(),
                   [](char left, char right) { return UpperAscii(left) == right; }))
      return field;
  }
  return {};
}

bool HasAmPm(std::string_view format) {
  for (std::size_t at = 0; at < format.size(); ++at) {
    if (IsQuote(format[at])) at = ClosingQuote(format, at);
    if (at < format.size() && UpperAscii(format[at]) == 'A' && !AmPmFieldAt(format, at).empty()) return true;
  }
  return false;
}

/// End of the run of the upper-case `letter` at `at`.
std::size_t RunEnd(std::string_view format, std::size_t at, char letter) {
  while (at < format.size() && UpperAscii(format[at]) == letter) ++at;
  return at;
}

/// Prints one date by formats. The date is taken apart once, whatever the formats ask for.
class TDatePrinter {
 public:
  explicit TDatePrinter(TDateTime date) : locale_(Locale()), date_(date) {
    DecodeDate(date, year_, month_, day_);
    DecodeTime(date, hour_, minute_, second_, millisecond_);
    text_.reserve(kUsualLength);
  }

  /// `depth` is 0 for the caller's format and 1 for one that it names; a name within that prints nothing, so that
  /// formats which name each other come to an end.
  void Print(std::string_view format, std::int32_t depth) {
    const bool twelveHours = HasAmPm(format);
    char lastField = 0;
    for (std::size_t at = 0; at < format.size();) {
      const char letter = UpperAscii(format[at]);
      if (IsQuote(letter)) {
        at = AppendQuoted(format, at);
      } else if (letter == 'A') {
        at = AppendAmPm(format, at);
      } else if (IsField(letter)) {
        const std::size_t end = RunEnd(format, at, letter);
        lastField = letter == 'M' && lastField == 'H' ? 'N' : letter;
        AppendField(lastField, end - at, twelveHours, depth);
        at = end;
      } else {
        AppendLiteral(format[at++]);
      }
    }
  }

  std::string Take() { return std::move(text_); }

 private:
  static bool IsField(char letter) { return std::string_view("CDMYHNSZT").find(letter) != std::string_view::npos; }

  void AppendNumber(std::uint32_t value, std::size_t width) {
    std::array<char, 5> digits;
    std::size_t first = digits.size();
    for (; value > 0 || digits.size() - first < width; value /= 10)
      digits[--first] = static_cast<char>('0' + value % 10);
    text_.append(digits.data() + first, digits.size() - first);
  }

  template <std::size_t N>
  void AppendName(const std::array<std::string, N>& names, std::int32_t oneBased) {
    if (oneBased >= 1 && oneBased <= static_cast<std::int32_t>(N))
      text_ += names[static_cast<std::size_t>(oneBased - 1)];
  }

  std::size_t AppendQuoted(std::string_view format, std::size_t at) {
    const std::size_t end = ClosingQuote(format, at);
    text_ += format.substr(at + 1, end - at - 1);
    return end + 1;
  }

  void AppendLiteral(char c) { text_ += c == '/' ? locale_.DateSeparator : c == ':' ? locale_.TimeSeparator : c; }

  std::size_t AppendAmPm(std::string_view format, std::size_t at) {
    const std::string_view field = AmPmFieldAt(format, at);
    const bool afternoon = hour_ >= 12;
    if (field.empty()) {
      text_ += format[at];
      return at + 1;
    }
    if (field == kAmPmFields[0]) {
      text_ += afternoon ? locale_.TimePMString : locale_.TimeAMString;
    } else {  // the half of the field on its side of the slash, in the letters of the format
      const std::size_t half = field.size() / 2;
      text_ += format.substr(at + (afternoon ? half + 1 : 0), half);
    }
    return at + field.size();
  }

  void AppendField(char field, std::size_t run, bool twelveHours, std::int32_t depth) {
    const std::size_t width = std::min<std::size_t>(run, 2);
    switch (field) {
      case 'C':
        return AppendDateAndTime(depth);
      case 'D':
        return AppendDay(run, depth);
      case 'M':
        return AppendMonth(run);
      case 'Y':
        return run <= 2 ? AppendNumber(year_ % 100u, 2) : AppendNumber(year_, 4);
      case 'H':
        return AppendNumber(twelveHours ? (hour_ + 11u) % 12u + 1u : hour_, width);
      case 'N':
        return AppendNumber(minute_, width);
      case 'S':
        return AppendNumber(second_, width);
      case 'Z':
        return AppendNumber(millisecond_, run == 1 ? 1 : 3);
      default:
        return AppendNamed(run == 1 ? locale_.ShortTimeFormat : locale_.LongTimeFormat, depth);
    }
  }

  void AppendNamed(const std::string& format, std::int32_t depth) {
    if (depth == 0) Print(format, depth + 1);
  }

  void AppendDateAndTime(std::int32_t depth) {
    AppendNamed(locale_.ShortDateFormat, depth);
    if (depth > 0 || (hour_ | minute_ | second_ | millisecond_) == 0) return;
    text_ += ' ';
    AppendNamed(locale_.LongTimeFormat, depth);
  }

  void AppendDay(std::size_t run, std::int32_t depth) {
    if (run <= 2) return AppendNumber(day_, run);
    if (run == 3) return AppendName(locale_.ShortDayNames, DayOfWeek(date_));
    if (run == 4) return AppendName(locale_.LongDayNames, DayOfWeek(date_));
    AppendNamed(run == 5 ? locale_.ShortDateFormat : locale_.LongDateFormat, depth);
  }

  void AppendMonth(std::size_t run) {
    if (run <= 2) return AppendNumber(month_, run);
    AppendName(run == 3 ? locale_.ShortMonthNames : locale_.LongMonthNames, month_);
  }

  const TLocaleSettings& locale_;
  TDateTime date_;
  std::uint16_t year_ = 0, month_ = 0, day_ = 0, hour_ = 0, minute_ = 0, second_ = 0, millisecond_ = 0;
  std::string text_;
};

}  // namespace

std::string FormatDateTime(std::string_view format, TDateTime date) {
  TDatePrinter printer(date);
  printer.Print(format.empty() ? "c" : format, 0);
  return printer.Take();
}

std::string DateToStr(TDateTime date) { return FormatDateTime("ddddd", date); }
std::string TimeToStr(TDateTime time) { return FormatDateTime("tt", time); }
std::string DateTimeToStr(TDateTime date) { return FormatDateTime("c", date); }

}  // namespace vx
