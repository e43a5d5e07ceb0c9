// The bytes of a file as text, and the text as records: every input is a file, as it stands.
//
// The reader is held to a second reading of its rules, a character at a time; to itself, from the middle of the text;
// and to what was written from its own cells. Its limits are tried, too.
#include "CsvReader.h"

#include <algorithm>
#include <optional>

#include "Encoding.h"
#include "Property.h"
#include "platform/runtime/Text.h"

namespace {

using namespace vx;
using namespace vx::kestrix;
using vx::fuzz::Hold;

/// Below every limit of the reader, whatever the encoding makes of it.
constexpr std::size_t kMostBytes = 8192;

struct TRecord {
  std::size_t line = 0;
  std::vector<std::string> cells;  // up to the broken one
  bool isBroken = false;

  bool operator==(const TRecord&) const = default;
};

using TRecords = std::vector<TRecord>;

TRecord NextRecord(TCsvReader& reader) {
  return {reader.Line(), {reader.Fields().begin(), reader.Fields().end()}, false};
}

/// All records, going on after each broken one; that one has its line and as many empty cells as were sound.
TRecords Read(std::string_view text, char separator, TCsvLimits limits = {}) {
  TRecords records;
  TCsvReader reader(text, separator, limits);
  for (;;) {
    const std::size_t before = reader.Position();
    try {
      if (!reader.Next()) return records;
      records.push_back(NextRecord(reader));
    } catch (const ECsvError& error) {
      records.push_back({error.Line(), std::vector<std::string>(error.Column()), true});
      reader.SkipLine();
    }
    Hold(reader.Position() > before && reader.Position() <= text.size(), "the reader moves on within the text", text);
  }
}

// -- A second reading of the rules ------------------------------------------------------------------------------------

class TModel {
 public:
  TModel(std::string_view text, char separator, TCsvLimits limits)
      : text_(text), separator_(separator), limits_(limits) {}

  TRecords Read() {
    TRecords records;
    while (SkipLineEnds()) records.push_back(Record());
    return records;
  }

 private:
  char At(std::size_t at) const { return at < text_.size() ? text_[at] : '\n'; }
  bool IsLineEnd(std::size_t at) const { return At(at) == '\n' || At(at) == '\r'; }
  bool IsCellEnd(std::size_t at) const { return IsLineEnd(at) || At(at) == separator_; }

  bool SkipLineEnds() {
    while (at_ < text_.size() && IsLineEnd(at_)) ++at_;
    return at_ < text_.size();
  }

  /// CRLF is one end, so the LF behind a CR counts nothing.
  std::size_t LineHere() {
    for (; counted_ < at_; ++counted_)
      if (text_[counted_] == '\r' || (text_[counted_] == '\n' && (counted_ == 0 || text_[counted_ - 1] != '\r')))
        ++line_;
    return line_;
  }

  TRecord Record() {
    TRecord record{LineHere(), {}, false};
    const std::size_t start = at_;
    for (;;) {
      const auto cell = Cell();
      if (!cell || !IsSound(*cell) || at_ - start > limits_.line || record.cells.size() == limits_.columns)
        return Broken(record, start);
      record.cells.push_back(*cell);
      if (at_ >= text_.size() || text_[at_] != separator_) return record;
      ++at_;
    }
  }

  TRecord Broken(const TRecord& record, std::size_t start) {
    for (at_ = start; !IsLineEnd(at_);) ++at_;
    return {record.line, std::vector<std::string>(record.cells.size()), true};
  }

  bool IsSound(const std::string& cell) const {
    return cell.size() <= limits_.field && cell.find('\0') == std::string::npos;
  }

  std::optional<std::string> Cell() {
    std::string cell;
    if (At(at_) != '"') {
      while (!IsCellEnd(at_)) cell += text_[at_++];
      return cell;
    }
    for (++at_; at_ < text_.size(); cell += text_[at_++]) {
      if (text_[at_] != '"') continue;
      ++at_;
      if (At(at_) != '"') return IsCellEnd(at_) ? std::optional(cell) : std::nullopt;
    }
    return std::nullopt;
  }

  std::string_view text_;
  char separator_;
  TCsvLimits limits_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;  // of counted_, which lags behind at_
  std::size_t counted_ = 0;
};

// -- Properties -------------------------------------------------------------------------------------------------------

void HoldToModel(std::string_view text, char separator, TCsvLimits limits = {}) {
  Hold(Read(text, separator, limits) == TModel(text, separator, limits).Read(),
       "records are those of a second reading of the rules", text);
}

/// A reader set on the text behind a record finds what the first one finds there.
void HoldFromTheMiddle(std::string_view text, char separator) {
  const TRecords all = Read(text, separator);
  TCsvReader reader(text, separator);
  std::size_t count = 0;
  while (count < all.size() / 2 && !all[count].isBroken && reader.Next()) ++count;
  const TRecords rest = Read(text.substr(reader.Position()), separator);
  Hold(std::equal(rest.begin(), rest.end(), all.begin() + static_cast<std::ptrdiff_t>(count), all.end(),
                  [](const TRecord& a, const TRecord& b) { return a.cells == b.cells && a.isBroken == b.isBroken; }),
       "the rest of the text is read alike without what stands before it", text);
}

void AppendQuoted(std::string& text, std::string_view cell) {
  text += '"';
  for (const char c : cell) text.append(c == '"' ? 2 : 1, c);
  text += '"';
}

/// A table of the cells; without `always`, quotes stand only where they are needed.
std::string Written(const TRecords& records, char separator, std::string_view lineEnd, bool always) {
  const std::string special = std::string("\"\r\n") + separator;
  std::string text;
  for (const TRecord& record : records) {
    for (std::size_t i = 0; i < record.cells.size(); ++i) {
      const std::string& cell = record.cells[i];
      if (i > 0) text += separator;
      const bool isWholeLine = cell.empty() && record.cells.size() == 1;
      if (always || isWholeLine || cell.find_first_of(special) != std::string::npos)
        AppendQuoted(text, cell);
      else
        text += cell;
    }
    text += lineEnd;
  }
  return text;
}

void HoldRoundTrip(std::string_view text, char separator) {
  TRecords records = Read(text, separator);
  std::erase_if(records, [](const TRecord& record) { return record.isBroken; });
  for (const std::string_view lineEnd : {"\n", "\r\n", "\r"}) {
    for (const bool always : {true, false}) {
      const TRecords again = Read(Written(records, separator, lineEnd, always), separator);
      Hold(std::equal(again.begin(), again.end(), records.begin(), records.end(),
                      [](const TRecord& a, const TRecord& b) { return !a.isBroken && a.cells == b.cells; }),
           "cells that are written are read again", text);
    }
  }
}

void AppendUnit(std::string& bytes, char32_t unit, bool highFirst) {
  const char high = static_cast<char>(unit >> 8u), low = static_cast<char>(unit & 0xFFu);
  bytes.append(1, highFirst ? high : low).append(1, highFirst ? low : high);
}

std::string Utf16(std::string_view text, bool highFirst) {
  std::string bytes;
  AppendUnit(bytes, 0xFEFF, highFirst);
  for (std::size_t at = 0; at < text.size();) {
    const char32_t code = NextCodePoint(text, at);
    if (code >= 0x10000) AppendUnit(bytes, 0xD800 + ((code - 0x10000) >> 10u), highFirst);
    AppendUnit(bytes, code < 0x10000 ? code : 0xDC00 + ((code - 0x10000) & 0x3FFu), highFirst);
  }
  return bytes;
}

void HoldDecoding(std::string_view bytes, const TDecodedText& decoded) {
  Hold(IsValidUtf8(decoded.text), "decoded text is well-formed", bytes);
  Hold(decoded.text.size() <= 3 * bytes.size(), "no byte becomes more than three", bytes);
  Hold(decoded.remark.empty() == (decoded.line == 0), "a remark names its line", bytes);
  Hold(decoded.line <= 1 + static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')),
       "the line of a remark is one of the file", bytes);
  for (const std::string& again :
       {"\xEF\xBB\xBF" + decoded.text, Utf16(decoded.text, true), Utf16(decoded.text, false)})
    Hold(DecodeText(again).text == decoded.text, "text reads alike in each encoding with a mark", bytes);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > kMostBytes) return 0;
  const std::string_view bytes = vx::fuzz::TextOf(data, size);
  HoldToModel(bytes, ',');
  const TDecodedText decoded = DecodeText(std::string(bytes));
  HoldDecoding(bytes, decoded);

  const std::vector<char> exact(decoded.text.begin(), decoded.text.end());  // no zero behind it: a read too far is seen
  const std::string_view text(exact.data(), exact.size());
  const char separator = DetectSeparator(text);
  Hold(std::string_view(",;\t|").find(separator) != std::string_view::npos, "the separator is one of four", bytes);
  HoldToModel(text, separator);
  HoldFromTheMiddle(text, separator);
  HoldRoundTrip(text, separator);
  HoldToModel(text, separator, {.field = 6, .line = 20, .columns = 4});
  return 0;
}
