#include "CommandOptions.h"

#include <ostream>

#include "Folding.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr std::int32_t kMostMemory = 1 << 24;  // MiB

std::optional<char> SeparatorOf(const std::string& text) {
  if (text.empty()) return std::nullopt;
  if (text == "tab" || text == "\\t") return '\t';
  const bool isUsable =
      text.size() == 1 && text != "\"" && text != "\n" && text != "\r" && static_cast<unsigned char>(text[0]) < 0x80;
  if (!isUsable) throw EUserError("--separator " + Quoted(text) + " should be one character, or \"tab\"");
  return text.front();
}

std::optional<char> DecimalOf(const std::string& text) {
  if (text.empty()) return std::nullopt;
  if (text != "." && text != ",") throw EUserError("--decimal " + Quoted(text) + " should be . or ,");
  return text.front();
}

}  // namespace

CLI::Option* AddList(CLI::App& app, const std::string& name, std::vector<std::string>& values,
                     const std::string& help) {
  return app.add_option(name, values, help)->allow_extra_args(false);
}

void AddOutput(CLI::App& app, std::string& output) {
  app.add_option("-o,--output", output, "A file to write instead of standard output");
}

void AddInputOptions(CLI::App& app, TRawInput& raw, const std::string& typeHelp) {
  const std::string group = "Reading";
  app.add_option("FILE", raw.files,
                 "Files of separated values with the same columns; standard input if there is none, or for -");
  AddList(app, "--type", raw.types,
          typeHelp + "COLUMN=TYPE: boolean, integer, float, date, datetime or string (else found out)")
      ->group(typeHelp.empty() ? group : "Options");
  app.add_option("--separator", raw.separator, "One character, or \"tab\" (else found out)")->group(group);
  app.add_option("--decimal", raw.decimal, "The decimal character, . or , (else found out)")->group(group);
  app.add_option("--header", raw.header, "Whether the first line names the columns (else found out)")
      ->check(CLI::IsMember({"yes", "no"}))
      ->group(group);
  AddList(app, "--null", raw.nulls,
          "A word for \"no value\" in columns that aren't text, instead of - and NA; blank always is")
      ->group(group);
  app.add_option("--date-order", raw.dateOrder, "How 03/04/2015 is read (else found out)")
      ->check(CLI::IsMember({"dmy", "mdy"}))
      ->group(group);
  app.add_option("--memory", raw.memory, "Most MiB that the rows may take")
      ->capture_default_str()
      ->check(CLI::Range(1, kMostMemory))
      ->group(group);
  app.add_flag("--skip-bad", raw.skipBad, "Leave bad records out and count them")->group(group);
}

void AddPeriod(CLI::App& app, std::string& by) {
  app.add_option("--by", by, "Period")->capture_default_str()->check(CLI::IsMember(kGroupModeNames));
}

int CheckEach(const std::vector<std::string>& files, const TStreams& streams,
              const std::function<bool(const std::string& file, std::ostream& out)>& check) {
  TResult result({}, {}, streams);
  int code = kSuccess;
  for (const std::string& file : files) try {
      if (!check(file, result.Out())) code = kUserError;
    } catch (const EUserError& error) {
      streams.err << "kestrix: " << error.Message() << '\n';
      code = kUserError;
    }
  result.Finish();
  return code;
}

TInputOptions InputOf(const TRawInput& raw) {
  TInputOptions input;
  input.files = raw.files;
  input.csv.separator = SeparatorOf(raw.separator);
  if (!raw.header.empty()) input.csv.hasHeader = raw.header == "yes";
  if (!raw.nulls.empty()) input.csv.nulls = TNullWords(raw.nulls);
  input.csv.skipBad = raw.skipBad;
  for (const std::string& type : raw.types) input.wishes.types.push_back(ParseTypeWish(type));
  input.wishes.decimal = DecimalOf(raw.decimal);
  if (!raw.dateOrder.empty())
    input.wishes.dateOrder = raw.dateOrder == "dmy" ? TDateOrder::DayFirst : TDateOrder::MonthFirst;
  input.limits.memory = static_cast<std::uint64_t>(raw.memory) << 20;
  return input;
}

}  // namespace vx::kestrix
