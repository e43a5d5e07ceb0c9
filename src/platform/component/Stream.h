// Stream.h: bytes in a row that are read and written from a position on.
//
//   TOwned<TMemoryStream> stream = Make<TMemoryStream>();
//   stream->WriteComponent(*form);
//   stream->SetPosition(0);
//   TOwned<TComponent> copy = stream->ReadComponent();
//
// A descendant gives four operations and the rest follows. Errors: EStreamError, which tells how many bytes were wanted
// and how many there are; what a component stream has to say comes as EReadError and EWriteError (StreamFormat.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/runtime/Object.h"

namespace vx {

class TComponent;

class EStreamError : public TNamedException<EStreamError> {
 public:
  static constexpr const char* kName = "EStreamError";
  using TNamedException::TNamedException;
};

class TStream : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- What a descendant gives ----------------------------------------------------------------------------------------
  /// Reads at most `count` bytes; answers how many it were, 0 at the end.
  virtual std::int64_t Read(void* buffer, std::int64_t count) = 0;
  /// Writes at most `count` bytes over those that are there, and behind the end; answers how many it were.
  virtual std::int64_t Write(const void* buffer, std::int64_t count) = 0;
  virtual std::int64_t GetPosition() const = 0;
  /// 0 to the size; EStreamError outside.
  virtual void SetPosition(std::int64_t position) = 0;
  virtual std::int64_t GetSize() const = 0;

  // -- All or nothing -------------------------------------------------------------------------------------------------
  /// EStreamError if there are fewer bytes; the position is as it was then.
  void ReadBuffer(void* buffer, std::int64_t count);
  void WriteBuffer(const void* buffer, std::int64_t count);
  /// `count` bytes from the position of `source` on; 0 is all of it from its beginning. Answers how many it were.
  std::int64_t CopyFrom(TStream& source, std::int64_t count);

  // -- Components -----------------------------------------------------------------------------------------------------
  /// See ComponentStream.h. Raises EWriteError; nothing is written then.
  void WriteComponent(TComponent& component);
  /// Reads into `component`. Raises EReadError; the position is as it was then.
  void ReadComponent(TComponent& component);
  /// Makes a component of the class that the stream names, which must be registered.
  TOwned<TComponent> ReadComponent();

 private:
  std::string TakeComponent();
};

/// A stream whose bytes are in memory; it grows as it is written.
class TMemoryStream : public TStream {
 public:
  TMemoryStream() = default;
  explicit TMemoryStream(std::string bytes) : bytes_(std::move(bytes)) {}
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  std::int64_t Read(void* buffer, std::int64_t count) override;
  std::int64_t Write(const void* buffer, std::int64_t count) override;
  std::int64_t GetPosition() const override { return position_; }
  void SetPosition(std::int64_t position) override;
  std::int64_t GetSize() const override { return static_cast<std::int64_t>(bytes_.size()); }

  /// All bytes, wherever the position is; valid until the next change.
  std::string_view Memory() const { return bytes_; }
  /// Cuts, or fills up with zero bytes; the position goes to the end at most. EStreamError for a negative size.
  void SetSize(std::int64_t size);
  void Clear() { SetSize(0); }

 private:
  std::string bytes_;
  std::int64_t position_ = 0;
};

}  // namespace vx
