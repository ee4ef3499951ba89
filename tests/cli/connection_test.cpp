#include "cli/connection.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "cli/link_text.h"
#include "cli/tool.h"

/// How a link is named.
namespace velk::cli {
namespace {

/// What a text means, in the words of the options; or why it means nothing.
std::string meaningOf(const std::string& text) {
  try {
    const LinkOptions link = parseLink(text);
    return (link.simulate ? "simulated " : "") + link.tcp + link.serial + " " + link.password + " " +
           std::to_string(link.busAddress) + " " + std::to_string(link.baud) + (link.fast ? " fast" : "");
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(ConnectionTest, LinksAsOneText) {
  const struct {
    const char* text;
    const char* meaning;
    const char* name;  ///< which opens the same one, but for the password
  } rows[] = {
      {"tcp://h:1?password=a\\x26b&address=99", "h:1 a&b 99 9600", "tcp://h:1?address=99"},
      {"tcp://h:1", "h:1  2 9600", "tcp://h:1?address=2"},
      {"serial:/dev/x?fast&baud=32767&address=2", "/dev/x  2 32767 fast",
       "serial:/dev/x?fast&baud=32767&address=2"},
      {"serial:COM3?baud=1", "COM3  2 1", "serial:COM3?baud=1&address=2"},
      {"simulate:", "simulated   2 9600", "simulate:"},
  };
  for (const auto& [text, meaning, name] : rows) {
    EXPECT_EQ(meaningOf(text), meaning);
    EXPECT_EQ(nameOf(parseLink(text)), name);
  }
  const std::pair<const char*, const char*> wrong[] = {
      {"x", "starts with tcp://, serial: or simulate:, unlike \"x\""},
      {"tcp:x", "starts with tcp://, serial: or simulate:, unlike \"tcp:x\""},
      {"tcp://", "misses its target, or has one too many"},
      {"simulate:x", "misses its target, or has one too many"},
      {"tcp://h:1?fast", "has no \"fast\" in a link of this kind"},
      {"serial:x?password=a", "has no \"password\" in a link of this kind"},
      {"simulate:?address=5", "has no \"address\" in a link of this kind"},
      {"serial:x?baud=0", "needs baud=1 to 32767"},
      {"serial:x?baud=32768", "needs baud=1 to 32767"},
      {"tcp://h:1?address=1", "needs address=2 to 99"},
      {"tcp://h:1?address=100", "needs address=2 to 99"},
      {"serial:x?address=5x", "needs address=2 to 99"},
  };
  for (const auto& [text, why] : wrong) EXPECT_EQ(meaningOf(text), std::string("the link text ") + why);
}

TEST(ConnectionTest, TheLinkThatIsPrintedOpensTheSameOne) {
  House house("--fast --baud 19200 --password 'a&b'");
  const std::string device = house.simulator.lineBehind("fast ");
  const auto status = [](const std::string& options) {
    return velk("status --json " + options).text.substr(0, 80);
  };
  const std::string fast = "serial:" + device + "?fast&baud=19200&address=2";
  const std::string tcp = "tcp://" + house.link + "?address=2";
  const std::string saysFast = R"({"link":")" + fast + R"(","kind":"fast",)";
  EXPECT_TRUE(status("--serial " + device + " --fast --baud 19200").starts_with(saysFast));
  EXPECT_TRUE(status("--link '" + fast + "'").starts_with(saysFast));
  setenv("VELK_LINK", (tcp + "&password=a\\x26b").c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  EXPECT_TRUE(status("").starts_with(R"({"link":")" + tcp + R"(","kind":"Q",)")) << "no password is shown";
  unsetenv("VELK_LINK");  // NOLINT(concurrency-mt-unsafe)
}

}  // namespace
}  // namespace velk::cli
