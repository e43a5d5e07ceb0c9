// MessageQueue.h: what happens later: posted messages and timers, each in its turn.
//
//   class TWorker {
//     void Receive(const TMessage& message);
//     TMessageHandle handle_{TMessageEvent(*this, &TWorker::Receive)};
//   };
//
//   PostMessage(worker.Handle(), 1025, 7);    // returns at once
//   Application().ProcessMessages();          // worker receives it
//
// Addresses. A message goes to the number of a handle, never to a pointer: who receives takes a handle and gives it
// back, at the latest when it ends. A message to a number that nobody has any more vanishes. A number is never given
// twice, so that it can't reach a stranger.
//
// Order. Messages are delivered in the order of posting, timers in that of their moments; between the two the earlier
// moment counts, and at the same moment who was posted or started first. A timer that is late fires once, however often
// it would have been due, and its interval counts on from then.
//
// One call of ProcessMessages() delivers until no message is left, those posted meanwhile too, and each timer that was
// due at its beginning once. So that handlers which post without end can't hold the program, it stops after kFlood
// deliveries, those of calls nested in it counted; what is left comes next time.
//
// Handlers may post, process messages, start, stop and free what they like, also themselves and the queue. A timer
// doesn't fire within its own handler. What a handler raises goes to Application().HandleException, and the next one is
// delivered; only EModalError passes out to the caller: where nobody answers dialogs, nobody reads errors.
//
// Each host brings a queue of its own, which runs on its clock; without one, there is one on the machine's clock. Main
// thread only. Cost: a post O(1), a timer O(log n) for n timers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "platform/component/Event.h"
#include "platform/system/Clock.h"

namespace vx {

/// The number of a receiver; 0 is nobody's.
using THandle = std::int64_t;

struct TMessage {
  THandle Handle = 0;
  std::uint32_t Message = 0;  ///< what it is about: sender and receiver agree on it
  std::int64_t WParam = 0;
  std::int64_t LParam = 0;
};
using TMessageEvent = TEvent<void(const TMessage&)>;

/// A number under which messages are received, for the life of this object.
class TMessageHandle {
 public:
  TMessageHandle() = default;  ///< has none: Number() is 0
  explicit TMessageHandle(TMessageEvent receive);
  TMessageHandle(TMessageHandle&& other) noexcept : number_(std::exchange(other.number_, 0)) {}
  TMessageHandle& operator=(TMessageHandle&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~TMessageHandle();
  THandle Number() const { return number_; }

 private:
  THandle number_ = 0;
};

/// Puts a message at the end of the queue in force. False if nobody has that handle.
bool PostMessage(THandle handle, std::uint32_t message, std::int64_t wParam = 0, std::int64_t lParam = 0);

// -- The queue, for hosts and timers ----------------------------------------------------------------------------------

/// What a step of delivery came to.
enum class TDelivery : std::uint8_t {
  Done,
  Nothing,  ///< there is nothing to deliver
  Flood,    ///< more than kFlood deliveries, or more than kDeepest calls of handlers within each other
};

class TMessageQueue {
 public:
  static constexpr std::int32_t kFlood = 10'000;
  static constexpr std::int32_t kDeepest = 50;

  /// The caller owns the clock, which outlives the queue.
  explicit TMessageQueue(IClock& clock);
  /// What is pending vanishes. Legal in a handler.
  ~TMessageQueue();
  TMessageQueue(const TMessageQueue&) = delete;
  TMessageQueue& operator=(const TMessageQueue&) = delete;

  void Post(const TMessage& message);
  /// Stops its timer when it ends, or when it gets another; outliving the queue is harmless.
  class TTimerRun;
  /// Calls `fire` in `interval` milliseconds (1 or more) and then again and again.
  TTimerRun StartTimer(std::int32_t interval, TEvent<void()> fire);

  /// What is pending vanishes, and timers stop.
  void Clear();

  /// See ProcessMessages() above. False if it stopped because of a flood.
  bool Run();

  // For a host that moves its clock itself:
  /// The moment of the first in the queue, in Ticks() of the clock; what is already due lies in the past.
  std::optional<std::int64_t> NextDue() const;
  /// Delivers the first in the queue: a message, or a timer that is due at `until` at the latest.
  TDelivery DeliverNext(std::int64_t until);
  /// To be called at the beginning and whenever the clock has moved: counts the deliveries up to a flood anew, unless
  /// this is a handler's call at the moment of the last one.
  void BeginMoment();

 private:
  class TState;

  std::shared_ptr<TState> state_;  // shared with the deliveries under way, whose handlers may end the queue
};

class TMessageQueue::TTimerRun {
 public:
  TTimerRun() = default;
  TTimerRun(TTimerRun&& other) noexcept : queue_(std::move(other.queue_)), number_(std::exchange(other.number_, 0)) {}
  TTimerRun& operator=(TTimerRun&& other) noexcept {
    std::swap(queue_, other.queue_);
    std::swap(number_, other.number_);
    return *this;
  }
  ~TTimerRun() { Stop(); }
  void Stop();

 private:
  friend class TMessageQueue;
  TTimerRun(const std::shared_ptr<TState>& queue, std::uint64_t number) : queue_(queue), number_(number) {}

  std::weak_ptr<TState> queue_;
  std::uint64_t number_ = 0;
};

/// The queue in force.
TMessageQueue& MessageQueue();

}  // namespace vx
