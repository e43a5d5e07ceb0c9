#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <new>
#include <ostream>

#include "BucketCommand.h"
#include "ChartCommand.h"
#include "ColoursCommand.h"
#include "ConvertCommand.h"
#include "DrawCommand.h"
#include "MessagesCommand.h"
#include "PaletteCommand.h"
#include "Suggest.h"
#include "TableCommand.h"
#include "UserError.h"

namespace vx::kestrix {

namespace {

constexpr const char* kAbout =
    "Tables and charts from a planner's files, and tools for those who program with Kestrix.";

constexpr const char* kExamples = R"(Examples:
  kestrix table orders.csv --where "Customer Market=Europe" --sort "Profit.D;Order ID" --limit 10
  kestrix table orders.csv --where "Discount % is null" --columns "Order ID,Profit" --format json
  kestrix table orders.csv --stats
  kestrix table orders.csv --where "Profit<0" --set "Discount %=0" -o mended.csv
  kestrix bucket orders.csv --date "Order Date" --by week --group Department --sum Quantity --average Profit
  kestrix chart orders.csv --date "Order Year,Order Month,Order Day" --value "Order Quantity" \
      --series "Product Department" --by month -o out.png
  kestrix palette --page "VX Data Access"
  kestrix convert orders.kform orders.bin
  kestrix messages --check languages/kestrix.fr.kres
  kestrix colours clWindow red 1f5a8c --scheme dark
  kestrix draw sketch.txt -o sketch.pdf
  kestrix <command> --help)";

struct TCommand {
  const char* name;
  TRunCommand (*add)(CLI::App& app);
};

constexpr TCommand kCommands[] = {{"table", AddTable},     {"bucket", AddBucket},   {"chart", AddChart},
                                  {"palette", AddPalette}, {"convert", AddConvert}, {"messages", AddMessages},
                                  {"colours", AddColours}, {"draw", AddDraw}};

/// "a, b or c".
std::string Listed(const std::vector<std::string>& names) {
  std::string list = names.front();
  for (std::size_t i = 1; i < names.size(); ++i) list += (i + 1 < names.size() ? ", " : " or ") + names[i];
  return list;
}

/// The first word, if it is one, must be a command; the parser's own words for that are no help.
void CheckCommand(const std::vector<std::string>& arguments) {
  std::vector<std::string> names;
  for (const TCommand& command : kCommands) names.emplace_back(command.name);
  if (arguments.empty()) throw EUserError("a command is missing: " + Listed(names) + "; see kestrix --help");
  const std::string& first = arguments.front();
  if (first.starts_with('-') || std::find(names.begin(), names.end(), first) != names.end()) return;
  throw EUserError("no command " + Quoted(first) + DidYouMean(first, names));
}

/// A word left over: an option that there isn't, as a rule.
[[noreturn]] void FailOnUnknown(const CLI::App& command) {
  std::vector<std::string> known;
  for (const CLI::Option* const option : command.get_options())
    if (!option->get_positional()) known.push_back("--" + option->get_single_name());
  const std::string unknown = command.remaining().front();
  const std::string hint = DidYouMean(unknown, known);
  throw EUserError("no option " + Quoted(unknown) +
                   (hint.empty() ? "; see kestrix " + command.get_name() + " --help" : hint));
}

int Run(std::vector<std::string> arguments, const TStreams& streams) {
  CLI::App app(kAbout, "kestrix");
  app.set_version_flag("--version", "kestrix " KESTRIX_VERSION);
  app.footer(kExamples);
  app.require_subcommand(0, 1);  // behind one, such a word is a file
  std::vector<TRunCommand> runs;
  for (const TCommand& command : kCommands) runs.push_back(command.add(app));
  CheckCommand(arguments);
  try {
    std::reverse(arguments.begin(), arguments.end());  // that is how they are wanted
    app.parse(std::move(arguments));
  } catch (const CLI::Success& wish) {
    return app.exit(wish, streams.out, streams.err);  // --help, --version
  } catch (const CLI::ParseError& error) {
    const auto commands = app.get_subcommands();
    if (!commands.empty() && !commands.front()->remaining().empty()) FailOnUnknown(*commands.front());
    const std::string command = commands.empty() ? "" : " " + commands.front()->get_name();
    throw EUserError(OneLine(error.what()) + "; see kestrix" + command + " --help");
  }
  for (std::size_t i = 0; i < runs.size(); ++i)
    if (app.got_subcommand(kCommands[i].name)) return runs[i](streams);
  return kSuccess;
}

}  // namespace

int RunKestrix(std::vector<std::string> arguments, const TStreams& streams) try {
  return Run(std::move(arguments), streams);
} catch (const EUserError& error) {
  streams.err << "kestrix: " << error.Message() << '\n';
  return kUserError;
} catch (const EInterrupted&) {
  return kInterrupted;
} catch (const std::bad_alloc&) {
  streams.err << "kestrix: out of memory\n";
  return kInternalError;
} catch (const std::exception& error) {
  streams.err << "kestrix: internal error: " << OneLine(error.what()) << '\n';
  return kInternalError;
}

}  // namespace vx::kestrix
