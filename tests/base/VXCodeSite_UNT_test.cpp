// Trace calls compile with whatever a unit has at hand, null pointers too, and do nothing.
#include "base/VXCodeSite_UNT.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/component/Component.h"

namespace vx {
namespace {

TEST(CodeSite, TakesWhateverIsAtHand) {
  enum class TLevel { Low };
  const std::string text = "text";
  const TOwned<TComponent> component = Make<TComponent>();
  CSEnterMethod(component.get(), "Test");
  CSEnterMethod(nullptr, "Test");
  CSEnterMethod(text);
  CSSendMsg(nullptr);
  CSSendFmtMsgEx(7, "%q", {1, text, 2.5});  // no format, and nobody looks
  CSSendEnum("level", TLevel::Low);
  CSSendEnumEx(7, "operation", opInsert);
  CSSendStringEx(7, text, nullptr);
  CSSendAssigned("component", component.get());
  CSSendProperty("name", component.get(), "Name");
  CSSendStream("none", nullptr);
  CSExitMethod(component.get(), "Test");
}

}  // namespace
}  // namespace vx
