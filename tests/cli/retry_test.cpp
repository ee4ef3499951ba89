#include "cli/velk/connection/retry.h"

#include <gtest/gtest.h>

#include "support/simulated_house.h"

namespace velk::cli {
namespace {

using namespace std::chrono_literals;

class RetryTest : public test::SimulatedHouse {
 protected:
  /// What stands at offset 4 of a page, which holds the page's number; the link's code when it is lost.
  Bytes read(Retry& retry, Byte page) {
    return retry.read([&] { return serial.ReadCom(1, page, 4, "V"); },
                      [](const Bytes& reply) { return isLost(byteAt(reply, 0)); });
  }

  void open(const std::string& fault, const std::string& another = "silent@100") {
    test::SimulatedHouse::open(test::LinkKind::ethernetQ, {fault, another});
    for (const int page : {5, 6}) setMemory(page, 4, test::bytes({page}));
  }

  static Bytes at(int page) { return test::bytes({0, page}); }
};

TEST_F(RetryTest, AsksThreeTimesAgainForWhatIsLostAndForNothingElse) {
  struct Row {
    const char* fault;
    Bytes result;
    std::size_t requests;
  };
  for (const Row& row : {Row{"silent@1", at(5), 2}, Row{"silent@1-3", at(5), 4}, Row{"silent@1-4", "\xfc", 4},
                         Row{"header@1", at(5), 2}, Row{"status=9@1", Bytes("\x09\0", 2), 1}}) {
    open(row.fault);
    Retry retry(host);
    EXPECT_EQ(read(retry, 5).substr(0, row.result.size()), row.result) << row.fault;
    EXPECT_EQ(requests.size(), row.requests) << row.fault;
    EXPECT_EQ(retry.repeated(), static_cast<int>(row.requests) - 1) << row.fault;
  }
}

/// The interface says nothing of the address that it answers: a late answer would be taken for the next one.
TEST_F(RetryTest, DropsALateAnswer) {
  for (const char* const fault : {"late=2100@1", "late=2900@1", "late=3100@1", "late=3900@1"}) {
    open(fault, "late=950@3");  // so long the next request waits for its own
    Retry retry(host);
    EXPECT_EQ(read(retry, 5), at(5)) << fault;
    EXPECT_EQ(read(retry, 6), at(6)) << fault;
    EXPECT_EQ(read(retry, 5), at(5)) << fault;
  }
}

/// In the first second of a day every wait is over at once.
TEST_F(RetryTest, LetsMidnightPass) {
  for (const auto clock : {86'399'999ms, 0ms, 500ms, 990ms}) {
    open("late=1@*");
    host.setClock(clock);
    EXPECT_EQ(byteAt(serial.ReadCom(1, 5, 4, "V"), 0), 252) << clock.count();
    open("late=1@*");
    host.setClock(clock);
    Retry retry(host);
    const auto start = host.elapsed();
    EXPECT_EQ(read(retry, 5), at(5)) << clock.count();
    EXPECT_EQ(retry.repeated(), 1);
    EXPECT_GE(host.elapsed() - start, 2s) << "a pause is as long as ever";
    EXPECT_EQ(read(retry, 6), at(6));
  }
}

TEST_F(RetryTest, WritesAgainOnlyAfterReadingBack) {
  Retry retry(host);
  std::string steps;
  const auto write = [&](const std::string& results, bool stands) {
    steps.clear();
    std::size_t next = 0;
    return retry.write(
        [&] {
          steps += 'W';
          return results[next] == '-' ? Byte{252} : static_cast<Byte>(results[next++] - '0');
        },
        [&] {
          steps += 'R';
          if (results[next] == '-' && next + 1 < results.size()) ++next;
          return stands;
        });
  };
  EXPECT_EQ(write("0", false), 0);
  EXPECT_EQ(steps, "W");
  EXPECT_EQ(write("9", false), 9);
  EXPECT_EQ(steps, "W") << "it was refused, not lost";
  EXPECT_EQ(write("-", true), 0);
  EXPECT_EQ(steps, "WR") << "only the reply was lost";
  EXPECT_EQ(write("-0", false), 0);
  EXPECT_EQ(steps, "WRW");
  EXPECT_EQ(write("-", false), 252);
  EXPECT_EQ(steps, "WRWRWRW");
}

}  // namespace
}  // namespace velk::cli
