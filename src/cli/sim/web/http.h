#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// A small web server for one page. http.cpp alone sees the library behind it, which costs a compiler many
/// seconds.
namespace velk::cli::web {

/// What was asked for. It comes from this server: its host is the machine that was connected to, and no page of
/// another server had a browser send it.
struct HttpRequest {
  std::string method;
  std::string target;
  std::string body;
};

struct HttpAnswer {
  unsigned status = 200;
  std::string type = "application/json";
  std::string body;
  std::string fileName;   ///< of something to be saved
  bool isEvents = false;  ///< the body is what `Site::events` tells from now on
};

/// What happened since the last time, as text of an event stream.
struct HttpEvents {
  std::string text;
  std::uint64_t requests = 0;  ///< how many are told of, or counted as not shown
};

/// Called on one thread.
class Site {
 public:
  Site() = default;
  virtual ~Site() = default;
  Site(const Site&) = delete;
  Site& operator=(const Site&) = delete;

  /// How many bytes the body of such a request may have.
  [[nodiscard]] virtual std::uint64_t longestBody(std::string_view method, std::string_view target) const = 0;
  virtual HttpAnswer answer(const HttpRequest& request) = 0;

  /// Nobody listened so far, and somebody will now.
  virtual void begin() = 0;
  virtual HttpEvents events() = 0;

  /// What one listener has missed, since it took its events too slowly.
  [[nodiscard]] virtual std::string missed(std::uint64_t requests) const = 0;
};

/// An answer with a sentence that says what is wrong.
HttpAnswer httpError(unsigned status, const std::string& sentence);

/// Reads and answers one request as the server does, but for events. `text` is all that a client sends to the
/// address 127.0.0.1. None: it hung up too early.
std::optional<HttpAnswer> answerTo(std::string_view text, Site& site);

/// The server, on a thread of its own.
class HttpServer {
 public:
  /// Listens on a numeric address; port 0 takes any free one. Throws std::runtime_error with a sentence.
  HttpServer(const std::string& address, std::uint16_t port, Site& site);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Where programs of this machine reach it, for example "127.0.0.1": one that listens on all addresses is
  /// reached on the loopback of that family.
  [[nodiscard]] std::string address() const;
  [[nodiscard]] std::uint16_t port() const;
  [[nodiscard]] bool isOnAllAddresses() const;

 private:
  class Listener;
  std::unique_ptr<Listener> listener_;
};

}  // namespace velk::cli::web
