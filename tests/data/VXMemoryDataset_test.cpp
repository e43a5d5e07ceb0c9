// A table as a data set: record buffers, posts, searches, filters, master and detail, and what others do meanwhile.
#include "data/VXMemoryDataset_CMP.h"

#include <gtest/gtest.h>

#include <list>
#include <set>

#include "data/DataSetKit.h"
#include "data/VXRAMIndexDef_FieldProperty_UNT.h"
#include "platform/component/PropertyEditor.h"
#include "platform/runtime/Text.h"
#include "platform/system/Application.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Shows what only the platform sees.
class TBareSet : public TVXMemoryDataset {
 public:
  using TVXMemoryDataset::ActiveBuffer, TVXMemoryDataset::AllocRecordBuffer, TVXMemoryDataset::FreeRecordBuffer;
  using TVXMemoryDataset::CalcFieldsSize, TVXMemoryDataset::GetBookmarkData, TVXMemoryDataset::GetBookmarkFlag;
  using TVXMemoryDataset::GetRecord, TVXMemoryDataset::GetRecordSize, TVXMemoryDataset::InternalAddRecord;
  using TVXMemoryDataset::InternalGotoBookmark, TVXMemoryDataset::InternalInitRecord;
  using TVXMemoryDataset::Loaded, TVXMemoryDataset::SetBookmarkFlag, TVXMemoryDataset::SetTempState;
  using TVXMemoryDataset::TVXMemoryDataset;
};

/// One field of each type.
TTestTable AllTypes() {
  return TTestTable({{"Bool", vxrftBoolean},
                     {"Money", vxrftCurrency},
                     {"Date", vxrftDateTime},
                     {"Span", vxrftDuration},
                     {"Float", vxrftFloat},
                     {"Int", vxrftInteger},
                     {"Small", vxrftSmallint},
                     {"Text", vxrftString, 6},
                     {"Word", vxrftWord}});
}
constexpr const char* kTypeNames[] = {"Bool", "Money", "Date", "Span", "Float", "Int", "Small", "Text", "Word"};

/// "drill", "saw", "Saw", "nail" with loads 3, 1, 2 and null.
void AddTools(const TTestTable& table) {
  table.Add({"drill", 3});
  table.Add({"saw", 1});
  table.Add({"SAW", 2});
  table.Add({"nail", Null()});
}
TTestTable Tools() { return TTestTable({{"Name", vxrftString, 8}, {"Load", vxrftInteger}}, {"Load"}); }

/// A persistent field of a closed set.
template <class Field>
Field* AddFieldTo(TDataSet& set, const char* name, TFieldKind kind = fkData) {
  auto* const field = New<Field>(&set);
  field->SetFieldName(name);
  field->SetFieldKind(kind);
  field->SetDataSet(&set);
  return field;
}

template <class T>
T At(const char* buffer, std::int32_t offset) {
  T value;
  std::memcpy(&value, buffer + offset, sizeof value);
  return value;
}

// -- Record buffers ---------------------------------------------------------------------------------------------------

TEST(MemoryDataset, LaysOutEachFieldBehindItsStateByteThenFlagAndBookmark) {
  const TTestTable table = AllTypes();
  table.Add({true, 1.5, 45351.25, 90, 2.5, 7, -3, "abc", 9});
  const auto set = OpenSet<TBareSet>(*table);
  const struct {
    TFieldType type;
    std::int32_t size, offset;
  } expected[] = {{ftBoolean, 0, 1},  {ftCurrency, 0, 3},  {ftDateTime, 0, 12}, {ftInteger, 0, 21}, {ftFloat, 0, 26},
                  {ftInteger, 0, 35}, {ftSmallint, 0, 40}, {ftString, 6, 43},   {ftWord, 0, 50}};
  for (std::int32_t i = 0; i < 9; ++i) {
    const TVXMemoryDatasetFieldDef& def = *set->GetEAFieldDef(i + 1);
    EXPECT_EQ(std::tuple(def.DataType(), def.Size(), def.Get_Offset(), def.FieldNo(), def.Required()),
              std::tuple(expected[i].type, expected[i].size, expected[i].offset, i + 1, false))
        << def.Name();
    EXPECT_EQ(set->ActiveBuffer()[def.Get_Offset() - 1], vxmdfsModified) << def.Name();
  }
  EXPECT_EQ(set->GetRecordSize(), 52);
  EXPECT_EQ(At<double>(set->ActiveBuffer(), 12), 45351.25);
  EXPECT_EQ(set->ActiveBuffer()[52], bfCurrent);
  EXPECT_EQ(At<std::int32_t>(set->ActiveBuffer(), 53), set->GetRecordId());

  char* fresh = set->AllocRecordBuffer();
  set->InternalInitRecord(fresh);
  EXPECT_EQ(At<std::int32_t>(fresh, 21), 0x7FFFFFFF) << "an empty duration";
  EXPECT_EQ(At<std::int32_t>(fresh, 53), -1);
  EXPECT_EQ(fresh[20], vxmdfsNull);
  set->FreeRecordBuffer(fresh);

  set->Edit();
  set->FieldByName("Span")->Clear();
  EXPECT_EQ(set->ActiveBuffer()[20], vxmdfsDeleted);
  EXPECT_EQ(At<std::int32_t>(set->ActiveBuffer(), 21), 0x7FFFFFFF);
  EXPECT_TRUE(set->FieldByName("Span")->IsNull());
}

TEST(MemoryDataset, CarriesValuesOfAllTypesBothWays) {
  const TTestTable table = AllTypes();
  const auto set = OpenSet(*table);
  const TCells rows[] = {{true, 1.25, Variant::Date(45351.25), 5400, -2.5, -7, -3, "abc", 65535},
                         {false, -1e9, Variant::Date(-1.75), -1, 1e300, 2147483647, -32768, "", 0},
                         {Null(), Null(), Null(), Null(), Null(), Null(), Null(), Null(), Null()}};
  for (const TCells& row : rows) {
    set->AppendRecord(row);
    TVXRAMCursor& cursor = const_cast<TTestTable&>(table).Open();
    cursor.Set_RecordID(set->GetRecordId());
    for (std::size_t i = 0; i < row.size(); ++i) {
      EXPECT_EQ(set->FieldByName(kTypeNames[i])->Value(), row[i]) << kTypeNames[i];
      EXPECT_EQ(cursor.Get_Value(static_cast<std::int32_t>(i)), row[i]) << kTypeNames[i] << " in the table";
    }
    const_cast<TTestTable&>(table).Close(cursor);
  }
  set->First();
  EditAndPost(*set, "Text", "abcdé");  // six bytes, and no room for the zero
  EXPECT_EQ(set->FieldByName("Text")->GetAsString(), "abcd");
}

TEST(MemoryDataset, CalculatedFieldsStandBehindTheRecord) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = ClosedSet<TBareSet>(*table);
  for (const char* name : {"Name", "Load", "Double"}) {
    TField* const field = name == std::string("Name") ? static_cast<TField*>(New<TStringField>(set.get()))
                                                      : New<TIntegerField>(set.get());
    field->SetFieldName(name);
    if (field->FieldName() == "Name") field->SetSize(20);  // more than the table's text has
    if (field->FieldName() == "Double") field->SetFieldKind(fkCalculated);
    field->SetDataSet(set.get());
  }
  std::string refused;
  set->OnCalcFields = [&](TDataSet* sender) {
    refused = MessageOf<EDatabaseError>([&] { sender->FieldByName("Load")->SetAsInteger(1); });
    const TField& load = *sender->FieldByName("Load");
    if (!load.IsNull()) sender->FieldByName("Double")->SetAsInteger(2 * load.GetAsInteger());
  };
  set->Open();
  EXPECT_EQ(Records(*set), "drill 3 6|saw 1 2|SAW 2 4|nail null null");
  EXPECT_EQ(refused, "Not in EDIT MODES");
  set->First();
  EXPECT_EQ(set->CalcFieldsSize(), 5);
  EXPECT_EQ(set->ActiveBuffer()[14], 1) << "has a value";
  EXPECT_EQ(At<std::int32_t>(set->ActiveBuffer(), 15), 6);
  EXPECT_EQ(At<std::int32_t>(set->ActiveBuffer(), 20), set->GetRecordId());
}

// -- Posts ------------------------------------------------------------------------------------------------------------

TEST(MemoryDataset, APostAppendsAndNullsWhatTheSetLacks) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = OpenSet(*table);
  set->Insert();  // before the first
  EXPECT_EQ(set->GetRecordId(), -1);
  EXPECT_EQ(set->GetRecNo(), 0);
  Put(*set, "Name", "axe");
  EXPECT_EQ(table.MainList().Count(), 4) << "nothing before the post";
  set->Post();
  EXPECT_EQ(set->GetRecNo(), 5);
  EXPECT_EQ(Records(*set), "drill 3|saw 1|SAW 2|nail null|axe null");

  const auto narrow = ClosedSet(*table);
  TStringField* const name = New<TStringField>(narrow.get());
  name->SetFieldName("Name");
  name->SetSize(8);
  name->SetDataSet(narrow.get());
  narrow->Open();
  EditAndPost(*narrow, "Name", "bit");
  EXPECT_EQ(Records(*set), "bit null|saw 1|SAW 2|nail null|axe null") << "Load isn't held: cleared";
}

TEST(MemoryDataset, AnEditOfARecordThatIsGoneTouchesNoOther) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = OpenSet(*table);
  const auto other = OpenSet(*table);
  set->Next();
  other->Next();
  set->Edit();
  Put(*set, "Load", 99);
  other->Delete();
  EXPECT_EQ(set->State(), dsEdit);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->Post(); }), "The record is not there any more");
  set->Cancel();
  EXPECT_EQ(Records(*set), "drill 3|SAW 2|nail null");
}

TEST(MemoryDataset, ADeletionRefreshesTheOthersOnce) {
  const TTestTable table = Tools();
  AddTools(table);
  TOwned<TVXMemoryDataset> sets[] = {OpenSet(*table), OpenSet(*table, "Load.D"), OpenSet(*table)};
  int heard = 0;
  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(sets[1].get());
  sets[1]->Locate("Name", "saw", {});
  source->OnDataChange = [&](TObject*, TField*) { ++heard; };
  sets[2]->Locate("Name", "saw", {});
  sets[0]->Locate("Name", "saw", {});
  sets[0]->Delete();
  EXPECT_EQ(heard, 1);
  for (const auto& set : sets) EXPECT_EQ(Record(*set), Record(*sets[0]));
  for (const auto& set : sets) EXPECT_EQ(Records(*set), Records(*sets[0]));
}

TEST(MemoryDataset, ClearingTheTableEmptiesItsSets) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = OpenSet(*table), pending = OpenSet(*table, "Load");
  const auto buckets = ClosedSet<TVXMemoryDatasetBucketer>(*table);
  buckets->SetBucketedField("Name");
  buckets->Open();
  pending->Append();
  Put(*pending, "Name", "axe");
  table->ClearTable();
  EXPECT_TRUE(set->IsEmpty());
  EXPECT_TRUE(buckets->IsEmpty());
  pending->Post();
  EXPECT_EQ(Records(*pending), "axe null");
  EXPECT_EQ(Records(*set), "axe null");
  EXPECT_EQ(buckets->GetRecordCount(), 1);
}

TEST(MemoryDataset, GoesOnFromItsOwnRecordWhenAnInsertionMovedItsCursor) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto sorted = OpenSet(*table, "Load");
  const auto other = OpenSet(*table);
  sorted->Locate("Load", 2, {});
  other->AppendRecord({"bolt", 0});
  EXPECT_EQ(Record(*sorted), "SAW 2");
  sorted->Next();
  EXPECT_EQ(Record(*sorted), "drill 3");
  EditAndPost(*sorted, "Name", "Drill");
  EXPECT_EQ(Records(*sorted), "bolt 0|saw 1|SAW 2|Drill 3|nail null");
}

TEST(MemoryDataset, ALinkSeesEachRecordOnceWhenAnInsertionMovedTheCursor) {
  TTestTable table({{"Key", vxrftInteger}});
  for (std::int32_t i = 0; i < 6; ++i) table.Add({i});
  const auto sorted = OpenSet(*table, "Key.D");
  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(sorted.get());
  const auto link = Make<TFieldDataLink>();
  link->SetDataSource(source.get());
  sorted->Next();
  OpenSet(*table)->AppendRecord({100});
  link->SetBufferCount(5);
  std::string shown;
  for (std::int32_t i = 0; i < link->RecordCount(); ++i) {
    link->SetActiveRecord(i);
    shown += Record(*sorted) + " ";
  }
  EXPECT_EQ(shown, "5 4 3 2 1 ");
}

// -- Handlers ---------------------------------------------------------------------------------------------------------

TEST(MemoryDataset, NoRecordIsFetchedWhileOneIsRead) {
  const TTestTable table = Tools();
  AddTools(table);
  std::string told;
  const auto go = [&](TDataSet* set) {
    told = MessageOf<EDatabaseError>([&] { static_cast<TVXMemoryDataset*>(set)->SetRecordId(1); });
  };
  const auto set = ClosedSet(*table);
  set->SetOnFilterRecord([&](TDataSet* sender, bool&) { go(sender); });
  set->Open();
  EXPECT_EQ(told, "No record can be fetched in the state dsFilter");
  set->Close();
  set->SetOnFilterRecord(nullptr);
  AddFieldTo<TIntegerField>(*set, "Load");
  AddFieldTo<TIntegerField>(*set, "Twice", fkCalculated);
  set->OnCalcFields = [&](TDataSet* sender) { go(sender); };
  set->Open();
  EXPECT_EQ(told, "No record can be fetched in the state dsCalcFields");
  EXPECT_EQ(Records(*set), "3 null|1 null|2 null|null null");
  set->OnCalcFields = nullptr;

  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(set.get());
  std::int32_t count = 0;
  const std::string endless = "Handlers and operations of the data set call each other without end";
  source->OnDataChange = [&](TObject*, TField*) { set->SetRecordId(count++ % 3); };
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->First(); }), endless);
  source->OnDataChange = nullptr;
  set->AfterScroll = [&](TDataSet* sender) { sender->SetRecNo(1 + count++ % 3); };
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->First(); }), endless);
}

TEST(MemoryDataset, ASetThatIsOpenedAnewWhileARecordIsReadShowsItsNewRecords) {
  for (const bool edits : {true, false}) {
    TTestTable old = Tools();
    const TTestTable fresh = Tools();
    AddTools(old);
    AddTools(fresh);
    const auto set = ClosedSet(*old);
    auto* const load = AddFieldTo<TIntegerField>(*set, "Load");
    AddFieldTo<TIntegerField>(*set, "Twice", fkCalculated);
    set->Open();
    bool first = true;
    set->OnCalcFields = [&](TDataSet*) {
      if (!std::exchange(first, false)) return;
      old.table.reset();
      set->SetRAMTable(&*fresh);
      set->Open();
    };
    if (edits) {
      set->Edit();
      load->SetAsInteger(77);
    } else {
      EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->MoveBy(3); }),
                "The data set was opened anew while a record was read");
    }
    EXPECT_EQ(set->State(), dsBrowse);
    EXPECT_TRUE(set->Bof() && !set->Eof());
    EXPECT_EQ(Record(*set), "3 null");
    EXPECT_EQ(Records(*set), "3 null|1 null|2 null|null null");
  }
}

TEST(MemoryDataset, AFieldKeepsItsSizeWhileItIsValidated) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = ClosedSet(*table);
  auto* const name = AddFieldTo<TStringField>(*set, "Name");
  set->Open();
  set->Edit();
  name->OnValidate = [&](TField* field) {
    set->Close();
    name->SetSize(5000);
    set->Open();
    set->Edit();
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field->GetAsString(); }),
              "Field 'Name' has got another size while it was validated");
  };
  EXPECT_NE(MessageOf<EDatabaseError>([&] { name->SetAsString("axe"); }), "");
  EXPECT_EQ(Records(*set), "drill|saw|SAW|nail");
}

// -- Searches ---------------------------------------------------------------------------------------------------------

TEST(MemoryDataset, LocatesByItsOwnRules) {
  const TTestTable table = Tools();
  for (const char* name : {"saw", "Nail", "SAWS", "saws*", "nail", "drill"}) table.Add({name, 5});
  table.Add({Null(), 7});
  const auto set = OpenSet(*table);
  const TLocateOptions none, upper{loCaseInsensitive}, part{loPartialKey}, both{loCaseInsensitive, loPartialKey};
  const struct {
    std::int32_t from;
    const char* field;
    Variant value;
    TLocateOptions options;
    std::int32_t found;  ///< 0: not, and the set stays
  } cases[] = {
      {4, "Name", "nail", none, 5},  {4, "name", "NAIL", none, 0},
      {4, "Name", "NAIL", upper, 2}, {3, "Load", 7, none, 7},
      {3, "Load", "7", none, 7},     {3, "Name", Null(), none, 7},
      {6, "Name", "saw*", none, 1},  // the star is dropped, the whole text compared
      {6, "Name", "saws*", none, 0}, {6, "Name", "saws**", none, 4},
      {1, "Name", "sa", part, 1},    {2, "Name", "sa*", part, 4},
      {5, "Name", "sa", part, 0},    {1, "Name", "saw", both, 3},  // upper-case text alone begins with it
      {4, "Name", "saw", both, 0},   {4, "Name", "drillx", part, 0},
  };
  for (const auto& each : cases) {
    set->SetRecNo(each.from);
    SCOPED_TRACE(each.value.IsNull() ? "null" : each.value.AsString());
    EXPECT_EQ(set->Locate(each.field, each.value, each.options), each.found != 0);
    EXPECT_EQ(set->GetRecNo(), each.found == 0 ? each.from : each.found);
  }
  set->Last();
  set->Next();
  EXPECT_FALSE(set->Locate("Load", "7", part))
      << "the end was reached: nothing is looked at, not the last record either";
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->Locate("Weight", 1, {}); }).find("Weight") != std::string::npos, true);
  EXPECT_FALSE(set->ControlsDisabled());

  EXPECT_EQ(set->Lookup("Name", "nail", "Load"), Variant(5));
  EXPECT_EQ(set->GetRecNo(), 5) << "stays on it";
  EXPECT_TRUE(set->Lookup("Name", "rope", "Load").IsNull());
  EXPECT_EQ(set->GetRecNo(), 5);
}

// -- Filter -----------------------------------------------------------------------------------------------------------

TEST(MemoryDataset, FiltersByItsHandlerAlone) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = OpenSet(*table);
  int asked = 0;
  std::string nulls;
  const TFilterRecordEvent small = [&](TDataSet* sender, bool& accept) {
    ++asked;
    if (sender->FieldByName("Load")->IsNull()) nulls += "null ";
    accept = sender->FieldByName("Load")->GetAsInteger() < 3;
    if (sender->FieldByName("Name")->GetAsString() == "saw") throw EAbort("counts as accepted so far");
  };
  set->SetOnFilterRecord(small);
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(Records(*set), "drill 3|saw 1|SAW 2|nail null") << "the handler comes after the list was built";
  table.Add({"axe", 0});
  EXPECT_EQ(Records(*set), "saw 1|SAW 2|nail null|axe 0") << "the next rebuild asks it";
  EXPECT_EQ(nulls, "") << "a null counts as a value";
  set->SetFiltered(false);
  EXPECT_EQ(set->RecordCount(), 4);
  set->SetOnFilterRecord(nullptr);
  EXPECT_EQ(set->RecordCount(), 5);

  set->Close();
  set->SetOnFilterRecord(small);
  set->Open();
  EXPECT_EQ(Records(*set), "saw 1|SAW 2|nail null|axe 0") << "at once where it was there before";
}

/// Has memory of its own for its buffers.
class TPoolSet : public TVXMemoryDataset {
 public:
  using TVXMemoryDataset::TVXMemoryDataset;
  char* AllocRecordBuffer() override { return pool_.emplace_back(256, '\0').data(); }
  void FreeRecordBuffer(char*& buffer) override {
    std::erase_if(pool_, [&](const std::vector<char>& each) { return each.data() == buffer; });
    buffer = nullptr;
  }

 private:
  std::list<std::vector<char>> pool_;
};

TEST(MemoryDataset, FiltersInTheBuffersOfItsClass) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = ClosedSet<TPoolSet>(*table);
  set->SetOnFilterRecord(
      [](TDataSet* sender, bool& accept) { accept = sender->FieldByName("Load")->GetAsInteger() > 1; });
  set->Open();
  EXPECT_EQ(Records(*set), "drill 3|SAW 2");
}

TEST(MemoryDataset, AFilterHandlerMayDoItsWorst) {
  const TTestTable table = Tools();
  AddTools(table);
  std::string told;
  Application().OnException = [&](TObject*, const std::exception& error) { told = error.what(); };
  TOwned<TVXMemoryDataset> set = ClosedSet(*table);
  set->SetOnFilterRecord([&](TDataSet* sender, bool&) { sender->Close(); });
  set->Open();
  EXPECT_NE(told, "");
  EXPECT_EQ(set->RecordCount(), 4);
  set->SetOnFilterRecord([&](TDataSet*, bool&) { set.reset(); });
  table.Add({"axe", 0});
  EXPECT_EQ(set, nullptr);
  EXPECT_EQ(table->Get_CursorCount(), 0);
  Application().OnException = nullptr;
}

// -- Master and detail ------------------------------------------------------------------------------------------------

TEST(MemoryDataset, ADetailShowsTheRowsOfItsMaster) {
  TTestTable orders({{"Order", vxrftInteger}});
  TTestTable lines({{"Order", vxrftInteger}, {"Item", vxrftString, 8}});
  for (const Variant& order : {Variant(1), Variant(2), Null(), Variant(3)}) orders.Add({order});
  lines.Add({2, "saw"});
  lines.Add({1, "axe"});
  lines.Add({2, "nail"});
  const auto master = OpenSet(*orders);
  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(master.get());
  const auto detail = ClosedSet(*lines);
  detail->SetMasterSource(source.get());
  detail->SetMasterField("Order");
  detail->SetDetailField("Order");
  detail->Open();
  const char* const all = "2 saw|1 axe|2 nail";
  const char* const expected[] = {"1 axe", "2 saw|2 nail", all, ""};
  for (const char* each : expected) {
    EXPECT_EQ(Records(*detail), each) << "order " << Record(*master);
    master->Next();
  }
  EXPECT_EQ(detail->GetMasterID(), 3);
  detail->SetMasterField("");
  EXPECT_EQ(Records(*detail), all) << "no field, no filter, at once";
  detail->SetMasterField("Order");
  detail->AppendRecord({3, "bolt"});
  EXPECT_EQ(Records(*detail), "3 bolt");
  EditAndPost(*master, "Order", 1);
  EXPECT_EQ(Records(*detail), "1 axe") << "hears of fields, too";
  master->Close();
  EXPECT_EQ(Records(*detail), "1 axe") << "the last filter stays";
  EXPECT_TRUE(detail->GetMasterValue().IsNull());

  master->Open();
  detail->Close();
  detail->SetDetailField("order");  // letter case counts: no filter field
  detail->Open();
  EXPECT_EQ(detail->RecordCount(), 4);
  EXPECT_NE(MessageOf<EDatabaseError>([&] { master->SetMasterSource(source.get()); }), "nothing raised");
  detail->SetMasterSource(nullptr);
  EXPECT_EQ(detail->GetMasterField(), "");
}

TEST(MemoryDataset, AMasterComesToItsEndWhateverItsDetailsSort) {
  for (const char* detailField : {"", "Link"}) {
    TTestTable table({{"Key", vxrftInteger}, {"Link", vxrftInteger}}, {"Key"});
    for (std::int32_t i = 0; i < 47; ++i) table.Add({i * 7 % 5 % 2, i % 3 == 0 ? Null() : Variant(i % 4)});
    const auto master = OpenSet(*table);
    const auto source = Make<TDataSource>(nullptr);
    source->SetDataSet(master.get());
    const TOwned<TVXMemoryDataset> details[] = {ClosedSet(*table, "Key"), ClosedSet(*table, "Link.D")};
    for (const auto& detail : details) {
      detail->SetMasterSource(source.get());
      detail->SetMasterField("Link");
      detail->SetDetailField(detailField);
      detail->Open();
    }
    std::set<std::int32_t> seen;
    for (master->First(); !master->Eof() && seen.insert(master->GetRecordId()).second; master->Next())
      EXPECT_EQ(details[0]->RecNo(), 1);
    EXPECT_TRUE(master->Eof()) << "came back to a record";
    EXPECT_EQ(seen.size(), 47);
  }
}

TEST(MemoryDataset, AMasterValueOfAnotherKindIsToldWithBothFields) {
  TTestTable orders({{"Code", vxrftString, 8}}), lines({{"Order", vxrftInteger}});
  for (const char* code : {"1", "two", "1"}) orders.Add({code});
  lines.Add({1});
  const auto master = OpenSet(*orders);
  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(master.get());
  const auto detail = ClosedSet(*lines);
  detail->SetMasterSource(source.get());
  detail->SetMasterField("Code");
  detail->SetDetailField("Order");
  detail->Open();
  const std::string told = "Detail field 'Order' can't be compared with master field 'Code': ";
  EXPECT_TRUE(MessageOf<EVariantError>([&] { master->Next(); }).starts_with(told));
  EXPECT_EQ(Record(*master), "two");
  EXPECT_TRUE(detail->IsEmpty());
  detail->Close();
  EXPECT_TRUE(MessageOf<EVariantError>([&] { detail->Open(); }).starts_with(told));
  master->Next();
  detail->Open();
  EXPECT_EQ(Records(*detail), "1");
}

// -- Texts ------------------------------------------------------------------------------------------------------------

TEST(MemoryDataset, ShowsAndReadsTexts) {
  const TTestTable table = AllTypes();
  table.Add({true, 1.5, 45351.25, 5400, 1234.5, 7, -3, "abc", 9});
  const auto set = OpenSet(*table);
  const struct {
    const char* field;
    const char* typed;
    const char* shown;
    Variant value;
  } cases[] = {
      {"Span", "90 min", "2 h", 5400},
      {"Span", "", "", Null()},
      {"Date", "2/29/2024 6:00p", "02/29/2024 06:00:00 PM ", Variant::Date(45351.75)},
      {"Date", "", "", Null()},
      {"Bool", "False", "False", false},
      {"Float", "1234.5", "1,234.500000000000000", 1234.5},
  };
  set->Edit();
  for (const auto& each : cases) {
    TField& field = *set->FieldByName(each.field);
    field.SetText(each.typed);
    EXPECT_EQ(field.DisplayText(), each.shown) << each.field;
    EXPECT_EQ(field.Value(), each.value) << each.field << " " << each.typed;
  }
  const std::pair<const char*, std::string> refused[] = {
      {"Span", "-"}, {"Span", "5 sols"}, {"Date", "2/30/2024"}, {"Text", {"a\0b", 3}}, {"Int", {"1\0", 2}}};
  for (const auto& [name, typed] : refused) {
    const std::string before = set->FieldByName(name)->Text();
    EXPECT_NE(Raised([&] { set->FieldByName(name)->SetText(typed); }).find("ield '" + std::string(name) + "'"),
              std::string::npos)
        << typed;
    EXPECT_EQ(set->FieldByName(name)->Text(), before);
  }
  EXPECT_EQ(MessageOf<EDatabaseError>([&] {
              set->FieldByName("Text")->SetAsString({"a\0b", 3});
            }),
            "'a\\0b' is not a text without zero bytes for field 'Text'");
  set->FieldByName("Date")->SetAsDateTime(0);
  EXPECT_EQ(set->FieldByName("Date")->DisplayText(), "") << "though it isn't null";
  EXPECT_FALSE(set->FieldByName("Date")->IsNull());
  set->GetEAFieldDef(4)->Set_Precision(1);
  set->FieldByName("Span")->SetAsInteger(5400);
  EXPECT_EQ(set->FieldByName("Span")->DisplayText(), "1.5 h");

  const auto span = Make<TIntegerField>(nullptr);  // a persistent field that outlives its set
  {
    const auto brief = ClosedSet(*table);
    span->SetFieldName("Span");
    span->SetDataSet(brief.get());
    brief->Open();
    EXPECT_EQ(span->Text(), "2 h");
  }
  EXPECT_EQ(span->Text(), "");
}

// -- Errors and settings ----------------------------------------------------------------------------------------------

TEST(MemoryDataset, TellsWhatIsWrong) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = OpenSet<TBareSet>(*table);
  const auto closed = Make<TVXMemoryDataset>(nullptr);
  char* null = nullptr;
  bool id = false;
  const auto readOnly = [&] {
    set->Edit();
    set->FieldByName("Load")->SetDisplayLabel("The load");
    set->FieldByName("Load")->ReadOnly = true;
    Put(*set, "Load", 1);
  };
  const std::pair<const char*, std::function<void()>> cases[] = {
      {"GetRecord: invalid (nil) buffer", [&] { set->GetRecord(nullptr, gmNext, false); }},
      {"FreeRecordBuffer: invalid (nil) buffer", [&] { set->FreeRecordBuffer(null); }},
      {"InternalAddRecord: invalid (nil) buffer", [&] { set->InternalAddRecord(nullptr, false); }},
      {"GetBookmardData: invalid (nil) buffer", [&] { set->GetBookmarkData(nullptr, &id); }},
      {"GetBookmarkFlag: invalid (nil) buffer", [&] { set->GetBookmarkFlag(nullptr); }},
      {"SetBookmarkFlag: invalid (nil) buffer", [&] { set->SetBookmarkFlag(nullptr, bfEOF); }},
      {"InternalGoToBookmark: invalid (nil) bookmark", [&] { set->InternalGotoBookmark(nullptr); }},
      {"Invalid field number", [&] { set->GetEAFieldDef(3); }},
      {"Not in EDIT MODES", [&] { Put(*set, "Load", 1); }},
      {"Field Read-Only :The load", readOnly},
      {"missing property : RAMTable", [&] { closed->Open(); }},
      {"Not possible while the data set is closed", [&] { closed->RecNo(); }},
      {"Not possible while the data set is open", [&] { set->SetReadOnly(true); }},
      {"Not possible while the data set is open", [&] { set->SetRAMTable(nullptr); }},
  };
  for (const auto& [text, call] : cases) EXPECT_EQ(MessageOf<EDatabaseError>(call), text);
  EXPECT_EQ(set->GetEAFieldDef(0), nullptr);
  set->Cancel();
  while (!set->IsEmpty()) set->Delete();
  EXPECT_EQ(set->GetRecordId(), -1);
  EXPECT_EQ(set->GetRecNo(), 0);
  EXPECT_EQ(set->CompareBookmarks(TBookmark("1234"), TBookmark("5678")), 0);
  EXPECT_FALSE(set->BookmarkValid(TBookmark("\xff\xff\xff\xff")));
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->GotoBookmark(TBookmark("\xff\xff\xff\xff")); }), "Record not found");

  const auto wide = Make<TVXRAMTable>(nullptr);
  AddField(*wide, "Novel", vxrftString, 65'530);
  closed->SetRAMTable(wide.get());
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { closed->Open(); }),
            "Field 'Novel' ends behind the 65530 bytes that the fields of a record may have");
  wide->Get_FieldDefs()->Get_Item(0)->Set_ByteSize(65'529);
  closed->Open();
  closed->AppendRecord({std::string(65'528, 'x')});
  EXPECT_EQ(closed->Fields(0)->GetAsString().size(), 65'528);
}

TEST(MemoryDataset, PostsWhileAnIndexHasLostItsField) {
  TTestTable table({{"Name", vxrftString, 8}, {"Load", vxrftInteger}}, {"Load"});
  AddTools(table);
  const auto set = ClosedSet(*table);
  set->SetIndexName("Load");
  set->Open();
  table->Get_FieldDefs()->Delete(1);
  set->AppendRecord({"axe"});
  set->First();
  EditAndPost(*set, "Name", "bit");
  EXPECT_EQ(Records(*set), "bit null|SAW null|drill null|nail null|axe null");
  table->Get_Indices()->Add();  // never had one
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { set->AppendRecord({"rasp"}); }), "Index 1 of the table has no field");
  EXPECT_EQ(table.MainList().Count(), 5);
}

TEST(MemoryDataset, SettingsOfOpenAndClosedSets) {
  const TTestTable table = Tools();
  AddTools(table);
  const auto set = ClosedSet<TBareSet>(*table);
  set->SetIndexName("load");
  EXPECT_EQ(set->GetIndexName(), "") << "letter case counts, and no match clears the name";
  set->SetIndexName("Load");
  set->Open();
  EXPECT_EQ(Records(*set), "saw 1|SAW 2|drill 3|nail null");
  set->SetRecNo(2);
  set->Set_CursorOrder(vxrcoDescending);  // turns round where it stands
  set->Refresh();
  EXPECT_EQ(set->GetRecNo(), 3);
  set->Next();
  EXPECT_EQ(Record(*set), "saw 1");
  set->SetSortedField("Name");
  EXPECT_EQ(Record(*set), "saw 1") << "still on it";
  set->SetFieldIndex(set->FieldByName("Name"));  // number 1 as a position: the second field
  EXPECT_EQ(set->GetIndexName(), "Load");
  EXPECT_EQ(MessageOf<EListError>([&] { set->SetFieldIndex(set->FieldByName("Load")); }),
            "List index out of bounds (2)");
  set->Close();
  table->Get_Indices()->Clear();
  EXPECT_EQ(set->GetIndexNumber(), -1) << "freed definitions are forgotten";

  // A stream's set opens before its index is looked for.
  table->Get_Indices()->Add()->Set_FieldName("Load");
  const auto streamed = Make<TBareSet>(nullptr);
  TLoading loading(*streamed);
  streamed->SetActive(true);
  streamed->SetRAMTable(&*table);
  streamed->SetIndexName("Load");
  loading.Finish();
  EXPECT_EQ(streamed->GetIndexNumber(), 0);
  EXPECT_EQ(streamed->RecordCount(), 4) << "of the table itself: the new index is empty";
}

TEST(MemoryDataset, OutlivesItsTableAndItsDefinitions) {
  auto table =
      std::make_unique<TTestTable>(std::initializer_list<TTestField>{{"Name", vxrftString, 8}, {"Load", vxrftInteger}});
  AddTools(*table);
  TOwned<TVXMemoryDataset> sets[] = {OpenSet(**table), OpenSet(**table)};
  sets[0]->Edit();
  EXPECT_NE(Raised([&] { table->table.get()->Free(); }), "nothing") << "two cursors";
  EXPECT_FALSE(sets[0]->GetActive()) << "its cursor was closed before that failed";
  sets[0]->Open();
  EXPECT_EQ(Records(*sets[0]), Records(*sets[1]));

  // Definitions stay open to change while the base index is empty.
  (*table)->Get_FieldDefs()->Get_Item(0)->Set_ByteSize(3);
  EXPECT_EQ(sets[0]->RecordCount(), 4);
  (*table)->Get_FieldDefs()->Delete(1);
  sets[0]->First();
  EXPECT_TRUE(sets[0]->FieldByName("Load")->IsNull());
  EditAndPost(*sets[0], "Name", "bit");
  EXPECT_EQ(sets[0]->FieldByName("Name")->GetAsString(), "bi") << "cut as the row is now";
  EXPECT_NE(Raised([&] { EditAndPost(*sets[0], "Load", 5); }).find("has no field Load of that type"),
            std::string::npos);
  sets[0]->Cancel();

  sets[1]->BeforeClose = [](TDataSet*) { throw Exception("never"); };
  table.reset();
  for (const auto& set : sets) {
    EXPECT_FALSE(set->GetActive());
    EXPECT_EQ(set->GetRAMTable(), nullptr);
  }
}

TEST(MemoryDataset, OffersNames) {
  VXMemoryDataset_CMP::Register();
  VXRAMIndexDef_FieldProperty_UNT::Register();
  const TTestTable table = Tools();
  const auto master = ClosedSet(*table);
  const auto set = ClosedSet(*table);
  const auto source = Make<TDataSource>(nullptr);
  source->SetDataSet(master.get());
  set->SetMasterSource(source.get());
  const auto names = [&](TPersistent* object, const char* property) {
    std::string text;
    for (const std::string& name : FindPropertyEditor(object, property)->GetValues(*object)) text += name + " ";
    return text;
  };
  for (const char* property : {"MasterField", "DetailField", "SortedField"})
    EXPECT_EQ(names(set.get(), property), "Name Load ") << property;
  EXPECT_EQ(names(set.get(), "IndexName"), "Load ");
  EXPECT_EQ(names(table->Get_Indices()->Get_Item(0), "FieldName"), "Name Load ");
  EXPECT_EQ(FindPropertyEditor(table->Get_Indices()->Get_Item(0), "FieldName")->GetVisualValue(""), "(Unassigned)");
  EXPECT_EQ(FindPropertyEditor(set.get(), "Tag"), nullptr);
}

}  // namespace
}  // namespace vx
