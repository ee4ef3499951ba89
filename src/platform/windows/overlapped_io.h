#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/windows/handle.h"

namespace velk::platform {

/// One read or write that the system carries out while the program goes on, and that it can wait for.
class OverlappedIo {
 public:
  enum class State : std::uint8_t { idle, running, done, failed };

  OverlappedIo() : block_(std::make_unique<Block>()) {}
  ~OverlappedIo() { cancel(); }
  OverlappedIo(const OverlappedIo&) = delete;
  OverlappedIo& operator=(const OverlappedIo&) = delete;

  /// Starts reading `size` bytes from a device.
  void read(HANDLE device, std::size_t size);

  /// Starts writing to a device.
  void write(HANDLE device, std::string_view bytes);

  /// Starts receiving up to `size` bytes from a socket.
  void receive(SOCKET socket, std::size_t size);

  /// Ends a running operation. It has to be called before the device is closed.
  void cancel();

  /// How far the operation has come.
  State state();

  /// Whether an operation was started and has ended.
  bool hasEnded() { return state() == State::done || state() == State::failed; }

  /// Waits for the end of the operation; false when it is still running after `longest` milliseconds.
  bool wait(DWORD longest);

  /// What has been read or written, once the operation is done.
  [[nodiscard]] std::string_view bytes() const { return {block_->buffer.data(), count_}; }

  /// Signalled when the operation has ended, in whatever way.
  [[nodiscard]] HANDLE event() const { return block_->event.get(); }

 private:
  /// What the system holds on to until the operation has ended.
  struct Block {
    OVERLAPPED overlapped{};
    Handle event = makeEvent();
    std::vector<char> buffer;
  };

  char* prepare(HANDLE device, std::size_t size);
  void started(bool accepted);

  std::unique_ptr<Block> block_;
  HANDLE device_ = nullptr;
  State state_ = State::idle;
  DWORD count_ = 0;
};

}  // namespace velk::platform
