// Prints docs/results.md: every result code with its meaning and what to do about it. Fails when a code has
// no advice here, or an advice no code.

#include <array>
#include <iostream>
#include <stdexcept>

#include "component/result_codes.h"

namespace {

struct Advice {
  velk::Byte code;
  std::string_view text;
};

/// In the order of the codes.
constexpr std::array advices{
    Advice{0, "Nothing."},
    Advice{55, "Call `OpenCom` first, and look at its result."},
    Advice{56, "`CloseCom` first. If the port is not yours, end the program that holds it."},
    Advice{
        58,
        "Not connected: `OpenTCP` first. In use, or closed by the other side: `CloseTCP`, then `OpenTCP`."},
    Advice{84, "Nothing: the port is closed."},
    Advice{99,
           "Check the arguments: the call asks for nothing that can be read or written. From a module method "
           "also a link that is not open."},
    Advice{100,
           "Check the link with a `ReadCom`, whose result is more exact. If that works, check the arguments "
           "for values that do not fit a byte, and stored times that are not BCD."},
    Advice{101, R"(Pass "R" or "W", in capitals.)"},
    Advice{102, "Ask for fewer items, or start earlier."},
    Advice{103, "Compare with the range in [reference.md](reference.md)."},
    Advice{104,
           "Count the characters: outputs in [outputs.md](outputs.md), modules in [modules.md](modules.md), "
           "others in [reference.md](reference.md)."},
    Advice{105, "Compare each value with its range in [reference.md](reference.md)."},
    Advice{106, "Pass the serial number with its leading zeros."},
    Advice{107, "Try again after a second: the controller may be busy with another module."},
    Advice{111,
           "On reading: the output is not in use, its mode is none of 1 to 21. On writing: read the output "
           "first and use the mode it has, or one of those in [outputs.md](outputs.md)."},
    Advice{112, "Compare each address with its range in [reference.md](reference.md)."},
    Advice{113, "Pass 1 to 92."},
    Advice{115, "Pass 0 to 3."},
    Advice{116, R"(Pass "I" or "O", in capitals.)"},
    Advice{
        127,
        "Check that the serial number is that of the module, and that the module is on the bus and powered."},
    Advice{128, "As 127."},
    Advice{201,
           "Write again. If it stays, look whether somebody else writes to the controller at the same time."},
    Advice{251,
           "Set `FlgBreak`, so that the next request starts afresh, and try again. Check that nothing else "
           "talks on this line."},
    Advice{252,
           "From `OpenTCP`: check address and port. Else check cable, power, rate, mode (`FastCom`) and bus "
           "address (`SerAddress`); over TCP also the password."},
    Advice{253, "Try again, and read back what was written."},
    Advice{254, "Check that the mode of the interface is that of `FastCom`: echo or fast. Then as 251."},
    Advice{255, "As 127."},
};

constexpr std::string_view introduction =
    R"(<!-- Printed from the table of result codes; see CONTRIBUTING.md. -->
# Results and what to do about them

A method whose result is a byte tells with it how it went. `TranCeiv`, `ReadCom`, `WriteCom` and `TranceivTcp`
return a text: its first character is the status of the transaction, the data follow. Conversions return their
value.

| result | meaning | what to do |
|---|---|---|
)";

constexpr std::string_view closing = R"(
Any other value is a status that the controller gave. `velk-sim --fault` rehearses most of the failures of a link:
see `velk-sim --help`.

## Run-time errors

The conversions, `ModeToStr`, `TranCeiv`, `ReadCom` and `WriteCom` raise what other methods trap and turn into a
result (`ConvertErr`). A host sees the number in `Err.Number` and a sentence in `Err.Description`.

| number | meaning | what to do |
|---|---|---|
| 5 | an argument that the method cannot use, or a reply that is empty | check lengths and positions |
| 6 | a value does not fit its type | check ranges |
| 13 | a text is no number where one is needed | check the argument |
| 8018 | the serial port is not open | `OpenCom` first |
)";

void printTable() {
  const auto codes = velk::resultCodes();
  for (std::size_t i = 0; i < codes.size() || i < advices.size(); ++i) {
    if (i == codes.size() || i == advices.size() || codes[i].code != advices.at(i).code) {
      throw std::runtime_error("codes and advices part at row " + std::to_string(i));
    }
    std::cout << "| " << static_cast<int>(codes[i].code) << " | " << codes[i].meaning << " | "
              << advices.at(i).text << " |\n";
  }
}

}  // namespace

int main() {
  try {
    std::cout << introduction;
    printTable();
    std::cout << closing;
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "generate_results: " << error.what() << '\n';
    return 1;
  }
}
