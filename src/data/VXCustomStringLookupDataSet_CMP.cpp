#include "data/VXCustomStringLookupDataSet_CMP.h"

#include <algorithm>
#include <cstring>

#include "platform/component/Published.h"
#include "platform/runtime/Text.h"
#include "platform/runtime/Wrapping.h"

namespace vx {

namespace {

constexpr const char* kKeyField = "ID";
constexpr const char* kTextField = "String";
constexpr std::int32_t kTextSize = 240;
constexpr std::size_t kFlagOffset = 4;

std::int32_t IndexIn(const void* bytes) {
  std::int32_t index = 0;
  std::memcpy(&index, &Need(static_cast<const char*>(bytes), "record or bookmark"), sizeof index);
  return index;
}

void PutIndex(char* buffer, std::int32_t index) { std::memcpy(&Need(buffer, "record buffer"), &index, sizeof index); }

}  // namespace

const TClass& TVXCustomStringLookupDataSet::StaticClass() {
  static const TClass info("TVXCustomStringLookupDataSet", &TDataSet::StaticClass());
  return info;
}

// -- Open and closed --------------------------------------------------------------------------------------------------

void TVXCustomStringLookupDataSet::InternalOpen() {
  isOpen_ = true;
  index_ = -1;
  SetBookmarkSize(sizeof index_);
  InternalInitFieldDefs();
  if (DefaultFields()) CreateFields();
  BindFields(true);
}

void TVXCustomStringLookupDataSet::InternalClose() {
  BindFields(false);
  if (DefaultFields()) DestroyFields();
  isOpen_ = false;
}

void TVXCustomStringLookupDataSet::InternalInitFieldDefs() {
  FieldDefs().Clear();
  FieldDefs().Add(Make<TFieldDef>(&FieldDefs(), kKeyField, ftInteger, 0, true, 1));
  FieldDefs().Add(Make<TFieldDef>(&FieldDefs(), kTextField, ftString, kTextSize, true, 2));
}

void TVXCustomStringLookupDataSet::DoAfterOpen() {
  TDataSet::DoAfterOpen();
  DoLookupValuesChange();
}

void TVXCustomStringLookupDataSet::DoAfterClose() {
  TDataSet::DoAfterClose();
  DoLookupValuesChange();
}

void TVXCustomStringLookupDataSet::DoLookupValuesChange() { OnLookupValuesChange(this); }

// -- Records ----------------------------------------------------------------------------------------------------------

char* TVXCustomStringLookupDataSet::AllocRecordBuffer() {
  auto* const buffer = new char[kRecordSize];
  PutIndex(buffer, -1);
  SetBookmarkFlag(buffer, bfEOF);
  return buffer;
}

void TVXCustomStringLookupDataSet::FreeRecordBuffer(char*& buffer) {
  delete[] buffer;
  buffer = nullptr;
}

void TVXCustomStringLookupDataSet::InternalInitRecord(char* buffer) { std::fill_n(buffer, kRecordSize, '\0'); }

TGetResult TVXCustomStringLookupDataSet::GetRecord(char* buffer, TGetMode mode, bool check) {
  const std::int32_t count = GetRecordCount();
  if (count < 1 || buffer == nullptr) return grError;
  const TGetResult result = Move(mode, count);
  if (result == grOK) {
    SetBookmarkFlag(buffer, bfCurrent);
    PutIndex(buffer, index_);
  }
  if (result == grError && check) DatabaseError("No Records");
  return result;
}

TGetResult TVXCustomStringLookupDataSet::Move(TGetMode mode, std::int32_t count) {
  if (mode == gmCurrent) return index_ < 0 || index_ > count - 1 ? grError : grOK;
  if (mode == gmNext) {
    if (index_ >= count - 1) return grEOF;
    ++index_;
  } else {
    if (index_ < 1) return grBOF;
    --index_;
  }
  return grOK;
}

void TVXCustomStringLookupDataSet::InternalGotoBookmark(const void* bookmark) { index_ = IndexIn(bookmark); }
void TVXCustomStringLookupDataSet::InternalSetToRecord(char* buffer) { index_ = IndexIn(buffer); }

void TVXCustomStringLookupDataSet::GetBookmarkData(char* buffer, void* data) {
  PutIndex(static_cast<char*>(data), IndexIn(buffer));
}

void TVXCustomStringLookupDataSet::SetBookmarkData(char* buffer, const void* data) { PutIndex(buffer, IndexIn(data)); }

TBookmarkFlag TVXCustomStringLookupDataSet::GetBookmarkFlag(char* buffer) {
  return static_cast<TBookmarkFlag>((&Need(buffer, "record buffer"))[kFlagOffset]);
}

void TVXCustomStringLookupDataSet::SetBookmarkFlag(char* buffer, TBookmarkFlag flag) {
  (&Need(buffer, "record buffer"))[kFlagOffset] = static_cast<char>(flag);
}

bool TVXCustomStringLookupDataSet::BookmarkValid(const TBookmark& bookmark) {
  if (bookmark.IsNull() || bookmark.Bytes().size() != sizeof index_) return false;
  const std::int32_t index = IndexIn(bookmark.Data());
  return index >= 0 && index < GetRecordCount();
}

std::int32_t TVXCustomStringLookupDataSet::GetRecNo() {
  char* const buffer = State() == dsCalcFields ? CalcBuffer() : ActiveBuffer();
  return WrappingAdd(IndexIn(buffer), 1);
}

void TVXCustomStringLookupDataSet::SetRecNo(std::int32_t value) {
  CheckBrowseMode();
  if (value == RecNo()) return;
  index_ = WrappingSubtract(value, 1);
  Resync({rmCenter});
}

// -- Values -----------------------------------------------------------------------------------------------------------

char* TVXCustomStringLookupDataSet::FindActiveBuffer() {
  if (State() == dsBrowse) return IsEmpty() ? nullptr : ActiveBuffer();
  return State() == dsEdit || State() == dsInsert ? ActiveBuffer() : nullptr;
}

bool TVXCustomStringLookupDataSet::GetFieldData(const TField& field, void* buffer) {
  char* const record = FindActiveBuffer();
  if (record == nullptr || buffer == nullptr) return false;
  if (field.FieldNo() < 1) return false;  // calculated fields have no room in the record
  const std::int32_t index = IndexIn(record);
  if (index == -1) return false;
  if (field.DataType() != ftString) {
    const std::int32_t key = GetKey(index);
    std::memcpy(buffer, &key, sizeof key);
    return true;
  }
  const std::string text = GetString(index);
  const std::string_view cut = CutAtCodePoint(text, static_cast<std::size_t>(std::max(field.Size(), 0)));
  auto* const target = static_cast<char*>(buffer);
  std::copy(cut.begin(), cut.end(), target);
  target[cut.size()] = '\0';
  return true;
}

// -- Searching --------------------------------------------------------------------------------------------------------

std::int32_t TVXCustomStringLookupDataSet::GetIndexFromKeyValueAsVariant(const Variant& value) {
  if (value.Kind() != vkSmallint && value.Kind() != vkInteger) return -1;
  const std::int32_t index = GetIndexFromKey(value.AsInteger());
  return index < GetRecordCount() ? index : -1;
}

std::int32_t TVXCustomStringLookupDataSet::GetIndexFromTextValueAsVariant(const Variant& value) {
  if (value.Kind() != vkString) return -1;
  const std::int32_t index = GetIndexFromText(value.Text());
  return index < GetRecordCount() ? index : -1;
}

Variant TVXCustomStringLookupDataSet::Lookup(const std::string& keyFields, const Variant& keyValues,
                                             const std::string& resultFields) {
  if (keyFields == kKeyField && resultFields == kTextField) {
    const std::int32_t index = GetIndexFromKeyValueAsVariant(keyValues);
    if (index != -1) return GetString(index);
  } else if (keyFields == kTextField && resultFields == kKeyField) {
    const std::int32_t index = GetIndexFromTextValueAsVariant(keyValues);
    if (index != -1) return GetKey(index);
  }
  return {};
}

std::string TVXCustomStringLookupDataSet::LookupKey(std::int32_t key) {
  const Variant text = Lookup(kKeyField, key, kTextField);
  return text.Kind() == vkString ? text.Text() : "";
}

bool TVXCustomStringLookupDataSet::Locate(const std::string& keyFields, const Variant& keyValues, TLocateOptions) {
  std::int32_t index = -1;
  if (keyFields == kKeyField) index = GetIndexFromKeyValueAsVariant(keyValues);
  if (keyFields == kTextField) index = GetIndexFromTextValueAsVariant(keyValues);
  if (index == -1) return false;
  CheckCanFetch();
  index_ = index;
  Resync({rmExact});
  return true;
}

}  // namespace vx
