#include "ColoursCommand.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <ostream>

#include "CommandOptions.h"
#include "Suggest.h"
#include "UserError.h"
#include "colour/LSColor_UNT.h"
#include "colour/VXColorScheme_UNT.h"
#include "platform/canvas/SystemColors.h"
#include "platform/runtime/Format.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(A colour is a name (clWindow, or red for clRed), #rrggbb or rrggbb as the web has it, or $00bbggrr, the number of
a TColor. A shell wants '#…' and '$…' in quotes.

A byte stands for its 256th part. The hue of HSV is measured from red, that of HLS from blue. Contrast is the ratio of
WCAG 2 (W3C, Web Content Accessibility Guidelines), from 1 to 21: text wants 4.5 on its background, large text 3. The
application colours, backgrounds of what is read-only and of what is denied, follow from a scheme's window colour.

Examples:
  kestrix colours red
  kestrix colours clWindow clBtnFace --scheme dark
  kestrix colours 1f5a8c '#d0d5db' '$00F9FFFF' --format csv -o colours.csv)";

struct TColoursOptions {
  std::vector<std::string> colours;
  std::string scheme = "light";
  std::string format = "text";
  std::string output;
};

// -- What is asked for ------------------------------------------------------------------------------------------------

/// Each name with and without its "cl".
std::vector<std::string> ColourNames() {
  std::vector<std::string> names;
  GetColorValues([&](const std::string& name) { names.insert(names.end(), {name, name.substr(2)}); });
  return names;
}

bool IsHex(std::string_view text) { return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos; }

/// "#rrggbb" or "rrggbb".
bool ReadWebColour(std::string_view text, TColor& color) {
  const std::string_view digits = text.substr(text.starts_with('#') ? 1 : 0);
  if (digits.size() != 6 || !IsHex(digits)) return false;
  const TColor reversed = StringToColor("$" + std::string(digits));
  color = RGBColor(BlueOf(reversed), GreenOf(reversed), RedOf(reversed));
  return true;
}

/// "$bbggrr", or eight digits.
bool ReadNumber(std::string_view text, TColor& color) {
  const std::string_view digits = text.substr(text.starts_with('$') ? 1 : text.size());
  if (digits.empty() || digits.size() > 8 || !IsHex(digits)) return false;
  color = StringToColor(text);
  return true;
}

TColor ColourOf(const std::string& text) {
  TColor color{};
  if (!IdentToColor(text, color) && !IdentToColor("cl" + text, color) && !ReadWebColour(text, color) &&
      !ReadNumber(text, color)) {
    const std::string meant = DidYouMean(text, ColourNames());
    throw EUserError("no colour " + Quoted(text) +
                     (meant.empty() ? "; a colour is a name (clWindow, red), #rrggbb or $00bbggrr" : meant));
  }
  if (color == clNone) throw EUserError(Quoted(text) + " stands for no colour at all");
  if (IsSystemColor(color) && color > clInfoBk) throw EUserError(Quoted(text) + " is the number of no system colour");
  return color;
}

/// As long as this is there, the scheme is in force.
class TSchemeScope {
 public:
  explicit TSchemeScope(const TSystemColors& scheme) : was_(SystemColors()) { Put(scheme); }
  ~TSchemeScope() { Put(was_); }
  TSchemeScope(const TSchemeScope&) = delete;
  TSchemeScope& operator=(const TSchemeScope&) = delete;

 private:
  static void Put(const TSystemColors& colors) {
    SetSystemColors(colors);
    ResetApplicationColors();
  }

  TSystemColors was_;
};

// -- Contrast ---------------------------------------------------------------------------------------------------------

/// The light of a channel of sRGB; WCAG 2, relative luminance.
double LightOf(std::uint8_t byte) {
  const double channel = byte / 255.0;
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double Luminance(TColor color) {
  return 0.2126 * LightOf(RedOf(color)) + 0.7152 * LightOf(GreenOf(color)) + 0.0722 * LightOf(BlueOf(color));
}

/// WCAG 2, contrast ratio.
double Contrast(TColor a, TColor b) {
  const auto [darker, lighter] = std::minmax({Luminance(a), Luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

// -- What is told -----------------------------------------------------------------------------------------------------

struct TFact {
  const char* group;
  const char* name;  ///< within the group; may be empty
  TCellValue value;
  int decimals = 4;  ///< of a fraction, for people
};
using TFacts = std::vector<TFact>;

std::string Web(TColor color) { return "#" + ColorToText(ColorToRGB(color)); }

TFacts Identity(TColor color) {
  std::string name;
  const bool hasName = ColorToIdent(color, name);
  const TColor plain = ColorToRGB(color);
  return {{"Colour", "number", Format("$%.8x", {static_cast<std::uint32_t>(color)})},
          {"Colour", "name", hasName ? TCellValue(name) : TCellValue()},
          {"Colour", "web", Web(color)},
          {"Bytes", "red", RedOf(plain)},
          {"Bytes", "green", GreenOf(plain)},
          {"Bytes", "blue", BlueOf(plain)}};
}

TFacts Models(const TColorMixer& mixer) {
  return {{"RGB", "red", mixer.Get_Red()},
          {"RGB", "green", mixer.Get_Green()},
          {"RGB", "blue", mixer.Get_Blue()},
          {"CMY", "cyan", mixer.Get_Cyan()},
          {"CMY", "magenta", mixer.Get_Magenta()},
          {"CMY", "yellow", mixer.Get_Yellow()},
          {"HSV", "hue", mixer.Get_HSVHue(), 2},
          {"HSV", "saturation", mixer.Get_HSVSaturation()},
          {"HSV", "value", mixer.Get_HSVValue()},
          {"HLS", "hue", mixer.Get_HLSHue(), 2},
          {"HLS", "lightness", mixer.Get_HLSLightness()},
          {"HLS", "saturation", mixer.Get_HLSSaturation()},
          {"Grey tone", "", mixer.Get_GreyTone()}};
}

TFacts Shades(TColor color) {
  const TColor plain = ColorToRGB(color);
  return {{"Lighter by", "10 %", Web(GetLighterColor(color, 10))},
          {"Lighter by", "20 %", Web(GetLighterColor(color, 20))},
          {"Lighter by", "30 %", Web(GetLighterColor(color, 30))},
          {"Lighter by", "40 %", Web(GetLighterColor(color, 40))},
          {"Lighter by", "50 %", Web(GetLighterColor(color, 50))},
          {"WCAG 2 contrast", "on white", Contrast(plain, clWhite), 2},
          {"WCAG 2 contrast", "on black", Contrast(plain, clBlack), 2}};
}

TFacts& Append(TFacts& facts, TFacts more) {
  facts.insert(facts.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  return facts;
}

TFacts FactsOf(TColor color) {
  TFacts facts = Identity(color);
  return Append(Append(facts, Models(*Make<TColorMixer>(color))), Shades(color));
}

TFacts ApplicationFactsOf(const char* scheme, const TSystemColors& colors) {
  const TSchemeScope scope(colors);
  return {{scheme, "read-only", Web(GetApplicationReadOnlyColor())},
          {scheme, "denied", Web(GetApplicationDeniedColor())}};
}

/// They depend on the scheme alone.
TFacts ApplicationFacts() {
  TFacts facts = ApplicationFactsOf("Light scheme", LightSystemColors());
  return Append(facts, ApplicationFactsOf("Dark scheme", DarkSystemColors()));
}

// -- Writing ----------------------------------------------------------------------------------------------------------

std::string TextOf(const TFact& fact) {
  const auto* const number = std::get_if<double>(&fact.value);
  const std::string value = number == nullptr ? CellText(fact.value) : NumberText(*number, fact.decimals);
  return (*fact.name == '\0' ? "" : fact.name + std::string(" ")) + value;
}

/// A line for each group.
void WriteFacts(std::ostream& out, const std::string& title, const TFacts& facts) {
  out << title;
  std::string_view group;
  for (const TFact& fact : facts) {
    if (IsNull(fact.value)) continue;
    out << (fact.group == group ? ", " : Format("\n  %-17s", {fact.group})) << TextOf(fact);
    group = fact.group;
  }
  out << '\n';
}

void WriteText(std::ostream& out, const TColoursOptions& options, const std::vector<TColor>& colours) {
  for (std::size_t i = 0; i < colours.size(); ++i) {
    WriteFacts(out, options.colours[i], FactsOf(colours[i]));
    out << '\n';
  }
  WriteFacts(out, "Application colours", ApplicationFacts());
}

/// A row for each colour, and on each the application's colours too.
void WriteRows(std::ostream& out, const TColoursOptions& options, const std::vector<TColor>& colours) {
  const auto writer = MakeTableWriter(FormatOfName(options.format).value_or(TTableFormat::Csv), out);
  for (std::size_t i = 0; i < colours.size(); ++i) {
    TFacts facts = FactsOf(colours[i]);
    Append(facts, ApplicationFacts());
    std::vector<TWrittenColumn> columns = {{"Asked"}};
    std::vector<TCellValue> values = {options.colours[i]};
    for (TFact& fact : facts) {
      columns.push_back({fact.group + (*fact.name == '\0' ? std::string() : std::string(" ") + fact.name)});
      values.push_back(std::move(fact.value));
    }
    if (i == 0) writer->Begin(columns);
    writer->Row(values);
  }
  writer->End();
}

int RunColours(const TColoursOptions& options, const TStreams& streams) {
  if (options.colours.empty())
    throw EUserError("a colour is missing: a name (clWindow, red), #rrggbb or $00bbggrr; see kestrix colours --help");
  std::vector<TColor> colours;
  for (const std::string& text : options.colours) colours.push_back(ColourOf(text));
  TResult result(options.output, {}, streams);
  const TSchemeScope scope(options.scheme == "dark" ? DarkSystemColors() : LightSystemColors());
  (options.format == "text" ? WriteText : WriteRows)(result.Out(), options, colours);
  result.Finish();
  return kSuccess;
}

}  // namespace

TRunCommand AddColours(CLI::App& app) {
  const auto options = std::make_shared<TColoursOptions>();
  CLI::App* const command =
      app.add_subcommand("colours", "Shows colours in all models, lighter, and against white and black");
  command->add_option("COLOR", options->colours, "Colours: clWindow, red, #rrggbb or $00bbggrr");
  command->add_option("--scheme", options->scheme, "The system colours that are in force")
      ->capture_default_str()
      ->check(CLI::IsMember({"light", "dark"}));
  command->add_option("--format", options->format, "How to write")
      ->capture_default_str()
      ->check(CLI::IsMember({"text", "csv", "json"}));
  AddOutput(*command, options->output);
  command->footer(kHelp);
  return [options](const TStreams& streams) { return RunColours(*options, streams); };
}

}  // namespace vx::kestrix
