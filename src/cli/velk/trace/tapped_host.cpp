#include "cli/velk/trace/tapped_host.h"

namespace velk::cli {
namespace {

/// Carries out what may fail, and tells why it has.
template <class Use>
auto told(platform::Host& host, Wire& wire, Use use) {
  try {
    return use();
  } catch (const std::exception& error) {
    wire.giveUp("no reply");
    wire.note(host.steady(), std::string("error: ") + error.what());
    throw;
  }
}

}  // namespace

TappedHost::~TappedHost() {
  try {
    wire_.giveUp("no reply");
  } catch (
      const std::exception&) {  // NOLINT(bugprone-empty-catch): what is written no more can be told no more
  }
}

void TappedHost::Port::open(int number, const platform::SerialSettings& settings) {
  told(host_, wire_, [&] { host_.port().open(number, settings); });
  wire_.note(host_.steady(), "open at " + std::to_string(settings.baud) + " bit/s");
}

void TappedHost::Port::close() {
  wire_.note(host_.steady(), "close");
  host_.port().close();
}

std::string_view TappedHost::Port::read() {
  const std::string_view bytes = told(host_, wire_, [&] { return host_.port().read(); });
  wire_.received(host_.steady(), bytes, isAwaited_);
  isAwaited_ = false;
  return bytes;
}

void TappedHost::Port::write(std::string_view bytes) {
  isAwaited_ = true;
  wire_.sentToPort(host_.steady(), bytes);
  told(host_, wire_, [&] { host_.port().write(bytes); });
}

void TappedHost::Port::setBreak(bool on) {
  if (on) wire_.note(host_.steady(), "line break");
  told(host_, wire_, [&] { host_.port().setBreak(on); });
}

void TappedHost::Socket::connect(const std::string& host, std::uint16_t port) {
  wire_.note(host_.steady(), "connect to " + host + " port " + std::to_string(port));
  told(host_, wire_, [&] { host_.socket().connect(host, port); });
  isInUse_ = true;
}

void TappedHost::Socket::close() {
  if (isInUse_) wire_.note(host_.steady(), "close");
  isInUse_ = false;
  host_.socket().close();
}

bool TappedHost::Socket::isDead() const {
  const bool isDead = host_.socket().isDead();
  if (isDead && isInUse_) wire_.note(host_.steady(), "the connection has ended");
  isInUse_ = isInUse_ && !isDead;
  return isDead;
}

std::string_view TappedHost::Socket::receive() {
  const std::string_view bytes = told(host_, wire_, [&] { return host_.socket().receive(); });
  if (!bytes.empty()) wire_.received(host_.steady(), bytes, isAwaited_);
  isAwaited_ = false;
  return bytes;
}

void TappedHost::Socket::send(std::string_view bytes) {
  wire_.sentToSocket(host_.steady(), bytes);
  told(host_, wire_, [&] { host_.socket().send(bytes); });
}

}  // namespace velk::cli
