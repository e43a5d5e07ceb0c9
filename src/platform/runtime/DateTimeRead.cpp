#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <string>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::int32_t kFirstYearOf1900 = 40;  ///< years of two digits below are of the 2000s

struct TNumber {
  std::int32_t value = 0;
  std::size_t digits = 0;
};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes a text apart from the front. Every step that doesn't find what it asks for leaves the text alone.
class TScanner {
 public:
  explicit TScanner(std::string_view text) : rest_(text) {}

  bool AtEnd() {
    SkipBlanks();
    return rest_.empty();
  }

  bool AtDigit() {
    SkipBlanks();
    return !rest_.empty() && IsDigit(rest_.front());
  }

  /// Something that is neither a number, a separator of times nor the end.
  bool AtWord() {
    if (AtEnd() || AtDigit()) return false;
    return rest_.front() != Locale().TimeSeparator && rest_.front() != Locale().DecimalSeparator;
  }

  /// A number of up to nine digits.
  std::optional<TNumber> Number() {
    SkipBlanks();
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), IsDigit);
    TNumber number{.value = 0, .digits = static_cast<std::size_t>(end - rest_.begin())};
    if (number.digits == 0 || number.digits > 9) return std::nullopt;
    std::from_chars(rest_.data(), rest_.data() + number.digits, number.value);
    rest_.remove_prefix(number.digits);
    return number;
  }

  /// The separator, which may itself be a blank.
  bool Separator(char separator) {
    const bool blankSeen = !rest_.empty() && rest_.front() == ' ';
    SkipBlanks();
    if (separator == ' ') return blankSeen;
    if (rest_.empty() || rest_.front() != separator) return false;
    rest_.remove_prefix(1);
    return true;
  }

  /// `word` at the front, letter case ignored; an empty word is never found.
  bool WordInFront(std::string_view word) {
    SkipBlanks();
    std::size_t size = 0;  // of as many letters; in the other case one may have more or fewer bytes
    for (std::size_t at = 0; at < word.size() && size < rest_.size(); NextCodePoint(word, at))
      NextCodePoint(rest_, size);
    if (word.empty() || !SameText(rest_.substr(0, size), word)) return false;
    rest_.remove_prefix(size);
    return true;
  }

  /// `word` as all that is left.
  bool WordAtEnd(std::string_view word) {
    SkipBlanks();
    while (!rest_.empty() && rest_.back() == ' ') rest_.remove_suffix(1);
    if (word.empty() || !SameText(rest_, word)) return false;
    rest_ = {};
    return true;
  }

 private:
  void SkipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }

  std::string_view rest_;
};

// -- Dates ----------------------------------------------------------------------------------------------------------

/// The letters Y, M and D in the order in which the short date format has them. A day's name doesn't count as the day.
std::array<char, 3> FieldOrder() {
  const std::string format = UpperCase(Locale().ShortDateFormat);
  std::string order;
  for (std::size_t at = 0; at < format.size();) {
    const char letter = format[at];
    const std::size_t run = std::min(format.find_first_not_of(letter, at), format.size()) - at;
    const bool isField = letter == 'Y' || letter == 'M' || (letter == 'D' && run <= 2);
    if (isField && order.find(letter) == std::string::npos) order += letter;
    at += run;
  }
  for (const char missing : {'Y', 'M', 'D'})
    if (order.find(missing) == std::string::npos) order += missing;
  return {order[0], order[1], order[2]};
}

std::int32_t FullYear(const TNumber& year) {
  if (year.digits > 2) return year.value;
  return year.value + (year.value < kFirstYearOf1900 ? 2000 : 1900);
}

std::optional<TDateTime> ReadDate(std::string_view text) {
  TScanner scanner(text);
  const char separator = Locale().DateSeparator;
  std::int32_t year = 0, month = 0, day = 0;
  std::size_t read = 0;
  for (const char field : FieldOrder()) {
    if (read++ > 0 && !scanner.Separator(separator)) return std::nullopt;
    const auto number = scanner.Number();
    if (!number) return std::nullopt;
    (field == 'Y' ? year : field == 'M' ? month : day) = field == 'Y' ? FullYear(*number) : number->value;
  }
  scanner.Separator(separator);
  TDateTime date = 0;
  if (!scanner.AtEnd() || !TryEncodeDate(year, month, day, date)) return std::nullopt;
  return date;
}

// -- Times ----------------------------------------------------------------------------------------------------------

enum class THalf : std::uint8_t { None, Morning, Afternoon };

/// The locale's signs, and the English ones, which every locale understands.
template <class TFound>
THalf FindHalf(TFound found) {
  if (found(Locale().TimeAMString) || found("AM")) return THalf::Morning;
  if (found(Locale().TimePMString) || found("PM")) return THalf::Afternoon;
  return THalf::None;
}

/// An hour of the clock of twelve in the clock of twenty-four; -1 if there is no such hour.
std::int32_t HourOf(std::int32_t hour, THalf half) {
  if (half == THalf::None) return hour;
  if (hour < 1 || hour > 12) return -1;
  return hour % 12 + (half == THalf::Afternoon ? 12 : 0);
}

/// Up to three digits behind the decimal separator, as milliseconds; nothing for more.
std::optional<std::int32_t> ReadFraction(TScanner& scanner) {
  if (!scanner.Separator(Locale().DecimalSeparator)) return 0;
  constexpr std::array<std::int32_t, 4> kScale = {0, 100, 10, 1};
  const auto number = scanner.Number();
  if (!number || number->digits > 3) return std::nullopt;
  return number->value * kScale[number->digits];
}

/// A sign for the half of the day, if none was seen before. At the end of the text it is the whole rest, so that a
/// locale's sign "a" doesn't break "am" in two.
bool ReadHalf(TScanner& scanner, THalf& half) {
  if (half != THalf::None || !scanner.AtWord()) return false;
  half = FindHalf([&scanner](std::string_view word) { return scanner.WordAtEnd(word); });
  if (half == THalf::None) half = FindHalf([&scanner](std::string_view word) { return scanner.WordInFront(word); });
  return half != THalf::None;
}

/// Hours, then minutes and seconds as far as there are any.
bool ReadClock(TScanner& scanner, THalf& half, std::array<std::int32_t, 3>& clock) {
  for (std::size_t field = 0; field < clock.size(); ++field) {
    const bool signBefore = ReadHalf(scanner, half);
    const bool separated = field > 0 && scanner.Separator(Locale().TimeSeparator);
    if (field > 0 && !separated && !(signBefore && scanner.AtDigit())) return true;
    const auto number = scanner.Number();
    if (!number) return false;
    clock[field] = number->value;
  }
  return true;
}

std::optional<TDateTime> ReadTime(std::string_view text) {
  TScanner scanner(text);
  THalf half = THalf::None;
  std::array<std::int32_t, 3> clock{};
  if (!ReadClock(scanner, half, clock)) return std::nullopt;
  const auto millisecond = ReadFraction(scanner);
  ReadHalf(scanner, half);
  TDateTime time = 0;
  if (!millisecond || !scanner.AtEnd() ||
      !TryEncodeTime(HourOf(clock[0], half), clock[1], clock[2], *millisecond, time))
    return std::nullopt;
  return time;
}

}  // namespace

bool TryStrToDate(std::string_view text, TDateTime& date) {
  const auto read = ReadDate(text);
  date = read.value_or(date);
  return read.has_value();
}

bool TryStrToTime(std::string_view text, TDateTime& time) {
  const auto read = ReadTime(text);
  time = read.value_or(time);
  return read.has_value();
}

TDateTime StrToDate(std::string_view text) {
  if (const auto date = ReadDate(text)) return *date;
  throw EConvertError("'" + std::string(text) + "' is not a valid date");
}

TDateTime StrToTime(std::string_view text) {
  if (const auto time = ReadTime(text)) return *time;
  throw EConvertError("'" + std::string(text) + "' is not a valid time");
}

}  // namespace vx
