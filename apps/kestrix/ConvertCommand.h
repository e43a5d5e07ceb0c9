// ConvertCommand.h: "kestrix convert": forms from text to binary and back, and whether they are well-formed.
//
// What the input is follows from its first bytes, what the output is to be from the end of its name: .kform is text,
// .bin is binary; standard output gets the other form. From text to text a form is laid out anew, without its remarks.
// The classes of a form needn't be known: only its own form is looked at (platform/component/StreamText.h).
//
// A mistake is told by its place, "orders.kform:7:11: …" (line and column) or "orders.bin: byte 17: …", and nothing is
// written.
#pragma once

#include "Command.h"

namespace vx::kestrix {

TRunCommand AddConvert(CLI::App& app);

}  // namespace vx::kestrix
