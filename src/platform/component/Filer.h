// Filer.h: what an object keeps in a stream beside its published properties.
//
// An object names such a property in DefineProperties, with the two functions that write and read its value. A value is
// a number, a text, an identifier, a block of bytes, or a list of values; a filer knows from the calls which.
//
//   void TPlan::DefineProperties(TFiler& filer) {
//     TComponent::DefineProperties(filer);
//     filer.DefineProperty(
//         "Steps",
//         [this](TReader& reader) {
//           steps_.clear();
//           for (reader.ReadListBegin(); !reader.EndOfList();) steps_.push_back(reader.ReadInteger());
//           reader.ReadListEnd();
//         },
//         [this](TWriter& writer) {
//           writer.WriteListBegin();
//           for (const std::int32_t step : steps_) writer.WriteInteger(step);
//           writer.WriteListEnd();
//         },
//         !steps_.empty());
//     filer.DefineBinaryProperty("Picture", …);
//   }
//
//   Steps = (                                      // in the text form
//     1
//     2)
//
// DefineProperties is asked for reading and for writing alike: it names, and the functions do the work.
//
// What a function reads is within its property: asking for another kind of value, or beyond the end, raises EReadError
// with the place; what it leaves is passed over. What a function writes must be one value.
//
// A stream is checked before anything of it is set, and of these properties only their functions know what is right. So
// the check asks a fresh object of the class for its names, and lets it read each value. Names, and what a function
// takes, must not depend on other properties; that object has csLoading, and nobody sees it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/Stream.h"
#include "platform/component/StreamFormat.h"
#include "platform/runtime/Variant.h"

namespace vx {

class TStrings;

/// Reads the value of one property.
class TReader {
 public:
  /// The value at `offset` of a stream that has been checked.
  TReader(std::string_view stream, std::size_t offset);

  /// The kind of the next value; skEnd where none follows.
  TStreamKind NextValue() const { return cursor_.AtEnd() ? skEnd : cursor_.Peek(); }

  std::int64_t ReadInt64();
  /// EReadError beyond 32 bits, too.
  std::int32_t ReadInteger();
  bool ReadBoolean();
  /// Takes an integer, too.
  double ReadFloat();
  std::string ReadString();
  /// The name of something: a member of an enumeration, a component.
  std::string ReadIdent();
  std::vector<std::string> ReadSet();
  std::string ReadBinary();
  /// A number, a text, True, False, Null, Unassigned, or a list that begins with the name of a kind: (Date 45351.5),
  /// (Array 1 'two').
  Variant ReadVariant();

  void ReadListBegin();
  bool EndOfList() const { return NextValue() == skEnd; }
  /// Passes over what is left of the list.
  void ReadListEnd();
  void SkipValue();

  /// Bytes from the beginning of the stream.
  std::size_t Offset() const { return cursor_.Offset(); }
  /// Raises EReadError at that offset.
  [[noreturn]] void Fail(std::size_t offset, const std::string& reason) const { cursor_.Fail(offset, reason); }

 private:
  [[noreturn]] void FailKind(const char* wanted) const;
  void Want(TStreamKind kind, const char* wanted) const;
  Variant ReadTagged();

  TStreamCursor cursor_;
  int lists_ = 0;  // that are open
};

/// Writes the value of one property.
class TWriter {
 public:
  /// Goes on in `bytes`, at that depth.
  TWriter(TStreamBytes& bytes, int depth) : bytes_(&bytes), base_(depth), depth_(depth) {}

  void WriteInteger(std::int64_t value);
  void WriteBoolean(bool value) { WriteIdent(value ? "True" : "False"); }
  void WriteFloat(double value);
  /// EWriteError beyond 1 MiB.
  void WriteString(std::string_view text);
  /// EWriteError for what is no name: identifiers, joined by points.
  void WriteIdent(std::string_view name);
  void WriteSet(const std::vector<std::string>& members);
  void WriteBinary(std::string_view bytes);
  /// EWriteError for a Variant that holds an interface.
  void WriteVariant(const Variant& value);

  void WriteListBegin();
  void WriteListEnd();

  /// Raises EWriteError unless just one value was written.
  void Finish() const;

 private:
  void Count();

  TStreamBytes* bytes_;
  int base_;
  int depth_;
  std::int64_t values_ = 0;  // outside lists
};

/// Whom DefineProperties tells.
class TFiler {
 public:
  using TReadProc = std::function<void(TReader&)>;
  using TWriteProc = std::function<void(TWriter&)>;
  using TStreamProc = std::function<void(TStream&)>;

  virtual ~TFiler() = default;
  /// A property of any shape. It is written where `hasData` is true. The name is an identifier.
  virtual void DefineProperty(std::string_view name, const TReadProc& read, const TWriteProc& write, bool hasData) = 0;
  /// A property that is a block of bytes. `read` gets them from the first on; what it leaves is passed over.
  void DefineBinaryProperty(std::string_view name, const TStreamProc& read, const TStreamProc& write, bool hasData);

  /// What `object` defines; for a TStrings, its texts, as "Strings".
  static void Define(TPersistent& object, TFiler& filer);
};

}  // namespace vx
