// Published.h: what a class publishes of itself: properties, events, methods that may serve as handlers.
//
// One table per class, written once next to its implementation, serves streams, property lists, settings and the
// palette:
//
//   const TClass& TBell::StaticClass() {
//     static const TClass info = TClassBuilder<TBell>("TBell", TComponent::StaticClass())
//         .Property("Loud", &TBell::GetLoud, &TBell::SetLoud).Default(true)
//         .Property("Shape", &TBell::GetShape, &TBell::SetShape).Default(bsRound).Stored(&TBell::IsShapeStored)
//         .Property("Count", &TBell::GetCount)                      // no setter: read-only
//         .Property("OnRing", &TBell::OnRing)                       // an event: its slot, or a member that answers it
//         .Publish("Tag").Default(7)                                // an ancestor's, with a default of its own
//         .Method("DoorOpen", &TBell::DoorOpen)
//         .Build();
//     return info;
//   }
//
//   GetPropInfo(bell, "loud")->Name;              // "Loud"
//   SetEnumProp(bell, "Shape", "bsSquare");
//   GetOrdProp(bell, "Loud");                     // 1
//
// A getter is a const or plain member function, a data member (which also writes), or any callable of T&; a setter
// takes the value or a reference to it. Both may belong to a base class of T. The type of the property is what the
// getter answers:
//
//   bool, a registered enumeration        tkEnumeration (ordinal)         std::string       tkString
//   integers up to 32 bits, TColor        tkInteger (ordinal)             T*, of TObject    tkClass
//   64-bit integers                       tkInt64 (ordinal)               TEvent&           tkMethod
//   char                                  tkChar (ordinal)                Variant           tkVariant
//   TSetOf<a registered enumeration>      tkSet (ordinal: its bits)       double, float     tkFloat
//
// What a T* holds follows from T. A component is referred to; who refers to it must not touch it once it is gone
// (TComponentRef in Component.h). Any other object is a part: a TOwned<T> that the class makes for itself and publishes
// by its getter alone. A stream writes a reference as a name, of a part the properties, of a collection the items.
//
// An ordinal without a declared default is always written to a stream, other values where they aren't empty.
//
// Errors. An unknown name, a property of another kind, a write to a read-only one, a text that names no member and a
// number outside the type raise EPropertyError, which names class, property and value. What a setter raises passes
// through.
//
// Cost: a name is found by a walk over the tables of the class and its ancestors; hold the TPropInfo, which lives as
// long as the program, where it counts.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <variant>
#include <vector>

#include "platform/component/EnumInfo.h"
#include "platform/component/Event.h"
#include "platform/runtime/Object.h"
#include "platform/runtime/Variant.h"

namespace vx {

class TComponent;
class TCollectionItem;

class EPropertyError : public TNamedException<EPropertyError> {
 public:
  static constexpr const char* kName = "EPropertyError";
  using TNamedException::TNamedException;
};

enum TTypeKind : std::uint8_t {
  tkUnknown,
  tkInteger,
  tkChar,
  tkEnumeration,
  tkFloat,
  tkString,
  tkSet,
  tkClass,
  tkMethod,
  tkVariant,
  tkInt64,
};
template <>
struct TEnumInfo<TTypeKind> {
  static constexpr std::string_view kTypeName = "TTypeKind";
  static constexpr std::string_view kPrefix = "tk";
  static constexpr std::string_view kNames[] = {"tkUnknown", "tkInteger", "tkChar", "tkEnumeration",
                                                "tkFloat",   "tkString",  "tkSet",  "tkClass",
                                                "tkMethod",  "tkVariant", "tkInt64"};
};

/// A property's value on its way: ordinals and sets, floats, texts, objects, handlers, variants.
using TPropValue = std::variant<std::int64_t, double, std::string, TObject*, TAnyEvent, Variant>;

/// One published property, as seen from the class that was asked.
struct TPropInfo {
  std::string Name;
  TTypeKind Kind = tkUnknown;
  const TEnumTable* Enum = nullptr;     ///< of tkEnumeration and tkSet
  const TNumberNames* Names = nullptr;  ///< of a tkInteger of which some numbers have a name
  std::int64_t Least = 0;               ///< the range of an ordinal
  std::int64_t Greatest = 0;
  const TClass& (*Class)() = nullptr;         ///< of tkClass
  const std::type_info* Signature = nullptr;  ///< of tkMethod

  std::function<TPropValue(TObject&)> Get;
  std::function<void(TObject&, const TPropValue&)> Set;  ///< empty for a read-only property
  std::function<bool(TObject&)> Stored;                  ///< empty: always
  std::optional<TPropValue> Default;
  bool IsSingle = false;     ///< of tkFloat: a float, which takes no finite number beyond its range
  bool NeverStored = false;  ///< no stream keeps it, whatever the object
  bool Hidden = false;       ///< known to descendants, which may publish it; not listed itself

  std::string TypeName() const;
  bool IsOrdinal() const;
  bool IsReadOnly() const { return Set == nullptr; }
  bool IsEvent() const { return Kind == tkMethod; }

  std::string GivenTypeName;  ///< where the C++ type doesn't tell it: "TColor", "TDateTime", "TKeyEvent"
};

/// What one class adds to its ancestors; see TClassBuilder.
class TPropertyTable {
 public:
  struct TMethodEntry {
    std::string Name;
    std::function<TAnyEvent(TObject&)> Bind;
  };
  std::vector<TPropInfo> Properties;
  std::vector<TMethodEntry> Methods;
};

// -- Finding ---------------------------------------------------------------------------------------------------------

/// The property of that name, letter case ignored; null if the class publishes none.
const TPropInfo* GetPropInfo(const TClass& type, std::string_view name);
/// ENilAccess for a null object.
const TPropInfo* GetPropInfo(const TObject* object, std::string_view name);
/// All published properties in declared order, the ancestors' first. One that is published again keeps its first place.
std::vector<const TPropInfo*> GetPropList(const TClass& type);
std::vector<const TPropInfo*> GetPropList(const TObject* object);

/// How the functions below are told a property: by name or by a TPropInfo that was found before.
class TPropRef {
 public:
  TPropRef(const char* name) : name_(name) {}         // NOLINT
  TPropRef(std::string_view name) : name_(name) {}    // NOLINT
  TPropRef(const std::string& name) : name_(name) {}  // NOLINT
  TPropRef(const TPropInfo* info) : info_(info) {}    // NOLINT
  TPropRef(const TPropInfo& info) : info_(&info) {}   // NOLINT
  /// Raises EPropertyError "Unknown property: TBell.Foo", ENilAccess for a null object.
  const TPropInfo& In(const TObject* object) const;

 private:
  std::string_view name_;
  const TPropInfo* info_ = nullptr;
};

// -- Reading and writing ---------------------------------------------------------------------------------------------

TPropValue GetPropValue(const TObject* object, const TPropRef& property);
void SetPropValue(TObject* object, const TPropRef& property, const TPropValue& value);

/// Ordinals of all kinds, and sets as bits.
std::int64_t GetOrdProp(const TObject* object, const TPropRef& property);
void SetOrdProp(TObject* object, const TPropRef& property, std::int64_t value);
/// Enumerations by the member's name, sets as "[a,b]".
std::string GetEnumProp(const TObject* object, const TPropRef& property);
void SetEnumProp(TObject* object, const TPropRef& property, std::string_view text);
std::string GetStrProp(const TObject* object, const TPropRef& property);
void SetStrProp(TObject* object, const TPropRef& property, std::string value);
double GetFloatProp(const TObject* object, const TPropRef& property);
void SetFloatProp(TObject* object, const TPropRef& property, double value);
TObject* GetObjectProp(const TObject* object, const TPropRef& property);
/// The value must be null or of the property's class.
void SetObjectProp(TObject* object, const TPropRef& property, TObject* value);
TAnyEvent GetMethodProp(const TObject* object, const TPropRef& property);
/// The handler must be unassigned or of the property's signature.
void SetMethodProp(TObject* object, const TPropRef& property, const TAnyEvent& value);
Variant GetVariantProp(const TObject* object, const TPropRef& property);
void SetVariantProp(TObject* object, const TPropRef& property, const Variant& value);

// -- What a stream asks ----------------------------------------------------------------------------------------------

/// What the property's stored rule says of this object; true without one.
bool IsStoredProp(const TObject* object, const TPropRef& property);
/// True if the value is the declared default. Without one: an empty text, 0.0, no object and no handler are defaults,
/// an ordinal never is.
bool IsDefaultProp(const TObject* object, const TPropRef& property);
/// The same of a value that was read already.
bool IsDefaultValue(const TPropInfo& info, const TPropValue& value);

// -- Handlers by name ------------------------------------------------------------------------------------------------

/// The object's published method of that name as a handler, letter case ignored; unassigned if there is none.
TAnyEvent MethodAddress(TObject* object, std::string_view name);
/// The name of the object's published method that `handler` calls on it; empty if it is none of these.
std::string MethodName(TObject* object, const TAnyEvent& handler);

// -- Building --------------------------------------------------------------------------------------------------------

namespace published {

template <class>
inline constexpr bool kIsSet = false;
template <class E>
inline constexpr bool kIsSet<TSetOf<E>> = true;

[[noreturn]] void RaiseWrongClass(const TObject& object, const std::string& property, const std::string& wanted);

template <class Signature>
const std::type_info& SignatureOf(const TEvent<Signature>*) {
  return typeid(Signature);
}
template <class Signature>
TEvent<Signature> EventAs(const TAnyEvent& any, const TEvent<Signature>*) {
  return any.As<Signature>();
}

/// Kind, type and range of a property whose getter answers a V.
template <class V>
void Describe(TPropInfo& info) {
  if constexpr (CNumberEnum<V>) {
    Describe<std::underlying_type_t<V>>(info);
    info.Names = &NumberNamesOf<V>();
    info.GivenTypeName = TEnumInfo<V>::kTypeName;
  } else if constexpr (std::is_same_v<V, bool> || std::is_enum_v<V>) {
    static_assert(CNamedEnum<V>, "register the names of the enumeration: TEnumInfo");
    info.Kind = tkEnumeration;
    info.Enum = &EnumTableOf<V>();
    info.Greatest = static_cast<std::int64_t>(info.Enum->Names.size()) - 1;
  } else if constexpr (kIsSet<V>) {
    static_assert(CNamedEnum<typename V::TMember>, "register the names of the enumeration: TEnumInfo");
    info.Kind = tkSet;
    info.Enum = &EnumTableOf<typename V::TMember>();
    info.Greatest = static_cast<std::int64_t>((std::uint64_t{1} << (info.Enum->Names.size() & 63)) - 1);
  } else if constexpr (std::is_integral_v<V>) {
    info.Kind = std::is_same_v<V, char> ? tkChar : sizeof(V) == 8 ? tkInt64 : tkInteger;
    info.Least = static_cast<std::int64_t>(std::numeric_limits<V>::min());
    info.Greatest = sizeof(V) == 8 ? std::numeric_limits<std::int64_t>::max()
                                   : static_cast<std::int64_t>(std::numeric_limits<V>::max());
  } else if constexpr (std::is_floating_point_v<V>) {
    info.Kind = tkFloat;
    info.IsSingle = sizeof(V) == sizeof(float);
    if (info.IsSingle) info.GivenTypeName = "Single";
  } else if constexpr (std::is_same_v<V, std::string>) {
    info.Kind = tkString;
  } else if constexpr (std::is_same_v<V, Variant>) {
    info.Kind = tkVariant;
  } else if constexpr (kIsEvent<V>) {
    info.Kind = tkMethod;
    info.Signature = &SignatureOf(static_cast<const V*>(nullptr));
  } else {
    static_assert(std::is_pointer_v<V> && std::is_base_of_v<TObject, std::remove_cvref_t<std::remove_pointer_t<V>>>,
                  "a property can't have this type");
    info.Kind = tkClass;
    info.Class = &std::remove_cv_t<std::remove_pointer_t<V>>::StaticClass;
  }
}

template <class V>
TPropValue ToValue(const V& value) {
  if constexpr (kIsSet<V>)
    return static_cast<std::int64_t>(value.Bits());
  else if constexpr (std::is_integral_v<V> || std::is_enum_v<V>)
    return static_cast<std::int64_t>(value);
  else if constexpr (std::is_floating_point_v<V>)
    return static_cast<double>(value);
  else if constexpr (std::is_pointer_v<V>)
    return static_cast<TObject*>(const_cast<std::remove_cv_t<std::remove_pointer_t<V>>*>(value));
  else if constexpr (kIsEvent<V>)
    return TAnyEvent(value);
  else
    return value;
}

/// The kind of the value has been checked before.
template <class V>
V FromValue(const TPropValue& value) {
  if constexpr (kIsSet<V>)
    return V::FromBits(static_cast<std::uint64_t>(std::get<std::int64_t>(value)));
  else if constexpr (std::is_integral_v<V> || std::is_enum_v<V>)
    return static_cast<V>(std::get<std::int64_t>(value));
  else if constexpr (std::is_floating_point_v<V>)
    return static_cast<V>(std::get<double>(value));
  else if constexpr (std::is_pointer_v<V>)
    return dynamic_cast<V>(std::get<TObject*>(value));
  else if constexpr (kIsEvent<V>)
    return EventAs(std::get<TAnyEvent>(value), static_cast<const V*>(nullptr));
  else
    return std::get<V>(value);
}

template <class T>
T& Self(TObject& object, const std::string& property) {
  if (&typeid(object) == &typeid(T)) return static_cast<T&>(object);
  T* const self = dynamic_cast<T*>(&object);
  if (self == nullptr) RaiseWrongClass(object, property, T::StaticClass().Name());
  return *self;
}

template <class T>
TClass::TFactory FactoryOf() {
  if constexpr (std::is_abstract_v<T> || std::is_base_of_v<TCollectionItem, T>)
    return nullptr;  // an item is made by its collection
  else if constexpr (requires { new T(static_cast<TComponent*>(nullptr)); })
    return []() -> TObject* { return Make<T>(static_cast<TComponent*>(nullptr)).release(); };
  else if constexpr (requires { new T(); })
    return []() -> TObject* { return Make<T>().release(); };
  else
    return nullptr;
}

/// Puts `value` of whatever type into the default of `info`, checked against its kind; EPropertyError if it doesn't
/// fit.
void PutDefault(TPropInfo& info, TPropValue value, const TEnumTable* enumeration);
/// The ancestor's property as it is before this class says more about it; EPropertyError if there is none.
TPropInfo InheritedProp(const TClass& ancestor, const std::string& type, const std::string& name);

}  // namespace published

/// Builds the class info of T; see the head of this file. The order of the calls is the declared order.
template <class T>
class TClassBuilder {
 public:
  TClassBuilder(std::string name, const TClass& ancestor)
      : name_(std::move(name)), ancestor_(&ancestor), create_(published::FactoryOf<T>()) {}

  /// A property that is only read; or an event slot or data member, which is also written.
  template <class Getter>
  TClassBuilder& Property(std::string name, Getter getter) {
    using TAnswer = std::invoke_result_t<Getter&, T&>;
    AddProperty(std::move(name), getter);
    if constexpr (std::is_lvalue_reference_v<TAnswer> && !std::is_const_v<std::remove_reference_t<TAnswer>> &&
                  (std::is_member_object_pointer_v<Getter> || kIsEvent<std::decay_t<TAnswer>>))
      AddSetter([getter](T& self, std::decay_t<TAnswer> value) { std::invoke(getter, self) = std::move(value); },
                static_cast<std::decay_t<TAnswer>*>(nullptr));
    return *this;
  }
  template <class Getter, class Setter>
  TClassBuilder& Property(std::string name, Getter getter, Setter setter) {
    using V = std::decay_t<std::invoke_result_t<Getter&, T&>>;
    AddProperty(std::move(name), getter);
    if constexpr (!std::is_null_pointer_v<Setter>) {
      static_assert(std::is_invocable_v<Setter&, T&, V>, "the setter doesn't take what the getter answers");
      AddSetter(std::move(setter), static_cast<V*>(nullptr));
    }
    return *this;
  }
  /// An ancestor's property: published here, if it was hidden, and free to get another default or stored rule.
  TClassBuilder& Publish(const std::string& name) {
    Add(published::InheritedProp(*ancestor_, name_, name));
    return *this;
  }

  // -- Said of the property just named -------------------------------------------------------------------------------
  /// A value of the property's type.
  template <class V>
  TClassBuilder& Default(const V& value) {
    const TEnumTable* enumeration = nullptr;
    if constexpr (published::kIsSet<V>)
      enumeration = &EnumTableOf<typename V::TMember>();
    else if constexpr (CNamedEnum<V>)
      enumeration = &EnumTableOf<V>();
    if constexpr (std::is_convertible_v<V, std::string_view>)
      published::PutDefault(Last(), std::string(std::string_view(value)), nullptr);
    else
      published::PutDefault(Last(), published::ToValue(value), enumeration);
    return *this;
  }
  /// Takes an inherited default away: the value is always stored.
  TClassBuilder& NoDefault() {
    Last().Default.reset();
    return *this;
  }
  /// Whether a stream keeps the property where it differs from its default: always (as without this), or never.
  TClassBuilder& Stored(bool always) {
    Last().NeverStored = !always;
    Last().Stored = nullptr;
    if (!always) Last().Stored = [](TObject&) { return false; };
    return *this;
  }
  /// Whether it does is up to the object: a const member function, or a callable of T&, that answers bool.
  template <class Rule>
  requires(std::is_invocable_r_v<bool, Rule&, T&>) TClassBuilder& Stored(Rule rule) {
    Last().NeverStored = false;
    Last().Stored = [rule, name = Last().Name](TObject& object) {
      return static_cast<bool>(std::invoke(rule, published::Self<T>(object, name)));
    };
    return *this;
  }
  /// The name of the type where the C++ type doesn't tell it, as for a double that is a date.
  TClassBuilder& TypeName(std::string name) {
    Last().GivenTypeName = std::move(name);
    return *this;
  }
  /// Not published by this class; a descendant may Publish() it.
  TClassBuilder& Hidden() {
    Last().Hidden = true;
    return *this;
  }

  // -- Said of the class ---------------------------------------------------------------------------------------------
  /// A method that may serve as a handler, known by name.
  template <class R, class C, class... Args>
  TClassBuilder& Method(std::string name, R (C::*method)(Args...)) {
    auto bind = [method, name](TObject& object) -> TAnyEvent {
      return TEvent<R(Args...)>(published::Self<T>(object, name), method);
    };
    table_.Methods.push_back({std::move(name), std::move(bind)});
    return *this;
  }
  /// Objects can't be made by the class info.
  TClassBuilder& Abstract() { return Factory(nullptr); }
  TClassBuilder& Factory(TClass::TFactory create) {
    create_ = create;
    return *this;
  }

  TClass Build() {
    std::shared_ptr<const TPropertyTable> table;
    if (!table_.Properties.empty() || !table_.Methods.empty())
      table = std::make_shared<const TPropertyTable>(std::move(table_));
    return TClass(std::move(name_), ancestor_, create_, std::move(table));
  }

 private:
  TPropInfo& Last() {
    if (table_.Properties.empty()) throw EPropertyError("No property named yet in " + name_);
    return table_.Properties.back();
  }
  void Add(TPropInfo info) { table_.Properties.push_back(std::move(info)); }

  template <class Getter>
  void AddProperty(std::string name, Getter getter) {
    using V = std::decay_t<std::invoke_result_t<Getter&, T&>>;
    TPropInfo info;
    published::Describe<V>(info);
    info.Get = [getter, name](TObject& object) {
      return published::ToValue<V>(std::invoke(getter, published::Self<T>(object, name)));
    };
    info.Name = std::move(name);
    Add(std::move(info));
  }
  template <class Setter, class V>
  void AddSetter(Setter setter, V*) {
    Last().Set = [setter, name = Last().Name](TObject& object, const TPropValue& value) {
      std::invoke(setter, published::Self<T>(object, name), published::FromValue<V>(value));
    };
  }

  std::string name_;
  const TClass* ancestor_;
  TClass::TFactory create_;
  TPropertyTable table_;
};

}  // namespace vx
