#include "platform/system/Modal.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/runtime/Text.h"
#include "platform/system/InForce.h"

namespace vx {
namespace {

constexpr std::size_t kShownText = 200;  ///< bytes of a dialog's text in an error

constexpr std::array<std::string_view, mrYesToAll + 1> kResults = {
    "None", "OK", "Cancel", "Abort", "Retry", "Ignore", "Yes", "No", "All", "No to all", "Yes to all"};

/// The text on one line.
std::string Quoted(std::string_view text) {
  std::string shown(CutAtCodePoint(text, kShownText));
  if (shown.size() < text.size()) shown += "...";
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
  return '"' + shown + '"';
}

}  // namespace

std::string ModalResultText(TModalResult result) {
  const auto at = static_cast<std::size_t>(result);
  return at < kResults.size() ? std::string(kResults[at]) : std::to_string(static_cast<std::int32_t>(result));
}

std::optional<TModalResult> TextToModalResult(std::string_view text) {
  for (std::int32_t i = mrOk; i <= mrYesToAll; ++i)
    if (CompareText(kResults[static_cast<std::size_t>(i)], text) == 0) return static_cast<TModalResult>(i);
  return std::nullopt;
}

TModalResult AskModal(const TModalQuestion& question) {
  if (IModalHost* const host = TInForce<IModalHost*>::Current()) return host->Ask(question);
  std::fprintf(stderr, "%s\n", question.Text.c_str());
  throw EModalError("Nobody is there to answer the dialog " + Described(question));
}

std::string Described(const TModalQuestion& question) {
  std::string buttons;
  for (const TModalResult button : question.Buttons) buttons += (buttons.empty() ? "" : ", ") + ModalResultText(button);
  return question.Dialog + " " + Quoted(question.Text) + " [" + buttons + "]";
}

}  // namespace vx
