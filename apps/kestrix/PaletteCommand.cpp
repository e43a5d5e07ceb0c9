#include "PaletteCommand.h"

#include <algorithm>
#include <memory>
#include <ostream>

#include "CellValue.h"
#include "CommandOptions.h"
#include "JsonText.h"
#include "Suggest.h"
#include "UserError.h"
#include "package/Package.h"
#include "package/PaletteListing.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(A property's line tells its type, its default, and whether it can only be read. A form keeps it where it
differs from the default; where it never does, or the object decides by a rule of its own, the line says so.
Below a collection stand the properties of its items, below a part those of the part. A component's name
is never stored as a property, since it stands in the line of its object.

Examples:
  kestrix palette
  kestrix palette --page "VX Data Access"
  kestrix palette TVXRAMTable --format json)";

struct TPaletteOptions {
  std::string page;
  std::vector<std::string> classes;
  std::string format = "text";
  std::string output;
};

// -- What is asked for ------------------------------------------------------------------------------------------------

/// The page that may be meant, else those that there are.
std::string PageMeant(const std::string& wanted, const std::vector<std::string>& names) {
  const std::string meant = DidYouMean(wanted, names);
  if (!meant.empty() || names.empty()) return meant;
  std::string all;
  for (const std::string& name : names) all += (all.empty() ? "" : ", ") + Quoted(name);
  return ", only " + all;
}

void TakePage(std::vector<TPageListing>& pages, const std::string& wanted) {
  std::vector<std::string> names;
  for (const TPageListing& page : pages)
    if (!page.Name.empty()) names.push_back(page.Name);
  std::erase_if(pages, [&](const TPageListing& page) { return CompareText(page.Name, wanted) != 0; });
  if (pages.empty()) throw EUserError("no page " + Quoted(wanted) + " on the palette" + PageMeant(wanted, names));
}

std::vector<std::string> ClassNames(const std::vector<TPageListing>& pages) {
  std::vector<std::string> names;
  for (const TPageListing& page : pages)
    for (const TClassListing& type : page.Classes) names.push_back(type.Name);
  return names;
}

bool IsOneOf(const std::vector<std::string>& names, const std::string& wanted) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& name) { return CompareText(name, wanted) == 0; });
}

void TakeClasses(std::vector<TPageListing>& pages, const TPaletteOptions& options) {
  const std::vector<std::string> names = ClassNames(pages);
  const std::string where = options.page.empty() ? "the palette" : "the page " + Quoted(options.page);
  for (const std::string& wanted : options.classes)
    if (!IsOneOf(names, wanted))
      throw EUserError("no class " + Quoted(wanted) + " on " + where + DidYouMean(wanted, names));
  for (TPageListing& page : pages)
    std::erase_if(page.Classes, [&](const TClassListing& type) { return !IsOneOf(options.classes, type.Name); });
  std::erase_if(pages, [](const TPageListing& page) { return page.Classes.empty(); });
}

// -- JSON -------------------------------------------------------------------------------------------------------------

std::string JsonDefault(const std::optional<TListedDefault>& value) {
  if (!value) return "null";
  if (const auto* const isTrue = std::get_if<bool>(&*value)) return *isTrue ? "true" : "false";
  if (const auto* const ordinal = std::get_if<std::int64_t>(&*value)) return std::to_string(*ordinal);
  if (const auto* const number = std::get_if<double>(&*value)) return NumberText(*number);
  return JsonText(std::get<std::string>(*value));
}

std::string JsonList(const std::vector<std::string>& texts) {
  std::string list;
  for (const std::string& text : texts) list += (list.empty() ? "" : ", ") + JsonText(text);
  return "[" + list + "]";
}

/// A list with a line for each of `values`; `write` answers the JSON of one.
template <class T, class Write>
std::string JsonLines(const std::vector<T>& values, const std::string& indent, Write write) {
  std::string lines;
  for (const T& value : values) lines += (lines.empty() ? "\n" : ",\n") + indent + write(value);
  return "[" + lines + "]";
}

std::string JsonProperty(const TPropertyListing& property, const std::string& indent) {
  static const std::string kStorage[] = {"always", "rule", "never"};
  const std::string kind = LowerCase(EnumShortText(property.Kind));
  std::string json = "{\"name\": " + JsonText(property.Name) + ", \"type\": " + JsonText(property.TypeName) +
                     ", \"kind\": " + JsonText(kind) + ", \"default\": " + JsonDefault(property.Default) +
                     ", \"readOnly\": " + (property.IsReadOnly ? "true" : "false") + ", \"stored\": \"" +
                     kStorage[property.Storage] + "\"";
  if (!property.Members.empty()) json += ", \"members\": " + JsonList(property.Members);
  if (!property.ItemClass.empty()) json += ", \"itemClass\": " + JsonText(property.ItemClass);
  const std::string deeper = indent + " ";
  if (!property.Parts.empty())
    json += ", \"properties\": " +
            JsonLines(property.Parts, deeper, [&](const TPropertyListing& part) { return JsonProperty(part, deeper); });
  return json + "}";
}

std::string JsonClass(const TClassListing& type) {
  const std::string indent = "  ";
  const auto write = [&](const TPropertyListing& property) { return JsonProperty(property, indent); };
  return "{\"name\": " + JsonText(type.Name) + ", \"ancestors\": " + JsonList(type.Ancestors) +
         ",\n \"properties\": " + JsonLines(type.Properties, indent, write) +
         ",\n \"events\": " + JsonLines(type.Events, indent, write) + "}";
}

std::string JsonPage(const TPageListing& page) {
  return "{\"name\": " + (page.Name.empty() ? "null" : JsonText(page.Name)) +
         ", \"classes\": " + JsonLines(page.Classes, "", JsonClass) + "}";
}

int RunPalette(const TPaletteOptions& options, const TStreams& streams) {
  TResult result(options.output, {}, streams);
  const TPackage package;
  std::vector<TPageListing> pages = ListPalette();
  if (!options.page.empty()) TakePage(pages, options.page);
  if (!options.classes.empty()) TakeClasses(pages, options);
  if (options.format == "json")
    result.Out() << "{\"pages\": " << JsonLines(pages, "", JsonPage) << "}\n";
  else
    result.Out() << PaletteText(pages);
  result.Finish();
  return kSuccess;
}

}  // namespace

TRunCommand AddPalette(CLI::App& app) {
  const auto options = std::make_shared<TPaletteOptions>();
  CLI::App* const command =
      app.add_subcommand("palette", "Lists the classes that forms may use, with properties and events");
  command->add_option("CLASS", options->classes, "Classes to list; all if there is none");
  command->add_option("--page", options->page, "Lists the classes of this page of the palette");
  command->add_option("--format", options->format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"text", "json"}));
  AddOutput(*command, options->output);
  command->footer(kHelp);
  return [options](const TStreams& streams) { return RunPalette(*options, streams); };
}

}  // namespace vx::kestrix
