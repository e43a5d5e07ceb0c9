#include "platform/component/StreamFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace vx {

namespace {

constexpr std::uint64_t kStreamNaN = 0x7FF8000000000000u;

enum TCharClass : std::uint8_t { ccOther, ccLetter, ccDigit };

constexpr auto kCharClasses = [] {
  std::array<TCharClass, 256> classes{};
  for (std::size_t c = 'A'; c <= 'Z'; ++c) classes[c] = classes[c - 'A' + 'a'] = ccLetter;
  for (std::size_t c = '0'; c <= '9'; ++c) classes[c] = ccDigit;
  classes['_'] = ccLetter;
  return classes;
}();

TCharClass ClassOf(char c) { return kCharClasses[static_cast<unsigned char>(c)]; }

/// Length of the identifier at the beginning; 0 if there is none.
std::size_t IdentifierLength(std::string_view text) {
  if (text.empty() || ClassOf(text[0]) != ccLetter) return 0;
  std::size_t length = 1;
  while (length < text.size() && ClassOf(text[length]) != ccOther) ++length;
  return length;
}

/// Eight tables: the CRC of a byte with 0 to 7 zero bytes behind it.
constexpr auto kCrcTables = [] {
  std::array<std::array<std::uint32_t, 256>, 8> tables{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1u) ^ ((crc & 1u) != 0 ? 0xEDB88320u : 0u);
    tables[0][byte] = crc;
  }
  for (std::size_t zeros = 1; zeros < 8; ++zeros)
    for (std::size_t byte = 0; byte < 256; ++byte) {
      const std::uint32_t crc = tables[zeros - 1][byte];
      tables[zeros][byte] = (crc >> 8u) ^ tables[0][crc & 255u];
    }
  return tables;
}();

std::uint32_t ByteAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at]));
}

std::uint32_t Little32(std::string_view bytes, std::size_t at) {
  return ByteAt(bytes, at) | ByteAt(bytes, at + 1) << 8u | ByteAt(bytes, at + 2) << 16u | ByteAt(bytes, at + 3) << 24u;
}

/// The size of the shortest skInt that holds the number.
int IntSize(std::int64_t value) {
  for (const int size : {1, 2, 4}) {
    const std::int64_t top = std::int64_t{1} << (8 * size - 1);
    if (value >= -top && value < top) return size;
  }
  return 8;
}

TStreamKind IntKind(int size) { return size == 1 ? skInt8 : size == 2 ? skInt16 : size == 4 ? skInt32 : skInt64; }

}  // namespace

std::string TStreamPlace::Text() const {
  if (Line == 0) return "byte " + std::to_string(Offset);
  return "line " + std::to_string(Line) + ", column " + std::to_string(Column);
}

bool IsStreamIdentifier(std::string_view name) { return !name.empty() && IdentifierLength(name) == name.size(); }

bool IsStreamPath(std::string_view name) {
  for (;;) {
    const std::size_t length = IdentifierLength(name);
    if (length == 0) return false;
    if (length == name.size()) return true;
    if (name[length] != '.') return false;
    name.remove_prefix(length + 1);
  }
}

std::uint32_t Crc32(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  while (bytes.size() >= 8) {
    const std::uint32_t low = crc ^ Little32(bytes, 0);
    const std::uint32_t high = Little32(bytes, 4);
    crc = kCrcTables[7][low & 255u] ^ kCrcTables[6][low >> 8u & 255u] ^ kCrcTables[5][low >> 16u & 255u] ^
          kCrcTables[4][low >> 24u] ^ kCrcTables[3][high & 255u] ^ kCrcTables[2][high >> 8u & 255u] ^
          kCrcTables[1][high >> 16u & 255u] ^ kCrcTables[0][high >> 24u];
    bytes.remove_prefix(8);
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) crc = crc >> 8u ^ kCrcTables[0][(crc ^ ByteAt(bytes, i)) & 255u];
  return ~crc;
}

// -- Writing ----------------------------------------------------------------------------------------------------------

TStreamBytes::TStreamBytes() : bytes_(kStreamHeadSize, '\0') {}

void TStreamBytes::Little(std::uint64_t value, int size) {
  char bytes[8];
  for (int i = 0; i < size; ++i) bytes[i] = static_cast<char>(value >> static_cast<unsigned>(8 * i) & 255u);
  bytes_.append(bytes, static_cast<std::size_t>(size));
}

void TStreamBytes::Name(std::string_view name) {
  Byte(static_cast<std::uint8_t>(name.size()));
  bytes_.append(name);
}

void TStreamBytes::Name(std::string_view first, std::string_view second) {
  Byte(static_cast<std::uint8_t>(first.size() + second.size()));
  bytes_.append(first).append(second);
}

void TStreamBytes::Int(std::int64_t value) {
  const int size = IntSize(value);
  Kind(IntKind(size));
  Little(static_cast<std::uint64_t>(value), size);
}

void TStreamBytes::Double(double value) {
  Kind(skDouble);
  Little(std::isnan(value) ? kStreamNaN : std::bit_cast<std::uint64_t>(value), 8);
}

void TStreamBytes::Text(std::string_view text) {
  const bool isShort = text.size() < 256;
  Kind(isShort ? skShortText : skLongText);
  Little(text.size(), isShort ? 1 : 4);
  bytes_.append(text);
}

void TStreamBytes::Ident(std::string_view name) {
  Kind(skIdent);
  Name(name);
}

void TStreamBytes::Binary(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::uint32_t>::max())
    throw EWriteError("A binary property of " + std::to_string(bytes.size()) + " bytes is too large for a stream");
  Kind(skBinary);
  Little(bytes.size(), 4);
  bytes_.append(bytes);
}

std::string TStreamBytes::Take() {
  const std::string_view contents = std::string_view(bytes_).substr(kStreamHeadSize);
  if (contents.size() > std::numeric_limits<std::uint32_t>::max())
    throw EWriteError("A stream of " + std::to_string(contents.size()) + " bytes is too large");
  std::string head(kStreamMark);
  for (const std::uint32_t number : {static_cast<std::uint32_t>(contents.size()), Crc32(contents)})
    for (unsigned shift = 0; shift < 32; shift += 8) head.push_back(static_cast<char>(number >> shift & 255u));
  bytes_.replace(0, kStreamHeadSize, head);
  return std::move(bytes_);
}

// -- Reading ----------------------------------------------------------------------------------------------------------

void TStreamCursor::Fail(std::size_t offset, const std::string& reason) const {
  throw EReadError(TStreamPlace{offset}, reason);
}

void TStreamCursor::FailDepth() const {
  Fail(at_, "nested deeper than " + std::to_string(kMaxStreamDepth) + " levels");
}

void TStreamCursor::FailShort(std::size_t wanted) const {
  Fail(at_, "the stream ends here; " + std::to_string(wanted - (bytes_.size() - at_)) + " more bytes are wanted");
}

std::uint64_t TStreamCursor::SizeOf(std::string_view stream) {
  TStreamCursor cursor(stream);
  const std::size_t marked = std::min(stream.size(), kStreamMark.size());
  if (stream.substr(0, marked) != kStreamMark.substr(0, marked))
    cursor.Fail(0, "this is no component stream: it doesn't begin with " + std::string(kStreamMark));
  cursor.TakeBytes(kStreamHeadSize);
  return kStreamHeadSize + std::uint64_t{Little32(stream, 4)};
}

void TStreamCursor::Open() {
  const std::uint64_t size = SizeOf(bytes_);
  if (size > bytes_.size())
    Fail(bytes_.size(), "the stream ends here; it should have " + std::to_string(size) + " bytes");
  bytes_ = bytes_.substr(0, static_cast<std::size_t>(size));
  at_ = kStreamHeadSize;
  if (Crc32(bytes_.substr(kStreamHeadSize)) == Little32(bytes_, 8)) return;
  SkipObject();
  ExpectEnd();
  Fail(8, "the contents don't agree with their check sum: some of the bytes have been changed");
}

void TStreamCursor::ExpectEnd() const {
  if (!AtEnd()) Fail(at_, std::to_string(bytes_.size() - at_) + " bytes follow behind the end of the object");
}

TStreamKind TStreamCursor::Peek() const {
  if (at_ == bytes_.size()) FailShort(1);
  const auto kind = static_cast<std::uint8_t>(bytes_[at_]);
  if (kind > skCollection) Fail(at_, "there is no kind of value with number " + std::to_string(kind));
  return static_cast<TStreamKind>(kind);
}

bool TStreamCursor::TakeEnd() {
  if (at_ == bytes_.size()) FailShort(1);
  if (bytes_[at_] != skEnd) return false;
  ++at_;
  return true;
}

std::string_view TStreamCursor::Name(bool mayBeEmpty, bool mayHavePoints) {
  const std::size_t begin = at_;
  const std::string_view name = TakeBytes(TakeByte());
  if (name.empty() ? mayBeEmpty : mayHavePoints ? IsStreamPath(name) : IsStreamIdentifier(name)) return name;
  Fail(begin, name.empty() ? "a name is missing" : "a name has characters that no name can have");
}

std::string_view TStreamCursor::Identifier(bool mayBeEmpty) { return Name(mayBeEmpty, false); }

std::string_view TStreamCursor::Path(bool mayBeEmpty) { return Name(mayBeEmpty, true); }

bool TStreamCursor::TakeItem() {
  const std::uint8_t mark = TakeByte();
  if (mark > kStreamItem) Fail(at_ - 1, "an item of a collection begins with 1, not with " + std::to_string(mark));
  return mark == kStreamItem;
}

std::uint64_t TStreamCursor::TakeLittle(std::size_t size) {
  const std::string_view bytes = TakeBytes(size);
  std::uint64_t value = 0;
  for (std::size_t i = size; i > 0; --i) value = value << 8u | ByteAt(bytes, i - 1);
  return value;
}

std::int64_t TStreamCursor::Int() {
  const std::size_t begin = at_;
  const int size = 1 << (TakeByte() - skInt8);
  const unsigned unused = 64u - 8u * static_cast<unsigned>(size);
  const auto value =
      static_cast<std::int64_t>(TakeLittle(static_cast<std::size_t>(size)) << unused) >> unused;  // with its sign
  if (IntSize(value) != size) Fail(begin, "a number takes more bytes than it needs");
  return value;
}

double TStreamCursor::Double() {
  const std::size_t begin = at_++;
  const std::uint64_t bits = TakeLittle(8);
  const auto value = std::bit_cast<double>(bits);
  if (std::isnan(value) && bits != kStreamNaN) Fail(begin, "\"not a number\" stands in a form of its own");
  return value;
}

std::string_view TStreamCursor::Text() {
  const std::size_t begin = at_;
  const bool isShort = TakeByte() == skShortText;
  const std::uint64_t length = TakeLittle(isShort ? 1 : 4);
  if (!isShort && length < 256) Fail(begin, "a short text stands in the form of a long one");
  if (length > kMaxStreamText)
    Fail(begin, "a text of " + std::to_string(length) + " bytes is longer than " + std::to_string(kMaxStreamText));
  return TakeBytes(static_cast<std::size_t>(length));
}

std::string_view TStreamCursor::Ident() {
  ++at_;
  return Path(false);
}

std::string_view TStreamCursor::Binary() {
  ++at_;
  return TakeBytes(static_cast<std::size_t>(TakeLittle(4)));
}

// -- Whole things -----------------------------------------------------------------------------------------------------

void TStreamCursor::SkipValue() {
  const TStreamKind kind = Peek();
  switch (kind) {
    case skEnd:
      Fail(at_, "a value is missing");
    case skInt8:
    case skInt16:
    case skInt32:
    case skInt64:
      Int();
      return;
    case skDouble:
      Double();
      return;
    case skShortText:
    case skLongText:
      Text();
      return;
    case skIdent:
      Ident();
      return;
    case skBinary:
      Binary();
      return;
    case skSet:
      TakeKind();
      while (!Identifier(true).empty()) continue;
      return;
    case skList: {
      const TDeeper deeper(*this);
      TakeKind();
      while (!TakeEnd()) SkipValue();
      return;
    }
    case skCollection: {
      const TDeeper deeper(*this);
      TakeKind();
      while (TakeItem()) SkipProperties();
      return;
    }
  }
}

void TStreamCursor::SkipProperties() {
  while (!Path(true).empty()) SkipValue();
}

void TStreamCursor::SkipObject() {
  const TDeeper deeper(*this);
  Identifier(false);
  Identifier(true);
  SkipProperties();
  while (!TakeEnd()) SkipObject();
}

}  // namespace vx
