// DataSetModel.h: data sets over a table of the model, told as plainly as can be.
//
// A set has a window of at most two records, read when the rules say so and not again; one of them is active. Where a
// record stands is found by its id, every time it matters.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "NaiveCursor.h"
#include "NaiveTable.h"

namespace vx::naive {

class TSet;

/// What a set shows, and how.
struct TSetDesc {
  std::string name;
  std::vector<std::size_t> fields;  ///< of the table; those that the set has
  std::string sortedField = {};
  bool filters = false;  ///< rows whose first field is null or 1, 4, 7, … don't pass; but a null reads as 0 here
  TFieldDef* detailField = nullptr;  ///< of a detail; null for the others
  TValue masterValue = {};
};

class TSetCursor : public TCursor {
 public:
  TSetCursor(TTable& rows, TSet& shown) : TCursor(rows), set(shown) {}
  void RecordDeletionNotification(TCursor* origin, TRow* row) override;
  TSet& set;

 protected:
  bool Accepts(const TRow& row, std::int32_t position) const override;
};

class TSet {
 public:
  enum class TState : std::uint8_t { Browse, Edit, Insert };

  TSet(TTable& rows, TSetDesc setDesc, std::vector<std::string>& allEvents);
  void Open();
  /// Gives up a pending record, closes and opens again.
  void Reopen();

  void First();
  void Last();
  void MoveBy(std::int32_t distance);
  void SetRecNo(std::int32_t number);
  void Insert() { InsertNew(false); }
  void Append() { InsertNew(true); }
  void Edit();
  void Post();
  void Cancel();
  void Delete();
  void Refresh();
  void CheckBrowseMode();
  void GotoBookmark(std::int32_t id);
  bool Locate(std::size_t field, std::string text, bool ignoreCase, bool partial);
  /// Writes a value into the record being edited.
  void Write(std::size_t field, const TField& value);
  void MasterChanged(const TValue& value);
  void SetSortedField(const std::string& sortKeys);
  bool IsEditing() const { return state != TState::Browse; }

  /// State, position and values, as text.
  std::string Text();
  std::string ValueText(std::size_t field) const;
  /// Of the active record; -1 for none and for a new one.
  std::int32_t Id() const { return window.empty() ? -1 : window[active].id; }

  TTable& table;
  TSetDesc desc;
  TSetCursor* cursor = nullptr;
  std::vector<std::string>& events;
  bool isStale = false;  ///< to be read anew as soon as it is browsing

 private:
  struct TRecord {
    std::int32_t id = -1;
    std::vector<TField> values;  ///< of desc.fields
  };
  static constexpr std::size_t kWindow = 2;

  void Tell(const char* event) { events.push_back(desc.name + " " + event); }
  TRecord ReadCurrent();
  bool Fetch(char mode, TRecord& record);
  bool FetchNext();
  bool FetchPrior();
  void Resync();
  void RefreshIfStale();
  void StandNear();
  void Browse();
  void InsertNew(bool append);
  TStruct Filled() const;
  void Seek(std::int32_t id) { cursor->Set_RecordID(id); }
  bool IsThere(std::int32_t id) const;

  std::deque<TRecord> window;
  std::size_t active = 0;
  TState state = TState::Browse;
  bool bof = true, eof = true, modified = false;
};

}  // namespace vx::naive
