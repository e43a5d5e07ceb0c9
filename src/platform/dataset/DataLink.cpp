#include "platform/dataset/DataLink.h"

#include <algorithm>

#include "platform/component/Published.h"
#include "platform/dataset/DataSetWork.h"

namespace vx {
namespace {

bool IsEditState(TDataSetState state) { return state == dsEdit || state == dsInsert || state == dsSetKey; }

}  // namespace

// -- TDataSource ------------------------------------------------------------------------------------------------------

const TClass& TDataSource::StaticClass() {
  static const TClass info = TClassBuilder<TDataSource>("TDataSource", TComponent::StaticClass())
                                 .Property("AutoEdit", &TDataSource::AutoEdit, &TDataSource::SetAutoEdit)
                                 .Default(true)
                                 .Property("DataSet", &TDataSource::DataSet, &TDataSource::SetDataSet)
                                 .Property("Enabled", &TDataSource::Enabled, &TDataSource::SetEnabled)
                                 .Default(true)
                                 .Property("OnDataChange", &TDataSource::OnDataChange)
                                 .Property("OnStateChange", &TDataSource::OnStateChange)
                                 .Property("OnUpdateData", &TDataSource::OnUpdateData)
                                 .Build();
  return info;
}

TDataSource::TDataSource(TComponent* owner) : TComponent(owner) {}

void TDataSource::TearDown() {
  const TMemoryKeeper<TComponent> keep(this);
  Destroying();
  TFirstError dropped;
  dropped.Run([&] { SetDataSet(nullptr); });
  if (dataSet_ != nullptr) Forget(*dataSet_);
  links_.ForEach([&](TDataLink& link) {
    link.dataSource_ = nullptr;
    links_.Remove(&link);
  });
  TComponent::TearDown();
}

void TDataSource::SetDataSet(TDataSet* dataSet) {
  if (dataSet == dataSet_) return;
  if (IsLinkedTo(dataSet)) DatabaseError("Circular data links are not allowed", this);
  const TMemoryKeeper<TComponent> keep(this), keepFormer(dataSet_), keepNew(dataSet);
  const std::int32_t wish = WishedBufferCount();  // handlers may take links away, and tell nobody then
  TFirstError error;
  if (TDataSet* const former = dataSet_) {
    former->sources_.Remove(this);
    RemoveFreeNotification(former);
    dataSet_ = nullptr;
    error.Run([&] { UpdateState(); });
    error.Run([&] { former->WishChanged(wish, 0); });
  }
  if (dataSet != nullptr && dataSet_ == nullptr && !Is(csDestroying) && !dataSet->Is(csDestroying)) {
    dataSet_ = dataSet;
    FreeNotification(dataSet);
    dataSet->sources_.Add(this);
    error.Run([&] { dataSet->WishChanged(0, WishedBufferCount()); });
    error.Run([&] { UpdateState(); });
  }
  error.Raise();
}

/// Of the link that wishes for most; 0 without one.
std::int32_t TDataSource::WishedBufferCount() const {
  std::int32_t count = 0;
  links_.ForEach([&](const TDataLink& link) { count = std::max(count, link.bufferCount_); });
  return count;
}

/// The data set goes: from now on it isn't touched.
void TDataSource::Forget(TDataSet& dataSet) {
  dataSet.sources_.Remove(this);
  if (dataSet_ != &dataSet) return;
  dataSet_ = nullptr;
  TFirstError dropped;
  dropped.Run([&] { UpdateState(); });
}

void TDataSource::Notification(TComponent* component, TOperation operation) {
  TComponent::Notification(component, operation);
  if (operation == opRemove && component == dataSet_) dataSet_ = nullptr;
}

void TDataSource::SetEnabled(bool value) {
  enabled_ = value;
  UpdateState();
}

void TDataSource::Edit() {
  if (autoEdit_ && state_ == dsBrowse && dataSet_ != nullptr) dataSet_->Edit();
}

bool TDataSource::IsLinkedTo(const TDataSet* dataSet) const {
  while (dataSet != nullptr) {
    const TDataSource* const source = dataSet->GetDataSource();
    if (source == this) return true;
    dataSet = source == nullptr ? nullptr : source->DataSet();
  }
  return false;
}

void TDataSource::AddLink(TDataLink* link) {
  links_.Add(link);
  link->dataSource_ = this;
  TFirstError error;
  if (dataSet_ != nullptr) error.Run([&] { dataSet_->WishChanged(0, link->bufferCount_); });
  error.Run([&] { link->UpdateState(); });
  error.Raise();
}

void TDataSource::RemoveLink(TDataLink* link) {
  links_.Remove(link);
  link->dataSource_ = nullptr;
  TFirstError error;
  if (dataSet_ != nullptr) error.Run([&] { dataSet_->WishChanged(link->bufferCount_, 0); });
  error.Run([&] { link->UpdateState(); });
  error.Raise();
}

void TDataSource::UpdateState() {
  const TDataSetState state = enabled_ && dataSet_ != nullptr ? dataSet_->State() : dsInactive;
  if (state == state_) return;
  const TMemoryKeeper<TComponent> keep(this);
  const bool opened = state_ == dsInactive;
  state_ = state;
  TFirstError error;
  links_.ForEach([&](TDataLink& link) { error.Run([&] { link.UpdateState(); }); });
  if (!Is(csDestroying)) error.Run([&] { OnStateChange(this); });
  if (opened && state_ != dsInactive) error.Run([&] { OnDataChange(this, nullptr); });
  error.Raise();
}

void TDataSource::TellLinks(TDataEvent event, const TDataEventInfo& info) {
  if (event == deUpdateRecord || event == deCheckBrowseMode)
    return links_.ForEach([&](TDataLink& link) { link.DataEvent(event, info); });
  TFirstError error;
  links_.ForEach([&](TDataLink& link) { error.Run([&] { link.DataEvent(event, info); }); });
  error.Raise();
}

void TDataSource::DataEvent(TDataEvent event, const TDataEventInfo& info) {
  if (event == deUpdateState) return UpdateState();
  if (state_ == dsInactive) return;
  const TMemoryKeeper<TComponent> keep(this);
  if (event == deUpdateRecord) {
    TellLinks(event, info);
    OnUpdateData(this);
    return;
  }
  TFirstError error;
  error.Run([&] { TellLinks(event, info); });
  const bool isData = event != deCheckBrowseMode && event != deFieldListChange;
  if (isData && state_ != dsInactive && !info.IsGone()) error.Run([&] { OnDataChange(this, info.Field); });
  error.Raise();
}

// -- TDataLink --------------------------------------------------------------------------------------------------------

const TClass& TDataLink::StaticClass() {
  static const TClass info("TDataLink", &TPersistent::StaticClass());
  return info;
}

void TDataLink::TearDown() {
  if (dataSource_ != nullptr) {
    TDataSource* const source = std::exchange(dataSource_, nullptr);
    source->links_.Remove(this);
    active_ = editing_ = false;
    TFirstError dropped;
    if (source->dataSet_ != nullptr) dropped.Run([&] { source->dataSet_->WishChanged(bufferCount_, 0); });
  }
  TPersistent::TearDown();
}

void TDataLink::ReleaseMemory() {
  if (!TMemoryKeeper<TDataLink>::Delays(*this)) TPersistent::ReleaseMemory();
}

TDataSet* TDataLink::DataSet() const { return dataSource_ == nullptr ? nullptr : dataSource_->DataSet(); }

void TDataLink::SetDataSource(TDataSource* source) {
  if (source == dataSource_ || IsBeingFreed()) return;
  const TMemoryKeeper<TDataLink> keep(this);
  TFirstError error;
  if (dataSource_ != nullptr) error.Run([&] { dataSource_->RemoveLink(this); });
  if (source != nullptr && dataSource_ == nullptr) error.Run([&] { source->AddLink(this); });
  error.Raise();
}

void TDataLink::SetReadOnly(bool value) {
  readOnly_ = value;
  UpdateState();
}

void TDataLink::UpdateState() {
  const TMemoryKeeper<TDataLink> keep(this);
  TFirstError error;
  error.Run([&] { PutActive(dataSource_ != nullptr && dataSource_->State() != dsInactive); });
  error.Run([&] { PutEditing(dataSource_ != nullptr && IsEditState(dataSource_->State()) && !readOnly_); });
  error.Raise();
}

void TDataLink::PutActive(bool active) {
  if (active == active_) return;
  active_ = active;
  firstRecord_ = 0;
  UpdateRange();
  ActiveChanged();
}

void TDataLink::PutEditing(bool editing) {
  if (editing == editing_) return;
  editing_ = editing;
  EditingChanged();
}

bool TDataLink::Edit() {
  const TMemoryKeeper<TDataLink> keep(this);
  if (!readOnly_ && dataSource_ != nullptr) dataSource_->Edit();
  return editing_;
}

void TDataLink::UpdateRecord() {
  const TMemoryKeeper<TDataLink> keep(this);
  const TSwitched updating(updating_);
  UpdateData();
}

// -- The window

void TDataLink::SetBufferCount(std::int32_t count) {
  if (count < 1 || count > kMostRecords) DatabaseError("A link can't show " + std::to_string(count) + " records");
  if (count == bufferCount_) return;
  const TMemoryKeeper<TDataLink> keep(this);  // records are read, and fields calculated
  const std::int32_t former = std::exchange(bufferCount_, count);
  try {
    if (TDataSet* const set = DataSet()) set->WishChanged(former, count);
  } catch (...) {
    if (const TDataSet* const set = DataSet(); set != nullptr && set->bufferCount_ < count) bufferCount_ = former;
    throw;
  }
  UpdateRange();
}

/// The window lies within the buffers, is as full as it can be, and holds the active record.
void TDataLink::UpdateRange() {
  const TDataSet* const set = DataSet();
  if (set == nullptr) return;
  const std::int32_t active = set->activeRecord_;
  const std::int32_t latest = std::min(active, std::max(set->recordCount_ - bufferCount_, 0));
  firstRecord_ = std::clamp(firstRecord_, std::min(std::max(active - bufferCount_ + 1, 0), latest), latest);
}

/// The records have moved by `shift` in the buffers; answers how far the window then moves over the records.
std::int32_t TDataLink::FollowActive(std::int32_t shift) {
  const std::int32_t first = firstRecord_ + shift;
  const std::int32_t active = DataSet()->activeRecord_;
  firstRecord_ = std::clamp(first, std::max(active - bufferCount_ + 1, 0), active);
  return firstRecord_ - first;
}

std::int32_t TDataLink::RecordCount() const {
  const TDataSet* const set = DataSet();
  return active_ && set != nullptr ? std::clamp(set->recordCount_ - firstRecord_, 0, bufferCount_) : 0;
}

std::int32_t TDataLink::ActiveRecord() const {
  const TDataSet* const set = DataSet();
  return active_ && set != nullptr ? set->activeRecord_ - firstRecord_ : 0;
}

void TDataLink::SetActiveRecord(std::int32_t index) {
  TDataSet* const set = DataSet();
  if (index < 0 || index >= RecordCount() || set == nullptr)
    DatabaseError("The link doesn't show a record " + std::to_string(index), set);
  set->activeRecord_ = firstRecord_ + index;
}

bool TDataLink::Bof() const { return !active_ || DataSet() == nullptr || DataSet()->Bof(); }
bool TDataLink::Eof() const { return !active_ || DataSet() == nullptr || DataSet()->Eof(); }

std::int32_t TDataLink::MoveBy(std::int32_t distance) {
  return active_ && DataSet() != nullptr ? DataSet()->MoveBy(distance) : 0;
}

// -- What it hears

void TDataLink::DataEvent(TDataEvent event, const TDataEventInfo& info) {
  if (!active_ || DataSet() == nullptr || info.IsGone()) return;
  const TMemoryKeeper<TDataLink> keep(this);
  if (event == deDataSetChange || event == deLayoutChange) UpdateRange();
  switch (event) {
    case deFieldChange:
      if (!updating_) RecordChanged(info.Field);
      break;
    case deRecordChange:
      RecordChanged(nullptr);
      break;
    case deDataSetChange:
      DataSetChanged();
      break;
    case deDataSetScroll:
      DataSetScrolled(FollowActive(info.Distance));
      break;
    case deLayoutChange:
      LayoutChanged();
      break;
    case deUpdateRecord:
      UpdateRecord();
      break;
    case deCheckBrowseMode:
      CheckBrowseMode();
      break;
    default:
      break;
  }
}

// -- TFieldDataLink ---------------------------------------------------------------------------------------------------

const TClass& TFieldDataLink::StaticClass() {
  static const TClass info("TFieldDataLink", &TDataLink::StaticClass());
  return info;
}

void TFieldDataLink::SetFieldName(const std::string& name) {
  if (name == fieldName_) return;
  fieldName_ = name;
  UpdateField();
}

/// Looks for the field; whoever shows it hears if it is another.
void TFieldDataLink::UpdateField() {
  TDataSet* const set = Active() && !fieldName_.empty() ? DataSet() : nullptr;
  const TMemoryKeeper<TDataLink> keep(this);
  const TMemoryKeeper<TComponent> keepSet(set);
  TField* const field = set == nullptr ? nullptr : set->FindField(fieldName_);
  PutField(field);
  if (set != nullptr && field == nullptr) set->FieldByName(fieldName_);  // raises
}

void TFieldDataLink::PutField(TField* field) {
  if (field == field_.Get()) return;
  field_ = field;
  modified_ = false;
  OnDataChange(this);
}

bool TFieldDataLink::CanModify() const {
  const TField* const field = Field();
  return !ReadOnly() && field != nullptr && field->CanModify();
}

bool TFieldDataLink::Edit() { return CanModify() ? TDataLink::Edit() : Editing(); }

void TFieldDataLink::Reset() { RecordChanged(nullptr); }

void TFieldDataLink::ActiveChanged() {
  TFirstError error;
  error.Run([&] { UpdateField(); });
  error.Run([&] { OnActiveChange(this); });
  error.Raise();
}

void TFieldDataLink::EditingChanged() { OnEditingChange(this); }

void TFieldDataLink::LayoutChanged() {
  TField* const field = Field();
  UpdateField();
  if (field != nullptr && field == Field()) RecordChanged(nullptr);
}

void TFieldDataLink::RecordChanged(TField* field) {
  if (field != nullptr && field != Field()) return;
  modified_ = false;
  OnDataChange(this);
}

void TFieldDataLink::UpdateData() {
  if (!modified_) return;
  if (Field() != nullptr) OnUpdateData(this);
  modified_ = false;
}

void TFieldDataLink::DataEvent(TDataEvent event, const TDataEventInfo& info) {
  if (event == deFieldListChange) {
    TDataSet* const set = DataSet();
    PutField(Active() && set != nullptr ? set->FindField(fieldName_) : nullptr);
    return;
  }
  TDataLink::DataEvent(event, info);
}

void RegisterDataSource() { RegisterClass(TDataSource::StaticClass()); }

}  // namespace vx
