#include "cli/velk/things/output.h"

#include <algorithm>
#include <charconv>
#include <map>

#include "cli/velk/commands/command.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "parameters/layouts.h"
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

/// What to change: item numbers and their new characters.
using Items = std::map<std::size_t, char>;

const Layout& layoutNamed(const std::string& mode) {
  if (const Layout* const layout = parameters::layoutOf(mode)) return *layout;
  std::string all;
  for (const Layout& layout : parameters::layouts()) all += " " + std::string(layout.code);
  throw std::invalid_argument("there is no mode \"" + mode + "\", but" + all);
}

std::pair<std::size_t, char> parseAssignment(const Layout& layout, const std::string& word) {
  const auto equals = std::min(word.find('='), word.size());
  std::size_t index = 0;
  const char* const end = word.data() + equals;
  const auto [stop, error] = std::from_chars(word.data(), end, index);
  if (error != std::errc() || stop != end || index >= layout.items.size() || equals == word.size()) {
    throw std::invalid_argument("\"" + word + "\" is no ITEM=VALUE; " + std::string(layout.code) + " has " +
                                std::to_string(layout.items.size()) + " items, numbered from 0");
  }
  const auto value = parseItem(layout.items[index], std::string_view(word).substr(equals + 1));
  if (!value)
    throw std::invalid_argument("item " + std::to_string(index) + " cannot be \"" + word.substr(equals + 1) +
                                "\"");
  return {index, *value};
}

/// Stores the mode alone. A mode with a marker gets it only with its item for the stored number.
void storeMode(Serial& serial, Byte number, const Layout& layout) {
  const auto stored = std::find_if(layout.items.begin(), layout.items.end(),
                                   [](const parameters::Item& item) { return item.form == Form::stored; });
  const bool marks = layout.marked && stored != layout.items.end();
  const Bytes items = marks ? Bytes(1, stored->set) : Bytes();
  const auto offset = static_cast<Byte>(marks ? stored - layout.items.begin() : 0);
  const auto write = [&] {
    return serial.Ctl_Param("W", number, std::string(layout.code), items,
                            static_cast<std::int16_t>(items.size()), offset);
  };
  expectDone(retry().write(write, [&] { return readOutputHead(serial, number).mode == layout.code; }),
             "setting the mode of output " + std::to_string(number));
}

/// All items in one write, those that are not given as they are. They have to be those of the mode.
void storeItems(Serial& serial, const Layout& layout, Output output, const Items& items) {
  if (output.mode != layout.code) {
    expectDone(readsBackDifferent, "reading back the mode of output " + std::to_string(output.number));
  }
  for (const auto& [index, value] : items) output.items.at(index) = value;
  const auto write = [&] { return serial.Ctl_Param("W", output.number, output.mode, Bytes(output.items)); };
  const auto stands = [&] {
    const Output now = readOutput(serial, output.number);
    return now.mode == output.mode && now.items == output.items;
  };
  expectDone(retry().write(write, stands), "writing output " + std::to_string(output.number));
}

void set(Serial& serial, Byte number, const std::vector<std::string>& words) {
  const Layout& layout = layoutNamed(words.at(1));
  Items items;
  for (std::size_t i = 2; i < words.size(); ++i)
    items.insert_or_assign(parseAssignment(layout, words[i]).first, parseAssignment(layout, words[i]).second);
  if (readOutputHead(serial, number).mode != layout.code) storeMode(serial, number, layout);
  if (!items.empty()) storeItems(serial, layout, readOutput(serial, number), items);
}

void print(const Output& output) {
  std::cout << titleOf(output) << ": "
            << (output.mode.empty() ? "no mode" : named(output.mode, std::string(meaningOfMode(output.mode))))
            << '\n';
  const Layout* const layout = parameters::layoutOf(output.mode);
  if (layout == nullptr || layout->items.empty()) return;
  Table table({"Item", "Place", "Value"});
  for (std::size_t i = 0; i < output.items.size(); ++i) {
    const auto& item = layout->items[i];
    table.add({std::to_string(i), placeOf(item), valueOf(item, output.items[i])});
  }
  table.print(std::cout);
}

int carryOutOutput(const OutputOptions& options) {
  const bool sets = !options.words.empty();
  if (sets && (options.words.front() != "set" || options.words.size() < 2)) {
    throw std::invalid_argument("behind the output stands nothing or: set MODE ITEM=VALUE...");
  }
  if (sets) layoutNamed(options.words.at(1));
  const auto connection = open(options.link.required());
  const auto number = static_cast<Byte>(options.number);
  if (sets) set(connection->serial(), number, options.words);
  const Output output = readOutput(connection->serial(), number);
  if (options.json) {
    std::cout << jsonOf(output) << '\n';
  } else {
    print(output);
  }
  return success;
}

}  // namespace

void addOutput(const CommandLine& velk, Run& run) {
  addCommand<OutputOptions>(
      velk, run, "output", "Show an output, or set its mode and items",
      "  velk output --simulate 5\n"
      "  velk output 5 set T1 3=30 4=M\n"
      "  velk output 6 set RO\n"
      "\nItems are numbered and lie as docs/outputs.md tells; those that are not given stay.\n",
      carryOutOutput);
}

}  // namespace velk::cli
