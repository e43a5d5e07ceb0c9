#include "base/VXUtilFunctions_UNT.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/runtime/Locale.h"
#include "platform/system/ResourceModules.h"
#include "platform/system/ShowMessage.h"
#include "support/TestFolder.h"
#include "support/TestKit.h"

namespace vx {
namespace {

using test::MessageOf;

TEST(UtilFunctions, NumbersReadAsPeopleWriteThem) {
  const TLocaleScope locale(ClassicLocale());
  const struct {
    double value;
    std::int32_t decimals;
    const char *shown, *plain, *percent;
  } cases[] = {
      {1234.5, 2, "1,234.50", "1234.50", "1,234.50 %"},
      {-1234567, 0, "-1,234,567", "-1234567", "-1,234,567 %"},
      {-100.4, 0, "-100", "-100", "-100 %"},
      {999e12, 1, "999,000,000,000,000.0", "999000000000000.0", "999,000,000,000,000.0 %"},
      {1e15, 2, "1.00E+0015", "1.00E+0015", "1E15 %"},
      {1.5e300, 0, "2E+0300", "2E+0300", "1.5E300 %"},
      {1e15, 2147483647, "1.00000000000000E+0015", "1.00000000000000E+0015", "1E15 %"},
      {-1e15, 2, "-1E15", "-1E15", "-1E15 %"},  // Kept: the bound is for one side
      {test::kInfinity, 2, "INF", "INF", "INF %"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(FloatToString(each.value, each.decimals, true), each.shown);
    EXPECT_EQ(FloatToString(each.value, each.decimals, false), each.plain);
    EXPECT_EQ(PercentageToString(each.value, each.decimals, true), each.percent);
  }
  EXPECT_EQ(PercentageToString(1234.5, 1, false), "1234.5");
}

class ESilent : public TNamedException<ESilent, EAbort> {
 public:
  static constexpr const char* kName = "ESilent";
  using TNamedException::TNamedException;
};

TEST(UtilFunctions, TellsClassesByNameAndSilentErrors) {
  const TClass root("TRoot", nullptr), child("TChild", &root), like("TRoot", nullptr), other("TOther", nullptr);
  EXPECT_TRUE(IsChildOf(&child, &like) && IsChildOf(&child, &child));
  EXPECT_FALSE(IsChildOf(&root, &child) || IsChildOf(&child, &other) || IsChildOf(nullptr, &root) ||
               IsChildOf(&root, nullptr) || IsA(nullptr, &root) || IsSilentExceptionClass(nullptr));
  EXPECT_TRUE(IsSilentException(EAbort("")) && IsSilentException(ESilent("")));
  EXPECT_FALSE(IsSilentException(Exception("")) || IsSilentException(EOleSysError("", E_FAIL)));
  EXPECT_TRUE(IsSilentException(EOleSysError("", GetSilentExceptionErrorCode())));
  EXPECT_EQ(static_cast<std::uint32_t>(GetSilentExceptionErrorCode()), 0x80400000u);
}

TEST(UtilFunctions, AFormClassNeedsItsForm) {
  const test::TTestFolder folder;
  const TClass base("TBaseForm", nullptr), form("TForm1", &base), last("TLastForm", &form);
  const THInstance forms = LoadResourceModule(
      folder.Write("forms.kres",
                   "kestrix resources 1\nlanguage en\nresource 10 tform1 \"\"\nresource 11 TBaseForm \"\"\n"
                   "resource 10 TLastForm \"\"\nend\n"));
  std::string shown;
  const TMessageShower before = SetMessageShower([&](const std::string& text) { shown += text; });
  CheckClassResource(&last, &form, &last);
  const std::string text =
      "Error creating instance of: TLastForm\r\rDFM resource could not be found for class "
      "TBaseForm\rin module " +
      std::filesystem::path(ModuleFileName(MainInstance())).filename().string() + " or in its resource dll";
  EXPECT_EQ(MessageOf<EVXDfmResourceNotFound>([&] { CheckClassResource(&last, &base, &last); }), text);
  EXPECT_EQ(shown, text);
  FreeResourceModule(forms);
  EXPECT_THROW(CheckClassResource(&last, &last, &last), EVXDfmResourceNotFound);
  EXPECT_THROW(CheckClassResource(nullptr, &last, &last), ENilAccess);
  SetMessageShower(before);
}

TEST(UtilFunctions, FindsCharactersNotBytes) {
  const struct {
    const char *text, *set;
    std::int32_t first, firstNot;
  } cases[] = {{"", "a", 0, 0},
               {"abc", "", 0, 1},
               {"12 h", "hdm", 4, 1},
               {"aab", "a", 1, 3},
               {"aa", "a", 1, 0},
               {"\u00E9\u4E2Dx", "x\u4E2D", 2, 1},
               {"\u00E9x", "\u00E9", 1, 2},
               {"\u00E9", "\xC3", 0, 1}};
  for (const auto& each : cases) {
    EXPECT_EQ(FindFirstOf(each.text, each.set), each.first) << each.text;
    EXPECT_EQ(FindFirstNotOf(each.text, each.set), each.firstNot) << each.text;
  }
}

}  // namespace
}  // namespace vx
