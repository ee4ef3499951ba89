#include "cli/files.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <thread>

#include "cli/failure.h"
#include "cli/tool.h"

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

class FilesTest : public testing::Test {
 protected:
  [[nodiscard]] std::string file(const std::string& name) const { return folder_ / name; }

  [[nodiscard]] std::size_t count() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_.path), {}));
  }

  /// What writing a text, or finding out that it cannot be written, ends with.
  static std::string refusal(const std::string& path, std::string_view text) {
    try {
      OutputFile(path).write(text);
      return {};
    } catch (const Failure& failure) {
      EXPECT_EQ(failure.status, badFile);
      return failure.what();
    }
  }

  const Folder folder_;
};

TEST_F(FilesTest, ReplacesAFileWithItsModeBehindItsLink) {
  std::ofstream(file("old")) << "before";
  fs::permissions(file("old"), fs::perms{0600});
  fs::create_directory(file("folder"));
  fs::create_symlink("../old", file("folder/link"));
  fs::create_symlink("new", file("dangling"));
  {
    OutputFile link(file("folder/link"));
    OutputFile dangling(file("dangling"));
    EXPECT_EQ(readFile(file("old")), "before") << "opening changes nothing";
    EXPECT_FALSE(fs::exists(file("new")));
    EXPECT_EQ(count(), 3U);
    link.write("a longer text");
    link.write("after");
    dangling.write("new");
    OutputFile(file("like"), file("old")).write("as private");
  }
  EXPECT_EQ(readFile(file("old")), "after");
  EXPECT_EQ(fs::status(file("old")).permissions(), fs::perms{0600});
  EXPECT_EQ(fs::status(file("like")).permissions(), fs::perms{0600});
  EXPECT_TRUE(fs::is_symlink(file("folder/link")));
  EXPECT_TRUE(fs::is_symlink(file("dangling")));
  EXPECT_EQ(readFile(file("new")), "new");
  EXPECT_EQ(count(), 5U) << "nothing else is left";
}

TEST_F(FilesTest, WritesToDevicesAndPipesAsTheyAre) {
  EXPECT_EQ(refusal("/dev/full", "x"), "/dev/full: No space left on device");
  ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
  std::string received;
  std::thread reader([&] { received = readFile(file("pipe")); });
  OutputFile(file("pipe")).write("through");
  reader.join();
  EXPECT_EQ(received, "through");
  EXPECT_TRUE(fs::is_fifo(file("pipe")));
}

TEST_F(FilesTest, TellsTheSystemsReasonBeforeAnythingIsWritten) {
  const std::string longName(300, 'n');
  fs::create_directory(file("folder"));
  const std::pair<std::string, std::string> rows[] = {
      {file("nowhere/file"), "No such file or directory"},
      {file("folder"), "Is a directory"},
      {file(longName), "File name too long"},
      {"", "No such file or directory"},
      {"/dev/null/file", "Not a directory"},
  };
  for (const auto& [path, reason] : rows) {
    EXPECT_THROW(OutputFile{path}, Failure) << path;
    EXPECT_EQ(refusal(path, "x"), path + ": " + reason);
  }
  EXPECT_THROW(readFile(file("folder")), Failure);
  EXPECT_FALSE(readFileIfThere(file("nothing")));
  EXPECT_THROW(readFile("/dev/zero"), Failure) << "has no end";
}

TEST_F(FilesTest, LeavesNoHalfFileOnAFullDisk) {
  std::ofstream(file("old")) << "before";
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const rlimit small{.rlim_cur = 1000, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const std::string refused = refusal(file("old"), std::string(1001, 'x'));
  const std::string taken = refusal(file("new"), std::string(1000, 'x'));
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(refused, file("old") + ": File too large");
  EXPECT_EQ(taken, "");
  EXPECT_EQ(readFile(file("old")), "before");
  EXPECT_EQ(count(), 2U);
}

}  // namespace
}  // namespace velk::cli
