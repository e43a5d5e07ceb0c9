// VXRAMCursor.h: the only way to the rows of a table.
//
// A cursor is one view: its own position, order, sort specification and filter, over a list of rows that it shares with
// the other cursors of the table unless it is filtered. The table owns its open cursors and tells all of them of
// insertions, deletions, clearing and index rebuilds, in the order in which they were opened.
//
//   TVXRAMCursorDesc wish(owner, /*indexNumber=*/-1, vxrcoAscending, "Start.D;Name", nullptr, Variant());
//   TVXRAMCursor* cursor = nullptr;
//   table->OpenCursor(nullptr, &wish, cursor);
//   for (cursor->GoToFirstRec(); cursor->GoToNextRec() == kDone;) Show(cursor->Get_RecordID());
//   table->CloseCursor(cursor);
//
// Positions. The physical index is a position in the active list, from -1 (before the first row) to the count (behind
// the last). The record index is the same counted in walking order. Both are true for the moment only; the record id
// names a row for good.
//
// Errors. A row that isn't there: an empty list raises the list's range error when ascending, ENilAccess when
// descending. A field position outside the definitions raises the range error of the collection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "data/VXRAMFieldDefs.h"
#include "data/VXRAMKnownSort.h"
#include "data/VXRAMLists.h"
#include "platform/component/Component.h"
#include "platform/component/Event.h"
#include "platform/runtime/Variant.h"

namespace vx {

class TVXRAMCursor;
class TVXRAMIndex;
class TVXRAMIndexDef;

/// Answers of the walking operations.
inline constexpr std::int32_t kDone = 0;
inline constexpr std::int32_t kAtBeginning = -1;
inline constexpr std::int32_t kAtEnd = -2;

/// Who owns a cursor: a component that wants to hear of every deletion, with the row still readable, by Refresh().
/// Data sets are.
class IRecordOwner {
 public:
  virtual void Refresh() = 0;
  /// The table was cleared: none of its rows is there any more. Must not raise.
  virtual void TableCleared() {}
  /// A cursor of this owner is going, whoever frees it: nobody must touch it any more. Must not raise.
  virtual void CursorClosed(TVXRAMCursor* cursor) { static_cast<void>(cursor); }

 protected:
  ~IRecordOwner() = default;
};

/// A field and the value that it must have.
class TVXRAMFilter : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TNotifyEvent OnChange;  ///< told after each change, with the filter as sender

  /// Sets both, with one notification.
  void SetFilter(TVXRAMFieldDef* field, const Variant& value);
  /// Null if there is none, or if it was freed meanwhile.
  TVXRAMFieldDef* Get_Field() const { return field_.Get(); }
  /// Clears the value to unassigned.
  void Set_Field(TVXRAMFieldDef* field);
  Variant Get_Value() const { return value_; }
  void Set_Value(const Variant& value);

 private:
  friend class TVXRAMCursor;
  void Changed();

  TVXRAMFieldRef field_;
  Variant value_;
  std::uint64_t changes_ = 0;
};

/// A row and its position in the list that is being filtered; true keeps the row.
using TVXRAMCursorRecordFilterProc = TEvent<bool(TVXRAMRow*, std::int32_t)>;

/// What the opener of a cursor wishes. Read once, when the cursor is made; stays the opener's.
class TVXRAMCursorDesc : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXRAMCursorDesc(TComponent* owner, std::int32_t indexNumber, TVXRAMCursorOrder order, std::string sortedField,
                   TVXRAMFieldDef* filterField, Variant filterValue);

  TComponentRef<TComponent> Owner;  ///< an IRecordOwner; null only if no row is ever deleted
  std::int32_t IndexNumber;         ///< position of an index definition, -1 for none
  TVXRAMCursorOrder Order;
  std::string SortedField;  ///< sort specification
  TVXRAMFieldRef FilterField;
  Variant FilterValue;
};

class TVXRAMCursor : public TPersistent {
 public:
  using TClassArguments = TArguments<TVXRAMTable*, TVXRAMIndexDef*, TVXRAMCursorDesc*>;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- What subclasses may replace, in slot order ---------------------------------------------------------------------
  virtual bool Get_CanUseIndex(const std::string& fieldName) const;
  /// Runs after each change of field, value or callback of the filter.
  virtual void FilterChange(TObject* sender);
  /// The filtered list if the cursor is filtered, else the internal list.
  virtual TVXList* Get_ActiveRecordList() const;
  /// The row at the effective index; null on an empty list when descending, the list's range error when ascending.
  virtual TVXRAMRow* Get_CurrentRecord() const;
  /// The physical index brought into the list; outside of it only if the list is empty.
  virtual std::int32_t Get_EffectiveRecordIndex() const;
  /// The list of the index, or the table's main list; shared with other cursors.
  virtual TVXList* Get_InternalRecordList() const;
  virtual std::int32_t Get_RecordCount() const;
  /// The physical index, counted from the other end when descending.
  virtual std::int32_t Get_RecIndex() const;
  /// At or past the last row in walking direction: true on the last row itself, and on an empty list.
  virtual bool Get_EOF() const;
  /// At or before the first row in walking direction: true on the first row itself, and on an empty list.
  virtual bool Get_BOF() const;
  /// Stores without any check of the range.
  virtual void Set_RecIndex(std::int32_t value);
  virtual void EndUpdating() {}
  virtual void RecordDeletionNotification(TVXRAMCursor* origin, TVXRAMRow* row);
  virtual void RecordInsertionNotification(TVXRAMRow* row);
  /// After an edit through this cursor; other cursors are not told.
  virtual void RecordEditionNotification(TVXRAMRow* row);
  virtual void StartUpdating() {}

  /// Made by TVXRAMTable::OpenCursor. `desc` is read until the cursor is made.
  TVXRAMCursor(TVXRAMTable* table, TVXRAMIndexDef* indexDef, TVXRAMCursorDesc* desc);
  void AfterConstruction() override;

  virtual void GoToFirstRec();  ///< before the first row in walking order
  virtual void GoToLastRec();   ///< behind the last row
  /// One step on; kAtEnd on the last row, without moving.
  virtual std::int32_t GoToNextRec();
  /// One step back; kAtBeginning on the first row, without moving.
  virtual std::int32_t GoToPreviousRec();
  /// Deletes the current row from the table. On an empty list raises "Table empty!".
  virtual void DeleteRec();
  /// Copies the value's bytes, null or not. `size` below the field's ByteSize is set to it, and ERTEBufferTooSmall
  /// raised.
  virtual void GetFieldValue(std::int32_t field, void* buffer, std::int32_t& size, bool& isNull) const;
  /// Adds an empty row. For cursors on an index only; others raise ENilAccess.
  virtual void InsertRec();
  /// Adds a filled row at the cursor's position, or at the end, and goes to it by its id.
  virtual void InsertRecWithValues(const TVXRecordStruct& record, bool append);
  /// Copies ByteSize bytes into the current row. Rebuilds the index on this field, no other; nobody else is told.
  virtual void SetFieldValue(std::int32_t field, const void* buffer);
  /// Overwrites the current row and rebuilds every index.
  virtual void UpdateRecWithValues(const TVXRecordStruct& record);

  // -- Rows by id -----------------------------------------------------------------------------------------------------
  /// Id of the current row, -1 for none.
  std::int32_t Get_RecordID() const;
  /// SetRecIndexByID; -1 does nothing.
  void Set_RecordID(std::int32_t id);
  /// Record index of the row with this id, without moving; -1 for the id -1.
  std::int32_t Get_RecIndexById(std::int32_t id);
  /// Goes to the first row of the active list with this id; an unknown one leaves the physical index at -1. O(n).
  void SetRecIndexByID(std::int32_t id);
  std::int32_t Get_PhysicalIndex() const { return physicalIndex_; }

  // -- Fields of the current row --------------------------------------------------------------------------------------
  /// Null, its bytes zero. No index is touched, even on this field.
  void ClearFieldValue(std::int32_t field);
  bool FieldValueIsNull(std::int32_t field) const;
  /// The value as a Variant: Boolean, double, date, integer or text by the field's type; Null for a null field.
  Variant Get_Value(std::int32_t field) const;

  // -- Order and filter -----------------------------------------------------------------------------------------------
  /// Items "Name", "Name.A" or "Name.D", separated by ";"; names without case, unknown ones are skipped. Sorts the
  /// active list in place: without a filter that is the list which other cursors walk too. Goes to first position; does
  /// neither if no name is known.
  void Sort(const std::string& sortSpecification);
  const std::string& Get_SortedField() const { return sortedField_; }
  /// If it differs, stores it and sorts, unless it is empty: no earlier order comes back.
  void Set_SortedField(const std::string& value);
  /// Sorts by Get_SortedField. `touched` is the one row that was added or changed since, null for none or several.
  void InternalDoSort(const TVXRAMRow* touched = nullptr) { SortAfter(touched, sortedField_); }

  TVXRAMFilter* Get_Filter() const { return filter_.get(); }
  const TVXRAMCursorRecordFilterProc& Get_OnFilterRecord() const { return onFilterRecord_; }
  /// Stored, and FilterChange run, only if the code differs: the same method of another object changes nothing.
  void SetOnFilterRecord(const TVXRAMCursorRecordFilterProc& value);
  /// Fills the filtered list with the rows of `source` that pass and goes to first position; empties it if the cursor
  /// isn't filtered. A filter value that can't be compared raises EVariantError, and the list stays as far as it was
  /// built.
  void RebuildFilteredList(const TVXList& source);
  bool Get_IsFiltered() const;
  bool Get_IsIndexed() const { return Get_Index() != nullptr; }

  TVXRAMCursorOrder Get_Order() const { return order_; }
  /// Stores alone: the physical index stays.
  void Set_Order(TVXRAMCursorOrder value) { order_ = value; }

  // -- Bracket --------------------------------------------------------------------------------------------------------
  void BeginUpdate();
  /// An unmatched call runs EndUpdating again.
  void EndUpdate();
  /// In a bracket of its own or of the table.
  bool Get_IsUpdating() const;

  // -- What the table tells -------------------------------------------------------------------------------------------
  void TableClearingNotification();
  void IndexRebuildingNotification();
  void TablePackingNotification();

  // -- Rows as such: the table's operations of the same names ---------------------------------------------------------
  TVXRAMRow* InternalAllocRecordBuffer();
  void InternalClearAllFieldValues(TVXRAMRow* row);
  void InternalClearFieldValue(TVXRAMRow* row, std::int32_t field);
  /// DeleteRecord of the table, with this cursor as the origin.
  void InternalDeleteRecord(TVXRAMRow* row);
  void InternalFreeRecordBuffer(TVXRAMRow* row);
  std::int32_t InternalInitRecord(TVXRAMRow* row);
  void InternalSetFieldStatus(TVXRAMRow* row, std::int32_t field, TVXFieldStatus status);
  TVXFieldStatus InternalGetFieldStatus(const TVXRAMRow* row, std::int32_t field) const;
  void InternalSetFieldValue(TVXRAMRow* row, std::int32_t field, const void* buffer);
  void InternalGetFieldValue(const TVXRAMRow* row, std::int32_t field, void* buffer) const;
  bool InternalIsRecordMatchFilter(const TVXRAMFilter& filter, const TVXRAMRow* row) const;
  void InternalSetRecordId(TVXRAMRow* row, std::int32_t id);

  /// The table, which is there as long as the cursor is open.
  TVXRAMTable& Table() const { return *table_; }
  /// Null if the cursor has none or its definition was freed: the cursor then walks the main list.
  TVXRAMIndex* Get_Index() const;
  TComponent* Get_Owner() const { return owner_.Get(); }
  bool Get_IsUpdatingRecord() const { return updatingRecord_; }

  /// True if the cursor walks rows of the table, with ids that the table gave them.
  virtual bool ListsTableRows() const { return true; }
  /// True if the row's memory must stay although the table has dropped it. Asked only while cursors that answer true
  /// are open.
  virtual bool NamesRow(const TVXRAMRow*) const { return false; }

  void TearDown() override;

 protected:
  ~TVXRAMCursor() override;
  void ReleaseMemory() override;
  TVXList& FilteredList() const { return *filteredList_; }
  /// What is known of the order of this cursor's own lists.
  TVXRAMKnownSort& KnownSort() { return knownSort_; }
  /// Null once the cursor is made.
  TVXRAMCursorDesc* Desc() const { return desc_; }

 private:
  friend class TVXRAMTable;

  bool Ascending() const { return order_ == vxrcoAscending; }
  void SortAfter(const TVXRAMRow* touched, const std::string& sortSpecification);
  void WriteRow(const TVXRecordStruct& record);  // into the current row
  /// The owner as one that can be told of deletions; ENilAccess without an owner, EInvalidCast if it is of another
  /// kind.
  IRecordOwner& RecordOwner() const;
  /// The current row, or ENilAccess.
  TVXRAMRow* NeedCurrentRecord() const;
  /// SetRecIndexByID for a caller who believes to know the row.
  void GoToRow(std::int32_t id, const TVXRAMRow* row);
  /// Where the row with this id stands in `list`; the answer is that of a walk from the front. `row` may be the one, or
  /// null.
  std::int32_t FindById(const TVXList& list, std::int32_t id, const TVXRAMRow* row);
  TVXList* SharedList() const;
  std::int32_t AlreadyFiltered(const TVXList& source) const;
  /// Where the row with this id seems to stand; -1 says nothing.
  std::int32_t SearchById(const TVXList& list, std::int32_t id, const TVXRAMRow* row);
  /// What is known of the order of one of the lists that this cursor may walk.
  TVXRAMKnownSort& SortOf(const TVXList& list);

  TVXRAMTable* table_;
  TVXRAMCursorDesc* desc_;  // until the cursor is made
  TComponentRef<TComponent> owner_;
  TVXRAMCursorOrder order_ = vxrcoAscending;
  std::int32_t physicalIndex_ = -1;
  std::int32_t stood_ = 0;  // the latest physical index on a row: a search by id begins there
  std::int32_t updateCounter_ = 0;
  bool updatingRecord_ = false;
  std::string sortedField_;
  TVXRAMCursorRecordFilterProc onFilterRecord_;
  TOwned<TVXStringParser> sortParser_;
  TVXRAMKnownSort knownSort_;
  TOwned<TVXRAMFilter> filter_;
  TOwned<TVXList> filteredList_;
  /// What the filtered list was made from: its source and the rewrites of that, the changes of itself, of filter and
  /// table, and how many rows were looked at.
  struct {
    const TVXList* list = nullptr;
    std::uint64_t source = 0, result = 0, filter = 0, stamp = 0;
    std::int32_t count = 0;
  } filtered_;
  TVXRAMIndex* index_ = nullptr;  // the table takes it away when its definition is freed
  std::size_t madeAt_ = 0;        // its place in the table's list of all that were made
};

namespace VXRAMTable_CMP {

/// The part of an item of a sort specification before its first point; the whole item if there is none.
std::string GetFieldName(const std::string& item);
/// Descending if the letter after the first point is "D"; letter case counts, all else ascends.
TVXRAMCursorOrder GetFieldSortOrder(const std::string& item);

}  // namespace VXRAMTable_CMP

}  // namespace vx
