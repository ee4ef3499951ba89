#include "cli/velk/things/preset.h"

#include <optional>
#include <stdexcept>

#include "cli/shared/escapes.h"
#include "cli/velk/commands/change.h"
#include "cli/velk/things/typed_entry.h"
#include "values/digits.h"

namespace velk::cli {
namespace {

struct PresetOptions : ChangeOptions {
  std::string number;
  std::vector<std::string> words;
  std::string name;
  std::string delay;
  std::string simulation;
  std::optional<Option> nameOption;

  void declare(const CommandLine& line) {
    ChangeOptions::declare(line);
    line.option("N", number, "The preset, 1 to 92; or copy, in front of the one that is copied and the other")
        .required();
    line.option("set", words,
                "set OUTPUT=A:B:C:D...: change it, where what is left out stays; or clear: empty it")
        .typeName("[set [OUTPUT=A:B:C:D...] | clear]");
    nameOption = line.option("--name", name, "set, copy: its text, up to 16 characters").typeName("TEXT");
    line.option("--delay", delay, "set, copy: one delay or two, 5 to 200 each, together 254 at most")
        .typeName("A[,B]");
    line.option("--simulation", simulation, "set, copy: whether it takes part in the simulation")
        .oneOf({"yes", "no"});
  }
};

struct Delays {
  Byte first = 0;
  Byte second = 0;  ///< 0 for none
};

/// What the words behind "preset" say.
struct WantedPreset {
  Byte number = 0;
  bool changes = false;
  bool clears = false;
  std::optional<Byte> source;   ///< the preset that is copied
  std::optional<Bytes> stored;  ///< the text
  std::optional<Delays> delays;
  std::optional<bool> simulated;
  std::vector<TypedEntry> records;
};

Byte parsePresetNumber(const std::string& typed) {
  const auto number = wholeNumber<int>(typed);
  if (!number) {
    throw std::invalid_argument("\"" + typed + "\" is no preset's number, 1 to " +
                                std::to_string(lastPreset) + "; \"velk presets\" lists those in use");
  }
  if (*number < 1 || *number > lastPreset) {
    throw std::invalid_argument("there is no preset " + typed + ", but 1 to " + std::to_string(lastPreset));
  }
  return static_cast<Byte>(*number);
}

Delays parseDelays(const std::string& typed) {
  const std::string_view text = typed;
  const auto comma = text.find(',');
  const auto one = [&](std::string_view part) {
    return numberIn(typed, part, "a delay", timed::shortestDelay, timed::longestDelay);
  };
  Delays delays{.first = one(text.substr(0, comma))};
  if (comma != std::string_view::npos) delays.second = one(text.substr(comma + 1));
  if (delays.first + delays.second >= timed::noDelay) {
    throw std::invalid_argument("\"" + typed + "\": two delays are " + std::to_string(timed::noDelay - 1) +
                                " together at most");
  }
  return delays;
}

void requireRecord(Byte output) {
  if (output >= firstPresetRecord) return;
  throw std::invalid_argument("a preset has the records 3 to 99, but none for output " +
                              std::to_string(output));
}

TypedEntry parseRecord(const std::string& typed) {
  auto entry = parseEntry(typed, presetRecordSize);
  if (!entry) {
    throw std::invalid_argument("\"" + typed +
                                "\" is no record: an output with four numbers, 0 to 255, as in "
                                "\"Kitchen=3:255:2:0\"");
  }
  // Programs that write a preset whole mean by a 1 that the record stays as it is.
  if (entry->bytes.find('\x01') != Bytes::npos) {
    throw std::invalid_argument("\"" + typed + "\": the numbers of a record are 0 and 2 to 255; 1 is none");
  }
  if (const auto output = outputNumberOf(entry->output)) requireRecord(*output);
  return *std::move(entry);
}

Bytes parsePresetText(const std::string& typed) {
  const Bytes text = unescaped(typed);
  if (text.size() > presetTextSize) throw std::invalid_argument("the name has more than 16 characters");
  return padded(text, presetTextSize);
}

/// Number and what is done: "3 set", "3 clear", "copy 3 4", "3". The rest of the words are records.
WantedPreset parseDeed(const PresetOptions& options) {
  const std::vector<std::string>& words = options.words;
  if (options.number == "copy") {
    if (words.size() != 2)
      throw std::invalid_argument("behind copy stand two presets: the one that is copied and the other");
    WantedPreset copy{
        .number = parsePresetNumber(words[1]), .changes = true, .source = parsePresetNumber(words[0])};
    if (copy.source == copy.number) throw std::invalid_argument("a preset is not copied to itself");
    return copy;
  }
  WantedPreset wanted{.number = parsePresetNumber(options.number), .changes = !words.empty()};
  if (words.empty()) return wanted;
  wanted.clears = words.front() == "clear" && words.size() == 1;
  if (words.front() != "set" && !wanted.clears)
    throw std::invalid_argument("expected after the preset: nothing, clear, or set [OUTPUT=A:B:C:D...]");
  for (std::size_t i = 1; i < words.size(); ++i) wanted.records.push_back(parseRecord(words[i]));
  return wanted;
}

WantedPreset parsePresetWords(const PresetOptions& options) {
  WantedPreset wanted = parseDeed(options);
  if (options.nameOption->isGiven()) wanted.stored = parsePresetText(options.name);
  if (!options.delay.empty()) wanted.delays = parseDelays(options.delay);
  if (!options.simulation.empty()) wanted.simulated = options.simulation == "yes";
  const bool isGiven = wanted.stored || wanted.delays || wanted.simulated;
  if (isGiven && (!wanted.changes || wanted.clears))
    throw std::invalid_argument("--name, --delay and --simulation stand beside set or copy");
  const bool isNothing =
      wanted.changes && !wanted.clears && !wanted.source && !isGiven && wanted.records.empty();
  if (isNothing) throw std::invalid_argument("set takes --name, --delay, --simulation or OUTPUT=A:B:C:D...");
  return wanted;
}

void setRecords(Preset& preset, const std::vector<TypedEntry>& records, OutputNames& names) {
  std::map<Byte, Bytes> typed;
  for (const TypedEntry& entry : records) {
    const Byte output = names.find(entry.output);
    requireRecord(output);
    if (!typed.emplace(output, entry.bytes).second)
      throw std::invalid_argument("record " + std::to_string(output) + " is set twice");
  }
  for (const auto& [number, bytes] : typed) {
    preset.records.erase(number);
    if (bytes != Bytes(presetRecordSize, '\0')) preset.records.emplace(number, bytes);
  }
}

/// The preset that is copied, with the number of the other.
Preset copyOf(Serial& serial, Byte source, Byte number) {
  Preset copy = readPreset(serial, source);
  if (!isUsed(copy)) throw std::invalid_argument(titleOf(copy) + " is empty: there is nothing to copy");
  copy.number = number;
  return copy;
}

/// The preset as it will be. Throws std::invalid_argument with a sentence for one that cannot be.
Preset presetWith(Serial& serial, const WantedPreset& wanted, const Preset& before, OutputNames& names) {
  if (wanted.clears) return {.number = before.number};
  Preset after = wanted.source ? copyOf(serial, *wanted.source, before.number) : before;
  if (wanted.stored) after.stored = *wanted.stored;
  if (wanted.delays) {
    after.delay1 = wanted.delays->first;
    after.delay2 = wanted.delays->second;
  }
  if (wanted.simulated) after.simulated = *wanted.simulated;
  setRecords(after, wanted.records, names);
  if (after.delay1 < timed::shortestDelay || after.delay1 > timed::longestDelay) {
    throw std::invalid_argument(titleOf(after) + " has no delay from 5 to 200 yet: give --delay A[,B]");
  }
  return after;
}

int changePreset(const PresetOptions& options, Serial& serial, const WantedPreset& wanted) {
  OutputNames names(serial);
  // The records take a hundred requests: they are read where they matter.
  const bool needsRecords = wanted.clears || wanted.source || !wanted.records.empty();
  const Records records = needsRecords ? Records::all : Records::withoutMost;
  const auto shown = [&](const Preset& preset) {
    return needsRecords ? Shown{detailsOf(preset, names), jsonOf(preset, names)}
                        : Shown{detailsOfHead(preset), jsonOfHead(preset)};
  };
  const Preset before = readPreset(serial, wanted.number, records);
  const Preset after = presetWith(serial, wanted, before, names);
  const auto write = [&] {
    writePreset(serial, before, after);
    return Byte{0};
  };
  return carryOut(
      options,
      {.title = titleOf(after), .before = shown(before), .after = shown(after), .write = write, .read = [&] {
         return shown(readPreset(serial, wanted.number, records));
       }});
}

void print(const Preset& preset, OutputNames& names) {
  std::cout << named(titleOf(preset), textOf(preset)) << ": delay " << int{preset.delay1}
            << (preset.delay2 == 0 ? "" : " and " + std::to_string(preset.delay2))
            << (preset.simulated ? ", in the simulation" : "") << '\n';
  Table table({"Record", "Output", "Bytes"});
  for (const auto& [number, bytes] : preset.records) {
    table.add({std::to_string(number), names.of(number), numbers(bytes)});
  }
  table.print(std::cout, "all its records are zero");
}

int carryOutPreset(const PresetOptions& options) {
  const WantedPreset wanted = parsePresetWords(options);
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  if (wanted.changes) return changePreset(options, serial, wanted);
  const Preset preset = readPreset(serial, wanted.number);
  OutputNames names(serial);
  if (options.json) {
    std::cout << jsonOf(preset, names) << '\n';
  } else {
    print(preset, names);
  }
  return success;
}

}  // namespace

void addPreset(const CommandLine& velk, Job& job) {
  addCommand<PresetOptions>(
      velk, job, "preset", "Show a preset with its records, set, copy or clear it",
      "  velk preset --simulate 2\n"
      "  velk preset 2 set --name Dinner --delay 10,40 --dry-run\n"
      "  velk preset 2 set \"Kitchen ceiling=3:255:2:0\" 7=7:0:4:2 --simulation yes\n"
      "  velk preset copy 2 4 --name Supper\n"
      "  velk preset 4 clear\n"
      "\nRecords are numbered by address, 3 to 99, as outputs are: an output is its number, its name or a\n"
      "beginning of it. What the four bytes of a record do is for the controller to say, so copy them from\n"
      "a preset that does the same; 0:0:0:0 takes a record away. What is left out stays as it is.\n",
      carryOutPreset);
}

}  // namespace velk::cli
