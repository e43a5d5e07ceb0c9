// TableKit.h: tables, cursors and lists in a form in which a test can be read: rows as lists of cells, orders as texts
// of ids.
//
//   TTestTable table({{"Name", vxrftString, 8}, {"Load", vxrftInteger}}, {"Load"});
//   table.Add({"drill", 3});
//   TVXRAMCursor& cursor = table.Open({.sort = "Load.D"});
//   EXPECT_EQ(Ids(cursor), "0");
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMFilterMatch.h"
#include "data/VXRAMTable_CMP.h"
#include "platform/runtime/Variant.h"

namespace vx {

using TCells = std::vector<Variant>;

inline Variant Null() { return Variant::Null(); }

/// The class and message of what `action` raises (nothing but errors of ours), "nothing" if it doesn't.
template <class Action>
std::string Raised(const Action& action) {
  try {
    action();
  } catch (const Exception& error) {
    return std::string(error.ClassName()) + ": " + error.Message();
  }
  return "nothing";
}

/// Of "EListError: List index out of bounds (1)" the class alone; "" for "nothing".
template <class Action>
std::string ErrorOf(const Action& action) {
  const std::string raised = Raised(action);
  return raised == "nothing" ? "" : raised.substr(0, raised.find(':'));
}

/// Owner of cursors. Counts what it is told, and may do something then.
struct TTestOwner : public TComponent, public IRecordOwner {
  TTestOwner() : TComponent(nullptr) {}
  void Refresh() override {
    ++refreshes;
    if (onRefresh) onRefresh();
  }
  void Notification(TComponent* component, TOperation operation) override {
    if (operation == opRemove) ++removals;
    TComponent::Notification(component, operation);
  }

  std::int32_t refreshes = 0;
  std::int32_t removals = 0;
  std::function<void()> onRefresh;
};

struct TTestField {
  const char* name;
  TVXRAMFieldType type;
  std::int32_t size = 0;
};

struct TTestWish {
  std::string sort = {};
  std::int32_t index = -1;
  TVXRAMCursorOrder order = vxrcoAscending;
  const char* filterField = nullptr;
  Variant filterValue = {};
};

struct TTestBuckets {
  std::string fields;
  TVXGroupMode mode = vxgrOneDay;
  std::vector<std::pair<std::string, TVXBucketType>> folds = {};
  TVXGroupMode based = vxgrOneDay;
  bool byStart = true;
  TTestWish wish = {};
};

inline void AssignCell(TVXFieldStruct& element, const Variant& value) {
  const TVXRAMFieldType type = element.FieldType;
  if (value.IsNull())
    element.IsNull = true;
  else if (type == vxrftString)
    element.AssignText(value.AsString());
  else if (type == vxrftCurrency || type == vxrftDateTime || type == vxrftFloat)
    element.AssignValue(value.AsDouble());
  else  // the low bytes of an integer are a smaller one
    element.AssignValue(type == vxrftBoolean ? value.AsInteger() & 1 : value.AsInteger());
}

class TTestTable {
 public:
  explicit TTestTable(std::initializer_list<TTestField> fields, std::initializer_list<const char*> indices = {}) {
    for (const TTestField& field : fields) AddField(*table, field.name, field.type, field.size);
    for (const char* name : indices) table->Get_Indices()->Add()->Set_FieldName(name);
  }
  TTestTable(const TTestTable&) = delete;
  TTestTable& operator=(const TTestTable&) = delete;

  TVXRAMTable* operator->() const { return table.get(); }
  TVXRAMTable& operator*() const { return *table; }
  TVXRAMFieldDef* Field(const char* name) const {
    return name == nullptr ? nullptr : table->Get_FieldDefs()->Get_Item(table->FieldNbByName(name));
  }
  TVXRAMUserIndex& Index(std::int32_t number) const { return *table->Get_Indices()->Get_Item(number)->Get_Index(); }
  TVXList& MainList() const { return *table->Get_MainRecordList(); }
  TVXRAMRow* Row(std::int32_t position) const { return static_cast<TVXRAMRow*>(MainList().Items(position)); }

  TOwnedRecordStruct Record(const TCells& cells) const {
    TOwnedRecordStruct record = table->NewRecord();
    for (std::size_t i = 0; i < cells.size(); ++i) AssignCell(record->Field(static_cast<std::int32_t>(i)), cells[i]);
    return record;
  }
  /// Appends a row to the main list; answers its id.
  std::int32_t Add(const TCells& cells) const {
    std::int32_t id = -1;
    table->AddRecordAndValues(*Record(cells), -1, -1, id, true);
    return id;
  }
  /// Adds an empty row to the base index; answers what AddRecord does.
  std::int32_t AddEmpty(std::int32_t index = -1) const {
    std::int32_t id = -1;
    return table->AddRecord(index, id);
  }

  template <class Cursor = TVXRAMCursor>
  Cursor& Open(const TTestWish& wish = {}) {
    TVXRAMCursorDesc desc(owner.get(), wish.index, wish.order, wish.sort, Field(wish.filterField), wish.filterValue);
    return Open<Cursor>(desc);
  }
  TVXRAMCursorBucketer& OpenBuckets(const TTestBuckets& buckets) {
    const auto folds = Make<TVXBucketFieldDefs>(nullptr);
    for (const auto& [name, type] : buckets.folds) folds->Add(name, type);
    const TTestWish& wish = buckets.wish;
    TVXRAMCursorBucketerDesc desc(owner.get(), wish.index, wish.order, wish.sort, Field(wish.filterField),
                                  wish.filterValue, folds.get(), buckets.based, buckets.mode, buckets.fields,
                                  buckets.byStart);
    return Open<TVXRAMCursorBucketer>(desc);
  }
  void Close(TVXRAMCursor& cursor) {
    TVXRAMCursor* closing = &cursor;
    table->CloseCursor(closing);
  }

  TOwned<TTestOwner> owner = Make<TTestOwner>();
  TOwned<TVXRAMTable> table = Make<TVXRAMTable>(nullptr);  ///< goes first, and its cursors with it

 private:
  template <class Cursor>
  Cursor& Open(TVXRAMCursorDesc& desc) {
    TVXRAMCursor* cursor = nullptr;
    table->OpenCursor(TClassOf<TVXRAMCursor>::Of<Cursor>(), &desc, cursor);
    return static_cast<Cursor&>(*cursor);
  }
};

// -- Lists as texts ---------------------------------------------------------------------------------------------------

inline std::string Ids(const TVXList& rows) {
  std::string text;
  for (std::int32_t i = 0; i < rows.Count(); ++i)
    text += (text.empty() ? "" : " ") + std::to_string(RowId(static_cast<const TVXRAMRow*>(rows.Items(i))));
  return text;
}
/// The active list from its front, whatever the walking direction.
inline std::string Ids(const TVXRAMCursor& cursor) { return Ids(*cursor.Get_ActiveRecordList()); }
inline std::string Ids(const TVXRAMIndex& index) { return Ids(*index.Get_List()); }

/// The values of one field over a list, "null" for nulls; dates as numbers.
inline std::string Values(const TVXRAMCursor& cursor, const char* name) {
  const TVXRAMTable& table = cursor.Table();
  const std::int32_t field = table.FieldNbByName(name);
  const TVXRAMFieldSlot slot = table.Get_FieldDefs()->Get_Item(field)->Get_Slot();
  const TVXList& rows = *cursor.Get_ActiveRecordList();
  std::string text;
  for (std::int32_t i = 0; i < rows.Count(); ++i) {
    const auto* const row = static_cast<const TVXRAMRow*>(rows.Items(i));
    const Variant value = slot.type == vxrftDateTime ? Variant(RowValue<double>(row, slot)) : RowVariant(row, slot);
    const bool isNull = table.InternalGetFieldStatus(row, field) == vxfsNull;
    text += (text.empty() ? "" : " ") + (isNull ? "null" : value.AsString());
  }
  return text;
}

/// Of several fields, with bars between them.
inline std::string Values(const TVXRAMCursor& cursor, std::initializer_list<const char*> names) {
  std::string text;
  for (const char* name : names) text += (text.empty() ? "" : "|") + Values(cursor, name);
  return text;
}

/// Plays F(irst), L(ast), N(ext), P(revious); after each: answer of a step, physical and record index, B and E where
/// true.
inline std::string Play(TVXRAMCursor& cursor, const std::string& moves) {
  std::string trace;
  for (const char move : moves) {
    std::string answer;
    if (move == 'F') cursor.GoToFirstRec();
    if (move == 'L') cursor.GoToLastRec();
    if (move == 'N') answer = std::to_string(cursor.GoToNextRec());
    if (move == 'P') answer = std::to_string(cursor.GoToPreviousRec());
    trace += (trace.empty() ? "" : " ") + std::string(1, move) + answer + "@" +
             std::to_string(cursor.Get_PhysicalIndex()) + "/" + std::to_string(cursor.Get_RecIndex()) +
             (cursor.Get_BOF() ? "B" : "") + (cursor.Get_EOF() ? "E" : "");
  }
  return trace;
}

/// Writes a value into the current row's field through the cursor.
template <class T>
void SetField(TVXRAMCursor& cursor, const char* name, T value) {
  cursor.SetFieldValue(cursor.Table().FieldNbByName(name), &value);
}

}  // namespace vx
