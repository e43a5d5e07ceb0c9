// Components from the text form: what is read is written and read again, and then nothing changes any more; what is
// refused has left the root as it was, unless a setter refused it.
//
//   the whole input is the text of a tower with bells (see StreamKit.h)
#include "Property.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/StreamKit.h"
#include "platform/component/StreamText.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;
using vx::fuzz::Runs;

bool IsOfASetter(const EReadError& error) { return error.Reason().find("99 is too much") != std::string::npos; }

void HoldWritten(TComponent& read, std::string_view input) {
  std::string stream;
  const bool isWritten = Runs<EWriteError>([&] { stream = ComponentToBinary(read); },
                                           "only EWriteError comes out of ComponentToBinary", input);
  if (!isWritten) return;  // a reference to what has no name, say
  const TOwned<TComponent> again = BinaryToComponent(stream);
  Hold(again != nullptr && ComponentToBinary(*again) == stream, "what is written reads back", input);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const test::TBellClasses classes;
  const std::string_view input = vx::fuzz::TextOf(data, size);

  test::TTower* const tower = Make<test::TTower>().release();
  const TComponentLink link(tower);  // a bell may free itself
  const std::string before = ComponentToBinary(*tower);
  bool isSetter = false;
  const bool isRead = Runs<EReadError>(
      [&] {
        try {
          TextIntoComponent(input, *tower);
        } catch (const EReadError& error) {
          isSetter = IsOfASetter(error);
          Hold(error.Place().Line > 0 && error.Place().Column > 0, "a mistake has a place", input);
          throw;
        }
      },
      "only EReadError comes out of TextIntoComponent", input);
  test::TakeLog();
  if (TComponent* const alive = link.Component()) {
    const TOwned<TComponent> freed(alive);
    if (isRead) HoldWritten(*alive, input);
    if (!isRead && !isSetter) Hold(ComponentToBinary(*alive) == before, "a refused form leaves the root alone", input);
  }

  TOwned<TComponent> made;
  if (Runs<EReadError>([&] { made = TextToComponent(input); }, "only EReadError comes out of TextToComponent", input) &&
      made != nullptr)
    HoldWritten(*made, input);
  test::TakeLog();
  return 0;
}
