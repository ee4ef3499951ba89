#include "cli/commands/command.h"
#include "cli/escapes.h"

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

int carryOutInfraredText(const InfraredTextOptions& options) {
  constexpr std::size_t longest = 16;
  const Bytes text = unescaped(options.text);
  if (text.size() > longest) throw std::invalid_argument("the text has more than 16 characters");
  const auto connection = open(options.link.required());
  expectDone(connection->serial().Ctl_IRText("W", static_cast<Byte>(options.number), text),
             "writing infrared text " + std::to_string(options.number));
  if (options.json) std::cout << Json{{"text", options.number}, {"value", utf8OfBytes(text)}} << '\n';
  return success;
}

}  // namespace

void addInfraredText(const CommandLine& velk, Run& run) {
  addCommand<InfraredTextOptions>(velk, run, "ir-text", "Store an infrared text",
                                  "  velk ir-text --simulate 3 \"Television\"\n", carryOutInfraredText);
}

}  // namespace velk::cli
