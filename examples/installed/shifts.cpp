// A program of a stranger, who has an installed Kestrix and not its source: a component of its own is read from a form,
// and its jobs are listed in German, the longest first. docs/package.md tells the ways to build it.
#include <cstdint>
#include <iostream>
#include <string>
#include <utility>

#include "data/VXRAMTable_CMP.h"
#include "datetime/VXDateFunc_UNT.h"
#include "package/Package.h"
#include "platform/component/ComponentStream.h"
#include "platform/component/Published.h"
#include "platform/runtime/Locale.h"
#include "platform/system/ResourceModules.h"

using namespace vx;

class TShift : public TComponent {
 public:
  using TComponent::TComponent;
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  TVXRAMTable* GetJobs() const { return jobs_.Get(); }
  void SetJobs(TVXRAMTable* jobs) { jobs_ = jobs; }

  std::string Caption;
  double Hours = 8;

 private:
  TComponentRef<TVXRAMTable> jobs_;  // null as soon as the table is gone
};

const TClass& TShift::StaticClass() {
  static const TClass info = TClassBuilder<TShift>("TShift", TComponent::StaticClass())
                                 .Property("Caption", &TShift::Caption)
                                 .Property("Hours", &TShift::Hours)
                                 .Property("Jobs", &TShift::GetJobs, &TShift::SetJobs)
                                 .Build();
  return info;
}

void Register() { RegisterComponents("Shifts", {&TShift::StaticClass()}); }

int main() try {
  UseLanguage("de");  // languages/kestrix.de.kres, beside the program
  Locale() = ClassicLocale();
  Locale().DecimalSeparator = ',';
  const TPackage package;  // makes Kestrix's classes known by name; the next line this program's
  const TStartedUnits mine({&Register});

  const TOwned<TComponent> form = TextToComponent(R"(
    object Early: TShift
      Caption = 'Frühschicht'  Hours = 7.5  Jobs = Table
      object Table: TVXRAMTable
        FieldDefs = <item Name = 'Task' ByteSize = 20 DataType = vxrftString end
                     item Name = 'Seconds' ByteSize = 4 DataType = vxrftInteger end>
      end
    end)");
  const auto& shift = *Cast<TShift>(form.get());
  auto row = shift.GetJobs()->NewRecord();
  for (auto [task, seconds] : {std::pair{"Drill", 5400}, {"Assemble", 27000}, {"Paint", 2700}}) {
    row->Field(0).AssignText(task);
    row->Field(1).AssignValue<std::int32_t>(seconds);
    std::int32_t id = 0;
    shift.GetJobs()->AddRecordAndValues(*row, -1, -1, id, /*append=*/true);
  }
  std::cout << shift.Caption << ", " << DurationToStr(shift.Hours * 3600, 1, vxduHour) << '\n';
  TVXRAMCursorDesc wish(nullptr, -1, vxrcoAscending, /*sortedField=*/"Seconds.D", nullptr, Variant());
  TVXRAMCursor* job = nullptr;
  shift.GetJobs()->OpenCursor(nullptr, &wish, job);
  for (job->GoToFirstRec(); job->GoToNextRec() == kDone;)
    std::cout << job->Get_Value(0).AsString() << ": " << DurationToStr(job->Get_Value(1).AsInteger(), 1, vxduAuto)
              << '\n';
  shift.GetJobs()->CloseCursor(job);
  StrToDuration("3 Jahre", vxduHour);  // what a person may type
} catch (const Exception& error) {
  std::cout << error.Message() << '\n';
}
