#include <algorithm>
#include <memory>
#include <utility>

#include "data/VXMemoryDataset_CMP.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

/// What a duration holds that was emptied.
constexpr std::int32_t kNoDuration = 0x7FFFFFFF;

std::size_t Bytes(std::int64_t count) { return static_cast<std::size_t>(std::max<std::int64_t>(count, 0)); }

template <class T>
T ReadAs(const void* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <class T>
void WriteAs(void* to, T value) {
  std::memcpy(to, &value, sizeof value);
}

/// Text of `from`, which has room for `room` bytes, ended or not.
std::string_view TextIn(const void* from, std::size_t room) {
  const auto* const text = static_cast<const char*>(from);
  return {text, strnlen(text, room)};
}

/// Puts text into `room` bytes, the rest zero.
void PutText(char* to, std::size_t room, std::string_view text) {
  std::copy(text.begin(), text.end(), to);
  std::fill(to + text.size(), to + room, '\0');
}

}  // namespace

// -- Making -----------------------------------------------------------------------------------------------------------

TVXRAMCursor& TVXMemoryDataset::NeedCursor() const {
  if (cursor_ == nullptr) throw ENilAccess("cursor of data set '" + Name() + "'");
  return *cursor_;
}

char* TVXMemoryDataset::AllocRecordBuffer() { return new char[bufferSize_](); }

void TVXMemoryDataset::FreeRecordBuffer(char*& buffer) {
  if (buffer == nullptr) DatabaseError("FreeRecordBuffer: invalid (nil) buffer");
  delete[] std::exchange(buffer, nullptr);
}

void TVXMemoryDataset::ClearCalcFields(char* buffer) {
  std::memset(&Need(buffer, "record buffer") + recordSize_, 0, Bytes(CalcFieldsSize()));
}

void TVXMemoryDataset::InternalInitRecord(char* buffer) {
  std::memset(&Need(buffer, "record buffer"), 0, recordSize_);
  PutId(buffer, kNoRecordId);
  for (const TSlot& slot : slots_) EmptyBufferWithField(buffer, slot, vxmdfsNull);
}

// -- Bookmark ---------------------------------------------------------------------------------------------------------

std::int32_t TVXMemoryDataset::IdOf(const char* buffer) const { return ReadAs<std::int32_t>(buffer + bookmarkOffset_); }

void TVXMemoryDataset::PutId(char* buffer, std::int32_t id) const { WriteAs(buffer + bookmarkOffset_, id); }

void TVXMemoryDataset::GetBookmarkData(char* buffer, void* data) {
  if (buffer == nullptr) DatabaseError("GetBookmardData: invalid (nil) buffer");
  WriteAs(&Need(static_cast<char*>(data), "bookmark"), IdOf(buffer));
}

void TVXMemoryDataset::SetBookmarkData(char* buffer, const void* data) {
  PutId(&Need(buffer, "record buffer"), ReadAs<std::int32_t>(&Need(static_cast<const char*>(data), "bookmark")));
}

TBookmarkFlag TVXMemoryDataset::GetBookmarkFlag(char* buffer) {
  if (buffer == nullptr) DatabaseError("GetBookmarkFlag: invalid (nil) buffer");
  return static_cast<TBookmarkFlag>(buffer[bookmarkFlagOffset_]);
}

void TVXMemoryDataset::SetBookmarkFlag(char* buffer, TBookmarkFlag flag) {
  if (buffer == nullptr) DatabaseError("SetBookmarkFlag: invalid (nil) buffer");
  buffer[bookmarkFlagOffset_] = static_cast<char>(flag);
}

// -- Slots ------------------------------------------------------------------------------------------------------------

/// Looks where the fields lie in rows now. O(1) unless the table's definitions have changed.
void TVXMemoryDataset::UpdateSlots() {
  const TVXRAMTable* const table = GetRAMTable();
  if (table == nullptr) return;
  layout_ = table->Get_FieldDefs()->Get_LayoutChanges();
  for (TSlot& slot : slots_) {
    const TVXRAMFieldDef* const field = slot.Field.Get();
    const bool holds = field != nullptr && field->Get_Table() == table && field->Get_DataType() == slot.Type;
    slot.Position = holds ? field->Index() : -1;
    if (holds) slot.Row = field->Get_Slot();
  }
}

/// Null for a field that has no place in the record.
const TVXMemoryDataset::TSlot* TVXMemoryDataset::SlotOf(const TField& field) {
  const auto number = static_cast<std::size_t>(field.FieldNo());
  if (number <= slots_.size()) return slots_[number - 1].Offset == 0 ? nullptr : &slots_[number - 1];
  GetEAFieldDef(field.FieldNo());  // says what is wrong with it
  return nullptr;
}

TVXMemoryDatasetFieldState TVXMemoryDataset::StateOf(const char* buffer, const TSlot& slot) {
  return static_cast<TVXMemoryDatasetFieldState>(buffer[slot.Offset - 1]);
}

void TVXMemoryDataset::PutState(char* buffer, const TSlot& slot, TVXMemoryDatasetFieldState state) {
  buffer[slot.Offset - 1] = static_cast<char>(state);
}

bool TVXMemoryDataset::ReadsAsNull(const char* buffer, const TSlot& slot) {
  const TVXMemoryDatasetFieldState state = StateOf(buffer, slot);
  return state == vxmdfsNull || state == vxmdfsDeleted;
}

void TVXMemoryDataset::EmptyBufferWithField(char* buffer, const TSlot& slot, TVXMemoryDatasetFieldState state) const {
  if (slot.Offset == 0) return;
  PutState(buffer, slot, state);
  char* const value = buffer + slot.Offset;
  switch (slot.Type) {
    case vxrftBoolean:
      return WriteAs<char>(value, 0);
    case vxrftString:
      if (slot.Size > 0) *value = '\0';
      return;
    case vxrftCurrency:
    case vxrftDateTime:
    case vxrftFloat:
      return WriteAs<double>(value, 0);
    case vxrftDuration:
      return WriteAs(value, kNoDuration);
    case vxrftInteger:
      return WriteAs<std::int32_t>(value, 0);
    case vxrftSmallint:
    case vxrftWord:  // kept: left as they are
      return;
  }
}

// -- From the row -----------------------------------------------------------------------------------------------------

TGetResult TVXMemoryDataset::GetRecord(char* buffer, TGetMode mode, bool check) {
  constexpr std::int32_t kNoRecord = 1;
  if (buffer == nullptr) DatabaseError("GetRecord: invalid (nil) buffer");
  TVXRAMCursor& cursor = NeedCursor();
  std::int32_t answer = kDone;
  if (mode == gmNext)
    answer = cursor.GoToNextRec();
  else if (mode == gmPrior)
    answer = cursor.GoToPreviousRec();
  else if (const std::int32_t index = cursor.Get_RecIndex(); index < 0 || index >= GetRecordCount())
    answer = kNoRecord;
  if (answer == kAtEnd) return grEOF;
  if (answer == kAtBeginning) return grBOF;
  if (answer != kDone) {
    if (check) DatabaseError("No Records");
    return grError;
  }
  NoteSeat();
  FillBufferWithFields(buffer);
  GetCalcFields(buffer);
  return grOK;
}

void TVXMemoryDataset::FillBufferWithFields(char* buffer) {
  if (layout_ != NeedCursor().Table().Get_FieldDefs()->Get_LayoutChanges()) UpdateSlots();
  const TVXRAMRow* const row = &Need(cursor_->Get_CurrentRecord(), "current record");
  for (const TSlot& slot : slots_) {
    if (slot.Position < 0)
      EmptyBufferWithField(buffer, slot, vxmdfsNull);
    else if (readsRows_)
      FillBufferWithField(buffer, slot, row);
    else
      FillBufferByCursor(buffer, slot);
  }
  PutId(buffer, cursor_->Table().InternalGetRecordID(row));
  buffer[bookmarkFlagOffset_] = static_cast<char>(bfCurrent);
}

namespace {

/// Copies a field's value, null or not: bytes that only one side has are zero, a text ends at its zero.
void CopyValue(char* to, std::int32_t size, const void* from, std::int32_t fromSize, TVXRAMFieldType type) {
  if (type == vxrftString) return PutText(to, Bytes(size), TextIn(from, Bytes(std::min(size, fromSize))));
  if (size == 8 && fromSize == 8) return WriteAs(to, ReadAs<std::uint64_t>(from));
  if (size == 4 && fromSize == 4) return WriteAs(to, ReadAs<std::uint32_t>(from));
  const std::size_t common = Bytes(std::min(size, fromSize));
  std::memcpy(to, from, common);
  std::memset(to + common, 0, Bytes(size) - common);
}

}  // namespace

void TVXMemoryDataset::FillBufferWithField(char* buffer, const TSlot& slot, const TVXRAMRow* row) {
  PutState(buffer, slot, RowStatus(row, slot.Row) == vxfsAssigned ? vxmdfsModified : vxmdfsNull);
  const bool holds = RowHolds(row, slot.Row);
  CopyValue(buffer + slot.Offset, slot.Size, RowBytes(row) + (holds ? slot.Row.valueOffset : 0),
            holds ? slot.Row.size : 0, slot.Type);
}

/// The same for a cursor class that has its own way to values.
void TVXMemoryDataset::FillBufferByCursor(char* buffer, const TSlot& slot) {
  PutState(buffer, slot, vxmdfsDefault);
  std::int32_t size = slot.Row.size;
  bool isNull = false;
  const std::vector<char> value(Bytes(size) + 1);
  cursor_->GetFieldValue(slot.Position, const_cast<char*>(value.data()), size, isNull);
  PutState(buffer, slot, isNull ? vxmdfsNull : vxmdfsModified);
  CopyValue(buffer + slot.Offset, slot.Size, value.data(), size, slot.Type);
}

/// Kept: a null counts as modified here, so that a filter's handler sees its zero bytes as a value.
void TVXMemoryDataset::CopyRAMCursorBufferToMemoryDatasetBuffer(const TVXRAMRow* row, char* buffer) {
  for (const TSlot& slot : slots_) {
    if (slot.Position < 0) continue;
    FillBufferWithField(buffer, slot, row);
    PutState(buffer, slot, vxmdfsModified);
  }
}

// -- To the row -------------------------------------------------------------------------------------------------------

namespace {

void PutElement(TVXFieldStruct& element, const char* value, std::int32_t size) {
  element.IsNull = false;
  if (element.FieldType != vxrftString)
    std::memcpy(element.Value, value, Bytes(size));
  else if (element.StringSize == size)
    std::memcpy(element.StringPtr, value, Bytes(size));  // a text may fill its slot without a zero
  else
    element.AssignText(TextIn(value, Bytes(size)));
}

}  // namespace

/// An index that was never given a field lets the row in and fails then. Such a post would leave a row behind, and
/// another one each time that it is tried again.
void TVXMemoryDataset::CheckIndices() const {
  const TVXRAMIndexDefs& indices = *NeedCursor().Table().Get_Indices();
  for (std::int32_t i = 0; i < indices.Count(); ++i)
    if (const TVXRAMIndexDef& index = *indices.Get_Item(i); index.Get_Field() == nullptr && !index.LostField())
      RaiseError("Index " + std::to_string(i) + " of the table has no field");
}

/// The only way by which values come to the table.
void TVXMemoryDataset::InternalWriteBuffer(const char* buffer, bool insert, bool append) {
  TVXRAMCursor& cursor = NeedCursor();
  CheckIndices();
  UpdateSlots();
  // Kept: elements of fields that this set doesn't hold stay null, and so become null in the row, an edited one too.
  const TOwnedRecordStruct record = cursor.Table().NewRecord();
  for (const TSlot& slot : slots_) {
    if (slot.Position < 0 || ReadsAsNull(buffer, slot)) continue;
    PutElement(record->Field(slot.Position), buffer + slot.Offset, slot.Size);
  }
  if (insert)
    cursor.InsertRecWithValues(*record, append);
  else
    cursor.UpdateRecWithValues(*record);
}

// -- Between buffer and field -----------------------------------------------------------------------------------------

/// The buffer that the state reads and writes; null where there is none.
char* TVXMemoryDataset::GetActiveRecordBuffer() {
  switch (State()) {
    case dsBrowse:
      return IsEmpty() ? nullptr : ActiveBuffer();
    case dsEdit:
    case dsInsert:
      return ActiveBuffer();
    case dsCalcFields:
      return CalcBuffer();
    case dsFilter:
      return filterBuffer_;
    default:
      return nullptr;
  }
}

bool TVXMemoryDataset::HasCalcRoom(const TField& field) const {
  return field.Offset() >= 0 && field.Offset() + 1 + field.DataSize() <= CalcFieldsSize();
}

bool TVXMemoryDataset::GetCalcData(const TField& field, const char* buffer, void* data) const {
  const TDataSetState state = State();
  if (state != dsBrowse && state != dsEdit && state != dsInsert && state != dsCalcFields) return false;
  if (!HasCalcRoom(field)) return false;
  const char* const at = buffer + recordSize_ + field.Offset();
  if (*at == 0) return false;
  if (data != nullptr) std::memcpy(data, at + 1, Bytes(field.DataSize()));
  return true;
}

void TVXMemoryDataset::SetCalcData(const TField& field, char* buffer, const void* data) const {
  if (!HasCalcRoom(field)) RaiseError("Calculated field '" + field.FieldName() + "' has no room in the record");
  char* const at = buffer + recordSize_ + field.Offset();
  *at = data != nullptr;
  if (data != nullptr) std::memcpy(at + 1, data, Bytes(field.DataSize()));
}

bool TVXMemoryDataset::GetFieldData(const TField& field, void* buffer) {
  const char* const record = GetActiveRecordBuffer();
  if (record == nullptr) return false;
  if (field.FieldNo() < 1) return GetCalcData(field, record, buffer);
  const TSlot* const slot = SlotOf(field);
  if (slot == nullptr) return false;
  const bool isNull = ReadsAsNull(record, *slot);
  if (buffer == nullptr) return !isNull;
  const char* const value = record + slot->Offset;
  switch (slot->Type) {
    case vxrftBoolean:
      WriteAs(buffer, static_cast<std::int16_t>(*value != 0 ? -1 : 0));
      break;
    case vxrftCurrency:
    case vxrftFloat:
      WriteAs(buffer, ReadAs<double>(value));
      break;
    case vxrftDateTime:
      if (!isNull) WriteAs(buffer, DateTimeToNative(ReadAs<double>(value)));
      break;
    case vxrftDuration:
    case vxrftInteger:
      WriteAs(buffer, ReadAs<std::int32_t>(value));
      break;
    case vxrftSmallint:
    case vxrftWord:
      WriteAs(buffer, ReadAs<std::uint16_t>(value));
      break;
    case vxrftString: {
      const std::string_view text = CutAtCodePoint(TextIn(value, Bytes(slot->Size)), Bytes(field.Size()));
      PutText(static_cast<char*>(buffer), text.size() + 1, text);
      break;
    }
  }
  return !isNull;
}

/// A value in native form into the record.
void TVXMemoryDataset::SetRecordData(const TField& field, const TSlot& slot, char* buffer, const void* data) const {
  char* const value = buffer + slot.Offset;
  switch (slot.Type) {
    case vxrftBoolean:
      *value = ReadAs<std::uint16_t>(data) > 0;
      break;
    case vxrftCurrency:
    case vxrftFloat:
      WriteAs(value, ReadAs<double>(data));
      break;
    case vxrftDateTime:
      WriteAs<double>(value, NativeToDateTime(ReadAs<double>(data)));
      break;
    case vxrftDuration:
    case vxrftInteger:
      WriteAs(value, ReadAs<std::int32_t>(data));
      break;
    case vxrftSmallint:
    case vxrftWord:
      WriteAs(value, ReadAs<std::uint16_t>(data));
      break;
    case vxrftString:
      PutText(value, Bytes(slot.Size), CutAtCodePoint(TextIn(data, Bytes(field.Size())), Bytes(slot.Size - 1)));
      break;
  }
  PutState(buffer, slot, vxmdfsModified);
}

/// What is written into a field that the table has lost would be lost at the post.
void TVXMemoryDataset::CheckHeld(const TField& field, const TSlot& slot) {
  const TVXRAMTable* const table = GetRAMTable();
  if (table != nullptr && layout_ != table->Get_FieldDefs()->Get_LayoutChanges()) UpdateSlots();
  if (slot.Position < 0) RaiseError("The table has no field " + field.FieldName() + " of that type any more");
}

void TVXMemoryDataset::SetFieldData(TField& field, const void* buffer) {
  const TDataSetState state = State();
  if (state == dsInactive || state == dsBrowse || state == dsOldValue || state == dsCurValue)
    DatabaseError("Not in EDIT MODES");
  char* const record = GetActiveRecordBuffer();
  if (field.FieldNo() < 1) {
    SetCalcData(field, &Need(record, "record buffer"), buffer);
  } else {
    if ((readOnly_ || field.ReadOnly) && state != dsSetKey && state != dsFilter)
      DatabaseError("Field Read-Only :" + field.DisplayName());
    if (state == dsCalcFields) DatabaseError("Not in EDIT MODES");
    if (field.FieldKind() == fkInternalCalc) return;
    const TSlot& slot = Need(SlotOf(field), "definition of the field");
    char* const at = &Need(record, "record buffer");
    if (buffer != nullptr) CheckHeld(field, slot);
    if (buffer != nullptr)
      SetRecordData(field, slot, at, buffer);
    else if (!ReadsAsNull(at, slot))
      EmptyBufferWithField(at, slot, vxmdfsDeleted);
  }
  if (state != dsCalcFields && state != dsFilter && state != dsNewValue) DataEvent(deFieldChange, &field);
}

// -- Filter -----------------------------------------------------------------------------------------------------------

void TVXMemoryDataset::SetOnFilterRecord(const TFilterRecordEvent& event) {
  if (GetActive()) {
    CheckBrowseMode();
    // Kept: the cursor filters at once, while the event is still the former one. A handler where none was has so no
    // effect before the next rebuild.
    if (static_cast<bool>(event) != static_cast<bool>(GetOnFilterRecord()))
      NeedCursor().SetOnFilterRecord(event ? TVXRAMCursorRecordFilterProc(*this, &TVXMemoryDataset::RecordFilter)
                                           : TVXRAMCursorRecordFilterProc());
  }
  TDataSet::SetOnFilterRecord(event);
}

/// What the cursor asks for each row while it builds its filtered list.
bool TVXMemoryDataset::RecordFilter(TVXRAMRow* row, std::int32_t) {
  const TMemoryKeeper<TComponent> keep(this);
  const std::uint32_t opening = openings_;
  const TDataSetState state = SetTempState(dsFilter);
  const auto release = [this](char* record) { FreeRecordBuffer(record); };
  const std::unique_ptr<char, decltype(release)> buffer(AllocRecordBuffer(), release);
  char* const outer = std::exchange(filterBuffer_, buffer.get());  // a handler may change rows, and so filter anew
  bool accept = true;
  try {
    if (layout_ != NeedCursor().Table().Get_FieldDefs()->Get_LayoutChanges()) UpdateSlots();
    InternalInitRecord(buffer.get());
    CopyRAMCursorBufferToMemoryDatasetBuffer(row, buffer.get());
    if (const TFilterRecordEvent event = GetOnFilterRecord()) event(this, accept);
  } catch (const std::exception& error) {
    InternalHandleException(error);
  }
  if (opening != openings_) return accept;  // the handler has closed the set
  filterBuffer_ = outer;
  RestoreState(state);
  return accept;
}

}  // namespace vx
