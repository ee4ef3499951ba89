#include "simulator/watch.h"

#include <gtest/gtest.h>

#include "simulator/clock.h"
#include "simulator/serial_sessions.h"
#include "support/bytes.h"

namespace velk::simulator {
namespace {

std::vector<unsigned> refusedOf(LiveFaults& faults, int count, Counts counts = Counts::requests) {
  std::vector<unsigned> refused;
  for (int i = 0; i < count; ++i) {
    Plan plan;
    faults.next(counts, plan);
    refused.push_back(plan.status.value_or(plan.code.value_or(0)));
  }
  return refused;
}

TEST(LiveFaultsTest, CountFromWhenTheyAreSetAndAreForgottenWhenOver) {
  const std::tuple<const char*, std::vector<unsigned>, std::size_t> rows[] = {
      {"status=7@1", {7, 0, 0, 0}, 0}, {"status=7@2-3", {0, 7, 7, 0}, 0}, {"status=7@4", {0, 0, 0, 7}, 0},
      {"status=7@5", {0, 0, 0, 0}, 1}, {"status=7@3-", {0, 0, 7, 7}, 1},  {"status=7@*", {7, 7, 7, 7}, 1},
      {"status=7@0", {0, 0, 0, 0}, 1}, {"code=7@1", {0, 0, 0, 0}, 1},
  };
  for (const auto& [text, refused, left] : rows) {
    LiveFaults faults;
    EXPECT_EQ(refusedOf(faults, 3), (std::vector<unsigned>{0, 0, 0}));
    faults.set(text);
    EXPECT_EQ(refusedOf(faults, 4), refused) << text;
    EXPECT_EQ(faults.list().size(), left) << text;
  }
  LiveFaults faults;
  faults.set("code=7@2");
  EXPECT_EQ(faults.list().front().counts, "module request");
  EXPECT_EQ(refusedOf(faults, 3, Counts::moduleRequests), (std::vector<unsigned>{0, 7, 0}));
}

TEST(LiveFaultsTest, LoginsHaveThemUntilTheyAreTakenBack) {
  LiveFaults faults;
  const unsigned id = faults.set("status=9@0");
  faults.set("silent@5-");
  refusedOf(faults, 2);
  Plan plan;
  faults.login(plan);
  faults.login(plan);
  faults.login(plan);
  EXPECT_EQ(plan.status, 9);
  EXPECT_EQ(faults.list().front().counts, "login");
  EXPECT_EQ(faults.list().front().counted, 3U);
  EXPECT_FALSE(plan.silent);
  EXPECT_EQ(faults.list().back().text, "silent@5-");
  EXPECT_EQ(faults.list().back().counts, "request");
  EXPECT_EQ(faults.list().back().counted, 2U);
  EXPECT_TRUE(faults.takeBack(id));
  EXPECT_FALSE(faults.takeBack(id));
  EXPECT_EQ(faults.list().size(), 1U);
  faults.takeAllBack();
  EXPECT_EQ(faults.list().size(), 0U);
  EXPECT_THROW(faults.set("status@1"), std::invalid_argument);
  for (int i = 0; i < 64; ++i) faults.set("silent@9");
  EXPECT_THROW(faults.set("silent@9"), std::invalid_argument);
}

TEST(RequestLogTest, GivesTheNewestAndCountsTheRest) {
  RequestLog log;
  std::uint64_t next = 0;
  const auto take = [&](std::size_t most) {
    const auto batch = log.take(next, most);
    return std::tuple(batch.first, batch.requests.size(), batch.missed,
                      batch.requests.empty() ? "" : batch.requests.back().note);
  };
  EXPECT_EQ(take(9), std::tuple(0, 0, 0, ""));
  for (int i = 1; i <= 5; ++i) log.add(LoggedRequest::ofNote(1, std::to_string(i)));
  EXPECT_EQ(take(2), std::tuple(3, 2, 3, "5"));
  EXPECT_EQ(take(2), std::tuple(5, 0, 0, ""));
  for (int i = 6; i <= 4101; ++i) log.add(LoggedRequest::ofNote(1, std::to_string(i)));
  EXPECT_EQ(take(9999), std::tuple(5, 4096, 0, "4101"));
  for (int i = 1; i <= 4097; ++i) log.add(LoggedRequest::ofNote(1, std::to_string(i)));
  EXPECT_EQ(take(9999), std::tuple(4102, 4096, 1, "4097"));
}

TEST(WatchTest, SeesWhatSessionsAreAskedAndWhoIsThere) {
  Controller controller;
  Watch watch;
  {
    EchoSession session(controller, {.watch = &watch, .interface = "echo"});
    ASSERT_EQ(watch.connections.list().size(), 1U);
    session.received(test::bytes({'*', 0x61, 5, 0x40, 'K', 'i'}));
    watch.faults.set("status=3@1");
    session.received("*\x20\x05\x40");
    session.received("*\x20\x05\x41");
    const auto one = watch.connections.list().front();
    EXPECT_EQ(one->interface, "echo");
    EXPECT_EQ(one->requests, 3U);
  }
  EXPECT_EQ(watch.connections.list().size(), 0U);
  EXPECT_EQ(watch.connections.join("fast")->id, 2U);
  std::uint64_t next = 0;
  std::vector<std::string> told;
  for (const auto& logged : watch.log.take(next, 9).requests) {
    told.push_back(describe(logged.request()) + " -> " + describe(logged.answer()));
  }
  EXPECT_EQ(told, (std::vector<std::string>{"write 2 V 0540 4B 69  output 5, name -> ok",
                                            "read  1 V 0540  output 5, name -> status 3",
                                            "read  1 V 0541  output 5, name -> 69"}));
}

TEST(WatchTest, OnlookersSeeTheClockRun) {
  std::chrono::nanoseconds time{0};
  Controller controller;
  controller.attach(std::make_unique<Clock>([&] { return time; }));
  time = std::chrono::seconds(3);
  Byte seconds = 0;
  controller.between([&](const Store& store) { seconds = store[{.page = 255, .offset = 249}]; });
  EXPECT_EQ(seconds, 3);
}

}  // namespace
}  // namespace velk::simulator
