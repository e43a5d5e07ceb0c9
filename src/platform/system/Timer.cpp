#include "platform/system/Timer.h"

#include "platform/component/Published.h"

namespace vx {

const TClass& TTimer::StaticClass() {
  static const TClass info = TClassBuilder<TTimer>("TTimer", TComponent::StaticClass())
                                 .Property("Enabled", &TTimer::Enabled, &TTimer::SetEnabled)
                                 .Default(true)
                                 .Property("Interval", &TTimer::Interval, &TTimer::SetInterval)
                                 .Default(1000)
                                 .Property("OnTimer", &TTimer::OnTimer, &TTimer::SetOnTimer)
                                 .Build();
  return info;
}

void TTimer::TearDown() {
  run_.Stop();
  TComponent::TearDown();
}

void TTimer::SetEnabled(bool value) {
  if (value == enabled_) return;
  enabled_ = value;
  Restart();
}

void TTimer::SetInterval(std::int32_t value) {
  if (value == interval_) return;
  interval_ = value;
  Restart();
}

void TTimer::SetOnTimer(TNotifyEvent value) {
  if (value == onTimer_) return;
  onTimer_ = std::move(value);
  Restart();
}

void TTimer::Restart() {
  run_.Stop();
  if (enabled_ && interval_ > 0 && onTimer_ && !Is(csDestroying))
    run_ = MessageQueue().StartTimer(interval_, {*this, &TTimer::Fire});
}

void TTimer::Fire() { onTimer_(this); }  // which may free this timer: nothing follows

void RegisterTimer() { RegisterClass(TTimer::StaticClass()); }

}  // namespace vx
