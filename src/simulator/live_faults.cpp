#include "simulator/live_faults.h"

#include <stdexcept>

namespace velk::simulator {
namespace {

/// Requests have a number from 1 on.
bool isForLoginsAlone(const Fault& fault) {
  return fault.kind->counts == Counts::requests && fault.last == 0;
}

std::string_view countedBy(const Fault& fault) {
  if (isForLoginsAlone(fault)) return "login";
  return fault.kind->counts == Counts::requests ? "request" : "module request";
}

}  // namespace

unsigned LiveFaults::set(std::string_view text) {
  const Fault fault = parseFault(text);
  const std::lock_guard lock(mutex_);
  if (rows_.size() == most) {
    throw std::invalid_argument("there are " + std::to_string(most) +
                                " faults already: take some back first");
  }
  rows_.push_back(
      {.entry = {.id = ++lastId_, .text = std::string(text), .counts = countedBy(fault), .counted = 0},
       .fault = fault});
  isEmpty_ = false;
  return lastId_;
}

bool LiveFaults::takeBack(unsigned id) {
  const std::lock_guard lock(mutex_);
  const auto removed = std::erase_if(rows_, [id](const Row& row) { return row.entry.id == id; });
  isEmpty_ = rows_.empty();
  return removed != 0;
}

void LiveFaults::takeAllBack() {
  const std::lock_guard lock(mutex_);
  rows_.clear();
  isEmpty_ = true;
}

bool LiveFaults::wasSet(unsigned id) const {
  const std::lock_guard lock(mutex_);
  return id != 0 && id <= lastId_;
}

std::vector<LiveFaults::Entry> LiveFaults::list() const {
  const std::lock_guard lock(mutex_);
  std::vector<Entry> entries;
  for (const Row& row : rows_) entries.push_back(row.entry);
  return entries;
}

void LiveFaults::next(Counts counts, Plan& plan) {
  if (isEmpty_.load(std::memory_order_relaxed)) return;
  const std::lock_guard lock(mutex_);
  for (Row& row : rows_) {
    if (row.fault.kind->counts == counts && !isForLoginsAlone(row.fault))
      apply(row.fault, ++row.entry.counted, counts, plan);
  }
  // A fault at logins has no request of its own to be over with.
  std::erase_if(rows_,
                [](const Row& row) { return row.fault.last != 0 && row.entry.counted >= row.fault.last; });
  isEmpty_ = rows_.empty();
}

void LiveFaults::login(Plan& plan) {
  if (isEmpty_.load(std::memory_order_relaxed)) return;
  const std::lock_guard lock(mutex_);
  for (Row& row : rows_) {
    apply(row.fault, 0, Counts::requests, plan);
    if (isForLoginsAlone(row.fault)) ++row.entry.counted;
  }
}

}  // namespace velk::simulator
