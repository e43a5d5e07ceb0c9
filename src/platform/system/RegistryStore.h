// RegistryStore.h: where settings are kept: a tree of keys, each with values.
//
// TRegistry (Registry.h) is what components use; this is what a host brings below it. A program without a host has a
// TMemoryRegistry, so that nothing it writes outlives it.
//
// Names of keys and values are told apart without letter case, and keep the case in which they were first written. A
// store gets only names that TRegistry has checked: UTF-8 or not, never with a zero byte or a backslash in a key's; a
// value's name may be empty. "." and ".." are names like any other: a store that keeps files must not take them for
// places. Main thread only.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vx {

/// One of the seven roots.
using HKEY = std::uint32_t;
inline constexpr HKEY HKEY_CLASSES_ROOT = 0x80000000;
inline constexpr HKEY HKEY_CURRENT_USER = 0x80000001;
inline constexpr HKEY HKEY_LOCAL_MACHINE = 0x80000002;
inline constexpr HKEY HKEY_USERS = 0x80000003;
inline constexpr HKEY HKEY_PERFORMANCE_DATA = 0x80000004;
inline constexpr HKEY HKEY_CURRENT_CONFIG = 0x80000005;
inline constexpr HKEY HKEY_DYN_DATA = 0x80000006;

/// A key by its place: the names from the root down. The roots themselves are always there.
struct TRegistryKey {
  HKEY Root = HKEY_CURRENT_USER;
  std::vector<std::string> Path = {};
};

using TRegistryBytes = std::vector<std::uint8_t>;
using TRegistryValue = std::variant<std::string, std::int32_t, TRegistryBytes>;

class IRegistryStore {
 public:
  virtual ~IRegistryStore() = default;
  virtual bool HasKey(const TRegistryKey& key) const = 0;
  /// Makes the key and those above it, if they aren't there. False if it can't.
  virtual bool AddKey(const TRegistryKey& key) = 0;
  /// Takes the key away with all below it. False if it isn't there or can't be taken away.
  virtual bool RemoveKey(const TRegistryKey& key) = 0;
  /// Names of the keys right below, in the store's order; none of a key that isn't there.
  virtual std::vector<std::string> KeyNames(const TRegistryKey& key) const = 0;
  virtual std::vector<std::string> ValueNames(const TRegistryKey& key) const = 0;
  /// Empty if there is no such value or key.
  virtual std::optional<TRegistryValue> Value(const TRegistryKey& key, const std::string& name) const = 0;
  /// A value of another kind is replaced. False if there is no such key, or it can't be written.
  virtual bool SetValue(const TRegistryKey& key, const std::string& name, TRegistryValue value) = 0;
  virtual bool RemoveValue(const TRegistryKey& key, const std::string& name) = 0;
};

/// Keeps everything in memory; names are listed in the order of AnsiCompareText. A step down costs O(log n).
class TMemoryRegistry : public IRegistryStore {
 public:
  TMemoryRegistry();
  ~TMemoryRegistry() override;
  bool HasKey(const TRegistryKey& key) const override { return Find(key) != nullptr; }
  bool AddKey(const TRegistryKey& key) override;
  bool RemoveKey(const TRegistryKey& key) override;
  std::vector<std::string> KeyNames(const TRegistryKey& key) const override;
  std::vector<std::string> ValueNames(const TRegistryKey& key) const override;
  std::optional<TRegistryValue> Value(const TRegistryKey& key, const std::string& name) const override;
  bool SetValue(const TRegistryKey& key, const std::string& name, TRegistryValue value) override;
  bool RemoveValue(const TRegistryKey& key, const std::string& name) override;

 private:
  struct TNode;

  TNode& RootOf(HKEY root) const;
  /// Null if it isn't there.
  TNode* Find(const TRegistryKey& key) const;

  std::unique_ptr<TNode> all_;  // its keys are the roots
};

/// The store in force.
IRegistryStore& RegistryStore();

}  // namespace vx
