#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "simulator/live_faults.h"
#include "simulator/request_log.h"

namespace velk::simulator {

/// A connection, as long as its session lasts.
struct Connection {
  Connection(unsigned number, std::string kind) : id(number), interface(std::move(kind)) {}

  const unsigned id;  ///< from 1
  const std::string interface;
  const std::chrono::system_clock::time_point since = std::chrono::system_clock::now();
  std::atomic<std::uint64_t> requests{0};
};

/// The connections that there are. Safe for several threads.
class Connections {
 public:
  /// A new one, which is there until nobody holds it any more.
  std::shared_ptr<Connection> join(std::string interface);

  [[nodiscard]] std::vector<std::shared_ptr<const Connection>> list();

 private:
  std::mutex mutex_;
  std::vector<std::weak_ptr<Connection>> all_;  ///< guarded
  unsigned lastId_ = noConnection;              ///< guarded
};

/// What sessions share with somebody who watches them and sets their faults.
struct Watch {
  LiveFaults faults;
  RequestLog log;
  Connections connections;
};

}  // namespace velk::simulator
