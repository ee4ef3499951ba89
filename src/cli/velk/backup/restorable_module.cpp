#include "cli/velk/backup/restorable_module.h"

#include <algorithm>
#include <iostream>

#include "cli/house/simulated_modules.h"
#include "cli/shared/failure.h"
#include "cli/velk/connection/expect_done.h"
#include "cli/velk/things/module.h"
#include "values/result.h"

namespace velk::cli {

void tellObstacle(const Module& module) {
  if (module.obstacle.empty()) return;
  std::cerr << "velk: " << titleOf(module) << " is saved but cannot be restored: " << module.obstacle << '\n';
}

LeftOut leftOut(const Backup& backup, const Backup& now) {
  LeftOut left;
  for (const Module& module : backup.modules) {
    const auto there = std::find_if(now.modules.begin(), now.modules.end(),
                                    [&](const Module& m) { return m.serial == module.serial; });
    if (there == now.modules.end()) continue;
    if (!module.obstacle.empty()) left[titleOf(module)] = module.obstacle;
    // Whether its model is known decides where a record begins and what is translated.
    else if (there->known != module.known)
      left[titleOf(module)] = "it is of another model now";
  }
  return left;
}

void restoreModule(Serial& serial, const Module& module) {
  expectDone(writeModule(serial, module), "writing " + titleOf(module));
  if (readModule(serial, module.serial).record != module.record) {
    expectDone(readsBackDifferent, "reading back " + titleOf(module));
  }
}

}  // namespace velk::cli
