#include "platform/component/Stream.h"

#include <algorithm>
#include <cstring>

#include "platform/component/ComponentStream.h"
#include "platform/component/StreamFormat.h"

namespace vx {

// -- TStream ----------------------------------------------------------------------------------------------------------

const TClass& TStream::StaticClass() {
  static const TClass info("TStream", &TObject::StaticClass());
  return info;
}

void TStream::ReadBuffer(void* buffer, std::int64_t count) {
  const std::int64_t begin = GetPosition();
  std::int64_t done = 0;
  while (done < count) {
    const std::int64_t read = Read(static_cast<char*>(buffer) + done, count - done);
    if (read <= 0) {
      SetPosition(begin);
      throw EStreamError("The stream has " + std::to_string(done) + " more bytes, not " + std::to_string(count));
    }
    done += read;
  }
}

void TStream::WriteBuffer(const void* buffer, std::int64_t count) {
  for (std::int64_t done = 0; done < count;) {
    const std::int64_t written = Write(static_cast<const char*>(buffer) + done, count - done);
    if (written <= 0)
      throw EStreamError("The stream took " + std::to_string(done) + " of " + std::to_string(count) + " bytes");
    done += written;
  }
}

std::int64_t TStream::CopyFrom(TStream& source, std::int64_t count) {
  if (count < 0) return 0;
  if (count == 0) {
    source.SetPosition(0);
    count = source.GetSize();
  }
  std::string piece;
  for (std::int64_t left = count; left > 0; left -= static_cast<std::int64_t>(piece.size())) {
    piece.resize(static_cast<std::size_t>(std::min<std::int64_t>(left, 1 << 16)));
    source.ReadBuffer(piece.data(), static_cast<std::int64_t>(piece.size()));
    WriteBuffer(piece.data(), static_cast<std::int64_t>(piece.size()));
  }
  return count;
}

void TStream::WriteComponent(TComponent& component) {
  const std::string bytes = ComponentToBinary(component);
  WriteBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
}

/// The bytes of the component stream from the position on. Takes no more memory than there are bytes.
std::string TStream::TakeComponent() {
  const std::int64_t left = GetSize() - GetPosition();
  std::string bytes(static_cast<std::size_t>(std::min<std::int64_t>(left, kStreamHeadSize)), '\0');
  ReadBuffer(bytes.data(), static_cast<std::int64_t>(bytes.size()));
  const auto size = static_cast<std::int64_t>(TStreamCursor::SizeOf(bytes));
  bytes.resize(static_cast<std::size_t>(std::min(size, left)));
  ReadBuffer(bytes.data() + kStreamHeadSize, static_cast<std::int64_t>(bytes.size() - kStreamHeadSize));
  return bytes;
}

namespace {

/// Puts the position back where it was, unless told that all went well.
class TPositionKeeper {
 public:
  explicit TPositionKeeper(TStream& stream) : stream_(&stream), begin_(stream.GetPosition()) {}
  TPositionKeeper(const TPositionKeeper&) = delete;
  TPositionKeeper& operator=(const TPositionKeeper&) = delete;
  ~TPositionKeeper() {
    if (stream_ == nullptr) return;
    try {
      stream_->SetPosition(begin_);
    } catch (const std::exception&) {
      // An error is on its way already.
    }
  }
  void Release() { stream_ = nullptr; }

 private:
  TStream* stream_;
  std::int64_t begin_;
};

}  // namespace

void TStream::ReadComponent(TComponent& component) {
  TPositionKeeper keep(*this);
  BinaryIntoComponent(TakeComponent(), component);
  keep.Release();
}

TOwned<TComponent> TStream::ReadComponent() {
  TPositionKeeper keep(*this);
  TOwned<TComponent> component = BinaryToComponent(TakeComponent());
  keep.Release();
  return component;
}

// -- TMemoryStream ----------------------------------------------------------------------------------------------------

const TClass& TMemoryStream::StaticClass() {
  static const TClass info("TMemoryStream", &TStream::StaticClass());
  return info;
}

std::int64_t TMemoryStream::Read(void* buffer, std::int64_t count) {
  const std::int64_t taken = std::clamp<std::int64_t>(count, 0, GetSize() - position_);
  if (taken > 0) std::memcpy(buffer, bytes_.data() + position_, static_cast<std::size_t>(taken));
  position_ += taken;
  return taken;
}

std::int64_t TMemoryStream::Write(const void* buffer, std::int64_t count) {
  if (count <= 0) return 0;
  bytes_.replace(static_cast<std::size_t>(position_), static_cast<std::size_t>(std::min(count, GetSize() - position_)),
                 static_cast<const char*>(buffer), static_cast<std::size_t>(count));
  position_ += count;
  return count;
}

void TMemoryStream::SetPosition(std::int64_t position) {
  if (position < 0 || position > GetSize())
    throw EStreamError("There is no position " + std::to_string(position) + " in a stream of " +
                       std::to_string(GetSize()) + " bytes");
  position_ = position;
}

void TMemoryStream::SetSize(std::int64_t size) {
  if (size < 0) throw EStreamError("A stream can't have " + std::to_string(size) + " bytes");
  bytes_.resize(static_cast<std::size_t>(size));
  position_ = std::min(position_, size);
}

}  // namespace vx
