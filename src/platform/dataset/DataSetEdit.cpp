// DataSetEdit.cpp: making, changing and deleting records.
//
// The state, the buffers and the cursor change together and before anybody is told, so that a handler always meets a
// set that is whole, and an error from one doesn't leave half a change behind.
#include <algorithm>
#include <utility>

#include "platform/dataset/DataLink.h"
#include "platform/dataset/DataSet.h"
#include "platform/dataset/DataSetWork.h"

namespace vx {

void TDataSet::CheckBrowseMode() {
  CheckActive();
  if (state_ == dsBrowse && sources_.Empty() && !refreshWaits_ && !atWork_) return;
  const TCall work(*this);
  if (atWork_) RaiseError("Not possible while a record is written");
  if (state_ == dsBrowse && std::exchange(countWaits_, false)) UpdateBufferCount();
  if (refreshWaits_ && state_ == dsBrowse) RefreshNow();
  DataEvent(deCheckBrowseMode);
  CheckActive();
  if (state_ == dsBrowse) return;
  if (!IsEditing()) RaiseError("Not possible in the state " + EnumText(state_));
  UpdateRecord();
  if (IsEditing()) modified_ ? PostRecord() : CancelRecord();
  CheckActive();
}

void TDataSet::UpdateRecord() {
  CheckEditing();
  const TCall work(*this);
  DataEvent(deUpdateRecord);
}

// -- New records ------------------------------------------------------------------------------------------------------

void TDataSet::Insert() { BeginNew(false); }
void TDataSet::Append() { BeginNew(true); }

void TDataSet::BeginNew(bool append) {
  const TCall work(*this);
  CheckBrowseMode();
  CheckCanModify();
  DoBeforeInsert();
  DoBeforeScroll();
  try {
    PlaceNew(append);
  } catch (...) {
    refreshWaits_ = true;  // the buffers may be short
    throw;
  }
  TFirstError error;
  try {
    FillNew();
  } catch (...) {
    error.Run([] { throw; });
    if (state_ == dsInsert && work.IsOpen()) error.Run([&] { EndChange([this] { DropNew(), StandNear(); }, [] {}); });
    error.Raise();
  }
  error.Run([&] { DataEvent(deUpdateState); });
  if (work.IsOpen()) error.Run([&] { DataEvent(deDataSetChange); });
  if (work.IsOpen()) error.Run([&] { DoAfterInsert(); });
  if (work.IsOpen()) error.Run([&] { DoAfterScroll(); });
  error.Raise();
}

/// An empty buffer becomes the active one: before the active record, or behind the last one.
void TDataSet::PlaceNew(bool append) {
  if (append) {
    InternalLast();
    ClearBuffers();
    GetPriorRecord();
    GetPriorRecords();
    CheckActive();  // calculating fields may have ended it
    activeRecord_ = recordCount_;
  }
  if (recordCount_ == bufferCount_) {
    // One record has to leave, but not the neighbour of the new one.
    if (activeRecord_ >= bufferCount_ - 1) {
      MoveBuffer(0, bufferCount_);
      --activeRecord_;
      ShiftLinks(-1);
    }
    --recordCount_;
  }
  const bool wasEmpty = recordCount_ == 0;
  char* const buffer = buffers_[static_cast<std::size_t>(recordCount_)];
  InternalInitRecord(buffer);
  ClearCalcFields(buffer);
  SetBookmarkFlag(buffer, wasEmpty ? bfBOF : append ? bfEOF : bfInserted);
  MoveBuffer(recordCount_, activeRecord_);
  ++recordCount_;
  currentRecord_ = -1;
  bof_ = false;
  eof_ = append;
}

void TDataSet::FillNew() {
  state_ = dsInsert;
  modified_ = false;
  const TSwitched muted(muted_);
  DoOnNewRecord();
  GetCalcFields(ActiveBuffer());
  modified_ = false;
}

/// The record being made leaves the buffers; the one beside it becomes the active one.
void TDataSet::DropNew() {
  if (recordCount_ == 0 || GetBookmarkFlag(ActiveBuffer()) == bfCurrent) return;
  MoveBuffer(activeRecord_, recordCount_ - 1);
  --recordCount_;
  currentRecord_ = -1;
  activeRecord_ = std::max(std::min(activeRecord_, recordCount_ - 1), 0);
  if (recordCount_ == 0) ClearBuffers();
}

// -- Changes ----------------------------------------------------------------------------------------------------------

void TDataSet::Edit() {
  const TCall work(*this);
  CheckActive();
  if (IsEditing()) return;
  CheckBrowseMode();
  if (recordCount_ == 0) return Insert();
  CheckCanModify();
  DoBeforeEdit();
  CheckHasRecord();
  Try(&TDataSet::InternalEdit, OnEditError);
  CheckActive();
  state_ = dsEdit;
  modified_ = false;
  TFirstError error;
  error.Run([&] { DataEvent(deUpdateState); });
  if (work.IsOpen()) error.Run([&] { DoAfterEdit(); });
  error.Raise();
}

void TDataSet::Post() {
  const TCall work(*this);
  if (atWork_) RaiseError("Not possible while a record is written");
  UpdateRecord();
  DataEvent(deCheckBrowseMode);
  CheckEditing();
  PostRecord();
}

void TDataSet::PostRecord() {
  CheckRequiredFields();
  DoBeforePost();
  Try(&TDataSet::InternalPost, OnPostError);
  EndChange([] {}, [this] { DoAfterPost(); });
}

void TDataSet::Cancel() {
  const TCall work(*this);
  CheckActive();
  if (atWork_) RaiseError("Not possible while a record is written");
  if (IsEditing()) CancelRecord();
}

void TDataSet::CancelRecord() {
  const bool wasNew = state_ == dsInsert;
  DoBeforeCancel();
  if (wasNew) DoBeforeScroll();
  InternalCancel();
  EndChange([this] { DropNew(), StandNear(); },
            [this, wasNew] {
              const TWork work(*this);
              TFirstError error;
              error.Run([&] { DoAfterCancel(); });
              if (wasNew && work.IsOpen()) error.Run([&] { DoAfterScroll(); });
              error.Raise();
            });
}

void TDataSet::Delete() {
  const TCall work(*this);
  CheckActive();
  if (state_ == dsInsert) return Cancel();
  if (state_ == dsEdit) {
    DataEvent(deCheckBrowseMode);
    CheckActive();
  } else {
    CheckBrowseMode();
  }
  CheckCanModify();
  CheckHasRecord();
  DoBeforeDelete();
  DoBeforeScroll();
  CheckHasRecord();
  Try(&TDataSet::InternalDelete, OnDeleteError);
  EndChange([] {},
            [this] {
              const TWork inner(*this);
              TFirstError error;
              error.Run([&] { DoAfterDelete(); });
              if (inner.IsOpen()) error.Run([&] { DoAfterScroll(); });
              error.Raise();
            });
}

/// The set browses again. `stand` puts the cursor on the record to be active; `after` runs when all have been told.
void TDataSet::EndChange(const std::function<void()>& stand, const std::function<void()>& after) {
  if (!GetActive()) return;  // freed meanwhile
  const TWork work(*this);
  const bool wasBrowsing = state_ == dsBrowse;
  state_ = dsBrowse;
  modified_ = false;
  TFirstError error;
  error.Run([&] {
    if (std::exchange(refreshWaits_, false)) InternalRefresh();
    stand();
    Refetch({});
  });
  if (error.Any() && work.IsOpen()) {
    refreshWaits_ = true;
    error.Run([&] { DropNew(); });
  }
  if (!wasBrowsing && work.IsOpen()) error.Run([&] { DataEvent(deUpdateState); });
  if (work.IsOpen()) error.Run([&] { DataEvent(deDataSetChange); });
  if (work.IsOpen()) error.Run(after);
  error.Raise();
}

/// Runs what may fail by the fault of the records, and lets the handler say what becomes of a failure.
void TDataSet::Try(void (TDataSet::*operation)(), const TDataSetErrorEvent& event) {
  for (;;) {
    try {
      const TSwitched working(atWork_);
      UpdateCursorPos();
      (this->*operation)();
      return;
    } catch (const EAbort&) {
      throw;
    } catch (Exception& error) {
      currentRecord_ = -1;
      if (!ShallRetry(event, error)) throw;
    }
  }
}

bool TDataSet::ShallRetry(const TDataSetErrorEvent& event, Exception& error) {
  const TWork work(*this);
  const TDataSetState state = state_;
  TDataAction action = daFail;
  event(this, error, action);
  if (!work.IsOpen() || state_ != state) return false;
  if (action == daAbort) throw EAbort("Operation aborted");
  return action == daRetry;
}

// -- Refreshing -------------------------------------------------------------------------------------------------------

void TDataSet::Refresh() {
  CheckActive();
  if (state_ != dsBrowse || atWork_) {
    refreshWaits_ = true;
    return;
  }
  RefreshNow();
}

void TDataSet::RefreshNow() {
  const TCall work(*this);
  refreshWaits_ = false;
  InternalRefresh();
  StandNear();
  Resync({});
}

// -- Whole records ----------------------------------------------------------------------------------------------------

void TDataSet::AppendRecord(const std::vector<Variant>& values) { AddValues(values, true); }
void TDataSet::InsertRecord(const std::vector<Variant>& values) { AddValues(values, false); }

void TDataSet::AddValues(const std::vector<Variant>& values, bool append) {
  const TCall work(*this);
  BeginNew(append);
  try {
    SetFields(values);
    Post();
  } catch (...) {
    TFirstError error;
    error.Run([] { throw; });
    if (state_ == dsInsert && work.IsOpen()) error.Run([&] { Cancel(); });
    error.Raise();
  }
}

void TDataSet::SetFields(const std::vector<Variant>& values) {
  const TWork work(*this);
  CheckEditing();
  if (std::ssize(values) > FieldCount())
    RaiseError(std::to_string(values.size()) + " values for " + std::to_string(FieldCount()) + " fields");
  for (std::size_t i = 0; i < values.size() && i < fields_.size(); ++i)
    if (!values[i].IsEmpty()) fields_[i]->SetAsVariant(values[i]);
}

void TDataSet::ClearFields() {
  const TCall work(*this);
  CheckEditing();
  {
    const TSwitched muted(muted_);
    for (std::size_t i = 0; i < fields_.size(); ++i)
      if (fields_[i]->FieldKind() == fkData) fields_[i]->Clear();
  }
  DataEvent(deRecordChange);
}

}  // namespace vx
