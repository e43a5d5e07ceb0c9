// Codes and their texts: a lookup set turns what a record keeps into what a person reads, and back.
#include <iostream>

#include "data/VXLookupDataSet_CMP.h"

using namespace vx;

int main() {
  const auto priorities = Make<TVXLookupDataSet>(nullptr);
  priorities->SetSortOrder(vxlsoKey);
  for (const auto& [key, text] : {std::pair{30, "Urgent"}, {10, "Low"}, {20, "Normal"}})
    priorities->AddLookupValue(key, text);
  priorities->Open();

  for (priorities->First(); !priorities->Eof(); priorities->Next())
    std::cout << priorities->GetFieldValue("ID").AsInteger() << " is " << priorities->GetFieldValue("String").AsString()
              << '\n';
  std::cout << "20 reads " << priorities->LookupKey(20) << '\n';
  std::cout << "urgent is kept as " << priorities->Lookup("String", "urgent", "ID").AsInteger() << '\n';
}
