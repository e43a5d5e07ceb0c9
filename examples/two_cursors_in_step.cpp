// Two views of one table: one by start, one of the late tasks only. What one of them changes, the other shows.
#include <cstdio>
#include <string>

#include "data/VXRAMTable_CMP.h"

using namespace vx;

/// Owns a cursor, as a data set does: it is told of every deletion, and keeps its place by record id.
class TView : public TComponent, public IRecordOwner {
 public:
  TView(TVXRAMTable& table, const std::string& sorting, TVXRAMFieldDef* field, const Variant& value)
      : TComponent(nullptr), table_(table), wish_(this, -1, vxrcoAscending, sorting, field, value) {}

  void AfterConstruction() override {
    TComponent::AfterConstruction();
    table_.OpenCursor(nullptr, &wish_, Cursor);
  }
  void TearDown() override {
    table_.CloseCursor(Cursor);
    TComponent::TearDown();
  }
  void Refresh() override { std::printf("  (a record goes)\n"); }

  void Print(const char* title) const {
    std::printf("%s:", title);
    for (Cursor->GoToFirstRec(); Cursor->GoToNextRec() == kDone;)
      std::printf(" %s", Cursor->Get_Value(0).AsString().c_str());
    std::printf("\n");
  }

  TVXRAMCursor* Cursor = nullptr;

 private:
  TVXRAMTable& table_;
  TVXRAMCursorDesc wish_;
};

int main() {
  auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Task", vxrftString, 20);
  AddField(*table, "Start", vxrftDateTime);
  TVXRAMFieldDef* const late = AddField(*table, "Late", vxrftBoolean);
  {
    auto all = Make<TView>(*table, "Start", nullptr, Variant());
    auto lateOnes = Make<TView>(*table, "", late, Variant(true));

    auto record = table->NewRecord();
    const auto add = [&](const char* task, TDateTime start, bool isLate) {
      record->Field(0).AssignText(task);
      record->Field(1).AssignValue(start);
      record->Field(2).AssignValue<std::uint8_t>(isLate);
      all->Cursor->InsertRecWithValues(*record, /*append=*/true);
    };
    add("Paint", EncodeDate(2026, 3, 20), true);
    add("Saw", EncodeDate(2026, 3, 2), false);
    add("Drill", EncodeDate(2026, 3, 9), true);
    all->Print("all by start");
    lateOnes->Print("late");

    // Drill stands first here too: the sort of the other view reordered the list that this one is filtered from.
    lateOnes->Cursor->Set_RecIndex(0);
    lateOnes->Cursor->DeleteRec();
    all->Print("all by start");
    lateOnes->Print("late");
  }  // the views close their cursors, then the table goes
}
