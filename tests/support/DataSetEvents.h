// DataSetEvents.h: the events of a data set that tests note, by name.
#pragma once

#include "platform/dataset/DataSet.h"

namespace vx::test {

struct TDataSetEvent {
  const char* Name;
  TDataSetNotifyEvent TDataSet::*Slot;
};

inline constexpr TDataSetEvent kDataSetEvents[] = {
    {"BeforeOpen", &TDataSet::BeforeOpen},     {"AfterOpen", &TDataSet::AfterOpen},
    {"BeforeClose", &TDataSet::BeforeClose},   {"AfterClose", &TDataSet::AfterClose},
    {"BeforeInsert", &TDataSet::BeforeInsert}, {"AfterInsert", &TDataSet::AfterInsert},
    {"BeforeEdit", &TDataSet::BeforeEdit},     {"AfterEdit", &TDataSet::AfterEdit},
    {"BeforePost", &TDataSet::BeforePost},     {"AfterPost", &TDataSet::AfterPost},
    {"BeforeCancel", &TDataSet::BeforeCancel}, {"AfterCancel", &TDataSet::AfterCancel},
    {"BeforeDelete", &TDataSet::BeforeDelete}, {"AfterDelete", &TDataSet::AfterDelete},
    {"BeforeScroll", &TDataSet::BeforeScroll}, {"AfterScroll", &TDataSet::AfterScroll},
    {"OnNewRecord", &TDataSet::OnNewRecord},
};

}  // namespace vx::test
