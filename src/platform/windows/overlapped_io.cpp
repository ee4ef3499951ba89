#include "platform/windows/overlapped_io.h"

#include <algorithm>

namespace velk::platform {
namespace {

/// How long a driver may take to let go of a cancelled operation.
constexpr DWORD cancelPatience = 1000;  // ms

}  // namespace

void OverlappedIo::read(HANDLE device, std::size_t size) {
  char* buffer = prepare(device, size);
  started(ReadFile(device, buffer, static_cast<DWORD>(size), nullptr, &block_->overlapped) != 0);
}

void OverlappedIo::write(HANDLE device, std::string_view bytes) {
  char* buffer = prepare(device, bytes.size());
  std::copy(bytes.begin(), bytes.end(), buffer);
  started(WriteFile(device, buffer, static_cast<DWORD>(bytes.size()), nullptr, &block_->overlapped) != 0);
}

void OverlappedIo::receive(SOCKET socket, std::size_t size) {
  WSABUF buffer{.len = static_cast<ULONG>(size),
                .buf = prepare(reinterpret_cast<HANDLE>(socket), size)};  // NOLINT(performance-no-int-to-ptr)
  DWORD flags = 0;
  started(WSARecv(socket, &buffer, 1, nullptr, &flags, &block_->overlapped, nullptr) == 0);
}

void OverlappedIo::cancel() {
  if (state() == State::running) {
    CancelIoEx(device_, &block_->overlapped);
    // A driver that does not let go keeps the block for good: that is better than a hang or a stray write.
    if (!wait(cancelPatience)) {
      static_cast<void>(block_.release());
      block_ = std::make_unique<Block>();
    }
  }
  state_ = State::idle;
  count_ = 0;
}

OverlappedIo::State OverlappedIo::state() {
  if (state_ != State::running || !HasOverlappedIoCompleted(&block_->overlapped)) return state_;
  const bool good = GetOverlappedResult(device_, &block_->overlapped, &count_, FALSE) != 0;
  state_ = good ? State::done : State::failed;
  return state_;
}

bool OverlappedIo::wait(DWORD longest) {
  return state() != State::running ||
         (WaitForSingleObject(event(), longest) == WAIT_OBJECT_0 && state() != State::running);
}

char* OverlappedIo::prepare(HANDLE device, std::size_t size) {
  cancel();
  device_ = device;
  block_->overlapped = OVERLAPPED{};
  block_->overlapped.hEvent = event();
  if (block_->buffer.size() < size) block_->buffer.resize(size);
  return block_->buffer.data();
}

void OverlappedIo::started(bool accepted) {
  state_ = accepted || GetLastError() == ERROR_IO_PENDING ? State::running : State::failed;
  // Whoever waits for the event is to learn of the failure at once.
  if (state_ == State::failed) SetEvent(event());
}

}  // namespace velk::platform
