// Groups of rows: keys, folds, dates, insertions, edits and deletions as seen through a bucketer.

#include <gtest/gtest.h>

#include <random>

#include "../datetime/WeekScope.h"
#include "TableKit.h"
#include "platform/runtime/Locale.h"

namespace vx {
namespace {

constexpr double kMonday = 45292;  // 2024-01-01

class VXRAMCursorBucketerTest : public testing::Test {
 protected:
  const TLocaleScope locale_{ClassicLocale()};
  const TWeekScope week_{2};
};

/// Days, items and loads; `cells` may leave off what a case doesn't need.
class TOrders : public TTestTable {
 public:
  explicit TOrders(std::initializer_list<TCells> rows = {})
      : TTestTable({{"Day", vxrftDateTime}, {"Item", vxrftString, 12}, {"Load", vxrftFloat}, {"Count", vxrftInteger}}) {
    for (const TCells& cells : rows) Add(cells);
  }
};

TCells Row(double day, const char* item, double load, std::int32_t count) { return {kMonday + day, item, load, count}; }

std::string All(const TVXRAMCursor& cursor, std::initializer_list<const char*> names) {
  std::string text;
  for (const char* name : names) text += (text.empty() ? "" : "|") + Values(cursor, name);
  return text;
}

// -- Building ----------------------------------------------------------------------------------------------------------

TEST_F(VXRAMCursorBucketerTest, BucketsStandInTheOrderOfTheirFirstRows) {
  TOrders table{Row(8, "b", 1, 1), Row(0, "a", 2, 2), Row(13.5, "a", 4, 4), Row(6, "c", 8, 8)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  EXPECT_EQ(Ids(weeks), "0 1");
  EXPECT_EQ(All(weeks, {"Day", "Item", "Load", "Count"}), "45299 45292|a c|5 10|4 8");  // others show the last row
  EXPECT_EQ(Walk(weeks), "0 1");
  TVXRAMCursorBucketer& sorted = table.OpenBuckets({"Day", vxgrOneWeek, {}, vxgrOneDay, true, {.sort = "Day"}});
  EXPECT_EQ(Ids(sorted), "1 0");
  EXPECT_FALSE(sorted.Get_CanUseIndex("Day"));
}

TEST_F(VXRAMCursorBucketerTest, ByEndOfGroupKeyAndDateAreTheLastDay) {
  const struct {
    TVXGroupMode mode;
    bool byStart;
    const char* days;
  } cases[] = {{vxgrOneDay, false, "45292 45321 45323 45657"}, {vxgrOneWeek, false, "45298 45326 45662"},
               {vxgrOneMonth, false, "45322 45351 45657"},     {vxgrOneYear, false, "45657"},
               {vxgrOneMonth, true, "45292 45323 45627"},      {vxgrOneCentury, true, "73051"}};
  for (const auto& each : cases) {
    TOrders table{Row(0, "a", 1, 1), Row(29, "a", 1, 1), Row(31, "a", 1, 1), Row(365, "a", 1, 1)};
    EXPECT_EQ(Values(table.OpenBuckets({"Day", each.mode, {}, vxgrOneDay, each.byStart}), "Day"), each.days)
        << +each.mode;
  }
}

TEST_F(VXRAMCursorBucketerTest, EachNewBucketTakesAnIdOfTheTable) {
  TOrders table{Row(0, "a", 1, 1), Row(7, "a", 1, 1), Row(8, "a", 1, 1)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek});
  EXPECT_EQ(table->GenerateUniqueID(), 3 + 2);
  weeks.BuildAllBuckets();
  EXPECT_EQ(table->GenerateUniqueID(), 6 + 2);
  EXPECT_EQ(Ids(weeks), "0 1");
  EXPECT_EQ(table.Add(Row(14, "a", 1, 1)), 9);
  EXPECT_EQ(table->GenerateUniqueID(), 11);
}

TEST_F(VXRAMCursorBucketerTest, KeysAreTextsWithoutSeparator) {
  const struct {
    const char* fields;
    TVXRAMFieldType first, second;
    std::vector<TCells> rows;
    const char* buckets;  // number of source rows of each
  } cases[] = {{"A;B", vxrftInteger, vxrftInteger, {{1, 12}, {11, 2}, {11, 12}}, "2 1"},
               {"B;A", vxrftInteger, vxrftInteger, {{1, 12}, {11, 2}, {11, 12}}, "1 1 1"},
               {"A", vxrftInteger, vxrftInteger, {{Null()}, {0}, {1}}, "2 1"},  // nulls count as zero bytes
               {"A", vxrftDateTime, vxrftInteger, {{Null()}, {0.0}, {0.5}, {1.0}}, "3 1"},
               {"A", vxrftString, vxrftString, {{Null()}, {""}, {"a"}, {"A"}}, "2 1 1"},
               {"A;B", vxrftString, vxrftString, {{"ab", "c"}, {"a", "bc"}, {"abc", ""}}, "3"},
               {"A", vxrftFloat, vxrftInteger, {{0.1 + 0.2}, {0.3}, {-0.0}, {0.0}}, "2 2"},  // 15 digits decide
               {"A;B", vxrftBoolean, vxrftWord, {{true, 0}, {Null(), 10}, {false, 10}, {true, Null()}}, "2 2"},
               {"A;B", vxrftSmallint, vxrftDuration, {{-1, 1}, {-11, Null()}, {-11, 0}}, "1 2"},
               {"Nothing;a", vxrftInteger, vxrftInteger, {{1}, {2}, {1}}, "2 1"},  // unknown names add nothing
               {"", vxrftInteger, vxrftInteger, {{1}, {2}}, "2"}};
  for (const auto& each : cases) {
    TTestTable table({{"A", each.first, 8}, {"B", each.second, 8}});
    for (const TCells& cells : each.rows) table.Add(cells);
    // In a bracket nothing is computed, so that a name which is no field's does no harm.
    table->BeginUpdate();
    TVXRAMCursorBucketer& buckets = table.OpenBuckets({each.fields});
    std::string counts;
    for (std::int32_t i = 0; i < buckets.Get_BucketList()->Count(); ++i)
      counts += (i == 0 ? "" : " ") + std::to_string(buckets.Get_BucketList()->Get_Bucket(i)->Get_RecordCount());
    EXPECT_EQ(counts, each.buckets) << each.fields;
    table->EndUpdate();
  }
}

TEST_F(VXRAMCursorBucketerTest, BucketedFieldsAreFoundWithoutCaseButKnownWithIt) {
  TOrders table{Row(8, "a", 1, 1)};
  TVXRAMCursorBucketer& exact = table.OpenBuckets({"Day", vxgrOneWeek});
  TVXRAMCursorBucketer& other = table.OpenBuckets({"DAY", vxgrOneWeek});
  EXPECT_EQ(Values(exact, "Day"), "45299");
  EXPECT_EQ(Values(other, "Day"), "45300");  // in groups by week, yet it shows the row's date
  EXPECT_TRUE(exact.IsBucketedField("Day") && !other.IsBucketedField("Day"));
  EXPECT_EQ(other.Get_BucketedDateFieldDef(), table.Field("Day"));
  other.SetBucketedFields("Item;Nothing;Day");
  EXPECT_EQ(Raised([&] { other.Get_BucketedDateFieldDef(); }),
            "ENilAccess: Access to a missing object: bucketed field 'Nothing'");
  EXPECT_EQ(Ids(other), "0");  // a setting is honoured by the next build alone
}

// -- Folding -----------------------------------------------------------------------------------------------------------

TEST_F(VXRAMCursorBucketerTest, FoldsByTheTypeOfTheBucket) {
  const struct {
    TVXBucketType type;
    const char* load;
    const char* count;
  } cases[] = {{vxbtCumulate, "7", "7"},    {vxbtAverage, "2.33333333333333", "2"},
               {vxbtMinValue, "1", "1"},    {vxbtMaxValue, "4", "4"},
               {vxbtFirstBucket, "4", "4"}, {vxbtLastBucket, "1", "1"}};
  for (const auto& each : cases) {
    TOrders table{Row(1, "a", 2, 2), Row(0, "a", 4, 4), Row(2, "a", 1, 1)};
    TVXRAMCursorBucketer& week = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", each.type}, {"Count", each.type}}});
    EXPECT_EQ(All(week, {"Load", "Count"}), std::string(each.load) + "|" + each.count) << +each.type;
  }
  TOrders empty{{kMonday, "a", Null(), Null()}, Row(0, "b", 4, 4), Row(0, "c", 2, -7)};
  EXPECT_EQ(
      All(empty.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtMinValue}, {"Count", vxbtAverage}}}), {"Load", "Count"}),
      "0|-1");  // a null is a zero that counts; integers divide towards zero
}

TEST_F(VXRAMCursorBucketerTest, TheFirstDefinitionOfANameCountsAndOnlyFourTypesFold) {
  TTestTable table({{"Key", vxrftInteger},
                    {"Cost", vxrftCurrency},
                    {"Span", vxrftDuration},
                    {"Rank", vxrftSmallint},
                    {"Size", vxrftWord},
                    {"Name", vxrftString, 4},
                    {"Due", vxrftDateTime},
                    {"Open", vxrftBoolean},
                    {"Rest", vxrftInteger}});
  for (const std::int32_t i : {1, 2, 3})
    table.Add({0, i + 0.5, i, i, i, std::string(1, "xabc"[i]), 10.0 * i, i == 1, i});
  TTestBuckets wish{"Key"};
  for (const char* name : {"COST", "Span", "Rank", "Size", "Name", "Due", "Open"})
    wish.folds.emplace_back(name, vxbtCumulate);
  wish.folds.emplace_back("Cost", vxbtMinValue);
  EXPECT_EQ(All(table.OpenBuckets(wish), {"Cost", "Span", "Rank", "Size", "Name", "Due", "Open", "Rest"}),
            "7.5|6|3|3|c|30|False|3");
  EXPECT_EQ(wish.folds.size(), 8u);
}

TEST_F(VXRAMCursorBucketerTest, DatesAreSharedLaterRowsWinTiesStatusIsSticky) {
  TTestTable table({{"Day", vxrftDateTime},
                    {"First", vxrftFloat},
                    {"AlsoFirst", vxrftInteger},
                    {"Last", vxrftFloat},
                    {"Sum", vxrftInteger},
                    {"Shown", vxrftString, 4}});
  table.Add({kMonday + 1, 1.0, 1, 1.0, 1, "a"});
  table.Add({kMonday, 2.0, 2, 2.0, Null(), Null()});
  table.Add({kMonday + 1, 3.0, 3, 3.0, Null(), Null()});
  table.Add({kMonday, 4.0, 4, 4.0, Null(), Null()});
  TVXRAMCursorBucketer& week = table.OpenBuckets(
      {"Day",
       vxgrOneWeek,
       {{"First", vxbtFirstBucket}, {"AlsoFirst", vxbtFirstBucket}, {"Last", vxbtLastBucket}, {"Sum", vxbtCumulate}}});
  EXPECT_EQ(All(week, {"First", "AlsoFirst", "Last", "Sum"}), "4|4|3|1");
  EXPECT_EQ(Values(week, "Shown"), "");  // assigned once, so assigned, though the last row is null
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.ClearFieldValue(4);
  table.Add({kMonday, 5.0, 5, 5.0, Null(), Null()});
  EXPECT_EQ(Values(week, "Sum"), "0");  // no row has a value any more, the status stays
}

// -- In step -----------------------------------------------------------------------------------------------------------

TEST_F(VXRAMCursorBucketerTest, ADeletionByAnotherCursorLeavesTheOldSum) {
  TOrders table{Row(0, "a", 1, 1), Row(1, "a", 2, 2), Row(7, "a", 4, 4)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.DeleteRec();
  EXPECT_EQ(All(weeks, {"Load", "Item"}), "3 4|a a");
  rows.Set_RecordID(2);
  rows.DeleteRec();  // the only row of its bucket
  EXPECT_EQ(Ids(weeks), "0");
  EXPECT_EQ(table->Get_AllocatedRows(), 1 + 1);
  table.Add(Row(2, "b", 8, 8));
  EXPECT_EQ(All(weeks, {"Load", "Item"}), "10|b");
}

TEST_F(VXRAMCursorBucketerTest, EditsNeverMoveRowsToOtherBuckets) {
  TOrders table{Row(0, "a", 1, 1), Row(7, "b", 2, 2)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.UpdateRecWithValues(*table.Record(Row(8, "c", 5, 5)));
  EXPECT_EQ(All(weeks, {"Day", "Load"}), "45292 45299|1 2");  // nobody was told
  table.Add(Row(1, "d", 10, 10));
  EXPECT_EQ(All(weeks, {"Day", "Load", "Item"}), "45292 45299|15 2|d b");  // its bucket counts the edited row
  weeks.EndUpdate();
  EXPECT_EQ(All(weeks, {"Day", "Load"}), "45299 45292|7 10");
}

TEST_F(VXRAMCursorBucketerTest, AnInsertionLeavesTheFilteredList) {
  TOrders table{Row(0, "a", 1, 1)};
  TVXRAMCursorBucketer& weeks =
      table.OpenBuckets({"Day", vxgrOneWeek, {}, vxgrOneDay, true, {.filterField = "Item", .filterValue = "a"}});
  table.Add(Row(7, "a", 1, 1));
  EXPECT_EQ(Ids(weeks), "0");
  EXPECT_EQ(Ids(*weeks.Get_BucketList()->Get_BucketRecords()), "0 1");
  weeks.Get_Filter()->Set_Value("a");
  EXPECT_EQ(Ids(weeks), "0 1");
}

TEST_F(VXRAMCursorBucketerTest, SourceRowsAreNotFiltered) {
  TOrders table{Row(0, "a", 1, 1), Row(1, "b", 2, 2), Row(7, "a", 4, 4)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets(
      {"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}, vxgrOneDay, true, {.filterField = "Load", .filterValue = 3.0}});
  EXPECT_EQ(All(weeks, {"Load", "Count"}), "3|2");  // no source row has a load of 3
}

TEST_F(VXRAMCursorBucketerTest, AnEditReachesTheSourceOnlyInTheGroupingTheRowsWereMadeIn) {
  const struct {
    TVXGroupMode mode;
    const char* source;
    const char* shown;
  } cases[] = {{vxgrOneDay, "50 2 4", "52 4"}, {vxgrOneWeek, "1 2 4", "3 4"}};
  for (const auto& each : cases) {
    TOrders table{Row(0, "a", 1, 1), Row(0.5, "b", 2, 2), Row(7, "c", 4, 4)};
    TVXRAMCursor& rows = table.Open();
    TVXRAMCursorBucketer& buckets = table.OpenBuckets({"Day", each.mode, {{"Load", vxbtCumulate}}});
    buckets.Set_RecordID(0);
    buckets.UpdateRecWithValues(*table.Record(Row(0, "z", 50, 50)));
    EXPECT_EQ(Values(rows, "Load"), each.source);
    EXPECT_EQ(Values(buckets, "Load"), each.shown);  // recomputed either way
    EXPECT_EQ(buckets.Get_RecordID(), 0);
  }
}

TEST_F(VXRAMCursorBucketerTest, DeletingABucketDeletesItsRowsAndLeavesTheIndex) {
  TOrders table{Row(0, "a", 1, 1), Row(1, "b", 2, 2), Row(7, "c", 4, 4), Row(14, "d", 8, 8)};
  TVXRAMCursor& rows = table.Open();
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek});
  TVXRAMCursorBucketer& others = table.OpenBuckets({"Day", vxgrOneMonth, {{"Count", vxbtCumulate}}});
  weeks.Set_RecordID(0);
  table.Owner().refreshes = 0;
  weeks.DeleteRec();
  EXPECT_EQ(table.Owner().refreshes, 3 * 3);  // the bucket and two rows, told to three cursors each
  EXPECT_EQ(Ids(rows), "2 3");
  EXPECT_EQ(Ids(weeks), "1 2");
  EXPECT_EQ(weeks.Get_PhysicalIndex(), 0);
  EXPECT_EQ(Values(others, "Count"), "15");
  weeks.Set_RecIndex(1);
  weeks.DeleteRec();
  EXPECT_EQ(weeks.Get_PhysicalIndex(), 1);  // beyond the list that is left
  EXPECT_EQ(weeks.Get_RecordID(), 1);
}

TEST_F(VXRAMCursorBucketerTest, ABracketBuildsOnceAtItsEnd) {
  TOrders table{Row(0, "a", 1, 1), Row(7, "b", 2, 2)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  weeks.BeginUpdate();
  table.Add(Row(1, "c", 4, 4));
  table.Add(Row(-7, "d", 8, 8));
  EXPECT_EQ(All(weeks, {"Load"}), "1 2");
  weeks.SetGroupMode(vxgrOneMonth);
  weeks.EndUpdate();
  EXPECT_EQ(Ids(weeks), "0 1");
  EXPECT_EQ(All(weeks, {"Load", "Day"}), "7 8|45292 45261");
  table->BeginUpdate();
  table.Add(Row(0, "e", 16, 16));
  table->EndUpdate();  // the table's bracket holds insertions back, and its end builds nothing
  EXPECT_EQ(All(weeks, {"Load"}), "7 8");
}

TEST_F(VXRAMCursorBucketerTest, ClearingTheTableLeavesTheBucketsUntilTheNextBuild) {
  TOrders table{Row(0, "a", 1, 1), Row(7, "b", 2, 2)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  weeks.Set_RecordID(1);
  table->ClearTable();
  EXPECT_EQ(Ids(weeks), "0 1");
  EXPECT_EQ(weeks.Get_PhysicalIndex(), -1);
  weeks.EndUpdate();
  EXPECT_EQ(Ids(weeks), "");
  EXPECT_EQ(table->Get_AllocatedRows(), 0);
}

TEST_F(VXRAMCursorBucketerTest, DefinitionsAssignOnlyFromTheirKind) {
  const auto defs = Make<TVXBucketFieldDefs>(nullptr);
  const auto other = Make<TVXBucketFieldDefs>(nullptr);
  defs->Add("Load", vxbtAverage);
  EXPECT_EQ(defs->Add("", vxbtMaxValue)->GetDisplayName(), "BucketFieldDef2");
  other->Assign(defs.get());
  other->Assign(Make<TVXRAMFieldDefs>(nullptr).get());  // ignored
  EXPECT_EQ(other->Count(), 2);
  EXPECT_EQ(other->Get_BucketByName("LOAD")->Get_BucketType(), vxbtAverage);
  other->Set_BucketFieldDef(0, defs->Get_BucketFieldDef(1));
  EXPECT_EQ(other->Get_BucketFieldDef(0)->GetDisplayName(), "Load");
}

// -- Quicker ways against the plain one --------------------------------------------------------------------------------

std::string Describe(const TVXRAMCursorBucketer& cursor) {
  std::string text;
  for (std::int32_t i = 0; i < cursor.Get_BucketList()->Count(); ++i) {
    const TVXRAMBucketInfo& bucket = *cursor.Get_BucketList()->Get_Bucket(i);
    const TVXRAMRow* const row = bucket.Get_BucketRecord();
    text += bucket.Get_Key() + "=" + Ids(*bucket.Get_Records()) + " ";
    text.append(reinterpret_cast<const char*>(RowBytes(row)), static_cast<std::size_t>(TVXRAMRowPool::SizeOf(row)));
  }
  return text;
}

TEST_F(VXRAMCursorBucketerTest, BuildingAtOnceEqualsInsertingOneByOne) {
  const char* const fields[] = {"Day", "Item;Day", "Load", "Count;Day", "Late;Item", "Day;Late", "Flag;Rank;Size"};
  const double fractions[] = {0, 0, 0.25, 0.5, 0.999, 0.9999995, 0.9999999999};
  for (std::uint32_t seed = 1; seed <= 60; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 dice(seed);
    const auto below = [&dice](std::uint32_t limit) { return static_cast<std::int32_t>(dice() % limit); };
    TTestTable table({{"Day", vxrftDateTime},
                      {"Item", vxrftString, 6},
                      {"Load", vxrftFloat},
                      {"Count", vxrftInteger},
                      {"Late", vxrftDateTime},
                      {"Flag", vxrftBoolean},
                      {"Rank", vxrftSmallint},
                      {"Size", vxrftWord}});
    const char* const items[] = {"", "a", "A", "1", "11", "\xC3\xA9", "a\xFF"};
    const double loads[] = {0.1 + 0.2, 0.3, -0.0, 0, 1, 11, 1e15, -2.5};
    for (int i = 0; i < 80; ++i) {
      TCells cells{kMonday - 400 + below(800) + fractions[below(7)],
                   items[below(7)],
                   loads[below(8)],
                   below(3) * 10 + below(2),
                   below(3) * 1.5 - 1,
                   below(2) == 0,
                   below(3) - 1,
                   below(2) * 40000};
      for (Variant& cell : cells)
        if (below(8) == 0) cell = Null();
      table.Add(cells);
    }
    TTestBuckets wish{fields[below(7)], static_cast<TVXGroupMode>(below(5)), {}, vxgrOneDay, below(2) == 0};
    for (const char* name : {"Load", "Count"}) wish.folds.emplace_back(name, static_cast<TVXBucketType>(below(6)));
    TVXRAMCursorBucketer& atOnce = table.OpenBuckets(wish);
    TVXRAMCursorBucketer& oneByOne = table.OpenBuckets(wish);
    oneByOne.ClearRecordList();
    for (std::int32_t i = 0; i < table->Get_MainRecordList()->Count(); ++i)
      oneByOne.Get_BucketList()->InsertRecord(static_cast<TVXRAMRow*>(table->Get_MainRecordList()->Items(i)), true);
    EXPECT_EQ(Describe(atOnce), Describe(oneByOne)) << wish.fields << " " << +wish.mode;
    // What is looked up by hash is what a walk over the buckets meets.
    for (std::int32_t i = 0; i < atOnce.Get_BucketList()->Count(); ++i) {
      TVXRAMBucketInfo* const bucket = atOnce.Get_BucketList()->Get_Bucket(i);
      EXPECT_EQ(atOnce.FindBucketInfoByBucketRecord(bucket->Get_BucketRecord()), bucket);
      EXPECT_EQ(atOnce.FindBucketInfoByRecordPointer(static_cast<TVXRAMRow*>(bucket->Get_Records()->Last())), bucket);
    }
  }
}

}  // namespace
}  // namespace vx
