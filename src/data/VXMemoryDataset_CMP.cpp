#include "data/VXMemoryDataset_CMP.h"

#include <limits>
#include <typeinfo>
#include <utility>

#include "data/VXMemoryDatasetEditors.h"
#include "data/VXRAMCursorBucketer_CMP.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/component/Published.h"
#include "platform/dataset/DataSetWork.h"

namespace vx {

// -- TVXMemoryDatasetFieldDef -----------------------------------------------------------------------------------------

const TClass& TVXMemoryDatasetFieldDef::StaticClass() {
  static const TClass info("TVXMemoryDatasetFieldDef", &TFieldDef::StaticClass());
  return info;
}

TVXMemoryDatasetFieldDef::TVXMemoryDatasetFieldDef(TFieldDefs* owner, std::string name, TFieldType type,
                                                   std::int32_t size, std::int32_t fieldNo, std::uint16_t offset,
                                                   TVXRAMFieldDef* ramFieldDef)
    : TFieldDef(owner, std::move(name), type, size, false, fieldNo), offset_(offset), ramFieldDef_(ramFieldDef) {}

// -- TVXMemoryDataset: life -------------------------------------------------------------------------------------------

const TClass& TVXMemoryDataset::StaticClass() {
  static const TClass info = [] {
    using T = TVXMemoryDataset;
    TClassBuilder<T> builder("TVXMemoryDataset", TDataSet::StaticClass());
    builder.Property("Active", &T::GetActive, &T::SetActive)
        .Default(false)
        .Property("DetailField", &T::GetDetailField, &T::SetDetailField)
        .Property("MasterField", &T::GetMasterField, &T::SetMasterField)
        .Property("MasterSource", &T::GetMasterSource, &T::SetMasterSource)
        .Property("SortedField", &T::GetSortedField, &T::SetSortedField)
        .Property("RAMTable", &T::GetRAMTable, &T::SetRAMTable)
        .Property("ReadOnly", &T::GetReadOnly, &T::SetReadOnly)
        .Default(false)
        .Property("IndexName", &T::GetIndexName, &T::SetIndexName)
        .Property("IndexOrder", &T::Get_CursorOrder, &T::Set_CursorOrder);
    const auto event = [&](const char* name, auto slot) {
      builder.Property(name, slot).TypeName("TDataSetNotifyEvent");
    };
    event("AfterCancel", &T::AfterCancel);
    event("AfterClose", &T::AfterClose);
    event("AfterDelete", &T::AfterDelete);
    event("AfterEdit", &T::AfterEdit);
    event("AfterInsert", &T::AfterInsert);
    event("AfterOpen", &T::AfterOpen);
    event("AfterPost", &T::AfterPost);
    event("AfterScroll", &T::AfterScroll);
    event("BeforeCancel", &T::BeforeCancel);
    event("BeforeClose", &T::BeforeClose);
    event("BeforeDelete", &T::BeforeDelete);
    event("BeforeEdit", &T::BeforeEdit);
    event("BeforeInsert", &T::BeforeInsert);
    event("BeforeOpen", &T::BeforeOpen);
    event("BeforePost", &T::BeforePost);
    event("BeforeScroll", &T::BeforeScroll);
    event("OnCalcFields", &T::OnCalcFields);
    builder.Property("OnEditError", &T::OnEditError).TypeName("TDataSetErrorEvent");
    event("OnNewRecord", &T::OnNewRecord);
    builder.Property("OnFilterRecord", &T::GetOnFilterRecord, &T::SetOnFilterRecord).TypeName("TFilterRecordEvent");
    builder.Property("OnPostError", &T::OnPostError).TypeName("TDataSetErrorEvent");
    return builder.Build();
  }();
  return info;
}

TVXMemoryDataset::TVXMemoryDataset(TComponent* owner)
    : TDataSet(owner), masterLink_(Make<TVXMemoryDatasetMasterDataLink>(this)) {}

void TVXMemoryDataset::AfterConstruction() {
  TDataSet::AfterConstruction();
  masterLink_->OnMasterChange = TNotifyEvent(*this, &TVXMemoryDataset::MasterChanged);
  masterLink_->OnMasterDisable = TNotifyEvent(*this, &TVXMemoryDataset::MasterDisabled);
}

void TVXMemoryDataset::TearDown() {
  CloseQuietly();
  masterLink_.reset();
  TDataSet::TearDown();
}

void TVXMemoryDataset::Loaded() {
  // Kept: a set that a stream opens does so before its index is looked for, and walks the table's own order.
  TDataSet::Loaded();
  const TVXRAMTable* const table = GetRAMTable();
  if (table == nullptr || indexName_.empty()) return;
  for (std::int32_t i = 0; i < table->Get_Indices()->Count(); ++i) {
    const TVXRAMIndexDef* const index = table->Get_Indices()->Get_Item(i);
    const TVXRAMFieldDef* const field = index->Get_Field();
    if (field == nullptr || field->Get_Name() != indexName_) continue;
    indexDef_ = index;
    return;
  }
}

void TVXMemoryDataset::Notification(TComponent* component, TOperation operation) {
  const TMemoryKeeper<TComponent> keep(this);
  TDataSet::Notification(component, operation);
  if (operation != opRemove || !ramTable_.RefersTo(component)) return;
  CloseAnyway();
  ramTable_ = nullptr;
  indexDef_ = nullptr;
}

/// Whatever handlers raise.
void TVXMemoryDataset::CloseAnyway() noexcept {
  if (!GetActive()) return;
  const TMemoryKeeper<TComponent> keep(this);  // a handler may free it, and raise
  try {
    Close();
  } catch (const std::exception&) {  // a handler's veto comes too late
    CloseQuietly();
  }
}

void TVXMemoryDataset::CursorClosed(TVXRAMCursor* cursor) {
  if (cursor != cursor_) return;
  cursor_ = nullptr;
  seat_ = {};
  CloseAnyway();
}

// -- Settings ---------------------------------------------------------------------------------------------------------

void TVXMemoryDataset::SetRAMTable(TVXRAMTable* table) {
  if (ramTable_ == table) return;
  CheckInactive();
  if (TVXRAMTable* const former = GetRAMTable()) RemoveFreeNotification(former);
  ramTable_ = table;
  if (table != nullptr) FreeNotification(table);
  if (Is(csLoading)) return;
  indexDef_ = nullptr;
  DataEvent(dePropertyChange);
}

void TVXMemoryDataset::SetReadOnly(bool value) {
  if (readOnly_ == value) return;
  CheckInactive();
  readOnly_ = value;
}

void TVXMemoryDataset::SetIndexName(const std::string& name) {
  indexName_ = name;
  if (Is(csLoading)) return;  // waits for Loaded
  const TVXRAMTable* const table = GetRAMTable();
  const std::int32_t number = table == nullptr || name.empty() ? -1 : table->IndexNbByFieldName(name);
  indexDef_ = number == -1 ? nullptr : table->Get_Indices()->Get_Item(number);
  if (number == -1) indexName_.clear();
}

std::int32_t TVXMemoryDataset::GetIndexNumber() const {
  const TVXRAMTable* const table = GetRAMTable();
  if (table == nullptr || indexDef_ == nullptr) return -1;
  // Looked for, not asked: the definition may have been freed.
  for (std::int32_t i = 0; i < table->Get_Indices()->Count(); ++i)
    if (table->Get_Indices()->Get_Item(i) == indexDef_) return i;
  return -1;
}

void TVXMemoryDataset::SetFieldIndex(const TField* field) {
  if (field != nullptr) SetIndexName(FieldDefs().Items(field->FieldNo())->Name());
}

void TVXMemoryDataset::Set_CursorOrder(TVXRAMCursorOrder value) {
  if (cursorOrder_ == value) return;
  cursorOrder_ = value;
  if (cursor_ != nullptr) cursor_->Set_Order(value);
}

void TVXMemoryDataset::SetSortedField(const std::string& value) {
  sortedField_ = value;
  if (cursor_ == nullptr) return;
  const TMemoryKeeper<TComponent> keep(this);
  CheckBrowseMode();
  const std::string place = GetBookmarkStr();
  NeedCursor().Set_SortedField(value);
  SetBookmarkStr(place);
}

// -- Opening and closing ----------------------------------------------------------------------------------------------

void TVXMemoryDataset::DescribeTable() {
  if (detailField_.empty()) return;  // opening describes, and a set with persistent fields needs less room then
  if (FieldCount() > 0 && FindField(detailField_) == nullptr) return;  // won't be held: no move would find it either
  const TVXRAMTable* const table = GetRAMTable();
  if (described_ != table || (table != nullptr && layout_ != table->Get_FieldDefs()->Get_LayoutChanges()))
    InternalInitFieldDefs();
}

void TVXMemoryDataset::OpenCursor(bool infoQuery) {
  TVXRAMTable* const table = GetRAMTable();
  if (!infoQuery && table != nullptr && cursor_ == nullptr) {
    DescribeTable();
    TVXRAMCursorDesc wish(this, GetIndexNumber(), cursorOrder_, sortedField_, GetMasterRAMFieldDef(), GetMasterValue());
    OpenCursorAs(TClassOf<TVXRAMCursor>::Of<TVXRAMCursor>(), wish);
  }
  TDataSet::OpenCursor(infoQuery);
}

void TVXMemoryDataset::OpenCursorAs(TClassOf<TVXRAMCursor> cursorClass, TVXRAMCursorDesc& wish) {
  try {
    Need(GetRAMTable(), "table of the data set").OpenCursor(cursorClass, &wish, cursor_);
  } catch (const EVariantError& error) {
    if (wish.FilterField.Get() == nullptr) throw;
    RaiseMasterMismatch(error);
  }
}

void TVXMemoryDataset::CloseCursor() {
  ++openings_;
  filterBuffer_ = nullptr;
  seat_ = {};
  if (TVXRAMCursor* closing = std::exchange(cursor_, nullptr); closing != nullptr && ramTable_)
    ramTable_->CloseCursor(closing);
  TDataSet::CloseCursor();
}

void TVXMemoryDataset::InternalOpen() {
  if (!ramTable_) throw EDatabaseError("missing property : RAMTable");
  SetBookmarkSize(kRecordIdSize);
  InternalInitFieldDefs();
  if (DefaultFields()) CreateFields();
  BindFields(true);
  SettleBuffers();
  TVXRAMCursor& cursor = NeedCursor();
  const auto reads = [&cursor](const std::type_info& type) { return typeid(cursor) == type; };
  readsRows_ = reads(typeid(TVXRAMCursor)) || reads(typeid(TVXRAMCursorBucketer));
  if (GetOnFilterRecord())
    cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(*this, &TVXMemoryDataset::RecordFilter));
  NeedCursor();  // the filter's handler may have closed the set
  SetFieldTexts();
}

void TVXMemoryDataset::SettleBuffers() {
  const std::int32_t flagOffset = recordSize_ + CalcFieldsSize();
  const std::int32_t size = flagOffset + 1 + kRecordIdSize;
  if (size > std::numeric_limits<std::uint16_t>::max())
    RaiseError("Records with their calculated fields would be " + std::to_string(size) +
               " bytes long; a data set takes 65535");
  bookmarkFlagOffset_ = static_cast<std::uint16_t>(flagOffset);
  bookmarkOffset_ = static_cast<std::uint16_t>(flagOffset + 1);
  bufferSize_ = static_cast<std::uint16_t>(size);
}

void TVXMemoryDataset::InternalClose() {
  BindFields(false);
  if (DefaultFields()) DestroyFields();
  SetBookmarkSize(0);
}

// -- Definitions of fields --------------------------------------------------------------------------------------------

namespace {

struct TFieldMapping {
  TFieldType Type;
  std::int32_t Size;  ///< in the buffer; 0 for the field's own
};

/// Bytes of a record's fields, so that the bookmark and its flag still have room.
constexpr std::int32_t kMostFieldBytes = std::numeric_limits<std::uint16_t>::max() - 1 - kRecordIdSize;

/// By TVXRAMFieldType.
constexpr TFieldMapping kMappings[] = {
    {ftBoolean, 1}, {ftCurrency, 8}, {ftDateTime, 8}, {ftInteger, 4}, {ftFloat, 8},
    {ftInteger, 4}, {ftSmallint, 2}, {ftString, 0},   {ftWord, 2},
};

}  // namespace

void TVXMemoryDataset::InternalInitFieldDefs() {
  if (GetActive()) return;  // the buffers are laid out by the present ones
  FieldDefs().Clear();
  slots_.clear();
  recordSize_ = 0;
  TVXRAMTable* const table = GetRAMTable();
  described_ = table;
  if (table == nullptr) return;
  TVXRAMFieldDefs& defs = *table->Get_FieldDefs();
  defs.CheckLayout();
  if (!DefaultFields() && cursor_ != nullptr)
    AddPersistentDescriptions(*table);
  else
    for (std::int32_t i = 0; i < defs.Count(); ++i) AddFieldDescription(*defs.Get_Item(i));
  UpdateSlots();
}

/// The set then holds these fields alone.
void TVXMemoryDataset::AddPersistentDescriptions(const TVXRAMTable& table) {
  for (std::int32_t i = 0; i < FieldCount(); ++i) {
    const TField& field = *Fields(i);
    const std::int32_t position = field.FieldKind() == fkData ? table.FieldNbByName(field.FieldName()) : -1;
    if (position != -1) AddFieldDescription(*table.Get_FieldDefs()->Get_Item(position));  // else binding tells
  }
}

void TVXMemoryDataset::AddFieldDescription(TVXRAMFieldDef& field) {
  const TVXRAMFieldType type = field.Get_DataType();
  if (type > kLastFieldType) return;
  const TFieldMapping& mapping = kMappings[type];
  const std::int32_t size = mapping.Type == ftString ? field.Get_ByteSize() : mapping.Size;
  const std::int64_t end = std::int64_t{recordSize_} + 1 + size;
  if (end > kMostFieldBytes)
    RaiseError("Field '" + field.Get_Name() + "' ends behind the " + std::to_string(kMostFieldBytes) +
               " bytes that the fields of a record may have");
  const auto offset = static_cast<std::uint16_t>(recordSize_ + 1);
  const std::int32_t number = FieldDefs().Count() + 1;
  FieldDefs().Add(Make<TVXMemoryDatasetFieldDef>(&FieldDefs(), field.Get_Name(), mapping.Type,
                                                 mapping.Type == ftString ? size : 0, number, offset, &field));
  slots_.resize(static_cast<std::size_t>(number));
  slots_.back() = {&field, type, offset, size, -1, {}};
  recordSize_ = static_cast<std::uint16_t>(end);
}

TVXMemoryDatasetFieldDef* TVXMemoryDataset::GetEAFieldDef(std::int32_t number) {
  if (number < 1) return nullptr;
  if (number > FieldDefs().Count()) DatabaseError("Invalid field number");
  TFieldDef* const def = FieldDefs().Items(number - 1);
  if (def->FieldNo() != number) DatabaseError("Field does not match definition");
  return As<TVXMemoryDatasetFieldDef>(def);
}

// -- Place ------------------------------------------------------------------------------------------------------------

std::int32_t TVXMemoryDataset::GetRecordCount() { return cursor_ == nullptr ? 0 : cursor_->Get_RecordCount(); }

const char* TVXMemoryDataset::RecordBuffer() const {
  CheckActive();
  return State() == dsCalcFields ? CalcBuffer() : ActiveBuffer();
}

std::int32_t TVXMemoryDataset::GetRecNo() {
  const std::int32_t id = GetRecordId();  // first: it says that the set is closed
  return NeedCursor().Get_RecIndexById(id) + 1;
}

void TVXMemoryDataset::SetRecNo(std::int32_t value) {
  const TCall work(*this);
  CheckBrowseMode();
  DoBeforeScroll();
  NeedCursor().Set_RecIndex(WrappingSubtract(value, 1));
  Resync({rmCenter});
  if (work.IsOpen()) DoAfterScroll();
}

std::int32_t TVXMemoryDataset::GetRecordId() {
  const char* const buffer = &Need(RecordBuffer(), "record buffer");
  return IsEmpty() && State() != dsCalcFields ? kNoRecordId : IdOf(buffer);
}

void TVXMemoryDataset::SetRecordId(std::int32_t id) {
  if (id == kNoRecordId) return;
  const TCall work(*this);
  CheckCanFetch();  // Kept: not CheckBrowseMode, so a pending edit isn't posted, and what was typed is read over
  NeedCursor().Set_RecordID(id);
  Resync({});
}

bool TVXMemoryDataset::BookmarkValid(const TBookmark& bookmark) {
  if (bookmark.IsNull() || bookmark.Bytes().size() != kRecordIdSize) return false;
  std::int32_t id = kNoRecordId;
  std::memcpy(&id, bookmark.Data(), sizeof id);
  return id != kNoRecordId;
}

void TVXMemoryDataset::InternalGotoBookmark(const void* bookmark) {
  if (bookmark == nullptr) DatabaseError("InternalGoToBookmark: invalid (nil) bookmark");
  std::int32_t id = kNoRecordId;
  std::memcpy(&id, bookmark, sizeof id);
  if (id != kNoRecordId) NeedCursor().Set_RecordID(id);
}

void TVXMemoryDataset::InternalSetToRecord(char* buffer) {
  InternalGotoBookmark(&Need(buffer, "record buffer") + bookmarkOffset_);
  NoteSeat();
}

void TVXMemoryDataset::InternalFirst() {
  try {
    NeedCursor().GoToFirstRec();
  } catch (const Exception& error) {
    DatabaseError(error.Message());
  }
}

void TVXMemoryDataset::InternalLast() { NeedCursor().GoToLastRec(); }

TVXMemoryDataset::TSeat TVXMemoryDataset::CursorSeat() const {
  const TVXList* const rows = NeedCursor().Get_ActiveRecordList();
  return {rows, rows == nullptr ? 0 : rows->Changes(), cursor_->Get_PhysicalIndex()};
}

void TVXMemoryDataset::NoteSeat() { seat_ = CursorSeat(); }

/// Insertions elsewhere sort and filter this cursor's list anew, and nobody tells.
bool TVXMemoryDataset::IsCursorOn(char*) { return CursorSeat() == seat_; }

// -- Changing ---------------------------------------------------------------------------------------------------------

void TVXMemoryDataset::BeginUpdate() {
  CheckActive();
  NeedCursor().BeginUpdate();
}

void TVXMemoryDataset::EndUpdate() {
  CheckActive();
  NeedCursor().EndUpdate();
}

void TVXMemoryDataset::Refresh() {
  TVXRAMTable* const table = GetRAMTable();
  if (cursor_ == nullptr || table == nullptr || table->operations_ == 0) return TDataSet::Refresh();
  // The row that goes stands in the table's lists until all were told. Many deletions in one operation: one refresh.
  if (std::exchange(refreshAsked_, true)) return;
  table->WhenIdle([self = TComponentRef<TVXMemoryDataset>(this)] {
    TVXMemoryDataset* const set = self.Get();
    if (set == nullptr) return;
    const TMemoryKeeper<TComponent> keep(set);  // handlers of the refresh may free it
    set->refreshAsked_ = false;
    try {
      if (set->GetActive()) set->TDataSet::Refresh();
    } catch (const std::exception& error) {
      set->InternalHandleException(error);
    }
  });
}

void TVXMemoryDataset::TableCleared() {
  if (GetActive()) Refresh();  // at work, the table lets it wait
}

/// False, and the cursor doesn't move, if the buffer's record isn't in the cursor's list.
bool TVXMemoryDataset::StandOn(const char* buffer) {
  TVXRAMCursor& cursor = NeedCursor();
  const std::int32_t former = cursor.Get_RecIndex();
  cursor.Set_RecordID(IdOf(buffer));
  if (IdOf(buffer) != kNoRecordId && cursor.Get_PhysicalIndex() >= 0) return true;
  cursor.Set_RecIndex(former);
  return false;
}

/// The cursor would else change another row: the first one, for a record that is gone.
void TVXMemoryDataset::StandOnActive() {
  if (!StandOn(ActiveBuffer())) RaiseError("The record is not there any more");
}

void TVXMemoryDataset::InternalDelete() {
  StandOnActive();
  NeedCursor().DeleteRec();
}

void TVXMemoryDataset::InternalPost() {
  const bool insert = State() != dsEdit;
  if (!insert) StandOnActive();
  InternalWriteBuffer(ActiveBuffer(), insert, true);  // kept: a new record always goes to the table's end
}

void TVXMemoryDataset::InternalAddRecord(const char* buffer, bool append) {
  if (buffer == nullptr) DatabaseError("InternalAddRecord: invalid (nil) buffer");
  if (append) InternalLast();
  InternalWriteBuffer(buffer, true, append);
}

// -- Unit -------------------------------------------------------------------------------------------------------------

namespace VXMemoryDataset_CMP {

void Register() {
  RegisterComponents("VX Data Access", {&TVXMemoryDataset::StaticClass()});
  const TClass& type = TVXMemoryDataset::StaticClass();
  RegisterPropertyEditor<TVXMemoryDatasetMasterFieldNameProperty>(type, "MasterField");
  RegisterPropertyEditor<TVXMemoryDatasetDetailFieldNameProperty>(type, "DetailField");
  RegisterPropertyEditor<TVXMemoryDatasetDetailFieldNameProperty>(type, "SortedField");
  RegisterPropertyEditor<TVXMemoryDatasetIndexNameProperty>(type, "IndexName");
}

}  // namespace VXMemoryDataset_CMP

}  // namespace vx
