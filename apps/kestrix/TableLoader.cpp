#include "TableLoader.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

TVXRAMFieldType FieldTypeOf(TColumnType type) {
  switch (type) {
    case TColumnType::Boolean:
      return vxrftBoolean;
    case TColumnType::Integer:
      return vxrftInteger;
    case TColumnType::Float:
      return vxrftFloat;
    case TColumnType::Date:
    case TColumnType::DateTime:
      return vxrftDateTime;
    case TColumnType::Text:
      break;
  }
  return vxrftString;
}

std::size_t SlotOf(const TColumn& column) {
  if (column.type == TColumnType::Text) return column.longestText + 1;
  return static_cast<std::size_t>(DefaultByteSize(FieldTypeOf(column.type)));
}

/// What RecSize will be, in numbers that can't overflow.
std::uint64_t RowSizeOf(const TColumnPlan& plan) {
  std::uint64_t size = kFirstFieldOffset;
  for (const TColumn& column : plan.columns) size += 1 + SlotOf(column);
  return size;
}

const char* NameOfValue(TColumnType type) {
  switch (type) {
    case TColumnType::Boolean:
      return "true or false";
    case TColumnType::Integer:
      return "an integer of 32 bits";
    case TColumnType::Float:
      return "a number";
    case TColumnType::Date:
    case TColumnType::DateTime:
      return "a date";
    case TColumnType::Text:
      break;
  }
  return "text";
}

bool IsNullText(std::string_view text, TColumnType type, const TNullWords& nulls) {
  return type == TColumnType::Text ? Trimmed(text).empty() : nulls.IsNull(text);
}

std::string Mebibytes(std::uint64_t bytes) { return std::to_string((bytes + (1u << 20) - 1) >> 20) + " MiB"; }

[[noreturn]] void FailForMemory(TCsvSource& source, const TColumnPlan& plan, const TLoadLimits& limits) {
  const auto widest = std::max_element(plan.columns.begin(), plan.columns.end(),
                                       [](const TColumn& a, const TColumn& b) { return SlotOf(a) < SlotOf(b); });
  const std::uint64_t rowSize = RowSizeOf(plan);
  std::string message = "from here on the table would need more than " + Mebibytes(limits.memory) + " (" +
                        Mebibytes(plan.records * rowSize) + " in all, " + std::to_string(rowSize) + " bytes a row";
  if (widest->type == TColumnType::Text) message += ", longest value on line " + std::to_string(widest->longestLine);
  const auto column = static_cast<std::size_t>(widest - plan.columns.begin());
  std::uint64_t size = 0;
  // The error must pass where bad records are left out, so it is raised outside of the walk.
  std::optional<TPlace> place;
  source.ForEach([&](const TCsvRecord& record) {
    size += rowSize;
    if (!place && size > limits.memory) place = TPlace{record.file, record.line, plan.columns[column].heading};
  });
  throw EUserError(place.value_or(TPlace{source.Name(), 0, {}}), message + "; see --memory)");
}

/// Fills rows of one table, either way.
class TFiller {
 public:
  TFiller(TVXRAMTable& table, bool isIndexed) : table_(table), isIndexed_(isIndexed), record_(table.NewRecord()) {}

  TVXFieldStruct& Field(std::size_t column) { return record_->Field(static_cast<std::int32_t>(column)); }

  void AddRow() {
    std::int32_t id = kNoRecordId;
    if (isIndexed_)
      AddIndexedRow(id);
    else
      table_.AddRecordAndValues(*record_, -1, -1, id, /*append=*/true);
  }

  void Finish() {
    if (isIndexed_) Index().ReBuild();
  }

 private:
  TVXRAMIndex& Index() { return *table_.Get_Indices()->Get_Item(0)->Get_Index(); }

  // AddRecordAndValues would rebuild the index for each row; this way it is built once, at the end.
  void AddIndexedRow(std::int32_t& id) {
    TVXRAMRow* const row = Index().Get_Record(table_.AddRecord(0, id));
    for (std::int32_t i = 0; i < record_->FieldCount; ++i) {
      const TVXFieldStruct& field = record_->Field(i);
      if (field.IsNull) continue;
      table_.InternalSetFieldStatus(row, i, vxfsAssigned);
      table_.InternalSetFieldValue(
          row, i, field.FieldType == vxrftString ? static_cast<const void*>(field.StringPtr) : field.Value);
    }
  }

  TVXRAMTable& table_;
  bool isIndexed_;
  TOwnedRecordStruct record_;
};

}  // namespace

void CheckMemory(TCsvSource& source, const TColumnPlan& plan, const TLoadLimits& limits) {
  const std::uint64_t rowSize = RowSizeOf(plan);
  const bool isRowTooLong = rowSize > static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
  if (isRowTooLong || (plan.records > 0 && rowSize > limits.memory / plan.records)) FailForMemory(source, plan, limits);
}

TOwned<TVXRAMTable> MakeTable(const TColumnPlan& plan) {
  auto table = Make<TVXRAMTable>(nullptr);
  for (const TColumn& column : plan.columns) {
    const bool isText = column.type == TColumnType::Text;
    AddField(*table, column.field, FieldTypeOf(column.type), isText ? static_cast<std::int32_t>(SlotOf(column)) : 0);
  }
  return table;
}

TOwned<TVXRAMTable> LoadTable(TCsvSource& source, const TColumnPlan& plan, const TLoadLimits& limits,
                              std::optional<std::size_t> index) {
  CheckMemory(source, plan, limits);
  auto table = MakeTable(plan);
  if (index) table->Get_Indices()->Add()->Set_FieldName(plan.columns[*index].field);
  TFiller filler(*table, index.has_value());
  source.ForEach([&](const TCsvRecord& record) {
    for (std::size_t i = 0; i < plan.columns.size(); ++i)
      AssignCell(filler.Field(i), ReadCell(source, plan, record, i));
    filler.AddRow();
  });
  filler.Finish();
  return table;
}

std::int32_t SlotSize(const TColumn& column) { return static_cast<std::int32_t>(SlotOf(column)); }

void AssignCell(TVXFieldStruct& field, const TCellValue& value) {
  field.IsNull = true;
  if (const auto* isTrue = std::get_if<bool>(&value)) field.AssignValue<std::uint8_t>(*isTrue ? 1 : 0);
  if (const auto* integer = std::get_if<std::int32_t>(&value)) field.AssignValue(*integer);
  if (const auto* number = std::get_if<double>(&value)) field.AssignValue(*number);
  if (const auto* moment = std::get_if<TMoment>(&value)) field.AssignValue(moment->days);
  if (const auto* text = std::get_if<std::string>(&value)) field.AssignText(*text);
}

TCellValue ValueOfText(std::string_view text, const TColumn& column, char decimal, const TNullWords& nulls) {
  if (IsNullText(text, column.type, nulls)) return {};
  return CellOfText(text, column.type, column.dateOrder, decimal);
}

TCellValue ReadCell(const TCsvSource& source, const TColumnPlan& plan, const TCsvRecord& record, std::size_t column) {
  const TColumn& wanted = plan.columns[column];
  const std::string_view cell = record.cells[column];
  const TNullWords& nulls = source.Options().nulls;
  TCellValue value = ValueOfText(cell, wanted, plan.decimal, nulls);
  if (IsNull(value) && !IsNullText(cell, wanted.type, nulls))
    source.Fail(record, column, Quoted(Trimmed(cell)) + " is not " + NameOfValue(wanted.type));
  return value;
}

// -- Out of rows ------------------------------------------------------------------------------------------------------

TRowReader::TRowReader(const TVXRAMTable& table, const TColumnPlan& plan) : table_(table) {
  std::size_t largest = 0;
  for (const TColumn& column : plan.columns) {
    types_.push_back(column.type);
    largest = std::max(largest, SlotOf(column));
  }
  text_.resize(largest + 1);
}

template <class T>
T TRowReader::Read(const TVXRAMRow* row, std::size_t column) const {
  T value{};
  table_.InternalGetFieldValue(row, static_cast<std::int32_t>(column), &value);
  return value;
}

TCellValue TRowReader::Value(const TVXRAMRow* row, std::size_t column) const {
  const auto field = static_cast<std::int32_t>(column);
  if (table_.InternalGetFieldStatus(row, field) == vxfsNull) return {};
  switch (types_[column]) {
    case TColumnType::Boolean:
      return Read<std::uint8_t>(row, column) != 0;
    case TColumnType::Integer:
      return Read<std::int32_t>(row, column);
    case TColumnType::Float:
      return Read<double>(row, column);
    case TColumnType::Date:
      return TMoment{Read<double>(row, column), false};
    case TColumnType::DateTime:
      return TMoment{Read<double>(row, column), true};
    case TColumnType::Text:
      break;
  }
  table_.InternalGetFieldValue(row, field, text_.data());
  return std::string(text_.data());
}

}  // namespace vx::kestrix
