// ArraySet.h: a data set over an array of records in memory, several sets to one array, for testing the engine alone.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/dataset/DataSet.h"

namespace vx::test {

struct TArrayRow {
  std::int32_t Id = 0;
  bool HasNumber = false;
  std::int32_t Number = 0;
};

class TArraySet;
struct TArrayStore {
  std::vector<TArrayRow> Rows;
  std::int32_t LastId = 0;
  std::vector<TArraySet*> Open;
  bool RefusesPosts = false;
};

/// Field 1 "Id" (of the array), field 2 "Number".
class TArraySet : public TDataSet {
 public:
  TArraySet(TComponent* owner, std::shared_ptr<TArrayStore> store) : TDataSet(owner), store_(std::move(store)) {}
  void TearDown() override {
    CloseQuietly();
    TDataSet::TearDown();
  }

  /// What the active record's buffer says of it; -1 for a new one or none.
  std::int32_t ActiveId() const { return IsEmpty() ? -1 : Head(ActiveBuffer()).Row.Id; }
  std::int32_t GetRecordCount() override { return static_cast<std::int32_t>(store_->Rows.size()); }
  using TDataSet::CheckInactive;
  std::int32_t Buffers() const { return BufferCount(); }
  std::int32_t Reads = 0;
  bool ReadOnly = false;
  std::int32_t Room = 1000;  // for record buffers

  bool GetFieldData(const TField& field, void* target) override {
    const char* const buffer = State() == dsCalcFields ? CalcBuffer() : IsEmpty() ? nullptr : ActiveBuffer();
    if (buffer == nullptr) return false;
    const TArrayRow& row = Head(buffer).Row;
    if (field.FieldNo() < 1) {
      const char* const at = buffer + sizeof(THead) + field.Offset();
      if (*at != 0 && target != nullptr) std::memcpy(target, at + 1, static_cast<std::size_t>(field.DataSize()));
      return *at != 0;
    }
    const bool has = field.FieldNo() == 1 ? row.Id >= 0 : row.HasNumber;
    if (has && target != nullptr) std::memcpy(target, field.FieldNo() == 1 ? &row.Id : &row.Number, 4);
    return has;
  }
  void SetFieldData(TField& field, const void* source) override {
    char* const buffer = State() == dsCalcFields ? CalcBuffer() : ActiveBuffer();
    if (field.FieldNo() < 1) {
      char* const at = buffer + sizeof(THead) + field.Offset();
      *at = source != nullptr;
      if (source != nullptr) std::memcpy(at + 1, source, static_cast<std::size_t>(field.DataSize()));
    } else {
      TArrayRow& row = Head(buffer).Row;
      row.HasNumber = source != nullptr;
      if (source != nullptr) std::memcpy(&row.Number, source, 4);
    }
    if (State() != dsCalcFields) DataEvent(deFieldChange, &field);
  }

 protected:
  struct THead {
    TArrayRow Row;
    TBookmarkFlag Flag;
  };
  static THead& Head(char* buffer) { return *reinterpret_cast<THead*>(buffer); }
  static const THead& Head(const char* buffer) { return *reinterpret_cast<const THead*>(buffer); }

  char* AllocRecordBuffer() override {
    if (Room == 0) throw std::bad_alloc();
    --Room;
    return new char[sizeof(THead) + static_cast<std::size_t>(CalcFieldsSize())]();
  }
  void FreeRecordBuffer(char*& buffer) override {
    ++Room;
    delete[] buffer;
    buffer = nullptr;
  }
  void ClearCalcFields(char* buffer) override {
    std::memset(buffer + sizeof(THead), 0, static_cast<std::size_t>(CalcFieldsSize()));
  }
  bool GetCanModify() const override { return !ReadOnly; }
  void GetBookmarkData(char* buffer, void* data) override { std::memcpy(data, &Head(buffer).Row.Id, 4); }
  void SetBookmarkData(char* buffer, const void* data) override { std::memcpy(&Head(buffer).Row.Id, data, 4); }
  TBookmarkFlag GetBookmarkFlag(char* buffer) override { return Head(buffer).Flag; }
  void SetBookmarkFlag(char* buffer, TBookmarkFlag flag) override { Head(buffer).Flag = flag; }
  std::uint16_t GetRecordSize() override { return sizeof(THead); }

  TGetResult GetRecord(char* buffer, TGetMode mode, bool) override {
    ++Reads;
    const auto count = static_cast<std::int32_t>(store_->Rows.size());
    if (mode == gmNext && at_ + 1 >= count) return grEOF;
    if (mode == gmPrior && at_ < 1) return grBOF;
    at_ += mode == gmNext ? 1 : mode == gmPrior ? -1 : 0;
    if (at_ < 0 || at_ >= count) return grError;
    Head(buffer) = {store_->Rows[static_cast<std::size_t>(at_)], bfCurrent};
    GetCalcFields(buffer);
    return grOK;
  }
  void InternalAddRecord(const char*, bool) override {}
  void InternalClose() override {
    BindFields(false);
    if (DefaultFields()) DestroyFields();
    open_ = false;
    std::erase(store_->Open, this);
  }
  void InternalDelete() override {
    store_->Rows.erase(store_->Rows.begin() + at_);
    for (TArraySet* const set : std::vector(store_->Open)) set->Refresh();
  }
  void InternalFirst() override { at_ = -1; }
  void InternalLast() override { at_ = static_cast<std::int32_t>(store_->Rows.size()); }
  void InternalGotoBookmark(const void* bookmark) override {
    std::int32_t id = 0;
    std::memcpy(&id, bookmark, 4);
    const auto& rows = store_->Rows;
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const TArrayRow& row) { return row.Id == id; });
    at_ = found == rows.end() ? -1 : static_cast<std::int32_t>(found - rows.begin());
  }
  bool IsCursorOn(char* buffer) override {
    const auto& rows = store_->Rows;
    return at_ >= 0 && at_ < std::ssize(rows) && rows[static_cast<std::size_t>(at_)].Id == Head(buffer).Row.Id;
  }
  void InternalSetToRecord(char* buffer) override { InternalGotoBookmark(&Head(buffer).Row.Id); }
  void InternalInitFieldDefs() override {
    FieldDefs().Clear();
    FieldDefs().Add("Id", ftInteger);
    FieldDefs().Add("Number", ftInteger);
  }
  void InternalInitRecord(char* buffer) override { Head(buffer).Row = {-1, false, 0}; }
  void InternalOpen() override {
    SetBookmarkSize(4);
    InternalInitFieldDefs();
    if (DefaultFields()) CreateFields();
    BindFields(true);
    at_ = -1;
    open_ = true;
    store_->Open.push_back(this);
  }
  void InternalPost() override {
    if (store_->RefusesPosts) throw EDatabaseError("The store refuses");
    TArrayRow row = Head(ActiveBuffer()).Row;
    auto& rows = store_->Rows;
    if (State() == dsEdit) {
      if (at_ < 0 || rows[static_cast<std::size_t>(at_)].Id != row.Id) throw EDatabaseError("The row is gone");
      rows[static_cast<std::size_t>(at_)] = row;
      return;
    }
    row.Id = ++store_->LastId;
    at_ = std::clamp(at_, 0, static_cast<std::int32_t>(rows.size()));
    rows.insert(rows.begin() + at_, row);
  }
  bool IsCursorOpen() override { return open_; }

 private:
  std::shared_ptr<TArrayStore> store_;
  std::int32_t at_ = -1;
  bool open_ = false;
};

inline std::shared_ptr<TArrayStore> StoreOf(std::int32_t count) {
  auto store = std::make_shared<TArrayStore>();
  for (std::int32_t i = 1; i <= count; ++i) store->Rows.push_back({i, true, i * 10});
  store->LastId = count;
  return store;
}

}  // namespace vx::test
