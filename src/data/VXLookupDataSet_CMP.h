// VXLookupDataSet_CMP.h: a collection of keys and texts as a data set.
//
//   auto units = Make<TVXLookupDataSet>(nullptr);
//   units->SetSortOrder(vxlsoText);
//   units->AddLookupValue(2, "Week");
//   units->AddLookupValue(1, "Day");
//   units->Open();                                   // Day, Week
//
// The sort order decides where AddLookupValue puts a value, and that alone: equal ones keep the order of their coming,
// and nothing that is there already ever moves. A set that a stream has read is open.
//
// The set doesn't watch its values: who changes them under an open set calls Refresh().
#pragma once

#include "data/VXCustomStringLookupDataSet_CMP.h"
#include "platform/component/Collection.h"

namespace vx {

class TVXCustomLookupDataSet;

enum TVXLookupSortOrder : std::uint8_t { vxlsoKey, vxlsoText, vxlsoNone };

template <>
struct TEnumInfo<TVXLookupSortOrder> {
  static constexpr std::string_view kTypeName = "TVXLookupSortOrder";
  static constexpr std::string_view kPrefix = "vxlso";
  static constexpr std::string_view kNames[] = {"vxlsoKey", "vxlsoText", "vxlsoNone"};
};

class TVXLookupValue : public TCollectionItem {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  using TCollectionItem::TCollectionItem;

  /// "[2, 'Week']".
  std::string GetDisplayName() const override;
  void Assign(const TPersistent* source) override;

  std::int32_t GetKey() const { return key_; }
  void SetKey(std::int32_t value);
  const std::string& GetText() const { return text_; }
  void SetText(const std::string& value);

 private:
  void Unsort() const;

  std::int32_t key_ = 0;
  std::string text_;
};

class TVXLookupValues : public TCollectionOf<TVXLookupValue> {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  explicit TVXLookupValues(TVXCustomLookupDataSet* owner);
  TPersistent* GetOwner() const override;

  TVXLookupValue* GetItem(std::int32_t index) const { return Items(index); }
  void SetItem(std::int32_t index, const TVXLookupValue* value) { Items(index)->Assign(value); }
  /// The first of that key or text (by CompareText); null if there is none. O(n).
  TVXLookupValue* FindKey(std::int32_t key) const;
  TVXLookupValue* FindText(const std::string& text) const;
  /// Before the first value that is greater by the sort order, else at the end. O(values behind) while nobody else
  /// changes the values, else O(n).
  TVXLookupValue* AddLookupValue(std::int32_t key, const std::string& text);

  TVXLookupSortOrder GetSortOrder() const { return sortOrder_; }
  void SetSortOrder(TVXLookupSortOrder value);

 protected:
  void ItemsMoved() override { isSorted_ = false; }

 private:
  friend class TVXLookupValue;
  template <class F>
  TVXLookupValue* FindFirst(const F& matches) const;
  bool StandsBehind(const TVXLookupValue& value, std::int32_t key, const std::string& text) const;
  bool IsSorted() const;
  std::int32_t FirstBehind(std::int32_t key, const std::string& text, bool sorted) const;

  TVXCustomLookupDataSet* owner_;
  TVXLookupSortOrder sortOrder_ = vxlsoNone;
  bool isSorted_ = false;  // known to be, by sortOrder_
};

class TVXCustomLookupDataSet : public TVXCustomStringLookupDataSet {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  using TVXCustomStringLookupDataSet::TVXCustomStringLookupDataSet;
  void TearDown() override;

  /// The values, made when first asked for; null if they aren't available. Owned by the set.
  TVXLookupValues* GetLookupValues();
  void SetLookupValues(const TVXLookupValues* value);
  /// Frees the values; the next use makes them anew.
  void ClearLookupValues() { values_.reset(); }
  /// ENilAccess if the values aren't available.
  TVXLookupValue* AddLookupValue(std::int32_t key, const std::string& text);
  TVXLookupSortOrder GetSortOrder() const { return sortOrder_; }
  void SetSortOrder(TVXLookupSortOrder value);

  // -- What descendants may replace, in slot order --------------------------------------------------------------------
  /// Fills values that were just made.
  virtual void RefreshLookupValues() {}
  virtual bool GetLookupValuesAreAvailable() { return true; }

  std::int32_t GetKey(std::int32_t index) override;
  std::string GetString(std::int32_t index) override;
  std::int32_t GetIndexFromKey(std::int32_t key) override;
  std::int32_t GetIndexFromText(const std::string& text) override;

 protected:
  std::int32_t GetRecordCount() override;

 private:
  TOwned<TVXLookupValues> values_;
  TVXLookupSortOrder sortOrder_ = vxlsoNone;
};

class TVXLookupDataSet : public TVXCustomLookupDataSet {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }
  using TVXCustomLookupDataSet::TVXCustomLookupDataSet;

 protected:
  void Loaded() override;
};

namespace VXLookupDataSet_CMP {
/// Puts TVXLookupDataSet on the palette page "VX Data Access".
void Register();
}  // namespace VXLookupDataSet_CMP

}  // namespace vx
