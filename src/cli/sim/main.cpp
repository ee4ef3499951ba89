#include <algorithm>
#include <chrono>
#include <iostream>
#include <limits>
#include <mutex>
#include <optional>

#include "cli/house/backup_file.h"
#include "cli/shared/command_line.h"
#include "cli/shared/completion.h"
#include "cli/shared/escapes.h"
#include "cli/shared/failure.h"
#include "cli/shared/files.h"
#include "cli/shared/guarded.h"
#include "cli/shared/interrupts.h"
#include "cli/shared/manual.h"
#include "cli/shared/native_text.h"
#include "cli/shared/password.h"
#include "cli/sim/adapter.h"
#include "cli/sim/serve.h"
#include "cli/sim/served_house.h"
#include "cli/sim/server.h"
#include "cli/sim/web/page_site.h"
#include "simulator/controller.h"
#include "simulator/ethernet_sessions.h"
#include "simulator/serial_sessions.h"

/// The simulated controller behind TCP ports and serial lines.
namespace velk::cli {
namespace {

using simulator::Controller;
using simulator::SessionOptions;

constexpr const char* description =
    "A simulated controller behind TCP ports and serial lines.\n\n"
    "Prints one line for each interface (\"tcp Q 127.0.0.1:PORT\", \"tcp S ...\", \"echo DEVICE\",\n"
    "\"fast DEVICE\"), \"web http://127.0.0.1:PORT/\" for the page, and then \"ready\". Without an "
    "interface: --tcp 0. Ends on Ctrl-C, SIGTERM and\n"
    "SIGHUP.";

constexpr const char* examples =
    "\nExamples:\n"
    "  velk-sim --tcp 8445 --trace\n"
    "  velk-sim --tcp 8445 --web 8080\n"
    "  velk-sim --tcp-q 0 --tcp-s 0 --echo --fast\n"
    "  velk-sim --tcp 8445 --password 1234 --house house.json --save house.json\n"
    "  velk-sim --echo --latency 16\n"
    "  velk-sim --fast --fault status=7@3 --fault late=1500@5- --for 60\n";

/// Until a signal comes.
constexpr double forEver = std::numeric_limits<double>::infinity();

struct Options {
  std::vector<std::uint16_t> portsQ;
  std::vector<std::uint16_t> portsS;
  std::string address = "127.0.0.1";
  std::string password;
  std::vector<std::string> echo;
  std::vector<std::string> fast;
  int baud = 9600;
  int latency = -1;  ///< ms; negative: no delay of any kind
  int busAddress = 2;
  std::string house;
  std::string save;
  bool trace = false;
  std::vector<std::string> faults;
  int web = -1;  ///< port; negative: no page
  std::string webAddress = "127.0.0.1";
  double seconds = forEver;
};

std::string describeFaults() {
  std::string text =
      "\nFaults:\nEach is KIND[=N]@WHICH; WHICH is a request (3), a range (2-4, 5-), 0 for the login or *\n"
      "for all requests; each connection counts its own from 1. The kinds for modules count the\n"
      "requests to modules, from 1 over all connections:\n";
  for (const auto& kind : simulator::faultKinds()) {
    std::string name(kind.name);
    if (!kind.argument.empty()) name += (kind.fallback < 0 ? "=" : "[=") + std::string(kind.argument);
    if (kind.fallback >= 0 && !kind.argument.empty()) name += "]";
    name.resize(std::max<std::size_t>(name.size() + 2, 18), ' ');
    text += "  " + name + std::string(kind.help) + "\n";
  }
  return text;
}

void declare(const CommandLine& line, Options& options) {
  line.option("--tcp,--tcp-q", options.portsQ, "Serve kind Q on a TCP port (0: any free one); repeatable")
      .range(0, 65535)
      .typeName("PORT")
      .oneValueEach();
  line.option("--tcp-s", options.portsS, "Serve kind S on a TCP port; repeatable")
      .range(0, 65535)
      .typeName("PORT")
      .oneValueEach();
  line.option("--bind", options.address, "Address of the TCP ports, in digits").showDefault();
  line.option("--password", options.password, "Password of kind Q, four characters (none: four zero bytes)");
  line.option("--echo", options.echo, "Serve echo mode on a serial device, or on a new pseudo terminal")
      .typeName("[DEVICE]")
      .valueOptional();
  line.option("--fast", options.fast, "Serve fast mode likewise").typeName("[DEVICE]").valueOptional();
  line.option("--baud", options.baud, "Rate of serial devices in bit/s").showDefault();
  line.option("--latency", options.latency,
              "Hold replies back, as USB adapters and networks do; new pseudo terminals then keep to --baud")
      .typeName("MS")
      .range(0, 1000);
  line.option("--address", options.busAddress, "Bus address of the controller").showDefault().range(0, 255);
  line.option("--house", options.house, "Start from a backup file, else from a small house").typeName("FILE");
  line.option("--save", options.save, "Save the house at the end, as a backup file").typeName("FILE");
  line.flag("--trace", options.trace, "Print each request and its reply");
  line.option("--fault", options.faults, "Misbehave at chosen requests; repeatable")
      .typeName("KIND[=N]@WHICH")
      .oneValueEach();
  const Option web = line.option("--web", options.web,
                                 "Show the house on a page for a browser at this port (0: any free one)")
                         .range(0, 65535)
                         .typeName("PORT");
  line.option("--web-open-to-network", options.webAddress,
              "Serve the page at this address in place of 127.0.0.1: whoever reaches it can change the\n"
              "house and set faults, without a password")
      .typeName("ADDRESS")
      .needs(web);
  line.option("--for", options.seconds, "End after so many seconds (0: at once)").typeName("SECONDS");
  line.version("velk-sim " VELK_VERSION);
  line.footer(examples + describeFaults());
}

/// For completion.
std::optional<Candidates> valuesAt(const Place& place) {
  if (place.option.value != "KIND[=N]@WHICH") {
    const bool isFile = place.option.value == "FILE" || place.option.value == "[DEVICE]";
    return isFile ? std::nullopt : std::optional<Candidates>(std::in_place);
  }
  Candidates kinds;
  for (const auto& kind : simulator::faultKinds()) {
    kinds.push_back({std::string(kind.name) + (kind.argument.empty() ? "@" : "="), std::string(kind.help)});
  }
  return kinds;
}

void print(const std::string& line) {
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::cout << line << std::endl;  // NOLINT(performance-avoid-endl): programs wait for the lines
}

SessionOptions sessionOptions(const Options& options) {
  SessionOptions result;
  result.busAddress = static_cast<Byte>(options.busAddress);
  result.password = padded(checkedPassword(bytesOfUtf8(options.password)), link::passwordLength, '\0');
  for (const std::string& fault : options.faults) result.faults.add(fault);
  if (options.trace) result.trace = print;
  return result;
}

template <class Session>
simulator::MakePeer makerOf(Controller& controller, SessionOptions options, std::string interface) {
  options.interface = std::move(interface);
  return
      [&controller, options = std::move(options)] { return std::make_unique<Session>(controller, options); };
}

/// The same behind an adapter or a network, if there is to be a delay.
simulator::MakePeer delayed(const simulator::MakePeer& makePeer, int latency,
                            std::chrono::microseconds byteTime = {}) {
  if (latency < 0) return makePeer;
  const Delay delay{.latency = std::chrono::milliseconds(latency), .byteTime = byteTime};
  return [=] { return std::make_unique<DelayedPeer>(makePeer(), delay); };
}

/// A start bit, eight bits of data, a stop bit.
std::chrono::microseconds byteTimeAt(int baud) {
  return std::chrono::microseconds(10'000'000 / std::max(baud, 1));
}

/// The interfaces that are served: "tcp Q 127.0.0.1:8445".
using Places = std::vector<std::string>;

void announce(Places& places, const std::string& interface, const std::string& place) {
  places.push_back(interface + ' ' + place);
  print(places.back());
}

/// "127.0.0.1:8445", "[::1]:8445".
std::string withPort(const std::string& address, std::uint16_t port) {
  const bool isIpv6 = address.find(':') != std::string::npos;
  return (isIpv6 ? '[' + address + ']' : address) + ':' + std::to_string(port);
}

void listen(Server& server, Places& places, const std::string& interface, const std::string& address,
            const std::vector<std::uint16_t>& ports, const simulator::MakePeer& makePeer) {
  for (const std::uint16_t port : ports) {
    announce(places, interface, withPort(address, server.listen(address, port, makePeer)));
  }
}

void serveSerial(Server& server, Places& places, const std::string& interface,
                 const std::vector<std::string>& devices, const Options& options,
                 const simulator::MakePeer& makePeer) {
  for (const std::string& device : devices) {
    if (device.empty()) {
      announce(places, interface,
               server.servePseudoLine(delayed(makePeer, options.latency, byteTimeAt(options.baud))));
    } else {
      server.serveDevice(device, options.baud, delayed(makePeer, options.latency));
      announce(places, interface, device);
    }
  }
}

void waitForTheEnd(double seconds) {
  using std::chrono::steady_clock;
  const auto start = steady_clock::now();
  const auto rest = [&] {
    return seconds - std::chrono::duration<double>(steady_clock::now() - start).count();
  };
  while (!isInterrupted() && rest() > 0) {
    const std::chrono::duration<double> longest(
        std::min(rest(), std::chrono::duration<double>(longestWait).count()));
    waitForInterrupt(std::chrono::ceil<std::chrono::milliseconds>(longest));
  }
}

/// The house to start with: that of a file, or a small one.
Backup startOf(const std::string& file) {
  return file.empty() ? smallHouse() : loadBackup(file, "velk-sim");
}

/// The page for a browser.
class Page {
 public:
  Page(const Options& options, ServedHouse& house, simulator::Watch& watch, Places places)
      : site_(house, watch, std::move(places)),
        server_(options.webAddress, static_cast<std::uint16_t>(options.web), site_) {
    print("web http://" + withPort(server_.address(), server_.port()) + '/' +
          (server_.isOnAllAddresses() ? " (and at this machine's other addresses)" : ""));
  }

 private:
  web::PageSite site_;
  web::HttpServer server_;
};

/// Serves until the end. Throws `Failure` with `noLink` when an interface cannot be opened.
void serveAll(const Options& options, const SessionOptions& session, ServedHouse& house) {
  Controller& controller = house.controller();
  Server server;
  std::optional<Page> page;
  try {
    Places places;
    listen(server, places, "tcp Q", options.address, options.portsQ,
           delayed(makerOf<simulator::EthernetQSession>(controller, session, "tcp Q"), options.latency));
    listen(server, places, "tcp S", options.address, options.portsS,
           delayed(makerOf<simulator::EthernetSSession>(controller, session, "tcp S"), options.latency));
    serveSerial(server, places, "echo", options.echo, options,
                makerOf<simulator::EchoSession>(controller, session, "echo"));
    serveSerial(server, places, "fast", options.fast, options,
                makerOf<simulator::FastSession>(controller, session, "fast"));
    if (session.watch != nullptr) page.emplace(options, house, *session.watch, std::move(places));
  } catch (const std::invalid_argument&) {
    throw;  // the command line is wrong
  } catch (const std::exception& error) {
    throw Failure(noLink, error.what());
  }
  print("ready");
  waitForTheEnd(options.seconds);
}

void run(Options& options) {
  if (!(options.seconds >= 0)) {
    throw std::invalid_argument("--for takes a number of seconds from 0 on");
  }
  if (options.portsQ.empty() && options.portsS.empty() && options.echo.empty() && options.fast.empty()) {
    options.portsQ.push_back(0);
  }
  const auto watch = options.web < 0 ? nullptr : std::make_unique<simulator::Watch>();
  SessionOptions session = sessionOptions(options);
  session.watch = watch.get();
  ServedHouse house(startOf(options.house), session.faults, session.trace, session.watch);
  std::optional<OutputFile> file;
  if (!options.save.empty()) file.emplace(options.save);
  serveAll(options, session, house);
  if (file) file->write(textOf(house.saved()));
}

int carryOut(int argc, char** argv) {
  const CommandLine line("velk-sim", description);
  Options options;
  declare(line, options);
  const auto shape = [&line] { return line.shape(); };
  if (const auto printed = printManual(shape, "VelkCom " VELK_VERSION, argc, argv)) return *printed;
  if (const auto answered = answerShell(shape, argc, argv, valuesAt)) return *answered;
  const auto status = line.parse(argc, argv);
  if (!status) {
    watchInterrupts();
    run(options);
  }
  return status.value_or(success);
}

}  // namespace
}  // namespace velk::cli

int main(int argc, char** argv) {
  return velk::cli::withUtf8(argc, argv, [](int count, char** words) {
    return velk::cli::guarded("velk-sim", [&] { return velk::cli::carryOut(count, words); });
  });
}
