// Recorded drawings: any bytes, taken for a text.
//
// A text that is refused is refused at a place within it, and not one line of it is drawn. What is accepted is drawn on
// a recording device; what that wrote, played and recorded again, is the same text.
#include "platform/canvas/DrawScript.h"

#include <algorithm>

#include "Property.h"
#include "platform/canvas/RecordingDevice.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;

/// Longer ones take time without telling more: each drawing of a picture is compared with all of its pixels.
constexpr std::size_t kMostBytes = 8192;

/// What is recorded of a text; false if it was refused.
bool Play(std::string_view text, std::string& recorded, std::string_view input) {
  TRecordingCanvas canvas;
  const bool isDrawn = vx::fuzz::Runs<EDrawScriptError>(
      [&] {
        try {
          PlayDrawing(text, canvas);
        } catch (const EDrawScriptError& error) {
          const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
          Hold(error.Line() >= 1 && error.Line() <= lines, "an error names a line of the text", input);
          Hold(error.Column() >= 1 && error.Column() <= text.size() + 1, "and a column", input);
          Hold(error.Message().size() < 400, "a message is short", input);
          throw;
        }
      },
      "only EDrawScriptError comes out of PlayDrawing", input);
  Hold(isDrawn || canvas.Text().empty(), "nothing is drawn of a broken text", input);
  recorded = canvas.Text();
  return isDrawn;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kMostBytes) return 0;
  const std::string_view text = vx::fuzz::TextOf(data, size);
  std::string first, second;
  if (!Play(text, first, text)) return 0;
  vx::fuzz::Runs<EDrawScriptError>([&] { DrawingSize(text); }, "an accepted text has no broken size", text);
  Hold(Play(first, second, text) && first == second, "a recording that is played is recorded alike", text);
  return 0;
}
