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
  auto* const root = Cast<TComponent>(plan.Objects()[0].Shape->Type().Factory()());
  const TComponentLink link(root);  // a setter may free even the root
  try {
    TStreamLoad(plan, *root).Run();
  } catch (...) {
    if (TComponent* const made = link.Component()) made->FreeAnyway();
    throw;
  }
  return TOwned<TComponent>(link.Component());
}

void BinaryIntoComponent(std::string_view stream, TComponent& root, const TStreamOptions& options) {
  TStreamPlan plan(stream, &root, options);
  TStreamLoad(plan, root).Run();
}

TOwned<TComponent> TextToComponent(std::string_view text, const TStreamOptions& options) {
  return ReadText(text, [&](std::string_view stream) { return BinaryToComponent(stream, options); });
}

void TextIntoComponent(std::string_view text, TComponent& root, const TStreamOptions& options) {
  ReadText(text, [&](std::string_view stream) { BinaryIntoComponent(stream, root, options); });
}

}  // namespace vx
