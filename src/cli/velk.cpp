#include <CLI/CLI.hpp>
#include <iostream>

#include "cli/call.h"
#include "cli/connection.h"
#include "cli/escapes.h"
#include "component/result_codes.h"

/// The component's methods from the command line.
namespace velk::cli {
namespace {

constexpr const char* callNotes =
    "\nArguments stand by position or, behind those, as NAME=VALUE. In a text \\xNN is a byte and \\\\ a\n"
    "backslash; one that starts with a minus is given as NAME=VALUE or behind \"--\". Without a link the\n"
    "methods that need none can be called. The result stands on the first line, then each by-reference\n"
    "argument as NAME=VALUE. With --json each character of a text is one byte, U+0000 to U+00FF.\n"
    "\nExit status:\n"
    "  0  result 0, or a value; for transactions: status 0\n"
    "  1  any other result or status\n"
    "  2  the command line is wrong\n"
    "  3  the method raised a run-time error\n"
    "  4  the link could not be opened\n"
    "\nExamples:\n"
    "  velk call --simulate Ctl_Param R 5 \"\"\n"
    "  velk call --tcp 192.168.1.20:8445 --password 1234 Ctl_Param R 5 Mode= --json\n"
    "  velk call --serial /dev/ttyUSB0 ReadCom 7 0 2 V\n"
    "  velk call --serial COM3 --fast WriteCom 2 5 19 V Data='\\x1e\\x3c'\n"
    "  velk call DECtoBCD 59\n"
    "  velk call --simulate SoortETH\n";

struct CallOptions {
  LinkOptions link;
  std::string password;
  int busAddress = 2;
  std::vector<std::string> properties;
  std::string method;
  std::vector<std::string> arguments;
  bool json = false;
};

void declare(CLI::App& app, CallOptions& options) {
  LinkOptions& link = options.link;
  auto* const tcp = app.add_option("--tcp", link.tcp, "Open a TCP link first")->type_name("HOST:PORT");
  auto* const serial =
      app.add_option("--serial", link.serial, "Open a serial link first")->type_name("DEVICE");
  auto* const simulate =
      app.add_flag("--simulate", link.simulate, "Call a simulated controller of a small house");
  tcp->excludes(serial)->excludes(simulate);
  serial->excludes(simulate);
  app.add_option("--password", options.password, "Password of the TCP link")->needs(tcp);
  app.add_option("--address", options.busAddress, "Bus address of the controller")
      ->check(CLI::Range(0, 255))
      ->capture_default_str();
  app.add_option("--baud", link.baud, "Rate of the serial link in bit/s")
      ->needs(serial)
      ->capture_default_str();
  app.add_flag("--fast", link.fast, "Fast mode on the serial link, not echo mode")->needs(serial);
  app.add_option("--set", options.properties, "Set a property before the call; repeatable")
      ->type_name("NAME=VALUE")
      ->allow_extra_args(false);
  app.add_flag("--json", options.json, "Print one JSON object");
  app.add_option("METHOD", options.method, "A method or property, see \"velk methods\"")->required();
  app.add_option("ARGUMENTS", options.arguments, "Its arguments");
  app.footer(callNotes);
}

int call(CallOptions& options) {
  Call call = parseCall(options.method, options.arguments);
  options.link.password = unescaped(options.password);
  options.link.busAddress = static_cast<Byte>(options.busAddress);
  Connection connection(options.link);
  if (connection.result() != 0) {
    std::cerr << "velk: the link cannot be opened: " << static_cast<int>(connection.result()) << " ("
              << meaningOf(connection.result()) << ")\n";
    return noLink;
  }
  for (const std::string& property : options.properties) setProperty(connection.serial(), property);
  const CallResult result = perform(connection.serial(), call);
  if (options.json) {
    std::cout << jsonOf(call, result) << '\n';
  } else if (result.errorNumber) {
    std::cerr << "velk: run-time error " << *result.errorNumber << ": " << result.errorText << '\n';
  } else {
    std::cout << textOf(call, result);
  }
  return exitStatusOf(call, result);
}

int main(int argc, char** argv) {
  CLI::App app("Calls the methods of the component.", "velk");
  app.require_subcommand(1);
  CallOptions options;
  CLI::App* const callCommand = app.add_subcommand("call", "Call a method, or read a property");
  declare(*callCommand, options);
  const CLI::App* const methodsCommand = app.add_subcommand("methods", "List all methods and properties");
  app.footer("\nExamples:\n  velk methods\n  velk call --help\n  velk call --simulate Ctl_Param R 5 \"\"\n");
  try {
    app.parse(argc, argv);
    if (methodsCommand->parsed()) std::cout << listOfMethods();
    return callCommand->parsed() ? call(options) : success;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? success : wrongUsage;
  } catch (const std::invalid_argument& error) {
    std::cerr << "velk: " << error.what() << '\n';
    return wrongUsage;
  }
}

}  // namespace
}  // namespace velk::cli

int main(int argc, char** argv) {
  return velk::cli::main(argc, argv);
}
