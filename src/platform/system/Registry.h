// Registry.h: settings of programs: keys like folders, values of a few kinds in them.
//
//   const auto settings = Make<TRegistry>();
//   if (settings->OpenKey("Software\\Plan\\Chart", /*canCreate=*/true)) settings->WriteInteger("Top", 50);
//
//   settings->CloseKey();
//   if (settings->OpenKey("software\\plan\\chart", false) && settings->ValueExists("Top")) settings->ReadInteger("TOP");
//
// Paths. Names stand between backslashes; empty ones, as in "a\\\\b\\", don't count. A path that begins with a
// backslash starts at the root, any other at the open key, or at the root if none is open. Letter case doesn't count.
// ".." is a name, and leads nowhere else.
//
// Errors. What is asked about keys answers false where there can't be such a key: a name of more than 255 bytes or with
// a zero byte, more than 512 names. Reading and writing values raises ERegistryException, which names the value and its
// key: no key is open, there is no such value, it is of another kind, it can't be written.
//
// An object holds the place of its open key, nothing of the store: what others write is seen at once, and a key that
// was deleted meanwhile has no values and takes none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/runtime/Object.h"
#include "platform/runtime/Strings.h"
#include "platform/system/RegistryStore.h"

namespace vx {

class ERegistryException : public TNamedException<ERegistryException> {
 public:
  static constexpr const char* kName = "ERegistryException";
  using TNamedException::TNamedException;
};

class TRegistry : public TObject {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- Keys -----------------------------------------------------------------------------------------------------------
  /// HKEY_CURRENT_USER at first.
  HKEY RootKey() const { return key_.Root; }
  /// Closes the open key if it lies under another root. ERegistryException if that is no root.
  void SetRootKey(HKEY root);
  /// Opens the key, and closes the one before. With `canCreate` it is made, with those above it, if it isn't there.
  /// False if it can't be opened; the one before then stays open.
  bool OpenKey(std::string_view path, bool canCreate);
  /// The same, for reading only.
  bool OpenKeyReadOnly(std::string_view path);
  void CloseKey();
  bool IsKeyOpen() const { return isOpen_; }
  /// The open key, from below its root: "Software\Plan"; empty if none is open.
  std::string CurrentPath() const;
  bool KeyExists(std::string_view path) const;
  /// False if it can't be made, below a key opened for reading too; true if it is there already.
  bool CreateKey(std::string_view path);
  /// Takes the key away with all below it. False if there is none, or the open one is for reading only; a root stays,
  /// and an empty path names no key here.
  bool DeleteKey(std::string_view path);
  /// Puts the names of the keys right below the open one into `names`, and takes away what was there.
  void GetKeyNames(TStrings& names) const;

  // -- Values of the open key -----------------------------------------------------------------------------------------
  void GetValueNames(TStrings& names) const;
  bool ValueExists(std::string_view name) const;
  bool DeleteValue(std::string_view name);

  std::string ReadString(std::string_view name) const;
  std::int32_t ReadInteger(std::string_view name) const;
  /// An integer other than 0.
  bool ReadBool(std::string_view name) const { return ReadInteger(name) != 0; }
  /// Eight bytes, the lowest first.
  double ReadFloat(std::string_view name) const;
  TRegistryBytes ReadBinaryData(std::string_view name) const;

  void WriteString(std::string_view name, std::string_view value) { Write(name, std::string(value)); }
  void WriteInteger(std::string_view name, std::int32_t value) { Write(name, value); }
  void WriteBool(std::string_view name, bool value) { Write(name, value ? 1 : 0); }
  void WriteFloat(std::string_view name, double value);
  void WriteBinaryData(std::string_view name, TRegistryBytes value) { Write(name, std::move(value)); }

 private:
  /// The key of that path; empty if there can't be one.
  std::optional<TRegistryKey> Locate(std::string_view path) const;
  bool Open(std::string_view path, bool canCreate, bool readOnly);
  std::string KeyText() const;
  std::optional<TRegistryValue> Find(std::string_view name) const;
  template <class Kind>
  Kind Read(std::string_view name) const;
  void Write(std::string_view name, TRegistryValue value);
  [[noreturn]] void Fail(std::string_view name, std::string_view what) const;

  TRegistryKey key_;
  bool isOpen_ = false;
  bool isReadOnly_ = false;
};

}  // namespace vx
