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

// -- Building ---------------------------------------------------------------------------------------------------------

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
               {"A", vxrftString, vxrftString, {{Null()}, {""}, {"a"}, {"A"}}, "2 1 1"},
               {"A;B", vxrftString, vxrftString, {{"ab", "c"}, {"a", "bc"}, {"abc", ""}}, "3"},
               {"A", vxrftFloat, vxrftInteger, {{0.1 + 0.2}, {0.3}, {-0.0}, {0.0}}, "2 2"},  // 15 digits decide
               {"A;B", vxrftBoolean, vxrftWord, {{true, 0}, {Null(), 10}, {false, 10}, {true, Null()}}, "2 2"},
               {"Nothing;a", vxrftInteger, vxrftInteger, {{1}, {2}, {1}}, "2 1"}};  // unknown names add nothing
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

// -- Folding ----------------------------------------------------------------------------------------------------------

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
  EXPECT_EQ(Values(table.OpenBuckets(wish), {"Cost", "Span", "Rank", "Size", "Name", "Due", "Open", "Rest"}),
            "7.5|6|3|3|c|30|False|3");
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
  EXPECT_EQ(Values(week, {"First", "AlsoFirst", "Last", "Sum"}), "4|4|3|1");
  EXPECT_EQ(Values(week, "Shown"), "");  // assigned once, so assigned, though the last row is null
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.ClearFieldValue(4);
  table.Add({kMonday, 5.0, 5, 5.0, Null(), Null()});
  EXPECT_EQ(Values(week, "Sum"), "0");  // no row has a value any more, the status stays
}

// -- In step ----------------------------------------------------------------------------------------------------------

TEST_F(VXRAMCursorBucketerTest, ADeletionByAnotherCursorLeavesTheOldSum) {
  TOrders table{Row(0, "a", 1, 1), Row(1, "a", 2, 2), Row(7, "a", 4, 4)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.DeleteRec();
  EXPECT_EQ(Values(weeks, {"Load", "Item"}), "3 4|a a");
  rows.Set_RecordID(2);
  rows.DeleteRec();  // the only row of its bucket
  EXPECT_EQ(Ids(weeks), "0");
  EXPECT_EQ(table->Get_AllocatedRows(), 1 + 1);
  table.Add(Row(2, "b", 8, 8));
  EXPECT_EQ(Values(weeks, {"Load", "Item"}), "10|b");
}

/// As the cursor's own sort would, all rows anew.
void SortPlainly(TVXRAMCursor& cursor, std::vector<void*>& rows) {
  if (cursor.Get_SortedField().empty()) return;
  const auto list = Make<TVXList>();
  for (void* const row : rows) list->Add(row);
  TVXRAMTable& table = cursor.Table();
  list->SortEx([&table](void* a, void* b) {
    return table.InternalFieldsCompare(static_cast<TVXRAMRow*>(a), static_cast<TVXRAMRow*>(b));
  });
  rows.assign(list->Data(), list->Data() + list->Count());
}

std::string Bytes(const TVXRAMRow* row) {
  return {reinterpret_cast<const char*>(RowBytes(row)), static_cast<std::size_t>(TVXRAMRowPool::SizeOf(row))};
}

/// A table with every kind of fold, sorted by what folds or by what doesn't; changed at random.
class TChangingOrders : public TOrders {
 public:
  explicit TChangingOrders(std::uint32_t seed) : random_(seed), writer_(Open()) {
    for (std::int32_t i = Below(40); i > 0; --i) Insert();
    const char* const sorts[] = {"", "Day", "Load.D;Item", "Day.D;Item;Load", "Count"};
    buckets_ = &OpenBuckets({.fields = Below(2) == 0 ? "Day;Item" : "Item;Day",
                             .mode = Below(2) == 0 ? vxgrOneWeek : vxgrOneMonth,
                             .folds = {{"Load", Fold()}, {"Count", Fold()}},
                             .wish = {.sort = sorts[Below(5)]}});
  }

  std::int32_t Below(std::int32_t end) { return std::uniform_int_distribution(0, end - 1)(random_); }
  TVXRAMCursorBucketer& Buckets() { return *buckets_; }

  std::int32_t Insert() {
    const TCells cells = {Below(9) == 0 ? Null() : Variant(kMonday + Below(60)), Below(2) == 0 ? "a" : "b",
                          Below(5) == 0 ? Null() : Variant(Below(1000) / 7.0), Below(50)};
    return Add(cells);
  }
  void Change() {
    if (MainList().Count() > 0) writer_.Set_RecIndex(Below(MainList().Count()));
    TVXRAMRow* const row = MainList().Count() == 0 ? nullptr : writer_.Get_CurrentRecord();
    const double load = Below(100) / 3.0;
    const std::int32_t action = row == nullptr ? 4 : Below(8);
    if (action == 0) writer_.DeleteRec();
    if (action == 1) SetField(writer_, "Load", load);
    if (action == 2) table->InternalClearFieldValue(row, 3);
    if (action == 3) writer_.UpdateRecWithValues(*Record({kMonday + Below(60), "c", load, 1}));
    if (action == 4) buckets_->Get_BucketFieldDefs()->Get_BucketFieldDef(Below(2))->Set_BucketType(Fold());
    if (action == 5) table->InternalSetFieldStatus(Virtual(), 2, vxfsAssigned);
    if (action == 6) table->InternalSetFieldValue(Virtual(), 2, &load);
    if (action == 7) buckets_->Get_BucketList()->Get_Bucket(0)->UpdateBucketValues();
  }

 private:
  TVXBucketType Fold() { return static_cast<TVXBucketType>(Below(6)); }
  TVXRAMRow* Virtual() { return buckets_->Get_BucketList()->Get_Bucket(0)->Get_BucketRecord(); }

  std::mt19937 random_;
  TVXRAMCursor& writer_;
  TVXRAMCursorBucketer* buckets_ = nullptr;
};

TEST_F(VXRAMCursorBucketerTest, AnInsertionLeavesWhatThePlainWayMakes) {
  for (std::uint32_t seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE(seed);
    TChangingOrders table(seed);
    TVXRAMCursorBucketer& buckets = table.Buckets();
    for (std::int32_t i = 0; i < 60; ++i) {
      if (table.Below(3) == 0) table.Change();
      const TVXList& rows = *buckets.Get_ActiveRecordList();
      std::vector<void*> plain(rows.Data(), rows.Data() + rows.Count());
      table.Insert();
      TVXRAMBucketInfo& touched = *buckets.FindBucketInfoByRecordPointer(table.Row(table.MainList().Count() - 1));
      if (touched.Get_RecordCount() == 1) plain.push_back(touched.Get_BucketRecord());
      SortPlainly(buckets, plain);
      ASSERT_EQ(plain, std::vector<void*>(rows.Data(), rows.Data() + rows.Count()));
      if (table.Below(3) != 0) continue;  // what goes wrong a little may show after the next one
      const std::string after = Bytes(touched.Get_BucketRecord());
      touched.UpdateBucketValues();
      ASSERT_EQ(after, Bytes(touched.Get_BucketRecord()));
    }
  }
}

TEST_F(VXRAMCursorBucketerTest, EditsNeverMoveRowsToOtherBuckets) {
  TOrders table{Row(0, "a", 1, 1), Row(7, "b", 2, 2)};
  TVXRAMCursorBucketer& weeks = table.OpenBuckets({"Day", vxgrOneWeek, {{"Load", vxbtCumulate}}});
  TVXRAMCursor& rows = table.Open();
  rows.Set_RecordID(0);
  rows.UpdateRecWithValues(*table.Record(Row(8, "c", 5, 5)));
  EXPECT_EQ(Values(weeks, {"Day", "Load"}), "45292 45299|1 2");  // nobody was told
  table.Add(Row(1, "d", 10, 10));
  EXPECT_EQ(Values(weeks, {"Day", "Load", "Item"}), "45292 45299|15 2|d b");  // its bucket counts the edited row
  weeks.EndUpdate();
  EXPECT_EQ(Values(weeks, {"Day", "Load"}), "45299 45292|7 10");
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
  EXPECT_EQ(Values(weeks, {"Load", "Count"}), "3|2");  // no source row has a load of 3
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
  table.owner->refreshes = 0;
  weeks.DeleteRec();
  EXPECT_EQ(table.owner->refreshes, 3 * 3);  // the bucket and two rows, told to three cursors each
  EXPECT_EQ(Ids(rows), "2 3");
  EXPECT_EQ(Ids(weeks), "1 2");
  EXPECT_EQ(weeks.Get_PhysicalIndex(), 0);
  EXPECT_EQ(Values(others, "Count"), "15");
  weeks.Set_RecIndex(1);
  weeks.DeleteRec();
  EXPECT_EQ(weeks.Get_PhysicalIndex(), 1);  // beyond the list that is left
  EXPECT_EQ(weeks.Get_RecordID(), 1);
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

}  // namespace
}  // namespace vx
