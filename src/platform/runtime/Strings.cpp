#include "platform/runtime/Strings.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "platform/runtime/List.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

constexpr char kLineEnd[] = "\r\n";

/// Control characters and blanks, of ASCII.
bool IsBlank(char letter) { return static_cast<unsigned char>(letter) <= ' '; }

bool NeedsQuotes(const std::string& text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return IsBlank(c) || c == ',' || c == '"'; });
}

std::string Quoted(const std::string& text) {
  std::string answer = "\"";
  for (const char letter : text) {
    if (letter == '"') answer.push_back('"');
    answer.push_back(letter);
  }
  return answer + "\"";
}

void SkipBlanks(std::string_view text, std::size_t& at) {
  while (at < text.size() && IsBlank(text[at])) ++at;
}

/// Stands on the opening quote; ends behind the closing one, or at the end of the text.
std::string ReadQuoted(std::string_view text, std::size_t& at) {
  std::string answer;
  for (++at; at < text.size(); ++at) {
    if (text[at] == '"') {
      ++at;
      if (at >= text.size() || text[at] != '"') return answer;
    }
    answer.push_back(text[at]);
  }
  return answer;
}

std::string ReadPlain(std::string_view text, std::size_t& at) {
  const std::size_t start = at;
  while (at < text.size() && !IsBlank(text[at]) && text[at] != ',') ++at;
  return std::string(text.substr(start, at - start));
}

}  // namespace

// -- TStrings ---------------------------------------------------------------------------------------------------------

const TClass& TStrings::StaticClass() {
  static const TClass info("TStrings", &TPersistent::StaticClass());
  return info;
}

void TStrings::CheckIndex(std::int32_t index) const {
  if (index < 0 || index >= GetCount()) RaiseListError(kListIndexError, index);
}

void TStrings::Put(std::int32_t index, const std::string& text) {
  TObject* const object = GetObject(index);
  const std::string copy = text;
  const TStringsUpdate update(*this);
  Delete(index);
  InsertObject(index, copy, object);
}

TObject* TStrings::GetObject(std::int32_t) const { return nullptr; }

void TStrings::PutObject(std::int32_t, TObject*) {}

void TStrings::InsertObject(std::int32_t index, const std::string& text, TObject* object) {
  const TStringsUpdate update(*this);
  Insert(index, text);
  PutObject(index, object);
}

std::int32_t TStrings::Add(const std::string& text) {
  const std::int32_t index = GetCount();
  Insert(index, text);
  return index;
}

std::int32_t TStrings::AddObject(const std::string& text, TObject* object) {
  const TStringsUpdate update(*this);
  const std::int32_t index = Add(text);
  PutObject(index, object);
  return index;
}

void TStrings::AddStrings(const TStrings& strings) {
  const TStringsUpdate update(*this);
  std::vector<std::pair<std::string, TObject*>> taken;  // first all out: the source may be this list
  for (std::int32_t at = 0; at < strings.GetCount(); ++at) taken.emplace_back(strings.Get(at), strings.GetObject(at));
  for (const auto& [text, object] : taken) AddObject(text, object);
}

void TStrings::Exchange(std::int32_t first, std::int32_t second) {
  CheckIndex(first);
  CheckIndex(second);
  const TStringsUpdate update(*this);
  const std::string text = Get(first);
  TObject* const object = GetObject(first);
  Put(first, Get(second));
  PutObject(first, GetObject(second));
  Put(second, text);
  PutObject(second, object);
}

void TStrings::Move(std::int32_t from, std::int32_t to) {
  CheckIndex(from);
  CheckIndex(to);
  if (from == to) return;
  const TStringsUpdate update(*this);
  const std::string text = Get(from);
  TObject* const object = GetObject(from);
  Delete(from);
  InsertObject(to, text, object);
}

void TStrings::Assign(const TPersistent* source) {
  if (source == this) return;
  const auto* const strings = As<TStrings>(source);
  if (strings == nullptr) return TPersistent::Assign(source);
  const TStringsUpdate update(*this);
  Clear();
  AddStrings(*strings);
}

void TStrings::AssignTo(TPersistent* dest) const { TPersistent::AssignTo(dest); }

std::int32_t TStrings::CompareStrings(std::string_view a, std::string_view b) const { return AnsiCompareText(a, b); }

std::int32_t TStrings::IndexOf(const std::string& text) const {
  for (std::int32_t at = 0; at < GetCount(); ++at)
    if (CompareStrings(Get(at), text) == 0) return at;
  return -1;
}

std::int32_t TStrings::IndexOfObject(const TObject* object) const {
  for (std::int32_t at = 0; at < GetCount(); ++at)
    if (GetObject(at) == object) return at;
  return -1;
}

bool TStrings::Equals(const TStrings& other) const {
  if (GetCount() != other.GetCount()) return false;
  for (std::int32_t at = 0; at < GetCount(); ++at)
    if (Get(at) != other.Get(at)) return false;
  return true;
}

std::string TStrings::GetName(std::int32_t index) const {
  const std::string text = Get(index);
  const std::size_t equals = text.find('=');
  return equals == std::string::npos ? std::string() : text.substr(0, equals);
}

std::string TStrings::GetValueFromIndex(std::int32_t index) const {
  const std::string text = Get(index);
  const std::size_t equals = text.find('=');
  return equals == std::string::npos ? std::string() : text.substr(equals + 1);
}

std::int32_t TStrings::IndexOfName(const std::string& name) const {
  for (std::int32_t at = 0; at < GetCount(); ++at) {
    const std::string text = Get(at);
    const std::size_t equals = text.find('=');
    if (equals != std::string::npos && CompareStrings(std::string_view(text).substr(0, equals), name) == 0) return at;
  }
  return -1;
}

std::string TStrings::GetValue(const std::string& name) const {
  const std::int32_t index = IndexOfName(name);
  return index < 0 ? std::string() : GetValueFromIndex(index);
}

void TStrings::SetValue(const std::string& name, const std::string& value) {
  const std::int32_t index = IndexOfName(name);
  if (value.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  if (index < 0)
    Add(name + "=" + value);
  else
    Put(index, name + "=" + value);
}

std::string TStrings::GetText() const {
  std::string answer;
  for (std::int32_t at = 0; at < GetCount(); ++at) answer.append(Get(at)).append(kLineEnd);
  return answer;
}

void TStrings::SetText(std::string_view text) {
  const std::string copy(text);  // the text may be one of this list's own
  text = copy;
  const TStringsUpdate update(*this);
  Clear();
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(kLineEnd), text.size());
    Add(std::string(text.substr(0, end)));
    const bool isPair = text.substr(end, 2) == kLineEnd;
    text.remove_prefix(std::min(end + (isPair ? 2 : 1), text.size()));
  }
}

std::string TStrings::GetCommaText() const {
  if (GetCount() == 1 && Get(0).empty()) return Quoted({});
  std::string answer;
  for (std::int32_t at = 0; at < GetCount(); ++at) {
    const std::string text = Get(at);
    if (at > 0) answer.push_back(',');
    answer += NeedsQuotes(text) ? Quoted(text) : text;
  }
  return answer;
}

void TStrings::SetCommaText(std::string_view text) {
  const std::string copy(text);
  text = copy;
  const TStringsUpdate update(*this);
  Clear();
  std::size_t at = 0;
  SkipBlanks(text, at);
  while (at < text.size()) {
    Add(text[at] == '"' ? ReadQuoted(text, at) : ReadPlain(text, at));
    SkipBlanks(text, at);
    if (at >= text.size() || text[at] != ',') continue;
    ++at;
    SkipBlanks(text, at);
    if (at >= text.size()) Add("");  // a comma promises one more
  }
}

void TStrings::BeginUpdate() {
  if (updateCount_ == 0) Changing();
  ++updateCount_;
}

void TStrings::EndUpdate() {
  if (updateCount_ == 0) return;
  --updateCount_;
  if (updateCount_ == 0) Changed();
}

TStringsUpdate::TStringsUpdate(TStrings& strings) : strings_(strings), exceptions_(std::uncaught_exceptions()) {
  strings_.BeginUpdate();
}

TStringsUpdate::~TStringsUpdate() noexcept(false) {
  try {
    strings_.EndUpdate();
  } catch (...) {
    // Beside an exception that is on its way already, a second would end the program; the first tells what went wrong.
    if (std::uncaught_exceptions() == exceptions_) throw;
  }
}

// -- TStringList ------------------------------------------------------------------------------------------------------

const TClass& TStringList::StaticClass() {
  static const TClass info("TStringList", &TStrings::StaticClass(), []() -> TObject* { return new TStringList; });
  return info;
}

void TStringList::CheckUnsorted() const {
  if (sorted_) throw EStringListError("Operation not allowed on sorted string list");
}

TStringList::TItem& TStringList::ItemAt(std::int32_t index) {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)];
}

const std::string& TStringList::At(std::int32_t index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].Text;
}

std::string TStringList::Get(std::int32_t index) const { return At(index); }

void TStringList::Put(std::int32_t index, const std::string& text) {
  CheckUnsorted();
  CheckIndex(index);
  std::string copy = text;
  const TStringsUpdate update(*this);
  ItemAt(index).Text.swap(copy);
}

TObject* TStringList::GetObject(std::int32_t index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].Object;
}

void TStringList::PutObject(std::int32_t index, TObject* object) {
  CheckIndex(index);
  const TStringsUpdate update(*this);
  ItemAt(index).Object = object;
}

void TStringList::Clear() {
  if (items_.empty()) return;
  const TStringsUpdate update(*this);
  std::vector<TItem>().swap(items_);
}

void TStringList::Delete(std::int32_t index) {
  CheckIndex(index);
  const TStringsUpdate update(*this);
  CheckIndex(index);  // Changing() may have changed the list
  items_.erase(items_.begin() + index);
}

void TStringList::InsertItem(std::int32_t index, const std::string& text, TObject* object) {
  TItem item{text, object};
  const TStringsUpdate update(*this);
  if (index < 0 || index > GetCount()) RaiseListError(kListIndexError, index);
  items_.insert(items_.begin() + index, std::move(item));
}

void TStringList::Insert(std::int32_t index, const std::string& text) { InsertObject(index, text, nullptr); }

void TStringList::InsertObject(std::int32_t index, const std::string& text, TObject* object) {
  CheckUnsorted();
  if (index < 0 || index > GetCount()) RaiseListError(kListIndexError, index);
  InsertItem(index, text, object);
}

std::int32_t TStringList::Add(const std::string& text) { return AddObject(text, nullptr); }

std::int32_t TStringList::AddObject(const std::string& text, TObject* object) {
  std::int32_t index = GetCount();
  if (sorted_ && Find(text, index)) {
    if (duplicates_ == dupIgnore) return index;
    if (duplicates_ == dupError) throw EStringListError("String list does not allow duplicates: '" + text + "'");
  }
  InsertItem(index, text, object);
  return index;
}

void TStringList::Exchange(std::int32_t first, std::int32_t second) {
  CheckUnsorted();
  CheckIndex(first);
  CheckIndex(second);
  const TStringsUpdate update(*this);
  std::swap(ItemAt(first), ItemAt(second));
}

void TStringList::Move(std::int32_t from, std::int32_t to) {
  CheckUnsorted();
  TStrings::Move(from, to);
}

std::int32_t TStringList::CompareStrings(std::string_view a, std::string_view b) const {
  return caseSensitive_ ? CompareStr(a, b) : AnsiCompareText(a, b);
}

std::int32_t TStringList::IndexOf(const std::string& text) const {
  std::int32_t index = -1;
  if (sorted_) return Find(text, index) ? index : -1;
  const auto at = std::find_if(items_.begin(), items_.end(),
                               [&](const TItem& item) { return CompareStrings(item.Text, text) == 0; });
  return at == items_.end() ? -1 : static_cast<std::int32_t>(at - items_.begin());
}

bool TStringList::Find(std::string_view text, std::int32_t& index) const {
  const auto at = std::lower_bound(
      items_.begin(), items_.end(), text,
      [this](const TItem& item, std::string_view wanted) { return CompareStrings(item.Text, wanted) < 0; });
  index = static_cast<std::int32_t>(at - items_.begin());
  return at != items_.end() && CompareStrings(at->Text, text) == 0;
}

void TStringList::Sort() {
  const TStringsUpdate update(*this);
  std::stable_sort(items_.begin(), items_.end(),
                   [this](const TItem& a, const TItem& b) { return CompareStrings(a.Text, b.Text) < 0; });
}

void TStringList::SortBy(const std::function<bool(const std::string&, const std::string&)>& less) {
  CheckUnsorted();
  const TStringsUpdate update(*this);
  std::stable_sort(items_.begin(), items_.end(), [&](const TItem& a, const TItem& b) { return less(a.Text, b.Text); });
}

void TStringList::SetSorted(bool sorted) {
  if (sorted == sorted_) return;
  if (sorted) Sort();
  sorted_ = sorted;
}

void TStringList::SetCaseSensitive(bool caseSensitive) {
  if (caseSensitive == caseSensitive_) return;
  caseSensitive_ = caseSensitive;
  if (sorted_) Sort();
}

}  // namespace vx
