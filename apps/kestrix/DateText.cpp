// The spellings of a date: one small reader that takes numbers, words and marks off the front of the text.
#include <array>

#include "TextTypes.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr double kSecondsADay = 86400.0;
constexpr std::int32_t kFirstTwoDigitYear = 70;  // 70 is 1970, 69 is 2069

constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};

struct TNumber {
  std::int32_t value = 0;
  std::size_t digits = 0;
};

struct TDay {
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
  bool couldBeExchanged = false;
};

class TDateText {
 public:
  explicit TDateText(std::string_view text) : rest_(Trimmed(text)) {}

  bool AtEnd() const { return rest_.empty(); }
  char Peek() const { return rest_.empty() ? '\0' : rest_.front(); }
  bool Take(char c) {
    if (Peek() != c || rest_.empty()) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool TakeOneOf(std::string_view marks, char& taken) {
    if (rest_.empty() || marks.find(Peek()) == std::string_view::npos) return false;
    taken = Peek();
    return Take(taken);
  }
  void SkipBlanks() {
    while (Take(' ')) {
    }
  }
  /// Up to `most` digits; none gives no number.
  std::optional<TNumber> Number(std::size_t most) {
    TNumber number;
    while (number.digits < most && Peek() >= '0' && Peek() <= '9') {
      number.value = number.value * 10 + (Peek() - '0');
      ++number.digits;
      rest_.remove_prefix(1);
    }
    return number.digits == 0 ? std::nullopt : std::optional(number);
  }
  std::string_view Word() {
    std::size_t length = 0;
    while (length < rest_.size() && ((rest_[length] | 0x20) >= 'a' && (rest_[length] | 0x20) <= 'z')) ++length;
    const std::string_view word = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return word;
  }

 private:
  std::string_view rest_;
};

/// "Feb", "Sept", "february": three letters at least.
std::optional<std::int32_t> MonthOfWord(std::string_view word) {
  if (word.size() < 3) return std::nullopt;
  for (std::size_t i = 0; i < kMonths.size(); ++i)
    if (word.size() <= kMonths[i].size() && CompareText(word, kMonths[i].substr(0, word.size())) == 0)
      return static_cast<std::int32_t>(i) + 1;
  return std::nullopt;
}

std::optional<std::int32_t> YearOf(const std::optional<TNumber>& number) {
  if (!number) return std::nullopt;
  if (number->digits == 4) return number->value;
  if (number->digits != 2) return std::nullopt;
  return number->value + (number->value >= kFirstTwoDigitYear ? 1900 : 2000);
}

/// 20150221
TDay CompactDay(std::int32_t digits) { return {digits / 10000, digits / 100 % 100, digits % 100}; }

/// Behind "21" and its mark: "Feb 2015".
std::optional<TDay> NamedMonthBehindDay(TDateText& text, const TNumber& day) {
  const auto month = MonthOfWord(text.Word());
  char mark = 0;
  if (!month || day.digits > 2 || !text.TakeOneOf(" -/.,", mark)) return std::nullopt;
  text.SkipBlanks();
  const auto year = YearOf(text.Number(4));
  if (!year) return std::nullopt;
  return TDay{*year, *month, day.value};
}

/// "February 21, 2015"
std::optional<TDay> DayBehindNamedMonth(TDateText& text) {
  const auto month = MonthOfWord(text.Word());
  char mark = 0;
  if (!month || !text.TakeOneOf(" .-", mark)) return std::nullopt;
  text.SkipBlanks();
  const auto day = text.Number(2);
  if (!day || !text.TakeOneOf(" ,-", mark)) return std::nullopt;
  text.SkipBlanks();
  const auto year = YearOf(text.Number(4));
  if (!year) return std::nullopt;
  return TDay{*year, *month, day->value};
}

/// Three numbers with the same mark between, of which the first two may be in either order.
std::optional<TDay> Ordered(std::int32_t first, std::int32_t second, std::int32_t year, char mark, TDateOrder order) {
  if (mark == '.') return TDay{year, second, first};
  const bool couldBeExchanged = first <= 12 && second <= 12 && first != second;
  if (order == TDateOrder::DayFirst) return TDay{year, second, first, couldBeExchanged};
  return TDay{year, first, second, couldBeExchanged};
}

std::optional<TDay> ReadDay(TDateText& text, TDateOrder order) {
  const auto first = text.Number(8);
  if (!first) return DayBehindNamedMonth(text);
  if (first->digits == 8) return CompactDay(first->value);
  char mark = 0;
  if (first->digits > 4 || !text.TakeOneOf("-/. ", mark)) return std::nullopt;
  text.SkipBlanks();
  const auto second = text.Number(2);
  if (!second) return NamedMonthBehindDay(text, *first);
  if (mark == ' ' || !text.Take(mark)) return std::nullopt;
  if (first->digits == 4) {
    const auto day = text.Number(2);
    return day ? std::optional(TDay{first->value, second->value, day->value}) : std::nullopt;
  }
  if (mark == '.') text.SkipBlanks();
  const auto year = YearOf(text.Number(4));
  if (first->digits > 2 || !year) return std::nullopt;
  return Ordered(first->value, second->value, *year, mark, order);
}

/// Digits behind the point, as a part of a second.
double Fraction(TDateText& text) {
  double value = 0;
  for (double weight = 0.1; text.Peek() >= '0' && text.Peek() <= '9'; weight /= 10)
    value += weight * text.Number(1)->value;
  return value;
}

/// The hour of a twelve-hour clock on one of twenty-four.
std::optional<std::int32_t> HourOfHalfDay(std::int32_t hour, std::string_view half) {
  const bool isAm = CompareText(half, "am") == 0;
  const bool isPm = CompareText(half, "pm") == 0;
  if ((!isAm && !isPm) || hour < 1 || hour > 12) return std::nullopt;
  return hour % 12 + (isPm ? 12 : 0);
}

/// "14:07", "14:07:30.5", "2:07 pm", "14:07Z": seconds of the day.
std::optional<double> ReadTime(TDateText& text) {
  const auto hour = text.Number(2);
  if (!hour || !text.Take(':')) return std::nullopt;
  const auto minute = text.Number(2);
  if (!minute || minute->digits != 2) return std::nullopt;
  double seconds = 0;
  if (text.Take(':')) {
    const auto second = text.Number(2);
    if (!second || second->digits != 2 || second->value > 59) return std::nullopt;
    seconds = second->value + (text.Take('.') ? Fraction(text) : 0.0);
  }
  text.SkipBlanks();
  const std::string_view word = text.Word();
  const bool isPlain = word.empty() || word == "Z";
  const auto clockHour = isPlain ? std::optional(hour->value) : HourOfHalfDay(hour->value, word);
  if (!clockHour || *clockHour > 23 || minute->value > 59) return std::nullopt;
  return *clockHour * 3600 + minute->value * 60 + seconds;
}

/// Before 1899-12-30 the day is negative and the time still counts away from zero.
double WithTime(double day, double seconds) {
  return day < 0 ? day - seconds / kSecondsADay : day + seconds / kSecondsADay;
}

}  // namespace

std::string_view MonthName(std::int32_t month) { return kMonths.at(static_cast<std::size_t>(month) - 1); }

std::optional<double> DayNumber(std::int32_t year, std::int32_t month, std::int32_t day) {
  TDateTime date = 0;
  return TryEncodeDate(year, month, day, date) ? std::optional(date) : std::nullopt;
}

std::optional<TDateCell> ReadDate(std::string_view cell, TDateOrder order) {
  TDateText text(cell);
  const auto day = ReadDay(text, order);
  if (!day) return std::nullopt;
  const auto number = DayNumber(day->year, day->month, day->day);
  if (!number) return std::nullopt;
  if (text.AtEnd()) return TDateCell{*number, false, day->couldBeExchanged};
  char mark = 0;
  if (!text.TakeOneOf(" T,", mark)) return std::nullopt;
  text.SkipBlanks();
  const auto seconds = ReadTime(text);
  if (!seconds || !text.AtEnd()) return std::nullopt;
  return TDateCell{WithTime(*number, *seconds), true, day->couldBeExchanged};
}

}  // namespace vx::kestrix
