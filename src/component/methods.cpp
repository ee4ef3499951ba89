#include "component/methods.h"

#include <algorithm>

#include "component/method_table.h"
#include "values/numbers.h"

namespace velk {
namespace {

constexpr auto table = methodTable<Bound>();

/// Rows by dispatch id, and by name in a hash table with open addressing: positions plus 1, and 0 for no row.
constexpr std::size_t bucketCount = 256;
using Buckets = std::array<Byte, bucketCount>;
static_assert(2 * table.size() < bucketCount);

constexpr char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Of a name's length, its first, middle and last letter.
constexpr std::size_t bucketOf(std::string_view name) {
  if (name.empty()) return 0;
  const auto letter = [name](std::size_t at) { return std::size_t{byteValue(lowered(name[at]))}; };
  const std::size_t last = name.size() - 1;
  return (letter(0) + 5 * letter(last / 2) + 11 * letter(last) + 37 * last) % bucketCount;
}

constexpr Buckets byId = [] {
  Buckets buckets{};
  for (std::size_t i = 0; i < table.size(); ++i)
    buckets[static_cast<std::size_t>(table[i].id)] = static_cast<Byte>(i + 1);
  return buckets;
}();

constexpr Buckets byName = [] {
  Buckets buckets{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    std::size_t bucket = bucketOf(table[i].name);
    while (buckets[bucket] != 0) bucket = (bucket + 1) % bucketCount;
    buckets[bucket] = static_cast<Byte>(i + 1);
  }
  return buckets;
}();

static_assert(std::is_sorted(table.begin(), table.end(),
                             [](const Method& a, const Method& b) { return a.id < b.id; }));

bool sameName(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lowered(x) == lowered(y); });
}

}  // namespace

Value defaultOf(const Parameter& parameter) {
  if (parameter.type == Type::text) return std::string();
  return convert(std::int32_t{parameter.fallback}, parameter.type);
}

std::span<const Method> methods() {
  return table;
}

const Method* findMethod(std::string_view name) {
  for (std::size_t bucket = bucketOf(name); byName[bucket] != 0; bucket = (bucket + 1) % bucketCount) {
    const Method& row = table[byName[bucket] - std::size_t{1}];
    if (sameName(row.name, name)) return &row;
  }
  return nullptr;
}

const Method* findMethod(int id) {
  const auto bucket = static_cast<std::size_t>(id);  // beyond the buckets for an id below 0
  if (bucket >= byId.size()) return nullptr;
  const Byte row = byId[bucket];
  return row == 0 ? nullptr : &table[row - std::size_t{1}];
}

std::optional<std::size_t> findParameter(const Method& method, std::string_view name) {
  const auto parameters = method.parameters();
  const auto found = std::find_if(parameters.begin(), parameters.end(),
                                  [&](const Parameter& parameter) { return sameName(parameter.name, name); });
  if (found == parameters.end()) return std::nullopt;
  return static_cast<std::size_t>(found - parameters.begin());
}

std::optional<CallFault> complete(const Method& method, std::span<Value> arguments,
                                  std::span<const bool> given) {
  for (std::size_t i = 0; i < method.count; ++i) {
    const Parameter& parameter = method.slots[i];
    if (!given[i]) {
      if (!parameter.optional) return CallFault{CallFault::notOptional, i};
      arguments[i] = defaultOf(parameter);
    } else if (!holds(arguments[i], parameter.type)) {
      try {
        arguments[i] = convert(arguments[i], parameter.type);
      } catch (const RuntimeError& error) {
        return CallFault{
            error.number() == RuntimeError::overflow ? CallFault::overflow : CallFault::typeMismatch, i};
      }
    }
  }
  return std::nullopt;
}

}  // namespace velk
