#include "cli/velk/commands/command.h"
#include "cli/velk/things/output.h"
#include "cli/velk/things/soft_link.h"

namespace velk::cli {
namespace {

int carryOutLinks(const LinkedOptions& options) {
  const auto connection = open(options.link.required());
  Serial& serial = connection->serial();
  Json json = Json::array();
  Table table({"Source", "Destination", "Name", "Parameters", "Edges"});
  for (int source = 0; source <= lastLinkSource; ++source) {
    if (!isLinkSource(source)) continue;
    for (const SoftLink& link : readLinks(serial, static_cast<Byte>(source))) {
      const bool hasName = link.toOutput && link.destination >= 1 && link.destination <= lastOutput;
      const std::string name = hasName ? outputName(serial, link.destination) : "";
      json.push_back(jsonOf(link));
      table.add({titleOf(link), destinationOf(link), name,
                 std::to_string(link.parameters1) + ", " + std::to_string(link.parameters2), edgesOf(link)});
    }
  }
  if (options.json) {
    std::cout << json << '\n';
  } else {
    table.print(std::cout, "there are no links");
  }
  return success;
}

}  // namespace

void addLinks(const CommandLine& velk, Run& run) {
  addCommand<LinkedOptions>(velk, run, "links", "List the links of sources to outputs and inputs",
                            "  velk links --simulate\n  velk links --serial /dev/ttyUSB0 --json\n",
                            carryOutLinks);
}

}  // namespace velk::cli
