#include "platform/system/MessageQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "host/headless/HeadlessHost.h"
#include "platform/system/Application.h"
#include "platform/system/Timer.h"

namespace vx {
namespace {

class Queue : public testing::Test {
 protected:
  /// A handle that notes its messages as "name:number@milliseconds ".
  TMessageHandle Noting(std::string name) {
    return TMessageHandle(
        [this, name](const TMessage& message) { Note(name + ":" + std::to_string(message.Message)); });
  }
  TOwned<TTimer> Timer(std::int32_t interval, TNotifyEvent handler) {
    auto timer = Make<TTimer>(nullptr);
    timer->SetInterval(interval);
    timer->SetOnTimer(std::move(handler));
    return timer;
  }
  TOwned<TTimer> Noting(std::int32_t interval, std::string name) {
    return Timer(interval, [this, name](TObject*) { Note(name); });
  }
  void Note(const std::string& what) { trace_ += what + "@" + std::to_string(host_->Ticks()) + " "; }
  std::string Trace() { return std::exchange(trace_, {}); }

  std::unique_ptr<THeadlessHost> host_ = std::make_unique<THeadlessHost>();
  std::string trace_;
};

TEST(QueueOfTheMachine, DeliversWithoutAHost) {
  std::int32_t received = 0;
  const TMessageHandle handle([&](const TMessage&) { ++received; });
  PostMessage(handle.Number(), 1);
  Application().ProcessMessages();
  EXPECT_EQ(received, 1);
}

TEST_F(Queue, DeliversInOrderWhatIsPostedMeanwhileToo) {
  const TMessageHandle a = Noting("a");
  const TMessageHandle b([&](const TMessage& message) {
    Note("b" + std::to_string(message.WParam) + "," + std::to_string(message.LParam));
    if (message.WParam > 0) PostMessage(message.Handle, 0, message.WParam - 1, message.LParam);
  });
  PostMessage(b.Number(), 0, 2, -7);
  PostMessage(a.Number(), 1);
  EXPECT_EQ(Trace(), "");
  Application().ProcessMessages();
  EXPECT_EQ(Trace(), "b2,-7@0 a:1@0 b1,-7@0 b0,-7@0 ");
}

TEST_F(Queue, LosesWhatNobodyReceives) {
  TMessageHandle a = Noting("a");
  const THandle number = a.Number();
  EXPECT_TRUE(PostMessage(number, 1));
  a = TMessageHandle();
  a = Noting("b");
  EXPECT_NE(a.Number(), number) << "a stranger would receive the message";
  EXPECT_FALSE(PostMessage(number, 2));
  EXPECT_FALSE(PostMessage(0, 3));
  Application().ProcessMessages();
  EXPECT_EQ(Trace(), "");
}

TEST_F(Queue, TakesTimersAndMessagesByTheirMoments) {
  const auto slow = Noting(30, "slow");
  const TMessageHandle a = Noting("a");
  const auto once = Timer(10, [&](TObject* sender) {
    Note("once");
    PostMessage(a.Number(), 1);
    static_cast<TTimer*>(sender)->SetEnabled(false);
  });
  const auto quick = Noting(10, "quick");
  host_->Advance(30);
  EXPECT_EQ(Trace(), "once@10 quick@10 a:1@10 quick@20 slow@30 quick@30 ");
  host_->Advance(9);
  EXPECT_EQ(Trace(), "");
  quick->SetInterval(5);
  host_->Advance(10);
  EXPECT_EQ(Trace(), "quick@44 quick@49 ");
}

struct TTimerCase {
  const char* Name;
  void (*Change)(TTimer&);  // 6 ms after the start of a timer of 10 ms
  const char* Fires;        // within the next 20 ms

  friend void PrintTo(const TTimerCase& each, std::ostream* out) { *out << each.Name; }
};

class TimerChange : public Queue, public testing::WithParamInterface<TTimerCase> {};

TEST_P(TimerChange, DecidesWhenItFires) {
  const auto timer = Noting(10, "t");
  host_->Advance(6);
  GetParam().Change(*timer);
  host_->Advance(20);
  EXPECT_EQ(Trace(), GetParam().Fires);
}

constexpr TTimerCase kTimerCases[] = {
    {"None", [](TTimer&) {}, "t@10 t@20 "},
    {"SameInterval", [](TTimer& timer) { timer.SetInterval(10); }, "t@10 t@20 "},
    {"AnotherInterval", [](TTimer& timer) { timer.SetInterval(15); }, "t@21 "},
    {"NoInterval", [](TTimer& timer) { timer.SetInterval(0); }, ""},
    {"NegativeInterval", [](TTimer& timer) { timer.SetInterval(-5); }, ""},
    {"OffAndOn", [](TTimer& timer) { timer.SetEnabled(false), timer.SetEnabled(true); }, "t@16 t@26 "},
    {"NoHandler", [](TTimer& timer) { timer.SetOnTimer(nullptr); }, ""},
    // Time passes, but nobody handles messages: late timers fire once, and count on from there.
    {"Wait", [](TTimer&) { Wait(35); }, "t@41 t@51 t@61 "},
};
INSTANTIATE_TEST_SUITE_P(Changes, TimerChange, testing::ValuesIn(kTimerCases),
                         [](const auto& each) { return std::string(each.param.Name); });

TEST_F(Queue, KeepsATimerOutOfItsOwnHandler) {
  const auto quick = Noting(20, "quick");
  const auto slow = Timer(10, [&](TObject*) {
    Note("slow");
    Wait(25);
    Application().ProcessMessages();  // the other one fires here, this one doesn't
    Note("end");
  });
  host_->Advance(40);
  EXPECT_EQ(Trace(), "slow@10 quick@35 end@35 slow@35 quick@60 end@60 ");
}

TEST_F(Queue, SurvivesWhatHandlersFree) {
  TOwned<TTimer> timer;
  TMessageHandle other = Noting("other");
  TMessageHandle self([&](const TMessage&) {
    Note("self");
    other = TMessageHandle();
    const TMessageHandle gone = std::move(self);
    timer.reset();
  });
  timer = Timer(10, [&](TObject*) {
    Note("timer");
    PostMessage(self.Number(), 1);
    PostMessage(other.Number(), 1);
    PostMessage(self.Number(), 1);
  });
  host_->Advance(100);
  EXPECT_EQ(Trace(), "timer@10 self@10 ");
  timer = Timer(10, [&](TObject*) { Note("frees itself"), timer.reset(); });
  host_->Advance(100);
  EXPECT_EQ(Trace(), "frees itself@110 ");
}

TEST_F(Queue, GivesErrorsOfHandlersToTheApplication) {
  Application().OnException = [&](TObject*, const std::exception& error) { Note(error.what()); };
  const auto timer = Timer(10, [](TObject*) { throw EConvertError("timer"); });
  const TMessageHandle handle([](const TMessage&) { throw EConvertError("message"); });
  PostMessage(handle.Number(), 1);
  host_->Advance(20);
  Application().OnException = nullptr;
  EXPECT_EQ(Trace(), "message@0 timer@10 timer@20 ");
  host_->Advance(10);
  EXPECT_EQ(host_->Shown(), std::vector<std::string>{"timer"});
}

// Nothing of this may hang, nor use up the stack.
TEST_F(Queue, StopsHandlersThatPostWithoutEnd) {
  std::int64_t calls = 0;
  const TMessageHandle endless([&](const TMessage& message) {
    ++calls;
    PostMessage(message.Handle, 1);
    PostMessage(message.Handle, 1);
    if (message.WParam == 1) Application().ProcessMessages();
    if (message.WParam == 2) host_->Advance(1);
  });
  for (const std::int64_t nested : {0, 1, 2}) {
    calls = 0;
    PostMessage(endless.Number(), 1, nested);
    Application().ProcessMessages();
    EXPECT_LE(calls, TMessageQueue::kFlood);
    calls = 0;
    EXPECT_THROW(host_->Advance(10), EInvalidOperation);
    EXPECT_LE(calls, TMessageQueue::kFlood);
  }
  std::int32_t depth = 0, deepest = 0;
  const TMessageHandle deep([&](const TMessage& message) {
    deepest = std::max(deepest, ++depth);
    PostMessage(message.Handle, 1);
    Application().ProcessMessages();
    --depth;
  });
  host_ = std::make_unique<THeadlessHost>();
  PostMessage(deep.Number(), 1);
  EXPECT_THROW(host_->Advance(10), EInvalidOperation);
  EXPECT_EQ(deepest, TMessageQueue::kDeepest);
}

TEST_F(Queue, TakesNoLongTimeForAFlood) {
  const auto busy = Timer(1, [&](TObject*) { Wait(1); });
  host_->Advance(2 * TMessageQueue::kFlood);
  const TMessageHandle patient([&](const TMessage&) { host_->Advance(2 * TMessageQueue::kFlood); });
  PostMessage(patient.Number(), 1);
  host_->Advance(0);
  EXPECT_GE(host_->Ticks(), 4 * TMessageQueue::kFlood);
  EXPECT_TRUE(host_->Shown().empty());
}

}  // namespace
}  // namespace vx
