// Where results go: files whole or not at all, never over an input; the bar for the patient; the way out after Ctrl-C.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Interrupt.h"
#include "OutputFile.h"
#include "Progress.h"
#include "apps/kestrix/RunProgram.h"

namespace vx::kestrix {
namespace {

TEST(Output, ReplacesAFileAndNothingElse) {
  const TTestFolder folder;
  const std::string target = folder.Write("out.csv", "old");
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  ASSERT_EQ(symlink(target.c_str(), folder.Path("link.csv").c_str()), 0);
  EXPECT_EQ(RunProgram({"table", "--format", "csv", "-o", folder.Path("link.csv")}, "a\n1\n").code, kSuccess);
  EXPECT_EQ(folder.Read("out.csv"), "a\n1\n");
  EXPECT_EQ(folder.List(), "link.csv out.csv");
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.csv")));
  struct stat status = {};
  ASSERT_EQ(stat(target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);

  // A link to a file that isn't there yet stays too.
  ASSERT_EQ(symlink("later.csv", folder.Path("early.csv").c_str()), 0);
  EXPECT_EQ(RunProgram({"table", "--format", "csv", "-o", folder.Path("early.csv")}, "a\n2\n").code, kSuccess);
  EXPECT_EQ(folder.Read("later.csv"), "a\n2\n");
  EXPECT_EQ(folder.List(), "early.csv later.csv link.csv out.csv");
}

TEST(Output, IsNeverAnInputUnderAnyName) {
  const TTestFolder folder;
  const std::string input = folder.Write("in.csv", "a\n1\n");
  ASSERT_EQ(link(input.c_str(), folder.Path("hard.csv").c_str()), 0);
  ASSERT_EQ(symlink(input.c_str(), folder.Path("soft.csv").c_str()), 0);
  for (const char* name : {"in.csv", "./in.csv", "hard.csv", "soft.csv"}) {
    const TRun run = RunProgram({"table", input, "-o", folder.Path(name)});
    EXPECT_EQ(run.err, "kestrix: " + folder.Path(name) + ": is also the input; nothing was written\n");
    EXPECT_EQ(run.code, kUserError);
  }
  EXPECT_EQ(folder.Read("in.csv"), "a\n1\n");
}

TEST(Output, LeavesTheOldFileWhenSomethingFails) {
  const TTestFolder folder;
  folder.Write("out.csv", "old");
  const std::string out = folder.Path("out.csv");
  EXPECT_EQ(RunProgram({"table", "-o", out}, "a,b\n1\n").code, kUserError);
  EXPECT_EQ(RunProgram({"chart", "--date", "a", "--value", "b", "-o", out}, "a,b\n1.1.2015,2\n").code, kUserError);
  RaiseInterrupt();
  EXPECT_THROW(WriteOutput(out, "new"), EInterrupted);
  EXPECT_EQ(folder.Read("out.csv"), "old");
  EXPECT_EQ(folder.List(), "out.csv");
}

TEST(Output, TellsWhatCannotBeWritten) {
  const TTestFolder folder;
  for (const auto& [path, problem] : {std::pair{folder.Path(""), "is a directory"},
                                      {folder.Path("no/out.csv"), "cannot be written: No such file or directory"},
                                      {"/dev/full", "cannot be written: No space left on device"}})
    EXPECT_EQ(RunProgram({"table", "-o", path}, "a\n1\n").err, "kestrix: " + path + ": " + problem + "\n");
  EXPECT_EQ(RunProgram({"table", "-o", "/dev/null"}, "a\n1\n").code, kSuccess);
}

TEST(Interrupt, EndsTheProgramWithoutAWord) {
  RaiseInterrupt();
  const TRun run = RunProgram("table", "a\n1\n");
  EXPECT_EQ(run.code, kInterrupted);
  EXPECT_EQ(run.out + run.err, "");
}

TEST(Progress, ShowsItselfAfterHalfASecondOnATerminalOnly) {
  double now = 100;
  for (const bool isTerminal : {true, false}) {
    std::ostringstream out;
    {
      TProgressBar bar(out, isTerminal, [&now] { return now; });
      now += 0.4;
      bar.Show(0.1);
      EXPECT_EQ(out.str(), "");
      now += 0.2;
      bar.Show(0.5);
      bar.Show(0.6);  // too soon for another drawing
      now += 0.2;
      bar.Show(1.5);
    }
    EXPECT_EQ(out.str(), isTerminal ? "\r[####################                    ] "
                                      "50%\r[########################################] 100%\r\x1B[K"
                                    : "");
  }
}

}  // namespace
}  // namespace vx::kestrix
