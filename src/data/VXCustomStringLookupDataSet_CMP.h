// VXCustomStringLookupDataSet_CMP.h: a small table of keys and texts as a data set that only reads.
//
// What controls and lookup fields turn a code into a text with, and back. Its two fields are "ID" (integer) and
// "String" (text of 240 bytes; a longer one is cut at a code point). It has no rows of its own: descendants answer by
// index.
//
//   auto units = Make<TVXLookupDataSet>(nullptr);
//   units->AddLookupValue(1, "Day");
//   units->AddLookupValue(2, "Week");
//   units->Open();
//   units->LookupKey(2);                             // "Week"
//   units->Lookup("String", "Day", "ID");            // 1
//   units->Locate("ID", 2, {});                      // true; and the set stands there
//
// Field names are compared exactly: "id" finds nothing. A key or text that isn't there, or is of another kind, gives
// -1, empty or false, not an error. Bookmarks are positions.
//
// Errors. "No Records" (EDatabaseError) for the current record where there is none; what descendants raise for a
// position beyond their end.
#pragma once

#include <cstdint>
#include <string>

#include "platform/dataset/DataSet.h"

namespace vx {

class TVXCustomStringLookupDataSet : public TDataSet {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXCustomStringLookupDataSet(TComponent* owner) : TDataSet(owner) {}

  TNotifyEvent OnLookupValuesChange;  ///< after each opening and closing; not published

  /// The fields "ID" and "String".
  TField* GetKeyField() const { return FieldByName("ID"); }
  TField* GetTextField() const { return FieldByName("String"); }
  /// The text of a key; empty if there is none.
  std::string LookupKey(std::int32_t key);
  /// From "ID" to "String" or from "String" to "ID"; unassigned for any other pair and where nothing is found. Doesn't
  /// move the set.
  Variant Lookup(const std::string& keyFields, const Variant& keyValues, const std::string& resultFields) override;
  /// Goes to the record of that "ID" or "String". The options are ignored: texts are compared as GetIndexFromText does.
  bool Locate(const std::string& keyFields, const Variant& keyValues, TLocateOptions options) override;
  bool BookmarkValid(const TBookmark& bookmark) override;
  std::int32_t GetRecNo() override;
  /// Kept: the number isn't checked, so that what descendants raise for such a position comes from the fields.
  void SetRecNo(std::int32_t value) override;
  /// Without a buffer always false: kept, though a field that only asks whether it is null is told yes.
  bool GetFieldData(const TField& field, void* buffer) override;
  /// Nothing is ever written.
  void SetFieldData(TField&, const void*) override {}

  // -- What descendants answer, in slot order -------------------------------------------------------------------------
  virtual std::int32_t GetKey(std::int32_t index) = 0;
  virtual std::string GetString(std::int32_t index) = 0;
  /// -1 if there is none.
  virtual std::int32_t GetIndexFromKey(std::int32_t key) = 0;
  virtual std::int32_t GetIndexFromText(const std::string& text) = 0;
  virtual void DoLookupValuesChange();

 protected:
  bool GetCanModify() const override { return false; }
  char* AllocRecordBuffer() override;
  void FreeRecordBuffer(char*& buffer) override;
  void GetBookmarkData(char* buffer, void* data) override;
  TBookmarkFlag GetBookmarkFlag(char* buffer) override;
  TGetResult GetRecord(char* buffer, TGetMode mode, bool check) override;
  std::uint16_t GetRecordSize() override { return kRecordSize; }
  void InternalAddRecord(const char*, bool) override {}
  void InternalClose() override;
  void InternalDelete() override {}
  void InternalFirst() override { index_ = -1; }
  void InternalGotoBookmark(const void* bookmark) override;
  void InternalInitFieldDefs() override;
  void InternalInitRecord(char* buffer) override;
  void InternalLast() override { index_ = GetRecordCount(); }
  void InternalOpen() override;
  void InternalPost() override {}
  void InternalSetToRecord(char* buffer) override;
  bool IsCursorOpen() override { return isOpen_; }
  void SetBookmarkFlag(char* buffer, TBookmarkFlag flag) override;
  void SetBookmarkData(char* buffer, const void* data) override;
  void DoAfterOpen() override;
  void DoAfterClose() override;

 private:
  static constexpr std::uint16_t kRecordSize = 5;  // the index, then the bookmark's flag

  TGetResult Move(TGetMode mode, std::int32_t count);
  /// Index of the record, or -1, also for a value of a kind that no such field has.
  std::int32_t GetIndexFromKeyValueAsVariant(const Variant& value);
  std::int32_t GetIndexFromTextValueAsVariant(const Variant& value);
  char* FindActiveBuffer();

  std::int32_t index_ = -1;  // before the first record at the beginning
  bool isOpen_ = false;
};

}  // namespace vx
