#include "DataSetModel.h"

#include <algorithm>

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

TSet::TSet(TTable& rows, TSetDesc setDesc, std::vector<std::string>& allEvents)
    : table(rows), desc(std::move(setDesc)), events(allEvents) {}

void TSet::Open() {
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
  while (window.size() < kWindow && FetchNext()) continue;
  bof = true;
  eof = window.empty();
  Tell("AfterOpen");
  if (!window.empty()) Tell("AfterScroll");
}

void TSet::Reopen() {
  Tell("BeforeClose");
  table.Close(cursor);
  state = TState::Browse;
  isStale = false;
  Tell("AfterClose");
  Tell("BeforeOpen");
  Open();
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
  if (window.size() <= kWindow) return true;
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
  if (window.size() > kWindow) window.pop_back();
  active = std::min(active, window.size() - 1);
  return true;
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
  while (window.size() < kWindow && FetchNext()) continue;
  while (window.size() < kWindow && FetchPrior()) continue;
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
  while (window.size() < kWindow && FetchNext()) continue;
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
  while (window.size() < kWindow && FetchPrior()) continue;
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
  active = 0;  // the middle of two
  Resync();
  Tell("AfterScroll");
}

void TSet::GotoBookmark(std::int32_t id) {
  if (id == -1) return;
  CheckBrowseMode();
  Tell("BeforeScroll");
  if (!IsThere(id)) throw ENaive("EDatabaseError", "");
  Seek(id);
  active = 0;
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

/// The new record and its neighbour are the window: the record before which it stands, or the last one.
void TSet::InsertNew(bool append) {
  CheckBrowseMode();
  Tell("BeforeInsert");
  Tell("BeforeScroll");
  TRecord record;
  for (const std::size_t field : desc.fields)
    record.values.push_back({false, TBytes(static_cast<std::size_t>(table.fields[field]->size), 0)});
  if (append) {
    window.clear();
    cursor->GoToLastRec();
    FetchPrior();
    window.push_back(record);
    active = window.size() - 1;
  } else {
    if (!window.empty()) window = {window[active]};
    window.push_front(record);
    active = 0;
  }
  bof = false;
  eof = append;
  state = TState::Insert;
  modified = false;
  Tell("OnNewRecord");
  Tell("AfterInsert");
  Tell("AfterScroll");
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

void TSet::Post() {
  if (state == TState::Browse) throw ENaive("EDatabaseError", "");
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
    window.erase(window.begin() + static_cast<std::ptrdiff_t>(active));
    active = 0;
  }
  StandNear();
  Browse();
  Tell("AfterCancel");
  if (inserted) Tell("AfterScroll");
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
  Tell("AfterDelete");
  Tell("AfterScroll");
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
  if (state != TState::Browse) modified ? Post() : Cancel();
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

std::string TSet::Text() {
  static const char* const kStates[] = {"browse", "edit", "insert"};
  std::string text = std::string(kStates[static_cast<std::size_t>(state)]) + (bof ? " bof" : "") + (eof ? " eof" : "");
  const std::int32_t id = Id();
  text += " #" + std::to_string(id) + " record " + std::to_string(cursor->Get_RecIndexById(id) + 1) + " of " +
          std::to_string(cursor->RecordCount());
  for (std::size_t i = 0; i < desc.fields.size(); ++i) {
    const bool isNull = window.empty() || !window[active].values[i].assigned;
    text += " " + table.fields[desc.fields[i]]->name + "=" + (isNull ? "null" : ValueText(desc.fields[i]));
  }
  return text;
}

}  // namespace vx::naive
