#include <gtest/gtest.h>
#include <pty.h>

#include <cstdlib>

#include "cli/tool.h"

/// What people see: questions and progress on a terminal.
namespace velk::cli {
namespace {

/// What a person types when the terminal shows a text, behind what the last one waited for.
struct Typed {
  std::string shown;
  std::string keys;
};

/// Runs velk on a terminal of its own, of so many columns. Its text is what the terminal shows.
Ended talkTo(const std::string& line, const std::vector<Typed>& talk, unsigned short columns = 80,
             const std::string& environment = {}) {
  int terminal = -1;
  winsize size{.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  const pid_t pid = forkpty(&terminal, nullptr, nullptr, &size);
  if (pid == 0) become("exec env " + environment + " velk " + line);
  const platform::Fd fd(terminal);
  std::string text;
  std::array<char, 4096> buffer{};
  pollfd watched{.fd = terminal, .events = POLLIN, .revents = 0};
  const auto type = [&](const std::string& keys) {
    EXPECT_EQ(write(terminal, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
  };
  std::size_t seen = 0;
  auto next = talk.begin();
  int left = patience;
  while (left > 0) {
    constexpr int pause = 200;  // ms
    if (poll(&watched, 1, pause) == 0) {
      left -= pause;
      continue;
    }
    const auto n = read(terminal, buffer.data(), buffer.size());
    if (n <= 0) break;
    text.append(buffer.data(), static_cast<std::size_t>(n));
    for (; next != talk.end() && text.find(next->shown, seen) != std::string::npos; ++next) {
      seen = text.find(next->shown, seen) + next->shown.size();
      type(next->keys);
    }
  }
  EXPECT_TRUE(next == talk.end()) << next->shown << " was not shown in\n" << text;
  EXPECT_GT(left, 0) << "it does not end\n" << text;
  if (next != talk.end() || left <= 0) kill(pid, SIGKILL);
  int status = 0;
  waitpid(pid, &status, 0);
  return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1, .text = text, .complaint = {}};
}

/// The same, where a person answers one question, which may not come.
Ended onTerminal(const std::string& line, const std::string& answer = {},
                 const std::string& question = "[y/N] ", unsigned short columns = 80,
                 const std::string& environment = "TERM=xterm LC_ALL=C.UTF-8") {
  return talkTo(line, answer.empty() ? std::vector<Typed>() : std::vector<Typed>{{question, answer}}, columns,
                environment);
}

TEST(Terminal, ARestorationAsksBeforeItWrites) {
  const Folder folder;
  const House house("--house " + folder.put("empty", emptyHouse));
  ASSERT_EQ(velk("backup --simulate " + folder / "a").status, 0);
  const std::string restore = house.with("restore --only presets " + folder / "a");
  for (const char* const no : {"n\n", "\n", "yesterday\n"})
    EXPECT_EQ(onTerminal(restore, no).status, 1) << no;
  EXPECT_EQ(house.velk("presets").text, "there are no presets\n") << "nothing was written";
  const Ended written = onTerminal(restore, "y\n");
  EXPECT_EQ(written.status, 0);
  EXPECT_TRUE(written.shows("6 things written and read back")) << written.text;
  EXPECT_TRUE(house.velk("presets").shows("\n2       Evening "));
}

TEST(Terminal, ARestorationAsksWhetherItIsTheHouse) {
  const Folder folder;
  ASSERT_EQ(velk("backup --simulate " + folder / "a").status, 0);
  const std::string link = " --link backup:" + folder / "a";
  shell("velk backup --quiet" + link + " " + folder / "b; for n in $(seq 1 21); do velk call" + link +
        " WriteCom 5 $n 64 V Other; done");
  const std::string restore = "restore --yes --only infrared" + link + " " + folder / "b";
  EXPECT_EQ(velk(restore).status, 2);
  const std::string asks = "restore --only infrared" + link + " " + folder / "b";
  const Ended no = onTerminal(asks, "n\n");
  EXPECT_EQ(no.status, 1);
  EXPECT_TRUE(no.shows("Go on all the same? [y/N] ")) << no.text;
  EXPECT_EQ(onTerminal(asks, "y\n").status, 0);
}

TEST(Terminal, APasswordThatIsMissingIsAskedForAndNotShown) {
  const House house("--password abcd");
  const std::string clock = "clock --tcp " + house.link;
  const std::string question = "password of " + house.link + ": ";
  const Ended good = onTerminal(clock, "abcd\n", question);
  EXPECT_EQ(good.status, 0);
  EXPECT_TRUE(good.shows(question + "\r\ncontroller ")) << good.text;
  const struct {
    const char* typed;
    int status;
    const char* outcome;
  } rows[] = {{"no\n", 4, "the interface refuses the password"},
              {"\n", 4, "asks for a password"},
              {"abcde\n", 2, "at most four characters"},
              {"ab\x03", 130, "interrupted"}};
  for (const auto& row : rows) {
    const Ended bad = onTerminal(clock, row.typed, question);
    EXPECT_EQ(bad.status, row.status) << row.typed;
    EXPECT_TRUE(bad.shows(row.outcome)) << bad.text;
  }
}

TEST(Terminal, AFileChangedByHandIsAskedAboutBeforeTheLinkIsOpened) {
  const Folder folder;
  shell("velk backup --simulate - | sed 's/\"0500\": \"0005/\"0500\": \"0006/' >" + folder / "edited");
  const std::string restore = "restore --tcp 127.0.0.1:1 " + folder / "edited";
  EXPECT_EQ(onTerminal(restore, "n\n").status, 1);
  const Ended agreed = onTerminal(restore, "y\n");
  EXPECT_EQ(agreed.status, 4);
  EXPECT_TRUE(agreed.shows("was changed after velk wrote it")) << agreed.text;
}

TEST(Terminal, ABackupShowsHowFarItIs) {
  // The bar is drawn when a tenth of a second has passed: the second reply comes later than that.
  const House house("--fault late=300@2");
  const Folder folder;
  const std::string backup = house.with("backup " + folder / "a");
  const Ended ended = onTerminal(backup);
  EXPECT_EQ(ended.status, 0);
  EXPECT_TRUE(
      ended.shows("\r\x1b[?7lbackup [.............................."
                  "] 0 %  "))
      << ended.text;
  EXPECT_TRUE(ended.shows(" s left\x1b[K")) << ended.text;
  EXPECT_FALSE(velk(backup).tells(" % ")) << "but not in a file or a pipe";
}

TEST(Terminal, LinesThatWereKeptMakeABackupNoFaster) {
  const Folder folder;
  const std::string backup = "backup " + folder / "a";
  ASSERT_TRUE(House("--fault disconnect@207").velk(backup).tells("206 lines are kept"));
  // 51 of them are read again first.
  const std::string text = onTerminal(House("--fault late=300@52").with(backup)).text;
  const auto rate = text.find(" %  ");
  ASSERT_NE(rate, std::string::npos) << text;
  EXPECT_LT(std::atoi(text.c_str() + rate + 4), 4) << text;
}

TEST(Terminal, AllLongReadsShowHowFarTheyAre) {
  for (const auto& [command, bar] : {std::pair("outputs", "outputs ["),
                                     {"links", "links ["},
                                     {"presets", "presets ["},
                                     {"switch-times --json", "switch times ["},
                                     {"simulation", "simulation ["},
                                     {"week", "switch times ["},
                                     {"output nobody", "names ["}}) {
    const House house("--fault late=150@2-9");
    const Ended ended = onTerminal(house.with(command));
    EXPECT_TRUE(ended.shows("\r\x1b[?7l" + std::string(bar) + "..............................] "))
        << ended.text;
    EXPECT_TRUE(ended.shows("\x1b[K\x1b[?7h\r\x1b[K")) << "taken away at the end";
    EXPECT_FALSE(house.velk(command).tells(" % ")) << command;
  }
}

TEST(Terminal, TheWeekTakesItsWidthAndHalfBlocksInTwoColours) {
  const std::string coloured = onTerminal("week --simulate", "", "", 200).text;
  const std::string times = "\x1b[94m\u2580\x1b[0m";
  const std::string events = "\x1b[33m\u2584\x1b[0m";
  EXPECT_NE(coloured.find("  |" + std::string(45, ' ') + times + std::string(63, ' ') + events +
                          std::string(34, ' ') + "|"),
            std::string::npos)
      << coloured;
  EXPECT_NE(coloured.find("\nMon-Fri 07:30 " + times + " output 3"), std::string::npos) << "the key's signs";
  EXPECT_NE(coloured.find("\nMon 18:15 " + events + " output 3"), std::string::npos);
  EXPECT_NE(onTerminal("week --simulate", "", "", 40, "TERM=xterm LC_ALL= LC_CTYPE= LANG=nl_BE.utf8")
                .text.find(times),
            std::string::npos);
  // Neither where they are unwanted nor where the terminal does not have them.
  for (const char* const environment :
       {"TERM=xterm LC_ALL=C.UTF-8 NO_COLOR=1", "TERM=dumb LC_ALL=C.UTF-8", "TERM=vt100 LC_ALL=C.UTF-8",
        "-u TERM LC_ALL=C.UTF-8", "TERM=xterm LC_ALL=C LANG=C.UTF-8",
        "TERM=xterm LC_ALL= LC_CTYPE=POSIX LANG=C.UTF-8", "-u LC_ALL -u LC_CTYPE -u LANG TERM=xterm"}) {
    const std::string plain = onTerminal("week --simulate", "", "", 40, environment).text;
    EXPECT_NE(plain.find("\r\nMon       |       #          .     |\r\n"), std::string::npos) << plain;
    EXPECT_EQ(plain.find("\u2580"), std::string::npos) << environment;
  }
}

TEST(Terminal, HeadingsAreBoldUnlessUnwanted) {
  EXPECT_TRUE(onTerminal("presets --simulate").shows("\x1b[1mPreset"));
  setenv("NO_COLOR", "1", 1);  // NOLINT(concurrency-mt-unsafe)
  EXPECT_FALSE(onTerminal("presets --simulate").shows("\x1b[1m"));
  unsetenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe)
}

/// As long as it lives, velk finds its history in a folder.
class StateFolder {
 public:
  explicit StateFolder(const std::string& path) { setenv("XDG_STATE_HOME", path.c_str(), 1); }
  ~StateFolder() { unsetenv("XDG_STATE_HOME"); }
  StateFolder(const StateFolder&) = delete;
  StateFolder& operator=(const StateFolder&) = delete;
};

constexpr const char* prompt = "velk> ";

TEST(Shell, CompletesAndRemembersOnOneLink) {
  const Folder folder;
  const StateFolder state(folder.path);
  const House house("--trace");
  const Ended ended = talkTo(house.with("shell"), {{prompt, "outp\t \t"},
                                                   {"\n5   Hall ceiling\r\n", ""},
                                                   {"velk> output ", "5 na\t\"H\xc3\xa9\"\n"},
                                                   {"output 5: name Hall ceiling -> H\xc3\xa9\r\n", ""},
                                                   {prompt, "output h\xc3\xa9\n"},
                                                   {"output 5 H\xc3\xa9: T1 timer 1", ""},
                                                   {prompt, "outputs --tcp h --password 1234\n"},
                                                   {"no line has options for it", ""},
                                                   {prompt, "\x04"}});
  EXPECT_EQ(ended.status, 0);
  const std::string kept = "output 5 name \"H\xc3\xa9\"\noutput h\xc3\xa9\n";
  EXPECT_EQ(contentOf(folder / "velk/history"), kept) << "no password";
  EXPECT_EQ(std::filesystem::status(folder / "velk/history").permissions(), std::filesystem::perms{0600});
  // The next one finds the lines, the last one first.
  const Ended next = talkTo(house.with("shell"), {{prompt, "\x10\x10\n"}, {"is so already", "exit\n"}});
  EXPECT_EQ(next.status, 0) << next.text;
  EXPECT_EQ(contentOf(folder / "velk/history"), kept + "output 5 name \"H\xc3\xa9\"\n");
}

TEST(Shell, CtrlCBreaksOffTheCommandAlone) {
  const Folder folder;
  const StateFolder state(folder.path);
  const House house("--fault late=600@*");
  const std::string file = folder / "a.json";
  const Ended ended = talkTo(house.with("shell"), {{prompt, "half a line"},
                                                   {"half a line", "\x03"},
                                                   {prompt, "outputs\n"},
                                                   {"outputs [", "\x03"},
                                                   {"velk: interrupted", ""},
                                                   {prompt, "backup " + file + "\n"},
                                                   {" % ", "\x03"},
                                                   {"the same command goes on from there", ""},
                                                   {prompt, "ir-text 3 A --dry-run\n"},
                                                   {"text (none) -> A", "quit\n"}});
  EXPECT_EQ(ended.status, 0) << ended.text;
  EXPECT_FALSE(ended.shows("there is no command")) << ended.text;
}

}  // namespace
}  // namespace velk::cli
