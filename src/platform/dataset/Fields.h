// Fields.h: the classes of fields, one for each type of value.
//
//   class            type         AsVariant   also as                                    of its own
//   TStringField     ftString     vkString    all, by reading and printing               Size
//   TIntegerField    ftInteger    vkInteger   Float, String                              MinValue, MaxValue
//   TSmallintField   ftSmallint   vkInteger   Float, String                              16 bits with sign
//   TWordField       ftWord       vkInteger   Float, String                              16 bits without sign
//   TFloatField      ftFloat      vkDouble    Integer (a half to the even one), String   Precision, Currency
//   TCurrencyField   ftCurrency   vkDouble    the same                                   Currency is true
//   TBooleanField    ftBoolean    vkBoolean   String                                     DisplayValues
//   TDateTimeField   ftDateTime   vkDate      Float, String                              DisplayFormat
//   TDateField       ftDate       vkDate      Float, String                              the day
//   TTimeField       ftTime       vkDate      Float, String                              the time of day
//
// A DisplayFormat is for showing alone. For editing a field gives a text that it can read back: that of EditFormat, if
// there is one, else the plain one.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/dataset/Field.h"

namespace vx {

// -- Texts ------------------------------------------------------------------------------------------------------------

/// A text longer than Size bytes is cut at a code point; one with a zero byte is refused. Blanks count, and the empty
/// text isn't null. As Boolean it reads "True", "Yes", "T", "Y", "1" and "False", "No", "F", "N", "0", letter case
/// ignored.
class TStringField : public TField {
 public:
  static constexpr std::int32_t kFreshSize = 20;

  explicit TStringField(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  void SetSize(std::int32_t size) override;

  std::string GetAsString() const override;
  void SetAsString(const std::string& value) override;
  std::int32_t GetAsInteger() const override;
  void SetAsInteger(std::int32_t value) override;
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  bool GetAsBoolean() const override;
  void SetAsBoolean(bool value) override;
  TDateTime GetAsDateTime() const override;
  void SetAsDateTime(TDateTime value) override;
  Variant GetAsVariant() const override;

 protected:
  void SetVarValue(const Variant& value) override;
  std::int32_t DefaultWidth() const override { return Size(); }

 private:
  /// False, and `text` untouched, for null.
  bool Read(std::string& text) const;
};

// -- Numbers ----------------------------------------------------------------------------------------------------------

/// What integers and floats have in common: masks of FormatFloat (FloatMask.h) for showing and editing.
class TNumericField : public TField {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const std::string& DisplayFormat() const { return displayFormat_; }
  void SetDisplayFormat(const std::string& mask);
  const std::string& EditFormat() const { return editFormat_; }
  /// Should print what the field can read: no groups, no text around.
  void SetEditFormat(const std::string& mask);

 protected:
  TNumericField(TComponent* owner, TFieldType type);
  void GetText(std::string& text, bool displayText) const override;
  /// The text of a value that isn't null, without a mask.
  virtual std::string PlainText(bool displayText) const = 0;

 private:
  std::string displayFormat_;
  std::string editFormat_;
};

class TIntegerField : public TNumericField {
 public:
  explicit TIntegerField(TComponent* owner = nullptr) : TIntegerField(owner, ftInteger) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // Both 0: no limits but those of the type.
  std::int32_t MinValue() const { return minValue_; }
  /// EDatabaseError beyond the type.
  void SetMinValue(std::int32_t value);
  std::int32_t MaxValue() const { return maxValue_; }
  void SetMaxValue(std::int32_t value);

  std::string GetAsString() const override;
  void SetAsString(const std::string& value) override;
  std::int32_t GetAsInteger() const override;
  void SetAsInteger(std::int32_t value) override;
  double GetAsFloat() const override { return GetAsInteger(); }
  void SetAsFloat(double value) override;
  Variant GetAsVariant() const override;

 protected:
  TIntegerField(TComponent* owner, TFieldType type);
  void SetVarValue(const Variant& value) override;
  std::string PlainText(bool displayText) const override;

 private:
  struct TRange {
    std::int32_t least, greatest;
  };
  TRange TypeRange() const;
  bool Read(std::int32_t& value) const;
  void CheckRange(double value, const TRange& range) const;

  std::int32_t minValue_ = 0;
  std::int32_t maxValue_ = 0;
};

class TSmallintField : public TIntegerField {
 public:
  explicit TSmallintField(TComponent* owner = nullptr) : TIntegerField(owner, ftSmallint) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
};

class TWordField : public TIntegerField {
 public:
  explicit TWordField(TComponent* owner = nullptr) : TIntegerField(owner, ftWord) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
};

class TFloatField : public TNumericField {
 public:
  explicit TFloatField(TComponent* owner = nullptr) : TFloatField(owner, ftFloat) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // Both 0: no limits.
  double MinValue() const { return minValue_; }
  void SetMinValue(double value) { minValue_ = value; }
  double MaxValue() const { return maxValue_; }
  void SetMaxValue(double value) { maxValue_ = value; }
  /// Significant digits of texts, 1 to 15; brought into that range.
  std::int32_t Precision() const { return precision_; }
  void SetPrecision(std::int32_t digits);
  /// Shows the locale's money; without effect beside a DisplayFormat.
  bool Currency() const { return currency_; }
  void SetCurrency(bool value);

  std::string GetAsString() const override;
  void SetAsString(const std::string& value) override;
  /// EDatabaseError beyond 32 bits.
  std::int32_t GetAsInteger() const override;
  void SetAsInteger(std::int32_t value) override { SetAsFloat(value); }
  double GetAsFloat() const override { return Native<double>(); }
  /// EDatabaseError for what isn't finite.
  void SetAsFloat(double value) override;
  Variant GetAsVariant() const override;

 protected:
  TFloatField(TComponent* owner, TFieldType type);
  void SetVarValue(const Variant& value) override;
  std::string PlainText(bool displayText) const override;

 private:
  double minValue_ = 0;
  double maxValue_ = 0;
  std::int32_t precision_;
  bool currency_;
};

class TCurrencyField : public TFloatField {
 public:
  explicit TCurrencyField(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
};

// -- Booleans ---------------------------------------------------------------------------------------------------------

class TBooleanField : public TField {
 public:
  explicit TBooleanField(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const std::string& DisplayValues() const { return displayValues_; }
  /// The texts of true and false, separated by ";": "Done;Open". A missing or empty one is "True" or "False".
  void SetDisplayValues(const std::string& texts);

  std::string GetAsString() const override;
  /// One of the two texts or its beginning, letter case ignored ("d" for "Done"), or "True", "False". What both begin
  /// with reads as neither.
  void SetAsString(const std::string& value) override;
  bool GetAsBoolean() const override { return Native<std::int16_t>() != 0; }
  void SetAsBoolean(bool value) override;
  Variant GetAsVariant() const override;

 protected:
  void SetVarValue(const Variant& value) override;
  std::int32_t DefaultWidth() const override;

 private:
  /// 1, 0, or -1 for a text that says neither.
  std::int32_t Reading(std::string_view text) const;

  std::string displayValues_;
  std::array<std::string, 2> texts_ = {"False", "True"};
};

// -- Dates and times --------------------------------------------------------------------------------------------------

/// Texts are read and printed by the locale's formats: a date, a time (on day 0), or a date, a blank and a time.
class TDateTimeField : public TField {
 public:
  explicit TDateTimeField(TComponent* owner = nullptr) : TDateTimeField(owner, ftDateTime) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const std::string& DisplayFormat() const { return displayFormat_; }
  /// As FormatDateTime takes it.
  void SetDisplayFormat(const std::string& format);

  std::string GetAsString() const override;
  void SetAsString(const std::string& value) override;
  /// The date, counted in days.
  double GetAsFloat() const override { return GetAsDateTime(); }
  void SetAsFloat(double value) override { SetAsDateTime(value); }
  TDateTime GetAsDateTime() const override;
  /// EDatabaseError for a number without a place in the calendar.
  void SetAsDateTime(TDateTime value) override;
  Variant GetAsVariant() const override;

 protected:
  TDateTimeField(TComponent* owner, TFieldType type);
  void GetText(std::string& text, bool displayText) const override;
  void SetVarValue(const Variant& value) override;
  std::int32_t DefaultWidth() const override { return DataType() == ftDateTime ? 18 : 10; }

 private:
  bool Read(TDateTime& value) const;

  std::string displayFormat_;
};

class TDateField : public TDateTimeField {
 public:
  explicit TDateField(TComponent* owner = nullptr) : TDateTimeField(owner, ftDate) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
};

class TTimeField : public TDateTimeField {
 public:
  explicit TTimeField(TComponent* owner = nullptr) : TDateTimeField(owner, ftTime) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
};

}  // namespace vx
