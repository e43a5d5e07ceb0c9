// Days become weeks: quantities by day are read as one row for each week and item.
#include <cstdio>

#include "data/VXRAMCursorBucketer_CMP.h"
#include "datetime/VXDateFunc_UNT.h"

using namespace vx;

int main() {
  GVXStartOfWeek = 2;  // weeks begin on Monday
  auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Day", vxrftDateTime);
  AddField(*table, "Item", vxrftString, 12);
  AddField(*table, "Quantity", vxrftFloat);

  auto record = table->NewRecord();
  for (std::int32_t day = 0; day < 21; ++day) {
    std::int32_t id = kNoRecordId;
    record->Field(0).AssignValue(EncodeDate(2026, 3, 4) + day);
    record->Field(1).AssignText(day % 2 == 0 ? "Bolts" : "Nuts");
    record->Field(2).AssignValue<double>(day + 1);
    table->AddRecordAndValues(*record, -1, -1, id, /*append=*/true);
  }

  auto folds = Make<TVXBucketFieldDefs>(nullptr);
  folds->Add("Quantity", vxbtCumulate);
  TVXRAMCursorBucketerDesc wish(nullptr, -1, vxrcoAscending, "Day;Item", nullptr, Variant(), folds.get(), vxgrOneDay,
                                vxgrOneWeek, "Day;Item", /*bucketByStartOfGroup=*/true);
  TVXRAMCursor* weeks = nullptr;
  table->OpenCursor(TClassOf<TVXRAMCursor>::Of<TVXRAMCursorBucketer>(), &wish, weeks);
  for (weeks->GoToFirstRec(); weeks->GoToNextRec() == kDone;)
    std::printf("week of %s  %-6s %5.0f\n", FormatDateTime("yyyy-mm-dd", weeks->Get_Value(0).AsDate()).c_str(),
                weeks->Get_Value(1).AsString().c_str(), weeks->Get_Value(2).AsDouble());
  table->CloseCursor(weeks);
}
