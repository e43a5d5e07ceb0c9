#include "host/headless/InputScript.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "host/headless/HeadlessHost.h"
#include "platform/system/MessageQueue.h"
#include "platform/system/Timer.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

/// Notes all that it is told, each with its moment where that isn't 0: "down left 40,50 [Shift left] @250; ".
class TNotingTarget : public TComponent, public IInputTarget {
 public:
  using TComponent::TComponent;

  void MouseDown(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y) override {
    Note("down " + ButtonText(button) + At(x, y), shift);
  }
  void MouseMove(TShiftState shift, std::int32_t x, std::int32_t y) override { Note("move" + At(x, y), shift); }
  void MouseUp(TMouseButton button, TShiftState shift, std::int32_t x, std::int32_t y) override {
    Note("up " + ButtonText(button) + At(x, y), shift);
  }
  void MouseWheel(TShiftState shift, std::int32_t notches, std::int32_t x, std::int32_t y) override {
    Note("wheel " + std::to_string(notches) + At(x, y), shift);
  }
  void KeyDown(TKey& key, TShiftState shift) override {
    Note("key " + ShortCutText({key, {}}), shift);
    if (onKey) onKey(key);
  }
  void KeyPress(char32_t character) override { Note("press " + std::to_string(character), {}); }
  void KeyUp(TKey key, TShiftState shift) override { Note("keyup " + ShortCutText({key, {}}), shift); }

  std::string trace;
  std::function<std::int64_t()> ticks = [] { return 0; };
  std::function<void(TKey&)> onKey;

 private:
  static std::string ButtonText(TMouseButton button) {
    return button == mbLeft ? "left" : button == mbRight ? "right" : "middle";
  }
  static std::string At(std::int32_t x, std::int32_t y) { return " " + std::to_string(x) + "," + std::to_string(y); }
  void Note(const std::string& what, TShiftState shift) {
    static constexpr const char* kNames[] = {"Shift", "Alt", "Ctrl", "left", "right", "middle", "double"};
    std::string held;
    for (const TShiftStateFlag flag : {ssShift, ssAlt, ssCtrl, ssLeft, ssRight, ssMiddle, ssDouble})
      if (shift.Has(flag)) held += (held.empty() ? "" : " ") + std::string(kNames[flag]);
    trace += what + (held.empty() ? "" : " [" + held + "]");
    trace += ticks() > 0 ? " @" + std::to_string(ticks()) + "; " : "; ";
  }
};

struct TPlayCase {
  const char* Name;
  const char* Script;
  const char* Told;

  friend void PrintTo(const TPlayCase& each, std::ostream* out) { *out << each.Name; }
};

class Play : public testing::TestWithParam<TPlayCase> {};

TEST_P(Play, TellsTheTargetWhatAPersonDoes) {
  THeadlessHost host;
  const auto target = Make<TNotingTarget>(nullptr);
  target->ticks = [&] { return host.Ticks(); };
  host.Play(GetParam().Script, *target);
  EXPECT_EQ(target->trace, GetParam().Told);
}

constexpr TPlayCase kPlayCases[] = {
    {"Empty", "", ""},
    {"NoStatements", "\r\n  # click 1,2\n ; ;\n", ""},
    {"Click", "click 40,50", "move 40,50; down left 40,50 [left]; up left 40,50; "},
    {"ClickOutside", "RightClick -4,5", "move -4,5; down right -4,5 [right]; up right -4,5; "},
    {"MiddleClick", "middleclick 0,0", "move 0,0; down middle 0,0 [middle]; up middle 0,0; "},
    {"ThePointerStays", "click 1,2\nclick 1,2",
     "move 1,2; down left 1,2 [left]; up left 1,2; down left 1,2 [left]; up left 1,2; "},
    {"AMoveIsAMove", "move 1,2; move 1,2", "move 1,2; move 1,2; "},
    {"DoubleClick", "doubleclick 1,2",
     "move 1,2; down left 1,2 [left]; up left 1,2; down left 1,2 [left double]; up left 1,2; "},
    {"Drag", "drag 10,10 30,0",
     "move 10,10; down left 10,10 [left]; move 16,7 [left]; move 23,4 [left]; move 30,0 [left]; up left 30,0; "},
    {"DragNowhere", "rightdrag 3,3 3,3", "move 3,3; down right 3,3 [right]; up right 3,3; "},
    {"Modifiers", "ctrl+Shift+press left 1,1\nmove 2,2\nAlt+release left 2,2",
     "move 1,1 [Shift Ctrl]; down left 1,1 [Shift Ctrl left]; move 2,2 [left]; up left 2,2 [Alt]; "},
    {"TwoButtons", "press left 1,1; press right 1,1; release left 1,1; release right 1,1",
     "move 1,1; down left 1,1 [left]; down right 1,1 [left right]; up left 1,1 [right]; up right 1,1; "},
    {"Wheel", "Ctrl+wheel -3 at 4,5", "move 4,5 [Ctrl]; wheel -3 4,5 [Ctrl]; "},
    {"ControlKey", "key ctrl+c", "key C [Ctrl]; press 3; keyup C [Ctrl]; "},
    {"NamedKeys", "key Enter; key Shift+pgdn; key F24",
     "key Enter; press 13; keyup Enter; key PgDn [Shift]; keyup PgDn [Shift]; key F24; keyup F24; "},
    {"Type", R"(type "aB1;\"é\n")",
     "key A; press 97; keyup A; key B [Shift]; press 66; keyup B [Shift]; key 1; press 49; keyup 1; press 59; "
     "press 34; press 233; key Enter; press 13; keyup Enter; "},
    {"Wait", "move 1,1; wait 250; wait 0; move 2,2", "move 1,1; move 2,2 @250; "},
};
INSTANTIATE_TEST_SUITE_P(Scripts, Play, testing::ValuesIn(kPlayCases),
                         [](const auto& each) { return std::string(each.param.Name); });

TEST(InputScript, DragsFarInAHundredMovesToTheExactEnd) {
  const auto events = ParseInputScript("drag -1000000,1000000 1000000,-999999");
  ASSERT_EQ(events.size(), 103u);
  EXPECT_EQ(events[101].Place, (TInputPlace{1'000'000, -999'999}));
  EXPECT_EQ(events[51].Place, (TInputPlace{0, 1}));
}

struct TErrorCase {
  const char* Name;
  std::string Script;
  const char* Message;

  friend void PrintTo(const TErrorCase& each, std::ostream* out) { *out << each.Name; }
};

class Broken : public testing::TestWithParam<TErrorCase> {};

TEST_P(Broken, IsToldByItsPlaceBeforeAnythingHappens) {
  THeadlessHost host;
  const auto target = Make<TNotingTarget>(nullptr);
  EXPECT_EQ(MessageOf<EInputScriptError>([&] { host.Play("move 1,1\n" + GetParam().Script, *target); }),
            GetParam().Message);
  EXPECT_EQ(target->trace, "");
}

const TErrorCase kErrorCases[] = {
    {"Verb", "wait 1; tap 1,2", "Line 2, column 9: expected a statement like click, drag, key or wait, found 'tap'"},
    {"NoPlace", "click", "Line 2, column 6: expected a place like \"40,50\", found the end"},
    {"HalfAPlace", "click 40", "Line 2, column 7: expected a place like \"40,50\", found '40'"},
    {"BlankInPlace", "click 40, 50", "Line 2, column 10: expected a place like \"40,50\", found the end"},
    {"PlaceAndMore", "click 4,5x", "Line 2, column 7: expected a place like \"40,50\", found '4,5x'"},
    {"FarAway", "move 1000001,5", "Line 2, column 6: expected a number from -1000000 to 1000000, found '1000001,5'"},
    {"Overflow", "wait 99999999999", "Line 2, column 6: expected a number from 0 to 86400000, found '99999999999'"},
    {"TooMuch", "\nclick 1,2 3,4", "Line 3, column 11: expected the end of the statement, found '3,4'"},
    {"Button", "press top 1,1", "Line 2, column 7: expected left, right or middle, found 'top'"},
    {"Wheel", "wheel 3 1,1", "Line 2, column 9: expected 'at' and a place, found '1,1'"},
    {"Modifier", "Shift+Win+click 1,1", "Line 2, column 7: expected Ctrl+, Alt+ or Shift+, found 'Win+click'"},
    {"ModifierOfKey", "Shift+key C", "Line 2, column 1: 'key' takes no modifiers in front"},
    {"Key", "key Ctrl+", "Line 2, column 5: expected a key like C, Ctrl+C, Enter or F5, found 'Ctrl+'"},
    {"FunctionKey", "key F25", "Line 2, column 5: expected a key like C, Ctrl+C, Enter or F5, found 'F25'"},
    {"NoQuotes", "type hello", "Line 2, column 6: expected a text in quotes, found 'hello'"},
    {"OpenQuotes", "type \"é; wait 1\n\"", "Line 2, column 6: the quotes aren't closed in this line"},
    {"Backslash", R"(type "é\x")", R"(Line 2, column 8: a backslash stands before n, t, " or \ only)"},
    {"LastBackslash", R"(type "\)", R"(Line 2, column 7: a backslash stands before n, t, " or \ only)"},
    {"NoUtf8", "type \"a\xFF\"", "Line 2, column 8: this is no UTF-8"},
    {"ZeroByte", std::string("type \"\0\"", 8), "Line 2, column 7: a control character can't be typed like that"},
    {"Answer", "answer Maybe not", "Line 2, column 8: expected an answer like OK, Cancel, Yes or No, found 'Maybe'"},
};
INSTANTIATE_TEST_SUITE_P(Scripts, Broken, testing::ValuesIn(kErrorCases),
                         [](const auto& each) { return std::string(each.param.Name); });

TEST(InputScript, HasALimit) {
  std::string endless;
  for (std::int32_t i = 0; i < 10'000; ++i) endless += "drag 0,0 1000,1000\n";
  EXPECT_EQ(MessageOf<EInputScriptError>([&] { ParseInputScript(endless); }),
            "Line 9709, column 1: more than 1000000 events");
}

TEST(InputScript, HandlesWhatIsDueBetweenEvents) {
  THeadlessHost host;
  const auto target = Make<TNotingTarget>(nullptr);
  const auto timer = Make<TTimer>(nullptr);
  const TMessageHandle handle([&](const TMessage&) { target->trace += "message; "; });
  timer->SetInterval(250);
  timer->SetOnTimer([&](TObject*) { target->trace += "timer; "; });
  target->onKey = [&](TKey& key) {
    PostMessage(handle.Number(), 1);
    key = vkNone;  // swallowed: types nothing
    EXPECT_EQ(AskModal({"Dialog", "", {mrOk, mrNoToAll}}), mrNoToAll);
  };
  host.Play("answer no to all; key Enter; wait 249; move 1,1; wait 1; move 2,2", *target);
  EXPECT_EQ(target->trace, "key Enter; keyup Enter; message; move 1,1; timer; move 2,2; ");
  EXPECT_EQ(host.PendingAnswers(), 0u);
}

TEST(InputScript, KeepsWhatIsPressedForTheNextScript) {
  THeadlessHost host;
  const auto target = Make<TNotingTarget>(nullptr);
  host.Play("press left 1,1", *target);
  target->trace.clear();
  host.Play("move 2,2; release left 2,2", *target);
  EXPECT_EQ(target->trace, "move 2,2 [left]; up left 2,2; ");
}

TEST(InputScript, StopsWhenTheTargetOrTheHostGoes) {
  auto host = std::make_unique<THeadlessHost>();
  auto target = Make<TNotingTarget>(nullptr);
  target->onKey = [&](TKey&) { target.reset(); };  // as Enter does to a form
  EXPECT_EQ(MessageOf<EInputScriptError>([&] { host->Play("key Enter\nwait 1", *target); }),
            "Line 2, column 1: the target has gone");
  target = Make<TNotingTarget>(nullptr);
  target->onKey = [&](TKey&) { host.reset(); };
  host->Play("key F1; key F2", *target);
  EXPECT_EQ(target->trace, "key F1; keyup F1; ");
}

}  // namespace
}  // namespace vx
