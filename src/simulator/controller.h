#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "link/frames.h"
#include "simulator/store.h"

namespace velk::simulator {

/// What the controller answers to one memory request.
struct Reply {
  Byte status = 0;  ///< 0: carried out
  Bytes data;       ///< the bytes read; none for writes and short replies

  [[nodiscard]] Bytes bytes() const { return character(status) + data; }
};

/// Statuses of the simulated controller.
enum Status : Byte {
  carriedOut = 0,
  refused = 1,  ///< not logged in, or a request whose data do not fit its byte count
};

/// The answer to a request that is not carried out: the status and as many zero bytes as were asked for.
Reply refusal(const link::Request& request, Byte status);

/// The bytes of one request.
struct Transfer {
  Address first;
  std::size_t count;

  [[nodiscard]] bool covers(Address at) const;
};

/// Something that lives inside the memory, such as a clock or a mailbox. It is called with the controller
/// locked, so it must not call the controller.
class Device {
 public:
  virtual ~Device() = default;

  /// Whether a byte belongs to the device.
  [[nodiscard]] virtual bool covers(Address at) const = 0;

  /// A transfer that touches the device is about to be read: the moment to bring the bytes up to date.
  virtual void beforeRead(Store& /*store*/, const Transfer& /*transfer*/) {}

  /// A transfer that touches the device is about to be written, and has been written.
  virtual void beforeWrite(Store& /*store*/, const Transfer& /*transfer*/) {}
  virtual void afterWrite(Store& /*store*/, const Transfer& /*transfer*/) {}

  /// Somebody who is no host is about to look: what runs by itself is brought up to date, and nothing counts
  /// as read.
  virtual void refresh(Store& /*store*/) {}
};

/// The simulated controller: four areas, and the devices inside them. Safe for several threads.
class Controller {
 public:
  /// An empty controller.
  Controller() = default;
  explicit Controller(Store store) : store_(std::move(store)) {}

  /// Carries out one memory request. A write needs as many data bytes as its command byte says.
  Reply answer(const link::Request& request);

  void attach(std::unique_ptr<Device> device);

  /// A copy of the whole memory as it is now.
  [[nodiscard]] Store snapshot() const;

  /// Lets somebody who is no host look at the memory and the devices, or change them, between two requests.
  /// `work` must not call the controller.
  void between(const std::function<void(Store&)>& work);

 private:
  [[nodiscard]] std::vector<Device*> devicesIn(const Transfer& transfer) const;

  mutable std::mutex mutex_;
  Store store_;
  std::vector<std::unique_ptr<Device>> devices_;
};

}  // namespace velk::simulator
