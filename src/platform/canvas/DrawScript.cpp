#include "platform/canvas/DrawScript.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "platform/canvas/RecordingWords.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::size_t kMostShown = 40;  // bytes of a text in a message
constexpr const char* kEnd = "the end of the line";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// Fewer than nine hexadecimal digits, all of the text.
std::optional<std::uint32_t> HexNumber(std::string_view digits) {
  std::uint32_t value = 0;
  for (const char c : digits) {
    if (HexValue(c) < 0) return std::nullopt;
    value = value << 4 | static_cast<std::uint32_t>(HexValue(c));
  }
  return value;
}

/// All of the text as a number; nullopt if it is none of that type.
template <class T>
std::optional<T> Number(std::string_view text) {
  T value{};
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
  return value;
}

std::pair<std::string_view, std::string_view> CutAt(std::string_view text, char separator) {
  const std::size_t at = std::min(text.find(separator), text.size());
  return {text.substr(0, at), text.substr(std::min(at + 1, text.size()))};
}

/// Of two numbers with a separator between them.
std::optional<TPoint> Pair(std::string_view text, char separator) {
  const auto [first, second] = CutAt(text, separator);
  const auto x = Number<std::int32_t>(first), y = Number<std::int32_t>(second);
  return x && y ? std::optional(TPoint{*x, *y}) : std::nullopt;
}

TColor ColorOf(std::uint32_t rgb) {
  return RGBColor(static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
                  static_cast<std::uint8_t>(rgb));
}

// -- One line ---------------------------------------------------------------------------------------------------------

/// Reads a line word by word. Each member reads one thing whole, or raises an error that tells what was expected.
class TLine {
 public:
  TLine(std::string_view text, std::size_t number) : text_(text), number_(number) { SkipBlanks(); }

  bool IsDone() const { return at_ == text_.size(); }
  bool IsPassedOver() const { return IsDone() || text_[at_] == '#'; }
  bool IsAtQuote() const { return !IsDone() && text_[at_] == '"'; }
  std::string_view Peek() const;
  /// True, and the word is passed, if it comes next.
  bool Take(std::string_view word);
  /// The place of the next word in `words`, passed if it is among them and isn't empty.
  template <std::size_t N>
  std::optional<std::size_t> TakeOneOf(const std::array<std::string_view, N>& words);

  std::string_view Word(const char* expected);
  template <class T>
  T Value(const std::optional<T>& value, const char* expected);
  TColor Color() { return ColorOf(Value(HexOf(6), "a colour (rrggbb)")); }
  std::int32_t Whole(const char* expected) { return Value(Number<std::int32_t>(Peek()), expected); }
  std::int32_t Positive(const char* expected);
  double Real(const char* expected);
  TPoint Point() { return Value(Pair(Peek(), ','), "a point (x,y)"); }
  TSize Size(char separator, const char* expected);
  TRect Rect();
  std::string QuotedText(const char* expected);
  void End(const char* expected);

  [[noreturn]] void Fail(const std::string& what, std::size_t at) const;
  [[noreturn]] void FailExpecting(const char* expected) const;
  std::size_t At() const { return at_; }

 private:
  void SkipBlanks() {
    while (!IsDone() && IsBlank(text_[at_])) ++at_;
  }
  void Pass(std::size_t size) {
    at_ += size;
    SkipBlanks();
  }
  std::optional<std::uint32_t> HexOf(std::size_t digits) const {
    return Peek().size() == digits ? HexNumber(Peek()) : std::nullopt;
  }

  std::string_view text_;
  std::size_t number_;
  std::size_t at_ = 0;
};

std::string_view TLine::Peek() const {
  std::size_t end = at_;
  while (end < text_.size() && !IsBlank(text_[end])) ++end;
  return text_.substr(at_, end - at_);
}

bool TLine::Take(std::string_view word) {
  if (IsDone() || Peek() != word) return false;
  Pass(word.size());
  return true;
}

template <std::size_t N>
std::optional<std::size_t> TLine::TakeOneOf(const std::array<std::string_view, N>& words) {
  const auto found = std::ranges::find(words, Peek());
  if (IsDone() || found == words.end()) return std::nullopt;
  Pass(found->size());
  return static_cast<std::size_t>(found - words.begin());
}

void TLine::Fail(const std::string& what, std::size_t at) const {
  throw EDrawScriptError(number_, CodePointCount(text_.substr(0, at)) + 1, what);
}

void TLine::FailExpecting(const char* expected) const {
  const std::string_view word = CutAtCodePoint(Peek(), kMostShown);
  const std::string shown = recording::Quoted(word).append(word.size() < Peek().size() ? "…" : "");
  Fail((IsDone() ? "the line ends" : shown) + " where " + expected + " was expected", at_);
}

template <class T>
T TLine::Value(const std::optional<T>& value, const char* expected) {
  if (!value) FailExpecting(expected);
  Pass(Peek().size());
  return *value;
}

std::string_view TLine::Word(const char* expected) {
  return Value(IsDone() ? std::nullopt : std::optional(Peek()), expected);
}

std::int32_t TLine::Positive(const char* expected) {
  const auto number = Number<std::int32_t>(Peek());
  return Value(number && *number > 0 ? number : std::nullopt, expected);
}

double TLine::Real(const char* expected) {
  const auto number = Number<double>(Peek());
  return Value(number && std::isfinite(*number) ? number : std::nullopt, expected);
}

/// From 1 to the largest side of a picture.
TSize TLine::Size(char separator, const char* expected) {
  const auto isSide = [](std::int32_t side) { return side >= 1 && side <= TBitmap::kMaxSide; };
  const auto pair = Pair(Peek(), separator);
  const TPoint size = Value(pair && isSide(pair->X) && isSide(pair->Y) ? pair : std::nullopt, expected);
  return {size.X, size.Y};
}

TRect TLine::Rect() {
  const TPoint first = Point(), beyond = Point();
  return {first.X, first.Y, beyond.X, beyond.Y};
}

std::string TLine::QuotedText(const char* expected) {
  if (!IsAtQuote()) FailExpecting(expected);
  std::string text;
  for (std::size_t at = at_ + 1; at < text_.size(); ++at) {
    if (text_[at] == '"') {
      Pass(at + 1 - at_);
      return text;
    }
    if (text_[at] != '\\') {
      text += text_[at];
      continue;
    }
    const auto byte = HexNumber(text_.substr(at + 1, 2));
    if (!byte || text_.size() - at < 3) Fail("a backslash without its two hexadecimal digits", at);
    text += static_cast<char>(*byte);
    at += 2;
  }
  Fail("the text isn't ended by a quote", at_);
}

void TLine::End(const char* expected) {
  if (!IsDone()) FailExpecting(expected);
}

// -- The text, line by line -------------------------------------------------------------------------------------------

/// Calls `read` with each line that isn't passed over, until that answers false.
template <class TRead>
void ForEachLine(std::string_view text, const TRead& read) {
  for (std::size_t number = 1; !text.empty(); ++number) {
    auto [words, rest] = CutAt(text, '\n');
    if (words.ends_with('\r')) words.remove_suffix(1);
    TLine line(words, number);
    if (!line.IsPassedOver() && !read(line)) return;
    text = rest;
  }
}

TSize ReadSize(TLine& line) {
  const TSize size = line.Size(',', "a size from 1,1 to 32767,32767");
  line.End(kEnd);
  return size;
}

TPenData ReadPen(TLine& line) {
  TPenData pen{.Color = line.Color()};
  if (const auto width = Number<std::int32_t>(line.Peek())) pen.Width = line.Whole("a width");
  pen.Style = static_cast<TPenStyle>(line.TakeOneOf(recording::kPenStyles).value_or(psSolid));
  if (line.Take(recording::kXor)) pen.Mode = pmXor;
  return pen;
}

TBrushData ReadBrush(TLine& line) {
  if (line.Take(recording::kClear)) return {clWhite, bsClear};
  TBrushData brush{.Color = line.Color()};
  if (line.Peek() != recording::kClear)
    brush.Style = static_cast<TBrushStyle>(line.TakeOneOf(recording::kBrushStyles).value_or(bsSolid));
  return brush;
}

TFontData ReadFont(TLine& line) {
  TFontData font;
  font.Color = line.Color();
  font.Height = line.Whole("a height in pixels");
  for (std::size_t bit = 0; bit < recording::kFontStyles.size(); ++bit)
    if (line.Take(recording::kFontStyles[bit])) font.Style = font.Style | static_cast<TFontStyles>(1u << bit);
  const std::size_t at = line.At();
  if (line.IsAtQuote()) font.Name = line.QuotedText("a name");
  if (font.Name.size() > kMostFontName)
    line.Fail("a name of more than " + std::to_string(kMostFontName) + " bytes", at);
  return font;
}

bool FollowsInARegion(const TRect& rect, const TRect& last) {
  const bool isInBand = rect.Top == last.Top && rect.Bottom == last.Bottom && rect.Left >= last.Right;
  return isInBand || rect.Top >= last.Bottom;
}

std::vector<TRect> ReadRegion(TLine& line) {
  std::vector<TRect> rects;
  while (!line.IsDone()) {
    const std::size_t at = line.At();
    const TRect rect = line.Rect();
    if (rect.IsEmpty()) line.Fail("an empty rectangle in a region", at);
    if (!rects.empty() && !FollowsInARegion(rect, rects.back()))
      line.Fail("a rectangle that is neither right of the one before it in its band, nor below that band", at);
    rects.push_back(rect);
  }
  return rects;
}

/// Some pixels of one colour.
struct TPixels {
  std::uint32_t Pixel;
  std::int64_t Count;
};

/// 0xAARRGGBB of six or eight digits.
std::optional<std::uint32_t> PixelOf(std::string_view digits) {
  const auto value = HexNumber(digits);
  if (value && digits.size() == 6) return 0xFF000000u | *value;
  if (value && digits.size() == 8) return *value << 24 | *value >> 8;
  return std::nullopt;
}

TPixels ReadPixels(TLine& line) {
  const auto [digits, repeat] = CutAt(line.Peek(), '*');
  const bool isRepeated = digits.size() < line.Peek().size();
  const auto pixel = digits.size() <= 8 ? PixelOf(digits) : std::nullopt;
  const auto count = isRepeated ? Number<std::int32_t>(repeat) : 1;
  const bool isRight = pixel && count && *count > 0;
  return line.Value(isRight ? std::optional(TPixels{*pixel, *count}) : std::nullopt,
                    "pixels (rrggbb, rrggbbaa, rrggbb*count)");
}

TBitmap BitmapOf(TSize size, std::span<const TPixels> parts) {
  TBitmap bitmap(size);
  auto part = parts.begin();
  std::int64_t left = part->Count;
  for (std::int32_t y = 0; y < size.Height; ++y) {
    for (std::uint32_t& pixel : bitmap.Row(y)) {
      if (left == 0) left = (++part)->Count;
      pixel = part->Pixel;
      --left;
    }
  }
  return bitmap;
}

// -- Commands ---------------------------------------------------------------------------------------------------------

/// Reads the lines of a script, and draws where there is a canvas; without one it only checks.
class TScript {
 public:
  explicit TScript(TCanvas* canvas) : canvas_(canvas) {}
  void Run(std::string_view text);

 private:
  using TMember = void (TScript::*)(TLine&);
  struct TCommand {
    std::string_view Word;
    TMember Read;
  };
  static const TCommand kCommands[];

  void Start();
  void Read(TLine& line);
  /// Ends the line, then draws.
  template <class TDraw>
  void Do(TLine& line, const TDraw& draw, const char* expected = kEnd) {
    line.End(expected);
    if (canvas_ != nullptr) draw(*canvas_);
  }
  template <class TDraw>
  void DoWithRect(TLine& line, const TDraw& draw) {
    const TRect rect = line.Rect();
    Do(line, [&](TCanvas& canvas) { draw(canvas, rect); });
  }
  template <class TDraw>
  void DoWithArc(TLine& line, const TDraw& draw);
  std::span<const TPoint> ReadPoints(TLine& line);

  void Size(TLine& line);
  void Save(TLine& line);
  void Restore(TLine& line);
  void Pen(TLine& line);
  void Brush(TLine& line);
  void Back(TLine& line);
  void Font(TLine& line);
  void Clip(TLine& line);
  void ClipRegion(TLine& line);
  void Line(TLine& line);
  void Polyline(TLine& line);
  void Polygon(TLine& line);
  void Rectangle(TLine& line);
  void Fill(TLine& line);
  void Ellipse(TLine& line);
  void RoundRect(TLine& line);
  void Arc(TLine& line);
  void Chord(TLine& line);
  void Pie(TLine& line);
  void Gradient(TLine& line);
  void Bitmap(TLine& line);
  void Draw(TLine& line);
  void Text(TLine& line);
  void Present(TLine& line);

  TCanvas* canvas_;
  bool isFirst_ = true;
  std::size_t saves_ = 0;
  std::int64_t pixels_ = 0;
  std::map<std::int32_t, TBitmap> bitmaps_;  ///< while checking, all empty
  std::vector<TPoint> points_;
};

// The order is that of RecordingDevice.h.
const TScript::TCommand TScript::kCommands[] = {
    {"size", &TScript::Size},
    {"save", &TScript::Save},
    {"restore", &TScript::Restore},
    {"pen", &TScript::Pen},
    {"brush", &TScript::Brush},
    {"back", &TScript::Back},
    {"font", &TScript::Font},
    {"clip", &TScript::Clip},
    {"clipregion", &TScript::ClipRegion},
    {"line", &TScript::Line},
    {"polyline", &TScript::Polyline},
    {"polygon", &TScript::Polygon},
    {"rectangle", &TScript::Rectangle},
    {"fill", &TScript::Fill},
    {"ellipse", &TScript::Ellipse},
    {"roundrect", &TScript::RoundRect},
    {recording::kArcShapes[asArc], &TScript::Arc},
    {recording::kArcShapes[asChord], &TScript::Chord},
    {recording::kArcShapes[asPie], &TScript::Pie},
    {"gradient", &TScript::Gradient},
    {"bitmap", &TScript::Bitmap},
    {"draw", &TScript::Draw},
    {"text", &TScript::Text},
    {"present", &TScript::Present},
};

void TScript::Run(std::string_view text) {
  if (canvas_ != nullptr) Start();
  ForEachLine(text, [this](TLine& line) {
    Read(line);
    isFirst_ = false;
    return true;
  });
}

void TScript::Start() {
  canvas_->SetPen({});
  canvas_->SetBrush({clWhite, bsClear});
  canvas_->SetFont({});
  canvas_->SetBackMode(cbmTransparent);
}

void TScript::Read(TLine& line) {
  const auto found = std::ranges::find(kCommands, line.Peek(), &TCommand::Word);
  if (found == std::end(kCommands)) line.FailExpecting("a command (line, rectangle, text …)");
  if (found->Read == &TScript::Size && !isFirst_) line.Fail("\"size\" stands before all other lines or not at all", 0);
  line.Word("a command");
  (this->*found->Read)(line);
}

void TScript::Size(TLine& line) { ReadSize(line); }

// -- State

void TScript::Save(TLine& line) {
  if (++saves_ > kMostSaves) line.Fail("more than " + std::to_string(kMostSaves) + " nested saves", 0);
  Do(line, [](TCanvas& canvas) { canvas.Save(); });
}

void TScript::Restore(TLine& line) {
  if (saves_ == 0) line.Fail("\"restore\" without its \"save\"", 0);
  --saves_;
  Do(line, [](TCanvas& canvas) { canvas.Restore(); });
}

void TScript::Pen(TLine& line) {
  const TPenData pen = ReadPen(line);
  const auto set = [&](TCanvas& canvas) { canvas.SetPen(pen); };
  Do(line, set, "a width, a style (dash, dot …), xor or the end of the line");
}

void TScript::Brush(TLine& line) {
  const TBrushData brush = ReadBrush(line);
  const auto set = [&](TCanvas& canvas) { canvas.SetBrush(brush); };
  Do(line, set, "a hatch (horizontal, cross …) or the end of the line");
}

void TScript::Back(TLine& line) {
  const TColor color = line.Take(recording::kNone) ? clNone : line.Color();
  Do(line, [&](TCanvas& canvas) {
    canvas.SetBackColor(color);
    canvas.SetBackMode(color == clNone ? cbmTransparent : cbmOpaque);
  });
}

void TScript::Font(TLine& line) {
  const TFontData font = ReadFont(line);
  const auto set = [&](TCanvas& canvas) { canvas.SetFont(font); };
  Do(line, set, "bold, italic, underline, strikeout, a name in quotes or the end of the line");
}

void TScript::Clip(TLine& line) {
  DoWithRect(line, [](TCanvas& canvas, const TRect& rect) { canvas.IntersectClip(rect); });
}

void TScript::ClipRegion(TLine& line) {
  const std::vector<TRect> rects = ReadRegion(line);
  Do(line, [&](TCanvas& canvas) { canvas.IntersectClip(TRegion::OfRects(rects)); });
}

// -- Shapes

std::span<const TPoint> TScript::ReadPoints(TLine& line) {
  points_.assign(1, line.Point());
  while (!line.IsDone()) points_.push_back(line.Point());
  return points_;
}

void TScript::Line(TLine& line) {
  const TPoint from = line.Point(), to = line.Point();
  Do(line, [&](TCanvas& canvas) { canvas.Line(from, to); });
}

void TScript::Polyline(TLine& line) {
  const auto points = ReadPoints(line);
  Do(line, [&](TCanvas& canvas) { canvas.Polyline(points); });
}

void TScript::Polygon(TLine& line) {
  const auto points = ReadPoints(line);
  Do(line, [&](TCanvas& canvas) { canvas.Polygon(points); });
}

void TScript::Rectangle(TLine& line) {
  DoWithRect(line, [](TCanvas& canvas, const TRect& rect) { canvas.Rectangle(rect); });
}

void TScript::Fill(TLine& line) {
  DoWithRect(line, [](TCanvas& canvas, const TRect& rect) { canvas.FillRect(rect); });
}

void TScript::Ellipse(TLine& line) {
  DoWithRect(line, [](TCanvas& canvas, const TRect& rect) { canvas.Ellipse(rect); });
}

void TScript::RoundRect(TLine& line) {
  const TRect rect = line.Rect();
  const TPoint corner = line.Point();
  Do(line, [&](TCanvas& canvas) { canvas.RoundRect(rect, {corner.X, corner.Y}); });
}

template <class TDraw>
void TScript::DoWithArc(TLine& line, const TDraw& draw) {
  const TRect rect = line.Rect();
  const double start = line.Real("a start in degrees"), sweep = line.Real("a sweep in degrees");
  Do(line, [&](TCanvas& canvas) { draw(canvas, rect, TArc{start, sweep}); });
}

void TScript::Arc(TLine& line) {
  DoWithArc(line, [](TCanvas& canvas, const TRect& rect, TArc arc) { canvas.Arc(rect, arc); });
}

void TScript::Chord(TLine& line) {
  DoWithArc(line, [](TCanvas& canvas, const TRect& rect, TArc arc) { canvas.Chord(rect, arc); });
}

void TScript::Pie(TLine& line) {
  DoWithArc(line, [](TCanvas& canvas, const TRect& rect, TArc arc) { canvas.Pie(rect, arc); });
}

// -- Pictures and text

void TScript::Gradient(TLine& line) {
  const TRect rect = line.Rect();
  const TColor start = line.Color(), end = line.Color();
  const auto direction = line.TakeOneOf(recording::kGradientDirections);
  if (!direction) line.FailExpecting("a direction (topbottom, leftright, fromcenter …)");
  Do(line, [&](TCanvas& canvas) { canvas.Gradient(rect, {start, end, static_cast<TGradientDirection>(*direction)}); });
}

void TScript::Bitmap(TLine& line) {
  const std::int32_t number = line.Positive("the number of a bitmap");
  const std::size_t at = line.At();
  const TSize size = line.Size('x', "a size from 1x1 to 32767x32767");
  const std::int64_t whole = std::int64_t{size.Width} * size.Height;
  pixels_ += whole;
  if (pixels_ > kMostScriptPixels)
    line.Fail("more than " + std::to_string(kMostScriptPixels) + " pixels in all bitmaps", at);
  std::vector<TPixels> parts;
  std::int64_t count = 0;
  while (!line.IsDone()) {
    parts.push_back(ReadPixels(line));
    count += parts.back().Count;
  }
  if (count != whole) line.Fail(std::to_string(count) + " pixels instead of " + std::to_string(whole), at);
  bitmaps_[number] = canvas_ == nullptr ? TBitmap() : BitmapOf(size, parts);
}

void TScript::Draw(TLine& line) {
  const std::size_t at = line.At();
  const std::int32_t number = line.Positive("the number of a bitmap");
  const auto bitmap = bitmaps_.find(number);
  if (bitmap == bitmaps_.end()) line.Fail("no bitmap has the number " + std::to_string(number), at);
  const TRect source = line.Rect(), target = line.Rect();
  Do(line, [&](TCanvas& canvas) { canvas.CopyRect(target, bitmap->second, source); });
}

void TScript::Text(TLine& line) {
  const TPoint topLeft = line.Point();
  const std::string text = line.QuotedText("a text in quotes");
  const double angle = line.IsDone() ? 0 : line.Real("an angle in degrees");
  Do(line, [&](TCanvas& canvas) { canvas.TextOutRotated(topLeft, angle, text); });
}

void TScript::Present(TLine& line) {
  Do(line, [](TCanvas& canvas) { canvas.Present(); });
}

}  // namespace

void PlayDrawing(std::string_view text, TCanvas& canvas) {
  TScript(nullptr).Run(text);
  TScript(&canvas).Run(text);
}

std::optional<TSize> DrawingSize(std::string_view text) {
  std::optional<TSize> size;
  ForEachLine(text, [&](TLine& line) {
    if (line.Take("size")) size = ReadSize(line);
    return false;
  });
  return size;
}

}  // namespace vx
