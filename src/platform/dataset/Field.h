// Field.h: one column of a data set: how its value is read and written in whichever record is current.
//
// A field holds no value. It asks its data set for the bytes of the active record in its native form (see TFieldType),
// and turns them into what the caller wants; writing goes the same way back. A field belongs to its data set, as one of
// its owner's components: made by the data set at opening (default fields), or before by the application (persistent
// fields), which are then bound by name.
//
//   orders->Edit();
//   orders->FieldByName("Quantity")->SetAsInteger(12);
//   orders->Post();
//
// Writing. A value is checked (type, range), told to OnValidate, handed to the data set, and told to OnChange. Whether
// a record may be written now, and this field in it, is the data set's to say: it raises if not. While OnValidate runs
// the field answers the new value, and can't be written again; what that handler raises is the refusal. A write from
// inside OnChange isn't told a second time. Neither event is raised for what a calculation or a filter writes.
//
// Texts. AsString is the plain text of the value, Text is for editing and DisplayText for showing: these two go through
// OnGetText, and Text comes back through OnSetText. Inside such a handler they answer, and take, what the field would
// without it.
//
// Errors. EDatabaseError, which names the field and quotes the text: a text that isn't a value of the type, a value out
// of range, a type that can't be had. A field without a data set, or whose set is closed, reads as null.
//
// Cost. Reading a number is one virtual call of the data set and no allocation; a text is made once, for the answer.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/component/Collection.h"
#include "platform/component/Component.h"
#include "platform/component/EnumInfo.h"
#include "platform/component/Event.h"
#include "platform/runtime/DateTime.h"
#include "platform/runtime/Format.h"
#include "platform/runtime/Variant.h"

namespace vx {

class TDataSet;
class TField;
class TFieldDefs;

class EDatabaseError : public TNamedException<EDatabaseError> {
 public:
  static constexpr const char* kName = "EDatabaseError";
  using TNamedException::TNamedException;
};

/// Raises EDatabaseError. With a component, its name and a colon come first.
[[noreturn]] void DatabaseError(const std::string& message, const TComponent* component = nullptr);
/// The same by Format (Format.h).
[[noreturn]] void DatabaseErrorFmt(std::string_view format, std::initializer_list<TFormatArg> args,
                                   const TComponent* component = nullptr);

/// Native form of a value between a field and its data set (GetFieldData, SetFieldData):
///   ftString     text ended by a zero byte, at most Size bytes without it
///   ftSmallint   int16        ftInteger   int32        ftWord   uint16
///   ftBoolean    int16: 0 is false, -1 (any other) is true
///   ftFloat, ftCurrency       double
///   ftDate       int32: days since 0001-01-01, that day being 1
///   ftTime       int32: milliseconds since midnight
///   ftDateTime   double: milliseconds since 0001-01-01 00:00, that day beginning at 86,400,000
enum TFieldType : std::uint8_t {
  ftUnknown,
  ftString,
  ftSmallint,
  ftInteger,
  ftWord,
  ftBoolean,
  ftFloat,
  ftCurrency,
  ftDate,
  ftTime,
  ftDateTime,
};
template <>
struct TEnumInfo<TFieldType> {
  static constexpr std::string_view kTypeName = "TFieldType";
  static constexpr std::string_view kPrefix = "ft";
  static constexpr std::string_view kNames[] = {"ftUnknown", "ftString",  "ftSmallint", "ftInteger",
                                                "ftWord",    "ftBoolean", "ftFloat",    "ftCurrency",
                                                "ftDate",    "ftTime",    "ftDateTime"};
};

/// Where a field's value comes from.
enum TFieldKind : std::uint8_t {
  fkData,          ///< the record
  fkCalculated,    ///< OnCalcFields, each time a record is read
  fkLookup,        ///< another data set, by key
  fkInternalCalc,  ///< the data set itself, which keeps it
};
template <>
struct TEnumInfo<TFieldKind> {
  static constexpr std::string_view kTypeName = "TFieldKind";
  static constexpr std::string_view kPrefix = "fk";
  static constexpr std::string_view kNames[] = {"fkData", "fkCalculated", "fkLookup", "fkInternalCalc"};
};

/// Where a text stands in its column.
enum TAlignment : std::uint8_t { taLeftJustify, taRightJustify, taCenter };
template <>
struct TEnumInfo<TAlignment> {
  static constexpr std::string_view kTypeName = "TAlignment";
  static constexpr std::string_view kPrefix = "ta";
  static constexpr std::string_view kNames[] = {"taLeftJustify", "taRightJustify", "taCenter"};
};

// -- Dates and times in native form -----------------------------------------------------------------------------------

// The time is rounded to the millisecond, a half up; what rounds up to midnight is midnight of the next day, as
// everywhere (DateTime.h). Before 1899-12-30 the fraction counts forward within its day, both ways. No number is
// refused: NaN and infinities stay what they are.

/// The native form of a date and time in ftDateTime, and back.
double DateTimeToNative(TDateTime date);
TDateTime NativeToDateTime(double native);
/// The native forms of ftDate and ftTime: the day and the time of day of `date`. A day beyond 32 bits is the nearest
/// that there is, 0 for NaN.
std::int32_t DateToNative(TDateTime date);
TDateTime NativeToDate(std::int32_t native);
std::int32_t TimeToNative(TDateTime date);
TDateTime NativeToTime(std::int32_t native);

// -- Definitions ------------------------------------------------------------------------------------------------------

/// What a data set tells of a column before there are fields. Freed by its TFieldDefs.
class TFieldDef : public TObject {
 public:
  /// `size` counts for ftString alone.
  TFieldDef(TFieldDefs* owner, std::string name, TFieldType type, std::int32_t size, bool required,
            std::int32_t fieldNo);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TFieldDefs* Owner() const { return owner_; }
  const std::string& Name() const { return name_; }
  TFieldType DataType() const { return type_; }
  std::int32_t Size() const { return size_; }
  bool Required() const { return required_; }
  std::int32_t FieldNo() const { return fieldNo_; }
  /// A field of the class that serves the type, with name, size and Required of the definition, in no data set yet.
  /// EDatabaseError for ftUnknown. A default field is best made without an owner: what a component owns is streamed.
  TField* CreateField(TComponent* owner) const;

 private:
  TFieldDefs* owner_;
  std::string name_;
  TFieldType type_;
  std::int32_t size_;
  bool required_;
  std::int32_t fieldNo_;
};

/// In the order of their making; names are found without regard to letter case.
class TFieldDefs : public TObject {
 public:
  explicit TFieldDefs(TDataSet* dataSet);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  TDataSet* DataSet() const { return dataSet_; }
  std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
  /// EListError outside.
  TFieldDef* Items(std::int32_t index) const;
  /// -1 if there is none.
  std::int32_t IndexOf(std::string_view name) const;
  /// Null if there is none.
  TFieldDef* Find(std::string_view name) const;
  /// Takes it over. EDatabaseError for a name that is empty or there; it is gone then.
  void Add(TOwned<TFieldDef> def);
  /// Makes and adds one; its number is its place, from 1.
  TFieldDef* Add(std::string name, TFieldType type, std::int32_t size = 0, bool required = false);
  void Clear();

 private:
  TDataSet* dataSet_;
  std::vector<TOwned<TFieldDef>> items_;
  std::unordered_map<std::string, std::int32_t> byName_;  // by FoldCase
};

// -- Fields -----------------------------------------------------------------------------------------------------------

/// `displayText` is true for showing, false for editing. `text` comes in empty.
using TFieldGetTextEvent = TEvent<void(TField*, std::string& text, bool displayText)>;
using TFieldSetTextEvent = TEvent<void(TField*, const std::string& text)>;
using TFieldNotifyEvent = TEvent<void(TField*)>;

/// See the head of this file; the classes are in Fields.h.
class TField : public TComponent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  // -- Place ----------------------------------------------------------------------------------------------------------
  TDataSet* DataSet() const { return dataSet_; }
  /// Leaves its data set and enters the other as its last field; null for none. Both must be closed. EDatabaseError if
  /// the other has a field of that name. A streamed field that its data set owns enters it by itself.
  void SetDataSet(TDataSet* dataSet);
  const std::string& FieldName() const { return fieldName_; }
  /// The data set must be closed, and know no other field of that name.
  void SetFieldName(const std::string& name);
  /// Number of the data set's definition, from 1; 0 for a calculated field and where not bound; -1 is never a number.
  std::int32_t FieldNo() const { return fieldNo_; }
  TFieldKind FieldKind() const { return kind_; }
  /// The data set must be closed.
  void SetFieldKind(TFieldKind kind);
  bool IsCalculated() const { return kind_ == fkCalculated || kind_ == fkLookup; }
  /// Position among the data set's fields; -1 without one.
  std::int32_t Index() const;
  TFieldType DataType() const { return type_; }
  /// Bytes of a string without its zero; 0 for other types.
  std::int32_t Size() const { return size_; }
  /// Strings alone: from 0 to kMaxStringSize, the data set closed. EDatabaseError otherwise.
  virtual void SetSize(std::int32_t size);
  /// Bytes of the native form, a string's zero included.
  std::int32_t DataSize() const;
  /// Of a calculated field, in the calculated part of the record buffer.
  std::int32_t Offset() const { return offset_; }

  // -- Look -----------------------------------------------------------------------------------------------------------
  /// What messages and headings call it: the label, else the field's name.
  std::string DisplayName() const { return DisplayLabel(); }
  std::string DisplayLabel() const { return label_.empty() ? fieldName_ : label_; }
  /// The field's own name is no label: it follows FieldName.
  void SetDisplayLabel(const std::string& label);
  TAlignment Alignment() const { return alignment_; }
  void SetAlignment(TAlignment alignment);
  /// Characters that a column needs: what was set, else by type and size.
  std::int32_t DisplayWidth() const { return displayWidth_ > 0 ? displayWidth_ : DefaultWidth(); }
  /// 0 or less goes back to the default.
  void SetDisplayWidth(std::int32_t characters);
  /// Whether grids show it.
  bool Visible() const { return visible_; }
  void SetVisible(bool visible);
  /// A record can't be posted while it is null.
  bool Required = false;
  /// For users; see CanModify.
  bool ReadOnly = false;

  // -- Lookup fields --------------------------------------------------------------------------------------------------
  // With FieldKind fkLookup: KeyFields of this record are looked for in LookupKeyFields of LookupDataSet, and
  // LookupResultField of the record found is the value; null for a null key, and for one that isn't found. Names are
  // separated by ";". All are set while the data set is closed.

  const std::string& KeyFields() const { return keyFields_; }
  void SetKeyFields(const std::string& names);
  /// Null if there is none, or once it is freed.
  TDataSet* LookupDataSet() const;
  /// EDatabaseError for the field's own data set.
  void SetLookupDataSet(TDataSet* dataSet);
  const std::string& LookupKeyFields() const { return lookupKeyFields_; }
  void SetLookupKeyFields(const std::string& names);
  const std::string& LookupResultField() const { return lookupResultField_; }
  void SetLookupResultField(const std::string& name);
  /// Keys and results are read once, when the data set opens, instead of at each record: the looked-up set then isn't
  /// moved any more, and its later changes aren't seen. O(its records) at opening, a hash at each record.
  bool LookupCache() const { return lookupCache_; }
  void SetLookupCache(bool value);
  /// Reads the cached keys and results anew.
  void RefreshLookupList();

  // -- Value ----------------------------------------------------------------------------------------------------------
  virtual bool IsNull() const { return !GetData(nullptr); }
  // Each answers 0, false or the empty text for a null field. A type that can't be had raises: a number has no date, a
  // date is a number by AsFloat alone.
  virtual std::string GetAsString() const;
  /// By the locale, as GetAsString prints; blanks around it are skipped. The empty text clears (but a string).
  virtual void SetAsString(const std::string& value);
  virtual std::int32_t GetAsInteger() const;
  virtual void SetAsInteger(std::int32_t value);
  virtual double GetAsFloat() const;
  virtual void SetAsFloat(double value);
  virtual bool GetAsBoolean() const;
  virtual void SetAsBoolean(bool value);
  virtual TDateTime GetAsDateTime() const;
  virtual void SetAsDateTime(TDateTime value);
  /// Null for a null field.
  virtual Variant GetAsVariant() const;
  /// Null and unassigned clear.
  void SetAsVariant(const Variant& value);
  Variant Value() const { return GetAsVariant(); }
  void SetValue(const Variant& value) { SetAsVariant(value); }
  virtual void Clear() { SetData(nullptr); }
  /// For showing, by OnGetText if that is assigned.
  std::string DisplayText() const { return TextBy(true); }
  /// For editing, by OnGetText and OnSetText.
  std::string Text() const { return TextBy(false); }
  /// EDatabaseError for a text with a zero byte.
  void SetText(const std::string& text);
  /// Whether a user may write: neither read-only nor calculated, and the data set can be modified.
  bool CanModify() const;
  /// Takes over another field's value, converted.
  void AssignValueOf(const TField& other);

  // -- Raw ------------------------------------------------------------------------------------------------------------
  /// The native form into `buffer`, which has DataSize() bytes (null: only ask). False for a null value.
  bool GetData(void* buffer) const;
  /// `buffer` has DataSize() bytes; null clears. Validates, writes, tells OnChange. No range is checked.
  void SetData(const void* buffer);

  // -- For the data set -----------------------------------------------------------------------------------------------
  /// The data set has found the field's definition, number and offset (`binding`), or gives them up. A lookup field
  /// then checks what it needs: EDatabaseError.
  virtual void Bind(bool binding);
  /// Writes a lookup field's value, by the data set's Lookup. Called while a record is being calculated.
  void CalcLookupValue();

  TFieldGetTextEvent OnGetText;
  TFieldSetTextEvent OnSetText;
  TFieldNotifyEvent OnChange;
  TFieldNotifyEvent OnValidate;

  /// The greatest Size of a string.
  static constexpr std::int32_t kMaxStringSize = 65'535;

 protected:
  TField(TComponent* owner, TFieldType type);
  void Loaded() override;
  /// `text` for showing or editing, without the event.
  virtual void GetText(std::string& text, bool displayText) const;
  virtual void SetVarValue(const Variant& value);
  virtual std::int32_t DefaultWidth() const { return 10; }
  [[noreturn]] void RaiseAccess(const char* wanted) const;
  /// `wanted` with its article: "an integer".
  [[noreturn]] void RaiseBadText(std::string_view text, const char* wanted) const;
  [[noreturn]] void RaiseRange(const std::string& value, const std::string& least, const std::string& greatest) const;
  /// The look changed: those who show it are told.
  void PropertyChanged(bool layoutAffected);
  void CheckInactive() const;
  void SetNativeSize(std::int32_t size) { size_ = size; }
  /// The native value; T{} for null.
  template <class T>
  T Native() const {
    T value{};
    return GetData(&value) ? value : T{};
  }

 private:
  // Sets fieldNo_ and offset_ when it binds, and calls Bind; sets dataSet_ to null at its end.
  friend class TDataSet;
  using TLookupList = std::unordered_map<std::string, Variant>;

  std::string TextBy(bool displayText) const;
  void CheckName(const TDataSet* dataSet, const std::string& name) const;
  void CheckWritable() const;
  bool IsQuiet() const;
  void Validate(const void* buffer);
  void CheckNewSize() const;
  void SetLookupName(std::string& place, const std::string& names);
  void CheckLookup() const;
  Variant LookupValue() const;

  TDataSet* dataSet_ = nullptr;
  std::string fieldName_;
  std::string label_;
  TFieldType type_;
  TFieldKind kind_ = fkData;
  TAlignment alignment_ = taLeftJustify;
  bool visible_ = true;
  bool lookupCache_ = false;
  bool validating_ = false;           // GetData answers newValue_
  bool changing_ = false;             // OnChange runs
  mutable bool gettingText_ = false;  // OnGetText runs
  bool settingText_ = false;          // OnSetText runs
  std::int32_t fieldNo_ = 0;
  std::int32_t size_ = 0;
  std::int32_t offset_ = 0;
  std::int32_t displayWidth_ = 0;
  const void* newValue_ = nullptr;
  std::int32_t newSize_ = 0;  // DataSize() when that was made
  std::string keyFields_;
  TComponentLink lookupDataSet_;
  std::string lookupKeyFields_;
  std::string lookupResultField_;
  std::shared_ptr<const TLookupList> lookupList_;
};

/// Registers the field classes, so that persistent fields can be streamed; they stand on no page.
void RegisterFields();

}  // namespace vx
