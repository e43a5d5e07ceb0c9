// Who opens a cursor closes it, before the table goes. What happens otherwise is shown too.
#include <cstdio>

#include "data/VXRAMTable_CMP.h"

using namespace vx;

int main() {
  TVXRAMTable* table = Make<TVXRAMTable>(nullptr).release();
  AddField(*table, "Task", vxrftString, 20);
  TVXRAMCursorDesc wish(nullptr, -1, vxrcoAscending, "", nullptr, Variant());
  TVXRAMCursor* first = nullptr;
  TVXRAMCursor* second = nullptr;
  table->OpenCursor(nullptr, &wish, first);
  table->OpenCursor(nullptr, &wish, second);

  try {
    table->Free();  // too early: it frees the first cursor, stumbles, and stays as it is
  } catch (const EListError& error) {
    std::printf("%s; %d cursor left\n", error.what(), table->Get_CursorCount());
  }
  table->CloseCursor(second);  // the right order
  table->Free();
  std::printf("closed in order\n");
}
