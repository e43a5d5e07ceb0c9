// VXMemoryDatasetEditors.h: the names that a person may choose from for properties of data sets over tables.
#pragma once

#include <string>
#include <vector>

#include "platform/component/PropertyEditor.h"

namespace vx {

/// TVXMemoryDataset.MasterField: the field names of the master.
class TVXMemoryDatasetMasterFieldNameProperty : public TPropertyEditor {
 public:
  std::vector<std::string> GetValues(TPersistent& object) const override;
};

/// TVXMemoryDataset.DetailField and SortedField: the data set's own field names.
class TVXMemoryDatasetDetailFieldNameProperty : public TPropertyEditor {
 public:
  std::vector<std::string> GetValues(TPersistent& object) const override;
};

/// TVXMemoryDataset.IndexName: the field names of the table's indexes.
class TVXMemoryDatasetIndexNameProperty : public TPropertyEditor {
 public:
  std::vector<std::string> GetValues(TPersistent& object) const override;
};

/// TVXMemoryDatasetBucketer.BucketedField: the data set's own field names.
class TVXMemoryDatasetBucketerBucketedFieldNameProperty : public TVXMemoryDatasetDetailFieldNameProperty {};

/// TVXBucketFieldDef.FieldName: the field names of the collection's owner, if that is a data set.
class TVXBucketFieldDefFieldNameProperty : public TPropertyEditor {
 public:
  std::vector<std::string> GetValues(TPersistent& object) const override;
};

}  // namespace vx
