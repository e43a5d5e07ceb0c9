#include "CellValue.h"

#include <array>
#include <charconv>
#include <cmath>

#include "platform/dataset/Field.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr double kLargestPlain = 1e15;  // beyond, digits would be made up
constexpr double kSmallestPlain = 1e-6;

/// Colons in quotes: they are not the locale's.
std::string MomentText(const TMoment& moment) {
  if (!moment.hasTime) return FormatDateTime("yyyy-mm-dd", moment.days);
  const std::string text = FormatDateTime("yyyy-mm-dd hh':'nn':'ss'.'zzz", moment.days);
  return text.ends_with(".000") ? text.substr(0, text.size() - 4) : text;
}

bool IsPlain(double value) {
  const double size = std::fabs(value);
  return size == 0 || (size >= kSmallestPlain && size < kLargestPlain);
}

template <class T>
std::int32_t Order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

template <class T>
TCellValue OrNull(const std::optional<T>& value) {
  return value ? TCellValue(*value) : TCellValue();
}

}  // namespace

std::string NumberText(double value) {
  std::array<char, 64> buffer{};
  char* const end = buffer.data() + buffer.size();
  const auto result = IsPlain(value) ? std::to_chars(buffer.data(), end, value, std::chars_format::fixed)
                                     : std::to_chars(buffer.data(), end, value);
  return {buffer.data(), result.ptr};
}

std::string NumberText(double value, int decimals) {
  if (std::fabs(value) >= kLargestPlain) return NumberText(value);
  std::array<char, 64> buffer{};
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals);
  const std::string text(buffer.data(), result.ptr);
  const bool isNothing = text.find_first_not_of("-0.") == std::string::npos;
  return isNothing && text.front() == '-' ? text.substr(1) : text;
}

std::string CellText(const TCellValue& value) {
  if (const auto* isTrue = std::get_if<bool>(&value)) return *isTrue ? "True" : "False";
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return std::to_string(*integer);
  if (const auto* number = std::get_if<double>(&value)) return NumberText(*number);
  if (const auto* moment = std::get_if<TMoment>(&value)) return MomentText(*moment);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return {};
}

std::int32_t CompareCells(const TCellValue& a, const TCellValue& b) {
  if (const auto* text = std::get_if<std::string>(&a)) return AnsiCompareText(*text, std::get<std::string>(b));
  if (const auto* moment = std::get_if<TMoment>(&a)) return Order(moment->days, std::get<TMoment>(b).days);
  if (const auto* number = std::get_if<double>(&a)) return Order(*number, std::get<double>(b));
  if (const auto* integer = std::get_if<std::int32_t>(&a)) return Order(*integer, std::get<std::int32_t>(b));
  return Order(std::get<bool>(a), std::get<bool>(b));
}

bool AreSameCells(const TCellValue& a, const TCellValue& b) {
  const auto* text = std::get_if<std::string>(&a);
  return text != nullptr ? *text == std::get<std::string>(b) : CompareCells(a, b) == 0;
}

bool AreSameValues(const TCellValue& a, const TCellValue& b) {
  if (a.index() != b.index()) return false;
  const auto* moment = std::get_if<TMoment>(&a);
  if (moment != nullptr && moment->hasTime != std::get<TMoment>(b).hasTime) return false;
  return IsNull(a) || AreSameCells(a, b);
}

TCellValue CellOfText(std::string_view text, TColumnType type, TDateOrder order, char decimal) {
  switch (type) {
    case TColumnType::Boolean:
      return OrNull(ReadBoolean(text));
    case TColumnType::Integer:
      return OrNull(ReadInteger(text));
    case TColumnType::Float: {
      const auto number = ReadFloat(text, decimal);
      return OrNull(number ? number : ReadFloat(text, '.'));
    }
    case TColumnType::Date:
    case TColumnType::DateTime: {
      const auto date = ReadDate(text, order);
      if (!date) return {};
      const bool hasTime = type == TColumnType::DateTime;
      // A whole number of milliseconds, as a data set's fields give it back, so that equal moments stay equal.
      return TMoment{hasTime ? NativeToDateTime(DateTimeToNative(date->days)) : std::trunc(date->days), hasTime};
    }
    case TColumnType::Text:
      break;
  }
  return std::string(text);
}

Variant VariantOf(const TCellValue& value) {
  if (const auto* moment = std::get_if<TMoment>(&value)) return Variant::Date(moment->days);
  if (const auto* isTrue = std::get_if<bool>(&value)) return {*isTrue};
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return {*integer};
  if (const auto* number = std::get_if<double>(&value)) return {*number};
  if (const auto* text = std::get_if<std::string>(&value)) return {*text};
  return Variant::Null();
}

}  // namespace vx::kestrix
