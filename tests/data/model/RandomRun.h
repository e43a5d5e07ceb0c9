// RandomRun.h: one random life of a table: definitions, then calls of every kind, on the model and on the engine.
//
// Left out, since the engine's own safety decides there: structures shorter than the fields in an update, freed definitions under
// open cursors, virtual rows older than a definition, texts that aren't UTF-8, NaN, and a bucketer whose rebuilding failed while it was
// filtered (it is closed at once).
#pragma once

#include <string>
#include <vector>

#include "Dice.h"
#include "Twins.h"

namespace vx::naive {

class TRandomRun {
 public:
  explicit TRandomRun(std::uint32_t seed);

  /// Makes one call; what differs afterwards, or nothing.
  std::string Step();
  std::string Report() const { return twins_.Report(); }

 private:
  struct TOperation {
    std::int32_t weight;
    void (TRandomRun::*run)();
  };
  static const std::vector<TOperation>& Operations();

  // -- Choices ---
  TCursorPair& AnyCursor();
  TCursorPair* AnyBucketer();
  std::int32_t AnyField() { return dice_.Below(static_cast<std::int32_t>(naive_.fields.size())); }
  /// Now and then one position too far.
  std::int32_t AnyFieldOrNone();
  std::int32_t AnyId();
  std::string AnyName();
  std::string AnySortKeys();
  std::string AnyBucketedFields();
  TStruct AnyStruct();
  TStruct AnyStructAndWrongOnes();
  /// Mostly a value that a row has.
  TValue AnyFilterValue(std::int32_t field);
  TBucketFieldDefs AnyBucketFieldDefs();
  bool IsFull();
  TVXRAMFieldDef* RealField(std::int32_t field) const { return real_.Get_FieldDefs()->Get_Item(field); }
  std::string NextName(const std::string& prefix) { return prefix + std::to_string(nextName_++); }
  TCursorDesc AnyDesc(const std::string& prefix);

  // -- Calls ---
  void DefineFields();
  void DefineIndexes();
  void GoToFirst();
  void GoToLast();
  void GoToNext();
  void GoToPrevious();
  void SetRecIndex();
  void SetRecordId();
  void FindById();
  void InsertRec();
  void InsertRecWithValues();
  void AddRecord();
  void AddRecordAndValues();
  void UpdateRecWithValues();
  void SetFieldValue();
  void ClearFieldValue();
  void ReadField();
  void DeleteRec();
  void DeleteRowOfAnother();
  void ClearTable();
  void Sort();
  void SetSortedField();
  void SetOrder();
  void SetFilter();
  void SetFilterField();
  void SetFilterValue();
  void SetOnFilterRecord();
  void RebuildFilteredList();
  void AddIndex();
  void SetIndexField();
  void RebuildIndex();
  void LocateFirst();
  void AddField();
  void DefineField(TType type);
  void MatchFilter();
  void LookUpNames();
  void BracketCursor();
  void BracketTable();
  void WriteRaw();
  void OpenPlain();
  void OpenBucketer();
  void CloseCursor();
  void OpenBadIndex();
  void ChangeBuckets();
  void BuildAllBuckets();
  void AskBuckets();
  void EndUpdate(TCursorPair& pair);

  TDice dice_;
  TTwins twins_;
  TTable& naive_;
  TVXRAMTable& real_;
  std::int32_t maxRows_ = 20;
  std::int32_t nextName_ = 0;
};

}  // namespace vx::naive
