// NaiveTable.h: a table of the naive model: definitions, lists of rows, indexes, and the cursors to be told of changes.
//
// Everything is public: the random test looks at all of it. Two lists take rows: AddRecord feeds the base index only,
// AddRecordAndValues the main list only; every index by a field gets both.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "NaiveTypes.h"

namespace vx::naive {

class TCursor;

/// An index by a field: its definition and its list in one.
struct TIndex {
  TFieldDef* field = nullptr;  ///< none until it is named
  TRows rows;
};

class TTable {
 public:
  explicit TTable(std::string tableName);
  ~TTable();
  TTable(const TTable&) = delete;
  TTable& operator=(const TTable&) = delete;

  // -- Definitions ---
  TFieldDef& AddField(const std::string& fieldName, TType type, std::int32_t size);
  TIndex& AddIndex();
  void SetIndexField(TIndex& index, const std::string& fieldName);
  std::int32_t FieldNbByName(const std::string& fieldName) const;
  std::int32_t IndexNbByFieldName(const std::string& fieldName) const;
  std::int32_t IndexNbByFieldNb(std::int32_t field) const;
  const TFieldDef& Field(std::int32_t field) const;
  std::size_t NbOf(const TFieldDef* field) const;
  TFieldDef* Def(std::int32_t field) { return fields.at(static_cast<std::size_t>(field)).get(); }

  // -- Rows ---
  TRow* NewRow();
  /// A field of a row. One that was defined after the row was made reads as null.
  TField Read(const TRow& row, std::size_t field) const;
  /// The same to be written; a row that is too short raises.
  TField& Write(TRow& row, std::size_t field) const;
  /// Rows that were made and not released.
  std::int64_t AllocatedRows() const;
  std::int32_t RecCount() const { return static_cast<std::int32_t>(baseIndex.size()); }
  std::int32_t AddRecord(std::int32_t indexNb, std::int32_t& id);
  std::int32_t AddRecordAndValues(const TStruct& values, std::int32_t indexNb, std::int32_t position, std::int32_t& id,
                                  bool append);
  void DeleteRecord(TCursor* origin, TRow* row);
  void ClearTable();

  // -- Order ---
  void ReBuild(TIndex& index);
  std::int32_t LocateFirst(const TIndex& index, const TBytes& key) const;
  std::int32_t CompareBySortFields(const TRow* a, const TRow* b) const;

  // -- Brackets and cursors ---
  void BeginUpdate() { ++updateCount; }
  void EndUpdate() { updateCount -= updateCount > 0 ? 1 : 0; }
  TIndex* IndexForCursor(std::int32_t indexNb);
  void Close(TCursor* cursor);

  std::string name;
  std::int32_t startOfWeek = 1;
  std::vector<std::unique_ptr<TFieldDef>> fields;
  std::vector<std::unique_ptr<TIndex>> indexes;
  TRows baseIndex;
  TRows mainList;
  std::vector<std::unique_ptr<TCursor>> cursors;
  std::vector<TFieldDef*> sortFields;  ///< last item first
  std::int32_t nextId = 0;
  std::int32_t updateCount = 0;
  std::vector<std::string> log;  ///< who heard what, in order

 private:
  void Guard(const std::string& what) const;
  void WriteStruct(TRow& row, const TStruct& values) const;

  std::vector<std::unique_ptr<TRow>> pool_;
};

/// What a structure says whose types aren't the table's.
inline const char* const kTypeMismatch =
    "DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldArrayPtr^[ VI ].FieldType and FFieldDefs[ VI ].DataType.";

}  // namespace vx::naive
