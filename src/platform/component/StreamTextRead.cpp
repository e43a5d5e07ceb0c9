#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "platform/component/StreamText.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kMaxShown = 40;  ///< of a name or number in a message

enum TCharKind : std::uint8_t {
  ckUnknown,
  ckBlank,
  ckLineEnd,
  ckLetter,
  ckDigit,
  ckSign,  ///< of the text form
};

constexpr auto kCharKinds = [] {
  std::array<TCharKind, 256> kinds{};
  for (const char c : std::string_view("'#$+-[](){}<>,:=./")) kinds[static_cast<unsigned char>(c)] = ckSign;
  for (std::size_t c = 'A'; c <= 'Z'; ++c) kinds[c] = kinds[c - 'A' + 'a'] = ckLetter;
  for (std::size_t c = '0'; c <= '9'; ++c) kinds[c] = ckDigit;
  kinds['_'] = ckLetter;
  kinds[' '] = kinds['\t'] = ckBlank;
  kinds['\r'] = kinds['\n'] = ckLineEnd;
  return kinds;
}();

constexpr std::uint8_t kNoHex = 255;

constexpr auto kHexValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoHex);
  for (std::uint8_t i = 0; i < 10; ++i) values['0' + i] = i;
  for (std::uint8_t i = 0; i < 6; ++i) values['A' + i] = values['a' + i] = static_cast<std::uint8_t>(10 + i);
  return values;
}();

TCharKind KindOf(char c) { return kCharKinds[static_cast<unsigned char>(c)]; }
bool IsLetter(char c) { return KindOf(c) == ckLetter; }
bool IsDigit(char c) { return KindOf(c) == ckDigit; }
bool IsWordChar(char c) { return IsLetter(c) || IsDigit(c); }
bool IsBlank(char c) { return KindOf(c) == ckBlank || KindOf(c) == ckLineEnd; }
std::uint8_t HexValue(char c) { return kHexValues[static_cast<unsigned char>(c)]; }
bool BeginsText(char c) { return c == '\'' || c == '#'; }
bool BeginsValue(char c) { return IsWordChar(c) || (c != '\0' && std::strchr("'#$+-[(<{", c) != nullptr); }

enum TKeyword : std::uint8_t { kwNone, kwObject, kwEnd, kwItem };

TKeyword KeywordOf(std::string_view word) {
  if (word.size() == 3 && CompareText(word, "end") == 0) return kwEnd;
  if (word.size() == 4 && CompareText(word, "item") == 0) return kwItem;
  if (word.size() == 6 && CompareText(word, "object") == 0) return kwObject;
  return kwNone;
}

/// A byte as it is written in texts.
std::string CodeOf(char byte) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  const auto bits = static_cast<unsigned char>(byte);
  return {'#', '$', kDigits[bits >> 4u], kDigits[bits & 15u]};
}

std::string Shown(std::string_view text) {
  if (text.size() <= kMaxShown) return std::string(text);
  return std::string(CutAtCodePoint(text, kMaxShown)) + "...";
}

/// Offset of the first byte that belongs to no code point; npos if there is none.
std::size_t FindBrokenUtf8(std::string_view text) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080u;
  for (std::size_t at = 0; at < text.size();) {
    std::uint64_t eight = kHighBits;
    if (text.size() - at >= sizeof eight) std::memcpy(&eight, text.data() + at, sizeof eight);
    if ((eight & kHighBits) == 0) {
      at += sizeof eight;
      continue;
    }
    const std::size_t begin = at;
    if (NextCodePoint(text, at) >= kMalformed) return begin;
  }
  return std::string_view::npos;
}

/// Of a number in decimals that no double can hold: is it too large, rather than too small?
bool IsHuge(std::string_view number) {
  const std::size_t exponentAt = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponentAt);
  const std::size_t first = mantissa.find_first_of("123456789");
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  std::int64_t exponent = 0;
  if (exponentAt < number.size()) {
    std::string_view digits = number.substr(exponentAt + 1);
    if (digits[0] == '+') digits.remove_prefix(1);
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (read.ec != std::errc()) return digits[0] != '-';
  }
  constexpr std::int64_t kBeyond = std::int64_t{1} << 40;  // more than there can be digits
  return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) + std::clamp(exponent, -kBeyond, kBeyond) >
         0;
}

/// What "end" ends: an object, or an item of a collection, which has no class.
struct TOwner {
  std::size_t At;
  std::string_view Name, Class;
};

/// One pass over the text, by descent: each Read... stands at the first character of what it reads, and leaves behind
/// the last.
class TTextReader {
 public:
  /// Notes the place of what makes the byte `wanted` of the stream.
  TTextReader(std::string_view text, std::uint64_t wanted) : text_(text), wanted_(wanted) {}

  void ReadAll();
  std::string Take();
  TStreamPlace Wanted() const { return PlaceOf(noted_); }

 private:
  struct TStatement {
    TKeyword Keyword;
    std::size_t At;
    std::string_view Name;  ///< of the property, where it is no keyword
  };

  // -- Characters -----------------------------------------------------------------------------------------------------
  char Here(std::size_t ahead = 0) const { return text_.size() - at_ > ahead ? text_[at_ + ahead] : '\0'; }
  bool AtEnd() const { return at_ == text_.size(); }
  void SkipBlanks();
  void SkipComment();
  /// Offset of the first character from here on that is not of a kind.
  template <class IsOfKind>
  std::size_t FindNot(IsOfKind&& isOfKind) const {
    std::size_t at = at_;
    while (at < text_.size() && isOfKind(text_[at])) ++at;
    return at;
  }
  void SkipDigits() { at_ = FindNot(IsDigit); }
  std::string_view Since(std::size_t begin) const { return text_.substr(begin, at_ - begin); }

  // -- Words ----------------------------------------------------------------------------------------------------------
  std::string_view Path();
  std::string_view Identifier(const char* what);
  bool IsStrayKeyword(std::string_view word, std::size_t sign, std::size_t at) const;

  // -- Objects --------------------------------------------------------------------------------------------------------
  TOwner ReadHead(std::size_t begin);
  void ReadObject(std::size_t begin);
  std::string_view NameOfObject(const char* what);
  void ReadItem(std::size_t begin);
  TStatement NextStatement(const TOwner& owner);
  void ReadProperty(const TStatement& property);

  // -- Values ---------------------------------------------------------------------------------------------------------
  void ReadValue();
  void ReadSet();
  void ReadList();
  void ReadCollection();
  void ReadBlock();
  void ReadNumber();
  void ReadHexNumber();
  void ReadNamedNumber(std::size_t begin);
  void ReadFraction(std::size_t begin);
  void EndNumber();
  void ReadText();
  void ReadQuoted();
  void ReadCode();

  // -- The stream -----------------------------------------------------------------------------------------------------
  /// To be called before the bytes of the word or sign at `at` go into the stream.
  void Note(std::size_t at) {
    if (bytes_.Size() <= wanted_) noted_ = at;
  }
  void Begin(std::size_t at, TStreamKind kind) {
    Note(at);
    bytes_.Kind(kind);
  }
  /// The end of a list, or its like, at a sign that is passed over.
  void EndAtSign() {
    Begin(at_, skEnd);
    ++at_;
  }

  // -- Errors ---------------------------------------------------------------------------------------------------------
  TStreamPlace PlaceOf(std::size_t at) const;
  [[noreturn]] void Fail(std::size_t at, const std::string& reason) const { throw EReadError(PlaceOf(at), reason); }
  /// What stands here is not what is wanted.
  [[noreturn]] void FailHere(const std::string& wanted) const;
  [[noreturn]] void FailAt(std::size_t at, const std::string& wanted) {
    at_ = at;
    FailHere(wanted);
  }
  [[noreturn]] void FailOpen(const char* what, std::size_t begin, const char* sign) const;
  [[noreturn]] void FailEnd(const TOwner& owner) const;
  /// What stands here: a word (of one no more than `length` characters), a sign, or the end of something.
  std::string Found(std::size_t length = kMaxShown + 1) const;

  class TDeeper {
   public:
    TDeeper(TTextReader& reader, std::size_t at) : reader_(reader) {
      if (reader.depth_ == kMaxStreamDepth)
        reader.Fail(at, "nested deeper than " + std::to_string(kMaxStreamDepth) + " levels");
      ++reader.depth_;
    }
    TDeeper(const TDeeper&) = delete;
    TDeeper& operator=(const TDeeper&) = delete;
    ~TDeeper() { --reader_.depth_; }

   private:
    TTextReader& reader_;
  };

  std::string_view text_;
  std::size_t at_ = 0;
  int depth_ = 0;
  TStreamBytes bytes_;
  std::string piece_;  ///< the text or block that is being read
  std::uint64_t wanted_;
  std::size_t noted_ = 0;
};

// -- Errors -----------------------------------------------------------------------------------------------------------

TStreamPlace TTextReader::PlaceOf(std::size_t at) const {
  TStreamPlace place{at, 1, 1};
  std::size_t lineBegin = text_.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
  for (std::size_t i = lineBegin; i < at; ++i) {
    if (KindOf(text_[i]) != ckLineEnd || (text_[i] == '\r' && text_.substr(i + 1).starts_with('\n'))) continue;
    ++place.Line;
    lineBegin = i + 1;
  }
  if (at > lineBegin)
    place.Column += static_cast<std::uint32_t>(CodePointCount(text_.substr(lineBegin, at - lineBegin)));
  return place;
}

std::string TTextReader::Found(std::size_t length) const {
  if (AtEnd()) return "the end of the file";
  if (KindOf(Here()) == ckLineEnd) return "the end of the line";
  if (KindOf(Here()) == ckBlank) return "a blank";
  std::size_t word = 0;
  while (word < length && IsWordChar(Here(word))) ++word;
  if (word > 0) return '"' + Shown(text_.substr(at_, word)) + '"';
  std::size_t behind = at_;
  const char32_t code = NextCodePoint(text_, behind);
  if (code >= kMalformed) return CodeOf(Here());
  if (code > ' ' && code < 0x7F) return '"' + std::string(1, Here()) + '"';
  char digits[8];
  const auto written = std::to_chars(digits, digits + sizeof digits, static_cast<std::uint32_t>(code), 16);
  std::string hex = UpperCase(std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)));
  hex.insert(0, hex.size() < 4 ? 4 - hex.size() : 0, '0');
  return "U+" + hex;
}

void TTextReader::FailHere(const std::string& wanted) const {
  if (!AtEnd() && KindOf(Here()) == ckUnknown) Fail(at_, "unknown character: " + Found());
  Fail(at_, wanted + " is expected, not " + Found());
}

void TTextReader::FailOpen(const char* what, std::size_t begin, const char* sign) const {
  if (!AtEnd() && KindOf(Here()) == ckUnknown) FailHere(sign);
  Fail(at_, "the " + std::string(what) + " that begins at " + PlaceOf(begin).Text() + " is not closed: \"" + sign +
                "\" is expected, not " + Found());
}

void TTextReader::FailEnd(const TOwner& owner) const {
  std::string what = owner.Class.empty() ? "item" : "object ";
  if (!owner.Name.empty()) what.append(owner.Name).append(": ");
  what += owner.Class;
  Fail(at_, "\"end\" is missing: the " + what + " that begins at " + PlaceOf(owner.At).Text() + " is not ended");
}

// -- Blanks and words -------------------------------------------------------------------------------------------------

void TTextReader::SkipComment() {
  for (; !AtEnd() && KindOf(Here()) != ckLineEnd; ++at_)
    if (static_cast<unsigned char>(Here()) < ' ' && Here() != '\t') FailHere("a comment");
}

void TTextReader::SkipBlanks() {
  for (;;) {
    at_ = FindNot(IsBlank);
    if (Here() != '/' || Here(1) != '/') return;
    SkipComment();
  }
}

std::string_view TTextReader::Path() {
  const std::size_t begin = at_;
  for (;;) {
    if (!IsLetter(Here())) FailHere("a name");
    at_ = FindNot(IsWordChar);
    if (Here() != '.') break;
    ++at_;
  }
  const std::string_view path = Since(begin);
  if (path.size() > kMaxStreamName)
    Fail(begin, "a name of " + std::to_string(path.size()) + " characters is longer than " +
                    std::to_string(kMaxStreamName) + ": " + Shown(path));
  return path;
}

std::string_view TTextReader::Identifier(const char* what) {
  const std::size_t begin = at_;
  if (!IsLetter(Here())) FailHere(what);
  const std::string_view name = Path();
  if (name.find('.') != std::string_view::npos)
    Fail(begin, std::string(what) + " is expected, and has no points: " + Shown(name));
  return name;
}

// -- Objects ----------------------------------------------------------------------------------------------------------

void TTextReader::ReadAll() {
  if (text_.starts_with(kStreamMark)) Fail(0, "this is a stream in the binary form");
  if (text_.size() > std::numeric_limits<std::uint32_t>::max()) Fail(0, "the text is larger than 4 GiB");
  if (text_.starts_with(kByteOrderMark)) at_ = kByteOrderMark.size();
  SkipBlanks();
  if (AtEnd()) Fail(at_, "there is no object");
  const std::size_t begin = noted_ = at_;
  if (!IsLetter(Here()) || KeywordOf(Path()) != kwObject) {
    at_ = begin;
    Fail(begin, "this is no form: \"object\" is expected, not " + Found());
  }
  if (const std::size_t broken = FindBrokenUtf8(text_); broken != std::string_view::npos)
    Fail(broken, "this byte is not UTF-8; within a text it is written " + CodeOf(text_[broken]));
  ReadObject(begin);
  SkipBlanks();
  if (AtEnd()) return;
  const std::size_t next = at_;
  if (IsLetter(Here()) && KeywordOf(Path()) == kwEnd) Fail(next, "there is no object left to end");
  at_ = next;
  if (KindOf(Here()) == ckUnknown) FailHere("nothing");
  Fail(at_, "nothing may follow behind the end of the object; here is " + Found());
}

std::string TTextReader::Take() {
  if (bytes_.Size() - kStreamHeadSize > std::numeric_limits<std::uint32_t>::max())
    Fail(0, "the binary form is larger than 4 GiB");
  return bytes_.Take();
}

/// The names behind "object", and the blanks behind these.
TOwner TTextReader::ReadHead(std::size_t begin) {
  SkipBlanks();
  const std::size_t nameAt = at_;
  std::size_t classAt = at_;
  TOwner object{begin, {}, NameOfObject("the name of a component or a class")};
  if (Here() == ':') {
    const std::size_t colon = at_++;
    SkipBlanks();
    classAt = at_;
    object.Name = object.Class;
    object.Class = NameOfObject("the name of a class");
    if (IsStrayKeyword(object.Class, colon, classAt)) FailAt(classAt, "the name of a class");
  }
  Note(classAt);
  bytes_.Name(object.Class);
  if (!object.Name.empty()) Note(nameAt);
  bytes_.Name(object.Name);
  return object;
}

void TTextReader::ReadObject(std::size_t begin) {
  const TDeeper deeper(*this, begin);
  const TOwner self = ReadHead(begin);
  bool owns = false;
  for (;;) {
    const TStatement statement = NextStatement(self);
    if (statement.Keyword == kwItem) Fail(statement.At, "an item stands in a collection only");
    if (statement.Keyword == kwNone) {
      if (owns) Fail(statement.At, "properties stand before owned objects: " + Shown(statement.Name));
      ReadProperty(statement);
      continue;
    }
    if (!owns) Begin(statement.At, skEnd);  // of the properties
    owns = true;
    if (statement.Keyword == kwEnd) return Begin(statement.At, skEnd);
    ReadObject(statement.At);
  }
}

void TTextReader::ReadItem(std::size_t begin) {
  const TOwner self{begin, {}, {}};
  Note(begin);
  bytes_.Byte(kStreamItem);
  for (;;) {
    const TStatement statement = NextStatement(self);
    if (statement.Keyword == kwObject) Fail(statement.At, "an item owns no objects");
    if (statement.Keyword == kwEnd) return Begin(statement.At, skEnd);
    if (statement.Keyword == kwItem) {
      at_ = statement.At;
      FailEnd(self);
    }
    ReadProperty(statement);
  }
}

/// With the blanks behind it. What an "=" follows is a property's name, so that this one is missing.
std::string_view TTextReader::NameOfObject(const char* what) {
  const std::size_t begin = at_;
  const std::string_view name = Identifier(what);
  SkipBlanks();
  if (Here() == '=') FailAt(begin, what);
  return name;
}

/// Is it one of the three words, and does it stand in another line than the sign before it?
bool TTextReader::IsStrayKeyword(std::string_view word, std::size_t sign, std::size_t at) const {
  return KeywordOf(word) != kwNone && text_.substr(sign, at - sign).find_first_of("\r\n") != std::string_view::npos;
}

/// The word that begins the next statement, and what stands before the "=" or behind the keyword.
TTextReader::TStatement TTextReader::NextStatement(const TOwner& owner) {
  SkipBlanks();
  if (AtEnd() || (Here() == '>' && owner.Class.empty())) FailEnd(owner);
  const std::size_t begin = at_;
  if (!IsLetter(Here())) FailHere("a property or \"end\"");
  const std::string_view name = Path();
  const std::size_t behind = at_;
  SkipBlanks();
  if (Here() == '=') return {kwNone, begin, name};
  const TKeyword keyword = KeywordOf(name);
  if (keyword == kwNone) FailHere("\"=\" behind " + Shown(name));
  at_ = behind;
  return {keyword, begin, name};
}

void TTextReader::ReadProperty(const TStatement& property) {
  Note(property.At);
  bytes_.Name(property.Name);
  const std::size_t equals = at_++;
  SkipBlanks();
  if (!BeginsValue(Here())) FailHere("a value of " + Shown(property.Name));
  if (!IsLetter(Here())) return ReadValue();
  const std::size_t begin = at_;
  const std::string_view word = Path();
  SkipBlanks();
  if (Here() == '=' || IsStrayKeyword(word, equals, begin)) FailAt(begin, "a value of " + Shown(property.Name));
  Note(begin);
  bytes_.Ident(word);
}

// -- Values -----------------------------------------------------------------------------------------------------------

void TTextReader::ReadValue() {
  switch (Here()) {
    case '\'':
    case '#':
      return ReadText();
    case '[':
      return ReadSet();
    case '(':
      return ReadList();
    case '<':
      return ReadCollection();
    case '{':
      return ReadBlock();
    default:
      if (!IsLetter(Here())) return ReadNumber();
      Note(at_);
      bytes_.Ident(Path());
  }
}

void TTextReader::ReadSet() {
  const std::size_t begin = at_++;
  Begin(begin, skSet);
  SkipBlanks();
  while (Here() != ']') {
    if (AtEnd()) FailOpen("set", begin, "]");
    Note(at_);
    bytes_.Name(Identifier("a member of the set"));
    SkipBlanks();
    if (Here() == ']') break;
    if (Here() != ',') FailOpen("set", begin, "]");
    ++at_;
    SkipBlanks();
    if (Here() == ']') FailHere("a member of the set");
  }
  EndAtSign();
}

void TTextReader::ReadList() {
  const std::size_t begin = at_++;
  const TDeeper deeper(*this, begin);
  Begin(begin, skList);
  for (SkipBlanks(); Here() != ')'; SkipBlanks()) {
    if (Here() == ',') Fail(at_, "between the values of a list there are no commas");
    if (!BeginsValue(Here())) FailOpen("list", begin, ")");
    ReadValue();
  }
  EndAtSign();
}

void TTextReader::ReadCollection() {
  const std::size_t begin = at_++;
  const TDeeper deeper(*this, begin);
  Begin(begin, skCollection);
  for (SkipBlanks(); Here() != '>'; SkipBlanks()) {
    const std::size_t itemAt = at_;
    if (!IsLetter(Here()) || KeywordOf(Path()) != kwItem) {
      at_ = itemAt;
      FailOpen("collection", begin, ">");
    }
    ReadItem(itemAt);
  }
  EndAtSign();
}

void TTextReader::ReadBlock() {
  const std::size_t begin = at_++;
  piece_.clear();
  std::uint8_t high = kNoHex;
  for (; Here() != '}'; ++at_) {
    const std::uint8_t digit = HexValue(Here());
    if (digit != kNoHex) {
      if (high != kNoHex) piece_.push_back(static_cast<char>(high << 4u | digit));
      high = high == kNoHex ? digit : kNoHex;
      continue;
    }
    if (AtEnd()) FailOpen("block", begin, "}");
    if (!IsBlank(Here()))
      Fail(at_, "in the block that begins at " + PlaceOf(begin).Text() +
                    " a hexadecimal digit or \"}\" is expected, not " + Found(1));
  }
  if (high != kNoHex) Fail(at_, "the last byte of the block lacks a digit");
  ++at_;
  Note(begin);
  bytes_.Binary(piece_);
}

// -- Numbers ----------------------------------------------------------------------------------------------------------

void TTextReader::ReadNumber() {
  const std::size_t begin = at_;
  Note(begin);
  if (Here() == '$') return ReadHexNumber();
  if (Here() == '-' || Here() == '+') ++at_;
  if (IsLetter(Here())) return ReadNamedNumber(begin);
  if (!IsDigit(Here())) FailHere("a digit");
  SkipDigits();
  if (Here() == '.' || Here() == 'e' || Here() == 'E') return ReadFraction(begin);
  EndNumber();
  std::string_view digits = Since(begin);
  if (digits[0] == '+') digits.remove_prefix(1);
  std::int64_t value = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (read.ec != std::errc()) Fail(begin, "a whole number beyond 64 bits: " + Shown(Since(begin)));
  bytes_.Int(value);
}

void TTextReader::ReadHexNumber() {
  const std::size_t begin = at_++;
  if (HexValue(Here()) == kNoHex) FailHere("a hexadecimal digit");
  while (HexValue(Here()) != kNoHex) ++at_;
  EndNumber();
  std::int64_t value = 0;
  const auto read = std::from_chars(text_.data() + begin + 1, text_.data() + at_, value, 16);
  if (read.ec != std::errc()) Fail(begin, "a whole number beyond 64 bits: " + Shown(Since(begin)));
  bytes_.Int(value);
}

void TTextReader::ReadNamedNumber(std::size_t begin) {
  at_ = FindNot(IsWordChar);
  const std::string_view name = Since(begin);
  if (CompareText(name, "+INF") == 0) return bytes_.Double(std::numeric_limits<double>::infinity());
  if (CompareText(name, "-INF") == 0) return bytes_.Double(-std::numeric_limits<double>::infinity());
  if (CompareText(name, "+NAN") == 0) return bytes_.Double(std::numeric_limits<double>::quiet_NaN());
  Fail(begin, "a number has digits, or is +INF, -INF or +NAN: " + Shown(name));
}

void TTextReader::ReadFraction(std::size_t begin) {
  if (Here() == '.') {
    ++at_;
    if (!IsDigit(Here())) FailHere("a digit behind the point");
    SkipDigits();
  }
  if (Here() == 'e' || Here() == 'E') {
    ++at_;
    if (Here() == '-' || Here() == '+') ++at_;
    if (!IsDigit(Here())) FailHere("a digit of the exponent");
    SkipDigits();
  }
  EndNumber();
  std::string_view number = Since(begin);
  const bool isNegative = number[0] == '-';
  if (isNegative || number[0] == '+') number.remove_prefix(1);
  double value = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), value);
  if (std::isinf(value) || (read.ec != std::errc() && IsHuge(number)))
    Fail(begin, "a number beyond the largest double: " + Shown(Since(begin)));
  bytes_.Double(isNegative ? -value : value);
}

void TTextReader::EndNumber() {
  if (IsWordChar(Here()) || Here() == '.') FailHere("a blank behind the number");
}

// -- Texts ------------------------------------------------------------------------------------------------------------

void TTextReader::ReadText() {
  const std::size_t begin = at_;
  piece_.clear();
  for (;;) {
    while (BeginsText(Here())) Here() == '#' ? ReadCode() : ReadQuoted();
    if (piece_.size() > kMaxStreamText)
      Fail(begin, "a text is longer than " + std::to_string(kMaxStreamText) + " bytes");
    SkipBlanks();
    if (Here() != '+' || IsWordChar(Here(1))) break;
    ++at_;
    SkipBlanks();
    if (!BeginsText(Here())) FailHere("a text behind \"+\"");
  }
  Note(begin);
  bytes_.Text(piece_);
}

void TTextReader::ReadQuoted() {
  const std::size_t open = at_++;
  for (;;) {
    const std::size_t begin = at_;
    at_ = FindNot([](char c) { return c != '\'' && c != '\n' && c != '\r'; });
    if (Here() != '\'') Fail(open, "the quote is not closed in its line");
    piece_.append(Since(begin));
    ++at_;
    if (Here() != '\'') return;
    piece_.push_back('\'');
    ++at_;
  }
}

void TTextReader::ReadCode() {
  const std::size_t begin = at_++;
  if (Here() == '$') {
    ++at_;
    const std::uint8_t high = HexValue(Here());
    const std::uint8_t low = high == kNoHex ? high : HexValue(Here(1));
    if (low == kNoHex) Fail(begin, "a byte has two hexadecimal digits: #$0A");
    piece_.push_back(static_cast<char>(high << 4u | low));
    at_ += 2;
  } else {
    if (!IsDigit(Here())) FailHere("a digit");
    std::uint32_t code = 0;
    for (; IsDigit(Here()); ++at_)
      code = std::min<std::uint32_t>(code * 10 + static_cast<std::uint32_t>(Here() - '0'), kMalformed);
    if (code >= kMalformed || (code >= 0xD800 && code < 0xE000))
      Fail(begin, "there is no character with this code: " + Shown(Since(begin)));
    AppendCodePoint(piece_, code);
  }
  if (IsWordChar(Here())) FailHere("a blank behind the code");
}

}  // namespace

std::string TextToBinary(std::string_view text) {
  TTextReader reader(text, 0);
  reader.ReadAll();
  return reader.Take();
}

TStreamPlace PlaceInText(std::string_view text, std::uint64_t offset) {
  TTextReader reader(text, offset);
  reader.ReadAll();
  return reader.Wanted();
}

}  // namespace vx
