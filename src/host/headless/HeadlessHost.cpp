#include "host/headless/HeadlessHost.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "host/headless/InputScript.h"
#include "host/headless/VirtualClock.h"
#include "platform/canvas/Display.h"
#include "platform/system/Clipboard.h"
#include "platform/system/MessageQueue.h"
#include "platform/system/RegistryStore.h"
#include "platform/system/ShowMessage.h"

namespace vx {
namespace {

class THeadlessDisplay : public IDisplay {
 public:
  std::int32_t BitsPerPixel() const override { return Bits; }
  std::int32_t PaletteSize() const override { return Palette; }

  std::int32_t Bits = 32;
  std::int32_t Palette = 0;
};

[[noreturn]] void RaiseFlood() {
  throw EInvalidOperation("More than " + std::to_string(TMessageQueue::kFlood) +
                          " messages at one moment, or handlers within handlers without end");
}

}  // namespace

// -- What a host is made of -------------------------------------------------------------------------------------------

class THeadlessHost::TCore : public IModalHost, public std::enable_shared_from_this<TCore> {
 public:
  explicit TCore(TDateTime start) : Clock(start) {}

  void Advance(std::int32_t milliseconds);
  void Play(std::string_view script, IInputTarget& target);
  TModalResult Ask(const TModalQuestion& question) override;

  TVirtualClock Clock;
  TMessageQueue Queue{Clock};
  TMemoryClipboard Clipboard;
  TMemoryRegistry Registry;
  THeadlessDisplay Display;
  TInputPlayer Player;
  std::deque<TModalAnswer> Answers;
  std::vector<TModalQuestion> Asked;
  std::vector<std::string> Shown;
  bool HasEnded = false;

 private:
  void PlayEvent(const TInputEvent& event, const TInputTargetRef& target);
};

/// Its parts, in force for as long as the host lives.
class THeadlessHost::TInstalled {
 public:
  explicit TInstalled(TCore& core)
      : clock_(&core.Clock),
        queue_(&core.Queue),
        clipboard_(&core.Clipboard),
        registry_(&core.Registry),
        modal_(&core),
        shower_([&core](const std::string& text) { core.Shown.push_back(text); }),
        display_(&core.Display) {}

 private:
  TInForce<IClock*>::TScope clock_;
  TInForce<TMessageQueue*>::TScope queue_;
  TInForce<IClipboardStore*>::TScope clipboard_;
  TInForce<IRegistryStore*>::TScope registry_;
  TInForce<IModalHost*>::TScope modal_;
  TInForce<TMessageShower>::TScope shower_;
  TInForce<const IDisplay*>::TScope display_;
};

void THeadlessHost::TCore::Advance(std::int32_t milliseconds) {
  const std::int64_t target = Clock.Ticks() + std::max(milliseconds, 0);
  std::int64_t moment = Clock.Ticks();
  Queue.BeginMoment();
  for (auto due = Queue.NextDue(); due && *due <= target; due = Queue.NextDue()) {
    Clock.MoveTo(*due);
    if (std::exchange(moment, Clock.Ticks()) != Clock.Ticks()) Queue.BeginMoment();
    if (Queue.DeliverNext(target) == TDelivery::Flood) RaiseFlood();
  }
  Clock.MoveTo(target);
}

TModalResult THeadlessHost::TCore::Ask(const TModalQuestion& question) {
  const auto keep = shared_from_this();
  Asked.push_back(question);
  if (Answers.empty()) throw EModalError("No answer is scripted for the dialog " + Described(question));
  const TModalAnswer answer = std::move(Answers.front());
  Answers.pop_front();
  const TModalResult result = answer(question);
  if (std::find(question.Buttons.begin(), question.Buttons.end(), result) == question.Buttons.end())
    throw EModalError("The scripted answer " + ModalResultText(result) + " is no button of the dialog " +
                      Described(question));
  return result;
}

void THeadlessHost::TCore::Play(std::string_view script, IInputTarget& target) {
  const TInputTargetRef told(target);
  for (const TInputEvent& event : ParseInputScript(script)) {
    if (told.Get() == nullptr) throw EInputScriptError(event.Line, 1, "the target has gone");
    PlayEvent(event, told);
    if (HasEnded) return;
  }
}

void THeadlessHost::TCore::PlayEvent(const TInputEvent& event, const TInputTargetRef& target) {
  if (event.Kind == TInputKind::Answer)
    Answers.emplace_back([answer = event.Answer](const TModalQuestion&) { return answer; });
  Player.Send(event, target);
  if (!HasEnded) Advance(event.Kind == TInputKind::Wait ? event.Amount : 0);
}

// -- The host ---------------------------------------------------------------------------------------------------------

THeadlessHost::THeadlessHost(TDateTime start)
    : core_(std::make_shared<TCore>(start)), installed_(std::make_unique<TInstalled>(*core_)) {}

THeadlessHost::~THeadlessHost() {
  installed_.reset();
  core_->HasEnded = true;
  core_->Queue.Clear();
}

void THeadlessHost::Advance(std::int32_t milliseconds) {
  const auto core = core_;
  core->Advance(milliseconds);
}

std::int64_t THeadlessHost::Ticks() const { return core_->Clock.Ticks(); }

void THeadlessHost::Answer(TModalResult result) {
  Answer([result](const TModalQuestion&) { return result; });
}

void THeadlessHost::Answer(TModalAnswer answer) { core_->Answers.push_back(std::move(answer)); }
std::size_t THeadlessHost::PendingAnswers() const { return core_->Answers.size(); }
const std::vector<TModalQuestion>& THeadlessHost::Asked() const { return core_->Asked; }
const std::vector<std::string>& THeadlessHost::Shown() const { return core_->Shown; }

void THeadlessHost::SetDisplay(std::int32_t bitsPerPixel, std::int32_t paletteSize) {
  core_->Display.Bits = bitsPerPixel;
  core_->Display.Palette = paletteSize;
}

void THeadlessHost::Play(std::string_view script, IInputTarget& target) {
  const auto core = core_;
  core->Play(script, target);
}

}  // namespace vx
