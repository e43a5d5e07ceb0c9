#include "platform/component/Published.h"

#include <algorithm>
#include <cmath>

#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

/// What this class itself says of a property; null if it says nothing.
const TPropInfo* FindOwn(const TClass& type, std::string_view name) {
  if (type.Properties() == nullptr) return nullptr;
  for (const TPropInfo& each : type.Properties()->Properties)
    if (CompareText(each.Name, name) == 0) return &each;
  return nullptr;
}

/// What the most derived class that knows it says of a property, hidden ones included.
const TPropInfo* FindProp(const TClass* type, std::string_view name) {
  const TPropInfo* found = nullptr;
  for (; type != nullptr && found == nullptr; type = type->Ancestor()) found = FindOwn(*type, name);
  return found;
}

std::string PathOf(const TObject& object, const TPropInfo& info) { return object.ClassName() + "." + info.Name; }
/// A default is checked before there is an object.
std::string PathOf(const TObject* object, const TPropInfo& info) {
  return object == nullptr ? info.Name : PathOf(*object, info);
}

constexpr std::string_view kValueNames[] = {"an ordinal", "a number", "a text", "an object", "an event", "a variant"};

std::size_t ValueIndexOf(TTypeKind kind) {
  switch (kind) {
    case tkFloat:
      return 1;
    case tkString:
      return 2;
    case tkClass:
      return 3;
    case tkMethod:
      return 4;
    case tkVariant:
      return 5;
    default:
      return 0;
  }
}

[[noreturn]] void RaiseWrongKind(const std::string& path, const TPropInfo& info, std::size_t asked) {
  throw EPropertyError("Property " + path + " is " + std::string(kValueNames[ValueIndexOf(info.Kind)]) + " (" +
                       info.TypeName() + "), not " + std::string(kValueNames[asked]));
}

[[noreturn]] void RaiseBadValue(const std::string& path, const TPropInfo& info, const std::string& value) {
  throw EPropertyError("Invalid value for property " + path + " (" + info.TypeName() + "): " + value);
}

/// A number that isn't NaN or infinite, but would be nothing else in the property.
bool IsBeyond(const TPropInfo& info, double value) {
  return info.IsSingle && std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max();
}

/// What is wrong with a value of the right kind; empty if nothing is.
std::string FaultOf(const TPropInfo& info, const TPropValue& value) {
  if (const auto* const ordinal = std::get_if<std::int64_t>(&value)) {
    if (*ordinal < info.Least || *ordinal > info.Greatest) return std::to_string(*ordinal);
  } else if (const auto* const number = std::get_if<double>(&value)) {
    if (IsBeyond(info, *number)) return FloatToStr(*number);
  } else if (const auto* const object = std::get_if<TObject*>(&value)) {
    if (*object != nullptr && !(*object)->InheritsFrom(info.Class())) return "a " + (*object)->ClassName();
  } else if (const auto* const event = std::get_if<TAnyEvent>(&value)) {
    if (!event->Fits(*info.Signature)) return "a handler with other arguments";
  }
  return {};
}

void CheckValue(const TObject* object, const TPropInfo& info, const TPropValue& value) {
  if (ValueIndexOf(info.Kind) != value.index()) RaiseWrongKind(PathOf(object, info), info, value.index());
  if (const std::string fault = FaultOf(info, value); !fault.empty()) RaiseBadValue(PathOf(object, info), info, fault);
}

template <class V>
V GetAs(const TObject* object, const TPropRef& property) {
  const TPropInfo& info = property.In(object);
  TPropValue value = GetPropValue(object, info);
  if (!std::holds_alternative<V>(value)) RaiseWrongKind(PathOf(*object, info), info, TPropValue(V()).index());
  return std::get<V>(std::move(value));
}

const char* IntegerName(const TPropInfo& info) {
  struct TRange {
    std::int64_t least, greatest;
    const char* name;
  };
  static constexpr TRange ranges[] = {{-128, 127, "ShortInt"},
                                      {0, 255, "Byte"},
                                      {-32768, 32767, "SmallInt"},
                                      {0, 65535, "Word"},
                                      {0, 4294967295, "Cardinal"}};
  for (const TRange& range : ranges)
    if (range.least == info.Least && range.greatest == info.Greatest) return range.name;
  return "Integer";
}

}  // namespace

std::string TPropInfo::TypeName() const {
  if (!GivenTypeName.empty()) return GivenTypeName;
  switch (Kind) {
    case tkInteger:
      return IntegerName(*this);
    case tkChar:
      return "Char";
    case tkEnumeration:
      return std::string(Enum->TypeName);
    case tkSet:
      return "set of " + std::string(Enum->TypeName);
    case tkFloat:
      return "Double";
    case tkString:
      return "String";
    case tkClass:
      return Class().Name();
    case tkMethod:
      return *Signature == typeid(void(TObject*)) ? "TNotifyEvent" : "TEvent";
    case tkVariant:
      return "Variant";
    case tkInt64:
      return "Int64";
    case tkUnknown:
      break;
  }
  return "Unknown";
}

bool TPropInfo::IsOrdinal() const { return Kind != tkUnknown && ValueIndexOf(Kind) == 0; }

// -- Finding ----------------------------------------------------------------------------------------------------------

const TPropInfo* GetPropInfo(const TClass& type, std::string_view name) {
  const TPropInfo* const found = FindProp(&type, name);
  return found == nullptr || found->Hidden ? nullptr : found;
}

const TPropInfo* GetPropInfo(const TObject* object, std::string_view name) {
  return GetPropInfo(Need(object, "object of a property").ClassType(), name);
}

std::vector<const TPropInfo*> GetPropList(const TClass& type) {
  std::vector<const TPropInfo*> list;
  if (type.Ancestor() != nullptr) list = GetPropList(*type.Ancestor());
  if (type.Properties() == nullptr) return list;
  for (const TPropInfo& own : type.Properties()->Properties) {
    const auto there = std::find_if(list.begin(), list.end(),
                                    [&own](const TPropInfo* each) { return CompareText(each->Name, own.Name) == 0; });
    if (there == list.end()) {
      if (!own.Hidden) list.push_back(&own);
    } else if (own.Hidden) {
      list.erase(there);
    } else {
      *there = &own;
    }
  }
  return list;
}

std::vector<const TPropInfo*> GetPropList(const TObject* object) {
  return GetPropList(Need(object, "object of a property").ClassType());
}

const TPropInfo& TPropRef::In(const TObject* object) const {
  const TObject& asked = Need(object, "object of a property");
  if (info_ != nullptr) return *info_;
  const TPropInfo* const info = GetPropInfo(&asked, name_);
  if (info == nullptr) throw EPropertyError("Unknown property: " + asked.ClassName() + "." + std::string(name_));
  return *info;
}

// -- Reading and writing ----------------------------------------------------------------------------------------------

TPropValue GetPropValue(const TObject* object, const TPropRef& property) {
  const TPropInfo& info = property.In(object);
  return info.Get(const_cast<TObject&>(*object));  // a getter may make what it answers on demand
}

void SetPropValue(TObject* object, const TPropRef& property, const TPropValue& value) {
  const TPropInfo& info = property.In(object);
  CheckValue(object, info, value);
  if (info.IsReadOnly()) throw EPropertyError("Property " + PathOf(object, info) + " is read-only");
  info.Set(*object, value);
}

std::int64_t GetOrdProp(const TObject* object, const TPropRef& property) {
  return GetAs<std::int64_t>(object, property);
}
void SetOrdProp(TObject* object, const TPropRef& property, std::int64_t value) {
  SetPropValue(object, property, value);
}

std::string GetEnumProp(const TObject* object, const TPropRef& property) {
  const TPropInfo& info = property.In(object);
  const std::int64_t value = GetOrdProp(object, info);
  if (info.Enum == nullptr)
    throw EPropertyError("Property " + PathOf(*object, info) + " has no names (" + info.TypeName() + ")");
  return info.Kind == tkSet ? SetToText(*info.Enum, static_cast<std::uint64_t>(value)) : GetEnumName(*info.Enum, value);
}

void SetEnumProp(TObject* object, const TPropRef& property, std::string_view text) {
  const TPropInfo& info = property.In(object);
  if (info.Enum == nullptr)
    throw EPropertyError("Property " + PathOf(object, info) + " has no names (" + info.TypeName() + ")");
  std::optional<std::uint64_t> value;
  if (info.Kind == tkSet)
    value = TextToSet(*info.Enum, text);
  else if (const std::int32_t ordinal = GetEnumValue(*info.Enum, text); ordinal >= 0)
    value = static_cast<std::uint64_t>(ordinal);
  if (!value) RaiseBadValue(PathOf(object, info), info, "'" + std::string(text) + "'");
  SetOrdProp(object, info, static_cast<std::int64_t>(*value));
}

std::string GetStrProp(const TObject* object, const TPropRef& property) { return GetAs<std::string>(object, property); }
void SetStrProp(TObject* object, const TPropRef& property, std::string value) {
  SetPropValue(object, property, std::move(value));
}

double GetFloatProp(const TObject* object, const TPropRef& property) { return GetAs<double>(object, property); }
void SetFloatProp(TObject* object, const TPropRef& property, double value) { SetPropValue(object, property, value); }

TObject* GetObjectProp(const TObject* object, const TPropRef& property) { return GetAs<TObject*>(object, property); }
void SetObjectProp(TObject* object, const TPropRef& property, TObject* value) { SetPropValue(object, property, value); }

TAnyEvent GetMethodProp(const TObject* object, const TPropRef& property) { return GetAs<TAnyEvent>(object, property); }
void SetMethodProp(TObject* object, const TPropRef& property, const TAnyEvent& value) {
  SetPropValue(object, property, value);
}

Variant GetVariantProp(const TObject* object, const TPropRef& property) { return GetAs<Variant>(object, property); }
void SetVariantProp(TObject* object, const TPropRef& property, const Variant& value) {
  SetPropValue(object, property, value);
}

// -- What a stream asks -----------------------------------------------------------------------------------------------

bool IsStoredProp(const TObject* object, const TPropRef& property) {
  const TPropInfo& info = property.In(object);
  return info.Stored == nullptr || info.Stored(const_cast<TObject&>(*object));
}

bool IsDefaultValue(const TPropInfo& info, const TPropValue& value) {
  switch (info.Kind) {
    case tkFloat: {
      const double wanted = info.Default ? std::get<double>(*info.Default) : 0.0;
      const double is = std::get<double>(value);
      return is == wanted && std::signbit(is) == std::signbit(wanted);
    }
    case tkString:
      return std::get<std::string>(value) ==
             (info.Default ? std::string_view(std::get<std::string>(*info.Default)) : std::string_view());
    case tkClass:
      return std::get<TObject*>(value) == nullptr;
    case tkMethod:
      return !std::get<TAnyEvent>(value);
    case tkVariant:
      return std::get<Variant>(value).IsEmpty();
    default:
      return info.Default && std::get<std::int64_t>(value) == std::get<std::int64_t>(*info.Default);
  }
}

bool IsDefaultProp(const TObject* object, const TPropRef& property) {
  const TPropInfo& info = property.In(object);
  return IsDefaultValue(info, GetPropValue(object, info));
}

// -- Handlers by name -------------------------------------------------------------------------------------------------

TAnyEvent MethodAddress(TObject* object, std::string_view name) {
  TObject& self = Need(object, "object of a method");
  for (const TClass* type = &self.ClassType(); type != nullptr; type = type->Ancestor()) {
    if (type->Properties() == nullptr) continue;
    for (const TPropertyTable::TMethodEntry& method : type->Properties()->Methods)
      if (CompareText(method.Name, name) == 0) return method.Bind(self);
  }
  return {};
}

std::string MethodName(TObject* object, const TAnyEvent& handler) {
  TObject& self = Need(object, "object of a method");
  if (!handler) return {};
  for (const TClass* type = &self.ClassType(); type != nullptr; type = type->Ancestor()) {
    if (type->Properties() == nullptr) continue;
    for (const TPropertyTable::TMethodEntry& method : type->Properties()->Methods)
      if (method.Bind(self) == handler) return method.Name;
  }
  return {};
}

// -- Building ---------------------------------------------------------------------------------------------------------

namespace published {

void RaiseWrongClass(const TObject& object, const std::string& property, const std::string& wanted) {
  throw EPropertyError("Property " + wanted + "." + property + " doesn't belong to a " + object.ClassName());
}

void PutDefault(TPropInfo& info, TPropValue value, const TEnumTable* enumeration) {
  if (info.Kind == tkFloat && std::holds_alternative<std::int64_t>(value))
    value = static_cast<double>(std::get<std::int64_t>(value));
  if (enumeration != nullptr && info.Enum != enumeration)
    RaiseBadValue(info.Name, info, "a default of another enumeration");
  if (info.Kind == tkClass || info.Kind == tkMethod || info.Kind == tkVariant)
    RaiseBadValue(info.Name, info, "a default");
  CheckValue(nullptr, info, value);
  info.Default = std::move(value);
}

TPropInfo InheritedProp(const TClass& ancestor, const std::string& type, const std::string& name) {
  const TPropInfo* const found = FindProp(&ancestor, name);
  if (found == nullptr) throw EPropertyError("Unknown property: " + type + "." + name);
  TPropInfo info = *found;
  info.Hidden = false;
  return info;
}

}  // namespace published

}  // namespace vx
