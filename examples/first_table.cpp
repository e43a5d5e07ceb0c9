// A table is filled, and walked with the longest task first.
#include <iostream>
#include <utility>

#include "data/VXRAMTable_CMP.h"

using namespace vx;

int main() {
  auto table = Make<TVXRAMTable>(nullptr);  // freed by the handle
  AddField(*table, "Task", vxrftString, 20);
  AddField(*table, "Hours", vxrftInteger);

  auto row = table->NewRecord();
  for (auto [task, hours] : {std::pair{"Drill", 4}, {"Assemble", 11}, {"Paint", 7}}) {
    row->Field(0).AssignText(task);
    row->Field(1).AssignValue<std::int32_t>(hours);
    std::int32_t id = 0;
    table->AddRecordAndValues(*row, -1, -1, id, /*append=*/true);
  }

  TVXRAMCursorDesc wish(nullptr, -1, vxrcoAscending, /*sortedField=*/"Hours.D", nullptr, Variant());
  TVXRAMCursor* cursor = nullptr;
  table->OpenCursor(nullptr, &wish, cursor);
  for (cursor->GoToFirstRec(); cursor->GoToNextRec() == kDone;)
    std::cout << cursor->Get_Value(0).AsString() << " takes " << cursor->Get_Value(1).AsInteger() << " hours\n";
  table->CloseCursor(cursor);
}
