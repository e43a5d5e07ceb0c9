#include "platform/system/TranslationCheck.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>

#include "platform/runtime/StringResources.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

struct TPlaceholder {
  std::string Meaning;  ///< with its argument's number, letters in small; equal for what prints the same
  std::string Text;     ///< as it is written

  bool operator<(const TPlaceholder& other) const { return Meaning < other.Meaning; }
};

std::string_view DigitsAt(std::string_view text, std::size_t at) {
  const std::size_t end = std::min(text.find_first_not_of("0123456789", at), text.size());
  return text.substr(at, end - at);
}

/// Reads the placeholder behind the "%" at `at` by both notations at once, and moves behind it; false for none.
bool ReadPlaceholder(std::string_view text, std::size_t& at, std::string& index, std::string& form) {
  std::size_t next = at + 1;
  const std::string_view digits = DigitsAt(text, next);
  const std::size_t behind = next + digits.size();
  if (!digits.empty() && behind < text.size() && text[behind] == ':') {
    index = digits;
    next = behind + 1;
  }
  const std::size_t end = std::min(text.find_first_not_of("-.0123456789", next), text.size());
  const bool isLong = end < text.size() && (text[end] == 'l' || text[end] == 'L');
  const std::size_t letter = end + (isLong ? 1 : 0);
  if (letter >= text.size() ||
      std::string_view("adefgmnpstux").find(LowerCase(text.substr(letter, 1))) == std::string_view::npos)
    return false;
  form = LowerCase(text.substr(next, letter + 1 - next));
  at = letter + 1;
  return true;
}

/// Sorted. A placeholder without an index takes the argument behind the one before it.
std::vector<TPlaceholder> PlaceholdersOf(std::string_view text) {
  std::vector<TPlaceholder> found;
  std::int64_t argument = 0;
  for (std::size_t at = 0; (at = text.find('%', at)) != std::string_view::npos;) {
    const std::size_t from = at;
    std::string index, form;
    if (text.substr(at).starts_with("%%")) {
      at += 2;
    } else if (ReadPlaceholder(text, at, index, form)) {
      if (!index.empty()) argument = std::stoll(index.substr(0, 9));
      found.push_back({std::to_string(argument++) + ":" + form, std::string(text.substr(from, at - from))});
    } else {
      found.push_back({"%", "%"});
      ++at;
    }
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// Those of `a` that `b` lacks, as they are written.
std::string Beyond(const std::vector<TPlaceholder>& a, const std::vector<TPlaceholder>& b) {
  std::vector<TPlaceholder> beyond;
  std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(beyond));
  std::string texts;
  for (const TPlaceholder& placeholder : beyond) texts += (texts.empty() ? "" : ", ") + placeholder.Text;
  return texts;
}

/// What differs in the placeholders; empty if nothing does.
std::string Difference(std::string_view original, std::string_view translated) {
  const std::vector<TPlaceholder> wanted = PlaceholdersOf(original);
  std::vector<TPlaceholder> given = PlaceholdersOf(translated);
  if (wanted.empty()) std::erase_if(given, [](const TPlaceholder& each) { return each.Text == "%"; });
  const std::string lacks = Beyond(wanted, given);
  const std::string adds = Beyond(given, wanted);
  std::string text = lacks.empty() ? "" : lacks + " is missing";
  if (!adds.empty()) text += (text.empty() ? "" : ", ") + adds + " isn't in the original";
  return text;
}

void CheckText(const TResourceFile::TString& text, std::string_view original, std::vector<TTranslationFault>& faults) {
  const auto tell = [&](TFaultSeverity severity, std::string message) {
    faults.push_back({text.Line, text.Id, severity, std::move(message)});
  };
  if (original.empty()) return tell(fsWarning, "the system has no such text");
  if (text.Text.empty()) return tell(fsError, "the text is empty (" + QuotedResource(original) + ")");
  if (std::string difference = Difference(original, text.Text); !difference.empty()) tell(fsError, difference);
}

/// What a person types behind a number must name one unit.
void CheckDurationUnits(const TResourceFile& file, std::vector<TTranslationFault>& faults) {
  static constexpr std::int32_t kUnits[] = {14660, 14661, 14662, 14663, 14664, 14669, 14670};
  std::map<std::string, std::int32_t> known;
  for (const auto& text : file.Strings) {
    if (std::find(std::begin(kUnits), std::end(kUnits), text.Id) == std::end(kUnits) || text.Text.empty()) continue;
    const auto [first, isNew] = known.emplace(AnsiLowerCase(text.Text), text.Id);
    if (!isNew)
      faults.push_back({text.Line, text.Id, fsError, "the same unit of durations as " + std::to_string(first->second)});
    if (text.Text.find_first_of("0123456789") != std::string::npos)
      faults.push_back({text.Line, text.Id, fsError, "a unit of durations with a digit can't be read again"});
    if (Trimmed(text.Text) != text.Text)
      faults.push_back({text.Line, text.Id, fsError, "a unit of durations with a blank at an end can't be read again"});
  }
}

}  // namespace

std::vector<TTranslationFault> CheckTranslation(const TResourceFile& file) {
  std::vector<TTranslationFault> faults;
  std::map<std::int32_t, std::string_view> missing;
  for (const auto& [id, text] : OriginalResourceStrings()) missing.emplace(id, text);
  for (const auto& text : file.Strings) {
    const auto original = missing.find(text.Id);
    CheckText(text, original == missing.end() ? std::string_view() : original->second, faults);
    if (original != missing.end()) missing.erase(original);
  }
  CheckDurationUnits(file, faults);
  std::stable_sort(faults.begin(), faults.end(), [](const auto& a, const auto& b) { return a.Line < b.Line; });
  for (const auto& [id, text] : missing)
    faults.push_back({0, id, fsError, "the text is missing (" + QuotedResource(text) + ")"});
  return faults;
}

std::vector<TTranslationFault> CheckTranslationFile(const std::string& fileName) {
  try {
    return CheckTranslation(ReadResourceFile(fileName));
  } catch (const EResourceFileError& error) {
    const std::string column = error.Line() == 0 ? "" : "column " + std::to_string(error.Column()) + ": ";
    return {{error.Line(), 0, fsError, column + error.What()}};
  }
}

}  // namespace vx
