// StreamShape.h: what streams know of a class: its properties by role, and a fresh object to ask. Not for users.
//
// The published properties alone don't tell all: which class of items a collection holds, what object stands behind
// "Font", what a class defines in DefineProperties. That is asked of a prototype: a fresh object, made when it is first
// needed and freed with the shapes; for a root whose class can't be made, the root itself. A part of it is asked for
// anew each time, and a component held by a weak reference: what it reads may replace the one and free the other.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/component/Collection.h"
#include "platform/component/Component.h"
#include "platform/component/Published.h"

namespace vx {

class TStreamShapes;

enum class TStreamRole : std::uint8_t {
  Value,       ///< a number, text, enumeration, set or variant
  Event,       ///< the name of a handler
  Reference,   ///< the name of a component
  Part,        ///< an object whose own properties are written: "Font.Size"
  Collection,  ///< its items
};

/// Reads the property of that name that `object` defines, from its value at `offset`. Passes on what is raised.
void ReadDefined(TPersistent& object, std::string_view name, std::string_view stream, std::size_t offset);

struct TStreamProp {
  const TPropInfo* Info;
  TStreamRole Role;
};

class TStreamShape {
 public:
  TStreamShape(TStreamShapes& shapes, const TClass& type);

  TStreamShape(const TStreamShape&) = delete;
  TStreamShape& operator=(const TStreamShape&) = delete;
  ~TStreamShape();

  const TClass& Type() const { return type_; }
  const std::vector<TStreamProp>& Props() const { return props_; }
  /// Position of the property, letter case ignored; -1 if there is none. O(1) for the property at `expected`.
  std::int32_t Find(std::string_view name, std::int32_t expected = 0) const;
  /// The object to ask; null if the class can't be made. EInvalidOperation for what its constructor raises.
  TPersistent* Prototype();
  /// True if objects of the class define a property of that name.
  bool Defines(std::string_view name);
  /// Reads the value at `offset` into the prototype, unless that is somebody's own object. Passes on what is raised.
  void Rehearse(std::string_view name, std::string_view stream, std::size_t offset);
  /// The shape of the object behind a Part; null if there is none.
  TStreamShape* Part(std::int32_t prop);
  /// The shape of the items of a Collection; null if that isn't known.
  TStreamShape* Items(std::int32_t prop);
  /// True if nothing is known to stand there in a fresh object: 0.0, no text, no object, no handler, no items.
  bool IsFreshEmpty(std::int32_t prop);

 private:
  friend class TStreamShapes;

  void MakePrototype();

  TStreamShapes& shapes_;
  const TClass& type_;
  std::vector<TStreamProp> props_;
  std::vector<TStreamShape*> parts_;             // by property; null where not asked yet
  std::vector<std::optional<bool>> freshEmpty_;  // likewise
  TClassOf<TCollectionItem> itemClass_;          // what makes the prototype, if it is an item
  TOwned<TPersistent> own_;                      // a prototype that is no component
  TComponentLink component_;                     // one that is
  TComponentLink root_;                          // takes the place of a prototype that can't be made
  TStreamShape* whole_ = nullptr;                // that of which the prototype is a part,
  const TPropInfo* asPart_ = nullptr;            // by this property
  bool isScratch_ = false;                       // the prototype is ours, or a part of what is
  TLoading loading_;                             // of a prototype that is read into
  bool isTried_ = false;
  std::optional<std::vector<std::string>> defined_;
};

/// The shapes of all classes that one reading or writing meets.
class TStreamShapes {
 public:
  TStreamShape& Of(const TClass& type);
  /// The root that is read into.
  TStreamShape& OfRoot(TComponent& root);
  /// A part of the prototype of `whole`.
  TStreamShape& OfPart(TPersistent& part, TStreamShape& whole, const TPropInfo& asPart);
  TStreamShape& OfItems(const TClassOf<TCollectionItem>& itemClass);

 private:
  std::map<const TClass*, std::unique_ptr<TStreamShape>> shapes_;
};

}  // namespace vx
