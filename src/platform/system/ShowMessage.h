// ShowMessage.h: tells a person something, by whatever the host has for it.
//
//   ShowMessage("The form can't be opened.");                      // a line on the error output
//
//   SetMessageShower([&](const std::string& text) { box.Show(text); });    // what a host with windows puts there
//
// Main thread only.
#pragma once

#include <functional>
#include <string>

namespace vx {

using TMessageShower = std::function<void(const std::string& text)>;

/// Raises what the host raises; the default nothing.
void ShowMessage(const std::string& text);
/// From now on `shower` shows messages; an empty one stands for the error output. Answers the one before.
TMessageShower SetMessageShower(TMessageShower shower);

}  // namespace vx
