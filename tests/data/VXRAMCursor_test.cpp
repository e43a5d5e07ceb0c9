// Positions and walking, rows by id, fields, adding and editing, and how the cursors of a table stay in step.

#include <gtest/gtest.h>

#include "TableKit.h"

namespace vx {
namespace {

/// Writes down what reaches the replaceable operations.
class TLoggingCursor : public TVXRAMCursor {
 public:
  using TVXRAMCursor::TVXRAMCursor;
  void StartUpdating() override { log += "start "; }
  void EndUpdating() override { log += "end "; }
  void RecordEditionNotification(TVXRAMRow* row) override { log += "edited" + std::to_string(RowId(row)) + " "; }
  void FilterChange(TObject* sender) override {
    log += "filter ";
    TVXRAMCursor::FilterChange(sender);
  }
  std::string log;
};

/// A table of loads and their negative ranks; ids count from 0.
class TLoads : public TTestTable {
 public:
  explicit TLoads(std::initializer_list<std::int32_t> loads, std::initializer_list<const char*> indices = {})
      : TTestTable({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, indices) {
    for (const std::int32_t load : loads) Add({load, -load});
  }
};

// -- Walking ----------------------------------------------------------------------------------------------------------

TEST(VXRAMCursorWalk, BeginningAndEndAreTrueOnFirstAndLastRowThemselves) {
  const struct {
    std::initializer_list<std::int32_t> loads;
    TVXRAMCursorOrder order;
    std::string trace;
  } cases[] = {
      {{}, vxrcoAscending, "F@-1/-1BE N-2@-1/-1BE L@0/0BE P-1@0/0BE"},
      {{}, vxrcoDescending, "F@0/-1BE N-2@0/-1BE L@-1/0BE P-1@-1/0BE"},
      {{7}, vxrcoAscending, "F@-1/-1B N0@0/0BE N-2@0/0BE L@1/1E P0@0/0BE P-1@0/0BE"},
      {{7, 8, 9}, vxrcoAscending, "F@-1/-1B N0@0/0B N0@1/1 N0@2/2E N-2@2/2E L@3/3E P0@2/2E P0@1/1 P0@0/0B P-1@0/0B"},
      {{7, 8, 9}, vxrcoDescending, "F@3/-1B N0@2/0B N0@1/1 N0@0/2E N-2@0/2E L@-1/3E P0@0/2E P0@1/1 P0@2/0B P-1@2/0B"}};
  for (const auto& each : cases) {
    TLoads table(each.loads);
    const std::size_t steps = each.loads.size() + 1;
    EXPECT_EQ(Play(table.Open({.order = each.order}), "F" + std::string(steps, 'N') + "L" + std::string(steps, 'P')),
              each.trace);
  }
}

TEST(VXRAMCursorWalk, OnAnEmptyListAscendingRaisesDescendingGivesNil) {
  TLoads table({});
  TVXRAMCursor& up = table.Open();
  TVXRAMCursor& down = table.Open({.order = vxrcoDescending});
  EXPECT_EQ(Raised([&] { up.Get_CurrentRecord(); }), "EListError: List index out of bounds (0)");
  EXPECT_EQ(Raised([&] { up.Get_RecordID(); }), "EListError: List index out of bounds (0)");
  EXPECT_EQ(down.Get_CurrentRecord(), nullptr);
  EXPECT_EQ(down.Get_RecordID(), -1);
  EXPECT_EQ(Raised([&] { down.FieldValueIsNull(0); }), "ENilAccess: Access to a missing object: current record");
  EXPECT_EQ(Raised([&] { up.DeleteRec(); }), "Exception: Table empty!");
}

TEST(VXRAMCursorWalk, AnUnknownIdLeavesTheCursorAtMinusOne) {
  TLoads table({7, 8, 9});
  TVXRAMCursor& cursor = table.Open({.order = vxrcoDescending});
  cursor.Set_RecordID(2);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);
  EXPECT_EQ(cursor.Get_RecIndexById(0), 2);  // without moving
  EXPECT_EQ(cursor.Get_RecIndexById(77), 3);
  EXPECT_EQ(cursor.Get_RecIndexById(-1), -1);
  cursor.Set_RecordID(-1);  // does nothing
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);
  cursor.Set_RecordID(77);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), -1);
  cursor.Set_RecordID(2);
  cursor.InternalSetRecordId(table.Row(1), 2);
  cursor.Set_RecordID(2);  // stands twice: the first is found, though the other was expected
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 1);
}

// -- Adding and editing -----------------------------------------------------------------------------------------------

TEST(VXRAMCursorEdits, AFieldRebuildsItsIndexClearingNoneAnUpdateAll) {
  TLoads table({1, 2, 3}, {"Load", "Rank"});
  TVXRAMCursor& cursor = table.Open({.index = 0});
  cursor.Set_RecordID(0);
  SetField(cursor, "Load", 9);
  EXPECT_EQ(Ids(table.Index(0)), "1 2 0");
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);  // still on the row
  const std::int32_t rank = -9;
  table->InternalSetFieldValue(cursor.Get_CurrentRecord(), 1, &rank);
  SetField(cursor, "Load", 8);
  EXPECT_EQ(Ids(table.Index(1)), "2 1 0");  // the other index isn't looked at
  cursor.Set_RecordID(1);
  cursor.ClearFieldValue(0);
  EXPECT_EQ(Ids(table.Index(0)), "1 2 0");  // a null that stands first
  cursor.Set_RecordID(2);
  cursor.UpdateRecWithValues(*table.Record({3, 0}));
  EXPECT_EQ(Ids(table.Index(0)), "2 0 1");
  EXPECT_EQ(Ids(table.Index(1)), "0 1 2");
  EXPECT_EQ(cursor.Get_RecordID(), 2);
}

TEST(VXRAMCursorEdits, AFilteredInsertUsesTheActivePositionInTheMainList) {
  TLoads table({1, 5, 1, 5});
  TVXRAMCursor& cursor = table.Open({.filterField = "Load", .filterValue = 5});
  cursor.Set_RecordID(3);
  cursor.InsertRecWithValues(*table.Record({5, 0}), false);
  EXPECT_EQ(Ids(table.MainList()), "0 4 1 2 3");
  EXPECT_EQ(Ids(cursor), "4 1 3");
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 0);  // on the new row
  cursor.InsertRecWithValues(*table.Record({6, 0}), true);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), -1);  // the new row doesn't pass
}

TEST(VXRAMCursorEdits, AnIndexedInsertUsesTheRawPhysicalIndex) {
  TLoads table({3, 2, 1}, {"Load"});
  TVXRAMCursor& cursor = table.Open({.index = 0});
  const std::pair<std::int32_t, const char*> cases[] = {
      {-1, "0 1 2 3"}, {0, "4 0 1 2 3"}, {5, "4 0 1 2 3 5"}};  // before the first row: appended
  for (const auto& [position, mainList] : cases) {
    cursor.Set_RecIndex(position);
    cursor.InsertRecWithValues(*table.Record({2, 0}), false);
    EXPECT_EQ(Ids(table.MainList()), mainList);
  }
  cursor.Set_RecIndex(7);
  const auto record = table.Record({2, 0});
  EXPECT_EQ(Raised([&] { cursor.InsertRecWithValues(*record, false); }), "EListError: List index out of bounds (7)");
}

TEST(VXRAMCursorEdits, EditsNotifyTheirOwnCursorAlone) {
  TLoads table({1, 2});
  auto& editing = table.Open<TLoggingCursor>();
  auto& other = table.Open<TLoggingCursor>();
  editing.log = other.log = "";
  editing.Set_RecordID(1);
  editing.UpdateRecWithValues(*table.Record({9, 9}));
  SetField(editing, "Load", 10);
  EXPECT_EQ(editing.log, "edited1 ");
  EXPECT_EQ(other.log, "");
  EXPECT_EQ(Values(other, "Load"), "1 10");
}

TEST(VXRAMCursorEdits, AnUpdateChecksNoCountAndLeavesItsFlagOnAMismatch) {
  TLoads table({1, 2});
  auto& cursor = table.Open<TLoggingCursor>();
  const auto record = table.Record({5, 6});
  record->FieldCount = 99;
  cursor.UpdateRecWithValues(*record);
  EXPECT_EQ(Values(cursor, "Rank"), "6 -2");
  EXPECT_FALSE(cursor.Get_IsUpdatingRecord());
  record->Field(0).AssignValue(7);
  record->Field(1).FieldType = vxrftDuration;
  const std::string mismatch = Raised([&] { cursor.UpdateRecWithValues(*record); });
  EXPECT_EQ(mismatch.substr(0, 40), "Exception: DEVELOPPER NOTE: Mismatch bet");
  EXPECT_TRUE(cursor.Get_IsUpdatingRecord());
  EXPECT_EQ(Values(cursor, "Load"), "7 2");  // the field before it was written
  table->ClearTable();
  record->Field(0).FieldType = vxrftDuration;
  EXPECT_EQ(Raised([&] { cursor.UpdateRecWithValues(*record); }), mismatch);  // told before the missing row is
}

// -- In step ----------------------------------------------------------------------------------------------------------

TEST(VXRAMCursorsInStep, AnInsertionSendsFilteredAndSortedCursorsToFirstPosition) {
  const std::pair<TTestWish, std::int32_t> cases[] = {
      {{}, 1},
      {{.order = vxrcoDescending}, 1},
      {{.filterField = "Load", .filterValue = Null()}, -1},
      {{.order = vxrcoDescending, .filterField = "Load", .filterValue = Null()}, 4},
      {{.sort = "Load"}, -1},
      {{.sort = "Nothing"}, 1}};
  for (const auto& [wish, physical] : cases) {
    TLoads table({1, 2, 3});
    TVXRAMCursor& cursor = table.Open(wish);
    cursor.Set_RecordID(1);
    table.Add({4, 4});
    EXPECT_EQ(cursor.Get_PhysicalIndex(), physical) << wish.sort;
    EXPECT_EQ(cursor.Get_RecordCount(), 4);
  }
}

TEST(VXRAMCursorBrackets, AnUnmatchedEndUpdateCallsItsHook) {
  TLoads table({});
  auto& cursor = table.Open<TLoggingCursor>();
  cursor.log.clear();
  cursor.BeginUpdate();
  cursor.BeginUpdate();
  cursor.EndUpdate();
  EXPECT_EQ(cursor.log, "start ");
  EXPECT_TRUE(cursor.Get_IsUpdating());
  for (int i = 0; i < 3; ++i) cursor.EndUpdate();
  EXPECT_EQ(cursor.log, "start end end end ");
  table->BeginUpdate();
  EXPECT_TRUE(cursor.Get_IsUpdating());
  table->EndUpdate();
  table->EndUpdate();
  EXPECT_FALSE(cursor.Get_IsUpdating());
}

TEST(VXRAMCursorBrackets, TheRecordCallbackIsComparedByItsCodeAlone) {
  struct TParity {
    std::int32_t wanted;
    bool IsWanted(TVXRAMRow* row, std::int32_t) { return RowId(row) % 2 == wanted; }
    bool IsAny(TVXRAMRow*, std::int32_t) { return wanted < 2; }
  } even{0}, odd{1};
  TLoads table({1, 2, 3, 4});
  auto& cursor = table.Open<TLoggingCursor>();
  cursor.log.clear();
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(even, &TParity::IsWanted));
  EXPECT_EQ(Ids(cursor), "0 2");
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(odd, &TParity::IsWanted));  // same code: nothing happens
  EXPECT_EQ(Ids(cursor), "0 2");
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(odd, &TParity::IsAny));
  EXPECT_EQ(Ids(cursor), "0 1 2 3");
  cursor.SetOnFilterRecord(nullptr);
  EXPECT_FALSE(cursor.Get_IsFiltered());
  EXPECT_EQ(cursor.log, "filter filter filter ");
}

}  // namespace
}  // namespace vx
