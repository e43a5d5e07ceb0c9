// Files of texts: what is read, what is refused and where, and what checking a translation finds.
#include "platform/system/ResourceFile.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/runtime/StringResources.h"
#include "platform/system/TranslationCheck.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

const std::string kHead = "kestrix resources 1\nlanguage de\n";

/// All that a file holds, or why it is refused.
std::string Read(const std::string& bytes) {
  try {
    const TResourceFile file = ParseResourceFile(bytes, "f");
    std::string all = file.Language;
    for (const auto& text : file.Strings)
      all += "|" + std::to_string(text.Line) + ":" + std::to_string(text.Id) + QuotedResource(text.Text);
    for (const auto& each : file.Resources)
      all += "|" + std::to_string(each.Line) + ":" + std::to_string(each.Type) + " " + each.Name +
             QuotedResource(each.Data);
    return all;
  } catch (const EResourceFileError& error) {
    return error.Message();
  }
}

TEST(ResourceFile, ReadsTextsAndResources) {
  EXPECT_EQ(Read(kHead + "end"), "de");
  EXPECT_EQ(Read("\xEF\xBB\xBFkestrix resources 1\r\n\r\n# x\r\n\tlanguage pt-BR\r\n7 \" a \"\r\nend\r\n \r\n# y"),
            R"(pt-BR|5:7" a ")");
  EXPECT_EQ(Read(kHead + "65535 \"\xC3\xA9\\n\\r\\t\\\"\\\\\"\n 0\"a\"\n\n  3 \"x\"\n \"y\"\t\n\"z\"\nend\n"),
            "de|4:0\"a\"|6:3\"xyz\"|3:65535\"\xC3\xA9\\n\\r\\t\\\"\\\\\"");
  EXPECT_EQ(Read(kHead + "resource 10 TForm.1 \"\\x00\\xFf\"\nresource 10 11 \"b\"\nend\n"),
            R"(de|3:10 TForm.1"\x00\xFF"|4:10 $000B"b")");
}

TEST(ResourceFile, RefusesWithThePlace) {
  const std::string large(kResourceLimit, 'x');
  EXPECT_EQ(Read(kHead + "1 \"" + large + "\"\nend").size(), large.size() + 8);
  const std::pair<std::string, std::string> cases[] = {
      {"1 \"" + large + "x\"", "3:3: a text is longer than 1048576"},
      {"", "3:1: the line 'end' is missing: the file was cut"},
      {"7 \"a\"\n7 \"b\"\nend", "4:1: text 7 stands in line 3 already"},
      {"resource 1 a \"\"\n resource 1 A \"\"\nend", "4:11: resource 1 A stands in line 3 already"},
      {"65536 \"a\"", "3:1: a number is over 65535"},
      {"99999999999999999999 \"a\"", "3:1: a number is over 65535"},
      {"7x \"a\"", "3:2: 'x' doesn't belong in a number"},
      {"7", "3:2: a text in quotes is missing"},
      {"7 a", "3:3: a text in quotes is missing"},
      {"7 \"a\" b", "3:7: nothing more belongs in this line"},
      {"7 \"a\n", "3:3: the quote isn't closed in its line"},
      {"7 \"a\\", "3:5: an unknown escape; known are \\n \\r \\t \\\" \\\\"},
      {"7 \"\xC3\xA9\\q\"", "3:5: an unknown escape; known are \\n \\r \\t \\\" \\\\"},
      {"7 \"\\x41\"", "3:4: \\x belongs in resources; a text is UTF-8"},
      {"resource 1 a \"\\x4\"", "3:15: \\x needs two hexadecimal digits"},
      {"resource 6 a \"\"", "3:10: texts (type 6) are written by their number alone"},
      {"resource 1 \"\"", "3:12: a name is missing: a number, or letters, digits, '_', '.' and '-'"},
      {"resource a \"\"", "3:10: a type is missing"},
      {"7 \"\xC3\xA9 \xE4\"", "3:6: the byte E4 is no UTF-8"},
      {std::string("7 \"a\0\"", 6), "3:5: the byte 00 is a control character"},
      {"7 \"a\"\r8 \"b\"", "3:6: the byte 0D is a control character"},
      {"text 7", "3:1: a number, 'resource' or 'end' is missing"},
      {"end\n7 \"a\"", "4:1: something behind the line 'end'"},
  };
  for (const auto& [entries, fault] : cases) EXPECT_EQ(Read(kHead + entries), "f:" + fault) << entries.substr(0, 40);
  const std::string first = "1:1: no file of resources: the first line isn't 'kestrix resources 1'";
  for (const std::string text : {"", "kestrix resources 2\n", " kestrix resources 1\n", "id,text\n"})
    EXPECT_EQ(Read(text), "f:" + first);
  EXPECT_EQ(Read("kestrix resources 1\nlanguage ../x\n"),
            "f:2:10: a language tag is missing: letters, digits and '-', as "
            "in 'de' or 'pt-BR'");
  EXPECT_EQ(Read("\xFF\xFEk"), "f: the file is UTF-16; save it as UTF-8");
  EXPECT_EQ(test::MessageOf<EResourceFileError>([] { ReadResourceFile("no/file"); }),
            "no/file: No such file or directory");
}

TEST(ResourceFile, EveryCutAndEveryChangedByteIsReadOrRefused) {
  const std::string whole = test::ReadFile(KESTRIX_TESTS_DIR "/../languages/kestrix.de.kres");
  const std::size_t end = whole.find_last_of('d');
  std::size_t refused = 0;
  for (std::size_t at = 0; at < whole.size(); ++at) {
    EXPECT_EQ(Read(whole.substr(0, at)).starts_with("f:"), at <= end) << "cut at " << at;
    for (const int flip : {0x01, 0x20, 0x80, 0xFF}) {
      std::string changed = whole;
      changed[at] = static_cast<char>(changed[at] ^ flip);
      refused += Read(changed).starts_with("f:") ? 1 : 0;
    }
  }
  EXPECT_GT(refused, whole.size());
}

TEST(TranslationCheck, FindsEveryFault) {
  std::string whole = kHead;
  for (const auto& [id, text] : OriginalResourceStrings())
    whole += std::to_string(id) + " " + QuotedResource(text) + "\n";
  const auto faults = [&](const std::string& from, const std::string& to) {
    std::string text = whole + "end\n", all;
    text.replace(text.find(from), from.size(), to);
    for (const TTranslationFault& fault : CheckTranslation(ParseResourceFile(text, "f")))
      all += std::to_string(fault.Line) + ":" + std::to_string(fault.Id) + (fault.Severity == fsError ? "! " : "? ") +
             fault.Message + ";";
    return all;
  };
  const struct {
    const char *from, *to, *found;
  } cases[] = {
      {"", "", ""},
      {"From: %0:s\\nForever\\n%1:s", "%1:s, %0:S", ""},
      {"Parameter %d is", "Parameter %0:d is", ""},
      {"%0:s Units (Default)", "Units 100 %%", "23:14626! %0:s is missing;"},
      {"Time: %0:s Duration: %1:s", "%0:s %0:s 5% %1:d",
       "21:14624! %1:s is missing, %, %0:s, %1:d isn't in the original;"},
      {"\"Day\"", "\"\"", "47:14672! the text is empty (\"Day\");"},
      {"\"Day\"", "\"100 %\"", ""},
      {"\"Day\"", "\"%d\"", "47:14672! %d isn't in the original;"},
      {"14672 \"Day\"", "7 \"x\"", "47:7? the system has no such text;0:14672! the text is missing (\"Day\");"},
      {"\"y\"", "\"W\"", "45:14670! the same unit of durations as 14664;"},
      {"\"y\"", "\"y2\"", "45:14670! a unit of durations with a digit can't be read again;"},
      {"\"y\"", "\"y \"", "45:14670! a unit of durations with a blank at an end can't be read again;"},
  };
  for (const auto& each : cases) EXPECT_EQ(faults(each.from, each.to), each.found) << each.to;
  const auto german = CheckTranslationFile(KESTRIX_TESTS_DIR "/../languages/kestrix.de.kres");
  EXPECT_TRUE(german.empty()) << german.front().Message;
  const auto none = CheckTranslationFile("no/file");
  ASSERT_EQ(none.size(), 1u);
  EXPECT_EQ(none[0].Message, "No such file or directory");
}

}  // namespace
}  // namespace vx
