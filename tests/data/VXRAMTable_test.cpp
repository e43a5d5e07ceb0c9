// Definitions and layout, the two containers, ids, deletion and clearing, record structures, the table's end.

#include <gtest/gtest.h>

#include <limits>

#include "TableKit.h"
#include "platform/component/Published.h"

namespace vx {
namespace {

constexpr const char* kCountMismatch =
    "Exception: DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldCount and FFieldDefs.Count.";
constexpr const char* kTypeMismatch =
    "Exception: DEVELOPPER NOTE: Mismatch between ARecordStruct.FieldArrayPtr^[ VI ].FieldType and FFieldDefs[ VI "
    "].DataType.";

std::string NamesOf(const TClass& type) {
  std::string names;
  for (const TPropInfo* property : GetPropList(type)) names += property->Name + " ";
  return names;
}

// -- Definitions -------------------------------------------------------------------------------------------------------

TEST(VXRAMTableDefinitions, PublishTheirPropertiesInOrder) {
  EXPECT_EQ(NamesOf(TVXRAMFieldDef::StaticClass()), "ByteSize DataType Name ");
  EXPECT_EQ(NamesOf(TVXRAMIndexDef::StaticClass()), "FieldName ");
  EXPECT_EQ(NamesOf(TVXBucketFieldDef::StaticClass()), "BucketType FieldName ");
  EXPECT_NE(GetPropInfo(TVXRAMTable::StaticClass(), "FieldDefs"), nullptr);
  EXPECT_EQ(GetPropInfo(TVXRAMTable::StaticClass(), "Indices"), nullptr);
}

TEST(VXRAMTableDefinitions, LayoutIsPackedInDefinitionOrder) {
  const TTestTable table({{"Open", vxrftBoolean}, {"Load", vxrftFloat}, {"Name", vxrftString, 10}});
  EXPECT_EQ(table->Get_RecSize(), 27);
  EXPECT_EQ(table.Field("Open")->Get_StatusOffset(), 5);
  EXPECT_EQ(table.Field("Load")->Get_StatusOffset(), 7);
  EXPECT_EQ(table.Field("Name")->Get_StatusOffset(), 16);
  EXPECT_EQ(table.Field("Name")->Get_ValueOffset(), 17);
  table.Field("Name")->SetIndex(0);
  EXPECT_EQ(table.Field("Load")->Get_StatusOffset(), 5 + 11 + 2);
  EXPECT_EQ(TTestTable({})->Get_RecSize(), 5);
}

TEST(VXRAMTableDefinitions, DataTypeSetsByteSize) {
  const std::pair<TVXRAMFieldType, std::int32_t> cases[] = {{vxrftBoolean, 1},  {vxrftCurrency, 8}, {vxrftDateTime, 8},
                                                            {vxrftDuration, 4}, {vxrftFloat, 8},    {vxrftInteger, 4},
                                                            {vxrftSmallint, 2}, {vxrftString, 0},   {vxrftWord, 2}};
  const TTestTable table({});
  TVXRAMFieldDef& field = *table->Get_FieldDefs()->Add();
  EXPECT_EQ(field.Get_DataType(), vxrftBoolean);
  for (const auto& [type, size] : cases) {
    field.Set_DataType(type);
    EXPECT_EQ(field.Get_ByteSize(), size) << +type;
  }
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
  TVXRAMFieldDef& field = *table.Field("Name");
  {
    TLoading loading(*table);
    field.Set_ByteSize(30);
    field.Set_DataType(vxrftString);
    loading.Finish();
  }
  EXPECT_EQ(field.Get_ByteSize(), 30);
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
  std::int32_t id;
  table->AddRecord(-1, id);
  TVXRAMFieldDefs& fields = *table->Get_FieldDefs();
  TVXRAMIndexDefs& indices = *table->Get_Indices();
  const auto other = Make<TVXRAMTable>(nullptr);
  const std::string noFields =
      "ERTENoFieldDefChangesAllowed: TVXRAMTable:\rNo modifications to field definitions are allowed:\r 'Orders' is "
      "not "
      "empty.";
  const std::string noIndices =
      "ERTENoIndexDefChangesAllowed: TVXRAMTable:\rNo modifications to index definitions are allowed:\r 'Orders' is "
      "not "
      "empty.";
  TVXRAMFieldDef& field = *fields.Get_Item(0);
  const std::pair<const char*, std::function<void()>> fieldChanges[] = {
      {"Add", [&] { fields.Add(); }},
      {"Assign", [&] { fields.Assign(other->Get_FieldDefs()); }},
      {"Assign itself", [&] { fields.Assign(&fields); }},
      {"Set_Item", [&] { fields.Set_Item(0, &field); }},
      {"Set_FieldDefs", [&] { table->Set_FieldDefs(other->Get_FieldDefs()); }},
      {"Set_ByteSize", [&] { field.Set_ByteSize(9); }},
      {"Set_DataType", [&] { field.Set_DataType(vxrftWord); }},
      {"Free", [&] { field.Free(); }}};
  for (const auto& [name, change] : fieldChanges) EXPECT_EQ(Raised(change), noFields) << name;
  const std::pair<const char*, std::function<void()>> indexChanges[] = {
      {"Add", [&] { indices.Add(); }},
      {"Assign", [&] { indices.Assign(other->Get_Indices()); }},
      {"Assign itself", [&] { indices.Assign(&indices); }},
      {"Set_Item", [&] { indices.Set_Item(0, indices.Get_Item(0)); }},
      {"Set_Indices", [&] { table->Set_Indices(other->Get_Indices()); }}};
  for (const auto& [name, change] : indexChanges) EXPECT_EQ(Raised(change), noIndices) << name;
  EXPECT_EQ(Raised([&] { field.Set_DataType(vxrftString); }), "nothing");  // no change, no question
  EXPECT_EQ(Raised([&] { field.Set_Name("Title"); }), "nothing");
  EXPECT_EQ(fields.Count(), 1);
  EXPECT_EQ(table->Get_RecSize(), 14);
}

TEST(VXRAMTableDefinitions, StandAloneWithoutATable) {
  const auto fields = Make<TVXRAMFieldDefs>(nullptr);
  fields->Add()->Set_DataType(vxrftWord);
  EXPECT_EQ(fields->Get_RecSize(), 8);
  const auto indices = Make<TVXRAMIndexDefs>(nullptr);
  TVXRAMIndexDef& index = *indices->Add();
  EXPECT_EQ(Raised([&] { index.Get_Index()->Add(nullptr); }),
            "ENilAccess: Access to a missing object: table of the index");
}

// -- Two containers ----------------------------------------------------------------------------------------------------

TEST(VXRAMTableRows, RecCountCountsTheBaseIndexAlone) {
  const TTestTable table({{"Load", vxrftInteger}});
  table.Add({1});
  EXPECT_EQ(table->Get_RecCount(), 0);
  AddField(*table, "Late", vxrftInteger);  // the guard stays open, and the old row is shorter than RecSize now
  const auto* const row = static_cast<TVXRAMRow*>(table->Get_MainRecordList()->Items(0));
  EXPECT_EQ(TVXRAMRowPool::SizeOf(row), 10);
  EXPECT_EQ(table->InternalGetFieldStatus(row, 1), vxfsNull);
  std::int32_t id;
  table->AddRecord(-1, id);
  EXPECT_EQ(table->Get_RecCount(), 1);
}

TEST(VXRAMTableRows, EachWayInFeedsOneContainerAndAllIndexes) {
  const TTestTable table({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, {"Load", "Rank"});
  std::int32_t id;
  table->AddRecord(-1, id);
  table.Add({5, 5});
  EXPECT_EQ(Ids(*table->Get_BaseIndex()), "0");
  EXPECT_EQ(Ids(*table->Get_MainRecordList()), "1");
  EXPECT_EQ(Ids(table.Index(0)), "1 0");  // rebuilt by the second: the null went last
  EXPECT_EQ(Ids(table.Index(1)), "1 0");
  table->AddRecord(0, id);
  EXPECT_EQ(Ids(table.Index(0)), "1 0 2");  // appended, unsorted
}

TEST(VXRAMTableRows, ResultsTellTheAppendedPositionOnly) {
  const TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  std::int32_t id;
  const auto add = [&](std::int32_t load, std::int32_t index, std::int32_t position, bool append) {
    return table->AddRecordAndValues(*table.Record({load}), index, position, id, append);
  };
  EXPECT_EQ(add(9, -1, 0, true), 0);
  EXPECT_EQ(add(8, -1, -1, false), 1);  // a negative position appends
  EXPECT_EQ(add(7, -1, 1, false), -1);  // inserted: nothing is told
  EXPECT_EQ(Ids(*table->Get_MainRecordList()), "0 2 1");
  EXPECT_EQ(add(1, 0, 0, false), 3);  // of the index: before its rebuild
  EXPECT_EQ(Ids(table.Index(0)), "3 2 1 0");
  EXPECT_EQ(add(1, 7, 0, true), 4);  // no such index: the main list's answer
  EXPECT_EQ(table->AddRecord(-1, id), 0);
  EXPECT_EQ(table->AddRecord(0, id), 6);
  EXPECT_EQ(table->AddRecord(-2, id), -1);
}

TEST(VXRAMTableRows, IdsSurviveClearing) {
  const TTestTable table({{"Load", vxrftInteger}});
  table.Add({1});
  table.Add({2});
  table->ClearTable();
  EXPECT_EQ(table.Add({3}), 2);
  EXPECT_EQ(table->GenerateUniqueID(), 3);
  EXPECT_EQ(table.Add({3}), 4);
}

TEST(VXRAMTableRows, DeletionTellsBeforeItReleases) {
  TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  table.Open();
  table.Add({1});
  table.Add({2});
  std::int32_t id;
  table->AddRecord(-1, id);
  auto* const row = static_cast<TVXRAMRow*>(table->Get_MainRecordList()->Items(0));
  std::string seen;
  table.Owner().onRefresh = [&] {
    seen = Ids(*table->Get_BaseIndex()) + "|" + Ids(table.Index(0)) + "|" + Ids(*table->Get_MainRecordList()) + "|" +
           std::to_string(RowId(row));
  };
  table->DeleteRecord(nullptr, row);
  EXPECT_EQ(seen, "2|1 2|0 1|0");
  EXPECT_EQ(Ids(*table->Get_MainRecordList()), "1");
  EXPECT_EQ(table->Get_AllocatedRows(), 2);
  table->DeleteRecord(nullptr, table->Get_BaseIndex()->Get_Record(0));  // of the base index alone: not released
  EXPECT_EQ(seen, "|1|1|0");
  EXPECT_EQ(table->Get_AllocatedRows(), 2);
  table->DeleteRecord(nullptr, nullptr);
  EXPECT_EQ(table.Owner().refreshes, 2);
}

TEST(VXRAMTableRows, AFailedCheckLeavesItsRowAllocatedAndUnlisted) {
  const TTestTable table({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, {"Load"});
  const auto wrongCount = table.Record({1, 2});
  wrongCount->FieldCount = 1;
  const auto wrongType = table.Record({1, 2});
  wrongType->Field(1).FieldType = vxrftDuration;
  const auto right = table.Record({1, 2});
  struct {
    const TVXRecordStruct& record;
    std::int32_t position;
    std::string error;
  } const cases[] = {{*wrongCount, -1, kCountMismatch},
                     {*wrongType, -1, kTypeMismatch},
                     {*right, 1, "EListError: List index out of bounds (1)"}};
  std::int32_t id = -1;
  for (const auto& each : cases) {
    EXPECT_EQ(Raised([&] { table->AddRecordAndValues(each.record, -1, each.position, id, false); }), each.error);
    EXPECT_EQ(Ids(*table->Get_MainRecordList()) + Ids(table.Index(0)), "");
  }
  EXPECT_EQ(id, 2);
  EXPECT_EQ(table->Get_AllocatedRows(), 3);
}

TEST(VXRAMTableRows, ClearingReleasesTheBaseIndexOrElseTheMainList) {
  const TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  std::int32_t id;
  table.Add({1});
  table.Add({2});
  table->ClearTable();
  EXPECT_EQ(table->Get_AllocatedRows(), 0);
  table.Add({1});
  table.Add({2});
  table->AddRecord(-1, id);
  table->ClearTable();  // the rows of the main list are dropped unreleased
  EXPECT_EQ(table->Get_AllocatedRows(), 2);
  EXPECT_EQ(Ids(*table->Get_MainRecordList()) + Ids(*table->Get_BaseIndex()) + Ids(table.Index(0)), "");
}

TEST(VXRAMTableRows, RecordStructuresCarryEveryType) {
  TTestTable table({{"A", vxrftBoolean},
                    {"B", vxrftCurrency},
                    {"C", vxrftDateTime},
                    {"D", vxrftDuration},
                    {"E", vxrftFloat},
                    {"F", vxrftInteger},
                    {"G", vxrftSmallint},
                    {"H", vxrftString, 4},
                    {"I", vxrftWord}});
  TVXRAMCursor& cursor = table.Open();
  table.Add({true, 1.25, 45000.5, -5, -0.5, std::numeric_limits<std::int32_t>::min(), -32768, "ab\xC3\xA9z", 65535});
  table.Add({});
  EXPECT_EQ(Values(cursor, "A") + "," + Values(cursor, "B") + "," + Values(cursor, "D") + "," + Values(cursor, "E"),
            "True null,1.25 null,-5 null,-0.5 null");
  EXPECT_EQ(Values(cursor, "C"), "45000.5 null");
  EXPECT_EQ(Values(cursor, "F") + "," + Values(cursor, "G") + "," + Values(cursor, "I"),
            "-2147483648 null,-32768 null,65535 null");
  EXPECT_EQ(Values(cursor, "H"), "ab null");  // cut at a code point, with room for the zero
}

// -- Cursors and the end -----------------------------------------------------------------------------------------------

TEST(VXRAMTableCursors, OpenByIndexNumber) {
  TTestTable table({{"Load", vxrftInteger}}, {"Load"});
  const std::string noSuch = "ERTENoSuchIndex: TVXRAMTable:\rCannot create the cursor: index does not exist.";
  EXPECT_FALSE(table.Open({.index = -1}).Get_IsIndexed());
  EXPECT_EQ(table.Open({.index = 0}).Get_Index(), &table.Index(0));
  EXPECT_EQ(Raised([&] { table.Open({.index = 1}); }), noSuch);
  EXPECT_EQ(Raised([&] { table.Open({.index = -2}); }), noSuch);
  EXPECT_EQ(table->Get_CursorCount(), 2);
}

TEST(VXRAMTableCursors, CloseCursorLeavesAStrangersCursorAlive) {
  TTestTable table({{"Load", vxrftInteger}});
  TTestTable other({{"Load", vxrftInteger}});
  TVXRAMCursor& cursor = table.Open();
  TVXRAMCursor* variable = &cursor;
  other->CloseCursor(variable);
  EXPECT_EQ(variable, nullptr);
  EXPECT_EQ(table->Get_CursorCount(), 1);
  table.Add({1});
  EXPECT_EQ(Walk(cursor), "0");
  variable = &cursor;
  table->CloseCursor(variable);
  EXPECT_EQ(variable, nullptr);
  EXPECT_EQ(table->Get_CursorCount(), 0);
}

TEST(VXRAMTableCursors, FreeWithTwoOpenCursorsFailsAtTheSecond) {
  TVXRAMTable* const table = Make<TVXRAMTable>(nullptr).release();
  TVXRAMCursorDesc desc(nullptr, -1, vxrcoAscending, "", nullptr, Variant());
  TVXRAMCursor* cursors[2] = {};
  for (TVXRAMCursor*& cursor : cursors) table->OpenCursor(nullptr, &desc, cursor);
  EXPECT_EQ(Raised([&] { table->Free(); }), "EListError: List index out of bounds (1)");
  EXPECT_EQ(table->Get_CursorCount(), 1);
  EXPECT_EQ(Raised([&] { table->Free(); }), "nothing");  // one alone is closed by the table
}

TEST(VXRAMTableCursors, ACursorsOwnerIsToldWhenTheTableGoes) {
  const auto owner = Make<TTestOwner>();
  TVXRAMTable* const table = Make<TVXRAMTable>(nullptr).release();
  TVXRAMCursorDesc desc(owner.get(), -1, vxrcoAscending, "", nullptr, Variant());
  TVXRAMCursor* cursor = nullptr;
  table->OpenCursor(nullptr, &desc, cursor);
  table->CloseCursor(cursor);
  table->Free();
  EXPECT_EQ(owner->removals, 1);
}

}  // namespace
}  // namespace vx
