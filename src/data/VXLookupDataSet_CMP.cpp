#include "data/VXLookupDataSet_CMP.h"

#include "platform/component/Published.h"
#include "platform/runtime/Text.h"

namespace vx {

// -- TVXLookupValue(s) ------------------------------------------------------------------------------------------------

const TClass& TVXLookupValue::StaticClass() {
  static const TClass info = TClassBuilder<TVXLookupValue>("TVXLookupValue", TCollectionItem::StaticClass())
                                 .Property("Key", &TVXLookupValue::GetKey, &TVXLookupValue::SetKey)
                                 .Property("Text", &TVXLookupValue::GetText, &TVXLookupValue::SetText)
                                 .Build();
  return info;
}

std::string TVXLookupValue::GetDisplayName() const { return "[" + std::to_string(key_) + ", '" + text_ + "']"; }

void TVXLookupValue::Assign(const TPersistent* source) {
  const auto* const other = As<TVXLookupValue>(source);
  if (other == nullptr) return TCollectionItem::Assign(source);
  SetText(other->GetText());
  SetKey(other->GetKey());
}

void TVXLookupValue::SetKey(std::int32_t value) {
  if (value == key_) return;
  key_ = value;
  Unsort();
  Changed(false);
}

void TVXLookupValue::SetText(const std::string& value) {
  text_ = value;
  Unsort();
}

void TVXLookupValue::Unsort() const {
  if (auto* const values = As<TVXLookupValues>(Collection())) values->isSorted_ = false;
}

const TClass& TVXLookupValues::StaticClass() {
  static const TClass info("TVXLookupValues", &TCollection::StaticClass());
  return info;
}

TVXLookupValues::TVXLookupValues(TVXCustomLookupDataSet* owner) : owner_(owner) {}

TPersistent* TVXLookupValues::GetOwner() const { return owner_; }

template <class F>
TVXLookupValue* TVXLookupValues::FindFirst(const F& matches) const {
  for (std::int32_t i = 0; i < Count(); ++i)
    if (matches(*Items(i))) return Items(i);
  return nullptr;
}

TVXLookupValue* TVXLookupValues::FindKey(std::int32_t key) const {
  return FindFirst([&](const TVXLookupValue& value) { return value.GetKey() == key; });
}

TVXLookupValue* TVXLookupValues::FindText(const std::string& text) const {
  return FindFirst([&](const TVXLookupValue& value) { return CompareText(value.GetText(), text) == 0; });
}

bool TVXLookupValues::StandsBehind(const TVXLookupValue& value, std::int32_t key, const std::string& text) const {
  if (sortOrder_ == vxlsoKey) return value.GetKey() > key;
  return sortOrder_ == vxlsoText && CompareText(value.GetText(), text) > 0;
}

bool TVXLookupValues::IsSorted() const {
  if (isSorted_) return true;
  for (std::int32_t i = 1; i < Count(); ++i)
    if (StandsBehind(*Items(i - 1), Items(i)->GetKey(), Items(i)->GetText())) return false;
  return true;
}

/// The first value that stands behind that one, else Count(). Unsorted values are walked, sorted ones halved.
std::int32_t TVXLookupValues::FirstBehind(std::int32_t key, const std::string& text, bool sorted) const {
  std::int32_t first = 0;
  for (std::int32_t last = Count(); first < last;) {
    const std::int32_t middle = sorted ? first + (last - first) / 2 : first;
    if (!StandsBehind(*Items(middle), key, text))
      first = middle + 1;
    else if (sorted)
      last = middle;
    else
      break;
  }
  return first;
}

TVXLookupValue* TVXLookupValues::AddLookupValue(std::int32_t key, const std::string& text) {
  const bool sorted = IsSorted();
  const std::int32_t place = FirstBehind(key, text, sorted);
  TVXLookupValue* const value = place == Count() ? Add() : Insert(place);
  value->SetKey(key);
  value->SetText(text);
  isSorted_ = sorted;
  return value;
}

void TVXLookupValues::SetSortOrder(TVXLookupSortOrder value) {
  sortOrder_ = value;
  isSorted_ = false;
}

// -- TVXCustomLookupDataSet -------------------------------------------------------------------------------------------

const TClass& TVXCustomLookupDataSet::StaticClass() {
  static const TClass info("TVXCustomLookupDataSet", &TVXCustomStringLookupDataSet::StaticClass());
  return info;
}

void TVXCustomLookupDataSet::TearDown() {
  TVXCustomStringLookupDataSet::TearDown();
  ClearLookupValues();
}

TVXLookupValues* TVXCustomLookupDataSet::GetLookupValues() {
  if (values_ == nullptr && GetLookupValuesAreAvailable()) {
    values_ = Make<TVXLookupValues>(this);
    values_->SetSortOrder(sortOrder_);
    try {
      RefreshLookupValues();
    } catch (...) {  // filled anew the next time
      ClearLookupValues();
      throw;
    }
  }
  return values_.get();
}

void TVXCustomLookupDataSet::SetLookupValues(const TVXLookupValues* value) {
  Need(GetLookupValues(), "lookup values").Assign(value);
}

TVXLookupValue* TVXCustomLookupDataSet::AddLookupValue(std::int32_t key, const std::string& text) {
  return Need(GetLookupValues(), "lookup values").AddLookupValue(key, text);
}

void TVXCustomLookupDataSet::SetSortOrder(TVXLookupSortOrder value) {
  sortOrder_ = value;
  if (values_ != nullptr) values_->SetSortOrder(value);
}

std::int32_t TVXCustomLookupDataSet::GetKey(std::int32_t index) {
  const TVXLookupValues* const values = GetLookupValues();
  return values == nullptr ? -1 : values->GetItem(index)->GetKey();
}

std::string TVXCustomLookupDataSet::GetString(std::int32_t index) {
  const TVXLookupValues* const values = GetLookupValues();
  return values == nullptr ? "" : values->GetItem(index)->GetText();
}

std::int32_t TVXCustomLookupDataSet::GetIndexFromKey(std::int32_t key) {
  const TVXLookupValues* const values = GetLookupValues();
  const TVXLookupValue* const value = values == nullptr ? nullptr : values->FindKey(key);
  return value == nullptr ? -1 : value->Index();
}

std::int32_t TVXCustomLookupDataSet::GetIndexFromText(const std::string& text) {
  const TVXLookupValues* const values = GetLookupValues();
  const TVXLookupValue* const value = values == nullptr ? nullptr : values->FindText(text);
  return value == nullptr ? -1 : value->Index();
}

std::int32_t TVXCustomLookupDataSet::GetRecordCount() {
  const TVXLookupValues* const values = GetLookupValues();
  return values == nullptr ? 0 : values->Count();
}

// -- TVXLookupDataSet -------------------------------------------------------------------------------------------------

const TClass& TVXLookupDataSet::StaticClass() {
  static const TClass info =
      TClassBuilder<TVXLookupDataSet>("TVXLookupDataSet", TVXCustomLookupDataSet::StaticClass())
          .Property("LookupValues", &TVXLookupDataSet::GetLookupValues, &TVXLookupDataSet::SetLookupValues)
          .Build();
  return info;
}

void TVXLookupDataSet::Loaded() {
  TVXCustomLookupDataSet::Loaded();
  if (!GetActive()) Open();
}

namespace VXLookupDataSet_CMP {

void Register() { RegisterComponents("VX Data Access", {&TVXLookupDataSet::StaticClass()}); }

}  // namespace VXLookupDataSet_CMP

}  // namespace vx
