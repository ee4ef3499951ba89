#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <list>
#include <optional>
#include <thread>

#include "cli/sim/web/page_site.h"
#include "cli/tool.h"
#include "simulator/serial_sessions.h"

namespace velk::cli {
namespace {

/// A connection to the page's server, as bytes.
class Browser {
 public:
  explicit Browser(const std::string& port) : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{.sin_family = AF_INET,
                        .sin_port = htons(static_cast<std::uint16_t>(std::stoi(port))),
                        .sin_addr = {htonl(INADDR_LOOPBACK)}};
    if (connect(fd_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("nobody listens");
    }
  }

  void send(const std::string& text) const { ::send(fd_.get(), text.data(), text.size(), MSG_NOSIGNAL); }

  /// All up to a text, or to the end of the connection.
  std::string upTo(const std::optional<std::string>& text = {}) {
    const std::size_t start = read_.size();
    std::array<char, 4096> buffer{};
    pollfd watched{.fd = fd_.get(), .events = POLLIN, .revents = 0};
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patience);
    while ((!text || read_.find(*text) == std::string::npos) && std::chrono::steady_clock::now() < end &&
           poll(&watched, 1, patience) > 0) {
      const auto n = read(fd_.get(), buffer.data(), buffer.size());
      if (n <= 0) break;
      read_.append(buffer.data(), static_cast<std::size_t>(n));
    }
    return read_.substr(start);
  }

  /// Whether such a text comes, or has come.
  bool sees(const std::string& text) {
    upTo(text);
    return read_.find(text) != std::string::npos;
  }

 private:
  platform::Fd fd_;
  std::string read_;
};

std::string request(const std::string& line, const std::string& body = {}, const std::string& more = {}) {
  return line + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n" + more +
         (body.empty() ? "" : "Content-Length: " + std::to_string(body.size()) + "\r\n") + "\r\n" + body;
}

/// Status line and body of an answer.
std::string answerOf(const std::string& port, const std::string& text) {
  Browser browser(port);
  browser.send(text);
  const std::string answer = browser.upTo();
  const auto body = answer.find("\r\n\r\n");
  return answer.substr(0, answer.find('\r')) +
         (body == std::string::npos ? "" : " " + answer.substr(body + 4));
}

class PageTest : public testing::Test {
 protected:
  std::string answerTo(const std::string& text) const { return answerOf(port, text); }
  std::string post(const std::string& target, const std::string& body) const {
    return answerTo(request("POST " + target, body));
  }

  House house{"--web 0"};
  const std::string port = [this] {
    std::string place = house.simulator.lineBehind("web http://127.0.0.1:");
    place.pop_back();
    return place;
  }();
};

constexpr const char* done = "HTTP/1.1 200 OK {\"done\":true}\n";

TEST_F(PageTest, RefusesWhatIsWrongAndChangesNothing) {
  EXPECT_EQ(post("/api/write", R"({"at":"V FFF7","bytes":"01"})"), done);  // the clock stands still
  const std::string before = answerTo(request("GET /api/memory"));
  const std::string name = R"({"at":"V 0540","bytes":"58"})";
  const std::string size = "Content-Length: " + std::to_string(name.size()) + "\r\n\r\n" + name;
  const std::string write = "POST /api/write HTTP/1.1\r\nConnection: close\r\n";
  const std::tuple<std::string, const char*, const char*> rows[] = {
      {write + "Host: example.org\r\n" + size, "403 Forbidden",
       R"(The host \"example.org\" is not this simulator.)"},
      {write + "Host: 127.0.0.1.example.org\r\n" + size, "403 Forbidden",
       R"(The host \"127.0.0.1.example.org\" is not this simulator.)"},
      {write + "Host: 10.0.0.1\r\n" + size, "403 Forbidden",
       R"(The host \"10.0.0.1\" is not this simulator.)"},
      {write + "Host: 127.0.0.1\r\nHost: 127.0.0.1\r\n" + size, "400 Bad Request",
       R"(There are two \"Host\".)"},
      {write + "Host: 127.0.0.1\r\nOrigin: http://127.0.0.1\r\nOrigin: null\r\n" + size, "400 Bad Request",
       R"(There are two \"Origin\".)"},
      {write + size, "403 Forbidden", R"(The host \"\" is not this simulator.)"},
      {request("POST /api/write", name, "Origin: http://example.org\r\n"), "403 Forbidden",
       "The page of another server may not do that."},
      {request("POST /api/write", name, "Origin: http://127.0.0.1:1\r\n"), "403 Forbidden",
       "The page of another server may not do that."},
      {request("POST /api/write", name, "Origin: null\r\n"), "403 Forbidden",
       "The page of another server may not do that."},
      {request("GET /api/events", {}, "Origin: http://example.org\r\n"), "403 Forbidden",
       "The page of another server may not do that."},
      {request("POST /api/write", std::string(4097, ' ')), "413 Payload Too Large", "The body is too long."},
      {request("GET /", "x"), "413 Payload Too Large", "The body is too long."},
      {request("POST /api/backup", {}, "Content-Length: 4194305\r\n"), "413 Payload Too Large",
       "The body is too long."},
      {request("POST /api/write", {}, "Transfer-Encoding: chunked\r\n") + "1001\r\n" +
           std::string(4097, ' ') + "\r\n0\r\n\r\n",
       "413 Payload Too Large", "The body is too long."},
      {request("GET /", {}, "X: " + std::string(8192, 'x') + "\r\n"), "431 Request Header Fields Too Large",
       "The header is too long."},
      {"What is this?\r\n\r\n", "400 Bad Request", "This is no HTTP request: bad version."},
      {request("GET /api/nothing"), "404 Not Found", "There is nothing at /api/nothing."},
      {request("DELETE /api/write"), "405 Method Not Allowed", "This does not go with DELETE."},
      {request("GET /api/write"), "405 Method Not Allowed", "This does not go with GET."},
      {request("POST /api/write", "{"), "400 Bad Request", nullptr},
      {request("POST /api/write", "[]"), "400 Bad Request", "an object is expected, not an array"},
      {request("POST /api/write", R"({"at":5,"bytes":"58"})"), "400 Bad Request",
       "a text is expected, not a whole number"},
      {request("POST /api/write", R"({"at":"V 0540"})"), "400 Bad Request", R"(there is no \"bytes\")"},
      {request("POST /api/write", R"({"at":"V 054","bytes":"58"})"), "400 Bad Request",
       R"(An address is an area and four digits, for example \"V 0540\".)"},
      {request("POST /api/write", R"({"at":"X 0540","bytes":"58"})"), "400 Bad Request",
       R"(An address is an area and four digits, for example \"V 0540\".)"},
      {request("POST /api/write", R"({"at":"V 0540","bytes":""})"), "400 Bad Request",
       "1 to 16 bytes can be written at once."},
      {request("POST /api/write", R"({"at":"V 0540","bytes":"5858585858585858585858585858585858"})"),
       "400 Bad Request", "1 to 16 bytes can be written at once."},
      {request("POST /api/write", R"({"at":"V 0000","bytes":"ff"})"), "400 Bad Request",
       "Nothing that can be changed lies at V 0000."},
      {request("POST /api/write", R"({"at":"V+ 0540","bytes":"58"})"), "400 Bad Request",
       "Nothing that can be changed lies at V+ 0540."},
      {request("POST /api/write", R"({"at":"V FFFF","bytes":"0000"})"), "400 Bad Request",
       "The 2 bytes from V ffff run over the end of the area."},
      {request("POST /api/write", R"({"at":"H+ 0DF8","bytes":"202020202020202020"})"), "400 Bad Request",
       "The 9 bytes from H+ 0df8 run over the end of the page."},
      {request("POST /api/faults", R"({"fault":"status@1"})"), "400 Bad Request",
       R"(fault \"status@1\": \"status\" needs =N)"},
      {request("POST /api/faults/take-back", R"({"id":1})"), "404 Not Found", "There is no fault 1."},
      {request("POST /api/faults/take-back", R"({"id":-1})"), "400 Bad Request", nullptr},
      {request("POST /api/backup", "{}"), "400 Bad Request", "it is no backup"},
      {request("POST /api/backup",
               R"({"format":"velk-backup","version":1,"begun":"","link":"","complete":false,)"
               R"("memory":{"V":{},"H":{},"H+":{}},"modules":[]})"),
       "400 Bad Request", "The backup is unfinished."},
  };
  for (const auto& [text, status, sentence] : rows) {
    const std::string answer = answerTo(text);
    if (sentence == nullptr) {
      EXPECT_EQ(answer.substr(0, 9 + std::strlen(status)), std::string("HTTP/1.1 ") + status) << text;
    } else {
      EXPECT_EQ(answer, std::string("HTTP/1.1 ") + status + " {\"error\":\"" + sentence + "\"}\n") << text;
    }
  }
  EXPECT_EQ(answerTo(request("GET /api/memory")), before);
  EXPECT_NE(answerTo(request("GET /api/house")).find(R"("faults":[])"), std::string::npos);
}

TEST_F(PageTest, IsOnePageOfItsOwn) {
  for (const char* host : {"127.0.0.1", "localhost", "127.0.0.1:8080", "LocalHost:8080"}) {
    const std::string answer = answerTo("GET / HTTP/1.1\r\nHost: " + std::string(host) +
                                        "\r\nOrigin: http://" + host + "\r\nConnection: close\r\n\r\n");
    EXPECT_TRUE(answer.starts_with("HTTP/1.1 200 OK <!doctype html>")) << answer.substr(0, 200);
    EXPECT_TRUE(answer.ends_with("</html>\n"));
    for (const char* outside : {"src=", "@import", "http://", "https://", "/*page."}) {
      EXPECT_EQ(answer.find(outside), std::string::npos) << outside;
    }
  }
}

/// The address that is printed opens, also where all addresses are listened on.
TEST(PagePlaceTest, IsOneThatOpens) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"0.0.0.0", "web http://127.0.0.1:", "/ (and at this machine's other addresses)"},
      {"::", "web http://[::1]:", "/ (and at this machine's other addresses)"},
      {"::ffff:127.0.0.1", "web http://127.0.0.1:", "/"},
  };
  for (const auto& [address, start, end] : rows) {
    if (address[0] == ':' && !std::filesystem::exists("/proc/net/if_inet6")) continue;
    House house("--web 0 --web-open-to-network " + std::string(address));
    const std::string place = house.simulator.lineBehind(start);
    EXPECT_EQ(place.substr(place.find('/')), end);
    const std::string port = place.substr(0, place.find('/'));
    EXPECT_TRUE(answerOf(port, request("GET /")).starts_with("HTTP/1.1 200 OK <!doctype html>")) << address;
  }
}

TEST_F(PageTest, AFaultMakesTheNextMethodFailAsItSays) {
  const std::string read = "call Ctl_Param R 5 ''";
  EXPECT_EQ(post("/api/faults", R"({"fault":"status=7@1"})"), "HTTP/1.1 200 OK {\"id\":1}\n");
  EXPECT_TRUE(house.velk(read).text.starts_with("7  (status 7 of the controller)\n"));
  EXPECT_TRUE(house.velk(read).text.starts_with("0  (done)\nMode=T1\n"));
  post("/api/faults", R"({"fault":"status=9@*"})");
  EXPECT_TRUE(house.velk(read).text.starts_with("9  "));
  EXPECT_EQ(post("/api/faults/take-back", R"({"id":2})"), done);
  EXPECT_TRUE(house.velk(read).text.starts_with("0  (done)\n"));
  EXPECT_EQ(post("/api/faults/take-back", R"({"id":2})"),
            "HTTP/1.1 404 Not Found {\"error\":\"This fault is over already.\"}\n");
  post("/api/faults", R"({"fault":"code=128@1"})");
  EXPECT_TRUE(house.velk("call Module R 090500 ''").text.starts_with("128  "));
  EXPECT_TRUE(house.velk("call Module R 090500 ''").text.starts_with("0  (done)\n"));
}

TEST_F(PageTest, TellsWhatHappensAndWhatIsChanged) {
  Browser events(port);
  events.send("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_TRUE(events.sees("event: hello\ndata: {}\n\n"));
  EXPECT_TRUE(house.velk("call ReadCom 1 5 1 V").shows("(done)"));
  EXPECT_TRUE(events.sees(R"("q":"login -> accepted"})"));
  EXPECT_TRUE(
      events.sees(R"("q":"read  1 V 0501  output 5, mode","r":"05","f":0,"w":0,"a":"V","p":5,"o":1,"k":1})"));
  EXPECT_EQ(house.velk("call WriteCom 1 5 64 V K").status, 0);
  EXPECT_TRUE(events.sees(
      R"("q":"write 1 V 0540 4B  output 5, name","r":"ok","f":0,"w":1,"a":"V","p":5,"o":64,"k":1})"));
  EXPECT_TRUE(events.sees(R"({"V":{"0540":"4b616c6c206365696c696e6720202020")"));
  EXPECT_EQ(post("/api/write", R"({"at":"V 0540","bytes":"4861"})"), done);
  EXPECT_TRUE(events.sees(R"("c":0,"q":"write 2 V 0540 48 61  output 5, name")"));
  EXPECT_TRUE(house.velk("call ReadCom 2 5 64 V").shows("\\x00Ha"));
  post("/api/faults", R"({"fault":"late=1@9"})");
  EXPECT_TRUE(events.sees(R"([{"id":1,"fault":"late=1@9","counts":"request","counted":0}])"));
  post("/api/faults/take-all-back", "");
  post("/api/faults", R"({"fault":"silent@0"})");
  EXPECT_NE(house.velk("call ReadCom 1 5 1 V").status, 0);
  EXPECT_TRUE(events.sees(R"([{"id":2,"fault":"silent@0","counts":"login","counted":1}])"));
  EXPECT_TRUE(events.sees(R"-("q":"login -> no reply (fault: silent)"})-"));
  std::list<Browser> others;
  for (int i = 0; i < 7; ++i) {
    others.emplace_back(port).send("GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_TRUE(others.back().sees("event: hello"));
  }
  EXPECT_EQ(answerTo(request("GET /api/events")),
            "HTTP/1.1 503 Service Unavailable {\"error\":\"There are 8 listeners already.\"}\n");
}

TEST_F(PageTest, SavesAndLoadsAHouse) {
  const std::string saved = answerTo(request("GET /api/backup"));
  const std::string backup = saved.substr(saved.find('{'));
  EXPECT_EQ(parseBackup(backup).condition, Condition::intact);
  post("/api/write", R"({"at":"V 0540","bytes":"58"})");
  EXPECT_TRUE(house.velk("call ReadCom 4 5 64 V").shows("Xall"));
  EXPECT_EQ(post("/api/backup", backup), "HTTP/1.1 200 OK {\"done\":true,\"remark\":\"\"}\n");
  EXPECT_TRUE(house.velk("call ReadCom 4 5 64 V").shows("Hall"));
}

/// Each text is one of the two, whoever changes it and however it is read.
TEST(PageSiteTest, ChangesNeverTear) {
  simulator::Watch watch;
  ServedHouse house(smallHouse(), {}, {}, &watch);
  web::PageSite site(house, watch, {});
  constexpr int rounds = 100;
  std::atomic<bool> isOver{false};
  std::thread host([&] {
    simulator::EchoSession session(house.controller(), {.watch = &watch});
    while (!isOver) {
      Bytes reply;
      for (auto& delivery : session.received("*\x2f\x05\x40")) reply += delivery.bytes;
      const Bytes name = reply.substr(reply.size() - 16);
      if (name != "Hall ceiling    ") {
        ASSERT_EQ(name, Bytes(16, name.front()));
      }
      session.received("*\x6f\x05\x40" + Bytes(16, 'h'));
    }
  });
  const std::string backup = textOf(house.saved());
  for (int i = 0; i < rounds; ++i) {
    const std::string digits = i % 2 != 0 ? "41" : "42";
    std::string bytes;
    for (int n = 0; n < 16; ++n) bytes += digits;
    EXPECT_EQ(site.answer({"POST", "/api/write", R"({"at":"V 0540","bytes":")" + bytes + "\"}"}).status,
              200U);
    if (i % 50 == 0) {
      EXPECT_EQ(site.answer({"POST", "/api/backup", backup}).status, 200U);
    }
    site.events();
    site.answer({"GET", "/api/house", {}});
  }
  isOver = true;
  host.join();
}

}  // namespace
}  // namespace velk::cli
