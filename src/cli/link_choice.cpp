#include "cli/link_choice.h"

#include <cstdlib>
#include <stdexcept>

#include "cli/escapes.h"
#include "cli/failure.h"
#include "cli/link_failure.h"
#include "cli/link_text.h"

namespace velk::cli {

void LinkChoice::declare(CLI::App& app) {
  constexpr const char* group = "Link";
  auto* const tcp = app.add_option("--tcp", options_.tcp, "A TCP link")->type_name("HOST:PORT");
  auto* const serial = app.add_option("--serial", options_.serial, "A serial link")->type_name("DEVICE");
  auto* const simulate =
      app.add_flag("--simulate", options_.simulate, "A simulated controller of a small house");
  auto* const text =
      app.add_option("--link", text_, "A link as one text, as in VELK_LINK; see \"velk --help\"");
  tcp->excludes(serial)->excludes(simulate)->excludes(text);
  serial->excludes(simulate)->excludes(text);
  simulate->excludes(text);
  auto* const password = app.add_option("--password", password_, "Password of the TCP link")->needs(tcp);
  auto* const address = app.add_option("--address", busAddress_, "Bus address of the controller")
                            ->check(CLI::Range(0, highestAddress))
                            ->capture_default_str()
                            ->excludes(text);
  auto* const baud = app.add_option("--baud", baud_, "Rate of the serial link in bit/s")
                         ->check(CLI::Range(lowestBaud, highestBaud))
                         ->needs(serial)
                         ->capture_default_str();
  auto* const fast =
      app.add_flag("--fast", options_.fast, "Fast mode on the serial link, not echo mode")->needs(serial);
  for (auto* const option : {tcp, serial, simulate, text, password, address, baud, fast})
    option->group(group);
}

std::optional<LinkOptions> LinkChoice::find() const {
  if (!text_.empty()) return parseLink(text_);
  if (options_.tcp.empty() && options_.serial.empty() && !options_.simulate) {
    const char* const environment = std::getenv("VELK_LINK");
    if (environment == nullptr || *environment == '\0') return std::nullopt;
    return parseLink(environment);
  }
  LinkOptions link = options_;
  link.password = unescaped(password_);
  link.baud = static_cast<std::int16_t>(baud_);
  link.busAddress = static_cast<Byte>(busAddress_);
  return link;
}

LinkOptions LinkChoice::required() const {
  if (auto link = find()) return *std::move(link);
  throw std::invalid_argument("no link: give --tcp, --serial, --simulate or --link, or set VELK_LINK");
}

std::unique_ptr<Connection> open(const LinkOptions& link) {
  auto connection = std::make_unique<Connection>(link);
  if (connection->result() == 0) return connection;
  throw Failure(noLink, failureToOpen(link, connection->result(), connection->serial().TCP));
}

}  // namespace velk::cli
