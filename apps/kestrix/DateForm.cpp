#include "DateForm.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kDayFields = 3;
constexpr std::size_t kShortMonth = 3;  // letters
constexpr std::size_t kMillisecondDigits = 3;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }
bool IsNumber(const TDatePart& part) { return !part.text.empty() && IsDigit(part.text.front()); }
/// A single letter is the "T" before a time or the "Z" behind it.
bool IsWord(const TDatePart& part) { return part.text.size() > 1 && IsLetter(part.text.front()); }

// -- Taking apart -----------------------------------------------------------------------------------------------------

int ClassOf(char c) { return IsDigit(c) ? 0 : IsLetter(c) ? 1 : 2; }

/// Runs of digits, of letters, and of anything else; 20150221 is three numbers.
TDateParts RunsOf(std::string_view date) {
  TDateParts runs;
  for (std::size_t i = 0; i < date.size(); ++i) {
    if (i == 0 || ClassOf(date[i]) != ClassOf(date[i - 1])) runs.emplace_back();
    runs.back().text += date[i];
  }
  if (!runs.empty() && IsNumber(runs.front()) && runs.front().text.size() == 8) {
    const std::string digits = runs.front().text;
    runs.front().text = digits.substr(0, 4);
    runs.insert(runs.begin() + 1, {{TDateRole::Mark, digits.substr(4, 2)}, {TDateRole::Mark, digits.substr(6)}});
  }
  return runs;
}

/// What the first three fields are: by the rules of ReadDate.
std::array<TDateRole, kDayFields> DayRoles(const TDatePart& first, const TDatePart& second, char mark,
                                           TDateOrder order) {
  using enum TDateRole;
  if (IsWord(first)) return {Month, Day, Year};
  if (first.text.size() == 4) return {Year, Month, Day};
  if (IsWord(second) || mark == '.' || order == TDateOrder::DayFirst) return {Day, Month, Year};
  return {Month, Day, Year};
}

struct TDayAndTime {
  TDateParts day;
  TDateParts time;  ///< with the mark before it
};

TDayAndTime PartsOf(std::string_view date, TDateOrder order) {
  constexpr std::array kTimeRoles = {TDateRole::Hour, TDateRole::Minute, TDateRole::Second, TDateRole::Fraction};
  TDateParts parts = RunsOf(Trimmed(date));
  std::vector<std::size_t> fields;
  for (std::size_t i = 0; i < parts.size(); ++i)
    if (IsNumber(parts[i]) || IsWord(parts[i])) fields.push_back(i);
  if (fields.size() < kDayFields) return {};
  const auto day = DayRoles(parts[fields[0]], parts[fields[1]], parts[fields[0] + 1].text.front(), order);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    TDatePart& field = parts[fields[i]];
    if (i < kDayFields)
      field.role = day[i];
    else if (IsWord(field))
      field.role = TDateRole::HalfDay;
    else if (i - kDayFields < kTimeRoles.size())
      field.role = kTimeRoles[i - kDayFields];
  }
  const auto end = parts.begin() + static_cast<std::ptrdiff_t>(fields[kDayFields - 1]) + 1;
  return {{parts.begin(), end}, {end, parts.end()}};
}

bool HasRole(const TDateParts& parts, TDateRole role) {
  return std::any_of(parts.begin(), parts.end(), [role](const TDatePart& part) { return part.role == role; });
}

/// The digits of a year and the letters of a month are told apart, other numbers are not.
std::string KeyOf(const TDateParts& parts) {
  std::string key;
  for (const TDatePart& part : parts) {
    key += static_cast<char>('0' + static_cast<int>(part.role));
    if (IsWord(part)) key += InCaseOf(part.text, part.text.size() == kShortMonth ? "mmm" : "month");
    if (part.role == TDateRole::Mark) key += part.text;
    if (part.role == TDateRole::Year) key += std::to_string(part.text.size());
  }
  return key;
}

// -- Writing ----------------------------------------------------------------------------------------------------------

using TMomentFields = std::array<std::int32_t, 7>;  // by role, from Year to Fraction

std::int32_t Field(const TMomentFields& fields, TDateRole role) { return fields[static_cast<std::size_t>(role)]; }

TMomentFields FieldsOf(const TMoment& moment) {
  std::uint16_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, millisecond = 0;
  DecodeDate(moment.days, year, month, day);
  if (moment.hasTime) DecodeTime(moment.days, hour, minute, second, millisecond);
  return {year, month, day, hour, minute, second, millisecond};
}

std::string Digits(std::int32_t number, std::size_t least) {
  const std::string digits = std::to_string(number);
  return std::string(least - std::min(least, digits.size()), '0') + digits;
}

std::string MonthText(std::int32_t month, const std::string& example) {
  const std::string_view name = MonthName(month);
  return InCaseOf(example, example.size() == kShortMonth ? name.substr(0, kShortMonth) : name);
}

/// As many digits as the example has, and more if the rest isn't zero.
std::string FractionText(std::int32_t milliseconds, std::size_t digits) {
  std::string text = Digits(milliseconds, kMillisecondDigits);
  const std::size_t last = text.find_last_not_of('0');
  text.resize(std::max(digits, last == std::string::npos ? 1 : last + 1), '0');
  return text;
}

std::string TextOf(const TDatePart& part, const TMomentFields& fields, bool isTwelveHours, bool isYearFull) {
  const std::size_t size = part.text.size();
  const std::int32_t hour = Field(fields, TDateRole::Hour);
  switch (part.role) {
    case TDateRole::Year:
      return size == 2 && !isYearFull ? Digits(Field(fields, part.role) % 100, 2) : Digits(Field(fields, part.role), 4);
    case TDateRole::Month:
      if (IsWord(part)) return MonthText(Field(fields, part.role), part.text);
      break;
    case TDateRole::Hour:
      return Digits(isTwelveHours ? (hour + 11) % 12 + 1 : hour, size);
    case TDateRole::Fraction:
      return FractionText(Field(fields, part.role), size);
    case TDateRole::HalfDay:
      return InCaseOf(part.text, hour < 12 ? "am" : "pm");
    case TDateRole::Mark:
      return part.text;
    default:
      break;
  }
  return Digits(Field(fields, part.role), size);
}

std::string TextOf(const TDateParts& parts, const TMomentFields& fields, bool isYearFull = false) {
  const bool isTwelveHours = HasRole(parts, TDateRole::HalfDay);
  std::string text;
  for (const TDatePart& part : parts) text += TextOf(part, fields, isTwelveHours, isYearFull);
  return text;
}

/// In 2/13/2015 the day has two digits because it is the 13th, not because all days have.
TDateParts WithoutChanceDigits(TDateParts day) {
  const auto isDayOrMonth = [](const TDatePart& part) {
    return IsNumber(part) && (part.role == TDateRole::Day || part.role == TDateRole::Month);
  };
  if (std::none_of(day.begin(), day.end(),
                   [&](const auto& part) { return isDayOrMonth(part) && part.text.size() == 1; }))
    return day;
  for (TDatePart& part : day)
    if (isDayOrMonth(part) && !part.text.starts_with('0')) part.text.resize(1);
  return day;
}

/// Gives the parts a place for what the moment has, behind what goes before it.
void MakeRoom(TDateParts& parts, TDateRole role, TDateRole before, const TDatePart& mark, const TMomentFields& fields) {
  const bool isNeeded = Field(fields, role) != 0 || (role == TDateRole::Second && Field(fields, TDateRole::Fraction));
  if (!isNeeded || HasRole(parts, role)) return;
  const auto at = std::find_if(parts.begin(), parts.end(), [before](const auto& part) { return part.role == before; });
  if (at != parts.end()) parts.insert(at + 1, {mark, {role, role == TDateRole::Second ? "00" : "0"}});
}

}  // namespace

std::string InCaseOf(std::string_view example, std::string_view word) {
  if (example == UpperCase(example)) return UpperCase(word);
  std::string text = LowerCase(word);
  if (!text.empty() && example != LowerCase(example)) text.front() = UpperAscii(text.front());
  return text;
}

void TDateForm::AddTo(TSpellings& spellings, const TDateParts& parts) {
  TSpelling& spelling = spellings.try_emplace(KeyOf(parts), TSpelling{parts, 0, spellings.size()}).first->second;
  ++spelling.count;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::string& text = parts[i].text;
    std::string& known = spelling.parts[i].text;
    if (text.size() < known.size() || (text.size() == known.size() && text.starts_with('0'))) known = text;
  }
}

const TDateParts& TDateForm::MostFrequent(const TSpellings& spellings) {
  return std::max_element(spellings.begin(), spellings.end(),
                          [](const auto& a, const auto& b) {
                            return std::pair(a.second.count, b.second.place) <
                                   std::pair(b.second.count, a.second.place);
                          })
      ->second.parts;
}

void TDateForm::Add(std::string_view date) {
  const auto [day, time] = PartsOf(date, order_);
  AddTo(days_, day);
  if (time.empty())
    sawNoTime_ = true;
  else
    AddTo(times_, time);
}

bool TDateForm::Has(std::string_view date) const {
  const auto [day, time] = PartsOf(date, order_);
  return days_.contains(KeyOf(day)) && (time.empty() ? sawNoTime_ : times_.contains(KeyOf(time)));
}

std::string TDateForm::Write(const TMoment& moment, bool isWhole) const {
  if (days_.empty()) return CellText(moment);
  const TMomentFields fields = FieldsOf(moment);
  std::string text = TextOf(WithoutChanceDigits(MostFrequent(days_)), fields, isWhole);
  const bool isMidnight = std::all_of(fields.begin() + kDayFields, fields.end(), [](auto field) { return field == 0; });
  if (!moment.hasTime || (isMidnight && sawNoTime_ && !isWhole)) return text;
  TDateParts time = times_.empty() ? PartsOf("2015-02-21 00:00:00", order_).time : MostFrequent(times_);
  MakeRoom(time, TDateRole::Second, TDateRole::Minute, {TDateRole::Mark, ":"}, fields);
  MakeRoom(time, TDateRole::Fraction, TDateRole::Second, {TDateRole::Mark, "."}, fields);
  return text + TextOf(time, fields);
}

}  // namespace vx::kestrix
