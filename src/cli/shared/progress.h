#pragma once

#include <chrono>
#include <iterator>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace velk::cli {

/// A bar with rate and time left on standard error, when that is a terminal; else nothing.
class Progress {
 public:
  explicit Progress(std::string what) : what_(std::move(what)) {}
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// @param kept how many of those that are done took no time: they were done before
  void show(std::size_t done, std::size_t total, std::size_t kept = 0);

 private:
  std::string what_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point next_ = start_;
  std::size_t first_ = 0;  ///< what was done when it began
  bool begun_ = false;
  bool shown_ = false;  ///< on the terminal, where it is taken away at the end
};

/// Goes through a range whose size is known, each element of which takes a request or more, and shows how far
/// it is:
///
///     for (const Byte source : counted("links", linkSources()))
template <class Range>
class Counted {
 public:
  Counted(std::string what, Range range) : progress_(std::move(what)), range_(std::move(range)) {}

  class Iterator {
   public:
    Iterator(Counted& all, decltype(std::begin(std::declval<const Range&>())) at) : all_(all), at_(at) {}
    decltype(auto) operator*() const { return *at_; }
    Iterator& operator++() {
      ++at_;
      all_.progress_.show(++all_.done_, std::size(all_.range_));
      return *this;
    }
    bool operator!=(const Iterator& other) const { return at_ != other.at_; }

   private:
    Counted& all_;
    decltype(std::begin(std::declval<const Range&>())) at_;
  };

  Iterator begin() { return {*this, std::begin(std::as_const(range_))}; }
  Iterator end() { return {*this, std::end(std::as_const(range_))}; }

 private:
  Progress progress_;
  Range range_;
  std::size_t done_ = 0;
};

template <class Range>
Counted<Range> counted(std::string what, Range range) {
  return {std::move(what), std::move(range)};
}

/// The same with the numbers from `first` to `last`.
inline auto counted(std::string what, int first, int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last - first + 1));
  std::iota(numbers.begin(), numbers.end(), first);
  return counted(std::move(what), std::move(numbers));
}

}  // namespace velk::cli
