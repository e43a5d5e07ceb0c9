// The commands for those who program: palette, convert, messages, colours. And what all commands have in common.
#include <gtest/gtest.h>

#include "apps/kestrix/RunProgram.h"
#include "package/OddClock.h"
#include "platform/canvas/SystemColors.h"
#include "support/Golden.h"

namespace vx::kestrix {
namespace {

using TWrongLine = std::pair<const char*, const char*>;  // command line, and the message

TEST(CommandLine, HelpsWithExamples) {
  for (const char* command :
       {"", "table ", "bucket ", "chart ", "palette ", "convert ", "messages ", "colours ", "draw "}) {
    const TRun run = RunProgram((command + std::string("--help")).c_str());
    EXPECT_EQ(run.code, kSuccess);
    EXPECT_NE(run.out.find("Examples:"), std::string::npos) << run.out;
    EXPECT_EQ(run.err, "");
  }
  EXPECT_EQ(RunProgram("--version").out, "kestrix " KESTRIX_VERSION "\n");
}

TEST(CommandLine, TellsWhatIsWrong) {
  constexpr TWrongLine kLines[] = {
      {"",
       "a command is missing: table, bucket, chart, palette, convert, messages, colours or draw; see kestrix --help"},
      {"tabel", "no command \"tabel\"; did you mean \"table\"?"},
      {"bucket chart", "chart: cannot be read: No such file or directory"},
      {"palette TVXRAMTabel", "no class \"TVXRAMTabel\" on the palette; did you mean \"TVXRAMTable\"?"},
      {"palette tvxramtable TForm", "no class \"TForm\" on the palette"},
      {"palette --page VX_Data_Acces", "no page \"VX Data Acces\" on the palette; did you mean \"VX Data Access\"?"},
      {"palette --page Odd", "no page \"Odd\" on the palette, only \"VX Data Access\""},
      {"palette --page VX_Data_Access TForm", "no class \"TForm\" on the page \"VX Data Access\""},
      {"palette --format xml", "--format: xml not in {text,json}; see kestrix palette --help"},
      {"palette --formt text", "no option \"--formt\"; did you mean \"--format\"?"},
      {"convert", "an input and an output are wanted, not 0 files; see kestrix convert --help"},
      {"convert a.kform", "an input and an output are wanted, not 1 file; see kestrix convert --help"},
      {"convert a.kform b.kform c.bin", "an input and an output are wanted, not 3 files; see kestrix convert --help"},
      {"convert a.kform b.txt", "b.txt: the name should end in .kform (text) or .bin (binary)"},
      {"convert no.kform no.bin", "no.kform: cannot be read: No such file or directory"},
      {"convert --check", "--check wants a form; see kestrix convert --help"},
      {"messages x.kres", "\"x.kres\" is for --check only; --language shows a translation"},
      {"messages --check", "--check wants a translation; see kestrix messages --help"},
      {"messages --check no.kres", "no.kres: cannot be read: No such file or directory"},
      {"messages --language xx", "--language \"xx\" should be a file, or a language that has one here"},
      {"colours", "a colour is missing: a name (clWindow, red), #rrggbb or $00bbggrr; see kestrix colours --help"},
      {"colours red clWindwo", "no colour \"clWindwo\"; did you mean \"clWindow\"?"},
      {"colours #12345", "no colour \"#12345\"; a colour is a name (clWindow, red), #rrggbb or $00bbggrr"},
      {"colours $123456789", "no colour \"$123456789\"; a colour is a name (clWindow, red), #rrggbb or $00bbggrr"},
      {"colours $80000019", "\"$80000019\" is the number of no system colour"},
      {"colours none", "\"none\" stands for no colour at all"},
      {"colours red --scheme blue", "--scheme: blue not in {light,dark}; see kestrix colours --help"},
  };
  for (const auto& [line, message] : kLines) {
    SCOPED_TRACE(line);
    const TRun run = RunProgram(line);
    EXPECT_EQ(run.err, std::string("kestrix: ") + message + "\n");
    EXPECT_EQ(run.code, kUserError);
    EXPECT_EQ(run.out, "");
  }
}

TEST(PaletteCommand, WritesJson) {
  RegisterComponents("\"Odd\"", {&test::TOddClock::StaticClass()});
  const TRun all = RunProgram("palette --format json");
  const TRun some = RunProgram("palette toddclock --page \"odd\"");
  UnregisterComponents({&test::TOddClock::StaticClass()});
  EXPECT_TRUE(test::MatchesGolden("apps/palette.json", all.out));
  EXPECT_EQ(some.out.substr(0, 18), "\"Odd\"\n\n  TOddClock") << some.out;
  EXPECT_TRUE(Palette().empty());
}

// -- Forms ------------------------------------------------------------------------------------------------------------

constexpr const char* kForm =
    "object Form1: TForm\n  Caption = 'Größe'\n  object Table1: TVXRAMTable\n    Tag = 7\n  end\nend\n";

TEST(ConvertCommand, GoesThereAndBack) {
  const TTestFolder folder;
  const std::string form = folder.Write("a.kform", kForm);
  const std::string loose = folder.Write(
      "loose.KFORM", "OBJECT Form1 : TForm Caption='Größe' // x\nobject Table1:TVXRAMTable Tag=$7 end end");
  const auto convert = [&](const std::string& from, const std::string& to, const std::string& input = {}) {
    const TRun run = RunProgram({"convert", from, to}, input);
    EXPECT_EQ(run.err, "") << from << " to " << to;
    return run.out;
  };
  const std::string binary = convert(form, "-");
  EXPECT_EQ(binary.substr(0, 4), "KFB1");
  convert(loose, folder.Path("a.bin"));
  EXPECT_EQ(folder.Read("a.bin"), binary);
  EXPECT_EQ(convert("-", "-", binary), kForm);
  convert(folder.Path("a.bin"), folder.Path("b.kform"));
  convert(folder.Path("a.bin"), folder.Path("b.bin"));
  convert(loose, folder.Path("laid out.kform"));
  EXPECT_EQ(folder.Read("b.kform"), kForm);
  EXPECT_EQ(folder.Read("b.bin"), binary);
  EXPECT_EQ(folder.Read("laid out.kform"), kForm);

  const TRun run = RunProgram({"convert", "--check", form, folder.Path("a.bin"), "-"}, "object TForm end");
  EXPECT_EQ(run.out, form + ": a well-formed form of 2 objects\n" + folder.Path("a.bin") +
                         ": a well-formed form of 2 objects\nstandard input: a well-formed form of 1 object\n");
  EXPECT_EQ(run.code, kSuccess);
}

TEST(ConvertCommand, TakesTheFormThatTheDocumentsShow) {
  EXPECT_EQ(RunProgram({"convert", "--check", KESTRIX_TESTS_DIR "/../examples/every_value.kform"}).err, "");
}

TEST(ConvertCommand, TellsThePlaceAndWritesNothing) {
  const TTestFolder folder;
  const std::string bad = folder.Write("bad.kform", "object Form1: TForm\n  Tag = = 3\nend\n");
  const std::string cut = folder.Write("cut.bin", RunProgram("convert - -", kForm).out.substr(0, 30));
  const std::string marked = folder.Write("marked.bin", "XFB1" + RunProgram("convert - -", kForm).out.substr(4));
  const std::string told = "kestrix: " + bad + ":2:9: a value of Tag is expected, not \"=\"\n";
  folder.Write("out.bin", "old");
  const TRun run = RunProgram({"convert", bad, folder.Path("out.bin")});
  EXPECT_EQ(run.err, told);
  EXPECT_EQ(run.code, kUserError);
  EXPECT_EQ(RunProgram({"convert", bad, bad}).err, "kestrix: " + bad + ": is also the input; nothing was written\n");
  EXPECT_EQ(folder.Read("out.bin"), "old");
  EXPECT_EQ(folder.List(), "bad.kform cut.bin marked.bin out.bin");
  EXPECT_EQ(RunProgram({"convert", marked, "-"}).err.find("kestrix: " + marked + ": byte 0: this is no component"), 0u);

  const TRun check = RunProgram({"convert", "--check", cut, bad, "-"}, kForm);
  EXPECT_EQ(check.err.find("kestrix: " + cut + ": byte 30: the stream ends here; "), 0u) << check.err;
  EXPECT_NE(check.err.find(told), std::string::npos) << check.err;
  EXPECT_EQ(check.out, "standard input: a well-formed form of 2 objects\n");
  EXPECT_EQ(check.code, kUserError);
}

// -- Messages ---------------------------------------------------------------------------------------------------------

const std::string kLanguages = std::string(KESTRIX_TESTS_DIR) + "/../languages/";

TEST(MessagesCommand, FindsNothingInWhatIsShipped) {
  for (const char* language : {"de", "en"}) {
    const std::string file = kLanguages + "kestrix." + language + ".kres";
    const TRun run = RunProgram({"messages", "--check", file});
    EXPECT_EQ(run.code, kSuccess);
    EXPECT_EQ(run.out, file + ": language " + language + ", 66 texts, nothing missing\n");
  }
}

TEST(MessagesCommand, TellsFaultsByLine) {
  const TTestFolder folder;
  const std::string german = test::ReadFile(kLanguages + "kestrix.de.kres");
  const auto with = [&](const std::string& from, const std::string& to) {
    std::string bytes = german;
    return bytes.replace(bytes.find(from), from.size(), to);
  };
  const std::string lacking =
      folder.Write("lacking.kres", with("14605 \"Warnung\"\n14606 \"Fehler\"", "\n14606 \"%d\""));
  const std::string odd = folder.Write("odd.kres", with("14607", "20000 \"mehr\"\n14607"));
  const std::string broken = folder.Write("broken.kres", with("14606 \"Fehler\"", "14606 \"Fehler"));
  const TRun run = RunProgram({"messages", "--check", lacking, odd, broken});
  EXPECT_EQ(run.out, lacking + ":8: 14606: %d isn't in the original\n" + lacking +
                         ": 14605: the text is missing (\"Warning\")\n" + lacking +
                         ": language de, 65 texts: 2 errors\n" + odd +
                         ":9: warning: 20000: the system has no such text\n" + odd +
                         ": language de, 67 texts, nothing missing, 1 warning\n");
  EXPECT_EQ(run.err.find("kestrix: " + broken + ":8:"), 0u) << run.err;
  EXPECT_EQ(run.code, kUserError);
  EXPECT_EQ(RunProgram({"messages", "--check", odd}).code, kSuccess);
}

TEST(MessagesCommand, ShowsATranslationBesideTheTexts) {
  const TTestFolder folder;
  const std::string file =
      folder.Write("x.kres", "kestrix resources 1\nlanguage x\n14606 \"a\\nb\"\n99 \"more\"\nend\n");
  EXPECT_NE(RunProgram({"messages", "--language", file}).out.find("\n 14606  Error\n        a␊b\n"), std::string::npos);
  const TRun run = RunProgram({"messages", "--language", file, "--format", "csv"});
  EXPECT_EQ(run.out.substr(0, 60), "Number,Text,x\n99,,more\n14605,Warning,\n14606,Error,\"a\nb\"\n1460") << run.err;
  EXPECT_EQ(RunProgram("messages --format json").out.substr(0, 38), "[\n{\"Number\": 14605, \"Text\": \"Warning\"}");
}

// -- Colours ----------------------------------------------------------------------------------------------------------

TEST(ColoursCommand, ShowsAllModels) {
  const TSystemColors before = SystemColors();
  const TRun run = RunProgram("colours red clBtnFace $00F9FFFF --scheme dark");
  EXPECT_EQ(run.err, "");
  EXPECT_TRUE(test::MatchesGolden("apps/colours.txt", run.out));
  EXPECT_TRUE(SystemColors() == before);
}

TEST(ColoursCommand, ReadsEachWayToWriteAColour) {
  const TRun run = RunProgram("colours clnavy NAVY #000080 000080 $800000 $00800000 --format csv");
  std::vector<std::string> lines = test::Cut(run.out, '\n');
  ASSERT_EQ(lines.size(), 7u) << run.err;
  EXPECT_EQ(lines[0].substr(0, 61), "Asked,Colour number,Colour name,Colour web,Bytes red,Bytes gr");
  for (std::size_t i = 1; i < lines.size(); ++i)
    EXPECT_EQ(lines[i].substr(lines[i].find(',')), lines[1].substr(lines[1].find(','))) << lines[i];
  EXPECT_EQ(lines[1].substr(0, 45), "clnavy,$00800000,clNavy,#000080,0,0,128,0,0,0");
  EXPECT_EQ(RunProgram("colours navy --format json").out.substr(0, 46),
            "[\n{\"Asked\": \"navy\", \"Colour number\": \"$0080000");
}

}  // namespace
}  // namespace vx::kestrix
