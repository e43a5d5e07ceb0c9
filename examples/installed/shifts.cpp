// A program of a stranger, who has an installed Kestrix and not its source: jobs in a table, the longest first, in
// German. docs/package.md tells the ways to build it; the folders beside it are one for each.
#include <cstdint>
#include <iostream>
#include <utility>

#include "data/VXRAMTable_CMP.h"
#include "datetime/VXDateFunc_UNT.h"
#include "platform/runtime/Locale.h"
#include "platform/runtime/StringResources.h"

using namespace vx;

int main() {
  Locale() = ClassicLocale();
  Locale().DecimalSeparator = ',';
  SetResourceStrings({{14661, "Min."}, {14662, "Std."}, {14666, "Keine Zeiteinheit: %0:s."}});

  auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Task", vxrftString, 20);
  AddField(*table, "Seconds", vxrftInteger);
  auto row = table->NewRecord();
  for (auto [task, seconds] : {std::pair{"Drill", 5400}, {"Assemble", 27000}, {"Paint", 2700}}) {
    row->Field(0).AssignText(task);
    row->Field(1).AssignValue<std::int32_t>(seconds);
    std::int32_t id = 0;
    table->AddRecordAndValues(*row, -1, -1, id, /*append=*/true);
  }

  TVXRAMCursorDesc wish(nullptr, -1, vxrcoAscending, /*sortedField=*/"Seconds.D", nullptr, Variant());
  TVXRAMCursor* cursor = nullptr;
  table->OpenCursor(nullptr, &wish, cursor);
  for (cursor->GoToFirstRec(); cursor->GoToNextRec() == kDone;) {
    const double seconds = cursor->Get_Value(1).AsInteger();
    std::cout << cursor->Get_Value(0).AsString() << ": " << DurationToStr(seconds, 1, vxduAuto) << '\n';
  }
  table->CloseCursor(cursor);

  try {
    StrToDuration("3 Wochen", vxduHour);
  } catch (const EVXDateFuncException& error) {
    std::cout << error.Message() << '\n';
  }
}
