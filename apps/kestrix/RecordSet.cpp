#include "RecordSet.h"

#include <optional>

#include "UserError.h"
#include "platform/dataset/Fields.h"

namespace vx::kestrix {

namespace {

constexpr std::int32_t kRoom = 65'000;     // bytes for values and their states; the bookmark comes on top
constexpr std::size_t kMostFields = 1000;  // names of persistent fields are checked against each other

TFieldType FieldTypeOf(TColumnType type) {
  switch (type) {
    case TColumnType::Boolean:
      return ftBoolean;
    case TColumnType::Integer:
      return ftInteger;
    case TColumnType::Float:
      return ftFloat;
    case TColumnType::Date:
    case TColumnType::DateTime:
      return ftDateTime;
    case TColumnType::Text:
      break;
  }
  return ftString;
}

TField* MakeField(TDataSet& set, const TColumn& column) {
  const TFieldType type = FieldTypeOf(column.type);
  const TFieldDef def(nullptr, column.field, type, type == ftString ? SlotSize(column) : 0, false, 0);
  TField* const field = def.CreateField(&set);
  field->SetDataSet(&set);
  return field;
}

/// The field's native value; nothing for null.
template <class T>
std::optional<T> Native(const TField& field) {
  T value{};
  return field.GetData(&value) ? std::optional(value) : std::nullopt;
}

}  // namespace

std::vector<TField*> MakeFields(TDataSet& set, const TColumnPlan& plan, const std::vector<std::size_t>& needed) {
  std::vector<TField*> fields(plan.columns.size());
  std::int32_t room = kRoom;
  std::size_t count = 0;
  const auto add = [&](std::size_t i) {
    const std::int32_t size = 1 + SlotSize(plan.columns[i]);
    if (fields[i] != nullptr || size > room || count == kMostFields) return;
    fields[i] = MakeField(set, plan.columns[i]);
    room -= size;
    ++count;
  };
  for (const std::size_t i : needed) {
    add(i);
    if (fields[i] == nullptr)
      throw EUserError("column " + Quoted(plan.columns[i].heading) + " is too long for that: records may have " +
                       std::to_string(kRoom) + " bytes");
  }
  for (std::size_t i = 0; i < fields.size(); ++i) add(i);
  return fields;
}

TCellValue ValueOfField(const TField& field, TColumnType type) {
  switch (type) {
    case TColumnType::Boolean:
      if (const auto value = Native<std::int16_t>(field)) return *value != 0;
      return {};
    case TColumnType::Integer:
      if (const auto value = Native<std::int32_t>(field)) return *value;
      return {};
    case TColumnType::Float:
      if (const auto value = Native<double>(field)) return *value;
      return {};
    case TColumnType::Date:
    case TColumnType::DateTime:
      if (const auto value = Native<double>(field))
        return TMoment{NativeToDateTime(*value), type == TColumnType::DateTime};
      return {};
    case TColumnType::Text:
      break;
  }
  if (field.IsNull()) return {};
  return field.GetAsString();
}

}  // namespace vx::kestrix
