// The text form of a component stream: any bytes, taken for a text.
//
// What is accepted goes to the binary form, back to text and again to the binary form without a loss, and without
// growing beyond what is told. What is refused is refused at a place within the text. Neither the kind of line end nor
// a byte order mark makes a difference.
#include <algorithm>

#include "Property.h"
#include "platform/component/StreamText.h"

namespace {

using namespace vx;
using vx::fuzz::Hold;

/// The stream, or else the error without its offset.
struct TOutcome {
  std::string Stream;
  std::string Error;
  std::uint64_t Offset = 0;

  bool operator==(const TOutcome& other) const { return Stream == other.Stream && Error == other.Error; }
};

TOutcome Read(std::string_view text, std::string_view input) {
  TOutcome outcome;
  vx::fuzz::Runs<Exception>(
      [&] {
        try {
          outcome.Stream = TextToBinary(text);
        } catch (const EReadError& error) {
          outcome = {"", error.Message(), error.Place().Offset};
          Hold(error.Place().Line > 0 && error.Place().Column > 0 && error.Place().Offset <= text.size(),
               "an error has a place in the text", input);
        }
      },
      "only EReadError comes out of TextToBinary", input);
  Hold(outcome.Stream.empty() != outcome.Error.empty(), "there is a stream or an EReadError", input);
  return outcome;
}

std::string WithLineEnds(std::string_view text, std::string_view end) {
  std::string result;
  for (const char c : text) c == '\n' ? result.append(end) : result.append(1, c);
  return result;
}

void HoldLineEnds(std::string_view text, const TOutcome& outcome) {
  if (text.find('\r') == std::string_view::npos)
    for (const std::string_view end : {"\r", "\r\n"})
      Hold(Read(WithLineEnds(text, end), text) == outcome, "line ends make no difference", text);
  if (!text.starts_with("\xEF\xBB\xBF") && !text.starts_with(kStreamMark))
    Hold(Read("\xEF\xBB\xBF" + std::string(text), text) == outcome, "a byte order mark makes no difference", text);
}

void HoldAccepted(std::string_view text, const std::string& stream) {
  Hold(stream.size() <= 3 * text.size() + 12, "a stream is at most three times its text", text);
  const std::string laidOut = BinaryToText(stream);
  Hold(laidOut.size() <= 50 * stream.size(), "a text is at most fifty times its stream", text);
  Hold(TextToBinary(laidOut) == stream, "a text that was laid out is the same stream", text);
  for (const std::uint64_t offset : {std::size_t{0}, stream.size() / 3, stream.size() / 2, stream.size() - 1}) {
    const TStreamPlace place = PlaceInText(text, offset);
    Hold(place.Line > 0 && place.Offset < text.size() && static_cast<unsigned char>(text[place.Offset]) > ' ',
         "each byte of a stream has its word in the text", text);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text = vx::fuzz::TextOf(data, size);
  const TOutcome outcome = Read(text, text);
  HoldLineEnds(text, outcome);
  if (outcome.Error.empty()) HoldAccepted(text, outcome.Stream);
  return 0;
}
