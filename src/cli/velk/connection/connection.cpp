#include "cli/velk/connection/connection.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "cli/shared/serial_line.h"
#include "cli/velk/connection/draft.h"
#include "cli/velk/connection/house_file.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/patient_session.h"
#include "simulator/clock.h"
#include "simulator/controller.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/house.h"
#include "simulator/house_modules.h"
#include "simulator/loopback_host.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

struct Endpoint {
  std::string host;
  std::uint16_t port;
};

Endpoint parseEndpoint(const std::string& text) {
  const auto colon = std::min(text.rfind(':'), text.size());
  const auto port = wholeNumber<std::uint16_t>(slice(text, colon + 1));
  std::string host = text.substr(0, colon);
  const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  if (bracketed) host = host.substr(1, host.size() - 2);
  // Without brackets nobody could tell the last group of an IPv6 address from a port.
  const bool ambiguous = !bracketed && host.find_first_of("[]:") != std::string::npos;
  if (port.value_or(0) == 0 || host.empty() || ambiguous) {
    throw std::invalid_argument("a TCP link is HOST:PORT or [IPV6]:PORT, not \"" + text + "\"");
  }
  return {.host = std::move(host), .port = *port};
}

bool unsaved = false;

}  // namespace

bool savingFailed() {
  return unsaved;
}

Connection::Connection(const LinkOptions& options, platform::Host& host) : reached_(host) {
  if (options.simulate) {
    openSimulator(options);
    return;
  }
  if (!options.backup.empty()) {
    openBackup(options);
    return;
  }
  makeSerial(options);
  if (!options.tcp.empty()) openTcp(options);
  if (!options.serial.empty()) openSerial(options);
}

Connection::Connection(Serial& original) : reached_(platform::threadHost()) {
  controller_ = std::make_unique<Draft>(original);
  openInProcess({}, [this] {
    return std::make_unique<PatientSession>(
        std::make_unique<simulator::EthernetSSession>(*controller_, simulator::SessionOptions()));
  });
}

platform::Host& Connection::loopbackOrReached() {
  return host_ ? *host_ : reached_;
}

/// With a tap between it and the link only where somebody listens.
void Connection::makeSerial(const LinkOptions& options) {
  platform::Host& below = loopbackOrReached();
  WireListener listener = options.listener;
  if (options.trace) {
    WireListener trace = options.trace->begin(nameOf(options), below.steady());
    listener = [trace, other = std::move(listener)](const WireEvent& event) {
      trace(event);
      if (other) other(event);
    };
  }
  if (listener) tap_.emplace(below, std::move(listener));
  serial_ = std::make_unique<Serial>(host());
}

void Connection::save() {
  if (!house_ || isSaved_) return;
  isSaved_ = true;
  house_->save(*serial_);
}

Connection::~Connection() {
  try {
    save();
  } catch (const std::exception& error) {
    std::cerr << "velk: " << error.what() << '\n';
    unsaved = true;
  }
}

void Connection::openTcp(const LinkOptions& options) {
  const Endpoint endpoint = parseEndpoint(options.tcp);
  // Ports above 32767 travel as negative numbers.
  result_ = serial_->OpenTCP(endpoint.host, static_cast<std::int16_t>(endpoint.port), options.password,
                             options.busAddress);
}

void Connection::openSerial(const LinkOptions& options) {
  serial_->SerAddress = options.busAddress;
  result_ = serial_->OpenCom(portNumber(options.serial), options.baud, options.fast);
}

void Connection::openSimulator(const LinkOptions& options) {
  constexpr const char* name = "simulator";
  constexpr std::uint16_t port = 1;
  controller_ = std::make_unique<simulator::Controller>(simulator::house());
  host_ = std::make_unique<simulator::LoopbackHost>();
  host_->transferTime = std::chrono::milliseconds(1);
  // Requests take time on this link and none of the PC's: its clock shall not run ahead of that.
  using std::chrono::steady_clock;
  controller_->attach(std::make_unique<simulator::Clock>([host = host_.get(), start = steady_clock::now()] {
    return std::min<steady_clock::duration>(host->elapsed(), steady_clock::now() - start);
  }));
  simulator::attachModules(*controller_);
  const simulator::SessionOptions session{.busAddress = options.busAddress};
  host_->listen(name, port, [this, session] {
    return std::make_unique<simulator::EthernetQSession>(*controller_, session);
  });
  makeSerial(options);
  result_ = serial_->OpenTCP(name, port, "", options.busAddress);
}

void Connection::openBackup(const LinkOptions& options) {
  house_ = std::make_unique<HouseFile>(options.backup);
  openInProcess(options, [this, address = options.busAddress] { return house_->session(address); });
}

void Connection::openInProcess(const LinkOptions& options, simulator::MakePeer makePeer) {
  constexpr const char* name = "here";
  constexpr std::uint16_t port = 1;
  host_ = std::make_unique<simulator::LoopbackHost>();
  host_->transferTime = std::chrono::milliseconds(1);
  host_->listen(name, port, std::move(makePeer));
  makeSerial(options);
  result_ = serial_->OpenTCP(name, port, "", options.busAddress);
}

}  // namespace velk::cli
