// Modules, their order of search, and languages.
#include "base/VXResourceModuleList_UNT.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/VXResMsgsUtils_UNT.h"
#include "platform/runtime/StringResources.h"
#include "platform/system/ResourceFile.h"
#include "support/Golden.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

const std::string kLanguages = KESTRIX_TESTS_DIR "/../languages/kestrix.";

std::string AllTexts() {
  std::string all;
  for (const auto& [id, original] : OriginalResourceStrings())
    all += std::to_string(id) + " " + QuotedResource(LoadStr(id)) + "\n";
  return all;
}

TEST(Languages, EnglishIsBuiltInAndGermanIsWhole) {
  const std::string builtIn = AllTexts();
  std::string english;
  for (const auto& text : ReadResourceFile(kLanguages + "en.kres").Strings)
    english += std::to_string(text.Id) + " " + QuotedResource(text.Text) + "\n";
  EXPECT_EQ(english, builtIn);
  const THInstance german = LoadResourceModule(kLanguages + "de.kres");
  UseLanguageModule(german);
  EXPECT_TRUE(test::MatchesGolden("platform/string-resources.de.txt", AllTexts()));
  EXPECT_EQ(FmtMsg(14666, {"q"}) + FmtStr("%u", 86'400, vxduDay), "Ung\u00FCltige Zeiteinheit: q.1 t");
  EXPECT_TRUE(FindResourceInstance(MainInstance()) == german && GetModule(german) == MainInstance());
  EXPECT_EQ(GetResourceModuleFileName(MainInstance()), "kestrix.de.kres");
  FreeResourceModule(german);
  EXPECT_EQ(AllTexts(), builtIn);
  EXPECT_TRUE(GetModule(german) == CInvalidHInstance && LoadString(german, 14672).empty());
}

TEST(Languages, AreFoundBesideTheProgram) {
  const auto folder = std::filesystem::path(ModuleFileName(MainInstance())).parent_path() / "languages";
  std::filesystem::create_directory(folder);
  std::filesystem::copy_file(kLanguages + "de.kres", folder / "kestrix.x-test.kres",
                             std::filesystem::copy_options::overwrite_existing);
  const THInstance first = UseLanguage("x-test");
  EXPECT_NE(UseLanguage("x-test"), first);
  EXPECT_EQ(LoadStr(14672) + ModuleLanguage(FindResourceInstance(MainInstance())), "Tagde");
  EXPECT_EQ(test::MessageOf<EResourceFileError>([] { UseLanguage("../x"); }),
            "language '../x': there is no kestrix.../x.kres");
  EXPECT_EQ(UseLanguage("en"), MainInstance());
  EXPECT_EQ(LoadStr(14672), "Day");
  EXPECT_EQ(LoadedModules().size(), 1u);
  std::error_code notEmpty;
  std::filesystem::remove(folder / "kestrix.x-test.kres");
  std::filesystem::remove(folder, notEmpty);
}

class ResourceModuleList : public testing::Test {
 protected:
  THInstance Load(const std::string& name, const std::string& entries) {
    return LoadResourceModule(folder_.Write(name, "kestrix resources 1\nlanguage en\n" + entries + "end\n"));
  }
  void TearDown() override {
    for (const TLoadedModule& entry : LoadedModules()) FreeResourceModule(entry.Instance);
  }

  test::TTestFolder folder_;
};

std::string Order(const TVXResourceModuleList& list) {
  std::string names;
  for (std::int32_t i = 0; i < list.GetCount(); ++i) {
    const std::string name = list.GetFileName(i);
    names += name.empty() ? "?" : name.ends_with(".kres") ? name.substr(0, 1) : "p";
  }
  return names;
}

TEST_F(ResourceModuleList, ThePrimaryMovesToTheFront) {
  const THInstance a = Load("a.kres", ""), b = Load("b.kres", "");
  const auto list = Make<TVXResourceModuleList>();
  const THInstance c = Load("c.kres", "");
  list->AddResourceModule(c);
  list->AddResourceModule(MainInstance());
  const struct {
    THInstance primary;
    const char* order;
  } cases[] = {
      {b, "bpac"}, {c, "cpab"}, {MainInstance(), "pabc"}, {THInstance{999}, "?abc"}, {CInvalidHInstance, "pabc"}};
  for (const auto& each : cases) {
    list->SetPrimaryResourceModule(each.primary);
    EXPECT_EQ(Order(*list), each.order);
  }
  for (const std::int32_t wrong : {-1, 4, INT32_MIN})
    EXPECT_EQ(test::MessageOf<EListError>([&] { list->GetResourceModule(wrong); }),
              "List index out of bounds (" + std::to_string(wrong) + ")");
  FreeResourceModule(a);
  list->Refresh();
  EXPECT_EQ(Order(*list), "pbc");
  EXPECT_EQ(GetModuleFileNameWithPath(CInvalidHInstance) + GetModuleFileNameWithPath(a), "");
}

TEST_F(ResourceModuleList, TheFirstTextThatIsNotEmptyWins) {
  std::string accents, text = "untouched";
  for (std::int32_t i = 0; i < 600; ++i) accents += "\u00E9";
  Load("a.kres", "14672 \"Jour\"\n14673 \"\"\n7 \"" + accents + "\"\n");
  const THInstance b =
      Load("b.kres", "14672 \"Dag\"\nresource 10 4096 \"\"\nresource 10 TForm \"\"\nresource 11 x \"\"\n");
  const auto list = Make<TVXResourceModuleList>();
  EXPECT_FALSE(list->LoadString(8, text));
  const auto load = [&](std::int32_t id) { return list->LoadString(id, text) ? text : "none"; };
  EXPECT_EQ(load(14672) + load(14673) + load(7), "DayWeek" + accents.substr(0, 1022));
  list->SetPrimaryResourceModule(b);
  EXPECT_EQ(load(14672) + load(14673), "DagWeek");
  EXPECT_EQ(testing::PrintToString(GetResourceModuleResourceNames(b, 10)), "{ \"$1000\", \"TForm\" }");
  EXPECT_EQ(testing::PrintToString(GetResourceModuleResourceNames(b, 6)), "{ \"$3950\" }");
  EXPECT_EQ(GetResourceModuleResourceNames(MainInstance(), 6).size(), 66u);
}

}  // namespace
}  // namespace vx
