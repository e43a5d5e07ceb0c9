#include "data/VXRAMTypes.h"

#include <algorithm>
#include <string>

#include "platform/runtime/Text.h"

namespace vx {

std::int32_t DefaultByteSize(TVXRAMFieldType type) {
  switch (type) {
    case vxrftBoolean:
      return 1;
    case vxrftSmallint:
    case vxrftWord:
      return 2;
    case vxrftDuration:
    case vxrftInteger:
      return 4;
    case vxrftCurrency:
    case vxrftDateTime:
    case vxrftFloat:
      return 8;
    case vxrftString:
      return 0;
  }
  return -1;
}

bool TVXFieldStruct::AssignText(std::string_view text) {
  IsNull = false;
  if (StringSize < 1) return text.empty();
  const std::string_view whole = text.substr(0, text.find('\0'));
  const std::string_view fitting = CutAtCodePoint(whole, static_cast<std::size_t>(StringSize) - 1);
  std::copy(fitting.begin(), fitting.end(), StringPtr);
  std::fill(StringPtr + fitting.size(), StringPtr + StringSize, '\0');
  return fitting.size() == text.size();
}

void TVXRecordStruct::RaiseNoField(std::int32_t index) {
  throw ENilAccess("record structure has no field " + std::to_string(index));
}

void TFreeRecordStruct::operator()(TVXRecordStruct* record) const noexcept {
  if (record == nullptr) return;
  for (std::int32_t i = 0; i < record->ElementCount; ++i) {
    delete[] record->FieldArrayPtr[i]->StringPtr;
    delete record->FieldArrayPtr[i];
  }
  delete[] record->FieldArrayPtr;
  delete record;
}

}  // namespace vx
