#include "data/VXRAMCursor.h"

#include "data/VXRAMFilterMatch.h"
#include "data/VXRAMIndex.h"
#include "data/VXRAMRowSearch.h"
#include "data/VXRAMTable_CMP.h"

namespace vx {

// -- TVXRAMFilter -----------------------------------------------------------------------------------------------------

const TClass& TVXRAMFilter::StaticClass() {
  static const TClass info("TVXRAMFilter", &TObject::StaticClass());
  return info;
}

void TVXRAMFilter::SetFilter(TVXRAMFieldDef* field, const Variant& value) {
  field_ = field;
  value_ = value;
  Changed();
}

void TVXRAMFilter::Set_Field(TVXRAMFieldDef* field) {
  field_ = field;
  value_ = Variant();
  Changed();
}

void TVXRAMFilter::Set_Value(const Variant& value) {
  value_ = value;
  Changed();
}

void TVXRAMFilter::Changed() {
  ++changes_;
  OnChange(this);
}

// -- TVXRAMCursorDesc -------------------------------------------------------------------------------------------------

const TClass& TVXRAMCursorDesc::StaticClass() {
  static const TClass info("TVXRAMCursorDesc", &TObject::StaticClass());
  return info;
}

TVXRAMCursorDesc::TVXRAMCursorDesc(TComponent* owner, std::int32_t indexNumber, TVXRAMCursorOrder order,
                                   std::string sortedField, TVXRAMFieldDef* filterField, Variant filterValue)
    : Owner(owner),
      IndexNumber(indexNumber),
      Order(order),
      SortedField(std::move(sortedField)),
      FilterField(filterField),
      FilterValue(std::move(filterValue)) {}

// -- TVXRAMCursor: life -----------------------------------------------------------------------------------------------

const TClass& TVXRAMCursor::StaticClass() {
  static const TClass info("TVXRAMCursor", &TPersistent::StaticClass());
  return info;
}

TVXRAMCursor::TVXRAMCursor(TVXRAMTable* table, TVXRAMIndexDef* indexDef, TVXRAMCursorDesc* desc)
    : table_(&Need(table, "table of the cursor")),
      desc_(&Need(desc, "description of the cursor")),
      owner_(desc->Owner),
      order_(desc->Order),
      sortedField_(desc->SortedField),
      sortParser_(Make<TVXStringParser>(";", "")),
      filter_(Make<TVXRAMFilter>()),
      filteredList_(Make<TVXList>()),
      index_(indexDef == nullptr ? nullptr : indexDef->Get_Index()) {
  table_->CursorMade(this);
}

TVXRAMCursor::~TVXRAMCursor() { table_->CursorGone(this); }

void TVXRAMCursor::AfterConstruction() {
  const TTableOperation running(*table_);
  TPersistent::AfterConstruction();
  filter_->OnChange = TNotifyEvent(*this, &TVXRAMCursor::FilterChange);
  TVXRAMCursorDesc& desc = *desc_;
  filter_->SetFilter(desc.FilterField.Get(), desc.FilterValue);
  GoToFirstRec();
  desc_ = nullptr;
}

void TVXRAMCursor::TearDown() {
  table_->CursorFreed(this);
  filter_->OnChange = nullptr;
  onFilterRecord_ = nullptr;  // whoever it belongs to may have gone while it was being asked
  // Kept: the owner comes to know the table when a cursor goes, not when it is opened.
  if (TComponent* const owner = owner_.Get()) owner->FreeNotification(table_);
  if (auto* const owner = owner_.As<IRecordOwner>()) owner->CursorClosed(this);
  TPersistent::TearDown();
}

void TVXRAMCursor::ReleaseMemory() {
  table_->WhenIdle([this] { delete this; });
}

TVXRAMIndex* TVXRAMCursor::Get_Index() const { return index_; }

// -- Lists ------------------------------------------------------------------------------------------------------------

TVXList* TVXRAMCursor::SharedList() const {
  return index_ == nullptr ? table_->Get_MainRecordList() : index_->Get_List();
}

TVXList* TVXRAMCursor::Get_InternalRecordList() const { return SharedList(); }

TVXList* TVXRAMCursor::Get_ActiveRecordList() const {
  return Get_IsFiltered() ? filteredList_.get() : Get_InternalRecordList();
}

std::int32_t TVXRAMCursor::Get_RecordCount() const { return Get_ActiveRecordList()->Count(); }

bool TVXRAMCursor::Get_IsFiltered() const { return filter_->Get_Field() != nullptr || onFilterRecord_; }

bool TVXRAMCursor::Get_CanUseIndex(const std::string& fieldName) const {
  return table_->IndexNbByFieldName(fieldName) != -1;
}

// -- Position ---------------------------------------------------------------------------------------------------------

std::int32_t TVXRAMCursor::Get_RecIndex() const {
  return Ascending() ? physicalIndex_ : WrappingSubtract(Get_RecordCount() - 1, physicalIndex_);
}

void TVXRAMCursor::Set_RecIndex(std::int32_t value) {
  physicalIndex_ = Ascending() ? value : WrappingSubtract(Get_RecordCount() - 1, value);
}

bool TVXRAMCursor::Get_EOF() const {
  const std::int32_t count = Get_RecordCount();
  return count == 0 || (Ascending() ? count - 1 <= physicalIndex_ : physicalIndex_ < 1);
}

bool TVXRAMCursor::Get_BOF() const {
  const std::int32_t count = Get_RecordCount();
  return count == 0 || (Ascending() ? physicalIndex_ < 1 : count - 1 <= physicalIndex_);
}

std::int32_t TVXRAMCursor::Get_EffectiveRecordIndex() const {
  if (Get_BOF()) return Ascending() ? 0 : Get_RecordCount() - 1;
  if (Get_EOF()) return Ascending() ? Get_RecordCount() - 1 : 0;
  return physicalIndex_;
}

TVXRAMRow* TVXRAMCursor::Get_CurrentRecord() const {
  const TVXList* const list = Get_ActiveRecordList();
  if (list == nullptr) return nullptr;
  const std::int32_t at = Get_EffectiveRecordIndex();
  return at == -1 ? nullptr : static_cast<TVXRAMRow*>(list->Items(at));
}

TVXRAMRow* TVXRAMCursor::NeedCurrentRecord() const { return &Need(Get_CurrentRecord(), "current record"); }

void TVXRAMCursor::GoToFirstRec() { physicalIndex_ = Ascending() ? -1 : Get_RecordCount(); }

void TVXRAMCursor::GoToLastRec() { physicalIndex_ = Ascending() ? Get_RecordCount() : -1; }

std::int32_t TVXRAMCursor::GoToNextRec() {
  if (Get_EOF()) return kAtEnd;
  physicalIndex_ += Ascending() ? 1 : -1;
  return kDone;
}

std::int32_t TVXRAMCursor::GoToPreviousRec() {
  if (Get_BOF()) return kAtBeginning;
  physicalIndex_ -= Ascending() ? 1 : -1;
  return kDone;
}

// -- Rows by id -------------------------------------------------------------------------------------------------------

std::int32_t TVXRAMCursor::Get_RecordID() const { return table_->InternalGetRecordID(Get_CurrentRecord()); }

void TVXRAMCursor::Set_RecordID(std::int32_t id) {
  if (id != kNoRecordId) SetRecIndexByID(id);
}

std::int32_t TVXRAMCursor::FindById(const TVXList& list, std::int32_t id, const TVXRAMRow* row) {
  constexpr std::int32_t kNear = 4;
  const std::int32_t count = list.Count();
  const auto stands = [&](std::int32_t at) {
    return table_->InternalGetRecordID(static_cast<const TVXRAMRow*>(list.Items(at))) == id;
  };
  // Several rows may have the id, nulls have that of no row: the first one is meant.
  if (!table_->IdsAreUnique() || id == kNoRecordId) return FindNear(count, 0, count, stands);
  if (count == 0 || (id == table_->LastDeletedId() && ListsTableRows())) return -1;
  if (stands(count - 1)) return count - 1;
  const std::int32_t near = FindNear(count, stood_, kNear, stands);
  if (near >= 0) return near;
  const std::int32_t at = SearchById(list, id, row);
  if (at >= 0 && stands(at)) return at;
  static_cast<void>(list.Data());  // closed up, it is walked faster
  return FindNear(count, stood_, count, stands);
}

std::int32_t TVXRAMCursor::SearchById(const TVXList& list, std::int32_t id, const TVXRAMRow* row) {
  const std::int32_t at = SearchId(list, id);
  if (at >= 0) return at;
  const TVXList& rows = *table_->Get_MainRecordList();
  const std::int32_t inMainList = row == nullptr ? SearchId(rows, id) : -1;
  if (inMainList >= 0) row = static_cast<const TVXRAMRow*>(rows.Items(inMainList));
  if (row == nullptr) return -1;
  const std::int32_t inIndex = index_ != nullptr && &list == index_->Get_List() ? index_->SearchKeyOf(row) : -1;
  return inIndex >= 0 ? inIndex : SortOf(list).Search(list, row);
}

TVXRAMKnownSort& TVXRAMCursor::SortOf(const TVXList& list) {
  // The main list is shared: what one cursor's sort left, the next one's finds.
  return &list == table_->Get_MainRecordList() ? table_->mainSort_ : knownSort_;
}

void TVXRAMCursor::GoToRow(std::int32_t id, const TVXRAMRow* row) {
  const TVXList& list = *Get_ActiveRecordList();
  if (physicalIndex_ >= 0 && physicalIndex_ < list.Count()) stood_ = physicalIndex_;
  physicalIndex_ = FindById(list, id, row);
  if (physicalIndex_ >= 0) stood_ = physicalIndex_;
}

void TVXRAMCursor::SetRecIndexByID(std::int32_t id) { GoToRow(id, nullptr); }

std::int32_t TVXRAMCursor::Get_RecIndexById(std::int32_t id) {
  if (id == kNoRecordId) return -1;
  const std::int32_t kept = physicalIndex_;
  SetRecIndexByID(id);
  const std::int32_t answer = Get_RecIndex();
  physicalIndex_ = kept;
  return answer;
}

// -- Fields -----------------------------------------------------------------------------------------------------------

void TVXRAMCursor::GetFieldValue(std::int32_t field, void* buffer, std::int32_t& size, bool& isNull) const {
  const std::int32_t needed = table_->Get_FieldDefs()->Get_Item(field)->Get_ByteSize();
  if (needed > size) {
    size = needed;
    throw ERTEBufferTooSmall("Field buffer too small!");
  }
  const TVXRAMRow* const row = NeedCurrentRecord();
  isNull = InternalGetFieldStatus(row, field) != vxfsAssigned;
  InternalGetFieldValue(row, field, buffer);
}

void TVXRAMCursor::SetFieldValue(std::int32_t field, const void* buffer) {
  const TTableOperation running(*table_);
  TVXRAMRow* const row = NeedCurrentRecord();
  table_->WritableSlot(row, field);  // raises if there is no such field
  const std::int32_t number = table_->IndexNbByFieldNb(field);
  TVXRAMIndex* const index = number == -1 ? nullptr : table_->Get_Indices()->Get_Item(number)->Get_Index();
  if (index != nullptr) index->BeforeWrite(row);
  InternalSetFieldStatus(row, field, vxfsAssigned);
  InternalSetFieldValue(row, field, buffer);
  if (index == nullptr) return;
  index->AfterWrite();
  const std::int32_t id = RowId(row);
  index->ReBuild();
  GoToRow(id, row);
}

void TVXRAMCursor::ClearFieldValue(std::int32_t field) {
  TVXRAMRow* const row = NeedCurrentRecord();
  InternalSetFieldStatus(row, field, vxfsNull);
  InternalClearFieldValue(row, field);
}

bool TVXRAMCursor::FieldValueIsNull(std::int32_t field) const {
  return InternalGetFieldStatus(NeedCurrentRecord(), field) == vxfsNull;
}

Variant TVXRAMCursor::Get_Value(std::int32_t field) const {
  return RowVariant(NeedCurrentRecord(), table_->Get_FieldDefs()->Get_Item(field)->Get_Slot());
}

// -- Adding, editing, deleting ----------------------------------------------------------------------------------------

void TVXRAMCursor::InsertRec() {
  const TTableOperation running(*table_);
  std::int32_t id = kNoRecordId;
  if (As<TVXRAMBaseIndex>(index_) != nullptr) {
    physicalIndex_ = table_->AddRecord(-1, id);
    return;
  }
  // Kept: a cursor without an index has no way in here; data sets add filled rows.
  const TVXRAMUserIndex& index = Need(Cast<TVXRAMUserIndex>(index_), "index of the cursor");
  physicalIndex_ = table_->AddRecord(Need(index.Get_IndexDef(), "index definition").Index(), id);
}

void TVXRAMCursor::InsertRecWithValues(const TVXRecordStruct& record, bool append) {
  const TTableOperation running(*table_);
  std::int32_t number = -2;
  // Kept: the position counts in the active list and is used in the main list; a filtered list is rebuilt anyway.
  std::int32_t position = physicalIndex_;
  if (index_ == nullptr) {
    position = Get_EffectiveRecordIndex();
  } else {
    const TVXRAMUserIndex& index = Need(Cast<TVXRAMUserIndex>(index_), "index of the cursor");
    number = Need(index.Get_IndexDef(), "index definition").Index();
  }
  std::int32_t id = kNoRecordId;
  std::int32_t result = -1;
  const TVXRAMRow* const row = table_->AddFilledRow(record, number, position, id, append, result);
  GoToRow(id, row);
}

void TVXRAMCursor::WriteRow(const TVXRecordStruct& record) {
  TVXRAMRow* row = nullptr;
  // Kept: the number of fields isn't compared here.
  for (std::int32_t i = 0; i < table_->Get_FieldDefs()->Count(); ++i) {
    table_->CheckFieldType(i, record.Field(i));  // before a missing row is missed
    if (row == nullptr) table_->BeforeWrite(row = NeedCurrentRecord());
    table_->StoreField(row, i, record.Field(i));
  }
  if (row != nullptr) table_->AfterWrite();
}

void TVXRAMCursor::UpdateRecWithValues(const TVXRecordStruct& record) {
  const TTableOperation running(*table_);
  updatingRecord_ = true;  // kept: stays set if a field's type doesn't fit
  WriteRow(record);
  updatingRecord_ = false;
  RecordEditionNotification(Get_CurrentRecord());
  const TVXRAMRow* const row = Get_CurrentRecord();
  const std::int32_t id = table_->InternalGetRecordID(row);
  table_->RebuildIndices();
  GoToRow(id, row);
}

void TVXRAMCursor::DeleteRec() {
  const TTableOperation running(*table_);
  if (Get_RecordCount() < 1) throw Exception("Table empty!");
  InternalDeleteRecord(Get_CurrentRecord());
  if (!Ascending()) physicalIndex_ = WrappingSubtract(physicalIndex_, 1);
  const std::int32_t count = Get_RecordCount();
  if (physicalIndex_ < 0)
    physicalIndex_ = 0;
  else if (count <= physicalIndex_)
    physicalIndex_ = count - 1;
}

// -- Order and filter -------------------------------------------------------------------------------------------------

namespace VXRAMTable_CMP {

std::string GetFieldName(const std::string& item) { return item.substr(0, item.find('.')); }

TVXRAMCursorOrder GetFieldSortOrder(const std::string& item) {
  const std::size_t point = item.find('.');
  const bool descends = point != std::string::npos && point + 1 < item.size() && item[point + 1] == 'D';
  return descends ? vxrcoDescending : vxrcoAscending;
}

}  // namespace VXRAMTable_CMP

void TVXRAMCursor::Sort(const std::string& sortSpecification) { SortAfter(nullptr, sortSpecification); }

void TVXRAMCursor::SortAfter(const TVXRAMRow* touched, const std::string& sortSpecification) {
  const TTableOperation running(*table_);
  if (!sortSpecification.empty() || !sortParser_->GetText().empty()) sortParser_->SetText(sortSpecification);
  table_->TakeSortFields(*sortParser_);
  TVXList& rows = *Get_ActiveRecordList();
  if (table_->SortByFields(rows, SortOf(rows), touched)) GoToFirstRec();
}

void TVXRAMCursor::Set_SortedField(const std::string& value) {
  if (value == sortedField_) return;
  const TTableOperation running(*table_);
  sortedField_ = value;
  if (!value.empty()) InternalDoSort();
}

void TVXRAMCursor::SetOnFilterRecord(const TVXRAMCursorRecordFilterProc& value) {
  // Kept: only the code is compared, so that the same method of another object is not taken over.
  if (onFilterRecord_.SameCode(value)) return;
  const TTableOperation running(*table_);
  onFilterRecord_ = value;
  FilterChange(filter_.get());
}

void TVXRAMCursor::FilterChange(TObject*) {
  const TTableOperation running(*table_);
  RebuildFilteredList(*Get_InternalRecordList());
  InternalDoSort();
}

/// How many rows of `source` needn't be looked at again: those that the filtered list was made from, if since then rows
/// were appended at most. A callback is asked for each row each time, and a row that is leaving goes at once.
std::int32_t TVXRAMCursor::AlreadyFiltered(const TVXList& source) const {
  const bool holds = !onFilterRecord_ && table_->leavingRows_.empty() && &source == SharedList() &&
                     &source == filtered_.list && filtered_.source == source.Rewrites() &&
                     filtered_.result == filteredList_->Changes() && filtered_.filter == filter_->changes_ &&
                     filtered_.stamp == table_->Get_ChangeStamp();
  return holds ? filtered_.count : 0;
}

void TVXRAMCursor::RebuildFilteredList(const TVXList& source) {
  const std::int32_t done = AlreadyFiltered(source);
  filtered_ = {};
  if (done == 0 && filteredList_->Count() > 0) filteredList_->Clear();
  if (!Get_IsFiltered()) return;
  const TTableOperation running(*table_);
  table_->CheckNesting();
  knownSort_.Forget();
  // Kept: a value of Null restricts nothing, although the cursor counts as filtered.
  const TVXRAMFieldDef* const field = filter_->Get_Value().IsNull() ? nullptr : filter_->Get_Field();
  const TVXRAMFieldSlot slot = field == nullptr ? TVXRAMFieldSlot() : field->Get_Slot();
  const TVXRAMFilterMatch match(slot, filter_->Get_Value());
  for (std::int32_t i = done; i < source.Count(); ++i) {
    if (i + kRowsAhead < source.Count()) PrefetchRow(static_cast<TVXRAMRow*>(source.Items(i + kRowsAhead)), slot);
    auto* const row = static_cast<TVXRAMRow*>(source.Items(i));
    if (field != nullptr && !match(row)) continue;
    const bool passes = !onFilterRecord_ || onFilterRecord_(row, i);
    if (passes && !TVXRAMRowPool::IsGivenUp(row) && !table_->IsLeaving(row)) filteredList_->Add(row);
  }
  if (&source == SharedList() && !onFilterRecord_ && table_->leavingRows_.empty())
    filtered_ = {&source,           source.Rewrites(),         filteredList_->Changes(),
                 filter_->changes_, table_->Get_ChangeStamp(), source.Count()};
  GoToFirstRec();
}

// -- Bracket ----------------------------------------------------------------------------------------------------------

void TVXRAMCursor::BeginUpdate() {
  if (updateCounter_ == 0) StartUpdating();
  ++updateCounter_;
}

void TVXRAMCursor::EndUpdate() {
  const TTableOperation running(*table_);
  if (updateCounter_ > 0) --updateCounter_;
  if (updateCounter_ == 0) EndUpdating();
}

bool TVXRAMCursor::Get_IsUpdating() const { return updateCounter_ > 0 || table_->Get_IsUpdating(); }

// -- Notifications ----------------------------------------------------------------------------------------------------

IRecordOwner& TVXRAMCursor::RecordOwner() const {
  return *Cast<IRecordOwner>(&Need(owner_.Get(), "owner of the cursor"), "data set");
}

void TVXRAMCursor::RecordDeletionNotification(TVXRAMCursor*, TVXRAMRow* row) {
  const TTableOperation running(*table_);
  const std::int32_t at = Get_IsFiltered() ? table_->Find(*filteredList_, row, physicalIndex_, knownSort_) : -1;
  if (at >= 0) filteredList_->Delete(at);
  RecordOwner().Refresh();
}

void TVXRAMCursor::RecordInsertionNotification(TVXRAMRow* row) {
  const TTableOperation running(*table_);
  RebuildFilteredList(*Get_InternalRecordList());
  InternalDoSort(row);
}

void TVXRAMCursor::RecordEditionNotification(TVXRAMRow*) {}

void TVXRAMCursor::TableClearingNotification() {
  filteredList_->Clear();
  physicalIndex_ = Ascending() ? -1 : Get_RecordCount();
  if (auto* const owner = owner_.As<IRecordOwner>()) owner->TableCleared();
}

void TVXRAMCursor::IndexRebuildingNotification() { RebuildFilteredList(*Get_InternalRecordList()); }

void TVXRAMCursor::TablePackingNotification() { RebuildFilteredList(*Get_InternalRecordList()); }

// -- Rows as such -----------------------------------------------------------------------------------------------------

TVXRAMRow* TVXRAMCursor::InternalAllocRecordBuffer() { return table_->InternalAllocRecordBuffer(); }
void TVXRAMCursor::InternalClearAllFieldValues(TVXRAMRow* row) { table_->InternalClearAllFieldValues(row); }
void TVXRAMCursor::InternalClearFieldValue(TVXRAMRow* row, std::int32_t field) {
  table_->InternalClearFieldValue(row, field);
}
void TVXRAMCursor::InternalDeleteRecord(TVXRAMRow* row) { table_->DeleteRecord(this, row); }
void TVXRAMCursor::InternalFreeRecordBuffer(TVXRAMRow* row) { table_->InternalFreeRecordBuffer(row); }
std::int32_t TVXRAMCursor::InternalInitRecord(TVXRAMRow* row) { return table_->InternalInitRecord(row); }
void TVXRAMCursor::InternalSetFieldStatus(TVXRAMRow* row, std::int32_t field, TVXFieldStatus status) {
  table_->InternalSetFieldStatus(row, field, status);
}
TVXFieldStatus TVXRAMCursor::InternalGetFieldStatus(const TVXRAMRow* row, std::int32_t field) const {
  return table_->InternalGetFieldStatus(row, field);
}
void TVXRAMCursor::InternalSetFieldValue(TVXRAMRow* row, std::int32_t field, const void* buffer) {
  table_->InternalSetFieldValue(row, field, buffer);
}
void TVXRAMCursor::InternalGetFieldValue(const TVXRAMRow* row, std::int32_t field, void* buffer) const {
  table_->InternalGetFieldValue(row, field, buffer);
}
bool TVXRAMCursor::InternalIsRecordMatchFilter(const TVXRAMFilter& filter, const TVXRAMRow* row) const {
  return table_->InternalIsRecordMatchFilter(filter, row);
}
void TVXRAMCursor::InternalSetRecordId(TVXRAMRow* row, std::int32_t id) { table_->InternalSetRecordId(row, id); }

}  // namespace vx
