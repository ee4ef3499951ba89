#include "cli/velk/doctor/component_state.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <fstream>

namespace velk::cli {
namespace {

namespace fs = std::filesystem;

/// An installation: a program beside the library of one bitness, the other one in the folder at its side.
class ComponentStateTest : public testing::Test {
 protected:
  ComponentStateTest() {
    for (const char* const name : {"x64", "x86"}) fs::create_directories(folder / name);
    makeLibrary(good64, "\x64\x86");
    makeLibrary(good32, "\x4c\x01");
    std::ofstream(folder / "text.dll") << "no library at all";
  }
  ~ComponentStateTest() override { fs::remove_all(folder); }

  static void makeLibrary(const fs::path& path, const std::string& machine) {
    std::string bytes(128, '\0');
    bytes[60] = 64;
    bytes.replace(64, 4, std::string("PE\0\0", 4)).replace(68, 2, machine);
    std::ofstream(path, std::ios::binary) << bytes;
  }

  /// What is registered at the four places: for all and this user with 64 bits, the same with 32.
  [[nodiscard]] ComponentState state(const std::array<fs::path, 4>& libraries,
                                     std::uint32_t result = 0) const {
    return {.registrations = {{wide, Scope::everybody, libraries[0]},
                              {wide, Scope::user, libraries[1]},
                              {narrow, Scope::everybody, libraries[2]},
                              {narrow, Scope::user, libraries[3]}},
            .program = folder / "x64" / "velk.exe",
            .narrowFolder = "/Windows/SysWOW64",
            .result = result};
  }

  static std::vector<std::string> commands(const ComponentState& state) {
    std::vector<std::string> lines;
    for (const Remedy& remedy : remediesFor(state)) lines.push_back(remedy.command);
    return lines;
  }

  const fs::path folder = testing::TempDir() + "velk-component-" + std::to_string(getpid());
  const fs::path good64 = folder / "x64" / "VelkCom.dll";
  const fs::path good32 = folder / "x86" / "VelkCom.dll";
  const std::string all64 = "regsvr32 " + good64.string();
  const std::string user64 = "regsvr32 /n /i:user " + good64.string();
  const std::string all32 = "/Windows/SysWOW64/regsvr32 " + good32.string();
  const std::string user32 = "/Windows/SysWOW64/regsvr32 /n /i:user " + good32.string();
  using Lines = std::vector<std::string>;
};

TEST_F(ComponentStateTest, RemediesForWhatIsMissing) {
  EXPECT_EQ(commands(state({good64, "", "", good32})), Lines{});
  EXPECT_EQ(commands(state({"", "", good32, ""})), (Lines{all64, user64}));
  EXPECT_EQ(commands(state({good64, "", "", ""})), (Lines{all32, user32}));
  EXPECT_EQ(commands(state({"", "", "", ""})), (Lines{all64, user64, all32, user32}));
  // The user's own comes first: it is the one to mend.
  EXPECT_EQ(commands(state({good64, folder / "gone.dll", good32, good64})), (Lines{user64, user32}));
  EXPECT_EQ(commands(state({folder / "gone.dll", good64, folder / "text.dll", ""})), Lines{all32});
  EXPECT_EQ(commands(state({"", good64, "", good32}, 0x80040154)), Lines{all64})
      << "an administrator's program";
}

TEST_F(ComponentStateTest, RemediesElsewhere) {
  ComponentState narrowSystem{.registrations = {{narrow, Scope::everybody, ""}, {narrow, Scope::user, ""}},
                              .program = folder / "alone" / "velk.exe"};
  EXPECT_EQ(commands(narrowSystem),
            (Lines{"regsvr32 " + good32.string(), "regsvr32 /n /i:user " + good32.string()}));
  narrowSystem.program = "/nowhere/at all/velk.exe";
  EXPECT_EQ(commands(narrowSystem).front(), "regsvr32 VelkCom.dll");
  const fs::path spaced = folder / "a b" / "VelkCom.dll";
  fs::create_directories(spaced.parent_path());
  makeLibrary(spaced, "\x4c\x01");
  narrowSystem.program = spaced.parent_path() / "velk.exe";
  EXPECT_EQ(commands(narrowSystem).front(), "regsvr32 \"" + spaced.string() + '"');
}

TEST_F(ComponentStateTest, FaultsAndFailuresInWords) {
  EXPECT_EQ(faultOf({wide, Scope::user, good64}), "");
  EXPECT_EQ(faultOf({wide, Scope::user, ""}), "");
  EXPECT_EQ(faultOf({wide, Scope::user, good32}), "the file is not for these programs");
  EXPECT_EQ(faultOf({wide, Scope::user, folder / "text.dll"}), "the file is not for these programs");
  EXPECT_EQ(faultOf({wide, Scope::user, folder / "gone.dll"}), "the file is not there");
  EXPECT_EQ(failureOf({}), "");
  EXPECT_EQ(failureOf({.result = 0x800700C1}), "its file is for programs of the other bitness (0x800700c1)");
  EXPECT_EQ(failureOf({.result = 0x80004005}), "it cannot be created (0x80004005)");
}

}  // namespace
}  // namespace velk::cli
