// StreamPlan.h: the check of a component stream, and what it leaves for the loading. Not for users.
//
// The check walks the whole stream and changes nothing. Application code runs in between all the same: constructors of
// fresh objects, what they define, TStreamOptions::FindRoot. The check leaves a list of the objects in the order of the
// stream, by which names are found, and the objects that hold references.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/ComponentStream.h"
#include "platform/component/NameTable.h"
#include "platform/component/StreamShape.h"

namespace vx {

struct TStreamObject {
  std::string_view Name;
  std::uint32_t Owner;  ///< position of its owner; its own for the root
  TStreamShape* Shape;
  std::size_t Properties;  ///< offset of the first
  TLoading Loading;        ///< once it is made
};

/// What a name leads to: an object of the stream, or a component that is there already; neither if nothing is found.
struct TStreamTarget {
  std::int64_t Object = -1;
  TComponentLink Live = {};  // a setter may free it before it is referred to

  bool IsFound() const { return Object >= 0 || Live.Component() != nullptr; }
};

/// What application code has raised about the bytes from `begin` to `end`: an EReadError of theirs keeps its place,
/// that of another stream, read in between, is a message like any other.
struct TPlacedReason {
  std::size_t Offset;
  std::string Reason;
};
TPlacedReason PlacedReason(const std::exception& error, std::size_t begin, std::size_t end);

class TStreamPlan {
 public:
  /// Checks `stream`. `root` is what it is to be read into; null if the root is to be made. Raises EReadError.
  TStreamPlan(std::string_view stream, TComponent* root, const TStreamOptions& options);

  std::string_view Stream() const { return stream_; }
  /// Starts at the root object.
  TStreamCursor Begin() const;
  std::vector<TStreamObject>& Objects() { return objects_; }
  /// Positions of the objects that hold references, in order.
  const std::vector<std::uint32_t>& Referring() const { return referring_; }
  TStreamTarget Find(std::string_view path) const;
  /// What is read into; raises EReadError if that is gone meanwhile.
  TComponent& Root() const;
  /// A fresh component for that object. Passes on what its constructor raises.
  TOwned<TComponent> MakeComponent(std::uint32_t object) const;
  /// What the reference at that offset leads to; asked in the order of the stream.
  const TStreamTarget& TargetAt(std::size_t offset);
  /// "Form1.Panel1.Bell2", with class names for the objects without a name.
  std::string PathOf(std::uint32_t object) const;

 private:
  friend class TStreamCheck;

  struct TReference {
    std::size_t Offset;
    std::string_view Path;
    const TPropInfo* Info;
    const TStreamShape* Shape;
    TStreamTarget Target;
  };

  bool Enter(std::uint32_t object);
  std::uint64_t HashOf(std::uint32_t owner, std::string_view name) const;
  std::int64_t Child(std::uint32_t owner, std::string_view name) const;
  TStreamTarget FindBelowRoot(std::string_view path) const;
  const TClass* ClassOf(const TStreamTarget& target) const;

  std::string_view stream_;
  bool isInto_;  // a root that is there already
  TComponentLink root_;
  const TStreamOptions& options_;
  TStreamShapes shapes_;
  std::size_t begin_ = 0;
  std::vector<TStreamObject> objects_;
  TNameTable<std::uint32_t> byName_;    // positions of objects with a name, and one more
  std::vector<TReference> references_;  // in the order of the stream
  std::size_t nextReference_ = 0;
  std::vector<std::uint32_t> referring_;
};

}  // namespace vx
