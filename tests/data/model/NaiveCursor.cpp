#include "NaiveCursor.h"

#include <algorithm>

#include "NaiveValues.h"

namespace vx::naive {

void TCursor::Open(const TCursorDesc& desc) {
  name = desc.name;
  owner = desc.owner;
  order = desc.order;
  sortedField = desc.sortedField;
  index = table.IndexForCursor(desc.indexNb);
  SetFilter(desc.filterField, desc.filterValue);
  GoToFirstRec();
}

// -- Lists and position ---

std::int32_t TCursor::RecIndex() { return Descending() ? RecordCount() - 1 - physicalIndex : physicalIndex; }

void TCursor::Set_RecIndex(std::int32_t recIndex) {
  physicalIndex = Descending() ? RecordCount() - 1 - recIndex : recIndex;
}

bool TCursor::Eof() {
  const std::int32_t count = RecordCount();
  return count == 0 || (Descending() ? physicalIndex < 1 : count - 1 <= physicalIndex);
}

bool TCursor::Bof() {
  const std::int32_t count = RecordCount();
  return count == 0 || (Descending() ? count - 1 <= physicalIndex : physicalIndex < 1);
}

std::int32_t TCursor::EffectiveRecordIndex() {
  const std::int32_t last = RecordCount() - 1;
  if (!Bof() && !Eof()) return physicalIndex;
  if (!Bof()) return Descending() ? 0 : last;
  return Descending() ? last : 0;
}

TRow* TCursor::CurrentRecord() {
  const std::int32_t at = EffectiveRecordIndex();
  if (at == -1) return nullptr;
  const TRows& rows = ActiveRecordList();
  if (at < 0 || at >= static_cast<std::int32_t>(rows.size())) RaiseRange(at);
  return rows[static_cast<std::size_t>(at)];
}

void TCursor::GoToFirstRec() { physicalIndex = Descending() ? RecordCount() : -1; }
void TCursor::GoToLastRec() { physicalIndex = Descending() ? -1 : RecordCount(); }

std::int32_t TCursor::GoToNextRec() {
  if (Eof()) return -2;
  physicalIndex += Descending() ? -1 : 1;
  return 0;
}

std::int32_t TCursor::GoToPreviousRec() {
  if (Bof()) return -1;
  physicalIndex += Descending() ? 1 : -1;
  return 0;
}

std::int32_t TCursor::RecordID() {
  const TRow* row = CurrentRecord();
  return row != nullptr ? row->id : -1;
}

void TCursor::SetRecIndexByID(std::int32_t id) {
  physicalIndex = -1;
  const TRows& rows = ActiveRecordList();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i]->id != id) continue;
    physicalIndex = static_cast<std::int32_t>(i);
    return;
  }
}

std::int32_t TCursor::Get_RecIndexById(std::int32_t id) {
  if (id == -1) return -1;
  const std::int32_t saved = physicalIndex;
  SetRecIndexByID(id);
  const std::int32_t result = RecIndex();
  physicalIndex = saved;
  return result;
}

// -- Values ---

TField TCursor::ReadCurrent(std::int32_t field) {
  table.Field(field);
  const TRow* row = CurrentRecord();
  if (row == nullptr) RaiseNil();
  return table.Read(*row, static_cast<std::size_t>(field));
}

TField& TCursor::WriteCurrent(std::int32_t field) {
  table.Field(field);
  TRow* row = CurrentRecord();
  if (row == nullptr) RaiseNil();
  return table.Write(*row, static_cast<std::size_t>(field));
}

std::string TCursor::GetFieldValue(std::int32_t field, std::int32_t bufferSize) {
  if (bufferSize < table.Field(field).size) throw ENaive("ERTEBufferTooSmall", "Field buffer too small!");
  const TField value = ReadCurrent(field);
  std::string text = value.assigned ? "value" : "null";
  for (const std::uint8_t byte : value.bytes) text += " " + std::to_string(byte);
  return text;
}

bool TCursor::FieldValueIsNull(std::int32_t field) { return !ReadCurrent(field).assigned; }

void TCursor::SetFieldValue(std::int32_t field, const TBytes& bytes) {
  WriteCurrent(field) = {true, bytes};
  const std::int32_t indexNb = table.IndexNbByFieldNb(field);
  if (indexNb == -1) return;
  const std::int32_t id = RecordID();
  table.ReBuild(*table.indexes[static_cast<std::size_t>(indexNb)]);
  SetRecIndexByID(id);
}

void TCursor::ClearFieldValue(std::int32_t field) {
  TField& value = WriteCurrent(field);
  value = {false, TBytes(value.bytes.size(), 0)};
}

void TCursor::InsertRec() {
  if (index == nullptr) RaiseNil();
  std::int32_t indexNb = 0;
  while (table.indexes[static_cast<std::size_t>(indexNb)].get() != index) ++indexNb;
  std::int32_t id = -1;
  physicalIndex = table.AddRecord(indexNb, id);
}

void TCursor::InsertRecWithValues(const TStruct& values, bool append) {
  std::int32_t id = -1;
  if (index == nullptr) {
    table.AddRecordAndValues(values, -2, EffectiveRecordIndex(), id, append);
  } else {
    std::int32_t indexNb = 0;
    while (table.indexes[static_cast<std::size_t>(indexNb)].get() != index) ++indexNb;
    table.AddRecordAndValues(values, indexNb, physicalIndex, id, append);
  }
  SetRecIndexByID(id);
}

void TCursor::UpdateRecWithValues(const TStruct& values) {
  updatingRecord = true;  // stays set when something below raises
  for (std::size_t i = 0; i < table.fields.size(); ++i) {
    if (values[i].type != table.fields[i]->type) throw ENaive("Exception", kTypeMismatch);
    if (values[i].isNull)
      ClearFieldValue(static_cast<std::int32_t>(i));
    else
      WriteCurrent(static_cast<std::int32_t>(i)) = {true, values[i].bytes};
  }
  updatingRecord = false;
  RecordEditionNotification(CurrentRecord());
  const std::int32_t id = RecordID();
  for (const auto& each : table.indexes) table.ReBuild(*each);
  SetRecIndexByID(id);
}

void TCursor::DeleteRec() {
  if (RecordCount() < 1) throw ENaive("Exception", "Table empty!");
  table.DeleteRecord(this, CurrentRecord());
  if (Descending()) --physicalIndex;
  if (physicalIndex < 0)
    physicalIndex = 0;
  else if (RecordCount() <= physicalIndex)
    physicalIndex = RecordCount() - 1;
}

// -- Order and filter ---

void TCursor::Sort(const std::string& sortKeys) {
  table.sortFields.clear();
  const std::vector<std::string> items = SplitItems(sortKeys);
  for (auto item = items.rbegin(); item != items.rend(); ++item) {
    const std::size_t dot = item->find('.');
    const std::int32_t field = table.FieldNbByName(item->substr(0, dot));
    if (field == -1) continue;
    const bool descends = dot != std::string::npos && item->substr(dot + 1, 1) == "D";
    table.Def(field)->sortOrder = descends ? TOrder::Descending : TOrder::Ascending;
    table.sortFields.push_back(table.Def(field));
  }
  if (table.sortFields.empty()) return;
  QuickSort(ActiveRecordList(), [this](const TRow* a, const TRow* b) { return table.CompareBySortFields(a, b); });
  GoToFirstRec();
}

void TCursor::Set_SortedField(const std::string& sortKeys) {
  if (sortKeys == sortedField) return;
  sortedField = sortKeys;
  if (!sortKeys.empty()) InternalDoSort();
}

void TCursor::SetOnFilterRecord(TRecordFilter callback) {
  if (callback.code == onFilter.code) return;  // another object with the same code changes nothing
  onFilter = callback;
  FilterChange();
}

void TCursor::SetFilter(TFieldDef* field, const TValue& value) {
  filterField = field;
  filterValue = value;
  FilterChange();
}

void TCursor::FilterChange() {
  Log("filter change");
  RebuildFilteredList(InternalRecordList());
  InternalDoSort();
}

void TCursor::RebuildFilteredList(const TRows& source) {
  filtered.clear();
  if (!IsFiltered()) return;
  FilterRows(source);
  GoToFirstRec();
}

void TCursor::FilterRows(const TRows& source) {
  for (std::size_t i = 0; i < source.size(); ++i) {
    bool match = true;
    if (filterField != nullptr && !std::holds_alternative<TNull>(filterValue)) match = IsRecordMatchFilter(*source[i]);
    if (match && onFilter.code != 0) match = Accepts(*source[i], static_cast<std::int32_t>(i));
    if (match) filtered.push_back(source[i]);
  }
}

bool TCursor::Accepts(const TRow& row, std::int32_t position) const {
  table.log.push_back(name + " asks for " + std::to_string(row.id) + " at " + std::to_string(position));
  return onFilter.Accepts(row.id, position);
}

bool TCursor::IsRecordMatchFilter(const TRow& row) const {
  const TField value = table.Read(row, table.NbOf(filterField));
  if (std::holds_alternative<TNull>(filterValue)) return !value.assigned;
  return value.assigned && EqualsFilter(filterField->type, value.bytes, filterValue);
}

// -- Brackets ---

void TCursor::BeginUpdate() {
  if (updateCount == 0) StartUpdating();
  ++updateCount;
}

void TCursor::EndUpdate() {
  if (updateCount > 0) --updateCount;
  if (updateCount == 0) EndUpdating();
}

// -- Told by the table ---

void TCursor::RecordInsertionNotification(TRow* row) {
  Log("hears of new " + std::to_string(row->id));
  RebuildFilteredList(InternalRecordList());
  InternalDoSort();
}

void TCursor::RecordDeletionNotification(TCursor* origin, TRow* row) {
  Log("hears of deleted " + std::to_string(row->id) + " from " + (origin != nullptr ? origin->name : "nobody"));
  if (IsFiltered()) {
    const auto at = std::find(filtered.begin(), filtered.end(), row);
    if (at != filtered.end()) filtered.erase(at);
  }
  RefreshOwner();
}

void TCursor::RefreshOwner() const {
  if (owner == TOwnerKind::None) RaiseNil();
  if (owner == TOwnerKind::Wrong) throw ENaive("EInvalidCast", "");
  table.log.push_back("owner of " + name + " refreshes");
}

void TCursor::RecordEditionNotification(TRow* row) {
  Log("hears of edited " + (row != nullptr ? std::to_string(row->id) : "nothing"));
}

void TCursor::TableClearingNotification() {
  filtered.clear();
  physicalIndex = Descending() ? RecordCount() : -1;
}

}  // namespace vx::naive
