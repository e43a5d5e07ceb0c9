// DataSet.cpp: the class, opening and closing, and telling those who show it.
#include "platform/dataset/DataSet.h"

#include <algorithm>

#include "platform/component/Published.h"
#include "platform/dataset/DataLink.h"
#include "platform/dataset/DataSetWork.h"
#include "platform/system/Application.h"

namespace vx {
namespace {

/// Asks its listeners, who may refuse; all other events tell of what has happened.
bool IsQuestion(TDataEvent event) { return event == deUpdateRecord || event == deCheckBrowseMode; }

}  // namespace

const TClass& TDataSet::StaticClass() {
  // All of it is for descendants to publish.
  static const TClass info = TClassBuilder<TDataSet>("TDataSet", TComponent::StaticClass())
                                 .Property("Active", &TDataSet::GetActive, &TDataSet::SetActive)
                                 .Default(false)
                                 .Hidden()
                                 .Property("AutoCalcFields", &TDataSet::AutoCalcFields, &TDataSet::SetAutoCalcFields)
                                 .Default(true)
                                 .Hidden()
                                 .Property("Filtered", &TDataSet::Filtered, &TDataSet::SetFiltered)
                                 .Default(false)
                                 .Hidden()
                                 .Property("AfterCancel", &TDataSet::AfterCancel)
                                 .Hidden()
                                 .Property("AfterClose", &TDataSet::AfterClose)
                                 .Hidden()
                                 .Property("AfterDelete", &TDataSet::AfterDelete)
                                 .Hidden()
                                 .Property("AfterEdit", &TDataSet::AfterEdit)
                                 .Hidden()
                                 .Property("AfterInsert", &TDataSet::AfterInsert)
                                 .Hidden()
                                 .Property("AfterOpen", &TDataSet::AfterOpen)
                                 .Hidden()
                                 .Property("AfterPost", &TDataSet::AfterPost)
                                 .Hidden()
                                 .Property("AfterScroll", &TDataSet::AfterScroll)
                                 .Hidden()
                                 .Property("BeforeCancel", &TDataSet::BeforeCancel)
                                 .Hidden()
                                 .Property("BeforeClose", &TDataSet::BeforeClose)
                                 .Hidden()
                                 .Property("BeforeDelete", &TDataSet::BeforeDelete)
                                 .Hidden()
                                 .Property("BeforeEdit", &TDataSet::BeforeEdit)
                                 .Hidden()
                                 .Property("BeforeInsert", &TDataSet::BeforeInsert)
                                 .Hidden()
                                 .Property("BeforeOpen", &TDataSet::BeforeOpen)
                                 .Hidden()
                                 .Property("BeforePost", &TDataSet::BeforePost)
                                 .Hidden()
                                 .Property("BeforeScroll", &TDataSet::BeforeScroll)
                                 .Hidden()
                                 .Property("OnCalcFields", &TDataSet::OnCalcFields)
                                 .Hidden()
                                 .Property("OnDeleteError", &TDataSet::OnDeleteError)
                                 .Hidden()
                                 .Property("OnEditError", &TDataSet::OnEditError)
                                 .Hidden()
                                 .Property("OnFilterRecord", &TDataSet::GetOnFilterRecord, &TDataSet::SetOnFilterRecord)
                                 .Hidden()
                                 .Property("OnNewRecord", &TDataSet::OnNewRecord)
                                 .Hidden()
                                 .Property("OnPostError", &TDataSet::OnPostError)
                                 .Hidden()
                                 .Build();
  return info;
}

TDataSet::TDataSet(TComponent* owner) : TComponent(owner), fieldDefs_(Make<TFieldDefs>(this)) {}

void TDataSet::TearDown() {
  const TMemoryKeeper<TComponent> keep(this);
  Destroying();
  CloseQuietly();
  sources_.ForEach([&](TDataSource& source) { source.Forget(*this); });
  DestroyFields();
  for (TField* const field : fields_) field->dataSet_ = nullptr;
  fields_.clear();
  TComponent::TearDown();
}

// -- Open and closed --------------------------------------------------------------------------------------------------

void TDataSet::SetActive(bool active) {
  if (Is(csLoading)) {
    openWaits_ = active;
    return;
  }
  if (active == GetActive()) return;
  if (switching_) RaiseError("The data set is being opened or closed");
  active ? OpenSet() : CloseSet();
}

void TDataSet::Loaded() {
  TComponent::Loaded();
  if (!std::exchange(openWaits_, false)) return;
  try {
    Open();
  } catch (const std::exception& error) {
    if (!Is(csDesigning)) throw;
    InternalHandleException(error);  // a form in its editor opens, whatever its data does
  }
}

void TDataSet::OpenSet() {
  if (Is(csDestroying)) RaiseError("The data set is being freed");
  TCall work(*this);
  {
    const TSwitched switching(switching_);
    DoBeforeOpen();
    try {
      OpenCursor(false);
      if (!Is(csDestroying)) {
        state_ = dsBrowse;
        ReadFirst();
      }
      if (Is(csDestroying)) RaiseError("The data set was freed while it was opened");
    } catch (...) {
      DropCursor();
      throw;
    }
    ++epoch_;
    work.NoteEpoch();
  }
  TFirstError error;
  error.Run([&] { DataEvent(deUpdateState); });
  if (work.IsOpen()) error.Run([&] { DoAfterOpen(); });
  error.Raise();
}

void TDataSet::OpenCursor(bool infoQuery) {
  if (infoQuery) {
    InternalInitFieldDefs();
    return;
  }
  defaultFields_ = fields_.empty();
  InternalOpen();
}

void TDataSet::ReadFirst() {
  ClearBuffers();
  AllocateBuffers(WishedBufferCount());
  GetNextRecords();
  bof_ = true;
}

/// After an opening that failed. What goes wrong now is a consequence of that.
void TDataSet::DropCursor() {
  state_ = dsInactive;
  TFirstError dropped;
  dropped.Run([&] { CloseCursor(); });
}

void TDataSet::CloseCursor() {
  FreeBuffers(0);
  ClearBuffers();
  InternalClose();
}

void TDataSet::CloseSet() {
  if (state_ != dsBrowse && state_ != dsSetKey && !IsEditing())
    RaiseError("The data set can't be closed in the state " + EnumText(state_));
  if (atWork_) RaiseError("The data set can't be closed while a record is written");
  const TWork work(*this);
  TFirstError error;
  {
    const TSwitched switching(switching_);
    DoBeforeClose();
    state_ = dsInactive;
    modified_ = refreshWaits_ = countWaits_ = false;
    ++epoch_;
    error.Run([&] { DataEvent(deUpdateState); });
    error.Run([&] { CloseCursor(); });
  }
  error.Run([&] { DoAfterClose(); });
  error.Raise();
}

void TDataSet::CloseQuietly() noexcept {
  if (state_ == dsInactive && buffers_.empty()) return;
  const TMemoryKeeper<TComponent> keep(this);
  state_ = dsInactive;
  modified_ = refreshWaits_ = countWaits_ = false;
  ++epoch_;
  TFirstError dropped;
  dropped.Run([&] { DataEvent(deUpdateState); });
  dropped.Run([&] { CloseCursor(); });
}

void TDataSet::DoAfterOpen() {
  const TWork work(*this);
  TFirstError error;
  error.Run([&] { AfterOpen(this); });
  if (work.IsOpen() && !IsEmpty()) error.Run([&] { DoAfterScroll(); });
  error.Raise();
}

// -- State ------------------------------------------------------------------------------------------------------------

void TDataSet::RaiseError(const std::string& message) const { DatabaseError(message, this); }

void TDataSet::CheckActive() const {
  if (state_ == dsInactive) RaiseError("Not possible while the data set is closed");
}

void TDataSet::CheckInactive() const {
  if (state_ != dsInactive) RaiseError("Not possible while the data set is open");
}

void TDataSet::CheckCanModify() const {
  if (!GetCanModify()) RaiseError("The data set can't be modified");
}

void TDataSet::CheckEditing() const {
  CheckActive();
  if (!IsEditing()) RaiseError("No record is being edited or inserted");
}

void TDataSet::CheckHasRecord() const {
  if (recordCount_ == 0) RaiseError("The data set has no record");
}

void TDataSet::SetState(TDataSetState state) {
  if (state_ == state) return;
  state_ = state;
  modified_ = false;
  DataEvent(deUpdateState);
}

void TDataSet::Ask(const TDataSetNotifyEvent& event, const char* name) {
  if (!event) return;
  const TWork work(*this);
  const TDataSetState state = state_;
  const std::uint32_t epoch = epoch_;
  event(this);
  if (Is(csDestroying)) RaiseError(std::string("The handler of ") + name + " has freed the data set");
  if (state == state_ && epoch == epoch_) return;
  RaiseError(std::string("The handler of ") + name + " has taken the data set from " + EnumText(state) + " to " +
             EnumText(state_));
}

void TDataSet::InternalHandleException(const std::exception& error) { Application().HandleException(error, this); }

// -- Telling ----------------------------------------------------------------------------------------------------------

void TDataSet::DataEvent(TDataEvent event, TDataEventInfo info) {
  if (event == dePropertyChange) return;  // definitions are asked for anew whenever they are needed
  if (event == deFieldChange) return FieldChanged(info.Field);
  const bool mustHear =
      IsQuestion(event) || event == deFieldListChange || (event == deUpdateState && state_ == dsInactive);
  if (disableCount_ == 0 || mustHear) {
    if (disableCount_ > 0 && event == deUpdateState) disabledState_ = dsInactive;
    TellSources(event, info);
  } else if (event == deLayoutChange) {
    enableEvent_ = deLayoutChange;
  }
}

void TDataSet::TellSources(TDataEvent event, const TDataEventInfo& info) {
  if (sources_.Empty()) return;
  const TMemoryKeeper<TComponent> keep(this), keepField(info.Field);
  TFirstError error;
  sources_.ForEach([&](TDataSource& source) {
    if (IsQuestion(event))
      source.DataEvent(event, info);
    else
      error.Run([&] { source.DataEvent(event, info); });
  });
  error.Raise();
}

void TDataSet::FieldChanged(TField* field) {
  if (field == nullptr || !field->IsCalculated()) modified_ = true;
  const bool calculates =
      autoCalcFields_ && calcFieldsSize_ > 0 && IsEditing() && field != nullptr && field->FieldKind() == fkData;
  const TCall work(*this);
  TFirstError error;
  if (calculates) error.Run([&] { GetCalcFields(ActiveBuffer()); });
  if (muted_ || disableCount_ > 0 || sources_.Empty() || !work.IsOpen()) return error.Raise();
  error.Run([&] { TellSources(deFieldChange, field); });
  for (std::size_t i = 0; calculates && work.IsOpen() && i < fields_.size(); ++i) {
    TField* const other = fields_[i];
    if (other->IsCalculated()) error.Run([&] { TellSources(deFieldChange, other); });
  }
  error.Raise();
}

void TDataSet::DisableControls() {
  if (disableCount_++ > 0) return;
  disabledState_ = state_;
  enableEvent_ = deDataSetChange;
}

void TDataSet::EnableControls() {
  if (disableCount_ == 0 || --disableCount_ > 0) return;
  const TWork work(*this);
  TFirstError error;
  if (disabledState_ != state_) error.Run([&] { DataEvent(deUpdateState); });
  if (disabledState_ != dsInactive && work.IsOpen()) {
    error.Run([&] {
      const TCall call(*this);
      DataEvent(enableEvent_);
    });
  }
  error.Raise();
}

bool TDataSet::IsLinkedTo(const TDataSource* source) const {
  while (source != nullptr && source->DataSet() != nullptr) {
    if (source->DataSet() == this) return true;
    source = source->DataSet()->GetDataSource();
  }
  return false;
}

}  // namespace vx
