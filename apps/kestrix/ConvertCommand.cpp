#include "ConvertCommand.h"

#include <memory>
#include <ostream>

#include "CommandOptions.h"
#include "InputFile.h"
#include "UserError.h"
#include "platform/component/StreamText.h"
#include "platform/runtime/Text.h"

namespace vx::kestrix {

namespace {

constexpr const char* kHelp =
    R"(What the input is follows from its first bytes, what the output is to be from the end of its name: .kform is text,
.bin is binary; standard output gets the other form. From text to text a form is laid out anew, without its remarks.

Examples:
  kestrix convert orders.kform orders.bin
  kestrix convert orders.bin - | less
  kestrix convert --check forms/*.kform)";

struct TConvertOptions {
  std::vector<std::string> files;  ///< input and output, or inputs to check
  bool wantsCheck = false;
};

bool IsBinary(std::string_view form) { return form.starts_with(kStreamMark); }

/// "orders.kform:7:11: …", "orders.bin: byte 17: …".
EUserError ErrorAt(const std::string& path, const EReadError& error) {
  const TStreamPlace& place = error.Place();
  const bool isText = place.Line > 0;
  const std::string where =
      isText ? ":" + std::to_string(place.Line) + ":" + std::to_string(place.Column) : ": " + place.Text();
  return EUserError(OneLine(InputName(path)) + where + ": " + OneLine(error.Reason()));
}

std::string WithForm(std::string form, bool toBinary) {
  if (IsBinary(form) != toBinary) return toBinary ? TextToBinary(form) : BinaryToText(form);
  return toBinary ? TextToBinary(BinaryToText(form)) : BinaryToText(TextToBinary(form));
}

/// Whether `output` is to be binary; the input is not, or is.
bool IsBinaryOutput(const std::string& output, bool inputIsBinary) {
  const std::string name = LowerCase(output);
  if (output == kStandardInput) return !inputIsBinary;
  if (name.ends_with(".kform")) return false;
  if (name.ends_with(".bin")) return true;
  throw EUserError({output, 0, {}}, "the name should end in .kform (text) or .bin (binary)");
}

void Convert(const std::string& input, const std::string& output, const TStreams& streams) {
  IsBinaryOutput(output, false);  // before a long input is waited for
  TResult result(output, {input}, streams);
  const std::string form = ReadInput(input, streams.in);
  try {
    result.Out() << WithForm(form, IsBinaryOutput(output, IsBinary(form)));
  } catch (const EReadError& error) {
    throw ErrorAt(input, error);
  }
  result.Finish();
}

// -- Check ------------------------------------------------------------------------------------------------------------

std::size_t CountObjects(TStreamCursor& cursor) {
  const TStreamCursor::TDeeper deeper(cursor);
  cursor.Identifier(false);
  cursor.Identifier(true);
  cursor.SkipProperties();
  std::size_t count = 1;
  while (!cursor.TakeEnd()) count += CountObjects(cursor);
  return count;
}

std::size_t CheckedObjects(const std::string& path, const TStreams& streams) {
  const std::string form = ReadInput(path, streams.in);
  try {
    const std::string binary = WithForm(form, true);
    TStreamCursor cursor(binary);
    cursor.Open();
    return CountObjects(cursor);
  } catch (const EReadError& error) {
    throw ErrorAt(path, error);
  }
}

bool Check(const std::string& path, std::ostream& out, const TStreams& streams) {
  const std::size_t count = CheckedObjects(path, streams);
  out << OneLine(InputName(path)) << ": a well-formed form of " << count << (count == 1 ? " object\n" : " objects\n");
  return true;
}

int RunConvert(const TConvertOptions& options, const TStreams& streams) {
  const std::vector<std::string>& files = options.files;
  if (options.wantsCheck) {
    if (files.empty()) throw EUserError("--check wants a form; see kestrix convert --help");
    return CheckEach(files, streams,
                     [&](const std::string& file, std::ostream& out) { return Check(file, out, streams); });
  }
  if (files.size() != 2)
    throw EUserError("an input and an output are wanted, not " + std::to_string(files.size()) +
                     (files.size() == 1 ? " file" : " files") + "; see kestrix convert --help");
  Convert(files[0], files[1], streams);
  return kSuccess;
}

}  // namespace

TRunCommand AddConvert(CLI::App& app) {
  const auto options = std::make_shared<TConvertOptions>();
  CLI::App* const command = app.add_subcommand("convert", "Turns forms from text to binary and back, or checks them");
  command->add_option("FILE", options->files, "The form to read and the one to write; - for standard input or output");
  command->add_flag("--check", options->wantsCheck, "Reads all the files and tells if they are well-formed");
  command->footer(kHelp);
  return [options](const TStreams& streams) { return RunConvert(*options, streams); };
}

}  // namespace vx::kestrix
