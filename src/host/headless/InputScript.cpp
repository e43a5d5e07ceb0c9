#include "host/headless/InputScript.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string>

#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::int32_t kFarthest = 1'000'000;      ///< pixels
constexpr std::int32_t kLongestWait = 86'400'000;  ///< milliseconds
constexpr std::int32_t kMostNotches = 1000;
constexpr std::int32_t kDragStep = 8;  ///< pixels
constexpr std::int32_t kMostDragSteps = 100;
constexpr std::size_t kMostEvents = 1'000'000;
constexpr std::size_t kShownText = 40;  ///< bytes of the script in an error

constexpr std::string_view kButtons[] = {"left", "right", "middle"};  // as in TMouseButton

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// The key that types a character of a text; vkNone if there is none that is the same on every keyboard.
TShortCut KeyOf(char32_t character) {
  if (character >= 'a' && character <= 'z') return {static_cast<TKey>(character - 'a' + 'A'), {}};
  if (character >= 'A' && character <= 'Z') return {static_cast<TKey>(character), {ssShift}};
  const bool isKey =
      (character >= '0' && character <= '9') || character == vkReturn || character == vkTab || character == vkSpace;
  return {isKey ? static_cast<TKey>(character) : vkNone, {}};
}

/// Reads a script from its first statement to its last. `line_` is the line in hand, `at_` the place in it.
class TScriptReader {
 public:
  explicit TScriptReader(std::string_view script) : rest_(script) {}

  std::vector<TInputEvent> Run() {
    while (NextLine()) ReadLine();
    return std::move(events_);
  }

 private:
  struct TVerb {
    std::string_view Name;
    void (TScriptReader::*Read)();
    bool TakesModifiers;
  };
  static const TVerb kVerbs[];

  // -- Places in the text ---------------------------------------------------------------------------------------------
  [[noreturn]] void FailAt(std::size_t at, const std::string& what) const {
    const auto column = static_cast<std::int32_t>(CodePointCount(line_.substr(0, at))) + 1;
    throw EInputScriptError(lineNumber_, column, what);
  }
  [[noreturn]] void FailExpected(std::size_t at, const std::string& expected) const {
    const std::string_view found = line_.substr(at, line_.find_first_of(" \t;", at) - at);
    const std::string shown(CutAtCodePoint(found, kShownText));
    FailAt(at, "expected " + expected + ", found " + (shown.empty() ? "the end" : "'" + shown + "'"));
  }
  bool NextLine() {
    if (rest_.empty()) return false;
    ++lineNumber_;
    at_ = 0;
    line_ = rest_.substr(0, rest_.find('\n'));
    rest_.remove_prefix(std::min(line_.size() + 1, rest_.size()));
    return true;
  }
  bool AtEnd() const { return at_ == line_.size() || line_[at_] == ';'; }
  char Here() const { return AtEnd() ? '\0' : line_[at_]; }
  void SkipBlanks() {
    while (at_ < line_.size() && IsBlank(line_[at_])) ++at_;
  }

  // -- Words ----------------------------------------------------------------------------------------------------------
  /// Up to the next blank; `at_` stands at its first byte when this answers.
  std::string_view PeekWord() {
    SkipBlanks();
    std::size_t end = at_;
    while (end < line_.size() && line_[end] != ';' && !IsBlank(line_[end])) ++end;
    return line_.substr(at_, end - at_);
  }
  std::int32_t Number(std::int32_t least, std::int32_t most, const std::string& expected);
  TInputPlace Place();
  TMouseButton Button();
  char32_t TypedCharacter();

  // -- Statements -----------------------------------------------------------------------------------------------------
  void ReadLine();
  void ReadStatement();
  TShiftState Modifiers(std::string_view& word);
  void ReadMove() { AddMouse(TInputKind::Move, mbLeft, Place()); }
  void ReadClick() { AddClick(mbLeft, Place()); }
  void ReadRightClick() { AddClick(mbRight, Place()); }
  void ReadMiddleClick() { AddClick(mbMiddle, Place()); }
  void ReadDoubleClick();
  void ReadDrag() { AddDrag(mbLeft); }
  void ReadRightDrag() { AddDrag(mbRight); }
  void ReadPress();
  void ReadRelease();
  void ReadWheel();
  void ReadKey();
  void ReadType();
  void ReadWait();
  void ReadAnswer();

  // -- Events ---------------------------------------------------------------------------------------------------------
  TInputEvent& Add(TInputKind kind);
  TInputEvent& AddMouse(TInputKind kind, TMouseButton button, TInputPlace place);
  void AddPress(TMouseButton button, TInputPlace place) {
    AddMouse(TInputKind::GoTo, button, place);
    AddMouse(TInputKind::Down, button, place);
  }
  void AddClick(TMouseButton button, TInputPlace place) {
    AddPress(button, place);
    AddMouse(TInputKind::Up, button, place);
  }
  void AddDrag(TMouseButton button);

  std::string_view rest_;
  std::string_view line_;
  std::int32_t lineNumber_ = 0;
  std::size_t at_ = 0;
  std::size_t statementAt_ = 0;
  TShiftState modifiers_;  // of the statement in hand
  std::vector<TInputEvent> events_;
};

constexpr TScriptReader::TVerb TScriptReader::kVerbs[] = {
    {"move", &TScriptReader::ReadMove, true},
    {"click", &TScriptReader::ReadClick, true},
    {"rightclick", &TScriptReader::ReadRightClick, true},
    {"middleclick", &TScriptReader::ReadMiddleClick, true},
    {"doubleclick", &TScriptReader::ReadDoubleClick, true},
    {"drag", &TScriptReader::ReadDrag, true},
    {"rightdrag", &TScriptReader::ReadRightDrag, true},
    {"press", &TScriptReader::ReadPress, true},
    {"release", &TScriptReader::ReadRelease, true},
    {"wheel", &TScriptReader::ReadWheel, true},
    {"key", &TScriptReader::ReadKey, false},
    {"type", &TScriptReader::ReadType, false},
    {"wait", &TScriptReader::ReadWait, false},
    {"answer", &TScriptReader::ReadAnswer, false},
};

// -- Words ------------------------------------------------------------------------------------------------------------

std::int32_t TScriptReader::Number(std::int32_t least, std::int32_t most, const std::string& expected) {
  std::int32_t number = 0;
  const char* const end = line_.data() + line_.size();
  const auto [behind, error] = std::from_chars(line_.data() + at_, end, number);
  if (error == std::errc::invalid_argument) FailExpected(at_, expected);
  if (error != std::errc() || number < least || number > most)
    FailExpected(at_, "a number from " + std::to_string(least) + " to " + std::to_string(most));
  at_ = static_cast<std::size_t>(behind - line_.data());
  return number;
}

TInputPlace TScriptReader::Place() {
  static constexpr const char* kExpected = "a place like \"40,50\"";
  SkipBlanks();
  const std::size_t begin = at_;
  const std::int32_t x = Number(-kFarthest, kFarthest, kExpected);
  if (Here() != ',') FailExpected(begin, kExpected);
  ++at_;
  const std::int32_t y = Number(-kFarthest, kFarthest, kExpected);
  if (!AtEnd() && !IsBlank(Here())) FailExpected(begin, kExpected);
  return {x, y};
}

TMouseButton TScriptReader::Button() {
  const std::string_view word = PeekWord();
  for (const TMouseButton button : {mbLeft, mbRight, mbMiddle})
    if (CompareText(kButtons[button], word) == 0) {
      at_ += word.size();
      return button;
    }
  FailExpected(at_, "left, right or middle");
}

// -- Statements -------------------------------------------------------------------------------------------------------

void TScriptReader::ReadLine() {
  SkipBlanks();
  if (Here() == '#') return;
  while (true) {
    SkipBlanks();
    if (!AtEnd()) ReadStatement();
    SkipBlanks();
    if (at_ == line_.size()) return;
    if (line_[at_] != ';') FailExpected(at_, "the end of the statement");
    ++at_;
  }
}

TShiftState TScriptReader::Modifiers(std::string_view& word) {
  TShiftState modifiers;
  for (std::size_t plus = word.find('+'); plus != std::string_view::npos; plus = word.find('+')) {
    const auto modifier = TextToModifier(word.substr(0, plus));
    if (!modifier) FailExpected(at_, "Ctrl+, Alt+ or Shift+");
    modifiers.Include(*modifier);
    word.remove_prefix(plus + 1);
    at_ += plus + 1;
  }
  return modifiers;
}

void TScriptReader::ReadStatement() {
  statementAt_ = at_;
  std::string_view word = PeekWord();
  modifiers_ = Modifiers(word);
  const auto* const verb = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                        [word](const TVerb& each) { return CompareText(each.Name, word) == 0; });
  if (verb == std::end(kVerbs)) FailExpected(at_, "a statement like click, drag, key or wait");
  if (!modifiers_.Empty() && !verb->TakesModifiers)
    FailAt(statementAt_, "'" + std::string(word) + "' takes no modifiers in front");
  at_ += word.size();
  (this->*verb->Read)();
}

void TScriptReader::ReadDoubleClick() {
  const TInputPlace place = Place();
  AddClick(mbLeft, place);
  AddMouse(TInputKind::Down, mbLeft, place).Shift.Include(ssDouble);
  AddMouse(TInputKind::Up, mbLeft, place);
}

void TScriptReader::ReadPress() {
  const TMouseButton button = Button();
  AddPress(button, Place());
}

void TScriptReader::ReadRelease() {
  const TMouseButton button = Button();
  const TInputPlace place = Place();
  AddMouse(TInputKind::GoTo, button, place);
  AddMouse(TInputKind::Up, button, place);
}

void TScriptReader::ReadWheel() {
  SkipBlanks();
  const std::int32_t notches = Number(-kMostNotches, kMostNotches, "a number of notches");
  const std::string_view word = PeekWord();
  if (CompareText(word, "at") != 0) FailExpected(at_, "'at' and a place");
  at_ += word.size();
  const TInputPlace place = Place();
  AddMouse(TInputKind::GoTo, mbLeft, place);
  AddMouse(TInputKind::Wheel, mbLeft, place).Amount = notches;
}

void TScriptReader::ReadKey() {
  const std::string_view word = PeekWord();
  const auto shortCut = TextToShortCut(word);
  if (!shortCut) FailExpected(at_, "a key like C, Ctrl+C, Enter or F5");
  TInputEvent& event = Add(TInputKind::Key);
  event.Key = shortCut->Key;
  event.Shift = shortCut->Shift;
  event.Character = CharacterOf(*shortCut);
  at_ += word.size();
}

void TScriptReader::ReadType() {
  SkipBlanks();
  const std::size_t begin = at_;
  if (Here() != '"') FailExpected(at_, "a text in quotes");
  ++at_;
  while (at_ < line_.size() && line_[at_] != '"') {
    const char32_t character = TypedCharacter();
    const TShortCut key = KeyOf(character);
    TInputEvent& event = Add(TInputKind::Key);
    event.Character = character;
    event.Key = key.Key;
    event.Shift = key.Shift;
  }
  if (at_ == line_.size()) FailAt(begin, "the quotes aren't closed in this line");
  ++at_;
}

char32_t TScriptReader::TypedCharacter() {
  const std::size_t begin = at_;
  const char32_t character = NextCodePoint(line_, at_);
  if (character >= kMalformed) FailAt(begin, "this is no UTF-8");
  if (character < ' ') FailAt(begin, "a control character can't be typed like that");
  if (character != '\\') return character;
  const char escaped = at_ < line_.size() ? line_[at_++] : '\0';
  if (escaped == 'n') return vkReturn;
  if (escaped == 't') return vkTab;
  if (escaped != '"' && escaped != '\\') FailAt(begin, R"(a backslash stands before n, t, " or \ only)");
  return static_cast<unsigned char>(escaped);
}

void TScriptReader::ReadWait() {
  SkipBlanks();
  const std::int32_t milliseconds = Number(0, kLongestWait, "a number of milliseconds");
  Add(TInputKind::Wait).Amount = milliseconds;
}

void TScriptReader::ReadAnswer() {
  SkipBlanks();
  const std::string_view text = Trimmed(line_.substr(at_, line_.find(';', at_) - at_));
  const auto answer = TextToModalResult(text);
  if (!answer) FailExpected(at_, "an answer like OK, Cancel, Yes or No");
  Add(TInputKind::Answer).Answer = *answer;
  at_ += text.size();
}

// -- Events -----------------------------------------------------------------------------------------------------------

TInputEvent& TScriptReader::Add(TInputKind kind) {
  if (events_.size() == kMostEvents) FailAt(statementAt_, "more than " + std::to_string(kMostEvents) + " events");
  return events_.emplace_back(TInputEvent{.Kind = kind, .Line = lineNumber_, .Shift = modifiers_});
}

TInputEvent& TScriptReader::AddMouse(TInputKind kind, TMouseButton button, TInputPlace place) {
  TInputEvent& event = Add(kind);
  event.Button = button;
  event.Place = place;
  return event;
}

void TScriptReader::AddDrag(TMouseButton button) {
  const TInputPlace from = Place();
  const TInputPlace to = Place();
  AddPress(button, from);
  const std::int64_t dx = to.X - from.X, dy = to.Y - from.Y;
  const std::int64_t longer = std::max(std::abs(dx), std::abs(dy));
  const std::int64_t steps = std::min<std::int64_t>((longer + kDragStep - 1) / kDragStep, kMostDragSteps);
  for (std::int64_t i = 1; i <= steps; ++i)
    AddMouse(TInputKind::Move, button,
             {static_cast<std::int32_t>(from.X + dx * i / steps), static_cast<std::int32_t>(from.Y + dy * i / steps)});
  AddMouse(TInputKind::Up, button, to);
}

TShiftStateFlag FlagOf(TMouseButton button) {
  static constexpr TShiftStateFlag kFlags[] = {ssLeft, ssRight, ssMiddle};
  return kFlags[button];
}

}  // namespace

EInputScriptError::EInputScriptError(std::int32_t line, std::int32_t column, const std::string& what)
    : TNamedException("Line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + what),
      line_(line),
      column_(column) {}

std::vector<TInputEvent> ParseInputScript(std::string_view script) { return TScriptReader(script).Run(); }

// -- The player -------------------------------------------------------------------------------------------------------

void TInputPlayer::Send(const TInputEvent& event, const TInputTargetRef& target) {
  IInputTarget* const told = target.Get();
  if (told == nullptr) return;
  if (event.Kind == TInputKind::Key)
    SendKey(event, target);
  else if (event.Kind == TInputKind::GoTo || event.Kind == TInputKind::Move)
    SendMove(event, *told);
  else
    SendMouse(event, *told);
}

// What is called may end the target and this player: the call stands last in the next two.

void TInputPlayer::SendMove(const TInputEvent& event, IInputTarget& target) {
  if (event.Kind == TInputKind::GoTo && pointer_ == event.Place) return;
  pointer_ = event.Place;
  target.MouseMove(event.Shift + pressed_, event.Place.X, event.Place.Y);
}

void TInputPlayer::SendMouse(const TInputEvent& event, IInputTarget& target) {
  const auto [x, y] = event.Place;
  if (event.Kind == TInputKind::Down) {
    pressed_.Include(FlagOf(event.Button));
    target.MouseDown(event.Button, event.Shift + pressed_, x, y);
  } else if (event.Kind == TInputKind::Up) {
    pressed_.Exclude(FlagOf(event.Button));
    target.MouseUp(event.Button, event.Shift + pressed_, x, y);
  } else if (event.Kind == TInputKind::Wheel) {
    target.MouseWheel(event.Shift + pressed_, event.Amount, x, y);
  }
}

void TInputPlayer::SendKey(const TInputEvent& event, const TInputTargetRef& target) {
  const bool hasKey = event.Key != vkNone;
  TKey key = event.Key;
  if (hasKey) target.Get()->KeyDown(key, event.Shift);
  const bool isSwallowed = hasKey && key == vkNone;
  IInputTarget* told = target.Get();
  if (told != nullptr && event.Character != 0 && !isSwallowed) told->KeyPress(event.Character);
  told = target.Get();
  if (told != nullptr && hasKey) told->KeyUp(event.Key, event.Shift);
}

}  // namespace vx
