#include "NaiveValues.h"

#include <cmath>
#include <cstdio>
#include <cstring>

namespace vx::naive {
namespace {

template <class T>
T Read(const TBytes& bytes) {
  T value{};
  if (bytes.size() >= sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

template <class T>
TBytes Write(T value) {
  TBytes bytes(sizeof value);
  std::memcpy(bytes.data(), &value, sizeof value);
  return bytes;
}

template <class T>
std::int32_t Sign(const T& a, const T& b) {
  return a < b ? -1 : (b < a ? 1 : 0);
}

const std::string kSmallE = "\xC3\xA9";
const std::string kCapitalE = "\xC3\x89";

std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
  return text;
}

bool IsReal(TType type) { return type == TType::Currency || type == TType::DateTime || type == TType::Float; }

double NumberFromText(const std::string& text) {
  std::size_t used = 0;
  double number = 0;
  try {
    number = std::stod(text, &used);
  } catch (const std::exception&) {
    used = std::string::npos;
  }
  if (used != text.size()) throw ENaive("EVariantError", "");
  return number;
}

// Days of a month in the Gregorian calendar.
bool IsLeap(std::int32_t year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }
std::int32_t DaysIn(std::int32_t year, std::int32_t month) {
  static const std::int32_t kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

struct TCivil {
  std::int32_t year, month, day;
};

// Day numbers count from 1899-12-30; January 1 of 1900 is day 2. Everything else is found by walking.
double DayNumber(TCivil date) {
  std::int32_t number = 2;
  for (std::int32_t year = 1900; year < date.year; ++year) number += IsLeap(year) ? 366 : 365;
  for (std::int32_t year = 1899; year >= date.year; --year) number -= IsLeap(year) ? 366 : 365;
  for (std::int32_t month = 1; month < date.month; ++month) number += DaysIn(date.year, month);
  return number + date.day - 1;
}

TCivil CivilOf(double date) {
  std::int32_t left = static_cast<std::int32_t>(std::trunc(date)) + 36522;  // days since 1800-01-01
  TCivil civil{1800, 1, 1};
  for (; left >= (IsLeap(civil.year) ? 366 : 365); ++civil.year) left -= IsLeap(civil.year) ? 366 : 365;
  for (; left >= DaysIn(civil.year, civil.month); ++civil.month) left -= DaysIn(civil.year, civil.month);
  civil.day = left + 1;
  return civil;
}

/// 1 is Sunday; day 1, 1899-12-31, was one.
std::int32_t WeekDay(double date) {
  const auto day = static_cast<std::int32_t>(std::trunc(date));
  return ((day - 1) % 7 + 7) % 7 + 1;
}

double WeekStart(double date, std::int32_t startOfWeek) {
  std::int32_t day = WeekDay(date) - (startOfWeek - 1);
  if (day <= 0) day += 7;
  return std::trunc(date) - (day - 1);
}

void SortRange(TRows& rows, std::int32_t left, std::int32_t right,
               const std::function<std::int32_t(const TRow*, const TRow*)>& compare) {
  const auto at = [&rows](std::int32_t i) -> TRow*& { return rows[static_cast<std::size_t>(i)]; };
  std::int32_t i = left;
  do {
    i = left;
    std::int32_t j = right;
    const TRow* pivot = at((left + right) / 2);
    do {
      while (compare(at(i), pivot) < 0) ++i;
      while (compare(at(j), pivot) > 0) --j;
      if (i <= j) std::swap(at(i++), at(j--));
    } while (i <= j);
    if (left < j) SortRange(rows, left, j, compare);
    left = i;
  } while (i < right);
}

}  // namespace

std::int32_t ReadInteger(TType type, const TBytes& bytes) {
  if (type == TType::Boolean) return Read<std::uint8_t>(bytes);
  if (type == TType::Smallint) return Read<std::int16_t>(bytes);
  if (type == TType::Word) return Read<std::uint16_t>(bytes);
  return Read<std::int32_t>(bytes);
}

double ReadDouble(const TBytes& bytes) { return Read<double>(bytes); }

std::string ReadText(const TBytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (byte == 0) break;
    text += static_cast<char>(byte);
  }
  return text;
}

TBytes BytesOf(TType type, double number, std::int32_t size) {
  if (type == TType::String) return BytesOf(FloatText(number), size);
  if (type == TType::Boolean) return Write(static_cast<std::uint8_t>(number));
  if (type == TType::Smallint) return Write(static_cast<std::int16_t>(number));
  if (type == TType::Word) return Write(static_cast<std::uint16_t>(number));
  return IsReal(type) ? Write(number) : Write(static_cast<std::int32_t>(number));
}

TBytes BytesOf(const std::string& text, std::int32_t size) {
  TBytes bytes(static_cast<std::size_t>(size), 0);
  for (std::size_t i = 0; i < bytes.size() && i < text.size(); ++i) bytes[i] = static_cast<std::uint8_t>(text[i]);
  return bytes;
}

std::string Lower(const std::string& text) {
  std::string lower = ReplaceAll(text, kCapitalE, kSmallE);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return lower;
}

std::string Upper(const std::string& text) {
  std::string upper = ReplaceAll(text, kSmallE, kCapitalE);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

bool SameName(const std::string& a, const std::string& b) { return Lower(a) == Lower(b); }

std::int32_t CompareValues(TType type, const TBytes& a, const TBytes& b) {
  if (type == TType::String) return Sign(Lower(ReadText(a)), Lower(ReadText(b)));
  if (IsReal(type)) return Sign(ReadDouble(a), ReadDouble(b));
  return Sign(ReadInteger(type, a), ReadInteger(type, b));
}

std::int32_t CompareFields(TType type, const TField& a, const TField& b) {
  if (!a.assigned && b.assigned) return 1;
  if (!a.assigned && !b.assigned) return 0;
  if (a.assigned && !b.assigned) return -1;
  return CompareValues(type, a.bytes, b.bytes);
}

namespace {

bool TextEqualsFilter(const std::string& text, const TValue& value) {
  if (const auto* other = std::get_if<std::string>(&value)) return text == *other;
  if (std::holds_alternative<std::monostate>(value)) return text.empty();
  if (const auto* flag = std::get_if<bool>(&value)) return text == (*flag ? "True" : "False");
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return NumberFromText(text) == *integer;
  if (const auto* real = std::get_if<double>(&value)) return NumberFromText(text) == *real;
  if (const auto* date = std::get_if<TDate>(&value)) return NumberFromText(text) == date->days;
  return false;
}

/// A Boolean counts as 0 or -1 among numbers.
bool NumberEqualsFilter(double number, const TValue& value) {
  if (std::holds_alternative<std::monostate>(value)) return number == 0;
  if (const auto* flag = std::get_if<bool>(&value)) return number == (*flag ? -1 : 0);
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return number == *integer;
  if (const auto* real = std::get_if<double>(&value)) return number == *real;
  if (const auto* date = std::get_if<TDate>(&value)) return number == date->days;
  if (const auto* text = std::get_if<std::string>(&value)) return number == NumberFromText(*text);
  return false;
}

}  // namespace

bool EqualsFilter(TType type, const TBytes& bytes, const TValue& value) {
  if (std::holds_alternative<TNull>(value)) return false;
  if (type == TType::String) return TextEqualsFilter(ReadText(bytes), value);
  if (type == TType::Boolean) {
    const bool flag = bytes[0] != 0;
    if (const auto* text = std::get_if<std::string>(&value)) return *text == (flag ? "True" : "False");
    return NumberEqualsFilter(flag ? -1 : 0, value);
  }
  return NumberEqualsFilter(IsReal(type) ? ReadDouble(bytes) : ReadInteger(type, bytes), value);
}

void QuickSort(TRows& rows, const std::function<std::int32_t(const TRow*, const TRow*)>& compare) {
  if (!rows.empty()) SortRange(rows, 0, static_cast<std::int32_t>(rows.size()) - 1, compare);
}

std::vector<std::string> SplitItems(const std::string& text) {
  std::vector<std::string> items;
  std::size_t start = 0;
  for (std::size_t at = text.find(';'); at != std::string::npos; at = text.find(';', start)) {
    items.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  if (start < text.size()) items.push_back(text.substr(start));
  return items;
}

std::string FloatText(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.15g", value == 0 ? 0.0 : value);
  return text;
}

double GroupDate(TGroupMode mode, double date, std::int32_t startOfWeek) {
  const TCivil civil = CivilOf(date);
  if (mode == TGroupMode::Day) return std::trunc(date);
  if (mode == TGroupMode::Week) return WeekStart(date, startOfWeek);
  if (mode == TGroupMode::Month) return DayNumber({civil.year, civil.month, 1});
  if (mode == TGroupMode::Year) return DayNumber({civil.year, 1, 1});
  return DayNumber({(civil.year + 99) / 100 * 100, 1, 1});  // a century is named by the year that closes it
}

double NextGroupDate(TGroupMode mode, double date, std::int32_t startOfWeek) {
  static const double kSteps[] = {1, 7, 32, 367, 36716};
  const double step = kSteps[static_cast<std::size_t>(mode)];
  return GroupDate(mode, GroupDate(mode, date, startOfWeek) + step, startOfWeek);
}

std::string DateText(double date) {
  const TCivil civil = CivilOf(date);
  char text[60];
  std::snprintf(text, sizeof text, "%02d/%02d/%04d 00:00:00", civil.day, civil.month, civil.year);
  return text;
}

}  // namespace vx::naive
