#include "Conditions.h"

#include <array>
#include <optional>
#include <utility>

#include "ColumnNames.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

struct TOperatorWord {
  std::string_view word;
  TOperator op;
};

/// Longer words before those they begin with.
constexpr std::array<TOperatorWord, 6> kSigns = {{{"<=", TOperator::LessOrEqual},
                                                  {">=", TOperator::GreaterOrEqual},
                                                  {"!=", TOperator::NotEqual},
                                                  {"<", TOperator::Less},
                                                  {">", TOperator::Greater},
                                                  {"=", TOperator::Equal}}};
constexpr std::array<TOperatorWord, 2> kEndings = {
    {{" is not null", TOperator::IsNotNull}, {" is null", TOperator::IsNull}}};

/// A condition before its column and value are looked up.
struct TParts {
  std::string_view column;
  TOperator op;
  std::string_view value;
};

const TOperatorWord* SignAt(std::string_view text, std::size_t at) {
  for (const TOperatorWord& sign : kSigns)
    if (text.substr(at).starts_with(sign.word)) return &sign;
  return nullptr;
}

std::optional<TParts> SplitAtEnding(std::string_view text) {
  const std::string lower = LowerCase(text);
  for (const auto& [word, op] : kEndings)
    if (lower.ends_with(word)) return TParts{text.substr(0, text.size() - word.size()), op, {}};
  return std::nullopt;
}

/// At the first sign with a heading before it, since headings may hold signs; else at the first sign.
std::optional<TParts> SplitAtSign(std::string_view text, const std::vector<std::string>& headings) {
  std::optional<TParts> first;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const TOperatorWord* const sign = SignAt(text, at);
    if (sign == nullptr) continue;
    const TParts parts{text.substr(0, at), sign->op, text.substr(at + sign->word.size())};
    if (FindHeading(headings, parts.column)) return parts;
    if (!first) first = parts;
    at += sign->word.size() - 1;
  }
  return first;
}

TParts Split(std::string_view text, const std::vector<std::string>& headings) {
  const auto bySign = SplitAtSign(text, headings);
  const auto byEnding = SplitAtEnding(text);
  // "Note= is null" looks for that text; "a=b is null" may be about a column of that odd name.
  if (byEnding && (!bySign || FindHeading(headings, byEnding->column))) return *byEnding;
  if (!bySign)
    throw EUserError("--where " + Quoted(text) +
                     " should be COLUMN=VALUE, with one of = != < <= > >=, or COLUMN is null");
  return *bySign;
}

bool OrderFits(TOperator op, std::int32_t order) {
  switch (op) {
    case TOperator::Less:
      return order < 0;
    case TOperator::LessOrEqual:
      return order <= 0;
    case TOperator::Greater:
      return order > 0;
    default:
      return order >= 0;
  }
}

}  // namespace

TCondition ParseCondition(std::string_view text, const TColumnPlan& plan) {
  const std::vector<std::string> headings = HeadingsOfPlan(plan);
  const TParts parts = Split(text, headings);
  TCondition condition{NeedHeading(headings, parts.column), parts.op, {}};
  if (parts.op == TOperator::IsNull || parts.op == TOperator::IsNotNull) return condition;
  const std::string_view value = Trimmed(parts.value);
  const TColumn& column = plan.columns[condition.column];
  if (value.empty() && parts.op == TOperator::Equal) return {condition.column, TOperator::IsNull, {}};
  if (value.empty() && parts.op == TOperator::NotEqual) return {condition.column, TOperator::IsNotNull, {}};
  condition.value = CellOfText(value, column.type, column.dateOrder, plan.decimal);
  if (IsNull(condition.value))
    throw EUserError("--where " + Quoted(text) + ": column " + Quoted(column.heading) + " is of type " +
                     std::string(TypeName(column.type)) + ", and " + Quoted(value) + " is not");
  return condition;
}

bool Matches(const TCondition& condition, const TCellValue& value) {
  if (condition.op == TOperator::IsNull) return IsNull(value);
  if (condition.op == TOperator::IsNotNull) return !IsNull(value);
  if (IsNull(value)) return false;
  if (condition.op == TOperator::Equal) return AreSameCells(value, condition.value);
  if (condition.op == TOperator::NotEqual) return !AreSameCells(value, condition.value);
  return OrderFits(condition.op, CompareCells(value, condition.value));
}

}  // namespace vx::kestrix
