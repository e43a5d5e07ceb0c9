// CsvReader.h: a text of separated values, one record at a time.
//
// The rules are those of RFC 4180, read as files are found: fields stand between separators; a field in double quotes
// may hold separators, line ends and doubled quotes; a line ends with LF, CRLF or CR; the last one needs no end. A
// quote inside a field that doesn't begin with one is an ordinary character. Lines without any character are no
// records. Blanks belong to their field.
//
//   TCsvReader reader(text, ';');
//   while (reader.Next()) Use(reader.Line(), reader.Fields());
//
// The reader walks over a text that it doesn't own and doesn't copy: fields are parts of it, but for those with doubled
// quotes.
// Errors (ECsvError) name the line on which the record begins and the number of the field. After one the reader may be
// asked to go on: SkipLine() continues on the line after the one named, so one unclosed quote costs one line, not the
// file.
// Cost: one walk over the text; after an error at most TCsvLimits::field bytes or the rest of the record are read
// again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Exceptions.h"

namespace vx::kestrix {

/// What no honest file needs. A field or record beyond is an error before its bytes are taken anywhere.
struct TCsvLimits {
  std::size_t field = std::size_t{64} * 1024;
  std::size_t line = std::size_t{4} * 1024 * 1024;
  std::size_t columns = 16384;
};

/// A text that is no list of separated values.
class ECsvError : public TNamedException<ECsvError> {
 public:
  static constexpr const char* kName = "ECsvError";
  ECsvError(std::size_t line, std::size_t column, const std::string& message)
      : TNamedException(message), line_(line), column_(column) {}

  /// Line on which the record begins, from 1.
  std::size_t Line() const { return line_; }
  /// Position of the field in its record, from 0.
  std::size_t Column() const { return column_; }

 private:
  std::size_t line_;
  std::size_t column_;
};

class TCsvReader {
 public:
  /// `text` must outlive the reader.
  TCsvReader(std::string_view text, char separator, TCsvLimits limits = {});

  /// Reads the next record; false at the end of the text. Raises ECsvError.
  bool Next();
  /// The fields of the record, unquoted; valid until the next call of Next.
  const std::vector<std::string_view>& Fields() const { return fields_; }
  /// The record as it stands in the text, with its line end.
  std::string_view RecordText() const { return text_.substr(recordStart_, at_ - recordStart_); }
  /// Line on which the record begins, from 1.
  std::size_t Line() const { return recordLine_; }
  /// Bytes behind the reader, for showing progress.
  std::size_t Position() const { return at_; }
  /// After an error: goes on behind the line on which the record began.
  void SkipLine();

 private:
  [[noreturn]] void Fail(const std::string& message) const;
  [[noreturn]] void FailTooLong(const char* orElse) const;
  bool AtLineEnd() const { return at_ < text_.size() && (text_[at_] == '\n' || text_[at_] == '\r'); }
  void TakeLineEnd();
  void SkipEmptyLines();
  void ReadField();
  std::string_view ReadPlain();
  std::string_view ReadQuoted();
  /// The text up to the next quote, which is passed by. `lengthSoFar` is what the field already holds.
  std::string_view ReadToQuote(std::size_t lengthSoFar);
  void CheckBehindQuote() const;
  void CheckField(std::string_view field) const;
  void CheckLine() const;
  std::size_t CountLines(std::string_view part) const;

  std::string_view text_;
  char separator_;
  TCsvLimits limits_;
  bool hasNul_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;  // of at_
  std::size_t recordLine_ = 0;
  std::size_t recordStart_ = 0;
  std::vector<std::string_view> fields_;
  std::deque<std::string> unescaped_;  // a deque: its elements never move
};

/// The separator that fits the text best: , ; tab or |. A comma if nothing separates.
char DetectSeparator(std::string_view text);

}  // namespace vx::kestrix
