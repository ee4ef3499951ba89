#include "cli/shared/escapes.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "parameters/ctl_irtext.h"

namespace velk::cli {
namespace {

struct InfraredTextOptions : LinkedOptions {
  int number = 0;
  std::string text;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("N", number, "Number of the text").required().range(0, 63);
    line.option("TEXT", text, "Up to 16 characters, with \\xNN for a byte").required();
  }
};

constexpr std::size_t longest = 16;

Bytes readText(Serial& serial, Byte number) {
  return readTransfer(serial, parameters::infraredText(number), longest,
                      "infrared text " + std::to_string(number));
}

int carryOutInfraredText(const InfraredTextOptions& options) {
  const Bytes text = unescaped(options.text);
  if (text.size() > longest) throw std::invalid_argument("the text has more than 16 characters");
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  const auto number = static_cast<Byte>(options.number);
  const auto stands = [&] { return readText(serial, number) == padded(text, longest); };
  expectDone(retry().write([&] { return serial.Ctl_IRText("W", number, text); }, stands),
             "writing infrared text " + std::to_string(number));
  if (options.json) std::cout << Json{{"text", options.number}, {"value", utf8OfBytes(text)}} << '\n';
  return success;
}

}  // namespace

void addInfraredText(const CommandLine& velk, Job& job) {
  addCommand<InfraredTextOptions>(velk, job, "ir-text", "Store an infrared text",
                                  "  velk ir-text --simulate 3 \"Television\"\n", carryOutInfraredText);
}

}  // namespace velk::cli
