// A bucketed set: quantities by day, as one record for each week that any control could show.
#include <iostream>

#include "data/VXMemoryDatasetBucketer_CMP.h"
#include "data/VXRAMTable_CMP.h"
#include "datetime/VXDateFunc_UNT.h"

using namespace vx;

int main() {
  GVXStartOfWeek = 2;  // weeks begin on Monday
  const auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Day", vxrftDateTime);
  AddField(*table, "Quantity", vxrftFloat);

  const auto days = Make<TVXMemoryDataset>(nullptr);
  days->SetRAMTable(table.get());
  days->Open();
  for (int day = 0; day < 21; ++day) days->AppendRecord({Variant::Date(EncodeDate(2026, 3, 4) + day), day + 1.0});

  const auto weeks = Make<TVXMemoryDatasetBucketer>(nullptr);
  weeks->SetRAMTable(table.get());
  weeks->SetBucketedField("Day");
  weeks->SetGroupMode(vxgrOneWeek);
  weeks->Get_BucketFieldDefs()->Add("Quantity", vxbtCumulate);
  weeks->SetSortedField("Day");
  weeks->Open();
  for (weeks->First(); !weeks->Eof(); weeks->Next())
    std::cout << FormatDateTime("yyyy-mm-dd", weeks->FieldByName("Day")->GetAsDateTime()) << ": "
              << weeks->FieldByName("Quantity")->GetAsFloat() << '\n';
}
