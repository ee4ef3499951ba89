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
  Bytes read(int count, Byte high, Byte low, Byte area = link::externalArea) {
    return controller.answer({.command = static_cast<Byte>(area | (count - 1)), .high = high, .low = low})
        .data;
  }
  void write(Byte high, Byte low, const Bytes& data, Byte area = link::externalArea) {
    const auto command = static_cast<Byte>(link::write | area | (data.size() - 1));
    controller.answer({.command = command, .high = high, .low = low, .data = data});
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

  static constexpr Byte buffer = link::highBank;
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
      {9, 0, gsm, 128, "module 930100: unknown request"},
      {9, 1, gsm, 0, "module 930100: read piece 9, 1 byte"},
      {9, 16, gsm, 0, "module 930100: read piece 9, 16 bytes"},
      {9, 17, gsm, 128, "module 930100: unknown request"},
      {9, 64, gsm, 128, "module 930100: unknown request"},
      {9, 80, gsm, 0, "module 930100: read piece 9, 16 bytes"},
      {9, 81, gsm, 128, "module 930100: unknown request"},
      {9, 208, gsm, 0, "module 930100: write piece 9, 16 bytes"},
      {9, 209, gsm, 128, "module 930100: unknown request"},
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
  EXPECT_EQ(read(16, 0, 16), "MT007/500VA \x30\x01\x05" + Bytes(1, '\0'));
}

TEST_F(MailboxTest, KeepsPieces) {
  attach();
  write(0, 16, "0123456789abcdef");
  EXPECT_EQ(ask(255, 208, video), 0);
  write(0, 16, Bytes(16, '\0'));
  EXPECT_EQ(ask(255, 80, video), 0);
  EXPECT_EQ(read(16, 0, 16), "0123456789abcdef");
  EXPECT_EQ(ask(255, 31, video), 0) << "a long record that reaches behind the last piece";
  EXPECT_EQ(read(16, 0, 26, buffer), "0123456789abcdef");
  EXPECT_EQ(read(16, 16, 26, buffer), Bytes(16, '\0'));
  EXPECT_EQ(ask(2, 10, video), 0);
  EXPECT_EQ(read(10, 0, 16), bytes({0, 0, 0, 0, 0, 0, 0, 0, 1, 4})) << "its version";
}

/// Samples end with their first block that ends with 0; texts have 64 bytes, other long records 112 or 128.
TEST_F(MailboxTest, KeepsLongRecords) {
  attach();
  const struct {
    const Bytes& serial;
    int number, writing, reading;
    std::size_t kept;
  } rows[] = {{sampler, 16, 191, 63, 32},
              {sampler, 255, 255, 127, 32},
              {gsm, 9, 159, 31, 64},
              {video, 9, 159, 31, 112}};
  for (const auto& [serial, number, writing, reading, kept] : rows) {
    for (int at = 0; at < 128; at += 16) {
      const Bytes line(15, static_cast<char>('a' + at / 16));
      write(static_cast<Byte>(at), 26, line + (at == 16 ? '\0' : '.'), buffer);
    }
    EXPECT_EQ(ask(number, writing, serial), 0);
    for (int at = 0; at < 128; at += 16) write(static_cast<Byte>(at), 26, Bytes(16, '!'), buffer);
    EXPECT_EQ(ask(number, reading, serial), 0);
    Bytes text;
    for (int at = 0; at < 128; at += 16) text += read(16, static_cast<Byte>(at), 26, buffer).substr(0, 1);
    const Bytes behind(kept == 64 ? "!!!!" : Bytes(8 - kept / 16, '\0'));
    EXPECT_EQ(text, Bytes("abcdefgh").substr(0, kept / 16) + behind) << number << " " << writing;
  }
  EXPECT_EQ(ask(16, 127, sampler), 0);
  EXPECT_EQ(read(1, 0, 26, buffer), Bytes(1, '\0')) << "the other bank";
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
