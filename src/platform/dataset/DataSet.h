// DataSet.h: a cursor over records that controls and charts bind to.
//
// A data set keeps a few records in buffers around the active one, its state (browsing, editing, inserting, …) and its
// fields; where records come from is its descendants' affair. It tells its data sources, and those their links, of
// every move and change, once each.
//
//   orders->Open();
//   for (; !orders->Eof(); orders->Next()) total += orders->FieldByName("Quantity")->GetAsInteger();
//
//   orders->Edit();
//   orders->FieldByName("Quantity")->SetAsInteger(12);
//   orders->Post();                                     // or Cancel()
//
// Buffers. There are as many as the link that wishes most, at least two, and a spare one. They are filled when they are
// needed: opening reads as many records as there are buffers, a step at the edge of the buffers one. What stands in
// them is what the record was when it was read.
//
// Events. A Before event may raise: the operation doesn't take place, and nothing has changed. What an After event
// raises is passed on when the operation is done, with the set whole. EAbort is such an exception too: it ends the
// call, and whoever shows errors to a person (Application().HandleException) shows nothing for it. If a handler of a
// Before event closes or frees the set, or leaves the state that the operation was called in, the operation ends with
// an EDatabaseError that says so. Handlers may move, change and close the set as they like, up to kMaxDepth calls
// within each other.
//
// Edits. Moving away, and all that asks CheckBrowseMode(), posts a record that was changed and cancels one that wasn't.
// Close() and freeing give up a pending record; freeing runs no events of the set. Refresh() posts and cancels nothing:
// a set that is being edited (or is at work otherwise) keeps its pending record, and fetches anew as soon as it browses
// again. After Cancel() of an insertion the record is active that was so when Insert() was called; after that of an
// Append(), the last one.
//
// Bookmarks are values. GetBookmark() of an empty set, and of a record not posted yet, is null; GotoBookmark() of a
// null one does nothing at all: no event, no post. One whose record is gone raises "Record not found", and the set
// stays where it was.
//
// Errors. EDatabaseError, which names the set: operations on a closed set, changes to one that can't be modified, a
// field name that isn't there, a required field without a value. What a data set's own source refuses passes through
// OnEditError, OnPostError and OnDeleteError first.
//
// Cost. Next() is a pointer swap and one GetRecord(); nothing is allocated and no event is called that nobody listens
// to. A set belongs to one thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/component/Component.h"
#include "platform/component/EnumInfo.h"
#include "platform/component/EnumSet.h"
#include "platform/component/Event.h"
#include "platform/component/ListenerList.h"
#include "platform/dataset/Field.h"

namespace vx {

class TDataLink;
class TDataSource;
class TFirstError;

enum TDataSetState : std::uint8_t {
  dsInactive,      ///< closed
  dsBrowse,        ///< moving about
  dsEdit,          ///< the active record is being changed
  dsInsert,        ///< a new record is being made
  dsSetKey,        ///< a key is being typed
  dsCalcFields,    ///< OnCalcFields is running
  dsFilter,        ///< a filter is being asked
  dsNewValue,      ///< fields answer what is being written
  dsOldValue,      ///< fields answer what stood before
  dsCurValue,      ///< fields answer what stands now
  dsInternalCalc,  ///< values that the data set itself keeps are being calculated
};
template <>
struct TEnumInfo<TDataSetState> {
  static constexpr std::string_view kTypeName = "TDataSetState";
  static constexpr std::string_view kPrefix = "ds";
  static constexpr std::string_view kNames[] = {"dsInactive", "dsBrowse",     "dsEdit",        "dsInsert",
                                                "dsSetKey",   "dsCalcFields", "dsFilter",      "dsNewValue",
                                                "dsOldValue", "dsCurValue",   "dsInternalCalc"};
};

enum TGetMode : std::uint8_t { gmCurrent, gmNext, gmPrior };
enum TGetResult : std::uint8_t { grOK, grBOF, grEOF, grError };
enum TBookmarkFlag : std::uint8_t {
  bfCurrent,   ///< the record has a place, its bookmark leads to it
  bfBOF,       ///< a new one, of a set that was empty
  bfEOF,       ///< a new one, behind the last
  bfInserted,  ///< a new one, before some record
};
enum TResyncFlag : std::uint8_t {
  rmExact,   ///< the record must still be there; else EDatabaseError "Record not found"
  rmCenter,  ///< the active record comes to stand in the middle of the buffers
};
using TResyncMode = TSetOf<TResyncFlag>;
enum TLocateOption : std::uint8_t { loCaseInsensitive, loPartialKey };
using TLocateOptions = TSetOf<TLocateOption>;

/// What data sources and links hear.
enum TDataEvent : std::uint8_t {
  deFieldChange,      ///< a field was written; with the field
  deRecordChange,     ///< the active record's values are others
  deDataSetChange,    ///< the records in the buffers are others
  deDataSetScroll,    ///< the active record is another; with how far the buffers' records moved
  deLayoutChange,     ///< fields came, went or look different
  deUpdateRecord,     ///< write what you hold into the active record; what is raised ends the post
  deUpdateState,      ///< the state is another
  deCheckBrowseMode,  ///< the set is about to leave the record; what is raised keeps it there
  dePropertyChange,   ///< definitions are out of date; the links don't hear of it
  deFieldListChange,  ///< the list of fields is another
};

/// What comes with a TDataEvent: a field, a distance, or nothing.
struct TDataEventInfo {
  TDataEventInfo() = default;
  TDataEventInfo(TField* field) : Field(field) {}                // NOLINT: given as it is
  TDataEventInfo(std::int32_t distance) : Distance(distance) {}  // NOLINT
  /// The field was freed meanwhile: nobody is told of it any more.
  bool IsGone() const { return Field != nullptr && Field->IsBeingFreed(); }
  TField* Field = nullptr;
  std::int32_t Distance = 0;
};

/// What a handler of OnEditError, OnPostError or OnDeleteError wishes.
enum TDataAction : std::uint8_t {
  daFail,   ///< raise the error (as without a handler)
  daAbort,  ///< raise EAbort: the handler has told the user
  daRetry,  ///< try again: the handler has done something about it
};

/// A record's place as a value, in the bytes of its data set. Null by default.
class TBookmark {
 public:
  TBookmark() = default;
  explicit TBookmark(std::string bytes) : bytes_(std::move(bytes)), isNull_(false) {}
  bool IsNull() const { return isNull_; }
  /// Null for a null bookmark.
  const void* Data() const { return isNull_ ? nullptr : bytes_.data(); }
  const std::string& Bytes() const { return bytes_; }
  bool operator==(const TBookmark&) const = default;

 private:
  std::string bytes_;
  bool isNull_ = true;
};

using TDataSetNotifyEvent = TEvent<void(TDataSet*)>;
using TDataSetErrorEvent = TEvent<void(TDataSet*, Exception&, TDataAction&)>;
using TFilterRecordEvent = TEvent<void(TDataSet*, bool& accept)>;

class TDataSet : public TComponent {
 public:
  /// Operations of one set called from each other's events, or from links: deeper raises EDatabaseError.
  static constexpr std::int32_t kMaxDepth = 200;

  explicit TDataSet(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  /// Closes without events and leaves its data sources.
  void TearDown() override;

  // -- Open and closed ------------------------------------------------------------------------------------------------
  bool GetActive() const { return state_ != dsInactive; }
  /// While a stream reads, true waits for Loaded(). A failure to open leaves the set closed.
  /// Opening: BeforeOpen, the descendant's OpenCursor, the first records, links hear the state, AfterOpen, AfterScroll
  /// (unless empty). Closing: BeforeClose, links hear the state, CloseCursor, AfterClose.
  void SetActive(bool active);
  void Open() { SetActive(true); }
  void Close() { SetActive(false); }
  TDataSetState State() const { return state_; }
  bool CanModify() const { return GetCanModify(); }

  // -- Moving ---------------------------------------------------------------------------------------------------------
  // Each: CheckBrowseMode, BeforeScroll, the move, links hear of it, AfterScroll.
  void First();
  void Last();
  void Next() { MoveBy(1); }
  void Prior() { MoveBy(-1); }
  /// Answers how far it went. Without any effect at the end that it would go to.
  std::int32_t MoveBy(std::int32_t distance);
  /// The last move went to the beginning, or tried to go beyond it. Both are true in an empty set and a closed one.
  bool Bof() const { return bof_; }
  bool Eof() const { return eof_; }
  /// No record, not even one being made. True for a closed set.
  bool IsEmpty() const { return recordCount_ == 0; }
  std::int32_t RecordCount() { return GetRecordCount(); }
  /// From 1; 0 where there is none.
  std::int32_t RecNo() { return GetRecNo(); }
  virtual bool IsSequenced() { return true; }

  // -- Changing -------------------------------------------------------------------------------------------------------
  /// Makes a new record before the active one: BeforeInsert, BeforeScroll, OnNewRecord (what it writes doesn't count as
  /// a change), AfterInsert, AfterScroll.
  void Insert();
  /// Behind the last one.
  void Append();
  /// BeforeEdit, AfterEdit. Of an empty set, Insert(); of one that is being edited, nothing.
  void Edit();
  /// Links write what they hold; required fields are checked; BeforePost; the record goes to its place; AfterPost.
  void Post();
  /// Gives up what was changed. Nothing in browse state.
  void Cancel();
  /// BeforeDelete, BeforeScroll, AfterDelete, AfterScroll. Of a record being made, Cancel(). EDatabaseError for an
  /// empty set.
  void Delete();
  /// Fetches all anew around the active record, or where that is gone the next one that is left, then the one before.
  /// See the head of this file for what it does to pending edits.
  void Refresh();
  /// Append() or Insert() of these values, in the order of the fields, and Post(). An unassigned value leaves the field
  /// as it is. If that fails, the set browses again as before.
  void AppendRecord(const std::vector<Variant>& values);
  void InsertRecord(const std::vector<Variant>& values);
  /// Into the record being edited. EDatabaseError for more values than fields.
  void SetFields(const std::vector<Variant>& values);
  /// All data fields of the record being edited become null.
  void ClearFields();
  /// A field was written since Edit, Insert or Append.
  bool Modified() const { return modified_; }
  /// Posts a record that was changed, cancels one that wasn't; links are asked first.
  void CheckBrowseMode();
  /// Links write what they hold into the record being edited. EDatabaseError if none is.
  void UpdateRecord();

  // -- Bookmarks ------------------------------------------------------------------------------------------------------
  TBookmark GetBookmark();
  /// A null bookmark: nothing happens. A record that is gone: EDatabaseError.
  void GotoBookmark(const TBookmark& bookmark);
  void FreeBookmark(TBookmark& bookmark) { bookmark = {}; }
  /// The bytes; empty for a null bookmark.
  std::string GetBookmarkStr();
  void SetBookmarkStr(const std::string& bookmark);
  virtual bool BookmarkValid(const TBookmark& bookmark);
  /// Below, 0 or above; the base knows only equal (0) and different (their bytes' order).
  virtual std::int32_t CompareBookmarks(const TBookmark& a, const TBookmark& b);

  // -- Searching ------------------------------------------------------------------------------------------------------
  /// The base finds nothing.
  virtual bool Locate(const std::string& keyFields, const Variant& keyValues, TLocateOptions options);
  virtual Variant Lookup(const std::string& keyFields, const Variant& keyValues, const std::string& resultFields);

  // -- Fields ---------------------------------------------------------------------------------------------------------
  std::int32_t FieldCount() const { return static_cast<std::int32_t>(fields_.size()); }
  std::int32_t GetFieldCount() const { return FieldCount(); }
  /// EListError outside.
  TField* Fields(std::int32_t index) const;
  /// Letter case is ignored. EDatabaseError that names field and data set.
  TField* FieldByName(std::string_view name) const;
  /// Null if there is none.
  TField* FindField(std::string_view name) const;
  /// Of several names separated by ";", an array.
  Variant GetFieldValue(const std::string& names) const;
  void SetFieldValue(const std::string& names, const Variant& value);
  /// Of the fields; of a closed set without fields those of its definitions, which are asked for.
  std::vector<std::string> GetFieldNames();
  TFieldDefs& FieldDefs() { return *fieldDefs_; }
  /// The fields were made at opening and go at closing; else they are persistent ones.
  bool DefaultFields() const { return defaultFields_; }
  /// Writing a data field of the record being edited calculates the calculated fields anew. True at first.
  bool AutoCalcFields() const { return autoCalcFields_; }
  void SetAutoCalcFields(bool value) { autoCalcFields_ = value; }

  // -- Who shows it ---------------------------------------------------------------------------------------------------
  /// Links hear nothing until EnableControls() was called as often; then of one change of the whole.
  void DisableControls();
  /// Calls beyond those of DisableControls() have no effect.
  void EnableControls();
  bool ControlsDisabled() const { return disableCount_ > 0; }
  /// Whether `source` shows this set, or one that depends on it as a detail on its master.
  bool IsLinkedTo(const TDataSource* source) const;

  // -- Filter ---------------------------------------------------------------------------------------------------------
  bool Filtered() const { return filtered_; }
  /// Kept; what it means is the descendants' affair.
  virtual void SetFiltered(bool value) { filtered_ = value; }
  const TFilterRecordEvent& GetOnFilterRecord() const { return onFilterRecord_; }

  // -- Events ---------------------------------------------------------------------------------------------------------
  TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose, BeforeInsert, AfterInsert, BeforeEdit, AfterEdit,
      BeforePost, AfterPost, BeforeCancel, AfterCancel, BeforeDelete, AfterDelete, BeforeScroll, AfterScroll,
      OnNewRecord, OnCalcFields;
  TDataSetErrorEvent OnEditError, OnPostError, OnDeleteError;

 protected:
  void Loaded() override;

  // -- What descendants provide, first half ---------------------------------------------------------------------------
  /// Zeroes the calculated part of a record buffer.
  virtual void ClearCalcFields(char* buffer) { static_cast<void>(buffer); }
  /// The base gives the buffers back and calls InternalClose(). Overriders let go of their cursor first.
  virtual void CloseCursor();
  virtual bool GetCanModify() const { return true; }

 public:
  /// The master's source of a detail; null for others.
  virtual TDataSource* GetDataSource() const { return nullptr; }
  /// -1 where that isn't known.
  virtual std::int32_t GetRecordCount() { return -1; }
  virtual std::int32_t GetRecNo() { return -1; }

 protected:
  /// The base: for an info query only InternalInitFieldDefs(), else InternalOpen() and the buffers. Overriders make
  /// their cursor first.
  virtual void OpenCursor(bool infoQuery);

 public:
  /// The base stores it.
  virtual void SetOnFilterRecord(const TFilterRecordEvent& event) { onFilterRecord_ = event; }
  /// Goes to a record by its number. The base does nothing.
  virtual void SetRecNo(std::int32_t value) { static_cast<void>(value); }

 protected:
  // -- What descendants provide: buffers and records ------------------------------------------------------------------
  /// A record buffer, with its calculated part, bookmark and flag; freed by FreeRecordBuffer.
  virtual char* AllocRecordBuffer() = 0;
  /// Sets `buffer` to null.
  virtual void FreeRecordBuffer(char*& buffer) = 0;
  /// BookmarkSize() bytes from the buffer into `data`.
  virtual void GetBookmarkData(char* buffer, void* data) = 0;
  virtual TBookmarkFlag GetBookmarkFlag(char* buffer) = 0;
  /// Moves the cursor as `mode` says and fills the buffer, its bookmark and flag, and by GetCalcFields() its calculated
  /// part. `check`: errors are raised, not only answered.
  virtual TGetResult GetRecord(char* buffer, TGetMode mode, bool check) = 0;
  virtual std::uint16_t GetRecordSize() = 0;
  virtual void InternalAddRecord(const char* buffer, bool append) = 0;
  virtual void InternalClose() = 0;
  /// The cursor stands on the active record.
  virtual void InternalDelete() = 0;
  /// The cursor comes to stand before the first record.
  virtual void InternalFirst() = 0;
  /// `bookmark` has BookmarkSize() bytes.
  virtual void InternalGotoBookmark(const void* bookmark) = 0;
  /// An error that no caller hears of.
  virtual void InternalHandleException(const std::exception& error);
  /// Fills FieldDefs() anew.
  virtual void InternalInitFieldDefs() = 0;
  /// An empty record.
  virtual void InternalInitRecord(char* buffer) = 0;
  /// The cursor comes to stand behind the last record.
  virtual void InternalLast() = 0;
  /// Sets the bookmark size, fills FieldDefs(), makes fields (CreateFields, if DefaultFields()) and binds them
  /// (BindFields); from then on buffers can be allocated. The cursor stands before the first record.
  virtual void InternalOpen() = 0;
  /// ActiveBuffer() goes to its place: a change of the record that the cursor stands on (dsEdit), else a new one
  /// (dsInsert). The cursor then stands on it.
  virtual void InternalPost() = 0;
  /// The cursor comes to stand on the buffer's record.
  virtual void InternalSetToRecord(char* buffer) = 0;
  virtual bool IsCursorOpen() = 0;
  virtual void SetBookmarkFlag(char* buffer, TBookmarkFlag flag) = 0;
  virtual void SetBookmarkData(char* buffer, const void* data) = 0;

 public:
  /// A field's value in its native form (see TFieldType) into the buffer of the state. Null clears. Tells DataEvent
  /// (deFieldChange, &field) where the state is one of editing.
  virtual void SetFieldData(TField& field, const void* buffer) = 0;
  /// The native form from the buffer of the state; `buffer` may be null. False for a null value.
  virtual bool GetFieldData(const TField& field, void* buffer) = 0;

 protected:
  // -- What descendants may add to ------------------------------------------------------------------------------------
  /// Whether the cursor still stands on the buffer's record, where the set left it. Who shares records with others,
  /// whose insertions move it, has to look; the base trusts that nobody did.
  virtual bool IsCursorOn(char* buffer) {
    static_cast<void>(buffer);
    return true;
  }
  /// Before the state becomes dsEdit; may raise.
  virtual void InternalEdit() {}
  /// The buffers are about to be given up; the state is still dsEdit or dsInsert.
  virtual void InternalCancel() {}
  /// Before records are fetched anew.
  virtual void InternalRefresh() {}
  /// Overriders call the inherited one, which calls the event of that name. Those of Open and Scroll above all.
  virtual void DoBeforeOpen() { Ask(BeforeOpen, "BeforeOpen"); }
  virtual void DoAfterOpen();
  virtual void DoBeforeClose() { Ask(BeforeClose, "BeforeClose"); }
  virtual void DoAfterClose() { AfterClose(this); }
  virtual void DoBeforeInsert() { Ask(BeforeInsert, "BeforeInsert"); }
  virtual void DoAfterInsert() { AfterInsert(this); }
  virtual void DoBeforeEdit() { Ask(BeforeEdit, "BeforeEdit"); }
  virtual void DoAfterEdit() { AfterEdit(this); }
  virtual void DoBeforePost() { Ask(BeforePost, "BeforePost"); }
  virtual void DoAfterPost() { AfterPost(this); }
  virtual void DoBeforeCancel() { Ask(BeforeCancel, "BeforeCancel"); }
  virtual void DoAfterCancel() { AfterCancel(this); }
  virtual void DoBeforeDelete() { Ask(BeforeDelete, "BeforeDelete"); }
  virtual void DoAfterDelete() { AfterDelete(this); }
  virtual void DoBeforeScroll() { Ask(BeforeScroll, "BeforeScroll"); }
  virtual void DoAfterScroll() { AfterScroll(this); }
  virtual void DoOnNewRecord() { Ask(OnNewRecord, "OnNewRecord"); }
  virtual void DoOnCalcFields() { OnCalcFields(this); }

  // -- Services: buffers ----------------------------------------------------------------------------------------------
  /// The active record's buffer. EDatabaseError for a closed set.
  char* ActiveBuffer() const;
  /// The buffer whose calculated fields are being calculated; null outside dsCalcFields.
  char* CalcBuffer() const { return calcBuffer_; }
  std::int32_t BufferCount() const { return bufferCount_; }
  /// Position of the active record in the buffers.
  std::int32_t ActiveRecord() const { return activeRecord_; }
  std::int32_t BookmarkSize() const { return bookmarkSize_; }
  void SetBookmarkSize(std::int32_t size) { bookmarkSize_ = size; }
  /// Bytes of all calculated and lookup fields: for each one that says whether it has a value, then the value. Known
  /// after BindFields(true); a field's share begins at its Offset().
  std::int32_t CalcFieldsSize() const { return calcFieldsSize_; }
  /// No record is in the buffers any more. Links aren't told.
  void ClearBuffers();
  /// Calculates the calculated and lookup fields of a buffer, in state dsCalcFields. Free of cost where there are none.
  void GetCalcFields(char* buffer);
  /// Fetches the buffers anew around the record on which the cursor stands: that one, else the next, else the one
  /// before; none left clears the buffers. With rmExact that one or EDatabaseError. Links hear deDataSetChange.
  void Resync(TResyncMode mode);
  /// EDatabaseError for a closed set, and while a record is read or a filter asked: the buffers stay as they are then.
  void CheckCanFetch() const;
  /// Makes the cursor stand on the active record, if it doesn't.
  void UpdateCursorPos();

  // -- Services: fields -----------------------------------------------------------------------------------------------
  /// Gives fields their numbers from the definitions of their names, and calculated ones their offsets; or takes them
  /// back. EDatabaseError for a field without a definition, or of another type than it.
  void BindFields(bool binding);
  /// Makes a field for each definition.
  void CreateFields();
  /// Frees all fields.
  void DestroyFields();

  // -- Services: state ------------------------------------------------------------------------------------------------
  /// EDatabaseError for a closed set, an open one.
  void CheckActive() const;
  void CheckInactive() const;
  void CheckCanModify() const;
  /// Tells data sources and links. While controls are disabled, only deUpdateRecord and deCheckBrowseMode get through.
  /// All are told, whatever one raises; the first error is passed on then. Links that are asked (deUpdateRecord,
  /// deCheckBrowseMode) may end it. Where nobody may miss it (deFieldListChange), disabled controls hear it too.
  void DataEvent(TDataEvent event, TDataEventInfo info = {});
  /// Links hear deUpdateState.
  void SetState(TDataSetState state);
  /// Changes the state without a word; answers the one before, for RestoreState().
  TDataSetState SetTempState(TDataSetState state) { return std::exchange(state_, state); }
  /// Without effect if the set was freed meanwhile.
  void RestoreState(TDataSetState state) {
    if (state_ != dsInactive) state_ = state;
  }
  /// For the TearDown() of descendants: closes without events of the set; what is raised is dropped.
  void CloseQuietly() noexcept;
  void SetModified(bool value) { modified_ = value; }
  /// Runs a handler that may refuse. EDatabaseError if afterwards the set is closed, freed or in another state.
  void Ask(const TDataSetNotifyEvent& event, const char* name);
  /// The set's name for messages.
  [[noreturn]] void RaiseError(const std::string& message) const;
  class TWork;  // in DataSetWork.h
  class TCall;  // likewise; for operations that descendants add

 private:
  friend class TField;
  friend class TDataLink;
  friend class TDataSource;

  // fields
  void AddField(TField& field);
  void RemoveField(TField& field) noexcept;
  void BindField(TField& field);
  std::vector<TField*> FieldsOf(const std::string& names) const;
  void CheckRequiredFields() const;

  // buffers
  void AllocateBuffers(std::int32_t count);
  void FreeBuffers(std::size_t kept) noexcept;
  void FreeOrphans() noexcept;
  void MoveBuffer(std::int32_t from, std::int32_t to);
  void ActivateBuffers();
  void SetCurrentRecord(std::int32_t index);
  bool Read(TGetMode mode, bool check);
  bool GetNextRecord();
  bool GetPriorRecord();
  std::int32_t GetNextRecords();
  std::int32_t GetPriorRecords();
  bool FetchCurrent(bool exact);
  void Refetch(TResyncMode mode);
  void StandNear();
  std::int32_t WishedBufferCount() const;
  void WishChanged(std::int32_t former, std::int32_t now);
  void UpdateBufferCount();
  void GrowBuffers(std::int32_t count);
  using TWindow = std::pair<const char*, std::int32_t>;
  using TWindows = std::map<const TDataLink*, TWindow>;
  TWindows Windows() const;
  TWindow WindowOf(const TDataLink& link) const;
  void TellChangedWindows(const TWindows& before, const TWork& work);
  void ShrinkBuffers(std::int32_t count);
  void ShiftLinks(std::int32_t distance);

  // moving
  std::int32_t StepForward(std::int32_t distance, std::int32_t& shift);
  std::int32_t StepBack(std::int32_t distance, std::int32_t& shift);
  void GoToEnd(bool last);
  void FinishMove(TFirstError& error, TDataEvent event, std::int32_t distance);

  // opening and closing
  void OpenSet();
  void CloseSet();
  void ReadFirst();
  void DropCursor();

  // changing
  void BeginNew(bool append);
  void PlaceNew(bool append);
  void FillNew();
  void DropNew();
  void PostRecord();
  void CancelRecord();
  void EndChange(const std::function<void()>& stand, const std::function<void()>& after);
  void AddValues(const std::vector<Variant>& values, bool append);
  void Try(void (TDataSet::*operation)(), const TDataSetErrorEvent& event);
  bool ShallRetry(const TDataSetErrorEvent& event, Exception& error);
  void RefreshNow();
  void CheckEditing() const;
  void CheckHasRecord() const;
  bool IsEditing() const { return state_ == dsEdit || state_ == dsInsert; }

  // telling
  void FieldChanged(TField* field);
  void TellSources(TDataEvent event, const TDataEventInfo& info);

  TDataSetState state_ = dsInactive;
  TDataSetState disabledState_ = dsInactive;  // when controls were disabled
  TDataEvent enableEvent_ = deDataSetChange;  // what links hear when they are enabled
  bool bof_ = true, eof_ = true, modified_ = false, defaultFields_ = true, autoCalcFields_ = true, filtered_ = false;
  bool openWaits_ = false;     // for Loaded()
  bool refreshWaits_ = false;  // until it browses
  bool countWaits_ = false;    // likewise, for the number of buffers that links wish
  bool switching_ = false;     // it is being opened or closed
  bool atWork_ = false;        // InternalPost or InternalDelete is running, and ends with fetching anew
  bool muted_ = false;         // many fields are written: links hear of all at once
  std::int32_t disableCount_ = 0;
  bool tooDeep_ = false;     // calls were nested too deep, and haven't all ended yet
  std::int32_t calls_ = 0;   // of operations, within each other
  std::int32_t depth_ = 0;   // of whatever keeps the buffers
  std::uint32_t epoch_ = 0;  // raised at each opening and closing
  // buffers_[0 … recordCount_ - 1] hold records, in their order; bufferCount_ may; the one behind is spare
  std::vector<char*> buffers_;
  std::vector<char*> orphans_;  // given up while an operation may still be looking at them
  std::int32_t bufferCount_ = 0;
  std::int32_t recordCount_ = 0;
  std::int32_t activeRecord_ = 0;
  std::int32_t currentRecord_ = -1;  // the buffer on whose record the cursor stands; -1 if on none of them
  std::int32_t bookmarkSize_ = 0;
  std::int32_t calcFieldsSize_ = 0;
  char* calcBuffer_ = nullptr;
  std::vector<TField*> fields_;
  std::vector<TOwned<TField>> ownFields_;  // the default ones
  TOwned<TFieldDefs> fieldDefs_;
  TListenerList<TDataSource> sources_;
  TFilterRecordEvent onFilterRecord_;
};

}  // namespace vx
