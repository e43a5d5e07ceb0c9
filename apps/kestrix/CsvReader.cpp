#include "CsvReader.h"

#include <algorithm>
#include <array>

namespace vx::kestrix {

TCsvReader::TCsvReader(std::string_view text, char separator, TCsvLimits limits)
    : text_(text), separator_(separator), limits_(limits), hasNul_(text.find('\0') != std::string_view::npos) {}

bool TCsvReader::Next() {
  fields_.clear();
  unescaped_.clear();
  SkipEmptyLines();
  recordStart_ = at_;
  recordLine_ = line_;
  if (at_ >= text_.size()) return false;
  ReadField();
  while (at_ < text_.size() && text_[at_] == separator_) {
    ++at_;
    ReadField();
  }
  TakeLineEnd();
  return true;
}

void TCsvReader::SkipLine() {
  at_ = std::min(text_.find_first_of("\r\n", recordStart_), text_.size());
  line_ = recordLine_;
  TakeLineEnd();
}

void TCsvReader::Fail(const std::string& message) const { throw ECsvError(recordLine_, fields_.size(), message); }

void TCsvReader::TakeLineEnd() {
  if (!AtLineEnd()) return;
  if (text_[at_] == '\r' && at_ + 1 < text_.size() && text_[at_ + 1] == '\n') ++at_;
  ++at_;
  ++line_;
}

void TCsvReader::SkipEmptyLines() {
  while (AtLineEnd()) TakeLineEnd();
}

void TCsvReader::ReadField() {
  if (fields_.size() >= limits_.columns) Fail("more than " + std::to_string(limits_.columns) + " values in one line");
  const bool isQuoted = at_ < text_.size() && text_[at_] == '"';
  const std::string_view field = isQuoted ? ReadQuoted() : ReadPlain();
  CheckField(field);
  fields_.push_back(field);
}

std::string_view TCsvReader::ReadPlain() {
  const std::size_t start = at_;
  while (at_ < text_.size() && text_[at_] != separator_ && text_[at_] != '\n' && text_[at_] != '\r') ++at_;
  if (at_ - start > limits_.field) FailTooLong("");
  CheckLine();
  return text_.substr(start, at_ - start);
}

std::string_view TCsvReader::ReadQuoted() {
  const std::size_t start = ++at_;
  std::string* unescaped = nullptr;
  std::string_view piece = ReadToQuote(0);
  while (at_ < text_.size() && text_[at_] == '"') {
    if (unescaped == nullptr) unescaped = &unescaped_.emplace_back();
    unescaped->append(piece).append(1, text_[at_++]);
    piece = ReadToQuote(unescaped->size());
  }
  line_ += CountLines(text_.substr(start, at_ - 1 - start));
  CheckBehindQuote();
  return unescaped == nullptr ? piece : std::string_view(unescaped->append(piece));
}

std::string_view TCsvReader::ReadToQuote(std::size_t lengthSoFar) {
  // Looked for within the limit only: else each line of a hostile file could cost a walk over the rest of it.
  const std::string_view near = text_.substr(at_, limits_.field + 1);
  const std::size_t length = near.find('"');
  if (length == std::string_view::npos && at_ + near.size() == text_.size() && near.size() <= limits_.field)
    Fail("a quote is opened and never closed");
  if (length == std::string_view::npos || lengthSoFar + length > limits_.field)
    FailTooLong(", or a quote that is never closed");
  at_ += length + 1;
  CheckLine();
  return near.substr(0, length);
}

void TCsvReader::CheckBehindQuote() const {
  if (at_ < text_.size() && text_[at_] != separator_ && !AtLineEnd()) Fail("text behind the closing quote");
}

void TCsvReader::CheckField(std::string_view field) const {
  if (hasNul_ && field.find('\0') != std::string_view::npos) Fail("a zero byte; is this a text file?");
}

void TCsvReader::CheckLine() const {
  if (at_ - recordStart_ > limits_.line) Fail("a line longer than " + std::to_string(limits_.line) + " bytes");
}

void TCsvReader::FailTooLong(const char* orElse) const {
  Fail("a value longer than " + std::to_string(limits_.field) + " bytes" + orElse);
}

std::size_t TCsvReader::CountLines(std::string_view part) const {
  std::size_t count = 0;
  for (std::size_t i = 0; i < part.size(); ++i) {
    const bool isFirstOfTwo = part[i] == '\r' && i + 1 < part.size() && part[i + 1] == '\n';
    if (part[i] == '\n' || (part[i] == '\r' && !isFirstOfTwo)) ++count;
  }
  return count;
}

// -- Which separator? -------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t kSampleBytes = std::size_t{64} * 1024;
constexpr std::size_t kSampleRecords = 50;

/// How a separator divides the first records of a text.
struct TDivision {
  std::size_t fields = 0;   ///< of the first record
  std::size_t records = 0;  ///< looked at
  std::size_t alike = 0;    ///< of those, with as many fields as the first
  bool IsUseful() const { return fields > 1; }
  /// The greater share of records alike wins; of equal shares the earlier candidate, if there is more than a first
  /// record.
  bool IsBetterThan(const TDivision& other) const {
    if (!other.IsUseful()) return true;
    if (records == 1 && other.records == 1) return fields > other.fields;
    return alike * other.records > other.alike * records;
  }
};

/// Without the last line, which may have been cut.
std::string_view Sample(std::string_view text) {
  if (text.size() <= kSampleBytes) return text;
  const std::size_t end = text.find_last_of("\r\n", kSampleBytes);
  return text.substr(0, end == std::string_view::npos ? kSampleBytes : end);
}

TDivision Divide(std::string_view sample, char separator) {
  TDivision division;
  TCsvReader reader(sample, separator);
  try {
    while (division.records < kSampleRecords && reader.Next()) {
      if (division.records++ == 0) division.fields = reader.Fields().size();
      if (reader.Fields().size() == division.fields) ++division.alike;
    }
  } catch (const ECsvError&) {
    ++division.records;  // counts against the separator, and the error comes up again when the file is read
  }
  return division;
}

}  // namespace

char DetectSeparator(std::string_view text) {
  // The rarer in ordinary text the earlier: a comma also stands in decimal numbers and in sentences.
  constexpr std::array<char, 4> kCandidates = {'\t', ';', '|', ','};
  const std::string_view sample = Sample(text);
  TDivision best;
  char separator = ',';
  for (const char candidate : kCandidates) {
    const TDivision division = Divide(sample, candidate);
    if (!division.IsUseful() || !division.IsBetterThan(best)) continue;
    best = division;
    separator = candidate;
  }
  return separator;
}

}  // namespace vx::kestrix
