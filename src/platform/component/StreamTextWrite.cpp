#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/component/StreamText.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::size_t kLineWidth = 80;
constexpr std::size_t kFirstBreak = 64;  ///< from this column on a text is broken behind a blank
constexpr int kMaxIndented = 20;         ///< deeper levels are not indented further: see the size told in the header
constexpr std::size_t kBlockLine = 32;   ///< bytes

/// ASCII that stands in quotes as it is.
constexpr auto kPlain = [] {
  std::array<bool, 256> plain{};
  for (std::size_t c = ' '; c < 0x7F; ++c) plain[c] = c != '\'';
  return plain;
}();

bool IsPlain(char c) { return kPlain[static_cast<unsigned char>(c)]; }

/// Can a person see it, and see where it is?
bool IsVisible(char32_t code) {
  const auto within = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  return !(code < 0x20 || within(0x7F, 0x9F) || within(0x200E, 0x200F) || within(0x2028, 0x202E) ||
           within(0x2066, 0x2069) || within(0xFDD0, 0xFDEF) || code == 0xFEFF || (code & 0xFFFEu) == 0xFFFE ||
           code >= kMalformed);
}

class TTextWriter {
 public:
  explicit TTextWriter(std::string_view stream) : cursor_(stream) {
    cursor_.Open();
    const std::uint64_t size = TStreamCursor::SizeOf(stream);
    if (size < stream.size())
      cursor_.Fail(static_cast<std::size_t>(size),
                   std::to_string(stream.size() - size) + " bytes follow behind the end of the stream");
  }

  std::string Write() {
    WriteObject(0);
    cursor_.ExpectEnd();
    return std::move(out_);
  }

 private:
  // -- Lines ----------------------------------------------------------------------------------------------------------
  void BeginLine(int level) {
    lineBegin_ = out_.size();
    out_.append(static_cast<std::size_t>(2 * std::min(level, kMaxIndented)), ' ');
  }
  void NextLine(int level) {
    out_.push_back('\n');
    BeginLine(level);
  }

  // -- Objects and values; `level` is that of the line where they begin -----------------------------------------------
  void WriteObject(int level);
  void WriteProperties(int level);
  void WriteValue(int level);
  void WriteSet();
  void WriteList(int level);
  void WriteCollection(int level);
  void WriteBlock(std::string_view bytes, int level);
  void WriteInt(std::int64_t value);
  void WriteDouble(double value);
  void WriteText(std::string_view text, int level);

  // -- Texts ----------------------------------------------------------------------------------------------------------
  bool WritePieces(std::string_view text, int level, bool breaks);
  void WritePlain(std::string_view text, std::size_t& at, bool breaks);
  bool WriteCharacter(std::string_view text, std::size_t& at);
  void Quote(bool quoted) {
    if (quoted == quoted_) return;
    out_.push_back('\'');
    ++column_;
    quoted_ = quoted;
  }

  TStreamCursor cursor_;
  std::string out_;
  std::size_t lineBegin_ = 0;
  std::size_t column_ = 0;  ///< kept within a text only
  bool quoted_ = false;     ///< a quote is open
};

void TTextWriter::WriteObject(int level) {
  const TStreamCursor::TDeeper deeper(cursor_);
  const std::string_view className = cursor_.Identifier(false);
  const std::string_view name = cursor_.Identifier(true);
  BeginLine(level);
  out_.append("object ");
  if (!name.empty()) out_.append(name).append(": ");
  out_.append(className).push_back('\n');
  WriteProperties(level + 1);
  while (!cursor_.TakeEnd()) WriteObject(level + 1);
  BeginLine(level);
  out_.append("end\n");
}

void TTextWriter::WriteProperties(int level) {
  for (std::string_view name = cursor_.Path(true); !name.empty(); name = cursor_.Path(true)) {
    BeginLine(level);
    out_.append(name).append(" = ");
    WriteValue(level);
    out_.push_back('\n');
  }
}

void TTextWriter::WriteValue(int level) {
  switch (cursor_.Peek()) {
    case skEnd:
      cursor_.Fail(cursor_.Offset(), "a value is missing");
    case skInt8:
    case skInt16:
    case skInt32:
    case skInt64:
      return WriteInt(cursor_.Int());
    case skDouble:
      return WriteDouble(cursor_.Double());
    case skShortText:
    case skLongText:
      return WriteText(cursor_.Text(), level);
    case skIdent:
      out_.append(cursor_.Ident());
      return;
    case skBinary:
      return WriteBlock(cursor_.Binary(), level);
    case skSet:
      return WriteSet();
    case skList:
      return WriteList(level);
    case skCollection:
      return WriteCollection(level);
  }
}

void TTextWriter::WriteSet() {
  cursor_.TakeKind();
  out_.push_back('[');
  const char* between = "";
  for (std::string_view name = cursor_.Identifier(true); !name.empty(); name = cursor_.Identifier(true)) {
    out_.append(between).append(name);
    between = ", ";
  }
  out_.push_back(']');
}

void TTextWriter::WriteList(int level) {
  const TStreamCursor::TDeeper deeper(cursor_);
  cursor_.TakeKind();
  out_.push_back('(');
  while (!cursor_.TakeEnd()) {
    NextLine(level + 1);
    WriteValue(level + 1);
  }
  out_.push_back(')');
}

void TTextWriter::WriteCollection(int level) {
  const TStreamCursor::TDeeper deeper(cursor_);
  cursor_.TakeKind();
  out_.push_back('<');
  while (cursor_.TakeItem()) {
    NextLine(level + 1);
    out_.append("item\n");
    WriteProperties(level + 2);
    BeginLine(level + 1);
    out_.append("end");
  }
  out_.push_back('>');
}

void TTextWriter::WriteBlock(std::string_view bytes, int level) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  out_.push_back('{');
  while (!bytes.empty()) {
    NextLine(level + 1);
    const std::string_view line = bytes.substr(0, kBlockLine);
    char digits[2 * kBlockLine];
    char* next = digits;
    for (const char c : line) {
      *next++ = kDigits[static_cast<unsigned char>(c) >> 4u];
      *next++ = kDigits[static_cast<unsigned char>(c) & 15u];
    }
    out_.append(digits, 2 * line.size());
    bytes.remove_prefix(line.size());
  }
  out_.push_back('}');
}

void TTextWriter::WriteInt(std::int64_t value) {
  char digits[24];
  out_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void TTextWriter::WriteDouble(double value) {
  if (std::isnan(value)) {
    out_.append("+NAN");
  } else if (std::isinf(value)) {
    out_.append(value < 0 ? "-INF" : "+INF");
  } else {
    char digits[32];
    const std::string_view number(
        digits, static_cast<std::size_t>(std::to_chars(digits, digits + sizeof digits, value).ptr - digits));
    out_.append(number);
    if (number.find_first_of(".e") == std::string_view::npos) out_.append(".0");
  }
}

// -- Texts ------------------------------------------------------------------------------------------------------------

void TTextWriter::WriteText(std::string_view text, int level) {
  if (text.empty()) {
    out_.append("''");
    return;
  }
  const std::size_t begin = out_.size();
  if (WritePieces(text, level, false)) return;
  out_.resize(begin);
  WritePieces(text, level, true);
}

/// In one line, or in as many as are good. False, the text unfinished, where one line is not enough.
bool TTextWriter::WritePieces(std::string_view text, int level, bool breaks) {
  column_ = out_.size() - lineBegin_;
  quoted_ = false;
  for (std::size_t at = 0; at < text.size();) {
    bool isFull = false;
    if (IsPlain(text[at]))
      WritePlain(text, at, breaks);
    else
      isFull = WriteCharacter(text, at);
    if (!breaks && column_ > kLineWidth) return false;
    isFull = isFull || column_ >= kLineWidth || (column_ >= kFirstBreak && text[at - 1] == ' ');
    if (!breaks || !isFull || at == text.size()) continue;
    Quote(false);
    out_.append(" +");
    NextLine(level + 1);
    column_ = out_.size() - lineBegin_;
  }
  Quote(false);
  return breaks || column_ <= kLineWidth;
}

/// As many plain characters as the line takes, but at least one.
void TTextWriter::WritePlain(std::string_view text, std::size_t& at, bool breaks) {
  Quote(true);
  const std::size_t begin = at;
  do {
    const bool isBlank = text[at] == ' ';
    ++at;
    ++column_;
    if (breaks && isBlank && column_ >= kFirstBreak) break;
  } while (at < text.size() && column_ <= kLineWidth && IsPlain(text[at]));
  out_.append(text.substr(begin, at - begin));
}

/// A quote, a letter beyond ASCII, or what is written by number. True if the line ends behind it.
bool TTextWriter::WriteCharacter(std::string_view text, std::size_t& at) {
  const std::size_t begin = at;
  const char32_t code = NextCodePoint(text, at);
  if (IsVisible(code)) {
    Quote(true);
    out_.append(code == '\'' ? std::string_view("''") : text.substr(begin, at - begin));
    column_ += code == '\'' ? 2 : 1;
    return false;
  }
  Quote(false);
  const std::size_t size = out_.size();
  if (code >= kMalformed) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const std::uint32_t byte = code - kMalformed;
    out_.append("#$").append(1, kDigits[byte >> 4u]).append(1, kDigits[byte & 15u]);
  } else {
    out_.push_back('#');
    WriteInt(code);
  }
  column_ += out_.size() - size;
  return code == '\n' || (code == '\r' && (at == text.size() || text[at] != '\n'));
}

}  // namespace

std::string BinaryToText(std::string_view stream) { return TTextWriter(stream).Write(); }

}  // namespace vx
