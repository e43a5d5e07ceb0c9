// MessagesCommand.h: "kestrix messages": the numbered texts of the system, alone or beside a translation, and whether
// translations are whole.
//
// A check tells each fault by its place, as compilers do, and ends with code 2 if one is an error:
//
//   kestrix.fr.kres:12: 14666: %0:s is missing
//   kestrix.fr.kres:40: warning: 14800: the system has no such text
//   kestrix.fr.kres: 14710: the text is missing ("False")
//   kestrix.fr.kres: language fr, 65 texts: 2 errors, 1 warning
#pragma once

#include "Command.h"

namespace vx::kestrix {

TRunCommand AddMessages(CLI::App& app);

}  // namespace vx::kestrix
