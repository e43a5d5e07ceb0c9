// Positions and walking, rows by id, fields, adding, editing, deleting, and how the cursors of a table stay in step.

#include <gtest/gtest.h>

#include <memory>

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
  void RecordInsertionNotification(TVXRAMRow* row) override {
    log += "inserted" + std::to_string(RowId(row)) + " ";
    TVXRAMCursor::RecordInsertionNotification(row);
  }
  void FilterChange(TObject* sender) override {
    log += "filter ";
    TVXRAMCursor::FilterChange(sender);
  }
  std::string log;
};

class TParity {
 public:
  explicit TParity(std::int32_t wanted) : wanted_(wanted) {}
  bool IsWanted(TVXRAMRow* row, std::int32_t) { return RowId(row) % 2 == wanted_; }
  bool IsAny(TVXRAMRow*, std::int32_t) { return wanted_ < 2; }

 private:
  std::int32_t wanted_;
};

/// A table of loads and their negative ranks; ids count from 0.
std::unique_ptr<TTestTable> Loads(std::initializer_list<std::int32_t> loads,
                                  std::initializer_list<const char*> indices = {}) {
  auto table = std::make_unique<TTestTable>(
      std::initializer_list<TTestField>{{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, indices);
  for (const std::int32_t load : loads) table->Add({load, -load});
  return table;
}

// -- Walking -----------------------------------------------------------------------------------------------------------

TEST(VXRAMCursorWalk, BeginningAndEndAreTrueOnFirstAndLastRowThemselves) {
  const struct {
    std::initializer_list<std::int32_t> loads;
    TVXRAMCursorOrder order;
    const char* forward;   // F N N N N
    const char* backward;  // L P P P P
  } cases[] = {
      {{}, vxrcoAscending, "F@-1/-1BE N-2@-1/-1BE", "L@0/0BE P-1@0/0BE"},
      {{}, vxrcoDescending, "F@0/-1BE N-2@0/-1BE", "L@-1/0BE P-1@-1/0BE"},
      {{7}, vxrcoAscending, "F@-1/-1B N0@0/0BE N-2@0/0BE", "L@1/1E P0@0/0BE P-1@0/0BE"},
      {{7}, vxrcoDescending, "F@1/-1B N0@0/0BE N-2@0/0BE", "L@-1/1E P0@0/0BE P-1@0/0BE"},
      {{7, 8, 9}, vxrcoAscending, "F@-1/-1B N0@0/0B N0@1/1 N0@2/2E N-2@2/2E", "L@3/3E P0@2/2E P0@1/1 P0@0/0B P-1@0/0B"},
      {{7, 8, 9},
       vxrcoDescending,
       "F@3/-1B N0@2/0B N0@1/1 N0@0/2E N-2@0/2E",
       "L@-1/3E P0@0/2E P0@1/1 P0@2/0B P-1@2/0B"}};
  for (const auto& each : cases) {
    const auto table = Loads(each.loads);
    TVXRAMCursor& cursor = table->Open({.order = each.order});
    const std::size_t steps = each.loads.size() == 3 ? 5 : each.loads.size() == 1 ? 3 : 2;
    EXPECT_EQ(Play(cursor, std::string("FNNNN").substr(0, steps)), each.forward);
    EXPECT_EQ(Play(cursor, std::string("LPPPP").substr(0, steps)), each.backward);
  }
}

TEST(VXRAMCursorWalk, TheCurrentRecordIsInsideTheListWhereverTheCursorStands) {
  const auto table = Loads({7, 8, 9});
  TVXRAMCursor& up = table->Open();
  TVXRAMCursor& down = table->Open({.order = vxrcoDescending});
  const struct {
    std::int32_t position;  // given to Set_RecIndex
    std::int32_t upId, downId;
  } cases[] = {{-5, 0, 2}, {-1, 0, 2}, {0, 0, 2}, {1, 1, 1}, {2, 2, 0}, {3, 2, 0}, {9, 2, 0}};
  for (const auto& each : cases) {
    up.Set_RecIndex(each.position);
    down.Set_RecIndex(each.position);
    EXPECT_EQ(up.Get_RecordID(), each.upId) << each.position;
    EXPECT_EQ(down.Get_RecordID(), each.downId) << each.position;
    EXPECT_EQ(up.Get_RecIndex(), each.position);
    EXPECT_EQ(down.Get_PhysicalIndex(), 2 - each.position);
  }
}

TEST(VXRAMCursorWalk, OnAnEmptyListAscendingRaisesDescendingGivesNil) {
  const auto table = Loads({});
  TVXRAMCursor& up = table->Open();
  TVXRAMCursor& down = table->Open({.order = vxrcoDescending});
  const std::string range = "EListError: List index out of bounds (0)";
  EXPECT_EQ(Raised([&] { up.Get_CurrentRecord(); }), range);
  EXPECT_EQ(Raised([&] { up.Get_RecordID(); }), range);
  EXPECT_EQ(down.Get_CurrentRecord(), nullptr);
  EXPECT_EQ(down.Get_RecordID(), -1);
  EXPECT_EQ(Raised([&] { down.FieldValueIsNull(0); }), "ENilAccess: Access to a missing object: current record");
  EXPECT_EQ(Raised([&] { up.DeleteRec(); }), "Exception: Table empty!");
}

TEST(VXRAMCursorWalk, AnUnknownIdLeavesTheCursorAtMinusOne) {
  const auto table = Loads({7, 8, 9});
  TVXRAMCursor& cursor = table->Open({.order = vxrcoDescending});
  cursor.Set_RecordID(2);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);
  EXPECT_EQ(cursor.Get_RecIndexById(0), 2);  // without moving
  EXPECT_EQ(cursor.Get_RecIndexById(77), 3);
  EXPECT_EQ(cursor.Get_RecIndexById(-1), -1);
  cursor.Set_RecordID(-1);  // does nothing
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);
  cursor.Set_RecordID(77);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), -1);
}

// A row found where it was expected must still be the first of its id.
TEST(VXRAMCursorWalk, AnIdThatStandsTwiceIsFoundAtItsFirstPlace) {
  const auto table = Loads({7, 8, 9});
  TVXRAMCursor& cursor = table->Open();
  cursor.Set_RecordID(2);
  cursor.InternalSetRecordId(static_cast<TVXRAMRow*>((*table)->Get_MainRecordList()->Items(1)), 2);
  cursor.Set_RecordID(2);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 1);
}

// -- Fields ------------------------------------------------------------------------------------------------------------

TEST(VXRAMCursorFields, ReadingTellsTheSizeThatIsNeeded) {
  const auto table = Loads({7});
  TVXRAMCursor& cursor = table->Open();
  std::int32_t value = 0, size = 3;
  bool isNull = true;
  EXPECT_EQ(Raised([&] { cursor.GetFieldValue(0, &value, size, isNull); }),
            "ERTEBufferTooSmall: Field buffer too small!");
  EXPECT_EQ(size, 4);
  cursor.GetFieldValue(0, &value, size, isNull);
  EXPECT_EQ(value, 7);
  EXPECT_FALSE(isNull);
  cursor.ClearFieldValue(0);
  cursor.GetFieldValue(0, &value, size, isNull);
  EXPECT_EQ(value, 0);
  EXPECT_TRUE(isNull && cursor.FieldValueIsNull(0));
  for (const std::int32_t field : {-1, 2})
    EXPECT_EQ(Raised([&] { cursor.ClearFieldValue(field); }),
              "EListError: List index out of bounds (" + std::to_string(field) + ")");
}

TEST(VXRAMCursorFields, AFieldRebuildsItsIndexClearingNoneAnUpdateAll) {
  const auto table = Loads({1, 2, 3}, {"Load", "Rank"});
  TVXRAMCursor& cursor = table->Open({.index = 0});
  cursor.Set_RecordID(0);
  SetField(cursor, "Load", 9);
  EXPECT_EQ(Ids(table->Index(0)), "1 2 0");
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 2);  // still on the row
  const std::int32_t rank = -9;
  (*table)->InternalSetFieldValue(cursor.Get_CurrentRecord(), 1, &rank);
  SetField(cursor, "Load", 8);
  EXPECT_EQ(Ids(table->Index(1)), "2 1 0");  // the other index isn't looked at
  cursor.Set_RecordID(1);
  cursor.ClearFieldValue(0);
  EXPECT_EQ(Ids(table->Index(0)), "1 2 0");  // a null that stands first
  cursor.Set_RecordID(2);
  cursor.UpdateRecWithValues(*table->Record({3, 0}));
  EXPECT_EQ(Ids(table->Index(0)), "2 0 1");
  EXPECT_EQ(Ids(table->Index(1)), "0 1 2");
  EXPECT_EQ(cursor.Get_RecordID(), 2);
}

// -- Adding and editing ------------------------------------------------------------------------------------------------

TEST(VXRAMCursorEdits, AFilteredInsertUsesTheActivePositionInTheMainList) {
  const auto table = Loads({1, 5, 1, 5});
  TVXRAMCursor& cursor = table->Open({.filterField = "Load", .filterValue = 5});
  EXPECT_EQ(Ids(cursor), "1 3");
  cursor.Set_RecordID(3);
  cursor.InsertRecWithValues(*table->Record({5, 0}), false);
  EXPECT_EQ(Ids(*(*table)->Get_MainRecordList()), "0 4 1 2 3");
  EXPECT_EQ(Ids(cursor), "4 1 3");
  EXPECT_EQ(cursor.Get_PhysicalIndex(), 0);  // on the new row
  cursor.InsertRecWithValues(*table->Record({6, 0}), true);
  EXPECT_EQ(cursor.Get_PhysicalIndex(), -1);  // the new row doesn't pass
}

TEST(VXRAMCursorEdits, AnIndexedInsertUsesTheRawPhysicalIndex) {
  const auto table = Loads({3, 2, 1}, {"Load"});
  TVXRAMCursor& cursor = table->Open({.index = 0});
  const struct {
    std::int32_t position;
    const char* mainList;
  } cases[] = {{-1, "0 1 2 3"}, {0, "4 0 1 2 3"}, {5, "4 0 1 2 3 5"}};  // before the first row: appended
  for (const auto& each : cases) {
    cursor.Set_RecIndex(each.position);
    cursor.InsertRecWithValues(*table->Record({2, 0}), false);
    EXPECT_EQ(Ids(*(*table)->Get_MainRecordList()), each.mainList);
  }
  cursor.Set_RecIndex(7);
  EXPECT_EQ(Raised([&] {
              cursor.InsertRecWithValues(*table->Record({2, 0}), false);
            }),
            "EListError: List index out of bounds (7)");
}

TEST(VXRAMCursorEdits, AnEmptyRowIsForIndexedCursorsOnly) {
  const auto table = Loads({3, 1}, {"Load"});
  TVXRAMCursor& indexed = table->Open({.index = 0});
  indexed.InsertRec();
  EXPECT_EQ(indexed.Get_PhysicalIndex(), 2);
  EXPECT_EQ(Ids(*(*table)->Get_BaseIndex()), "2");
  TVXRAMCursor& plain = table->Open();
  EXPECT_EQ(Raised([&] { plain.InsertRec(); }), "ENilAccess: Access to a missing object: index of the cursor");
  EXPECT_EQ((*table)->Get_RecCount(), 1);
}

TEST(VXRAMCursorEdits, EditsNotifyTheirOwnCursorAlone) {
  const auto table = Loads({1, 2});
  auto& editing = table->Open<TLoggingCursor>();
  auto& other = table->Open<TLoggingCursor>();
  editing.log.clear();
  other.log.clear();
  editing.Set_RecordID(1);
  editing.UpdateRecWithValues(*table->Record({9, 9}));
  SetField(editing, "Load", 10);
  EXPECT_EQ(editing.log, "edited1 ");
  EXPECT_EQ(other.log, "");
  EXPECT_EQ(Values(other, "Load"), "1 10");
}

TEST(VXRAMCursorEdits, AnUpdateChecksNoCountAndLeavesItsFlagOnAMismatch) {
  const auto table = Loads({1, 2});
  auto& cursor = table->Open<TLoggingCursor>();
  const auto record = table->Record({5, 6});
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
  (*table)->ClearTable();
  record->Field(0).FieldType = vxrftDuration;
  EXPECT_EQ(Raised([&] { cursor.UpdateRecWithValues(*record); }), mismatch);  // told before the missing row is
}

TEST(VXRAMCursorEdits, DeletionLeavesTheCursorOnTheRowThatFollowed) {
  const struct {
    TVXRAMCursorOrder order;
    std::int32_t deleted;
    std::int32_t physical, id;
  } cases[] = {{vxrcoAscending, 0, 0, 1},  {vxrcoAscending, 1, 1, 2},  {vxrcoAscending, 2, 1, 1},
               {vxrcoDescending, 2, 1, 1}, {vxrcoDescending, 1, 0, 0}, {vxrcoDescending, 0, 0, 1}};
  for (const auto& each : cases) {
    const auto table = Loads({7, 8, 9});
    TVXRAMCursor& cursor = table->Open({.order = each.order});
    cursor.Set_RecordID(each.deleted);
    cursor.DeleteRec();
    EXPECT_EQ(cursor.Get_PhysicalIndex(), each.physical) << each.deleted;
    EXPECT_EQ(cursor.Get_RecordID(), each.id) << each.deleted;
  }
  const auto table = Loads({7});
  TVXRAMCursor& last = table->Open();
  last.DeleteRec();
  EXPECT_EQ(Play(last, ""), "");
  EXPECT_EQ(last.Get_PhysicalIndex(), 0);
}

// -- In step -----------------------------------------------------------------------------------------------------------

TEST(VXRAMCursorsInStep, AnInsertionSendsFilteredAndSortedCursorsToFirstPosition) {
  const struct {
    TTestWish wish;
    std::int32_t physical;
  } cases[] = {{{}, 1},
               {{.order = vxrcoDescending}, 1},
               {{.filterField = "Load", .filterValue = Null()}, -1},
               {{.order = vxrcoDescending, .filterField = "Load", .filterValue = Null()}, 4},
               {{.sort = "Load"}, -1},
               {{.sort = "Nothing"}, 1}};
  for (const auto& each : cases) {
    const auto table = Loads({1, 2, 3});
    TVXRAMCursor& cursor = table->Open(each.wish);
    cursor.Set_RecordID(1);
    table->Add({4, 4});
    EXPECT_EQ(cursor.Get_PhysicalIndex(), each.physical) << each.wish.sort;
    EXPECT_EQ(cursor.Get_RecordCount(), 4);
  }
}

TEST(VXRAMCursorsInStep, EveryCursorHearsOfADeletionWithItsListAlreadyShort) {
  const auto table = Loads({1, 2, 3});
  TVXRAMCursor& filtered = table->Open({.filterField = "Load", .filterValue = Null()});
  TVXRAMCursor& deleting = table->Open();
  std::string seen;
  table->Owner().onRefresh = [&] { seen += Ids(filtered) + "|" + Ids(deleting) + " "; };
  deleting.Set_RecordID(1);
  deleting.DeleteRec();
  EXPECT_EQ(seen, "0 2|0 1 2 0 2|0 1 2 ");
  EXPECT_EQ(Ids(deleting), "0 2");
}

TEST(VXRAMCursorsInStep, ADeletionNeedsAnOwnerThatCanBeTold) {
  const auto stranger = Make<TComponent>(nullptr);
  const std::pair<TComponent*, const char*> cases[] = {{nullptr, "ENilAccess"}, {stranger.get(), "EInvalidCast"}};
  for (const auto& [owner, error] : cases) {
    const auto table = Loads({1});
    TVXRAMCursorDesc desc(owner, -1, vxrcoAscending, "", nullptr, Variant());
    TVXRAMCursor* cursor = nullptr;
    (*table)->OpenCursor(nullptr, &desc, cursor);
    EXPECT_EQ(Raised([&] { cursor->DeleteRec(); }).substr(0, std::string(error).size()), error);
    EXPECT_EQ(Ids(*(*table)->Get_MainRecordList()), "0");  // the failure comes before the row leaves the main list
    (*table)->CloseCursor(cursor);
  }
}

TEST(VXRAMCursorsInStep, ClearingSendsEveryCursorBeforeTheFirstRow) {
  const auto table = Loads({1, 2, 3});
  TVXRAMCursor& up = table->Open({.filterField = "Load", .filterValue = Null()});
  TVXRAMCursor& down = table->Open({.order = vxrcoDescending});
  up.Set_RecordID(1);
  down.Set_RecordID(1);
  (*table)->ClearTable();
  EXPECT_EQ(up.Get_PhysicalIndex(), -1);
  EXPECT_EQ(down.Get_PhysicalIndex(), 0);
  EXPECT_EQ(Ids(up), "");
}

TEST(VXRAMCursorBrackets, AnUnmatchedEndUpdateCallsItsHook) {
  const auto table = Loads({});
  auto& cursor = table->Open<TLoggingCursor>();
  cursor.log.clear();
  cursor.BeginUpdate();
  cursor.BeginUpdate();
  EXPECT_TRUE(cursor.Get_IsUpdating());
  cursor.EndUpdate();
  EXPECT_EQ(cursor.log, "start ");
  cursor.EndUpdate();
  cursor.EndUpdate();
  cursor.EndUpdate();
  EXPECT_EQ(cursor.log, "start end end end ");
  (*table)->BeginUpdate();
  EXPECT_TRUE(cursor.Get_IsUpdating());
  (*table)->EndUpdate();
  (*table)->EndUpdate();
  EXPECT_FALSE(cursor.Get_IsUpdating());
}

TEST(VXRAMCursorBrackets, TheRecordCallbackIsComparedByItsCodeAlone) {
  const auto table = Loads({1, 2, 3, 4});
  auto& cursor = table->Open<TLoggingCursor>();
  TParity even(0), odd(1);
  cursor.log.clear();
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(even, &TParity::IsWanted));
  EXPECT_EQ(Ids(cursor), "0 2");
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(odd, &TParity::IsWanted));  // same code: nothing happens
  EXPECT_EQ(Ids(cursor), "0 2");
  cursor.SetOnFilterRecord(TVXRAMCursorRecordFilterProc(odd, &TParity::IsAny));
  EXPECT_EQ(Ids(cursor), "0 1 2 3");
  EXPECT_TRUE(cursor.Get_IsFiltered());
  cursor.SetOnFilterRecord(nullptr);
  EXPECT_FALSE(cursor.Get_IsFiltered());
  EXPECT_EQ(cursor.log, "filter filter filter ");
}

}  // namespace
}  // namespace vx
