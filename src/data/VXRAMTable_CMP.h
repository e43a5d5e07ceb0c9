// VXRAMTable_CMP.h: tables in memory.
//
// A table owns its field definitions, its index definitions, its rows and the cursors that are open on it. Rows are
// packed byte blocks whose layout follows from the definitions alone. Everyone else reaches rows through a cursor; the
// table tells its open cursors of every insertion, deletion, clearing and index rebuild, at once and in the order in
// which they were opened.
//
//   auto table = Make<TVXRAMTable>(nullptr);         // freed by the handle; New<…>(owner) where an owner frees it
//   AddField(*table, "Task", vxrftString, 20);       // before the first row
//   table->Get_RecSize();                            // 26: 4 id, 1 status, 1 field status, 20 bytes of text
//
// Two containers. AddRecord puts a row into the base index, AddRecordAndValues into the main record list, and neither
// into the other; both feed every user index. Get_RecCount counts the base index alone, so that a table which is filled
// through cursors and data sets reports 0 and its definitions stay open to change. Kept: owners rely on it.
//
// Ids and positions. A record id names a row for as long as the table lives, ClearTable included; a record index is
// only where the row stands in one cursor's list at this moment. Keep ids, never positions.
//
// Notifications. What a cursor's owner or a filter does while it is told may open, close and free cursors, change rows,
// or free the table: a cursor that is closed isn't told any more, one that is opened is told the next time, and memory
// goes when the outermost operation of the table ends.
//
// A listener that answers each change by another one, without end, gets EInvalidOperation before the call stack ends.
//
// Closing. Owners close their cursors before they free the table. Free() with two or more open cursors fails with a
// list error, after it has closed some of them; the table is then still whole.
//
// Errors. Misuse raises a class derived from ERAMTableError; two developer's mistakes raise plain Exceptions that begin
// with "DEVELOPPER NOTE:". What was done before a failure stays done. A table is not to be shared between threads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "data/VXRAMCursor.h"
#include "data/VXRAMFieldDefs.h"
#include "data/VXRAMIndex.h"
#include "data/VXRAMLists.h"
#include "data/VXRAMRowPool.h"
#include "data/VXRAMTypes.h"
#include "platform/component/Component.h"
#include "platform/component/ListenerList.h"
#include "platform/runtime/Wrapping.h"

namespace vx {

class TVXRAMTable : public TComponent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRAMTable(TComponent* owner);

  /// Frees the open cursors by a walk that doesn't allow for their leaving the list; see Closing.
  void BeforeDestruction() override;
  void TearDown() override;

  // -- Definitions ----------------------------------------------------------------------------------------------------
  TVXRAMFieldDefs* Get_FieldDefs() const { return fieldDefs_.get(); }
  /// Assigns. ERTENoFieldDefChangesAllowed while Get_RecCount is above 0.
  void Set_FieldDefs(const TVXRAMFieldDefs* value);
  TVXRAMIndexDefs* Get_Indices() const { return indices_.get(); }
  /// Assigns. ERTENoIndexDefChangesAllowed while Get_RecCount is above 0.
  void Set_Indices(const TVXRAMIndexDefs* value);
  void CheckFieldDefChangesAllowed() const;
  void CheckIndexDefChangesAllowed() const;

  /// Position of the first field of that name, by locale without case; -1 if there is none. O(number of fields).
  std::int32_t FieldNbByName(const std::string& name) const;
  /// Position of the first index whose field has exactly that name; -1 if there is none.
  std::int32_t IndexNbByFieldName(const std::string& name) const;
  /// Position of the first index on that field; -1 if there is none.
  std::int32_t IndexNbByFieldNb(std::int32_t field) const;

  // -- Cursors --------------------------------------------------------------------------------------------------------
  /// Opens a cursor of the class, TVXRAMCursor for null, and stores it in `cursor`. An index number other than -1 and
  /// the positions of the index definitions raises ERTENoSuchIndex.
  void OpenCursor(TClassOf<TVXRAMCursor> cursorClass, TVXRAMCursorDesc* desc, TVXRAMCursor*& cursor);
  /// Frees a cursor of this table and nulls the variable. A cursor of another table stays alive; the variable is nulled
  /// all the same.
  void CloseCursor(TVXRAMCursor*& cursor);
  template <class T>
  void CloseCursor(T*& cursor) {
    TVXRAMCursor* base = cursor;
    cursor = nullptr;
    CloseCursor(base);
  }
  std::int32_t Get_CursorCount() const { return static_cast<std::int32_t>(cursors_.Count()); }

  // -- Bracket --------------------------------------------------------------------------------------------------------
  void BeginUpdate();
  /// An unmatched call runs EndUpdating again.
  void EndUpdate();
  void StartUpdating() {}
  void EndUpdating() {}
  bool Get_IsUpdating() const { return updateCounter_ > 0; }

  // -- Rows -----------------------------------------------------------------------------------------------------------
  /// A record structure for the present definitions, every field null.
  void NewRecordStruct(TVXRecordStruct*& record) const;
  /// Releases it and nulls the variable. Null is ignored.
  void DisposeRecordStruct(TVXRecordStruct*& record) const;
  /// NewRecordStruct with a handle that disposes of it.
  TOwnedRecordStruct NewRecord() const;

  /// Adds an empty row to the base index and, unsorted, to every user index. Answers its position in the container that
  /// `index` names (-1: the base index; else the number of a user index), -1 if there is none such.
  std::int32_t AddRecord(std::int32_t index, std::int32_t& recordId);
  /// Adds a filled row to the main record list, at `position` or at the end, and to every user index, each of which is
  /// rebuilt, unless its field was freed: it then stays in the order of adding. Answers the position appended at; after
  /// an insertion -1; for a user index named by `index` the position before its rebuild. A record structure that
  /// doesn't fit the definitions raises an Exception; the row then stays allocated, listed nowhere. A position beyond
  /// the list raises its range error.
  std::int32_t AddRecordAndValues(const TVXRecordStruct& record, std::int32_t index, std::int32_t position,
                                  std::int32_t& recordId, bool append);
  /// Takes a row out of every container, tells the cursors while it is still readable, and releases it if the main list
  /// held it. Null is ignored.
  void DeleteRecord(TVXRAMCursor* origin, TVXRAMRow* row);
  /// Releases the rows of the base index or, if it had none, of the main list; empties every container; tells the
  /// cursors, and their owners: data sets then show that nothing is left.
  void ClearTable();
  /// Kept: does nothing. Deletion is physical.
  void Pack() {}

  std::int32_t GenerateUniqueID() { return CountOn(nextId_); }
  /// Raised by every write into a row that was made before, and by every change of a field definition. Who keeps
  /// something that was computed from rows may go on from it as long as the stamp is the one he knows.
  std::uint64_t Get_ChangeStamp() const { return changeStamp_; }
  /// Rows of the base index.
  std::int32_t Get_RecCount() const { return baseIndex_->Get_RecCount(); }
  /// Bytes of one row. O(1) between changes of the definitions.
  std::int32_t Get_RecSize() const { return fieldDefs_->Get_RecSize(); }

  // -- One row's bytes ------------------------------------------------------------------------------------------------
  // A null row raises ENilAccess; a field position outside the definitions raises the collection's range error. A field
  // beyond the end of a row that is older than the definitions reads as null; writing there raises ERAMTableError.

  /// Get_RecSize bytes, uninitialised, in no container.
  TVXRAMRow* InternalAllocRecordBuffer();
  /// Every byte zero, every field null, the next id; answers the id.
  std::int32_t InternalInitRecord(TVXRAMRow* row);
  void InternalFreeRecordBuffer(TVXRAMRow* row);
  void InternalClearAllFieldValues(TVXRAMRow* row);
  /// The status stays.
  void InternalClearFieldValue(TVXRAMRow* row, std::int32_t field);
  void InternalSetFieldStatus(TVXRAMRow* row, std::int32_t field, TVXFieldStatus status);
  TVXFieldStatus InternalGetFieldStatus(const TVXRAMRow* row, std::int32_t field) const;
  /// Copies ByteSize bytes from the buffer; the status stays.
  void InternalSetFieldValue(TVXRAMRow* row, std::int32_t field, const void* buffer);
  /// Copies ByteSize bytes into the buffer, whatever the status.
  void InternalGetFieldValue(const TVXRAMRow* row, std::int32_t field, void* buffer) const;
  /// -1 for a null row.
  std::int32_t InternalGetRecordID(const TVXRAMRow* row) const { return row == nullptr ? kNoRecordId : RowId(row); }
  void InternalSetRecordId(TVXRAMRow* row, std::int32_t id);

  // -- Compares of the present sort -----------------------------------------------------------------------------------
  /// By the fields of the latest sort specification: -1, 0 or 1.
  std::int32_t InternalFieldsCompare(const TVXRAMRow* first, const TVXRAMRow* second);
  // By the current sort field, as values of the type that the name says. Kept: the order isn't used.
  std::int32_t InternalBooleanCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalDateTimeCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalFloatCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalIntegerCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalSmallintCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalStringCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  std::int32_t InternalWordCompare(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMCursorOrder order) const;
  /// Whether the row has the filter's value in the filter's field; a value of Null asks for a null field.
  bool InternalIsRecordMatchFilter(const TVXRAMFilter& filter, const TVXRAMRow* row) const;
  /// Tells the open cursors that are filtered on the field of a user index that it was rebuilt.
  void IndexRebuildingNotification(TVXRAMIndex* index);

  // -- Looking inside, for tests and reports --------------------------------------------------------------------------
  TVXList* Get_MainRecordList() const { return mainRecordList_.get(); }
  TVXRAMBaseIndex* Get_BaseIndex() const { return baseIndex_.get(); }
  /// Rows that are allocated, listed anywhere or not, bucket rows included.
  std::int64_t Get_AllocatedRows() const { return pool_.LiveRows(); }
  /// Empty, or what is wrong with the table's own books: a row listed twice, a released row that is listed, an id
  /// beyond the counter.
  std::string CheckRows() const;

 protected:
  ~TVXRAMTable() override;
  void ReleaseMemory() override;

 private:
  friend class TTableOperation;
  friend class TVXMemoryDataset;  // refreshes when the table is idle
  friend class TVXRAMBucketList;
  friend class TVXRAMCursor;
  friend class TVXRAMCursorBucketer;
  friend class TVXRAMFieldDef;
  friend class TVXRAMFieldDefs;
  friend class TVXRAMIndex;
  friend class TVXRAMIndexDef;
  friend class TVXRAMIndexDefs;

  // -- For cursors, indexes and definitions
  void RaiseChangeStamp() { ++changeStamp_; }
  /// A row with the next id, every other byte zero, in no container. Leaves the change stamp alone.
  TVXRAMRow* NewRow(std::int32_t& id);
  /// Raises if the element's type isn't the definition's.
  void CheckFieldType(std::int32_t field, const TVXFieldStruct& element) const {
    if (element.FieldType != fieldDefs_->Get_Slots()[static_cast<std::size_t>(field)].type) RaiseMismatch();
  }
  /// Copies an element of a record structure into a row, after CheckFieldType.
  void StoreField(TVXRAMRow* row, std::int32_t field, const TVXFieldStruct& element);
  /// Rebuilds every user index in definition order, but for those whose field is gone.
  void RebuildIndices();
  /// AddRecordAndValues; answers the row, and the position in `result`.
  TVXRAMRow* AddFilledRow(const TVXRecordStruct& record, std::int32_t index, std::int32_t position,
                          std::int32_t& recordId, bool append, std::int32_t& result);
  /// A row is about to be written into, and nothing else until AfterWrite. Raises the change stamp.
  void BeforeWrite(const TVXRAMRow* row);
  void AfterWrite();
  /// Where the row stands in `rows`, -1 if nowhere; soonest if it is at `hint`, or if `sort` has sorted them.
  std::int32_t Find(const TVXList& rows, const TVXRAMRow* row, std::int32_t hint, const TVXRAMKnownSort& sort) const;
  /// Fills the list of sort fields from a sort specification.
  void TakeSortFields(const TVXStringParser& sortItems);
  /// Sorts a list of rows by the list of sort fields, going on from what is known of an earlier sort; false, and
  /// nothing done, if there are no such fields.
  bool SortByFields(TVXList& rows, TVXRAMKnownSort& known, const TVXRAMRow* touched);
  /// True as long as nobody wrote ids or index entries by hand: then no id stands twice in a list.
  bool IdsAreUnique() const { return idsAreUnique_; }
  /// The id of the row that was deleted last: no list of this table's rows has it.
  std::int32_t LastDeletedId() const { return lastDeletedId_; }
  /// Cursors on the index walk the main list from now on; the index goes when nobody can be inside it.
  void IndexFreed(TOwned<TVXRAMUserIndex> index);
  void CursorFreed(TVXRAMCursor* cursor);
  // The table's memory stays for as long as a cursor's: the last one to go ends a table that was freed meanwhile.
  void CursorMade(TVXRAMCursor* cursor) {
    cursor->madeAt_ = made_.size();
    made_.push_back(cursor);
  }
  void CursorGone(TVXRAMCursor* cursor);
  /// Cursors on an index whose definition isn't this table's any more walk the main list from now on.
  void LeaveStrayIndexes();
  /// Runs `action` at the end of the outermost operation; at once outside of one.
  void WhenIdle(std::function<void()> action);
  /// Gives a row's memory back, as soon as no operation and no cursor needs it any more.
  void ReleaseRow(TVXRAMRow* row);
  /// Rows that a cursor named may be named no longer.
  void ReleaseHeldRows();

  // -- Within
  std::int32_t InitRow(TVXRAMRow* row);
  /// The next id into the row's head, and the status; answers the id.
  std::int32_t GiveId(TVXRAMRow* row);
  /// A row with the next id and the structure's values, in no container.
  TVXRAMRow* NewFilledRow(const TVXRecordStruct& record, std::int32_t& id);
  TVXRAMFieldSlot Slot(std::int32_t field) const;
  TVXRAMFieldSlot WritableSlot(const TVXRAMRow* row, std::int32_t field) const;
  [[noreturn]] void RaiseNoRoom(const TVXRAMRow* row, std::int32_t field) const;
  [[noreturn]] static void RaiseMismatch();
  std::int32_t CompareSortField(const TVXRAMRow* first, const TVXRAMRow* second, TVXRAMFieldType type) const;
  std::int32_t ReleaseAll(TVXList& rows);
  bool IsNamed(const TVXRAMRow* row) const;
  class TLeaving;
  /// The row is being deleted: it stands in the main list until all cursors were told, and no cursor may list it anew.
  bool IsLeaving(const TVXRAMRow* row) const;
  /// Something waits for the end of the outermost operation.
  bool HasMoreToDo() const { return !droppedRows_.empty() || !waiting_.empty() || released_; }
  void EndOperation();
  void ReleaseDroppedRows();
  /// Raises EInvalidOperation if notifications have led to notifications too often.
  void CheckNesting() const {
    if (operations_ > kMostNested) RaiseNesting();
  }
  [[noreturn]] void RaiseNesting() const;

  TVXRAMRowPool pool_;
  std::vector<TVXRAMFieldRef> sortFields_;  // scratch of the sorts, the last item deciding first
  TVXRAMFieldRef currentSortField_;
  TOwned<TVXList> mainRecordList_;
  TVXRAMKnownSort mainSort_;  // of the main list
  TOwned<TVXRAMFieldDefs> fieldDefs_;
  TOwned<TVXRAMIndexDefs> indices_;
  TOwned<TVXRAMBaseIndex> baseIndex_;
  TListenerList<TVXRAMCursor> cursors_;  // the open ones, in the order of their opening
  std::uint64_t changeStamp_ = 0;
  std::int32_t nextId_ = 0;
  std::int32_t lastDeletedId_ = kNoRecordId;
  std::int32_t updateCounter_ = 0;

  bool closed_ = false;              // torn down: opens no cursors any more
  bool released_ = false;            // the memory goes with the last operation and cursor
  std::vector<TVXRAMCursor*> made_;  // all that were made on this table, opened by it or not
  static constexpr std::int32_t kMostNested = 1000;
  std::int32_t operations_ = 0;  // nesting of TTableOperation
  bool idsAreUnique_ = true;
  std::vector<const TVXRAMRow*> leavingRows_;   // of those deletions that are under way
  std::vector<TVXRAMRow*> droppedRows_;         // to be released when the outermost operation ends
  std::vector<TVXRAMRow*> heldRows_;            // dropped, but named by a cursor
  std::vector<std::function<void()>> waiting_;  // see WhenIdle
};

/// Stands on the stack of every operation that may run foreign code: memory that is given up meanwhile goes when the
/// outermost ends.
class TTableOperation {
 public:
  explicit TTableOperation(TVXRAMTable& table) : table_(table) { ++table_.operations_; }
  TTableOperation(const TTableOperation&) = delete;
  TTableOperation& operator=(const TTableOperation&) = delete;
  ~TTableOperation() {
    if (table_.operations_ > 1 || table_.HasMoreToDo())
      table_.EndOperation();
    else
      --table_.operations_;
  }

 private:
  TVXRAMTable& table_;
};

/// Adds a field with name, type and, for text, the bytes of its slot (the closing zero included).
TVXRAMFieldDef* AddField(TVXRAMTable& table, const std::string& name, TVXRAMFieldType type, std::int32_t byteSize = 0);

namespace VXRAMTable_CMP {
/// Puts the table on the palette page "VX Data Access".
void Register();
}  // namespace VXRAMTable_CMP

}  // namespace vx
