// VXMemoryDataset_CMP.h: a table in memory as a data set.
//
// A data set opens one cursor on its table and carries values, states and positions between that and whoever shows
// records. Several may be open on one table. The table changes at a post or a deletion only, never before.
//
//   auto orders = Make<TVXMemoryDataset>(nullptr);
//   orders->SetRAMTable(table);
//   orders->SetSortedField("Date.D;Item");           // read at opening, and at once on an open set
//   orders->Open();
//   orders->Locate("Item", "Drill", {});             // true: stands on it
//
//   details->SetMasterSource(source);                // of the set that leads
//   details->SetMasterField("Order");                // its field
//   details->SetDetailField("Order");                // this table's field that must be equal
//   details->Open();                                 // follows it from now on
//
// A master's value that can't be compared with the detail's field raises an EVariantError that names both fields, out
// of the detail's opening or the master's move; that has taken place then. A detail without a field to compare shows
// all rows and sorts them at its opening, not at each move of the master, who may be walking the same list.
//
// Record buffers. For each field a state byte and the value, then the platform's calculated fields, the bookmark's flag
// and the bookmark, which is the record id (-1 for a record that isn't posted yet). Layout and conversions are settled
// at opening; all sizes are below 64 KB. A buffer is filled when a record is read, so that it shows what the record was
// then. A text takes at most the table's ByteSize; one that is written is cut at a code point, with room for its zero.
// A record's fields with their state bytes have room for 65530 bytes, a text that is alone therefore for 65529.
//
// In step. A deletion, wherever it comes from, and ClearTable refresh all sets on the table when the table's operation
// ends, each once. Nobody is told of insertions and edits, but a set whose cursor was moved by them (a sort, a filter)
// goes on from its own records. An edit or deletion of a record that isn't in the table any more raises EDatabaseError.
//
// Kept, since callers rely on it:
//   - A post of a new record appends it to the table; only a sort or an index puts it elsewhere.
//   - Table fields that this set doesn't hold become null when a record is posted, an edited one too.
//   - The filter is OnFilterRecord alone, Filtered plays no part. To an open set it comes late: putting a handler where
//     none was rebuilds the list while the handler isn't there yet, so that all rows stay until the next rebuild.
//   - Locate: see there. CompareBookmarks: always 0. IndexName: no effect on an open set.
//   - A detail whose master closes or goes keeps the rows that it showed last.
//
// A table that is freed, or that frees this set's cursor, closes the set. Definitions that change while the set is
// open: a field that is gone or of another type reads as null from then on.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "data/VXRAMTable_CMP.h"
#include "platform/dataset/DataLink.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/Fields.h"

namespace vx {

class TVXMemoryDataset;

/// What stands before each value in a record buffer. A field is null if this is vxmdfsNull or vxmdfsDeleted.
enum TVXMemoryDatasetFieldState : std::uint8_t {
  vxmdfsNull,
  vxmdfsDefault,   ///< being filled
  vxmdfsModified,  ///< has a value, read or written
  vxmdfsInserted,  ///< kept for its place: never set
  vxmdfsDeleted,   ///< emptied by the user
};

class TVXMemoryDatasetFieldDef : public TFieldDef {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Never required.
  TVXMemoryDatasetFieldDef(TFieldDefs* owner, std::string name, TFieldType type, std::int32_t size,
                           std::int32_t fieldNo, std::uint16_t offset, TVXRAMFieldDef* ramFieldDef);

  /// Of the value in the record buffer; its state byte stands just before.
  std::uint16_t Get_Offset() const { return offset_; }
  /// Null once the table has freed it.
  TVXRAMFieldDef* Get_RAMFieldDef() const { return ramFieldDef_.Get(); }
  /// Decimals of a duration's text; 0 at first. Lasts until the set is opened again.
  std::int32_t Get_Precision() const { return precision_; }
  void Set_Precision(std::int32_t decimals) { precision_ = decimals; }

 private:
  std::uint16_t offset_;
  std::int32_t precision_ = 0;
  TVXRAMFieldRef ramFieldDef_;
};

/// A detail's link to its master.
class TVXMemoryDatasetMasterDataLink : public TFieldDataLink {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// `dataSet`, the detail, owns the link.
  explicit TVXMemoryDatasetMasterDataLink(TVXMemoryDataset* dataSet) : detail_(dataSet) {}

  TNotifyEvent OnMasterChange;   ///< the master stands on another record, or its record was written
  TNotifyEvent OnMasterDisable;  ///< there is no open master any more

 protected:
  void ActiveChanged() override;
  void CheckBrowseMode() override;
  void LayoutChanged() override;
  void RecordChanged(TField* field) override;

 private:
  TVXMemoryDataset* detail_;
};

class TVXMemoryDataset : public TDataSet, public IRecordOwner {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXMemoryDataset(TComponent* owner);
  void AfterConstruction() override;
  void TearDown() override;

  // -- Published, beside Active and the events ------------------------------------------------------------------------
  const std::string& GetDetailField() const { return detailField_; }
  void SetDetailField(const std::string& name) { detailField_ = name; }
  std::string GetMasterField() const;
  /// Another name on an open set: shows the records of the master's active one at once.
  void SetMasterField(const std::string& name);
  TDataSource* GetMasterSource() const { return GetDataSource(); }
  void SetMasterSource(TDataSource* source) { SetDataSource(source); }
  const std::string& GetSortedField() const { return sortedField_; }
  /// A sort specification. On an open set posts a pending record, sorts, and goes back to the active one. Kept: stored
  /// for the next opening even if an open set refuses it.
  void SetSortedField(const std::string& value);
  /// Null once it is freed.
  TVXRAMTable* GetRAMTable() const { return ramTable_.Get(); }
  virtual void SetRAMTable(TVXRAMTable* table);  ///< the set must be closed
  bool GetReadOnly() const { return readOnly_; }
  void SetReadOnly(bool value);  ///< the set must be closed
  const std::string& GetIndexName() const { return indexName_; }
  /// Field of an index definition of the table, letter case included. One that no index has clears the name, unless a
  /// stream is reading.
  void SetIndexName(const std::string& name);
  TVXRAMCursorOrder Get_CursorOrder() const { return cursorOrder_; }
  /// On an open set too: its cursor walks the other way from where it stands, and Refresh() shows it.
  void Set_CursorOrder(TVXRAMCursorOrder value);

  // -- Master and detail ----------------------------------------------------------------------------------------------
  TDataSource* GetDataSource() const override;
  /// Null clears the master field too. EDatabaseError if the source's set depends on this one.
  virtual void SetDataSource(TDataSource* source);
  /// The master; null if there is none, or if it is a data set of another kind.
  TVXMemoryDataset* GetMasterTable() const;
  /// The table's field that DetailField names, letter case included; null if this set holds none of that name.
  TVXRAMFieldDef* GetMasterRAMFieldDef();
  /// Null without a master. A detail whose value is Null shows all rows.
  Variant GetMasterValue() const;
  /// The master field's value; -1 without one, and for one that is no integer.
  std::int32_t GetMasterID() const;

  // -- Place ----------------------------------------------------------------------------------------------------------
  /// Position of the index definition in the table; -1 for none.
  std::int32_t GetIndexNumber() const;
  /// IndexName from a field. Kept: takes the definition behind the field's own, the number from 1 being used as a
  /// position from 0.
  void SetFieldIndex(const TField* field);
  std::int32_t GetRecordCount() override;
  /// By one search.
  std::int32_t GetRecNo() override;
  void SetRecNo(std::int32_t value) override;
  /// Id of the active record; while fields are being calculated, of that record. -1 for one not posted yet.
  std::int32_t GetRecordId();
  /// Goes there; -1 does nothing. Kept: posts nothing. A pending edit goes on with the values of the record it is on
  /// now. EDatabaseError while a record is read or a filter asked.
  void SetRecordId(std::int32_t id);
  /// Not null, of our size, and not -1.
  bool BookmarkValid(const TBookmark& bookmark) override;
  /// Kept: always 0.
  std::int32_t CompareBookmarks(const TBookmark&, const TBookmark&) override { return 0; }
  bool IsSequenced() override { return true; }
  bool IsCursorOpen() override { return cursor_ != nullptr; }

  // -- Changing -------------------------------------------------------------------------------------------------------
  /// The cursor's bracket; see there.
  void BeginUpdate();
  void EndUpdate();
  /// As TDataSet. While the table is at work, when that is done; what is raised then goes to the application.
  void Refresh() override;
  void TableCleared() override;
  void CursorClosed(TVXRAMCursor* cursor) override;

  // -- Searching ------------------------------------------------------------------------------------------------------
  /// Goes to the first record whose field `keyFields` (one field) has the text of the value; stays where it is if there
  /// is none. Walks, with all events of scrolling. Kept, each of it:
  ///   - A "*" at the value's end is dropped, with loPartialKey or without.
  ///   - loPartialKey looks from the present record on, not from the first, for texts that begin with the value.
  ///   - loCaseInsensitive raises value and text to upper case, but with loPartialKey the value alone.
  bool Locate(const std::string& keyFields, const Variant& keyValues, TLocateOptions options) override;
  /// Locate without options, then the values of `resultFields`; Null if nothing is found. Kept: the set stays on the
  /// record found.
  Variant Lookup(const std::string& keyFields, const Variant& keyValues, const std::string& resultFields) override;

  // -- Fields ---------------------------------------------------------------------------------------------------------
  void SetOnFilterRecord(const TFilterRecordEvent& event) override;
  void SetFieldData(TField& field, const void* buffer) override;
  bool GetFieldData(const TField& field, void* buffer) override;
  /// The definition of that number; null below 1, and for a definition of another class. EDatabaseError above the
  /// count.
  TVXMemoryDatasetFieldDef* GetEAFieldDef(std::int32_t number);

 protected:
  void Loaded() override;
  void Notification(TComponent* component, TOperation operation) override;

  void ClearCalcFields(char* buffer) override;
  void CloseCursor() override;
  bool GetCanModify() const override { return TDataSet::GetCanModify() && !readOnly_; }
  void OpenCursor(bool infoQuery) override;

  char* AllocRecordBuffer() override;
  void FreeRecordBuffer(char*& buffer) override;
  void GetBookmarkData(char* buffer, void* data) override;
  TBookmarkFlag GetBookmarkFlag(char* buffer) override;
  TGetResult GetRecord(char* buffer, TGetMode mode, bool check) override;
  std::uint16_t GetRecordSize() override { return recordSize_; }
  void InternalAddRecord(const char* buffer, bool append) override;
  void InternalClose() override;
  void InternalDelete() override;
  void InternalFirst() override;
  void InternalGotoBookmark(const void* bookmark) override;
  void InternalInitFieldDefs() override;
  void InternalInitRecord(char* buffer) override;
  void InternalLast() override;
  void InternalOpen() override;
  void InternalPost() override;
  void InternalSetToRecord(char* buffer) override;
  void SetBookmarkFlag(char* buffer, TBookmarkFlag flag) override;
  void SetBookmarkData(char* buffer, const void* data) override;
  bool IsCursorOn(char* buffer) override;

  // -- For subclasses -------------------------------------------------------------------------------------------------
  TVXRAMCursor* GetCursor() const { return cursor_; }
  /// Takes over a cursor that the subclass has opened for this set.
  void SetCursor(TVXRAMCursor* cursor) { cursor_ = cursor; }
  /// Opens a cursor of the class on the table and takes it over.
  void OpenCursorAs(TClassOf<TVXRAMCursor> cursorClass, TVXRAMCursorDesc& wish);
  /// Brings FieldDefs() up to the table's, so that GetMasterRAMFieldDef can be asked before the set is open.
  void DescribeTable();

  // -- Texts of fields ------------------------------------------------------------------------------------------------
  // Of whichever set the field is in then: a persistent field may outlive this one.

  static void DoDurationFieldGetText(TField* field, std::string& text, bool displayText);
  static void DoDurationFieldSetText(TField* field, const std::string& text);
  static void DoDateTimeFieldGetText(TField* field, std::string& text, bool displayText);
  static void DoDateTimeFieldSetText(TField* field, const std::string& text);
  static void DoFloatFieldGetText(TField* field, std::string& text, bool displayText);

 private:
  friend class TVXMemoryDatasetMasterDataLink;
  class TQuietControls;

  /// A field in the record buffer, and where it lies in a row. Settled at opening; the right half anew when the table's
  /// definitions change.
  struct TSlot {
    TVXRAMFieldRef Field;
    TVXRAMFieldType Type = vxrftBoolean;
    std::uint16_t Offset = 0;    ///< of the value; 0 for a definition that isn't ours
    std::int32_t Size = 0;       ///< of the value
    std::int32_t Position = -1;  ///< among the table's fields; -1 once it is gone or of another type
    TVXRAMFieldSlot Row = {};
  };

  // opening
  void AddFieldDescription(TVXRAMFieldDef& field);
  void AddPersistentDescriptions(const TVXRAMTable& table);
  void SettleBuffers();
  void SetFieldTexts();
  void SetFieldText(TField& field, TVXRAMFieldType type);
  void CloseAnyway() noexcept;

  // slots
  TVXRAMCursor& NeedCursor() const;
  void UpdateSlots();
  void CheckHeld(const TField& field, const TSlot& slot);
  const TSlot* SlotOf(const TField& field);
  static TVXMemoryDatasetFieldState StateOf(const char* buffer, const TSlot& slot);
  static void PutState(char* buffer, const TSlot& slot, TVXMemoryDatasetFieldState state);
  static bool ReadsAsNull(const char* buffer, const TSlot& slot);

  // buffers
  std::int32_t IdOf(const char* buffer) const;
  void PutId(char* buffer, std::int32_t id) const;
  const char* RecordBuffer() const;
  char* GetActiveRecordBuffer();
  void EmptyBufferWithField(char* buffer, const TSlot& slot, TVXMemoryDatasetFieldState state) const;
  void FillBufferWithFields(char* buffer);
  void FillBufferWithField(char* buffer, const TSlot& slot, const TVXRAMRow* row);
  void FillBufferByCursor(char* buffer, const TSlot& slot);
  void CopyRAMCursorBufferToMemoryDatasetBuffer(const TVXRAMRow* row, char* buffer);
  void CheckIndices() const;
  void InternalWriteBuffer(const char* buffer, bool insert, bool append);
  void NoteSeat();
  bool StandOn(const char* buffer);
  void StandOnActive();
  bool GetCalcData(const TField& field, const char* buffer, void* data) const;
  void SetCalcData(const TField& field, char* buffer, const void* data) const;
  void SetRecordData(const TField& field, const TSlot& slot, char* buffer, const void* data) const;
  bool HasCalcRoom(const TField& field) const;

  bool RecordFilter(TVXRAMRow* row, std::int32_t position);
  bool InternalLocate(const std::string& field, const Variant& value, TLocateOptions options, bool sync);
  void FollowMaster();
  [[noreturn]] void RaiseMasterMismatch(const EVariantError& error) const;
  void MasterChanged(TObject* sender);
  void MasterDisabled(TObject* sender);

  TComponentRef<TVXRAMTable> ramTable_;
  TVXRAMCursor* cursor_ = nullptr;            // the table's; CursorClosed tells when it goes
  const TVXRAMIndexDef* indexDef_ = nullptr;  // only compared, never used
  TOwned<TVXMemoryDatasetMasterDataLink> masterLink_;
  std::string detailField_;
  std::string sortedField_;
  std::string indexName_;
  TVXRAMCursorOrder cursorOrder_ = vxrcoAscending;
  bool readOnly_ = false;
  bool refreshAsked_ = false;  // for the table's operation to end
  bool readsRows_ = false;     // the cursor reads rows as they are: no subclass has its own GetFieldValue

  std::uint16_t recordSize_ = 0;
  std::uint16_t bufferSize_ = 0;
  std::uint16_t bookmarkOffset_ = 0;
  std::uint16_t bookmarkFlagOffset_ = 0;
  std::vector<TSlot> slots_;  // by field number - 1
  TComponentRef<TVXRAMTable> described_;
  std::uint64_t layout_ = 0;  // of the table's definitions, as the slots know them
  std::uint32_t openings_ = 0;
  char* filterBuffer_ = nullptr;
  struct TSeat {
    const TVXList* list = nullptr;
    std::uint64_t changes = 0;
    std::int32_t index = -1;
    bool operator==(const TSeat&) const = default;
  };
  TSeat CursorSeat() const;
  TSeat seat_;  // where the set left the cursor
};

namespace VXMemoryDataset_CMP {
/// Puts the data set on the palette page "VX Data Access", and registers the editors of its properties.
void Register();
}  // namespace VXMemoryDataset_CMP

}  // namespace vx
