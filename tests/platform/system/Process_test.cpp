#include "platform/system/Process.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/runtime/Exceptions.h"
#include "support/TestKit.h"

namespace vx {
namespace {

TEST(Process, CommandLinesAreWordsWithQuotes) {
  const struct {
    const char *line, *words;
  } cases[] = {{"", ""},
               {"  a\tb ", "[a][b]"},
               {R"("a b"c d)", "[a bc][d]"},
               {R"(say \"hi\")", R"([say]["hi"])"},
               {R"("a\\" b\c \\d)", R"([a\][b\c][\\d])"},
               {R"(a\\\"b "c)", R"([a\"b][c])"},
               {R"("a""b" "" x)", R"([a"b][][x])"},
               {R"("ends\)", R"([ends\])"}};
  for (const auto& each : cases) {
    std::string words;
    for (const std::string& word : CommandLineWords(each.line)) words += "[" + word + "]";
    EXPECT_EQ(words, each.words) << each.line;
  }
}

TEST(Process, AnswersTheExitCodeOrNamesWhatCouldNotStart) {
  TProcessInformation information;
  EXPECT_EQ(RunProcess("true", information), 0);
  EXPECT_GT(information.ProcessId, 0);
  EXPECT_EQ(RunProcess(R"(sh -c "exit 37")", information), 37);
  EXPECT_EQ(RunProcess(R"(sh -c "kill -9 $$")", information), 128 + 9);
  const auto messageOf = [&](std::string_view line) {
    return test::MessageOf<EOSError>([&] { RunProcess(line, information); });
  };
  EXPECT_EQ(messageOf("\"no such/program\" x"), "Cannot start 'no such/program': No such file or directory");
  EXPECT_EQ(messageOf(" "), "A command line without a program");
  EXPECT_EQ(messageOf(std::string_view("true\0x", 6)), "A command line with a zero byte");
}

}  // namespace
}  // namespace vx
