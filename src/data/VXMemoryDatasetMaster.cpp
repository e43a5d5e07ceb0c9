// What leads a data set elsewhere: searches, the master; and the texts of its fields.
#include <utility>

#include "base/VXUtilFunctions_UNT.h"
#include "data/VXMemoryDataset_CMP.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"

namespace vx {

// -- Searching --------------------------------------------------------------------------------------------------------

/// Keeps controls quiet; they are told again at the end, whatever happens.
class TVXMemoryDataset::TQuietControls {
 public:
  explicit TQuietControls(TVXMemoryDataset& set) : keep_(&set), set_(&set) { set.DisableControls(); }
  TQuietControls(const TQuietControls&) = delete;
  TQuietControls& operator=(const TQuietControls&) = delete;
  ~TQuietControls() {
    try {
      End();
    } catch (const std::exception&) {  // another error is on its way
    }
  }
  void End() {
    if (TVXMemoryDataset* const set = std::exchange(set_, nullptr)) set->EnableControls();
  }

 private:
  const TMemoryKeeper<TComponent> keep_;
  TVXMemoryDataset* set_;
};

bool TVXMemoryDataset::Locate(const std::string& keyFields, const Variant& keyValues, TLocateOptions options) {
  const TMemoryKeeper<TComponent> keep(this);
  CheckBrowseMode();
  return InternalLocate(keyFields, keyValues, options, true);
}

Variant TVXMemoryDataset::Lookup(const std::string& keyFields, const Variant& keyValues,
                                 const std::string& resultFields) {
  const TMemoryKeeper<TComponent> keep(this);
  // Kept: the set stays on the record found.
  if (!InternalLocate(keyFields, keyValues, {}, false)) return Variant::Null();
  return GetFieldValue(resultFields);
}

namespace {

/// What is looked for, by the rules that the header tells at Locate.
class TSought {
 public:
  TSought(const Variant& value, TLocateOptions options)
      : text_(value.IsNull() ? std::string() : value.AsString()),
        isUpper_(options.Has(loCaseInsensitive)),
        isPart_(options.Has(loPartialKey)) {
    if (isUpper_) text_ = AnsiUpperCase(text_);
    if (text_.ends_with('*')) text_.pop_back();  // kept: without loPartialKey too
  }
  bool Matches(const std::string& text) const {
    if (isPart_) return text.starts_with(text_);  // kept: the field's text stays as it is
    return isUpper_ ? AnsiUpperCase(text) == text_ : text == text_;
  }

 private:
  std::string text_;
  bool isUpper_;
  bool isPart_;
};

}  // namespace

/// Kept: `sync` is ignored.
bool TVXMemoryDataset::InternalLocate(const std::string& field, const Variant& value, TLocateOptions options, bool) {
  TBookmark place = GetBookmark();
  TQuietControls quiet(*this);
  const TSought sought(value, options);
  if (!options.Has(loPartialKey)) First();  // kept: else from the present record on
  TComponentRef<TField> column;
  bool found = false;
  while (!found && !Eof()) {
    if (!column) column = FieldByName(field);  // again, if a handler has opened the set anew
    found = sought.Matches(column->GetAsString());
    if (!found) Next();
  }
  if (!found) GotoBookmark(place);
  quiet.End();
  FreeBookmark(place);
  return found;
}

// -- Master -----------------------------------------------------------------------------------------------------------

std::string TVXMemoryDataset::GetMasterField() const {
  return masterLink_ == nullptr ? std::string() : masterLink_->FieldName();
}

void TVXMemoryDataset::SetMasterField(const std::string& name) {
  const TMemoryKeeper<TComponent> keep(this);
  TVXMemoryDatasetMasterDataLink& link = Need(masterLink_.get(), "master link");
  if (name == link.FieldName()) return;
  link.SetFieldName(name);
  if (GetActive() && link.Active()) MasterChanged(&link);
}

TDataSource* TVXMemoryDataset::GetDataSource() const {
  return masterLink_ == nullptr ? nullptr : masterLink_->DataSource();
}

void TVXMemoryDataset::SetDataSource(TDataSource* source) {
  if (source == GetDataSource()) return;
  if (source != nullptr && IsLinkedTo(source)) RaiseError("Circular data links are not allowed");
  Need(masterLink_.get(), "master link").SetDataSource(source);
  if (source == nullptr) masterLink_->SetFieldName({});
}

TVXMemoryDataset* TVXMemoryDataset::GetMasterTable() const {
  TDataSource* const source = GetDataSource();
  return source == nullptr ? nullptr : As<TVXMemoryDataset>(source->DataSet());
}

TVXRAMFieldDef* TVXMemoryDataset::GetMasterRAMFieldDef() {
  for (std::int32_t i = 0; i < FieldDefs().Count(); ++i)
    if (FieldDefs().Items(i)->Name() == detailField_) {
      const auto* const def = As<TVXMemoryDatasetFieldDef>(FieldDefs().Items(i));
      TVXRAMFieldDef* const field = def == nullptr ? nullptr : def->Get_RAMFieldDef();
      return field != nullptr && field->Get_Table() == GetRAMTable() ? field : nullptr;
    }
  return nullptr;
}

Variant TVXMemoryDataset::GetMasterValue() const {
  const TField* const field = GetMasterTable() == nullptr ? nullptr : masterLink_->Field();
  return field == nullptr ? Variant::Null() : field->Value();
}

std::int32_t TVXMemoryDataset::GetMasterID() const {
  const Variant value = GetMasterValue();
  if (value.IsNull()) return -1;
  try {
    return value.AsInteger();
  } catch (const EVariantError&) {
    return -1;
  }
}

/// The cursor comes to show the rows of the master's record.
void TVXMemoryDataset::FollowMaster() {
  TVXRAMCursor& cursor = NeedCursor();
  TVXRAMFieldDef* const field = GetMasterRAMFieldDef();
  const TVXList* const rows = cursor.Get_ActiveRecordList();
  const bool shares = rows == cursor.Table().Get_MainRecordList() ||
                      (cursor.Get_Index() != nullptr && rows == cursor.Get_Index()->Get_List());
  // A filter of nothing would sort the list anew that the master may be walking. Equal rows change places at each sort:
  // the master would never come to its end.
  if (field == nullptr && shares && !cursor.Get_SortedField().empty()) return cursor.GoToFirstRec();
  try {
    cursor.Get_Filter()->SetFilter(field, GetMasterValue());
  } catch (const EVariantError& error) {
    if (cursor_ != nullptr) cursor_->GoToFirstRec();  // of the rows that were found before
    RaiseMasterMismatch(error);
  }
}

void TVXMemoryDataset::RaiseMasterMismatch(const EVariantError& error) const {
  throw EVariantError("Detail field '" + detailField_ + "' can't be compared with master field '" + GetMasterField() +
                      "': " + error.Message());
}

void TVXMemoryDataset::MasterChanged(TObject*) {
  if (GetMasterTable() == nullptr) return;
  const TMemoryKeeper<TComponent> keep(this);
  CheckBrowseMode();
  try {
    FollowMaster();
  } catch (const EVariantError&) {
    if (GetActive()) Resync({});
    throw;
  }
  Resync({});
}

void TVXMemoryDataset::MasterDisabled(TObject*) {
  if (GetMasterTable() == nullptr) return;
  const TMemoryKeeper<TComponent> keep(this);
  CheckBrowseMode();
  ClearBuffers();
  if (GetActive() && GetRecordCount() > 0) Resync({});
}

// -- TVXMemoryDatasetMasterDataLink -----------------------------------------------------------------------------------

const TClass& TVXMemoryDatasetMasterDataLink::StaticClass() {
  static const TClass info("TVXMemoryDatasetMasterDataLink", &TFieldDataLink::StaticClass());
  return info;
}

void TVXMemoryDatasetMasterDataLink::ActiveChanged() {
  TFieldDataLink::ActiveChanged();  // finds the master field
  if (!detail_->GetActive() || detail_->Is(csDestroying)) return;
  (Active() ? OnMasterChange : OnMasterDisable)(this);
}

void TVXMemoryDatasetMasterDataLink::CheckBrowseMode() {
  if (detail_->GetActive()) detail_->CheckBrowseMode();
}

void TVXMemoryDatasetMasterDataLink::LayoutChanged() { ActiveChanged(); }

void TVXMemoryDatasetMasterDataLink::RecordChanged(TField* field) {
  TFieldDataLink::RecordChanged(field);
  if (DataSource() != nullptr && DataSource()->State() == dsSetKey) return;
  if (detail_->GetActive()) OnMasterChange(this);
}

// -- Texts of fields --------------------------------------------------------------------------------------------------

void TVXMemoryDataset::SetFieldTexts() {
  for (std::int32_t i = 0; i < FieldCount(); ++i) {
    TField& field = *Fields(i);
    if (field.OnGetText || field.OnSetText) continue;
    if (const TSlot* const slot = field.FieldNo() < 1 ? nullptr : SlotOf(field)) SetFieldText(field, slot->Type);
  }
}

void TVXMemoryDataset::SetFieldText(TField& field, TVXRAMFieldType type) {
  if (type == vxrftDuration) {
    field.OnGetText = &TVXMemoryDataset::DoDurationFieldGetText;
    field.OnSetText = &TVXMemoryDataset::DoDurationFieldSetText;
  }
  if (auto* const boolean = As<TBooleanField>(&field)) {
    boolean->SetDisplayValues(LoadStr(14709) + ";" + LoadStr(14710));
  } else if (const auto* const number = As<TNumericField>(&field)) {
    if (field.DataType() == ftFloat && number->DisplayFormat().empty())
      field.OnGetText = &TVXMemoryDataset::DoFloatFieldGetText;
  } else if (As<TDateTimeField>(&field) != nullptr) {
    field.OnGetText = &TVXMemoryDataset::DoDateTimeFieldGetText;
    field.OnSetText = &TVXMemoryDataset::DoDateTimeFieldSetText;
  }
}

void TVXMemoryDataset::DoDurationFieldGetText(TField* field, std::string& text, bool) {
  text.clear();
  if (field->IsNull()) return;
  auto* const set = As<TVXMemoryDataset>(field->DataSet());
  const TVXMemoryDatasetFieldDef* const def = set == nullptr ? nullptr : set->GetEAFieldDef(field->FieldNo());
  text = DurationToStr(field->GetAsInteger(), def == nullptr ? 0 : def->Get_Precision(), vxduAuto);
}

namespace {

/// What `read` makes of the text. One that it can't read names the field.
template <class Read>
double ReadFor(const TField& field, const Read& read) {
  try {
    return read();
  } catch (const EVXDateFuncException& error) {
    throw EVXDateFuncException("Field '" + field.DisplayName() + "': " + error.Message());
  }
}

}  // namespace

/// Kept: a duration too long for the field is taken as the longest one.
void TVXMemoryDataset::DoDurationFieldSetText(TField* field, const std::string& text) {
  if (text.empty()) return field->Clear();
  field->SetAsFloat(ReadFor(*field, [&] { return StrToDuration(text, vxduAuto); }));
}

void TVXMemoryDataset::DoDateTimeFieldGetText(TField* field, std::string& text, bool) {
  const TDateTime date = field->IsNull() ? 0.0 : field->GetAsDateTime();
  // Kept: day 0 at midnight shows as nothing, though it isn't null; what is no day of the calendar, as only those who
  // write past the field leave it, shows as zeros.
  if (date == 0.0)
    text.clear();
  else
    text = field->DataType() == ftDate ? SysDateToDateStr(date) : SysDateToStr(date);
}

void TVXMemoryDataset::DoDateTimeFieldSetText(TField* field, const std::string& text) {
  if (text.empty()) return field->Clear();
  field->SetAsDateTime(ReadFor(*field, [&] { return StrToSysDate(text, true); }));
}

void TVXMemoryDataset::DoFloatFieldGetText(TField* field, std::string& text, bool displayText) {
  text.clear();
  const auto* const number = As<TFloatField>(field);
  if (!field->IsNull())
    text = FloatToString(field->GetAsFloat(), number == nullptr ? 15 : number->Precision(), displayText);
}

}  // namespace vx
