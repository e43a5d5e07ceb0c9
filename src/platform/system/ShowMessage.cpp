#include "platform/system/ShowMessage.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/system/InForce.h"

namespace vx {
namespace {

/// A carriage return alone would write a line over the one before.
void Print(std::string text) {
  std::replace(text.begin(), text.end(), '\r', '\n');
  std::fprintf(stderr, "%s\n", text.c_str());
}

}  // namespace

void ShowMessage(const std::string& text) {
  if (const TMessageShower shower = TInForce<TMessageShower>::Current())
    shower(text);
  else
    Print(text);
}

TMessageShower SetMessageShower(TMessageShower shower) {
  return std::exchange(TInForce<TMessageShower>::Current(), std::move(shower));
}

}  // namespace vx
