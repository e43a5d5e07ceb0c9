#include "NaiveTable.h"

#include <algorithm>

#include "NaiveCursor.h"
#include "NaiveValues.h"

namespace vx::naive {
namespace {

void Remove(TRows& rows, TRow* row) {
  const auto at = std::find(rows.begin(), rows.end(), row);
  if (at != rows.end()) rows.erase(at);
}

}  // namespace

TTable::TTable(std::string tableName) : name(std::move(tableName)) {}
TTable::~TTable() { cursors.clear(); }

// -- Definitions ---

void TTable::Guard(const std::string& what) const {
  const std::string text =
      "TVXRAMTable:\rNo modifications to " + what + " definitions are allowed:\r '" + name + "' is not empty.";
  if (RecCount() != 0)
    throw ENaive(what == "field" ? "ERTENoFieldDefChangesAllowed" : "ERTENoIndexDefChangesAllowed", text);
}

TFieldDef& TTable::AddField(const std::string& fieldName, TType type, std::int32_t size) {
  Guard("field");
  fields.push_back(std::make_unique<TFieldDef>(TFieldDef{fieldName, type, size}));
  return *fields.back();
}

TIndex& TTable::AddIndex() {
  Guard("index");
  indexes.push_back(std::make_unique<TIndex>());
  return *indexes.back();
}

void TTable::SetIndexField(TIndex& index, const std::string& fieldName) {
  for (const auto& field : fields) {
    if (field->name != fieldName) continue;
    index.field = field.get();
    return;
  }
  throw ENaive("ERTEFieldDoesNotExist", "TVXRAMIndexDef:\rCannot create an index on this field: field does not exist.");
}

std::int32_t TTable::FieldNbByName(const std::string& fieldName) const {
  for (std::size_t i = 0; i < fields.size(); ++i)
    if (SameName(fields[i]->name, fieldName)) return static_cast<std::int32_t>(i);
  return -1;
}

std::int32_t TTable::IndexNbByFieldName(const std::string& fieldName) const {
  for (std::size_t i = 0; i < indexes.size(); ++i)
    if (indexes[i]->field != nullptr && indexes[i]->field->name == fieldName) return static_cast<std::int32_t>(i);
  return -1;
}

std::int32_t TTable::IndexNbByFieldNb(std::int32_t field) const {
  for (std::size_t i = 0; i < indexes.size(); ++i)
    if (indexes[i]->field == &Field(field)) return static_cast<std::int32_t>(i);
  return -1;
}

const TFieldDef& TTable::Field(std::int32_t field) const {
  if (field < 0 || field >= static_cast<std::int32_t>(fields.size())) RaiseRange(field);
  return *fields[static_cast<std::size_t>(field)];
}

std::size_t TTable::NbOf(const TFieldDef* field) const {
  std::size_t nb = 0;
  while (fields[nb].get() != field) ++nb;
  return nb;
}

// -- Rows ---

TRow* TTable::NewRow() {
  pool_.push_back(std::make_unique<TRow>());
  TRow* row = pool_.back().get();
  row->id = nextId++;
  for (const auto& field : fields) row->fields.push_back({false, TBytes(static_cast<std::size_t>(field->size), 0)});
  return row;
}

TField TTable::Read(const TRow& row, std::size_t field) const {
  if (field < row.fields.size()) return row.fields[field];
  return {false, TBytes(static_cast<std::size_t>(fields[field]->size), 0)};
}

TField& TTable::Write(TRow& row, std::size_t field) const {
  if (field >= row.fields.size()) throw ENaive("ERAMTableError", "");
  return row.fields[field];
}

std::int64_t TTable::AllocatedRows() const {
  return std::count_if(pool_.begin(), pool_.end(), [](const auto& row) { return !row->released; });
}

std::int32_t TTable::AddRecord(std::int32_t indexNb, std::int32_t& id) {
  TRow* row = NewRow();
  id = row->id;
  std::int32_t result = -1;
  baseIndex.push_back(row);
  if (indexNb == -1) result = static_cast<std::int32_t>(baseIndex.size()) - 1;
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    indexes[i]->rows.push_back(row);  // unsorted until its next rebuild
    if (indexNb == static_cast<std::int32_t>(i)) result = static_cast<std::int32_t>(indexes[i]->rows.size()) - 1;
  }
  for (const auto& cursor : cursors) cursor->RecordInsertionNotification(row);
  return result;
}

void TTable::WriteStruct(TRow& row, const TStruct& values) const {
  if (values.size() != fields.size())
    throw ENaive("Exception", "DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldCount and FFieldDefs.Count.");
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (values[i].type != fields[i]->type) throw ENaive("Exception", kTypeMismatch);
    if (values[i].isNull)
      row.fields[i] = {false, TBytes(row.fields[i].bytes.size(), 0)};
    else
      row.fields[i] = {true, values[i].bytes};
  }
}

std::int32_t TTable::AddRecordAndValues(const TStruct& values, std::int32_t indexNb, std::int32_t position,
                                        std::int32_t& id, bool append) {
  TRow* row = NewRow();
  id = row->id;
  WriteStruct(*row, values);  // when it raises, the row is in no list
  std::int32_t result = -1;
  const auto count = static_cast<std::int32_t>(mainList.size());
  if (!append && position >= 0) {
    if (position > count) RaiseRange(position);
    mainList.insert(mainList.begin() + position, row);
  } else {
    mainList.push_back(row);
    result = count;
  }
  for (std::size_t i = 0; i < indexes.size(); ++i) {
    indexes[i]->rows.push_back(row);
    const auto appendedAt = static_cast<std::int32_t>(indexes[i]->rows.size()) - 1;
    ReBuild(*indexes[i]);
    if (indexNb == static_cast<std::int32_t>(i)) result = appendedAt;
  }
  for (const auto& cursor : cursors) cursor->RecordInsertionNotification(row);
  return result;
}

void TTable::DeleteRecord(TCursor* origin, TRow* row) {
  if (row == nullptr) return;
  Remove(baseIndex, row);
  for (const auto& index : indexes) Remove(index->rows, row);
  for (const auto& cursor : cursors) cursor->RecordDeletionNotification(origin, row);
  const bool listed = std::find(mainList.begin(), mainList.end(), row) != mainList.end();
  if (!listed) return;  // a row of the base index alone is never released
  Remove(mainList, row);
  row->released = true;
}

void TTable::ClearTable() {
  const bool releasedAny = !baseIndex.empty();
  for (TRow* row : baseIndex) row->released = true;
  baseIndex.clear();
  if (!releasedAny)
    for (TRow* row : mainList) row->released = true;
  mainList.clear();
  for (const auto& index : indexes) index->rows.clear();
  for (const auto& cursor : cursors) cursor->TableClearingNotification();
}

// -- Order ---

void TTable::ReBuild(TIndex& index) {
  if (index.field == nullptr) RaiseNil();
  const std::size_t field = NbOf(index.field);
  const TType type = index.field->type;
  QuickSort(index.rows, [this, field, type](const TRow* a, const TRow* b) {
    return CompareFields(type, Read(*a, field), Read(*b, field));
  });
  for (const auto& cursor : cursors)
    if (cursor->filterField != nullptr && cursor->filterField->name == index.field->name)
      cursor->RebuildFilteredList(cursor->InternalRecordList());
}

std::int32_t TTable::LocateFirst(const TIndex& index, const TBytes& key) const {
  if (index.field == nullptr) RaiseNil();
  const std::size_t field = NbOf(index.field);
  const TType type = index.field->type;
  const bool integers = type == TType::Integer || type == TType::Duration;
  const auto valueAgainstKey = [&](std::int32_t at) {  // nulls count as what their bytes hold
    return CompareValues(type, Read(*index.rows[static_cast<std::size_t>(at)], field).bytes, key);
  };
  const auto count = static_cast<std::int32_t>(index.rows.size());
  if (count == 0) return integers ? 0 : -1;
  std::int32_t low = 0;
  std::int32_t high = count - 1;
  if (valueAgainstKey(low) >= 0) return 0;
  if (valueAgainstKey(high) < 0) return integers ? count - 1 : -2;
  for (;;) {
    const std::int32_t mid = (low + high + 1) / 2;
    if (high <= mid) return mid;
    (valueAgainstKey(mid) >= 0 ? high : low) = mid;
  }
}

std::int32_t TTable::CompareBySortFields(const TRow* a, const TRow* b) const {
  for (auto def = sortFields.rbegin(); def != sortFields.rend(); ++def) {
    const std::size_t field = NbOf(*def);
    std::int32_t result = CompareFields((*def)->type, Read(*a, field), Read(*b, field));
    if ((*def)->sortOrder == TOrder::Descending) result = -result;
    if (result != 0) return result;
  }
  return 0;
}

// -- Cursors ---

TIndex* TTable::IndexForCursor(std::int32_t indexNb) {
  if (indexNb == -1) return nullptr;
  if (indexNb < 0 || indexNb >= static_cast<std::int32_t>(indexes.size()))
    throw ENaive("ERTENoSuchIndex", "TVXRAMTable:\rCannot create the cursor: index does not exist.");
  return indexes[static_cast<std::size_t>(indexNb)].get();
}

void TTable::Close(TCursor* cursor) {
  std::erase_if(cursors, [cursor](const auto& each) { return each.get() == cursor; });
}

}  // namespace vx::naive
