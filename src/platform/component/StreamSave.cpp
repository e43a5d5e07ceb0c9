#include <algorithm>
#include <new>
#include <vector>

#include "platform/component/ComponentStream.h"
#include "platform/component/Filer.h"
#include "platform/component/NameTable.h"
#include "platform/component/StreamShape.h"

namespace vx {

namespace {

/// An item of a collection, where it stands.
struct TItem {
  const TCollection* Collection = nullptr;
  std::int32_t Index = 0;
  const TCollectionItem* Item = nullptr;
};

class TStreamSave {
 public:
  explicit TStreamSave(TComponent& root) : root_(root) {}

  std::string Run() {
    Object(root_);
    return bytes_.Take();
  }

 private:
  struct TDeeper {
    explicit TDeeper(int& level) : depth(level) {
      if (++depth > kMaxStreamDepth)
        throw EWriteError("it is nested deeper than " + std::to_string(kMaxStreamDepth) + " levels");
    }
    TDeeper(const TDeeper&) = delete;
    TDeeper& operator=(const TDeeper&) = delete;
    ~TDeeper() { --depth; }
    int& depth;
  };

  /// Defined properties: those of one object, below its prefix.
  class TDefinedWriter final : public TFiler {
   public:
    TDefinedWriter(TStreamSave& save, const TStreamShape& shape, const std::string& prefix)
        : save_(save), shape_(shape), prefix_(prefix) {}
    void DefineProperty(std::string_view name, const TReadProc&, const TWriteProc& write, bool hasData) override {
      if (!hasData) return;
      if (!IsStreamIdentifier(name)) throw EWriteError("'" + std::string(name) + "' is not a valid property name");
      Begin(name);
      save_.Name(prefix_, name);
      TWriter writer(save_.bytes_, save_.depth_);
      isWriting_ = true;
      write(writer);
      isWriting_ = false;
      writer.Finish();
    }

   private:
    void Begin(std::string_view name) {
      if (isWriting_) throw EWriteError("it defines " + std::string(name) + " while it is written");
      save_.defined_ = name;
      save_.property_ = save_.defined_;
      bool isTaken = shape_.Find(name) >= 0;
      for (const std::string& each : names_) isTaken = isTaken || IsSameName(each, name);
      if (isTaken) throw EWriteError("there are two properties of that name");
      names_.emplace_back(name);
    }

    TStreamSave& save_;
    const TStreamShape& shape_;
    const std::string& prefix_;
    std::vector<std::string> names_;
    bool isWriting_ = false;
  };

  /// The objects whose properties are being written, from the innermost one out.
  struct THolder {
    const TPersistent& Object;
    const THolder* Outer;
  };

  // -- Objects --------------------------------------------------------------------------------------------------------

  void Object(TComponent& component) {
    const TMemoryKeeper<TComponent> keep(&component);  // a getter may free it
    const TWriting writing(component);
    try {
      const TDeeper deeper(depth_);
      CheckClass(component);
      CheckName(component);
      bytes_.Name(component.ClassName());
      bytes_.Name(component.Name());
      component_ = &component;
      Properties(component, shapes_.Of(component.ClassType()), {}, nullptr);
      bytes_.Byte(skEnd);
    } catch (const EAbort&) {
      throw;
    } catch (const EWriteError& error) {
      Fail(component, error.Message());
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      Fail(component, error.what());
    }
    const TDeeper deeper(depth_);
    // Who comes meanwhile isn't written: there might be no end of them.
    const std::int32_t count = component.ComponentCount();
    for (std::int32_t i = 0; i < count && i < component.ComponentCount(); ++i) Object(*component.Components(i));
    bytes_.Byte(skEnd);
  }

  [[noreturn]] void Fail(const TComponent& component, const std::string& reason) const {
    std::string path = component.GetNamePath();
    for (const TComponent* at = &component; at != &root_ && at->Owner() != nullptr; at = at->Owner())
      path = at->Owner()->GetNamePath() + "." + path;
    if (!property_.empty()) path += "." + std::string(property_);
    throw EWriteError(path + ": " + reason);
  }

  void CheckClass(const TComponent& component) {
    property_ = {};
    const TClass& type = component.ClassType();
    if (&type == checked_) return;
    if (!IsStreamIdentifier(type.Name()) || type.Name().size() > kMaxStreamName)
      throw EWriteError("a class named '" + type.Name() + "' can't be written");
    if (&component == &root_) return;
    if (GetClass(type.Name()) != &type)
      throw EWriteError("class " + type.Name() + " is not registered, so nobody could read it");
    checked_ = &type;
  }

  void CheckName(const TComponent& component) const {
    const std::string& name = component.Name();
    if (name.size() > kMaxStreamName)
      throw EWriteError("a name of " + std::to_string(name.size()) + " characters is longer than " +
                        std::to_string(kMaxStreamName));
    if (&component == &root_ || name.empty() || component.Owner() == nullptr) return;
    if (component.Owner()->FindComponent(name) != &component)
      throw EWriteError("another component of its owner has that name");
  }

  // -- Properties -----------------------------------------------------------------------------------------------------

  /// The published ones, then the defined ones; without the 0 behind them.
  void Properties(TPersistent& object, TStreamShape& shape, const std::string& prefix, const THolder* outer,
                  const TItem& item = {}) {
    const THolder holder{object, outer};
    for (std::size_t i = 0; i < shape.Props().size(); ++i) {
      property_ = shape.Props()[i].Info->Name;
      Property(holder, object, shape, static_cast<std::int32_t>(i), prefix);
      CheckThere(item);
    }
    property_ = {};
    TDefinedWriter defined(*this, shape, prefix);
    TFiler::Define(object, defined);
    CheckThere(item);
    property_ = {};
  }

  /// A getter may have freed what is being written.
  void CheckThere(const TItem& item) const {
    if (component_->IsBeingFreed()) throw EWriteError("the component has been freed while it was written");
    if (item.Collection == nullptr) return;
    if (item.Index >= item.Collection->Count() || item.Collection->Items(item.Index) != item.Item)
      throw EWriteError("the collection has changed while it was written");
  }

  void Property(const THolder& holder, TPersistent& object, TStreamShape& shape, std::int32_t prop,
                const std::string& prefix) {
    const TStreamProp& known = shape.Props()[static_cast<std::size_t>(prop)];
    const TPropInfo& info = *known.Info;
    const bool hasOwnProperties = known.Role == TStreamRole::Part || known.Role == TStreamRole::Collection;
    if (info.IsReadOnly() && !hasOwnProperties) return;
    if (info.Stored != nullptr && !info.Stored(object)) return;
    const TPropValue value = info.Get(object);
    if (hasOwnProperties) {
      TObject* const part = std::get<TObject*>(value);
      if (known.Role == TStreamRole::Collection)
        Items(holder, As<TCollection>(part), shape, prop, prefix);
      else if (auto* const persistent = As<TPersistent>(part); persistent != nullptr && !IsBeingWritten(holder, part))
        Properties(*persistent, PartShape(*persistent, shape, prop), PrefixOf(prefix, info.Name), &holder);
      return;
    }
    if (IsDefaultValue(info, value) && (info.Default || shape.IsFreshEmpty(prop))) return;
    Value(info, value, prefix);
  }

  /// A part that leads back to what it is a part of has been written there already.
  static bool IsBeingWritten(const THolder& holder, const TObject* object) {
    for (const THolder* at = &holder; at != nullptr; at = at->Outer)
      if (&at->Object == object) return true;
    return false;
  }

  static std::string PrefixOf(const std::string& prefix, const std::string& name) {
    if (prefix.size() + name.size() >= kMaxStreamName) FailPath();
    return prefix + name + ".";
  }
  [[noreturn]] static void FailPath() {
    throw EWriteError("its path is longer than " + std::to_string(kMaxStreamName) + " characters");
  }

  /// Of what stands there now: it may be of another class than in a fresh object.
  TStreamShape& PartShape(TPersistent& part, TStreamShape& shape, std::int32_t prop) {
    TStreamShape* const fresh = shape.Part(prop);
    return fresh != nullptr && &fresh->Type() == &part.ClassType() ? *fresh : shapes_.Of(part.ClassType());
  }

  void Items(const THolder& holder, TCollection* collection, TStreamShape& shape, std::int32_t prop,
             const std::string& prefix) {
    if (collection == nullptr || IsBeingWritten(holder, collection)) return;
    const TMemoryKeeper<TCollection> keep(collection);
    if (collection->Count() == 0 && shape.IsFreshEmpty(prop)) return;
    const THolder inner{*collection, &holder};
    const std::string_view name = property_;
    Name(prefix, name);
    const TDeeper deeper(depth_);
    bytes_.Kind(skCollection);
    TStreamShape& items = shapes_.OfItems(collection->ItemClass());
    for (std::int32_t i = 0; i < collection->Count(); ++i) {
      bytes_.Byte(kStreamItem);
      TCollectionItem& item = *collection->Items(i);
      Properties(item, items, {}, &inner, {collection, i, &item});
      bytes_.Byte(skEnd);
      property_ = name;
    }
    bytes_.Kind(skEnd);
  }

  void Name(const std::string& prefix, std::string_view name) {
    if (prefix.size() + name.size() > kMaxStreamName) FailPath();
    bytes_.Name(prefix, name);
  }

  // -- Values ---------------------------------------------------------------------------------------------------------

  void Value(const TPropInfo& info, const TPropValue& value, const std::string& prefix) {
    if (info.Kind == tkMethod) return Handler(std::get<TAnyEvent>(value), prefix);
    Name(prefix, property_);
    TWriter writer(bytes_, depth_);
    switch (info.Kind) {
      case tkInteger:
        return Integer(writer, info, std::get<std::int64_t>(value));
      case tkChar: {
        const auto character = static_cast<char>(std::get<std::int64_t>(value));
        return writer.WriteString({&character, 1});
      }
      case tkEnumeration:
        return writer.WriteIdent(MemberName(info, std::get<std::int64_t>(value)));
      case tkSet:
        return Members(info, static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
      case tkFloat:
        return writer.WriteFloat(std::get<double>(value));
      case tkString:
        return writer.WriteString(std::get<std::string>(value));
      case tkClass:
        return Reference(std::get<TObject*>(value));
      case tkVariant:
        return writer.WriteVariant(std::get<Variant>(value));
      default:
        return writer.WriteInteger(std::get<std::int64_t>(value));
    }
  }

  static void Integer(TWriter& writer, const TPropInfo& info, std::int64_t value) {
    const std::string name = info.Names != nullptr ? info.Names->NameOf(value) : std::string();
    if (name.empty())
      writer.WriteInteger(value);
    else
      writer.WriteIdent(name);
  }

  static std::string_view MemberName(const TPropInfo& info, std::int64_t ordinal) {
    if (ordinal < 0 || ordinal > info.Greatest)
      throw EWriteError(std::to_string(ordinal) + " is no value of " + info.TypeName());
    return info.Enum->Names[static_cast<std::size_t>(ordinal)];
  }

  void Members(const TPropInfo& info, std::uint64_t bits) {
    bytes_.Kind(skSet);
    for (std::size_t i = 0; i < 64; ++i) {
      if ((bits >> i & 1u) == 0) continue;
      if (i >= info.Enum->Names.size())
        throw EWriteError("a member with number " + std::to_string(i) + " has no name in " + info.TypeName());
      bytes_.Name(info.Enum->Names[i]);
    }
    bytes_.Name({});
  }

  /// A handler that the root doesn't publish has no name, and is left out.
  void Handler(const TAnyEvent& handler, const std::string& prefix) {
    const std::string name = handler ? MethodName(&root_, handler) : "nil";
    if (name.empty()) return;
    Name(prefix, property_);
    TWriter(bytes_, depth_).WriteIdent(name);
  }

  // -- References -----------------------------------------------------------------------------------------------------

  void Reference(const TObject* object) {
    if (object == nullptr) return bytes_.Ident("nil");
    const auto* const component = As<TComponent>(object);
    if (component == nullptr) throw EWriteError("a " + object->ClassName() + " can't be referred to by a name");
    const std::string path = PathTo(*component);
    if (path.size() > kMaxStreamName) throw EWriteError("the path " + path + " is too long");
    bytes_.Ident(path);
  }

  std::string PathTo(const TComponent& component) const {
    std::string path;
    const TComponent* at = &component;
    for (; at != &root_; at = at->Owner()) {
      if (at->Name().empty()) throw EWriteError("it refers to a " + at->ClassName() + " without a name");
      path = path.empty() ? at->Name() : at->Name() + "." + path;
      if (at->Owner() == nullptr) break;
    }
    if (at == &root_ && !path.empty()) return path;
    if (at == &root_) path = root_.Name();
    if (path.empty()) throw EWriteError("it refers to the root, a " + root_.ClassName() + " without a name");
    CheckOutside(path);
    return path;
  }

  /// Reading looks below the root first.
  void CheckOutside(const std::string& path) const {
    const std::string first = path.substr(0, path.find('.'));
    if (root_.FindComponent(first) != nullptr)
      throw EWriteError("the name " + first + " stands for a component outside and for one inside " +
                        root_.GetNamePath());
  }

  TComponent& root_;
  TStreamShapes shapes_;
  TStreamBytes bytes_;
  int depth_ = 0;
  const TComponent* component_ = nullptr;  // what is being written,
  std::string_view property_;              // and which property, for messages;
  std::string defined_;                    // its name, where that isn't ours
  const TClass* checked_ = nullptr;
};

}  // namespace

std::string ComponentToBinary(TComponent& root) { return TStreamSave(root).Run(); }

}  // namespace vx
