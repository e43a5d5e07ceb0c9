// HeadlessHost.h: a machine for programs without a screen, and for tests: time is virtual, dialogs have their answers
// beforehand, clipboard and registry are in memory and empty at first.
//
//   THeadlessHost host(EncodeDate(2026, 11, 23));
//   host.Answer(mrYes);                                // what the next dialog is told
//   host.Play("drag 10,10 80,40; key Ctrl+C", chart);  // see InputScript.h
//   host.Advance(250);                                 // all that happens in the next 250 ms
//   host.Shown();                                      // the messages that a person would have seen
//
// For its life the host is what the whole program asks: Now(), Wait(), timers and posted messages, Clipboard(),
// TRegistry, AskModal(), ShowMessage(), Display(). Then whatever was in force before counts again. Hosts may stand
// within each other, and end in any order, also in a handler that they have called: what was pending in a host goes
// with it.
//
// Time. Nothing ever sleeps. Advance() goes from one due moment to the next, and the clock stands at that moment while
// its timer or message is handled, unless a handler has let time pass (by Wait() or Advance()): then what became due is
// handled late, in the order of its moments. What is posted later than the moment that Advance() was to reach comes
// next time.
//
// Errors. A handler that posts without end, a dialog without a scripted answer, a broken script: each raises and tells
// what it was. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/DateTime.h"
#include "platform/system/Input.h"
#include "platform/system/Modal.h"

namespace vx {

/// Answers a dialog as a person would: may work with its form before it presses a button.
using TModalAnswer = std::function<TModalResult(const TModalQuestion&)>;

class THeadlessHost {
 public:
  /// At midnight of Monday 2026-01-05 without another start; EConvertError for one outside of the calendar.
  explicit THeadlessHost(TDateTime start = EncodeDate(2026, 1, 5));
  ~THeadlessHost();
  THeadlessHost(const THeadlessHost&) = delete;
  THeadlessHost& operator=(const THeadlessHost&) = delete;

  // -- Time -----------------------------------------------------------------------------------------------------------
  /// Lets `milliseconds` (below 0 counts as 0) pass, with everything that is due meanwhile, its end included.
  /// EInvalidOperation if handlers post without end (TMessageQueue::kFlood); time then stands where that happens.
  void Advance(std::int32_t milliseconds);
  /// Milliseconds since the host's start.
  std::int64_t Ticks() const;

  // -- Dialogs and messages -------------------------------------------------------------------------------------------
  /// The next dialog that has no answer yet gets this one. A dialog without an answer raises EModalError, and so does
  /// an answer that is no button of its dialog.
  void Answer(TModalResult result);
  void Answer(TModalAnswer answer);
  /// Answers that no dialog has asked for yet.
  std::size_t PendingAnswers() const;
  /// All dialogs so far, also those without an answer.
  const std::vector<TModalQuestion>& Asked() const;
  /// The texts of ShowMessage() so far.
  const std::vector<std::string>& Shown() const;

  // -- The screen -----------------------------------------------------------------------------------------------------
  /// 32 bits a pixel without a palette at first.
  void SetDisplay(std::int32_t bitsPerPixel, std::int32_t paletteSize);

  // -- Mouse and keyboard ---------------------------------------------------------------------------------------------
  /// Reads the script, then plays it. After each event, what is due at that moment is handled. EInputScriptError for a
  /// broken script, and if the target goes before the script's end. Passes on what the target raises.
  void Play(std::string_view script, IInputTarget& target);

 private:
  class TCore;
  class TInstalled;

  std::shared_ptr<TCore> core_;  // shared with the calls under way, in which the host may end
  std::unique_ptr<TInstalled> installed_;
};

}  // namespace vx
