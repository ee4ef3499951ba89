#include "cli/sim/adapter.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

using simulator::Delivery;
using std::chrono::milliseconds;

struct Answering : simulator::Peer {
  explicit Answering(std::vector<Delivery> what) : answers(std::move(what)) {}
  std::vector<Delivery> received(std::string_view /*bytes*/) override { return answers; }

  std::vector<Delivery> answers;
};

/// Seven bytes to a peer, at 1 ms a byte; times in ms.
TEST(DelayedPeer, BytesTakeTheirTimeOneAfterAnotherAndAreHeldBack) {
  const struct {
    std::vector<Delivery> answers;
    Delay delay;
    std::vector<int> after;
  } rows[] = {
      {{{.bytes = "123456789"}}, {milliseconds(16), milliseconds(1)}, {32}},
      {{{.bytes = "1"}, {.bytes = "23"}}, {milliseconds(1), milliseconds(1)}, {9, 11}},
      {{{.bytes = "1", .after = milliseconds(50)}, {.bytes = "2"}},
       {milliseconds(0), milliseconds(1)},
       {58, 8}},
      {{{.bytes = "1"}, {.after = milliseconds(5), .hangUp = true}}, {milliseconds(20), {}}, {20, 25}},
  };
  for (const auto& row : rows) {
    DelayedPeer peer(std::make_unique<Answering>(row.answers), row.delay);
    const auto deliveries = peer.received("request");
    std::vector<int> after;
    for (const Delivery& delivery : deliveries) {
      after.push_back(static_cast<int>(delivery.after / milliseconds(1)));
      EXPECT_EQ(delivery.after % milliseconds(1), milliseconds(0));
    }
    EXPECT_EQ(after, row.after);
  }
}

/// What is sent at once behind it waits until the line is free.
TEST(DelayedPeer, ALineIsBusyWithWhatWasSentBefore) {
  DelayedPeer peer(std::make_unique<Answering>(std::vector<Delivery>{{.bytes = "1"}}),
                   {milliseconds(0), std::chrono::hours(1)});
  EXPECT_EQ(peer.received("a").at(0).after, std::chrono::hours(2));
  EXPECT_GT(peer.received("a").at(0).after, milliseconds(2 * 3600 * 1000 + 1800 * 1000));
}

}  // namespace
}  // namespace velk::cli
