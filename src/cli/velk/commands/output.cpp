#include "cli/velk/things/output.h"

#include <algorithm>
#include <map>
#include <optional>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "parameters/layouts.h"
#include "values/digits.h"
#include "values/result.h"

namespace velk::cli {
namespace {

using parameters::Form;
using parameters::Layout;

struct OutputOptions : LinkedOptions {
  int number = 0;
  std::vector<std::string> words;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("N", number, "The output").required().range(1, lastOutput);
    line.option("set", words, "set MODE ITEM=VALUE...: change the mode and items, by their numbers")
        .typeName("[set MODE ITEM=VALUE...]");
  }
};

/// What an output is set to: a mode, and new characters for some of its items, by their numbers.
struct Assignments {
  const Layout& layout;
  std::map<std::size_t, char> items;
};

const Layout& layoutNamed(const std::string& mode) {
  if (const Layout* const layout = parameters::layoutOf(mode)) return *layout;
  std::string all;
  for (const Layout& layout : parameters::layouts()) all += " " + std::string(layout.code);
  throw std::invalid_argument("there is no mode \"" + mode + "\", but" + all);
}

std::pair<std::size_t, char> parseAssignment(const Layout& layout, const std::string& word) {
  const auto equals = word.find('=');
  const auto item = wholeNumber<std::size_t>(slice(word, 0, equals));
  if (equals == std::string::npos || !item || *item >= layout.items.size()) {
    throw std::invalid_argument("\"" + word + "\" is no ITEM=VALUE; " + std::string(layout.code) + " has " +
                                std::to_string(layout.items.size()) + " items, numbered from 0");
  }
  const std::string text = word.substr(equals + 1);
  const auto value = parseItem(layout.items[*item], text);
  if (!value) {
    throw std::invalid_argument("item " + std::to_string(*item) + " cannot be \"" + text + "\"");
  }
  return {*item, *value};
}

/// What the words behind an output say; nothing without words.
std::optional<Assignments> parseWords(const std::vector<std::string>& words) {
  if (words.empty()) return std::nullopt;
  if (words.front() != "set" || words.size() == 1) {
    throw std::invalid_argument("behind the output stands nothing or: set MODE ITEM=VALUE...");
  }
  Assignments wanted{.layout = layoutNamed(words[1]), .items = {}};
  for (std::size_t i = 2; i < words.size(); ++i) {
    const auto [item, value] = parseAssignment(wanted.layout, words[i]);
    wanted.items[item] = value;
  }
  return wanted;
}

/// Where the item for the stored number lies in a mode with a marker, which is written with that item alone.
std::optional<std::size_t> markingItem(const Layout& layout) {
  if (!layout.marked) return std::nullopt;
  const auto stored = std::find_if(layout.items.begin(), layout.items.end(),
                                   [](const parameters::Item& item) { return item.form == Form::stored; });
  if (stored == layout.items.end()) return std::nullopt;
  return stored - layout.items.begin();
}

/// Stores the mode, with its marker if it has one, and no other item.
void storeMode(Serial& serial, Byte number, const Layout& layout) {
  const auto marking = markingItem(layout);
  const Bytes items = marking ? Bytes(1, layout.items[*marking].set) : Bytes();
  const auto write = [&] {
    return serial.Ctl_Param("W", number, std::string(layout.code), items,
                            static_cast<std::int16_t>(items.size()), static_cast<Byte>(marking.value_or(0)));
  };
  expectDone(retry().write(write, [&] { return readOutputHead(serial, number).mode == layout.code; }),
             "setting the mode of output " + std::to_string(number));
}

/// All items in one write, those that are not given as they are. They have to be those of the mode.
void storeItems(Serial& serial, Output output, const Assignments& wanted) {
  if (output.mode != wanted.layout.code) {
    expectDone(readsBackDifferent, "reading back the mode of output " + std::to_string(output.number));
  }
  for (const auto& [item, value] : wanted.items) output.items.at(item) = value;
  const auto write = [&] { return serial.Ctl_Param("W", output.number, output.mode, Bytes(output.items)); };
  const auto stands = [&] {
    const Output now = readOutput(serial, output.number);
    return now.mode == output.mode && now.items == output.items;
  };
  expectDone(retry().write(write, stands), "writing output " + std::to_string(output.number));
}

void set(Serial& serial, Byte number, const Assignments& wanted) {
  if (readOutputHead(serial, number).mode != wanted.layout.code) storeMode(serial, number, wanted.layout);
  if (!wanted.items.empty()) storeItems(serial, readOutput(serial, number), wanted);
}

void print(const Output& output) {
  std::cout << titleOf(output) << ": "
            << (output.mode.empty() ? "no mode" : named(output.mode, std::string(meaningOfMode(output.mode))))
            << '\n';
  const Layout* const layout = parameters::layoutOf(output.mode);
  if (layout == nullptr || layout->items.empty()) return;
  Table table({"Item", "Place", "Value"});
  for (std::size_t i = 0; i < output.items.size(); ++i) {
    const parameters::Item& item = layout->items[i];
    table.add({std::to_string(i), placeOf(item), valueOf(item, output.items[i])});
  }
  table.print(std::cout);
}

int carryOutOutput(const OutputOptions& options) {
  const auto wanted = parseWords(options.words);
  const auto connection = open(options.link.required());
  const auto number = static_cast<Byte>(options.number);
  if (wanted) set(connection->serial(), number, *wanted);
  const Output output = readOutput(connection->serial(), number);
  if (options.json) {
    std::cout << jsonOf(output) << '\n';
  } else {
    print(output);
  }
  return success;
}

}  // namespace

void addOutput(const CommandLine& velk, Job& job) {
  addCommand<OutputOptions>(
      velk, job, "output", "Show an output, or set its mode and items",
      "  velk output --simulate 5\n"
      "  velk output 5 set T1 3=30 4=M\n"
      "  velk output 6 set RO\n"
      "\nItems are numbered and lie as docs/outputs.md tells; those that are not given stay.\n",
      carryOutOutput);
}

}  // namespace velk::cli
