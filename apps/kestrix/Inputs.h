// Inputs.h: what all commands share: where text comes from and goes to, and how files become a source.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "ColumnPlan.h"
#include "CsvSource.h"
#include "Progress.h"
#include "TableLoader.h"

namespace vx::kestrix {

/// The outside of a command. A test gives its own.
struct TStreams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool errIsTerminal = false;
  TProgressBar::TClock clock = SteadySeconds;
};

/// The options that say what to read, and how.
struct TInputOptions {
  std::vector<std::string> files;  ///< none: standard input
  TCsvOptions csv;
  TTypeWishes wishes;
  TLoadLimits limits;
};

/// The inputs, read and laid out, with a progress bar over the two walks that every command makes: one for the types,
/// one for the values.
class TInputs {
 public:
  TInputs(const TInputOptions& options, const TStreams& streams);
  TInputs(const TInputs&) = delete;
  TInputs& operator=(const TInputs&) = delete;

  TCsvSource& Source() { return *source_; }
  /// Ends the bar, and says how many records were left out as bad.
  void TellSkipped();

 private:
  void ShowProgress(double share);

  const TStreams& streams_;
  TProgressBar bar_;
  double walk_ = 0;
  double lastShare_ = 0;
  std::unique_ptr<TCsvSource> source_;
};

/// The files, or "-" if there are none.
std::vector<std::string> PathsOf(const TInputOptions& options);

/// Where a command's result goes: to a file, which gets it whole or not at all, or to standard output.
class TResult {
 public:
  /// `path` is a file, or standard output if it is empty or "-". Raises EUserError if nothing can be written there, or
  /// if it is one of the inputs.
  TResult(const std::string& path, const std::vector<std::string>& inputs, const TStreams& streams);

  std::ostream& Out() { return isFile_ ? file_ : streams_.out; }
  /// Ends the command. Raises EUserError if not all could be written.
  void Finish();

 private:
  const TStreams& streams_;
  std::string path_;
  bool isFile_;
  std::ostringstream file_;
};

}  // namespace vx::kestrix
