// The binary form of a component stream: any bytes as its contents, and as the whole of it.
//
// Mark, length and check sum are put before the contents, so that they keep nothing out. What is accepted goes to the
// text form and back without a loss, and without growing beyond what is told; and the writer of texts accepts what the
// cursor accepts when it only passes over it.
#include "Property.h"
#include "platform/component/StreamText.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;

/// The message of the EReadError of the call; none if it comes through.
template <class Call>
std::string ErrorOf(Call&& call, std::string_view stream, std::string_view input) {
  std::string message;
  vx::fuzz::Runs<Exception>(
      [&] {
        try {
          call();
        } catch (const EReadError& error) {
          message = error.Message();
          Hold(error.Place().Line == 0 && error.Place().Offset <= stream.size(), "an error has a place in the stream",
               input);
        }
      },
      "only EReadError comes out of reading", input);
  return message;
}

void HoldStream(std::string_view stream, std::string_view input) {
  std::string text;
  const std::string error = ErrorOf([&] { text = BinaryToText(stream); }, stream, input);
  Hold(error.empty() != text.empty(), "there is a text or an EReadError", input);
  if (!error.empty()) return;
  Hold(text.size() <= 50 * stream.size(), "a text is at most fifty times its stream", input);
  Hold(stream.size() <= 3 * text.size() + 12, "a stream is at most three times its text", input);
  Hold(TextToBinary(text) == stream, "a stream goes to text and back", input);
}

void HoldLikeTheCursor(std::string_view stream, std::string_view input) {
  const std::string passed = ErrorOf(
      [&] {
        TStreamCursor cursor(stream);
        cursor.Open();
        cursor.SkipObject();
        cursor.ExpectEnd();
      },
      stream, input);
  Hold(passed == ErrorOf([&] { BinaryToText(stream); }, stream, input), "writing finds the faults that passing finds",
       input);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = vx::fuzz::TextOf(data, size);
  TStreamBytes bytes;
  for (std::size_t i = 0; i < size; ++i) bytes.Byte(data[i]);
  const std::string stream = bytes.Take();
  HoldStream(stream, input);
  HoldLikeTheCursor(stream, input);
  HoldStream(input, input);
  return 0;
}
