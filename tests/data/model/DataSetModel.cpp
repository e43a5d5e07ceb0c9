#include "DataSetModel.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "NaiveValues.h"

namespace vx::naive {

namespace {

std::string FieldText(TType type, const TField& value) {
  if (!value.assigned) return "";
  return type == TType::String ? ReadText(value.bytes) : std::to_string(ReadInteger(type, value.bytes));
}

}  // namespace

void TSetCursor::RecordDeletionNotification(TCursor*, TRow* row) {
  if (IsFiltered()) std::erase(filtered, row);
  set.isStale = true;
}

bool TSetCursor::Accepts(const TRow& row, std::int32_t) const {
  const std::size_t field = set.desc.fields[0];
  return ReadInteger(table.fields[field]->type, table.Read(row, field).bytes) % 3 != 1;
}

TSet::TSet(TTable& rows, TSetDesc setDesc, TEvents& allEvents)
    : table(rows), desc(std::move(setDesc)), events(allEvents) {}

void TSet::Tell(const char* event) {
  if (events.Note(desc.name + " " + event)) throw ENaive(events.raised, "");
}

/// Events that are all told, whatever one raises.
void TSet::TellAll(std::initializer_list<const char*> all) {
  std::exception_ptr raised;
  for (const char* const event : all) {
    try {
      Tell(event);
    } catch (const ENaive&) {
      raised = std::current_exception();
    }
  }
  if (raised != nullptr) std::rethrow_exception(raised);
}

void TSet::Open() {
  Tell("BeforeOpen");
  auto made = std::make_unique<TSetCursor>(table, *this);
  cursor = made.get();
  table.cursors.push_back(std::move(made));
  cursor->Open({.name = desc.name,
                .sortedField = desc.sortedField,
                .filterField = desc.detailField,
                .filterValue = desc.masterValue});
  if (desc.filters) cursor->SetOnFilterRecord({.code = 1});
  window.clear();
  active = 0;
  FillWindow();
  bof = true;
  eof = window.empty();
  if (window.empty()) return Tell("AfterOpen");
  TellAll({"AfterOpen", "AfterScroll"});
}

void TSet::Close() {
  Tell("BeforeClose");
  table.Close(std::exchange(cursor, nullptr));
  state = TState::Browse;
  isStale = false;
  Tell("AfterClose");
}

// -- The window -------------------------------------------------------------------------------------------------------

TSet::TRecord TSet::ReadCurrent() {
  const TRow& row = *cursor->CurrentRecord();
  TRecord record{row.id, {}};
  for (const std::size_t field : desc.fields) record.values.push_back(table.Read(row, field));
  return record;
}

/// One step of the cursor and the record there; false without one.
bool TSet::Fetch(char mode, TRecord& record) {
  if (mode == 'C' && (cursor->RecIndex() < 0 || cursor->RecIndex() >= cursor->RecordCount())) return false;
  if (mode == 'N' && cursor->GoToNextRec() != 0) return false;
  if (mode == 'P' && cursor->GoToPreviousRec() != 0) return false;
  record = ReadCurrent();
  return true;
}

bool TSet::FetchNext() {
  if (!window.empty()) Seek(window.back().id);
  TRecord record;
  if (!Fetch('N', record)) return false;
  window.push_back(record);
  if (window.size() <= room) return true;
  window.pop_front();
  if (active > 0) --active;
  return true;
}

bool TSet::FetchPrior() {
  if (!window.empty()) Seek(window.front().id);
  TRecord record;
  if (!Fetch('P', record)) return false;
  if (!window.empty()) ++active;
  window.push_front(record);
  if (window.size() > room) window.pop_back();
  active = std::min(active, window.size() - 1);
  return true;
}

/// As many as there is room for: what comes behind, then what comes before.
void TSet::FillWindow() {
  while (window.size() < room && FetchNext()) continue;
  while (window.size() < room && FetchPrior()) continue;
}

void TSet::SetRoom(std::size_t count) {
  const bool grows = count > room;
  room = count;
  if (grows && state != TState::Insert && !isStale && !window.empty()) FillWindow();  // else when it browses again
  // The active record stays, and so does the one before which a new one is being made.
  const std::size_t needed = state == TState::Insert && active + 1 < window.size() ? 2 : 1;
  for (; active + needed > room; --active) window.pop_front();
  while (window.size() > room) window.pop_back();
}

/// Reads the window anew around the record on which the cursor stands.
void TSet::Resync() {
  TRecord record;
  std::size_t before = active;
  window.clear();
  active = 0;
  bof = eof = true;
  if (!Fetch('C', record) && !Fetch('N', record) && !Fetch('P', record)) return;
  bof = eof = false;
  window.push_back(record);
  for (; before > 0 && FetchPrior(); --before) continue;
  FillWindow();
}

bool TSet::IsThere(std::int32_t id) const {
  const TRows& rows = cursor->ActiveRecordList();
  return std::any_of(rows.begin(), rows.end(), [id](const TRow* row) { return row->id == id; });
}

// -- Moving -----------------------------------------------------------------------------------------------------------

void TSet::First() {
  CheckBrowseMode();
  Tell("BeforeScroll");
  window.clear();
  active = 0;
  cursor->GoToFirstRec();
  FillWindow();
  bof = true;
  eof = window.empty();
  Tell("AfterScroll");
}

void TSet::Last() {
  CheckBrowseMode();
  Tell("BeforeScroll");
  window.clear();
  active = 0;
  cursor->GoToLastRec();
  while (window.size() < room && FetchPrior()) continue;
  active = window.empty() ? 0 : window.size() - 1;
  bof = window.empty();
  eof = true;
  Tell("AfterScroll");
}

void TSet::MoveBy(std::int32_t distance) {
  CheckBrowseMode();
  if (distance == 0 || (distance > 0 ? eof : bof)) return;
  Tell("BeforeScroll");
  bof = eof = false;
  for (; distance > 0 && !eof; --distance) {
    if (active + 1 == window.size() && !FetchNext()) eof = true;
    active = std::min(active + 1, window.size() - 1);
  }
  for (; distance < 0 && !bof; ++distance) {
    if (active == 0 && !FetchPrior()) bof = true;
    if (active > 0) --active;
  }
  Tell("AfterScroll");
}

void TSet::SetRecNo(std::int32_t number) {
  CheckBrowseMode();
  Tell("BeforeScroll");
  cursor->Set_RecIndex(number - 1);
  active = (room - 1) / 2;
  Resync();
  Tell("AfterScroll");
}

void TSet::GotoBookmark(std::int32_t id) {
  if (id == -1) return;
  CheckBrowseMode();
  Tell("BeforeScroll");
  if (!IsThere(id)) throw ENaive("EDatabaseError", "");
  Seek(id);
  active = (room - 1) / 2;
  Resync();
  Tell("AfterScroll");
}

bool TSet::Locate(std::size_t field, std::string text, bool ignoreCase, bool partial) {
  CheckBrowseMode();
  const std::int32_t start = Id();
  if (ignoreCase) text = Upper(text);
  if (!text.empty() && text.back() == '*') text.pop_back();
  if (!partial) First();
  for (; !eof; MoveBy(1)) {
    const std::string found = ValueText(field);
    if (partial ? found.rfind(text, 0) == 0 : (ignoreCase ? Upper(found) : found) == text) return true;
  }
  GotoBookmark(start);
  return false;
}

// -- Changing ---------------------------------------------------------------------------------------------------------

void TSet::InsertNew(bool append) {
  CheckBrowseMode();
  Tell("BeforeInsert");
  Tell("BeforeScroll");
  PlaceNew(append);
  state = TState::Insert;
  modified = false;
  try {
    Tell("OnNewRecord");
  } catch (const ENaive&) {
    DropNew();
    throw;
  }
  TellAll({"AfterInsert", "AfterScroll"});
}

/// An empty record comes into the window, before the active one or behind the last. If there is no room for it, the
/// last record leaves, or if that is the new one's neighbour, the first.
void TSet::PlaceNew(bool append) {
  TRecord record;
  for (const std::size_t field : desc.fields)
    record.values.push_back({false, TBytes(static_cast<std::size_t>(table.fields[field]->size), 0)});
  if (append) {
    window.clear();
    cursor->GoToLastRec();
    while (window.size() < room && FetchPrior()) continue;
    active = window.size();
  }
  if (window.size() == room && active + 1 < room) window.pop_back();
  if (window.size() == room) {
    window.pop_front();
    --active;
  }
  window.insert(window.begin() + static_cast<std::ptrdiff_t>(active), record);
  bof = false;
  eof = append;
}

/// Without the record being made; the one beside it becomes the active one.
void TSet::DropNew() {
  window.erase(window.begin() + static_cast<std::ptrdiff_t>(active));
  active = window.empty() ? 0 : std::min(active, window.size() - 1);
  StandNear();
  Browse();
}

void TSet::Edit() {
  if (state != TState::Browse) return;
  CheckBrowseMode();
  if (window.empty()) return Insert();
  Tell("BeforeEdit");
  state = TState::Edit;
  modified = false;
  Tell("AfterEdit");
}

void TSet::Write(std::size_t field, const TField& value) {
  if (state == TState::Browse) throw ENaive("EDatabaseError", "");
  const auto at = std::find(desc.fields.begin(), desc.fields.end(), field) - desc.fields.begin();
  window[active].values[static_cast<std::size_t>(at)] = value;
  modified = true;
}

/// The active record as the table takes it: fields that the set lacks are null.
TStruct TSet::Filled() const {
  TStruct values;
  for (const auto& field : table.fields) values.push_back({true, field->type, {}});
  for (std::size_t i = 0; i < desc.fields.size(); ++i) {
    const TField& value = window[active].values[i];
    if (!value.assigned) continue;
    values[desc.fields[i]].isNull = false;
    values[desc.fields[i]].bytes = value.bytes;
  }
  return values;
}

/// The controls are asked for what they hold.
void TSet::UpdateRecord() {
  for (std::int32_t i = 0; i < controls; ++i) Tell("UpdateData");
}

void TSet::Post() {
  if (state == TState::Browse) throw ENaive("EDatabaseError", "");
  UpdateRecord();
  PostRecord();
}

void TSet::PostRecord() {
  Tell("BeforePost");
  if (state == TState::Edit) {
    if (!IsThere(Id())) throw ENaive("EDatabaseError", "");
    Seek(Id());
    cursor->UpdateRecWithValues(Filled());
  } else {
    cursor->InsertRecWithValues(Filled(), true);
  }
  Browse();
  Tell("AfterPost");
}

void TSet::Cancel() {
  if (state == TState::Browse) return;
  const bool inserted = state == TState::Insert;
  Tell("BeforeCancel");
  if (inserted) Tell("BeforeScroll");
  if (inserted) {
    DropNew();
    return TellAll({"AfterCancel", "AfterScroll"});
  }
  StandNear();
  Browse();
  Tell("AfterCancel");
}

/// After a change: reads the window anew around the record on which the cursor stands.
void TSet::Browse() {
  state = TState::Browse;
  isStale = false;
  Resync();
}

void TSet::Delete() {
  if (state == TState::Insert) return Cancel();
  if (state == TState::Browse) CheckBrowseMode();
  if (window.empty()) throw ENaive("EDatabaseError", "");
  Tell("BeforeDelete");
  Tell("BeforeScroll");
  if (!IsThere(Id())) throw ENaive("EDatabaseError", "");
  Seek(Id());
  cursor->DeleteRec();
  for (const auto& each : table.cursors)
    if (each.get() != cursor) static_cast<TSetCursor&>(*each).set.RefreshIfStale();
  Browse();
  TellAll({"AfterDelete", "AfterScroll"});
}

void TSet::Refresh() {
  isStale = true;
  RefreshIfStale();
}

void TSet::RefreshIfStale() {
  if (state != TState::Browse || !isStale) return;
  isStale = false;
  StandNear();
  Resync();
}

/// At the active record; where that is gone, at the next that is left, as far as the window knows.
void TSet::StandNear() {
  if (window.empty()) return cursor->GoToFirstRec();
  for (std::size_t i = active; i < window.size(); ++i) {
    Seek(window[i].id);
    if (IsThere(window[i].id)) return;
  }
  for (std::size_t i = active; i-- > 0;) {
    Seek(window[i].id);
    if (!IsThere(window[i].id)) continue;
    cursor->GoToNextRec();  // what comes behind it; nothing if it is the last
    return;
  }
}

void TSet::CheckBrowseMode() {
  RefreshIfStale();
  if (state == TState::Browse) return;
  UpdateRecord();
  modified ? PostRecord() : Cancel();
}

void TSet::MasterChanged(const TValue& value) {
  desc.masterValue = value;
  cursor->SetFilter(desc.detailField, value);
  Resync();
}

void TSet::SetSortedField(const std::string& sortKeys) {
  desc.sortedField = sortKeys;  // kept, also if the record can't be left
  CheckBrowseMode();
  const std::int32_t place = Id();
  cursor->Set_SortedField(sortKeys);
  GotoBookmark(place);
}

// -- Looking ----------------------------------------------------------------------------------------------------------

std::string TSet::ValueText(std::size_t field) const {
  for (std::size_t i = 0; i < desc.fields.size() && !window.empty(); ++i)
    if (desc.fields[i] == field) return FieldText(table.fields[field]->type, window[active].values[i]);
  return "";
}

std::string TSet::CalcText(std::int32_t id, const std::vector<std::string>& values) {
  if (values[0] == "4") return "null";
  std::string text = std::to_string(id);
  for (const std::string& value : values) text += "/" + value;
  return text;
}

/// Null for the record of an empty set.
std::string TSet::RowText(const TRecord* record) const {
  const std::int32_t id = record == nullptr ? -1 : record->id;
  std::string text = "#" + std::to_string(id);
  std::vector<std::string> values;
  for (std::size_t i = 0; i < desc.fields.size(); ++i) {
    const auto& field = *table.fields[desc.fields[i]];
    const bool isNull = record == nullptr || !record->values[i].assigned;
    values.push_back(isNull ? "null" : FieldText(field.type, record->values[i]));
    text += " " + field.name + "=" + values.back();
  }
  if (desc.calculates) text += " Calc=" + (record == nullptr ? "null" : CalcText(id, values));
  return text;
}

std::vector<std::string> TSet::Rows(std::size_t before, std::size_t count) const {
  std::vector<std::string> rows;
  for (std::size_t i = active - before; rows.size() < count && i < window.size(); ++i)
    rows.push_back(RowText(&window[i]));
  return rows;
}

std::string TSet::Text() {
  static const char* const kStates[] = {"browse", "edit", "insert"};
  if (cursor == nullptr) return "closed";
  const std::int32_t id = Id();
  return std::string(kStates[static_cast<std::size_t>(state)]) + (bof ? " bof" : "") + (eof ? " eof" : "") + " at " +
         std::to_string(id) + ", record " + std::to_string(cursor->Get_RecIndexById(id) + 1) + " of " +
         std::to_string(cursor->RecordCount()) + " " + RowText(window.empty() ? nullptr : &window[active]);
}

}  // namespace vx::naive
