// DataLink.h: how those who show or follow a data set hear of it.
//
// A TDataSource stands between a data set and everybody who shows it: give it another data set, and all show that one.
// A TDataLink is what one control (or a detail set, or a chart) holds: its overridables are what it hears. A
// TFieldDataLink is bound to one field and speaks by events.
//
//   TDataSource* source = New<TDataSource>(form);
//   source->SetDataSet(orders);
//   TOwned<TFieldDataLink> link = Make<TFieldDataLink>();
//   link->OnDataChange = [&](TObject*) { edit.SetText(link->Field() == nullptr ? "" : link->Field()->Text()); };
//   link->SetFieldName("Quantity");
//   link->SetDataSource(source);                                  // the handler runs: the field is there
//
// Ownership. A source doesn't own its data set, nor a link its source: whoever goes first is forgotten by the others.
// Links may come, go and free each other while they are told something.
//
// What is heard. Each change is told once, to links first (in the order of their coming), then by the source's event.
// All are told even if one raises; the first error is passed on then. A source that isn't enabled is deaf, and its
// links aren't active.
//
// A window on the records. A link that shows several records at once says how many (SetBufferCount). The data set keeps
// as many in its buffers as the greediest link wants; each link sees its own window on them, in which the active record
// always stands.
#pragma once

#include <cstdint>
#include <string>

#include "platform/component/ListenerList.h"
#include "platform/component/MemoryKeeper.h"
#include "platform/dataset/DataSet.h"

namespace vx {

class TDataSource : public TComponent {
 public:
  using TDataChangeEvent = TEvent<void(TObject*, TField*)>;

  explicit TDataSource(TComponent* owner = nullptr);
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  TDataSet* DataSet() const { return dataSet_; }
  /// Null for none. EDatabaseError if the data set is a detail of this source (a circle).
  void SetDataSet(TDataSet* dataSet);
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool value);
  /// Typing into a control begins an edit. True at first.
  bool AutoEdit() const { return autoEdit_; }
  void SetAutoEdit(bool value) { autoEdit_ = value; }
  /// That of the data set; dsInactive without one and while not enabled.
  TDataSetState State() const { return state_; }
  /// Begins an edit if AutoEdit() and the state allow.
  void Edit();
  bool IsLinkedTo(const TDataSet* dataSet) const;

  TNotifyEvent OnStateChange;
  /// With the field that was written; null: any may be another.
  TDataChangeEvent OnDataChange;
  /// Last chance to write into the record before it is posted.
  TNotifyEvent OnUpdateData;

 protected:
  void Notification(TComponent* component, TOperation operation) override;

 private:
  friend class TDataLink;
  friend class TDataSet;

  void AddLink(TDataLink* link);
  void RemoveLink(TDataLink* link);
  void DataEvent(TDataEvent event, const TDataEventInfo& info);
  void UpdateState();
  void TellLinks(TDataEvent event, const TDataEventInfo& info);
  void Forget(TDataSet& dataSet);
  std::int32_t WishedBufferCount() const;

  TDataSet* dataSet_ = nullptr;
  TListenerList<TDataLink> links_;
  TDataSetState state_ = dsInactive;
  bool enabled_ = true;
  bool autoEdit_ = true;
};

class TDataLink : public TPersistent {
 public:
  TDataLink() = default;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  // -- Place ----------------------------------------------------------------------------------------------------------
  TDataSource* DataSource() const { return dataSource_; }
  /// Null for none.
  void SetDataSource(TDataSource* source);
  /// The source's; null for none.
  TDataSet* DataSet() const;
  /// There is an open data set, and its source is enabled.
  bool Active() const { return active_; }
  /// A record is being edited, and the link may write.
  bool Editing() const { return editing_; }
  bool ReadOnly() const { return readOnly_; }
  void SetReadOnly(bool value);
  /// Begins an edit where that is allowed; answers Editing().
  bool Edit();
  /// Writes what the control holds into the record; as at a post.
  void UpdateRecord();

  // -- The window -----------------------------------------------------------------------------------------------------
  /// How many records it shows at most; 1 at first.
  std::int32_t BufferCount() const { return bufferCount_; }
  /// 1 to kMostRecords; EDatabaseError otherwise. If the set can't have as many buffers, nothing has changed.
  void SetBufferCount(std::int32_t count);
  static constexpr std::int32_t kMostRecords = 1'000'000;
  /// How many it shows.
  std::int32_t RecordCount() const;
  /// The data set's active record, counted from the first that is shown.
  std::int32_t ActiveRecord() const;
  /// For painting: fields answer the values of that record of the window until it is set back. Nobody is told.
  /// EDatabaseError outside 0 to RecordCount - 1.
  void SetActiveRecord(std::int32_t index);
  bool Bof() const;
  bool Eof() const;
  std::int32_t MoveBy(std::int32_t distance);

 protected:
  ~TDataLink() override = default;
  void ReleaseMemory() override;

  // -- What it hears --------------------------------------------------------------------------------------------------
  /// Active() is another.
  virtual void ActiveChanged() {}
  /// The record is about to be left: finish what is under way, or raise.
  virtual void CheckBrowseMode() {}
  /// The records are others. The base: RecordChanged(null).
  virtual void DataSetChanged() { RecordChanged(nullptr); }
  /// The active record is another; the window has moved by `distance` records. The base: DataSetChanged().
  virtual void DataSetScrolled(std::int32_t distance) {
    static_cast<void>(distance);
    DataSetChanged();
  }
  /// Editing() is another.
  virtual void EditingChanged() {}
  /// Fields came, went or look different. The base: DataSetChanged().
  virtual void LayoutChanged() { DataSetChanged(); }
  /// With the field that was written; null: any may be another.
  virtual void RecordChanged(TField* field) { static_cast<void>(field); }
  /// Write what you hold into the record.
  virtual void UpdateData() {}
  /// All of it; the base sorts it to the above. Overriders call the inherited one.
  virtual void DataEvent(TDataEvent event, const TDataEventInfo& info);

 private:
  friend class TDataSource;
  friend class TDataSet;
  friend class TMemoryKeeper<TDataLink>;

  void UpdateState();
  void PutActive(bool active);
  void PutEditing(bool editing);
  void UpdateRange();
  std::int32_t FollowActive(std::int32_t shift);

  TDataSource* dataSource_ = nullptr;
  std::int32_t firstRecord_ = 0;  // the buffer that the window begins with
  std::int32_t bufferCount_ = 1;
  bool active_ = false;
  bool editing_ = false;
  bool readOnly_ = false;
  bool updating_ = false;  // UpdateData is running: what it writes isn't told to this link
  std::int32_t keepers_ = 0;
  bool released_ = false;
};

class TFieldDataLink : public TDataLink {
 public:
  TFieldDataLink() = default;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  const std::string& FieldName() const { return fieldName_; }
  /// Bound as soon as the data set is open and has it; EDatabaseError if it is open and hasn't.
  void SetFieldName(const std::string& name);
  /// Null while not active and without a name.
  TField* Field() const { return field_.Get(); }
  /// Not read-only, and the field may be written.
  bool CanModify() const;
  /// The control that holds the link; for messages and for the control's own use. Not owned.
  TComponent* Control() const { return control_; }
  void SetControl(TComponent* control) { control_ = control; }

  /// Begins an edit where field and link allow it; answers Editing().
  bool Edit();
  /// The control holds something that isn't in the record yet: OnUpdateData is called for it.
  void Modified() { modified_ = true; }
  bool IsModified() const { return modified_; }
  /// The control shows the record's value again, what it held is given up.
  void Reset();

  TNotifyEvent OnDataChange;
  TNotifyEvent OnEditingChange;
  TNotifyEvent OnUpdateData;
  TNotifyEvent OnActiveChange;

 protected:
  void ActiveChanged() override;
  void EditingChanged() override;
  void LayoutChanged() override;
  void RecordChanged(TField* field) override;
  void UpdateData() override;
  void DataEvent(TDataEvent event, const TDataEventInfo& info) override;

 private:
  void UpdateField();
  void PutField(TField* field);

  std::string fieldName_;
  TComponentRef<TField> field_;
  TComponent* control_ = nullptr;
  bool modified_ = false;
};

/// Registers TDataSource, so that it can be streamed; it stands on no page.
void RegisterDataSource();

}  // namespace vx
