#include "platform/dataset/DataSet.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <sstream>

#include "ArraySet.h"
#include "platform/component/ComponentStream.h"
#include "platform/dataset/DataLink.h"
#include "platform/dataset/Fields.h"
#include "platform/system/Application.h"
#include "support/DataSetEvents.h"
#include "support/TestKit.h"

namespace vx::test {
namespace {

/// A link that writes down what it hears, and may do something about it.
class TLogLink : public TFieldDataLink {
 public:
  std::string Take() { return std::exchange(Log, ""); }
  /// The ids of the records in its window, the active one in brackets.
  std::string Window() {
    std::ostringstream text;
    const std::int32_t active = ActiveRecord(), count = RecordCount();
    for (std::int32_t i = 0; i < count; ++i) {
      SetActiveRecord(i);
      const std::string id = DataSet()->Fields(0)->GetAsString();
      text << (i == active ? "[" + id + "]" : id) << ' ';
    }
    if (count > 0) SetActiveRecord(active);
    return text.str();
  }
  std::string Log;
  std::function<void()> Do;

 protected:
  void Note(const std::string& what) {
    Log += what + " ";
    if (Do) Do();
  }
  void ActiveChanged() override {
    TFieldDataLink::ActiveChanged();
    Note(Active() ? "active" : "inactive");
  }
  void DataSetChanged() override { Note("changed"); }
  void DataSetScrolled(std::int32_t distance) override { Note("scrolled" + std::to_string(distance)); }
  void EditingChanged() override { Note(Editing() ? "editing" : "browsing"); }
  void LayoutChanged() override { Note("layout"); }
  void RecordChanged(TField* field) override { Note("record:" + (field == nullptr ? "all" : field->FieldName())); }
  void UpdateData() override { Note("update"); }
  void CheckBrowseMode() override { Note("check"); }
};

/// A set of `count` records numbered from 1, a source and a link that shows `window` of them.
struct TStand {
  explicit TStand(std::int32_t count = 5, std::int32_t window = 3, std::shared_ptr<TArrayStore> shared = nullptr)
      : Store(shared ? shared : StoreOf(count)), Set(Make<TArraySet>(nullptr, Store)) {
    Set->SetName("orders");
    Source->SetDataSet(Set.get());
    Link->SetBufferCount(window);
    Link->SetDataSource(Source.get());
    Set->Open();
    Link->Take();
  }
  TField* Number() const { return Set->FieldByName("number"); }
  std::shared_ptr<TArrayStore> Store;
  TOwned<TArraySet> Set;
  TOwned<TDataSource> Source = Make<TDataSource>(nullptr);
  TOwned<TLogLink> Link = Make<TLogLink>();
};

/// Opens the set anew with a calculated field, "Twice" the number.
TField* AddCalc(TDataSet& set) {
  set.Close();
  TField* field = nullptr;
  for (const char* const name : {"Id", "Number", "Twice"}) {
    field = New<TIntegerField>(&set);
    field->SetFieldName(name);
    if (name[0] == 'T') field->SetFieldKind(fkCalculated);
    field->SetDataSet(&set);
  }
  if (!set.OnCalcFields)
    set.OnCalcFields = [](TDataSet* sender) {
      sender->Fields(2)->SetAsInteger(2 * sender->FieldByName("Number")->GetAsInteger());
    };
  set.Open();
  return field;
}

struct TOperation {
  const char* Name;
  std::function<void(TDataSet&)> Run;
  const char* Events;
  const char* Heard;
};
void Change(TDataSet& set) { set.FieldByName("Number")->SetAsInteger(7); }
const TOperation kOperations[] = {
    {"close, open", [](TDataSet& s) { s.Close(), s.Open(); },
     "BeforeClose AfterClose BeforeOpen AfterOpen AfterScroll ", "inactive active "},
    {"next", [](TDataSet& s) { s.Next(); }, "BeforeScroll AfterScroll ", "check scrolled0 "},
    {"beyond", [](TDataSet& s) { s.MoveBy(9), s.Next(); }, "BeforeScroll AfterScroll ", "check scrolled2 check "},
    {"last", [](TDataSet& s) { s.Last(); }, "BeforeScroll AfterScroll ", "check changed "},
    {"edit, post", [](TDataSet& s) { s.Edit(), Change(s), s.Post(); }, "BeforeEdit AfterEdit BeforePost AfterPost ",
     "check editing record:Number update check browsing changed "},
    {"edit, leave", [](TDataSet& s) { s.Edit(), Change(s), s.Next(); },
     "BeforeEdit AfterEdit BeforePost AfterPost BeforeScroll AfterScroll ",
     "check editing record:Number check update browsing changed scrolled0 "},
    {"edit nothing, leave", [](TDataSet& s) { s.Edit(), s.Next(); },
     "BeforeEdit AfterEdit BeforeCancel AfterCancel BeforeScroll AfterScroll ",
     "check editing check update browsing changed scrolled0 "},
    {"insert, cancel", [](TDataSet& s) { s.Insert(), s.Cancel(); },
     "BeforeInsert BeforeScroll OnNewRecord AfterInsert AfterScroll BeforeCancel BeforeScroll AfterCancel AfterScroll ",
     "check editing changed browsing changed "},
    {"append record",
     [](TDataSet& s) {
       s.AppendRecord({Variant(), 3});
     },
     "BeforeInsert BeforeScroll OnNewRecord AfterInsert AfterScroll BeforePost AfterPost ",
     "check editing changed record:Number update check browsing changed "},
    {"delete", [](TDataSet& s) { s.Delete(); }, "BeforeDelete BeforeScroll AfterDelete AfterScroll ", "check changed "},
    {"bookmark", [](TDataSet& s) { s.GotoBookmark(s.GetBookmark()); }, "BeforeScroll AfterScroll ", "check changed "},
    {"null bookmark", [](TDataSet& s) { s.GotoBookmark({}); }, "", ""},
    {"refresh", [](TDataSet& s) { s.Refresh(); }, "", "changed "},
    {"disabled",
     [](TDataSet& s) {
       s.DisableControls(), s.DisableControls(), s.Next(), s.EnableControls(), s.Next(), s.EnableControls(),
           s.EnableControls();
     },
     "BeforeScroll AfterScroll BeforeScroll AfterScroll ", "check check changed "},
};

TEST(DataSetTest, EventsComeInOrderAndLinksHearEachChangeOnce) {
  for (const TOperation& operation : kOperations) {
    SCOPED_TRACE(operation.Name);
    TStand stand;
    std::string events;
    for (const auto& event : test::kDataSetEvents)
      (*stand.Set).*event.Slot = [&events, &event](TDataSet*) { events += std::string(event.Name) + " "; };
    operation.Run(*stand.Set);
    EXPECT_EQ(events, operation.Events);
    EXPECT_EQ(stand.Link->Take(), operation.Heard);
  }
}

// Each event of each operation, and each thing that a link hears, raises, closes the set, frees it, calls the same
// operation again; afterwards the set (if it is still there) opens, shows what is stored, and takes a record.
enum TDeed { kRaise, kAbort, kClose, kFree, kAgain, kDeeds };

void TryDeed(const TOperation& operation, int deed, const std::function<void(TStand&, std::function<void()>)>& arm) {
  TStand stand;
  TDataSet* const set = stand.Set.get();
  const TMemoryKeeper<TComponent> keep(set);  // an operation may be of several calls
  bool armed = true;
  arm(stand, [&] {
    if (!armed) return;
    if (deed == kRaise) throw EConvertError("refused");
    if (deed == kAbort) throw EAbort("refused");
    if (deed == kClose) set->Close();
    if (deed == kFree && stand.Set != nullptr) stand.Set.release()->Free();
    if (deed == kAgain) operation.Run(*set);
  });
  try {
    operation.Run(*set);
  } catch (const Exception& error) {
    EXPECT_EQ(error.Message() == "refused", deed < kClose) << error.Message();
    EXPECT_EQ(error.Message().rfind("orders: ", 0) == 0, deed >= kClose) << error.Message();
  }
  armed = false;
  if (stand.Set == nullptr) return;
  while (set->ControlsDisabled()) set->EnableControls();
  set->Open();
  if (set->State() != dsBrowse) set->Cancel();
  set->First();
  std::string shown, stored;
  for (; !set->Eof(); set->Next()) shown += set->Fields(0)->GetAsString() + " ";
  for (const TArrayRow& row : stand.Store->Rows) stored += std::to_string(row.Id) + " ";
  EXPECT_EQ(shown, stored);
  set->AppendRecord({Variant(), 77});
  EXPECT_EQ(stand.Store->Rows.back().Number, 77);
}

TEST(DataSetTest, HandlersMayDoWhatTheyLike) {
  for (const TOperation& operation : kOperations) {
    for (int deed = 0; deed < kDeeds; ++deed) {
      SCOPED_TRACE(std::string(operation.Name) + ", deed " + std::to_string(deed));
      for (const auto& event : test::kDataSetEvents) {
        SCOPED_TRACE(event.Name);
        TryDeed(operation, deed, [&](TStand& stand, const std::function<void()>& act) {
          (*stand.Set).*event.Slot = [act](TDataSet*) { act(); };
        });
      }
      for (int which = 0; which < 8; ++which) {
        SCOPED_TRACE("heard " + std::to_string(which));
        TryDeed(operation, deed, [&](TStand& stand, const std::function<void()>& act) {
          stand.Link->Do = [act, which, heard = 0]() mutable {
            if (heard++ == which || which == 7) act();
          };
        });
      }
    }
  }
}

TEST(DataSetTest, HandlersThatCallEachOtherWithoutEndAreStopped) {
  const std::pair<const char*, std::function<void(TStand&, std::int32_t)>> deeds[] = {
      {"controls", [](TStand& s, std::int32_t) { s.Set->DisableControls(), s.Set->EnableControls(); }},
      {"width", [](TStand& s, std::int32_t count) { s.Number()->SetDisplayWidth(count); }},
      {"alignment",
       [](TStand& s, std::int32_t count) { s.Number()->SetAlignment(count % 2 == 0 ? taCenter : taLeftJustify); }},
      {"window", [](TStand& s, std::int32_t count) { s.Link->SetBufferCount(3 + count % 2); }},
      {"field", [](TStand& s, std::int32_t count) { s.Set->Edit(), s.Number()->SetAsInteger(count); }},
      {"fields", [](TStand& s, std::int32_t) { s.Set->Edit(), s.Set->ClearFields(); }},
      {"record", [](TStand& s, std::int32_t) { s.Set->Edit(), s.Set->UpdateRecord(); }},
  };
  for (const auto& [name, deed] : deeds) {
    SCOPED_TRACE(name);
    TStand stand;
    stand.Set->Last();
    stand.Link->Do = [&, count = 0]() mutable { deed(stand, ++count); };
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { deed(stand, 0), stand.Set->Refresh(); }),
              "orders: Handlers and operations of the data set call each other without end");
    stand.Link->Do = nullptr;
    stand.Set->Cancel();
    EXPECT_FALSE(stand.Set->ControlsDisabled());
    stand.Link->SetBufferCount(5);
    EXPECT_EQ(stand.Link->Window(), "1 2 3 4 [5] ");
  }
}

TEST(DataSetTest, FieldsMayGoWhileTheyAreUsed) {
  TStand stand;
  stand.Number()->Free();  // a default one
  stand.Set->Close();
  stand.Set->Open();
  EXPECT_EQ(stand.Set->FieldCount(), 2);

  stand.Set->Edit();
  stand.Set->Fields(0)->OnChange = [&](TField*) { stand.Set->Close(); };
  EXPECT_EQ(MessageOf<EDatabaseError>([&] {
              stand.Set->SetFieldValue("Id;Number", Variant::Array({7, 8}));
            }),
            "orders: Field 'Number' not found");

  TComponentRef<TField> twice(AddCalc(*stand.Set));
  const auto other = Make<TDataSource>(nullptr);
  other->SetDataSet(stand.Set.get());
  std::string heard;
  stand.Source->OnDataChange = [&](TObject*, TField* field) {
    if (field != nullptr && field == twice.Get()) field->Free();
  };
  other->OnDataChange = [&](TObject*, TField* field) {
    heard += (field == nullptr ? "all" : field->FieldName()) + " ";
  };
  stand.Set->OnCalcFields = nullptr;
  stand.Set->Edit();
  stand.Number()->SetAsInteger(5);
  EXPECT_EQ(heard, "Number ");
  EXPECT_EQ(twice.Get(), nullptr);
}

TEST(DataSetTest, AWishThatCanNotBeMetChangesNothing) {
  TStand stand(9);
  stand.Set->Room = 3;
  EXPECT_THROW(stand.Link->SetBufferCount(8), std::bad_alloc);
  EXPECT_EQ(stand.Link->BufferCount(), 3);
  EXPECT_EQ(stand.Set->Room, 3) << "all given back";
  EXPECT_NE(MessageOf<EDatabaseError>([&] { stand.Link->SetBufferCount(TDataLink::kMostRecords + 1); }), "");
  EXPECT_EQ(stand.Link->Window(), "[1] 2 3 ");
  // Only the greatest wish counts, whoever comes and goes.
  const auto greater = Make<TLogLink>();
  greater->SetBufferCount(5);
  greater->SetDataSource(stand.Source.get());
  EXPECT_EQ(stand.Set->Buffers(), 5);
  stand.Link->SetDataSource(nullptr);
  EXPECT_EQ(stand.Set->Buffers(), 5);
  greater->SetDataSource(nullptr);
  EXPECT_EQ(stand.Set->Buffers(), 2);
}

TEST(DataSetTest, EachMistakeIsNamed) {
  const struct {
    std::function<void(TStand&)> Run;
    const char* Message;
  } cases[] = {
      {[](TStand& s) { s.Set->Close(), s.Set->Edit(); }, "orders: Not possible while the data set is closed"},
      {[](TStand& s) { s.Set->Close(), s.Set->Next(); }, "orders: Not possible while the data set is closed"},
      {[](TStand& s) { s.Set->Close(), s.Set->GetBookmark(); }, "orders: Not possible while the data set is closed"},
      {[](TStand& s) { s.Set->Close(), s.Set->Refresh(); }, "orders: Not possible while the data set is closed"},
      {[](TStand& s) { s.Set->CheckInactive(); }, "orders: Not possible while the data set is open"},
      {[](TStand& s) { s.Set->Post(); }, "orders: No record is being edited or inserted"},
      {[](TStand& s) { s.Set->ReadOnly = true, s.Set->Delete(); }, "orders: The data set can't be modified"},
      {[](TStand& s) { s.Store->Rows.clear(), s.Set->Refresh(), s.Set->Delete(); },
       "orders: The data set has no record"},
      {[](TStand& s) { s.Set->FieldByName("nUmbe"); }, "orders: Field 'nUmbe' not found"},
      {[](TStand& s) { s.Set->GetFieldValue("Id; Other"); }, "orders: Field 'Other' not found"},
      {[](TStand& s) {
         s.Set->AppendRecord({1, 2, 3});
       },
       "orders: 3 values for 2 fields"},
      {[](TStand& s) { s.Number()->Required = true, s.Set->Append(), s.Set->Post(); },
       "orders: Field 'Number' must have a value"},
      {[](TStand& s) { s.Set->GotoBookmark(TBookmark("12345")); }, "orders: The bookmark isn't one of this data set"},
      {[](TStand& s) {
         const TBookmark mark = s.Set->GetBookmark();
         s.Set->Delete();
         s.Set->GotoBookmark(mark);
       },
       "orders: Record not found"},
      {[](TStand& s) { s.Link->SetFieldName("Nowhere"); }, "orders: Field 'Nowhere' not found"},
      {[](TStand& s) {
         AddCalc(*s.Set);
         s.Set->OnCalcFields = [](TDataSet* set) { set->Close(); };
         s.Set->Last();
       },
       "orders: The data set can't be closed in the state dsCalcFields"},
  };
  for (const auto& each : cases) {
    TStand stand;
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { each.Run(stand); }), each.Message);
  }
}

TEST(DataSetTest, CalculatedFieldsFollowTheRecord) {
  TStand stand;
  TField* const twice = AddCalc(*stand.Set);
  stand.Link->Take();
  EXPECT_EQ(twice->GetAsInteger(), 20);
  stand.Set->Edit();
  stand.Number()->SetAsInteger(8);
  EXPECT_EQ(twice->GetAsInteger(), 16);
  EXPECT_EQ(stand.Link->Take(), "check editing record:Number record:Twice ");
  stand.Set->Next();
  EXPECT_EQ(twice->GetAsInteger(), 40);
  stand.Set->Prior();
  EXPECT_EQ(stand.Set->GetFieldValue("Id;Twice"), Variant::Array({1, 16}));
  stand.Set->OnCalcFields = [](TDataSet*) { throw EConvertError("refused"); };
  EXPECT_EQ(MessageOf<EConvertError>([&] { stand.Set->Last(); }), "refused");
  stand.Set->OnCalcFields = nullptr;
  stand.Set->First();
  EXPECT_TRUE(twice->IsNull());
  stand.Set->OnCalcFields = [&](TDataSet*) {
    if (stand.Set != nullptr) stand.Set.release()->Free();  // as early as it can be
  };
  stand.Set->Next();
  stand.Set->Last();
  EXPECT_EQ(stand.Source->State(), dsInactive);
}

TEST(DataSetTest, ALinkMayWishForMoreBuffersWhileARecordIsRead) {
  TStand stand(30);
  std::int32_t calls = 0;
  stand.Set->OnCalcFields = [&](TDataSet*) { stand.Link->SetBufferCount(1 + (calls += 3) % 7); };
  AddCalc(*stand.Set);
  std::vector<std::int32_t> there, back;
  for (stand.Set->First(); !stand.Set->Eof(); stand.Set->Next()) there.push_back(stand.Number()->GetAsInteger());
  for (stand.Set->Last(); !stand.Set->Bof(); stand.Set->Prior()) back.push_back(stand.Number()->GetAsInteger());
  EXPECT_EQ(there.size(), 30u);
  EXPECT_EQ(std::vector(there.rbegin(), there.rend()), back);
}

TEST(DataSetTest, ErrorEventsDecideWhatBecomesOfAFailure) {
  TStand stand;
  stand.Store->RefusesPosts = true;
  TDataAction wish = daFail;
  int asked = 0;
  stand.Set->OnPostError = [&](TDataSet*, Exception&, TDataAction& action) {
    action = wish;
    if (++asked == 3) stand.Store->RefusesPosts = false;
  };
  stand.Set->Edit();
  stand.Number()->SetAsInteger(8);
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { stand.Set->Post(); }), "The store refuses");
  wish = daAbort;
  EXPECT_THROW(stand.Set->Post(), EAbort);
  EXPECT_EQ(stand.Set->State(), dsEdit);
  wish = daRetry;
  stand.Set->Post();
  EXPECT_EQ(stand.Store->Rows[0].Number, 8);
  EXPECT_EQ(asked, 3);
}

TEST(DataSetTest, APendingRecordOutlivesTheDeletionOfOthers) {
  TStand stand(5), other(0, 3, stand.Store);
  stand.Set->Next();
  stand.Set->Edit();
  stand.Number()->SetAsInteger(8);
  other.Set->Delete();
  EXPECT_EQ(stand.Number()->GetAsInteger(), 8);
  stand.Set->Post();
  EXPECT_EQ(stand.Store->Rows[0].Number, 8);
  EXPECT_EQ(stand.Link->Window(), "[2] 3 4 ");
  stand.Set->Edit();
  stand.Number()->SetAsInteger(9);
  other.Set->Delete();
  EXPECT_EQ(MessageOf<EDatabaseError>([&] { stand.Set->Post(); }), "The row is gone");
  stand.Set->Cancel();
  EXPECT_EQ(stand.Link->Window(), "[3] 4 5 ");
}

TEST(DataSetTest, OpeningReadsNoMoreThanTheBuffers) {
  TStand stand(1000, 7);
  EXPECT_EQ(stand.Set->Buffers(), 7);
  EXPECT_LE(stand.Set->Reads, 7);
  stand.Set->Reads = 0;
  while (!stand.Set->Eof()) stand.Set->Next();
  EXPECT_EQ(stand.Set->Reads, 994);
}

TEST(DataSetTest, AStreamedSetWaitsForItsParts) {
  TStand stand;
  stand.Set->Close();
  {
    TLoading loading(*stand.Set);
    stand.Set->SetActive(true);
    EXPECT_FALSE(stand.Set->GetActive());
    loading.Finish();
  }
  EXPECT_TRUE(stand.Set->GetActive());
}

TEST(DataSetTest, ThePartsGoInAnyOrder) {
  const char kParts[] = "dlsx";  // set, link, source, a field's link
  std::string order = kParts;
  do {
    TStand stand;
    TOwned<TFieldDataLink> field = Make<TFieldDataLink>();
    field->SetFieldName("Number");
    field->SetDataSource(stand.Source.get());
    EXPECT_NE(field->Field(), nullptr);
    for (const char part : order) {
      if (part == 'd') stand.Set.reset();
      if (part == 'l') stand.Link.reset();
      if (part == 's') stand.Source.reset();
      if (part == 'x') field.reset();
      EXPECT_EQ(field != nullptr && field->Field() != nullptr,
                field != nullptr && stand.Set != nullptr && stand.Source != nullptr);
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(ApplicationTest, TellsErrorsToItsHandlerButNoAbort) {
  std::string told;
  Application().OnException = [&](TObject*, const std::exception& error) { told += error.what(); };
  Application().HandleException(EAbort("silent"));
  Application().HandleException(EConvertError("loud"));
  Application().OnException = nullptr;
  EXPECT_EQ(told, "loud");
}

// -- Against a naive model --------------------------------------------------------------------------------------------

/// Two sets on one array with links of changing size; after each operation each shows what the model says, and its
/// window is a stretch of the array around the active record.
class TRandomRun {
 public:
  explicit TRandomRun(std::uint32_t seed) : random_(seed), a_(6, 3), b_(0, 1, a_.Store) {}
  void Run(int steps) {
    for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
      const bool first = Die(2) == 0;
      SCOPED_TRACE("step " + std::to_string(step));
      Step(first ? a_ : b_, first ? atA_ : atB_, first ? atB_ : atA_);
      Check(a_, atA_);
      Check(b_, atB_);
      isStale_ = false;
    }
  }

 private:
  std::int32_t Die(std::int32_t sides) { return static_cast<std::int32_t>(random_() % static_cast<unsigned>(sides)); }
  std::int32_t Count() const { return static_cast<std::int32_t>(a_.Store->Rows.size()); }
  std::int32_t IdAt(std::int32_t at) const {
    return at < Count() ? a_.Store->Rows[static_cast<std::size_t>(at)].Id : -1;
  }
  std::int32_t PlaceOf(std::int32_t id) const {
    std::int32_t at = 0;
    while (at < Count() && IdAt(at) != id) ++at;
    return at == Count() ? -1 : at;
  }

  void Step(TStand& stand, std::int32_t& active, std::int32_t& other) {
    TArraySet& set = *stand.Set;
    const std::int32_t place = active < 0 ? -1 : PlaceOf(active);
    switch (Die(12)) {
      case 0:
        set.First();
        active = IdAt(0);
        break;
      case 1:
        set.Last();
        active = Count() == 0 ? -1 : IdAt(Count() - 1);
        break;
      case 2:
      case 3: {
        const std::int32_t wish = Die(9) - 4;
        if (Count() > 0) active = IdAt(std::clamp(place + wish, 0, Count() - 1));
        EXPECT_EQ(set.MoveBy(wish), Count() == 0 ? 0 : PlaceOf(active) - place);
        break;
      }
      case 4:
        set.Insert();
        if (Die(2) == 0) set.Cancel();
        if (set.State() == dsInsert) PostNew(set, std::max(place, 0), active);
        break;
      case 5:
        set.Append();
        active = Count() == 0 ? -1 : IdAt(Count() - 1);
        if (Die(2) == 0) set.Cancel();
        if (set.State() == dsInsert) PostNew(set, Count(), active);
        break;
      case 6:
      case 7:
        if (Count() == 0) break;
        set.Edit();
        set.Fields(1)->SetAsInteger(Die(1000));
        Die(2) == 0 ? set.Cancel() : set.Post();
        break;
      case 8:
      case 9:
        if (Count() == 0) break;
        set.Delete();
        // Both stand on what came next, or on what was last.
        if (other == active) other = IdNear(place);
        active = IdNear(place);
        break;
      case 10:
        if (Count() == 0) break;
        active = IdAt(Die(Count()));
        set.GotoBookmark(TBookmark(std::string(reinterpret_cast<const char*>(&active), 4)));
        break;
      default:
        stand.Link->SetBufferCount(1 + Die(8));
    }
  }
  std::int32_t IdNear(std::int32_t place) const { return Count() == 0 ? -1 : IdAt(std::min(place, Count() - 1)); }
  void PostNew(TArraySet& set, std::int32_t place, std::int32_t& active) {
    set.Fields(1)->SetAsInteger(Die(1000));
    set.Post();
    active = a_.Store->LastId;
    EXPECT_EQ(PlaceOf(active), place);
    isStale_ = true;
    if (atA_ < 0 || atB_ < 0) {  // an empty set that isn't told of the first record shows it when it is refreshed
      a_.Set->Refresh();
      b_.Set->Refresh();
      atA_ = atB_ = active;
    }
  }

  void Check(TStand& stand, std::int32_t active) {
    ASSERT_EQ(stand.Set->ActiveId(), active);
    ASSERT_EQ(stand.Set->State(), dsBrowse);
    const TBookmark mark = stand.Set->GetBookmark();
    ASSERT_EQ(mark.IsNull(), active < 0);
    if (active < 0) {
      ASSERT_TRUE(stand.Set->Bof() && stand.Set->Eof());
      return;
    }
    TLogLink& link = *stand.Link;
    ASSERT_TRUE(link.ActiveRecord() >= 0 && link.ActiveRecord() < link.RecordCount());
    if (isStale_) stand.Set->Refresh();  // insertions of the other set are seen now
    ASSERT_EQ(stand.Set->ActiveId(), active);
    ASSERT_EQ(link.RecordCount(), std::min(link.BufferCount(), Count()));
    std::string expected;
    const std::int32_t start = PlaceOf(active) - link.ActiveRecord();
    for (std::int32_t i = start; i < start + link.RecordCount(); ++i) {
      const std::string id = std::to_string(IdAt(i));
      expected += (IdAt(i) == active ? "[" + id + "]" : id) + " ";
    }
    ASSERT_EQ(link.Window(), expected);
  }

  std::mt19937 random_;
  TStand a_, b_;
  std::int32_t atA_ = 1, atB_ = 1;
  bool isStale_ = false;
};

TEST(DataSetTest, ShowsWhatANaiveModelSays) {
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    TRandomRun(seed).Run(1000);
  }
}

}  // namespace
}  // namespace vx::test
