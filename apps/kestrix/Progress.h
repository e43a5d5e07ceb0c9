// Progress.h: a bar for the patient.
//
// It appears when the work has taken half a second and is drawn a few times a second, on one line that is wiped at the
// end. Whoever writes to the same terminal meanwhile calls Clear first.
#pragma once

#include <functional>
#include <iosfwd>

namespace vx::kestrix {

class TProgressBar {
 public:
  /// Seconds since any fixed moment.
  using TClock = std::function<double()>;

  /// `isTerminal`: `out` is one; else nothing is ever written.
  TProgressBar(std::ostream& out, bool isTerminal, TClock clock);
  ~TProgressBar() { Clear(); }
  TProgressBar(const TProgressBar&) = delete;
  TProgressBar& operator=(const TProgressBar&) = delete;

  /// `share` of the work is done, 0 to 1.
  void Show(double share);
  void Clear();

 private:
  std::ostream& out_;
  bool isTerminal_;
  TClock clock_;
  double start_;
  double lastDrawn_ = 0;
  bool isShown_ = false;
};

/// The system's steady clock.
double SteadySeconds();

}  // namespace vx::kestrix
