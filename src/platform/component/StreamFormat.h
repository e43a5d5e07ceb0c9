// StreamFormat.h: the binary form of a component stream, byte by byte, and the one reader of such bytes.
//
// A stream holds one object with all that belongs to it. Numbers are little-endian.
//
//   stream      "KFB1", length of the contents (4 bytes), their CRC-32 (4 bytes), contents: one object
//   object      class name, component name (may be empty), properties, 0, objects that it owns, 0
//   property    name ("Tag", "Font.Size"), value
//   name        length (1 byte), that many characters: identifiers, joined by points where it is a path
//   value       kind (1 byte, TStreamKind), then
//     skInt8 … skInt64    1, 2, 4, 8 bytes; always the shortest that holds the number
//     skDouble            8 bytes; "not a number" is 7FF8000000000000 alone
//     skShortText         length (1 byte), bytes
//     skLongText          length (4 bytes, 256 or more), bytes
//     skIdent             name: a member of an enumeration, a component, a handler, True, False, nil, Null
//     skBinary            length (4 bytes), bytes
//     skSet               names, an empty name
//     skList              values, 0
//     skCollection        for each item: 1, properties, 0; then 0
//
// Each value has one form only, so equal objects give equal bytes, and going to the text form and back gives them
// again. Texts are UTF-8 where they are text at all; other bytes pass unharmed.
//
// TStreamCursor reads these bytes and trusts none: every length is held against what is left before it is used, and
// nothing is copied. Whatever isn't as above raises EReadError with the place.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "platform/runtime/Exceptions.h"

namespace vx {

// -- Limits -----------------------------------------------------------------------------------------------------------

/// Bytes of one text.
inline constexpr std::size_t kMaxStreamText = std::size_t{1} << 20;
/// Objects in objects, lists in lists, items in items, all counted together. The root is at depth 1.
inline constexpr int kMaxStreamDepth = 64;
/// Characters of one name.
inline constexpr std::size_t kMaxStreamName = 255;

// -- Places and errors ------------------------------------------------------------------------------------------------

/// Where something stands: in the binary form by its offset, in the text form by line and column as well.
struct TStreamPlace {
  std::uint64_t Offset = 0;  ///< bytes from the beginning of the stream
  std::uint32_t Line = 0;    ///< from 1; 0 in the binary form
  std::uint32_t Column = 0;  ///< from 1, in characters

  /// "byte 17", or "line 3, column 11".
  std::string Text() const;
};

/// A stream that can't be read. The message begins with the place: "line 3, column 11: unknown property: TBell.Loudd".
class EReadError : public TNamedException<EReadError> {
 public:
  static constexpr const char* kName = "EReadError";
  EReadError(const TStreamPlace& place, const std::string& reason)
      : TNamedException(place.Text() + ": " + reason), place_(place), reason_(reason) {}

  const TStreamPlace& Place() const { return place_; }
  /// The message without the place.
  const std::string& Reason() const { return reason_; }

 private:
  TStreamPlace place_;
  std::string reason_;
};

/// An object that can't be written; nothing has been.
class EWriteError : public TNamedException<EWriteError> {
 public:
  static constexpr const char* kName = "EWriteError";
  using TNamedException::TNamedException;
};

// -- The bytes --------------------------------------------------------------------------------------------------------

inline constexpr std::string_view kStreamMark = "KFB1";
inline constexpr std::size_t kStreamHeadSize = 12;

enum TStreamKind : std::uint8_t {
  skEnd,
  skInt8,
  skInt16,
  skInt32,
  skInt64,
  skDouble,
  skShortText,
  skLongText,
  skIdent,
  skBinary,
  skSet,
  skList,
  skCollection,
};
inline constexpr std::uint8_t kStreamItem = 1;  ///< begins an item of a collection

/// A letter or underscore, then letters, digits and underscores, all of ASCII.
bool IsStreamIdentifier(std::string_view name);
/// Identifiers joined by points.
bool IsStreamPath(std::string_view name);
/// CRC-32 as in ISO 3309 (polynomial EDB88320 reflected, begun and ended with all bits set).
std::uint32_t Crc32(std::string_view bytes);

/// Puts the bytes of a stream together. What it is given is known to fit: names are paths of at most kMaxStreamName.
class TStreamBytes {
 public:
  TStreamBytes();
  void Name(std::string_view name);
  /// Two halves of one name, that of a part with its point and what it has.
  void Name(std::string_view first, std::string_view second);
  void Kind(TStreamKind kind) { bytes_.push_back(static_cast<char>(kind)); }
  void Byte(std::uint8_t byte) { bytes_.push_back(static_cast<char>(byte)); }
  void Int(std::int64_t value);
  void Double(double value);
  void Text(std::string_view text);
  void Ident(std::string_view name);
  void Binary(std::string_view bytes);

  /// Of all bytes so far, those of the head included.
  std::size_t Size() const { return bytes_.size(); }
  /// Completes the head, and gives the stream away. Raises EWriteError beyond 4 GiB.
  std::string Take();

 private:
  void Little(std::uint64_t value, int size);

  std::string bytes_;
};

/// Reads the bytes of a stream one after another; see the head of this file. Views into the stream live as long as it.
class TStreamCursor {
 public:
  /// `stream` from the mark on. More bytes behind the contents are no concern.
  explicit TStreamCursor(std::string_view stream) : bytes_(stream) {}

  /// The bytes of the whole stream, from mark to the end of the contents, as its head tells; the head alone is looked
  /// at.
  static std::uint64_t SizeOf(std::string_view stream);
  /// Checks mark, length and CRC, and goes to the first byte of the contents; the end is set behind the last.
  /// Contents with another CRC are walked through to find the place; where they are well-formed all the same, the place
  /// is that of the CRC.
  void Open();

  // -- Where ----------------------------------------------------------------------------------------------------------
  std::size_t Offset() const { return at_; }
  /// Goes back, or forward, to an offset that was read before.
  void Seek(std::size_t offset) { at_ = offset; }
  bool AtEnd() const { return at_ == bytes_.size(); }
  [[noreturn]] void Fail(std::size_t offset, const std::string& reason) const;
  /// Behind the root object nothing may follow.
  void ExpectEnd() const;

  // -- Pieces ---------------------------------------------------------------------------------------------------------
  /// The kind of the next value, unread; skEnd where none follows.
  TStreamKind Peek() const;
  /// Takes an skEnd if that is next.
  bool TakeEnd();
  /// Name of a class or component, or member of a set; empty where an empty one is allowed and stands.
  std::string_view Identifier(bool mayBeEmpty);
  /// Name of a property, reference or handler.
  std::string_view Path(bool mayBeEmpty);
  /// True before the next item of a collection, whose mark is taken; false behind the last.
  bool TakeItem();

  // -- Values: the kind has been peeked at ----------------------------------------------------------------------------
  std::int64_t Int();         ///< of skInt8 to skInt64
  double Double();            ///< of skDouble
  std::string_view Text();    ///< of skShortText and skLongText
  std::string_view Ident();   ///< of skIdent
  std::string_view Binary();  ///< of skBinary
  void TakeKind() { ++at_; }  ///< of skSet, skList, skCollection: the kind alone

  // -- Whole things, checked and passed over --------------------------------------------------------------------------
  void SkipValue();
  void SkipProperties();
  void SkipObject();

  // -- Depth ----------------------------------------------------------------------------------------------------------
  /// One level deeper while it lives; raises EReadError beyond kMaxStreamDepth.
  class TDeeper {
   public:
    explicit TDeeper(TStreamCursor& cursor) : cursor_(cursor) {
      if (cursor_.depth_ == kMaxStreamDepth) cursor_.FailDepth();
      ++cursor_.depth_;
    }
    TDeeper(const TDeeper&) = delete;
    TDeeper& operator=(const TDeeper&) = delete;
    ~TDeeper() { --cursor_.depth_; }

   private:
    TStreamCursor& cursor_;
  };

 private:
  [[noreturn]] void FailDepth() const;
  [[noreturn]] void FailShort(std::size_t wanted) const;
  std::string_view TakeBytes(std::size_t count) {
    if (bytes_.size() - at_ < count) FailShort(count);
    const std::string_view taken = bytes_.substr(at_, count);
    at_ += count;
    return taken;
  }
  std::uint8_t TakeByte() {
    if (at_ == bytes_.size()) FailShort(1);
    return static_cast<std::uint8_t>(bytes_[at_++]);
  }
  std::uint64_t TakeLittle(std::size_t size);
  std::string_view Name(bool mayBeEmpty, bool mayHavePoints);

  std::string_view bytes_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

}  // namespace vx
