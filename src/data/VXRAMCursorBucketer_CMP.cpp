#include "data/VXRAMCursorBucketer_CMP.h"

#include <utility>

#include "data/VXRAMBucketFold.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/component/Published.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {

// -- TVXBucketFieldDef(s) ---------------------------------------------------------------------------------------------

const TClass& TVXBucketFieldDef::StaticClass() {
  static const TClass info =
      TClassBuilder<TVXBucketFieldDef>("TVXBucketFieldDef", TCollectionItem::StaticClass())
          .Property("BucketType", &TVXBucketFieldDef::Get_BucketType, &TVXBucketFieldDef::Set_BucketType)
          .Default(vxbtCumulate)
          .Property("FieldName", &TVXBucketFieldDef::Get_FieldName, &TVXBucketFieldDef::Set_FieldName)
          .Build();
  return info;
}

std::string TVXBucketFieldDef::GetDisplayName() const {
  return fieldName_.empty() ? "BucketFieldDef" + std::to_string(Index() + 1) : fieldName_;
}

const TClass& TVXBucketFieldDefs::StaticClass() {
  static const TClass info("TVXBucketFieldDefs", &TCollection::StaticClass());
  return info;
}

TVXBucketFieldDefs::TVXBucketFieldDefs(TPersistent* owner)
    : TCollection(TClassOf<TCollectionItem>::Of<TVXBucketFieldDef>()), owner_(owner) {}

TVXBucketFieldDef* TVXBucketFieldDefs::Add(const std::string& fieldName, TVXBucketType type) {
  auto* const def = static_cast<TVXBucketFieldDef*>(TCollection::Add());
  def->Set_FieldName(fieldName);
  def->Set_BucketType(type);
  return def;
}

void TVXBucketFieldDefs::Assign(const TPersistent* source) {
  const auto* const defs = As<TVXBucketFieldDefs>(source);
  if (defs == nullptr || defs == this) return;
  Clear();
  for (std::int32_t i = 0; i < defs->Count(); ++i) {
    const TVXBucketFieldDef& def = *defs->Get_BucketFieldDef(i);
    Add(def.Get_FieldName(), def.Get_BucketType());
  }
}

TVXBucketFieldDef* TVXBucketFieldDefs::Get_BucketByName(const std::string& name) const {
  const std::string wanted = AnsiUpperCase(name);
  for (std::int32_t i = 0; i < Count(); ++i)
    if (AnsiUpperCase(Get_BucketFieldDef(i)->Get_FieldName()) == wanted) return Get_BucketFieldDef(i);
  return nullptr;
}

TVXBucketFieldDef* TVXBucketFieldDefs::Get_BucketFieldDef(std::int32_t index) const {
  return static_cast<TVXBucketFieldDef*>(Items(index));
}

// -- TVXRAMCursorBucketerDesc -----------------------------------------------------------------------------------------

const TClass& TVXRAMCursorBucketerDesc::StaticClass() {
  static const TClass info("TVXRAMCursorBucketerDesc", &TVXRAMCursorDesc::StaticClass());
  return info;
}

TVXRAMCursorBucketerDesc::TVXRAMCursorBucketerDesc(TComponent* owner, std::int32_t indexNumber, TVXRAMCursorOrder order,
                                                   std::string sortedField, TVXRAMFieldDef* filterField,
                                                   Variant filterValue, TVXBucketFieldDefs* bucketFieldDefs,
                                                   TVXGroupMode basedGroupMode, TVXGroupMode groupMode,
                                                   std::string bucketedFields, bool bucketByStartOfGroup)
    : TVXRAMCursorDesc(owner, indexNumber, order, std::move(sortedField), filterField, std::move(filterValue)),
      BucketFieldDefs(bucketFieldDefs),
      BasedGroupMode(basedGroupMode),
      GroupMode(groupMode),
      BucketedFields(std::move(bucketedFields)),
      BucketByStartOfGroup(bucketByStartOfGroup) {}

// -- TVXRAMCursorBucketer: life ---------------------------------------------------------------------------------------

const TClass& TVXRAMCursorBucketer::StaticClass() {
  static const TClass info("TVXRAMCursorBucketer", &TVXRAMCursor::StaticClass());
  return info;
}

TVXRAMCursorBucketer::TVXRAMCursorBucketer(TVXRAMTable* table, TVXRAMIndexDef* indexDef, TVXRAMCursorDesc* desc)
    : TVXRAMCursor(table, indexDef, desc),
      parser_(Make<TVXStringParser>(";", "")),
      bucketFieldDefs_(Make<TVXBucketFieldDefs>(this)),
      bucketList_(Make<TVXRAMBucketList>(this)) {}

void TVXRAMCursorBucketer::AfterConstruction() {
  const TTableOperation running(Table());
  const auto& desc = *Cast<TVXRAMCursorBucketerDesc>(Desc());
  SetBucketFieldDefs(desc.BucketFieldDefs);
  SetBasedGroupMode(desc.BasedGroupMode);
  SetGroupMode(desc.GroupMode);
  SetBucketedFields(desc.BucketedFields);
  SetBucketByStartOfGroup(desc.BucketByStartOfGroup);
  TVXRAMCursor::AfterConstruction();
  // Kept: after building, the cursor goes to first position only if it is filtered or sorted.
  BuildAllBuckets();
  RebuildFilteredList(*bucketList_->Get_BucketRecords());
  InternalDoSort();
}

void TVXRAMCursorBucketer::TearDown() {
  ClearRecordList();
  TVXRAMCursor::TearDown();
}

// -- What is shown ----------------------------------------------------------------------------------------------------

TVXList* TVXRAMCursorBucketer::Get_ActiveRecordList() const {
  return Get_IsFiltered() ? &FilteredList() : bucketList_->Get_BucketRecords();
}

TVXRAMRow* TVXRAMCursorBucketer::Get_CurrentRecord() const {
  TVXRAMRow* const row = TVXRAMCursor::Get_CurrentRecord();
  if (!Get_IsUpdatingRecord() || groupMode_ != basedGroupMode_) return row;
  const TVXRAMBucketInfo* const bucket = FindBucketInfoByBucketRecord(row);
  return bucket == nullptr ? row : static_cast<TVXRAMRow*>(bucket->Get_Records()->Items(0));
}

void TVXRAMCursorBucketer::FilterChange(TObject*) {
  const TTableOperation running(Table());
  RebuildFilteredList(*bucketList_->Get_BucketRecords());
  InternalDoSort();
}

void TVXRAMCursorBucketer::EndUpdating() {
  const TTableOperation running(Table());
  BuildAllBuckets();
  RebuildFilteredList(*bucketList_->Get_BucketRecords());
  InternalDoSort();
}

// -- Buckets ----------------------------------------------------------------------------------------------------------

void TVXRAMCursorBucketer::ClearRecordList() {
  const TTableOperation running(Table());
  nextBucketId_ = 0;
  bucketList_->FreeBuckets();
  FilteredList().Clear();  // its rows are going
  Table().ReleaseHeldRows();
}

void TVXRAMCursorBucketer::BuildAllBuckets() {
  const TTableOperation running(Table());
  // Kept: the source isn't filtered; the filter of this cursor is for its virtual rows.
  const TVXList& source = *Get_InternalRecordList();
  ClearRecordList();
  bucketList_->Build(source, !Get_IsUpdating());
}

TVXRAMRow* TVXRAMCursorBucketer::MakeBucketRecord() {
  std::int32_t id = kNoRecordId;
  TVXRAMRow* const row = Table().NewRow(id);  // kept: takes an id of the table, which is then overwritten
  id = GenerateUniqueID();
  std::memcpy(RowBytes(row), &id, sizeof id);
  return row;
}

TVXRAMBucketInfo* TVXRAMCursorBucketer::FindBucketInfoByRecordPointer(const TVXRAMRow* row) const {
  return bucketList_->FindByRecord(row);
}

TVXRAMBucketInfo* TVXRAMCursorBucketer::FindBucketInfoByBucketRecord(const TVXRAMRow* row) const {
  const auto at = bucketList_->byBucketRecord_.find(row);
  return at == bucketList_->byBucketRecord_.end() ? nullptr : at->second;
}

bool TVXRAMCursorBucketer::NamesRow(const TVXRAMRow* row) const {
  return FindBucketInfoByRecordPointer(row) != nullptr;
}

TDateTime TVXRAMCursorBucketer::BucketDate(TDateTime date) const {
  return bucketByStartOfGroup_ ? GetGroupDate(groupMode_, date) : GetNextGroupDate(groupMode_, date) - 1.0;
}

void TVXRAMCursorBucketer::CalcBucketedFieldValue(const TVXRAMRow* row, std::string& key) const {
  for (std::int32_t i = 0; i < Get_BucketedFieldCount(); ++i)
    if (const TVXRAMFieldDef* const field = Get_BucketedRAMFieldDef(i)) AppendKeyText(row, field->Get_Slot(), key);
}

void TVXRAMCursorBucketer::AppendKeyText(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, std::string& key) const {
  switch (slot.type) {
    case vxrftBoolean:
      key += std::to_string(RowValue<std::uint8_t>(row, slot));
      break;
    case vxrftCurrency:
    case vxrftFloat:
      key += FloatToStr(RowValue<double>(row, slot));
      break;
    case vxrftDateTime:
      key += SysDateToStr(BucketDate(RowValue<double>(row, slot)));
      break;
    case vxrftDuration:
    case vxrftInteger:
      key += std::to_string(RowValue<std::int32_t>(row, slot));
      break;
    case vxrftSmallint:
      key += std::to_string(RowValue<std::int16_t>(row, slot));
      break;
    case vxrftString:
      key += RowText(row, slot);
      break;
    case vxrftWord:
      key += std::to_string(RowValue<std::uint16_t>(row, slot));
      break;
  }
}

// -- Notifications ----------------------------------------------------------------------------------------------------

void TVXRAMCursorBucketer::RecordInsertionNotification(TVXRAMRow* row) {
  if (Get_IsUpdating() || TVXRAMRowPool::IsGivenUp(row)) return;  // whoever was told before may have deleted it again
  const TTableOperation running(Table());
  TVXRAMKnownSort known = std::exchange(KnownSort(), {});
  const TVXRAMBucketInfo& bucket = bucketList_->Insert(row, true);
  KnownSort() = std::move(known);
  InternalDoSort(bucket.Get_BucketRecord());  // kept: the filtered list isn't rebuilt here
}

void TVXRAMCursorBucketer::RecordEditionNotification(TVXRAMRow* row) {
  if (TVXRAMBucketInfo* const bucket = FindBucketInfoByBucketRecord(row)) bucket->UpdateBucketValues();
}

void TVXRAMCursorBucketer::RecordDeletionNotification(TVXRAMCursor* origin, TVXRAMRow* row) {
  const TTableOperation running(Table());
  TVXRAMCursor::RecordDeletionNotification(origin, row);
  if (FindBucketInfoByBucketRecord(row) != nullptr)
    DeleteSourceRows(row);
  else if (origin != this)
    if (TVXRAMBucketInfo* const bucket = FindBucketInfoByRecordPointer(row)) LoseSourceRow(*bucket, row);
}

void TVXRAMCursorBucketer::DeleteSourceRows(TVXRAMRow* bucketRecord) {
  for (std::int32_t i = 0;; ++i) {
    // Looked up anew each time: whoever is told of a deletion may have rebuilt the buckets.
    const TVXRAMBucketInfo* const bucket = FindBucketInfoByBucketRecord(bucketRecord);
    if (bucket == nullptr || i >= bucket->Get_RecordCount()) return;
    InternalDeleteRecord(static_cast<TVXRAMRow*>(bucket->Get_Records()->Items(i)));
  }
}

void TVXRAMCursorBucketer::LoseSourceRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row) {
  bucketList_->DropRow(bucket, row);
  // Kept: a bucket that keeps other rows keeps its values too.
  if (bucket.Get_RecordCount() > 0) return;
  TVXRAMRow* const bucketRecord = bucket.Get_BucketRecord();
  InternalDeleteRecord(bucketRecord);
  if (TVXRAMBucketInfo* const empty = FindBucketInfoByBucketRecord(bucketRecord)) empty->Free();
}

void TVXRAMCursorBucketer::DeleteRec() {
  const TTableOperation running(Table());
  TVXRAMRow* const row = Get_CurrentRecord();
  if (FindBucketInfoByBucketRecord(row) == nullptr) return TVXRAMCursor::DeleteRec();
  InternalDeleteRecord(row);
  // Kept: the physical index stays where it is.
  if (TVXRAMBucketInfo* const bucket = FindBucketInfoByBucketRecord(row)) bucket->Free();
}

// -- Settings ---------------------------------------------------------------------------------------------------------

void TVXRAMCursorBucketer::SetBucketedFields(const std::string& value) {
  bucketedFields_ = value;
  parser_->SetText(value);
}

std::int32_t TVXRAMCursorBucketer::Get_BucketedFieldCount() const {
  return bucketedFields_.empty() ? 0 : parser_->GetCount();
}

TVXRAMFieldDef* TVXRAMCursorBucketer::Get_BucketedRAMFieldDef(std::int32_t index) const {
  const std::int32_t field = Table().FieldNbByName(parser_->GetItemByIndex(index));
  return field == -1 ? nullptr : Table().Get_FieldDefs()->Get_Item(field);
}

TVXRAMFieldDef* TVXRAMCursorBucketer::Get_BucketedDateFieldDef() const {
  for (std::int32_t i = 0; i < Get_BucketedFieldCount(); ++i) {
    TVXRAMFieldDef* const field = Get_BucketedRAMFieldDef(i);
    if (field == nullptr) throw ENilAccess("bucketed field '" + parser_->GetItemByIndex(i) + "'");
    if (field->Get_DataType() == vxrftDateTime) return field;
  }
  return nullptr;
}

bool TVXRAMCursorBucketer::IsBucketedField(const std::string& name) const {
  for (std::int32_t i = 0; i < Get_BucketedFieldCount(); ++i)
    if (parser_->GetItemByIndex(i) == name) return true;
  return false;
}

}  // namespace vx
