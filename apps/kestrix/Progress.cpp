#include "Progress.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ostream>
#include <string>
#include <utility>

namespace vx::kestrix {

namespace {

constexpr double kPatience = 0.5;  // seconds until the bar appears
constexpr double kInterval = 0.1;  // seconds between two drawings
constexpr std::size_t kWidth = 40;

std::string Bar(double share) {
  const double done = std::clamp(share, 0.0, 1.0);
  const auto filled = static_cast<std::size_t>(std::floor(done * static_cast<double>(kWidth)));
  const std::string percent = std::to_string(static_cast<int>(done * 100));
  return "\r[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " + percent + "%";
}

}  // namespace

TProgressBar::TProgressBar(std::ostream& out, bool isTerminal, TClock clock)
    : out_(out), isTerminal_(isTerminal), clock_(std::move(clock)), start_(clock_()) {}

void TProgressBar::Show(double share) {
  if (!isTerminal_) return;
  const double now = clock_();
  if (now - start_ < kPatience || (isShown_ && now - lastDrawn_ < kInterval)) return;
  out_ << Bar(share) << std::flush;
  lastDrawn_ = now;
  isShown_ = true;
}

void TProgressBar::Clear() {
  if (!std::exchange(isShown_, false)) return;
  out_ << "\r\x1B[K" << std::flush;
}

double SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace vx::kestrix
