// Definitions and layout, the two containers, ids, deletion and clearing, record structures, the table's end.

#include <gtest/gtest.h>

#include "TableKit.h"

namespace vx {
namespace {

// -- Definitions ------------------------------------------------------------------------------------------------------

TEST(VXRAMTableDefinitions, LayoutIsPackedInDefinitionOrder) {
  const TTestTable table({{"Open", vxrftBoolean}, {"Load", vxrftFloat}, {"Name", vxrftString, 10}});
  EXPECT_EQ(table->Get_RecSize(), 27);
  EXPECT_EQ(table.Field("Open")->Get_StatusOffset(), 5);
  EXPECT_EQ(table.Field("Load")->Get_StatusOffset(), 7);
  EXPECT_EQ(table.Field("Name")->Get_ValueOffset(), 17);
  table.Field("Name")->SetIndex(0);
  EXPECT_EQ(table.Field("Load")->Get_StatusOffset(), 5 + 11 + 2);
  EXPECT_EQ(TTestTable({})->Get_RecSize(), 5);
}

TEST(VXRAMTableDefinitions, DataTypeSetsByteSize) {
  const TTestTable table({});
  TVXRAMFieldDef& field = *table->Get_FieldDefs()->Add();
  std::string sizes;
  for (const TVXRAMFieldType type : {vxrftBoolean, vxrftCurrency, vxrftDateTime, vxrftDuration, vxrftFloat,
                                     vxrftInteger, vxrftSmallint, vxrftString, vxrftWord}) {
    field.Set_DataType(type);
    sizes += std::to_string(field.Get_ByteSize());
  }
  EXPECT_EQ(sizes, "188484202");
  EXPECT_EQ(Raised([&] { field.Set_ByteSize(3); }),
            "ERTENoByteSizeChangesAllowed: Can't change the ByteSize of fields other than vxrftString.");
  EXPECT_EQ(Raised([&] { field.Set_DataType(static_cast<TVXRAMFieldType>(9)); }),
            "ERTEInvalidFieldType: You chose an invalid field type.");
  EXPECT_EQ(field.Get_DataType(), 9);  // stored before the table of types was asked
  EXPECT_EQ(field.Get_ByteSize(), 2);
}

// Streams bring ByteSize first.
TEST(VXRAMTableDefinitions, DataTypeKeepsAStreamedByteSize) {
  const TTestTable table({{"Name", vxrftBoolean}});
  TLoading loading(*table);
  table.Field("Name")->Set_ByteSize(30);
  table.Field("Name")->Set_DataType(vxrftString);
  loading.Finish();
  EXPECT_EQ(table.Field("Name")->Get_ByteSize(), 30);
  EXPECT_EQ(table->Get_RecSize(), 36);
}

TEST(VXRAMTableDefinitions, FieldNamesIgnoreCaseIndexNamesDoNot) {
  const TTestTable table({{"Other", vxrftInteger}, {"Amount", vxrftInteger}}, {"Other", "Amount"});
  EXPECT_EQ(table->FieldNbByName("AMOUNT"), 1);
  EXPECT_EQ(table->FieldNbByName("Amoun"), -1);
  EXPECT_EQ(table->IndexNbByFieldName("Amount"), 1);
  EXPECT_EQ(table->IndexNbByFieldName("AMOUNT"), -1);
  EXPECT_EQ(table->IndexNbByFieldNb(1), 1);
  EXPECT_EQ(Raised([&] { table->Get_Indices()->Add()->Set_FieldName("amount"); }),
            "ERTEFieldDoesNotExist: TVXRAMIndexDef:\rCannot create an index on this field: field does not exist.");
}

TEST(VXRAMTableDefinitions, AreGuardedWhileTheBaseIndexHoldsRows) {
  const TTestTable table({{"Name", vxrftString, 8}}, {"Name"});
  table->SetName("Orders");
  table.AddEmpty();
  TVXRAMFieldDefs& fields = *table->Get_FieldDefs();
  TVXRAMIndexDefs& indices = *table->Get_Indices();
  TVXRAMFieldDef& field = *fields.Get_Item(0);
  const auto other = Make<TVXRAMTable>(nullptr);
  const std::string end = " definitions are allowed:\r 'Orders' is not empty.";
  const std::function<void()> fieldChanges[] = {[&] { fields.Add(); },
                                                [&] { fields.Assign(other->Get_FieldDefs()); },
                                                [&] { fields.Assign(&fields); },
                                                [&] { fields.Set_Item(0, &field); },
                                                [&] { table->Set_FieldDefs(other->Get_FieldDefs()); },
                                                [&] { field.Set_ByteSize(9); },
                                                [&] { field.Set_DataType(vxrftWord); },
                                                [&] { field.Free(); }};
  for (const auto& change : fieldChanges)
    EXPECT_EQ(Raised(change), "ERTENoFieldDefChangesAllowed: TVXRAMTable:\rNo modifications to field" + end)
        << &change - fieldChanges;
  const std::function<void()> indexChanges[] = {
      [&] { indices.Add(); }, [&] { indices.Assign(other->Get_Indices()); }, [&] { indices.Assign(&indices); },
      [&] { indices.Set_Item(0, indices.Get_Item(0)); }, [&] { table->Set_Indices(other->Get_Indices()); }};
  for (const auto& change : indexChanges)
    EXPECT_EQ(Raised(change), "ERTENoIndexDefChangesAllowed: TVXRAMTable:\rNo modifications to index" + end)
        << &change - indexChanges;
  EXPECT_EQ(Raised([&] { field.Set_DataType(vxrftString); }), "nothing");  // no change, no question
  EXPECT_EQ(Raised([&] { field.Set_Name("Title"); }), "nothing");
  EXPECT_EQ(table->Get_RecSize(), 14);
}

// -- Two containers ---------------------------------------------------------------------------------------------------

TEST(VXRAMTableRows, RecCountCountsTheBaseIndexAlone) {
  const TTestTable table({{"Load", vxrftInteger}});
  table.Add({1});
  EXPECT_EQ(table->Get_RecCount(), 0);
  AddField(*table, "Late", vxrftInteger);  // the guard stays open, and the old row is shorter than RecSize now
  EXPECT_EQ(TVXRAMRowPool::SizeOf(table.Row(0)), 10);
  EXPECT_EQ(table->InternalGetFieldStatus(table.Row(0), 1), vxfsNull);
  table.AddEmpty();
  EXPECT_EQ(table->Get_RecCount(), 1);
}

TEST(VXRAMTableRows, EachWayInFeedsOneContainerAndAllIndexes) {
  const TTestTable table({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, {"Load", "Rank"});
  table.AddEmpty();
  table.Add({5, 5});
  EXPECT_EQ(Ids(*table->Get_BaseIndex()), "0");
  EXPECT_EQ(Ids(table.MainList()), "1");
  EXPECT_EQ(Ids(table.Index(0)), "1 0");  // rebuilt by the second: the null went last
  EXPECT_EQ(Ids(table.Index(1)), "1 0");
  table.AddEmpty(0);
  EXPECT_EQ(Ids(table.Index(0)), "1 0 2");  // appended, unsorted
}

TEST(VXRAMTableRows, ResultsTellTheAppendedPositionOnly) {
  const TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  const auto add = [&](std::int32_t load, std::int32_t index, std::int32_t position, bool append) {
    std::int32_t id;
    return table->AddRecordAndValues(*table.Record({load}), index, position, id, append);
  };
  EXPECT_EQ(add(9, -1, 0, true), 0);
  EXPECT_EQ(add(8, -1, -1, false), 1);  // a negative position appends
  EXPECT_EQ(add(7, -1, 1, false), -1);  // inserted: nothing is told
  EXPECT_EQ(Ids(table.MainList()), "0 2 1");
  EXPECT_EQ(add(1, 0, 0, false), 3);  // of the index: before its rebuild
  EXPECT_EQ(Ids(table.Index(0)), "3 2 1 0");
  EXPECT_EQ(add(1, 7, 0, true), 4);  // no such index: the main list's answer
  EXPECT_EQ(table.AddEmpty(-1), 0);
  EXPECT_EQ(table.AddEmpty(0), 6);
  EXPECT_EQ(table.AddEmpty(-2), -1);
}

TEST(VXRAMTableRows, IdsSurviveClearing) {
  const TTestTable table({{"Load", vxrftInteger}});
  table.Add({1});
  table.Add({2});
  table->ClearTable();
  EXPECT_EQ(table->Get_AllocatedRows(), 0);
  EXPECT_EQ(table.Add({3}), 2);
  EXPECT_EQ(table->GenerateUniqueID(), 3);
  table.AddEmpty();
  table->ClearTable();  // with rows in the base index, those of the main list are dropped unreleased
  EXPECT_EQ(table->Get_AllocatedRows(), 1);
  EXPECT_EQ(table.Add({3}), 5);
}

TEST(VXRAMTableRows, DeletionTellsBeforeItReleases) {
  TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  table.Add({1});
  table.Add({2});
  table.AddEmpty();
  const TVXRAMCursor& filtered = table.Open({.filterField = "Load", .filterValue = Null()});
  TVXRAMRow* const row = table.Row(0);
  std::string seen;
  table.owner->onRefresh = [&] {
    seen = Ids(*table->Get_BaseIndex()) + "|" + Ids(table.Index(0)) + "|" + Ids(filtered) + "|" +
           Ids(table.MainList()) + "|" + std::to_string(RowId(row));
  };
  table->DeleteRecord(nullptr, row);
  EXPECT_EQ(seen, "2|1 2|1|0 1|0");
  EXPECT_EQ(Ids(table.MainList()), "1");
  EXPECT_EQ(table->Get_AllocatedRows(), 2);
  table->DeleteRecord(nullptr, table->Get_BaseIndex()->Get_Record(0));  // of the base index alone: not released
  EXPECT_EQ(seen, "|1|1|1|0");
  EXPECT_EQ(table->Get_AllocatedRows(), 2);
  table->DeleteRecord(nullptr, nullptr);
  EXPECT_EQ(table.owner->refreshes, 2);
}

TEST(VXRAMTableRows, AFailedCheckLeavesItsRowAllocatedAndUnlisted) {
  const TTestTable table({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, {"Load"});
  const auto wrongCount = table.Record({1, 2}), wrongType = table.Record({1, 2}), right = table.Record({1, 2});
  wrongCount->FieldCount = 1;
  wrongType->Field(1).FieldType = vxrftDuration;
  const struct {
    const TVXRecordStruct& record;
    std::int32_t position;
    std::string error;
  } cases[] = {
      {*wrongCount, -1, "Exception: DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldCount and FFieldDefs.Count."},
      {*wrongType, -1,
       "Exception: DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldArrayPtr^[ VI ].FieldType and FFieldDefs[ VI "
       "].DataType."},
      {*right, 1, "EListError: List index out of bounds (1)"}};
  std::int32_t id = -1;
  for (const auto& each : cases) {
    EXPECT_EQ(Raised([&] { table->AddRecordAndValues(each.record, -1, each.position, id, false); }), each.error);
    EXPECT_EQ(Ids(table.MainList()) + Ids(table.Index(0)), "");
  }
  EXPECT_EQ(id, 2);
  EXPECT_EQ(table->Get_AllocatedRows(), 3);
}

TEST(VXRAMTableRows, TextsAreCutAtACodePointWithRoomForTheZero) {
  TTestTable table({{"Name", vxrftString, 4}});
  table.Add({"ab\xC3\xA9z"});
  EXPECT_EQ(Values(table.Open(), "Name"), "ab");
}

// -- Cursors and the end ----------------------------------------------------------------------------------------------

TEST(VXRAMTableCursors, CloseCursorLeavesAStrangersCursorAlive) {
  TTestTable table({{"Load", vxrftInteger}}), other({{"Load", vxrftInteger}});
  TVXRAMCursor& cursor = table.Open();
  TVXRAMCursor* variable = &cursor;
  other->CloseCursor(variable);
  EXPECT_EQ(variable, nullptr);
  EXPECT_EQ(table->Get_CursorCount(), 1);
  table.Add({1});
  EXPECT_EQ(Ids(cursor), "0");
  table.Close(cursor);
  EXPECT_EQ(table->Get_CursorCount(), 0);
}

TEST(VXRAMTableCursors, FreeWithTwoOpenCursorsFailsAtTheSecond) {
  const auto owner = Make<TTestOwner>();
  TVXRAMTable* const table = Make<TVXRAMTable>(nullptr).release();
  TVXRAMCursorDesc desc(owner.get(), -1, vxrcoAscending, "", nullptr, Variant());
  TVXRAMCursor* cursors[2] = {};
  for (TVXRAMCursor*& cursor : cursors) table->OpenCursor(nullptr, &desc, cursor);
  EXPECT_EQ(Raised([&] { table->Free(); }), "EListError: List index out of bounds (1)");
  EXPECT_EQ(table->Get_CursorCount(), 1);
  EXPECT_EQ(owner->removals, 0);
  EXPECT_EQ(Raised([&] { table->Free(); }), "nothing");  // one alone is closed by the table
  EXPECT_EQ(owner->removals, 1);                         // the cursors' owner is told that the table goes
}

}  // namespace
}  // namespace vx
