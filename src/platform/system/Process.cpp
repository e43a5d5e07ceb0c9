#include "platform/system/Process.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/runtime/Exceptions.h"

namespace vx {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Takes words from the front of a command line.
class TWordReader {
 public:
  explicit TWordReader(std::string_view text) : text_(text) {}

  /// False at the end.
  bool Next(std::string& word) {
    while (at_ < text_.size() && IsBlank(text_[at_])) ++at_;
    if (at_ == text_.size()) return false;
    word.clear();
    for (isQuoted_ = false; at_ < text_.size() && (isQuoted_ || !IsBlank(text_[at_]));) TakeInto(word);
    return true;
  }

 private:
  void TakeInto(std::string& word) {
    const std::size_t slashes = std::min(text_.find_first_not_of('\\', at_), text_.size()) - at_;
    at_ += slashes;
    const bool isQuoteNext = at_ < text_.size() && text_[at_] == '"';
    word.append(isQuoteNext ? slashes / 2 : slashes, '\\');
    if (isQuoteNext)
      TakeQuote(word, slashes % 2 == 1);
    else if (slashes == 0)
      word += text_[at_++];
  }

  void TakeQuote(std::string& word, bool isLetter) {
    const bool isDouble = isQuoted_ && text_.substr(at_).starts_with("\"\"");
    if (isLetter || isDouble) word += '"';
    if (!isLetter && !isDouble) isQuoted_ = !isQuoted_;
    at_ += !isLetter && isDouble ? 2 : 1;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  bool isQuoted_ = false;
};

[[noreturn]] void RaiseSystemError(const std::string& what, int error) {
  throw EOSError(what + ": " + std::generic_category().message(error), error);
}

std::int32_t ExitCodeOf(int status) { return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status); }

/// Waits through interruptions by signals.
std::int32_t WaitFor(pid_t process, const std::string& program) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0)
    if (errno != EINTR) RaiseSystemError("Cannot wait for '" + program + "'", errno);
  return ExitCodeOf(status);
}

}  // namespace

std::vector<std::string> CommandLineWords(std::string_view commandLine) {
  std::vector<std::string> words;
  TWordReader reader(commandLine);
  for (std::string word; reader.Next(word);) words.push_back(word);
  return words;
}

std::int32_t RunProcess(std::string_view commandLine, TProcessInformation& information) {
  // The system's texts end at a zero byte; a program must not get less than was meant.
  if (commandLine.find('\0') != std::string_view::npos) throw EOSError("A command line with a zero byte", EINVAL);
  std::vector<std::string> words = CommandLineWords(commandLine);
  if (words.empty() || words.front().empty()) throw EOSError("A command line without a program", EINVAL);
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t process = 0;
  const int error = posix_spawnp(&process, arguments.front(), nullptr, nullptr, arguments.data(), environ);
  if (error != 0) RaiseSystemError("Cannot start '" + words.front() + "'", error);
  information.ProcessId = process;
  return WaitFor(process, words.front());
}

}  // namespace vx
