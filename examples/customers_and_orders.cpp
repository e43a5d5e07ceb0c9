// Master and detail: the orders follow the customer on whom the master stands.
#include <iostream>

#include "data/VXMemoryDataset_CMP.h"
#include "data/VXRAMTable_CMP.h"
#include "platform/dataset/DataLink.h"

using namespace vx;

int main() {
  const auto owner = Make<TComponent>(nullptr);
  const auto table = [&](std::initializer_list<const char*> names) {
    auto* const made = New<TVXRAMTable>(owner.get());
    for (const char* const name : names) AddField(*made, name, vxrftString, 12);
    auto* const set = New<TVXMemoryDataset>(owner.get());
    set->SetRAMTable(made);
    return set;
  };
  TVXMemoryDataset* const customers = table({"Customer", "City"});
  TVXMemoryDataset* const orders = table({"Order", "Customer"});
  customers->Open();
  customers->AppendRecord({"Alba", "Graz"});
  customers->AppendRecord({"Brema", "Turin"});

  orders->Open();
  for (const auto& [order, customer] : {std::pair{"17", "Brema"}, {"18", "Alba"}, {"19", "Brema"}})
    orders->AppendRecord({order, customer});
  auto* const source = New<TDataSource>(owner.get());
  source->SetDataSet(customers);
  orders->SetMasterSource(source);
  orders->SetMasterField("Customer");
  orders->SetDetailField("Customer");
  orders->Refresh();
  for (customers->First(); !customers->Eof(); customers->Next())
    for (orders->First(); !orders->Eof(); orders->Next())
      std::cout << customers->GetFieldValue("City").AsString() << ": " << orders->GetFieldValue("Order").AsString()
                << '\n';
}
