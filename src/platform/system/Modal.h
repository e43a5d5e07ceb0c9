// Modal.h: dialogs that a person must answer before the program goes on.
//
//   if (AskModal({"ConfirmDelete", "Delete all orders?", {mrYes, mrNo}}) == mrYes) …
//
// The host asks: in a window, or by answers that a test has written down before. A program whose host has no windows
// can't ask: it prints the text to the error output, and the question ends in an EModalError that names the dialog.
//
// Main thread only.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Exceptions.h"

namespace vx {

/// How a dialog ended: the button that was pressed. A form that is still open stands at mrNone.
enum TModalResult : std::int32_t {
  mrNone,
  mrOk,
  mrCancel,
  mrAbort,
  mrRetry,
  mrIgnore,
  mrYes,
  mrNo,
  mrAll,
  mrNoToAll,
  mrYesToAll,
};

/// "OK", "Cancel", "No to all": for scripts and messages, never shown to a person. A number that is no result prints
/// as the number.
std::string ModalResultText(TModalResult result);
/// The result of that name, letter case ignored; never mrNone.
std::optional<TModalResult> TextToModalResult(std::string_view text);

struct TModalQuestion {
  std::string Dialog;  ///< name of the form, or of the message: what a script or an error calls it
  std::string Text;    ///< what the person reads
  std::vector<TModalResult> Buttons;
};

/// A dialog that nobody can answer.
class EModalError : public TNamedException<EModalError> {
 public:
  static constexpr const char* kName = "EModalError";
  using TNamedException::TNamedException;
};

class IModalHost {
 public:
  virtual ~IModalHost() = default;
  /// Returns when the dialog is answered, by one of its buttons. EModalError if it can't be shown.
  virtual TModalResult Ask(const TModalQuestion& question) = 0;
};

/// Asks by the host in force (TInForce<IModalHost*>).
TModalResult AskModal(const TModalQuestion& question);

/// `ConfirmDelete "Delete all orders?" [Yes, No]`, for errors about it. Long texts are cut.
std::string Described(const TModalQuestion& question);

}  // namespace vx
