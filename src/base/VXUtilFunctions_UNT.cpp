#include "base/VXUtilFunctions_UNT.h"

#include <algorithm>
#include <vector>

#include "base/VXResourceModuleList_UNT.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"
#include "platform/system/ShowMessage.h"

namespace vx::VXUtilFunctions_UNT {
namespace {

constexpr double kGreatestPlain = 999'000'000'000'000;
constexpr std::int32_t kPrecision = 15;
constexpr std::int32_t kExponentDigits = 4;

std::string DecimalText(double value, std::int32_t decimals, bool display) {
  return FloatToStrF(value, display ? ffNumber : ffFixed, kPrecision, decimals);
}

/// In its language, itself, or in a file beside it: whatever the program has loaded.
bool HasForm(const TClass& type) {
  const std::vector<TLoadedModule> modules = LoadedModules();
  return std::any_of(modules.begin(), modules.end(), [&](const TLoadedModule& module) {
    return FindResource(module.ResourceInstance, kRawDataResources, type.Name()) != nullptr;
  });
}

[[noreturn]] void RaiseFormNotFound(const TClass& type, const TClass& original) {
  const std::string text = "Error creating instance of: " + original.Name() +
                           "\r\rDFM resource could not be found for class " + type.Name() + "\rin module " +
                           GetModuleFileName(MainInstance()) + " or in its resource dll";
  ShowMessage(text);
  throw EVXDfmResourceNotFound(text);
}

/// Position of the first character of `text` whose being in `set` is `wanted`.
std::int32_t FindFirst(std::string_view text, std::string_view set, bool wanted) {
  std::vector<char32_t> characters;
  for (std::size_t at = 0; at < set.size();) characters.push_back(NextCodePoint(set, at));
  std::sort(characters.begin(), characters.end());
  std::int32_t position = 1;
  for (std::size_t at = 0; at < text.size(); ++position)
    if (std::binary_search(characters.begin(), characters.end(), NextCodePoint(text, at)) == wanted) return position;
  return 0;
}

}  // namespace

std::string FloatToString(double value, std::int32_t decimals, bool display) {
  if (value > kGreatestPlain)
    return FloatToStrF(value, ffExponent, std::clamp(decimals, 0, kPrecision) + 1, kExponentDigits);
  return DecimalText(value, decimals, display);
}

std::string PercentageToString(double value, std::int32_t decimals, bool display) {
  return DecimalText(value, decimals, display) + (display ? " %" : "");
}

bool IsChildOf(const TClass* type, const TClass* ancestor) {
  if (ancestor == nullptr) return false;
  while (type != nullptr && type->Name() != ancestor->Name()) type = type->Ancestor();
  return type != nullptr;
}

bool IsA(const TObject* object, const TClass* type) {
  return IsChildOf(object == nullptr ? nullptr : &object->ClassType(), type);
}

bool IsSilentExceptionClass(const TClass* type) { return IsChildOf(type, &EAbort::StaticClass()); }

bool IsSilentException(const Exception& error) {
  if (IsSilentExceptionClass(&error.ClassType())) return true;
  const auto* const system = dynamic_cast<const EOleSysError*>(&error);
  return system != nullptr && system->ErrorCode() == GetSilentExceptionErrorCode();
}

HRESULT GetSilentExceptionErrorCode() {
  static const HRESULT code = [] {
    constexpr std::uint32_t kSeverity = 1, kFacility = 64, kCode = 0;
    return ResultCode(kSeverity << 31u | kFacility << 16u | kCode);
  }();
  return code;
}

void CheckClassResource(const TClass* type, const TClass* stop, const TClass* original) {
  const TClass& made = Need(original, "original class");
  for (const TClass* at = type;; at = at->Ancestor()) {
    if (!HasForm(Need(at, "form class"))) RaiseFormNotFound(*at, made);
    if (at == stop) return;
  }
}

std::int32_t ExecuteAndWait(std::string_view commandLine, TProcessInformation& information) {
  return RunProcess(commandLine, information);
}

std::int32_t FindFirstOf(std::string_view text, std::string_view set) { return FindFirst(text, set, true); }

std::int32_t FindFirstNotOf(std::string_view text, std::string_view set) { return FindFirst(text, set, false); }

}  // namespace vx::VXUtilFunctions_UNT
