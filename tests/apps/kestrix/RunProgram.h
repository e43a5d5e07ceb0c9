// RunProgram.h: the program run within the test.
#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx::kestrix {

using test::TTestFolder;

struct TRun {
  int code = -1;
  std::string out;
  std::string err;
};

/// Words between blanks; "_" stands for a blank within a word.
inline std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words = test::Cut(text);
  for (std::string& word : words) std::replace(word.begin(), word.end(), '_', ' ');
  return words;
}

/// Runs the program; `input` is its standard input.
inline TRun RunProgram(const std::vector<std::string>& arguments, const std::string& input = {}) {
  std::istringstream in(input);
  std::ostringstream out, err;
  TRun run;
  run.code = RunKestrix(arguments, {.in = in, .out = out, .err = err});
  run.out = out.str();
  run.err = err.str();
  return run;
}

inline TRun RunProgram(const char* words, const std::string& input = {}) { return RunProgram(Words(words), input); }

}  // namespace vx::kestrix
