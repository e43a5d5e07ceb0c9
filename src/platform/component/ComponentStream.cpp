#include "platform/component/ComponentStream.h"

#include "platform/component/StreamLoad.h"
#include "platform/component/StreamPlan.h"
#include "platform/component/StreamText.h"

namespace vx {

namespace {

/// Runs `read` on the binary form; a mistake in it is told by line and column.
template <class Read>
auto ReadText(std::string_view text, Read&& read) {
  const std::string stream = TextToBinary(text);
  try {
    return read(stream);
  } catch (const EReadError& error) {
    throw EReadError(PlaceInText(text, error.Place().Offset), error.Reason());
  }
}

}  // namespace

std::string ComponentToText(TComponent& root) { return BinaryToText(ComponentToBinary(root)); }

TOwned<TComponent> BinaryToComponent(std::string_view stream, const TStreamOptions& options) {
  TStreamPlan plan(stream, nullptr, options);
  TStreamLoad(plan, nullptr).Run();
  return TOwned<TComponent>(plan.Objects()[0].Loading.Component());
}

void BinaryIntoComponent(std::string_view stream, TComponent& root, const TStreamOptions& options) {
  TStreamPlan plan(stream, &root, options);
  TStreamLoad(plan, &plan.Root()).Run();
}

TOwned<TComponent> TextToComponent(std::string_view text, const TStreamOptions& options) {
  return ReadText(text, [&](std::string_view stream) { return BinaryToComponent(stream, options); });
}

void TextIntoComponent(std::string_view text, TComponent& root, const TStreamOptions& options) {
  ReadText(text, [&](std::string_view stream) { BinaryIntoComponent(stream, root, options); });
}

}  // namespace vx
