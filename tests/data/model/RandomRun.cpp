#include "RandomRun.h"

#include <algorithm>

#include "RandomValues.h"
#include "datetime/VXDateFunc_UNT.h"

namespace vx::naive {
namespace {

std::string StructText(const TStruct& values) {
  std::string text = "(";
  for (const TElement& value : values) text += (value.isNull ? " null" : " " + ToText(value.bytes));
  return text + ")";
}

/// What GetFieldValue of the engine answers, told as the model tells it.
std::string ReadRealField(TVXRAMCursor& cursor, std::int32_t field, std::int32_t size, std::int32_t byteSize) {
  std::uint8_t buffer[64] = {};
  bool isNull = false;
  std::int32_t needed = size;
  try {
    cursor.GetFieldValue(field, buffer, needed, isNull);
  } catch (const ERTEBufferTooSmall&) {
    if (needed != byteSize) return "size variable holds " + std::to_string(needed);
    throw;
  }
  std::string text = isNull ? "null" : "value";
  for (std::int32_t i = 0; i < byteSize; ++i) text += " " + std::to_string(buffer[i]);
  return text;
}

}  // namespace

TRandomRun::TRandomRun(std::uint32_t seed) : dice_(seed), twins_("Orders"), naive_(twins_.naive), real_(*twins_.real) {
  GVXStartOfWeek = naive_.startOfWeek = dice_.Pick(std::vector<std::int32_t>{1, 1, 2, 7});
  maxRows_ = dice_.Pick(std::vector<std::int32_t>{5, 12, 12, 25, 40});
  DefineFields();
  DefineIndexes();
  OpenPlain();
}

std::string TRandomRun::Step() {
  for (const auto& index : naive_.indexes)
    if (index->field == nullptr && dice_.OneIn(6)) {
      SetIndexField();
      return twins_.Difference();
    }
  std::int32_t total = 0;
  for (const TOperation& operation : Operations()) total += operation.weight;
  std::int32_t chosen = dice_.Below(total);
  for (const TOperation& operation : Operations()) {
    chosen -= operation.weight;
    if (chosen >= 0) continue;
    (this->*operation.run)();
    break;
  }
  return twins_.Difference();
}

const std::vector<TRandomRun::TOperation>& TRandomRun::Operations() {
  using T = TRandomRun;
  static const std::vector<TOperation> kOperations = {
      {4, &T::GoToFirst},
      {4, &T::GoToLast},
      {14, &T::GoToNext},
      {10, &T::GoToPrevious},
      {8, &T::SetRecIndex},
      {6, &T::SetRecordId},
      {3, &T::FindById},
      {4, &T::InsertRec},
      {30, &T::InsertRecWithValues},
      {3, &T::AddRecord},
      {10, &T::AddRecordAndValues},
      {16, &T::UpdateRecWithValues},
      {12, &T::SetFieldValue},
      {6, &T::ClearFieldValue},
      {4, &T::ReadField},
      {7, &T::DeleteRec},
      {3, &T::DeleteRowOfAnother},
      {1, &T::ClearTable},
      {6, &T::Sort},
      {5, &T::SetSortedField},
      {4, &T::SetOrder},
      {6, &T::SetFilter},
      {2, &T::SetFilterField},
      {4, &T::SetFilterValue},
      {5, &T::SetOnFilterRecord},
      {1, &T::RebuildFilteredList},
      {2, &T::MatchFilter},
      {1, &T::AddIndex},
      {2, &T::SetIndexField},
      {3, &T::RebuildIndex},
      {4, &T::LocateFirst},
      {1, &T::AddField},
      {2, &T::LookUpNames},
      {5, &T::BracketCursor},
      {2, &T::BracketTable},
      {6, &T::WriteRaw},
      {4, &T::OpenPlain},
      {4, &T::OpenBucketer},
      {5, &T::CloseCursor},
      {1, &T::OpenBadIndex},
      {4, &T::ChangeBuckets},
      {2, &T::BuildAllBuckets},
      {2, &T::AskBuckets},
  };
  return kOperations;
}

// -- Choices ---

TCursorPair& TRandomRun::AnyCursor() {
  while (twins_.cursors.empty()) OpenPlain();  // a filter that can't be compared keeps it from opening
  auto at = twins_.cursors.begin();
  std::advance(at, dice_.Below(static_cast<std::int32_t>(twins_.cursors.size())));
  return *at;
}

TCursorPair* TRandomRun::AnyBucketer() {
  std::vector<TCursorPair*> found;
  for (TCursorPair& pair : twins_.cursors)
    if (pair.naiveBucketer != nullptr) found.push_back(&pair);
  return found.empty() ? nullptr : dice_.Pick(found);
}

std::int32_t TRandomRun::AnyFieldOrNone() {
  return dice_.OneIn(60) ? static_cast<std::int32_t>(naive_.fields.size()) : AnyField();
}

std::int32_t TRandomRun::AnyId() {
  if (dice_.OneIn(8)) return -1;
  return dice_.OneIn(4) ? dice_.Below(naive_.nextId + 2) : std::max(0, naive_.nextId - dice_.Below(maxRows_ + 3));
}

std::string TRandomRun::AnyName() {
  if (dice_.OneIn(12)) return "Nowhere";
  const std::string name = naive_.fields[static_cast<std::size_t>(AnyField())]->name;
  return dice_.OneIn(5) ? Upper(name) : name;
}

std::string TRandomRun::AnySortKeys() {
  static const std::vector<std::string> kOrders = {"", "", ".A", ".D", ".D", ".d", ".", ".DA"};
  std::string text;
  for (std::int32_t i = dice_.Below(4); i > 0; --i)
    text += AnyName() + dice_.Pick(kOrders) + (i > 1 || dice_.OneIn(5) ? ";" : "");
  return (dice_.OneIn(30) ? ";" : "") + text;
}

std::string TRandomRun::AnyBucketedFields() {
  std::string text;
  for (const auto& field : naive_.fields)
    if (field->type == TType::DateTime && dice_.OneIn(2)) text = field->name + ";";
  for (std::int32_t i = dice_.Below(text.empty() ? 3 : 2); i > 0; --i) text += AnyName() + ";";
  if (dice_.OneIn(2) && !text.empty()) text.pop_back();
  return text;
}

TStruct TRandomRun::AnyStruct() {
  TStruct values;
  for (const auto& field : naive_.fields)
    if (dice_.OneIn(5))
      values.push_back({true, field->type, {}});
    else
      values.push_back({false, field->type, RandomBytes(dice_, *field)});
  return values;
}

TStruct TRandomRun::AnyStructAndWrongOnes() {
  TStruct values = AnyStruct();
  if (dice_.OneIn(40)) {
    TElement& element = values[static_cast<std::size_t>(AnyField())];
    element.type = element.type == TType::Word ? TType::Boolean : TType::Word;
    element.isNull = true;
  }
  return values;
}

TBucketFieldDefs TRandomRun::AnyBucketFieldDefs() {
  TBucketFieldDefs defs;
  for (std::int32_t i = dice_.Below(6); i > 0; --i)
    defs.emplace_back(AnyName(), static_cast<TBucketType>(dice_.Below(6)));
  return defs;
}

TValue TRandomRun::AnyFilterValue(std::int32_t field) {
  if (dice_.OneIn(6)) return RandomFilterValue(dice_);
  const TFieldDef& def = naive_.Field(field);
  if (naive_.mainList.empty() || dice_.OneIn(4)) return ValueOf(def, RandomBytes(dice_, def));
  return ValueOf(def, naive_.Read(*dice_.Pick(naive_.mainList), static_cast<std::size_t>(field)).bytes);
}

/// When there are rows enough; makes room at times.
bool TRandomRun::IsFull() {
  if (static_cast<std::int32_t>(naive_.mainList.size() + naive_.baseIndex.size()) < maxRows_) return false;
  if (dice_.OneIn(4)) DeleteRec();
  return true;
}

TCursorDesc TRandomRun::AnyDesc(const std::string& prefix) {
  TCursorDesc desc;
  desc.name = NextName(prefix);
  if (dice_.OneIn(60)) desc.owner = dice_.OneIn(2) ? TOwnerKind::None : TOwnerKind::Wrong;
  if (dice_.OneIn(2)) desc.indexNb = dice_.Between(-1, static_cast<std::int32_t>(naive_.indexes.size()) - 1);
  desc.order = dice_.OneIn(2) ? TOrder::Ascending : TOrder::Descending;
  if (dice_.OneIn(4)) desc.sortedField = AnySortKeys();
  if (dice_.OneIn(4)) {
    const std::int32_t field = AnyField();
    desc.filterField = naive_.Def(field);
    desc.filterValue = AnyFilterValue(field);
  }
  return desc;
}

// -- Definitions ---

void TRandomRun::DefineFields() {
  for (std::int32_t i = dice_.Between(1, 5); i > 0; --i) DefineField(RandomType(dice_));
  DefineField(TType::DateTime);
}

void TRandomRun::DefineField(TType type) {
  const std::string name = RandomFieldName(dice_, type);
  const std::int32_t size = RandomSize(dice_, type);
  twins_.Do(
      "add field " + name, [&] { naive_.AddField(name, type, size); },
      [&] { vx::AddField(real_, name, static_cast<TVXRAMFieldType>(type), type == TType::String ? size : 0); });
}

void TRandomRun::DefineIndexes() {
  for (std::int32_t i = dice_.Below(3); i > 0; --i) {
    const std::string name = naive_.fields[static_cast<std::size_t>(AnyField())]->name;
    naive_.SetIndexField(naive_.AddIndex(), name);
    real_.Get_Indices()->Add()->Set_FieldName(name);
  }
}

void TRandomRun::AddIndex() {
  if (naive_.indexes.size() >= 3) return;
  twins_.Do(
      "add index", [&] { naive_.AddIndex(); }, [&] { real_.Get_Indices()->Add(); });
  if (!dice_.OneIn(6)) SetIndexField();
}

void TRandomRun::SetIndexField() {
  if (naive_.indexes.empty()) return;
  std::int32_t index = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
  for (std::size_t i = 0; i < naive_.indexes.size(); ++i)
    if (naive_.indexes[i]->field == nullptr) index = static_cast<std::int32_t>(i);  // it makes every insertion fail
  const std::string name = AnyName();
  twins_.Do(
      "index " + std::to_string(index) + " on " + name,
      [&] { naive_.SetIndexField(*naive_.indexes[static_cast<std::size_t>(index)], name); },
      [&] { real_.Get_Indices()->Get_Item(index)->Set_FieldName(name); });
}

/// Refused while the base index holds rows; else the rows of the main list become shorter than the definitions.
void TRandomRun::AddField() {
  if (naive_.RecCount() > 0) return DefineField(RandomType(dice_));
  if (AnyBucketer() == nullptr && naive_.fields.size() < 8) DefineField(RandomType(dice_));
}

// -- Walking ---

void TRandomRun::GoToFirst() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " first", [&] { c.naive->GoToFirstRec(); }, [&] { c.real->GoToFirstRec(); });
}

void TRandomRun::GoToLast() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " last", [&] { c.naive->GoToLastRec(); }, [&] { c.real->GoToLastRec(); });
}

void TRandomRun::GoToNext() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " next", [&] { return c.naive->GoToNextRec(); }, [&] { return c.real->GoToNextRec(); });
}

void TRandomRun::GoToPrevious() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " previous", [&] { return c.naive->GoToPreviousRec(); }, [&] { return c.real->GoToPreviousRec(); });
}

void TRandomRun::SetRecIndex() {
  TCursorPair& c = AnyCursor();
  const std::int32_t count = c.naive->RecordCount();
  const std::int32_t to = dice_.OneIn(6) ? dice_.Between(-3, count + 3) : dice_.Between(0, std::max(0, count - 1));
  twins_.Do(
      c.name + " to index " + std::to_string(to), [&] { c.naive->SetRecIndex(to); }, [&] { c.real->Set_RecIndex(to); });
}

void TRandomRun::SetRecordId() {
  TCursorPair& c = AnyCursor();
  const std::int32_t id = AnyId();
  twins_.Do(
      c.name + " to id " + std::to_string(id),
      [&] {
        if (id != -1) c.naive->SetRecIndexByID(id);
      },
      [&] { c.real->Set_RecordID(id); });
}

void TRandomRun::FindById() {
  TCursorPair& c = AnyCursor();
  const std::int32_t id = AnyId();
  twins_.Do(
      c.name + " finds id " + std::to_string(id), [&] { return c.naive->RecIndexById(id); },
      [&] { return c.real->Get_RecIndexById(id); });
}

// -- Rows in and out ---

void TRandomRun::InsertRec() {
  if (IsFull()) return;
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " inserts", [&] { c.naive->InsertRec(); }, [&] { c.real->InsertRec(); });
}

void TRandomRun::InsertRecWithValues() {
  if (IsFull()) return;
  TCursorPair& c = AnyCursor();
  const TStruct values = AnyStructAndWrongOnes();
  const bool append = dice_.OneIn(2);
  const TOwnedRecordStruct record = real_.NewRecord();
  Fill(*record, values);
  twins_.Do(
      c.name + (append ? " appends " : " inserts ") + StructText(values),
      [&] { c.naive->InsertRecWithValues(values, append); }, [&] { c.real->InsertRecWithValues(*record, append); });
}

void TRandomRun::AddRecord() {
  if (IsFull()) return;
  const std::int32_t indexNb = dice_.Between(-2, static_cast<std::int32_t>(naive_.indexes.size()));
  std::int32_t naiveId = -7;
  std::int32_t realId = -7;
  twins_.Do(
      "add record, index " + std::to_string(indexNb), [&] { return naive_.AddRecord(indexNb, naiveId); },
      [&] { return real_.AddRecord(indexNb, realId); });
  twins_.Do(
      "  its id", [&] { return naiveId; }, [&] { return realId; });
}

void TRandomRun::AddRecordAndValues() {
  if (IsFull()) return;
  TStruct values = AnyStructAndWrongOnes();
  const TOwnedRecordStruct record = real_.NewRecord();
  if (dice_.OneIn(40)) values.pop_back();
  if (dice_.OneIn(30)) values.push_back({});
  Fill(*record, values);
  const std::int32_t indexNb = dice_.Between(-2, static_cast<std::int32_t>(naive_.indexes.size()));
  const std::int32_t position =
      dice_.Between(-2, static_cast<std::int32_t>(naive_.mainList.size()) + (dice_.OneIn(8) ? 2 : 0));
  const bool append = dice_.OneIn(3);
  std::int32_t naiveId = -7;
  std::int32_t realId = -7;
  twins_.Do(
      "add " + StructText(values) + " at " + std::to_string(position) + (append ? " append" : "") + ", index " +
          std::to_string(indexNb),
      [&] { return naive_.AddRecordAndValues(values, indexNb, position, naiveId, append); },
      [&] { return real_.AddRecordAndValues(*record, indexNb, position, realId, append); });
  twins_.Do(
      "  its id", [&] { return naiveId; }, [&] { return realId; });
}

void TRandomRun::DeleteRec() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " deletes", [&] { c.naive->DeleteRec(); }, [&] { c.real->DeleteRec(); });
}

void TRandomRun::DeleteRowOfAnother() {
  TCursorPair& c = AnyCursor();
  TCursorPair& other = AnyCursor();
  twins_.Do(
      c.name + " deletes the row of " + other.name, [&] { naive_.DeleteRecord(c.naive, other.naive->CurrentRecord()); },
      [&] { c.real->InternalDeleteRecord(other.real->Get_CurrentRecord()); });
}

void TRandomRun::ClearTable() {
  twins_.Do(
      "clear table", [&] { naive_.ClearTable(); }, [&] { real_.ClearTable(); });
}

// -- Values ---

void TRandomRun::UpdateRecWithValues() {
  TCursorPair& c = AnyCursor();
  TStruct values = AnyStructAndWrongOnes();
  const TOwnedRecordStruct record = real_.NewRecord();
  Fill(*record, values);
  if (dice_.OneIn(10)) record->FieldCount += dice_.Between(-1, 1);  // nobody looks at it
  twins_.Do(
      c.name + " updates " + StructText(values), [&] { c.naive->UpdateRecWithValues(values); },
      [&] { c.real->UpdateRecWithValues(*record); });
}

void TRandomRun::SetFieldValue() {
  TCursorPair& c = AnyCursor();
  const std::int32_t field = AnyFieldOrNone();
  if (field == static_cast<std::int32_t>(naive_.fields.size()) && c.naive->RecordCount() == 0) return;
  TBytes bytes(64, 0);
  if (field < static_cast<std::int32_t>(naive_.fields.size())) bytes = RandomBytes(dice_, naive_.Field(field));
  twins_.Do(
      c.name + " sets field " + std::to_string(field) + " to " + ToText(bytes),
      [&] { c.naive->SetFieldValue(field, bytes); }, [&] { c.real->SetFieldValue(field, bytes.data()); });
}

void TRandomRun::ClearFieldValue() {
  TCursorPair& c = AnyCursor();
  const std::int32_t field = AnyField();
  twins_.Do(
      c.name + " clears field " + std::to_string(field), [&] { c.naive->ClearFieldValue(field); },
      [&] { c.real->ClearFieldValue(field); });
}

void TRandomRun::ReadField() {
  TCursorPair& c = AnyCursor();
  const std::int32_t field = AnyField();
  const std::int32_t byteSize = naive_.Field(field).size;
  const std::int32_t size = byteSize + dice_.Between(-1, 1);
  twins_.Do(
      c.name + " reads field " + std::to_string(field), [&] { return c.naive->GetFieldValue(field, size); },
      [&] { return ReadRealField(*c.real, field, size, byteSize); });
  twins_.Do(
      c.name + " is null?", [&] { return c.naive->FieldValueIsNull(field); },
      [&] { return c.real->FieldValueIsNull(field); });
}

void TRandomRun::WriteRaw() {
  TCursorPair& c = AnyCursor();
  TRow* row = nullptr;
  TVXRAMRow* realRow = nullptr;
  twins_.Do(
      c.name + " raw", [&] { row = c.naive->CurrentRecord(); }, [&] { realRow = c.real->Get_CurrentRecord(); });
  if (row == nullptr || realRow == nullptr) return;
  const std::int32_t field = AnyField();
  const auto value = [&]() -> TField& { return naive_.Write(*row, static_cast<std::size_t>(field)); };
  const std::string name = " field " + std::to_string(field);
  const TBytes bytes = RandomBytes(dice_, naive_.Field(field));
  const bool assigned = dice_.OneIn(2);
  const std::int32_t id = dice_.Below(std::max(1, naive_.nextId));
  switch (dice_.Below(12)) {
    case 0:
      if (row->released) break;  // the id of a row that is only kept for a bucketer can't be changed
      twins_.Do(
          "  id " + std::to_string(id), [&] { row->id = id; }, [&] { c.real->InternalSetRecordId(realRow, id); });
      break;
    case 1:
      twins_.Do(
          "  clears all",
          [&] {
            for (TField& each : row->fields) each.bytes.assign(each.bytes.size(), 0);
          },
          [&] { c.real->InternalClearAllFieldValues(realRow); });
      break;
    case 2:
    case 3:
      twins_.Do(
          "  clears" + name, [&] { value().bytes.assign(value().bytes.size(), 0); },
          [&] { c.real->InternalClearFieldValue(realRow, field); });
      break;
    case 4:
    case 5:
      twins_.Do(
          "  status of" + name, [&] { value().assigned = assigned; },
          [&] { c.real->InternalSetFieldStatus(realRow, field, assigned ? vxfsAssigned : vxfsNull); });
      break;
    default:
      twins_.Do(
          "  value of" + name + " " + ToText(bytes), [&] { value().bytes = bytes; },
          [&] { c.real->InternalSetFieldValue(realRow, field, bytes.data()); });
  }
}

// -- Order and filter ---

void TRandomRun::Sort() {
  TCursorPair& c = AnyCursor();
  const std::string keys = AnySortKeys();
  twins_.Do(
      c.name + " sorts by '" + keys + "'", [&] { c.naive->Sort(keys); }, [&] { c.real->Sort(keys); });
}

void TRandomRun::SetSortedField() {
  TCursorPair& c = AnyCursor();
  const std::string keys = dice_.OneIn(3) ? "" : AnySortKeys();
  twins_.Do(
      c.name + " sorted field '" + keys + "'", [&] { c.naive->SetSortedField(keys); },
      [&] { c.real->Set_SortedField(keys); });
}

void TRandomRun::SetOrder() {
  TCursorPair& c = AnyCursor();
  const TOrder order = dice_.OneIn(2) ? TOrder::Ascending : TOrder::Descending;
  twins_.Do(
      c.name + (order == TOrder::Ascending ? " ascends" : " descends"), [&] { c.naive->order = order; },
      [&] { c.real->Set_Order(static_cast<TVXRAMCursorOrder>(order)); });
}

void TRandomRun::SetFilter() {
  TCursorPair& c = AnyCursor();
  const std::int32_t field = AnyField();
  if (dice_.OneIn(3)) {
    twins_.Do(
        c.name + " unfiltered", [&] { c.naive->SetFilter(nullptr, {}); },
        [&] { c.real->Get_Filter()->SetFilter(nullptr, {}); });
    return;
  }
  const TValue value = AnyFilterValue(field);
  twins_.Do(
      c.name + " filter field " + std::to_string(field) + " = " + ToText(value),
      [&] { c.naive->SetFilter(naive_.Def(field), value); },
      [&] { c.real->Get_Filter()->SetFilter(RealField(field), ToVariant(value)); });
}

void TRandomRun::SetFilterField() {
  TCursorPair& c = AnyCursor();
  const std::int32_t field = dice_.OneIn(3) ? AnyField() : -1;
  twins_.Do(
      c.name + " filter field " + std::to_string(field),
      [&] { c.naive->SetFilter(field == -1 ? nullptr : naive_.Def(field), {}); },
      [&] { c.real->Get_Filter()->Set_Field(field == -1 ? nullptr : RealField(field)); });
}

void TRandomRun::SetFilterValue() {
  TCursorPair& c = AnyCursor();
  std::int32_t field = 0;
  while (c.naive->filterField != nullptr && naive_.Def(field) != c.naive->filterField) ++field;
  const TValue value = AnyFilterValue(field);
  twins_.Do(
      c.name + " filter value " + ToText(value), [&] { c.naive->SetFilter(c.naive->filterField, value); },
      [&] { c.real->Get_Filter()->Set_Value(ToVariant(value)); });
}

void TRandomRun::SetOnFilterRecord() {
  TCursorPair& c = AnyCursor();
  const TRecordFilter callback{dice_.Below(3), dice_.Below(3)};
  TRecordFilterObject& object = twins_.NewFilterObject(c, callback.salt);
  TVXRAMCursorRecordFilterProc event;
  if (callback.code == 1) event = {object, &TRecordFilterObject::First};
  if (callback.code == 2) event = {object, &TRecordFilterObject::Second};
  twins_.Do(
      c.name + " callback " + std::to_string(callback.code) + "/" + std::to_string(callback.salt),
      [&] { c.naive->SetOnFilterRecord(callback); }, [&] { c.real->SetOnFilterRecord(event); });
}

void TRandomRun::RebuildFilteredList() {
  TCursorPair& c = AnyCursor();
  twins_.Do(
      c.name + " filters its source", [&] { c.naive->RebuildFilteredList(c.naive->InternalRecordList()); },
      [&] { c.real->RebuildFilteredList(*c.real->Get_InternalRecordList()); });
}

void TRandomRun::MatchFilter() {
  TCursorPair& c = AnyCursor();
  if (c.naive->filterField == nullptr || naive_.mainList.empty()) return;
  const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.mainList.size()));
  auto* row = static_cast<TVXRAMRow*>(real_.Get_MainRecordList()->Items(at));
  twins_.Do(
      c.name + "'s filter takes row " + std::to_string(at),
      [&] { return c.naive->IsRecordMatchFilter(*naive_.mainList[static_cast<std::size_t>(at)]); },
      [&] { return real_.InternalIsRecordMatchFilter(*c.real->Get_Filter(), row); });
}

// -- Indexes and names ---

void TRandomRun::RebuildIndex() {
  if (naive_.indexes.empty()) return;
  const std::int32_t index = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
  twins_.Do(
      "rebuild index " + std::to_string(index),
      [&] { naive_.ReBuild(*naive_.indexes[static_cast<std::size_t>(index)]); },
      [&] { real_.Get_Indices()->Get_Item(index)->Get_Index()->ReBuild(); });
}

void TRandomRun::LocateFirst() {
  if (naive_.indexes.empty()) return;
  const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
  const TIndex& index = *naive_.indexes[static_cast<std::size_t>(at)];
  if (index.field == nullptr) return;
  TBytes key = RandomBytes(dice_, *index.field);
  key.push_back(0);  // a text that fills its slot has no zero of its own
  twins_.Do(
      "locate " + ToText(key) + " in index " + std::to_string(at), [&] { return naive_.LocateFirst(index, key); },
      [&] { return real_.Get_Indices()->Get_Item(at)->Get_Index()->LocateFirst(key.data()); });
}

void TRandomRun::LookUpNames() {
  const std::string name = AnyName();
  TCursorPair& c = AnyCursor();
  const std::int32_t field = AnyField();
  twins_.Do(
      "field " + name, [&] { return naive_.FieldNbByName(name); }, [&] { return real_.FieldNbByName(name); });
  twins_.Do(
      "index on " + name, [&] { return naive_.IndexNbByFieldName(name); },
      [&] { return real_.IndexNbByFieldName(name); });
  twins_.Do(
      "index on field " + std::to_string(field), [&] { return naive_.IndexNbByFieldNb(field); },
      [&] { return real_.IndexNbByFieldNb(field); });
  twins_.Do(
      c.name + " can use an index on " + name, [&] { return c.naive->CanUseIndex(name); },
      [&] { return c.real->Get_CanUseIndex(name); });
}

// -- Brackets ---

void TRandomRun::EndUpdate(TCursorPair& pair) {
  bool failed = false;
  twins_.Do(
      pair.name + " ends update",
      [&] {
        failed = true;
        pair.naive->EndUpdate();
        failed = false;
      },
      [&] { pair.real->EndUpdate(); });
  if (failed && pair.naive->IsFiltered()) twins_.Close(pair);  // its filtered list may name virtual rows that are gone
}

void TRandomRun::BracketCursor() {
  TCursorPair& c = AnyCursor();
  if (c.naive->updateCount > 0 || dice_.OneIn(5)) return EndUpdate(c);
  twins_.Do(
      c.name + " begins update", [&] { c.naive->BeginUpdate(); }, [&] { c.real->BeginUpdate(); });
}

void TRandomRun::BracketTable() {
  if (naive_.updateCount > 0 || dice_.OneIn(5))
    twins_.Do(
        "table ends update", [&] { naive_.EndUpdate(); }, [&] { real_.EndUpdate(); });
  else
    twins_.Do(
        "table begins update", [&] { naive_.BeginUpdate(); }, [&] { real_.BeginUpdate(); });
}

// -- Opening and closing ---

void TRandomRun::OpenPlain() {
  if (twins_.cursors.size() >= 7) return CloseCursor();
  twins_.OpenPlain(AnyDesc("c"));
}

void TRandomRun::OpenBucketer() {
  if (twins_.cursors.size() >= 7) return CloseCursor();
  TBucketerDesc desc;
  static_cast<TCursorDesc&>(desc) = AnyDesc("b");
  desc.bucketFieldDefs = AnyBucketFieldDefs();
  desc.groupMode = static_cast<TGroupMode>(dice_.Below(5));
  desc.basedGroupMode = dice_.OneIn(2) ? desc.groupMode : static_cast<TGroupMode>(dice_.Below(5));
  desc.bucketedFields = AnyBucketedFields();
  desc.byStartOfGroup = dice_.OneIn(2);
  twins_.OpenBucketer(desc);
}

void TRandomRun::CloseCursor() {
  if (twins_.cursors.size() < 2) return;
  twins_.Close(AnyCursor());
}

void TRandomRun::OpenBadIndex() {
  TCursorDesc desc = AnyDesc("x");
  desc.indexNb = dice_.OneIn(2) ? -2 : static_cast<std::int32_t>(naive_.indexes.size());
  twins_.OpenPlain(desc);
}

// -- Buckets ---

void TRandomRun::ChangeBuckets() {
  TCursorPair* c = AnyBucketer();
  if (c == nullptr) return OpenBucketer();
  const auto mode = static_cast<TGroupMode>(dice_.Below(5));
  const auto realMode = static_cast<TVXGroupMode>(mode);
  const std::string modeText = std::to_string(static_cast<int>(mode));
  const bool flag = dice_.OneIn(2);
  const std::string names = AnyBucketedFields();
  const TBucketFieldDefs defs = AnyBucketFieldDefs();
  switch (dice_.Below(5)) {
    case 0:
      twins_.Do(
          c->name + " groups by " + modeText, [&] { c->naiveBucketer->groupMode = mode; },
          [&] { c->realBucketer->SetGroupMode(realMode); });
      break;
    case 1:
      twins_.Do(
          c->name + " is based on " + modeText, [&] { c->naiveBucketer->basedGroupMode = mode; },
          [&] { c->realBucketer->SetBasedGroupMode(realMode); });
      break;
    case 2:
      twins_.Do(
          c->name + " by start: " + ToText(flag), [&] { c->naiveBucketer->byStartOfGroup = flag; },
          [&] { c->realBucketer->SetBucketByStartOfGroup(flag); });
      break;
    case 3:
      twins_.Do(
          c->name + " bucketed fields '" + names + "'", [&] { c->naiveBucketer->bucketedFields = names; },
          [&] { c->realBucketer->SetBucketedFields(names); });
      break;
    default: {
      const auto realDefs = Make<TVXBucketFieldDefs>(nullptr);
      for (const auto& [fieldName, type] : defs) realDefs->Add(fieldName, static_cast<TVXBucketType>(type));
      twins_.Do(
          c->name + " other bucket types", [&] { c->naiveBucketer->bucketFieldDefs = defs; },
          [&] { c->realBucketer->SetBucketFieldDefs(realDefs.get()); });
    }
  }
}

void TRandomRun::BuildAllBuckets() {
  TCursorPair* c = AnyBucketer();
  if (c == nullptr || c->naive->IsFiltered()) return;
  twins_.Do(
      c->name + " builds", [&] { c->naiveBucketer->BuildAllBuckets(); }, [&] { c->realBucketer->BuildAllBuckets(); });
}

void TRandomRun::AskBuckets() {
  TCursorPair* c = AnyBucketer();
  if (c == nullptr) return;
  const std::string name = AnyName();
  twins_.Do(
      c->name + " bucketed by " + name + "?", [&] { return c->naiveBucketer->IsBucketedField(name); },
      [&] { return c->realBucketer->IsBucketedField(name); });
  if (naive_.mainList.empty() || c->naive->index != nullptr) return;
  const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.mainList.size()));
  const auto realKey = [&] {
    std::string key;
    c->realBucketer->CalcBucketedFieldValue(static_cast<TVXRAMRow*>(c->real->Get_InternalRecordList()->Items(at)), key);
    return key;
  };
  twins_.Do(
      c->name + " key of row " + std::to_string(at),
      [&] { return c->naiveBucketer->KeyOf(*naive_.mainList[static_cast<std::size_t>(at)]); }, realKey);
}

}  // namespace vx::naive
