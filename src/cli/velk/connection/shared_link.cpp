#include "cli/velk/connection/shared_link.h"

#include <chrono>
#include <utility>

#include "cli/velk/connection/link_choice.h"
#include "platform/host.h"

namespace velk::cli {
namespace {

SharedLink* ofTheProgram = nullptr;

/// Ends a command that would open its link; no std::exception, which it might take for a fault.
struct WouldOpen {};

}  // namespace

SharedLink::SharedLink(LinkOptions link) : link_(std::move(link)) {
  ofTheProgram = this;
}

SharedLink::~SharedLink() {
  close();
  ofTheProgram = nullptr;
}

SharedLink* SharedLink::current() {
  return ofTheProgram;
}

std::shared_ptr<Connection> SharedLink::connection() {
  if (checks_) throw WouldOpen();
  if (draft_) return draft_;
  if (!connection_) {
    try {
      connection_ = openAnew(link_);
    } catch (...) {
      close();
      throw;
    }
  }
  return connection_;
}

void SharedLink::check(const std::function<int()>& command) {
  const struct Checking {
    bool& on;
    explicit Checking(bool& flag) : on(flag) { on = true; }
    ~Checking() { on = false; }
  } checking(checks_);
  try {
    command();
  } catch (const WouldOpen&) {
    // Its words are good.
  }
}

void SharedLink::beginDraft() {
  draft_ = std::make_shared<Connection>(connection()->serial());
}

void SharedLink::dropDraft() {
  draft_.reset();
}

void SharedLink::save() {
  if (link_.backup.empty() || !connection_) return;
  std::exchange(connection_, nullptr)->save();
}

void SharedLink::close() {
  dropDraft();
  connection_.reset();
  // They are the thread's, and stay open when nobody uses them any more. What is not open need not be closed.
  Serial last;
  if (!link_.tcp.empty()) last.CloseTCP();
  if (!link_.serial.empty()) last.CloseCom();
}

bool SharedLink::isHungUp() const {
  if (!connection_ || link_.tcp.empty()) return false;
  platform::Host& host = platform::threadHost();
  host.block(platform::Source::socket, std::chrono::nanoseconds::zero(), platform::Messages::held);
  return host.socket().isDead();
}

}  // namespace velk::cli
