#include "simulator/clock.h"

#include "values/numbers.h"

namespace velk::simulator {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using std::chrono::seconds;

constexpr Byte page = 255;
constexpr Byte firstHold = 247;
constexpr int century = 2000;

/// The bytes by their offsets.
enum ClockByte : Byte { second = 249, minute, hour, weekday, day, month, year };

Byte& at(Store& store, Byte offset) {
  return store[{.page = page, .offset = offset}];
}

bool isHeld(Store& store) {
  return at(store, firstHold) != 0 || at(store, firstHold + 1) != 0;
}

/// A byte that is not BCD counts for what its digits weigh.
unsigned get(Store& store, ClockByte field) {
  const Byte bcd = at(store, field);
  return bcd / 16U * 10 + bcd % 16U;
}

void put(Store& store, ClockByte field, unsigned value) {
  at(store, field) = toBcd(static_cast<Byte>(value));
}

void addDays(Store& store, days count) {
  using namespace std::chrono;
  put(store, weekday,
      (get(store, weekday) + daysOfWeek - 1 + static_cast<unsigned>(count.count())) % daysOfWeek + 1);
  const year_month_day date{std::chrono::year(century + static_cast<int>(get(store, ClockByte::year))),
                            std::chrono::month(get(store, ClockByte::month)),
                            std::chrono::day(get(store, ClockByte::day))};
  if (!date.ok()) return;
  const year_month_day next = sys_days(date) + count;
  put(store, ClockByte::day, static_cast<unsigned>(next.day()));
  put(store, ClockByte::month, static_cast<unsigned>(next.month()));
  put(store, ClockByte::year, static_cast<unsigned>(static_cast<int>(next.year()) % 100));
}

void addSeconds(Store& store, seconds passed) {
  using namespace std::chrono;
  const seconds total =
      hours(get(store, hour)) + minutes(get(store, minute)) + seconds(get(store, second)) + passed;
  const hh_mm_ss time(total % days(1));
  put(store, hour, static_cast<unsigned>(time.hours().count()));
  put(store, minute, static_cast<unsigned>(time.minutes().count()));
  put(store, second, static_cast<unsigned>(time.seconds().count()));
  if (total >= days(1)) addDays(store, floor<days>(total));
}

}  // namespace

bool Clock::covers(Address byte) const {
  return byte.area == Area::external && byte.page == page && byte.offset >= firstHold;
}

void Clock::beforeRead(Store& store, const Transfer& /*transfer*/) {
  catchUp(store);
}

void Clock::beforeWrite(Store& store, const Transfer& /*transfer*/) {
  catchUp(store);
  last_ = time_();
}

void Clock::catchUp(Store& store) {
  const nanoseconds now = time_();
  const auto passed = std::chrono::floor<seconds>(now - last_);
  if (isHeld(store)) {
    last_ = now;
  } else if (passed.count() > 0) {
    addSeconds(store, passed);
    last_ += passed;
  }
}

}  // namespace velk::simulator
