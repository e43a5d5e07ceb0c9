#include "platform/system/MessageQueue.h"

#include <algorithm>
#include <compare>
#include <deque>
#include <map>
#include <unordered_map>

#include "platform/system/Application.h"
#include "platform/system/Modal.h"

namespace vx {
namespace {

/// Who receives under which number. Hosts come and go, receivers stay: there is one table for all queues.
struct TReceivers {
  std::unordered_map<THandle, TMessageEvent> ByNumber;
  THandle Last = 0;
};

TReceivers& Receivers() {
  static TReceivers receivers;
  return receivers;
}

/// The receiver of that number; unassigned if there is none.
TMessageEvent ReceiverOf(THandle handle) {
  const auto& receivers = Receivers().ByNumber;
  const auto found = receivers.find(handle);
  return found == receivers.end() ? TMessageEvent() : found->second;
}

/// The place in the queue: by moment, then by coming.
struct TPlace {
  std::int64_t Due;
  std::uint64_t Number;
  auto operator<=>(const TPlace&) const = default;
};

/// Calls a handler; what it raises is the application's.
template <class Call>
void CallHandler(Call&& call) {
  try {
    call();
  } catch (const EModalError&) {
    throw;
  } catch (const std::exception& error) {
    Application().HandleException(error);
  }
}

}  // namespace

class TMessageQueue::TState {
 public:
  explicit TState(IClock& clock) : clock_(&clock) {}

  /// The clock may go; handlers that are still running find nothing any more.
  void End() {
    clock_ = nullptr;
    Clear();
  }
  void Clear() {
    messages_.clear();
    due_.clear();
    decltype(timers_) timers;
    timers_.swap(timers);  // the handlers fall last: what falls with them may come back here
  }

  std::int64_t Ticks() const { return clock_ != nullptr ? clock_->Ticks() : 0; }
  void Post(const TMessage& message) { messages_.push_back({{Ticks(), ++last_}, message}); }
  std::uint64_t StartTimer(std::int32_t interval, TEvent<void()> fire);
  void StopTimer(std::uint64_t number);
  std::optional<std::int64_t> NextDue() const;
  TDelivery DeliverNext(std::int64_t until);
  void BeginMoment() {
    if (std::exchange(moment_, Ticks()) != Ticks() || depth_ == 0) delivered_ = 0;
  }
  /// Begins a round of deliveries of which the outermost counts.
  void BeginRound() {
    if (depth_ == 0) delivered_ = 0;
  }

 private:
  struct TPosted {
    TPlace Place;
    TMessage Message;
  };
  struct TTimerData {
    std::int32_t Interval;
    std::int64_t Due;
    TEvent<void()> Fire;
  };

  /// Counts the calls of handlers within each other.
  class TNesting {
   public:
    explicit TNesting(TState& state) : state_(state) { ++state_.depth_; }
    TNesting(const TNesting&) = delete;
    TNesting& operator=(const TNesting&) = delete;
    ~TNesting() { --state_.depth_; }

   private:
    TState& state_;
  };
  using TPlaces = std::map<TPlace, TTimerData*>;

  /// Keeps the first timer off the queue while its handler runs.
  class TFiring {
   public:
    explicit TFiring(TState& state)
        : state_(state), place_(state.due_.extract(state.due_.begin())), firedAt_(state.Ticks()) {}
    TFiring(const TFiring&) = delete;
    TFiring& operator=(const TFiring&) = delete;
    ~TFiring() { state_.PutBack(std::move(place_), firedAt_); }

   private:
    TState& state_;
    TPlaces::node_type place_;
    std::int64_t firedAt_;
  };

  void DeliverMessage();
  void FireTimer();
  void PutBack(TPlaces::node_type place, std::int64_t firedAt);

  IClock* clock_;  // null once the queue has ended
  std::deque<TPosted> messages_;
  std::unordered_map<std::uint64_t, TTimerData> timers_;  // by number
  TPlaces due_;                                           // all but those whose handlers run
  std::uint64_t last_ = 0;                                // number of what came last
  std::int32_t delivered_ = 0;                            // up to a flood
  std::int64_t moment_ = 0;                               // of the last BeginMoment()
  std::int32_t depth_ = 0;
};

std::uint64_t TMessageQueue::TState::StartTimer(std::int32_t interval, TEvent<void()> fire) {
  const std::uint64_t number = ++last_;
  const std::int32_t length = std::max(interval, 1);
  TTimerData& timer = timers_[number] = {length, Ticks() + length, std::move(fire)};
  due_.emplace(TPlace{timer.Due, number}, &timer);
  return number;
}

void TMessageQueue::TState::StopTimer(std::uint64_t number) {
  const auto timer = timers_.extract(number);
  if (!timer.empty()) due_.erase({timer.mapped().Due, number});
}

std::optional<std::int64_t> TMessageQueue::TState::NextDue() const {
  std::optional<std::int64_t> next;
  if (!messages_.empty()) next = messages_.front().Place.Due;
  if (!due_.empty() && (!next || due_.begin()->first.Due < *next)) next = due_.begin()->first.Due;
  return next;
}

TDelivery TMessageQueue::TState::DeliverNext(std::int64_t until) {
  const bool isTimerDue = !due_.empty() && due_.begin()->first.Due <= until;
  if (messages_.empty() && !isTimerDue) return TDelivery::Nothing;
  if (delivered_ == kFlood || depth_ == kDeepest) return TDelivery::Flood;
  ++delivered_;
  const TNesting nesting(*this);
  if (isTimerDue && (messages_.empty() || due_.begin()->first < messages_.front().Place))
    FireTimer();
  else
    DeliverMessage();
  return TDelivery::Done;
}

void TMessageQueue::TState::DeliverMessage() {
  const TMessage message = messages_.front().Message;
  messages_.pop_front();
  CallHandler([&] { ReceiverOf(message.Handle)(message); });
}

void TMessageQueue::TState::FireTimer() {
  const TEvent<void()> fire = due_.begin()->second->Fire;
  const TFiring firing(*this);
  CallHandler(fire);
}

void TMessageQueue::TState::PutBack(TPlaces::node_type place, std::int64_t firedAt) {
  const auto timer = timers_.find(place.key().Number);
  if (timer == timers_.end()) return;  // its handler stopped it
  place.key().Due = timer->second.Due = firedAt + timer->second.Interval;
  due_.insert(std::move(place));
}

// -- The queue --------------------------------------------------------------------------------------------------------

TMessageQueue::TMessageQueue(IClock& clock) : state_(std::make_shared<TState>(clock)) {}
TMessageQueue::~TMessageQueue() { state_->End(); }

void TMessageQueue::Clear() { state_->Clear(); }
void TMessageQueue::Post(const TMessage& message) { state_->Post(message); }

TMessageQueue::TTimerRun TMessageQueue::StartTimer(std::int32_t interval, TEvent<void()> fire) {
  return {state_, state_->StartTimer(interval, std::move(fire))};
}

bool TMessageQueue::Run() {
  const auto state = state_;  // from here on `this` may be gone
  state->BeginRound();
  const std::int64_t begin = state->Ticks();
  TDelivery delivery = TDelivery::Done;
  while (delivery == TDelivery::Done) delivery = state->DeliverNext(begin);
  return delivery == TDelivery::Nothing;
}

std::optional<std::int64_t> TMessageQueue::NextDue() const { return state_->NextDue(); }

TDelivery TMessageQueue::DeliverNext(std::int64_t until) {
  const auto state = state_;
  return state->DeliverNext(until);
}

void TMessageQueue::BeginMoment() { state_->BeginMoment(); }

void TMessageQueue::TTimerRun::Stop() {
  const std::uint64_t number = std::exchange(number_, 0);
  if (const auto queue = queue_.lock()) queue->StopTimer(number);
}

TMessageQueue& MessageQueue() {
  if (TMessageQueue* const queue = TInForce<TMessageQueue*>::Current()) return *queue;
  static TMessageQueue machines(SystemClock());
  return machines;
}

// -- Handles ----------------------------------------------------------------------------------------------------------

TMessageHandle::TMessageHandle(TMessageEvent receive) : number_(++Receivers().Last) {
  Receivers().ByNumber.emplace(number_, std::move(receive));
}

TMessageHandle::~TMessageHandle() {
  if (number_ == 0) return;
  const auto gone = Receivers().ByNumber.extract(number_);  // what falls with the handler may come back here
}

bool PostMessage(THandle handle, std::uint32_t message, std::int64_t wParam, std::int64_t lParam) {
  if (!Receivers().ByNumber.contains(handle)) return false;
  MessageQueue().Post({handle, message, wParam, lParam});
  return true;
}

}  // namespace vx
