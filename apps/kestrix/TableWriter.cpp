#include "TableWriter.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <utility>

#include "Interrupt.h"
#include "JsonText.h"
#include "UserError.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

// -- Aligned ----------------------------------------------------------------------------------------------------------

class TAlignedWriter : public ITableWriter {
 public:
  explicit TAlignedWriter(std::ostream& out) : out_(out) {}

  void Begin(const std::vector<TWrittenColumn>& columns) override {
    columns_ = columns;
    widths_.resize(columns.size());
    std::vector<std::string> headings;
    for (const TWrittenColumn& column : columns) headings.push_back(OneLine(column.heading));
    Take(std::move(headings));
  }

  void Row(const std::vector<TCellValue>& values) override {
    std::vector<std::string> cells;
    for (std::size_t i = 0; i < values.size(); ++i) cells.push_back(Shown(values[i], columns_[i].decimals));
    Take(std::move(cells));
  }

  void Totals(const std::vector<TCellValue>& values) override {
    totals_ = rows_.size();
    Row(values);
  }

  void End() override {
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      CheckInterrupt();
      if (row == 1 || (row > 0 && row == totals_)) WriteRule();
      WriteLine(rows_[row]);
    }
    if (rows_.size() == 1) WriteRule();
  }

 private:
  static std::string Shown(const TCellValue& value, const std::optional<int>& decimals) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr && decimals ? NumberText(*number, *decimals) : OneLine(CellText(value));
  }

  void Take(std::vector<std::string> cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) widths_[i] = std::max(widths_[i], CodePointCount(cells[i]));
    rows_.push_back(std::move(cells));
  }

  /// Without blanks at the end of a line.
  void WriteLine(const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(widths_[i] - CodePointCount(cells[i]), ' ');
      if (i > 0) line += "  ";
      line += columns_[i].isNumber ? padding + cells[i] : cells[i] + padding;
    }
    const std::size_t last = line.find_last_not_of(' ');
    out_ << line.substr(0, last == std::string::npos ? 0 : last + 1) << '\n';
  }

  void WriteRule() {
    std::vector<std::string> rule;
    for (const std::size_t width : widths_) rule.emplace_back(width, '-');
    WriteLine(rule);
  }

  std::ostream& out_;
  std::vector<TWrittenColumn> columns_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<std::string>> rows_;  // the headings first
  std::size_t totals_ = 0;                      // the row of totals; 0 for none
};

// -- Separated --------------------------------------------------------------------------------------------------------

class TSeparatedWriter : public ITableWriter {
 public:
  TSeparatedWriter(std::ostream& out, char separator) : out_(out), separator_(separator) {}

  void Begin(const std::vector<TWrittenColumn>& columns) override {
    std::vector<std::string> headings;
    for (const TWrittenColumn& column : columns) headings.push_back(column.heading);
    WriteLine(headings);
  }

  void Row(const std::vector<TCellValue>& values) override {
    std::vector<std::string> cells;
    for (const TCellValue& value : values) cells.push_back(CellText(value));
    WriteLine(cells);
  }

  void End() override {}

 private:
  void WriteLine(const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (i > 0) out_ << separator_;
      out_ << SeparatedText(cells[i], separator_, cells.size() == 1);
    }
    out_ << '\n';
  }

  std::ostream& out_;
  char separator_;
};

// -- JSON -------------------------------------------------------------------------------------------------------------

class TJsonWriter : public ITableWriter {
 public:
  explicit TJsonWriter(std::ostream& out) : out_(out) {}

  void Begin(const std::vector<TWrittenColumn>& columns) override {
    for (const TWrittenColumn& column : columns) keys_.push_back(JsonText(column.heading));
    out_ << '[';
  }

  void Row(const std::vector<TCellValue>& values) override {
    out_ << (std::exchange(hasRows_, true) ? ",\n" : "\n") << '{';
    for (std::size_t i = 0; i < values.size(); ++i)
      out_ << (i > 0 ? ", " : "") << keys_[i] << ": " << JsonValue(values[i]);
    out_ << '}';
  }

  void End() override { out_ << (hasRows_ ? "\n]\n" : "]\n"); }

 private:
  std::ostream& out_;
  std::vector<std::string> keys_;
  bool hasRows_ = false;
};

constexpr std::array<std::pair<std::string_view, TTableFormat>, 4> kFormats = {{{"table", TTableFormat::Table},
                                                                                {"csv", TTableFormat::Csv},
                                                                                {"tsv", TTableFormat::Tsv},
                                                                                {"json", TTableFormat::Json}}};

}  // namespace

std::string SeparatedText(const std::string& cell, char separator, bool isAlone) {
  const bool isPlain = cell.find_first_of(std::string{separator, '"', '\r', '\n'}) == std::string::npos;
  if (isPlain && !(isAlone && cell.empty())) return cell;
  std::string text = "\"";
  for (const char c : cell) text.append(c == '"' ? 2 : 1, c);
  return text + '"';
}

std::string JsonValue(const TCellValue& value) {
  if (IsNull(value)) return "null";
  if (const auto* isTrue = std::get_if<bool>(&value)) return *isTrue ? "true" : "false";
  const bool isNumber = std::holds_alternative<std::int32_t>(value) || std::holds_alternative<double>(value);
  return isNumber ? CellText(value) : JsonText(CellText(value));
}

std::optional<TTableFormat> FormatOfName(std::string_view name) {
  for (const auto& [known, format] : kFormats)
    if (known == name) return format;
  return std::nullopt;
}

std::unique_ptr<ITableWriter> MakeTableWriter(TTableFormat format, std::ostream& out) {
  switch (format) {
    case TTableFormat::Csv:
      return std::make_unique<TSeparatedWriter>(out, ',');
    case TTableFormat::Tsv:
      return std::make_unique<TSeparatedWriter>(out, '\t');
    case TTableFormat::Json:
      return std::make_unique<TJsonWriter>(out);
    case TTableFormat::Table:
      break;
  }
  return std::make_unique<TAlignedWriter>(out);
}

}  // namespace vx::kestrix
