// DataSetKit.h: data sets over tables in a form in which a test can be read.
//
//   TTestTable table({{"Name", vxrftString, 8}, {"Load", vxrftInteger}});
//   table.Add({"drill", 3});
//   const auto set = OpenSet(*table, "Load.D");
//   EXPECT_EQ(Records(*set), "drill 3");
#pragma once

#include <string>

#include "data/TableKit.h"
#include "data/VXMemoryDatasetBucketer_CMP.h"
#include "data/VXMemoryDataset_CMP.h"

namespace vx {

template <class Set = TVXMemoryDataset>
TOwned<Set> ClosedSet(TVXRAMTable& table, const std::string& sort = {}) {
  auto set = Make<Set>(nullptr);
  set->SetRAMTable(&table);
  set->SetSortedField(sort);
  return set;
}
template <class Set = TVXMemoryDataset>
TOwned<Set> OpenSet(TVXRAMTable& table, const std::string& sort = {}) {
  auto set = ClosedSet<Set>(table, sort);
  set->Open();
  return set;
}

/// The fields of the active record, "null" for nulls.
inline std::string Record(TDataSet& set) {
  std::string text;
  for (std::int32_t i = 0; i < set.FieldCount(); ++i)
    text += (i == 0 ? "" : " ") + (set.Fields(i)->IsNull() ? "null" : set.Fields(i)->GetAsString());
  return text;
}
/// All records, with bars between them. Goes to the first and ends behind the last.
inline std::string Records(TDataSet& set) {
  std::string text;
  for (set.First(); !set.Eof(); set.Next()) text += (text.empty() ? "" : "|") + Record(set);
  return text;
}
inline void Put(TDataSet& set, const char* field, const Variant& value) { set.FieldByName(field)->SetAsVariant(value); }
inline void EditAndPost(TDataSet& set, const char* field, const Variant& value) {
  set.Edit();
  Put(set, field, value);
  set.Post();
}

}  // namespace vx
