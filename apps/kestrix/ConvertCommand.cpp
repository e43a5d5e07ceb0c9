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

/// Bytes of a form, ten times what a large one has.
constexpr std::size_t kMostForm = std::size_t{1} << 30;

constexpr const char* kHelp =
    R"(Names tell the form of the output: .kform is text, .bin is binary; standard output gets the other one than
the input has. The input is binary if its first bytes or its name say so. From text to text a form is laid
out anew, without its remarks. Classes and properties aren't looked up: the form may be another program's.

Examples:
  kestrix convert orders.kform orders.bin
  kestrix convert orders.bin - | less
  kestrix convert --check forms/*.kform)";

struct TConvertOptions {
  std::vector<std::string> files;  ///< input and output, or inputs to check
  bool wantsCheck = false;
};

bool HasBinaryName(const std::string& path) { return LowerCase(path).ends_with(".bin"); }

/// A damaged mark doesn't make a text of a binary form: its name tells, too.
bool IsBinary(const std::string& path, std::string_view form) {
  return form.starts_with(kStreamMark) || HasBinaryName(path);
}

/// "orders.kform:7:11: …", "orders.bin: byte 17: …".
EUserError ErrorAt(const std::string& path, const EReadError& error) {
  const TStreamPlace& place = error.Place();
  const bool isText = place.Line > 0;
  const std::string where =
      isText ? ":" + std::to_string(place.Line) + ":" + std::to_string(place.Column) : ": " + place.Text();
  return EUserError(OneLine(InputName(path)) + where + ": " + OneLine(error.Reason()));
}

std::string WithForm(const std::string& form, bool isBinary, bool toBinary) {
  if (isBinary != toBinary) return toBinary ? TextToBinary(form) : BinaryToText(form);
  return toBinary ? TextToBinary(BinaryToText(form)) : BinaryToText(TextToBinary(form));
}

/// Whether `output` is to be binary; the input is not, or is.
bool IsBinaryOutput(const std::string& output, bool inputIsBinary) {
  if (output == kStandardInput) return !inputIsBinary;
  if (LowerCase(output).ends_with(".kform")) return false;
  if (HasBinaryName(output)) return true;
  throw EUserError({output, 0, {}}, "the name should end in .kform (text) or .bin (binary)");
}

void Convert(const std::string& input, const std::string& output, const TStreams& streams) {
  IsBinaryOutput(output, false);  // before a long input is waited for
  TResult result(output, {input}, streams);
  const std::string form = ReadInput(input, streams.in, kMostForm);
  const bool isBinary = IsBinary(input, form);
  try {
    result.Out() << WithForm(form, isBinary, IsBinaryOutput(output, isBinary));
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
  const std::string form = ReadInput(path, streams.in, kMostForm);
  try {
    const std::string binary = WithForm(form, IsBinary(path, form), /*toBinary=*/true);
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
