// What a careless or hostile program may do to the tables: it must get an answer or an error, and usable objects afterwards; never a
// crash, a hang or a leak (the sanitizers' build says so).

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "data/VXRAMCursorBucketer_CMP.h"
#include "data/VXRAMTable_CMP.h"
#include "model/Dice.h"

namespace vx {
namespace {

constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kTextSize = 8;

/// An owner that does something whenever it is told of a deletion.
class TOwner : public TComponent, public IRecordOwner {
 public:
  using TComponent::TComponent;
  void Refresh() override {
    if (refresh) refresh();
  }
  std::function<void()> refresh;
};

/// Runs something that may raise an error of ours, and nothing else; answers the error's class, or "".
template <class F>
std::string ErrorOf(const F& call) {
  try {
    call();
  } catch (const Exception& error) {
    return error.ClassName();
  }
  return {};
}

enum TField { kNumber, kDay, kText, kFieldCount };

/// A table with an index, rows, and four kinds of cursors whose owner and filters run `attack` once when armed.
struct TScene {
  TScene() {
    AddField(*table, "Number", vxrftInteger);
    AddField(*table, "Day", vxrftDateTime);
    AddField(*table, "Text", vxrftString, kTextSize);
    table->Get_Indices()->Add()->Set_FieldName("Number");
    owner->refresh = [this] { Strike(); };
    for (std::int32_t i = 0; i < 6; ++i) AddRow(i);
    plain = Open(-1, vxrcoAscending);
    indexed = Open(0, vxrcoDescending, "Text.D;Number");
    filtered = Open(0, vxrcoAscending, "", table->Get_FieldDefs()->Get_Item(kNumber));
    filtered->SetOnFilterRecord([this](TVXRAMRow*, std::int32_t) { return Strike(); });
    bucketer = OpenBucketer();
  }

  void AddRow(std::int32_t number, double day = 45000) {
    const TOwnedRecordStruct record = table->NewRecord();
    record->Field(kNumber).AssignValue<std::int32_t>(number);
    record->Field(kDay).AssignValue<double>(day + number % 3);
    record->Field(kText).AssignText("row");
    std::int32_t id = 0;
    table->AddRecordAndValues(*record, -2, -1, id, true);
  }
  TVXRAMCursor* Open(std::int32_t index, TVXRAMCursorOrder order, const std::string& sort = "",
                     TVXRAMFieldDef* filter = nullptr) {
    TVXRAMCursorDesc wish(owner.get(), index, order, sort, filter, filter == nullptr ? Variant() : Variant::Null());
    TVXRAMCursor* cursor = nullptr;
    table->OpenCursor(nullptr, &wish, cursor);
    return cursor;
  }
  TVXRAMCursorBucketer* OpenBucketer(TVXGroupMode mode = vxgrOneDay, const std::string& fields = "Day") {
    const auto folds = Make<TVXBucketFieldDefs>(nullptr);
    folds->Add("Number", vxbtAverage);
    TVXRAMCursorBucketerDesc wish(owner.get(), -1, vxrcoAscending, "Number", nullptr, Variant(), folds.get(),
                                  vxgrOneDay, mode, fields, true);
    TVXRAMCursor* cursor = nullptr;
    table->OpenCursor(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), &wish, cursor);
    return static_cast<TVXRAMCursorBucketer*>(cursor);
  }
  std::vector<TVXRAMCursor*> Cursors() const { return {plain, indexed, filtered, bucketer}; }
  void FreeTable() {
    plain = indexed = filtered = nullptr;
    bucketer = nullptr;
    table.reset();
  }
  bool Strike() {
    if (armed > 0 && armed-- > 0) attack(*this);
    return true;
  }
  TVXRAMRow* Row(std::int32_t position) {
    return static_cast<TVXRAMRow*>(table->Get_MainRecordList()->Items(position));
  }
  std::int32_t RowCount() const { return table->Get_MainRecordList()->Count(); }

  TOwned<TOwner> owner = Make<TOwner>(nullptr);
  TOwned<TVXRAMTable> table = Make<TVXRAMTable>(nullptr);
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

// -- Reentrancy -----------------------------------------------------------------------------------------------------------

/// What a listener may do while it is told. Each leaves the scene's pointers true.
const std::vector<TAct>& Attacks() {
  static const std::vector<TAct> attacks = {
      {"close indexed", [](TScene& s) { s.table->CloseCursor(s.indexed); }},
      {"close filtered", [](TScene& s) { s.table->CloseCursor(s.filtered); }},
      {"close bucketer", [](TScene& s) { s.table->CloseCursor(s.bucketer); }},
      {"close all, open others",
       [](TScene& s) {
         for (TVXRAMCursor* cursor : s.Cursors()) s.table->CloseCursor(cursor);
         s.indexed = s.filtered = nullptr;
         s.plain = s.Open(-1, vxrcoAscending);
         s.bucketer = s.OpenBucketer(vxgrOneWeek, "Text;Day");
       }},
      {"free table", [](TScene& s) { s.FreeTable(); }},
      {"free owner", [](TScene& s) { s.owner.reset(); }},
      {"free index definition", [](TScene& s) { s.table->Get_Indices()->Clear(); }},
      {"free all fields", [](TScene& s) { s.table->Get_FieldDefs()->Clear(); }},
      {"move the text field first", [](TScene& s) { s.table->Get_FieldDefs()->Get_Item(kText)->SetIndex(0); }},
      {"add a field", [](TScene& s) { AddField(*s.table, "More", vxrftFloat); }},
      {"insert", [](TScene& s) { s.AddRow(3); }},
      {"insert at the cursor",
       [](TScene& s) { Need(s.plain, "cursor").InsertRecWithValues(*s.table->NewRecord(), false); }},
      {"delete the first row", [](TScene& s) { s.table->DeleteRecord(s.plain, s.Row(0)); }},
      {"clear", [](TScene& s) { s.table->ClearTable(); }},
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
      {"insertion", [](TScene& s) { s.plain->InsertRecWithValues(*s.table->NewRecord(), true); }},
      {"insertion on an index", [](TScene& s) { s.indexed->InsertRecWithValues(*s.table->NewRecord(), false); }},
      {"empty row", [](TScene& s) { s.indexed->InsertRec(); }},
      {"deletion", [](TScene& s) { s.plain->DeleteRec(); }},
      {"deletion of a bucket", [](TScene& s) { s.bucketer->DeleteRec(); }},
      {"edit", [](TScene& s) { s.plain->UpdateRecWithValues(*s.table->NewRecord()); }},
      {"edit of a bucket", [](TScene& s) { s.bucketer->UpdateRecWithValues(*s.table->NewRecord()); }},
      {"field edit",
       [](TScene& s) {
         const std::int32_t value = 9;
         s.filtered->SetFieldValue(kNumber, &value);
       }},
      {"index rebuild", [](TScene& s) { s.table->Get_Indices()->Get_Item(0)->Get_Index()->ReBuild(); }},
      {"filter change", [](TScene& s) { s.filtered->Get_Filter()->Set_Value(2); }},
      {"record filter",
       [](TScene& s) { s.filtered->SetOnFilterRecord([&s](TVXRAMRow*, std::int32_t) { return s.Strike(); }); }},
      {"filter of a bucketer",
       [](TScene& s) { s.bucketer->SetOnFilterRecord([&s](TVXRAMRow*, std::int32_t) { return s.Strike(); }); }},
      {"clearing", [](TScene& s) { s.table->ClearTable(); }},
  };
  return operations;
}

/// The scene still works: everything that is left can be walked, changed, closed.
void CheckUsable(TScene& scene) {
  scene.armed = 0;
  if (scene.table == nullptr) return;
  EXPECT_EQ(scene.table->CheckRows(), "");
  if (scene.owner == nullptr) return;
  for (TVXRAMCursor* const cursor : scene.Cursors()) {
    if (cursor == nullptr) continue;
    for (cursor->GoToFirstRec(); cursor->GoToNextRec() == kDone;) cursor->Get_RecordID();
    ErrorOf([&] { cursor->EndUpdate(); });
    ErrorOf([&] { cursor->DeleteRec(); });
  }
  if (scene.table->Get_FieldDefs()->Count() == kFieldCount && scene.table->Get_RecCount() == 0)
    ErrorOf([&] { scene.AddRow(5); });
  scene.table->ClearTable();
  EXPECT_EQ(scene.table->CheckRows(), "");
  EXPECT_EQ(scene.RowCount(), 0);
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
  const auto open = [&] { return ErrorOf([&] { scene.table->OpenCursor(restless, &wish, cursor); }); };

  TRestlessCursor::whenMade = [] { throw EAbort("no"); };
  EXPECT_EQ(open(), "EAbort");
  EXPECT_EQ(scene.table->Get_CursorCount(), 4);
  TRestlessCursor::whenMade = [&] { scene.table->Get_Indices()->Clear(); };
  EXPECT_EQ(open(), "");
  EXPECT_EQ(cursor->Get_InternalRecordList(), scene.table->Get_MainRecordList());  // its index has gone already
  TRestlessCursor::whenFreed = [&] { scene.FreeTable(); };
  cursor->Free();
  EXPECT_EQ(scene.table, nullptr);

  TScene other;
  TRestlessCursor::whenMade = [&] { other.FreeTable(); };
  EXPECT_EQ(ErrorOf([&] { other.table->OpenCursor(restless, &wish, cursor); }), "EInvalidOperation");
  TRestlessCursor::whenMade = nullptr;

  auto table = Make<TVXRAMTable>(nullptr);  // not opened by the table, and outlives it
  wish.IndexNumber = -1;
  const auto stray = Make<TVXRAMCursor>(table.get(), nullptr, &wish);
  table.reset();
  EXPECT_EQ(stray->Get_RecordCount(), 0);
}

// -- Layouts that change under the rows ---------------------------------------------------------------------------------

TEST(Hostile, RowsOutliveAnyChangeOfTheirLayout) {
  const std::vector<TAct> changes = {
      {"field added", [](TScene& s) { AddField(*s.table, "More", vxrftFloat); }},
      {"field freed", [](TScene& s) { s.table->Get_FieldDefs()->Delete(kNumber); }},
      {"all freed", [](TScene& s) { s.table->Get_FieldDefs()->Clear(); }},
      {"text without room", [](TScene& s) { s.table->Get_FieldDefs()->Get_Item(kText)->Set_ByteSize(0); }},
      {"greatest size", [](TScene& s) { s.table->Get_FieldDefs()->Get_Item(kText)->Set_ByteSize(kMost); }},
      {"fields before the row",  // the second field's status byte would lie before the row itself
       [](TScene& s) {
         TVXRAMFieldDef* const text = s.table->Get_FieldDefs()->Get_Item(kText);
         text->SetIndex(0);
         text->Set_ByteSize(-7);
       }},
      {"no type",
       [](TScene& s) { s.table->Get_FieldDefs()->Get_Item(kNumber)->Set_DataType(static_cast<TVXRAMFieldType>(99)); }},
      {"a date of one byte",
       [](TScene& s) {
         TLoading loading(*s.table);
         s.table->Get_FieldDefs()->Get_Item(kDay)->Set_ByteSize(1);
       }},
      {"moved to another table",
       [](TScene& s) {
         const auto other = Make<TVXRAMTable>(nullptr);
         s.table->Get_FieldDefs()->Get_Item(kNumber)->SetCollection(other->Get_FieldDefs());
         s.table->Get_Indices()->Get_Item(0)->SetCollection(other->Get_Indices());
         ErrorOf([&] { other->Get_Indices()->Get_Item(0)->Get_Index()->ReBuild(); });
       }},
  };
  for (const TAct& change : changes) {
    SCOPED_TRACE(change.name);
    TScene scene;
    const TOwnedRecordStruct older = scene.table->NewRecord();
    for (std::int32_t i = 0; i < older->FieldCount; ++i) older->Field(i).IsNull = false;
    older->Field(kText).StringSize = -1;
    ErrorOf([&] { change.run(scene); });
    const std::vector<std::uint8_t> zeros(4096);
    const TVXRAMRow* const row = scene.Row(0);
    const std::int32_t id = scene.table->InternalGetRecordID(row);
    for (TVXRAMCursor* const cursor : scene.Cursors()) {
      for (std::int32_t field = -1; field <= kFieldCount + 1; ++field) {
        ErrorOf([&] { cursor->SetFieldValue(field, zeros.data()); });
        ErrorOf([&] { cursor->ClearFieldValue(field); });
        ErrorOf([&] { cursor->Get_Value(field); });
      }
      ErrorOf([&] { cursor->UpdateRecWithValues(*older); });
      ErrorOf([&] { cursor->UpdateRecWithValues(*scene.table->NewRecord()); });
      ErrorOf([&] { cursor->Sort("Text;Day.D;Number"); });
      ErrorOf([&] { cursor->InsertRecWithValues(*older, true); });
      ErrorOf([&] { cursor->InsertRecWithValues(*scene.table->NewRecord(), true); });
      ErrorOf([&] { cursor->EndUpdate(); });
    }
    EXPECT_EQ(scene.table->InternalGetRecordID(row), id);  // no write has gone into a row's head
    CheckUsable(scene);
  }
}

// -- Odd orders of calls ------------------------------------------------------------------------------------------------

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
  table.InternalFreeRecordBuffer(
      scene.Row(0));  // listed: the list is told nothing, and is cleared without releasing it again
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
  TVXRAMUserIndex& index = *table.Get_Indices()->Get_Item(0)->Get_Index();
  const auto looseDef = Make<TVXRAMIndexDef>(nullptr);
  const auto looseField = Make<TVXRAMFieldDef>(nullptr);
  const auto looseBucket = Make<TVXRAMBucketInfo>(nullptr);
  const auto looseBuckets = Make<TVXRAMBucketList>(nullptr);
  TVXRecordStruct nothing;
  nothing.FieldCount = kFieldCount;
  const std::vector<TAct> calls = {
      {"description", [&](TScene&) { table.OpenCursor(nullptr, nullptr, cursor); }},
      {"row to init", [&](TScene&) { table.InternalInitRecord(nullptr); }},
      {"row to fold", [&](TScene&) { scene.bucketer->Get_BucketList()->InsertRecord(nullptr, true); }},
      {"row added", [&](TScene&) { scene.bucketer->RecordInsertionNotification(nullptr); }},
      {"buffer to fill", [&](TScene&) { scene.plain->GetFieldValue(kNumber, nullptr, size, isNull); }},
      {"buffer to read", [&](TScene&) { scene.plain->SetFieldValue(kNumber, nullptr); }},
      {"key", [&](TScene&) { index.LocateFirst(nullptr); }},
      {"index of no field", [&](TScene&) { looseDef->Get_Index()->ReBuild(); }},
      {"index of no table", [&](TScene&) { looseDef->Get_Index()->Insert(scene.Row(0)); }},
      {"field of no table", [&](TScene&) { looseField->Get_Slot(); }},
      {"bucket of no list", [&](TScene&) { looseBucket->UpdateBucketValues(); }},
      {"buckets of no cursor", [&](TScene&) { looseBuckets->Add("key"); }},
      {"elements", [&](TScene&) { scene.plain->UpdateRecWithValues(nothing); }},
      {"insertion without an index", [&](TScene&) { scene.plain->InsertRec(); }},
  };
  for (const TAct& call : calls) EXPECT_EQ(ErrorOf([&] { call.run(scene); }), "ENilAccess") << call.name;
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
  EXPECT_EQ(scene.table->CheckRows(), "");
}

TEST(Hostile, AClearedTableLeavesItsBucketsReadable) {
  for (const TAct& operation : Operations()) {
    SCOPED_TRACE(operation.name);
    TScene scene;
    scene.table->ClearTable();
    EXPECT_EQ(scene.bucketer->Get_RecordCount(), 3);
    scene.bucketer->Get_BucketList()->UpdateAllBuckets();
    ErrorOf([&] { operation.run(scene); });
    const TOwned<TVXRAMBucketInfo> stray(scene.bucketer->Get_BucketList()->Get_Bucket(0));
    stray->SetCollection(nullptr);
    for (std::int32_t i = 0; i < 4; ++i) ErrorOf([&] { scene.bucketer->DeleteRec(); });
    CheckUsable(scene);
  }
}

// -- Sizes --------------------------------------------------------------------------------------------------------------

TEST(Hostile, SpecificationsOfAnyLengthAndShape) {
  TScene scene;
  std::string thousands;
  for (std::int32_t i = 0; i < 100000; ++i) thousands += i % 2 == 0 ? "Number.D;" : "nothing;";
  for (const std::string& specification : {std::string(100000, ';'), std::string("..;.D;;"),
                                           std::string("Text.DD;Day."), thousands, std::string(1000000, 'x')}) {
    scene.plain->Sort(specification);
    scene.bucketer->SetBucketedFields(specification.substr(0, 20000));
    ErrorOf([&] { scene.bucketer->EndUpdate(); });
    scene.bucketer->Get_CanUseIndex(specification);
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
        ErrorOf([&] { scene.bucketer->UpdateRecWithValues(*scene.table->NewRecord()); });
      }
      CheckUsable(scene);
    }
}

}  // namespace
}  // namespace vx
