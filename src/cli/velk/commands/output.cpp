#include "cli/velk/things/output.h"

#include <algorithm>
#include <optional>

#include "cli/shared/escapes.h"
#include "cli/shared/nearest.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/connection/retry.h"
#include "cli/velk/connection/transfer.h"
#include "cli/velk/things/assignment.h"
#include "cli/velk/things/output_names.h"
#include "parameters/layouts.h"
#include "values/result.h"

namespace velk::cli {
namespace {

using parameters::Form;
using parameters::Layout;

struct OutputOptions : ChangeOptions {
  std::string output;
  std::vector<std::string> words;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("OUTPUT", output, "The output: its number, its name or a beginning of it").required();
    line.option(
            "set", words,
            "set MODE ITEM=VALUE...: change the mode, and items by their numbers or places; without MODE\n"
            "items of the present one; or name TEXT: name it, in up to 16 characters")
        .typeName("[set [MODE] [ITEM=VALUE...] | name TEXT]");
  }
};

const Layout& layoutNamed(const std::string& mode) {
  if (const Layout* const layout = parameters::layoutOf(mode)) return *layout;
  std::vector<std::string> codes;
  std::string all = ", but";
  for (const Layout& layout : parameters::layouts()) all += " " + codes.emplace_back(layout.code);
  throw std::invalid_argument("there is no mode \"" + mode + "\"" + didYouMean(mode, codes, all));
}

/// What the words behind an output say.
struct WantedOutput {
  const Layout* layout = nullptr;   ///< of the mode; none: the present one
  std::vector<std::string> items;   ///< "ITEM=VALUE"
  std::optional<std::string> name;  ///< then nothing else is changed
};

WantedOutput parseOutputSet(const std::vector<std::string>& words) {
  WantedOutput wanted{.items = {words.begin() + 1, words.end()}};
  if (wanted.items.front().find('=') != std::string::npos) return wanted;
  wanted.layout = &layoutNamed(wanted.items.front());
  wanted.items.erase(wanted.items.begin());
  parseAssignments(*wanted.layout, wanted.items);  // told before the link is opened
  return wanted;
}

/// A name as `OutputNames` finds it again.
std::string parseName(const std::string& typed) {
  Bytes name = unescaped(typed);
  if (name.size() > outputNameSize) throw std::invalid_argument("the name has more than 16 characters");
  if (!name.empty() && name.find_first_not_of("0123456789") == Bytes::npos) {
    throw std::invalid_argument("a name of digits would be taken for the number of an output");
  }
  return name;
}

/// None without words.
std::optional<WantedOutput> parseOutputWords(const std::vector<std::string>& words) {
  if (words.empty()) return std::nullopt;
  if (words.front() == "set" && words.size() > 1) return parseOutputSet(words);
  if (words.front() == "name" && words.size() == 2) return WantedOutput{.name = parseName(words[1])};
  throw std::invalid_argument("expected after the output: nothing, name TEXT, or set [MODE] [ITEM=VALUE...]");
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
Byte writeItems(Serial& serial, Output output, const Layout& layout, const Assignments& items) {
  if (output.mode != layout.code) return readsBackDifferent;
  for (const auto& [item, value] : items) output.items.at(item) = value;
  return serial.Ctl_Param("W", output.number, output.mode, output.items);
}

/// An output that gets another mode: the items that are given, since the others are not known before.
Shown shownWith(const Output& output, const Layout& layout, const Assignments& items) {
  Details details{{"name", output.name}, {"mode", output.mode}};
  for (const Detail& detail : detailsOf(output)) {
    const auto isIt = [&](const auto& item) { return detail.name == titleOf(layout, item.first); };
    if (std::any_of(items.begin(), items.end(), isIt)) details.push_back(detail);
  }
  return {std::move(details), jsonOf(output)};
}

/// The same, before: with no items.
Shown planned(const Output& before, const Layout& layout, const Assignments& items) {
  Output after{.number = before.number, .name = before.name, .mode = std::string(layout.code), .items = {}};
  Shown shown{{{"name", after.name}, {"mode", after.mode}}, jsonOfHead(after)};
  for (const auto& [item, value] : items) {
    shown.details.push_back({titleOf(layout, item), valueOf(layout.items[item], value)});
  }
  return shown;
}

int changeMode(const OutputOptions& options, Serial& serial, const Output& before, const Layout& layout,
               const Assignments& items) {
  const auto write = [&] {
    storeMode(serial, before.number, layout);
    return items.empty() ? Byte{0} : writeItems(serial, readOutput(serial, before.number), layout, items);
  };
  return carryOut(options,
                  {.title = titleOf(before),
                   .before = shownWith(before, layout, {}),
                   .after = planned(before, layout, items),
                   .write = write,
                   .read = [&] { return shownWith(readOutput(serial, before.number), layout, items); }});
}

int changeItems(const OutputOptions& options, Serial& serial, const Output& before, const Layout& layout,
                const Assignments& items) {
  Output after = before;
  for (const auto& [item, value] : items) after.items.at(item) = value;
  return carryOut(options, {.title = titleOf(before),
                            .before = shownAs(before),
                            .after = shownAs(after),
                            .write = [&] { return writeItems(serial, before, layout, items); },
                            .read = [&] { return shownAs(readOutput(serial, before.number)); }});
}

int changeName(const OutputOptions& options, Serial& serial, Byte number, const Bytes& name) {
  const Output before = readOutputHead(serial, number);
  Output after = before;
  after.name = label(name);
  const auto shown = [](const Output& output) { return Shown{detailsOf(output), jsonOfHead(output)}; };
  const auto write = [&] {
    writeTransfer(serial, outputNameAt(number), padded(name, outputNameSize),
                  "the name of " + titleOf(before));
    return Byte{0};
  };
  return carryOut(options, {.title = "output " + std::to_string(number),
                            .before = shown(before),
                            .after = shown(after),
                            .write = write,
                            .read = [&] { return shown(readOutputHead(serial, number)); }});
}

int changeOutput(const OutputOptions& options, Serial& serial, Byte number, const WantedOutput& wanted) {
  if (wanted.name) return changeName(options, serial, number, *wanted.name);
  const Output before = readOutput(serial, number);
  if (wanted.layout == nullptr && before.mode.empty()) {
    throw std::invalid_argument(titleOf(before) + " has no mode yet: set MODE ITEM=VALUE...");
  }
  const Layout& layout = wanted.layout == nullptr ? layoutNamed(before.mode) : *wanted.layout;
  const Assignments items = parseAssignments(layout, wanted.items);
  const auto how = before.mode == layout.code ? changeItems : changeMode;
  return how(options, serial, before, layout, items);
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
  const auto wanted = parseOutputWords(options.words);
  outputNumberOf(options.output);  // a wrong one is told before the link is opened
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  const Byte number = OutputNames(serial).find(options.output);
  if (wanted) return changeOutput(options, serial, number, *wanted);
  const Output output = readOutput(serial, number);
  if (options.json) {
    std::cout << jsonOf(output) << '\n';
  } else {
    print(output);
  }
  return success;
}

}  // namespace

void addOutput(const CommandLine& velk, Job& job) {
  addCommand<OutputOptions>(velk, job, "output", "Show an output, set its mode and items, or name it",
                            "  velk output --simulate 5\n"
                            "  velk output hall set T1 3=30 16:0=M --dry-run\n"
                            "  velk output 5 set 18.low=2\n"
                            "  velk output 6 set RO\n"
                            "  velk output 5 name \"Hall\"\n"
                            "\nItems are numbered and lie as docs/outputs.md tells; those that are not given "
                            "stay. Where a number is\n"
                            "one item's and another's place, item:4 or place:4 tells which.\n",
                            carryOutOutput);
}

}  // namespace velk::cli
