#include "platform/dataset/Fields.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "platform/component/Published.h"
#include "platform/dataset/FloatMask.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

/// A variant's value; one that can't be converted names the field.
template <class T>
T Converted(const TField& field, const Variant& value, T (Variant::*as)() const) {
  try {
    return (value.*as)();
  } catch (const EVariantError& error) {
    DatabaseError("Field '" + field.DisplayName() + "': " + error.Message());
  }
}

/// 1 for yes, 0 for no, -1 for neither.
std::int32_t YesOrNo(std::string_view text) {
  static constexpr std::string_view kWords[][2] = {
      {"False", "True"}, {"No", "Yes"}, {"F", "T"}, {"N", "Y"}, {"0", "1"}};
  for (const auto& pair : kWords)
    for (std::int32_t i = 0; i < 2; ++i)
      if (CompareText(text, pair[i]) == 0) return i;
  return -1;
}

bool TryStrToDateTime(std::string_view text, TDateTime& value) {
  if (text.find_first_not_of("0123456789") == std::string_view::npos) return false;  // "12" is no hour here
  if (TryStrToDate(text, value) || TryStrToTime(text, value)) return true;
  for (std::size_t at = text.find(' '); at != std::string_view::npos; at = text.find(' ', at + 1)) {
    TDateTime date = 0;
    TDateTime time = 0;
    if (!TryStrToDate(text.substr(0, at), date) || !TryStrToTime(text.substr(at + 1), time)) continue;
    value = date < 0 ? date - time : date + time;
    return true;
  }
  return false;
}

bool IsInCalendar(TDateTime value) {
  std::uint16_t year = 0;
  std::uint16_t month = 0;
  std::uint16_t day = 0;
  DecodeDate(value, year, month, day);
  return year > 0;
}

}  // namespace

// -- Texts ------------------------------------------------------------------------------------------------------------

namespace {

/// Room for a string's native form, on the stack as a rule; not cleared.
class TStringRoom {
 public:
  explicit TStringRoom(std::int32_t size) : size_(static_cast<std::size_t>(size)) {
    if (size_ > small_.size()) large_ = std::make_unique<char[]>(size_);
  }
  char* Data() { return large_ == nullptr ? small_.data() : large_.get(); }
  /// Writes `text`, which fits, and zeros behind it.
  void Put(std::string_view text) { std::fill(std::copy(text.begin(), text.end(), Data()), Data() + size_, '\0'); }

 private:
  std::size_t size_;
  std::array<char, 256> small_;
  std::unique_ptr<char[]> large_;
};

}  // namespace

TStringField::TStringField(TComponent* owner) : TField(owner, ftString) { SetNativeSize(kFreshSize); }

const TClass& TStringField::StaticClass() {
  static const TClass info = TClassBuilder<TStringField>("TStringField", TField::StaticClass())
                                 .Property("Size", &TField::Size, &TField::SetSize)
                                 .Default(kFreshSize)
                                 .Build();
  return info;
}

void TStringField::SetSize(std::int32_t size) {
  if (size == Size()) return;
  CheckInactive();
  if (size < 0 || size > kMaxStringSize)
    DatabaseError("Field '" + DisplayName() + "' can't have the size " + IntToStr(size) + ": 0 to " +
                  IntToStr(kMaxStringSize));
  SetNativeSize(size);
}

bool TStringField::Read(std::string& text) const {
  TStringRoom room(DataSize());
  if (!GetData(room.Data())) return false;
  text.assign(room.Data(), strnlen(room.Data(), static_cast<std::size_t>(Size())));
  return true;
}

std::string TStringField::GetAsString() const {
  std::string text;
  Read(text);
  return text;
}

void TStringField::SetAsString(const std::string& value) {
  if (value.find('\0') != std::string::npos) RaiseBadText(value, "a text without zero bytes");
  const std::string_view text = CutAtCodePoint(value, static_cast<std::size_t>(Size()));
  TStringRoom room(DataSize());
  room.Put(text);
  SetData(room.Data());
}

std::int32_t TStringField::GetAsInteger() const {
  std::int32_t value = 0;
  std::string text;
  if (Read(text) && !TryStrToInt(text, value)) RaiseBadText(text, "a valid integer value");
  return value;
}

double TStringField::GetAsFloat() const {
  double value = 0;
  std::string text;
  if (Read(text) && !TryStrToFloat(text, value)) RaiseBadText(text, "a valid floating point value");
  return value;
}

bool TStringField::GetAsBoolean() const {
  std::string text;
  if (!Read(text)) return false;
  const std::int32_t answer = YesOrNo(Trimmed(text));
  if (answer < 0) RaiseBadText(text, "a valid Boolean value");
  return answer == 1;
}

TDateTime TStringField::GetAsDateTime() const {
  TDateTime value = 0;
  std::string text;
  if (Read(text) && !TryStrToDateTime(Trimmed(text), value)) RaiseBadText(text, "a valid date and time");
  return value;
}

void TStringField::SetAsInteger(std::int32_t value) { SetAsString(IntToStr(value)); }
void TStringField::SetAsFloat(double value) { SetAsString(FloatToStr(value)); }
void TStringField::SetAsBoolean(bool value) { SetAsString(BoolToStr(value)); }
void TStringField::SetAsDateTime(TDateTime value) { SetAsString(DateTimeToStr(value)); }

Variant TStringField::GetAsVariant() const {
  std::string text;
  return Read(text) ? Variant(std::move(text)) : Variant::Null();
}

void TStringField::SetVarValue(const Variant& value) { SetAsString(Converted(*this, value, &Variant::AsString)); }

// -- Numbers ----------------------------------------------------------------------------------------------------------

TNumericField::TNumericField(TComponent* owner, TFieldType type) : TField(owner, type) {}

const TClass& TNumericField::StaticClass() {
  static const TClass info =
      TClassBuilder<TNumericField>("TNumericField", TField::StaticClass())
          .Abstract()
          .Publish("Alignment")
          .Default(taRightJustify)
          .Property("DisplayFormat", &TNumericField::DisplayFormat, &TNumericField::SetDisplayFormat)
          .Property("EditFormat", &TNumericField::EditFormat, &TNumericField::SetEditFormat)
          .Build();
  return info;
}

void TNumericField::SetDisplayFormat(const std::string& mask) {
  if (std::exchange(displayFormat_, mask) != mask) PropertyChanged(false);
}

void TNumericField::SetEditFormat(const std::string& mask) {
  if (std::exchange(editFormat_, mask) != mask) PropertyChanged(false);
}

void TNumericField::GetText(std::string& text, bool displayText) const {
  const std::string& mask = displayText ? displayFormat_ : editFormat_;
  if (GetAsVariant().IsNull())  // not IsNull(): sets that only answer values say of each that it is null
    text.clear();
  else
    text = mask.empty() ? PlainText(displayText) : FormatFloat(mask, GetAsFloat());
}

// -- Integers ---------------------------------------------------------------------------------------------------------

TIntegerField::TIntegerField(TComponent* owner, TFieldType type) : TNumericField(owner, type) {}

const TClass& TIntegerField::StaticClass() {
  static const TClass info = TClassBuilder<TIntegerField>("TIntegerField", TNumericField::StaticClass())
                                 .Property("MaxValue", &TIntegerField::MaxValue, &TIntegerField::SetMaxValue)
                                 .Default(0)
                                 .Property("MinValue", &TIntegerField::MinValue, &TIntegerField::SetMinValue)
                                 .Default(0)
                                 .Build();
  return info;
}

TIntegerField::TRange TIntegerField::TypeRange() const {
  if (DataType() == ftSmallint)
    return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
  if (DataType() == ftWord) return {0, std::numeric_limits<std::uint16_t>::max()};
  return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
}

void TIntegerField::CheckRange(double value, const TRange& range) const {
  if (!(value >= range.least && value <= range.greatest))
    RaiseRange(FloatToStr(value), IntToStr(range.least), IntToStr(range.greatest));
}

void TIntegerField::SetMinValue(std::int32_t value) {
  CheckRange(value, TypeRange());
  minValue_ = value;
}

void TIntegerField::SetMaxValue(std::int32_t value) {
  CheckRange(value, TypeRange());
  maxValue_ = value;
}

bool TIntegerField::Read(std::int32_t& value) const {
  if (DataType() == ftInteger) return GetData(&value);
  std::uint16_t narrow = 0;  // of both 16-bit types
  if (!GetData(&narrow)) return false;
  value = DataType() == ftWord ? narrow : static_cast<std::int16_t>(narrow);
  return true;
}

std::int32_t TIntegerField::GetAsInteger() const {
  std::int32_t value = 0;
  return Read(value) ? value : 0;
}

void TIntegerField::SetAsInteger(std::int32_t value) {
  CheckRange(value, TypeRange());
  if (minValue_ != 0 || maxValue_ != 0) CheckRange(value, {minValue_, maxValue_});
  const auto narrow = static_cast<std::uint16_t>(value);  // of both 16-bit types
  SetData(DataType() == ftInteger ? static_cast<const void*>(&value) : &narrow);
}

void TIntegerField::SetAsFloat(double value) {
  const double rounded = std::nearbyint(value);
  CheckRange(rounded, TypeRange());
  SetAsInteger(static_cast<std::int32_t>(rounded));
}

std::string TIntegerField::GetAsString() const {
  std::int32_t value = 0;
  return Read(value) ? IntToStr(value) : std::string();
}

void TIntegerField::SetAsString(const std::string& value) {
  if (Trimmed(value).empty()) return Clear();
  std::int32_t number = 0;
  if (!TryStrToInt(value, number)) RaiseBadText(value, "a valid integer value");
  SetAsInteger(number);
}

std::string TIntegerField::PlainText(bool) const { return IntToStr(GetAsInteger()); }

Variant TIntegerField::GetAsVariant() const {
  std::int32_t value = 0;
  return Read(value) ? Variant(value) : Variant::Null();
}

void TIntegerField::SetVarValue(const Variant& value) {
  value.Kind() == vkString ? SetAsString(value.Text()) : SetAsInteger(Converted(*this, value, &Variant::AsInteger));
}

const TClass& TSmallintField::StaticClass() {
  static const TClass info = TClassBuilder<TSmallintField>("TSmallintField", TIntegerField::StaticClass()).Build();
  return info;
}

const TClass& TWordField::StaticClass() {
  static const TClass info = TClassBuilder<TWordField>("TWordField", TIntegerField::StaticClass()).Build();
  return info;
}

// -- Floats -----------------------------------------------------------------------------------------------------------

namespace {

constexpr std::int32_t kMaxPrecision = 15;
constexpr std::int32_t kMoneyDecimals = 2;

}  // namespace

TFloatField::TFloatField(TComponent* owner, TFieldType type)
    : TNumericField(owner, type), precision_(kMaxPrecision), currency_(type == ftCurrency) {}

const TClass& TFloatField::StaticClass() {
  static const TClass info = TClassBuilder<TFloatField>("TFloatField", TNumericField::StaticClass())
                                 .Property("Currency", &TFloatField::Currency, &TFloatField::SetCurrency)
                                 .Default(false)
                                 .Property("MaxValue", &TFloatField::MaxValue, &TFloatField::SetMaxValue)
                                 .Property("MinValue", &TFloatField::MinValue, &TFloatField::SetMinValue)
                                 .Property("Precision", &TFloatField::Precision, &TFloatField::SetPrecision)
                                 .Default(kMaxPrecision)
                                 .Build();
  return info;
}

void TFloatField::SetPrecision(std::int32_t digits) {
  digits = std::clamp(digits, 1, kMaxPrecision);
  if (std::exchange(precision_, digits) != digits) PropertyChanged(false);
}

void TFloatField::SetCurrency(bool value) {
  if (std::exchange(currency_, value) != value) PropertyChanged(false);
}

std::string TFloatField::GetAsString() const {
  double value = 0;
  return GetData(&value) ? FloatToStrF(value, ffGeneral, precision_, 0) : std::string();
}

void TFloatField::SetAsString(const std::string& value) {
  if (Trimmed(value).empty()) return Clear();
  double number = 0;
  if (!TryStrToFloat(value, number)) RaiseBadText(value, "a valid floating point value");
  SetAsFloat(number);
}

std::int32_t TFloatField::GetAsInteger() const {
  using TLimits = std::numeric_limits<std::int32_t>;
  const double value = std::nearbyint(GetAsFloat());
  if (!(value >= TLimits::min() && value <= TLimits::max()))
    RaiseBadText(FloatToStr(value), "a number of 32 bits, as an integer is,");
  return static_cast<std::int32_t>(value);
}

void TFloatField::SetAsFloat(double value) {
  if (!std::isfinite(value)) RaiseBadText(FloatToStr(value), "a finite number");
  if ((minValue_ != 0 || maxValue_ != 0) && !(value >= minValue_ && value <= maxValue_))
    RaiseRange(FloatToStr(value), FloatToStr(minValue_), FloatToStr(maxValue_));
  SetData(&value);
}

std::string TFloatField::PlainText(bool displayText) const {
  if (!displayText || !currency_) return GetAsString();
  return FloatToStrF(GetAsFloat(), ffCurrency, precision_, kMoneyDecimals);
}

Variant TFloatField::GetAsVariant() const {
  double value = 0;
  return GetData(&value) ? Variant(value) : Variant::Null();
}

void TFloatField::SetVarValue(const Variant& value) {
  value.Kind() == vkString ? SetAsString(value.Text()) : SetAsFloat(Converted(*this, value, &Variant::AsDouble));
}

TCurrencyField::TCurrencyField(TComponent* owner) : TFloatField(owner, ftCurrency) {}

const TClass& TCurrencyField::StaticClass() {
  static const TClass info = TClassBuilder<TCurrencyField>("TCurrencyField", TFloatField::StaticClass())
                                 .Publish("Currency")
                                 .Default(true)
                                 .Build();
  return info;
}

// -- Booleans ---------------------------------------------------------------------------------------------------------

TBooleanField::TBooleanField(TComponent* owner) : TField(owner, ftBoolean) {}

const TClass& TBooleanField::StaticClass() {
  static const TClass info =
      TClassBuilder<TBooleanField>("TBooleanField", TField::StaticClass())
          .Property("DisplayValues", &TBooleanField::DisplayValues, &TBooleanField::SetDisplayValues)
          .Build();
  return info;
}

void TBooleanField::SetDisplayValues(const std::string& texts) {
  if (texts == displayValues_) return;
  displayValues_ = texts;
  const std::size_t cut = std::min(texts.find(';'), texts.size());
  texts_ = {texts.substr(std::min(cut + 1, texts.size())), texts.substr(0, cut)};
  for (std::size_t i = 0; i < texts_.size(); ++i)
    if (texts_[i].empty()) texts_[i] = BoolToStr(i == 1);
  PropertyChanged(true);
}

std::string TBooleanField::GetAsString() const {
  std::int16_t value = 0;
  return GetData(&value) ? texts_[value != 0 ? 1 : 0] : std::string();
}

std::int32_t TBooleanField::Reading(std::string_view text) const {
  for (const std::int32_t value : {1, 0})
    if (SameText(text, texts_[static_cast<std::size_t>(value)])) return value;
  const std::string folded = FoldCase(text);
  const bool isTrue = FoldCase(texts_[1]).starts_with(folded);
  const bool isFalse = FoldCase(texts_[0]).starts_with(folded);
  if (isTrue != isFalse) return isTrue ? 1 : 0;
  for (const bool value : {true, false})
    if (CompareText(text, BoolToStr(value)) == 0) return value ? 1 : 0;
  return -1;
}

void TBooleanField::SetAsString(const std::string& value) {
  const std::string_view text = Trimmed(value);
  if (text.empty()) return Clear();
  const std::int32_t reading = Reading(text);
  if (reading < 0) RaiseBadText(value, "a valid Boolean value");
  SetAsBoolean(reading == 1);
}

void TBooleanField::SetAsBoolean(bool value) {
  const auto native = static_cast<std::int16_t>(value ? -1 : 0);
  SetData(&native);
}

Variant TBooleanField::GetAsVariant() const { return IsNull() ? Variant::Null() : Variant(GetAsBoolean()); }

void TBooleanField::SetVarValue(const Variant& value) {
  value.Kind() == vkString ? SetAsString(value.Text()) : SetAsBoolean(Converted(*this, value, &Variant::AsBoolean));
}

std::int32_t TBooleanField::DefaultWidth() const {
  return static_cast<std::int32_t>(std::max(CodePointCount(texts_[0]), CodePointCount(texts_[1])));
}

// -- Dates and times --------------------------------------------------------------------------------------------------

TDateTimeField::TDateTimeField(TComponent* owner, TFieldType type) : TField(owner, type) {}

const TClass& TDateTimeField::StaticClass() {
  static const TClass info =
      TClassBuilder<TDateTimeField>("TDateTimeField", TField::StaticClass())
          .Property("DisplayFormat", &TDateTimeField::DisplayFormat, &TDateTimeField::SetDisplayFormat)
          .Build();
  return info;
}

void TDateTimeField::SetDisplayFormat(const std::string& format) {
  if (std::exchange(displayFormat_, format) != format) PropertyChanged(false);
}

bool TDateTimeField::Read(TDateTime& value) const {
  double native = 0;
  std::int32_t whole = 0;
  if (!GetData(DataType() == ftDateTime ? static_cast<void*>(&native) : &whole)) return false;
  if (DataType() == ftDateTime)
    value = NativeToDateTime(native);
  else
    value = DataType() == ftDate ? NativeToDate(whole) : NativeToTime(whole);
  return true;
}

TDateTime TDateTimeField::GetAsDateTime() const {
  TDateTime value = 0;
  Read(value);
  return value;
}

void TDateTimeField::SetAsDateTime(TDateTime value) {
  if (!IsInCalendar(value)) RaiseBadText(FloatToStr(value), "a valid date");
  const double native = DateTimeToNative(value);
  const std::int32_t whole = DataType() == ftDate ? DateToNative(value) : TimeToNative(value);
  SetData(DataType() == ftDateTime ? static_cast<const void*>(&native) : &whole);
}

std::string TDateTimeField::GetAsString() const {
  TDateTime value = 0;
  if (!Read(value)) return {};
  if (DataType() == ftDateTime) return DateTimeToStr(value);
  return DataType() == ftDate ? DateToStr(value) : TimeToStr(value);
}

void TDateTimeField::SetAsString(const std::string& value) {
  const std::string_view text = Trimmed(value);
  if (text.empty()) return Clear();
  TDateTime date = 0;
  if (DataType() == ftDate && !TryStrToDate(text, date)) RaiseBadText(value, "a valid date");
  if (DataType() == ftTime && !TryStrToTime(text, date)) RaiseBadText(value, "a valid time");
  if (DataType() == ftDateTime && !TryStrToDateTime(text, date)) RaiseBadText(value, "a valid date and time");
  SetAsDateTime(date);
}

void TDateTimeField::GetText(std::string& text, bool displayText) const {
  TDateTime value = 0;
  const bool isFormatted = displayText && !displayFormat_.empty() && Read(value);
  text = isFormatted ? FormatDateTime(displayFormat_, value) : GetAsString();
}

Variant TDateTimeField::GetAsVariant() const {
  TDateTime value = 0;
  return Read(value) ? Variant::Date(value) : Variant::Null();
}

void TDateTimeField::SetVarValue(const Variant& value) {
  value.Kind() == vkString ? SetAsString(value.Text()) : SetAsDateTime(Converted(*this, value, &Variant::AsDate));
}

const TClass& TDateField::StaticClass() {
  static const TClass info = TClassBuilder<TDateField>("TDateField", TDateTimeField::StaticClass()).Build();
  return info;
}

const TClass& TTimeField::StaticClass() {
  static const TClass info = TClassBuilder<TTimeField>("TTimeField", TDateTimeField::StaticClass()).Build();
  return info;
}

// -- Registration -----------------------------------------------------------------------------------------------------

void RegisterFields() {
  for (const TClass* const type :
       {&TStringField::StaticClass(), &TIntegerField::StaticClass(), &TSmallintField::StaticClass(),
        &TWordField::StaticClass(), &TFloatField::StaticClass(), &TCurrencyField::StaticClass(),
        &TBooleanField::StaticClass(), &TDateTimeField::StaticClass(), &TDateField::StaticClass(),
        &TTimeField::StaticClass()})
    RegisterClass(*type);
}

}  // namespace vx
