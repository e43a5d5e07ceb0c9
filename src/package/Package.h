// Package.h: the framework's start and end in an application.
//
//   int main() {
//     const vx::TPackage package;                   // every unit's Register, from the ground up
//     return RunMyApplication();
//   }                                               // and all of it undone, in reverse order
//
// Each unit has a free Register in its own namespace, which makes the unit's classes known by name and puts its
// components on their palette page. Only what is registered can be read from a form or listed; everything else works
// without the package.
//
// A program's own units are started in the same way, after the package and so undone before it:
//
//   const vx::TStartedUnits mine({&Gauge_CMP::Register, &Dial_CMP::Register});
//
// The end takes back what the start has done and nothing else: a class that was there before is where it was, known
// and on its page, if perhaps behind its neighbours; classes that others have put on the same pages stay. A class of
// the units goes also if it was put on another page meanwhile: move it before the start, or not at all.
//
// Errors. A name that another class has raises EComponentError, and nothing has been started. The end never raises.
// Main thread only.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <vector>

#include "platform/runtime/ClassInfo.h"

namespace vx {

/// A unit's start: its Register.
using TUnitStart = void (*)();

/// Units that are registered as long as this lives.
class TStartedUnits {
 public:
  /// Calls them in the order given.
  explicit TStartedUnits(std::span<const TUnitStart> units);
  explicit TStartedUnits(std::initializer_list<TUnitStart> units)
      : TStartedUnits(std::span(units.begin(), units.size())) {}
  TStartedUnits(const TStartedUnits&) = delete;
  TStartedUnits& operator=(const TStartedUnits&) = delete;
  ~TStartedUnits() { Stop(); }

 private:
  /// A class that the units have registered or moved, and where it was before.
  struct TChange {
    const TClass* Class;
    bool WasKnown;
    std::string Page;  // empty: on none
  };

  void Start(TUnitStart unit);
  void Stop() noexcept;

  std::vector<TChange> changes_;
};

/// Starts the package, unless it is started already. Each call wants one StopPackage().
void StartPackage();
/// Undoes the first StartPackage() when as many calls have come as of that one; without effect beyond.
void StopPackage() noexcept;

/// The package, started as long as one of these lives.
class TPackage {
 public:
  TPackage() { StartPackage(); }
  TPackage(const TPackage&) = delete;
  TPackage& operator=(const TPackage&) = delete;
  ~TPackage() { StopPackage(); }
};

}  // namespace vx
