#include "cli/sim/web/http.h"

// The library's own coroutines do not compile with every compiler, and nothing here uses them.
#define BOOST_ASIO_DISABLE_CO_AWAIT
// All handlers run on one thread; the thread sanitizer does not know the fences between several.
#define BOOST_ASIO_DISABLE_FENCED_BLOCK
#include <algorithm>
#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <limits>
#include <list>
#include <thread>

#include "cli/shared/json.h"
#include "cli/sim/net.h"

/// All that sees Boost's headers stands in this file, though that makes it long: each file that does takes a quarter of a
/// minute to compile.
namespace velk::cli::web {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr std::uint32_t longestHeader = 8192;
constexpr seconds patience{10};  ///< for a request to come, and an answer to be taken
constexpr seconds idle{60};      ///< between two requests of one connection
constexpr std::size_t mostConnections = 64;
constexpr std::size_t mostListeners = 8;
constexpr milliseconds eventInterval{100};
constexpr seconds silence{15};                     ///< then listeners are told that there is nothing to tell
constexpr std::size_t longestBacklog = 2U << 20U;  ///< of a listener that takes its events slowly

using Parser = http::request_parser<http::string_body>;
using Message = http::response<http::string_body>;

std::string text(beast::string_view view) {
  return {view.data(), view.size()};
}

/// The name or address in "name:8080", "[::1]:8080".
std::string hostOf(const std::string& field) {
  if (field.starts_with('[')) return field.substr(1, std::min(field.find(']'), field.size()) - 1);
  return field.substr(0, field.find(':'));
}

/// A listener on all addresses of IPv6 takes those of IPv4 too, in a form that nobody writes.
asio::ip::address asWritten(const asio::ip::address& address) {
  if (!address.is_v6() || !address.to_v6().is_v4_mapped()) return address;
  return asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
}

/// Whether the request is for the machine that it came to: a page of somebody else's server, whose name leads
/// here, would have its own name there.
bool isForHere(const std::string& host, const asio::ip::address& here) {
  const std::string name = hostOf(host);
  return beast::iequals(name, here.to_string()) || (here.is_loopback() && beast::iequals(name, "localhost"));
}

/// A parser for one request. How long the body may be is known behind the header. (No limit at all refuses
/// every body in Boost 1.74.)
void prepare(Parser& parser) {
  parser.header_limit(longestHeader);
  parser.body_limit(std::numeric_limits<std::uint64_t>::max());
}

/// Why a request is refused, of which the header is read; an answer with status 200 when it is not.
HttpAnswer judged(Parser& parser, const Site& site, const asio::ip::address& here) {
  const auto& header = parser.get();
  for (const auto field : {http::field::host, http::field::origin}) {
    // Which of two counts, others on the way may see otherwise.
    if (header.count(field) > 1) return httpError(400, "There are two \"" + text(to_string(field)) + "\".");
  }
  const std::string host = text(header[http::field::host]);
  if (!isForHere(host, here)) return httpError(403, "The host \"" + host + "\" is not this simulator.");
  const auto origin = header.find(http::field::origin);
  if (origin != header.end() && !beast::iequals(origin->value(), "http://" + host)) {
    return httpError(403, "The page of another server may not do that.");
  }
  const auto longest = site.longestBody(text(header.method_string()), text(header.target()));
  if (parser.content_length().value_or(0) > longest) return httpError(413, "The body is too long.");
  parser.body_limit(longest);  // of one that comes in chunks
  return {};
}

/// What the parser found wrong; none when the client is gone.
std::optional<HttpAnswer> errorOf(const beast::error_code& error) {
  if (error == http::error::body_limit) return httpError(413, "The body is too long.");
  if (error == http::error::header_limit || error == http::error::buffer_overflow) {
    return httpError(431, "The header is too long.");
  }
  if (error == http::error::end_of_stream || error == http::error::partial_message) return std::nullopt;
  if (error.category() == make_error_code(http::error::bad_method).category()) {
    return httpError(400, "This is no HTTP request: " + error.message() + ".");
  }
  return std::nullopt;
}

HttpRequest requestOf(Parser& parser) {
  auto& message = parser.get();
  return {.method = text(message.method_string()),
          .target = text(message.target()),
          .body = std::move(message.body())};
}

/// Nothing thrown reaches the server, which others go on using.
HttpAnswer answered(Site& site, const HttpRequest& request) {
  try {
    return site.answer(request);
  } catch (const std::exception& error) {
    return httpError(500, error.what());
  }
}

Message messageOf(const HttpAnswer& answer, unsigned version, bool keepAlive) {
  Message message{static_cast<http::status>(answer.status), version};
  message.set(http::field::content_type, answer.type);
  message.set(http::field::cache_control, "no-store");
  message.set("X-Content-Type-Options", "nosniff");
  message.set("Cross-Origin-Resource-Policy", "same-origin");
  message.set("Referrer-Policy", "no-referrer");
  message.set(
      "Content-Security-Policy",
      "default-src 'none'; script-src 'unsafe-inline'; style-src 'unsafe-inline'; connect-src 'self'; "
      "img-src data:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
  if (!answer.fileName.empty()) {
    message.set(http::field::content_disposition, "attachment; filename=\"" + answer.fileName + "\"");
  }
  message.keep_alive(keepAlive && !answer.isEvents);
  message.body() = answer.body;
  if (!answer.isEvents) message.prepare_payload();
  return message;
}

}  // namespace

HttpAnswer httpError(unsigned status, const std::string& sentence) {
  return {.status = status, .body = Json({{"error", sentence}}).dump() + "\n", .fileName = {}};
}

std::optional<HttpAnswer> answerTo(std::string_view text, Site& site) {
  Parser parser;
  prepare(parser);
  beast::error_code error;
  while (!parser.is_header_done() && !error) {
    if (text.empty()) return std::nullopt;
    text.remove_prefix(parser.put(asio::buffer(text.data(), text.size()), error));
    if (error == http::error::need_more) return std::nullopt;
  }
  if (error) return errorOf(error);
  HttpAnswer refusal = judged(parser, site, asio::ip::make_address("127.0.0.1"));
  if (refusal.status != 200) return refusal;
  parser.eager(true);
  while (!parser.is_done() && !error) {
    if (text.empty()) return std::nullopt;
    const std::size_t taken = parser.put(asio::buffer(text.data(), text.size()), error);
    if (error == http::error::need_more || (taken == 0 && !error)) return std::nullopt;
    text.remove_prefix(taken);
  }
  if (error) return errorOf(error);
  return answered(site, requestOf(parser));
}

class HttpServer::Listener {
 public:
  Listener(const std::string& address, std::uint16_t port, Site& site) : site_(site) {
    beast::error_code error;
    const auto here = asio::ip::make_address(address, error);
    if (error) fail(address, port, "this is no address in digits");
    const tcp::endpoint endpoint(here, port);
    acceptor_.open(endpoint.protocol(), error);
    if (!error) net::prepareListener(acceptor_.native_handle());
    if (!error) acceptor_.bind(endpoint, error);
    if (!error) acceptor_.listen(asio::socket_base::max_listen_connections, error);
    if (error) fail(address, port, error.message());
    accept();
    thread_ = std::jthread([this] { io_.run(); });
  }

  ~Listener() { io_.stop(); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  [[nodiscard]] tcp::endpoint place() const {
    const auto bound = acceptor_.local_endpoint();
    return {asWritten(bound.address()), bound.port()};
  }

 private:
  class Connection;

  [[noreturn]] static void fail(const std::string& address, std::uint16_t port, const std::string& why) {
    throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port) + ": " + why);
  }

  void accept();
  bool listens(const std::shared_ptr<Connection>& connection);
  void tellSoon();
  void tell();
  void forgetClosed();

  Site& site_;
  asio::io_context io_{1};
  tcp::acceptor acceptor_{io_};
  asio::steady_timer timer_{io_};
  asio::steady_timer retry_{io_};
  std::size_t connections_ = 0;
  std::list<std::shared_ptr<Connection>> listeners_;
  std::chrono::steady_clock::time_point told_;
  std::jthread thread_;  // last: it uses the rest until it has ended
};

/// One connection: requests one after another, or from one of them on events.
class HttpServer::Listener::Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(tcp::socket socket, Listener& server) : stream_(std::move(socket)), server_(server) {
    ++server_.connections_;
  }
  ~Connection() { --server_.connections_; }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void start() {
    beast::error_code error;
    stream_.socket().set_option(tcp::no_delay(true), error);
    const auto endpoint = stream_.socket().local_endpoint(error);
    if (error) return;
    here_ = asWritten(endpoint.address());
    readHeader(patience);
  }

  /// Adds to what a listener is sent. What does not fit is counted.
  void send(const HttpEvents& events) {
    if (waiting_.size() + events.text.size() > longestBacklog) {
      hasMissed_ = true;
      missed_ += events.requests;
      return;
    }
    waiting_ += events.text;
    sendWaiting();
  }

  [[nodiscard]] bool isOpen() const { return isOpen_; }

 private:
  void readHeader(seconds longest) {
    parser_.emplace();
    prepare(*parser_);
    stream_.expires_after(longest);
    http::async_read_header(stream_, buffer_, *parser_,
                            [self = shared_from_this()](beast::error_code error, std::size_t /*size*/) {
                              self->headerRead(error);
                            });
  }

  void headerRead(beast::error_code error) {
    if (error) return refuse(error);
    const HttpAnswer refusal = judged(*parser_, server_.site_, here_);
    if (refusal.status != 200) return finish(refusal);
    stream_.expires_after(patience);
    http::async_read(stream_, buffer_, *parser_,
                     [self = shared_from_this()](beast::error_code failure, std::size_t /*size*/) {
                       if (failure) return self->refuse(failure);
                       self->reply(answered(self->server_.site_, requestOf(*self->parser_)),
                                   self->parser_->get().keep_alive());
                     });
  }

  void refuse(beast::error_code error) {
    if (const auto answer = errorOf(error)) finish(*answer);
  }

  /// The rest of the request is not read.
  void finish(const HttpAnswer& answer) { reply(answer, false); }

  void reply(HttpAnswer answer, bool keepAlive) {
    if (answer.isEvents && !server_.listens(shared_from_this())) {
      answer = httpError(503, "There are " + std::to_string(mostListeners) + " listeners already.");
    }
    message_ = messageOf(answer, parser_->get().version(), keepAlive);
    stream_.expires_after(patience);
    if (answer.isEvents) return sendHeader();
    http::async_write(stream_, message_,
                      [self = shared_from_this()](beast::error_code error, std::size_t /*size*/) {
                        if (error) return;
                        if (self->message_.keep_alive()) return self->readHeader(idle);
                        self->hangUp();
                      });
  }

  /// What the client still sends is read for a while, so that the system does not take the answer back.
  void hangUp() {
    beast::error_code error;
    stream_.socket().shutdown(tcp::socket::shutdown_send, error);
    stream_.expires_after(seconds(1));
    drain();
  }

  void drain() {
    stream_.async_read_some(asio::buffer(rest_),
                            [self = shared_from_this()](beast::error_code error, std::size_t size) {
                              constexpr std::size_t enough = 16U << 20U;
                              self->drained_ += size;
                              if (!error && self->drained_ < enough) self->drain();
                            });
  }

  void sendHeader() {
    isOpen_ = true;
    isSending_ = true;
    serializer_.emplace(message_);
    http::async_write_header(
        stream_, *serializer_,
        [self = shared_from_this()](beast::error_code error, std::size_t /*size*/) { self->sent(error); });
    watchForTheEnd();
    waiting_ = "event: hello\ndata: {}\n\n";
  }

  /// A listener says nothing more, so that it has hung up when something comes to be read.
  void watchForTheEnd() {
    stream_.socket().async_read_some(
        asio::buffer(rest_), [self = shared_from_this()](beast::error_code error, std::size_t /*size*/) {
          if (!error) return self->watchForTheEnd();
          self->isOpen_ = false;
          self->server_.forgetClosed();
        });
  }

  void sendWaiting() {
    if (isSending_ || !isOpen_) return;
    if (waiting_.empty() && hasMissed_) {
      waiting_ = server_.site_.missed(std::exchange(missed_, 0));
      hasMissed_ = false;
    }
    if (waiting_.empty()) return;
    isSending_ = true;
    sending_.clear();
    sending_.swap(waiting_);
    stream_.expires_after(patience);
    asio::async_write(
        stream_, asio::buffer(sending_),
        [self = shared_from_this()](beast::error_code error, std::size_t /*size*/) { self->sent(error); });
  }

  void sent(beast::error_code error) {
    isSending_ = false;
    if (!error) return sendWaiting();
    isOpen_ = false;
    stream_.close();
  }

  beast::tcp_stream stream_;
  Listener& server_;
  asio::ip::address here_;
  beast::flat_buffer buffer_{std::size_t{longestHeader} * 4};
  std::optional<Parser> parser_;
  Message message_;
  std::optional<http::response_serializer<http::string_body>> serializer_;
  std::array<char, 4096> rest_{};
  std::size_t drained_ = 0;

  // Of a listener
  bool isOpen_ = false;
  bool isSending_ = false;
  bool hasMissed_ = false;
  std::uint64_t missed_ = 0;
  std::string waiting_;
  std::string sending_;
};

void HttpServer::Listener::accept() {
  acceptor_.async_accept([this](beast::error_code error, tcp::socket socket) {
    // One too many is closed at once.
    if (!error && connections_ < mostConnections) {
      std::make_shared<Connection>(std::move(socket), *this)->start();
    }
    if (!error) return accept();
    // Too many files are open, for one: that does not end by asking again at once.
    retry_.expires_after(eventInterval);
    retry_.async_wait([this](beast::error_code failure) {
      if (!failure) accept();
    });
  });
}

bool HttpServer::Listener::listens(const std::shared_ptr<Connection>& connection) {
  if (listeners_.size() >= mostListeners) return false;
  const bool isFirst = listeners_.empty();
  listeners_.push_back(connection);
  if (isFirst) {
    site_.begin();
    tellSoon();  // in place of a time that may be set still
  }
  return true;
}

/// While nobody listens there is no timer.
void HttpServer::Listener::tellSoon() {
  timer_.expires_after(eventInterval);
  timer_.async_wait([this](beast::error_code error) {
    if (!error) tell();
  });
}

void HttpServer::Listener::tell() {
  HttpEvents events = site_.events();
  const auto now = std::chrono::steady_clock::now();
  if (events.text.empty() && now - told_ >= silence) events.text = ":\n\n";
  if (!events.text.empty()) told_ = now;
  for (const auto& listener : listeners_) listener->send(events);
  forgetClosed();
  if (!listeners_.empty()) tellSoon();
}

void HttpServer::Listener::forgetClosed() {
  listeners_.remove_if([](const auto& listener) { return !listener->isOpen(); });
}

HttpServer::HttpServer(const std::string& address, std::uint16_t port, Site& site)
    : listener_(std::make_unique<Listener>(address, port, site)) {}

HttpServer::~HttpServer() = default;

std::string HttpServer::address() const {
  const auto address = listener_->place().address();
  if (!address.is_unspecified()) return address.to_string();
  return address.is_v4() ? asio::ip::address_v4::loopback().to_string()
                         : asio::ip::address_v6::loopback().to_string();
}

std::uint16_t HttpServer::port() const {
  return listener_->place().port();
}

bool HttpServer::isOnAllAddresses() const {
  return listener_->place().address().is_unspecified();
}

}  // namespace velk::cli::web
