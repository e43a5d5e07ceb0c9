#include "platform/dataset/Field.h"

#include <array>
#include <cstring>
#include <utility>

#include "platform/component/MemoryKeeper.h"
#include "platform/component/Published.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/DataSetWork.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

/// Keeps the field's memory while a handler runs, which may free it, and marks that it runs.
class THandlerScope {
 public:
  THandlerScope(const TField& field, bool& runs) : keep_(const_cast<TField*>(&field)), runs_(runs) { runs_ = true; }
  THandlerScope(const THandlerScope&) = delete;
  THandlerScope& operator=(const THandlerScope&) = delete;
  ~THandlerScope() { runs_ = false; }

 private:
  const TMemoryKeeper<TComponent> keep_;
  bool& runs_;
};

bool IsNumeric(TFieldType type) { return type != ftBoolean && type >= ftSmallint && type <= ftCurrency; }

}  // namespace

TField::TField(TComponent* owner, TFieldType type)
    : TComponent(owner), type_(type), alignment_(IsNumeric(type) ? taRightJustify : taLeftJustify) {}

const TClass& TField::StaticClass() {
  static const TClass info =
      TClassBuilder<TField>("TField", TComponent::StaticClass())
          .Abstract()
          .Property("DataSet", &TField::DataSet, &TField::SetDataSet)
          .Stored([](TField& field) { return field.dataSet_ != field.Owner(); })
          .Property("Alignment", &TField::Alignment, &TField::SetAlignment)
          .Default(taLeftJustify)
          .Property("DisplayLabel", &TField::DisplayLabel, &TField::SetDisplayLabel)
          .Stored([](TField& field) { return !field.label_.empty(); })
          .Property("DisplayWidth", &TField::DisplayWidth, &TField::SetDisplayWidth)
          .Stored([](TField& field) { return field.displayWidth_ > 0; })
          .Property("FieldKind", &TField::FieldKind, &TField::SetFieldKind)
          .Default(fkData)
          .Property("FieldName", &TField::FieldName, &TField::SetFieldName)
          .Property("KeyFields", &TField::KeyFields, &TField::SetKeyFields)
          .Property("LookupCache", &TField::LookupCache, &TField::SetLookupCache)
          .Default(false)
          .Property("LookupDataSet", &TField::LookupDataSet, &TField::SetLookupDataSet)
          .Property("LookupKeyFields", &TField::LookupKeyFields, &TField::SetLookupKeyFields)
          .Property("LookupResultField", &TField::LookupResultField, &TField::SetLookupResultField)
          .Property("ReadOnly", &TField::ReadOnly)
          .Default(false)
          .Property("Required", &TField::Required)
          .Default(false)
          .Property("Visible", &TField::Visible, &TField::SetVisible)
          .Default(true)
          .Property("OnChange", &TField::OnChange)
          .Property("OnGetText", &TField::OnGetText)
          .Property("OnSetText", &TField::OnSetText)
          .Property("OnValidate", &TField::OnValidate)
          .Build();
  return info;
}

void TField::TearDown() {
  if (TDataSet* const left = std::exchange(dataSet_, nullptr)) left->RemoveField(*this);
  TComponent::TearDown();
}

void TField::Loaded() {
  TComponent::Loaded();
  if (dataSet_ == nullptr)
    if (auto* const owner = As<TDataSet>(Owner())) SetDataSet(owner);
}

// -- Place ------------------------------------------------------------------------------------------------------------

void TField::CheckInactive() const {
  if (dataSet_ != nullptr) dataSet_->CheckInactive();
}

void TField::CheckName(const TDataSet* dataSet, const std::string& name) const {
  if (dataSet == nullptr) return;
  const TField* const other = name.empty() ? nullptr : dataSet->FindField(name);
  if (other != nullptr && other != this) DatabaseError("There are two fields named '" + name + "'", dataSet);
}

void TField::SetDataSet(TDataSet* dataSet) {
  if (dataSet == dataSet_) return;
  CheckInactive();
  if (dataSet != nullptr) dataSet->CheckInactive();
  CheckName(dataSet, fieldName_);
  if (TDataSet* const left = std::exchange(dataSet_, nullptr)) left->RemoveField(*this);
  if (dataSet == nullptr) return;
  dataSet->AddField(*this);
  dataSet_ = dataSet;
}

void TField::SetFieldName(const std::string& name) {
  if (name == fieldName_) return;
  CheckInactive();
  CheckName(dataSet_, name);
  fieldName_ = name;
  if (label_ == fieldName_) label_.clear();
}

void TField::SetFieldKind(TFieldKind kind) {
  if (kind == kind_) return;
  CheckInactive();
  kind_ = kind;
}

std::int32_t TField::Index() const {
  const std::int32_t count = dataSet_ == nullptr ? 0 : dataSet_->FieldCount();
  for (std::int32_t i = 0; i < count; ++i)
    if (dataSet_->Fields(i) == this) return i;
  return -1;
}

void TField::SetSize(std::int32_t size) {
  if (size != 0) DatabaseError("Field '" + DisplayName() + "' has no size: it is no string");
}

std::int32_t TField::DataSize() const {
  /// In the order of TFieldType.
  static constexpr std::array<std::int32_t, ftDateTime + 1> kSizes = {0, 1, 2, 4, 2, 2, 8, 8, 4, 4, 8};
  return size_ + kSizes[type_];
}

// -- Look -------------------------------------------------------------------------------------------------------------

void TField::PropertyChanged(bool layoutAffected) {
  if (dataSet_ == nullptr || !dataSet_->GetActive()) return;
  const TDataSet::TCall call(*dataSet_);
  dataSet_->DataEvent(layoutAffected ? deLayoutChange : deDataSetChange);
}

void TField::SetDisplayLabel(const std::string& label) {
  if (label == DisplayLabel()) return;
  label_ = label == fieldName_ ? std::string() : label;
  PropertyChanged(true);
}

void TField::SetAlignment(TAlignment alignment) {
  if (std::exchange(alignment_, alignment) != alignment) PropertyChanged(false);
}

void TField::SetDisplayWidth(std::int32_t characters) {
  if (characters < 0) characters = 0;
  if (std::exchange(displayWidth_, characters) != characters) PropertyChanged(true);
}

void TField::SetVisible(bool visible) {
  if (std::exchange(visible_, visible) != visible) PropertyChanged(true);
}

// -- Lookup fields ----------------------------------------------------------------------------------------------------

namespace {

/// A key as text: of an array its members, whose ends can't be mistaken.
std::string KeyText(const Variant& key) {
  if (key.IsNull() || key.IsEmpty()) return "-";
  if (key.Kind() != vkArray) {
    const std::string text = key.AsString();
    return std::to_string(text.size()) + ":" + text;
  }
  std::string text;
  for (const Variant& part : key.Elements()) text += KeyText(part);
  return text;
}

/// Null, or an array of nothing but nulls.
bool IsNullKey(const Variant& key) {
  if (key.Kind() != vkArray) return key.IsNull() || key.IsEmpty();
  for (const Variant& part : key.Elements())
    if (!IsNullKey(part)) return false;
  return true;
}

}  // namespace

TDataSet* TField::LookupDataSet() const { return static_cast<TDataSet*>(lookupDataSet_.Component()); }

void TField::SetLookupDataSet(TDataSet* dataSet) {
  if (dataSet == LookupDataSet()) return;
  CheckInactive();
  if (dataSet != nullptr && dataSet == dataSet_)
    DatabaseError("Field '" + DisplayName() + "' can't look up in its own data set", dataSet_);
  lookupDataSet_ = TComponentLink(dataSet);
}

void TField::SetLookupName(std::string& place, const std::string& names) {
  if (place == names) return;
  CheckInactive();
  place = names;
}

void TField::SetKeyFields(const std::string& names) { SetLookupName(keyFields_, names); }
void TField::SetLookupKeyFields(const std::string& names) { SetLookupName(lookupKeyFields_, names); }
void TField::SetLookupResultField(const std::string& name) { SetLookupName(lookupResultField_, name); }

void TField::SetLookupCache(bool value) {
  if (value == lookupCache_) return;
  CheckInactive();
  lookupCache_ = value;
}

void TField::CheckLookup() const {
  const std::string what = "Lookup field '" + DisplayName() + "' ";
  const TDataSet* const set = LookupDataSet();
  if (set == nullptr) DatabaseError(what + "has no LookupDataSet", dataSet_);
  if (set == dataSet_) DatabaseError(what + "can't look up in its own data set", dataSet_);
  if (keyFields_.empty()) DatabaseError(what + "has no KeyFields", dataSet_);
  if (lookupKeyFields_.empty()) DatabaseError(what + "has no LookupKeyFields", dataSet_);
  if (lookupResultField_.empty()) DatabaseError(what + "has no LookupResultField", dataSet_);
  const std::size_t keys = dataSet_->FieldsOf(keyFields_).size();
  if (!set->GetActive()) return;
  if (set->FieldsOf(lookupKeyFields_).size() != keys)
    DatabaseError(what + "needs as many LookupKeyFields as KeyFields", dataSet_);
  set->FieldByName(lookupResultField_);
}

void TField::Bind(bool binding) {
  lookupList_.reset();
  if (!binding || kind_ != fkLookup) return;
  const TMemoryKeeper<TComponent> keep(this);  // the other set's handlers may do anything
  if (TDataSet* const set = LookupDataSet(); set != nullptr && set != dataSet_) set->Open();
  CheckWritable();
  CheckLookup();
  RefreshLookupList();
}

void TField::RefreshLookupList() {
  lookupList_.reset();
  TDataSet* const set = LookupDataSet();
  // A set that is being edited isn't moved: until it browses, each record is looked up.
  if (!lookupCache_ || kind_ != fkLookup || set == nullptr || set->State() != dsBrowse) return;
  const TMemoryKeeper<TComponent> keep(this), keepSet(set);
  auto list = std::make_shared<TLookupList>();
  const TBookmark place = set->GetBookmark();
  set->DisableControls();
  try {
    for (set->First(); !set->Eof(); set->Next())
      list->emplace(KeyText(set->GetFieldValue(lookupKeyFields_)), set->GetFieldValue(lookupResultField_));
    set->GotoBookmark(place);
  } catch (...) {
    set->EnableControls();
    throw;
  }
  set->EnableControls();
  lookupList_ = std::move(list);
}

Variant TField::LookupValue() const {
  TDataSet* const set = LookupDataSet();
  const Variant key = dataSet_->GetFieldValue(keyFields_);
  if (IsNullKey(key)) return Variant::Null();
  if (lookupList_ != nullptr) {
    const auto found = lookupList_->find(KeyText(key));
    return found == lookupList_->end() ? Variant::Null() : found->second;
  }
  if (set == nullptr || !set->GetActive()) return Variant::Null();
  return set->Lookup(lookupKeyFields_, key, lookupResultField_);
}

void TField::CalcLookupValue() {
  const TMemoryKeeper<TComponent> keep(this);  // looking up moves the other set, whose handlers may do anything
  CheckWritable();
  SetAsVariant(LookupValue());
}

// -- Value ------------------------------------------------------------------------------------------------------------

std::string TField::GetAsString() const { RaiseAccess("a text"); }
void TField::SetAsString(const std::string&) { RaiseAccess("a text"); }
std::int32_t TField::GetAsInteger() const { RaiseAccess("an integer"); }
void TField::SetAsInteger(std::int32_t) { RaiseAccess("an integer"); }
double TField::GetAsFloat() const { RaiseAccess("a float"); }
void TField::SetAsFloat(double) { RaiseAccess("a float"); }
bool TField::GetAsBoolean() const { RaiseAccess("a Boolean"); }
void TField::SetAsBoolean(bool) { RaiseAccess("a Boolean"); }
TDateTime TField::GetAsDateTime() const { RaiseAccess("a date"); }
void TField::SetAsDateTime(TDateTime) { RaiseAccess("a date"); }
Variant TField::GetAsVariant() const { RaiseAccess("a variant"); }
void TField::SetVarValue(const Variant&) { RaiseAccess("a variant"); }

void TField::SetAsVariant(const Variant& value) { value.IsNull() || value.IsEmpty() ? Clear() : SetVarValue(value); }

void TField::GetText(std::string& text, bool) const { text = GetAsString(); }

std::string TField::TextBy(bool displayText) const {
  std::string text;
  if (!OnGetText || gettingText_) {
    GetText(text, displayText);
    return text;
  }
  const THandlerScope scope(*this, gettingText_);
  OnGetText(const_cast<TField*>(this), text, displayText);
  return text;
}

void TField::SetText(const std::string& text) {
  if (text.find('\0') != std::string::npos) RaiseBadText(text, "a text without zero bytes");
  if (!OnSetText || settingText_) return SetAsString(text);
  const THandlerScope scope(*this, settingText_);
  OnSetText(this, text);
}

bool TField::CanModify() const {
  return dataSet_ != nullptr && !ReadOnly && !IsCalculated() && dataSet_->GetActive() && dataSet_->CanModify();
}

void TField::AssignValueOf(const TField& other) { SetAsVariant(other.GetAsVariant()); }

// -- Raw --------------------------------------------------------------------------------------------------------------

bool TField::GetData(void* buffer) const {
  if (validating_) {
    CheckNewSize();
    if (newValue_ != nullptr && buffer != nullptr) std::memcpy(buffer, newValue_, static_cast<std::size_t>(DataSize()));
    return newValue_ != nullptr;
  }
  return dataSet_ != nullptr && dataSet_->GetActive() && dataSet_->GetFieldData(*this, buffer);
}

bool TField::IsQuiet() const {
  const TDataSetState state = dataSet_->State();
  return state == dsCalcFields || state == dsFilter || state == dsNewValue || state == dsInternalCalc;
}

void TField::CheckWritable() const {
  if (dataSet_ == nullptr) DatabaseError("Field '" + DisplayName() + "' belongs to no data set");
}

void TField::Validate(const void* buffer) {
  if (!OnValidate) return;
  const THandlerScope scope(*this, validating_);
  newValue_ = buffer;
  newSize_ = DataSize();
  OnValidate(this);
  CheckNewSize();
}

/// A handler that closes the set can make the field longer, but not the value that is being written.
void TField::CheckNewSize() const {
  if (DataSize() != newSize_)
    DatabaseError("Field '" + DisplayName() + "' has got another size while it was validated");
}

void TField::SetData(const void* buffer) {
  const TMemoryKeeper<TComponent> keep(this);
  if (validating_) DatabaseError("Field '" + DisplayName() + "' can't be written while it is validated");
  CheckWritable();
  const bool quiet = IsQuiet();
  if (!quiet) Validate(buffer);
  CheckWritable();
  dataSet_->SetFieldData(*this, buffer);
  if (quiet || changing_ || !OnChange || IsBeingFreed()) return;
  const THandlerScope scope(*this, changing_);
  OnChange(this);
}

// -- Errors -----------------------------------------------------------------------------------------------------------

void TField::RaiseAccess(const char* wanted) const {
  DatabaseError("Field '" + DisplayName() + "' is of type " + EnumShortText(type_) + " and not to be had as " + wanted);
}

void TField::RaiseBadText(std::string_view text, const char* wanted) const {
  std::string shown;  // a zero byte would end the message
  for (const char letter : text) letter == '\0' ? shown += "\\0" : shown += letter;
  DatabaseError("'" + shown + "' is not " + wanted + " for field '" + DisplayName() + "'");
}

void TField::RaiseRange(const std::string& value, const std::string& least, const std::string& greatest) const {
  DatabaseError("'" + value + "' is not between " + least + " and " + greatest + ", the range of field '" +
                DisplayName() + "'");
}

}  // namespace vx
