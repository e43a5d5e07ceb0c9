#include "platform/runtime/Variant.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <variant>

#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr double kTwo63 = 9223372036854775808.0;
/// As much of a bad text as a message quotes.
constexpr std::size_t kQuotedBytes = 80;

TVariantRelation Reversed(TVariantRelation relation) {
  if (relation == vrLess) return vrGreater;
  return relation == vrGreater ? vrLess : relation;
}

template <class T>
TVariantRelation Relation(T a, T b) {
  if (a == b) return vrEqual;
  return a < b ? vrLess : vrGreater;
}

TVariantRelation RelationOfDoubles(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return Relation<int>(std::isnan(a), std::isnan(b));
  return Relation(a, b);
}

/// Exact: the double's whole part is compared as an integer, then its fraction counts.
TVariantRelation RelationOfMixed(std::int64_t a, double b) {
  if (std::isnan(b) || b >= kTwo63) return vrLess;
  if (b < -kTwo63) return vrGreater;
  const auto whole = static_cast<std::int64_t>(b);
  const TVariantRelation relation = Relation(a, whole);
  return relation == vrEqual ? Relation(static_cast<double>(whole), b) : relation;
}

/// A number of one of the two natures, as texts and Variants give them.
using TNumber = std::variant<std::int64_t, double>;

TVariantRelation RelationOfNumbers(const TNumber& a, const TNumber& b) {
  const auto* const leftInt = std::get_if<std::int64_t>(&a);
  const auto* const rightInt = std::get_if<std::int64_t>(&b);
  if (leftInt != nullptr && rightInt != nullptr) return Relation(*leftInt, *rightInt);
  if (leftInt != nullptr) return RelationOfMixed(*leftInt, std::get<double>(b));
  if (rightInt != nullptr) return Reversed(RelationOfMixed(*rightInt, std::get<double>(a)));
  return RelationOfDoubles(std::get<double>(a), std::get<double>(b));
}

/// Whole numbers of 64 bits stay exact; all else goes by the runtime's number text.
bool ReadNumber(std::string_view text, TNumber& number) {
  std::string_view digits = Trimmed(text);
  if (digits.size() > 1 && digits.front() == '+' && digits[1] != '-') digits.remove_prefix(1);
  std::int64_t whole = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), whole);
  if (read.ec == std::errc() && read.ptr == digits.data() + digits.size()) {
    number = whole;
    return true;
  }
  double real = 0;
  if (!TryStrToFloat(text, real)) return false;
  number = real;
  return true;
}

/// Half to even, or false if it is out of 64 bits.
bool RoundToInt64(double value, std::int64_t& rounded) {
  if (!(value >= -kTwo63 && value < kTwo63)) return false;
  rounded = Round(value);
  return true;
}

TDateTime ReadDateTime(std::string_view text) {
  const std::size_t blank = text.find(' ');
  if (blank == std::string_view::npos) return StrToDate(text);
  const TDateTime date = StrToDate(text.substr(0, blank));
  const TDateTime time = StrToTime(text.substr(blank + 1));
  return date < 0 ? date - time : date + time;
}

}  // namespace

const char* VariantKindName(TVariantKind kind) {
  static constexpr std::array<const char*, 13> kNames = {"Unassigned", "Null",    "Boolean",  "Byte",   "Smallint",
                                                         "Word",       "Integer", "Int64",    "Double", "Date",
                                                         "String",     "Array",   "Interface"};
  return kNames.at(kind);
}

const char* BoolToStr(bool value) { return value ? "True" : "False"; }

// -- Making -----------------------------------------------------------------------------------------------------------

Variant Variant::Null() {
  Variant answer;
  answer.kind_ = vkNull;
  return answer;
}

Variant Variant::Date(TDateTime date) {
  Variant answer(date);
  answer.kind_ = vkDate;
  return answer;
}

Variant Variant::Array(std::vector<Variant> elements) {
  std::int32_t depth = 1;
  std::uint64_t number = elements.size();
  for (const Variant& element : elements) {
    if (element.kind_ != vkArray) continue;
    depth = std::max(depth, element.box_->Depth + 1);
    number += element.box_->Number;
  }
  if (depth > kMaxArrayDepth) throw EVariantError("Arrays nested deeper than " + std::to_string(kMaxArrayDepth));
  if (number > kMaxArrayElements)
    throw EVariantError("An array of more than " + std::to_string(kMaxArrayElements) + " elements");
  Variant answer;
  answer.box_ = std::make_shared<const TBox>(TBox{std::move(elements), depth, number, nullptr});
  answer.kind_ = vkArray;
  return answer;
}

Variant Variant::OfInterface(TInterfaceRef<IUnknown> object) {
  Variant answer;
  answer.box_ = std::make_shared<const TBox>(TBox{{}, 0, 0, std::move(object)});
  answer.kind_ = vkInterface;
  return answer;
}

// -- Converting -------------------------------------------------------------------------------------------------------

void Variant::RaiseCannotConvert(const char* wanted) const {
  std::string what = std::string("a variant of kind ") + VariantKindName(kind_);
  if (kind_ == vkString) what += " ('" + std::string(CutAtCodePoint(Text(), kQuotedBytes)) + "')";
  if (IsNumber()) what += " (" + AsString() + ")";
  throw EVariantError("Cannot convert " + what + " to " + wanted);
}

std::int64_t Variant::ToInt64(const char* wanted) const {
  if (kind_ == vkUnassigned) return 0;
  if (kind_ == vkBoolean) return -Int();
  if (IsInteger()) return Int();
  TNumber number = 0.0;
  std::int64_t rounded = 0;
  if (kind_ == vkDouble || kind_ == vkDate)
    number = Real();
  else if (kind_ != vkString || !ReadNumber(Text(), number))
    RaiseCannotConvert(wanted);
  if (const auto* const whole = std::get_if<std::int64_t>(&number)) return *whole;
  if (!RoundToInt64(std::get<double>(number), rounded)) RaiseCannotConvert(wanted);
  return rounded;
}

std::int32_t Variant::AsInteger() const {
  const char* const wanted = VariantKindName(vkInteger);
  const std::int64_t value = ToInt64(wanted);
  using TLimits = std::numeric_limits<std::int32_t>;
  if (value < TLimits::min() || value > TLimits::max()) RaiseCannotConvert(wanted);
  return static_cast<std::int32_t>(value);
}

std::int64_t Variant::AsInt64() const { return ToInt64(VariantKindName(vkInt64)); }

double Variant::ToDouble(const char* wanted) const {
  if (kind_ == vkUnassigned) return 0;
  if (kind_ == vkBoolean) return static_cast<double>(-Int());
  if (IsInteger()) return static_cast<double>(Int());
  if (kind_ == vkDouble || kind_ == vkDate) return Real();
  double real = 0;
  if (kind_ != vkString || !TryStrToFloat(Text(), real)) RaiseCannotConvert(wanted);
  return real;
}

double Variant::AsDouble() const { return ToDouble(VariantKindName(vkDouble)); }

TDateTime Variant::AsDate() const {
  TNumber number;
  if (kind_ != vkString || ReadNumber(Text(), number)) return ToDouble(VariantKindName(vkDate));
  try {
    return ReadDateTime(Trimmed(Text()));
  } catch (const EConvertError&) {
    RaiseCannotConvert(VariantKindName(vkDate));
  }
}

bool Variant::AsBoolean() const {
  if (kind_ == vkString && SameText(Text(), "True")) return true;
  if (kind_ == vkString && SameText(Text(), "False")) return false;
  if (IsInteger()) return Int() != 0;
  return ToDouble(VariantKindName(vkBoolean)) != 0;
}

std::string Variant::AsString() const {
  switch (kind_) {
    case vkUnassigned:
      return {};
    case vkBoolean:
      return BoolToStr(Int() != 0);
    case vkDouble:
      return FloatToStr(Real());
    case vkDate:
      return DateTimeToStr(Real());
    case vkString:
      return Text();
    case vkNull:
    case vkArray:
    case vkInterface:
      RaiseCannotConvert(VariantKindName(vkString));
    default:
      return IntToStr(Int());
  }
}

const std::string& Variant::Text() const {
  if (kind_ != vkString) RaiseCannotConvert(VariantKindName(vkString));
  return text_;
}

const std::vector<Variant>& Variant::Elements() const {
  if (kind_ != vkArray) RaiseCannotConvert(VariantKindName(vkArray));
  return box_->Elements;
}

TInterfaceRef<IUnknown> Variant::AsInterface() const {
  if (kind_ == vkUnassigned) return nullptr;
  if (kind_ != vkInterface) RaiseCannotConvert(VariantKindName(vkInterface));
  return box_->Object;
}

// -- Comparing --------------------------------------------------------------------------------------------------------

/// The table of the header. Each member takes its pair in one order; Compare turns the others round.
class TVariantComparer {
 public:
  static TVariantRelation Compare(const Variant& a, const Variant& b) {
    if (a.IsInteger() && b.IsInteger()) return Relation(a.Int(), b.Int());  // by far the most asked
    const TClassOfKinds left = ClassOf(a);
    const TClassOfKinds right = ClassOf(b);
    if (left > right) return Reversed(Compare(b, a));
    if (left == right) return CompareAlike(left, a, b);
    if (left == kUnassigned) return CompareUnassigned(right, b);
    if (left == kNull) return vrNotEqual;
    if (right >= kArray) RaiseCannotCompare(a, b);
    if (right == kNumber) return RelationOfNumbers(NumberOf(a, b), NumberOf(b, a));
    if (left == kBoolean) return Relation(CompareStr(BoolToStr(a.Int() != 0), b.Text()), 0);
    return RelationOfNumbers(NumberOf(a, b), NumberOf(b, a));
  }

 private:
  enum TClassOfKinds : std::uint8_t { kUnassigned, kNull, kBoolean, kNumber, kText, kArray, kInterface };

  static TClassOfKinds ClassOf(const Variant& value) {
    if (value.IsNumber()) return kNumber;
    switch (value.Kind()) {
      case vkUnassigned:
        return kUnassigned;
      case vkNull:
        return kNull;
      case vkBoolean:
        return kBoolean;
      case vkString:
        return kText;
      case vkArray:
        return kArray;
      default:
        return kInterface;
    }
  }

  static TVariantRelation CompareAlike(TClassOfKinds kinds, const Variant& a, const Variant& b) {
    switch (kinds) {
      case kBoolean:
      case kNumber:
        return RelationOfNumbers(NumberOf(a, b), NumberOf(b, a));
      case kText:
        return Relation(CompareStr(a.Text(), b.Text()), 0);
      case kArray:
        return CompareArrays(a.Elements(), b.Elements());
      case kInterface:
        return SameObject(a.AsInterface(), b.AsInterface()) ? vrEqual : vrNotEqual;
      default:
        return vrEqual;
    }
  }

  static TVariantRelation CompareUnassigned(TClassOfKinds kinds, const Variant& other) {
    if (kinds == kBoolean || kinds == kNumber) return RelationOfNumbers(std::int64_t{0}, NumberOf(other, other));
    if (kinds == kText) return other.Text().empty() ? vrEqual : vrLess;
    return vrNotEqual;
  }

  static TVariantRelation CompareArrays(const std::vector<Variant>& a, const std::vector<Variant>& b) {
    if (&a == &b) return vrEqual;
    for (std::size_t at = 0; at < a.size() && at < b.size(); ++at) {
      const TVariantRelation relation = Compare(a[at], b[at]);
      if (relation != vrEqual) return relation;
    }
    return Relation(a.size(), b.size());
  }

  /// `value`, a Boolean, number or text, as the number that it counts for beside `other`.
  static TNumber NumberOf(const Variant& value, const Variant& other) {
    if (value.kind_ == vkBoolean) return -value.Int();
    if (value.IsInteger()) return value.Int();
    if (value.kind_ != vkString) return value.Real();
    TNumber number;
    if (!ReadNumber(value.Text(), number)) value.RaiseCannotConvert(VariantKindName(other.kind_));
    return number;
  }

  [[noreturn]] static void RaiseCannotCompare(const Variant& a, const Variant& b) {
    throw EVariantError(std::string("Cannot compare a variant of kind ") + VariantKindName(a.Kind()) +
                        " with one of kind " + VariantKindName(b.Kind()));
  }
};

TVariantRelation VarCompare(const Variant& a, const Variant& b) { return TVariantComparer::Compare(a, b); }

}  // namespace vx
