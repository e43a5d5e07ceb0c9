#include "platform/runtime/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::int32_t kMaxPrecision = 15;
constexpr std::int32_t kMaxDecimals = 18;
constexpr std::int32_t kMaxExponentDigits = 4;
/// Holds every number of 15 digits before and 18 behind the separator, or with an exponent.
using TNumberBuffer = std::array<char, 64>;

std::string_view Print(TNumberBuffer& buffer, double value, std::chars_format format, std::int32_t precision) {
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision).ptr;
  return {buffer.data(), end};
}

/// "1.5e-07" to "1.5E-7" and "1e+15" to "1E15", with the locale's separator.
std::string Localised(std::string_view printed) {
  const std::size_t mark = std::min(printed.find('e'), printed.size());
  std::string text(printed.substr(0, mark));
  std::replace(text.begin(), text.end(), '.', Locale().DecimalSeparator);
  if (mark == printed.size()) return text;
  text += printed[mark + 1] == '-' ? "E-" : "E";
  const std::string_view exponent = printed.substr(mark + 2);
  return text.append(exponent.substr(std::min(exponent.find_first_not_of('0'), exponent.size() - 1)));
}

std::string GeneralText(double value, std::int32_t precision) {
  TNumberBuffer buffer;
  return Localised(Print(buffer, value, std::chars_format::general, precision));
}

/// The power of ten of the first digit, once the value is rounded to `precision` digits.
std::int32_t DecimalExponent(double value, std::int32_t precision) {
  if (value == 0) return 0;
  TNumberBuffer buffer;
  const std::string_view printed = Print(buffer, value, std::chars_format::scientific, precision - 1);
  const std::size_t mark = printed.find('e') + 1;
  std::int32_t exponent = 0;
  std::from_chars(printed.data() + mark + (printed[mark] == '+' ? 1 : 0), printed.data() + printed.size(), exponent);
  return exponent;
}

/// An exact half at the last decimal, moved a little away from zero so that it is rounded that way. A double is such a
/// half exactly when twice its multiple by the power of two of that many decimals is odd: the rest of the power of ten
/// is odd.
double HalvesAway(double value, std::int32_t decimals) {
  const double scaled = std::ldexp(std::abs(value), decimals + 1);
  if (std::fmod(scaled, 2.0) != 1.0) return value;
  return std::nextafter(value, std::copysign(std::numeric_limits<double>::infinity(), value));
}

bool IsZeroText(std::string_view text) { return text.find_first_of("123456789") == std::string_view::npos; }

std::string FixedText(double value, std::int32_t precision, std::int32_t decimals) {
  const std::int32_t exponent = DecimalExponent(value, precision);
  if (exponent >= precision) return GeneralText(value, precision);
  const std::int32_t printed = std::clamp(precision - 1 - exponent, 0, decimals);  // what lies beyond prints as zeros
  TNumberBuffer buffer;
  std::string_view digits = Print(buffer, HalvesAway(value, printed), std::chars_format::fixed, printed);
  if (digits.front() == '-' && IsZeroText(digits)) digits.remove_prefix(1);
  std::string text = Localised(digits);
  if (printed == 0 && decimals > 0) text += Locale().DecimalSeparator;
  return text.append(static_cast<std::size_t>(decimals - printed), '0');
}

/// Whether exactly a half of the last of `precision` digits is left. No double has more than 767 digits.
bool IsHalf(double value, std::int32_t precision) {
  std::array<char, 800> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value), std::chars_format::scientific, 767)
          .ptr;
  const std::string_view digits(buffer.data(), end);
  const auto next = static_cast<std::size_t>(precision) + 1;  // behind the first digit stands the point
  return digits[next] == '5' && digits[digits.find_first_not_of('0', next + 1)] == 'e';
}

std::string ExponentText(double value, std::int32_t precision, std::int32_t leastDigits) {
  TNumberBuffer buffer;
  if (IsHalf(value, precision))
    value = std::nextafter(value, std::copysign(std::numeric_limits<double>::infinity(), value));
  const std::string_view printed =
      Print(buffer, value == 0 ? 0.0 : value, std::chars_format::scientific, precision - 1);
  const std::size_t mark = printed.find('e');
  std::string text(printed.substr(0, mark));
  std::replace(text.begin(), text.end(), '.', Locale().DecimalSeparator);
  const std::string_view digits =
      printed.substr(std::min(printed.find_first_not_of('0', mark + 2), printed.size() - 1));
  text.append("E").append(1, printed[mark + 1]);
  return text.append(static_cast<std::size_t>(std::max(leastDigits - static_cast<std::int32_t>(digits.size()), 0)), '0')
      .append(digits);
}

/// The digits before the decimal separator in groups of three. A text with an exponent has one of them.
std::string NumberFormatText(double value, std::int32_t precision, std::int32_t decimals) {
  std::string text = FixedText(value, precision, decimals);
  const std::size_t first = text.front() == '-' ? 1 : 0;
  const std::size_t end = std::min(text.find_first_not_of("0123456789", first), text.size());
  if (Locale().ThousandSeparator == '\0') return text;
  for (std::size_t at = end; at > first + 3;) text.insert(at -= 3, 1, Locale().ThousandSeparator);
  return text;
}

std::string CurrencyText(double value, std::int32_t precision, std::int32_t decimals) {
  std::string amount = NumberFormatText(value, precision, decimals);
  const bool isNegative = amount.front() == '-';
  if (isNegative) amount.erase(0, 1);
  std::string text;
  for (const char c : isNegative ? Locale().NegMoneyFormat : Locale().MoneyFormat)
    text += c == '$' ? Locale().CurrencyString : c == 'n' ? amount : std::string(1, c);
  return text;
}

/// Without blanks and without a plus sign in front of what isn't another sign.
std::string_view NumberPart(std::string_view text) {
  text = Trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
  return text;
}

bool IsFloatCharacter(char c, char separator) {
  return (c >= '0' && c <= '9') || c == '-' || c == '+' || c == 'e' || c == 'E' || c == separator;
}

bool ReadFloat(std::string_view number, double& value) {
  double read = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), read);
  if (error != std::errc() || end != number.data() + number.size()) return false;
  value = read;
  return true;
}

}  // namespace

// -- To text --------------------------------------------------------------------------------------------------------

std::string FloatToStr(double value) { return FloatToStrF(value, ffGeneral, kMaxPrecision, 0); }

std::string FloatToStrF(double value, TFloatFormat format, std::int32_t precision, std::int32_t digits) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value > 0 ? "INF" : "-INF";
  precision = std::clamp(precision, 1, kMaxPrecision);
  if (format == ffExponent) return ExponentText(value, precision, std::clamp(digits, 0, kMaxExponentDigits));
  digits = std::clamp(digits, 0, kMaxDecimals);
  if (format == ffFixed) return FixedText(value, precision, digits);
  if (format == ffNumber) return NumberFormatText(value, precision, digits);
  if (format == ffCurrency) return CurrencyText(value, precision, digits);
  return GeneralText(value == 0 ? 0.0 : value, precision);
}

std::string IntToStr(std::int64_t value) { return std::to_string(value); }

// -- From text ------------------------------------------------------------------------------------------------------

bool TryStrToFloat(std::string_view text, double& value) {
  const std::string_view number = NumberPart(text);
  const char separator = Locale().DecimalSeparator;
  const auto allowed = [separator](char c) { return IsFloatCharacter(c, separator); };
  if (number.empty() || !std::all_of(number.begin(), number.end(), allowed)) return false;
  if (separator == '.') return ReadFloat(number, value);
  std::string pointed(number);
  std::replace(pointed.begin(), pointed.end(), separator, '.');
  return ReadFloat(pointed, value);
}

double StrToFloat(std::string_view text) {
  double value = 0;
  if (TryStrToFloat(text, value)) return value;
  throw EConvertError("'" + std::string(text) + "' is not a valid floating point value");
}

bool TryStrToInt(std::string_view text, std::int32_t& value) {
  const std::string_view number = NumberPart(text);
  std::int32_t read = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), read);
  if (number.empty() || error != std::errc() || end != number.data() + number.size()) return false;
  value = read;
  return true;
}

std::int32_t StrToInt(std::string_view text) {
  std::int32_t value = 0;
  if (TryStrToInt(text, value)) return value;
  throw EConvertError("'" + std::string(text) + "' is not a valid integer value");
}

// -- To whole numbers -----------------------------------------------------------------------------------------------

std::int64_t Round(double value) { return Trunc(std::nearbyint(value)); }

std::int64_t Trunc(double value) {
  constexpr double kBeyond = 9223372036854775808.0;  // 2 to the power 63
  if (std::isnan(value)) return 0;
  if (value >= kBeyond) return std::numeric_limits<std::int64_t>::max();
  if (value < -kBeyond) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(value);
}

}  // namespace vx
