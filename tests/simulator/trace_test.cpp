#include "simulator/trace.h"

#include <gtest/gtest.h>

#include "simulator/serial_sessions.h"

namespace velk::simulator {
namespace {

TEST(TraceTest, WritesRequestsAndReplies) {
  EXPECT_EQ(describe({.command = 0x2F, .high = 5, .low = 16}), "read  16 V 0510  output 5, parameters");
  EXPECT_EQ(describe({.command = 0x60, .high = 5, .low = 1, .data = "\x05"}),
            "write 1 V 0501 05  output 5, mode");
  EXPECT_EQ(describe({.command = 0x8F, .high = 0, .low = 10}), "read  16 H+ 000A  infrared text 0");
  EXPECT_EQ(describe({.command = 0x61, .high = 100, .low = 0, .data = "\xAB\x0C"}), "write 2 V 6400 AB 0C");
  EXPECT_EQ(describe({.command = 0x30, .high = 5, .low = 1}), "read  1 V 0501 short  output 5, mode");
  EXPECT_EQ(describe(Reply{}), "ok");
  EXPECT_EQ(describe(Reply{.status = 0, .data = "\x01\xff"}), "01 FF");
  EXPECT_EQ(describe(Reply{.status = 7, .data = "\x01"}), "status 7");
}

TEST(TraceTest, TellsHowAReplyMisbehaved) {
  const std::tuple<Faults, const char*> rows[] = {
      {{"status=7@1"}, "status 7"},
      {{"silent@1"}, "no reply (fault: silent)"},
      {{"disconnect@1"}, "no reply (fault: disconnect)"},
      {{"late=1500@1"}, "00 (fault: late=1500)"},
      {{"short=0@1"}, "00 (fault: short=0)"},
      {{"header@1"}, "00 (fault: header)"},
      {{"foreign@1"}, "00 (fault: foreign=1)"},
      {{"status=7@1", "foreign=2@1", "short=1@1", "late=5@1"},
       "status 7 (fault: short=1, foreign=2, late=5)"},
      {{"silent@1", "header@1", "late=5@1"}, "no reply (fault: silent)"},
      {{"silent@1", "disconnect@1", "late=5@1"}, "no reply (fault: disconnect, late=5)"},
  };
  for (const auto& [faults, reply] : rows) {
    Controller controller;
    Watch watch;
    std::string line;
    EchoSession session(
        controller,
        {.faults = faults, .trace = [&](const std::string& text) { line = text; }, .watch = &watch});
    session.received("*\x20\x05\x01");
    EXPECT_EQ(line, std::string("read  1 V 0501  output 5, mode -> ") + reply);
    std::uint64_t next = 0;
    const std::string logged = watch.log.take(next, 1).requests.front().faultyReply;
    EXPECT_EQ(logged, std::string_view(reply).ends_with(")") ? reply : "");
  }
}

}  // namespace
}  // namespace velk::simulator
