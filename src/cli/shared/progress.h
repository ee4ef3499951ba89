#pragma once

#include <chrono>
#include <string>

namespace velk::cli {

/// A bar with rate and time left on standard error, when that is a terminal; else nothing.
class Progress {
 public:
  explicit Progress(std::string what) : what_(std::move(what)) {}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(std::size_t done, std::size_t total);

 private:
  std::string what_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point next_ = start_;
  std::size_t first_ = 0;  ///< what was done before
  bool shown_ = false;
};

}  // namespace velk::cli
