#include "platform/component/StreamPlan.h"

#include <cmath>
#include <limits>
#include <new>

#include "platform/component/Filer.h"
#include "platform/runtime/Strings.h"

namespace vx {

namespace {

std::string_view TakeFirst(std::string_view& path) {
  const std::size_t point = path.find('.');
  const std::string_view first = path.substr(0, point);
  path.remove_prefix(point == std::string_view::npos ? path.size() : point + 1);
  return first;
}

TComponent* FindLive(TComponent* at, std::string_view path) {
  while (at != nullptr && !path.empty()) at = at->FindComponent(TakeFirst(path));
  return at;
}

/// The properties that one object has been given so far.
class TGiven {
 public:
  /// False if it was given before. `prop` is -1 for what isn't simply a published property.
  bool Add(std::int32_t prop, std::string_view path) {
    if (prop >= 0 && prop < 64) {
      const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned>(prop);
      if ((simple_ & bit) != 0) return false;
      simple_ |= bit;
      return true;
    }
    for (const std::string_view other : others_)
      if (IsSameName(other, path)) return false;
    others_.push_back(path);
    return true;
  }

 private:
  std::uint64_t simple_ = 0;
  std::vector<std::string_view> others_;
};

}  // namespace

TPlacedReason PlacedReason(const std::exception& error, std::size_t begin, std::size_t end) {
  const auto* const ours = dynamic_cast<const EReadError*>(&error);
  if (ours == nullptr || ours->Place().Line != 0 || ours->Place().Offset < begin || ours->Place().Offset > end)
    return {begin, error.what()};
  return {static_cast<std::size_t>(ours->Place().Offset), ours->Reason()};
}

// -- The check --------------------------------------------------------------------------------------------------------

class TStreamCheck {
 public:
  TStreamCheck(TStreamPlan& plan, TStreamCursor& cursor) : plan_(plan), cursor_(cursor) {}

  void Run() {
    try {
      Object(nullptr, 0);
      cursor_.ExpectEnd();
      for (TStreamPlan::TReference& reference : plan_.references_) Resolve(reference);
      if (plan_.isInto_) plan_.Root();
    } catch (const EReadError&) {
      throw;
    } catch (const EAbort&) {
      throw;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {  // of application code
      Fail(at_, error.what());
    }
  }

 private:
  [[noreturn]] void Fail(std::size_t offset, const std::string& reason) { cursor_.Fail(offset, reason); }

  static std::string NameOf(const TStreamShape& shape, const TPropInfo& info) {
    return shape.Type().Name() + "." + info.Name;
  }

  TStreamShape& ShapeOf(std::size_t offset, std::string_view className) {
    if (lastShape_ != nullptr && lastShape_->Type().Name() == className) return *lastShape_;
    const TClass* const type = GetClass(className);
    if (type == nullptr) Fail(offset, "unknown class: " + std::string(className));
    if (!type->InheritsFrom(TComponent::StaticClass()) || type->Factory() == nullptr)
      Fail(offset, "objects of class " + type->Name() + " can't be made by a stream");
    return *(lastShape_ = &plan_.shapes_.Of(*type));
  }

  TStreamShape& RootShape(std::size_t offset, std::string_view className) {
    if (!plan_.isInto_) return ShapeOf(offset, className);
    TComponent& root = plan_.Root();
    for (const TClass* type = &root.ClassType(); type != nullptr; type = type->Ancestor())
      if (IsSameName(type->Name(), className)) return plan_.shapes_.OfRoot(root);
    Fail(offset, "the stream holds a " + std::string(className) + ", which " + root.GetNamePath() + ", a " +
                     root.ClassName() + ", is not");
  }

  void Object(const TStreamShape* owner, std::uint32_t ownerIndex) {
    const TStreamCursor::TDeeper deeper(cursor_);
    const std::size_t begin = at_ = cursor_.Offset();
    const std::string_view className = cursor_.Identifier(false);
    TStreamShape& shape = owner == nullptr ? RootShape(begin, className) : ShapeOf(begin, className);
    const std::size_t nameOffset = cursor_.Offset();
    const std::string_view name = cursor_.Identifier(true);
    const auto index = static_cast<std::uint32_t>(plan_.objects_.size());
    if (index == std::numeric_limits<std::uint32_t>::max()) Fail(begin, "too many objects");
    plan_.objects_.push_back({name, ownerIndex, &shape, cursor_.Offset(), {}});
    CheckName(nameOffset, index, name);
    Properties(shape, index, true);
    while (!cursor_.TakeEnd()) Object(&shape, index);
  }

  void CheckName(std::size_t offset, std::uint32_t index, std::string_view name) {
    if (name.empty()) return;
    const TStreamObject& object = plan_.objects_[index];
    const bool isRoot = index == 0;
    bool isFree = true;
    if (!isRoot) isFree = plan_.Enter(index);
    if (plan_.isInto_ && isRoot && plan_.Root().Owner() != nullptr) {
      const TComponent* const other = plan_.Root().Owner()->FindComponent(name);
      isFree = other == nullptr || other == &plan_.Root();
    } else if (plan_.isInto_ && !isRoot && object.Owner == 0) {
      isFree = isFree && plan_.Root().FindComponent(name) == nullptr;
    }
    if (!isFree) Fail(offset, "a component named " + std::string(name) + " already exists");
  }

  void Properties(TStreamShape& shape, std::uint32_t index, bool isComponent) {
    TGiven given;
    std::int32_t expected = 0;
    for (;;) {
      const std::size_t begin = at_ = cursor_.Offset();
      const std::string_view path = cursor_.Path(true);
      if (path.empty()) return;
      const bool isSimple = path.find('.') == std::string_view::npos;
      const std::int32_t prop = isSimple ? shape.Find(path, expected) : -1;
      if (prop >= 0) expected = prop + 1;
      if (!given.Add(prop, path)) Fail(begin, shape.Type().Name() + "." + std::string(path) + " is given twice");
      if (isComponent && IsSameName(path, "Name"))
        Fail(begin, "the name of a component stands beside its class, not among its properties");
      Property(shape, index, path, prop, begin);
    }
  }

  void Property(TStreamShape& shape, std::uint32_t index, std::string_view path, std::int32_t prop, std::size_t begin) {
    if (path.find('.') != std::string_view::npos) {
      const std::string_view head = TakeFirst(path);
      const std::int32_t holder = shape.Find(head);
      if (holder < 0) FailUnknown(shape, head, begin);
      TStreamShape* part = nullptr;
      if (shape.Props()[static_cast<std::size_t>(holder)].Role == TStreamRole::Part) part = shape.Part(holder);
      if (part == nullptr) Fail(begin, shape.Type().Name() + "." + std::string(head) + " has no properties of its own");
      Property(*part, index, path, path.find('.') == std::string_view::npos ? part->Find(path) : -1, begin);
    } else if (prop >= 0) {
      Value(shape, index, prop, begin);
    } else if (shape.Defines(path)) {
      Defined(shape, path);
    } else {
      FailUnknown(shape, path, begin);
    }
  }

  /// Its function alone knows what it takes, so it is tried.
  void Defined(TStreamShape& shape, std::string_view name) {
    const std::size_t begin = cursor_.Offset();
    cursor_.SkipValue();
    try {
      shape.Rehearse(name, plan_.Stream(), begin);
    } catch (const EAbort&) {
      throw;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      const auto [offset, reason] = PlacedReason(error, begin, cursor_.Offset());
      Fail(offset, shape.Type().Name() + "." + std::string(name) + ": " + reason);
    }
  }

  [[noreturn]] void FailUnknown(const TStreamShape& shape, std::string_view name, std::size_t begin) {
    Fail(begin, "unknown property: " + shape.Type().Name() + "." + std::string(name));
  }

  void Value(TStreamShape& shape, std::uint32_t index, std::int32_t prop, std::size_t begin) {
    const TStreamProp& known = shape.Props()[static_cast<std::size_t>(prop)];
    const TPropInfo& info = *known.Info;
    if (known.Role == TStreamRole::Collection) return Items(shape, index, prop);
    if (known.Role == TStreamRole::Part)
      Fail(begin, NameOf(shape, info) + " is an object: give its properties, as " + info.Name +
                      (info.Class().InheritsFrom(TStrings::StaticClass()) ? ".Strings" : ".Name"));
    if (info.IsReadOnly()) Fail(begin, NameOf(shape, info) + " is read-only");
    if (known.Role == TStreamRole::Event) return Handler(shape, info);
    if (known.Role == TStreamRole::Reference) return Reference(shape, index, info);
    Plain(shape, info);
  }

  void Items(TStreamShape& shape, std::uint32_t index, std::int32_t prop) {
    const TPropInfo& info = *shape.Props()[static_cast<std::size_t>(prop)].Info;
    Want(shape, info, cursor_.Peek() == skCollection, "items");
    TStreamShape* const items = shape.Items(prop);
    if (items == nullptr) Fail(cursor_.Offset(), NameOf(shape, info) + " isn't there to take items");
    const TStreamCursor::TDeeper deeper(cursor_);
    cursor_.TakeKind();
    while (cursor_.TakeItem()) Properties(*items, index, false);
  }

  void Want(const TStreamShape& shape, const TPropInfo& info, bool isRight, const std::string& wanted) {
    if (!isRight) Fail(cursor_.Offset(), NameOf(shape, info) + " wants " + wanted + " (" + info.TypeName() + ")");
  }

  void Handler(const TStreamShape& shape, const TPropInfo& info) {
    Want(shape, info, cursor_.Peek() == skIdent, "the name of a handler");
    const std::size_t begin = cursor_.Offset();
    const std::string_view name = cursor_.Ident();
    if (IsSameName(name, "nil")) return;
    TStreamShape& root = *plan_.objects_[0].Shape;
    TPersistent* const publisher = root.Prototype();
    const TAnyEvent handler = publisher == nullptr ? TAnyEvent() : MethodAddress(publisher, name);
    if (!handler) Fail(begin, root.Type().Name() + " has no handler " + std::string(name));
    if (!handler.Fits(*info.Signature))
      Fail(begin, "handler " + std::string(name) + " has other arguments than " + NameOf(shape, info) + " gives");
  }

  void Reference(const TStreamShape& shape, std::uint32_t index, const TPropInfo& info) {
    Want(shape, info, cursor_.Peek() == skIdent, "the name of a component");
    const std::size_t begin = cursor_.Offset();
    const std::string_view path = cursor_.Ident();
    if (plan_.referring_.empty() || plan_.referring_.back() != index) plan_.referring_.push_back(index);
    if (!IsSameName(path, "nil")) plan_.references_.push_back({begin, path, &info, &shape, {}});
  }

  void Resolve(TStreamPlan::TReference& reference) {
    at_ = reference.Offset;
    const TStreamTarget& target = reference.Target = plan_.Find(reference.Path);
    if (!target.IsFound()) Fail(reference.Offset, "there is no component " + std::string(reference.Path));
    const TClass& type = *plan_.ClassOf(target);
    if (!type.InheritsFrom(reference.Info->Class()))
      Fail(reference.Offset, std::string(reference.Path) + " is a " + type.Name() + ", and " +
                                 NameOf(*reference.Shape, *reference.Info) + " wants a " +
                                 reference.Info->Class().Name());
  }

  void Plain(const TStreamShape& shape, const TPropInfo& info) {
    const TStreamKind kind = cursor_.Peek();
    const std::size_t begin = cursor_.Offset();
    const bool isInteger = kind >= skInt8 && kind <= skInt64;
    switch (info.Kind) {
      case tkInteger:
      case tkInt64:
        if (info.Names != nullptr && kind == skIdent) return Named(shape, info);
        Want(shape, info, isInteger, "a whole number");
        Ordinal(shape, info);
        break;
      case tkChar:
        Want(shape, info, isInteger || kind == skShortText, "a character");
        if (isInteger)
          Ordinal(shape, info);
        else if (cursor_.Text().size() != 1)
          Fail(begin, NameOf(shape, info) + " wants a text of one byte (" + info.TypeName() + ")");
        break;
      case tkEnumeration:
        Want(shape, info, kind == skIdent, "the name of a value");
        Member(shape, info, begin, cursor_.Ident());
        break;
      case tkSet:
        Want(shape, info, kind == skSet, "a set");
        Members(shape, info);
        break;
      case tkFloat:
        Want(shape, info, isInteger || kind == skDouble, "a number");
        Float(shape, info);
        break;
      case tkString:
        Want(shape, info, kind == skShortText || kind == skLongText, "a text");
        cursor_.Text();
        break;
      default:
        TReader(plan_.Stream(), begin).ReadVariant();
        cursor_.SkipValue();
    }
  }

  void Ordinal(const TStreamShape& shape, const TPropInfo& info) {
    const std::size_t begin = cursor_.Offset();
    const std::int64_t value = cursor_.Int();
    if (value < info.Least || value > info.Greatest)
      Fail(begin,
           std::to_string(value) + " is out of the range of " + NameOf(shape, info) + " (" + info.TypeName() + ")");
  }

  void Named(const TStreamShape& shape, const TPropInfo& info) {
    const std::size_t begin = cursor_.Offset();
    const std::string_view name = cursor_.Ident();
    if (!info.Names->ValueOf(name)) FailValue(shape, info, begin, name);
  }

  void Float(const TStreamShape& shape, const TPropInfo& info) {
    const std::size_t begin = cursor_.Offset();
    const double value = cursor_.Peek() == skDouble ? cursor_.Double() : static_cast<double>(cursor_.Int());
    if (info.IsSingle && std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max())
      Fail(begin, "the number is out of the range of " + NameOf(shape, info) + " (Single)");
  }

  void Member(const TStreamShape& shape, const TPropInfo& info, std::size_t begin, std::string_view name) {
    if (GetEnumValue(*info.Enum, name) < 0) FailValue(shape, info, begin, name);
  }

  [[noreturn]] void FailValue(const TStreamShape& shape, const TPropInfo& info, std::size_t begin,
                              std::string_view name) {
    Fail(begin, std::string(name) + " is no value of " + NameOf(shape, info) + " (" + info.TypeName() + ")");
  }

  void Members(const TStreamShape& shape, const TPropInfo& info) {
    cursor_.TakeKind();
    for (;;) {
      const std::size_t begin = cursor_.Offset();
      const std::string_view name = cursor_.Identifier(true);
      if (name.empty()) return;
      Member(shape, info, begin, name);
    }
  }

  TStreamPlan& plan_;
  TStreamCursor& cursor_;
  std::size_t at_ = 0;  // of what is being checked
  TStreamShape* lastShape_ = nullptr;
};

// -- TStreamPlan ------------------------------------------------------------------------------------------------------

TStreamPlan::TStreamPlan(std::string_view stream, TComponent* root, const TStreamOptions& options)
    : stream_(stream.substr(0, static_cast<std::size_t>(TStreamCursor::SizeOf(stream)))),
      isInto_(root != nullptr),
      root_(root),
      options_(options) {
  TStreamCursor cursor(stream);
  cursor.Open();
  begin_ = cursor.Offset();
  TStreamCheck(*this, cursor).Run();
}

TStreamCursor TStreamPlan::Begin() const {
  TStreamCursor cursor(stream_);
  cursor.Seek(begin_);
  return cursor;
}

TComponent& TStreamPlan::Root() const {
  TComponent* const root = root_.Component();
  if (root == nullptr) throw EReadError(TStreamPlace{begin_}, "the component that is read into has been freed");
  return *root;
}

/// False if its owner has another component of that name.
bool TStreamPlan::Enter(std::uint32_t object) {
  const std::uint32_t owner = objects_[object].Owner;
  if (Child(owner, objects_[object].Name) >= 0) return false;
  byName_.Add(HashOf(owner, objects_[object].Name), object + 1);
  return true;
}

std::uint64_t TStreamPlan::HashOf(std::uint32_t owner, std::string_view name) const {
  return HashOfName(reinterpret_cast<std::uintptr_t>(this) + owner * std::uint64_t{0xD6E8FEB86659FD93}, name);
}

std::int64_t TStreamPlan::Child(std::uint32_t owner, std::string_view name) const {
  const std::uint32_t* const found = byName_.Find(HashOf(owner, name), [&](std::uint32_t each) {
    const TStreamObject& object = objects_[each - 1];
    return object.Owner == owner && IsSameName(object.Name, name);
  });
  return found == nullptr ? -1 : std::int64_t{*found} - 1;
}

TStreamTarget TStreamPlan::FindBelowRoot(std::string_view path) const {
  std::int64_t at = 0;
  std::string_view rest = path;
  while (at >= 0 && !rest.empty()) at = Child(static_cast<std::uint32_t>(at), TakeFirst(rest));
  if (at >= 0) return {at};
  return {-1, TComponentLink(FindLive(root_.Component(), path))};
}

TStreamTarget TStreamPlan::Find(std::string_view path) const {
  if (const TStreamTarget found = FindBelowRoot(path); found.IsFound()) return found;
  std::string_view rest = path;
  const std::string_view first = TakeFirst(rest);
  if (IsSameName(first, objects_[0].Name)) return FindBelowRoot(rest);
  if (!options_.FindRoot) return {};
  return {-1, TComponentLink(FindLive(options_.FindRoot(first), rest))};
}

const TStreamTarget& TStreamPlan::TargetAt(std::size_t offset) {
  while (references_[nextReference_].Offset < offset) ++nextReference_;
  return references_[nextReference_].Target;
}

const TClass* TStreamPlan::ClassOf(const TStreamTarget& target) const {
  const TComponent* const live = target.Live.Component();
  return live != nullptr ? &live->ClassType() : &objects_[static_cast<std::size_t>(target.Object)].Shape->Type();
}

TOwned<TComponent> TStreamPlan::MakeComponent(std::uint32_t object) const {
  const TClass& type = objects_[object].Shape->Type();
  TOwned<TObject> made(type.Factory()());
  auto* const component = As<TComponent>(made.get());
  if (component == nullptr) throw EInvalidOperation("the class " + type.Name() + " has made no component");
  static_cast<void>(made.release());
  return TOwned<TComponent>(component);
}

std::string TStreamPlan::PathOf(std::uint32_t object) const {
  const TStreamObject& at = objects_[object];
  const std::string own = at.Name.empty() ? at.Shape->Type().Name() : std::string(at.Name);
  return object == 0 ? own : PathOf(at.Owner) + "." + own;
}

}  // namespace vx
