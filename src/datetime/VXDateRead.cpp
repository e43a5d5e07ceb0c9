// Dates and times from what a user types.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Format.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"
#include "platform/system/Clock.h"

namespace vx {

namespace {

constexpr TDateTime kFirstTyped = 25570.0;  // 1970-01-02
constexpr TDateTime kLastTyped = 50422.0;   // 2038-01-17
constexpr std::int64_t kFirstYearOf1900 = 40;

// -- Letters ----------------------------------------------------------------------------------------------------------

std::string_view FirstCharacter(std::string_view text) {
  std::size_t end = 0;
  if (!text.empty()) NextCodePoint(text, end);
  return text.substr(0, end);
}

std::string_view LastCharacter(std::string_view text) {
  constexpr std::size_t kLongestCharacter = 4;
  for (std::size_t size = std::min(kLongestCharacter, text.size()); size > 1; --size) {
    const std::string_view last = text.substr(text.size() - size);
    if (FirstCharacter(last).size() == size) return last;
  }
  return text.substr(text.size() - std::min<std::size_t>(1, text.size()));
}

constexpr char32_t kNoLetter = 0xFFFFFFFF;

/// The one character in upper case.
char32_t UpperLetter(std::string_view character) {
  if (character.empty()) return kNoLetter;
  if (character.size() == 1 && IsAscii(character)) return static_cast<unsigned char>(UpperAscii(character.front()));
  std::size_t at = 0;
  return NextCodePoint(AnsiUpperCase(character), at);
}

/// The sign for a half of the day.
struct THalfSign {
  explicit THalfSign(std::string_view sign) : text(sign), letter(UpperLetter(FirstCharacter(sign))) {}

  /// `upper` is the sign's first letter; false for a country without signs.
  bool BeginsWith(char32_t upper) const { return letter != kNoLetter && letter == upper; }

  /// The first letter stands anywhere in the text, letter case ignored.
  bool IsHintedIn(std::string_view typed) const {
    if (letter == kNoLetter) return false;
    if (IsAscii(typed))
      return std::any_of(typed.begin(), typed.end(), [this](char c) { return BeginsWith(UpperLetter({&c, 1})); });
    std::string wanted;
    AppendCodePoint(wanted, letter);
    return AnsiUpperCase(typed).find(wanted) != std::string::npos;
  }

  std::string_view text;
  char32_t letter;
};

// -- Tokens -----------------------------------------------------------------------------------------------------------

std::size_t BlanksInFront(std::string_view text) { return std::min(text.find_first_not_of(' '), text.size()); }

/// Takes what stands before the first blank or separator, and one group of blanks and a separator behind it. An empty
/// token is a field of a mask that was left blank: the blanks behind its separator belong to the next field. Behind a
/// token that was typed, as many blanks are taken as stand before the separator, so that "12 / 5" leaves "5".
std::string_view NextDateToken(std::string_view& text, char separator) {
  const auto end = std::find_if(text.begin(), text.end(), [separator](char c) { return c == ' ' || c == separator; });
  const std::string_view token = text.substr(0, static_cast<std::size_t>(end - text.begin()));
  text.remove_prefix(token.size());
  const std::size_t blanks = BlanksInFront(text);
  text.remove_prefix(blanks);
  if (text.empty() || text.front() != separator) return token;
  text.remove_prefix(1);
  if (!token.empty()) text.remove_prefix(std::min(blanks, BlanksInFront(text)));
  return token;
}

void AppendNumber(std::string& text, std::int64_t number, std::size_t width) {
  char digits[24];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
  const auto size = static_cast<std::size_t>(end - digits);
  text.append(size < width ? width - size : 0, '0').append(digits, size);
}

void DropLast(std::string& text) {
  if (!text.empty()) text.pop_back();
}

// -- The reader -------------------------------------------------------------------------------------------------------

/// Reads one text. The date is read first and takes its fields from the front; the time reads what it left. Whatever
/// goes wrong is noted and told at the end, since a text without any field isn't an error.
class TDateReader {
 public:
  explicit TDateReader(std::string_view given)
      : locale_(Locale()), am_(locale_.TimeAMString), pm_(locale_.TimePMString), now_(Now()), rest_(Trimmed(given)) {
    if (rest_ != "*") return;
    nowText_ = DateTimeToStr(now_);
    rest_ = nowText_;
  }

  /// False if the text can't be read.
  bool Read(bool emptyIsToday, TDateTime& result) {
    const bool isEmpty = rest_.empty();
    const bool hasTime = HoldsTime();
    const bool hasDate = rest_.find(locale_.DateSeparator) != std::string_view::npos || (!isEmpty && !hasTime);
    const bool dateIsRead = ReadDatePart(hasDate, hasTime);
    const bool timeIsRead = !hasTime || ReadTimePart();
    if (dateIsEmpty_ && timeIsEmpty_) {
      result = emptyIsToday ? Today() : 0;
      return true;
    }
    if (!hasTime && !dateIsEmpty_) result_ += now_ - Today();  // Kept: a date alone is that day at this time of day.
    result = result_;
    return dateIsRead && timeIsRead;
  }

 private:
  TDateTime Today() const { return std::trunc(now_); }

  bool HoldsTime() const {
    return rest_.find(locale_.TimeSeparator) != std::string_view::npos || am_.IsHintedIn(rest_) ||
           pm_.IsHintedIn(rest_);
  }

  // -- Dates --

  bool ReadDatePart(bool hasDate, bool hasTime) {
    if (hasDate && !ReadDate()) return false;
    if (!hasDate && hasTime) result_ += Today();
    return result_ >= kFirstTyped && result_ <= kLastTyped;
  }

  bool ReadDate() {
    const char separator = locale_.DateSeparator;
    std::string_view format = locale_.ShortDateFormat;
    std::string date;
    for (;;) {
      const std::string_view field = NextDateToken(format, separator);
      if (field.empty()) break;
      const std::string_view typed = NextDateToken(rest_, separator);
      if (typed.empty()) {
        AppendPresent(date, field);
      } else {
        dateIsEmpty_ = false;
        AppendTyped(date, field, typed);
      }
      date += separator;
    }
    DropLast(date);
    TDateTime day = 0;
    if (!TryStrToDate(date, day)) return false;
    result_ += day;
    return true;
  }

  /// The field of today.
  void AppendPresent(std::string& date, std::string_view field) const {
    std::uint16_t year = 0, month = 0, day = 0;
    DecodeDate(now_, year, month, day);
    const char letter = UpperAscii(field.front());
    if (letter == 'Y' && field.size() == 4) return AppendNumber(date, year, 1);
    AppendNumber(date, letter == 'Y' ? year % 100 : letter == 'M' ? month : day, 2);
  }

  void AppendTyped(std::string& date, std::string_view field, std::string_view typed) const {
    const char letter = UpperAscii(field.front());
    std::int32_t year = 0;
    if (letter == 'M' && field.size() == 3) {
      AppendMonth(date, typed);
    } else if (letter == 'Y' && field.size() == 2 && TryStrToInt(typed, year)) {
      // Kept: the length of the field counts, not that of the number; 1998 becomes 3898, which the bounds refuse.
      AppendNumber(date, std::int64_t{year} + (year < kFirstYearOf1900 ? 2000 : 1900), 4);
    } else {
      date += typed;
    }
  }

  void AppendMonth(std::string& date, std::string_view typed) const {
    const auto& names = locale_.ShortMonthNames;
    const auto name = std::find_if(names.begin(), names.end(),
                                   [typed](const std::string& candidate) { return SameText(typed, candidate); });
    if (name == names.end()) {
      date += typed;
    } else {
      AppendNumber(date, name - names.begin() + 1, 2);
    }
  }

  // -- Times --

  bool ReadTimePart() {
    const char separator = locale_.TimeSeparator;
    std::string_view format = locale_.LongTimeFormat;
    std::string time;
    for (;;) {
      const std::string_view field = NextDateToken(format, ':');  // Kept: a colon, whatever separates what is typed.
      if (field.empty()) break;
      const std::string_view typed = NextDateToken(rest_, separator);
      if (typed.empty()) {
        AppendMissing(time, field);
        time += separator;
      } else {
        timeIsEmpty_ = false;
        time += AppendClock(time, typed) ? ' ' : separator;
      }
    }
    DropLast(time);
    std::string_view clock = Trimmed(time);
    while (!clock.empty() && clock.back() == separator) clock.remove_suffix(1);
    TDateTime read = 0;
    if (timeIsEmpty_) return true;
    if (!TryStrToTime(Trimmed(clock), read)) return false;
    result_ += read;
    return true;
  }

  void AppendMissing(std::string& time, std::string_view field) const {
    const char letter = UpperAscii(field.front());
    if (letter == 'H' && !Is24HoursFormat()) {
      time += "12";
    } else if (letter == 'H' || letter == 'M' || letter == 'N' || letter == 'S') {
      time += "00";
    }
  }

  /// Appends a number, with its sign for the half of the day if it ends in one, or a sign alone, which takes the place
  /// of the separator before it; true for the latter.
  // Kept: where both signs begin with the same letter, every sign is the one of the morning.
  bool AppendClock(std::string& time, std::string_view typed) const {
    const char32_t first = UpperLetter(FirstCharacter(typed));
    const bool isMorning = am_.BeginsWith(first);
    if (isMorning || pm_.BeginsWith(first)) {
      DropLast(time);
      time.append(" ").append(AnsiUpperCase(isMorning ? am_.text : pm_.text));
      return true;
    }
    time += typed;
    ExpandLast(time, am_);
    ExpandLast(time, pm_);
    return false;
  }

  /// "30p" to "30PM".
  static void ExpandLast(std::string& time, const THalfSign& sign) {
    const std::string_view last = LastCharacter(time);
    if (!sign.BeginsWith(UpperLetter(last))) return;
    time.resize(time.size() - last.size());
    time += AnsiUpperCase(sign.text);
  }

  const TLocaleSettings& locale_;
  const THalfSign am_, pm_;
  const TDateTime now_;
  std::string nowText_;    // what "*" stands for
  std::string_view rest_;  // what isn't read yet
  TDateTime result_ = 0;
  bool dateIsEmpty_ = true;
  bool timeIsEmpty_ = true;
};

}  // namespace

TDateTime VXDateFunc_UNT::StrToSysDate(std::string_view text, bool emptyIsToday) {
  TDateTime result = 0;
  if (TDateReader(text).Read(emptyIsToday, result)) return result;
  throw EVXDateFuncException(Format(LoadStr(14665), {text, DateToStr(kFirstTyped), DateToStr(kLastTyped)}));
}

}  // namespace vx
