// The splitter, sort specifications, the fixed moves of the sort, the search in indexes, filters.

#include <gtest/gtest.h>

#include "TableKit.h"

namespace vx {
namespace {

// -- Splitter and sort ------------------------------------------------------------------------------------------------

TEST(VXStringParser, ASeparatorAtTheEndAddsNoItem) {
  const struct {
    const char* separator;
    const char* text;
    std::vector<std::string> items;
  } cases[] = {{";", "", {}},
               {";", "a;b;", {"a", "b"}},
               {";", ";a;b", {"", "a", "b"}},
               {";", "a;;b", {"a", "", "b"}},
               {";", ";;", {"", ""}},
               {"--", "a-b--c---d--", {"a-b", "c", "-d"}}};
  for (const auto& each : cases) {
    const auto parser = Make<TVXStringParser>(each.separator, each.text);
    std::vector<std::string> items;
    for (std::int32_t i = 0; i < parser->GetCount(); ++i) items.push_back(parser->GetItemByIndex(i));
    EXPECT_EQ(items, each.items) << each.text;
    for (const std::int32_t outside : {-1, parser->GetCount()})
      EXPECT_EQ(Raised([&] { parser->GetItemByIndex(outside); }), "Exception: StringParser : Index out of Bounds");
  }
}

TEST(SortSpecification, OnlyACapitalDDescends) {
  for (const char* item : {"Name", "Name.A", "Name.d", "Name.", "Name.A.D"}) {
    EXPECT_EQ(VXRAMTable_CMP::GetFieldName(item), "Name");
    EXPECT_EQ(VXRAMTable_CMP::GetFieldSortOrder(item), vxrcoAscending) << item;
  }
  for (const char* item : {"Name.D", "Name.DX", ".D"})
    EXPECT_EQ(VXRAMTable_CMP::GetFieldSortOrder(item), vxrcoDescending) << item;
}

TEST(SortSpecification, SortsTheSharedListAndRestoresNothing) {
  TTestTable table({{"Name", vxrftString, 8}, {"Load", vxrftInteger}});
  for (const TCells& cells : {TCells{"b", 1}, TCells{"a", 2}, TCells{"c", 1}, TCells{Null(), 2}}) table.Add(cells);
  TVXRAMCursor& cursor = table.Open();
  TVXRAMCursor& other = table.Open({.order = vxrcoDescending});
  TVXRAMCursor& filtered = table.Open({.filterField = "Load", .filterValue = 2});
  const std::pair<const char*, const char*> cases[] = {
      {"Name", "1 0 2 3"},
      {"NAME.D", "3 2 0 1"},  // nulls first
      {"", "3 2 0 1"},
      {"Name.d", "1 0 2 3"},
      {"Load;Name.D", "2 0 3 1"},
      {"Nothing;name", "1 0 2 3"},
      {"Nothing", "1 0 2 3"},
      {"Name.D;Load;Name.A", "3 2 0 1"},  // named twice: the first counts
      {"Name.A;Load;Name.D", "1 0 2 3"}};
  for (const auto& [keys, order] : cases) {
    cursor.Set_RecIndex(2);
    cursor.Sort(keys);
    EXPECT_EQ(Ids(cursor), order) << keys;
    EXPECT_EQ(Ids(other), order);
    EXPECT_EQ(cursor.Get_PhysicalIndex(), *keys == '\0' || keys == std::string("Nothing") ? 2 : -1);
  }
  filtered.Sort("Name.D");
  EXPECT_EQ(Ids(filtered), "3 1");  // its own list alone
  EXPECT_EQ(Ids(other), "1 0 2 3");
  other.Set_SortedField("Name.D");
  other.Set_SortedField("");
  EXPECT_EQ(Ids(other) + other.Get_SortedField(), "3 2 0 1");
}

// Tens are the keys, units tell equal ones apart.
TEST(VXList, SortExMakesTheFixedMovesAndCompares) {
  std::int32_t numbers[] = {30, 20, 10, 31, 21, 11};
  const auto list = Make<TVXList>();
  for (std::int32_t& number : numbers) list->Add(&number);
  std::string compares, sorted;
  const auto at = [](void* item) { return *static_cast<std::int32_t*>(item); };
  list->SortEx([&](void* a, void* b) {
    compares += std::to_string(at(a)) + ":" + std::to_string(at(b)) + " ";
    return at(a) / 10 - at(b) / 10;
  });
  for (std::int32_t i = 0; i < list->Count(); ++i) sorted += std::to_string(at(list->Items(i))) + " ";
  EXPECT_EQ(sorted, "10 11 21 20 30 31 ");
  EXPECT_EQ(compares,
            "30:10 11:10 20:10 21:10 31:10 10:10 11:11 10:11 20:31 31:31 30:31 21:31 31:31 21:31 20:30 30:30 21:30 "
            "20:20 21:20 ");
}

// -- Indexes and filters ----------------------------------------------------------------------------------------------

TEST(VXRAMIndex, LocateFirstOfIntegersAnswersOtherNumbersAndLooksAtNoStatus) {
  const struct {
    TVXRAMFieldType type;
    TCells values;
    Variant key;
    std::int32_t found;
  } cases[] = {{vxrftInteger, {}, 5, 0},
               {vxrftDuration, {}, 5, 0},
               {vxrftString, {}, "a", -1},
               {vxrftInteger, {1, 2, 3}, 9, 2},
               {vxrftDuration, {1, 2, 3}, 9, 2},
               {vxrftWord, {1, 2, 3}, 9, -2},
               {vxrftString, {"a", "b"}, "c", -2},
               {vxrftInteger, {1, 2, 2, 2, 3}, 2, 1},
               {vxrftInteger, {1, 3, 5, 7}, 4, 2},
               {vxrftString, {"a", "B", "b", "c"}, "b", 1},
               {vxrftInteger, {5, 6, Null()}, 7, 2},  // the null counts as the zero of its bytes: the last is below
               {vxrftFloat, {5.0, 6.0, Null()}, 7.0, -2},
               {vxrftInteger, {-5, -4, Null()}, -3, 2}};  // and here it is the first that isn't
  for (const auto& each : cases) {
    const TTestTable table({{"Key", each.type, 8}}, {"Key"});
    for (const Variant& value : each.values) table.Add({value});
    const auto key = table.Record({each.key});
    const TVXFieldStruct& element = key->Field(0);
    const void* const bytes = each.type == vxrftString ? static_cast<const void*>(element.StringPtr) : element.Value;
    EXPECT_EQ(table.Index(0).LocateFirst(bytes), each.found) << +each.type << ", " << each.key.AsString();
  }
}

TEST(VXRAMFilter, ANullValueRestrictsNothingYetTheCursorIsFiltered) {
  TTestTable table({{"Load", vxrftInteger}});
  for (const TCells& cells : {TCells{1}, TCells{Null()}, TCells{0}}) table.Add(cells);
  TVXRAMCursor& cursor = table.Open({.filterField = "Load", .filterValue = Null()});
  EXPECT_TRUE(cursor.Get_IsFiltered());
  EXPECT_EQ(Ids(cursor), "0 1 2");
  EXPECT_NE(cursor.Get_ActiveRecordList(), table->Get_MainRecordList());
  const auto* const nullRow = static_cast<TVXRAMRow*>(table->Get_MainRecordList()->Items(1));
  EXPECT_TRUE(cursor.InternalIsRecordMatchFilter(*cursor.Get_Filter(), nullRow));  // asked directly, it does
  cursor.Get_Filter()->Set_Value(Variant());
  EXPECT_EQ(Ids(cursor), "2");  // unassigned counts as zero
  std::string calls;
  cursor.SetOnFilterRecord([&](TVXRAMRow* row, std::int32_t position) {
    calls += std::to_string(RowId(row)) + "@" + std::to_string(position) + " ";
    return false;
  });
  EXPECT_EQ(calls, "2@2 ");  // asked only of rows that pass the field, with the place in the source
  EXPECT_EQ(Ids(cursor), "");
}

TEST(VXRAMFilter, RebuildNoticesReachOnlyCursorsFilteredOnThatField) {
  TTestTable table({{"Load", vxrftInteger}, {"Rank", vxrftInteger}}, {"Load", "Rank"});
  for (const std::int32_t load : {3, 1, 2}) table.Add({load, -load});
  TVXRAMCursor& onLoad = table.Open({.index = 0, .filterField = "Load", .filterValue = Null()});
  TVXRAMCursor& onRank = table.Open({.index = 0, .filterField = "Rank", .filterValue = Null()});
  TVXRAMCursor& plain = table.Open({.index = 0});
  for (TVXRAMCursor* cursor : {&onLoad, &onRank, &plain}) cursor->Set_RecordID(2);
  table.Index(0).ReBuild();
  EXPECT_EQ(onLoad.Get_PhysicalIndex(), -1);  // rebuilt, and sent to first position
  EXPECT_EQ(onRank.Get_PhysicalIndex(), 1);
  EXPECT_EQ(plain.Get_PhysicalIndex(), 1);
  SetField(plain, "Load", 9);
  EXPECT_EQ(Ids(onLoad), "1 0 2");
  EXPECT_EQ(Ids(onRank), "1 2 0");  // its list is as old as before
  table.Field("Load")->Set_Name("LOAD");
  onRank.Set_RecordID(1);
  table->Get_BaseIndex()->ReBuild();  // tells nobody
  table.Index(1).ReBuild();
  EXPECT_EQ(onRank.Get_PhysicalIndex(), -1);
}

}  // namespace
}  // namespace vx
