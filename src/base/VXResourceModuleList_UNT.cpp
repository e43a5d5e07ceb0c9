#include "base/VXResourceModuleList_UNT.h"

#include <algorithm>
#include <filesystem>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Format.h"
#include "platform/system/ResourceFile.h"

namespace vx {

const TClass& TVXResourceModuleList::StaticClass() {
  static const TClass info("TVXResourceModuleList", &TObject::StaticClass(),
                           []() -> TObject* { return Make<TVXResourceModuleList>().release(); });
  return info;
}

TVXResourceModuleList::TVXResourceModuleList() : ownModule_(FindResourceInstance(MainInstance())) { Refresh(); }

void TVXResourceModuleList::Refresh() {
  modules_.assign(1, ownModule_);
  EnumResourceModules([this](THInstance module) {
    AddResourceModule(module);
    return true;
  });
}

void TVXResourceModuleList::AddResourceModule(THInstance module) {
  if (module != ownModule_) modules_.push_back(module);
}

THInstance TVXResourceModuleList::ListItem(std::int64_t index) const {
  if (index < 0 || index >= GetCount()) throw EListError(Format("List index out of bounds (%d)", {index}));
  return modules_[static_cast<std::size_t>(index)];
}

THInstance TVXResourceModuleList::GetResourceModule(std::int32_t index) const {
  if (primary_ == CInvalidHInstance) return ListItem(index);
  if (index == 0) return primary_;
  return ListItem(index > primaryIndex_ ? index : std::int64_t{index} - 1);
}

void TVXResourceModuleList::SetPrimaryResourceModule(THInstance module) {
  const auto found = std::find(modules_.begin(), modules_.end(), module);
  primary_ = module;
  primaryIndex_ = found == modules_.end() ? -1 : static_cast<std::int32_t>(found - modules_.begin());
}

std::string TVXResourceModuleList::GetFileNameWithPath(std::int32_t index) const {
  return GetModuleFileNameWithPath(GetResourceModule(index));
}

std::string TVXResourceModuleList::GetFileName(std::int32_t index) const {
  return GetModuleFileName(GetResourceModule(index));
}

bool TVXResourceModuleList::LoadString(std::int32_t id, std::string& text) const {
  for (std::int32_t index = 0; index < GetCount(); ++index) {
    std::string loaded = vx::LoadString(GetResourceModule(index), id);
    if (loaded.empty()) continue;
    text = std::move(loaded);
    return true;
  }
  return false;
}

namespace VXResourceModuleList_UNT {

std::string GetModuleFileNameWithPath(THInstance module) { return ModuleFileName(module); }

std::string GetModuleFileName(THInstance module) {
  return std::filesystem::path(GetModuleFileNameWithPath(module)).filename().string();
}

THInstance GetModule(THInstance resourceModule) {
  for (const TLoadedModule& entry : LoadedModules())
    if (entry.ResourceInstance == resourceModule) return entry.CodeInstance;
  return CInvalidHInstance;
}

std::string GetResourceModuleFileNameWithPath(THInstance module) {
  return GetModuleFileNameWithPath(FindResourceInstance(module));
}

std::string GetResourceModuleFileName(THInstance module) { return GetModuleFileName(FindResourceInstance(module)); }

std::vector<std::string> GetResourceModuleResourceNames(THInstance module, std::int32_t type) {
  if (type != kStringResources) return ResourceNames(module, type);
  std::vector<std::string> names;
  for (const std::int32_t id : StringIds(module)) names.push_back(NumericResourceName(id));
  return names;
}

}  // namespace VXResourceModuleList_UNT
}  // namespace vx
