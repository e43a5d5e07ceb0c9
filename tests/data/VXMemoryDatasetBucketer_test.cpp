// Groups of rows as records of a data set.
#include "data/VXMemoryDatasetBucketer_CMP.h"

#include <gtest/gtest.h>

#include "data/DataSetKit.h"
#include "platform/component/PropertyEditor.h"
#include "platform/runtime/DateTime.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Two days of one week, one of the next.
TTestTable Days() { return TTestTable({{"Date", vxrftDateTime}, {"Load", vxrftInteger}}); }
void AddDays(const TTestTable& table) {
  const TDateTime monday = EncodeDate(2026, 3, 2);
  table.Add({Variant::Date(monday), 1});
  table.Add({Variant::Date(monday + 1), 2});
  table.Add({Variant::Date(monday + 7), 4});
}

TOwned<TVXMemoryDatasetBucketer> Buckets(const TTestTable& table, TVXGroupMode mode, const char* fields = "Date") {
  auto set = ClosedSet<TVXMemoryDatasetBucketer>(*table);
  set->SetBucketedField(fields);
  set->SetGroupMode(mode);
  set->Get_BucketFieldDefs()->Add("Load", vxbtCumulate);
  return set;
}

std::string Loads(TDataSet& set) {
  std::string text;
  for (set.First(); !set.Eof(); set.Next()) text += set.FieldByName("Load")->GetAsString() + " ";
  return text;
}

TEST(MemoryDatasetBucketer, ShowsBucketsAsRecords) {
  const TTestTable table = Days();
  AddDays(table);
  const struct {
    TVXGroupMode mode;
    const char* fields;
    bool isDateTime;
    const char* loads;
  } cases[] = {
      {vxgrOneDay, "Date", true, "1 2 4 "}, {vxgrOneWeek, "Date", true, "3 4 "},
      {vxgrOneMonth, "Date", true, "7 "},   {vxgrOneWeek, "Date", false, "3 4 "},  // changes nothing
      {vxgrOneWeek, "", true, "7 "},  // all rows in one bucket of empty key
  };
  for (const auto& each : cases) {
    const auto set = Buckets(table, each.mode, each.fields);
    set->SetIsDateTime(each.isDateTime);
    set->Open();
    EXPECT_EQ(Loads(*set), each.loads);
    EXPECT_EQ(static_cast<std::size_t>(set->RecordCount()), test::Cut(each.loads).size()) << "groups, not rows";
    EXPECT_FALSE(set->Get_CursorBucketer()->Get_IsDateTime()) << "never arrives";
  }
}

TEST(MemoryDatasetBucketer, FixesItsSettingsWhileOpen) {
  const TTestTable table = Days();
  AddDays(table);
  const auto set = Buckets(table, vxgrOneWeek);
  set->Open();
  const std::function<void()> refused[] = {[&] { set->SetGroupMode(vxgrOneDay); },
                                           [&] { set->SetBucketedField("Load"); }, [&] { set->SetIsDateTime(false); },
                                           [&] { set->SetShowStartOfGroup(false); }};
  for (const auto& call : refused)
    EXPECT_EQ(MessageOf<EDatabaseError>(call), "Not possible while the data set is open");
  EXPECT_EQ(set->GetGroupMode(), vxgrOneWeek);

  EditAndPost(*set, "Load", 50);
  EXPECT_EQ(Loads(*set), "3 4 ") << "folded away again: another grouping than that of the rows";
  set->SetBasedGroupMode(vxgrOneWeek);
  set->First();
  EditAndPost(*set, "Load", 50);
  EXPECT_EQ(Loads(*set), "52 4 ") << "went to the first source row";
  set->Close();
  EXPECT_EQ(set->Get_CursorBucketer(), nullptr);
  set->SetGroupMode(vxgrOneDay);
  set->Open();
  EXPECT_EQ(Loads(*set), "50 2 4 ");
}

TEST(MemoryDatasetBucketer, InsertsDeletesAndBrackets) {
  const TTestTable table = Days();
  AddDays(table);
  const auto set = Buckets(table, vxgrOneWeek);
  set->SetSortedField("Date");
  set->Open();
  set->AppendRecord({Variant::Date(EncodeDate(2026, 3, 10)), 8});
  EXPECT_EQ(Loads(*set), "3 12 ");
  set->First();
  set->Delete();
  EXPECT_EQ(Loads(*set), "12 ");
  EXPECT_EQ(table.MainList().Count(), 2) << "with all its source rows";

  set->BeginUpdate();
  table.Add({Variant::Date(EncodeDate(2026, 3, 3)), 16});
  EXPECT_EQ(set->RecordCount(), 1);
  set->EndUpdate();
  set->Refresh();
  EXPECT_EQ(Loads(*set), "16 12 ");
}

/// Puts a plain cursor where a bucketer is expected.
class TPlainBuckets : public TVXMemoryDatasetBucketer {
 public:
  using TVXMemoryDatasetBucketer::TVXMemoryDatasetBucketer;
  void Take(TVXRAMCursor* cursor) { SetCursor(cursor); }
};

TEST(MemoryDatasetBucketer, NeedsABucketerAndOffersNames) {
  TTestTable table = Days();
  const auto set = ClosedSet<TPlainBuckets>(*table);
  set->Take(&table.Open());
  EXPECT_EQ(ErrorOf([&] { set->Get_CursorBucketer(); }), "EInvalidCast");
  set->Take(nullptr);
  VXMemoryDatasetBucketer_CMP::Register();
  TVXBucketFieldDef* const def = set->Get_BucketFieldDefs()->Add("", vxbtAverage);
  const std::vector<std::string> names = {"Date", "Load"};
  EXPECT_EQ(FindPropertyEditor(set.get(), "BucketedField")->GetValues(*set), names);
  EXPECT_EQ(FindPropertyEditor(def, "FieldName")->GetValues(*def), names);
}

}  // namespace
}  // namespace vx
