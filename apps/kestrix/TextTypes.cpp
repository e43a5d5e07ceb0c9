#include "TextTypes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kLongestNumber = 400;  // 1e308 written out
constexpr std::size_t kExactDigits = 15;     // what a double holds of any digits

constexpr std::array<std::pair<std::string_view, TColumnType>, 7> kTypeNames = {{{"boolean", TColumnType::Boolean},
                                                                                 {"integer", TColumnType::Integer},
                                                                                 {"float", TColumnType::Float},
                                                                                 {"date", TColumnType::Date},
                                                                                 {"datetime", TColumnType::DateTime},
                                                                                 {"string", TColumnType::Text},
                                                                                 {"text", TColumnType::Text}}};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSameWord(std::string_view a, std::string_view b) { return a.size() == b.size() && CompareText(a, b) == 0; }

/// The shape of a number's text, before its value is asked for.
struct TNumberShape {
  bool isNumber = false;
  bool isInteger = false;       ///< digits only, but for a sign
  bool hasLeadingZero = false;  ///< "007", "00.5", not "0.5"
  std::size_t digits = 0;       ///< before the decimal character
};

std::size_t CountDigits(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && IsDigit(text[end])) ++end;
  return end - from;
}

/// Passes an exponent by; false if there is an "e" without one.
bool SkipExponent(std::string_view text, std::size_t& at) {
  if (at >= text.size() || (text[at] != 'e' && text[at] != 'E')) return true;
  ++at;
  if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  const std::size_t digits = CountDigits(text, at);
  at += digits;
  return digits > 0;
}

TNumberShape ShapeOf(std::string_view text, char decimal) {
  TNumberShape shape;
  std::size_t at = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
  shape.digits = CountDigits(text, at);
  shape.hasLeadingZero = shape.digits > 1 && text[at] == '0';
  at += shape.digits;
  shape.isInteger = shape.digits > 0 && at == text.size();
  std::size_t fraction = 0;
  if (at < text.size() && text[at] == decimal) {
    fraction = CountDigits(text, at + 1);
    at += 1 + fraction;
  }
  shape.isNumber = shape.digits + fraction > 0 && SkipExponent(text, at) && at == text.size();
  return shape;
}

template <class T>
std::optional<T> FromChars(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  T value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

std::string_view TypeName(TColumnType type) {
  for (const auto& [name, named] : kTypeNames)
    if (named == type) return name;
  return {};
}

std::optional<TColumnType> TypeOfName(std::string_view name) {
  for (const auto& [known, type] : kTypeNames)
    if (IsSameWord(known, name)) return type;
  return std::nullopt;
}

std::optional<bool> ReadBoolean(std::string_view text) {
  const std::string_view word = Trimmed(text);
  if (IsSameWord(word, "true") || IsSameWord(word, "yes")) return true;
  if (IsSameWord(word, "false") || IsSameWord(word, "no")) return false;
  return std::nullopt;
}

std::optional<std::int32_t> ReadInteger(std::string_view text) {
  const std::string_view digits = Trimmed(text);
  if (!ShapeOf(digits, '.').isInteger) return std::nullopt;
  return FromChars<std::int32_t>(digits);
}

std::optional<double> ReadFloat(std::string_view text, char decimal) {
  const std::string_view number = Trimmed(text);
  if (number.size() > kLongestNumber || !ShapeOf(number, decimal).isNumber) return std::nullopt;
  if (decimal == '.') return FromChars<double>(number);
  std::string pointed(number);
  std::replace(pointed.begin(), pointed.end(), decimal, '.');
  return FromChars<double>(pointed);
}

bool TNullWords::IsNull(std::string_view text) const {
  const std::string_view word = Trimmed(text);
  return word.empty() || std::find(words_.begin(), words_.end(), word) != words_.end();
}

// -- Columns ----------------------------------------------------------------------------------------------------------

TTypeFinder::TTypeFinder(const TNullWords& nulls, bool mayHaveDecimalComma)
    : nulls_(&nulls), isCommaFloat_(mayHaveDecimalComma) {}

void TTypeFinder::Add(std::string_view cell, std::size_t line) {
  if (cell.size() > longest_) {
    longest_ = cell.size();
    longestLine_ = line;
  }
  const std::string_view text = Trimmed(cell);
  if (nulls_->IsNull(text) || !IsEvidence(text)) return;
  ++values_;
  if (isBoolean_ && !ReadBoolean(text)) isBoolean_ = false;
  if (isPointFloat_ || isCommaFloat_) AddNumber(text);
  if (HasDates()) AddDate(text);
}

bool TTypeFinder::IsEvidence(std::string_view text) const {
  if (expected_ == TColumnType::Float) return ReadFloat(text, '.') || ReadFloat(text, ',');
  if (expected_ != TColumnType::Date && expected_ != TColumnType::DateTime) return true;
  return ReadDate(text, TDateOrder::DayFirst) || ReadDate(text, TDateOrder::MonthFirst);
}

void TTypeFinder::AddNumber(std::string_view text) {
  const TNumberShape shape = ShapeOf(text, '.');
  const bool isWide = shape.isInteger && !ReadInteger(text);
  const bool isCode = shape.hasLeadingZero || (isWide && shape.digits > kExactDigits);
  if (isCode) isInteger_ = isPointFloat_ = isCommaFloat_ = false;
  if (isWide) sawWideDigits_ = true;
  if (!shape.isInteger) {
    isInteger_ = false;
    sawFraction_ = true;
  }
  if (isPointFloat_ && !ReadFloat(text, '.')) isPointFloat_ = false;
  if (isCommaFloat_ && !ReadFloat(text, ',')) isCommaFloat_ = false;
}

void TTypeFinder::AddDate(std::string_view text) {
  // Eight digits without anything between are a number unless the user says otherwise.
  const bool isDigits = CountDigits(text, 0) == text.size();
  const auto dayFirst = isDigits || !isDayFirst_ ? std::nullopt : ReadDate(text, TDateOrder::DayFirst);
  const auto monthFirst = isDigits || !isMonthFirst_ ? std::nullopt : ReadDate(text, TDateOrder::MonthFirst);
  isDayFirst_ = dayFirst.has_value();
  isMonthFirst_ = monthFirst.has_value();
  if (!HasDates()) return;
  const TDateCell& date = dayFirst ? *dayFirst : *monthFirst;
  sawTime_ = sawTime_ || date.hasTime;
  sawExchangeable_ = sawExchangeable_ || date.couldBeExchanged;
}

TColumnType TTypeFinder::Type(char decimal) const {
  if (values_ == 0) return TColumnType::Text;
  if (isBoolean_) return TColumnType::Boolean;
  const bool isFloat = decimal == ',' ? isCommaFloat_ : isPointFloat_;
  if (isInteger_ && isFloat && !sawWideDigits_) return TColumnType::Integer;
  if (isFloat && (sawFraction_ || !sawWideDigits_)) return TColumnType::Float;
  if (HasDates()) return sawTime_ ? TColumnType::DateTime : TColumnType::Date;
  return TColumnType::Text;
}

bool TTypeFinder::NeedsDecimalComma() const { return values_ > 0 && isCommaFloat_ && !isPointFloat_; }

TDateOrder TTypeFinder::DateOrder(TDateOrder preferred) const {
  if (isDayFirst_ == isMonthFirst_) return preferred;
  return isDayFirst_ ? TDateOrder::DayFirst : TDateOrder::MonthFirst;
}

bool TTypeFinder::IsDateOrderOpen() const { return isDayFirst_ && isMonthFirst_ && sawExchangeable_; }

}  // namespace vx::kestrix
