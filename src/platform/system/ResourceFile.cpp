#include "platform/system/ResourceFile.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include "platform/runtime/Format.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::string_view kFirstLine = "kestrix resources 1";
constexpr std::int32_t kLastNumber = 65535;
constexpr std::int32_t kStringType = 6;
constexpr std::size_t kNameLimit = 255;
constexpr std::size_t kLanguageLimit = 35;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return UpperAscii(c) >= 'A' && UpperAscii(c) <= 'Z'; }
bool IsBlank(char c) { return c == ' ' || c == '\t'; }
bool IsNameByte(char c) { return IsLetter(c) || IsDigit(c) || c == '_' || c == '.' || c == '-'; }

std::optional<unsigned> HexDigit(char c) {
  if (IsDigit(c)) return static_cast<unsigned>(c - '0');
  const char upper = UpperAscii(c);
  if (upper >= 'A' && upper <= 'F') return static_cast<unsigned>(upper - 'A' + 10);
  return std::nullopt;
}

/// What a byte is called in a message: itself, or its number.
std::string Named(char c) {
  return c > ' ' && c < 0x7F ? "'" + std::string(1, c) + "'" : Format("the byte %.2x", {static_cast<unsigned char>(c)});
}

/// Reads one file from its first byte to its last. `line_` is the line in hand, `at_` the place in it.
class TResourceReader {
 public:
  TResourceReader(std::string_view bytes, const std::string& fileName) : rest_(bytes), fileName_(fileName) {}

  TResourceFile Run() {
    if (rest_.size() > kResourceFileLimit) Fail("more than " + std::to_string(kResourceFileLimit >> 20u) + " MiB");
    SkipMark();
    ReadFirstLine();
    ReadLanguage();
    while (!ReadEntry()) {
    }
    while (NextContent()) Fail("something behind the line 'end'");
    return Finished();
  }

 private:
  [[noreturn]] void FailAt(std::size_t at, const std::string& what) const {
    throw EResourceFileError(fileName_, lineNumber_, ColumnOf(at), what);
  }
  [[noreturn]] void Fail(const std::string& what) const { FailAt(at_, what); }

  std::int32_t ColumnOf(std::size_t at) const {
    return static_cast<std::int32_t>(CodePointCount(line_.substr(0, at))) + 1;
  }

  // -- Lines ----------------------------------------------------------------------------------------------------------

  void SkipMark() {
    if (rest_.starts_with("\xFF\xFE") || rest_.starts_with("\xFE\xFF")) Fail("the file is UTF-16; save it as UTF-8");
    if (rest_.starts_with("\xEF\xBB\xBF")) rest_.remove_prefix(3);
  }

  /// Takes the next line, which is then well-formed UTF-8 without control characters but tabs. False at the end.
  bool NextLine() {
    lineNumber_ += lineNumber_ < std::numeric_limits<std::int32_t>::max() ? 1 : 0;
    at_ = 0;
    const std::size_t end = rest_.find('\n');
    line_ = rest_.substr(0, end);
    if (rest_.empty()) return false;
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (line_.ends_with('\r')) line_.remove_suffix(1);
    CheckBytes();
    return true;
  }

  void CheckBytes() const {
    for (std::size_t at = 0; at < line_.size();) {
      const std::size_t here = at;
      const char32_t code = NextCodePoint(line_, at);
      if (code >= kMalformed) FailAt(here, Named(line_[here]) + " is no UTF-8");
      if ((code < ' ' && code != '\t') || code == 0x7F) FailAt(here, Named(line_[here]) + " is a control character");
    }
  }

  void SkipBlanks() {
    while (at_ < line_.size() && IsBlank(line_[at_])) ++at_;
  }

  /// The next line that has more than blanks and a remark, up to its first byte that isn't blank. False at the end.
  bool NextContent() {
    while (NextLine()) {
      SkipBlanks();
      if (at_ < line_.size() && line_[at_] != '#') return true;
    }
    return false;
  }

  void NeedEndOfLine() {
    SkipBlanks();
    if (at_ < line_.size()) Fail("nothing more belongs in this line");
  }

  // -- Words ----------------------------------------------------------------------------------------------------------

  std::string_view Word() {
    SkipBlanks();
    const std::size_t from = at_;
    while (at_ < line_.size() && IsNameByte(line_[at_])) ++at_;
    return line_.substr(from, at_ - from);
  }

  bool IsNumberAhead() {
    SkipBlanks();
    return at_ < line_.size() && IsDigit(line_[at_]);
  }

  std::int32_t Number(const std::string& what) {
    if (!IsNumberAhead()) Fail(what + " is missing");
    const std::size_t from = at_;
    std::int32_t value = 0;
    for (; at_ < line_.size() && IsDigit(line_[at_]); ++at_)
      value = std::min(value * 10 + (line_[at_] - '0'), kLastNumber + 1);
    if (value > kLastNumber) FailAt(from, what + " is over " + std::to_string(kLastNumber));
    if (at_ < line_.size() && IsNameByte(line_[at_])) Fail(Named(line_[at_]) + " doesn't belong in a number");
    return value;
  }

  std::string Name() {
    if (IsNumberAhead()) return NumericResourceName(Number("a name"));
    const std::size_t from = at_;
    const std::string_view name = Word();
    if (name.empty() || (!IsLetter(name.front()) && name.front() != '_'))
      FailAt(from, "a name is missing: a number, or letters, digits, '_', '.' and '-'");
    if (name.size() > kNameLimit) FailAt(from, "a name is longer than " + std::to_string(kNameLimit));
    return std::string(name);
  }

  // -- Texts ----------------------------------------------------------------------------------------------------------

  /// All pieces in quotes: of this line, and of the lines that begin with one. `hexAllowed`: bytes may be named.
  std::string Quoted(bool hexAllowed) {
    std::string text;
    SkipBlanks();
    if (at_ >= line_.size() || line_[at_] != '"') Fail("a text in quotes is missing");
    AppendPiece(text, hexAllowed);
    NeedEndOfLine();
    while (IsPieceNext()) {
      NextLine();
      SkipBlanks();
      AppendPiece(text, hexAllowed);
      NeedEndOfLine();
    }
    return text;
  }

  bool IsPieceNext() const {
    const std::size_t first = rest_.find_first_not_of(" \t");
    return first != std::string_view::npos && rest_[first] == '"';
  }

  void AppendPiece(std::string& text, bool hexAllowed) {
    const std::size_t open = at_++;
    for (;;) {
      const std::size_t next = std::min(line_.find_first_of("\"\\", at_), line_.size());
      text.append(line_, at_, next - at_);
      if (text.size() > kResourceLimit) FailAt(open, "a text is longer than " + std::to_string(kResourceLimit));
      at_ = next;
      if (at_ == line_.size()) FailAt(open, "the quote isn't closed in its line");
      if (line_[at_++] == '"') return;
      AppendEscape(text, hexAllowed);
    }
  }

  /// `at_` stands behind a backslash.
  void AppendEscape(std::string& text, bool hexAllowed) {
    static constexpr std::string_view kLetters = "nrt\"\\";
    static constexpr std::string_view kMeanings = "\n\r\t\"\\";
    const char letter = at_ < line_.size() ? line_[at_] : '\0';
    if (const std::size_t known = kLetters.find(letter); known != std::string_view::npos) {
      text += kMeanings[known];
      ++at_;
    } else if (letter == 'x') {
      if (!hexAllowed) FailAt(at_ - 1, "\\x belongs in resources; a text is UTF-8");
      text += HexByte();
    } else {
      FailAt(at_ - 1, "an unknown escape; known are \\n \\r \\t \\\" \\\\");
    }
  }

  char HexByte() {
    const auto high = at_ + 1 < line_.size() ? HexDigit(line_[at_ + 1]) : std::nullopt;
    const auto low = at_ + 2 < line_.size() ? HexDigit(line_[at_ + 2]) : std::nullopt;
    if (!high || !low) FailAt(at_ - 1, "\\x needs two hexadecimal digits");
    at_ += 3;
    return static_cast<char>(*high << 4u | *low);
  }

  // -- The file -------------------------------------------------------------------------------------------------------

  void ReadFirstLine() {
    NextLine();
    if (line_ != kFirstLine) FailAt(0, "no file of resources: the first line isn't '" + std::string(kFirstLine) + "'");
  }

  void ReadLanguage() {
    if (!NextContent() || Word() != "language") FailAt(0, "the line 'language ...' is missing");
    SkipBlanks();
    const std::size_t from = at_;
    const std::string_view tag = Word();
    if (!IsLanguageTag(tag)) FailAt(from, "a language tag is missing: letters, digits and '-', as in 'de' or 'pt-BR'");
    file_.Language = tag;
    NeedEndOfLine();
  }

  static bool IsLanguageTag(std::string_view tag) {
    return !tag.empty() && tag.size() <= kLanguageLimit && IsLetter(tag.front()) &&
           tag.find_first_of("_.") == std::string_view::npos;
  }

  /// One entry; true for the line that ends the file.
  bool ReadEntry() {
    if (!NextContent()) Fail("the line 'end' is missing: the file was cut");
    if (IsNumberAhead()) {
      ReadString();
      return false;
    }
    const std::string_view word = Word();
    if (word == "resource")
      ReadResource();
    else if (word != "end")
      FailAt(at_ - word.size(), "a number, 'resource' or 'end' is missing");
    else
      NeedEndOfLine();
    return word == "end";
  }

  void ReadString() {
    const std::size_t from = at_;
    const std::int32_t id = Number("a number");
    const auto [first, isNew] = strings_.emplace(id, lineNumber_);
    if (!isNew)
      FailAt(from, "text " + std::to_string(id) + " stands in line " + std::to_string(first->second) + " already");
    const std::int32_t line = lineNumber_;
    file_.Strings.push_back({id, line, Quoted(/*hexAllowed=*/false)});
  }

  void ReadResource() {
    SkipBlanks();
    const std::size_t from = at_;
    const std::int32_t type = Number("a type");
    if (type == kStringType) FailAt(from, "texts (type 6) are written by their number alone");
    std::string name = Name();
    if (file_.Resources.size() == kResourceCountLimit)
      FailAt(from, "more than " + std::to_string(kResourceCountLimit) + " resources");
    const auto [first, isNew] = resources_.emplace(std::pair(type, UpperCase(name)), lineNumber_);
    if (!isNew)
      FailAt(from, "resource " + std::to_string(type) + " " + name + " stands in line " +
                       std::to_string(first->second) + " already");
    const std::int32_t line = lineNumber_;
    file_.Resources.push_back({type, std::move(name), line, Quoted(/*hexAllowed=*/true)});
  }

  TResourceFile Finished() {
    std::sort(file_.Strings.begin(), file_.Strings.end(), [](const auto& a, const auto& b) { return a.Id < b.Id; });
    return std::move(file_);
  }

  std::string_view rest_;  ///< behind the line in hand
  const std::string& fileName_;
  std::string_view line_;
  std::size_t at_ = 0;
  std::int32_t lineNumber_ = 0;
  TResourceFile file_;
  std::map<std::int32_t, std::int32_t> strings_;  ///< the line of each
  std::map<std::pair<std::int32_t, std::string>, std::int32_t> resources_;
};

std::string Placed(const std::string& fileName, std::int32_t line, std::int32_t column, const std::string& what) {
  if (line == 0) return fileName + ": " + what;
  return fileName + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what;
}

}  // namespace

EResourceFileError::EResourceFileError(const std::string& fileName, std::int32_t line, std::int32_t column,
                                       const std::string& what)
    : TNamedException(Placed(fileName, line, column, what)), line_(line), column_(column), what_(what) {}

std::string NumericResourceName(std::int32_t number) { return Format("$%.4x", {number}); }

TResourceFile ParseResourceFile(std::string_view bytes, const std::string& fileName) {
  return TResourceReader(bytes, fileName).Run();
}

TResourceFile ReadResourceFile(const std::string& fileName) {
  const auto fail = [&](const std::string& what) { throw EResourceFileError(fileName, 0, 0, what); };
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(fileName, error);
  if (error) fail(error.message());
  if (size > kResourceFileLimit) fail("more than " + std::to_string(kResourceFileLimit >> 20u) + " MiB");
  std::ifstream stream(fileName, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (!stream.read(bytes.data(), static_cast<std::streamsize>(size))) fail("can't be read");
  return ParseResourceFile(bytes, fileName);
}

std::string QuotedResource(std::string_view text) {
  std::string quoted = "\"";
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t here = at;
    const char32_t code = NextCodePoint(text, at);
    const std::size_t known = std::string_view("\n\r\t\"\\").find(text[here]);
    if (known != std::string_view::npos)
      quoted.append("\\").append(1, "nrt\"\\"[known]);
    else if (code >= kMalformed || code < ' ' || code == 0x7F)
      quoted += Format("\\x%.2x", {static_cast<unsigned char>(text[here])});
    else
      quoted.append(text, here, at - here);
  }
  return quoted + "\"";
}

}  // namespace vx
