#include <gtest/gtest.h>

#include "component/serial.h"
#include "simulator/link_kind.h"
#include "simulator/loopback_host.h"
#include "support/scripted_peer.h"
#include "values/runtime_error.h"

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

  static constexpr Place place{.dph = 5, .dpl = 0x10};
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

/// In place of the bytes of the struct, some of which are padding.
void PrintTo(const Case& c, std::ostream* out) {
  *out << c.fault;
}

const Case cases[] = {
    {LinkKind::echo, "status=5@1", refusedRead, "\x05"},
    {LinkKind::echo, "silent@1", "\xfc", "\xfd"},
    {LinkKind::echo, "late=900@1", goodRead, Bytes(1, '\0')},
    {LinkKind::echo, "late=1100@1", "\xfc", "\xfd"},
    {LinkKind::echo, "short=0@1", "\xfc", "\xfd"},
    {LinkKind::echo, "foreign=2@1", "\xfc", "\xfd"},
    {LinkKind::echo, "header@1", goodRead, Bytes(1, '\0')},
    {LinkKind::echo, "no-echo@1", "\xfe", "\xfe"},
    {LinkKind::echo, "wrong-echo=4@1", "\xfe", "\xfe"},
    {LinkKind::fast, "status=5@1", "\xfe", "\xfe"},
    {LinkKind::fast, "silent@1", "\xfc", "\xfc"},
    {LinkKind::fast, "late=900@1", goodRead, bytes({0, '#'})},
    {LinkKind::fast, "late=1100@1", "\xfc", "\xfc"},
    {LinkKind::fast, "short=7@1", "\xfc", "\xfc"},
    {LinkKind::fast, "short=3@1", "\xfb", "\xfb"},
    {LinkKind::fast, "header@1", "\xfb", "\xfb"},
    // Found behind the foreign frames, the frame is sent again without spending the attempt.
    {LinkKind::fast, "foreign=2@1", goodRead, bytes({0, '#'})},
    {LinkKind::ethernetQ, "status=5@1", refusedRead, "\x05"},
    {LinkKind::ethernetQ, "silent@1", "\xfc", "\xfc"},
    {LinkKind::ethernetQ, "short=6@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "header@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "foreign@1", "\xfe", "\xfe"},
    {LinkKind::ethernetQ, "disconnect@1", "\xfc", "\xfc"},
    {LinkKind::ethernetS, "status=5@1", refusedRead, "\x05"},
    {LinkKind::ethernetS, "silent@1", "\xfc", "\xfc"},
    {LinkKind::ethernetS, "short=12@1", "\xfe", "\xfe"},
    {LinkKind::ethernetS, "header@1", "\xfc", "\xfc"},
    {LinkKind::ethernetS, "foreign@1", "\xfe", "\xfe"},
    {LinkKind::ethernetS, "disconnect@1", "\xfc", "\xfc"},
};

class FaultTest : public testing::TestWithParam<Case> {};

TEST_P(FaultTest, OneAttemptShowsTheFault) {
  // Over TCP a count of attempts lengthens the wait almost for ever; 0 is the wait of two seconds.
  const Byte attempts = isSerial(GetParam().kind) ? 1 : 0;
  Rehearsal reading(GetParam().kind, {GetParam().fault});
  ASSERT_EQ(reading.opened, 0);
  EXPECT_EQ(reading.read(attempts), GetParam().read);
  Rehearsal writing(GetParam().kind, {GetParam().fault});
  EXPECT_EQ(writing.write(attempts), GetParam().write);
}

TEST_P(FaultTest, TheNextRequestIsGoodAgain) {
  Rehearsal r(GetParam().kind, {GetParam().fault});
  if (isSerial(GetParam().kind)) {
    EXPECT_EQ(r.read(3), goodRead);
  } else if (GetParam().fault != "disconnect@1") {
    r.read(0);
    EXPECT_EQ(r.read(0), goodRead);
  }
}

std::string nameOf(const testing::TestParamInfo<Case>& test) {
  std::string name = "efqs"[static_cast<int>(test.param.kind)] + std::string("_").append(test.param.fault);
  for (char& c : name) c = isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
  return name;
}

INSTANTIATE_TEST_SUITE_P(Kinds, FaultTest, testing::ValuesIn(cases), nameOf);

TEST(FaultsTest, ARefusedWriteChangesNothingAndALostReplyDoes) {
  Rehearsal refused(LinkKind::fast, {"status=5@*"});
  EXPECT_EQ(refused.write(0), "\xfe");
  EXPECT_EQ(refused.stored(), "\x11\x22");
  Rehearsal silent(LinkKind::fast, {"silent@*"});
  EXPECT_EQ(silent.write(1), "\xfc");
  EXPECT_EQ(silent.stored(), "\x33\x44");
}

TEST(FaultsTest, LateOverTcpWithinAndBeyondTheWait) {
  Rehearsal within(LinkKind::ethernetQ, {"late=1900@1"});
  EXPECT_EQ(within.read(0), goodRead);
  Rehearsal beyond(LinkKind::ethernetQ, {"late=2100@1"});
  EXPECT_EQ(beyond.read(0), "\xfc");
  Rehearsal patient(LinkKind::ethernetS, {"late=60000@1"});
  EXPECT_EQ(patient.read(1), goodRead);
}

TEST(FaultsTest, TheLoginIsRequestZero) {
  EXPECT_EQ(Rehearsal(LinkKind::ethernetQ, {"status=9@0"}).opened, 9);
  EXPECT_EQ(Rehearsal(LinkKind::ethernetQ, {"silent@0"}).opened, 252);
  EXPECT_EQ(Rehearsal(LinkKind::ethernetQ, {"silent@*"}).opened, 0);
}

TEST(FaultsTest, ASerialLineThatIsPulledRaisesAnError) {
  for (const LinkKind kind : {LinkKind::echo, LinkKind::fast}) {
    Rehearsal r(kind, {"disconnect@1"});
    EXPECT_THROW(r.read(1), RuntimeError);
  }
}

TEST(FaultsTest, ARequestWithTooFewDataDoesNotSpoilTheNextOne) {
  Rehearsal r(LinkKind::echo, {});
  EXPECT_EQ(r.serial.WriteCom(4, 5, 0x10, "V", "ab", 2), "\xfd");
  EXPECT_EQ(r.read(1), goodRead);
}

TEST(FaultsTest, ParsesRangesAndDefaults) {
  const Faults faults{"status=7@3", "late=500@2-4", "foreign@6-", "wrong-echo@1"};
  EXPECT_EQ(faults.planFor(3).status, 7);
  EXPECT_EQ(faults.planFor(3).late.count(), 500);
  EXPECT_EQ(faults.planFor(4).status, std::nullopt);
  EXPECT_EQ(faults.planFor(5).foreign, 0U);
  EXPECT_EQ(faults.planFor(1000).foreign, 1U);
  EXPECT_EQ(faults.planFor(1).wrongEcho, 1U);
}

TEST(FaultsTest, SaysWhatIsWrong) {
  for (const std::string_view text :
       {"", "silent", "nonsense@1", "status@1", "status=256@1", "status=x@1", "silent=1@1", "silent@",
        "silent@x", "silent@4-2", "silent@-2", "late=@1", "silent@1 "}) {
    EXPECT_THROW(parseFault(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace velk::simulator
