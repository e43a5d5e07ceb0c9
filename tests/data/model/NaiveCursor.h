// NaiveCursor.h: a cursor of the naive model.
//
// Positions are kept as the physical position in the active list, from -1 to the count; the order maps it to the record
// index.
#pragma once

#include <string>
#include <vector>

#include "NaiveTable.h"

namespace vx::naive {

/// Who is told of deletions: an owner that listens, none, or one of a wrong class.
enum class TOwnerKind : std::uint8_t { Listener, None, Wrong };

/// The record callback: `code` tells callbacks apart when one is set, `salt` is the object behind it.
struct TRecordFilter {
  std::int32_t code = 0;  ///< 0: not assigned
  std::int32_t salt = 0;
  bool Accepts(std::int32_t id, std::int32_t position) const { return (id + position * code + salt) % 3 != 0; }
};

struct TCursorDesc {
  std::string name;  ///< in the log
  TOwnerKind owner = TOwnerKind::Listener;
  std::int32_t indexNb = -1;
  TOrder order = TOrder::Ascending;
  std::string sortedField;
  TFieldDef* filterField = nullptr;
  TValue filterValue;
};

class TCursor {
 public:
  explicit TCursor(TTable& rows) : table(rows) {}
  virtual ~TCursor() = default;
  TCursor(const TCursor&) = delete;
  TCursor& operator=(const TCursor&) = delete;

  /// The steps of construction. A cursor that raises here is never listed.
  virtual void Open(const TCursorDesc& desc);

  // -- Lists and position ---
  virtual TRows& ActiveRecordList() { return IsFiltered() ? filtered : InternalRecordList(); }
  TRows& InternalRecordList() { return index != nullptr ? index->rows : table.mainList; }
  bool IsFiltered() const { return filterField != nullptr || onFilter.code != 0; }
  std::int32_t RecordCount() { return static_cast<std::int32_t>(ActiveRecordList().size()); }
  std::int32_t RecIndex();
  void Set_RecIndex(std::int32_t recIndex);
  bool Eof();
  bool Bof();
  std::int32_t EffectiveRecordIndex();
  virtual TRow* CurrentRecord();
  void GoToFirstRec();
  void GoToLastRec();
  std::int32_t GoToNextRec();
  std::int32_t GoToPreviousRec();
  std::int32_t RecordID();
  void SetRecIndexByID(std::int32_t id);
  void Set_RecordID(std::int32_t id) {
    if (id != -1) SetRecIndexByID(id);
  }
  std::int32_t Get_RecIndexById(std::int32_t id);

  // -- Values ---
  std::string GetFieldValue(std::int32_t field, std::int32_t bufferSize);  ///< told as text
  bool FieldValueIsNull(std::int32_t field);
  void SetFieldValue(std::int32_t field, const TBytes& bytes);
  void ClearFieldValue(std::int32_t field);
  void InsertRec();
  void InsertRecWithValues(const TStruct& values, bool append);
  void UpdateRecWithValues(const TStruct& values);
  virtual void DeleteRec();

  // -- Order and filter ---
  virtual bool Get_CanUseIndex(const std::string& fieldName) { return table.IndexNbByFieldName(fieldName) != -1; }
  void Sort(const std::string& sortKeys);
  void Set_SortedField(const std::string& sortKeys);
  void SetOnFilterRecord(TRecordFilter callback);
  void SetFilter(TFieldDef* field, const TValue& value);
  void RebuildFilteredList(const TRows& source);
  bool IsRecordMatchFilter(const TRow& row) const;

  // -- Brackets ---
  void BeginUpdate();
  void EndUpdate();
  bool IsUpdating() const { return updateCount > 0 || table.updateCount > 0; }

  // -- Told by the table ---
  virtual void RecordInsertionNotification(TRow* row);
  virtual void RecordDeletionNotification(TCursor* origin, TRow* row);
  virtual void RecordEditionNotification(TRow* row);
  void TableClearingNotification();

  TTable& table;
  std::string name;
  TOwnerKind owner = TOwnerKind::Listener;
  TIndex* index = nullptr;
  TOrder order = TOrder::Ascending;
  std::string sortedField;
  TFieldDef* filterField = nullptr;
  TValue filterValue;
  TRecordFilter onFilter;
  TRows filtered;
  std::int32_t physicalIndex = -1;
  std::int32_t updateCount = 0;
  bool updatingRecord = false;

 protected:
  virtual void FilterChange();
  /// What the record callback says of a row of the source.
  virtual bool Accepts(const TRow& row, std::int32_t position) const;
  virtual void StartUpdating() { Log("start updating"); }
  virtual void EndUpdating() { Log("end updating"); }
  void InternalDoSort() { Sort(sortedField); }
  void Log(const std::string& what) const { table.log.push_back(name + " " + what); }
  bool Descending() const { return order == TOrder::Descending; }
  TField ReadCurrent(std::int32_t field);
  TField& WriteCurrent(std::int32_t field);
  void RefreshOwner() const;
  void FilterRows(const TRows& source);
};

}  // namespace vx::naive
