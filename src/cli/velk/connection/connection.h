#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/velk/trace/tapped_host.h"
#include "cli/velk/trace/trace_file.h"
#include "component/serial.h"
#include "simulator/peer.h"

namespace velk::simulator {
class Controller;
class LoopbackHost;
}  // namespace velk::simulator

namespace velk::cli {

/// Which link to open before a call; at most one.
struct LinkOptions {
  std::string tcp;  ///< HOST:PORT, with an IPv6 address in brackets
  Bytes password;
  Byte busAddress = link::defaultBusAddress;
  std::string serial;  ///< a device
  std::int16_t baud = 9600;
  bool fast = false;
  bool simulate = false;
  std::string backup;                     ///< a backup file: the house in it
  std::optional<TraceOutput> trace = {};  ///< takes what goes over the link
  WireListener listener = {};             ///< is told of it as well; may be empty
};

class HouseFile;

/// Whether what was written to a backup file could not be saved, which was told.
bool savingFailed();

/// A `Serial` object and the link that it is open on. At the end a backup file that was written to is saved.
class Connection {
 public:
  /// Opens the link, if one is asked for: `result` tells how that went, like the methods that open it. Throws
  /// std::invalid_argument with a sentence, `Failure` when a backup file cannot be read.
  /// @param host what a serial or TCP link is reached through
  explicit Connection(const LinkOptions& options, platform::Host& host = platform::threadHost());

  /// Opens a draft of what another object shows, which has to outlive this one; see `Draft`.
  explicit Connection(Serial& original);
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection();

  [[nodiscard]] Serial& serial() { return *serial_; }
  [[nodiscard]] Byte result() const { return result_; }

  /// Saves a backup file that was written to; called once, when nothing more is written. Throws `Failure`.
  void save();

  /// The host that the object works on.
  [[nodiscard]] platform::Host& host() { return tap_ ? *tap_ : loopbackOrReached(); }

 private:
  platform::Host& loopbackOrReached();
  void makeSerial(const LinkOptions& options);
  void openTcp(const LinkOptions& options);
  void openSerial(const LinkOptions& options);
  void openSimulator(const LinkOptions& options);
  void openBackup(const LinkOptions& options);
  void openInProcess(const LinkOptions& options, simulator::MakePeer makePeer);

  platform::Host& reached_;
  std::unique_ptr<HouseFile> house_;
  std::unique_ptr<simulator::Controller> controller_;
  std::unique_ptr<simulator::LoopbackHost> host_;
  std::optional<TappedHost> tap_;
  std::unique_ptr<Serial> serial_;
  Byte result_ = 0;
  bool isSaved_ = false;
};

}  // namespace velk::cli
