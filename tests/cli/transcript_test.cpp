#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <sstream>

#include "cli/tool.h"

/// The commands as people see them: each file in transcripts/ is played and has to come out as it stands
/// there.
///
///     # A comment.
///     $ velk-sim OPTIONS      starts a controller, which the commands behind it talk to
///     $ velk COMMAND          blanks part its words, '' is an empty one
///     what it prints
///     ! what it says on standard error
///     ? its exit status, unless that is 0
///
/// "..." stands for anything, also for lines, and HOUSE for the address of that controller. The files that a
/// command names lie in a folder of its own.
namespace velk::cli {
namespace {

bool fits(std::string_view text, std::string_view expected) {
  const auto gap = expected.find("...");
  if (gap == std::string_view::npos) return text == expected;
  if (!text.starts_with(expected.substr(0, gap))) return false;
  const std::string_view behind = expected.substr(gap + 3);
  for (std::size_t i = gap; i <= text.size(); ++i) {
    if (fits(text.substr(i), behind)) return true;
  }
  return false;
}

std::string outcomeOf(const std::string& command) {
  const Ended ended = shell(command);
  std::string outcome = ended.text;
  std::istringstream complaints(ended.complaint);
  for (std::string line; std::getline(complaints, line);) outcome += "! " + line + "\n";
  return ended.status == 0 ? outcome : outcome + "? " + std::to_string(ended.status) + "\n";
}

class TranscriptTest : public testing::TestWithParam<std::string> {
 protected:
  TranscriptTest() { std::filesystem::current_path(folder_.path); }
  ~TranscriptTest() override {
    std::filesystem::current_path(before_);
    unsetenv("VELK_LINK");  // NOLINT(concurrency-mt-unsafe)
  }

  void carryOut(const std::string& command, const std::string& expected, int line) {
    if (command.ends_with(" &")) {
      house_.reset();
      house_.emplace(command.substr(8, command.size() - 10));
      setenv("VELK_LINK", ("tcp://" + house_->link).c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
      return;
    }
    const std::string outcome = outcomeOf(named(command));
    EXPECT_TRUE(fits(outcome, named(expected))) << GetParam() << ":" << line << ": " << command << "\ngives\n"
                                                << outcome << "instead of\n"
                                                << expected;
  }

 private:
  [[nodiscard]] std::string named(std::string text) const {
    for (auto at = text.find("HOUSE"); at != std::string::npos; at = text.find("HOUSE")) {
      text.replace(at, 5, house_->link);
    }
    return text;
  }

  const Folder folder_;
  const std::filesystem::path before_ = std::filesystem::current_path();
  std::optional<House> house_;
};

const std::filesystem::path transcripts = VELK_TESTS_DIR "/cli/transcripts";

TEST_P(TranscriptTest, ComesOutAsItStandsThere) {
  std::ifstream in(transcripts / (GetParam() + ".txt"));
  std::string command;
  std::string expected;
  int number = 0;
  int start = 0;
  const auto finish = [&] {
    if (start != 0) carryOut(command, expected, start);
  };
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line == "#" || line.starts_with("# ")) continue;
    if (!line.starts_with("$ ")) {
      expected += line + "\n";
      continue;
    }
    finish();
    command = line.substr(2);
    expected.clear();
    start = number;
  }
  ASSERT_NE(start, 0) << "nothing was played";
  finish();
}

std::vector<std::string> names() {
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(transcripts))
    found.push_back(entry.path().stem());
  return found;
}

INSTANTIATE_TEST_SUITE_P(All, TranscriptTest, testing::ValuesIn(names()),
                         [](const auto& test) { return test.param; });

}  // namespace
}  // namespace velk::cli
