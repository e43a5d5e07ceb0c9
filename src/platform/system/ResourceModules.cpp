#include "platform/system/ResourceModules.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"
#include "platform/system/ResourceFile.h"

namespace vx {
namespace {

constexpr THInstance kMain{1};
constexpr std::int32_t kLastNumber = 65535;

struct TModule {
  THInstance Instance;
  std::string FileName;
  TResourceFile File;
};

/// The loaded files, and which of them is the program's language.
struct TModules {
  std::vector<std::unique_ptr<TModule>> Files;
  THInstance Language = kMain;
  THInstance Own = CInvalidHInstance;  ///< loaded by UseLanguage
  std::uint32_t LastHandle = 1;
};

TModules& Modules() {
  static TModules modules;
  return modules;
}

const TModule* FindModule(THInstance instance) {
  const auto& files = Modules().Files;
  const auto found = std::find_if(files.begin(), files.end(), [=](const auto& m) { return m->Instance == instance; });
  return found == files.end() ? nullptr : found->get();
}

std::string TextOf(THInstance module, std::int32_t id) {
  if (module == kMain) return LoadStr(id);
  const TModule* const file = FindModule(module);
  if (file == nullptr) return {};
  const auto& strings = file->File.Strings;
  const auto found =
      std::lower_bound(strings.begin(), strings.end(), id,
                       [](const TResourceFile::TString& text, std::int32_t wanted) { return text.Id < wanted; });
  return found == strings.end() || found->Id != id ? std::string() : found->Text;
}

std::string ProgramFileName() {
  std::error_code none;
  return std::filesystem::read_symlink("/proc/self/exe", none).string();
}

bool IsLanguageTag(std::string_view language) {
  const auto fits = [](char c) {
    return (UpperAscii(c) >= 'A' && UpperAscii(c) <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  };
  return !language.empty() && std::all_of(language.begin(), language.end(), fits);
}

}  // namespace

// -- Modules ----------------------------------------------------------------------------------------------------------

THInstance MainInstance() { return kMain; }

THInstance LoadResourceModule(const std::string& fileName) {
  auto module = std::make_unique<TModule>(TModule{CInvalidHInstance, fileName, ReadResourceFile(fileName)});
  module->Instance = THInstance{++Modules().LastHandle};
  Modules().Files.push_back(std::move(module));
  return Modules().Files.back()->Instance;
}

void FreeResourceModule(THInstance module) {
  if (FindModule(module) == nullptr) return;
  if (module == Modules().Language) UseLanguageModule(kMain);
  std::erase_if(Modules().Files, [=](const auto& file) { return file->Instance == module; });
}

std::vector<TLoadedModule> LoadedModules() {
  std::vector<TLoadedModule> entries = {{kMain, kMain, Modules().Language}};
  for (const auto& file : Modules().Files)
    if (file->Instance != Modules().Language) entries.push_back({file->Instance, file->Instance, file->Instance});
  return entries;
}

void EnumResourceModules(const std::function<bool(THInstance)>& each) {
  for (const TLoadedModule& entry : LoadedModules())
    if (!each(entry.ResourceInstance)) return;
}

THInstance FindResourceInstance(THInstance instance) { return instance == kMain ? Modules().Language : instance; }

std::string ModuleFileName(THInstance module) {
  if (module == kMain) return ProgramFileName();
  const TModule* const file = FindModule(module);
  return file == nullptr ? std::string() : file->FileName;
}

std::string ModuleLanguage(THInstance module) {
  if (module == kMain) return "en";
  const TModule* const file = FindModule(module);
  return file == nullptr ? std::string() : file->File.Language;
}

// -- Languages --------------------------------------------------------------------------------------------------------

void UseLanguageModule(THInstance module) {
  if (module == CInvalidHInstance) module = kMain;
  std::vector<TResourceString> texts;
  if (module != kMain)
    for (const auto& text : Need(FindModule(module), "language module").File.Strings)
      texts.push_back({text.Id, text.Text});
  ResetResourceStrings();
  Modules().Language = kMain;
  if (module == kMain) return;
  SetResourceStrings(texts);
  Modules().Language = module;
}

std::string FindLanguageFile(std::string_view language) {
  const std::filesystem::path beside = std::filesystem::path(ProgramFileName()).parent_path();
  if (beside.empty() || !IsLanguageTag(language)) return {};
  const std::string name = "kestrix." + std::string(language) + ".kres";
  for (const auto& folder : {beside, beside / "languages", beside.parent_path() / "share/kestrix/languages"}) {
    std::error_code none;
    if (std::filesystem::is_regular_file(folder / name, none)) return (folder / name).string();
  }
  return {};
}

THInstance UseLanguage(std::string_view language) {
  const std::string fileName = FindLanguageFile(language);
  const bool isBuiltIn = fileName.empty() && language == ModuleLanguage(kMain);
  if (fileName.empty() && !isBuiltIn)
    throw EResourceFileError("language '" + std::string(language) + "'", 0, 0,
                             "there is no kestrix." + std::string(language) + ".kres");
  const THInstance module = isBuiltIn ? kMain : LoadResourceModule(fileName);
  UseLanguageModule(module);
  FreeResourceModule(std::exchange(Modules().Own, isBuiltIn ? CInvalidHInstance : module));
  return module;
}

// -- Resources --------------------------------------------------------------------------------------------------------

std::string LoadString(THInstance module, std::int32_t id) {
  return std::string(CutAtCodePoint(TextOf(module, id), kStringBuffer - 1));
}

const std::string* FindResource(THInstance module, std::int32_t type, std::string_view name) {
  const TModule* const file = FindModule(module);
  if (file == nullptr) return nullptr;
  for (const auto& resource : file->File.Resources)
    if (resource.Type == type && CompareText(resource.Name, name) == 0) return &resource.Data;
  return nullptr;
}

std::vector<std::int32_t> StringIds(THInstance module) {
  std::vector<std::int32_t> ids;
  if (module == kMain) {
    for (std::int32_t id = 0; id <= kLastNumber; ++id)
      if (!LoadStr(id).empty()) ids.push_back(id);
  } else if (const TModule* const file = FindModule(module)) {
    for (const auto& text : file->File.Strings)
      if (!text.Text.empty()) ids.push_back(text.Id);
  }
  return ids;
}

std::vector<std::string> ResourceNames(THInstance module, std::int32_t type) {
  std::vector<std::string> names;
  if (const TModule* const file = FindModule(module))
    for (const auto& resource : file->File.Resources)
      if (resource.Type == type) names.push_back(resource.Name);
  return names;
}

}  // namespace vx
