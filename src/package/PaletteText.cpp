#include <algorithm>
#include <array>
#include <charconv>

#include "package/PaletteListing.h"
#include "platform/runtime/Text.h"

namespace vx {

namespace {

constexpr std::size_t kWidth = 100;
constexpr std::size_t kStep = 2;
constexpr std::size_t kWidestColumn = 32;  // a longer name pushes what follows, in its own line

std::string Padded(std::string text, std::size_t width) {
  const std::size_t count = CodePointCount(text);
  return text.append(count < width ? width - count : 0, ' ');
}

/// `first`, then the pieces with commas between them; what would go beyond the width goes to another line, indented.
std::string Wrapped(const std::string& first, const std::vector<std::string>& pieces, std::size_t indent) {
  std::string text = first;
  std::size_t column = CodePointCount(first);
  bool isFresh = true;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const std::string piece = pieces[i] + (i + 1 < pieces.size() ? "," : "");
    const std::size_t count = CodePointCount(piece);
    if (!isFresh && column + 1 + count > kWidth) {
      text += "\n" + std::string(indent, ' ');
      column = indent;
      isFresh = true;
    }
    text += (isFresh ? "" : " ") + piece;
    column += count + (isFresh ? 0 : 1);
    isFresh = false;
  }
  return text.erase(text.find_last_not_of(' ') + 1) + "\n";
}

/// In single quotes, those within doubled; control characters and bytes that are no text by their number: 'a'#10'b'.
std::string Literal(const std::string& text) {
  std::string literal = "'";
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t start = at;
    const char32_t code = NextCodePoint(text, at);
    if (code < 0x20 || code == 0x7F || code >= kMalformed)
      literal += "'#" + std::to_string(static_cast<unsigned char>(text[start])) + "'";
    else
      literal.append(code == '\'' ? "'" : "").append(text, start, at - start);
  }
  return literal + "'";
}

std::string NumberText(double number) {
  std::array<char, 32> buffer;
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

std::string DefaultText(const TPropertyListing& property) {
  const TListedDefault& value = *property.Default;
  if (const auto* const isTrue = std::get_if<bool>(&value)) return *isTrue ? "True" : "False";
  if (const auto* const ordinal = std::get_if<std::int64_t>(&value)) return std::to_string(*ordinal);
  if (const auto* const number = std::get_if<double>(&value)) return NumberText(*number);
  const auto& text = std::get<std::string>(value);
  return property.Kind == tkString || property.Kind == tkChar ? Literal(text) : text;
}

std::vector<std::string> RemarksOf(const TPropertyListing& property) {
  std::vector<std::string> remarks;
  if (property.Default) remarks.push_back("default " + DefaultText(property));
  if (property.IsReadOnly) remarks.push_back("read-only");
  if (property.Storage != lsAlways)
    remarks.push_back(property.Storage == lsByRule ? "stored by a rule" : "never stored");
  if (!property.ItemClass.empty()) remarks.push_back("items of " + property.ItemClass);
  return remarks;
}

std::size_t WidestOf(const std::vector<TPropertyListing>& properties, std::string TPropertyListing::*text) {
  std::size_t widest = 0;
  for (const TPropertyListing& property : properties)
    if (const std::size_t width = CodePointCount(property.*text); width <= kWidestColumn)
      widest = std::max(widest, width);
  return widest;
}

class TPaletteWriter {
 public:
  std::string Text(const std::vector<TPageListing>& pages) {
    for (const TPageListing& page : pages) {
      text_ += (text_.empty() ? "" : "\n") + (page.Name.empty() ? "Registered without a page" : page.Name) + "\n";
      for (const TClassListing& type : page.Classes) Write(type);
    }
    WriteEnumerations();
    return std::move(text_);
  }

 private:
  void Write(const TClassListing& type) {
    const std::string indent(kStep, ' ');
    std::vector<std::string> ancestors = type.Ancestors;
    if (!ancestors.empty()) {
      ancestors.front().insert(0, "(");
      ancestors.back() += ")";
    }
    text_ += "\n" + Wrapped(indent + type.Name + " ", ancestors, 3 * kStep);
    WriteAll(type.Properties, 2 * kStep);
    if (type.Events.empty()) return;
    text_ += "  " + indent + "Events\n";
    WriteAll(type.Events, 3 * kStep);
  }

  void WriteAll(const std::vector<TPropertyListing>& properties, std::size_t indent) {
    const std::size_t names = WidestOf(properties, &TPropertyListing::Name);
    const std::size_t types = WidestOf(properties, &TPropertyListing::TypeName);
    for (const TPropertyListing& property : properties) {
      const std::string head =
          std::string(indent, ' ') + Padded(property.Name, names) + "  " + Padded(property.TypeName, types) + "  ";
      text_ += Wrapped(head, RemarksOf(property), indent + names + types + 2 * kStep);
      WriteAll(property.Parts, indent + kStep);
      Note(property);
    }
  }

  void Note(const TPropertyListing& property) {
    if (property.Members.empty()) return;
    std::string name = property.TypeName;
    if (property.Kind == tkSet && name.starts_with("set of ")) name.erase(0, 7);
    const bool isNoted = std::any_of(enumerations_.begin(), enumerations_.end(), [&](const TEnumeration& each) {
      return each.first == name && each.second == property.Members;
    });
    if (!isNoted) enumerations_.emplace_back(name, property.Members);
  }

  void WriteEnumerations() {
    if (enumerations_.empty()) return;
    text_ += "\nEnumerations\n";
    for (const auto& [name, members] : enumerations_)
      text_ += "\n" + std::string(kStep, ' ') + name + "\n" + Wrapped(std::string(2 * kStep, ' '), members, 2 * kStep);
  }

  using TEnumeration = std::pair<std::string, std::vector<std::string>>;
  std::vector<TEnumeration> enumerations_;  // in the order in which they occur
  std::string text_;
};

}  // namespace

std::string PaletteText(const std::vector<TPageListing>& pages) { return TPaletteWriter().Text(pages); }

}  // namespace vx
