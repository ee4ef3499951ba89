#include "cli/velk/connection/link_choice.h"

#include <algorithm>
#include <stdexcept>

#include "cli/shared/ask_password.h"
#include "cli/shared/escapes.h"
#include "cli/shared/failure.h"
#include "cli/shared/native_text.h"
#include "cli/shared/password.h"
#include "cli/shared/terminal.h"
#include "cli/velk/connection/houses.h"
#include "cli/velk/connection/link_failure.h"
#include "cli/velk/connection/link_text.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/shared_link.h"
#include "cli/velk/connection/silent_line.h"

namespace velk::cli {

void LinkChoice::declare(const CommandLine& line) {
  constexpr const char* group = "Link";
  const Option tcp = line.option("--tcp", options_.tcp, "A TCP link").typeName("HOST:PORT");
  const Option serial = line.option("--serial", options_.serial, "A serial link").typeName("DEVICE");
  const Option simulate =
      line.flag("--simulate", options_.simulate, "A simulated controller of a small house");
  const Option text =
      line.option("--link", text_, "A link as one text, as in VELK_LINK; see \"velk --help\"");
  const Option house =
      line.option("--house", house_, "A house by its name in the configuration file").typeName("NAME");
  house.excludes(tcp).excludes(serial).excludes(simulate).excludes(text);
  tcp.excludes(serial).excludes(simulate).excludes(text);
  serial.excludes(simulate).excludes(text);
  simulate.excludes(text);
  const Option password = line.option("--password", password_, "Password of the TCP link").needs(tcp);
  const Option address = line.option("--address", busAddress_, "Bus address of the controller")
                             .range(link::lowestBusAddress, link::highestBusAddress)
                             .showDefault()
                             .excludes(text)
                             .excludes(house);
  const Option baud = line.option("--baud", baud_, "Rate of the serial link in bit/s")
                          .range(lowestBaud, highestBaud)
                          .needs(serial)
                          .showDefault();
  const Option fast =
      line.flag("--fast", options_.fast, "Fast mode on the serial link, not echo mode").needs(serial);
  address_ = address;
  const Option trace =
      line.option("--trace", trace_, "Write what goes over the link, with times, to standard error or a file")
          .typeName("[FILE]")
          .valueOptional();
  traceOption_ = trace;
  declared_ = {tcp, serial, simulate, text, house, password, address, baud, fast, trace};
  for (const Option& option : declared_) option.group(group);
}

bool LinkChoice::isGiven() const {
  return std::any_of(declared_.begin(), declared_.end(),
                     [](const Option& option) { return option.isGiven(); });
}

bool LinkChoice::namesLink() const {
  return !text_.empty() || !house_.empty() || !options_.tcp.empty() || !options_.serial.empty() ||
         options_.simulate;
}

std::optional<LinkOptions> LinkChoice::find() const {
  std::optional<LinkOptions> link = withoutTrace();
  if (link) addTrace(*link);
  return link;
}

LinkOptions LinkChoice::orNone() const {
  LinkOptions link = withoutTrace().value_or(LinkOptions());
  addTrace(link);
  return link;
}

void LinkChoice::addTrace(LinkOptions& link) const {
  if (traceOption_->isGiven()) link.trace.emplace(trace_);
}

std::optional<LinkOptions> LinkChoice::withoutTrace() const {
  if (const SharedLink* const shared = SharedLink::current()) return shared->link();
  if (!text_.empty()) return parseLink(text_);
  if (!house_.empty()) return houseNamed(house_);
  if (!namesLink()) {
    const auto text = environment("VELK_LINK");
    if (!text || text->empty()) return std::nullopt;
    // Left out it would be the wrong controller, and which of two is meant is no guess of ours.
    if (address_ && address_->isGiven()) {
      throw std::invalid_argument("--address does not go with VELK_LINK, which has an address of its own");
    }
    return parseLink(*text);
  }
  LinkOptions link = options_;
  link.password = checkedPassword(unescaped(password_));
  link.baud = static_cast<std::int16_t>(baud_);
  link.busAddress = static_cast<Byte>(busAddress_);
  return link;
}

LinkOptions LinkChoice::required() const {
  if (auto link = find()) return *std::move(link);
  throw std::invalid_argument(
      "no link: give --tcp, --serial, --simulate, --house or --link, or set VELK_LINK");
}

namespace {

/// Whether an interface has refused a login without a password.
bool wantsPassword(const LinkOptions& link, Connection& connection) {
  return !link.tcp.empty() && link.password.empty() && connection.serial().TCP &&
         !isLost(connection.result());
}

}  // namespace

std::shared_ptr<Connection> open(const LinkOptions& link) {
  if (SharedLink* const shared = SharedLink::current()) return shared->connection();
  LinkOptions own = link;
  return openAnew(own);
}

std::shared_ptr<Connection> openAnew(LinkOptions& link) {
  auto connection = std::make_shared<Connection>(link);
  const auto explainSilence = [link, &host = connection->host()] {
    const std::string reason = whySilent(link, host);
    if (!reason.empty()) throw Failure(noLink, link.serial + ": " + reason);
  };
  retry().whenFirstIsLost(link.serial.empty() ? nullptr : std::function<void()>(explainSilence));
  if (connection->result() == 0) return connection;
  if (wantsPassword(link, *connection) && inputIsTerminal() && errorIsTerminal()) {
    link.password = checkedPassword(unescaped(askPassword("password of " + link.tcp + ": ")));
    // An empty line would be refused as before, and asked for again.
    connection->serial().CloseTCP();
    if (!link.password.empty()) return openAnew(link);
  }
  throw Failure(noLink, failureToOpen(link, connection->result(), connection->serial().TCP),
                connection->result());
}

}  // namespace velk::cli
