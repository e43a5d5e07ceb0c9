// InputScript.h: what a person does, written down.
//
//   move 5,5                      the pointer goes there
//   click 40,50                   rightclick, middleclick, doubleclick
//   drag 10,10 80,40              down, moves of about 8 pixels, at most 100, up; rightdrag
//   press left 3,4                release left 3,4             left, right or middle
//   wheel -3 at 40,50             three notches towards the person
//   Shift+click 1,2               Ctrl, Alt and Shift, for all of these
//   key Ctrl+C                    key Enter, key F5, key Shift+PgDn, key Shift: see Input.h
//   type "Müller\n"               \n is Enter, \t is Tab; \" and \\ are letters
//   wait 250                      milliseconds of the host's clock
//   answer No to all              what the next dialog is answered with: see Modal.h
//
// A statement a line, or several with ";" between; blank lines and lines that begin with "#" are passed over. Letter
// case doesn't count outside of quotes.
//
// Before the mouse is pressed or turned somewhere, the pointer goes there: a move, unless it is there already. What is
// pressed stays pressed until it is released, in the next script too. Ctrl, Alt and Shift are told with each event; as
// keys of their own only where a script presses them so ("key Shift").
//
// Errors. EInputScriptError names line and column and what was expected there. The whole script is read before anything
// happens. Limits: places within a million pixels, waits within a day, 1,000,000 events.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/Component.h"
#include "platform/runtime/Exceptions.h"
#include "platform/system/Input.h"
#include "platform/system/Modal.h"

namespace vx {

class EInputScriptError : public TNamedException<EInputScriptError> {
 public:
  static constexpr const char* kName = "EInputScriptError";
  /// Both count from 1; the column in code points.
  EInputScriptError(std::int32_t line, std::int32_t column, const std::string& what);
  std::int32_t Line() const { return line_; }
  std::int32_t Column() const { return column_; }

 private:
  std::int32_t line_;
  std::int32_t column_;
};

enum class TInputKind : std::uint8_t {
  GoTo,    ///< a move, unless the pointer is there: Place
  Move,    ///< Place
  Down,    ///< Button, at Place
  Up,      ///< Button, at Place
  Wheel,   ///< Amount notches, at Place
  Key,     ///< Key, which types Character
  Wait,    ///< Amount milliseconds
  Answer,  ///< Answer
};

/// In pixels of the target.
struct TInputPlace {
  std::int32_t X = 0, Y = 0;
  bool operator==(const TInputPlace&) const = default;
};

/// One thing that happens; what else it means stands with its kind.
struct TInputEvent {
  TInputKind Kind;
  std::int32_t Line = 0;   ///< of the script
  TShiftState Shift = {};  ///< modifiers, and ssDouble; what is pressed is the player's to know
  TMouseButton Button = mbLeft;
  TInputPlace Place = {};
  std::int32_t Amount = 0;
  TKey Key = vkNone;       ///< vkNone for a character that no key stands for
  char32_t Character = 0;  ///< 0 for a key that types nothing
  TModalResult Answer = mrNone;
};

std::vector<TInputEvent> ParseInputScript(std::string_view script);

/// Who is played to. A target that is a component may go while it is told something; any other must stay.
class TInputTargetRef {
 public:
  TInputTargetRef(IInputTarget& target)  // NOLINT: a target is passed as it is
      : target_(&target), component_(dynamic_cast<TComponent*>(&target)), link_(component_) {}
  /// Null once it has gone.
  IInputTarget* Get() const { return component_ == nullptr || link_.Component() != nullptr ? target_ : nullptr; }

 private:
  IInputTarget* target_;
  TComponent* component_;
  TComponentLink link_;
};

/// Sends events of mouse and keyboard, and knows what is pressed and where the pointer is.
class TInputPlayer {
 public:
  /// Nothing happens without a target. Waits and answers are not for the target, and without effect here. Passes on
  /// what the target raises.
  void Send(const TInputEvent& event, const TInputTargetRef& target);

 private:
  void SendMouse(const TInputEvent& event, IInputTarget& target);
  void SendMove(const TInputEvent& event, IInputTarget& target);
  static void SendKey(const TInputEvent& event, const TInputTargetRef& target);

  std::optional<TInputPlace> pointer_;  // empty before the first move
  TShiftState pressed_;                 // mouse buttons
};

}  // namespace vx
