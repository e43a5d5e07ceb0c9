#include "platform/runtime/Format.h"

#include <algorithm>

#include "platform/runtime/Exceptions.h"
#include "platform/runtime/NumberText.h"
#include "platform/runtime/Text.h"

namespace vx {
namespace {

struct TPlaceholder {
  std::int32_t Width = 0;
  std::int32_t Precision = -1;  ///< -1: not given
  bool LeftAlign = false;
  char Letter = 0;  ///< in small
};

std::size_t CodePointsPrefix(std::string_view text, std::int32_t count) {
  std::size_t at = 0;
  for (; count > 0 && at < text.size(); --count) NextCodePoint(text, at);
  return at;
}

std::string Digits(std::uint64_t value, std::uint64_t base) {
  std::string answer;
  do {
    answer.push_back("0123456789ABCDEF"[value % base]);
    value /= base;
  } while (value != 0);
  std::reverse(answer.begin(), answer.end());
  return answer;
}

std::string IntegerText(const TFormatArg& arg, const TPlaceholder& holder) {
  const std::uint64_t value = holder.Letter == 'd' ? arg.Magnitude() : arg.Unsigned();
  std::string digits = Digits(value, holder.Letter == 'x' ? 16 : 10);
  const auto least = static_cast<std::size_t>(std::max(holder.Precision, 0));
  if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
  return holder.Letter == 'd' && arg.IsNegative() ? "-" + digits : digits;
}

std::string RealText(const TFormatArg& arg, const TPlaceholder& holder) {
  const std::int32_t decimals = holder.Precision < 0 ? 2 : holder.Precision;
  if (holder.Letter == 'f') return FloatToStrF(arg.Real(), ffFixed, 15, decimals);
  if (holder.Letter == 'n') return FloatToStrF(arg.Real(), ffNumber, 15, decimals);
  if (holder.Letter == 'm') return FloatToStrF(arg.Real(), ffCurrency, 15, decimals);
  const std::int32_t precision = holder.Precision < 0 ? 15 : holder.Precision;
  return holder.Letter == 'e' ? FloatToStrF(arg.Real(), ffExponent, precision, 3)
                              : FloatToStrF(arg.Real(), ffGeneral, precision, 0);
}

/// One walk over one format. `at_` stands behind what is read.
class TFormatter {
 public:
  TFormatter(std::string_view format, std::initializer_list<TFormatArg> args) : format_(format), args_(args) {}

  std::string Run() {
    for (std::size_t percent; (percent = format_.find('%', at_)) != std::string_view::npos;) {
      answer_.append(format_, at_, percent - at_);
      at_ = percent + 1;
      if (Peek() == '%')
        answer_.push_back(format_[at_++]);
      else
        Expand(ReadPlaceholder());
    }
    return answer_.append(format_, at_, format_.size() - at_);
  }

 private:
  [[noreturn]] void Fail(const std::string& what) const {
    throw EConvertError("Format '" + std::string(format_) + "': " + what);
  }

  /// The next character, 0 at the end.
  char Peek() const { return at_ < format_.size() ? format_[at_] : '\0'; }

  /// A number if there is one, else -1. Stops to count where any limit is passed, so that no run of digits overflows.
  std::int32_t ReadNumber() {
    std::int32_t value = -1;
    for (; Peek() >= '0' && Peek() <= '9'; ++at_) value = std::min(std::max(value, 0) * 10 + (Peek() - '0'), 1'000'000);
    return value;
  }

  std::int32_t Limited(std::int32_t number, const char* what) const {
    if (number > kFormatLimit) Fail(std::string(what) + " over " + std::to_string(kFormatLimit));
    return number;
  }

  TPlaceholder ReadPlaceholder() {
    TPlaceholder holder;
    std::int32_t width = ReadNumber();
    if (Peek() == ':') {
      if (width < 0) Fail("':' without an index");
      next_ = static_cast<std::size_t>(width);
      ++at_;
      width = -1;
    }
    if (width < 0) {
      holder.LeftAlign = Peek() == '-';
      if (holder.LeftAlign) ++at_;
      width = ReadNumber();
    }
    holder.Width = Limited(std::max(width, 0), "a width");
    if (Peek() == '.') {
      ++at_;
      holder.Precision = Limited(std::max(ReadNumber(), 0), "a precision");
    }
    if (at_ >= format_.size()) Fail("a placeholder without its letter");
    holder.Letter = LowerCase(format_.substr(at_, 1))[0];
    ++at_;
    return holder;
  }

  const TFormatArg& TakeArgument() {
    if (next_ >= args_.size())
      Fail("no argument " + std::to_string(next_) + ", there are " + std::to_string(args_.size()));
    return args_.begin()[next_++];
  }

  void Expand(const TPlaceholder& holder) {
    if (std::string_view("duxsfgenm").find(holder.Letter) == std::string_view::npos)
      Fail("unknown letter '" + std::string(format_.substr(at_ - 1, 1)) + "'");
    Append(ArgumentText(TakeArgument(), holder), holder);
  }

  std::string ArgumentText(const TFormatArg& arg, const TPlaceholder& holder) const {
    if (holder.Letter == 's') {
      if (arg.Kind() != TFormatArg::fkText) Fail("argument " + std::to_string(next_ - 1) + " is no text");
      const std::string_view text = arg.Text();
      return std::string(holder.Precision < 0 ? text : text.substr(0, CodePointsPrefix(text, holder.Precision)));
    }
    if (arg.Kind() == TFormatArg::fkText) Fail("argument " + std::to_string(next_ - 1) + " is no number");
    if (std::string_view("fgenm").find(holder.Letter) != std::string_view::npos) return RealText(arg, holder);
    if (arg.Kind() != TFormatArg::fkInteger) Fail("argument " + std::to_string(next_ - 1) + " is no integer");
    return IntegerText(arg, holder);
  }

  void Append(const std::string& text, const TPlaceholder& holder) {
    const std::size_t has = holder.Width == 0 ? 0 : CodePointCount(text);
    const auto width = static_cast<std::size_t>(holder.Width);
    const std::string blanks(has < width ? width - has : 0, ' ');
    answer_ += holder.LeftAlign ? text + blanks : blanks + text;
  }

  std::string_view format_;
  std::initializer_list<TFormatArg> args_;
  std::size_t at_ = 0;
  std::size_t next_ = 0;  ///< the argument to take
  std::string answer_;
};

}  // namespace

double TFormatArg::Real() const {
  if (kind_ == fkReal) return real_;
  const auto magnitude = static_cast<double>(Magnitude());
  return negative_ ? -magnitude : magnitude;
}

std::string Format(std::string_view format, std::initializer_list<TFormatArg> args) {
  return TFormatter(format, args).Run();
}

}  // namespace vx
