#pragma once

#include <string>
#include <string_view>

/// The bytes of the one request that is measured, a read of 16 bytes, written out by hand: the clients that
/// this library is compared with must not depend on its code.
namespace velk::bench {

using namespace std::string_view_literals;

constexpr std::string_view greeting = "Welcome to VELK TCP/IP";
constexpr std::string_view data = "0123456789abcdef";

/// A page that nobody answers for.
constexpr char silentPage = '\x7f';

/// Where the requests and replies of one kind of link differ.
struct Exchange {
  std::string_view request;
  std::string_view replyHead;
  std::string_view replyTail;
  std::size_t pageAt;  ///< position of the page in the request

  [[nodiscard]] std::string reply() const { return std::string(replyHead).append(data).append(replyTail); }
};

constexpr Exchange tcpExchange{"VELK\0\1\0\1\0\xff\0\5/\2\x2f\1\0"sv, "VELK\0\1\0\1\0\xff\0\x11\0"sv, ""sv,
                               15};
constexpr Exchange fastExchange{"*\2\2\x2f\1\0#"sv, "*\2\2\x2f\1\0\0"sv, "#"sv, 4};
constexpr Exchange echoExchange{"*\x2f\1\0"sv, "\0"sv, ""sv, 2};

}  // namespace velk::bench
