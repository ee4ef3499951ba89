#include "cli/velk/completion/values.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "cli/velk/backup/describe.h"
#include "cli/velk/connection/houses.h"
#include "cli/velk/connection/link_choice.h"
#include "cli/velk/connection/serial_ports.h"
#include "cli/velk/connection/shared_link.h"
#include "cli/velk/things/output.h"
#include "cli/velk/things/preset.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/words.h"
#include "component/methods.h"
#include "parameters/layouts.h"

namespace velk::cli {
namespace {

using Found = std::optional<Candidates>;

Found nothing(const Place& /*place*/) {
  return Candidates();
}

Found files(const Place& /*place*/) {
  return std::nullopt;
}

/// Ports that the system knows, and files where none of them begins so: a link to a port has a name of its own.
Found devices(const Place& place) {
  Candidates found;
  for (const SerialPortFacts& port : findSerialPorts()) {
    if (port.device.starts_with(place.word)) found.push_back({port.device, port.adapter});
  }
  return found.empty() ? std::nullopt : Found(std::move(found));
}

Found linkTexts(const Place& /*place*/) {
  return Candidates{{"tcp://", "HOST:PORT?password=TEXT&address=N"},
                    {"serial:", "DEVICE?fast&baud=N&address=N"},
                    {"simulate:", ""},
                    {"backup:", "FILE"}};
}

Found sectionNames(const Place& /*place*/) {
  Candidates found;
  for (const std::string_view section : sections()) found.push_back({std::string(section), ""});
  return found;
}

Found methodNames(const Place& /*place*/) {
  Candidates found;
  for (const Method& method : methods())
    found.push_back({std::string(method.name), std::string(method.help)});
  return found;
}

Found properties(const Place& /*place*/) {
  Candidates found;
  for (const Method& method : methods()) {
    if (method.put != nullptr) found.push_back({std::string(method.name) + "=", std::string(method.help)});
  }
  return found;
}

/// The names of those that are not given by position.
Found arguments(const Place& place) {
  Candidates found;
  const Method* const method = findMethod(place.before.front());
  if (method == nullptr) return found;
  const auto given = std::min(place.before.size() - 1, method->parameters().size());
  for (const Parameter& parameter : method->parameters().subspan(given)) {
    found.push_back({std::string(parameter.name) + "=", ""});
  }
  return found;
}

/// The link that the line or the environment names. None over a serial line: it may be in use, and is too slow
/// for somebody who waits for a name.
std::optional<LinkOptions> linkOf(const Place& place) {
  const CommandLine line("velk", "");
  LinkChoice choice;
  choice.declare(line);
  std::vector<std::string> words = place.link;
  words.insert(words.begin(), "velk");
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  if (line.parse(static_cast<int>(arguments.size()), arguments.data())) return std::nullopt;
  std::optional<LinkOptions> link = choice.withoutTrace();
  if (!link || !link->serial.empty()) return std::nullopt;
  return link;
}

/// A person waits with a finger on the key: what a link has not told until then is left out.
constexpr std::chrono::seconds patience{2};

void endSoon() {
  std::thread([] {
    std::this_thread::sleep_for(patience);
    std::_Exit(success);
  }).detach();
}

using Moment = std::chrono::steady_clock::time_point;

/// What `read` finds until the moment that it is given; nothing without a link that answers.
template <class Read>
Found asked(const Place& place, Read read) {
  Candidates found;
  try {
    const auto link = linkOf(place);
    const SharedLink* const shared = SharedLink::current();
    if (!link || (shared != nullptr && !shared->isOpen())) return found;
    if (shared == nullptr) endSoon();
    const auto connection = open(*link);
    read(connection->serial(), found, std::chrono::steady_clock::now() + patience);
  } catch (const std::exception&) {
    // Whoever carries the command out will be told.
  }
  return found;
}

/// What `read` says of the numbers up to the last.
template <class Read>
Found numbered(const Place& place, int last, Read read) {
  return asked(place, [&](Serial& serial, Candidates& found, Moment end) {
    for (int number = 1; number <= last && std::chrono::steady_clock::now() < end; ++number) {
      if (auto help = read(serial, static_cast<Byte>(number))) {
        found.push_back({std::to_string(number), *std::move(help)});
      }
    }
  });
}

/// By number or, when a letter is typed, by name.
Found outputs(const Place& place) {
  constexpr std::string_view digits = "0123456789";
  const bool byName = !place.word.empty() && digits.find(place.word.front()) == std::string_view::npos;
  return asked(place, [&](Serial& serial, Candidates& found, Moment end) {
    for (int number = 1; number <= lastOutput && std::chrono::steady_clock::now() < end; ++number) {
      const Output output = readOutputHead(serial, static_cast<Byte>(number));
      const std::string text = std::to_string(number);
      if (byName && !output.name.empty()) found.push_back({output.name, "output " + text});
      if (byName || (output.mode.empty() && output.name.empty())) continue;
      found.push_back({text, output.name.empty() ? output.mode : output.name});
    }
  });
}

/// Outputs in front of what they are told.
Found entries(const Place& place) {
  Found found = outputs(place);
  for (Candidate& candidate : *found) candidate.word += '=';
  return found;
}

Found presets(const Place& place) {
  return numbered(place, lastPreset, [](Serial& serial, Byte number) -> std::optional<std::string> {
    const Preset preset = readPreset(serial, number, Records::withoutMost);
    return isUsed(preset) ? std::optional(textOf(preset)) : std::nullopt;
  });
}

Found softLinks(const Place& place) {
  return asked(place, [](Serial& serial, Candidates& found, Moment end) {
    OutputNames names(serial);
    for (const Byte source : linkSources()) {
      if (std::chrono::steady_clock::now() >= end) break;
      for (const SoftLink& link : readLinks(serial, source))
        found.push_back({titleOf(link), named(destinationOf(link), destinationName(link, names))});
    }
  });
}

Found changeOfOutput(const Place& place) {
  Candidates found;
  if (place.before.size() == 1) {
    return Candidates{{"set", "Change the mode and items"}, {"name", "Give it a name"}};
  }
  if (place.before[1] != "set") return found;
  if (place.before.size() == 2) {
    for (const parameters::Layout& layout : parameters::layouts())
      found.push_back({std::string(layout.code), std::string(meaningOfMode(layout.code))});
  } else if (const parameters::Layout* const layout = parameters::layoutOf(place.before[2])) {
    for (std::size_t item = 0; item < layout->items.size(); ++item)
      found.push_back({std::to_string(item) + "=", "at " + placeOf(layout->items[item])});
  }
  return found;
}

Found changeOfPreset(const Place& place) {
  if (place.before.front() == "copy") return place.before.size() > 2 ? Candidates() : presets(place);
  if (place.before.size() > 1) return place.before[1] == "set" ? entries(place) : Candidates();
  return Candidates{{"set", "Change it; what is left out stays"}, {"clear", "Empty it"}};
}

Found changeOfLink(const Place& place) {
  if (place.before.size() == 1) {
    return Candidates{{"set", "Change it; what is left out stays"}, {"clear", "Remove it"}};
  }
  if (place.before[1] != "set" || place.before.back() == "input") return Candidates();
  if (place.before.back() == "output") return outputs(place);
  return Candidates{{"output", "Where it leads"}, {"input", "Where it leads"}, {"rising", "Its edges"},
                    {"falling", "Its edges"},     {"both", "Its edges"},       {"none", "Its edges"}};
}

Found dayWords(const Place& /*place*/) {
  Candidates found;
  for (int day = 0; day < weekdays; ++day) found.push_back({weekday(day), ""});
  for (const char* const group : {"weekdays", "weekend", "daily"}) found.push_back({group, ""});
  return found;
}

Found changeOfSwitchTime(const Place& place) {
  if (place.before.size() == 1) {
    return Candidates{{"set", "Change it; what is left out stays"}, {"clear", "Empty it"}};
  }
  if (place.before[1] != "set") return Candidates();
  Found found = dayWords(place);
  const Found outputs = entries(place);
  found->insert(found->end(), outputs->begin(), outputs->end());
  return found;
}

Found changeOfSimulation(const Place& place) {
  if (place.before.size() > 2) return place.before[2] == "set" ? entries(place) : Candidates();
  return Candidates{{"set", "Put other events in place of the hour's"}, {"clear", "Remove them"}};
}

Found houses(const Place& /*place*/) {
  Candidates found;
  try {
    for (const std::string& name : houseNames()) found.push_back({name, ""});
  } catch (const std::exception&) {
    // Whoever carries the command out will be told.
  }
  return found;
}

struct Row {
  std::string_view command;  ///< empty: every one
  std::string_view name;     ///< of the option, of its value, or of a value known by its position
  Found (*values)(const Place&);
};

// The first row that fits tells. Options whose words are declared with them (`Option::oneOf`) need none.
constexpr std::array rows{
    Row{"", "FILE", files},
    Row{"replay", "TRACE", files},
    Row{"diff", "A", files},
    Row{"diff", "B", files},
    Row{"report", "A", files},
    Row{"report", "B", files},
    Row{"", "--serial", devices},
    Row{"", "--trace", files},
    Row{"", "--link", linkTexts},
    Row{"", "--house", houses},
    Row{"", "--only", sectionNames},
    Row{"output", "OUTPUT", outputs},
    Row{"output", "set", changeOfOutput},
    Row{"switch-time", "set", changeOfSwitchTime},
    Row{"link", "LINK", softLinks},
    Row{"link", "set", changeOfLink},
    Row{"preset", "N", presets},
    Row{"preset", "set", changeOfPreset},
    Row{"simulation", "DAYS", dayWords},
    Row{"simulation", "set", changeOfSimulation},
    Row{"call", "--set", properties},
    Row{"call", "METHOD", methodNames},
    Row{"call", "ARGUMENTS", arguments},
};

}  // namespace

std::optional<Candidates> valuesAt(const Place& place) {
  const auto* const row = std::find_if(rows.begin(), rows.end(), [&](const Row& each) {
    return (each.command.empty() || each.command == place.command) &&
           (place.option.isNamed(each.name) || place.option.value == each.name);
  });
  return row == rows.end() ? nothing(place) : row->values(place);
}

}  // namespace velk::cli
