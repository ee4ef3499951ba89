#pragma once

#include <utility>

#include "support/simulated_house.h"
#include "values/hex.h"

namespace velk::test {

using List = std::initializer_list<Byte>;

/// The simulated house behind its fastest link, with all that is sent to it as one text.
class WatchedHouse : public SimulatedHouse {
 protected:
  void SetUp() override { open(LinkKind::ethernetQ); }

  /// The requests since the last look: "read  1 V 0501; write 1 V 0501 05".
  std::string sent() {
    std::string text;
    for (const std::string& request : std::exchange(requests, {}))
      text += (text.empty() ? "" : "; ") + request;
    return text;
  }

  /// What a call came to, and the requests since the last look: "0: write 1 V 0501 05".
  std::string outcome(const std::string& came) { return came + ": " + sent(); }
  std::string outcome(int result) { return outcome(std::to_string(result)); }

  /// Makes a call again for each of its requests, and refuses that one with status 7: the call has to end
  /// there, with 7. `call` brings the house into the state that it needs, and gives the method's result.
  template <class Call>
  void expectEndAtEveryRefusal(Call call) {
    open(LinkKind::ethernetQ);
    call();
    const auto all = std::exchange(requests, {});
    for (auto refused = all.begin(); refused != all.end(); ++refused) {
      openWith("status=7@" + std::to_string(refused - all.begin() + 1));
      EXPECT_EQ(call(), 7) << "the status of a refused request is the result: " << *refused;
      EXPECT_EQ(requests, std::vector(all.begin(), refused + 1)) << "nothing follows a refused request";
    }
    open(LinkKind::ethernetQ);
  }
};

/// Bytes as "0A FF".
inline std::string hex(const Bytes& text) {
  return capitalHex(text, " ");
}

}  // namespace velk::test
