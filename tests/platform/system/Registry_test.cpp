#include "platform/system/Registry.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

#include "platform/system/InForce.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

class Registry : public testing::Test {
 protected:
  std::string KeyNames() const {
    const auto names = Make<TStringList>();
    settings_->GetKeyNames(*names);
    return names->GetCommaText();
  }
  std::string ValueNames() const {
    const auto names = Make<TStringList>();
    settings_->GetValueNames(*names);
    return names->GetCommaText();
  }

  TMemoryRegistry store_;
  TInForce<IRegistryStore*>::TScope scope_{&store_};
  TOwned<TRegistry> settings_ = Make<TRegistry>();
};

TEST_F(Registry, KeepsValuesOfEachKind) {
  ASSERT_TRUE(settings_->OpenKey("Software\\Plan", true));
  settings_->WriteString("Text", std::string("Müller\0\n", 9));
  settings_->WriteInteger("Least", std::numeric_limits<std::int32_t>::min());
  settings_->WriteBool("Yes", true);
  settings_->WriteBool("No", false);
  settings_->WriteFloat("Float", -0.1);
  settings_->WriteBinaryData("TZI", {0, 255, 7});
  settings_->WriteInteger("", 5);

  const auto other = Make<TRegistry>();
  ASSERT_TRUE(other->OpenKeyReadOnly("SOFTWARE\\plan"));
  EXPECT_FALSE(other->CreateKey("Chart") || other->DeleteKey("\\SOFTWARE\\plan") || settings_->DeleteKey(""));
  EXPECT_EQ(other->ReadString("TEXT"), std::string("Müller\0\n", 9));
  EXPECT_EQ(other->ReadInteger("Least"), std::numeric_limits<std::int32_t>::min());
  EXPECT_TRUE(other->ReadBool("yes"));
  EXPECT_FALSE(other->ReadBool("no"));
  EXPECT_EQ(other->ReadFloat("Float"), -0.1);
  EXPECT_EQ(other->ReadBinaryData("tzi"), (TRegistryBytes{0, 255, 7}));
  EXPECT_EQ(ValueNames(), ",Float,Least,No,Text,TZI,Yes");
  settings_->WriteString("LEAST", "a text now");
  EXPECT_EQ(other->ReadString("Least"), "a text now");
  EXPECT_TRUE(settings_->DeleteValue("least"));
  EXPECT_FALSE(settings_->DeleteValue("least"));
  EXPECT_FALSE(other->DeleteValue("Text")) << "open for reading only";
}

struct TPathCase {
  const char* Name;
  const char* First;   // opened first, unless it is empty
  std::string Path;    // then opened with creation
  const char* Opened;  // the path of the key then; "-" if it can't be opened

  friend void PrintTo(const TPathCase& each, std::ostream* out) { *out << each.Name; }
};

class RegistryPath : public Registry, public testing::WithParamInterface<TPathCase> {};

TEST_P(RegistryPath, LeadsToAKeyOrNowhere) {
  const TPathCase& path = GetParam();
  if (*path.First != '\0') settings_->OpenKey(path.First, true);
  const std::string before = settings_->CurrentPath();
  EXPECT_FALSE(settings_->OpenKeyReadOnly(path.Path.empty() ? "x" : path.Path + "\\x"));
  const bool isOpened = settings_->OpenKey(path.Path, true);
  EXPECT_EQ(isOpened ? settings_->CurrentPath() : "-", path.Opened);
  if (!isOpened) {
    EXPECT_EQ(settings_->CurrentPath(), before) << "the key before stays open";
    EXPECT_FALSE(settings_->KeyExists(path.Path));
    EXPECT_FALSE(settings_->CreateKey(path.Path));
    EXPECT_FALSE(settings_->DeleteKey(path.Path));
  }
}

std::string Deep(std::int32_t depth) {
  std::string path;
  for (std::int32_t i = 0; i < depth; ++i) path += "\\d";
  return path;
}

const TPathCase kPathCases[] = {
    {"Plain", "", "a\\b", "a\\b"},
    {"Relative", "a", "b\\c", "a\\b\\c"},
    {"Absolute", "a", "\\b\\c", "b\\c"},
    {"EmptyNames", "", "\\\\\\a\\\\b\\\\", "a\\b"},
    {"Empty", "a", "", "a"},
    {"Root", "a", "\\", ""},
    {"DotsAreNames", "a", "..\\.\\b/c", "a\\..\\.\\b/c"},
    {"TooLong", "", std::string(256, 'n'), "-"},
    {"ZeroByte", "a", std::string("b\0c", 3), "-"},
    {"TooDeep", "a", Deep(513), "-"},
    {"TooDeepTogether", "a", Deep(512).substr(1), "-"},
};
INSTANTIATE_TEST_SUITE_P(Paths, RegistryPath, testing::ValuesIn(kPathCases),
                         [](const auto& each) { return std::string(each.param.Name); });

TEST_F(Registry, TellsWhatIsThere) {
  EXPECT_FALSE(settings_->OpenKey("Plan", false));
  for (const char* key : {"Plan\\b", "Plan\\C\\x", "Plan\\a", "PLAN\\B"}) EXPECT_TRUE(settings_->CreateKey(key));
  ASSERT_TRUE(settings_->OpenKey("plan", false));
  EXPECT_EQ(KeyNames(), "a,b,C");
  EXPECT_TRUE(settings_->KeyExists("c\\X"));
  settings_->SetRootKey(HKEY_LOCAL_MACHINE);
  EXPECT_FALSE(settings_->IsKeyOpen());
  EXPECT_FALSE(settings_->KeyExists("Plan"));
  settings_->SetRootKey(HKEY_CURRENT_USER);
  EXPECT_TRUE(settings_->DeleteKey("plan\\c"));
  EXPECT_FALSE(settings_->DeleteKey("plan\\c"));
  EXPECT_FALSE(settings_->DeleteKey("\\")) << "a root stays";
  EXPECT_FALSE(settings_->KeyExists("Plan\\C\\x"));
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->SetRootKey(7); }), "The registry has no root 7");
}

TEST_F(Registry, NamesWhatCannotBeReadOrWritten) {
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->ReadInteger("Top"); }),
            "Registry value 'Top' of no key: no key is open");
  EXPECT_FALSE(settings_->ValueExists("Top"));
  settings_->OpenKey("Plan\\Chart", true);
  settings_->WriteString("Top", "fifty");
  settings_->WriteBinaryData("Zoom", {1, 2, 3});
  const std::string in = " of HKEY_CURRENT_USER\\Plan\\Chart: ";
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->ReadBool("Top"); }),
            "Registry value 'Top'" + in + "a text stands there, not an integer");
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->ReadString("Left"); }),
            "Registry value 'Left'" + in + "there is none of that name");
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->ReadFloat("Zoom"); }),
            "Registry value 'Zoom'" + in + "3 bytes are no number");
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->WriteInteger(std::string(20'000, 'x'), 1); }),
            "Registry value '" + std::string(60, 'x') + "...'" + in + "that is no name");
  EXPECT_FALSE(settings_->ValueExists(std::string("Top\0", 4)));
  const auto other = Make<TRegistry>();
  other->OpenKeyReadOnly("Plan\\Chart");
  EXPECT_EQ(MessageOf<ERegistryException>([&] { other->WriteInteger("Top", 1); }),
            "Registry value 'Top'" + in + "the key is open for reading only");
  settings_->DeleteKey("\\Plan");
  EXPECT_EQ(MessageOf<ERegistryException>([&] { settings_->WriteInteger("Top", 1); }),
            "Registry value 'Top'" + in + "it can't be written");
}

}  // namespace
}  // namespace vx
