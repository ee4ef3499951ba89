#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/faults.h"

namespace velk::simulator {

/// Faults that are set and taken back while sessions run. Each counts from when it is set, over all
/// connections: request 1 is the next one, request 0 each login. One whose last request has come is forgotten.
/// Safe for several threads.
class LiveFaults {
 public:
  static constexpr std::size_t most = 64;

  struct Entry {
    unsigned id;
    std::string text;         ///< as it was set
    std::string_view counts;  ///< "request", "login" or "module request"
    unsigned counted;         ///< so many since then
  };

  /// Reads a text as `parseFault` does. Throws std::invalid_argument with a sentence, also when there are too
  /// many. Returns its id.
  unsigned set(std::string_view text);

  /// False: there is none with this id.
  bool takeBack(unsigned id);
  void takeAllBack();

  /// Whether there is or was one with this id.
  [[nodiscard]] bool wasSet(unsigned id) const;

  [[nodiscard]] std::vector<Entry> list() const;

  /// Counts a request or a login, and adds to its plan what is to happen there.
  void next(Counts counts, Plan& plan);
  void login(Plan& plan);

 private:
  struct Row {
    Entry entry;
    Fault fault;
  };

  mutable std::mutex mutex_;
  std::vector<Row> rows_;            ///< guarded
  unsigned lastId_ = 0;              ///< guarded
  std::atomic<bool> isEmpty_{true};  ///< so that requests are quick without faults
};

}  // namespace velk::simulator
