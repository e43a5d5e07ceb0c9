#include "platform/system/Registry.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr std::size_t kKeyNameLimit = 255;      ///< bytes
constexpr std::size_t kDepthLimit = 512;        ///< names in a path
constexpr std::size_t kValueNameLimit = 16383;  ///< bytes
constexpr std::size_t kShownName = 60;          ///< bytes of a name in an error

constexpr std::string_view kRootNames[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",     "HKEY_LOCAL_MACHINE",
                                           "HKEY_USERS",        "HKEY_PERFORMANCE_DATA", "HKEY_CURRENT_CONFIG",
                                           "HKEY_DYN_DATA"};
constexpr std::string_view kKindNames[] = {"a text", "an integer", "bytes"};  // as in TRegistryValue

bool IsName(std::string_view name, std::size_t limit) {
  return name.size() <= limit && name.find('\0') == std::string_view::npos;
}

std::string Shown(std::string_view name) {
  const std::string_view cut = CutAtCodePoint(name, kShownName);
  return "'" + std::string(cut) + (cut.size() < name.size() ? "...'" : "'");
}

std::string Joined(const std::vector<std::string>& names) {
  std::string path;
  for (const std::string& name : names) path += (path.empty() ? "" : "\\") + name;
  return path;
}

void PutNames(const std::vector<std::string>& names, TStrings& into) {
  into.Clear();
  for (const std::string& name : names) into.Add(name);
}

}  // namespace

const TClass& TRegistry::StaticClass() {
  static const TClass info("TRegistry", &TObject::StaticClass());
  return info;
}

// -- Keys -------------------------------------------------------------------------------------------------------------

void TRegistry::SetRootKey(HKEY root) {
  if (root < HKEY_CLASSES_ROOT || root > HKEY_DYN_DATA)
    throw ERegistryException("The registry has no root " + std::to_string(root));
  if (root == key_.Root) return;
  CloseKey();
  key_.Root = root;
}

std::optional<TRegistryKey> TRegistry::Locate(std::string_view path) const {
  TRegistryKey key{key_.Root};
  if (!path.starts_with('\\')) key.Path = key_.Path;
  while (!path.empty()) {
    const std::string_view name = path.substr(0, path.find('\\'));
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    if (name.empty()) continue;
    if (!IsName(name, kKeyNameLimit) || key.Path.size() == kDepthLimit) return std::nullopt;
    key.Path.emplace_back(name);
  }
  return key;
}

bool TRegistry::Open(std::string_view path, bool canCreate, bool readOnly) {
  auto key = Locate(path);
  if (!key || !(canCreate ? RegistryStore().AddKey(*key) : RegistryStore().HasKey(*key))) return false;
  key_ = *std::move(key);
  isOpen_ = true;
  isReadOnly_ = readOnly;
  return true;
}

bool TRegistry::OpenKey(std::string_view path, bool canCreate) { return Open(path, canCreate, false); }
bool TRegistry::OpenKeyReadOnly(std::string_view path) { return Open(path, false, true); }

void TRegistry::CloseKey() {
  key_.Path.clear();
  isOpen_ = isReadOnly_ = false;
}

std::string TRegistry::CurrentPath() const { return Joined(key_.Path); }

bool TRegistry::KeyExists(std::string_view path) const {
  const auto key = Locate(path);
  return key && RegistryStore().HasKey(*key);
}

bool TRegistry::CreateKey(std::string_view path) {
  const auto key = Locate(path);
  return key && !isReadOnly_ && RegistryStore().AddKey(*key);
}

bool TRegistry::DeleteKey(std::string_view path) {
  const auto key = Locate(path);
  return key && !isReadOnly_ && !path.empty() && !key->Path.empty() && RegistryStore().RemoveKey(*key);
}

void TRegistry::GetKeyNames(TStrings& names) const { PutNames(RegistryStore().KeyNames(key_), names); }

// -- Values -----------------------------------------------------------------------------------------------------------

void TRegistry::GetValueNames(TStrings& names) const { PutNames(RegistryStore().ValueNames(key_), names); }

std::optional<TRegistryValue> TRegistry::Find(std::string_view name) const {
  if (!isOpen_ || !IsName(name, kValueNameLimit)) return std::nullopt;
  return RegistryStore().Value(key_, std::string(name));
}

bool TRegistry::ValueExists(std::string_view name) const { return Find(name).has_value(); }

bool TRegistry::DeleteValue(std::string_view name) {
  return isOpen_ && !isReadOnly_ && IsName(name, kValueNameLimit) &&
         RegistryStore().RemoveValue(key_, std::string(name));
}

void TRegistry::Fail(std::string_view name, std::string_view what) const {
  throw ERegistryException("Registry value " + Shown(name) + " of " + KeyText() + ": " + std::string(what));
}

std::string TRegistry::KeyText() const {
  if (!isOpen_) return "no key";
  std::string text(kRootNames[key_.Root - HKEY_CLASSES_ROOT]);
  for (const std::string& part : key_.Path) text += '\\' + part;
  return text;
}

template <class Kind>
Kind TRegistry::Read(std::string_view name) const {
  if (!isOpen_) Fail(name, "no key is open");
  auto value = Find(name);
  if (!value) Fail(name, "there is none of that name");
  if (Kind* const read = std::get_if<Kind>(&*value)) return std::move(*read);
  const std::size_t wanted = TRegistryValue(Kind()).index();
  Fail(name, std::string(kKindNames[value->index()]) + " stands there, not " + std::string(kKindNames[wanted]));
}

std::string TRegistry::ReadString(std::string_view name) const { return Read<std::string>(name); }
std::int32_t TRegistry::ReadInteger(std::string_view name) const { return Read<std::int32_t>(name); }
TRegistryBytes TRegistry::ReadBinaryData(std::string_view name) const { return Read<TRegistryBytes>(name); }

double TRegistry::ReadFloat(std::string_view name) const {
  const TRegistryBytes bytes = ReadBinaryData(name);
  if (bytes.size() != sizeof(double)) Fail(name, std::to_string(bytes.size()) + " bytes are no number");
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) bits |= std::uint64_t{bytes[i]} << (8 * i);
  return std::bit_cast<double>(bits);
}

void TRegistry::WriteFloat(std::string_view name, double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  TRegistryBytes bytes(sizeof bits);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
  Write(name, std::move(bytes));
}

void TRegistry::Write(std::string_view name, TRegistryValue value) {
  if (!isOpen_) Fail(name, "no key is open");
  if (isReadOnly_) Fail(name, "the key is open for reading only");
  if (!IsName(name, kValueNameLimit)) Fail(name, "that is no name");
  if (!RegistryStore().SetValue(key_, std::string(name), std::move(value))) Fail(name, "it can't be written");
}

}  // namespace vx
