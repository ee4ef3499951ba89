#include "platform/windows/resolver.h"

#include <ws2tcpip.h>

#include <atomic>
#include <cstring>
#include <functional>

#include "values/runtime_error.h"

namespace velk::platform {

struct Lookup::Shared {
  std::string host;
  std::uint16_t port = 0;
  Handle done;  ///< an event; none when the answer was there at once
  std::vector<SocketAddress> addresses;
  std::atomic<bool> finished{false};

  /// Asks for the addresses; `flags` as for getaddrinfo.
  void resolve(int flags) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* list = nullptr;
    if (getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &list) != 0) return;
    for (const addrinfo* entry = list; entry != nullptr; entry = entry->ai_next) {
      SocketAddress address{.storage = {}, .size = static_cast<int>(entry->ai_addrlen)};
      std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
      addresses.push_back(address);
    }
    freeaddrinfo(list);
  }

  void finish() {
    finished = true;
    if (done) SetEvent(done.get());
  }

  /// Asks on a thread of its own, which keeps this module loaded until it has ended.
  static void askInBackground(const std::shared_ptr<Shared>& shared);
};

namespace {

/// What the thread that asks owns.
struct Question {
  HMODULE module = nullptr;
  std::function<void()> ask;
};

DWORD WINAPI answer(void* context) {
  HMODULE module = nullptr;
  {
    const std::unique_ptr<Question> question(static_cast<Question*>(context));
    module = question->module;
    question->ask();
  }
  FreeLibraryAndExitThread(module, 0);
}

}  // namespace

void Lookup::Shared::askInBackground(const std::shared_ptr<Shared>& shared) {
  auto question = std::make_unique<Question>();
  question->ask = [shared] {
    shared->resolve(0);
    shared->finish();
  };
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&answer),
                     &question->module);
  if (const Handle thread = owned(CreateThread(nullptr, 0, answer, question.get(), 0, nullptr))) {
    static_cast<void>(question.release());
  } else {
    FreeLibrary(question->module);
    throw RuntimeError(RuntimeError::outOfMemory);
  }
}

Lookup::Lookup(const std::string& host, std::uint16_t port) : shared_(std::make_shared<Shared>()) {
  shared_->host = host;
  shared_->port = port;
  // An empty host, which the system would take for this computer, or one with a zero byte inside is no name
  // to ask for.
  const bool askable = !host.empty() && host.find('\0') == std::string::npos;
  if (askable) shared_->resolve(AI_NUMERICHOST);
  if (!shared_->addresses.empty() || !askable) {
    shared_->finish();
  } else {
    shared_->done = makeEvent();
    if (!shared_->done) throw RuntimeError(RuntimeError::outOfMemory);
    Shared::askInBackground(shared_);
  }
}

HANDLE Lookup::event() const {
  return shared_->done.get();
}

bool Lookup::finished() const {
  return shared_->finished;
}

std::vector<SocketAddress> Lookup::addresses() const {
  return shared_->addresses;
}

}  // namespace velk::platform
