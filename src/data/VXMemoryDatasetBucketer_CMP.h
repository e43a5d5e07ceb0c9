// VXMemoryDatasetBucketer_CMP.h: the groups of a table's rows as a data set.
//
// The records are the buckets of a TVXRAMCursorBucketer: one for each group of rows, with the folded values.
//
//   auto weeks = Make<TVXMemoryDatasetBucketer>(nullptr);
//   weeks->SetRAMTable(table);
//   weeks->SetBucketedField("Date;Item");
//   weeks->SetGroupMode(vxgrOneWeek);
//   weeks->Get_BucketFieldDefs()->Add("Quantity", vxbtCumulate);
//   weeks->SetSortedField("Date");
//   weeks->Open();                                   // one record a week and item
//
// To group otherwise: close, set, open. Only BasedGroupMode may change on an open set: it says whether an edit reaches
// the bucket's first source row (where it equals GroupMode) or is folded away again. A posted insertion adds a row to
// the table, which joins its bucket; deleting a record deletes all source rows of the bucket.
//
// Between BeginUpdate() and EndUpdate() no bucket changes; the end builds all of them anew. What the set shows is then
// out of date until the caller refreshes it. When the table is cleared, the set builds and shows its buckets anew.
#pragma once

#include <string>

#include "data/VXMemoryDataset_CMP.h"
#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

class TVXMemoryDatasetBucketer : public TVXMemoryDataset {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXMemoryDatasetBucketer(TComponent* owner);
  void TearDown() override;

  // -- Published; all but BasedGroupMode need a closed set ------------------------------------------------------------
  TVXGroupMode GetBasedGroupMode() const { return basedGroupMode_; }
  void SetBasedGroupMode(TVXGroupMode value);
  const std::string& GetBucketedField() const { return bucketedField_; }
  /// Field names separated by ";". Empty: all rows are one group.
  void SetBucketedField(const std::string& value);
  /// How fields are folded; the cursor takes a copy when the set opens.
  TVXBucketFieldDefs* Get_BucketFieldDefs() const { return bucketFieldDefs_.get(); }
  void Set_BucketFieldDefs(const TVXBucketFieldDefs* value);
  TVXGroupMode GetGroupMode() const { return groupMode_; }
  void SetGroupMode(TVXGroupMode value);
  /// Kept: never comes to the cursor, and nothing would depend on it there.
  bool GetIsDateTime() const { return isDateTime_; }
  void SetIsDateTime(bool value);
  /// A bucket shows the first day of its group, else the last.
  bool GetShowStartOfGroup() const { return showStartOfGroup_; }
  void SetShowStartOfGroup(bool value);

  void SetDatasource(TDataSource* source) { SetDataSource(source); }
  /// Null if there is none. EInvalidCast for a cursor of another class.
  TVXRAMCursorBucketer* Get_CursorBucketer() const { return Cast<TVXRAMCursorBucketer>(GetCursor()); }
  void TableCleared() override;

 protected:
  void OpenCursor(bool infoQuery) override;
  void CloseCursor() override;

 private:
  TVXGroupMode basedGroupMode_ = vxgrOneDay;
  TVXGroupMode groupMode_ = vxgrOneDay;
  std::string bucketedField_;
  bool isDateTime_ = true;
  bool showStartOfGroup_ = true;
  TOwned<TVXBucketFieldDefs> bucketFieldDefs_;
  TOwned<TObject> cursorCompanion_;  // kept: would go with the cursor, but nothing ever puts one here
};

namespace VXMemoryDatasetBucketer_CMP {
/// Puts the data set on the palette page "VX Data Access", and registers the editors of its properties.
void Register();
}  // namespace VXMemoryDatasetBucketer_CMP

}  // namespace vx
