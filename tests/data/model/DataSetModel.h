// DataSetModel.h: data sets over a table of the model, told as plainly as can be.
//
// A set has a window on its records, read when the rules say so and not again; one of them is active. Where a record
// stands is found by its id, every time it matters.
#pragma once

#include <deque>
#include <initializer_list>
#include <string>
#include <vector>

#include "NaiveCursor.h"
#include "NaiveTable.h"

namespace vx::naive {

class TSet;

/// The events that were told, one of which may raise.
struct TEvents {
  std::vector<std::string> lines;
  std::size_t raisesAt = 0;       ///< the event that makes so many; 0: none raises
  std::string raised = "EAbort";  ///< its class
  /// True: this one raises.
  bool Note(const std::string& event) {
    lines.push_back(event);
    return lines.size() == raisesAt;
  }
};

/// What a set shows, and how.
struct TSetDesc {
  std::string name;
  std::vector<std::size_t> fields;  ///< of the table; those that the set has
  bool calculates = false;          ///< a field of the set's own: see CalcText
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

  TSet(TTable& rows, TSetDesc setDesc, TEvents& allEvents);
  void Open();
  /// Gives up a pending record.
  void Close();
  /// How many records the window may hold; at least 2.
  void SetRoom(std::size_t count);

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
  /// Records in the window.
  std::size_t Held() const { return window.size(); }
  /// Values of `count` records, beginning `before` records before the active one.
  std::vector<std::string> Rows(std::size_t before, std::size_t count) const;
  /// The calculated field of a record: its id and its values; null if the first value is 4.
  static std::string CalcText(std::int32_t id, const std::vector<std::string>& values);
  std::string ValueText(std::size_t field) const;
  /// Of the active record; -1 for none and for a new one.
  std::int32_t Id() const { return window.empty() ? -1 : window[active].id; }

  TTable& table;
  TSetDesc desc;
  TSetCursor* cursor = nullptr;  ///< none while it is closed
  std::int32_t controls = 0;     ///< that hear of it
  TEvents& events;
  bool isStale = false;  ///< to be read anew as soon as it is browsing

 private:
  struct TRecord {
    std::int32_t id = -1;
    std::vector<TField> values;  ///< of desc.fields
  };

  void Tell(const char* event);
  void TellAll(std::initializer_list<const char*> all);
  TRecord ReadCurrent();
  bool Fetch(char mode, TRecord& record);
  bool FetchNext();
  bool FetchPrior();
  void Resync();
  void RefreshIfStale();
  void StandNear();
  void Browse();
  void InsertNew(bool append);
  void PlaceNew(bool append);
  void DropNew();
  void FillWindow();
  TStruct Filled() const;
  void UpdateRecord();
  void PostRecord();
  void Seek(std::int32_t id) { cursor->Set_RecordID(id); }
  bool IsThere(std::int32_t id) const;
  std::string RowText(const TRecord* record) const;

  std::deque<TRecord> window;
  std::size_t room = 2;
  std::size_t active = 0;
  TState state = TState::Browse;
  bool bof = true, eof = true, modified = false;
};

}  // namespace vx::naive
