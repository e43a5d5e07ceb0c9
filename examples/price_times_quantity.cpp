// A calculated field: worked out whenever a record is read, and again while it is being changed.
#include <iostream>

#include "data/VXMemoryDataset_CMP.h"
#include "data/VXRAMTable_CMP.h"
#include "platform/dataset/Fields.h"

using namespace vx;

int main() {
  const auto table = Make<TVXRAMTable>(nullptr);
  AddField(*table, "Price", vxrftFloat);
  AddField(*table, "Quantity", vxrftInteger);

  const auto orders = Make<TVXMemoryDataset>(nullptr);
  orders->SetRAMTable(table.get());
  const auto add = [&](TField* field, const char* name, TFieldKind kind) {
    field->SetFieldName(name);
    field->SetFieldKind(kind);
    field->SetDataSet(orders.get());
    return field;
  };
  TField* const price = add(New<TFloatField>(orders.get()), "Price", fkData);
  TField* const quantity = add(New<TIntegerField>(orders.get()), "Quantity", fkData);
  TField* const value = add(New<TFloatField>(orders.get()), "Value", fkCalculated);
  orders->OnCalcFields = [&](TDataSet*) { value->SetAsFloat(price->GetAsFloat() * quantity->GetAsInteger()); };

  orders->Open();
  orders->AppendRecord({2.5, 4});
  std::cout << value->GetAsFloat() << '\n';
  orders->Edit();
  quantity->SetAsInteger(10);
  std::cout << value->GetAsFloat() << " before the post\n";
  orders->Post();
}
