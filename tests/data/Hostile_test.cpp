// What a careless or hostile program may do to the tables: it must get an answer or an error, and usable objects
// afterwards; never a crash, a hang or a leak (the sanitizers' build says so).

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "TableKit.h"
#include "model/Dice.h"

namespace vx {
namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

enum TField { kNumber, kDay, kText, kFieldCount };

/// A table with an index, rows, and four kinds of cursors whose owner and filters run `attack` once when armed.
struct TScene : TTestTable {
  TScene() : TTestTable({{"Number", vxrftInteger}, {"Day", vxrftDateTime}, {"Text", vxrftString, 8}}, {"Number"}) {
    owner->onRefresh = [this] { Strike(); };
    for (std::int32_t i = 0; i < 6; ++i) AddRow(i);
    plain = &Open();
    indexed = &Open({.sort = "Text.D;Number", .index = 0, .order = vxrcoDescending});
    filtered = &Open({.index = 0, .filterField = "Number", .filterValue = Null()});
    filtered->SetOnFilterRecord([this](TVXRAMRow*, std::int32_t) { return Strike(); });
    bucketer = OpenGroups("Day", vxgrOneDay);
  }

  void AddRow(std::int32_t number, double day = 45000) { Add({number, day + number % 3, "row"}); }
  TVXRAMCursorBucketer* OpenGroups(const std::string& fields, TVXGroupMode mode) {
    return &OpenBuckets({fields, mode, {{"Number", vxbtAverage}}, vxgrOneDay, true, {.sort = "Number"}});
  }
  std::vector<TVXRAMCursor*> Cursors() const { return {plain, indexed, filtered, bucketer}; }
  void FreeTable() {
    bucketer = nullptr;
    plain = indexed = filtered = nullptr;
    table.reset();
  }
  bool Strike() {
    if (armed > 0 && armed-- > 0) attack(*this);
    return true;
  }

  TVXRAMCursor* plain = nullptr;
  TVXRAMCursor* indexed = nullptr;
  TVXRAMCursor* filtered = nullptr;
  TVXRAMCursorBucketer* bucketer = nullptr;
  std::function<void(TScene&)> attack;
  std::int32_t armed = 0;
};

struct TAct {
  const char* name;
  std::function<void(TScene&)> run;
};

// -- Reentrancy -------------------------------------------------------------------------------------------------------

/// What a listener may do while it is told. Each leaves the scene's pointers true.
const std::vector<TAct>& Attacks() {
  static const std::vector<TAct> attacks = {
      {"close indexed", [](TScene& s) { s->CloseCursor(s.indexed); }},
      {"close filtered", [](TScene& s) { s->CloseCursor(s.filtered); }},
      {"close bucketer", [](TScene& s) { s->CloseCursor(s.bucketer); }},
      {"close all, open others",
       [](TScene& s) {
         for (TVXRAMCursor* cursor : s.Cursors()) s->CloseCursor(cursor);
         s.indexed = s.filtered = nullptr;
         s.plain = &s.Open();
         s.bucketer = s.OpenGroups("Text;Day", vxgrOneWeek);
       }},
      {"free table", [](TScene& s) { s.FreeTable(); }},
      {"free owner", [](TScene& s) { s.owner.reset(); }},
      {"free index definition", [](TScene& s) { s->Get_Indices()->Clear(); }},
      {"free all fields", [](TScene& s) { s->Get_FieldDefs()->Clear(); }},
      {"move the text field first", [](TScene& s) { s.Field("Text")->SetIndex(0); }},
      {"add a field", [](TScene& s) { AddField(*s.table, "More", vxrftFloat); }},
      {"insert", [](TScene& s) { s.AddRow(3); }},
      {"insert at the cursor", [](TScene& s) { Need(s.plain, "cursor").InsertRecWithValues(*s.Record({}), false); }},
      {"delete the first row", [](TScene& s) { s->DeleteRecord(s.plain, s.Row(0)); }},
      {"clear", [](TScene& s) { s->ClearTable(); }},
      {"rebuild buckets", [](TScene& s) { Need(s.bucketer, "cursor").EndUpdate(); }},
      {"free a bucket", [](TScene& s) { Need(s.bucketer, "cursor").Get_BucketList()->Get_Bucket(0)->Free(); }},
      {"drop the filter", [](TScene& s) { Need(s.filtered, "cursor").SetOnFilterRecord(nullptr); }},
      {"raise", [](TScene&) { throw EAbort("listener"); }},
      {"for ever", [](TScene& s) { s.AddRow(s.armed = 99999); }},
  };
  return attacks;
}

/// What is under way when the listeners strike.
const std::vector<TAct>& Operations() {
  static const std::vector<TAct> operations = {
      {"insertion", [](TScene& s) { s.plain->InsertRecWithValues(*s.Record({}), true); }},
      {"insertion on an index", [](TScene& s) { s.indexed->InsertRecWithValues(*s.Record({}), false); }},
      {"empty row", [](TScene& s) { s.indexed->InsertRec(); }},
      {"deletion", [](TScene& s) { s.plain->DeleteRec(); }},
      {"deletion of a bucket", [](TScene& s) { s.bucketer->DeleteRec(); }},
      {"edit", [](TScene& s) { s.plain->UpdateRecWithValues(*s.Record({})); }},
      {"edit of a bucket", [](TScene& s) { s.bucketer->UpdateRecWithValues(*s.Record({})); }},
      {"field edit",
       [](TScene& s) {
         const std::int32_t value = 9;
         s.filtered->SetFieldValue(kNumber, &value);
       }},
      {"index rebuild", [](TScene& s) { s.Index(0).ReBuild(); }},
      {"filter change", [](TScene& s) { s.filtered->Get_Filter()->Set_Value(2); }},
      {"record filter",
       [](TScene& s) { s.filtered->SetOnFilterRecord([&s](TVXRAMRow*, std::int32_t) { return s.Strike(); }); }},
      {"filter of a bucketer",
       [](TScene& s) { s.bucketer->SetOnFilterRecord([&s](TVXRAMRow*, std::int32_t) { return s.Strike(); }); }},
      {"clearing", [](TScene& s) { s->ClearTable(); }},
  };
  return operations;
}

/// The scene still works: everything that is left can be walked, changed, closed.
void CheckUsable(TScene& scene) {
  scene.armed = 0;
  if (scene.table == nullptr) return;
  EXPECT_EQ(scene->CheckRows(), "");
  if (scene.owner == nullptr) return;
  for (TVXRAMCursor* const cursor : scene.Cursors()) {
    if (cursor == nullptr) continue;
    for (cursor->GoToFirstRec(); cursor->GoToNextRec() == kDone;) cursor->Get_RecordID();
    ErrorOf([&] { cursor->EndUpdate(); });
    ErrorOf([&] { cursor->DeleteRec(); });
  }
  if (scene->Get_FieldDefs()->Count() == kFieldCount && scene->Get_RecCount() == 0) ErrorOf([&] { scene.AddRow(5); });
  scene->ClearTable();
  EXPECT_EQ(scene->CheckRows(), "");
  EXPECT_EQ(scene->Get_MainRecordList()->Count(), 0);
}

TEST(Hostile, ListenersMayDoAnythingAtAnyTime) {
  for (const TAct& operation : Operations())
    for (const TAct& attack : Attacks())
      for (const std::int32_t times : {1, 3}) {
        SCOPED_TRACE(std::string(operation.name) + " / " + attack.name + " x " + std::to_string(times));
        TScene scene;
        scene.attack = attack.run;
        scene.armed = times;
        ErrorOf([&] { operation.run(scene); });
        CheckUsable(scene);
      }
}

/// A cursor that does something while it is made, or while it is freed.
class TRestlessCursor : public TVXRAMCursor {
 public:
  using TVXRAMCursor::TVXRAMCursor;
  void AfterConstruction() override {
    TVXRAMCursor::AfterConstruction();
    if (whenMade) whenMade();
  }
  void BeforeDestruction() override {
    if (whenFreed) std::exchange(whenFreed, nullptr)();
  }
  static inline std::function<void()> whenMade, whenFreed;
};

TEST(Hostile, CursorsMayEndTheirTableWhileTheyAreMadeOrFreed) {
  TVXRAMCursorDesc wish(nullptr, 0, vxrcoAscending, "", nullptr, Variant());
  const auto restless = TClassOf<TVXRAMCursor>::Of<TRestlessCursor>();
  TScene scene;
  TVXRAMCursor* cursor = nullptr;
  const auto open = [&] { return ErrorOf([&] { scene->OpenCursor(restless, &wish, cursor); }); };

  TRestlessCursor::whenMade = [] { throw EAbort("no"); };
  EXPECT_EQ(open(), "EAbort");
  EXPECT_EQ(scene->Get_CursorCount(), 4);
  TRestlessCursor::whenMade = [&] { scene->Get_Indices()->Clear(); };
  EXPECT_EQ(open(), "");
  EXPECT_EQ(cursor->Get_InternalRecordList(), scene->Get_MainRecordList());  // its index has gone already
  TRestlessCursor::whenFreed = [&] { scene.FreeTable(); };
  cursor->Free();
  EXPECT_EQ(scene.table, nullptr);

  TScene other;
  TRestlessCursor::whenMade = [&] { other.FreeTable(); };
  EXPECT_EQ(ErrorOf([&] { other->OpenCursor(restless, &wish, cursor); }), "EInvalidOperation");
  TRestlessCursor::whenMade = nullptr;

  auto table = Make<TVXRAMTable>(nullptr);  // not opened by the table, and outlives it
  wish.IndexNumber = -1;
  const auto stray = Make<TVXRAMCursor>(table.get(), nullptr, &wish);
  table.reset();
  EXPECT_EQ(stray->Get_RecordCount(), 0);
}

// -- Layouts that change under the rows -------------------------------------------------------------------------------

TEST(Hostile, RowsOutliveAnyChangeOfTheirLayout) {
  const std::vector<TAct> changes = {
      {"field added", [](TScene& s) { AddField(*s.table, "More", vxrftFloat); }},
      {"field freed", [](TScene& s) { s->Get_FieldDefs()->Delete(kNumber); }},
      {"all freed", [](TScene& s) { s->Get_FieldDefs()->Clear(); }},
      {"text without room", [](TScene& s) { s.Field("Text")->Set_ByteSize(0); }},
      {"greatest size", [](TScene& s) { s.Field("Text")->Set_ByteSize(kMost); }},
      {"fields before the row",  // the second field's status byte would lie before the row itself
       [](TScene& s) {
         s.Field("Text")->SetIndex(0);
         s.Field("Text")->Set_ByteSize(-7);
       }},
      {"no type", [](TScene& s) { s.Field("Number")->Set_DataType(static_cast<TVXRAMFieldType>(99)); }},
      {"a date of one byte",
       [](TScene& s) {
         TLoading loading(*s.table);
         s.Field("Day")->Set_ByteSize(1);
       }},
      {"moved to another table",
       [](TScene& s) {
         const auto other = Make<TVXRAMTable>(nullptr);
         s.Field("Number")->SetCollection(other->Get_FieldDefs());
         s->Get_Indices()->Get_Item(0)->SetCollection(other->Get_Indices());
         ErrorOf([&] { other->Get_Indices()->Get_Item(0)->Get_Index()->ReBuild(); });
       }},
  };
  for (const TAct& change : changes) {
    SCOPED_TRACE(change.name);
    TScene scene;
    const TOwnedRecordStruct older = scene->NewRecord();
    for (std::int32_t i = 0; i < older->FieldCount; ++i) older->Field(i).IsNull = false;
    older->Field(kText).StringSize = -1;
    ErrorOf([&] { change.run(scene); });
    const std::vector<std::uint8_t> zeros(4096);
    const TVXRAMRow* const row = scene.Row(0);
    const std::int32_t id = scene->InternalGetRecordID(row);
    for (TVXRAMCursor* const cursor : scene.Cursors()) {
      for (std::int32_t field = -1; field <= kFieldCount + 1; ++field) {
        ErrorOf([&] { cursor->SetFieldValue(field, zeros.data()); });
        ErrorOf([&] { cursor->ClearFieldValue(field); });
        ErrorOf([&] { cursor->Get_Value(field); });
      }
      ErrorOf([&] { cursor->UpdateRecWithValues(*older); });
      ErrorOf([&] { cursor->UpdateRecWithValues(*scene.Record({})); });
      ErrorOf([&] { cursor->Sort("Text;Day.D;Number"); });
      ErrorOf([&] { cursor->InsertRecWithValues(*older, true); });
      ErrorOf([&] { cursor->InsertRecWithValues(*scene.Record({}), true); });
      ErrorOf([&] { cursor->EndUpdate(); });
    }
    EXPECT_EQ(scene->InternalGetRecordID(row), id);  // no write has gone into a row's head
    CheckUsable(scene);
  }
}

// -- Odd orders of calls ----------------------------------------------------------------------------------------------

TEST(Hostile, RowsAreReleasedOnce) {
  TScene scene;
  TVXRAMTable& table = *scene.table;
  TVXRAMRow* const row = table.InternalAllocRecordBuffer();
  table.InternalInitRecord(row);
  const std::int64_t rows = table.Get_AllocatedRows();
  table.InternalFreeRecordBuffer(row);
  EXPECT_EQ(ErrorOf([&] { table.InternalFreeRecordBuffer(row); }), "EInvalidOperation");
  EXPECT_EQ(ErrorOf([&] { table.InternalInitRecord(row); }), "EInvalidOperation");
  EXPECT_EQ(ErrorOf([&] { table.InternalSetRecordId(row, 7); }), "EInvalidOperation");
  EXPECT_EQ(ErrorOf([&] { table.InternalSetFieldStatus(row, kNumber, vxfsAssigned); }), "ERAMTableError");
  table.InternalClearAllFieldValues(row);
  EXPECT_EQ(table.InternalGetFieldStatus(row, kNumber), vxfsNull);
  table.DeleteRecord(nullptr, row);
  EXPECT_EQ(table.Get_AllocatedRows(), rows - 1);
  TScene other;
  EXPECT_EQ(ErrorOf([&] { table.InternalFreeRecordBuffer(other.Row(0)); }), "EInvalidOperation");
  table.InternalFreeRecordBuffer(scene.Row(0));  // listed: the list isn't told, and doesn't release it again
  EXPECT_NE(table.CheckRows(), "");
  table.ClearTable();
  EXPECT_EQ(table.CheckRows(), "");
}

TEST(Hostile, MissingThingsAreNamed) {
  TScene scene;
  TVXRAMTable& table = *scene.table;
  std::int32_t size = 100;
  bool isNull = false;
  TVXRAMCursor* cursor = nullptr;
  TVXRAMUserIndex& index = scene.Index(0);
  TVXRecordStruct nothing;
  nothing.FieldCount = kFieldCount;
  const std::pair<const char*, std::function<void()>> calls[] = {
      {"description of the cursor", [&] { table.OpenCursor(nullptr, nullptr, cursor); }},
      {"row", [&] { table.InternalInitRecord(nullptr); }},
      {"row", [&] { scene.bucketer->Get_BucketList()->InsertRecord(nullptr, true); }},
      {"row", [&] { scene.bucketer->RecordInsertionNotification(nullptr); }},
      {"buffer of the value", [&] { scene.plain->GetFieldValue(kNumber, nullptr, size, isNull); }},
      {"buffer of the value", [&] { scene.plain->SetFieldValue(kNumber, nullptr); }},
      {"key", [&] { index.LocateFirst(nullptr); }},
      {"field of the index", [&] { Make<TVXRAMIndexDef>(nullptr)->Get_Index()->ReBuild(); }},
      {"table of the index", [&] { Make<TVXRAMIndexDef>(nullptr)->Get_Index()->Insert(scene.Row(0)); }},
      {"owner of the field definition", [&] { Make<TVXRAMFieldDef>(nullptr)->Get_Slot(); }},
      {"list of the bucket", [&] { Make<TVXRAMBucketInfo>(nullptr)->UpdateBucketValues(); }},
      {"cursor of the buckets", [&] { Make<TVXRAMBucketList>(nullptr)->Add("key"); }},
      {"record structure has no field 0", [&] { scene.plain->UpdateRecWithValues(nothing); }},
      {"index of the cursor", [&] { scene.plain->InsertRec(); }}};
  for (const auto& [what, call] : calls)
    EXPECT_EQ(Raised(call), std::string("ENilAccess: Access to a missing object: ") + what);
  index.Add(nullptr);  // an entry without a row is dropped by the next rebuild
  EXPECT_EQ(ErrorOf([&] { scene.indexed->Sort("Text"); }), "ENilAccess");
  EXPECT_EQ(scene.indexed->Get_RecIndexById(kMost), 7);
  index.ReBuild();
  EXPECT_EQ(table.CheckRows(), "");
  CheckUsable(scene);
}

TEST(Hostile, AnyPositionCanBeStored) {
  TScene scene;
  for (TVXRAMCursor* const cursor : scene.Cursors())
    for (const std::int32_t position : {kLeast, kLeast + 1, -2, -1, 0, 1, 5, 6, 7, kMost - 1, kMost}) {
      cursor->Set_RecIndex(position);
      EXPECT_EQ(cursor->Get_RecIndex(), position);
      EXPECT_NE(cursor->Get_CurrentRecord(), nullptr);
      cursor->GoToNextRec();
      cursor->Set_RecIndex(position);
      cursor->DeleteRec();
      EXPECT_NE(cursor->Get_CurrentRecord(), nullptr);
      scene.AddRow(1);
      scene.AddRow(2);
    }
  EXPECT_EQ(scene->CheckRows(), "");
}

TEST(Hostile, AClearedTableLeavesItsBucketsReadable) {
  for (const TAct& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    TScene scene;
    scene->ClearTable();
    EXPECT_EQ(scene.bucketer->Get_RecordCount(), 3);
    scene.bucketer->Get_BucketList()->UpdateAllBuckets();
    ErrorOf([&] { operation.run(scene); });
    const TOwned<TVXRAMBucketInfo> stray(scene.bucketer->Get_BucketList()->Get_Bucket(0));
    stray->SetCollection(nullptr);
    for (std::int32_t i = 0; i < 4; ++i) ErrorOf([&] { scene.bucketer->DeleteRec(); });
    CheckUsable(scene);
  }
}

// -- Sizes ------------------------------------------------------------------------------------------------------------

TEST(Hostile, SortKeysOfAnyLengthAndShape) {
  TScene scene;
  std::string thousands;
  for (std::int32_t i = 0; i < 100000; ++i) thousands += i % 2 == 0 ? "Number.D;" : "nothing;";
  for (const std::string& keys : {std::string(100000, ';'), std::string("..;.D;;"), std::string("Text.DD;Day."),
                                  thousands, std::string(1000000, 'x')}) {
    scene.plain->Sort(keys);
    scene.bucketer->SetBucketedFields(keys.substr(0, 20000));
    ErrorOf([&] { scene.bucketer->EndUpdate(); });
    scene.bucketer->Get_CanUseIndex(keys);
  }
  scene.plain->Sort("Number.D;Number.A;" + thousands);  // the first order counts
  EXPECT_EQ(scene.plain->Get_Value(kNumber).AsInteger(), 5);
}

TEST(Hostile, ComparesMayContradictThemselves) {
  naive::TDice dice(20261122);
  std::array<std::int32_t, 200> items{};
  for (std::int32_t round = 0; round < 400; ++round) {
    const auto list = Make<TVXList>();
    for (std::int32_t& item : items) list->Add(&item);
    const std::int32_t kind = round % 8;
    std::int32_t calls = 0;
    const std::string error = ErrorOf([&] {
      list->SortEx([&](void* first, void* second) -> std::int32_t {
        ++calls;
        if (kind == 0) return -1;
        if (kind == 1) return 1;
        if (kind == 2) return first == second ? -1 : (first < second ? -1 : 1);  // an item stands before itself
        if (kind == 3 && calls == 50) list->Clear();
        if (kind == 4 && calls == 50) throw EAbort("compare");
        if (kind == 5 && calls < 1000) list->Add(first);
        return dice.Between(-1, 1);
      });
    });
    EXPECT_TRUE(error.empty() || error == "EListError" || error == "EAbort") << error;
    EXPECT_LT(calls, 1000000);
    EXPECT_TRUE(kind == 3 || kind == 5 || list->Count() == 200);
  }
}

TEST(Hostile, BucketsOfAnyDateAndMode) {
  const std::vector<double> dates = {0,   -1,   0.999999999, -693593, -693594,  2958465,   2958466,
                                     1e9, 1e19, 1e308,       -1e308,  INFINITY, -INFINITY, std::nan("")};
  for (std::int32_t mode = 0; mode < 256; mode = mode < 6 ? mode + 1 : mode + 83)
    for (const double date : dates) {
      TScene scene;
      ErrorOf([&] { scene.AddRow(0, date); });
      scene.bucketer->SetGroupMode(static_cast<TVXGroupMode>(mode));
      scene.bucketer->SetBasedGroupMode(static_cast<TVXGroupMode>(mode));
      for (const bool start : {true, false}) {
        scene.bucketer->SetBucketByStartOfGroup(start);
        const std::string error = ErrorOf([&] { scene.bucketer->EndUpdate(); });
        EXPECT_TRUE(error.empty() || error == "EConvertError" || error == "ENilAccess") << error << mode << " " << date;
        ErrorOf([&] { scene.bucketer->UpdateRecWithValues(*scene.Record({})); });
      }
      CheckUsable(scene);
    }
}

TEST(Hostile, BucketsMayBeChangedByHand) {
  TTestTable table({{"Key", vxrftInteger}, {"Load", vxrftInteger}});
  for (const std::int32_t key : {5, 1, 3, 9}) table.Add({key, key});
  TVXRAMCursorBucketer& cursor = table.OpenBuckets({.fields = "Key", .folds = {{"Load", vxbtCumulate}}});
  TVXRAMBucketList& buckets = *cursor.Get_BucketList();
  buckets.GetBucketByID("5")->Free();
  EXPECT_EQ(cursor.FindBucketInfoByRecordPointer(table.Row(0)), nullptr);
  buckets.GetBucketByID("1")->Get_Records()->Clear();
  buckets.GetBucketByID("1")->Free();
  EXPECT_EQ(cursor.FindBucketInfoByRecordPointer(table.Row(1)), nullptr);
  static_cast<TCollection&>(buckets).Add();
  buckets.GetBucketByID("9")->SetCollection(table.OpenBuckets({.fields = "Load"}).Get_BucketList());
  EXPECT_EQ(buckets.GetBucketByID("9"), nullptr);
  cursor.BuildAllBuckets();
  buckets.Build(*buckets.Get_Bucket(0)->Get_Records(), true);
  EXPECT_EQ(Values(cursor, "Load"), "10 1 3 9");
  AddField(*table, "More", vxrftInteger, 0);
  EXPECT_EQ(ErrorOf([&] { buckets.Build(table.MainList(), true); }), "ERAMTableError");
}

TEST(Hostile, QuickWaysKnowWhatChangedByHand) {
  TTestTable table({{"Key", vxrftInteger}});
  TVXRAMCursor& sorted = table.Open({.sort = "Key"});
  for (const std::int32_t key : {5, 1, 3, 9}) table.Add({key});
  TVXRAMRow* const last = table.Row(3);
  table.MainList().Delete(3);
  table.Add({4});
  table.MainList().Insert(0, last);
  sorted.RecordInsertionNotification(table.Row(1));
  EXPECT_EQ(Values(sorted, "Key"), "1 3 4 5 9");
  // A row that is inserted while another one is being deleted brings that one back into no list.
  table.Close(sorted);
  TVXRAMCursor& filtered = table.Open({.filterField = "Key", .filterValue = 4});
  table.owner->onRefresh = [&] {
    table.owner->onRefresh = nullptr;
    table.Add({4});
  };
  table->DeleteRecord(nullptr, table.Row(2));
  EXPECT_EQ(Values(filtered, "Key"), "4");
}

}  // namespace
}  // namespace vx
