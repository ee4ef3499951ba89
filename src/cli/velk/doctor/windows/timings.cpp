#include "cli/velk/doctor/windows/timings.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

#include "component/serial.h"
#include "link/frames.h"
#include "link/tcp_frames.h"
#include "link/wait.h"
#include "platform/windows/socket.h"

namespace velk::cli {
namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

template <class Body>
double microsecondsOf(Body body) {
  platform::Host& host = platform::threadHost();
  const auto start = host.steady();
  body();
  return Microseconds(host.steady() - start).count();
}

std::string rounded(double value, int digits) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.*f", digits, value);
  return text.data();
}

double medianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.at(values.size() / 2);
}

/// The whole of a client: blocking calls, one after another.
class BareClient {
 public:
  BareClient(std::uint16_t port, const std::string& password) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    socket_.reset(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
      fail("connect");
    const BOOL on = TRUE;
    const DWORD longest = 5000;  // ms
    setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
    setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&longest),
               sizeof longest);
    receive();
    exchange(link::requestQ({.function = link::tcpLogin, .data = password}));
  }

  void exchange(const Bytes& request) {
    const auto size = static_cast<int>(request.size());
    if (send(socket_.get(), request.data(), size, 0) != size) fail("send");
    receive();
  }

 private:
  void receive() {
    if (recv(socket_.get(), buffer_.data(), static_cast<int>(buffer_.size()), 0) <= 0) fail("recv");
  }

  [[noreturn]] static void fail(const std::string& call) {
    throw std::runtime_error("bare client: " + call + ": error " + std::to_string(WSAGetLastError()));
  }

  platform::UniqueSocket socket_;
  std::array<char, 512> buffer_{};
};

constexpr Byte bytesRead = 16;

void readOnce(Serial& serial) {
  const Bytes bytes = serial.ReadCom(bytesRead, 1, 0, "V");
  if (bytes.size() != bytesRead + 1) throw std::runtime_error("ReadCom: " + std::to_string(byteAt(bytes, 0)));
}

}  // namespace

Finding checkWaits() {
  struct Wait {
    int milliseconds;
    int times;
  };
  constexpr std::array waits{Wait{1, 20}, Wait{10, 20}, Wait{100, 5}};
  std::string text;
  std::string tooShort;
  for (const Wait& wait : waits) {
    std::vector<double> lasted;
    for (int i = 0; i < wait.times; ++i) {
      lasted.push_back(microsecondsOf([&] {
        link::pause(platform::threadHost(), link::Seconds(wait.milliseconds / 1000.0),
                    platform::Messages::dispatched);
      }));
    }
    const auto [shortest, longest] = std::minmax_element(lasted.begin(), lasted.end());
    const std::string name = std::to_string(wait.milliseconds) + " ms last ";
    text += (text.empty() ? "" : "; ") + name + rounded(medianOf(lasted) / 1000, 2) + " (at most " +
            rounded(*longest / 1000, 2) + ")";
    if (*shortest < wait.milliseconds * 1000) tooShort += name + rounded(*shortest / 1000, 3) + ' ';
  }
  return findingOf(tooShort, text);
}

Finding checkTcpReads(std::uint16_t port, const std::string& password) {
  constexpr int rounds = 9;
  constexpr int reads = 50;
  Serial serial;
  if (const Byte result = serial.OpenTCP("127.0.0.1", static_cast<std::int16_t>(port), password);
      result != 0) {
    return findingOf("OpenTCP: " + std::to_string(result));
  }
  std::vector<double> ours;
  std::vector<double> theirs;
  try {
    BareClient bare(port, password);
    const Bytes request =
        link::requestQ({.data = link::frameFor(link::readRequest(bytesRead, {.page = 1}), serial)});
    const auto each = [](auto body) {
      return microsecondsOf([&] {
               for (int i = 0; i < reads; ++i) body();
             }) /
             reads;
    };
    for (int round = 0; round < rounds; ++round) {
      ours.push_back(each([&] { readOnce(serial); }));
      theirs.push_back(each([&] { bare.exchange(request); }));
    }
  } catch (const std::exception&) {
    serial.CloseTCP();
    throw;
  }
  serial.CloseTCP();
  return findingOf("", rounded(medianOf(ours), 0) + " us each, a bare client " +
                           rounded(medianOf(theirs), 0) + ": " +
                           rounded(medianOf(theirs) / medianOf(ours), 2) + " of its rate");
}

}  // namespace velk::cli
