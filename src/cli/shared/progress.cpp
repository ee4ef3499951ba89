#include "cli/shared/progress.h"

#include <iostream>

#include "cli/shared/terminal.h"

namespace velk::cli {

constexpr std::chrono::milliseconds interval{100};
constexpr std::size_t width = 30;

Progress::~Progress() {
  if (shown_) std::cerr << "\r\x1b[K";
}

void Progress::show(std::size_t done, std::size_t total, std::size_t kept) {
  const auto now = std::chrono::steady_clock::now();
  if (now < next_ || !errorIsTerminal()) return;
  next_ = now + interval;
  if (!begun_) {
    begun_ = true;
    first_ = done - kept;
    start_ = now;
    return;
  }
  shown_ = true;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(done - kept - first_) / seconds;
  const std::size_t filled = width * done / total;
  // A narrow terminal cuts the line off; broken in two it could not be overwritten.
  std::cerr << "\r\x1b[?7l" << what_ << " [" << std::string(filled, '#') << std::string(width - filled, '.')
            << "] " << done * 100 / total << " %  " << static_cast<long>(rate) << "/s";
  if (rate > 0) std::cerr << "  " << static_cast<long>(static_cast<double>(total - done) / rate) << " s left";
  std::cerr << "\x1b[K\x1b[?7h" << std::flush;
}

}  // namespace velk::cli
