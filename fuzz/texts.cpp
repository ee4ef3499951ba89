/// What users type: escapes, faults, calls and properties. Anything is taken or refused with a sentence; a
/// byte string that is written with escapes reads back the same.

#include <sstream>
#include <stdexcept>

#include "cli/shared/escapes.h"
#include "cli/velk/commands/method_call.h"
#include "simulator/faults.h"
#include "simulator/loopback_host.h"
#include "support/target.h"

namespace velk::fuzz {
namespace {

template <class Use>
void mayRefuse(Use use) {
  try {
    use();
  } catch (const std::invalid_argument& error) {
    require(error.what()[0] != '\0', "a refusal says why");
  }
}

void callOf(const std::string& text) {
  std::istringstream lines(text);
  std::string name;
  std::getline(lines, name);
  std::vector<std::string> words;
  for (std::string word; std::getline(lines, word);) words.push_back(word);
  const cli::MethodCall call = cli::parseCall(name, words);
  require(call.arguments.size() == call.method->count, "a call has all its arguments");
  for (std::size_t i = 0; i < call.method->count; ++i) {
    require(holds(call.arguments[i], call.method->slots[i].type), "an argument has its type");
  }
  require(cli::jsonOf(call, {.result = Byte{0}, .errorNumber = {}, .errorText = {}}).front() == '{',
          "a call can be told as JSON");
}

}  // namespace

void run(Input input) {
  const std::string text = input.rest();
  require(cli::unescaped(cli::escaped(text)) == text, "escapes read back the same");
  require(cli::unescaped(cli::shown(text)) == text, "a text that is shown reads back the same");
  mayRefuse([&] { cli::unescaped(text); });
  mayRefuse([&] {
    const simulator::Fault fault = simulator::parseFault(text);
    require(fault.first <= fault.last && fault.argument >= 0 && fault.argument <= fault.kind->highest,
            "a fault is within its ranges");
  });
  mayRefuse([&] { callOf(text); });
  mayRefuse([&] {
    simulator::LoopbackHost host;
    Serial serial(host);
    cli::setProperty(serial, text);
  });
}

}  // namespace velk::fuzz
