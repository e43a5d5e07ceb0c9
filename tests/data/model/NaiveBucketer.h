// NaiveBucketer.h: the bucketing cursor of the naive model.
//
// It shows one virtual row per group of source rows. Groups are found by walking, keys are built anew each time.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "NaiveCursor.h"

namespace vx::naive {

/// The bucket type of each named field, in the order of definition.
using TBucketFieldDefs = std::vector<std::pair<std::string, TBucketType>>;

struct TBucketerDesc : TCursorDesc {
  TBucketFieldDefs bucketFieldDefs;
  TGroupMode basedGroupMode = TGroupMode::Day;
  TGroupMode groupMode = TGroupMode::Day;
  std::string bucketedFields;
  bool byStartOfGroup = true;
};

struct TBucket {
  std::string key;
  TRow* row = nullptr;  ///< the virtual row
  TRows records;        ///< the source rows, as they came
};

class TBucketer : public TCursor {
 public:
  using TCursor::TCursor;
  ~TBucketer() override { ReleaseVirtualRows(); }

  void OpenBuckets(const TBucketerDesc& desc);

  TRows& ActiveRecordList() override { return IsFiltered() ? filtered : virtualRows; }
  TRow* CurrentRecord() override;
  bool Get_CanUseIndex(const std::string&) override { return false; }
  void DeleteRec() override;
  void RecordInsertionNotification(TRow* row) override;
  void RecordDeletionNotification(TCursor* origin, TRow* row) override;
  void RecordEditionNotification(TRow* row) override;

  void BuildAllBuckets();
  std::string KeyOf(const TRow& row) const;
  bool IsBucketedField(const std::string& fieldName) const;
  double BucketDate(double date) const;

  std::vector<std::unique_ptr<TBucket>> buckets;
  TRows virtualRows;  ///< in order of creation, until a sort
  TBucketFieldDefs bucketFieldDefs;
  TGroupMode basedGroupMode = TGroupMode::Day;
  TGroupMode groupMode = TGroupMode::Day;
  std::string bucketedFields;
  bool byStartOfGroup = true;
  std::int32_t nextBucketId = 0;

 protected:
  void FilterChange() override;
  void EndUpdating() override;

 private:
  /// Shared by all fields while one bucket is computed.
  struct TDates {
    double first = 0;
    double last = 0;
  };

  TBucket* BucketOfVirtualRow(const TRow* row) const;
  TBucket* BucketOfSourceRow(const TRow* row) const;
  TBucket& Bucket(const std::string& key);
  void InsertRecord(TRow* row, bool update);
  void UpdateBucket(TBucket& bucket);
  void FoldField(const TBucket& bucket, std::size_t field, std::size_t position, TDates& dates, double rowDate);
  TBytes Calculate(const TBucket& bucket, std::size_t field, std::size_t n, TDates& dates, double rowDate,
                   const TBytes& buffer) const;
  double RowDate(const TRow& row) const;
  void FreeBucket(TBucket* bucket);
  void ReleaseVirtualRows();
};

}  // namespace vx::naive
