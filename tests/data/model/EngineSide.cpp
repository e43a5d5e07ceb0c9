#include "EngineSide.h"

#include <algorithm>
#include <cstring>

#include "NaiveCursor.h"

namespace vx::naive {

std::vector<std::string>& TEngineLog::Lines() {
  static std::vector<std::string> lines;
  return lines;
}

std::string& TEngineLog::NextName() {
  static std::string name;
  return name;
}

bool TRecordFilterObject::Ask(TVXRAMRow* row, std::int32_t position, std::int32_t code) const {
  const std::int32_t id = table->InternalGetRecordID(row);
  TEngineLog::Lines().push_back(cursor + " asks for " + std::to_string(id) + " at " + std::to_string(position));
  return TRecordFilter{code, salt}.Accepts(id, position);
}

Variant ToVariant(const TValue& value) {
  if (std::holds_alternative<TNull>(value)) return Variant::Null();
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* integer = std::get_if<std::int32_t>(&value)) return *integer;
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* date = std::get_if<TDate>(&value)) return Variant::Date(date->days);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  return {};
}

void Fill(TVXRecordStruct& record, const TStruct& values) {
  record.FieldCount = static_cast<std::int32_t>(values.size());
  for (std::size_t i = 0; i < values.size() && i < static_cast<std::size_t>(record.ElementCount); ++i) {
    TVXFieldStruct& element = record.Field(static_cast<std::int32_t>(i));
    element.IsNull = values[i].isNull;
    element.FieldType = static_cast<TVXRAMFieldType>(values[i].type);
    if (values[i].isNull) continue;
    void* target = element.StringPtr != nullptr ? static_cast<void*>(element.StringPtr) : element.Value;
    std::memcpy(target, values[i].bytes.data(), values[i].bytes.size());
  }
}

std::string ErrorText(const std::string& className, const std::string& text) {
  static const std::vector<std::string> kFreeTexts = {"ENilAccess", "EVariantError", "EInvalidCast", "ERAMTableError"};
  const bool isFree = std::find(kFreeTexts.begin(), kFreeTexts.end(), className) != kFreeTexts.end();
  return "raises " + className + (isFree ? "" : ": " + text);
}

}  // namespace vx::naive
