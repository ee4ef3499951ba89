#include <gtest/gtest.h>

#include "component/serial.h"
#include "simulator/link_kind.h"
#include "simulator/loopback_host.h"
#include "support/bytes.h"

namespace velk::simulator {
namespace {

using test::bytes;

/// A `Serial` on a simulated controller with 0x11 and 0x22 at 0x0510 and 0x0511.
class Rehearsal {
 public:
  Rehearsal(LinkKind kind, const Faults& faults) {
    Store store;
    store.write(place, bytes({0x11, 0x22}));
    controller = std::make_unique<Controller>(store);
    const auto makePeer = [this, kind, faults] { return makeSession(kind, *controller, {.faults = faults}); };
    host.plugIn(1, makePeer);
    host.listen("house", 1, makePeer);
    opened = isSerial(kind) ? serial.OpenCom(1, 9600, kind == LinkKind::fast) : serial.OpenTCP("house", 1);
    serial.FlgBreak = false;
  }

  Bytes read(Byte attempts) { return serial.ReadCom(2, 5, 0x10, "V", attempts); }
  Bytes write(Byte attempts) { return serial.WriteCom(2, 5, 0x10, "V", "\x33\x44", attempts); }
  [[nodiscard]] Bytes stored() const { return controller->snapshot().read(place, 2); }

  static constexpr Address place{.page = 5, .offset = 0x10};
  std::unique_ptr<Controller> controller;
  LoopbackHost host;
  Serial serial{host};
  Byte opened = 99;
};

const Bytes goodRead = bytes({0, 0x11, 0x22});
const Bytes refusedRead = bytes({5, 0, 0});

struct Case {
  LinkKind kind;
  std::string_view fault;
  Bytes read;   ///< the result of a read with one attempt
  Bytes write;  ///< of a write with one attempt
};

const Case cases[] = {
    {LinkKind::echo, "status=5@1", refusedRead, "\x05"},
    {LinkKind::echo, "short=0@1", "\xfc", "\xfd"},
    {LinkKind::echo, "foreign=2@1", "\xfc", "\xfd"},
    {LinkKind::echo, "header@1", goodRead, Bytes(1, '\0')},
    {LinkKind::echo, "no-echo@1", "\xfe", "\xfe"},
    {LinkKind::echo, "wrong-echo=4@1", "\xfe", "\xfe"},
    {LinkKind::fast, "late=1100@1", "\xfc", "\xfc"},
    {LinkKind::fast, "short=3@1", "\xfb", "\xfb"},
    {LinkKind::fast, "header@1", "\xfb", "\xfb"},
    // Found behind the foreign frames, the frame is sent again without spending the attempt.
    {LinkKind::fast, "foreign=2@1", goodRead, bytes({0, '#'})},
    {LinkKind::ethernetQ, "status=5@1", refusedRead, "\x05"},
    {LinkKind::ethernetQ, "late=1900@1", goodRead, Bytes(1, '\0')},
    {LinkKind::ethernetQ, "late=2100@1", "\xfc", "\xfc"},
    {LinkKind::ethernetQ, "short=6@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "header@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "foreign@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "disconnect@1", "\xfc", "\xfc"},
    {LinkKind::ethernetS, "short=12@1", "\xfe", "\xfe"},
    {LinkKind::ethernetS, "header@1", "\xfc", "\xfc"},
    {LinkKind::ethernetS, "foreign@1", "\xfe", "\xfe"},
};

TEST(FaultsTest, OneAttemptShowsTheFaultAndTheNextRequestIsGoodAgain) {
  for (const auto& [kind, fault, read, write] : cases) {
    SCOPED_TRACE(std::to_string(static_cast<int>(kind)).append(" ").append(fault));
    // Over TCP a count of attempts lengthens the wait almost for ever; 0 is the wait of two seconds.
    const Byte attempts = isSerial(kind) ? 1 : 0;
    Rehearsal reading(kind, {fault});
    ASSERT_EQ(reading.opened, 0);
    EXPECT_EQ(reading.read(attempts), read);
    Rehearsal writing(kind, {fault});
    EXPECT_EQ(writing.write(attempts), write);
    Rehearsal again(kind, {fault});
    if (!isSerial(kind)) again.read(0);
    if (fault != "disconnect@1") {
      EXPECT_EQ(again.read(isSerial(kind) ? 3 : 0), goodRead);
    }
  }
}

TEST(FaultsTest, ARefusedWriteChangesNothingAndALostReplyDoes) {
  Rehearsal refused(LinkKind::fast, {"status=5@*"});
  EXPECT_EQ(refused.write(0), "\xfe");
  EXPECT_EQ(refused.stored(), "\x11\x22");
  Rehearsal silent(LinkKind::fast, {"silent@*"});
  EXPECT_EQ(silent.write(1), "\xfc");
  EXPECT_EQ(silent.stored(), "\x33\x44");
}

TEST(FaultsTest, TheLoginIsRequestZero) {
  EXPECT_EQ(Rehearsal(LinkKind::ethernetQ, {"status=9@0"}).opened, 9);
  EXPECT_EQ(Rehearsal(LinkKind::ethernetQ, {"silent@*"}).opened, 0);
}

TEST(FaultsTest, EachKindTakesItsNumbers) {
  const struct {
    const char* most;
    bool (*isApplied)(const Plan&);
    const char* tooMuch;
  } rows[] = {
      {"status=255@1", [](const Plan& p) { return p.status == 255; }, "status=256@1"},
      {"silent@1", [](const Plan& p) { return p.silent; }, "silent=1@1"},
      {"late=3600000@1", [](const Plan& p) { return p.late.count() == 3'600'000; }, "late=3600001@1"},
      {"short=65535@1", [](const Plan& p) { return p.shortTo == 65535U; }, "short=65536@1"},
      {"header@1", [](const Plan& p) { return p.wrongHeader; }, "header=1@1"},
      {"foreign@1", [](const Plan& p) { return p.foreign == 1; }, "foreign=101@1"},
      {"foreign=100@1", [](const Plan& p) { return p.foreign == 100; }, "foreign=@1"},
      {"no-echo@1", [](const Plan& p) { return p.noEcho == 1U; }, "no-echo=256@1"},
      {"wrong-echo@1", [](const Plan& p) { return p.wrongEcho == 1U; }, "wrong-echo=256@1"},
      {"disconnect@1", [](const Plan& p) { return p.disconnect; }, "disconnect=1@1"},
      {"stuck@1", [](const Plan& p) { return p.stuck; }, "stuck=1@1"},
      {"busy=65535@1", [](const Plan& p) { return p.busy == 65535U; }, "busy=65536@1"},
      {"pending=65535@1", [](const Plan& p) { return p.pending == 65535U; }, "pending=65536@1"},
      {"code=255@1", [](const Plan& p) { return p.code == 255; }, "code=256@1"},
  };
  for (const auto& [most, isApplied, tooMuch] : rows) {
    const Faults faults{most};
    const bool ofModules = parseFault(most).kind->counts == Counts::moduleRequests;
    EXPECT_EQ(isApplied(faults.planFor(1)), !ofModules) << most;
    EXPECT_EQ(isApplied(faults.planFor(1, Counts::moduleRequests)), ofModules) << most;
    EXPECT_THROW(parseFault(tooMuch), std::invalid_argument) << tooMuch;
  }
}

TEST(FaultsTest, NamesRequestsAndSaysWhatIsWrong) {
  const std::pair<const char*, const char*> rows[] = {{"silent@0", "0"},
                                                      {"silent@3", "3"},
                                                      {"silent@2-4", "234"},
                                                      {"silent@4-", "45"},
                                                      {"silent@*", "12345"}};
  for (const auto& [fault, silent] : rows) {
    std::string found;
    for (unsigned i = 0; i <= 5; ++i) found += Faults{fault}.planFor(i).silent ? std::to_string(i) : "";
    EXPECT_EQ(found, silent) << fault;
  }
  for (const std::string_view text :
       {"", "silent", "nonsense@1", "status@1", "late@1", "short@1", "busy@1", "pending@1", "code@1",
        "status=x@1", "silent@", "silent@x", "silent@4-3", "silent@-2", "silent@1 "}) {
    EXPECT_THROW(parseFault(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace velk::simulator
