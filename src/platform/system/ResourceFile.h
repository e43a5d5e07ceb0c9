// ResourceFile.h: files of texts and other resources, in a form that people write.
//
//   kestrix resources 1                            the first line: form and version
//   language de                                    the second: a language tag
//
//   # Message dialogs.                             a line of its own for a remark
//   14605 "Warnung"                                a text: its number, the text in quotes
//   14627 "Von: %0:s\n"                            a text goes on in the next line
//         "Bis: %1:s"
//   resource 10 TOrderForm "object OrderForm\n"    any other resource: its type, its name, its bytes
//   end                                            the last line: a file that was cut doesn't have it
//
// Numbers, types and numeric names are 0 to 65535; a name begins with a letter or "_", and letter case doesn't count in
// it. In quotes, \n \r \t \" and \\ stand for what they are, and in a resource \xHH for any byte. The file is UTF-8
// with any of LF and CRLF at its line ends, perhaps with a byte order mark. docs/resource-modules.md tells all of it.
//
//   const TResourceFile file = ReadResourceFile("languages/kestrix.de.kres");
//   file.Strings.front().Text;                     // "Warnung"
//
// Errors. EResourceFileError, which names file, line and column and what is wrong there; nothing comes of a bad file.
// Limits: 64 MiB a file, 1 MiB a text or resource, 65536 resources. Cost: O(n log n) in the bytes; memory is that of
// the file and some hundred bytes an entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Exceptions.h"

namespace vx {

inline constexpr std::size_t kResourceFileLimit = std::size_t{64} << 20u;
inline constexpr std::size_t kResourceLimit = std::size_t{1} << 20u;
inline constexpr std::size_t kResourceCountLimit = std::size_t{1} << 16u;

/// A file that can't be read, or isn't of the form above.
class EResourceFileError : public TNamedException<EResourceFileError> {
 public:
  static constexpr const char* kName = "EResourceFileError";
  /// `line` and `column` count from 1; both are 0 for a file that can't be opened. The message has them in front.
  EResourceFileError(const std::string& fileName, std::int32_t line, std::int32_t column, const std::string& what);
  std::int32_t Line() const { return line_; }
  /// In code points.
  std::int32_t Column() const { return column_; }
  /// The message without its place.
  const std::string& What() const { return what_; }

 private:
  std::int32_t line_;
  std::int32_t column_;
  std::string what_;
};

struct TResourceFile {
  struct TString {
    std::int32_t Id;
    std::int32_t Line;
    std::string Text;
  };
  struct TResource {
    std::int32_t Type;
    std::string Name;  ///< a numeric one as "$" and four hexadecimal digits
    std::int32_t Line;
    std::string Data;
  };

  std::string Language;
  std::vector<TString> Strings;      ///< in order of number, each once
  std::vector<TResource> Resources;  ///< in order of the file
};

/// How a numeric name is written: "$000A" for 10.
std::string NumericResourceName(std::int32_t number);

/// `fileName` is for messages only.
TResourceFile ParseResourceFile(std::string_view bytes, const std::string& fileName);
TResourceFile ReadResourceFile(const std::string& fileName);
/// A text as it stands in such a file, with its quotes. Bytes that aren't UTF-8 become \xHH.
std::string QuotedResource(std::string_view text);

}  // namespace vx
