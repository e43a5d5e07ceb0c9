// CsvSource.h: the files of one run as one list of records under named columns.
//
// Files are held in memory as decoded text and read as often as needed: once to find the types, once to fill a table.
// Several files must have the same columns; their records follow one another.
//
//   TCsvSource source(options, std::cerr);
//   source.Add("orders.csv", bytes);
//   source.ForEach([&](const TCsvRecord& record) { … });
//
// Bad records. A record with another number of values than the header, or one that `use` raises EUserError for, ends
// the walk with an EUserError that names file, line and column; with skipBad it is left out and counted instead.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CsvReader.h"
#include "TextTypes.h"
#include "UserError.h"

namespace vx::kestrix {

struct TCsvOptions {
  std::optional<char> separator;  ///< else found out, for each file
  std::optional<bool> hasHeader;  ///< else found out
  TNullWords nulls;
  bool skipBad = false;
  TCsvLimits limits;
  /// Called every few thousand records with the share of the walk that is done, 0 to 1. May raise to end it.
  std::function<void(double share)> onProgress;
};

/// One record, valid during the call that gets it.
struct TCsvRecord {
  const std::vector<std::string_view>& cells;
  const std::string& file;
  std::size_t line;
  std::string_view text;  ///< as it stands in the file's text, with its line end
};

class TCsvSource {
 public:
  /// `remarks` takes what the user should know about the files: a line each, beginning with `remarkPrefix`. It must
  /// outlive the source.
  TCsvSource(TCsvOptions options, std::ostream& remarks);

  /// Takes a file's bytes; `name` is what messages call it. Raises EUserError for an empty file or other columns than
  /// before.
  void Add(const std::string& name, std::string bytes);

  const std::vector<std::string>& Headings() const { return headings_; }
  const TCsvOptions& Options() const { return options_; }
  /// None of the files is separated by commas, so that a comma may be a decimal one.
  bool MayHaveDecimalComma() const;
  /// Name of the first file, for messages about all of them.
  const std::string& Name() const { return First().name; }
  // Of the first file, for writing it again:
  const std::string& Text() const { return First().text; }
  char Separator() const { return First().separator; }
  /// Text() is the file's bytes, but for a mark of UTF-8.
  bool IsAsItWas() const { return First().isAsItWas; }
  bool HadMark() const { return First().hadMark; }

  /// Calls `use` with each record in order. May be called again.
  void ForEach(const std::function<void(const TCsvRecord&)>& use);
  /// Of the latest walk: records left out as bad.
  std::size_t SkippedCount() const { return skipped_; }
  /// Of the latest walk: what was wrong with the first of them.
  const std::string& FirstSkipped() const { return firstSkipped_; }

  [[noreturn]] void Fail(const TCsvRecord& record, std::size_t column, const std::string& message) const;
  /// Writes a line for the user.
  void Remark(const TPlace& place, const std::string& message) const;

 private:
  struct TFile {
    std::string name;
    std::string text;
    char separator = ',';
    bool hasHeader = true;
    bool isAsItWas = true;
    bool hadMark = false;
  };

  const TFile& First() const { return Need(files_.empty() ? nullptr : &files_.front(), "input file"); }

  void SetColumns(const TFile& file);
  void Walk(const TFile& file, std::size_t bytesBefore, const std::function<void(const TCsvRecord&)>& use);
  bool ReadRecord(TCsvReader& reader, const TFile& file);
  void UseRecord(const TCsvRecord& record, const std::function<void(const TCsvRecord&)>& use);
  void CheckCount(const TCsvRecord& record) const;
  void Skip(const EUserError& error);
  EUserError ErrorOf(const TFile& file, const ECsvError& error) const;
  std::string ColumnText(std::size_t column) const;
  void ReportProgress(std::size_t bytes) const;

  TCsvOptions options_;
  std::ostream& remarks_;
  std::vector<TFile> files_;
  std::size_t totalBytes_ = 0;
  std::vector<std::string> headings_;
  std::size_t skipped_ = 0;
  std::string firstSkipped_;
};

/// Whether the first record of `text` names the columns: it does unless it holds values like those below it.
bool DetectHeader(std::string_view text, char separator, const TNullWords& nulls);

}  // namespace vx::kestrix
