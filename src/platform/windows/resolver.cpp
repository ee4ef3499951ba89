#include "platform/windows/resolver.h"

#include <atomic>
#include <functional>

#include "values/runtime_error.h"

namespace velk::platform {

struct Lookup::Shared {
  std::string host;
  std::uint16_t port = 0;
  Handle done;  ///< an event; none when the answer was there at once
  std::deque<SocketAddress> addresses;
  std::atomic<bool> finished{false};

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
    shared->addresses = addressesOf(shared->host, shared->port, 0);
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
  const bool askable = isAskable(host);
  if (askable) shared_->addresses = addressesOf(host, port, AI_NUMERICHOST);
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

std::optional<SocketAddress> Lookup::next() {
  if (!hasNext()) return std::nullopt;
  std::optional address(shared_->addresses.front());
  shared_->addresses.pop_front();
  return address;
}

bool Lookup::hasNext() const {
  return !shared_->addresses.empty();
}

}  // namespace velk::platform
