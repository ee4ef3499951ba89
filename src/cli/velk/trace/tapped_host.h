#pragma once

#include "cli/velk/trace/wire.h"
#include "platform/host.h"

namespace velk::cli {

/// A host whose port and socket tell what goes over them; else it is the one behind it. What works without a
/// trace works on that one, and pays nothing.
class TappedHost final : public platform::Host {
 public:
  TappedHost(platform::Host& host, WireListener listener)
      : host_(host), wire_(std::move(listener)), port_(host, wire_), socket_(host, wire_) {}
  ~TappedHost() override;
  TappedHost(const TappedHost&) = delete;
  TappedHost& operator=(const TappedHost&) = delete;

  float clock() override { return host_.clock(); }
  std::chrono::nanoseconds steady() override { return host_.steady(); }
  void yield() override { host_.yield(); }
  void block(platform::Source source, std::chrono::nanoseconds longest,
             platform::Messages messages) override {
    port_.blocked();
    host_.block(source, longest, messages);
  }
  platform::SerialPort& port() override { return port_; }
  platform::Socket& socket() override { return socket_; }

 private:
  class Port final : public platform::SerialPort {
   public:
    Port(platform::Host& host, Wire& wire) : host_(host), wire_(wire) {}

    void open(int number, const platform::SerialSettings& settings) override;
    void close() override;
    [[nodiscard]] bool isOpen() const override { return host_.port().isOpen(); }
    std::string_view read() override;
    void write(std::string_view bytes) override;
    void setBreak(bool on) override;

    /// A read behind a wait or a write is part of a transaction; one that follows another drops what is there.
    void blocked() { isAwaited_ = true; }

   private:
    platform::Host& host_;
    Wire& wire_;
    bool isAwaited_ = false;
  };

  class Socket final : public platform::Socket {
   public:
    Socket(platform::Host& host, Wire& wire) : host_(host), wire_(wire) {}

    void connect(const std::string& host, std::uint16_t port) override;
    void close() override;
    [[nodiscard]] bool isOpen() const override { return host_.socket().isOpen(); }
    [[nodiscard]] bool hasData() const override { return isAwaited_ = host_.socket().hasData(); }
    [[nodiscard]] bool isDead() const override;
    [[nodiscard]] platform::Reach reach() const override { return host_.socket().reach(); }
    std::string_view receive() override;
    void send(std::string_view bytes) override;

   private:
    platform::Host& host_;
    Wire& wire_;
    mutable bool isAwaited_ = false;  ///< whoever looks whether data are there wants them
    mutable bool isInUse_ = false;    ///< its end has not been told
  };

  platform::Host& host_;
  Wire wire_;
  Port port_;
  Socket socket_;
};

}  // namespace velk::cli
