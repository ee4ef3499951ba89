#include <string>
#include <vector>

#include "cli/shared/progress.h"
#include "cli/velk/commands/command.h"
#include "cli/velk/things/module.h"
#include "cli/velk/things/output.h"
#include "cli/velk/things/preset.h"
#include "cli/velk/things/soft_link.h"
#include "cli/velk/things/switch_time.h"

/// The commands that print a list.
namespace velk::cli {
namespace {

/// What was read: each thing for programs and for people.
struct List {
  Json json = Json::array();
  Table table;
  std::vector<Failure> failures = {};

  void add(Json element, Table::Cells row) {
    json.push_back(std::move(element));
    table.add(std::move(row));
  }
};

template <class Options>
struct ListCommand {
  const char* name;
  const char* help;
  const char* examples;
  Table::Cells headings;
  const char* whenEmpty;
  void (*read)(Serial&, const Options&, List&);
};

template <class Options>
void addList(const CommandLine& velk, Job& job, const ListCommand<Options>& command) {
  const auto carryOut = [command](const Options& options) {
    const auto connection = open(options.link.required());
    List list{.table = Table(command.headings)};
    command.read(connection->serial(), options, list);
    printList(options.json, list.json, list.table, command.whenEmpty);
    for (const Failure& failure : list.failures) tell("velk", failure, options.json);
    return list.failures.empty() ? success : badResult;
  };
  addCommand<Options>(velk, job, command.name, command.help, command.examples, carryOut);
}

void listOutputs(Serial& serial, const LinkedOptions& /*options*/, List& list) {
  for (const int number : counted("outputs", 1, lastOutput)) {
    const Output output = readOutputHead(serial, static_cast<Byte>(number));
    if (output.mode.empty() && output.name.empty()) continue;
    list.add(jsonOfHead(output),
             {std::to_string(number), output.name, output.mode, std::string(meaningOfMode(output.mode))});
  }
}

void listLinks(Serial& serial, const LinkedOptions& /*options*/, List& list) {
  OutputNames names(serial);
  for (const Byte source : counted("links", linkSources())) {
    for (const SoftLink& link : readLinks(serial, source)) {
      list.add(jsonOf(link, names), {titleOf(link), destinationOf(link), destinationName(link, names),
                                     parametersOf(link), edgesOf(link)});
    }
  }
}

void listPresets(Serial& serial, const LinkedOptions& /*options*/, List& list) {
  for (const int number : counted("presets", 1, lastPreset)) {
    const Preset preset = readPreset(serial, static_cast<Byte>(number), Records::withoutMost);
    if (!isUsed(preset)) continue;
    const std::string delay2 = preset.delay2 == 0 ? "" : std::to_string(preset.delay2);
    list.add(jsonOfHead(preset), {std::to_string(number), textOf(preset), std::to_string(preset.delay1),
                                  delay2, preset.simulated ? "yes" : "no"});
  }
}

void listSwitchTimes(Serial& serial, const LinkedOptions& /*options*/, List& list) {
  OutputNames names(serial);
  for (const int block : counted("switch times", 0, switchTimes - 1)) {
    const SwitchTime time = readSwitchTime(serial, static_cast<Byte>(block));
    if (!isUsed(time)) continue;
    list.add(jsonOf(time, names),
             {std::to_string(block), timeOf(time), daysOf(time.days), actionOf(time, names)});
  }
}

struct ModulesOptions : LinkedOptions {
  std::vector<std::string> serials;

  void declare(const CommandLine& line) {
    LinkedOptions::declare(line);
    line.option("SERIAL", serials, "Serial numbers, six digits each").required();
  }
};

void listModules(Serial& serial, const ModulesOptions& options, List& list) {
  for (const std::string& number : counted("modules", options.serials)) {
    try {
      const Module module = readModule(serial, number);
      list.add(jsonOf(module), {module.serial, module.model, std::to_string(module.cpuType), module.firmware,
                                numbers(module.record)});
    } catch (const Failure& failure) {
      list.failures.push_back(failure);
    }
  }
}

}  // namespace

void addOutputs(const CommandLine& velk, Job& job) {
  addList<LinkedOptions>(
      velk, job,
      {"outputs",
       "List the outputs that have a mode or a name",
       "  velk outputs --simulate\n  VELK_LINK=tcp://192.168.1.20:8445 velk outputs --json\n",
       {"Output", "Name", "Mode", "Kind"},
       "no output has a mode",
       listOutputs});
}

void addLinks(const CommandLine& velk, Job& job) {
  addList<LinkedOptions>(velk, job,
                         {"links",
                          "List the links of sources to outputs and inputs",
                          "  velk links --simulate\n  velk links --serial /dev/ttyUSB0 --json\n",
                          {"Source", "Destination", "Name", "Parameters", "Edges"},
                          "there are no links",
                          listLinks});
}

void addPresets(const CommandLine& velk, Job& job) {
  addList<LinkedOptions>(velk, job,
                         {"presets",
                          "List the presets in use",
                          "  velk presets --simulate\n  velk presets --json\n",
                          {"Preset", "Text", "Delay 1", "Delay 2", "Simulation"},
                          "there are no presets",
                          listPresets});
}

void addSwitchTimes(const CommandLine& velk, Job& job) {
  addList<LinkedOptions>(velk, job,
                         {"switch-times",
                          "List the switch times",
                          "  velk switch-times --simulate\n  velk switch-times --json\n",
                          {"Block", "Time", "Days", "Switches"},
                          "there are no switch times",
                          listSwitchTimes});
}

void addModules(const CommandLine& velk, Job& job) {
  addList<ModulesOptions>(velk, job,
                          {"modules",
                           "Show modules by their serial numbers",
                           "  velk modules --simulate 090500 100100\n  velk modules 090500 --json\n"
                           "\nModules that do not answer are told at the end; the exit status is 1 then.\n",
                           {"Serial", "Model", "CPU", "Firmware", "Record"},
                           "",
                           listModules});
}

}  // namespace velk::cli
