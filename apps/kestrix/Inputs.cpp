#include "Inputs.h"

#include <ostream>

#include "InputFile.h"
#include "Interrupt.h"
#include "OutputFile.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr double kWalks = 2;

}  // namespace

TInputs::TInputs(const TInputOptions& options, const TStreams& streams)
    : streams_(streams), bar_(streams.err, streams.errIsTerminal, streams.clock) {
  TCsvOptions csv = options.csv;
  csv.onProgress = [this](double share) { ShowProgress(share); };
  source_ = std::make_unique<TCsvSource>(std::move(csv), streams.err);
  for (const std::string& path : PathsOf(options)) source_->Add(InputName(path), ReadInput(path, streams.in));
}

void TInputs::ShowProgress(double share) {
  CheckInterrupt();
  if (share < lastShare_) ++walk_;
  lastShare_ = share;
  bar_.Show((walk_ + share) / kWalks);
}

void TInputs::TellSkipped() {
  bar_.Clear();
  const std::size_t count = source_->SkippedCount();
  if (count == 0) return;
  streams_.err << "kestrix: " << count << (count == 1 ? " bad record" : " bad records")
               << " left out; the first: " << source_->FirstSkipped() << '\n';
}

std::vector<std::string> PathsOf(const TInputOptions& options) {
  return options.files.empty() ? std::vector<std::string>{kStandardInput} : options.files;
}

TResult::TResult(const std::string& path, const std::vector<std::string>& inputs, const TStreams& streams)
    : streams_(streams), path_(path), isFile_(!path.empty() && path != kStandardInput) {
  if (isFile_) CheckOutput(path_, inputs);
}

void TResult::Finish() {
  if (isFile_) return WriteOutput(path_, file_.str());
  streams_.out.flush();
  if (!streams_.out) throw EUserError("the output cannot be written");
}

}  // namespace vx::kestrix
