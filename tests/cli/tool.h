#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "platform/posix/fd.h"

namespace velk::cli {

/// How long a test waits for a tool to say something, which it mostly does at once: longer than any machine
/// takes.
constexpr int patience = 120'000;  // ms

/// What a descriptor still gives, once nobody writes any more.
inline std::string rest(int fd) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (auto n = read(fd, buffer.data(), buffer.size()); n > 0; n = read(fd, buffer.data(), buffer.size())) {
    text.append(buffer.data(), static_cast<std::size_t>(n));
  }
  return text;
}

/// Takes the place of this process, which is a new one, with a command as a shell reads it.
[[noreturn]] inline void become(const std::string& command) {
  setenv("PATH", (VELK_BIN_DIR ":" + std::string(getenv("PATH"))).c_str(),
         1);  // NOLINT(concurrency-mt-unsafe)
  // Those that started the tests may have ignored it, and then it would stay so.
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) std::signal(number, SIG_DFL);
  execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
  _exit(127);
}

/// A command of a shell, running: "exec velk-sim --for 600"; what it prints on standard output can be read
/// line by line.
class Tool {
 public:
  explicit Tool(const std::string& command) : complaints_(memfd_create("complaints", MFD_CLOEXEC)) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    pid_ = fork();
    if (pid_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      dup2(complaints_.get(), STDERR_FILENO);
      const platform::Fd nothing(open("/dev/null", O_RDONLY));
      dup2(nothing.get(), STDIN_FILENO);  // nobody can be asked
      become(command);
    }
    close(ends[1]);
    out_ = platform::Fd(ends[0]);
  }

  ~Tool() {
    if (pid_ > 0) finish();
  }
  Tool(const Tool&) = delete;
  Tool& operator=(const Tool&) = delete;

  /// The next line; empty at the end, or when none comes.
  std::string line() {
    while (text_.find('\n') == std::string::npos && more()) {
    }
    const auto end = text_.find('\n');
    std::string first = text_.substr(0, end);
    text_.erase(0, end == std::string::npos ? end : end + 1);
    return first;
  }

  /// The next line behind its first words.
  std::string lineBehind(const std::string& start) {
    const std::string next = line();
    EXPECT_TRUE(next.starts_with(start)) << next;
    return next.substr(std::min(start.size(), next.size()));
  }

  /// Reads on to a line with such a start; false when the tool ends before it.
  bool reaches(const std::string& start) {
    for (std::string next = line(); !next.empty(); next = line()) {
      if (next.starts_with(start)) return true;
    }
    return false;
  }

  std::string all() {
    while (more()) {
    }
    return std::move(text_);
  }

  /// Asks the tool to end, as a service manager would or Ctrl-C. Returns its exit status.
  int finish(int signal = SIGTERM) {
    kill(pid_, signal);
    return wait();
  }

  [[nodiscard]] pid_t pid() const { return pid_; }

  int wait() {
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  /// What it said on standard error, once it has ended.
  std::string complaint() {
    lseek(complaints_.get(), 0, SEEK_SET);
    return rest(complaints_.get());
  }

 private:
  bool more() {
    pollfd watched{.fd = out_.get(), .events = POLLIN, .revents = 0};
    std::array<char, 4096> buffer{};
    if (poll(&watched, 1, patience) <= 0) return false;
    const auto n = read(out_.get(), buffer.data(), buffer.size());
    if (n > 0) text_.append(buffer.data(), static_cast<std::size_t>(n));
    return n > 0;
  }

  pid_t pid_ = -1;
  platform::Fd out_;
  platform::Fd complaints_;
  std::string text_;
};

struct Ended {
  int status;
  std::string text;
  std::string complaint;

  [[nodiscard]] bool shows(const std::string& part) const { return text.find(part) != std::string::npos; }
  [[nodiscard]] bool tells(const std::string& part) const {
    return complaint.find(part) != std::string::npos;
  }
};

inline Ended shell(const std::string& command) {
  Tool tool(command);
  std::string text = tool.all();
  const int status = tool.wait();
  return {.status = status, .text = std::move(text), .complaint = tool.complaint()};
}

inline Ended velk(const std::string& words) {
  return shell("velk " + words);
}

/// A simulated controller, and velk in front of it.
class House {
 public:
  explicit House(const std::string& options = {}) : simulator("exec velk-sim --tcp 0 --for 600 " + options) {}

  /// A command with the link behind its name.
  [[nodiscard]] std::string with(const std::string& line) const {
    const auto end = std::min(line.find(' '), line.size());
    return line.substr(0, end) + " --tcp " + link + line.substr(end);
  }
  [[nodiscard]] Ended velk(const std::string& line) const { return cli::velk(with(line)); }

  Tool simulator;
  const std::string link = simulator.lineBehind("tcp Q ");
};

/// A folder of its own for each test.
class Folder {
 public:
  Folder() { std::filesystem::create_directories(path); }
  ~Folder() { std::filesystem::remove_all(path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  [[nodiscard]] std::string operator/(const std::string& name) const { return path + "/" + name; }

  /// Makes a file.
  std::string put(const std::string& name, const std::string& text) const {
    std::ofstream(*this / name) << text;
    return *this / name;
  }

  const std::string path = testing::TempDir() + "velk-" + std::to_string(getpid());
};

inline std::string contentOf(const std::string& path) {
  std::ifstream in(path);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// A backup of a controller in which nothing is configured: lines that are missing in format 1 mean zeros.
constexpr const char* emptyHouse =
    R"({"format":"velk-backup","version":1,"begun":"","link":"","complete":true,)"
    R"("memory":{"V":{},"H":{},"H+":{}},"modules":[]})";

}  // namespace velk::cli
