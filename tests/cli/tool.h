#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <utility>
#include <vector>

namespace velk::cli {

using Words = std::vector<std::string>;

/// How long a test waits for a tool to say something, which it mostly does at once: longer than any machine
/// takes.
constexpr int patience = 120'000;  // ms

/// One of the tools, running; what it prints on standard output can be read line by line.
class Tool {
 public:
  /// `stream` is the one that can be read; the other one goes nowhere.
  Tool(const std::string& name, Words words, int stream = STDOUT_FILENO) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    words.insert(words.begin(), std::string(VELK_BIN_DIR) + "/" + name);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
      // Those that started the tests may have ignored it, and then it would stay so.
      for (const int number : {SIGINT, SIGTERM, SIGHUP}) std::signal(number, SIG_DFL);
      const int nothing = open("/dev/null", O_WRONLY);
      dup2(stream == STDOUT_FILENO ? ends[1] : nothing, STDOUT_FILENO);
      dup2(stream == STDERR_FILENO ? ends[1] : nothing, STDERR_FILENO);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    close(ends[1]);
    out_ = ends[0];
  }

  ~Tool() {
    if (pid_ > 0) finish();
    close(out_);
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

  int wait() {
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  bool more() {
    pollfd watched{.fd = out_, .events = POLLIN, .revents = 0};
    std::array<char, 4096> buffer{};
    if (poll(&watched, 1, patience) <= 0) return false;
    const auto n = read(out_, buffer.data(), buffer.size());
    if (n > 0) text_.append(buffer.data(), static_cast<std::size_t>(n));
    return n > 0;
  }

  pid_t pid_ = -1;
  int out_ = -1;
  std::string text_;
};

struct Ended {
  int status;
  std::string text;
};

inline Ended velk(Words words) {
  Tool tool("velk", std::move(words));
  std::string text = tool.all();
  return {.status = tool.wait(), .text = std::move(text)};
}

/// What velk says on standard error.
inline std::string complaintOf(Words words) {
  return Tool("velk", std::move(words), STDERR_FILENO).all();
}

inline Ended call(Words words) {
  words.insert(words.begin(), "call");
  return velk(std::move(words));
}

/// The part of a line behind its first words.
inline std::string behind(const std::string& line, const std::string& start) {
  EXPECT_EQ(line.substr(0, start.size()), start);
  return line.substr(std::min(start.size(), line.size()));
}

}  // namespace velk::cli
