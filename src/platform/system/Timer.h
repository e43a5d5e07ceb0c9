// Timer.h: a component that calls its handler again and again.
//
//   TTimer* timer = New<TTimer>(form);
//   timer->SetInterval(250);
//   timer->SetOnTimer([&](TObject*) { hint->Show(); });      // in 250 ms, and every 250 ms from then on
//
// It runs while it is enabled, its interval is above 0 and it has a handler. A change of any of the three starts the
// interval anew, setting what is set already doesn't. The moments are those of the queue in force when it starts: see
// MessageQueue.h for their order, and for timers that are late. The handler may change, disable or free the timer.
#pragma once

#include <cstdint>

#include "platform/component/Component.h"
#include "platform/system/MessageQueue.h"

namespace vx {

class TTimer : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  void TearDown() override;

  /// True at first.
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool value);
  /// In milliseconds; 1000 at first. With 0 or less the timer stands.
  std::int32_t Interval() const { return interval_; }
  void SetInterval(std::int32_t value);
  const TNotifyEvent& OnTimer() const { return onTimer_; }
  void SetOnTimer(TNotifyEvent value);

 private:
  void Restart();
  void Fire();

  bool enabled_ = true;
  std::int32_t interval_ = 1000;
  TNotifyEvent onTimer_;
  TMessageQueue::TTimerRun run_;
};

/// Makes the class known to streams.
void RegisterTimer();

}  // namespace vx
