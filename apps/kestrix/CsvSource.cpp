#include "CsvSource.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "ColumnNames.h"
#include "Encoding.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr std::size_t kRecordsPerReport = 2048;

std::string Counted(std::size_t count, const std::string& thing) {
  return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

}  // namespace

TCsvSource::TCsvSource(TCsvOptions options, std::ostream& remarks) : options_(std::move(options)), remarks_(remarks) {}

void TCsvSource::Add(const std::string& name, std::string bytes) {
  TDecodedText decoded = DecodeText(std::move(bytes));
  if (!decoded.remark.empty()) Remark({name, decoded.line, {}}, decoded.remark);
  if (decoded.text.find_first_not_of("\r\n") == std::string::npos) throw EUserError({name, 0, {}}, "the file is empty");
  TFile file{.name = name, .text = std::move(decoded.text)};
  file.isAsItWas = decoded.isAsItWas;
  file.hadMark = decoded.hadMark;
  file.separator = options_.separator.value_or(DetectSeparator(file.text));
  file.hasHeader = options_.hasHeader.value_or(DetectHeader(file.text, file.separator, options_.nulls));
  SetColumns(file);
  totalBytes_ += file.text.size();
  files_.push_back(std::move(file));
}

void TCsvSource::SetColumns(const TFile& file) {
  TCsvReader reader(file.text, file.separator, options_.limits);
  try {
    reader.Next();
  } catch (const ECsvError& error) {
    throw ErrorOf(file, error);
  }
  if (!file.hasHeader && !options_.hasHeader)
    Remark({file.name, reader.Line(), {}}, "no header line found; the columns are called \"Column 1\" and so on");
  std::vector<std::string> headings =
      file.hasHeader ? HeadingsOf(reader.Fields()) : NumberedHeadings(reader.Fields().size());
  if (!files_.empty() && headings != headings_)
    throw EUserError({file.name, reader.Line(), {}}, "the columns are not those of " + OneLine(Name()));
  headings_ = std::move(headings);
}

bool TCsvSource::MayHaveDecimalComma() const {
  return std::none_of(files_.begin(), files_.end(), [](const TFile& file) { return file.separator == ','; });
}

// -- Walking ----------------------------------------------------------------------------------------------------------

void TCsvSource::ForEach(const std::function<void(const TCsvRecord&)>& use) {
  skipped_ = 0;
  firstSkipped_.clear();
  std::size_t bytesBefore = 0;
  for (const TFile& file : files_) {
    Walk(file, bytesBefore, use);
    bytesBefore += file.text.size();
  }
  ReportProgress(totalBytes_);
}

void TCsvSource::Walk(const TFile& file, std::size_t bytesBefore, const std::function<void(const TCsvRecord&)>& use) {
  TCsvReader reader(file.text, file.separator, options_.limits);
  if (file.hasHeader) reader.Next();
  for (std::size_t count = 0; ReadRecord(reader, file); ++count) {
    UseRecord({reader.Fields(), file.name, reader.Line(), reader.RecordText()}, use);
    if (count % kRecordsPerReport == 0) ReportProgress(bytesBefore + reader.Position());
  }
}

bool TCsvSource::ReadRecord(TCsvReader& reader, const TFile& file) {
  for (;;) {
    try {
      return reader.Next();
    } catch (const ECsvError& error) {
      Skip(ErrorOf(file, error));
      reader.SkipLine();
    }
  }
}

void TCsvSource::UseRecord(const TCsvRecord& record, const std::function<void(const TCsvRecord&)>& use) {
  try {
    CheckCount(record);
    use(record);
  } catch (const EUserError& error) {
    Skip(error);
  }
}

void TCsvSource::CheckCount(const TCsvRecord& record) const {
  const std::size_t count = record.cells.size();
  if (count == headings_.size()) return;
  Fail(record, std::min(count, headings_.size()),
       "the line has " + Counted(count, "value") + ", but there " + (headings_.size() == 1 ? "is " : "are ") +
           Counted(headings_.size(), "column"));
}

void TCsvSource::Skip(const EUserError& error) {
  if (!options_.skipBad) throw error;
  if (skipped_++ == 0) firstSkipped_ = error.Message();
}

void TCsvSource::ReportProgress(std::size_t bytes) const {
  if (options_.onProgress) options_.onProgress(static_cast<double>(bytes) / static_cast<double>(totalBytes_));
}

// -- Messages ---------------------------------------------------------------------------------------------------------

void TCsvSource::Fail(const TCsvRecord& record, std::size_t column, const std::string& message) const {
  throw EUserError({record.file, record.line, ColumnText(column)}, message);
}

EUserError TCsvSource::ErrorOf(const TFile& file, const ECsvError& error) const {
  return {{file.name, error.Line(), ColumnText(error.Column())}, error.Message()};
}

std::string TCsvSource::ColumnText(std::size_t column) const {
  return column < headings_.size() ? headings_[column] : std::to_string(column + 1);
}

void TCsvSource::Remark(const TPlace& place, const std::string& message) const {
  remarks_ << "kestrix: " << EUserError(place, message).Message() << '\n';
}

// -- Is there a header? -----------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t kHeaderSample = 100;  // records

bool IsValueType(TColumnType type) { return type != TColumnType::Text; }

TColumnType TypeOfCells(const TTypeFinder& finder) { return finder.Type(finder.NeedsDecimalComma() ? ',' : '.'); }

/// The type that a column would have from its first cell alone, and from those below.
struct TFirstAndRest {
  TTypeFinder first;
  TTypeFinder rest;
};

std::vector<TFirstAndRest> SampleColumns(std::string_view text, char separator, const TNullWords& nulls) {
  const TTypeFinder fresh(nulls, separator != ',');
  std::vector<TFirstAndRest> columns;
  TCsvReader reader(text, separator);
  try {
    for (std::size_t record = 0; record < kHeaderSample && reader.Next(); ++record) {
      const auto& cells = reader.Fields();
      if (record == 0) columns.resize(cells.size(), {fresh, fresh});
      for (std::size_t i = 0; i < std::min(cells.size(), columns.size()); ++i)
        (record == 0 ? columns[i].first : columns[i].rest).Add(cells[i], reader.Line());
    }
  } catch (const ECsvError&) {
    // The sample ends here; the error comes up again when the file is read.
  }
  return columns;
}

}  // namespace

bool DetectHeader(std::string_view text, char separator, const TNullWords& nulls) {
  bool hasValueInFirst = false;
  for (const auto& [first, rest] : SampleColumns(text, separator, nulls)) {
    if (!first.HasValues()) continue;
    const bool isValue = IsValueType(TypeOfCells(first));
    if (!isValue && IsValueType(TypeOfCells(rest))) return true;
    hasValueInFirst = hasValueInFirst || isValue;
  }
  return !hasValueInFirst;
}

}  // namespace vx::kestrix
