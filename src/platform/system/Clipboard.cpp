#include "platform/system/Clipboard.h"

#include <deque>
#include <utility>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/Text.h"
#include "platform/system/InForce.h"

namespace vx {
namespace {

/// The names, each at its number less one; a deque, so that they stay where they are.
std::deque<std::string>& FormatNames() {
  static std::deque<std::string> names{"text/plain", "image/png"};
  return names;
}

IClipboardStore& Store() {
  if (IClipboardStore* const store = TInForce<IClipboardStore*>::Current()) return *store;
  static TMemoryClipboard own;
  return own;
}

}  // namespace

TClipboardFormat RegisterClipboardFormat(std::string_view name) {
  if (name.empty()) throw EInvalidOperation("A clipboard format needs a name");
  std::deque<std::string>& names = FormatNames();
  std::size_t at = 0;
  while (at < names.size() && !SameText(names[at], name)) ++at;
  if (at == names.size()) names.emplace_back(name);
  return static_cast<TClipboardFormat>(at + 1);
}

const std::string& ClipboardFormatName(TClipboardFormat format) {
  const std::deque<std::string>& names = FormatNames();
  if (format < 1 || static_cast<std::size_t>(format) > names.size())
    throw EInvalidOperation("No clipboard format has the number " + std::to_string(format));
  return names[static_cast<std::size_t>(format) - 1];
}

std::string TMemoryClipboard::Get(const std::string& format) {
  const auto found = contents_.find(format);
  return found == contents_.end() ? std::string() : found->second;
}

bool TClipboard::HasFormat(TClipboardFormat format) const {
  const std::string& name = ClipboardFormatName(format);
  return isWritten_ ? written_.contains(name) : Store().Has(name);
}

std::string TClipboard::GetAsBytes(TClipboardFormat format) const {
  const std::string& name = ClipboardFormatName(format);
  if (!isWritten_) return Store().Get(name);
  const auto found = written_.find(name);
  return found == written_.end() ? std::string() : found->second;
}

void TClipboard::Clear() {
  isWritten_ = true;
  written_.clear();
  Share();
}

void TClipboard::SetAsBytes(TClipboardFormat format, std::string bytes) {
  written_[ClipboardFormatName(format)] = std::move(bytes);
  isWritten_ = true;
  Share();
}

void TClipboard::Close() {
  if (open_ == 0) return;
  --open_;
  Share();
}

void TClipboard::Share() {
  if (open_ == 0 && std::exchange(isWritten_, false)) Store().Put(std::exchange(written_, {}));
}

TClipboard& Clipboard() {
  static TClipboard clipboard;
  return clipboard;
}

}  // namespace vx
