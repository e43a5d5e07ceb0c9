// PaletteCommand.h: "kestrix palette": the classes that a form may name, with their properties and events.
//
// The listing is that of the package (package/PaletteListing.h), or the pages and classes of it that are asked for, for
// people or as JSON:
//
//   {"pages": [
//   {"name": "VX Data Access", "classes": [
//   {"name": "TVXRAMTable", "ancestors": ["TComponent", …],
//    "properties": [
//     {"name": "Tag", "type": "Integer", "kind": "integer", "default": 0, "readOnly": false, "stored": "always"},
//     …],
//    "events": [
//     …]}]}]}
//
// "stored" is "always" or "rule", "default" null where none is declared, a page's name null for classes that stand on
// none. Three keys follow only where there is something to tell: "members" of an enumeration, "itemClass" of a
// collection, and "properties", those of the collection's items or of the object that a property holds.
#pragma once

#include "Command.h"

namespace vx::kestrix {

TRunCommand AddPalette(CLI::App& app);

}  // namespace vx::kestrix
