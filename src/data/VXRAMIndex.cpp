#include "data/VXRAMIndex.h"

#include <algorithm>

#include "data/VXRAMRowSearch.h"
#include "data/VXRAMSort.h"
#include "data/VXRAMTable_CMP.h"
#include "platform/component/Published.h"

namespace vx {

namespace {

/// Changes of definitions are refused while the base index of the table holds rows; without a table there is none.
void GuardIndexDefs(const TVXRAMTable* table) {
  if (table != nullptr) table->CheckIndexDefChangesAllowed();
}

}  // namespace

// -- TVXRAMIndex ------------------------------------------------------------------------------------------------------

const TClass& TVXRAMIndex::StaticClass() {
  static const TClass info("TVXRAMIndex", &TObject::StaticClass());
  return info;
}

TVXRAMIndex::TVXRAMIndex(TVXRAMTable* table) : table_(table), list_(Make<TVXList>()) {}

TVXRAMFieldType TVXRAMIndex::KeyType() const { return static_cast<TVXRAMFieldType>(GetFieldType() & 0x7F); }

std::int32_t TVXRAMIndex::Add(TVXRAMRow* row) {
  Need(Table(), "table of the index").idsAreUnique_ = false;  // the caller may add what is there already
  return list_->Add(row);
}

std::int32_t TVXRAMIndex::Insert(TVXRAMRow* row) {
  const std::int32_t position = Add(row);
  ReBuild();
  return position;
}

void TVXRAMIndex::Remove(const TVXRAMRow* row) {
  const std::int32_t at = Find(row);
  if (at < 0) return;
  const bool sorted = IsSorted();
  list_->Delete(at);
  if (!sorted) return;
  NoteChange(order_.count - 1);
  if (order_.differ == false) order_.differ.reset();
}

std::int32_t TVXRAMIndex::Find(const TVXRAMRow* row) const {
  const TVXRAMTable* const table = Table();
  if (table == nullptr || !table->pool_.Owns(row)) return list_->IndexOf(row);
  const std::int32_t at = SearchKeyOf(row);
  return at >= 0 ? at : table->Find(*list_, row, 0, {});
}

std::int32_t TVXRAMIndex::SearchKeyOf(const TVXRAMRow* row) const {
  if (!IsSorted()) return -1;
  return SearchEqual(*list_, row, [&](const TVXRAMRow* other) { return CompareRows(other, row, order_.slot); });
}

// -- Rebuilding -------------------------------------------------------------------------------------------------------

TVXRAMFieldSlot TVXRAMIndex::TakeSlot() {
  fieldOffset_ = GetFieldOffset();
  fieldStatusOffset_ = GetFieldStatusOffset();
  fieldSize_ = GetFieldByteSize();
  return {fieldStatusOffset_, fieldOffset_, fieldSize_, KeyType()};
}

bool TVXRAMIndex::KnowsOrder() const {
  const TVXRAMTable* const table = Table();
  return table != nullptr && order_.count >= 0 && order_.rewrites == list_->Rewrites() &&
         order_.stamp == table->Get_ChangeStamp();
}

void TVXRAMIndex::NoteChange(std::int32_t count) {
  order_.rewrites = list_->Rewrites();
  order_.count = count;
  order_.stray = -1;
}

void TVXRAMIndex::BeforeWrite(const TVXRAMRow* row) {
  order_.stray = SearchKeyOf(row);
  if (order_.stray < 0) order_.count = -1;
}

void TVXRAMIndex::AfterWrite() {
  if (order_.count >= 0) order_.stamp = Need(Table(), "table of the index").Get_ChangeStamp();
}

/// Where the one row stands that came, or was written into, since the list was in order; -1 if there are others.
std::int32_t TVXRAMIndex::StrayRow() const {
  if (!KnowsOrder()) return -1;
  if (order_.count == Get_RecCount()) return order_.stray;
  return order_.count == Get_RecCount() - 1 && order_.stray < 0 ? order_.count : -1;
}

void TVXRAMIndex::ReBuild() {
  const TVXRAMFieldSlot slot = TakeSlot();
  const std::int32_t stray = slot == order_.slot ? StrayRow() : -1;
  if (stray < 0 || !Place(stray)) {
    const bool oneIsNew = stray >= 0 && order_.stray < 0;
    Pack();
    if (slot.type > kLastFieldType) throw ERTEInvalidFieldType("Cannot sort on a field of this type.");
    SortRows(list_->Data(), list_->Count(), {{slot}});
    const std::uint64_t stamp = Need(Table(), "table of the index").Get_ChangeStamp();
    // Rows of which two were equal before another one came still are not all different.
    order_ = {slot, stamp, list_->Rewrites(), list_->Count(), oneIsNew ? order_.differ : std::nullopt};
  }
  Need(Table(), "table of the index").IndexRebuildingNotification(this);
}

/// Moves the row at `at`, all others being in order, to where a sort would leave it. Where two rows are equal only the
/// sort itself knows: false then.
bool TVXRAMIndex::Place(std::int32_t at) {
  const TVXRAMRow* const row = Get_Record(at);
  if (!order_.differ) order_.differ = OthersDiffer(at);
  if (row == nullptr || order_.differ == false) return false;
  const std::int32_t others = Get_RecCount() - 1;
  const auto order = [&](std::int32_t i) { return CompareRows(Get_Record(i < at ? i : i + 1), row, order_.slot); };
  const std::int32_t place = SearchPosition(others, [&](std::int32_t i) { return order(i) < 0; });
  order_.differ = place == others || order(place) != 0;
  if (order_.differ == false) return false;
  if (place != at) list_->Move(at, place);
  NoteChange(others + 1);
  return true;
}

/// Whether each row stands before the next one, `but` left out.
bool TVXRAMIndex::OthersDiffer(std::int32_t but) const {
  const TVXRAMRow* before = nullptr;
  for (std::int32_t i = 0; i < Get_RecCount(); ++i) {
    if (i == but) continue;
    const TVXRAMRow* const row = Get_Record(i);
    if (before != nullptr && CompareRows(before, row, order_.slot) >= 0) return false;
    before = row;
  }
  return true;
}

std::int32_t TVXRAMIndex::LocateFirst(const void* key) {
  fieldOffset_ = GetFieldOffset();
  Need(static_cast<const std::uint8_t*>(key), "key");
  const TVXRAMFieldType type = KeyType();
  if (type > kLastFieldType) return -1;
  const TVXRAMFieldSlot slot{-1, fieldOffset_, GetFieldByteSize(), type};
  const auto below = [&](std::int32_t i) { return CompareRowWithKey(Get_Record(i), slot, key) < 0; };
  // Kept: the search of integers answers other numbers where there is no such row.
  const bool integers = type == vxrftInteger || type == vxrftDuration;
  std::int32_t low = 0;
  std::int32_t high = Get_RecCount() - 1;
  if (high < 0) return integers ? 0 : -1;
  if (!below(low)) return 0;
  if (below(high)) return integers ? high : -2;
  for (;;) {
    const std::int32_t middle = low + (high - low + 1) / 2;
    if (high <= middle) return middle;
    (below(middle) ? low : high) = middle;
  }
}

std::int32_t TVXRAMIndex::CompareAs(TVXRAMFieldType type, const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareRows(first, second, {fieldStatusOffset_, fieldOffset_, fieldSize_, type});
}

std::int32_t TVXRAMIndex::BooleanSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftBoolean, first, second);
}
std::int32_t TVXRAMIndex::DateTimeSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftDateTime, first, second);
}
std::int32_t TVXRAMIndex::FloatSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftFloat, first, second);
}
std::int32_t TVXRAMIndex::IntegerSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftInteger, first, second);
}
std::int32_t TVXRAMIndex::SmallintSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftSmallint, first, second);
}
std::int32_t TVXRAMIndex::StringSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftString, first, second);
}
std::int32_t TVXRAMIndex::WordSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const {
  return CompareAs(vxrftWord, first, second);
}

const TClass& TVXRAMBaseIndex::StaticClass() {
  static const TClass info("TVXRAMBaseIndex", &TVXRAMIndex::StaticClass());
  return info;
}

// -- TVXRAMUserIndex --------------------------------------------------------------------------------------------------

const TClass& TVXRAMUserIndex::StaticClass() {
  static const TClass info("TVXRAMUserIndex", &TVXRAMIndex::StaticClass());
  return info;
}

TVXRAMFieldDef& TVXRAMUserIndex::Field() const {
  return Need(Need(definition_, "index definition").Get_Field(), "field of the index");
}

TVXRAMTable* TVXRAMUserIndex::Table() const { return definition_ == nullptr ? nullptr : definition_->Get_Table(); }
std::int32_t TVXRAMUserIndex::GetFieldByteSize() const { return Field().Get_ByteSize(); }
std::int32_t TVXRAMUserIndex::GetFieldOffset() const { return Field().Get_ValueOffset(); }
std::int32_t TVXRAMUserIndex::GetFieldStatusOffset() const { return Field().Get_StatusOffset(); }
TVXRAMFieldType TVXRAMUserIndex::GetFieldType() const { return Field().Get_DataType(); }

// -- TVXRAMIndexDef ---------------------------------------------------------------------------------------------------

const TClass& TVXRAMIndexDef::StaticClass() {
  static const TClass info = TClassBuilder<TVXRAMIndexDef>("TVXRAMIndexDef", TCollectionItem::StaticClass())
                                 .Property("FieldName", &TVXRAMIndexDef::Get_FieldName, &TVXRAMIndexDef::Set_FieldName)
                                 .Build();
  return info;
}

TVXRAMIndexDef::TVXRAMIndexDef(TCollection* collection) : TCollectionItem(collection) {
  const auto* const owner = As<TVXRAMIndexDefs>(collection);
  index_ = Make<TVXRAMUserIndex>(owner == nullptr ? nullptr : owner->Get_Table(), this);
}

std::string TVXRAMIndexDef::GetDisplayName() const {
  const std::string name = Get_FieldName();
  return name.empty() ? TCollectionItem::GetDisplayName() : name;
}

void TVXRAMIndexDef::TearDown() {
  TVXRAMTable* const table = Get_Table();
  index_->definition_ = nullptr;
  if (table != nullptr) table->IndexFreed(std::move(index_));
  TCollectionItem::TearDown();
}

TVXRAMTable* TVXRAMIndexDef::Get_Table() const {
  const auto* const owner = As<TVXRAMIndexDefs>(Collection());
  return owner == nullptr ? nullptr : owner->Get_Table();
}

std::string TVXRAMIndexDef::Get_FieldName() const {
  const TVXRAMFieldDef* const field = field_.Get();
  return field == nullptr ? std::string() : field->Get_Name();
}

void TVXRAMIndexDef::Set_FieldName(const std::string& value) {
  const TVXRAMFieldDefs& fields = *Need(Get_Table(), "table of the index definition").Get_FieldDefs();
  for (std::int32_t i = 0; i < fields.Count(); ++i) {
    if (fields.Get_Item(i)->Get_Name() != value) continue;
    field_ = fields.Get_Item(i);
    return;
  }
  throw ERTEFieldDoesNotExist(ClassName() + ":\rCannot create an " + "index on this field: field does not exist.");
}

// -- TVXRAMIndexDefs --------------------------------------------------------------------------------------------------

const TClass& TVXRAMIndexDefs::StaticClass() {
  static const TClass info("TVXRAMIndexDefs", &TCollection::StaticClass());
  return info;
}

TVXRAMIndexDefs::TVXRAMIndexDefs(TVXRAMTable* table)
    : TCollection(TClassOf<TCollectionItem>::Of<TVXRAMIndexDef>()), table_(table) {}

TPersistent* TVXRAMIndexDefs::GetOwner() const { return table_; }

void TVXRAMIndexDefs::Assign(const TPersistent* source) {
  GuardIndexDefs(table_);
  if (source == this) return;
  const auto* const defs = As<TVXRAMIndexDefs>(source);
  if (defs == nullptr) return TCollection::Assign(source);
  Clear();
  for (std::int32_t i = 0; i < defs->Count(); ++i) {
    TVXRAMIndexDef& copy = *Add();
    const std::string name = defs->Get_Item(i)->Get_FieldName();
    if (!name.empty()) copy.Set_FieldName(name);
  }
}

TVXRAMIndexDef* TVXRAMIndexDefs::Add() {
  GuardIndexDefs(table_);
  return Cast<TVXRAMIndexDef>(TCollection::Add());
}

TVXRAMIndexDef* TVXRAMIndexDefs::Get_Item(std::int32_t index) const { return Cast<TVXRAMIndexDef>(Items(index)); }

void TVXRAMIndexDefs::ItemsMoved() {
  if (table_ == nullptr) return;
  table_->LeaveStrayIndexes();
  // A definition that comes from another table leaves that table's rows behind.
  const auto* const last = Count() == 0 ? nullptr : As<TVXRAMIndexDef>(Items(Count() - 1));
  if (last == nullptr || last->Get_Index() == nullptr || last->Get_Index()->table_ == table_) return;
  last->Get_Index()->Clear();
  last->Get_Index()->table_ = table_;
}

void TVXRAMIndexDefs::Set_Item(std::int32_t index, const TVXRAMIndexDef* value) {
  GuardIndexDefs(table_);
  TVXRAMIndexDef& item = *Get_Item(index);
  item.Set_FieldName(Need(value, "index definition").Get_FieldName());
}

}  // namespace vx
