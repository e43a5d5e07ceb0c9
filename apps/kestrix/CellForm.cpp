#include "CellForm.h"

#include <algorithm>
#include <utility>

#include "TableLoader.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::pair<std::string_view, std::string_view> kBooleanWords[] = {{"false", "true"}, {"no", "yes"}};

bool Contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

/// The word that goes with another: "No" with "Yes".
std::string PartnerOf(std::string_view word) {
  for (const auto& [no, yes] : kBooleanWords) {
    if (LowerCase(word) == no) return InCaseOf(word, yes);
    if (LowerCase(word) == yes) return InCaseOf(word, no);
  }
  return {};
}

/// Digits behind the decimal character.
std::size_t DecimalsOf(std::string_view number, char decimal) {
  const std::size_t mark = number.find(decimal);
  if (mark == std::string_view::npos) return 0;
  return std::min(number.find_first_not_of("0123456789", mark + 1), number.size()) - mark - 1;
}

}  // namespace

TCellForm::TCellForm(const TColumn& column, char decimal, const TNullWords& nulls)
    : column_(column), decimal_(decimal), nulls_(nulls), dates_(column.dateOrder) {}

void TCellForm::Add(std::string_view cell) {
  const std::string_view text = Trimmed(cell);
  const TCellValue value = ValueOfText(text, column_, decimal_, nulls_);
  if (IsNull(value)) return;
  if (const auto* isTrue = std::get_if<bool>(&value)) AddBoolean(text, *isTrue);
  if (std::holds_alternative<double>(value)) AddFloat(text);
  if (std::holds_alternative<TMoment>(value)) dates_.Add(text);
  ++values_;
}

void TCellForm::AddBoolean(std::string_view word, bool isTrue) {
  if (!Contains(words_[isTrue], word)) words_[isTrue].emplace_back(word);
}

void TCellForm::AddFloat(std::string_view number) {
  const std::size_t decimals = DecimalsOf(number, decimal_);
  decimals_ = values_ == 0 ? decimals : std::min(decimals_, decimals);
}

// -- Writing ----------------------------------------------------------------------------------------------------------

bool TCellForm::IsTypedInForm(const TCellValue& value, std::string_view typed) const {
  if (values_ == 0) return true;
  if (const auto* isTrue = std::get_if<bool>(&value)) return Contains(words_[*isTrue], typed);
  if (std::holds_alternative<double>(value)) return ReadFloat(typed, decimal_).has_value();
  if (std::holds_alternative<TMoment>(value)) return dates_.Has(typed);
  return true;
}

std::string TCellForm::BooleanWord(bool isTrue) const {
  if (!words_[isTrue].empty()) return words_[isTrue].front();
  return words_[!isTrue].empty() ? CellText(isTrue) : PartnerOf(words_[!isTrue].front());
}

std::string TCellForm::FloatText(double value, std::size_t leastDecimals) const {
  std::string text = NumberText(value);
  if (text.find('e') == std::string::npos) {
    const std::size_t decimals = DecimalsOf(text, '.');
    if (decimals == 0 && leastDecimals > 0) text += '.';
    text.append(leastDecimals - std::min(leastDecimals, decimals), '0');
  }
  std::replace(text.begin(), text.end(), '.', decimal_);
  return text;
}

std::vector<std::string> TCellForm::Candidates(const TCellValue& value) const {
  if (const auto* isTrue = std::get_if<bool>(&value)) return {BooleanWord(*isTrue)};
  if (const auto* number = std::get_if<double>(&value))
    return {FloatText(*number, decimals_), FloatText(*number, std::max<std::size_t>(decimals_, 1))};
  if (const auto* moment = std::get_if<TMoment>(&value))
    return {dates_.Write(*moment), dates_.Write(*moment, /*isWhole=*/true), CellText(value)};
  return {CellText(value)};
}

std::vector<std::string> TCellForm::Spellings(const TCellValue& value, std::string_view typed) const {
  std::vector<std::string> candidates = Candidates(value);
  if (IsTypedInForm(value, typed)) candidates.insert(candidates.begin(), std::string(typed));
  std::vector<std::string> spellings;
  for (std::string& text : candidates)
    if (!Contains(spellings, text) && AreSameValues(ValueOfText(text, column_, decimal_, nulls_), value))
      spellings.push_back(std::move(text));
  return spellings;
}

}  // namespace vx::kestrix
