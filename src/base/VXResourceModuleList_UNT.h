// VXResourceModuleList_UNT.h: the modules of the program in the order in which texts are looked for.
//
//   const auto modules = Make<TVXResourceModuleList>();      // filled: the program's resource module comes first
//   modules->SetPrimaryResourceModule(forms);                // and from now on `forms`
//   std::string text;
//   if (modules->LoadString(14672, text)) …                  // from the first module that has it
//
// The list holds handles; modules (platform/system/ResourceModules.h) belong to the platform. It is a picture of one
// moment: what is loaded later comes in by Refresh or AddResourceModule, what is freed finds nothing.
//
// Errors. EListError for a position outside. Main thread only.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/runtime/Object.h"
#include "platform/system/ResourceModules.h"

namespace vx {

class TVXResourceModuleList : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  /// Asks for the program's resource module, once and for all, and fills the list.
  TVXResourceModuleList();

  // -- The list -------------------------------------------------------------------------------------------------------
  /// The program's resource module, then all others that are loaded. Kept: the primary module and its position stay
  /// what they were, even if the module is gone or stands elsewhere now.
  void Refresh();
  /// Adds a module, once more if it is in the list. The program's own isn't added.
  void AddResourceModule(THInstance module);
  /// Without the primary module, where that isn't in the list.
  std::int32_t GetCount() const { return static_cast<std::int32_t>(modules_.size()); }
  /// The module at a position of the order of search: the primary one at 0, the others behind it as they stand.
  THInstance GetResourceModule(std::int32_t index) const;
  /// Puts a module to the front; CInvalidHInstance for none. Kept: a module that isn't in the list takes the place of
  /// the first one, which is then not asked.
  void SetPrimaryResourceModule(THInstance module);

  // -- By the order of search -----------------------------------------------------------------------------------------
  std::string GetFileNameWithPath(std::int32_t index) const;
  std::string GetFileName(std::int32_t index) const;
  /// The text of the first module that has it and isn't empty there, cut to kStringBuffer. False, and `text` untouched,
  /// if none has.
  bool LoadString(std::int32_t id, std::string& text) const;

 private:
  THInstance ListItem(std::int64_t index) const;

  std::vector<THInstance> modules_;
  THInstance ownModule_;
  THInstance primary_ = CInvalidHInstance;
  std::int32_t primaryIndex_ = -1;
};

namespace VXResourceModuleList_UNT {

/// Path of a module's file; empty for the invalid handle.
std::string GetModuleFileNameWithPath(THInstance module);
/// Its name without the folder.
std::string GetModuleFileName(THInstance module);
/// The module of code that has `resourceModule` as its resources; CInvalidHInstance if there is none.
THInstance GetModule(THInstance resourceModule);
/// The same two names for the resource module of `module`.
std::string GetResourceModuleFileNameWithPath(THInstance module);
std::string GetResourceModuleFileName(THInstance module);
/// Names of all resources of a type. A numeric name is "$" and four hexadecimal digits; so is each text that isn't
/// empty, for kStringResources: their platform keeps them in blocks of 16, which are taken apart here.
std::vector<std::string> GetResourceModuleResourceNames(THInstance module, std::int32_t type);

}  // namespace VXResourceModuleList_UNT

using VXResourceModuleList_UNT::GetModule;
using VXResourceModuleList_UNT::GetModuleFileName;
using VXResourceModuleList_UNT::GetModuleFileNameWithPath;
using VXResourceModuleList_UNT::GetResourceModuleFileName;
using VXResourceModuleList_UNT::GetResourceModuleFileNameWithPath;
using VXResourceModuleList_UNT::GetResourceModuleResourceNames;

}  // namespace vx
