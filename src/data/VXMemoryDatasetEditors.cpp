#include "data/VXMemoryDatasetEditors.h"

#include "data/VXMemoryDataset_CMP.h"
#include "data/VXRAMCursorBucketer_CMP.h"

namespace vx {

namespace {

std::vector<std::string> FieldNamesOf(TDataSet* dataSet) {
  return dataSet == nullptr ? std::vector<std::string>() : dataSet->GetFieldNames();
}

}  // namespace

std::vector<std::string> TVXMemoryDatasetMasterFieldNameProperty::GetValues(TPersistent& object) const {
  const auto* const dataSet = As<TVXMemoryDataset>(&object);
  return FieldNamesOf(dataSet == nullptr ? nullptr : dataSet->GetMasterTable());
}

std::vector<std::string> TVXMemoryDatasetDetailFieldNameProperty::GetValues(TPersistent& object) const {
  return FieldNamesOf(As<TVXMemoryDataset>(&object));
}

std::vector<std::string> TVXMemoryDatasetIndexNameProperty::GetValues(TPersistent& object) const {
  std::vector<std::string> names;
  const auto* const dataSet = As<TVXMemoryDataset>(&object);
  const TVXRAMTable* const table = dataSet == nullptr ? nullptr : dataSet->GetRAMTable();
  if (table == nullptr) return names;
  for (std::int32_t i = 0; i < table->Get_Indices()->Count(); ++i)
    if (const TVXRAMIndexDef* const index = table->Get_Indices()->Get_Item(i); index->Get_Field() != nullptr)
      names.push_back(index->Get_FieldName());
  return names;
}

std::vector<std::string> TVXBucketFieldDefFieldNameProperty::GetValues(TPersistent& object) const {
  const auto* const def = As<TVXBucketFieldDef>(&object);
  TCollection* const defs = def == nullptr ? nullptr : def->Collection();
  return FieldNamesOf(defs == nullptr ? nullptr : As<TDataSet>(defs->GetOwner()));
}

}  // namespace vx
