#include "cli/velk/commands/command.h"
#include "cli/velk/commands/method_call.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/shared_link.h"
#include "cli/velk/connection/silent_line.h"

namespace velk::cli {
namespace {

constexpr const char* notes =
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

struct CallOptions : LinkedOptions {
  std::vector<std::string> properties;
  std::string method;
  std::vector<std::string> arguments;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("--set", properties, "Set a property before the call; repeatable")
        .typeName("NAME=VALUE")
        .oneValueEach();
    line.option("METHOD", method, "A method or property, see \"velk methods\"").required();
    line.option("ARGUMENTS", arguments, "Its arguments");
  }
};

/// The result stands as it is; why nothing came back on a serial line is said beside it.
void explainLoss(const LinkOptions& link, Connection& connection, const MethodCall& call,
                 const CallResult& result) {
  if (link.serial.empty() || result.errorNumber || !isLost(codeOf(call, result.result).value_or(0))) return;
  if (const std::string reason = whySilent(link, connection.host()); !reason.empty()) {
    std::cerr << "velk: " << link.serial << ": " << reason << '\n';
  }
}

/// What all commands share is left as it is.
void checkShared(const CallOptions& options, const MethodCall& call) {
  if (SharedLink::current() == nullptr) return;
  const bool opens = call.method->name.starts_with("Open") || call.method->name.starts_with("Close");
  if (!opens && options.properties.empty()) return;
  throw std::invalid_argument(
      "the link is the same for all lines: none opens or closes it, nor sets its properties");
}

int carryOutCall(const CallOptions& options) {
  MethodCall call = parseCall(options.method, options.arguments);
  checkShared(options, call);
  const LinkOptions link = options.link.orNone();
  const auto connection = open(link);
  for (const std::string& property : options.properties) setProperty(connection->serial(), property);
  const CallResult result = perform(connection->serial(), call);
  if (options.json) {
    std::cout << jsonOf(call, result) << '\n';
  } else if (result.errorNumber) {
    std::cerr << "velk: run-time error " << *result.errorNumber << ": " << result.errorText << '\n';
  } else {
    std::cout << textOf(call, result);
  }
  explainLoss(link, *connection, call, result);
  return exitStatusOf(call, result);
}

}  // namespace

void addCall(const CommandLine& velk, Job& job) {
  addCommand<CallOptions>(velk, job, "call", "Call a method, or read a property", "", carryOutCall)
      .footer(notes);
}

}  // namespace velk::cli
