// VXRscStringDataSet_CMP.h: a run of string resources as a data set of keys and texts.
//
// The strings stand under consecutive numbers, the first under BaseRscID + 1; keys count from 1. The run ends where its
// text is "_EOF_", unless StringCount tells its length.
//
//   auto units = Make<TVXRscStringDataSet>(nullptr);   // open at once
//   units->SetBaseRscID(1000);                         // strings 1001, 1002, 1003, and "_EOF_" at 1004
//   units->RecordCount();                              // 3
//
// Kept: a run without an end among its first 5000 strings counts as empty. Texts are found by CompareText.
//
// Errors. Setting a property of a closed set stores the value, and then raises as Refresh does.
#pragma once

#include "data/VXCustomStringLookupDataSet_CMP.h"

namespace vx {

class TVXRscStringDataSet : public TVXCustomStringLookupDataSet {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXRscStringDataSet(TComponent* owner) : TVXCustomStringLookupDataSet(owner) {}
  void AfterConstruction() override;

  std::int32_t GetBaseRscID() const { return baseRscID_; }
  /// A different number makes the strings be counted anew, and goes to the first.
  void SetBaseRscID(std::int32_t value);
  /// -1 until it is set or the strings were counted.
  std::int32_t GetStringCount() const { return stringCount_; }
  void SetStringCount(std::int32_t value);

  std::int32_t GetKey(std::int32_t index) override;
  std::string GetString(std::int32_t index) override;
  std::int32_t GetIndexFromKey(std::int32_t key) override;
  std::int32_t GetIndexFromText(const std::string& text) override;

 protected:
  /// Counts the strings if nobody has yet; -1 as long as neither property is set.
  std::int32_t GetRecordCount() override;

 private:
  std::int32_t baseRscID_ = -1;
  std::int32_t stringCount_ = -1;
};

namespace VXRscStringDataSet_CMP {
/// Puts the set on the palette page "VX Data Access".
void Register();
}  // namespace VXRscStringDataSet_CMP

}  // namespace vx
