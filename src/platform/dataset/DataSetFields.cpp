// DataSetFields.cpp: the fields of a data set, and their calculated values.
#include <algorithm>

#include "platform/component/NameTable.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/DataSetWork.h"
#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

/// Runs on leaving a scope.
template <class F>
struct TAtEnd {
  F run;
  ~TAtEnd() { run(); }
};
template <class F>
TAtEnd(F) -> TAtEnd<F>;

std::string Quoted(std::string_view name) { return "'" + std::string(name) + "'"; }

/// Of "Id; Number".
std::vector<std::string> NamesIn(const std::string& names) {
  std::vector<std::string> each;
  std::size_t from = 0;
  for (std::size_t to = 0; to != std::string::npos; from = to + 1) {
    to = names.find(';', from);
    each.push_back(Trim(names.substr(from, to == std::string::npos ? to : to - from)));
  }
  return each;
}

}  // namespace

// -- Finding ----------------------------------------------------------------------------------------------------------

TField* TDataSet::Fields(std::int32_t index) const {
  if (index < 0 || index >= FieldCount()) throw EListError("Field index out of bounds (" + std::to_string(index) + ")");
  return fields_[static_cast<std::size_t>(index)];
}

TField* TDataSet::FindField(std::string_view name) const {
  for (TField* const field : fields_)
    if (IsSameName(field->FieldName(), name)) return field;
  if (IsAscii(name)) return nullptr;
  const std::string folded = FoldCase(name);
  const auto at = std::find_if(fields_.begin(), fields_.end(),
                               [&](const TField* field) { return FoldCase(field->FieldName()) == folded; });
  return at == fields_.end() ? nullptr : *at;
}

TField* TDataSet::FieldByName(std::string_view name) const {
  TField* const field = FindField(name);
  if (field == nullptr) RaiseError("Field " + Quoted(name) + " not found");
  return field;
}

std::vector<TField*> TDataSet::FieldsOf(const std::string& names) const {
  std::vector<TField*> fields;
  for (const std::string& name : NamesIn(names)) fields.push_back(FieldByName(name));
  return fields;
}

Variant TDataSet::GetFieldValue(const std::string& names) const {
  if (names.find(';') == std::string::npos) return FieldByName(names)->Value();
  std::vector<Variant> values;
  for (const TField* const field : FieldsOf(names)) values.push_back(field->Value());
  return Variant::Array(std::move(values));
}

void TDataSet::SetFieldValue(const std::string& names, const Variant& value) {
  if (names.find(';') == std::string::npos) return FieldByName(names)->SetValue(value);
  const TWork work(*this);
  FieldsOf(names);  // all are there, before the first is written
  const std::vector<std::string> each = NamesIn(names);
  const std::vector<Variant> values = value.Elements();
  if (values.size() != each.size())
    RaiseError(std::to_string(values.size()) + " values for the fields " + Quoted(names));
  // Looked for again: a field's handlers may do away with the next one.
  for (std::size_t i = 0; i < each.size(); ++i) FieldByName(each[i])->SetValue(values[i]);
}

std::vector<std::string> TDataSet::GetFieldNames() {
  std::vector<std::string> names;
  for (const TField* const field : fields_) names.push_back(field->FieldName());
  if (!names.empty() || GetActive()) return names;
  OpenCursor(true);
  for (std::int32_t i = 0; i < fieldDefs_->Count(); ++i) names.push_back(fieldDefs_->Items(i)->Name());
  return names;
}

// -- Coming and going -------------------------------------------------------------------------------------------------

void TDataSet::AddField(TField& field) { fields_.push_back(&field); }

void TDataSet::RemoveField(TField& field) noexcept {
  const auto at = std::find(fields_.rbegin(), fields_.rend(), &field);
  if (at == fields_.rend()) return;
  fields_.erase(std::next(at).base());
  if (field.IsBeingFreed()) {  // by somebody else, if it is still among our own
    const auto own =
        std::find_if(ownFields_.rbegin(), ownFields_.rend(), [&](const auto& each) { return each.get() == &field; });
    if (own != ownFields_.rend()) {
      static_cast<void>(own->release());
      ownFields_.erase(std::next(own).base());
    }
  }
  if (!GetActive()) return;  // nobody shows it
  TFirstError dropped;
  dropped.Run([&] { DataEvent(deFieldListChange); });
}

void TDataSet::CreateFields() {
  const auto count = static_cast<std::size_t>(fieldDefs_->Count());
  fields_.reserve(fields_.size() + count);
  ownFields_.reserve(ownFields_.size() + count);
  for (std::int32_t i = 0; i < fieldDefs_->Count(); ++i) {
    TOwned<TField> field(fieldDefs_->Items(i)->CreateField(nullptr));
    field->dataSet_ = this;
    AddField(*field);
    ownFields_.push_back(std::move(field));
  }
}

void TDataSet::DestroyFields() {
  while (!ownFields_.empty()) {
    const TOwned<TField> last = std::move(ownFields_.back());
    ownFields_.pop_back();
  }
}

void TDataSet::BindFields(bool binding) {
  calcFieldsSize_ = 0;
  for (TField* const field : fields_) {
    field->fieldNo_ = 0;
    field->offset_ = 0;
    if (binding) BindField(*field);
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) fields_[i]->Bind(binding);
}

void TDataSet::BindField(TField& field) {
  if (field.IsCalculated()) {
    field.offset_ = calcFieldsSize_;
    calcFieldsSize_ += 1 + field.DataSize();
    return;
  }
  const TFieldDef* const def = fieldDefs_->Find(field.FieldName());
  if (def == nullptr) RaiseError("Field " + Quoted(field.FieldName()) + " not found");
  if (def->DataType() != field.DataType())
    RaiseError("Field " + Quoted(field.FieldName()) + " is of the type " + EnumText(field.DataType()) +
               ", but its data are " + EnumText(def->DataType()));
  field.fieldNo_ = def->FieldNo();
  if (field.DataType() == ftString && field.size_ == 0) field.size_ = def->Size();
}

void TDataSet::CheckRequiredFields() const {
  for (const TField* const field : fields_)
    if (field->Required && !field->ReadOnly && field->FieldKind() == fkData && field->IsNull())
      RaiseError("Field " + Quoted(field->DisplayName()) + " must have a value");
}

// -- Calculated values ------------------------------------------------------------------------------------------------

void TDataSet::GetCalcFields(char* buffer) {
  if (calcFieldsSize_ == 0) return;
  const TWork work(*this);
  char* const calcBuffer = std::exchange(calcBuffer_, buffer);
  const TDataSetState state = SetTempState(dsCalcFields);
  const TAtEnd restore{[&] {
    calcBuffer_ = calcBuffer;
    if (work.IsOpen()) RestoreState(state);
  }};
  ClearCalcFields(buffer);
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i]->FieldKind() == fkLookup) fields_[i]->CalcLookupValue();
  DoOnCalcFields();
}

// -- Searching --------------------------------------------------------------------------------------------------------

bool TDataSet::Locate(const std::string&, const Variant&, TLocateOptions) { return false; }

Variant TDataSet::Lookup(const std::string&, const Variant&, const std::string&) { return Variant::Null(); }

}  // namespace vx
