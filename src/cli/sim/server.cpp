#include "cli/sim/server.h"

#include <future>
#include <iostream>
#include <stdexcept>

#include "cli/sim/serve.h"

namespace velk::cli {

Server::~Server() {
  std::list<Worker> ending;
  {
    const std::lock_guard lock(mutex_);
    for (Worker& worker : workers_) worker.thread.request_stop();
    ending.swap(workers_);
  }
  // Joined without the lock: a listener that accepts just now takes it to start its last client.
  ending.clear();
}

std::uint16_t Server::listen(const std::string& address, std::uint16_t port, simulator::MakePeer makePeer) {
  auto listener = std::make_shared<Listener>(address, port);
  const std::uint16_t bound = listener->port();
  run([this, listener, makePeer = std::move(makePeer)](const std::stop_token& stop) {
    acceptClients(*listener, makePeer, stop);
  });
  return bound;
}

std::string Server::servePseudoLine(const simulator::MakePeer& makePeer) {
  NamedLine line = openPseudoLine();
  const std::shared_ptr<Stream> stream = std::move(line.stream);
  const std::shared_ptr<simulator::Peer> peer = makePeer();
  run([stream, peer](const std::stop_token& stop) { serve(*stream, *peer, stop); });
  return line.name;
}

void Server::serveDevice(const std::string& device, int baud, const simulator::MakePeer& makePeer) {
  // A port belongs to the thread that opens it, so the outcome comes from there: a sentence when it failed.
  const auto opened = std::make_shared<std::promise<std::string>>();
  auto outcome = opened->get_future();
  const std::shared_ptr<simulator::Peer> peer = makePeer();
  run([=](const std::stop_token& stop) {
    std::unique_ptr<Stream> stream;
    try {
      stream = openDevice(device, baud);
    } catch (const std::exception& error) {
      return opened->set_value(error.what());
    }
    opened->set_value({});
    serve(*stream, *peer, stop);
  });
  if (const std::string failure = outcome.get(); !failure.empty()) {
    throw std::runtime_error(device + ": " + failure);
  }
}

void Server::run(std::function<void(const std::stop_token&)> work) {
  const std::lock_guard lock(mutex_);
  workers_.remove_if([](const Worker& worker) { return worker.done->load(); });
  auto done = std::make_shared<std::atomic<bool>>(false);
  auto body = [done, work = std::move(work)](const std::stop_token& stop) {
    try {
      work(stop);
    } catch (const std::exception& error) {  // ends what it served; the others go on
      std::cerr << "velk-sim: " << error.what() << '\n';
    }
    *done = true;
  };
  workers_.push_back({.done = std::move(done), .thread = std::jthread(std::move(body))});
}

void Server::acceptClients(Listener& listener, const simulator::MakePeer& makePeer,
                           const std::stop_token& stop) {
  const std::stop_callback waking(stop, [&listener] { listener.wake(); });
  while (!stop.stop_requested()) {
    const std::shared_ptr<Stream> client = listener.accept(longestWait);
    if (!client) continue;
    const std::shared_ptr<simulator::Peer> peer = makePeer();
    run([client, peer](const std::stop_token& ending) { serve(*client, *peer, ending); });
  }
}

}  // namespace velk::cli
