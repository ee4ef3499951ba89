#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "cli/tool.h"

/// How velk ends: exit statuses, signals, and a standard output that takes nothing.
namespace velk::cli {
namespace {

std::string file(const std::string& name) {
  return testing::TempDir() + "velk-ending-" + std::to_string(getpid()) + "-" + name;
}

TEST(Ending, ADifferenceIsTheOnlyOne) {
  const std::string backup = file("a");
  ASSERT_EQ(velk({"backup", "--simulate", backup}).status, 0);
  Tool simulator("velk-sim", {"--tcp", "0", "--fault", "status=9@5", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  EXPECT_EQ(velk({"diff", "--tcp", link, "--only", "infrared", backup}).status, 4)
      << "the controller refuses";
  EXPECT_EQ(velk({"diff", "--tcp", "127.0.0.1:1", backup}).status, 4) << "nobody is there";
  EXPECT_EQ(velk({"ir-text", "--tcp", link, "1", "Tuner"}).status, 0);
  EXPECT_EQ(velk({"diff", "--tcp", link, "--only", "texts", backup}).status, 4);
  EXPECT_EQ(velk({"diff", "--simulate", backup}).status, 0);
  std::filesystem::remove(backup);
}

TEST(Ending, EveryRequestToEndStopsATransfer) {
  const std::string backup = file("b");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    Tool simulator("velk-sim", {"--tcp", "0", "--fault", "late=20@*", "--trace", "--for", "600"});
    const std::string link = behind(simulator.line(), "tcp Q ");
    Tool transfer("velk", {"backup", "--tcp", link, "--fresh", backup}, STDERR_FILENO);
    ASSERT_TRUE(simulator.reaches("read "));
    EXPECT_EQ(transfer.finish(signal), 130) << signal;
    EXPECT_TRUE(std::filesystem::remove(backup + ".part")) << signal;
    EXPECT_EQ(simulator.finish(signal), 0) << signal;
  }
}

TEST(Ending, AStandardOutputThatTakesNothingIsAnError) {
  const auto statusOf = [](const std::string& words) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe, cert-env33-c)
    const int ended = std::system((VELK_BIN_DIR "/" + words + " 2>/dev/null").c_str());
    return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
  };
  const auto status = [&](const std::string& words) { return statusOf("velk " + words); };
  const std::string backup = file("c");
  EXPECT_EQ(status("backup --simulate " + backup), 0);
  EXPECT_EQ(status("outputs --simulate >/dev/full"), 5);
  EXPECT_EQ(status("week --simulate --json >/dev/full"), 5) << "also when the buffer is full before the end";
  EXPECT_EQ(status("--help >/dev/full"), 5);
  EXPECT_EQ(status("methods >&-"), 5);
  EXPECT_EQ(statusOf("velk-sim --help >/dev/full"), 5);
  EXPECT_EQ(statusOf("velk-sim --for 0 >/dev/full"), 5);
  Tool simulator("velk-sim", {"--tcp", "0", "--for", "600"});
  const std::string link = behind(simulator.line(), "tcp Q ");
  EXPECT_EQ(status("outputs --tcp " + link + " >&-"), 5) << "the socket does not take its place";
  EXPECT_EQ(status("backup --tcp 127.0.0.1:1 - >&-"), 5) << "before the link is opened";
  EXPECT_EQ(status("diff --simulate " + backup + " >/dev/full"), 0) << "nothing is written";
  EXPECT_EQ(status("call --simulate Ctl_Param R 0 '' >/dev/full"), 5) << "whatever the result";
  EXPECT_EQ(status("call Nothing >/dev/full"), 2);
  std::filesystem::remove(backup);
}

TEST(Ending, AnAddressThatNoControllerHasIsRefusedBeforeAnythingIsOpened) {
  for (const char* const address : {"0", "1", "100", "150", "255"}) {
    for (const Words& link : {Words{"--tcp", "127.0.0.1:1"}, Words{"--serial", "/dev/null/none"}}) {
      Words words{"clock", "--address", address};
      words.insert(words.end(), link.begin(), link.end());
      EXPECT_EQ(velk(words).status, 2) << address << link[0];
    }
    for (const char* const link : {"tcp://127.0.0.1:1?address=", "serial:/dev/null/none?address="}) {
      EXPECT_EQ(velk({"clock", "--link", std::string(link) + address}).status, 2) << link << address;
    }
  }
  setenv("VELK_LINK", "tcp://127.0.0.1:1", 1);  // NOLINT(concurrency-mt-unsafe)
  EXPECT_EQ(velk({"clock", "--address", "5"}).status, 2) << "would be left out: the text has its own";
  EXPECT_EQ(velk({"clock"}).status, 4);
  unsetenv("VELK_LINK");  // NOLINT(concurrency-mt-unsafe)
  for (const char* const address : {"2", "99"}) {
    EXPECT_EQ(velk({"clock", "--serial", "/dev/null/none", "--address", address}).status, 4) << address;
    EXPECT_EQ(velk({"clock", "--link", std::string("tcp://127.0.0.1:1?address=") + address}).status, 4);
  }
}

}  // namespace
}  // namespace velk::cli
