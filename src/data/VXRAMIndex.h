// VXRAMIndex.h: lists of rows kept sorted on one field, and their definitions.
//
// A table owns one TVXRAMBaseIndex, on the record id, and for each TVXRAMIndexDef one TVXRAMUserIndex, on a field. An
// index is always ascending, nulls last, text by locale without case. It fills with the rows that are added after its
// definition; rows that were there before are not looked up. A definition that was never given a field lets no rows be
// added; one whose field was freed leaves its rows in the order that they have.
//
// An index is as sorted as its last rebuild left it: Add appends, Remove keeps the order, Insert appends and rebuilds.
// A rebuild sorts all rows; one after a cursor appended or wrote into a single row, where all values differ, only puts
// that row where the sort would: O(log n) and the moving of the pointers in between.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "data/VXRAMFieldDefs.h"
#include "data/VXRAMLists.h"
#include "platform/component/Collection.h"

namespace vx {

class TVXRAMIndexDef;

class TVXRAMIndex : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// `table` must outlive the index.
  explicit TVXRAMIndex(TVXRAMTable* table);

  // -- The field, for subclasses to tell ------------------------------------------------------------------------------
  virtual std::int32_t GetFieldByteSize() const = 0;
  virtual std::int32_t GetFieldOffset() const = 0;
  /// -1 if the field has no status byte.
  virtual std::int32_t GetFieldStatusOffset() const = 0;
  virtual TVXRAMFieldType GetFieldType() const = 0;
  /// Null for the index of a definition that is in no table.
  virtual TVXRAMTable* Table() const { return table_; }

  // -- Rows -----------------------------------------------------------------------------------------------------------
  /// Appends without sorting; answers the position.
  std::int32_t Add(TVXRAMRow* row);
  /// Appends and rebuilds; answers the position at which the row was appended, not where it went then.
  std::int32_t Insert(TVXRAMRow* row);
  void Remove(const TVXRAMRow* row);
  void Clear() { list_->Clear(); }
  void Pack() { list_->Pack(); }
  /// Sorts the whole index, and tells the cursors that are filtered on its field. A field of no known type raises
  /// ERTEInvalidFieldType.
  void ReBuild();
  /// Position of the first row whose value isn't below `key`, a value of the field in row encoding (text: ended by a
  /// zero byte); -2 if all values are below, -1 if the index is empty or of no known type. Integer and Duration fields
  /// answer 0 and count - 1 instead of -1 and -2. Nulls count as what their value bytes hold. Binary search.
  std::int32_t LocateFirst(const void* key);

  // -- Compares of two rows by the field as of the last rebuild: -1, 0 or 1, nulls last -------------------------------
  std::int32_t BooleanSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t DateTimeSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t FloatSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t IntegerSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t SmallintSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t StringSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;
  std::int32_t WordSortCompare(const TVXRAMRow* first, const TVXRAMRow* second) const;

  std::int32_t Get_Capacity() const { return list_->Capacity(); }
  void Set_Capacity(std::int32_t value) { list_->SetCapacity(value); }
  std::int32_t Get_RecCount() const { return list_->Count(); }
  TVXRAMRow* Get_Record(std::int32_t index) const { return static_cast<TVXRAMRow*>(list_->Items(index)); }
  /// The list that cursors on the index walk.
  TVXList* Get_List() const { return list_.get(); }

 private:
  friend class TVXRAMCursor;
  friend class TVXRAMIndexDefs;
  friend class TVXRAMTable;

  /// What is known of the list's order: that of the latest rebuild, as long as nobody wrote into rows or changed the
  /// list but by appending or through this class.
  struct TKnownOrder {
    TVXRAMFieldSlot slot;        // what the rows are sorted by
    std::uint64_t stamp = 0;     // the table's when this was true
    std::uint64_t rewrites = 0;  // the list's
    std::int32_t count = -1;     // how many rows are sorted: the first ones; -1 for no order
    std::optional<bool> differ;  // no two of them compare equal, the stray left out; unset: not looked at
    std::int32_t stray = -1;     // where a row stands that was written into since; -1 for none
  };

  /// The type without its highest bit.
  TVXRAMFieldType KeyType() const;
  TVXRAMFieldSlot TakeSlot();
  bool KnowsOrder() const;
  bool IsSorted() const { return order_.count == Get_RecCount() && order_.stray < 0 && KnowsOrder(); }
  void NoteChange(std::int32_t count);
  /// A row is about to be written into, and nothing else until AfterWrite.
  void BeforeWrite(const TVXRAMRow* row);
  void AfterWrite();
  std::int32_t StrayRow() const;
  bool Place(std::int32_t at);
  bool OthersDiffer(std::int32_t but) const;
  /// Where the row stands, found by its value; -1 says nothing.
  std::int32_t SearchKeyOf(const TVXRAMRow* row) const;
  std::int32_t Find(const TVXRAMRow* row) const;
  std::int32_t CompareAs(TVXRAMFieldType type, const TVXRAMRow* first, const TVXRAMRow* second) const;

  TVXRAMTable* table_;
  TOwned<TVXList> list_;
  std::int32_t fieldOffset_ = 0;
  std::int32_t fieldStatusOffset_ = 0;
  std::int32_t fieldSize_ = 0;
  TKnownOrder order_;
};

/// The rows that AddRecord made, in the order of their making.
class TVXRAMBaseIndex : public TVXRAMIndex {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  using TVXRAMIndex::TVXRAMIndex;

  std::int32_t GetFieldByteSize() const override { return kRecordIdSize; }
  std::int32_t GetFieldOffset() const override { return 0; }
  std::int32_t GetFieldStatusOffset() const override { return -1; }
  TVXRAMFieldType GetFieldType() const override { return vxrftInteger; }
};

class TVXRAMUserIndex : public TVXRAMIndex {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXRAMUserIndex(TVXRAMTable* table, TVXRAMIndexDef* definition) : TVXRAMIndex(table), definition_(definition) {}

  // Each raises ENilAccess while the definition has no field.
  std::int32_t GetFieldByteSize() const override;
  std::int32_t GetFieldOffset() const override;
  std::int32_t GetFieldStatusOffset() const override;
  TVXRAMFieldType GetFieldType() const override;
  TVXRAMTable* Table() const override;

  /// Null once the definition was freed.
  TVXRAMIndexDef* Get_IndexDef() const { return definition_; }

 private:
  friend class TVXRAMIndexDef;
  TVXRAMFieldDef& Field() const;

  TVXRAMIndexDef* definition_;
};

class TVXRAMIndexDef : public TCollectionItem {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMIndexDef(TCollection* collection);

  std::string GetDisplayName() const override;
  void TearDown() override;

  /// Name of the indexed field, empty for none.
  std::string Get_FieldName() const;
  /// The field of the table with this name, letter case included; none raises ERTEFieldDoesNotExist.
  void Set_FieldName(const std::string& value);

  TVXRAMFieldDef* Get_Field() const { return field_.Get(); }
  /// The field was freed.
  bool LostField() const { return field_.IsLost(); }
  TVXRAMUserIndex* Get_Index() const { return index_.get(); }
  TVXRAMTable* Get_Table() const;

 private:
  friend class TVXRAMTable;
  /// Rows have changed. There is nothing to sort by once the field is gone.
  void ReBuildIndex() {
    if (!LostField()) index_->ReBuild();
  }

  TVXRAMFieldRef field_;
  TOwned<TVXRAMUserIndex> index_;
};

class TVXRAMIndexDefs : public TCollection {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMIndexDefs(TVXRAMTable* table);

  /// Takes over the field names of another TVXRAMIndexDefs; anything else raises. ERTENoIndexDefChangesAllowed while
  /// the base index of the table holds rows; so do Add and Set_Item.
  void Assign(const TPersistent* source) override;
  TPersistent* GetOwner() const override;

  TVXRAMIndexDef* Add();
  TVXRAMIndexDef* Get_Item(std::int32_t index) const;
  void Set_Item(std::int32_t index, const TVXRAMIndexDef* value);

  TVXRAMTable* Get_Table() const { return table_; }

 protected:
  void ItemsMoved() override;

 private:
  TVXRAMTable* table_;
};

}  // namespace vx
