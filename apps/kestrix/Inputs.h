// Inputs.h: what all commands share: where text comes from and goes to, and how files become a source.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
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

/// Ends a command: what was written to `out` is flushed. Raises EUserError if that failed.
void FinishOutput(std::ostream& out);

}  // namespace vx::kestrix
