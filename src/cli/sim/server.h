#pragma once

#include <atomic>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "cli/shared/serial_line.h"
#include "cli/sim/tcp.h"
#include "simulator/peer.h"

namespace velk::cli {

/// Runs interfaces of a simulated controller, each connection on a thread of its own. Ends them all when it
/// is destroyed.
class Server {
 public:
  Server() = default;
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Takes connections; returns the port. Throws std::runtime_error with a sentence.
  std::uint16_t listen(const std::string& address, std::uint16_t port, simulator::MakePeer makePeer);

  /// Serves a pseudo terminal; returns the name of its other end. Throws std::runtime_error with a sentence.
  std::string servePseudoLine(const simulator::MakePeer& makePeer);

  /// Serves a serial device. Throws std::runtime_error with a sentence.
  void serveDevice(const std::string& device, int baud, const simulator::MakePeer& makePeer);

 private:
  struct Worker {
    std::shared_ptr<std::atomic<bool>> done;
    std::jthread thread;
  };

  /// Starts a thread, and forgets those that have ended.
  void run(std::function<void(const std::stop_token&)> work);
  void acceptClients(Listener& listener, const simulator::MakePeer& makePeer, const std::stop_token& stop);

  std::mutex mutex_;
  std::list<Worker> workers_;  ///< guarded
};

}  // namespace velk::cli
