#include "cli/velk/connection/link_text.h"

#include <gtest/gtest.h>

namespace velk::cli {
namespace {

TEST(LinkText, MeansWhatTheOptionsSay) {
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
      {"backup:a?b", "a?b  2 9600", "backup:a?b"},
  };
  for (const auto& [text, meaning, name] : rows) {
    const LinkOptions link = parseLink(text);
    EXPECT_EQ((link.simulate ? "simulated " : "") + link.tcp + link.serial + link.backup + " " +
                  link.password + " " + std::to_string(link.busAddress) + " " + std::to_string(link.baud) +
                  (link.fast ? " fast" : ""),
              meaning);
    EXPECT_EQ(nameOf(link), name);
  }
}

}  // namespace
}  // namespace velk::cli
