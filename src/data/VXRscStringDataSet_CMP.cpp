#include "data/VXRscStringDataSet_CMP.h"

#include "platform/component/Published.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"
#include "platform/runtime/Wrapping.h"

namespace vx {

namespace {
constexpr const char* kEndMark = "_EOF_";
constexpr std::int32_t kMostStrings = 5000;
}  // namespace

const TClass& TVXRscStringDataSet::StaticClass() {
  static const TClass info =
      TClassBuilder<TVXRscStringDataSet>("TVXRscStringDataSet", TVXCustomStringLookupDataSet::StaticClass())
          .Property("BaseRscID", &TVXRscStringDataSet::GetBaseRscID, &TVXRscStringDataSet::SetBaseRscID)
          .Property("StringCount", &TVXRscStringDataSet::GetStringCount, &TVXRscStringDataSet::SetStringCount)
          .Build();
  return info;
}

void TVXRscStringDataSet::AfterConstruction() {
  TVXCustomStringLookupDataSet::AfterConstruction();
  Open();
}

void TVXRscStringDataSet::SetBaseRscID(std::int32_t value) {
  if (value == baseRscID_) return;
  baseRscID_ = value;
  stringCount_ = -1;
  Refresh();
  First();
}

void TVXRscStringDataSet::SetStringCount(std::int32_t value) {
  stringCount_ = value;
  Refresh();
}

std::int32_t TVXRscStringDataSet::GetKey(std::int32_t index) { return WrappingAdd(index, 1); }
std::int32_t TVXRscStringDataSet::GetIndexFromKey(std::int32_t key) { return WrappingSubtract(key, 1); }

std::string TVXRscStringDataSet::GetString(std::int32_t index) {
  return LoadStr(WrappingAdd(GetKey(index), baseRscID_));
}

std::int32_t TVXRscStringDataSet::GetIndexFromText(const std::string& text) {
  const std::int32_t count = GetRecordCount();
  for (std::int32_t i = 0; i < count; ++i)
    if (CompareText(GetString(i), text) == 0) return i;
  return -1;
}

std::int32_t TVXRscStringDataSet::GetRecordCount() {
  if (stringCount_ != -1 || baseRscID_ == -1) return stringCount_;
  std::int32_t count = 0;
  while (count < kMostStrings && GetString(count) != kEndMark) ++count;
  stringCount_ = count == kMostStrings ? 0 : count;
  return stringCount_;
}

namespace VXRscStringDataSet_CMP {

void Register() { RegisterComponents("VX Data Access", {&TVXRscStringDataSet::StaticClass()}); }

}  // namespace VXRscStringDataSet_CMP

}  // namespace vx
