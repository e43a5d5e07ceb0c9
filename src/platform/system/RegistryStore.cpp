#include "platform/system/RegistryStore.h"

#include <map>
#include <utility>

#include "platform/runtime/Text.h"
#include "platform/system/InForce.h"

namespace vx {
namespace {

/// The name of each entry of a map by folded names.
template <class Map>
std::vector<std::string> NamesOf(const Map& entries) {
  std::vector<std::string> names;
  for (const auto& [folded, entry] : entries) names.push_back(entry.first);
  return names;
}

}  // namespace

struct TMemoryRegistry::TNode {
  std::map<std::string, std::pair<std::string, std::unique_ptr<TNode>>> Keys;  // by folded name: name and node
  std::map<std::string, std::pair<std::string, TRegistryValue>> Values;

  /// The key right below of that name, made if it isn't there.
  TNode& Child(const std::string& name) {
    auto& [written, node] = Keys[FoldCase(name)];
    if (node == nullptr) {
      node = std::make_unique<TNode>();
      written = name;
    }
    return *node;
  }
};

TMemoryRegistry::TMemoryRegistry() : all_(std::make_unique<TNode>()) {}
TMemoryRegistry::~TMemoryRegistry() = default;

TMemoryRegistry::TNode& TMemoryRegistry::RootOf(HKEY root) const { return all_->Child(std::to_string(root)); }

TMemoryRegistry::TNode* TMemoryRegistry::Find(const TRegistryKey& key) const {
  TNode* node = &RootOf(key.Root);
  for (const std::string& name : key.Path) {
    const auto child = node->Keys.find(FoldCase(name));
    if (child == node->Keys.end()) return nullptr;
    node = child->second.second.get();
  }
  return node;
}

bool TMemoryRegistry::AddKey(const TRegistryKey& key) {
  TNode* node = &RootOf(key.Root);
  for (const std::string& name : key.Path) node = &node->Child(name);
  return true;
}

bool TMemoryRegistry::RemoveKey(const TRegistryKey& key) {
  if (key.Path.empty()) return false;
  TRegistryKey above = key;
  above.Path.pop_back();
  TNode* const node = Find(above);
  return node != nullptr && node->Keys.erase(FoldCase(key.Path.back())) > 0;
}

std::vector<std::string> TMemoryRegistry::KeyNames(const TRegistryKey& key) const {
  const TNode* const node = Find(key);
  return node != nullptr ? NamesOf(node->Keys) : std::vector<std::string>();
}

std::vector<std::string> TMemoryRegistry::ValueNames(const TRegistryKey& key) const {
  const TNode* const node = Find(key);
  return node != nullptr ? NamesOf(node->Values) : std::vector<std::string>();
}

std::optional<TRegistryValue> TMemoryRegistry::Value(const TRegistryKey& key, const std::string& name) const {
  const TNode* const node = Find(key);
  if (node == nullptr) return std::nullopt;
  const auto value = node->Values.find(FoldCase(name));
  return value == node->Values.end() ? std::nullopt : std::optional(value->second.second);
}

bool TMemoryRegistry::SetValue(const TRegistryKey& key, const std::string& name, TRegistryValue value) {
  TNode* const node = Find(key);
  if (node == nullptr) return false;
  node->Values.try_emplace(FoldCase(name), name, TRegistryValue()).first->second.second = std::move(value);
  return true;
}

bool TMemoryRegistry::RemoveValue(const TRegistryKey& key, const std::string& name) {
  TNode* const node = Find(key);
  return node != nullptr && node->Values.erase(FoldCase(name)) > 0;
}

IRegistryStore& RegistryStore() {
  if (IRegistryStore* const store = TInForce<IRegistryStore*>::Current()) return *store;
  static TMemoryRegistry own;
  return own;
}

}  // namespace vx
