#include "platform/runtime/DateTime.h"

#include <array>
#include <cmath>

#include "platform/runtime/Exceptions.h"

namespace vx {

namespace {

constexpr std::int32_t kFirstYear = 1;
constexpr std::int32_t kLastYear = 9999;

struct TCivilDate {
  std::int32_t year, month, day;
};

// "days from civil" and "civil from days" after Howard Hinnant, "chrono-Compatible Low-Level Date Algorithms": years
// begin on the first of March, so that the leap day is the last of its year and a month's first day is linear in the
// month.
constexpr std::int32_t kDaysPerEra = 146'097;  // 400 years, after which the calendar repeats
/// Days from 0000-03-01 to 1899-12-30.
constexpr std::int32_t kEpoch = 693'899;

constexpr std::int32_t DaysFromCivil(const TCivilDate& date) {
  const std::int32_t year = date.month > 2 ? date.year : date.year - 1;  // 0 or more in our range
  const std::int32_t monthFromMarch = (date.month + 9) % 12;
  const std::int32_t dayOfYear = (153 * monthFromMarch + 2) / 5 + date.day - 1;
  return year * 365 + year / 4 - year / 100 + year / 400 + dayOfYear - kEpoch;
}

constexpr TCivilDate CivilFromDays(std::int32_t day) {
  const std::int32_t shifted = day + kEpoch;  // 0 or more in our range
  const std::int32_t era = shifted / kDaysPerEra;
  const std::int32_t dayOfEra = shifted % kDaysPerEra;
  const std::int32_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
  const std::int32_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int32_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const std::int32_t month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  return {.year = era * 400 + yearOfEra + (month <= 2 ? 1 : 0),
          .month = month,
          .day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1};
}

static_assert(DaysFromCivil({1899, 12, 30}) == 0);
static_assert(DaysFromCivil({1, 1, 1}) == static_cast<std::int32_t>(kFirstDate));
static_assert(DaysFromCivil({9999, 12, 31}) == static_cast<std::int32_t>(kLastDate));

/// The time of day in milliseconds; kMillisecondsPerDay if it rounds up to midnight.
std::int32_t MillisecondsOf(TDateTime date, TDateTime whole) {
  return static_cast<std::int32_t>(std::abs(date - whole) * kMillisecondsPerDay + 0.5);
}

/// The day's number, the time's carry included; false if that isn't in the calendar.
bool DayNumberOf(TDateTime date, std::int32_t& day) {
  if (!(date > kFirstDate - 1 && date < kLastDate + 1)) return false;  // so written that NaN fails
  day = static_cast<std::int32_t>(date);
  if (MillisecondsOf(date, day) == kMillisecondsPerDay) ++day;
  return day <= static_cast<std::int32_t>(kLastDate);
}

std::string Padded(std::int32_t value, std::size_t width) {
  std::string digits = std::to_string(value);
  return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

}  // namespace

// -- Calendar -------------------------------------------------------------------------------------------------------

bool IsLeapYear(std::int32_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

std::int32_t DaysInMonth(std::int32_t year, std::int32_t month) {
  constexpr std::array<std::int32_t, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return month == 2 && IsLeapYear(year) ? 29 : kDays[static_cast<std::size_t>(month - 1)];
}

bool TryEncodeDate(std::int32_t year, std::int32_t month, std::int32_t day, TDateTime& date) {
  if (year < kFirstYear || year > kLastYear || day < 1 || day > DaysInMonth(year, month)) return false;
  date = DaysFromCivil({.year = year, .month = month, .day = day});
  return true;
}

TDateTime EncodeDate(std::int32_t year, std::int32_t month, std::int32_t day) {
  TDateTime date = 0;
  if (TryEncodeDate(year, month, day, date)) return date;
  throw EConvertError("'" + Padded(year, 4) + "-" + Padded(month, 2) + "-" + Padded(day, 2) + "' is not a valid date");
}

void DecodeDate(TDateTime date, std::uint16_t& year, std::uint16_t& month, std::uint16_t& day) {
  std::int32_t number = 0;
  const bool inCalendar = DayNumberOf(date, number);
  const TCivilDate civil = inCalendar ? CivilFromDays(number) : TCivilDate{0, 0, 0};
  year = static_cast<std::uint16_t>(civil.year);
  month = static_cast<std::uint16_t>(civil.month);
  day = static_cast<std::uint16_t>(civil.day);
}

std::int32_t DayOfWeek(TDateTime date) {
  constexpr std::int32_t kWholeWeeks = 700'000;  // makes every day of the calendar positive; day 1 was a Sunday
  std::int32_t number = 0;
  if (DayNumberOf(date, number)) return (number - 1 + kWholeWeeks) % 7 + 1;
  if (!std::isfinite(date)) return 0;
  const auto rest = static_cast<std::int32_t>(std::fmod(std::trunc(date), 7.0));  // -6 to 6
  return (rest + 6) % 7 + 1;
}

// -- Time of day ----------------------------------------------------------------------------------------------------

bool TryEncodeTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond,
                   TDateTime& time) {
  const auto within = [](std::int32_t value, std::int32_t end) { return value >= 0 && value < end; };
  if (!within(hour, 24) || !within(minute, 60) || !within(second, 60) || !within(millisecond, 1000)) return false;
  time = static_cast<double>(((hour * 60 + minute) * 60 + second) * 1000 + millisecond) / kMillisecondsPerDay;
  return true;
}

TDateTime EncodeTime(std::int32_t hour, std::int32_t minute, std::int32_t second, std::int32_t millisecond) {
  TDateTime time = 0;
  if (TryEncodeTime(hour, minute, second, millisecond, time)) return time;
  throw EConvertError("'" + Padded(hour, 2) + ":" + Padded(minute, 2) + ":" + Padded(second, 2) + "." +
                      Padded(millisecond, 3) + "' is not a valid time");
}

void DecodeTime(TDateTime time, std::uint16_t& hour, std::uint16_t& minute, std::uint16_t& second,
                std::uint16_t& millisecond) {
  const std::int32_t rest = std::isfinite(time) ? MillisecondsOf(time, std::trunc(time)) % kMillisecondsPerDay : 0;
  hour = static_cast<std::uint16_t>(rest / 3'600'000);
  minute = static_cast<std::uint16_t>(rest / 60'000 % 60);
  second = static_cast<std::uint16_t>(rest / 1000 % 60);
  millisecond = static_cast<std::uint16_t>(rest % 1000);
}

}  // namespace vx
