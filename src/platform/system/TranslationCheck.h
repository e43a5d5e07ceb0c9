// TranslationCheck.h: whether a file of texts translates the system whole, and without a slip.
//
//   for (const TTranslationFault& fault : CheckTranslationFile("languages/kestrix.fr.kres"))
//     std::cout << fault.Line << ": " << fault.Id << ": " << fault.Message << '\n';
//   // 12: 14666: %0:s is missing
//   // 40: 14700: the system has no such text
//   // 0: 14710: the text is missing ("False")
//
// Placeholders may change their order, as %1:s and %0:s can; those without an index stand for arguments 0, 1, … and may
// not. "%%" is none. A "%" that begins no placeholder counts where the original has placeholders, since filling the
// text would fail or print it. Two units of durations must not be alike, nor have a digit or a blank at an end: they
// are read, too.
//
// Errors. None is raised: a file that can't be read or has a wrong form is a fault itself. Cost. O(n log n). Any
// thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system/ResourceFile.h"

namespace vx {

enum TFaultSeverity : std::uint8_t {
  fsError,    ///< a person would see a text that is missing, wrong or English
  fsWarning,  ///< without effect
};

struct TTranslationFault {
  std::int32_t Line;  ///< 0 for what isn't in the file
  std::int32_t Id;    ///< 0 for a fault of the file
  TFaultSeverity Severity;
  std::string Message;  ///< for a person, without line and id
};

/// Faults in order of line, then the texts that are missing, in order of number; none for a good translation.
std::vector<TTranslationFault> CheckTranslation(const TResourceFile& file);
/// The same for a file that is still to be read.
std::vector<TTranslationFault> CheckTranslationFile(const std::string& fileName);

}  // namespace vx
