#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "cli/tool.h"

/// How the tools end when they are asked to, or when they are not.
namespace velk::cli {
namespace {

TEST(Ending, EveryRequestToEndStopsATransfer) {
  const Folder folder;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    House house("--fault late=20@* --trace");
    Tool transfer("exec velk " + house.with("backup --fresh " + folder / "a"));
    ASSERT_TRUE(house.simulator.reaches("read "));
    EXPECT_EQ(transfer.finish(signal), 130) << signal;
    EXPECT_TRUE(std::filesystem::remove(folder / "a.part")) << signal;
    EXPECT_EQ(house.simulator.finish(signal), 0) << signal;
  }
}

TEST(Ending, AnInterruptedRestorationGoesOn) {
  const Folder folder;
  ASSERT_EQ(velk("backup --simulate " + folder / "a").status, 0);
  // The first write is request 4015. What follows takes some twenty seconds, so that the signal comes in
  // time.
  House house("--trace --fault late=100@4016- --house " + folder.put("empty", emptyHouse));
  Tool restore("exec velk " + house.with("restore --yes --only outputs,presets --json " + folder / "a"));
  ASSERT_TRUE(house.simulator.reaches("write"));
  EXPECT_EQ(restore.finish(SIGINT), 130);
  const std::string account = restore.all();
  EXPECT_NE(account.find(R"("not_written":["output )"), std::string::npos) << account;
  EXPECT_NE(account.find(R"("failure":"interrupted"})"), std::string::npos) << account;
  EXPECT_EQ(house.simulator.finish(), 0) << "nobody reads the trace any more";
}

TEST(Ending, WhatWasReadIsKeptEveryFewSeconds) {
  const Folder folder;
  {
    const House slow("--fault late=5@*");
    Tool backup("exec velk " + slow.with("backup " + folder / "a"));
    // At the start it is there for a moment, which tells that it can be.
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (contentOf(folder / "a.part").empty() && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(backup.finish(SIGKILL), -1);
  }
  const Ended rest = House().velk("backup " + folder / "a");
  EXPECT_EQ(rest.complaint.substr(0, 32), "velk: continuing the backup begu");
  EXPECT_EQ(velk("diff --simulate " + folder / "a").status, 0);
}

}  // namespace
}  // namespace velk::cli
