#include "simulator/mailbox.h"

#include <gtest/gtest.h>

#include "simulator/house_modules.h"
#include "support/bytes.h"

namespace velk::simulator {
namespace {

using test::bytes;

/// A controller with the modules of the house, asked byte by byte.
class MailboxTest : public testing::Test {
 protected:
  Bytes read(int count, int dph, int dpl, std::string_view area = "V") {
    return controller
        .answer({.command = link::commandByte(static_cast<Byte>(count), area, false),
                 .dph = static_cast<Byte>(dph),
                 .dpl = static_cast<Byte>(dpl)})
        .data;
  }
  void write(int dph, int dpl, const Bytes& data, std::string_view area = "V") {
    const auto count = static_cast<Byte>(data.size() + (area == "H" ? 128 : 0));
    controller.answer({.command = link::commandByte(count, area, true),
                       .dph = static_cast<Byte>(dph),
                       .dpl = static_cast<Byte>(dpl),
                       .data = data});
  }

  /// Sends a request and returns the reply code.
  int ask(int number, int direction, const Bytes& serial, int first = 222) {
    write(0, 10, bytes({first, number, direction}) + serial);
    trigger();
    return byteValue(read(1, 0, 10).front());
  }
  void trigger() { write(0, 0, "\xff"); }
  void attach(const Faults& faults = {}) {
    attachModules(controller, faults, [this](const std::string& line) { lines.push_back(line); });
  }

  Controller controller;
  std::vector<std::string> lines;
  const Bytes known = bytes({9, 5, 0});
  const Bytes sampler = bytes({98, 5, 0});
  const Bytes gsm = bytes({93, 1, 0});
  const Bytes video = bytes({95, 0, 10});
};

TEST_F(MailboxTest, DecodesRequestsByTheModule) {
  attach();
  const struct {
    int number, direction;
    Bytes serial;
    int code;
    const char* line;
  } rows[] = {
      {0, 79, known, 0, "module 090500: identification"},
      {0, 15, known, 0, "module 090500: identification"},
      {1, 15, known, 0, "module 090500: read piece 1, 15 bytes"},
      {0, 79, bytes({99, 0, 0}), 0, "module 990000: read piece 0, 15 bytes"},
      {2, 10, known, 0, "module 090500: read piece 2, 10 bytes"},
      {2, 10, video, 0, "module 950010: version, offset 2"},
      {2, 74, video, 0, "module 950010: read piece 2, 10 bytes"},
      {255, 193, video, 0, "module 950010: write piece 255, 1 byte"},
      {19, 255, sampler, 0, "module 980500: sample 3 bank B, write"},
      {255, 63, sampler, 0, "module 980500: sample 239 bank A, read"},
      {15, 63, sampler, 128, "module 980500: unknown request"},
      {19, 63, gsm, 128, "module 930100: unknown request"},
      {9, 31, gsm, 0, "module 930100: long record 9, read"},
      {9, 159, gsm, 0, "module 930100: long record 9, write"},
      {9, 17, gsm, 128, "module 930100: unknown request"},
      {9, 16, bytes({1, 2, 3}), 255, "module 010203: read piece 9, 16 bytes"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ask(row.number, row.direction, row.serial), row.code) << row.line;
    EXPECT_EQ(lines.back(), row.line);
    EXPECT_EQ(read(1, 0, 0), Bytes(1, '\0')) << "the trigger";
  }
  EXPECT_EQ(ask(1, 16, gsm, 0), 128) << "without the marker";
}

TEST_F(MailboxTest, ARepeatedTriggerRepeatsTheRequest) {
  attach({"code=127@1"});
  EXPECT_EQ(ask(0, 79, known), 127);
  trigger();
  EXPECT_EQ(read(1, 0, 10), Bytes(1, '\0'));
  EXPECT_EQ(read(16, 0, 16).substr(0, 5), "MT007");
}

TEST_F(MailboxTest, KeepsPiecesSamplesAndTexts) {
  attach();
  write(0, 16, "0123456789abcdef");
  EXPECT_EQ(ask(255, 208, video), 0);
  write(0, 16, Bytes(16, '\0'));
  EXPECT_EQ(ask(255, 80, video), 0);
  EXPECT_EQ(read(16, 0, 16), "0123456789abcdef");
  EXPECT_EQ(ask(255, 31, video), 0) << "a long record that reaches behind the last piece";
  EXPECT_EQ(read(144, 16, 26, "H"), Bytes(16, '\0'));

  write(0, 26,
        "a block of data."
        "",
        "H");
  write(16, 26, Bytes(16, '\0'), "H");
  write(32, 26, "what lay there..", "H");
  EXPECT_EQ(ask(16, 191, sampler), 0);
  EXPECT_EQ(ask(16, 127, sampler), 0);
  EXPECT_EQ(read(144, 0, 26, "H"), Bytes(16, '\0')) << "the other bank";
  EXPECT_EQ(ask(16, 63, sampler), 0);
  EXPECT_EQ(read(144, 0, 26, "H"), "a block of data.");
  EXPECT_EQ(read(144, 32, 26, "H"), Bytes(16, '\0')) << "a sample ends with its first block that ends with 0";
}

TEST_F(MailboxTest, WaitsForPolls) {
  attach({"busy=2@1", "pending=1@1", "stuck@2"});
  EXPECT_EQ(ask(0, 79, known), 222);
  EXPECT_EQ(read(1, 0, 0), "\xff");
  EXPECT_EQ(read(1, 0, 0), Bytes(1, '\0')) << "any look at the mailbox is a poll";
  EXPECT_EQ(read(1, 0, 10), "\xde");
  EXPECT_EQ(read(1, 0, 10), Bytes(1, '\0'));
  EXPECT_EQ(ask(0, 79, known), 222);
  for (int i = 0; i < 100; ++i) EXPECT_EQ(read(1, 0, 0), "\xff");
  write(0, 10, bytes({222}));
  EXPECT_EQ(lines.size(), 2U) << "a header is no request";
  EXPECT_EQ(ask(0, 79, known), 0) << "the next request is good again";
}

}  // namespace
}  // namespace velk::simulator
