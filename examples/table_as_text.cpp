// A component to text and back: what a table is, as a person can read, write and compare it.
#include <iostream>

#include "data/VXRAMTable_CMP.h"
#include "package/Package.h"
#include "platform/component/ComponentStream.h"

int main() {
  using namespace vx;
  const TPackage package;  // makes the classes known by their names

  // Written by hand, as it comes.
  const TOwned<TComponent> orders = TextToComponent(R"(
    object Orders: TVXRAMTable
      FieldDefs = <
        item Name = 'Order' ByteSize = 4  DataType = vxrftInteger end      // a form says the size of each field
        item Name = 'Item'  ByteSize = 20 DataType = vxrftString end
        item Name = 'Due'   ByteSize = 8  DataType = vxrftDateTime end>
    end)");
  std::cout << ComponentToText(*orders);

  // The binary form holds the same; it is smaller, quicker, and knows when a byte of it was changed.
  const std::string stream = ComponentToBinary(*orders);
  const TOwned<TComponent> copy = BinaryToComponent(stream);
  std::cout << (ComponentToBinary(*copy) == stream ? "equal" : "different") << '\n';

  // A mistake is told at its place, and nothing has happened then.
  try {
    TextIntoComponent("object TVXRAMTable\n  FieldDefs = <item DataType = vxrftMoon end>\nend", *orders);
  } catch (const EReadError& error) {
    std::cout << error.Message() << '\n';
  }
  std::cout << Cast<TVXRAMTable>(orders.get())->Get_FieldDefs()->Count() << " fields\n";
}
