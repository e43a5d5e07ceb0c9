// VXRAMCursorBucketer_CMP.h: a cursor over groups of rows.
//
// A bucketer shows one computed row for each group of source rows whose bucketed fields read the same: a date field by
// day, week, month, year or century, other fields as they are. A bucket's row has the layout of a table's row; its
// fields are folded from the rows of the group (sum, average, least, greatest, first, last) or show the group's last
// row. Buckets stand in the order in which their keys first appear in the source, until a sort orders them; a period
// without rows has none.
//
//   auto folds = Make<TVXBucketFieldDefs>(nullptr);
//   folds->Add("Quantity", vxbtCumulate);
//   TVXRAMCursorBucketerDesc wish(owner, -1, vxrcoAscending, "Date", nullptr, Variant(), folds.get(), vxgrOneDay, vxgrOneWeek,
//                                 "Date;Item", /*bucketByStartOfGroup=*/true);
//   table->OpenCursor(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), &wish, cursor);
//
// In step with the table. An insertion joins its bucket, which is computed anew. A deletion through another cursor
// leaves the values of a bucket that keeps other rows, an edit through another cursor leaves them too, and no edit
// moves a row to another bucket. For bulk changes a bracket (BeginUpdate, EndUpdate) skips all that and rebuilds once
// at its end; so does reopening, which is what clearing the table asks for.
//
// The key. It is the texts of the bucketed fields one after the other, without a separator: (1, 12) and (11, 2) share a
// bucket. Nulls count as their zero bytes. Dates are printed with the locale's formats, so that two groups need two
// texts.
//
// Editing. Where the bucketer shows the grouping in which the rows were made (GroupMode = BasedGroupMode), an edit of a
// bucket goes to its first source row. Deleting a bucket deletes its source rows from the table.
//
// Cost: building O(rows), each row being read once; an insertion folds its row into what its bucket has, or computes
// the bucket anew where something was written meanwhile (the table's change stamp tells); finding the bucket of a row
// or a key O(1).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "data/VXRAMTable_CMP.h"
#include "datetime/VXDateGroup_UNT.h"
#include "platform/component/Collection.h"
#include "platform/runtime/DateTime.h"

namespace vx {

class TVXRAMBucketFold;
class TVXRAMBucketList;
class TVXRAMCursorBucketer;

/// How a field's value is folded from the rows of a bucket. Currency, Float, Duration and Integer fields fold; others
/// show the last row. Null rows count with zero.
enum TVXBucketType : std::uint8_t {
  vxbtCumulate,  ///< sum; 32-bit sums wrap
  vxbtAverage,   ///< sum by number of rows, null rows included; truncated for integers
  vxbtMinValue,
  vxbtMaxValue,
  vxbtFirstBucket,  ///< value of the row with the earliest date; the later row on equal dates
  vxbtLastBucket,   ///< value of the row with the latest date; the later row on equal dates
};

template <>
struct TEnumInfo<TVXBucketType> {
  static constexpr std::string_view kTypeName = "TVXBucketType";
  static constexpr std::string_view kPrefix = "vxbt";
  static constexpr std::string_view kNames[] = {"vxbtCumulate", "vxbtAverage",     "vxbtMinValue",
                                                "vxbtMaxValue", "vxbtFirstBucket", "vxbtLastBucket"};
};

class TVXBucketFieldDef : public TCollectionItem {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  using TCollectionItem::TCollectionItem;

  /// The field name, or "BucketFieldDef" and the number counted from 1.
  std::string GetDisplayName() const override;

  TVXBucketType Get_BucketType() const { return bucketType_; }
  void Set_BucketType(TVXBucketType value) { bucketType_ = value; }
  const std::string& Get_FieldName() const { return fieldName_; }
  void Set_FieldName(const std::string& value) { fieldName_ = value; }

 private:
  TVXBucketType bucketType_ = vxbtCumulate;
  std::string fieldName_;
};

class TVXBucketFieldDefs : public TCollection {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXBucketFieldDefs(TPersistent* owner);

  TVXBucketFieldDef* Add(const std::string& fieldName, TVXBucketType type);
  /// Takes over another TVXBucketFieldDefs; any other source is ignored.
  void Assign(const TPersistent* source) override;
  TPersistent* GetOwner() const override { return owner_; }

  /// The first definition of the field, names compared after upper-casing; null if there is none.
  TVXBucketFieldDef* Get_BucketByName(const std::string& name) const;
  TVXBucketFieldDef* Get_BucketFieldDef(std::int32_t index) const;
  /// Kept: does nothing.
  void Set_BucketFieldDef(std::int32_t, const TVXBucketFieldDef*) {}

 private:
  TPersistent* owner_;
};

/// How far the row of a bucket is computed, so that one more source row needn't fold all others again.
struct TVXRAMBucketState {
  std::int32_t rows = 0;     ///< source rows that are folded in
  bool allAssigned = false;  ///< every field of the bucket's row is assigned
  TDateTime firstDate = 0;   ///< of the rows that first and last show, 0 for none; one pair for all fields
  TDateTime lastDate = 0;
  std::vector<double> sums;      ///< of the averaged fields, in definition order
  std::uint64_t stamp = 0;       ///< the table's change stamp when the row was computed
  std::uint64_t changes = 0;     ///< of the list of source rows, then
  std::uint32_t generation = 0;  ///< of the rules by which it was computed
};

/// One group: its key, its computed row, its source rows.
class TVXRAMBucketInfo : public TCollectionItem {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMBucketInfo(TCollection* collection);
  void TearDown() override;

  /// Folds the source rows anew. A field's status stays assigned once any row gave it a value. Raises ENilAccess if a
  /// bucketed name before the first date field is no field's.
  void UpdateBucketValues();
  /// The bucket date field's value in a source row, 0 if there is no such field.
  TDateTime GetCurrentRecordDate(const TVXRAMRow* row) const;

  const std::string& Get_Key() const { return key_; }
  TVXRAMBucketList* Get_List() const;
  TVXRAMRow* Get_BucketRecord() const { return bucketRecord_; }
  /// The source rows, in the order of their insertion.
  TVXList* Get_Records() const { return records_.get(); }
  std::int32_t Get_RecordCount() const { return records_->Count(); }

 private:
  friend class TVXRAMBucketBuilder;
  friend class TVXRAMBucketFold;
  friend class TVXRAMBucketList;

  const TVXRAMCursorBucketer& Cursor() const;

  std::string key_;
  TVXRAMBucketState state_;
  std::uint64_t mapped_ = 0;  // changes of the source rows, as far as the list's map of rows knows them
  TVXRAMRow* bucketRecord_ = nullptr;
  TOwned<TVXList> records_;
};

class TVXRAMBucketList : public TCollection {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMBucketList(TVXRAMCursorBucketer* cursor);
  ~TVXRAMBucketList() override;

  /// The bucket of that key, a new one at the end if there is none.
  TVXRAMBucketInfo* Add(const std::string& key);
  /// Exact compare; null if there is none.
  TVXRAMBucketInfo* GetBucketByID(const std::string& key) const;
  /// Puts a source row into its bucket, which is computed anew if `update` is set and the cursor is in no bracket.
  void InsertRecord(TVXRAMRow* row, bool update);
  /// Takes a source row from its bucket, which is computed anew.
  void DeleteRecord(TVXRAMRow* row);
  /// InsertRecord for every row, without computing the buckets, and, if `compute` is set, UpdateAllBuckets; for an
  /// empty list in one walk over the rows.
  void Build(const TVXList& rows, bool compute);
  void UpdateAllBuckets();
  /// Frees every bucket with its row.
  void FreeBuckets();

  TVXRAMBucketInfo* Get_Bucket(std::int32_t index) const { return static_cast<TVXRAMBucketInfo*>(Items(index)); }
  TVXRAMCursorBucketer* Get_Cursor() const { return cursor_; }
  /// All virtual rows, in the order of their creation until a sort.
  TVXList* Get_BucketRecords() const { return bucketRecords_.get(); }

 protected:
  void ItemsMoved() override;

 private:
  friend class TVXRAMBucketInfo;
  friend class TVXRAMCursorBucketer;

  using TBucketsByKey = std::unordered_map<std::string, TVXRAMBucketInfo*>;

  TVXRAMBucketInfo* MakeBucket(TBucketsByKey::iterator at);
  void BucketFreed(TVXRAMBucketInfo& bucket);
  TVXRAMBucketInfo& Insert(TVXRAMRow* row, bool update);
  void BuildPlainly(const TVXList& rows, bool compute);
  bool IsMapped(const TVXRAMBucketInfo& bucket) const;
  void MapRecords();
  void ForgetRecords();
  TVXRAMBucketInfo& TakeRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row);
  void DropRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row);
  TVXRAMBucketInfo* FindByRecord(const TVXRAMRow* row);
  TVXRAMBucketInfo* WalkForRecord(const TVXRAMRow* row) const;
  /// By the present settings and definitions.
  const TVXRAMBucketFold& Fold();
  void Compute(TVXRAMBucketInfo& bucket);
  void MarkComputed(TVXRAMBucketInfo& bucket) const;
  bool IsComputed(const TVXRAMBucketInfo& bucket) const;

  TVXRAMCursorBucketer* cursor_;
  std::unique_ptr<TVXRAMBucketFold> fold_;
  std::uint32_t generation_ = 0;  // of fold_
  TOwned<TVXList> bucketRecords_;
  TBucketsByKey byKey_;
  std::unordered_map<const TVXRAMRow*, TVXRAMBucketInfo*> byBucketRecord_;
  std::unordered_map<const TVXRAMRow*, TVXRAMBucketInfo*> byRecord_;  // made when it is first asked for
  bool recordsAreMapped_ = false;
  bool recordsRepeat_ = false;  // a row was inserted twice: only a walk tells the first bucket
  std::int32_t strays_ = 0;     // items that byBucketRecord_ doesn't know: made by hand, moved here, not yet whole
};

/// What the opener of a bucketer wishes, beyond what he wishes of any cursor.
class TVXRAMCursorBucketerDesc : public TVXRAMCursorDesc {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXRAMCursorBucketerDesc(TComponent* owner, std::int32_t indexNumber, TVXRAMCursorOrder order,
                           std::string sortedField, TVXRAMFieldDef* filterField, Variant filterValue,
                           TVXBucketFieldDefs* bucketFieldDefs, TVXGroupMode basedGroupMode, TVXGroupMode groupMode,
                           std::string bucketedFields, bool bucketByStartOfGroup);

  TVXBucketFieldDefs* BucketFieldDefs;  ///< copied by the bucketer; null for none
  TVXGroupMode BasedGroupMode;
  TVXGroupMode GroupMode;
  std::string BucketedFields;  ///< field names separated by ";"
  bool BucketByStartOfGroup;   ///< a bucket shows the first day of its group, else the last
};

class TVXRAMCursorBucketer : public TVXRAMCursor {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- Replaced, in the base's slot order -----------------------------------------------------------------------------
  bool Get_CanUseIndex(const std::string&) const override { return false; }
  void FilterChange(TObject* sender) override;
  /// The filtered list, else the virtual rows.
  TVXList* Get_ActiveRecordList() const override;
  /// While an edit is under way in the grouping that the rows were made in: the first source row of the current bucket.
  TVXRAMRow* Get_CurrentRecord() const override;
  void EndUpdating() override;
  void RecordDeletionNotification(TVXRAMCursor* origin, TVXRAMRow* row) override;
  void RecordInsertionNotification(TVXRAMRow* row) override;
  void RecordEditionNotification(TVXRAMRow* row) override;
  void StartUpdating() override {}

  /// `desc` must be a TVXRAMCursorBucketerDesc.
  TVXRAMCursorBucketer(TVXRAMTable* table, TVXRAMIndexDef* indexDef, TVXRAMCursorDesc* desc);
  void AfterConstruction() override;
  void TearDown() override;

  /// Deletes the current bucket and its source rows. The physical index isn't corrected.
  void DeleteRec() override;

  // -- Buckets --------------------------------------------------------------------------------------------------------
  /// Builds all buckets from the internal list, whose rows are not filtered; computes them unless in a bracket.
  void BuildAllBuckets();
  /// Frees all buckets; the ids of virtual rows start at 0 again.
  void ClearRecordList();
  TVXRAMBucketList* Get_BucketList() const { return bucketList_.get(); }
  /// The first bucket that holds the source row; null if none does.
  TVXRAMBucketInfo* FindBucketInfoByRecordPointer(const TVXRAMRow* row) const;
  /// The bucket whose virtual row this is; null if it is none.
  TVXRAMBucketInfo* FindBucketInfoByBucketRecord(const TVXRAMRow* row) const;
  /// Appends the texts of the row's bucketed fields to `key`. Names that are no field's add nothing.
  void CalcBucketedFieldValue(const TVXRAMRow* row, std::string& key) const;
  /// The date that a bucket shows for a source date: start or last day of its group.
  TDateTime BucketDate(TDateTime date) const;
  std::int32_t GenerateUniqueID() { return CountOn(nextBucketId_); }

  // -- Settings: stored alone; the next build honours them ------------------------------------------------------------
  std::int32_t Get_BucketedFieldCount() const;
  /// By name without case; null if there is no such field.
  TVXRAMFieldDef* Get_BucketedRAMFieldDef(std::int32_t index) const;
  /// The first bucketed date field; null if there is none. A name before it that is no field's raises ENilAccess.
  TVXRAMFieldDef* Get_BucketedDateFieldDef() const;
  /// Exact compare, letter case included.
  bool IsBucketedField(const std::string& name) const;

  const std::string& Get_BucketedFields() const { return bucketedFields_; }
  void SetBucketedFields(const std::string& value);
  TVXGroupMode Get_GroupMode() const { return groupMode_; }
  void SetGroupMode(TVXGroupMode value) { groupMode_ = value; }
  TVXGroupMode Get_BasedGroupMode() const { return basedGroupMode_; }
  void SetBasedGroupMode(TVXGroupMode value) { basedGroupMode_ = value; }
  bool Get_BucketByStartOfGroup() const { return bucketByStartOfGroup_; }
  void SetBucketByStartOfGroup(bool value) { bucketByStartOfGroup_ = value; }
  TVXBucketFieldDefs* Get_BucketFieldDefs() const { return bucketFieldDefs_.get(); }
  void SetBucketFieldDefs(const TVXBucketFieldDefs* value) { bucketFieldDefs_->Assign(value); }
  /// Written by data sets, read by nothing.
  bool Get_IsDateTime() const { return isDateTime_; }
  void SetIsDateTime(bool value) { isDateTime_ = value; }

  bool ListsTableRows() const override { return false; }
  bool NamesRow(const TVXRAMRow* row) const override;

 private:
  friend class TVXRAMBucketInfo;
  friend class TVXRAMBucketList;

  /// A row for a new bucket, with the next id of this cursor; one id of the table is used up by it.
  TVXRAMRow* MakeBucketRecord();
  void AppendKeyText(const TVXRAMRow* row, const TVXRAMFieldSlot& slot, std::string& key) const;
  void DeleteSourceRows(TVXRAMRow* bucketRecord);
  void LoseSourceRow(TVXRAMBucketInfo& bucket, TVXRAMRow* row);

  std::string bucketedFields_;
  TOwned<TVXStringParser> parser_;
  TOwned<TVXBucketFieldDefs> bucketFieldDefs_;
  TOwned<TVXRAMBucketList> bucketList_;
  TVXGroupMode basedGroupMode_ = vxgrOneDay;
  TVXGroupMode groupMode_ = vxgrOneDay;
  bool bucketByStartOfGroup_ = true;
  bool isDateTime_ = false;
  std::int32_t nextBucketId_ = 0;
};

}  // namespace vx
