// ResourceModules.h: the modules of the running program, in which texts and other resources are looked for.
//
// There is one module of code, the program itself, which holds the texts of the system (runtime/StringResources.h).
// More are loaded from files next to the program (ResourceFile.h): a language, or the forms of an application.
//
//   const THInstance german = LoadResourceModule("languages/kestrix.de.kres");
//   LoadString(german, 14672);                   // "Tag"
//   UseLanguageModule(german);                   // from now on LoadStr(14672), messages and units say "Tag"
//   FindResourceInstance(MainInstance());        // german: the program's resources stand there now
//
//   UseLanguage("de");                           // the same, and finds the file
//
// There is one table of texts in force, that of LoadStr. A language is copied into it; texts that it lacks stay
// English.
//
// Ownership. Modules live until FreeResourceModule or the program's end. A handle is a number that is never used again:
// of an unknown or freed one, nothing is found. Errors. EResourceFileError for a file that can't be read; then no
// module is made. Cost. A look-up is O(log n) for texts, O(n) for other resources. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vx {

/// A module.
enum class THInstance : std::uint32_t {};

inline constexpr THInstance CInvalidHInstance{0};

/// Types of resources that the system asks for.
inline constexpr std::int32_t kStringResources = 6;
inline constexpr std::int32_t kRawDataResources = 10;

/// What LoadString gives room to, one byte of it for a zero.
inline constexpr std::size_t kStringBuffer = 1024;

// -- Modules ----------------------------------------------------------------------------------------------------------

/// The program.
THInstance MainInstance();
/// Makes a module of a file. The same file twice makes two.
THInstance LoadResourceModule(const std::string& fileName);
/// Forgets a module that was loaded; if it is the program's language, the program speaks English again. The program
/// itself stays.
void FreeResourceModule(THInstance module);

/// An entry of the platform's module list. For the program, resources may stand in a language module; a file has only
/// resources, and its three handles are one.
struct TLoadedModule {
  THInstance Instance;
  THInstance CodeInstance;
  THInstance ResourceInstance;
};

/// The program, then the loaded files in order. The program's language has no entry of its own.
std::vector<TLoadedModule> LoadedModules();
/// Calls `each` with the resource instance of each entry, until it answers false.
void EnumResourceModules(const std::function<bool(THInstance)>& each);
/// The module with the resources of `instance`: its language, or itself.
THInstance FindResourceInstance(THInstance instance);
/// Path of the program or file; empty if it isn't known.
std::string ModuleFileName(THInstance module);
/// "en" for the program.
std::string ModuleLanguage(THInstance module);

// -- Languages --------------------------------------------------------------------------------------------------------

/// Puts the texts of a module in force for the whole program, in place of those of another language. CInvalidHInstance
/// and the program itself give the built-in texts again. The others of SetResourceString are lost. Raises ENilAccess
/// for an unknown module.
void UseLanguageModule(THInstance module);
/// Loads and uses the file kestrix.<language>.kres: beside the program, in `languages` beside it, or in
/// ../share/kestrix/languages as an install has it. "en" needs no file. The language before is freed if this made it.
/// Raises EResourceFileError, naming the language, if there is none; then nothing has changed.
THInstance UseLanguage(std::string_view language);
/// The file that UseLanguage would take; empty if there is none.
std::string FindLanguageFile(std::string_view language);

// -- Resources --------------------------------------------------------------------------------------------------------

/// A text of a module, cut at a code point to what kStringBuffer holds; empty if there is none.
std::string LoadString(THInstance module, std::int32_t id);
/// The bytes of a resource, letter case of its name ignored; null if there is none. Valid until the module is freed.
const std::string* FindResource(THInstance module, std::int32_t type, std::string_view name);
/// Numbers of all texts that aren't empty, in order.
std::vector<std::int32_t> StringIds(THInstance module);
/// Names of the resources of another type, in order of the file; numeric ones as "$" and four hexadecimal digits.
std::vector<std::string> ResourceNames(THInstance module, std::int32_t type);

}  // namespace vx
