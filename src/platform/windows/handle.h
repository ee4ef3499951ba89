#pragma once

#include <winsock2.h>
// The socket header has to come first.
#include <windows.h>

#include <memory>

namespace velk::platform {

struct HandleCloser {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};

/// An owned system handle; empty where the system says invalid.
using Handle = std::unique_ptr<void, HandleCloser>;

inline Handle owned(HANDLE handle) {
  return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

/// An event that stays signalled until it is reset.
inline Handle makeEvent() {
  return owned(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

}  // namespace velk::platform
