#include "MessagesCommand.h"

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>

#include "CommandOptions.h"
#include "InputFile.h"
#include "UserError.h"
#include "platform/runtime/StringResources.h"
#include "platform/system/ResourceModules.h"
#include "platform/system/TranslationCheck.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(A check tells what a translation lacks, where its placeholders differ, and what the system has no text for.
The ending code is 2 if there is an error, 0 if there are only warnings.

Examples:
  kestrix messages
  kestrix messages --language de --format csv -o texts.csv
  kestrix messages --check languages/kestrix.fr.kres)";

struct TMessagesOptions {
  std::vector<std::string> files;
  bool wantsCheck = false;
  std::string language;
  std::string format = "table";
  std::string output;
};

TResourceFile ReadTranslation(const std::string& path, const TStreams& streams) {
  try {
    return ParseResourceFile(ReadInput(path, streams.in, kResourceFileLimit), InputName(path));
  } catch (const EResourceFileError& error) {
    const std::string place =
        error.Line() == 0 ? "" : ":" + std::to_string(error.Line()) + ":" + std::to_string(error.Column());
    throw EUserError(OneLine(InputName(path)) + place + ": " + OneLine(error.What()));
  }
}

// -- Check ------------------------------------------------------------------------------------------------------------

std::string Counted(std::ptrdiff_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

/// "nothing missing", "1 error, 2 warnings".
std::string Verdict(std::ptrdiff_t errors, std::ptrdiff_t warnings) {
  const std::string first = errors == 0 ? "nothing missing" : Counted(errors, "error");
  return first + (warnings == 0 ? "" : ", " + Counted(warnings, "warning"));
}

/// False if the file has an error.
bool Check(const std::string& path, std::ostream& out, const TStreams& streams) {
  const TResourceFile file = ReadTranslation(path, streams);
  const std::vector<TTranslationFault> faults = CheckTranslation(file);
  const std::string name = OneLine(InputName(path));
  for (const TTranslationFault& fault : faults)
    out << name << (fault.Line > 0 ? ":" + std::to_string(fault.Line) : "")
        << (fault.Severity == fsWarning ? ": warning: " : ": ") << (fault.Id > 0 ? std::to_string(fault.Id) + ": " : "")
        << OneLine(fault.Message) << '\n';
  const auto warnings = std::count_if(faults.begin(), faults.end(),
                                      [](const TTranslationFault& fault) { return fault.Severity == fsWarning; });
  const std::ptrdiff_t errors = std::ssize(faults) - warnings;
  out << name << ": language " << OneLine(file.Language) << ", " << Counted(std::ssize(file.Strings), "text")
      << (errors > 0 ? ": " : ", ") << Verdict(errors, warnings) << '\n';
  return errors == 0;
}

// -- List -------------------------------------------------------------------------------------------------------------

/// The file of a language that is given by its tag or by the file itself.
std::string FileOfLanguage(const std::string& language) {
  const bool isTag = language.find_first_of("./") == std::string::npos && language != kStandardInput;
  const std::string found = isTag ? FindLanguageFile(language) : language;
  if (found.empty())
    throw EUserError("--language " + Quoted(language) + " should be a file, or a language that has one here");
  return found;
}

/// A number's text, and what the translation has for it.
using TTexts = std::map<std::int32_t, std::pair<TCellValue, TCellValue>>;

/// Each translation below its text: side by side, the longest two would leave no terminal wide enough.
void WriteForPeople(ITableWriter& writer, const TTexts& texts, const std::string& language) {
  writer.Begin({{"Number", true}, {"Text, and below it " + language}});
  for (const auto& [id, text] : texts) {
    writer.Row({id, text.first});
    writer.Row({TCellValue(), text.second});
  }
  writer.End();
}

void Write(ITableWriter& writer, const TTexts& texts, const std::string& language) {
  const bool hasTranslation = !language.empty();
  std::vector<TWrittenColumn> columns = {{"Number", true}, {"Text"}};
  if (hasTranslation) columns.push_back({language});
  writer.Begin(columns);
  for (const auto& [id, text] : texts)
    writer.Row(hasTranslation ? std::vector<TCellValue>{id, text.first, text.second}
                              : std::vector<TCellValue>{id, text.first});
  writer.End();
}

void List(const TMessagesOptions& options, const TStreams& streams) {
  const std::string path = options.language.empty() ? std::string() : FileOfLanguage(options.language);
  TResult result(options.output, {path}, streams);
  TTexts texts;
  for (const TResourceString& text : OriginalResourceStrings()) texts[text.Id].first = std::string(text.Text);
  TResourceFile translation;
  if (!path.empty()) translation = ReadTranslation(path, streams);
  for (const TResourceFile::TString& text : translation.Strings) texts[text.Id].second = text.Text;
  const TTableFormat format = FormatOfName(options.format).value_or(TTableFormat::Table);
  const auto writer = MakeTableWriter(format, result.Out());
  const bool isForPeople = format == TTableFormat::Table && !translation.Language.empty();
  (isForPeople ? WriteForPeople : Write)(*writer, texts, translation.Language);
  result.Finish();
}

int RunMessages(const TMessagesOptions& options, const TStreams& streams) {
  if (options.wantsCheck) {
    if (options.files.empty()) throw EUserError("--check wants a translation; see kestrix messages --help");
    return CheckEach(options.files, streams,
                     [&](const std::string& file, std::ostream& out) { return Check(file, out, streams); });
  }
  if (!options.files.empty())
    throw EUserError(Quoted(options.files.front()) + " is for --check only; --language shows a translation");
  List(options, streams);
  return kSuccess;
}

}  // namespace

TRunCommand AddMessages(CLI::App& app) {
  const auto options = std::make_shared<TMessagesOptions>();
  CLI::App* const command =
      app.add_subcommand("messages", "Lists the numbered texts of the system, or checks translations of them");
  command->add_option("FILE", options->files, "Translations to check");
  command->add_flag("--check", options->wantsCheck, "Tells what the files lack, and what is wrong in them");
  command->add_option("--language", options->language, "A translation to show beside the texts: a file, or \"de\"");
  command->add_option("--format", options->format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"table", "csv", "tsv", "json"}));
  AddOutput(*command, options->output);
  command->footer(kHelp);
  return [options](const TStreams& streams) { return RunMessages(*options, streams); };
}

}  // namespace vx::kestrix
