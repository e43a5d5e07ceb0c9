#include "RandomRun.h"

#include <algorithm>

#include "Dice.h"
#include "RandomValues.h"
#include "Twins.h"
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

struct TRandomRun::TLife {
  // -- The same call on both sides ---
  template <class F>
  void Both(TCursorPair& c, const std::string& text, const F& call) {
    twins_.Do(
        c.name + " " + text, [&] { return call(*c.naive); }, [&] { return call(*c.real); });
  }
  template <class F>
  void OnCursor(const std::string& text, const F& call) {
    Both(AnyCursor(), text, call);
  }
  template <class F>
  void OnId(const std::string& text, const F& call) {
    const std::int32_t id = AnyId();
    OnCursor(text + std::to_string(id), [&](auto& cursor) { return call(cursor, id); });
  }
  template <class F>
  void BothBucketers(TCursorPair& c, const std::string& text, const F& call) {
    twins_.Do(
        c.name + " " + text, [&] { return call(*c.naiveBucketer); }, [&] { return call(*c.realBucketer); });
  }
  template <class F>
  void BothTables(const std::string& text, const F& call) {
    twins_.Do(
        text, [&] { return call(naive_); }, [&] { return call(real_); });
  }

  TVXRAMFieldDef* RealField(std::int32_t field) const { return real_.Get_FieldDefs()->Get_Item(field); }
  TVXRAMUserIndex& RealIndex(std::int32_t index) const { return *real_.Get_Indices()->Get_Item(index)->Get_Index(); }
  TIndex& Index(std::int32_t index) const { return *naive_.indexes[static_cast<std::size_t>(index)]; }
  TRow& MainRow(std::int32_t at) const { return *naive_.mainList[static_cast<std::size_t>(at)]; }

  explicit TLife(std::uint32_t seed) : dice_(seed), twins_("Orders"), naive_(twins_.naive), real_(*twins_.real) {
    GVXStartOfWeek = naive_.startOfWeek = dice_.Pick(std::vector<std::int32_t>{1, 1, 2, 7});
    maxRows_ = dice_.Pick(std::vector<std::int32_t>{5, 12, 12, 25, 40});
    DefineFields();
    DefineIndexes();
    OpenPlain();
  }

  std::string Step() {
    for (const auto& index : naive_.indexes)
      if (index->field == nullptr && dice_.OneIn(6)) {
        SetIndexField();
        return twins_.Difference();
      }
    static const std::vector<TCall> kCalls = Calls();
    (this->*dice_.Pick(kCalls))();
    return twins_.Difference();
  }

  // -- Choices ---
  TCursorPair& AnyCursor() {
    while (twins_.cursors.empty()) OpenPlain();  // a filter that can't be compared keeps it from opening
    auto at = twins_.cursors.begin();
    std::advance(at, dice_.Below(static_cast<std::int32_t>(twins_.cursors.size())));
    return *at;
  }

  TCursorPair* AnyBucketer() {
    std::vector<TCursorPair*> found;
    for (TCursorPair& pair : twins_.cursors)
      if (pair.naiveBucketer != nullptr) found.push_back(&pair);
    return found.empty() ? nullptr : dice_.Pick(found);
  }

  std::int32_t AnyField() { return dice_.Below(static_cast<std::int32_t>(naive_.fields.size())); }

  /// Now and then one position too far.
  std::int32_t AnyFieldOrNone() {
    return dice_.OneIn(60) ? static_cast<std::int32_t>(naive_.fields.size()) : AnyField();
  }

  std::int32_t AnyId() {
    if (dice_.OneIn(8)) return -1;
    return dice_.OneIn(4) ? dice_.Below(naive_.nextId + 2) : std::max(0, naive_.nextId - dice_.Below(maxRows_ + 3));
  }

  std::string AnyName() {
    if (dice_.OneIn(12)) return "Nowhere";
    const std::string name = naive_.fields[static_cast<std::size_t>(AnyField())]->name;
    return dice_.OneIn(5) ? Upper(name) : name;
  }

  std::string AnySortKeys() {
    static const std::vector<std::string> kOrders = {"", "", ".A", ".D", ".D", ".d", ".", ".DA"};
    std::string text;
    for (std::int32_t i = dice_.Below(4); i > 0; --i)
      text += AnyName() + dice_.Pick(kOrders) + (i > 1 || dice_.OneIn(5) ? ";" : "");
    return (dice_.OneIn(30) ? ";" : "") + text;
  }

  std::string AnyBucketedFields() {
    std::string text;
    for (const auto& field : naive_.fields)
      if (field->type == TType::DateTime && dice_.OneIn(2)) text = field->name + ";";
    for (std::int32_t i = dice_.Below(text.empty() ? 3 : 2); i > 0; --i) text += AnyName() + ";";
    if (dice_.OneIn(2) && !text.empty()) text.pop_back();
    return text;
  }

  /// Now and then with a wrong type.
  TStruct AnyStruct() {
    TStruct values;
    for (const auto& field : naive_.fields) {
      const bool isNull = dice_.OneIn(5);
      values.push_back({isNull, field->type, isNull ? TBytes() : RandomBytes(dice_, *field)});
    }
    if (dice_.OneIn(40)) {
      TElement& element = values[static_cast<std::size_t>(AnyField())];
      element.type = element.type == TType::Word ? TType::Boolean : TType::Word;
      element.isNull = true;
    }
    return values;
  }

  TBucketFieldDefs AnyBucketFieldDefs() {
    TBucketFieldDefs defs;
    for (std::int32_t i = dice_.Below(6); i > 0; --i)
      defs.emplace_back(AnyName(), static_cast<TBucketType>(dice_.Below(6)));
    return defs;
  }

  /// Mostly a value that a row has.
  TValue AnyFilterValue(std::int32_t field) {
    if (dice_.OneIn(6)) return RandomFilterValue(dice_);
    const TFieldDef& def = naive_.Field(field);
    if (naive_.mainList.empty() || dice_.OneIn(4)) return ValueOf(def, RandomBytes(dice_, def));
    return ValueOf(def, naive_.Read(*dice_.Pick(naive_.mainList), static_cast<std::size_t>(field)).bytes);
  }

  /// When there are rows enough; makes room at times.
  bool IsFull() {
    if (static_cast<std::int32_t>(naive_.mainList.size() + naive_.baseIndex.size()) < maxRows_) return false;
    if (dice_.OneIn(4)) DeleteRec();
    return true;
  }

  TCursorDesc AnyDesc(const std::string& prefix) {
    TCursorDesc desc;
    desc.name = prefix + std::to_string(nextName_++);
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
  void DefineFields() {
    for (std::int32_t i = dice_.Between(1, 5); i > 0; --i) DefineField(RandomType(dice_));
    DefineField(TType::DateTime);
  }

  void DefineField(TType type) {
    const std::string name = RandomFieldName(dice_, type);
    const std::int32_t size = RandomSize(dice_, type);
    twins_.Do(
        "add field " + name, [&] { naive_.AddField(name, type, size); },
        [&] { vx::AddField(real_, name, static_cast<TVXRAMFieldType>(type), type == TType::String ? size : 0); });
  }

  void DefineIndexes() {
    for (std::int32_t i = dice_.Below(3); i > 0; --i) {
      const std::string name = naive_.fields[static_cast<std::size_t>(AnyField())]->name;
      naive_.SetIndexField(naive_.AddIndex(), name);
      real_.Get_Indices()->Add()->Set_FieldName(name);
    }
  }

  void AddIndex() {
    if (naive_.indexes.size() >= 3) return;
    twins_.Do(
        "add index", [&] { naive_.AddIndex(); }, [&] { real_.Get_Indices()->Add(); });
    if (!dice_.OneIn(6)) SetIndexField();
  }

  void SetIndexField() {
    if (naive_.indexes.empty()) return;
    std::int32_t index = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
    for (std::size_t i = 0; i < naive_.indexes.size(); ++i)
      if (naive_.indexes[i]->field == nullptr) index = static_cast<std::int32_t>(i);  // it makes every insertion fail
    const std::string name = AnyName();
    twins_.Do(
        "index " + std::to_string(index) + " on " + name, [&] { naive_.SetIndexField(Index(index), name); },
        [&] { real_.Get_Indices()->Get_Item(index)->Set_FieldName(name); });
  }

  /// Refused while the base index holds rows; else the rows of the main list become shorter than the definitions.
  void AddField() {
    if (naive_.RecCount() > 0) return DefineField(RandomType(dice_));
    if (AnyBucketer() == nullptr && naive_.fields.size() < 8) DefineField(RandomType(dice_));
  }

  // -- Walking ---
  void GoToFirst() {
    OnCursor("first", [](auto& c) { c.GoToFirstRec(); });
  }
  void GoToLast() {
    OnCursor("last", [](auto& c) { c.GoToLastRec(); });
  }
  void GoToNext() {
    OnCursor("next", [](auto& c) { return c.GoToNextRec(); });
  }
  void GoToPrevious() {
    OnCursor("previous", [](auto& c) { return c.GoToPreviousRec(); });
  }
  void SetRecordId() {
    OnId("to id ", [](auto& c, std::int32_t id) { c.Set_RecordID(id); });
  }
  void FindById() {
    OnId("finds id ", [](auto& c, std::int32_t id) { return c.Get_RecIndexById(id); });
  }
  void SetRecIndex() {
    TCursorPair& c = AnyCursor();
    const std::int32_t count = c.naive->RecordCount();
    const std::int32_t to = dice_.OneIn(6) ? dice_.Between(-3, count + 3) : dice_.Between(0, std::max(0, count - 1));
    Both(c, "to index " + std::to_string(to), [to](auto& cursor) { cursor.Set_RecIndex(to); });
  }

  // -- Rows in and out ---
  void ClearTable() {
    BothTables("clear table", [](auto& table) { table.ClearTable(); });
  }
  void DeleteRec() {
    OnCursor("deletes", [](auto& c) { c.DeleteRec(); });
  }
  void InsertRec() {
    if (!IsFull()) OnCursor("inserts", [](auto& c) { c.InsertRec(); });
  }
  void InsertRecWithValues() {
    if (IsFull()) return;
    TCursorPair& c = AnyCursor();
    const TStruct values = AnyStruct();
    const bool append = dice_.OneIn(2);
    const TOwnedRecordStruct record = real_.NewRecord();
    Fill(*record, values);
    twins_.Do(
        c.name + (append ? " appends " : " inserts ") + StructText(values),
        [&] { c.naive->InsertRecWithValues(values, append); }, [&] { c.real->InsertRecWithValues(*record, append); });
  }

  void CompareIds(std::int32_t naiveId, std::int32_t realId) {
    twins_.Do(
        "  its id", [&] { return naiveId; }, [&] { return realId; });
  }

  void AddRecord() {
    if (IsFull()) return;
    const std::int32_t indexNb = dice_.Between(-2, static_cast<std::int32_t>(naive_.indexes.size()));
    std::int32_t naiveId = -7, realId = -7;
    twins_.Do(
        "add record, index " + std::to_string(indexNb), [&] { return naive_.AddRecord(indexNb, naiveId); },
        [&] { return real_.AddRecord(indexNb, realId); });
    CompareIds(naiveId, realId);
  }

  void AddRecordAndValues() {
    if (IsFull()) return;
    TStruct values = AnyStruct();
    const TOwnedRecordStruct record = real_.NewRecord();
    if (dice_.OneIn(40)) values.pop_back();
    if (dice_.OneIn(30)) values.push_back({});
    Fill(*record, values);
    const std::int32_t indexNb = dice_.Between(-2, static_cast<std::int32_t>(naive_.indexes.size()));
    const std::int32_t position =
        dice_.Between(-2, static_cast<std::int32_t>(naive_.mainList.size()) + (dice_.OneIn(8) ? 2 : 0));
    const bool append = dice_.OneIn(3);
    std::int32_t naiveId = -7, realId = -7;
    twins_.Do(
        "add " + StructText(values) + " at " + std::to_string(position) + (append ? " append" : "") + ", index " +
            std::to_string(indexNb),
        [&] { return naive_.AddRecordAndValues(values, indexNb, position, naiveId, append); },
        [&] { return real_.AddRecordAndValues(*record, indexNb, position, realId, append); });
    CompareIds(naiveId, realId);
  }

  void DeleteRowOfAnother() {
    TCursorPair& c = AnyCursor();
    TCursorPair& other = AnyCursor();
    twins_.Do(
        c.name + " deletes the row of " + other.name,
        [&] { naive_.DeleteRecord(c.naive, other.naive->CurrentRecord()); },
        [&] { c.real->InternalDeleteRecord(other.real->Get_CurrentRecord()); });
  }

  // -- Values ---
  void UpdateRecWithValues() {
    TCursorPair& c = AnyCursor();
    TStruct values = AnyStruct();
    const TOwnedRecordStruct record = real_.NewRecord();
    Fill(*record, values);
    if (dice_.OneIn(10)) record->FieldCount += dice_.Between(-1, 1);  // nobody looks at it
    twins_.Do(
        c.name + " updates " + StructText(values), [&] { c.naive->UpdateRecWithValues(values); },
        [&] { c.real->UpdateRecWithValues(*record); });
  }

  void SetFieldValue() {
    TCursorPair& c = AnyCursor();
    const std::int32_t field = AnyFieldOrNone();
    if (field == static_cast<std::int32_t>(naive_.fields.size()) && c.naive->RecordCount() == 0) return;
    TBytes bytes(64, 0);
    if (field < static_cast<std::int32_t>(naive_.fields.size())) bytes = RandomBytes(dice_, naive_.Field(field));
    twins_.Do(
        c.name + " sets field " + std::to_string(field) + " to " + ToText(bytes),
        [&] { c.naive->SetFieldValue(field, bytes); }, [&] { c.real->SetFieldValue(field, bytes.data()); });
  }

  void ClearFieldValue() {
    const std::int32_t field = AnyField();
    OnCursor("clears field " + std::to_string(field), [field](auto& c) { c.ClearFieldValue(field); });
  }

  void ReadField() {
    TCursorPair& c = AnyCursor();
    const std::int32_t field = AnyField();
    const std::int32_t byteSize = naive_.Field(field).size;
    const std::int32_t size = byteSize + dice_.Between(-1, 1);
    twins_.Do(
        c.name + " reads field " + std::to_string(field), [&] { return c.naive->GetFieldValue(field, size); },
        [&] { return ReadRealField(*c.real, field, size, byteSize); });
    Both(c, "is null?", [field](auto& cursor) { return cursor.FieldValueIsNull(field); });
  }

  void WriteRaw() {
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
  void Sort() {
    const std::string keys = AnySortKeys();
    OnCursor("sorts by '" + keys + "'", [&](auto& c) { c.Sort(keys); });
  }
  void SetSortedField() {
    const std::string keys = dice_.OneIn(3) ? "" : AnySortKeys();
    OnCursor("sorted field '" + keys + "'", [&](auto& c) { c.Set_SortedField(keys); });
  }

  void SetOrder() {
    TCursorPair& c = AnyCursor();
    const TOrder order = dice_.OneIn(2) ? TOrder::Ascending : TOrder::Descending;
    twins_.Do(
        c.name + (order == TOrder::Ascending ? " ascends" : " descends"), [&] { c.naive->order = order; },
        [&] { c.real->Set_Order(static_cast<TVXRAMCursorOrder>(order)); });
  }

  /// No field, a field alone (it forgets the value), a value alone, or both at once.
  void SetFilter() {
    TCursorPair& c = AnyCursor();
    const std::int32_t way = dice_.Below(6);
    const bool fieldAlone = way == 1, valueAlone = way == 2 || way == 3;
    std::int32_t field = way == 0 || (fieldAlone && dice_.OneIn(2)) ? -1 : AnyField();
    if (valueAlone && c.naive->filterField != nullptr)
      field = static_cast<std::int32_t>(naive_.NbOf(c.naive->filterField));
    const TValue value = field == -1 || fieldAlone ? TValue() : AnyFilterValue(field);
    TFieldDef* const def = field == -1 ? nullptr : naive_.Def(field);
    TVXRAMFieldDef* const realDef = field == -1 ? nullptr : RealField(field);
    const char* const wayText = fieldAlone ? " filter's field " : valueAlone ? " filter's value, as of " : " filter ";
    twins_.Do(
        c.name + wayText + std::to_string(field) + " = " + ToText(value),
        [&] { c.naive->SetFilter(valueAlone ? c.naive->filterField : def, value); },
        [&] {
          if (fieldAlone) return c.real->Get_Filter()->Set_Field(realDef);
          if (valueAlone) return c.real->Get_Filter()->Set_Value(ToVariant(value));
          c.real->Get_Filter()->SetFilter(realDef, ToVariant(value));
        });
  }

  void SetOnFilterRecord() {
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

  void RebuildFilteredList() {
    TCursorPair& c = AnyCursor();
    twins_.Do(
        c.name + " filters its source", [&] { c.naive->RebuildFilteredList(c.naive->InternalRecordList()); },
        [&] { c.real->RebuildFilteredList(*c.real->Get_InternalRecordList()); });
  }

  void MatchFilter() {
    TCursorPair& c = AnyCursor();
    if (c.naive->filterField == nullptr || naive_.mainList.empty()) return;
    const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.mainList.size()));
    auto* row = static_cast<TVXRAMRow*>(real_.Get_MainRecordList()->Items(at));
    twins_.Do(
        c.name + "'s filter takes row " + std::to_string(at), [&] { return c.naive->IsRecordMatchFilter(MainRow(at)); },
        [&] { return real_.InternalIsRecordMatchFilter(*c.real->Get_Filter(), row); });
  }

  // -- Indexes and names ---
  void RebuildIndex() {
    if (naive_.indexes.empty()) return;
    const std::int32_t index = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
    twins_.Do(
        "rebuild index " + std::to_string(index), [&] { naive_.ReBuild(Index(index)); },
        [&] { RealIndex(index).ReBuild(); });
  }

  void LocateFirst() {
    if (naive_.indexes.empty()) return;
    const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.indexes.size()));
    const TIndex& index = Index(at);
    if (index.field == nullptr) return;
    TBytes key = RandomBytes(dice_, *index.field);
    key.push_back(0);  // a text that fills its slot has no zero of its own
    twins_.Do(
        "locate " + ToText(key) + " in index " + std::to_string(at), [&] { return naive_.LocateFirst(index, key); },
        [&] { return RealIndex(at).LocateFirst(key.data()); });
  }

  void LookUpNames() {
    const std::string name = AnyName();
    const std::int32_t field = AnyField();
    BothTables("field " + name, [&](auto& table) { return table.FieldNbByName(name); });
    BothTables("index on " + name, [&](auto& table) { return table.IndexNbByFieldName(name); });
    BothTables("index on field " + std::to_string(field), [&](auto& table) { return table.IndexNbByFieldNb(field); });
    OnCursor("can use an index on " + name, [&](auto& c) { return c.Get_CanUseIndex(name); });
  }

  // -- Brackets ---
  void EndUpdate(TCursorPair& pair) {
    bool failed = false;
    twins_.Do(
        pair.name + " ends update",
        [&] {
          failed = true;
          pair.naive->EndUpdate();
          failed = false;
        },
        [&] { pair.real->EndUpdate(); });
    if (failed && pair.naive->IsFiltered())
      twins_.Close(pair);  // its filtered list may name virtual rows that are gone
  }

  void BracketCursor() {
    TCursorPair& c = AnyCursor();
    if (c.naive->updateCount > 0 || dice_.OneIn(5)) return EndUpdate(c);
    Both(c, "begins update", [](auto& cursor) { cursor.BeginUpdate(); });
  }

  void BracketTable() {
    if (naive_.updateCount > 0 || dice_.OneIn(5))
      return BothTables("table ends update", [](auto& t) { t.EndUpdate(); });
    BothTables("table begins update", [](auto& t) { t.BeginUpdate(); });
  }

  // -- Opening and closing ---
  void OpenPlain() {
    if (twins_.cursors.size() >= 7) return CloseCursor();
    twins_.OpenPlain(AnyDesc("c"));
  }

  void OpenBucketer() {
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

  void CloseCursor() {
    if (twins_.cursors.size() < 2) return;
    twins_.Close(AnyCursor());
  }

  void OpenBadIndex() {
    TCursorDesc desc = AnyDesc("x");
    desc.indexNb = dice_.OneIn(2) ? -2 : static_cast<std::int32_t>(naive_.indexes.size());
    twins_.OpenPlain(desc);
  }

  // -- Buckets ---
  void ChangeBuckets() {
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

  void BuildAllBuckets() {
    TCursorPair* c = AnyBucketer();
    if (c != nullptr && !c->naive->IsFiltered())
      BothBucketers(*c, "builds", [](auto& bucketer) { bucketer.BuildAllBuckets(); });
  }

  void AskBuckets() {
    TCursorPair* c = AnyBucketer();
    if (c == nullptr) return;
    const std::string name = AnyName();
    BothBucketers(*c, "bucketed by " + name + "?", [&](auto& bucketer) { return bucketer.IsBucketedField(name); });
    if (naive_.mainList.empty() || c->naive->index != nullptr) return;
    const std::int32_t at = dice_.Below(static_cast<std::int32_t>(naive_.mainList.size()));
    const auto realKey = [&] {
      std::string key;
      c->realBucketer->CalcBucketedFieldValue(static_cast<TVXRAMRow*>(c->real->Get_InternalRecordList()->Items(at)),
                                              key);
      return key;
    };
    twins_.Do(
        c->name + " key of row " + std::to_string(at), [&] { return c->naiveBucketer->KeyOf(MainRow(at)); }, realKey);
  }

  // -- What is done, and how often ---
  using TCall = void (TLife::*)();
  /// Each call as often as it counts.
  static std::vector<TCall> Calls() {
    using T = TLife;
    const std::pair<std::int32_t, std::vector<TCall>> weighted[] = {
        {30, {&T::InsertRecWithValues}},
        {16, {&T::UpdateRecWithValues}},
        {14, {&T::GoToNext}},
        {12, {&T::SetFieldValue, &T::SetFilter}},
        {10, {&T::GoToPrevious, &T::AddRecordAndValues}},
        {8, {&T::SetRecIndex}},
        {7, {&T::DeleteRec}},
        {6, {&T::SetRecordId, &T::ClearFieldValue, &T::Sort, &T::WriteRaw}},
        {5, {&T::SetSortedField, &T::SetOnFilterRecord, &T::BracketCursor, &T::CloseCursor}},
        {4,
         {&T::GoToFirst, &T::GoToLast, &T::InsertRec, &T::ReadField, &T::SetOrder, &T::LocateFirst, &T::OpenPlain,
          &T::OpenBucketer, &T::ChangeBuckets}},
        {3, {&T::FindById, &T::AddRecord, &T::DeleteRowOfAnother, &T::RebuildIndex}},
        {2,
         {&T::MatchFilter, &T::SetIndexField, &T::LookUpNames, &T::BracketTable, &T::BuildAllBuckets, &T::AskBuckets}},
        {1, {&T::ClearTable, &T::RebuildFilteredList, &T::AddIndex, &T::AddField, &T::OpenBadIndex}}};
    std::vector<TCall> calls;
    for (const auto& [weight, each] : weighted)
      for (std::int32_t i = 0; i < weight; ++i) calls.insert(calls.end(), each.begin(), each.end());
    return calls;
  }

  TDice dice_;
  TTwins twins_;
  TTable& naive_;
  TVXRAMTable& real_;
  std::int32_t maxRows_ = 20;
  std::int32_t nextName_ = 0;
};

TRandomRun::TRandomRun(std::uint32_t seed) : life_(std::make_unique<TLife>(seed)) {}
TRandomRun::~TRandomRun() = default;
std::string TRandomRun::Step() { return life_->Step(); }
std::string TRandomRun::Report() const { return life_->twins_.Report(); }

}  // namespace vx::naive
