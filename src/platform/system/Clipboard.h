// Clipboard.h: what is copied and pasted, within the program and between programs.
//
//   Clipboard().SetAsText("Monday\t12");
//   if (Clipboard().HasText()) Paste(Clipboard().AsText());
//
// Several forms of one thing are put there together, between Open() and Close(); the first takes what was there away:
//
//   const TClipboardSession session;
//   Clipboard().SetAsText(table);
//   Clipboard().SetAsBytes(cfPicture, png);
//
// A format is known by its name, which units above register, and carries bytes. Text and pictures are known from the
// start, under the names that other programs know too.
//
// The host keeps the contents and shares them with other programs (TInForce<IClipboardStore*>); without one, they stay
// in the program. Main thread only.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace vx {

/// The number of a format, valid in this run of the program.
using TClipboardFormat = std::int32_t;
inline constexpr TClipboardFormat cfText = 1;     ///< "text/plain": UTF-8, lines end in a line feed or CR LF
inline constexpr TClipboardFormat cfPicture = 2;  ///< "image/png": the bytes of a PNG file

/// The number of that name, letter case ignored: the one it has, or the next. EInvalidOperation for an empty name.
TClipboardFormat RegisterClipboardFormat(std::string_view name);
/// EInvalidOperation, which tells the number, if no format has it.
const std::string& ClipboardFormatName(TClipboardFormat format);

/// The forms of one thing, by the names of their formats.
using TClipboardContents = std::map<std::string, std::string>;

class IClipboardStore {
 public:
  virtual ~IClipboardStore() = default;
  /// These and no others are there from now on. Must not raise: a host that can't share them keeps quiet.
  virtual void Put(TClipboardContents contents) = 0;
  virtual bool Has(const std::string& format) = 0;
  /// Empty if there is nothing of that format.
  virtual std::string Get(const std::string& format) = 0;
};

/// Keeps the contents itself.
class TMemoryClipboard : public IClipboardStore {
 public:
  void Put(TClipboardContents contents) override { contents_ = std::move(contents); }
  bool Has(const std::string& format) override { return contents_.contains(format); }
  std::string Get(const std::string& format) override;

 private:
  TClipboardContents contents_;
};

class TClipboard {
 public:
  // -- Reading: between Open() and Close(), what was put there --------------------------------------------------------
  bool HasText() const { return HasFormat(cfText); }
  /// Empty if there is no text.
  std::string AsText() const { return GetAsBytes(cfText); }
  bool HasFormat(TClipboardFormat format) const;
  /// Empty if there is nothing of that format.
  std::string GetAsBytes(TClipboardFormat format) const;

  // -- Writing: at once, or at the outermost Close() ------------------------------------------------------------------
  void Clear();
  void SetAsText(std::string text) { SetAsBytes(cfText, std::move(text)); }
  void SetAsBytes(TClipboardFormat format, std::string bytes);
  /// May be nested. Other programs see what is written when the outermost is closed.
  void Open() { ++open_; }
  /// Without effect if it isn't open.
  void Close();

 private:
  void Share();

  std::int32_t open_ = 0;
  bool isWritten_ = false;  // since the outermost Open(): `written_` stands for what is in the store
  TClipboardContents written_;
};

TClipboard& Clipboard();

/// Opens the clipboard for the life of the object.
class TClipboardSession {
 public:
  TClipboardSession() { Clipboard().Open(); }
  TClipboardSession(const TClipboardSession&) = delete;
  TClipboardSession& operator=(const TClipboardSession&) = delete;
  ~TClipboardSession() { Clipboard().Close(); }
};

}  // namespace vx
