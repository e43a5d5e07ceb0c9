// Strings.h: lists of texts.
//
// TStrings is what a caller needs of a list of texts, each with an object beside it that the list doesn't own; where
// the texts are kept is its descendants' affair. TStringList keeps them in memory, sorted on request.
//
//   TOwned<TStringList> list = Make<TStringList>();
//   list->SetText("Name=Hall\r\nArea=12\n");        // any of CR, LF and CRLF ends a line
//   list->GetValue("area");                         // "12": names by AnsiCompareText
//   list->SetSorted(true);
//   list->Add("Beam");                              // 1, its place: Area=12, Beam, Name=Hall
//   list->GetCommaText();                           // Area=12,Beam,Name=Hall
//
// Changes. One change calls Changing() before and Changed() after it; inside BeginUpdate/EndUpdate they are called
// once, at the outer ends. Both are empty here.
//
// Errors. A position outside raises EListError "List index out of bounds (%d)"; what a sorted list can't do
// EStringListError. The list is as it was. Cost. As a vector; Find is O(log n), IndexOf O(log n) in a sorted list and
// O(n) else.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/runtime/Object.h"

namespace vx {

class TStrings : public TPersistent {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  // -- What a descendant gives ----------------------------------------------------------------------------------------
  virtual std::int32_t GetCount() const = 0;
  virtual std::string Get(std::int32_t index) const = 0;
  /// The base takes the text out and puts the new one in, with the object.
  virtual void Put(std::int32_t index, const std::string& text);
  virtual TObject* GetObject(std::int32_t index) const;
  virtual void PutObject(std::int32_t index, TObject* object);
  virtual void Clear() = 0;
  virtual void Delete(std::int32_t index) = 0;
  /// `index` may equal the count.
  virtual void Insert(std::int32_t index, const std::string& text) = 0;
  virtual void InsertObject(std::int32_t index, const std::string& text, TObject* object);

  // -- Adding and moving ----------------------------------------------------------------------------------------------
  /// Answers the position.
  virtual std::int32_t Add(const std::string& text);
  virtual std::int32_t AddObject(const std::string& text, TObject* object);
  /// Texts with their objects. `strings` may be this list.
  virtual void AddStrings(const TStrings& strings);
  virtual void Exchange(std::int32_t first, std::int32_t second);
  virtual void Move(std::int32_t from, std::int32_t to);
  /// Of another TStrings, texts and objects.
  void Assign(const TPersistent* source) override;

  // -- Searching ------------------------------------------------------------------------------------------------------
  /// The first equal text; -1 if there is none.
  virtual std::int32_t IndexOf(const std::string& text) const;
  std::int32_t IndexOfObject(const TObject* object) const;
  /// The same texts in the same order, byte by byte.
  bool Equals(const TStrings& other) const;

  // -- "Name=Value" ---------------------------------------------------------------------------------------------------
  /// What stands before the first "="; empty without one.
  std::string GetName(std::int32_t index) const;
  std::string GetValueFromIndex(std::int32_t index) const;
  std::int32_t IndexOfName(const std::string& name) const;
  /// The value of the first line of that name; empty if there is none.
  std::string GetValue(const std::string& name) const;
  /// Changes or appends a line; an empty value takes the line out.
  void SetValue(const std::string& name, const std::string& value);

  // -- As one text ----------------------------------------------------------------------------------------------------
  /// Each line followed by CR LF, on every system, so that stored texts are alike.
  std::string GetText() const;
  /// A CR, an LF or a CR LF ends a line. An end at the very end of the text begins no further line.
  void SetText(std::string_view text);
  /// Separated by commas. A text with a control character, a blank, a comma or a quote stands in quotes, its own quotes
  /// doubled; so does a lone empty text, since nothing at all is an empty list.
  std::string GetCommaText() const;
  /// Commas and blanks separate; quotes enclose; a missing last quote is supplied at the end.
  void SetCommaText(std::string_view text);

  // -- Update brackets ------------------------------------------------------------------------------------------------
  /// Nest. An EndUpdate without its BeginUpdate does nothing.
  void BeginUpdate();
  void EndUpdate();
  bool IsUpdating() const { return updateCount_ > 0; }

 protected:
  /// Before the first and after the last change of a bracket, or around a single change.
  virtual void Changing() {}
  virtual void Changed() {}
  /// How IndexOf and IndexOfName compare: AnsiCompareText.
  virtual std::int32_t CompareStrings(std::string_view a, std::string_view b) const;
  void AssignTo(TPersistent* dest) const override;

  void CheckIndex(std::int32_t index) const;

 private:
  std::int32_t updateCount_ = 0;
};

/// A bracket that ends with its block, also by an exception.
class TStringsUpdate {
 public:
  explicit TStringsUpdate(TStrings& strings);
  /// What Changed() raises is passed on, unless the block already ends by an exception.
  ~TStringsUpdate() noexcept(false);
  TStringsUpdate(const TStringsUpdate&) = delete;
  TStringsUpdate& operator=(const TStringsUpdate&) = delete;

 private:
  TStrings& strings_;
  int exceptions_;
};

/// What a sorted list does with a text that it has.
enum TDuplicates : std::uint8_t {
  dupIgnore,  ///< Add answers the position of the one that is there; its object stays
  dupAccept,  ///< the new one comes before its equals
  dupError,   ///< EStringListError
};

class TStringList : public TStrings {
 public:
  static const TClass& StaticClass();
  const TClass& ClassType() const override { return StaticClass(); }

  std::int32_t GetCount() const override { return static_cast<std::int32_t>(items_.size()); }
  std::string Get(std::int32_t index) const override;
  /// The text itself, uncopied; valid until the list changes.
  const std::string& At(std::int32_t index) const;
  /// Raises EStringListError in a sorted list.
  void Put(std::int32_t index, const std::string& text) override;
  TObject* GetObject(std::int32_t index) const override;
  void PutObject(std::int32_t index, TObject* object) override;
  void Clear() override;
  void Delete(std::int32_t index) override;
  /// Both raise EStringListError in a sorted list.
  void Insert(std::int32_t index, const std::string& text) override;
  void InsertObject(std::int32_t index, const std::string& text, TObject* object) override;
  /// At the end, or at its place in a sorted list. Duplicates counts in sorted lists only.
  std::int32_t Add(const std::string& text) override;
  std::int32_t AddObject(const std::string& text, TObject* object) override;
  void Exchange(std::int32_t first, std::int32_t second) override;
  void Move(std::int32_t from, std::int32_t to) override;
  std::int32_t IndexOf(const std::string& text) const override;

  // -- Order ----------------------------------------------------------------------------------------------------------
  /// Whether the text is there, and where: at `index` it stands first or would stand. Sense only in a sorted list.
  bool Find(std::string_view text, std::int32_t& index) const;
  /// Once, in the list's own compare; equal texts keep their order.
  void Sort();
  /// Once, by `less`. Raises EStringListError in a sorted list.
  void SortBy(const std::function<bool(const std::string&, const std::string&)>& less);

  bool GetSorted() const { return sorted_; }
  /// True sorts at once, and keeps the order from now on. Duplicates that are there stay.
  void SetSorted(bool sorted);
  TDuplicates GetDuplicates() const { return duplicates_; }
  void SetDuplicates(TDuplicates duplicates) { duplicates_ = duplicates; }
  bool GetCaseSensitive() const { return caseSensitive_; }
  /// True compares by bytes. A sorted list is sorted anew.
  void SetCaseSensitive(bool caseSensitive);

 protected:
  std::int32_t CompareStrings(std::string_view a, std::string_view b) const override;

 private:
  struct TItem {
    std::string Text;
    TObject* Object;
  };

  void InsertItem(std::int32_t index, const std::string& text, TObject* object);
  void CheckUnsorted() const;
  TItem& ItemAt(std::int32_t index);

  std::vector<TItem> items_;
  TDuplicates duplicates_ = dupIgnore;
  bool sorted_ = false;
  bool caseSensitive_ = false;
};

}  // namespace vx
