#include "host/headless/HeadlessHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "host/headless/VirtualClock.h"
#include "platform/canvas/Display.h"
#include "platform/system/Application.h"
#include "platform/system/Clipboard.h"
#include "platform/system/MessageQueue.h"
#include "platform/system/Registry.h"
#include "platform/system/ShowMessage.h"
#include "platform/system/Timer.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

TEST(VirtualClock, CountsMillisecondsWithoutError) {
  struct TCase {
    TDateTime Start;
    std::int32_t Wait;
    TDateTime End;
  };
  const TDateTime day = EncodeDate(2026, 11, 23);
  const TCase cases[] = {
      {day, 250, day + EncodeTime(0, 0, 0, 250)},
      {day + EncodeTime(23, 59, 59, 999), 1, day + 1},
      {day + 0.3333333333, 0, day + EncodeTime(8, 0, 0, 0)},  // 7:59:59.99999712, rounded
      {day, -5, day},
      // Before 1899-12-30 the fraction counts forward within its day.
      {-1.25, kMillisecondsPerDay / 2, -1.75},
      {-1.75, kMillisecondsPerDay / 2, 0.25},
      {-2.75, kMillisecondsPerDay / 2, -1.25},
      {kLastDate, 1000, kLastDate + EncodeTime(0, 0, 1, 0)},
  };
  for (const TCase& each : cases) {
    TVirtualClock clock(each.Start);
    clock.Wait(each.Wait);
    EXPECT_EQ(clock.Now(), each.End) << each.Start;
  }
  TVirtualClock clock(day);
  for (std::int32_t i = 0; i < 86'400; ++i) clock.Wait(1000);
  EXPECT_EQ(clock.Now(), day + 1);
  for (const TDateTime none : {test::kNaN, test::kInfinity, kFirstDate - 1, kLastDate + 1})
    EXPECT_THROW(TVirtualClock{none}, EConvertError);
}

TEST(HeadlessHost, IsTheWorldOfTheProgramForItsLife) {
  const IDisplay* const display = &Display();
  IClock* const clock = &Clock();
  const std::string copied = Clipboard().AsText();
  {
    THeadlessHost host(EncodeDate(2026, 11, 23));
    EXPECT_EQ(Now(), EncodeDate(2026, 11, 23));
    Wait(90'000);
    EXPECT_EQ(Now(), EncodeDate(2026, 11, 23) + EncodeTime(0, 1, 30, 0));
    ShowMessage("hello");
    EXPECT_EQ(host.Shown(), std::vector<std::string>{"hello"});
    Clipboard().SetAsText("copied");
    Make<TRegistry>()->CreateKey("Only\\Here");
    EXPECT_EQ(Display().BitsPerPixel(), 32);
    host.SetDisplay(8, 256);
    EXPECT_EQ(Display().BitsPerPixel(), 8);
    EXPECT_EQ(Display().PaletteSize(), 256);
  }
  EXPECT_EQ(&Display(), display);
  EXPECT_EQ(&Clock(), clock);
  EXPECT_EQ(Clipboard().AsText(), copied);
  EXPECT_FALSE(Make<TRegistry>()->KeyExists("Only"));
}

TEST(HeadlessHost, StandsWithinOthersAndEndsInAnyOrder) {
  const IDisplay* const display = &Display();
  auto outer = std::make_unique<THeadlessHost>(100), middle = std::make_unique<THeadlessHost>(200);
  middle->SetDisplay(8, 0);
  auto inner = std::make_unique<THeadlessHost>(300);
  EXPECT_EQ(Now(), 300);
  outer.reset();
  EXPECT_EQ(Now(), 300);
  inner.reset();
  EXPECT_EQ(Now(), 200);
  EXPECT_EQ(Display().BitsPerPixel(), 8);
  ShowMessage("middle");
  EXPECT_EQ(middle->Shown().size(), 1u);
  middle.reset();
  EXPECT_EQ(&Clock(), &SystemClock());
  EXPECT_EQ(&Display(), display);
}

TEST(HeadlessHost, KeepsItsTimersForItself) {
  std::string trace;
  THeadlessHost outer;
  const auto timer = Make<TTimer>(nullptr);
  timer->SetInterval(10);
  timer->SetOnTimer([&](TObject*) { trace += "timer "; });
  const TMessageHandle handle([&](const TMessage& message) { trace += std::to_string(message.Message) + " "; });
  PostMessage(handle.Number(), 1);
  {
    THeadlessHost inner;
    PostMessage(handle.Number(), 2);
    inner.Advance(50);
    EXPECT_EQ(trace, "2 ") << "receivers outlive hosts, what is pending doesn't change over";
    PostMessage(handle.Number(), 3);
  }
  outer.Advance(15);
  EXPECT_EQ(trace, "2 1 timer ");
}

TEST(HeadlessHost, MayEndInWhatItCalls) {
  auto host = std::make_unique<THeadlessHost>();
  const auto timer = Make<TTimer>(nullptr);
  std::int32_t calls = 0;
  timer->SetInterval(1);
  timer->SetOnTimer([&](TObject*) { ++calls, host.reset(); });
  PostMessage(0, 0);
  host->Advance(100);
  EXPECT_EQ(calls, 1);
  timer->SetEnabled(false);  // of a queue that is gone

  host = std::make_unique<THeadlessHost>();
  host->Answer([&](const TModalQuestion&) { return host.reset(), mrOk; });
  EXPECT_EQ(AskModal({"Dialog", "", {mrOk}}), mrOk);
}

TEST(HeadlessHost, AnswersDialogsInOrder) {
  THeadlessHost host;
  host.Answer(mrNo);
  host.Answer([](const TModalQuestion& question) { return question.Buttons.back(); });
  host.Answer(mrYes);
  const TModalQuestion question{"ConfirmDelete", "Delete all\norders?", {mrYes, mrNo, mrCancel}};
  EXPECT_EQ(AskModal(question), mrNo);
  EXPECT_EQ(AskModal(question), mrCancel);
  EXPECT_EQ(host.PendingAnswers(), 1u);
  EXPECT_EQ(MessageOf<EModalError>([] {
              AskModal({"Note", "Done.", {mrOk}});
            }),
            "The scripted answer Yes is no button of the dialog Note \"Done.\" [OK]");
  EXPECT_EQ(MessageOf<EModalError>([&] { AskModal(question); }),
            "No answer is scripted for the dialog ConfirmDelete \"Delete all orders?\" [Yes, No, Cancel]");
  EXPECT_EQ(host.Asked().size(), 4u);
}

// An error of any other kind would end in a message that the test may never look at.
TEST(HeadlessHost, FailsTheCallerForADialogInAHandler) {
  THeadlessHost host;
  const auto timer = Make<TTimer>(nullptr);
  timer->SetInterval(10);
  timer->SetOnTimer([](TObject*) { AskModal({"Dialog", "Go on?", {mrYes}}); });
  EXPECT_THROW(host.Advance(100), EModalError);
  EXPECT_EQ(host.Ticks(), 10);
  EXPECT_THROW(host.Advance(100), EModalError);
  EXPECT_EQ(host.Ticks(), 20) << "the timer goes on";
}

TEST(Modal, TellsAProgramWithoutAHostThatNobodyAnswers) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(MessageOf<EModalError>([] {
              AskModal({"Save", "Save it?", {mrYes, mrNo}});
            }),
            "Nobody is there to answer the dialog Save \"Save it?\" [Yes, No]");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Save it?\n");
}

}  // namespace
}  // namespace vx
