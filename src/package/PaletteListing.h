// PaletteListing.h: what stands on the palette, as a plain value: pages, classes, properties, events.
//
//   const TPackage package;
//   for (const TPageListing& page : ListPalette())
//     for (const TClassListing& type : page.Classes) …
//   std::cout << PaletteText(ListPalette());        // the whole palette for people
//   ListClass(TGauge::StaticClass()).Events         // of any class, registered or not
//
// All of it comes from the classes' own tables of published properties. What a property holds (the parts of an object,
// the items of a collection) is only known by an object: where the class can be made without arguments one is made,
// looked at and freed. A class that can't be made, or whose objects raise when they are asked, is listed without that.
//
// Cost: an object and its parts for each class.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/component/Published.h"

namespace vx {

/// A declared default: members of enumerations by name, sets as "[a,b]", numbers that are none as forms have them:
/// "+INF", "-INF", "+NAN".
using TListedDefault = std::variant<bool, std::int64_t, double, std::string>;

/// Whether a stream keeps a property that differs from its default.
enum TListedStorage : std::uint8_t {
  lsAlways,
  lsByRule,  ///< the object decides
  lsNever,   ///< as the name of a component, which stands in the line of its object instead
};

struct TPropertyListing {
  std::string Name;
  std::string TypeName;  ///< of an event: the name of its signature
  TTypeKind Kind = tkUnknown;
  std::optional<TListedDefault> Default;
  bool IsReadOnly = false;
  TListedStorage Storage = lsAlways;
  std::vector<std::string> Members;  ///< of an enumeration or a set, from ordinal 0 upwards
  std::string ItemClass;             ///< of a collection
  std::vector<TPropertyListing>
      Parts;  ///< events included: of the collection's items, or of the object, if it is a part

  bool operator==(const TPropertyListing&) const = default;
};

struct TClassListing {
  std::string Name;
  std::vector<std::string> Ancestors;  ///< the nearest first
  std::vector<TPropertyListing> Properties;
  std::vector<TPropertyListing> Events;

  bool operator==(const TClassListing&) const = default;
};

struct TPageListing {
  std::string Name;  ///< empty: registered, but on no page
  std::vector<TClassListing> Classes;

  bool operator==(const TPageListing&) const = default;
};

/// The pages in order; classes without a page come last, if there are any.
std::vector<TPageListing> ListPalette();
TClassListing ListClass(const TClass& type);

/// The pages as lines of at most 100 characters (longer names and defaults apart), and at the end the members of each
/// enumeration.
std::string PaletteText(const std::vector<TPageListing>& pages);

}  // namespace vx
