#include "platform/dataset/FloatMask.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/runtime/Locale.h"
#include "platform/runtime/NumberText.h"

namespace vx {

namespace {

constexpr std::int32_t kPrecision = 15;
constexpr std::int32_t kMaxDecimals = 18;
constexpr std::int32_t kMaxExponentDigits = 4;
constexpr double kBeyondMasks = 1e15;

/// Goes through a mask and knows what is quoted.
class TMaskScan {
 public:
  explicit TMaskScan(std::string_view mask) : mask_(mask) {}

  /// The next character that isn't a quote; false at the end.
  bool Next() {
    for (; at_ < mask_.size(); ++at_) {
      const char c = mask_[at_];
      const bool isQuote = quote_ != '\0' ? c == quote_ : c == '\'' || c == '"';
      if (!isQuote) return ++at_, true;
      quote_ = quote_ != '\0' ? '\0' : c;
    }
    return false;
  }
  char Char() const { return mask_[at_ - 1]; }
  bool IsQuoted() const { return quote_ != '\0'; }
  bool IsDigit() const { return !IsQuoted() && (Char() == '0' || Char() == '#'); }
  std::size_t At() const { return at_; }
  /// At an "E+" or its like, which is passed with its zeros: their number.
  std::optional<std::int32_t> TakeExponent() {
    if (IsQuoted() || (Char() != 'E' && Char() != 'e') || at_ == mask_.size()) return std::nullopt;
    if (mask_[at_] != '+' && mask_[at_] != '-') return std::nullopt;
    const std::size_t end = std::min(mask_.find_first_not_of('0', at_ + 1), mask_.size());
    const auto zeros = static_cast<std::int32_t>(std::min(end - at_ - 1, std::size_t{kMaxExponentDigits}));
    at_ = end;
    return zeros;
  }

 private:
  std::string_view mask_;
  std::size_t at_ = 0;
  char quote_ = '\0';
};

/// What a section asks for, counted over its digits.
struct TSection {
  std::string_view Mask;
  std::int32_t Whole = 0;       // digits before the separator
  std::int32_t LeastWhole = 0;  // of them, from the first '0' on
  std::int32_t Decimals = 0;
  std::int32_t LeastDecimals = 0;  // up to the last '0'
  std::int32_t ExponentDigits = -1;
  char ExponentMark = 'E';
  bool ShowsPlus = false;
  bool HasPoint = false;
  bool InGroups = false;
  bool HasText = false;

  bool IsEmpty() const { return Whole + Decimals == 0 && !HasText; }
};

void CountDigit(TSection& section, bool isForced) {
  if (section.HasPoint) {
    ++section.Decimals;
    if (isForced) section.LeastDecimals = section.Decimals;
  } else {
    ++section.Whole;
    if (isForced || section.LeastWhole > 0) ++section.LeastWhole;
  }
}

TSection Parse(std::string_view mask) {
  TSection section{.Mask = mask};
  for (TMaskScan scan(mask); scan.Next();) {
    const char c = scan.Char();
    const std::size_t at = scan.At();
    if (scan.IsDigit())
      CountDigit(section, c == '0');
    else if (!scan.IsQuoted() && c == '.')
      section.HasPoint = true;
    else if (!scan.IsQuoted() && c == ',')
      section.InGroups = true;
    else if (const auto zeros = scan.TakeExponent()) {
      section.ExponentDigits = *zeros;
      section.ExponentMark = c;
      section.ShowsPlus = mask[at] == '+';
    } else
      section.HasText = true;
  }
  return section;
}

/// The parts between the semicolons that aren't quoted.
std::array<std::string_view, 3> Sections(std::string_view mask) {
  std::array<std::string_view, 3> sections;
  std::size_t begin = 0;
  std::size_t count = 0;
  for (TMaskScan scan(mask); count < sections.size() && scan.Next();) {
    if (scan.IsQuoted() || scan.Char() != ';') continue;
    sections[count++] = mask.substr(begin, scan.At() - 1 - begin);
    begin = scan.At();
  }
  if (count < sections.size()) sections[count] = mask.substr(begin);
  return sections;
}

/// The digits of a number that isn't below zero, as a section wants them.
struct TDigits {
  std::string Whole;
  std::string Decimals;
  std::string Exponent;  // its mark included
};

/// Cuts a printed number at the locale's separator and its exponent.
TDigits Cut(const std::string& printed) {
  const std::size_t mark = std::min(printed.find('E'), printed.size());
  const std::size_t point = std::min(printed.find(Locale().DecimalSeparator), mark);
  return {.Whole = printed.substr(0, point),
          .Decimals = point < mark ? printed.substr(point + 1, mark - point - 1) : std::string(),
          .Exponent = printed.substr(mark)};
}

std::string ExponentText(const TSection& section, const std::string& printed) {
  std::string text(1, section.ExponentMark);
  if (printed[1] == '-' || section.ShowsPlus) text += printed[1];
  return text.append(printed, 2);
}

TDigits DigitsOf(double value, const TSection& section) {
  const bool hasExponent = section.ExponentDigits >= 0;
  const std::int32_t decimals = std::min(section.Decimals, hasExponent ? kPrecision - 1 : kMaxDecimals);
  TDigits digits = Cut(hasExponent ? FloatToStrF(std::abs(value), ffExponent, decimals + 1, section.ExponentDigits)
                                   : FloatToStrF(std::abs(value), ffFixed, kPrecision, decimals));
  if (hasExponent) digits.Exponent = ExponentText(section, digits.Exponent);
  const auto least = static_cast<std::size_t>(section.LeastDecimals);
  while (digits.Decimals.size() > least && digits.Decimals.back() == '0') digits.Decimals.pop_back();
  if (digits.Whole == "0" && section.LeastWhole == 0) digits.Whole.clear();
  return digits;
}

bool IsZero(const TDigits& digits) {
  return (digits.Whole + digits.Decimals).find_first_of("123456789") == std::string::npos;
}

/// Puts digits and texts together in the order of the section.
class TMaskWriter {
 public:
  TMaskWriter(const TSection& section, TDigits digits) : section_(section), digits_(std::move(digits)) {}

  std::string Text() {
    for (TMaskScan scan(section_.Mask); scan.Next();) {
      if (scan.IsDigit())
        behind_ ? Decimal() : Whole();
      else if (!scan.IsQuoted() && scan.Char() == '.')
        Point();
      else if (!scan.IsQuoted() && scan.Char() == ',')
        continue;
      else if (scan.TakeExponent())
        text_ += digits_.Exponent;
      else
        text_ += scan.Char();
    }
    return std::move(text_);
  }

 private:
  void Whole() {
    const std::int32_t places = section_.Whole - taken_++;  // that are left, this one included
    const auto size = static_cast<std::int32_t>(digits_.Whole.size());
    if (taken_ == 1)
      for (std::int32_t left = size; left > places; --left)
        Digit(digits_.Whole[static_cast<std::size_t>(size - left)], left);
    if (places <= size)
      Digit(digits_.Whole[static_cast<std::size_t>(size - places)], places);
    else if (places <= section_.LeastWhole)
      Digit('0', places);
  }
  /// A digit before the separator with `left` of them to come, itself included.
  void Digit(char digit, std::int32_t left) {
    text_ += digit;
    if (section_.InGroups && left > 1 && left % 3 == 1 && Locale().ThousandSeparator != '\0')
      text_ += Locale().ThousandSeparator;
  }
  void Point() {
    if (!behind_ && section_.Whole == 0) text_ += digits_.Whole;  // ".00" has no place for them
    if (!behind_ && !digits_.Decimals.empty()) text_ += Locale().DecimalSeparator;
    behind_ = true;
  }
  void Decimal() {
    if (decimal_ < digits_.Decimals.size()) text_ += digits_.Decimals[decimal_++];
  }

  const TSection& section_;
  TDigits digits_;
  std::string text_;
  std::int32_t taken_ = 0;
  std::size_t decimal_ = 0;
  bool behind_ = false;
};

std::string Write(const TSection& section, TDigits digits, bool isSigned) {
  return (isSigned ? "-" : "") + TMaskWriter(section, std::move(digits)).Text();
}

}  // namespace

std::string FormatFloat(std::string_view mask, double value) {
  if (!(std::abs(value) < kBeyondMasks)) return FloatToStr(value);  // so written that NaN fails
  const std::array<std::string_view, 3> masks = Sections(mask);
  const bool isOwn = value < 0 && !masks[1].empty();
  TSection section = Parse(isOwn ? masks[1] : masks[0]);
  if (section.IsEmpty()) return FloatToStr(value);
  TDigits digits = DigitsOf(value, section);
  const bool isZero = section.Whole + section.Decimals > 0 ? IsZero(digits) : value == 0;
  if (!isZero) return Write(section, std::move(digits), value < 0 && !isOwn);
  const TSection zero = Parse(masks[2].empty() ? masks[0] : masks[2]);
  if (zero.IsEmpty()) return FloatToStr(0);
  return Write(zero, DigitsOf(0, zero), false);
}

}  // namespace vx
