#include "data/VXMemoryDatasetBucketer_CMP.h"

#include "data/VXMemoryDatasetEditors.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/component/Published.h"

namespace vx {

const TClass& TVXMemoryDatasetBucketer::StaticClass() {
  using T = TVXMemoryDatasetBucketer;
  static const TClass info = TClassBuilder<T>("TVXMemoryDatasetBucketer", TVXMemoryDataset::StaticClass())
                                 .Property("BasedGroupMode", &T::GetBasedGroupMode, &T::SetBasedGroupMode)
                                 .Default(vxgrOneDay)
                                 .Property("BucketedField", &T::GetBucketedField, &T::SetBucketedField)
                                 .Property("BucketFieldDefs", &T::Get_BucketFieldDefs, &T::Set_BucketFieldDefs)
                                 .Property("GroupMode", &T::GetGroupMode, &T::SetGroupMode)
                                 .Default(vxgrOneDay)
                                 .Property("IsDateTime", &T::GetIsDateTime, &T::SetIsDateTime)
                                 .Default(true)
                                 .Property("ShowStartOfGroup", &T::GetShowStartOfGroup, &T::SetShowStartOfGroup)
                                 .Default(true)
                                 .Build();
  return info;
}

TVXMemoryDatasetBucketer::TVXMemoryDatasetBucketer(TComponent* owner)
    : TVXMemoryDataset(owner), bucketFieldDefs_(Make<TVXBucketFieldDefs>(this)) {}

void TVXMemoryDatasetBucketer::TearDown() {
  CloseQuietly();  // while the set is all of this class
  bucketFieldDefs_.reset();
  TVXMemoryDataset::TearDown();
}

// -- Settings ---------------------------------------------------------------------------------------------------------

void TVXMemoryDatasetBucketer::Set_BucketFieldDefs(const TVXBucketFieldDefs* value) {
  Need(bucketFieldDefs_.get(), "bucket field definitions").Assign(value);
}

void TVXMemoryDatasetBucketer::SetBasedGroupMode(TVXGroupMode value) {
  if (basedGroupMode_ == value) return;
  basedGroupMode_ = value;
  if (TVXRAMCursorBucketer* const cursor = Get_CursorBucketer()) cursor->SetBasedGroupMode(value);
}

// The others: a closed set has no cursor, unless a subclass keeps one.

void TVXMemoryDatasetBucketer::SetBucketedField(const std::string& value) {
  if (bucketedField_ == value) return;
  CheckInactive();
  bucketedField_ = value;
  if (TVXRAMCursorBucketer* const cursor = Get_CursorBucketer()) cursor->SetBucketedFields(value);
}

void TVXMemoryDatasetBucketer::SetGroupMode(TVXGroupMode value) {
  if (groupMode_ == value) return;
  CheckInactive();
  groupMode_ = value;
  if (TVXRAMCursorBucketer* const cursor = Get_CursorBucketer()) cursor->SetGroupMode(value);
}

void TVXMemoryDatasetBucketer::SetIsDateTime(bool value) {
  if (isDateTime_ == value) return;
  CheckInactive();
  isDateTime_ = value;
  if (TVXRAMCursorBucketer* const cursor = Get_CursorBucketer()) cursor->SetIsDateTime(value);
}

void TVXMemoryDatasetBucketer::SetShowStartOfGroup(bool value) {
  if (showStartOfGroup_ == value) return;
  CheckInactive();
  showStartOfGroup_ = value;
  if (TVXRAMCursorBucketer* const cursor = Get_CursorBucketer()) cursor->SetBucketByStartOfGroup(value);
}

// -- Opening and closing ----------------------------------------------------------------------------------------------

void TVXMemoryDatasetBucketer::OpenCursor(bool infoQuery) {
  TVXRAMTable* const table = GetRAMTable();
  if (!infoQuery && table != nullptr) {
    DescribeTable();
    TVXRAMCursorBucketerDesc wish(this, GetIndexNumber(), Get_CursorOrder(), GetSortedField(), GetMasterRAMFieldDef(),
                                  GetMasterValue(), bucketFieldDefs_.get(), basedGroupMode_, groupMode_, bucketedField_,
                                  showStartOfGroup_);
    OpenCursorAs(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), wish);
  }
  TVXMemoryDataset::OpenCursor(infoQuery);  // finds the cursor there
}

void TVXMemoryDatasetBucketer::CloseCursor() {
  if (GetCursor() != nullptr) cursorCompanion_.reset();
  TVXMemoryDataset::CloseCursor();
}

/// The cursor keeps its buckets; a bracket builds them anew, from no rows.
void TVXMemoryDatasetBucketer::TableCleared() {
  if (!GetActive() || GetCursor() == nullptr) return;
  const TMemoryKeeper<TComponent> keep(this);
  try {
    BeginUpdate();
    EndUpdate();
  } catch (const std::exception& error) {  // a bucketed field may be gone
    InternalHandleException(error);
  }
  TVXMemoryDataset::TableCleared();
}

// -- Unit -------------------------------------------------------------------------------------------------------------

namespace VXMemoryDatasetBucketer_CMP {

void Register() {
  RegisterComponents("VX Data Access", {&TVXMemoryDatasetBucketer::StaticClass()});
  RegisterPropertyEditor<TVXMemoryDatasetBucketerBucketedFieldNameProperty>(TVXMemoryDatasetBucketer::StaticClass(),
                                                                            "BucketedField");
  RegisterPropertyEditor<TVXBucketFieldDefFieldNameProperty>(TVXBucketFieldDef::StaticClass(), "FieldName");
}

}  // namespace VXMemoryDatasetBucketer_CMP

}  // namespace vx
