#include "package/Package.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>

#include "data/VXLookupDataSet_CMP.h"
#include "data/VXMemoryDatasetBucketer_CMP.h"
#include "data/VXMemoryDataset_CMP.h"
#include "data/VXRAMIndexDef_FieldProperty_UNT.h"
#include "data/VXRAMTable_CMP.h"
#include "data/VXRscStringDataSet_CMP.h"
#include "platform/component/Component.h"
#include "platform/dataset/DataLink.h"
#include "platform/dataset/Field.h"
#include "platform/system/Timer.h"

namespace vx {

namespace {

/// Every unit that has a Register, floor by floor from the ground up.
constexpr TUnitStart kUnits[] = {
    // platform
    &RegisterFields,
    &RegisterDataSource,
    &RegisterTimer,
    // data
    &VXRAMTable_CMP::Register,
    &VXRAMIndexDef_FieldProperty_UNT::Register,
    &VXMemoryDataset_CMP::Register,
    &VXMemoryDatasetBucketer_CMP::Register,
    &VXRscStringDataSet_CMP::Register,
    &VXLookupDataSet_CMP::Register,
};

/// The classes that are known, each with its page.
std::map<const TClass*, std::string> KnownClasses() {
  std::map<const TClass*, std::string> known;
  for (const TClass* const type : RegisteredClasses()) known[type];
  for (const TPalettePage& page : Palette())
    for (const TClass* const type : page.Classes) known[type] = page.Name;
  return known;
}

/// The package while it runs, and how often it was started.
struct TRunningPackage {
  std::unique_ptr<TStartedUnits> Units;
  std::int32_t Count = 0;
};

TRunningPackage& Running() {
  RegisteredClasses();
  Palette();
  static TRunningPackage running;  // after the registry, so that it ends before
  return running;
}

}  // namespace

TStartedUnits::TStartedUnits(std::span<const TUnitStart> units) {
  try {
    for (const TUnitStart unit : units) Start(unit);
  } catch (...) {
    Stop();
    throw;
  }
}

void TStartedUnits::Start(TUnitStart unit) {
  const auto before = KnownClasses();
  const auto note = [&] {
    auto now = KnownClasses();
    for (const TClass* const type : RegisteredClasses()) {
      const auto was = before.find(type);
      if (was == before.end())
        changes_.push_back({type, false, {}});
      else if (was->second != now[type])
        changes_.push_back({type, true, was->second});
    }
  };
  try {
    unit();
  } catch (...) {
    note();  // a unit may have come half its way
    throw;
  }
  note();
}

void TStartedUnits::Stop() noexcept {
  for (auto change = changes_.rbegin(); change != changes_.rend(); ++change) try {
      UnregisterComponents({change->Class});
      if (!change->WasKnown) continue;
      RegisterClass(*change->Class);
      if (!change->Page.empty()) RegisterComponents(change->Page, {change->Class});
    } catch (const std::exception&) {  // out of memory, or the name is another's by now: there is nothing to give back
    }
  changes_.clear();
}

void StartPackage() {
  TRunningPackage& running = Running();
  if (running.Count == 0) running.Units = std::make_unique<TStartedUnits>(kUnits);
  ++running.Count;
}

void StopPackage() noexcept {
  TRunningPackage& running = Running();
  if (running.Count == 0) return;
  if (--running.Count == 0) running.Units.reset();
}

}  // namespace vx
