#include "cli/velk/connection/link_failure.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "cli/tool.h"
#include "cli/velk/connection/port_failure.h"
#include "support/real_peers.h"

namespace velk::cli {
namespace {

using test::Listener;

/// As long as it lives this thread is a user without rights, where it is root.
class Nobody {
 public:
  Nobody() { static_cast<void>(seteuid(getuid() == 0 ? 65534 : getuid())); }
  ~Nobody() { static_cast<void>(seteuid(getuid())); }
  Nobody(const Nobody&) = delete;
  Nobody& operator=(const Nobody&) = delete;
};

TEST(LinkFailure, PermissionsNameTheGroupThatHelps) {
  const Folder folder;
  const std::string path = folder.put("device", "");
  constexpr gid_t dialout = 20;
  EXPECT_TRUE(getuid() != 0 || chown(path.c_str(), 0, dialout) == 0);
  struct stat state {};
  stat(path.c_str(), &state);
  const std::string own = "no permission; only its owner and root may open it";
  const std::string join = std::string("no permission; join its group with \"sudo adduser $USER ") +
                           getgrgid(state.st_gid)->gr_name + "\" and log in again";
  for (const auto& [mode, reason] : {std::pair(0040, own), {0020, own}, {0060, join}}) {
    chmod(path.c_str(), static_cast<mode_t>(mode));
    const Nobody nobody;
    EXPECT_EQ(whyNoPort(path, 9600), reason);
  }
}

/// A peer that is no interface, at each end of its patience.
TEST(LinkFailure, TellsApartWhoHangsUpSaysNothingAndSaysSomethingElse) {
  const struct {
    bool hangsUp;
    std::string says;
    const char* reason;
  } rows[] = {{true, "", "it hangs up at once; another program may be connected already"},
              {false, "", "it takes the connection and says nothing; check address and port"},
              {false, "SSH-2.0", "it answers, but is no interface of a controller; check address and port"}};
  for (const auto& [hangsUp, says, reason] : rows) {
    const Listener listener;
    std::optional<platform::Fd> far;
    std::thread peer([&, hangs = hangsUp, text = says] {
      far = listener.accept();
      if (hangs) return far->reset();
      EXPECT_EQ(write(far->get(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
    });
    const LinkOptions link{.tcp = "127.0.0.1:" + std::to_string(listener.port)};
    Connection connection(link);
    peer.join();
    EXPECT_EQ(failureToOpen(link, connection.result(), connection.serial().TCP),
              "cannot open " + link.tcp + ": " + reason + " (result 252)");
    connection.serial().CloseTCP();
  }
}

}  // namespace
}  // namespace velk::cli
