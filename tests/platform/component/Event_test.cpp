#include "platform/component/Event.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace vx {
namespace {

using TKeyEvent = TEvent<void(TObject*, char&)>;
using TAskEvent = TEvent<int(int)>;

static_assert(!std::is_convertible_v<TKeyEvent, TNotifyEvent>);
static_assert(!std::is_convertible_v<TNotifyEvent, TKeyEvent>);
static_assert(!std::is_convertible_v<TEvent<void(const void*)>, TNotifyEvent>);  // callable with it, yet of no identity
static_assert(!std::is_constructible_v<TNotifyEvent, int>);
static_assert(!std::is_constructible_v<TAskEvent, std::string (*)(int)>);

struct TBase {
  int Twice(int value) { return 2 * value; }
  virtual int Named(int value) { return value; }
  virtual ~TBase() = default;
};
struct TDerived : TBase {
  explicit TDerived(int amount = 0) : add(amount) {}
  int Add(int value) const { return value + add; }
  int Named(int value) override { return -value; }
  int add;
};
static_assert(
    !std::is_constructible_v<TAskEvent, const TDerived&, int (TBase::*)(int)>);  // a changing method of a const object

int PlainOne(int) { return 1; }
int PlainTwo(int) { return 2; }

TEST(Event, IsEqualByCodeAndObject) {
  TDerived a(1), b(2);
  const auto lambda = [](int value) { return value; };
  const TAskEvent kept = lambda;
  struct TCase {
    const char* name;
    TAskEvent left, right;
    bool equal, sameCode;
  };
  const TCase cases[] = {
      {"both unassigned", {}, nullptr, true, true},
      {"one unassigned", {}, {a, &TBase::Twice}, false, false},
      {"same method and object", {a, &TBase::Twice}, {a, &TBase::Twice}, true, true},
      {"named through the derived class", {a, &TBase::Twice}, {a, &TDerived::Twice}, true, true},
      {"other object", {a, &TBase::Twice}, {b, &TBase::Twice}, false, true},
      {"other method of the same type", {a, &TBase::Twice}, {a, &TBase::Named}, false, false},
      {"const and plain method", {a, &TDerived::Add}, {a, &TBase::Twice}, false, false},
      {"const method, same object", {a, &TDerived::Add}, {a, &TDerived::Add}, true, true},
      {"one callable put in twice", lambda, lambda, false, true},
      {"copies of one event", kept, TAskEvent(kept), true, true},
      {"same plain function", PlainOne, &PlainOne, true, true},
      {"other plain function", PlainOne, PlainTwo, false, false},
      {"empty callables", std::function<int(int)>(), static_cast<int (*)(int)>(nullptr), true, true},
  };
  for (const TCase& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.left == c.right, c.equal);
    EXPECT_EQ(c.right == c.left, c.equal);
    EXPECT_EQ(c.left.SameCode(c.right), c.sameCode);
    EXPECT_EQ(TAnyEvent(c.left) == TAnyEvent(c.right), c.equal);
  }
}

TEST(Event, CallsWhatItHolds) {
  TDerived object(5);
  EXPECT_EQ(TAskEvent()(7), 0);
  EXPECT_EQ(TAskEvent(object, &TBase::Twice)(7), 14);
  EXPECT_EQ(TAskEvent(object, &TBase::Named)(7), -7);
  EXPECT_EQ(TAskEvent(object, &TDerived::Add)(7), 12);
  EXPECT_EQ(TAskEvent(PlainTwo)(7), 2);

  char key = 'a';
  TKeyEvent([](TObject*, char& pressed) { pressed = 'b'; })(nullptr, key);  // what is given by reference comes back
  EXPECT_EQ(key, 'b');
}

TEST(Event, SurvivesAHandlerThatEndsItsOwnSlot) {
  auto* slot = new TEvent<std::string(int)>;
  std::string text(100, 'x');  // on the heap: a handler that ran on freed captures would be found out
  *slot = [&slot, text](int) {
    *slot = [](int) { return std::string("the next"); };
    delete slot;
    slot = nullptr;
    return text;
  };
  EXPECT_EQ((*slot)(0), text);
  EXPECT_EQ(slot, nullptr);
}

TEST(AnyEvent, GivesBackOnlyTheSignatureThatWentIn) {
  const TAskEvent ask = PlainOne;
  const TAnyEvent any = ask;
  EXPECT_TRUE(any.As<int(int)>() == ask);
  EXPECT_FALSE(any.As<void(TObject*)>());
  EXPECT_FALSE(any.Fits(typeid(void(TObject*))));
  EXPECT_TRUE(TAnyEvent().Fits(typeid(void(TObject*))));
}

}  // namespace
}  // namespace vx
