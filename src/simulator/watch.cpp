#include "simulator/watch.h"

namespace velk::simulator {

std::shared_ptr<Connection> Connections::join(std::string interface) {
  const std::lock_guard lock(mutex_);
  std::erase_if(all_, [](const std::weak_ptr<Connection>& one) { return one.expired(); });
  auto connection = std::make_shared<Connection>(++lastId_, std::move(interface));
  all_.push_back(connection);
  return connection;
}

std::vector<std::shared_ptr<const Connection>> Connections::list() {
  const std::lock_guard lock(mutex_);
  std::vector<std::shared_ptr<const Connection>> present;
  for (const auto& one : all_) {
    if (auto connection = one.lock()) present.push_back(std::move(connection));
  }
  return present;
}

}  // namespace velk::simulator
