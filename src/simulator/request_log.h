#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "link/frames.h"
#include "simulator/controller.h"
#include "simulator/faults.h"

namespace velk::simulator {

/// In place of a connection's id: what the controller does by itself, and what is changed by hand.
constexpr unsigned noConnection = 0;

/// A request and its reply as they were, not yet in words; or a note about something else.
struct LoggedRequest {
  static constexpr std::size_t longest = 16;

  std::chrono::system_clock::time_point at;
  unsigned connection = noConnection;
  Byte command = 0, high = 0, low = 0;
  Byte status = 0;
  Byte size = 0;       ///< of the data that were sent
  Byte replySize = 0;  ///< of the data that were answered
  std::array<char, longest> data{};
  std::array<char, longest> reply{};
  std::string faultyReply;  ///< in words, when a fault changed what was sent
  std::string note;         ///< with one, there is no request

  static LoggedRequest of(unsigned connection, const link::Request& request, const Reply& reply,
                          const Plan& plan = {});
  static LoggedRequest ofNote(unsigned connection, std::string note);

  [[nodiscard]] link::Request request() const;
  [[nodiscard]] Reply answer() const;
};

/// The last requests to a controller. A session only copies its bytes; who reads tells them in words, and how
/// many it was too late for. Safe for several threads.
class RequestLog {
 public:
  static constexpr std::size_t capacity = 4096;

  void add(LoggedRequest request);

  /// How many were added so far.
  [[nodiscard]] std::uint64_t count() const;

  struct Batch {
    std::uint64_t first = 0;  ///< how many were added before them
    std::vector<LoggedRequest> requests;
    std::uint64_t missed = 0;
  };

  /// What was added since `next`, at most the newest `most`; `next` moves behind them, over what is missed.
  Batch take(std::uint64_t& next, std::size_t most) const;

 private:
  mutable std::mutex mutex_;
  std::vector<LoggedRequest> ring_ = std::vector<LoggedRequest>(capacity);  ///< guarded
  std::uint64_t count_ = 0;                                                 ///< guarded
};

}  // namespace velk::simulator
