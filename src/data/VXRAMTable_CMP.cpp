#include "data/VXRAMTable_CMP.h"

#include <algorithm>
#include <unordered_set>

#include "data/VXRAMFilterMatch.h"
#include "data/VXRAMRowSearch.h"
#include "data/VXRAMSort.h"
#include "platform/component/Published.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

TVXRAMRow* NeedRow(TVXRAMRow* row) { return &Need(row, "row"); }
const TVXRAMRow* NeedRow(const TVXRAMRow* row) { return &Need(row, "row"); }

const std::uint8_t& NeedBuffer(const void* buffer) {
  return Need(static_cast<const std::uint8_t*>(buffer), "buffer of the value");
}

void CheckNotReleased(const TVXRAMRow* row) {
  if (TVXRAMRowPool::IsGivenUp(row)) throw EInvalidOperation("Row was released before");
}

}  // namespace

// -- Life -------------------------------------------------------------------------------------------------------------

const TClass& TVXRAMTable::StaticClass() {
  static const TClass info = TClassBuilder<TVXRAMTable>("TVXRAMTable", TComponent::StaticClass())
                                 .Property("FieldDefs", &TVXRAMTable::Get_FieldDefs, &TVXRAMTable::Set_FieldDefs)
                                 .Build();
  return info;
}

TVXRAMTable::TVXRAMTable(TComponent* owner)
    : TComponent(owner),
      mainRecordList_(Make<TVXList>()),
      fieldDefs_(Make<TVXRAMFieldDefs>(this)),
      indices_(Make<TVXRAMIndexDefs>(this)),
      baseIndex_(Make<TVXRAMBaseIndex>(this)) {}

TVXRAMTable::~TVXRAMTable() {
  // Definitions look at the table as they go: while all of it is there.
  indices_.reset();
  fieldDefs_.reset();
}

void TVXRAMTable::BeforeDestruction() {
  const std::int32_t count = Get_CursorCount();
  // Kept: each cursor leaves the list as it is freed, so that with two or more the walk runs beyond the list's end.
  for (std::int32_t i = 0; i < count; ++i) {
    if (i >= Get_CursorCount()) RaiseListError(kListIndexError, i);
    cursors_[static_cast<std::size_t>(i)]->Free();
  }
  TComponent::BeforeDestruction();
}

void TVXRAMTable::TearDown() {
  closed_ = true;
  while (!cursors_.Empty()) {
    TVXRAMCursor* const cursor = cursors_[0];
    cursor->FreeAnyway();
    CursorFreed(cursor);  // one that was being freed already hasn't left
  }
  ClearTable();
  TComponent::TearDown();
}

void TVXRAMTable::ReleaseMemory() {
  released_ = true;
  if (operations_ == 0 && made_.empty()) TComponent::ReleaseMemory();
}

void TVXRAMTable::CursorGone(TVXRAMCursor* cursor) {
  const TTableOperation running(*this);  // whose end may be the table's
  made_.back()->madeAt_ = cursor->madeAt_;
  made_[cursor->madeAt_] = made_.back();
  made_.pop_back();
}

void TVXRAMTable::WhenIdle(std::function<void()> action) {
  if (operations_ == 0) return action();
  waiting_.push_back(std::move(action));
}

void TVXRAMTable::EndOperation() {
  if (operations_ == 1) {
    // What runs here is still inside the operation, and may leave more to do.
    while (!droppedRows_.empty() || !waiting_.empty()) {
      ReleaseDroppedRows();
      for (const auto& action : std::exchange(waiting_, {})) action();
    }
  }
  --operations_;
  if (released_) ReleaseMemory();
}

void TVXRAMTable::ReleaseDroppedRows() {
  for (TVXRAMRow* const row : std::exchange(droppedRows_, {}))
    if (IsNamed(row))
      heldRows_.push_back(row);
    else
      pool_.Release(row);
}

void TVXRAMTable::RaiseNesting() const {
  // A listener that answers a change by the same change never comes to an end: the call stack would.
  throw EInvalidOperation("Changes of table '" + Name() + "' nest too deeply");
}

// -- Definitions ------------------------------------------------------------------------------------------------------

void TVXRAMTable::Set_FieldDefs(const TVXRAMFieldDefs* value) {
  CheckFieldDefChangesAllowed();
  fieldDefs_->Assign(value);
}

void TVXRAMTable::Set_Indices(const TVXRAMIndexDefs* value) { indices_->Assign(value); }

void TVXRAMTable::CheckFieldDefChangesAllowed() const {
  if (Get_RecCount() == 0) return;
  throw ERTENoFieldDefChangesAllowed(ClassName() + ":\rNo modifications to " + "field definitions are allowed:\r '" +
                                     Name() + "' is not empty.");
}

void TVXRAMTable::CheckIndexDefChangesAllowed() const {
  if (Get_RecCount() == 0) return;
  throw ERTENoIndexDefChangesAllowed(ClassName() + ":\rNo modifications to " + "index definitions are allowed:\r '" +
                                     Name() + "' is not empty.");
}

std::int32_t TVXRAMTable::FieldNbByName(const std::string& name) const {
  for (std::int32_t i = 0; i < fieldDefs_->Count(); ++i)
    if (AnsiCompareText(fieldDefs_->Get_Item(i)->Get_Name(), name) == 0) return i;
  return -1;
}

std::int32_t TVXRAMTable::IndexNbByFieldName(const std::string& name) const {
  for (std::int32_t i = 0; i < indices_->Count(); ++i) {
    const TVXRAMFieldDef* const field = indices_->Get_Item(i)->Get_Field();
    if (field != nullptr && field->Get_Name() == name) return i;
  }
  return -1;
}

std::int32_t TVXRAMTable::IndexNbByFieldNb(std::int32_t field) const {
  if (indices_->Count() == 0) return -1;
  const TVXRAMFieldDef* const wanted = fieldDefs_->Get_Item(field);
  for (std::int32_t i = 0; i < indices_->Count(); ++i)
    if (indices_->Get_Item(i)->Get_Field() == wanted) return i;
  return -1;
}

// -- Cursors ----------------------------------------------------------------------------------------------------------

void TVXRAMTable::OpenCursor(TClassOf<TVXRAMCursor> cursorClass, TVXRAMCursorDesc* desc, TVXRAMCursor*& cursor) {
  const std::int32_t number = Need(desc, "description of the cursor").IndexNumber;
  if (number < -1 || number >= indices_->Count())
    throw ERTENoSuchIndex(ClassName() + ":\rCannot create the " + "cursor: index does not exist.");
  TVXRAMIndexDef* const index = number == -1 ? nullptr : indices_->Get_Item(number);
  if (!cursorClass) cursorClass = TClassOf<TVXRAMCursor>::Of<TVXRAMCursor>();
  const TTableOperation running(*this);
  TOwned<TVXRAMCursor> made = cursorClass.Make(this, index, desc);
  if (closed_) throw EInvalidOperation("A table that is being freed opens no cursors");
  cursors_.Add(made.get());
  cursor = made.release();
}

void TVXRAMTable::CloseCursor(TVXRAMCursor*& cursor) {
  TVXRAMCursor* const closing = std::exchange(cursor, nullptr);
  // Kept: a stranger's cursor is left alive.
  if (closing != nullptr && cursors_.Contains(closing)) closing->Free();
}

void TVXRAMTable::CursorFreed(TVXRAMCursor* cursor) { cursors_.Remove(cursor); }

void TVXRAMTable::IndexFreed(TOwned<TVXRAMUserIndex> index) {
  for (TVXRAMCursor* const cursor : made_)
    if (cursor->index_ == index.get()) cursor->index_ = nullptr;
  if (operations_ > 0) WhenIdle([kept = std::shared_ptr<TVXRAMUserIndex>(std::move(index))] {});
}

void TVXRAMTable::LeaveStrayIndexes() {
  for (TVXRAMCursor* const cursor : made_) {
    const auto* const index = As<TVXRAMUserIndex>(cursor->index_);
    if (index != nullptr && index->Table() != this) cursor->index_ = nullptr;
  }
}

// -- Bracket ----------------------------------------------------------------------------------------------------------

void TVXRAMTable::BeginUpdate() {
  if (updateCounter_ == 0) StartUpdating();
  ++updateCounter_;
}

void TVXRAMTable::EndUpdate() {
  if (updateCounter_ > 0) --updateCounter_;
  if (updateCounter_ == 0) EndUpdating();
}

// -- Record structures ------------------------------------------------------------------------------------------------

TOwnedRecordStruct TVXRAMTable::NewRecord() const {
  fieldDefs_->CheckLayout();
  const std::vector<TVXRAMFieldSlot>& slots = fieldDefs_->Get_Slots();
  TOwnedRecordStruct record(new TVXRecordStruct);
  record->FieldArrayPtr = new TVXFieldStruct*[slots.size()];
  for (const TVXRAMFieldSlot& slot : slots) {
    auto element = std::make_unique<TVXFieldStruct>();
    element->FieldType = slot.type;
    if (slot.type == vxrftString) {
      element->StringPtr = new char[static_cast<std::size_t>(slot.size)]();
      element->StringSize = slot.size;
    }
    record->FieldArrayPtr[record->ElementCount++] = element.release();
  }
  record->FieldCount = record->ElementCount;
  return record;
}

void TVXRAMTable::NewRecordStruct(TVXRecordStruct*& record) const { record = NewRecord().release(); }

void TVXRAMTable::DisposeRecordStruct(TVXRecordStruct*& record) const {
  TFreeRecordStruct()(std::exchange(record, nullptr));
}

// -- Adding -----------------------------------------------------------------------------------------------------------

std::int32_t TVXRAMTable::AddRecord(std::int32_t index, std::int32_t& recordId) {
  const TTableOperation running(*this);
  CheckNesting();
  TVXRAMRow* const row = NewRow(recordId);
  std::int32_t result = -1;
  const std::int32_t position = baseIndex_->list_->Add(row);
  if (index == -1) result = position;
  for (std::int32_t i = 0; i < indices_->Count(); ++i) {
    const std::int32_t at = indices_->Get_Item(i)->Get_Index()->list_->Add(row);
    if (i == index) result = at;
  }
  cursors_.ForEach([row](TVXRAMCursor& cursor) { cursor.RecordInsertionNotification(row); });
  return result;
}

void TVXRAMTable::RaiseMismatch() {
  throw Exception(
      "DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldArrayPtr^[ VI ].FieldType and FFieldDefs[ VI ].DataType.");
}

namespace {

/// Copies an element of any size. A structure may be older than a change of the field's size: what it doesn't have is
/// zero.
void CopyElement(std::uint8_t* value, std::size_t size, const TVXFieldStruct& element, bool text) {
  std::size_t known = sizeof element.Value;
  if (text) known = element.StringPtr == nullptr ? 0 : static_cast<std::size_t>(std::max(element.StringSize, 0));
  known = std::min(size, known);
  if (known > 0) std::memcpy(value, text ? static_cast<const void*>(element.StringPtr) : element.Value, known);
  if (known < size) std::memset(value + known, 0, size - known);
}

/// Writes status and value of a field that the row has room for.
inline void CopyField(TVXRAMRow* row, const TVXRAMFieldSlot& slot, const TVXFieldStruct& element) {
  std::uint8_t* const value = RowBytes(row) + slot.valueOffset;
  RowBytes(row)[slot.statusOffset] = element.IsNull ? vxfsNull : vxfsAssigned;
  const auto size = static_cast<std::size_t>(slot.size);
  if (element.IsNull)
    std::memset(value, 0, size);
  else if (size == 8 && slot.type != vxrftString)
    std::memcpy(value, element.Value, 8);
  else if (size == 4 && slot.type != vxrftString)
    std::memcpy(value, element.Value, 4);
  else
    CopyElement(value, size, element, slot.type == vxrftString);
}

}  // namespace

void TVXRAMTable::StoreField(TVXRAMRow* row, std::int32_t field, const TVXFieldStruct& element) {
  CheckFieldType(field, element);
  const TVXRAMFieldSlot& slot = fieldDefs_->Get_Slots()[static_cast<std::size_t>(field)];
  if (!RowTakes(row, slot)) RaiseNoRoom(row, field);
  CopyField(row, slot, element);
}

TVXRAMRow* TVXRAMTable::NewFilledRow(const TVXRecordStruct& record, std::int32_t& id) {
  TVXRAMRow* const row = InternalAllocRecordBuffer();
  id = GiveId(row);
  const std::vector<TVXRAMFieldSlot>& slots = fieldDefs_->Get_Slots();
  // Kept: a structure that doesn't fit leaves its row allocated and listed nowhere.
  if (record.FieldCount != static_cast<std::int32_t>(slots.size()))
    throw Exception("DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldCount and FFieldDefs.Count.");
  for (std::int32_t i = 0; const TVXRAMFieldSlot& slot : slots) {
    const TVXFieldStruct& element = record.Field(i++);
    if (element.FieldType != slot.type) RaiseMismatch();
    CopyField(row, slot, element);
  }
  return row;
}

std::int32_t TVXRAMTable::AddRecordAndValues(const TVXRecordStruct& record, std::int32_t index, std::int32_t position,
                                             std::int32_t& recordId, bool append) {
  std::int32_t result = -1;
  AddFilledRow(record, index, position, recordId, append, result);
  return result;
}

TVXRAMRow* TVXRAMTable::AddFilledRow(const TVXRecordStruct& record, std::int32_t index, std::int32_t position,
                                     std::int32_t& recordId, bool append, std::int32_t& result) {
  const TTableOperation running(*this);
  CheckNesting();
  TVXRAMRow* const row = NewFilledRow(record, recordId);
  result = -1;
  if (!append && position >= 0)
    mainRecordList_->Insert(position, row);  // kept: the result says nothing of it
  else
    result = mainRecordList_->Add(row);
  for (std::int32_t i = 0; i < indices_->Count(); ++i) {
    TVXRAMIndexDef& definition = *indices_->Get_Item(i);
    const std::int32_t at = definition.Get_Index()->list_->Add(row);
    definition.ReBuildIndex();
    if (i == index) result = at;
  }
  cursors_.ForEach([row](TVXRAMCursor& cursor) { cursor.RecordInsertionNotification(row); });
  return row;
}

void TVXRAMTable::BeforeWrite(const TVXRAMRow* row) {
  for (std::int32_t i = 0; i < indices_->Count(); ++i) indices_->Get_Item(i)->Get_Index()->BeforeWrite(row);
  RaiseChangeStamp();
}

void TVXRAMTable::AfterWrite() {
  for (std::int32_t i = 0; i < indices_->Count(); ++i) indices_->Get_Item(i)->Get_Index()->AfterWrite();
}

void TVXRAMTable::RebuildIndices() {
  for (std::int32_t i = 0; i < indices_->Count(); ++i) indices_->Get_Item(i)->ReBuildIndex();
}

// -- Deleting and clearing --------------------------------------------------------------------------------------------

std::int32_t TVXRAMTable::Find(const TVXList& rows, const TVXRAMRow* row, std::int32_t hint,
                               const TVXRAMKnownSort& sort) const {
  if (!idsAreUnique_ || !pool_.Owns(row)) return rows.IndexOf(row);
  return FindRow(rows, row, hint, [&] { return sort.Search(rows, row); });
}

bool TVXRAMTable::IsLeaving(const TVXRAMRow* row) const {
  return std::find(leavingRows_.begin(), leavingRows_.end(), row) != leavingRows_.end();
}

/// Marks a row of whose deletion the cursors are being told.
class TVXRAMTable::TLeaving {
 public:
  TLeaving(TVXRAMTable& table, const TVXRAMRow* row) : rows_(table.leavingRows_) { rows_.push_back(row); }
  ~TLeaving() { rows_.pop_back(); }
  TLeaving(const TLeaving&) = delete;
  TLeaving& operator=(const TLeaving&) = delete;

 private:
  std::vector<const TVXRAMRow*>& rows_;
};

void TVXRAMTable::DeleteRecord(TVXRAMCursor* origin, TVXRAMRow* row) {
  if (row == nullptr) return;
  const TTableOperation running(*this);
  CheckNesting();
  const std::int32_t hint = cursors_.Contains(origin) ? origin->physicalIndex_ : 0;
  const TLeaving leaving(*this, row);
  baseIndex_->Remove(row);
  for (std::int32_t i = 0; i < indices_->Count(); ++i) indices_->Get_Item(i)->Get_Index()->Remove(row);
  cursors_.ForEach([origin, row](TVXRAMCursor& cursor) { cursor.RecordDeletionNotification(origin, row); });
  const std::int32_t at = Find(*mainRecordList_, row, hint, mainSort_);
  if (at < 0) return;  // kept: a row that stood in the base index alone stays allocated
  mainRecordList_->Delete(at);
  lastDeletedId_ = RowId(row);
  ReleaseRow(row);
}

std::int32_t TVXRAMTable::ReleaseAll(TVXList& rows) {
  std::int32_t released = 0;
  for (std::int32_t i = 0; i < rows.Count(); ++i) {
    auto* const row = static_cast<TVXRAMRow*>(rows.Items(i));
    rows.Put(i, nullptr);
    if (row == nullptr) continue;
    ReleaseRow(row);
    ++released;
  }
  rows.Clear();
  return released;
}

void TVXRAMTable::ClearTable() {
  const TTableOperation running(*this);
  // Kept: rows of the main list are dropped without being released when the base index had some.
  if (ReleaseAll(*baseIndex_->list_) == 0) ReleaseAll(*mainRecordList_);
  mainRecordList_->Clear();
  for (std::int32_t i = 0; i < indices_->Count(); ++i) indices_->Get_Item(i)->Get_Index()->Clear();
  cursors_.ForEach([](TVXRAMCursor& cursor) { cursor.TableClearingNotification(); });
}

bool TVXRAMTable::IsNamed(const TVXRAMRow* row) const {
  for (std::size_t i = 0; i < cursors_.Count(); ++i)
    if (cursors_[i]->NamesRow(row)) return true;
  return false;
}

void TVXRAMTable::ReleaseRow(TVXRAMRow* row) {
  if (row == nullptr || !pool_.Drop(row)) return;  // one that was given up by hand before
  const TTableOperation running(*this);
  droppedRows_.push_back(row);
}

void TVXRAMTable::ReleaseHeldRows() {
  const TTableOperation running(*this);
  droppedRows_.insert(droppedRows_.end(), heldRows_.begin(), heldRows_.end());
  heldRows_.clear();
}

// -- One row's bytes --------------------------------------------------------------------------------------------------

TVXRAMFieldSlot TVXRAMTable::Slot(std::int32_t field) const {
  const std::vector<TVXRAMFieldSlot>& slots = fieldDefs_->Get_Slots();
  if (field < 0 || field >= static_cast<std::int32_t>(slots.size())) RaiseListError(kListIndexError, field);
  return slots[static_cast<std::size_t>(field)];
}

TVXRAMFieldSlot TVXRAMTable::WritableSlot(const TVXRAMRow* row, std::int32_t field) const {
  const TVXRAMFieldSlot slot = Slot(field);
  if (!RowTakes(NeedRow(row), slot)) RaiseNoRoom(row, field);
  return slot;
}

void TVXRAMTable::RaiseNoRoom(const TVXRAMRow* row, std::int32_t field) const {
  throw ERAMTableError("Record " + std::to_string(RowId(row)) + " is older than field '" +
                       fieldDefs_->Get_Item(field)->GetDisplayName() + "' and has no room for it.");
}

TVXRAMRow* TVXRAMTable::InternalAllocRecordBuffer() {
  fieldDefs_->CheckLayout();
  return pool_.Allocate(Get_RecSize());
}

TVXRAMRow* TVXRAMTable::NewRow(std::int32_t& id) {
  TVXRAMRow* const row = InternalAllocRecordBuffer();
  id = InitRow(row);
  return row;
}

std::int32_t TVXRAMTable::GiveId(TVXRAMRow* row) {
  const std::int32_t id = GenerateUniqueID();
  std::memcpy(RowBytes(row), &id, sizeof id);
  RowBytes(row)[kRecordStatusOffset] = vxrsActive;
  return id;
}

std::int32_t TVXRAMTable::InitRow(TVXRAMRow* row) {
  std::memset(RowBytes(row), 0, static_cast<std::size_t>(TVXRAMRowPool::SizeOf(row)));
  return GiveId(row);
}

std::int32_t TVXRAMTable::InternalInitRecord(TVXRAMRow* row) {
  CheckNotReleased(NeedRow(row));
  RaiseChangeStamp();
  return InitRow(row);
}

void TVXRAMTable::InternalFreeRecordBuffer(TVXRAMRow* row) {
  if (row == nullptr) return;
  if (!pool_.Owns(row)) throw EInvalidOperation("Row isn't one of table '" + Name() + "'");
  if (!pool_.Drop(row)) throw EInvalidOperation("Row was released before");
  const TTableOperation running(*this);
  RaiseChangeStamp();
  droppedRows_.push_back(row);
}

void TVXRAMTable::InternalClearAllFieldValues(TVXRAMRow* row) {
  NeedRow(row);
  RaiseChangeStamp();
  for (const TVXRAMFieldSlot& slot : fieldDefs_->Get_Slots())
    if (RowTakes(row, slot)) std::memset(RowBytes(row) + slot.valueOffset, 0, static_cast<std::size_t>(slot.size));
}

void TVXRAMTable::InternalClearFieldValue(TVXRAMRow* row, std::int32_t field) {
  const TVXRAMFieldSlot slot = WritableSlot(row, field);
  RaiseChangeStamp();
  std::memset(RowBytes(row) + slot.valueOffset, 0, static_cast<std::size_t>(slot.size));
}

void TVXRAMTable::InternalSetFieldStatus(TVXRAMRow* row, std::int32_t field, TVXFieldStatus status) {
  const TVXRAMFieldSlot slot = WritableSlot(row, field);
  RaiseChangeStamp();
  RowBytes(row)[slot.statusOffset] = status;
}

TVXFieldStatus TVXRAMTable::InternalGetFieldStatus(const TVXRAMRow* row, std::int32_t field) const {
  return RowStatus(NeedRow(row), Slot(field));
}

void TVXRAMTable::InternalSetFieldValue(TVXRAMRow* row, std::int32_t field, const void* buffer) {
  const TVXRAMFieldSlot slot = WritableSlot(row, field);
  RaiseChangeStamp();
  if (slot.size > 0)
    std::memcpy(RowBytes(row) + slot.valueOffset, &NeedBuffer(buffer), static_cast<std::size_t>(slot.size));
}

void TVXRAMTable::InternalGetFieldValue(const TVXRAMRow* row, std::int32_t field, void* buffer) const {
  const TVXRAMFieldSlot slot = Slot(field);
  NeedRow(row);
  if (slot.size <= 0) return;
  NeedBuffer(buffer);
  if (RowHolds(row, slot))
    std::memcpy(buffer, RowBytes(row) + slot.valueOffset, static_cast<std::size_t>(slot.size));
  else
    std::memset(buffer, 0, static_cast<std::size_t>(slot.size));
}

void TVXRAMTable::InternalSetRecordId(TVXRAMRow* row, std::int32_t id) {
  CheckNotReleased(NeedRow(row));
  idsAreUnique_ = false;
  RaiseChangeStamp();
  std::memcpy(RowBytes(row), &id, sizeof id);
}

// -- Sorting and filtering --------------------------------------------------------------------------------------------

void TVXRAMTable::TakeSortFields(const TVXStringParser& sortItems) {
  sortFields_.clear();
  if (sortItems.GetCount() == 0) return;
  // Of a field that is named twice the first order counts, and its later places decide nothing any more.
  std::vector<bool> named(static_cast<std::size_t>(fieldDefs_->Count()));
  for (std::int32_t i = 0; i < sortItems.GetCount(); ++i) {
    const std::string item = sortItems.GetItemByIndex(i);
    const std::int32_t field = FieldNbByName(VXRAMTable_CMP::GetFieldName(item));
    if (field == -1 || named[static_cast<std::size_t>(field)]) continue;
    named[static_cast<std::size_t>(field)] = true;
    TVXRAMFieldDef* const def = fieldDefs_->Get_Item(field);
    def->Set_SortOrder(VXRAMTable_CMP::GetFieldSortOrder(item));
    sortFields_.emplace_back(def);
  }
  std::reverse(sortFields_.begin(), sortFields_.end());
}

bool TVXRAMTable::SortByFields(TVXList& rows, TVXRAMKnownSort& known, const TVXRAMRow* touched) {
  if (sortFields_.empty()) return false;
  std::vector<TSortColumn> columns;
  for (auto field = sortFields_.rbegin(); field != sortFields_.rend(); ++field) {
    const TVXRAMFieldDef& def = Need(field->Get(), "sort field");
    if (rows.Count() > 0 && def.Get_DataType() > kLastFieldType)
      throw ERTEInvalidFieldType("Cannot sort on a field of this type.");
    columns.push_back({def.Get_Slot(), def.Get_SortOrder() == vxrcoDescending});
    currentSortField_ = *field;
  }
  known.Sort(rows, columns, changeStamp_, touched);
  return true;
}

std::int32_t TVXRAMTable::InternalFieldsCompare(const TVXRAMRow* first, const TVXRAMRow* second) {
  for (auto field = sortFields_.rbegin(); field != sortFields_.rend(); ++field) {
    currentSortField_ = *field;
    const TVXRAMFieldDef& def = Need(field->Get(), "sort field");
    if (def.Get_DataType() > kLastFieldType) throw ERTEInvalidFieldType("Cannot sort on a field of this type.");
    const std::int32_t order = CompareSortField(first, second, def.Get_DataType());
    if (order != 0) return def.Get_SortOrder() == vxrcoDescending ? -order : order;
  }
  return 0;
}

std::int32_t TVXRAMTable::CompareSortField(const TVXRAMRow* first, const TVXRAMRow* second,
                                           TVXRAMFieldType type) const {
  TVXRAMFieldSlot slot = Need(currentSortField_.Get(), "current sort field").Get_Slot();
  slot.type = type;
  return CompareRows(NeedRow(first), NeedRow(second), slot);
}

std::int32_t TVXRAMTable::InternalBooleanCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                                 TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftBoolean);
}
std::int32_t TVXRAMTable::InternalDateTimeCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                                  TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftDateTime);
}
std::int32_t TVXRAMTable::InternalFloatCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                               TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftFloat);
}
std::int32_t TVXRAMTable::InternalIntegerCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                                 TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftInteger);
}
std::int32_t TVXRAMTable::InternalSmallintCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                                  TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftSmallint);
}
std::int32_t TVXRAMTable::InternalStringCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                                TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftString);
}
std::int32_t TVXRAMTable::InternalWordCompare(const TVXRAMRow* first, const TVXRAMRow* second,
                                              TVXRAMCursorOrder) const {
  return CompareSortField(first, second, vxrftWord);
}

bool TVXRAMTable::InternalIsRecordMatchFilter(const TVXRAMFilter& filter, const TVXRAMRow* row) const {
  const TVXRAMFieldDef& field = Need(filter.Get_Field(), "field of the filter");
  return TVXRAMFilterMatch(field.Get_Slot(), filter.Get_Value())(NeedRow(row));
}

void TVXRAMTable::IndexRebuildingNotification(TVXRAMIndex* index) {
  const auto* const userIndex = As<TVXRAMUserIndex>(index);
  if (userIndex == nullptr) return;
  const TTableOperation running(*this);
  CheckNesting();
  const TVXRAMIndexDef& definition = Need(userIndex->Get_IndexDef(), "index definition");
  const std::string name = definition.Get_FieldName();
  cursors_.ForEach([&name](TVXRAMCursor& cursor) {
    const TVXRAMFieldDef* const field = cursor.Get_Filter()->Get_Field();
    if (field != nullptr && field->Get_Name() == name) cursor.IndexRebuildingNotification();
  });
}

// -- Self-check -------------------------------------------------------------------------------------------------------

namespace {

std::string CheckList(const TVXList& rows, const std::string& name, std::int32_t nextId) {
  std::unordered_set<const void*> seen;
  for (std::int32_t i = 0; i < rows.Count(); ++i) {
    const auto* const row = static_cast<const TVXRAMRow*>(rows.Items(i));
    const std::string where = name + ", position " + std::to_string(i) + ": ";
    if (row == nullptr) return where + "no row";
    if (TVXRAMRowPool::IsGivenUp(row)) return where + "a released row";
    if (!seen.insert(row).second) return where + "row " + std::to_string(RowId(row)) + " stands there twice";
    if (RowId(row) >= nextId) return where + "id " + std::to_string(RowId(row)) + " was never given";
  }
  return {};
}

}  // namespace

std::string TVXRAMTable::CheckRows() const {
  std::string answer = CheckList(*mainRecordList_, "main list", nextId_);
  if (answer.empty()) answer = CheckList(*baseIndex_->Get_List(), "base index", nextId_);
  for (std::int32_t i = 0; answer.empty() && i < indices_->Count(); ++i)
    answer = CheckList(*indices_->Get_Item(i)->Get_Index()->Get_List(), "index " + std::to_string(i), nextId_);
  return answer;
}

// -- Unit -------------------------------------------------------------------------------------------------------------

TVXRAMFieldDef* AddField(TVXRAMTable& table, const std::string& name, TVXRAMFieldType type, std::int32_t byteSize) {
  TVXRAMFieldDef* const field = table.Get_FieldDefs()->Add();
  field->Set_Name(name);
  field->Set_DataType(type);
  if (type == vxrftString) field->Set_ByteSize(byteSize);
  return field;
}

namespace VXRAMTable_CMP {

void Register() { RegisterComponents("VX Data Access", {&TVXRAMTable::StaticClass()}); }

}  // namespace VXRAMTable_CMP

}  // namespace vx
