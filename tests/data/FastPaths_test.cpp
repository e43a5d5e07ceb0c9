// What the random operations (RandomOperations_test.cpp), whose tables are small, don't reach: deletions from lists
// that are long enough to keep holes, and the change stamp that the engine's quick ways go by.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "TableKit.h"
#include "model/Dice.h"

namespace vx {
namespace {

using naive::TDice;

// -- Deletions --------------------------------------------------------------------------------------------------------

/// A cursor, and the ids that it should walk.
struct TWalker {
  TVXRAMCursor* cursor;
  std::vector<std::int32_t> ids;
};

/// Where a cursor stands after it has deleted the row at `at`.
std::int32_t AfterDeletion(const TVXRAMCursor& cursor, std::int32_t at, std::int32_t left) {
  const std::int32_t next = cursor.Get_Order() == vxrcoDescending ? at - 1 : at;
  return next < 0 ? 0 : std::min(next, left - 1);  // -1 once the list is empty
}

TEST(FastPaths, DeletionsFromLongListsAgreeWithVectors) {
  const std::uint32_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  TDice dice(seed);
  TTestTable table({{"Key", vxrftInteger}, {"Even", vxrftBoolean}}, {"Key"});
  constexpr std::int32_t kCount = 9000;
  std::vector<std::pair<std::int32_t, std::int32_t>> byKey;
  for (std::int32_t id = 0; id < kCount; ++id) {
    byKey.emplace_back(id * 4001 % kCount, id);
    table.Add({byKey.back().first, id % 2});
  }
  std::sort(byKey.begin(), byKey.end());
  TWalker walkers[] = {{&table.Open(), {}},
                       {&table.Open({.order = vxrcoDescending}), {}},
                       {&table.Open({.index = 0}), {}},
                       {&table.Open({.filterField = "Even", .filterValue = true}), {}}};
  for (std::int32_t id = 0; id < kCount; ++id) {
    for (TWalker* walker : {&walkers[0], &walkers[1]}) walker->ids.push_back(id);
    walkers[2].ids.push_back(byKey[static_cast<std::size_t>(id)].second);
    if (id % 2 == 1) walkers[3].ids.push_back(id);
  }
  std::int32_t run = 0;
  TWalker* walker = walkers;
  for (std::int32_t step = 0; step < kCount - 500; ++step) {
    if (run-- == 0 || walker->ids.empty()) {
      run = dice.Below(30);
      walker = &walkers[dice.Below(walkers[3].ids.empty() ? 3 : 4)];
      walker->cursor->GoToFirstRec();
      walker->cursor->Set_RecordID(dice.OneIn(2) ? -1 : dice.Pick(walker->ids));
    }
    const std::int32_t at = walker->cursor->Get_EffectiveRecordIndex();
    const std::int32_t id = walker->ids.at(static_cast<std::size_t>(at));
    ASSERT_EQ(walker->cursor->Get_RecordID(), id) << "step " << step;
    const std::int32_t physical = walker->cursor->Get_PhysicalIndex();
    walker->cursor->DeleteRec();
    for (TWalker& each : walkers) {
      std::erase(each.ids, id);
      ASSERT_EQ(each.cursor->Get_RecordCount(), static_cast<std::int32_t>(each.ids.size()));
    }
    ASSERT_EQ(walker->cursor->Get_PhysicalIndex(),
              AfterDeletion(*walker->cursor, physical, static_cast<std::int32_t>(walker->ids.size())));
  }
  for (const TWalker& each : walkers)
    for (std::int32_t i = 0; i < each.cursor->Get_RecordCount(); ++i)
      ASSERT_EQ(RowId(static_cast<TVXRAMRow*>(each.cursor->Get_ActiveRecordList()->Items(i))),
                each.ids[static_cast<std::size_t>(i)]);
  EXPECT_EQ(table->CheckRows(), "");
}

// -- Edits ------------------------------------------------------------------------------------------------------------

using TRows = std::vector<void*>;

TRows RowsOf(const TVXList& list) { return {list.Data(), list.Data() + list.Count()}; }

/// What a rebuild makes that knows nothing of the one before.
TRows SortedAnew(const TVXRAMIndex& index, const TRows& rows) {
  const auto list = Make<TVXList>();
  for (void* const row : rows) list->Add(row);
  list->SortEx([&index](void* first, void* second) {
    return index.IntegerSortCompare(static_cast<TVXRAMRow*>(first), static_cast<TVXRAMRow*>(second));
  });
  return RowsOf(*list);
}

TEST(FastPaths, EditsAndSearchesByIdAgreeWithWholeSortsAndWalks) {
  const std::uint32_t seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  TDice dice(seed);
  for (const std::int32_t keys : {1'000'000, 100'000, 300}) {  // all differ mostly, sometimes, never
    TTestTable table({{"Key", vxrftInteger}, {"Even", vxrftBoolean}}, {"Key"});
    const auto record = [&] { return table.Record({dice.OneIn(500) ? Null() : dice.Below(keys), 1}); };
    for (std::int32_t i = 0; i < 150; ++i) table.Add({dice.Below(keys), 1});
    TVXRAMCursor* const cursors[] = {&table.Open({.index = 0}), &table.Open({.sort = "Key.D"}), &table.Open(),
                                     &table.Open({.sort = "Key", .filterField = "Even", .filterValue = true})};
    for (std::int32_t step = 0; step < 2000; ++step) {
      TVXRAMCursor& cursor = *cursors[dice.Below(4)];
      const std::int32_t at = dice.Below(cursor.Get_RecordCount());
      void* const row = cursor.Get_ActiveRecordList()->Items(at);
      std::int32_t id = RowId(static_cast<TVXRAMRow*>(row));
      cursor.Set_RecordID(id);
      ASSERT_EQ(cursor.Get_PhysicalIndex(), at) << "step " << step;
      TRows indexed = RowsOf(*table.Index(0).Get_List());
      const std::int32_t action = dice.Below(4);
      if (action == 0) cursor.UpdateRecWithValues(*record());
      if (action == 1) SetField(cursor, "Key", dice.Below(keys));
      if (action > 1) {
        cursor.DeleteRec();
        std::erase(indexed, row);
        cursor.Set_RecordID(id);
        EXPECT_EQ(cursor.Get_PhysicalIndex(), -1);
        cursor.InsertRecWithValues(*record(), dice.OneIn(2));
        id = cursor.Get_RecordID();
        indexed.push_back(cursor.Get_CurrentRecord());
      }
      ASSERT_EQ(cursor.Get_RecordID(), id) << "step " << step;
      ASSERT_EQ(RowsOf(*table.Index(0).Get_List()), SortedAnew(table.Index(0), indexed)) << "step " << step;
    }
  }
}

// -- The change stamp -------------------------------------------------------------------------------------------------

TEST(FastPaths, EveryWriteIntoAnOlderRowRaisesTheChangeStamp) {
  TTestTable table({{"Load", vxrftInteger}, {"Name", vxrftString, 8}});
  table.Add({1, "a"});
  TVXRAMCursor& cursor = table.Open();
  TVXRAMRow* const row = table.Row(0);
  const auto record = table.Record({2, "b"});
  const std::function<void()> silent[] = {[&] {
                                            table.Add({3, "c"});
                                          },
                                          [&] { table.AddEmpty(); }, [&] { cursor.InsertRecWithValues(*record, true); },
                                          [&] { cursor.Sort("Load.D"); },
                                          [&] { table->DeleteRecord(&cursor, table.Row(0)); }};
  const std::function<void()> raising[] = {[&] { cursor.SetFieldValue(0, record->Field(0).Value); },
                                           [&] { cursor.ClearFieldValue(1); },
                                           [&] { cursor.UpdateRecWithValues(*record); },
                                           [&] { table->InternalSetFieldStatus(row, 0, vxfsNull); },
                                           [&] { table->InternalClearFieldValue(row, 0); },
                                           [&] { table->InternalClearAllFieldValues(row); },
                                           [&] { table->InternalInitRecord(row); },
                                           [&] { table->InternalSetRecordId(row, 9); },
                                           [&] { table->ClearTable(), table.Field("Load")->Set_DataType(vxrftFloat); },
                                           [&] { table.Field("Name")->Set_ByteSize(9); },
                                           [&] { table.Field("Name")->Set_Name("Text"); },
                                           [&] { table.Field("Text")->SetIndex(0); },
                                           [&] { AddField(*table, "More", vxrftWord); },
                                           [&] { table.Field("More")->Free(); }};
  for (const auto& action : silent) {
    const std::uint64_t before = table->Get_ChangeStamp();
    action();
    EXPECT_EQ(table->Get_ChangeStamp(), before) << &action - silent;
  }
  for (const auto& action : raising) {
    const std::uint64_t before = table->Get_ChangeStamp();
    action();
    EXPECT_GT(table->Get_ChangeStamp(), before) << &action - raising;
  }
}

}  // namespace
}  // namespace vx
