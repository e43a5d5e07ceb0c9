// Random operations on three data sets over one table (plain; sorted and filtered; detail of a master), on the real
// ones and on the model (model/DataSetModel.h) side by side. What each set and the controls on it show, and the events
// of all, must agree after each. Now and then an event raises.
//
//   KESTRIX_MODEL_OPS=2000000 KESTRIX_MODEL_SEED=77 tests_data --gtest_filter='RandomDataSets.*'

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "data/VXMemoryDataset_CMP.h"
#include "model/DataSetModel.h"
#include "model/Dice.h"
#include "model/EngineSide.h"
#include "platform/dataset/DataLink.h"
#include "platform/dataset/Fields.h"
#include "support/DataSetEvents.h"

namespace vx {
namespace {

using naive::TSet;

constexpr std::int64_t kOperations = 100'000;
constexpr std::int32_t kOperationsPerTable = 400;

enum { kKey, kName, kGroup };
constexpr std::int32_t kNameSize = 5;
const std::vector<std::string> kNames = {"", "a", "A", "ab", "Ab", "AB", "b", "12", "1"};
const std::vector<std::int32_t> kMasterGroups = {0, 1, 2};  // and a last one that is null

/// The calls without arguments.
struct TCall {
  char letter;
  const char* name;
  void (TSet::*onModel)();
  void (TDataSet::*onReal)();
};
constexpr TCall kCalls[] = {
    {'f', "first", &TSet::First, &TDataSet::First},       {'l', "last", &TSet::Last, &TDataSet::Last},
    {'i', "insert", &TSet::Insert, &TDataSet::Insert},    {'a', "append", &TSet::Append, &TDataSet::Append},
    {'e', "edit", &TSet::Edit, &TDataSet::Edit},          {'p', "post", &TSet::Post, &TDataSet::Post},
    {'c', "cancel", &TSet::Cancel, &TDataSet::Cancel},    {'d', "delete", &TSet::Delete, &TDataSet::Delete},
    {'r', "refresh", &TSet::Refresh, &TDataSet::Refresh},
};

/// As TSet::RowText of the active record.
std::string RowText(TDataSet& set) {
  std::string text = "#" + std::to_string(static_cast<TVXMemoryDataset&>(set).GetRecordId());
  for (std::int32_t i = 0; i < set.FieldCount(); ++i) {
    const TField& field = *set.Fields(i);
    text += " " + field.FieldName() + "=" + (field.IsNull() ? "null" : field.GetAsString());
  }
  return text;
}

/// A control that shows several records. It paints only what it is told of.
class TControl : public TDataLink {
 public:
  /// Of the real set, as they are now.
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    const std::int32_t active = ActiveRecord();
    for (std::int32_t i = 0; i < RecordCount(); ++i) {
      SetActiveRecord(i);
      rows.push_back(RowText(*DataSet()));
    }
    if (!rows.empty()) SetActiveRecord(active);
    return rows;
  }
  void Resize(std::int32_t count) {
    SetBufferCount(count);
    painted = Rows();
  }
  std::vector<std::string> painted;
  std::function<void()> note;  ///< of UpdateData

 protected:
  void UpdateData() override { note(); }
  void ActiveChanged() override { painted = Rows(); }
  void DataSetChanged() override { painted = Rows(); }
  /// Paints only what comes into sight.
  void DataSetScrolled(std::int32_t distance) override {
    const std::vector<std::string> before = std::exchange(painted, Rows());
    for (std::int32_t i = 0; i < std::ssize(painted); ++i)
      if (const std::int32_t at = i + distance; at >= 0 && at < std::ssize(before))
        painted[static_cast<std::size_t>(i)] = before[static_cast<std::size_t>(at)];
  }
  void RecordChanged(TField*) override {
    if (ActiveRecord() < std::ssize(painted)) painted[static_cast<std::size_t>(ActiveRecord())] = RowText(*DataSet());
  }
};

/// A real set and its model.
struct TPair {
  std::unique_ptr<TSet> model;
  TOwned<TVXMemoryDataset> real = Make<TVXMemoryDataset>(nullptr);
  TOwned<TDataSource> source = Make<TDataSource>(nullptr);
  std::vector<TOwned<TControl>> controls;
  std::string bookmark;  ///< of the real set, taken at some time
  std::int32_t bookmarkId = -1;
};

class TRun {
 public:
  explicit TRun(std::uint32_t seed) : dice_(seed) {
    AddField(*table_, "Key", vxrftInteger);
    AddField(*table_, "Name", vxrftString, kNameSize);
    AddField(*table_, "Group", vxrftInteger);
    naiveTable_.AddField("Key", naive::TType::Integer, 4);
    naiveTable_.AddField("Name", naive::TType::String, kNameSize);
    naiveTable_.AddField("Group", naive::TType::Integer, 4);
    OpenMaster();
    AddSet({.name = "plain", .fields = {kKey, kName, kGroup}});
    AddSet(
        {.name = "sorted", .fields = {kKey, kName}, .calculates = true, .sortedField = "Name;Key.D", .filters = true});
    AddSet({.name = "detail",
            .fields = {kKey, kName, kGroup},
            .calculates = true,
            .detailField = naiveTable_.Def(kGroup),
            .masterValue = naive::TValue(0)});
  }
  ~TRun() {
    for (TPair& pair : pairs_) pair.real->Close();
    master_->Close();
  }

  /// One call on both sides; what differs afterwards, or nothing.
  std::string Step() {
    if (dice_.OneIn(12))
      MoveMaster();
    else
      Operate(pairs_[static_cast<std::size_t>(dice_.Below(3))]);
    return CompareAll();
  }
  /// Walks each set from its first record to its last.
  std::string WalkAll() {
    raises_ = false;
    for (TPair& pair : pairs_) {
      Do(
          &pair, "first", [&] { pair.model->First(); }, [&] { pair.real->First(); });
      if (pair.model->IsEditing()) continue;  // its record is gone: it can't be posted, and so not be left
      while (CompareAll().empty() && !pair.real->Eof())
        Do(
            &pair, "next", [&] { pair.model->MoveBy(1); }, [&] { pair.real->MoveBy(1); });
    }
    Compare("rows", "", table_->CheckRows());
    return CompareAll();
  }
  std::string Report() const {
    std::string report;
    for (std::size_t i = history_.size() - std::min<std::size_t>(history_.size(), 25); i < history_.size(); ++i)
      report += history_[i] + "\n";
    return report;
  }

 private:
  void OpenMaster() {
    AddField(*masterTable_, "Group", vxrftInteger);
    for (std::size_t i = 0; i <= kMasterGroups.size(); ++i) {
      const auto record = masterTable_->NewRecord();
      if (i < kMasterGroups.size()) record->Field(0).AssignValue(kMasterGroups[i]);
      std::int32_t id = -1;
      masterTable_->AddRecordAndValues(*record, -2, -1, id, true);
    }
    master_->SetRAMTable(masterTable_.get());
    master_->Open();
    source_->SetDataSet(master_.get());
  }

  void AddSet(naive::TSetDesc desc) {
    TPair& pair = pairs_.emplace_back();
    TVXMemoryDataset& real = *pair.real;
    real.SetRAMTable(table_.get());
    real.SetSortedField(desc.sortedField);
    if (desc.calculates) AddPersistentFields(real, desc.fields);
    if (desc.calculates) real.OnCalcFields = &TRun::Calculate;
    if (desc.filters)
      real.SetOnFilterRecord([](TDataSet* set, bool& accept) {
        accept = !set->Fields(0)->IsNull() && set->Fields(0)->GetAsInteger() % 3 != 1;
      });
    if (desc.detailField != nullptr) {
      real.SetMasterSource(source_.get());
      real.SetMasterField("Group");
      real.SetDetailField("Group");
    }
    for (const auto& [name, slot] : test::kDataSetEvents)
      real.*slot = [this, text = desc.name + " " + name](TDataSet*) { Note(text); };
    pair.model = std::make_unique<TSet>(naiveTable_, std::move(desc), naiveEvents_);
    AddControls(pair);
    pair.model->Open();
    real.Open();
  }

  /// Two, one or none.
  void AddControls(TPair& pair) {
    const std::int32_t count = dice_.Below(3);
    if (count > 0) pair.source->SetDataSet(pair.real.get());
    pair.model->controls = count;
    for (std::int32_t i = 0; i < count; ++i) {
      TControl& control = *pair.controls.emplace_back(Make<TControl>());
      control.note = [this, text = pair.model->desc.name + " UpdateData"] { Note(text); };
      control.SetDataSource(pair.source.get());
    }
  }

  void AddPersistentFields(TVXMemoryDataset& set, const std::vector<std::size_t>& fields) {
    for (const std::size_t nb : fields) {
      TField* const field = nb == kName ? static_cast<TField*>(New<TStringField>(&set)) : New<TIntegerField>(&set);
      if (nb == kName) field->SetSize(kNameSize);
      field->SetFieldName(naiveTable_.fields[nb]->name);
      field->SetDataSet(&set);
    }
    TField* const calculated = New<TStringField>(&set);
    calculated->SetSize(40);
    calculated->SetFieldName("Calc");
    calculated->SetFieldKind(fkCalculated);
    calculated->SetDataSet(&set);
  }

  static void Calculate(TDataSet* sender) {
    auto& set = static_cast<TVXMemoryDataset&>(*sender);
    const std::int32_t last = set.FieldCount() - 1;
    std::vector<std::string> values;
    for (std::int32_t i = 0; i < last; ++i)
      values.push_back(set.Fields(i)->IsNull() ? "null" : set.Fields(i)->GetAsString());
    if (const std::string text = TSet::CalcText(set.GetRecordId(), values); text != "null")
      set.Fields(last)->SetAsString(text);
  }

  void Note(const std::string& event) {
    if (!realEvents_.Note(event)) return;
    if (realEvents_.raised == "EAbort") throw EAbort("");
    throw Exception("");
  }

  // -- Calls ---

  template <class Model, class Real>
  void Do(const TPair* pair, const std::string& what, Model&& onModel, Real&& onReal) {
    history_.push_back((pair == nullptr ? "master" : pair->model->desc.name) + " " + what);
    PlanRaise();
    const std::string expected = Class(naive::Outcome(onModel));
    const std::string got = naive::Outcome(onReal);
    history_.back() += "  -> " + expected;
    Compare("answers", expected, Class(got));
  }
  /// Of the events that the next call tells, one may raise.
  void PlanRaise() {
    const auto next = static_cast<std::size_t>(dice_.Between(1, 5));
    naiveEvents_.raisesAt = raises_ && dice_.OneIn(3) ? naiveEvents_.lines.size() + next : 0;
    naiveEvents_.raised = dice_.OneIn(2) ? "EAbort" : "Exception";
    realEvents_.raisesAt = naiveEvents_.raisesAt;
    realEvents_.raised = naiveEvents_.raised;
  }
  /// Of an error its class alone: texts are the sets' own choice.
  static std::string Class(const std::string& outcome) {
    return outcome.rfind("raises", 0) == 0 ? outcome.substr(0, outcome.find(':')) : outcome;
  }

  void MoveMaster() {
    const std::int32_t record = dice_.Below(4);
    const auto all = static_cast<std::int32_t>(kMasterGroups.size());
    TSet& detail = *pairs_[2].model;
    Do(
        nullptr, "to " + std::to_string(record),
        [&] {
          detail.CheckBrowseMode();
          detail.MasterChanged(record == all ? naive::TValue(naive::TNull{}) : naive::TValue(record));
        },
        [&] { master_->SetRecNo(record + 1); });
  }

  void Operate(TPair& pair) {
    // Fewer deletions than new records, and values for these.
    static const std::string kBrowsing = "flmmmmiiaaeeeewpcdrkkbbsog", kEditing = "wwwwwwwppppcflmiaedrkbsog";
    const std::string& calls = pair.model->IsEditing() ? kEditing : kBrowsing;
    const char call = calls[static_cast<std::size_t>(dice_.Below(static_cast<std::int32_t>(calls.size())))];
    for (const TCall& plain : kCalls)
      if (plain.letter == call)
        Do(
            &pair, plain.name, [&] { (*pair.model.*plain.onModel)(); }, [&] { (*pair.real.*plain.onReal)(); });
    if (call == 'm') Move(pair);
    if (call == 'w') Write(pair);
    if (call == 'k') Locate(pair);
    if (call == 'b') UseBookmark(pair);
    if (call == 's') Sort(pair);
    if (call == 'o') Reopen(pair);
    if (call == 'g') Resize(pair);
  }

  /// Until nobody refuses.
  void Reopen(TPair& pair) {
    Do(
        &pair, "close", [&] { pair.model->Close(); }, [&] { pair.real->Close(); });
    while (!pair.real->GetActive() && difference_.empty())
      Do(
          &pair, "open", [&] { pair.model->Open(); }, [&] { pair.real->Open(); });
  }

  void Resize(TPair& pair) {
    if (pair.controls.empty()) return;
    TControl& control = *dice_.Pick(pair.controls);
    const std::int32_t count = dice_.Between(1, 6);
    const auto largest = [](std::size_t most, const auto& each) {
      return std::max(most, static_cast<std::size_t>(each->BufferCount()));
    };
    Do(
        &pair, "control from " + std::to_string(control.BufferCount()) + " to " + std::to_string(count), [] {},
        [&] { control.Resize(count); });
    pair.model->SetRoom(std::accumulate(pair.controls.begin(), pair.controls.end(), std::size_t{2}, largest));
  }

  void Sort(TPair& pair) {
    if (!pair.model->desc.filters) return;  // the others show the order of the table, which is theirs together
    const std::string order = dice_.Pick(std::vector<std::string>{"", "Name;Key.D", "Key", "Key.D;Name"});
    Do(
        &pair, "sort by \"" + order + "\"", [&] { pair.model->SetSortedField(order); },
        [&] { pair.real->SetSortedField(order); });
  }

  void Move(TPair& pair) {
    if (dice_.OneIn(6)) {
      const std::int32_t count = pair.real->RecordCount();
      const std::int32_t number = count == 0 ? 1 : dice_.Between(1, count);
      return Do(
          &pair, "to number " + std::to_string(number), [&] { pair.model->SetRecNo(number); },
          [&] { pair.real->SetRecNo(number); });
    }
    const std::int32_t distance = dice_.Pick(std::vector<std::int32_t>{-2, -1, -1, 1, 1, 1, 1, 3});
    Do(
        &pair, "move by " + std::to_string(distance), [&] { pair.model->MoveBy(distance); },
        [&] { pair.real->MoveBy(distance); });
  }

  void Write(TPair& pair) {
    for (const std::size_t field : pair.model->desc.fields)
      if (dice_.OneIn(2)) Write(pair, field);
  }

  void Write(TPair& pair, std::size_t field) {
    const std::string name = table_->Get_FieldDefs()->Get_Item(static_cast<std::int32_t>(field))->Get_Name();
    naive::TField value{!dice_.OneIn(8), {}};
    const std::string text = dice_.Pick(kNames);
    const std::int32_t number = field == kKey ? dice_.Below(9) : dice_.Below(3);
    if (field == kName)
      value.bytes = naive::BytesOf(text, kNameSize);
    else
      value.bytes = naive::BytesOf(naive::TType::Integer, number, 4);
    Do(
        &pair,
        name + " := " +
            (!value.assigned  ? "null"
             : field == kName ? text
                              : std::to_string(number)),
        [&] { pair.model->Write(field, value); },
        [&] {
          TField& real = *pair.real->FieldByName(name);
          if (!value.assigned)
            real.Clear();
          else if (field == kName)
            real.SetAsString(text);
          else
            real.SetAsInteger(number);
        });
  }

  void Locate(TPair& pair) {
    const std::size_t field = static_cast<std::size_t>(dice_.Below(2));
    const bool ignoreCase = dice_.OneIn(2), partial = dice_.OneIn(2);
    const std::string text =
        (field == kName ? dice_.Pick(kNames) : std::to_string(dice_.Below(9))) + (dice_.OneIn(3) ? "*" : "");
    TLocateOptions options;
    options.Put(loCaseInsensitive, ignoreCase);
    options.Put(loPartialKey, partial);
    Do(
        &pair, "locate \"" + text + "\"" + (ignoreCase ? " ignoring case" : "") + (partial ? " partially" : ""),
        [&] { return pair.model->Locate(field, text, ignoreCase, partial); },
        [&] { return pair.real->Locate(field == kName ? "Name" : "Key", text, options); });
  }

  void UseBookmark(TPair& pair) {
    if (dice_.OneIn(2)) {
      pair.bookmark = pair.real->GetBookmarkStr();
      pair.bookmarkId = pair.model->Id();
      return;
    }
    Do(
        &pair, "to bookmark " + std::to_string(pair.bookmarkId), [&] { pair.model->GotoBookmark(pair.bookmarkId); },
        [&] { pair.real->SetBookmarkStr(pair.bookmark); });
  }

  // -- Comparing ---

  std::string CompareAll() {
    for (TPair& pair : pairs_) {
      Compare(pair.model->desc.name, pair.model->Text(), RealText(*pair.real));
      for (const auto& control : pair.controls) CompareControl(*pair.model, *control);
    }
    Compare("events", Joined(naiveEvents_.lines), Joined(realEvents_.lines));
    naiveEvents_.lines.clear();
    realEvents_.lines.clear();
    return difference_;
  }

  /// Which of the set's records a control shows is open; but they are as many as can be, and the active one is there.
  void CompareControl(const TSet& model, TControl& control) {
    const std::int32_t active = control.ActiveRecord();
    const auto room = static_cast<std::size_t>(control.BufferCount());
    const std::string rows = Joined(model.Rows(static_cast<std::size_t>(active), room));
    const std::string what =
        model.desc.name + ", control of " + std::to_string(room) + ", active " + std::to_string(active);
    const std::size_t most = std::min(room, model.Held());
    Compare(what + ", count", std::to_string(most), std::to_string(control.RecordCount()));
    Compare(what, rows, Joined(control.Rows()));
    Compare(what + ", as painted", rows, Joined(control.painted));
    Compare(what + ", editing", naive::ToText(model.IsEditing()), naive::ToText(control.Editing()));
  }

  static std::string RealText(TVXMemoryDataset& set) {
    if (!set.GetActive()) return "closed";
    const std::string state = set.State() == dsBrowse ? "browse" : set.State() == dsEdit ? "edit" : "insert";
    const std::string bookmark = set.GetBookmarkStr();
    std::int32_t id = -1;
    if (!bookmark.empty()) std::memcpy(&id, bookmark.data(), sizeof id);
    return state + (set.Bof() ? " bof" : "") + (set.Eof() ? " eof" : "") + " at " + std::to_string(id) + ", record " +
           std::to_string(set.RecNo()) + " of " + std::to_string(set.RecordCount()) + " " + RowText(set);
  }

  static std::string Joined(const std::vector<std::string>& lines) {
    std::string all;
    for (const std::string& line : lines) all += line + "; ";
    return all;
  }

  void Compare(const std::string& what, const std::string& expected, const std::string& got) {
    if (expected != got && difference_.empty()) difference_ = what + "\n  model " + expected + "\n  real  " + got;
  }

  naive::TDice dice_;
  naive::TTable naiveTable_{"Orders"};
  TOwned<TVXRAMTable> table_ = Make<TVXRAMTable>(nullptr);
  TOwned<TVXRAMTable> masterTable_ = Make<TVXRAMTable>(nullptr);
  TOwned<TVXMemoryDataset> master_ = Make<TVXMemoryDataset>(nullptr);
  TOwned<TDataSource> source_ = Make<TDataSource>(nullptr);
  naive::TEvents naiveEvents_, realEvents_;
  std::vector<std::string> history_;
  std::vector<TPair> pairs_;
  std::string difference_;
  bool raises_ = true;
};

std::int64_t FromEnvironment(const char* name, std::int64_t otherwise) {
  const char* const text = std::getenv(name);
  return text != nullptr ? std::atoll(text) : otherwise;
}

TEST(RandomDataSets, AgreeWithTheModel) {
  const std::int64_t operations = FromEnvironment("KESTRIX_MODEL_OPS", kOperations);
  auto seed = static_cast<std::uint32_t>(FromEnvironment("KESTRIX_MODEL_SEED", 1));
  for (std::int64_t done = 0; done < operations; ++seed) {
    TRun run(seed);
    for (std::int32_t step = 0; step < kOperationsPerTable; ++step, ++done) {
      const std::string difference = run.Step();
      ASSERT_EQ(difference, "") << "KESTRIX_MODEL_SEED=" << seed << ", step " << step << "\n" << run.Report();
    }
    ASSERT_EQ(run.WalkAll(), "") << "KESTRIX_MODEL_SEED=" << seed << "\n" << run.Report();
  }
}

}  // namespace
}  // namespace vx
