#include "package/PaletteListing.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "platform/component/Collection.h"
#include "platform/component/Component.h"

namespace vx {

namespace {

TListedStorage StorageOf(const TPropInfo& info) {
  if (info.NeverStored) return lsNever;
  return info.Stored == nullptr ? lsAlways : lsByRule;
}

TListedDefault DefaultOf(const TPropInfo& info) {
  const TPropValue& value = *info.Default;
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const number = std::get_if<double>(&value)) {
    if (std::isfinite(*number)) return *number;
    return std::string(std::isnan(*number) ? "+NAN" : *number > 0 ? "+INF" : "-INF");
  }
  const auto ordinal = std::get<std::int64_t>(value);
  if (info.Kind == tkSet) return SetToText(*info.Enum, static_cast<std::uint64_t>(ordinal));
  if (info.Enum == &EnumTableOf<bool>()) return ordinal != 0;
  if (info.Enum != nullptr) return GetEnumName(*info.Enum, ordinal);
  if (info.Kind == tkChar) return std::string(1, static_cast<char>(ordinal));
  return ordinal;
}

/// What `look` answers; nothing if it raises. The classes are anybody's, and a listing shows what can be seen.
template <class Look>
auto IfPossible(Look look) -> decltype(look()) {
  try {
    return look();
  } catch (const std::exception&) {
    return {};
  }
}

TOwned<TObject> SampleOf(const TClass& type) {
  return IfPossible([&] { return TOwned<TObject>(type.Factory() == nullptr ? nullptr : type.Factory()()); });
}

class TLister {
 public:
  /// `sample` is an object of the class, or null.
  std::vector<TPropertyListing> PropertiesOf(const TClass& type, TObject* sample) {
    if (std::find(way_.begin(), way_.end(), &type) != way_.end()) return {};  // a class in itself: listed once
    way_.push_back(&type);
    std::vector<TPropertyListing> properties;
    for (const TPropInfo* const info : GetPropList(type)) properties.push_back(PropertyOf(*info, sample));
    way_.pop_back();
    return properties;
  }

 private:
  TPropertyListing PropertyOf(const TPropInfo& info, TObject* sample) {
    TPropertyListing listing{info.Name, info.TypeName(), info.Kind, {}, info.IsReadOnly(), StorageOf(info), {}, {}, {}};
    if (info.Default) listing.Default = DefaultOf(info);
    if (info.Enum != nullptr) listing.Members.assign(info.Enum->Names.begin(), info.Enum->Names.end());
    if (info.Kind == tkClass && sample != nullptr)
      AddParts(listing, IfPossible([&] { return GetObjectProp(sample, info); }));
    return listing;
  }

  void AddParts(TPropertyListing& listing, TObject* value) {
    if (auto* const collection = As<TCollection>(value)) {
      const TClass* const type = collection->ItemClass().Class();
      if (type == nullptr) return;
      listing.ItemClass = type->Name();
      listing.Parts = PropertiesOf(*type, IfPossible([&]() -> TObject* { return collection->Add(); }));
    } else if (As<TPersistent>(value) != nullptr &&
               As<TComponent>(value) == nullptr) {  // a component is only referred to
      listing.Parts = PropertiesOf(value->ClassType(), value);
    }
  }

  std::vector<const TClass*> way_;
};

TPageListing ListPage(const std::string& name, const std::vector<const TClass*>& classes) {
  TPageListing page{name, {}};
  for (const TClass* const type : classes) page.Classes.push_back(ListClass(*type));
  return page;
}

}  // namespace

TClassListing ListClass(const TClass& type) {
  TClassListing listing{type.Name(), {}, {}, {}};
  for (const TClass* at = type.Ancestor(); at != nullptr; at = at->Ancestor()) listing.Ancestors.push_back(at->Name());
  const TOwned<TObject> sample = SampleOf(type);
  for (TPropertyListing& property : TLister().PropertiesOf(type, sample.get()))
    (property.Kind == tkMethod ? listing.Events : listing.Properties).push_back(std::move(property));
  return listing;
}

std::vector<TPageListing> ListPalette() {
  const std::vector<TPalettePage> palette = Palette();  // making objects may register
  std::vector<const TClass*> others = RegisteredClasses();
  std::vector<TPageListing> pages;
  for (const TPalettePage& page : palette) {
    for (const TClass* const type : page.Classes) std::erase(others, type);
    pages.push_back(ListPage(page.Name, page.Classes));
  }
  if (!others.empty()) pages.push_back(ListPage({}, others));
  return pages;
}

}  // namespace vx
