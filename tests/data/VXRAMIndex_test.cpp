// The splitter, sort specifications, the fixed moves of the sort, indexes and their search, filters.

#include <gtest/gtest.h>

#include <cstring>

#include "TableKit.h"

namespace vx {
namespace {

// -- Splitter and specification ----------------------------------------------------------------------------------------

TEST(VXStringParser, ASeparatorAtTheEndAddsNoItem) {
  const struct {
    const char* separator;
    const char* text;
    std::vector<std::string> items;
  } cases[] = {{";", "", {}},
               {";", "a", {"a"}},
               {";", "a;b;", {"a", "b"}},
               {";", ";a;b", {"", "a", "b"}},
               {";", "a;;b", {"a", "", "b"}},
               {";", ";", {""}},
               {";", ";;", {"", ""}},
               {"--", "a-b--c---d", {"a-b", "c", "-d"}},
               {"--", "a--", {"a"}}};
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
  const struct {
    const char* item;
    const char* name;
    TVXRAMCursorOrder order;
  } cases[] = {
      {"Name", "Name", vxrcoAscending},   {"Name.A", "Name", vxrcoAscending}, {"Name.D", "Name", vxrcoDescending},
      {"Name.d", "Name", vxrcoAscending}, {"Name.", "Name", vxrcoAscending},  {"Name.DX", "Name", vxrcoDescending},
      {"N.A.D", "N", vxrcoAscending},     {".D", "", vxrcoDescending},        {"", "", vxrcoAscending}};
  for (const auto& each : cases) {
    EXPECT_EQ(VXRAMTable_CMP::GetFieldName(each.item), each.name);
    EXPECT_EQ(VXRAMTable_CMP::GetFieldSortOrder(each.item), each.order) << each.item;
  }
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
  for (const auto& [specification, order] : cases) {
    cursor.Set_RecIndex(2);
    cursor.Sort(specification);
    EXPECT_EQ(Ids(cursor), order) << specification;
    EXPECT_EQ(Ids(other), order);
    EXPECT_EQ(cursor.Get_PhysicalIndex(), *specification == '\0' || !std::strcmp(specification, "Nothing") ? 2 : -1);
  }
  filtered.Sort("Name.D");
  EXPECT_EQ(Ids(filtered), "3 1");  // its own list alone
  EXPECT_EQ(Ids(other), "1 0 2 3");
  other.Set_SortedField("Name.D");
  other.Set_SortedField("");
  EXPECT_EQ(Ids(other) + other.Get_SortedField(), "3 2 0 1");
}

/// The moves in their plainest form, by recursion, over numbers; every compare is written down.
void PlainSort(std::vector<int>& items, int left, int right, std::string& compares) {
  const auto compare = [&](int a, int b) {
    compares += std::to_string(a) + ":" + std::to_string(b) + " ";
    return a / 10 - b / 10;
  };
  do {
    int i = left, j = right;
    const int pivot = items[static_cast<std::size_t>((left + right) / 2)];
    do {
      while (compare(items[static_cast<std::size_t>(i)], pivot) < 0) ++i;
      while (compare(items[static_cast<std::size_t>(j)], pivot) > 0) --j;
      if (i <= j) std::swap(items[static_cast<std::size_t>(i++)], items[static_cast<std::size_t>(j--)]);
    } while (i <= j);
    if (left < j) PlainSort(items, left, j, compares);
    left = i;
  } while (left < right);
}

TEST(VXList, SortExMakesTheFixedMovesAndCompares) {
  // Tens are the keys, units tell equal ones apart.
  const std::vector<std::vector<int>> cases = {{},
                                               {10},
                                               {20, 10},
                                               {10, 11, 12},
                                               {30, 20, 10, 31, 21, 11},
                                               {10, 11, 12, 13, 14, 15, 16},
                                               {50, 41, 32, 23, 14, 51, 42, 33, 24, 15, 52},
                                               {10, 20, 11, 21, 12, 22, 13, 23, 14, 24}};
  for (const std::vector<int>& numbers : cases) {
    std::vector<int> plain = numbers, storage = numbers;
    std::string expected, compares;
    if (!plain.empty()) PlainSort(plain, 0, static_cast<int>(plain.size()) - 1, expected);
    const auto list = Make<TVXList>();
    for (int& number : storage) list->Add(&number);
    list->SortEx([&](void* a, void* b) {
      const int first = *static_cast<int*>(a), second = *static_cast<int*>(b);
      compares += std::to_string(first) + ":" + std::to_string(second) + " ";
      return first / 10 - second / 10;
    });
    std::vector<int> sorted;
    for (std::int32_t i = 0; i < list->Count(); ++i) sorted.push_back(*static_cast<int*>(list->Items(i)));
    EXPECT_EQ(sorted, plain);
    EXPECT_EQ(compares, expected);
  }
}

// -- Indexes -----------------------------------------------------------------------------------------------------------

TEST(VXRAMIndex, SortsByTheFieldsTypeNullsLastTextWithoutCase) {
  const struct {
    TVXRAMFieldType type;
    TCells values;
    const char* order;
  } cases[] = {{vxrftBoolean, {true, false, Null()}, "1 0 2"},
               {vxrftCurrency, {2.5, -1.0, Null(), 0.0}, "1 3 0 2"},
               {vxrftDateTime, {45000.5, 45000.25, Null(), -2.0}, "3 1 0 2"},
               {vxrftDuration, {5, -5, Null()}, "1 0 2"},
               {vxrftInteger, {2147483647, -2147483647 - 1, Null(), 0}, "1 3 0 2"},
               {vxrftSmallint, {32767, -32768, Null()}, "1 0 2"},
               {vxrftString, {"b", "A", Null(), "a", "B", ""}, "5 3 1 0 4 2"},
               {vxrftWord, {65535, 0, Null(), 32768}, "1 3 0 2"}};
  for (const auto& each : cases) {
    const TTestTable table({{"Key", each.type, 8}}, {"Key"});
    for (const Variant& value : each.values) table.Add({value});
    EXPECT_EQ(Ids(table.Index(0)), each.order) << +each.type;
  }
}

TEST(VXRAMIndex, TakesOnlyRowsThatComeAfterItAndAppendsEmptyOnes) {
  TTestTable table({{"Load", vxrftInteger}});
  table.Add({5});
  table->Get_Indices()->Add()->Set_FieldName("Load");
  table.Add({3});
  table.Add({1});
  EXPECT_EQ(Ids(table.Index(0)), "2 1");
  std::int32_t id;
  table->AddRecord(-1, id);
  TVXRAMCursor& cursor = table.Open({.index = 0});
  EXPECT_EQ(Walk(cursor), "2 1 3");
  table->DeleteRecord(nullptr, table.Index(0).Get_Record(0));
  EXPECT_EQ(Ids(table.Index(0)), "1 3");
  EXPECT_EQ(table.Index(0).Insert(table.Index(0).Get_Record(0)), 2);
}

TEST(VXRAMIndex, WithoutAFieldFailsWhenItIsRebuilt) {
  const TTestTable table({{"Load", vxrftInteger}});
  EXPECT_EQ(table->Get_Indices()->Add()->Get_FieldName(), "");
  EXPECT_EQ(Raised([&] { table.Add({1}); }), "ENilAccess: Access to a missing object: field of the index");
  EXPECT_EQ(Ids(*table->Get_MainRecordList()) + "|" + Ids(table.Index(0)), "0|0");  // what was done stays done
}

TEST(VXRAMIndex, LocateFirstOfIntegersAnswersOtherNumbersAndLooksAtNoStatus) {
  const struct {
    TVXRAMFieldType type;
    TCells values;
    Variant key;
    std::int32_t found;
  } cases[] = {{vxrftInteger, {}, 5, 0},
               {vxrftDuration, {}, 5, 0},
               {vxrftFloat, {}, 5.0, -1},
               {vxrftString, {}, "a", -1},
               {vxrftInteger, {1, 2, 3}, 9, 2},
               {vxrftDuration, {1, 2, 3}, 9, 2},
               {vxrftSmallint, {1, 2, 3}, 9, -2},
               {vxrftWord, {1, 2, 3}, 9, -2},
               {vxrftString, {"a", "b"}, "c", -2},
               {vxrftBoolean, {false, false}, true, -2},
               {vxrftInteger, {1, 2, 2, 2, 3}, 2, 1},
               {vxrftInteger, {1, 2, 2, 2, 3}, 0, 0},
               {vxrftInteger, {1, 3, 5, 7}, 4, 2},
               {vxrftString, {"a", "B", "b", "c"}, "b", 1},
               {vxrftDateTime, {1.5, 2.5, 3.5}, 2.0, 1},
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

// -- Filters -----------------------------------------------------------------------------------------------------------

TEST(VXRAMFilter, TellsOnceForEachChange) {
  const TTestTable table({{"Load", vxrftInteger}});
  const auto filter = Make<TVXRAMFilter>();
  std::string told;
  filter->OnChange = [&](TObject* sender) {
    told += sender == filter.get() && filter->Get_Field() != nullptr ? filter->Get_Value().AsString() + ";" : "?";
  };
  filter->SetFilter(table.Field("Load"), 5);
  filter->Set_Value(6);
  filter->Set_Field(table.Field("Load"));  // forgets the value
  EXPECT_EQ(told, "5;6;;");
  EXPECT_TRUE(filter->Get_Value().IsEmpty());
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

TEST(VXRAMFilter, MatchesByTypeAndKeepsWhatWasFoundBeforeAFailure) {
  const struct {
    TVXRAMFieldType type;
    TCells values;
    Variant wanted;
    const char* found;
  } cases[] = {{vxrftBoolean, {true, false, Null()}, true, "0"},
               {vxrftCurrency, {1.5, 2.0, Null()}, 2, "1"},
               {vxrftDateTime, {45000.0, 45000.5}, Variant::Date(45000.5), "1"},
               {vxrftSmallint, {-1, 1}, -1, "0"},
               {vxrftWord, {65535, 1}, 65535, "0"},
               {vxrftString, {"a", "A", Null()}, "a", "0"},  // exactly, unlike in a sort
               {vxrftString, {"1.50", "1.5"}, "1.5", "1"},
               {vxrftInteger, {7, 8}, "7", "0"}};
  for (const auto& each : cases) {
    TTestTable table({{"Key", each.type, 8}});
    for (const Variant& value : each.values) table.Add({value});
    EXPECT_EQ(Ids(table.Open({.filterField = "Key", .filterValue = each.wanted})), each.found) << +each.type;
  }
  TTestTable table({{"Key", vxrftString, 8}});
  for (const char* text : {"7", "6", "7", "x", "7"}) table.Add({text});
  TVXRAMCursor& cursor = table.Open({.filterField = "Key", .filterValue = Null()});
  EXPECT_EQ(Raised([&] { cursor.Get_Filter()->Set_Value(7); }).substr(0, 13), "EVariantError");
  EXPECT_EQ(Ids(cursor), "0 2");
}

}  // namespace
}  // namespace vx
