#include "data/VXRAMIndexDef_FieldProperty_UNT.h"

#include "data/VXRAMTable_CMP.h"

namespace vx {

std::vector<std::string> TVXRAMIndexDefFieldProperty::GetValues(TPersistent& object) const {
  std::vector<std::string> names;
  const auto* const index = As<TVXRAMIndexDef>(&object);
  const TVXRAMTable* const table = index == nullptr ? nullptr : index->Get_Table();
  if (table == nullptr) return names;
  const TVXRAMFieldDefs& fields = *table->Get_FieldDefs();
  for (std::int32_t i = 0; i < fields.Count(); ++i) names.push_back(fields.Get_Item(i)->Get_Name());
  return names;
}

namespace VXRAMIndexDef_FieldProperty_UNT {

void Register() { RegisterPropertyEditor<TVXRAMIndexDefFieldProperty>(TVXRAMIndexDef::StaticClass(), "FieldName"); }

}  // namespace VXRAMIndexDef_FieldProperty_UNT

}  // namespace vx
