// Calls of made-up methods with arguments of every type, form and order: what the method gets, what comes back, that
// nothing else changes and nothing is lost. VELK_FUZZ_SEED and VELK_FUZZ_CALLS: another seed and number of calls.

#include <gtest/gtest.h>

#include <deque>
#include <random>

#include "caller_variables.h"
#include "com/call.h"
#include "com/serial_object.h"
#include "host_settings.h"
#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// What the made-up methods were called with, and what they make of it; none: they leave it.
std::vector<Value> received;
std::vector<std::optional<Value>> results;

Value madeUp(Serial& /*serial*/, Value* arguments) {
  received.assign(arguments, arguments + results.size());
  for (std::size_t i = 0; i < results.size(); ++i) arguments[i] = results[i].value_or(arguments[i]);
  return {};
}

constexpr unsigned mostReferences = 4;

/// An argument on its way: a value, or a reference over some variants that refer to one another.
struct Passed {
  Cell* cell;
  bool isReference;
  unsigned depth;          ///< references to variants, up to the variable
  bool isNowhere = false;  ///< the last reference is none
  std::array<VARIANT, mostReferences + 2> chain{};

  [[nodiscard]] bool isGood() const { return !isReference || (depth <= mostReferences && !isNowhere); }

  VARIANT make() {
    if (!isReference) return cell->content();
    VARIANT last{};
    last.vt = static_cast<VARTYPE>(VT_BYREF | (cell->isTyped() ? int{cell->sample->type} : VT_VARIANT));
    last.byref = isNowhere ? nullptr : cell->isTyped() ? cell->inside() : &cell->value;
    for (unsigned i = cell->isTyped() ? 0 : 1; i < depth; ++i) {
      chain[i] = last;
      last.vt = VT_BYREF | VT_VARIANT;
      last.pvarVal = &chain[i];
    }
    return last;
  }
};

/// What a step of a call says: its code, and the position of the argument at fault in the host's list.
using Said = std::pair<HRESULT, UINT>;
constexpr UINT nowhere = 99;

/// A call at random, and what has to come of it.
class RandomCall {
 public:
  explicit RandomCall(std::mt19937& random) : random_(random) {
    makeMethod();
    count_ = isOneIn(8) ? below(method_.count + 2) : method_.count;
    makeNames(isOneIn(3) ? below(count_ + 1) : 0);
    for (std::size_t k = 0; k < count_; ++k) makeArgument(k);
    for (Passed& argument : passed_) variants_.push_back(argument.make());
  }

  void run(Serial& serial) {
    const auto names = static_cast<UINT>(ids_.size() + (isOneIn(200) ? count_ + 1 : 0));
    const DISPPARAMS parameters{variants_.data(), ids_.data(), static_cast<UINT>(count_), names};
    HostCall call(method_, parameters);
    Said expected = expectToTake(names > count_);
    Said said{S_OK, nowhere};
    auto& [code, fault] = said;
    try {
      const hosts::InvalidOperationsStop stop;
      code = call.take();
    } catch (const RuntimeError& error) {
      code = error.number() == 5 ? raises : E_UNEXPECTED;
    }
    if (SUCCEEDED(code) && SUCCEEDED(expected.first)) {
      code = call.run(serial, nullptr);
      for (std::size_t i = 0; i < method_.count; ++i) {
        ASSERT_TRUE(isRight(i)) << "parameter " << i << " got '" << toText(received[i]) << "'";
      }
      expected = expectBack();
    }
    call.reportFault(&fault);
    EXPECT_EQ(said, expected);
    for (const Cell& cell : cells_) {
      EXPECT_TRUE(cell.isRight()) << "a variable of type " << cell.sample->type << " has to hold "
                                  << cell.expected << ", not " << shown(cell.content());
    }
  }

 private:
  std::size_t below(std::size_t end) { return random_() % end; }
  bool isOneIn(unsigned count) { return below(count) == 0; }

  void makeMethod() {
    method_.call = &madeUp;
    method_.count = below(mostParameters + 1);
    results.assign(method_.count, {});
    static const struct {
      Type type;
      std::array<Value, 4> results;
    } types[] = {{Type::boolean, {false, true, false, true}},
                 {Type::byte, {Byte{0}, Byte{7}, Byte{12}, Byte{255}}},
                 {Type::integer, {short{12}, short{200}, short{300}, short{32767}}},
                 {Type::text, {"", "12", "T1", "\xFFz"}},
                 {Type::variant, {"", "12", "T1", "\xFFz"}}};
    for (std::size_t i = 0; i < method_.count; ++i) {
      const auto& [type, values] = types[below(std::size(types))];
      const bool isPlain = type != Type::variant;
      method_.slots[i] = {{}, type, isPlain && !isOneIn(3), isPlain && isOneIn(3), isOneIn(2) ? 0 : 7};
      if (!isOneIn(3)) results[i] = values[below(values.size())];
    }
  }

  /// The last parameters that have an argument get theirs by name.
  void makeNames(std::size_t named) {
    for (std::size_t id = count_ - named; id < count_; ++id) ids_.push_back(static_cast<DISPID>(id));
    std::shuffle(ids_.begin(), ids_.end(), random_);
    for (DISPID& id : ids_) id = isOneIn(40) ? static_cast<DISPID>(below(mostParameters + 3)) - 1 : id;
  }

  /// The parameter that the argument at a position of the host's list is for.
  [[nodiscard]] std::size_t parameterOf(std::size_t k) const {
    return k < ids_.size() ? static_cast<std::size_t>(ids_[k]) : count_ - 1 - k;
  }

  /// Most arguments are good ones: a single bad one ends the call.
  void makeArgument(std::size_t k) {
    const bool any = isOneIn(24) || parameterOf(k) >= method_.count;
    const auto fits = [&](const Sample& sample) {
      if (any) return true;
      const Parameter& parameter = method_.slots[parameterOf(k)];
      if (sample.made == omitted) return parameter.optional;
      return faultOfLoading(sample, parameter.type) == S_OK &&
             faultOfConverting(sample, parameter.type) == S_OK;
    };
    Cell* cell = cells_.empty() || !isOneIn(3) ? nullptr : &cells_[below(cells_.size())];
    if (cell == nullptr || !fits(*cell->sample)) {
      const Sample* sample = samples;
      while (!fits(*(sample = &samples[below(std::size(samples))]))) continue;
      cell = &cells_.emplace_back(*sample, static_cast<unsigned>(random_()));
    }
    const auto depth =
        static_cast<unsigned>(below(mostReferences) + (cell->isTyped() ? 0 : 1) + (any ? 1 : 0));
    passed_.push_back({cell, !isOneIn(4), depth, any && isOneIn(4)});
  }

  Said expectToTake(bool tooManyNames) {
    const auto required = std::count_if(method_.slots.begin(), method_.slots.begin() + method_.count,
                                        [](const Parameter& parameter) { return !parameter.optional; });
    if (count_ > method_.count || tooManyNames) return {DISP_E_BADPARAMCOUNT, nowhere};
    sources_.assign(method_.count, nullptr);
    for (std::size_t k = ids_.size(); k < count_; ++k) sources_[parameterOf(k)] = &passed_[k];
    for (std::size_t k = 0; k < ids_.size(); ++k) {
      const std::size_t i = parameterOf(k);
      if (i >= method_.count || sources_[i] != nullptr) return {DISP_E_PARAMNOTFOUND, static_cast<UINT>(k)};
      sources_[i] = &passed_[k];
    }
    if (count_ < static_cast<std::size_t>(required)) return {DISP_E_BADPARAMCOUNT, nowhere};
    for (const auto fault : {&RandomCall::faultAtLoading, &RandomCall::faultAtConverting}) {
      for (std::size_t i = 0; i < method_.count; ++i) {
        const HRESULT code = (this->*fault)(i);
        if (FAILED(code)) return {code, code == raises ? nowhere : position(i)};
      }
    }
    return {S_OK, nowhere};
  }

  [[nodiscard]] HRESULT faultAtLoading(std::size_t i) const {
    if (sources_[i] == nullptr) return S_OK;
    return sources_[i]->isGood() ? faultOfLoading(*sources_[i]->cell->sample, method_.slots[i].type)
                                 : DISP_E_TYPEMISMATCH;
  }
  [[nodiscard]] HRESULT faultAtConverting(std::size_t i) const {
    if (isGiven(i)) return faultOfConverting(*sources_[i]->cell->sample, method_.slots[i].type);
    return method_.slots[i].optional ? S_OK : DISP_E_PARAMNOTOPTIONAL;
  }
  [[nodiscard]] bool isGiven(std::size_t i) const {
    return sources_[i] != nullptr && sources_[i]->cell->sample->made != omitted;
  }
  [[nodiscard]] UINT position(std::size_t i) const {
    return sources_[i] == nullptr ? nowhere : static_cast<UINT>(sources_[i] - passed_.data());
  }

  /// Whether a parameter got what it has to.
  [[nodiscard]] bool isRight(std::size_t i) const {
    const Parameter& parameter = method_.slots[i];
    if (isGiven(i)) return isExpected(received[i], *sources_[i]->cell->sample, parameter.type);
    if (parameter.type == Type::text) return received[i] == Value(std::string());
    return isNumber(received[i], parameter.type, parameter.fallback);
  }

  /// Notes what the caller's variables have to hold behind the call.
  Said expectBack() {
    Said said{S_OK, nowhere};
    for (std::size_t i = 0; i < method_.count; ++i) {
      if (!method_.slots[i].inOut || !isGiven(i) || !sources_[i]->isReference) continue;
      Cell& cell = *sources_[i]->cell;
      const Value& value = results[i] ? *results[i] : received[i];
      if (value == received[i] && cell.sample->type != VT_EMPTY && !cell.written) continue;
      if (const HRESULT code = store(cell, value); FAILED(code)) said = {code, position(i)};
    }
    return said;
  }

  std::mt19937& random_;
  Method method_;
  std::size_t count_ = 0;
  std::vector<DISPID> ids_;
  std::deque<Cell> cells_;
  std::vector<Passed> passed_;
  std::vector<VARIANT> variants_;
  std::vector<Passed*> sources_;  ///< of each parameter
};

unsigned told(const char* variable, unsigned otherwise) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? otherwise : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

TEST(Marshalling, callsAtRandom) {
  const unsigned seed = told("VELK_FUZZ_SEED", 11);
  const unsigned calls = told("VELK_FUZZ_CALLS", 30'000);
  std::printf("seed %u, %u calls\n", seed, calls);
  std::mt19937 random(seed);
  Serial serial;
  const hosts::MallocSpy spy;
  for (unsigned i = 0; i < calls && !HasFailure(); ++i) {
    const long before = spy.blocks();
    RandomCall(random).run(serial);
    EXPECT_EQ(spy.blocks(), before) << "blocks left, or freed twice";
    EXPECT_FALSE(HasFailure()) << "in call " << i << " of seed " << seed;
  }
}

/// A result that nobody asks for, and one of a call whose variable cannot hold what comes back.
TEST(Marshalling, unusedResultsAreFreed) {
  const hosts::MallocSpy spy;
  auto* const object = new SerialObject;
  constexpr DISPID convertSim = 67;
  short variable = 12;  // the text "12", whose characters are BCD
  VARIANT argument{};
  argument.vt = VT_BYREF | VT_I2;
  argument.piVal = &variable;
  VARIANT result{};
  const auto call = [&](VARIANT* to) {
    DISPPARAMS passed{&argument, nullptr, 1, 0};
    return object->Invoke(convertSim, IID_NULL, 0, DISPATCH_METHOD, &passed, to, nullptr, nullptr);
  };
  EXPECT_EQ(call(&result), DISP_E_TYPEMISMATCH);
  EXPECT_EQ(result.vt, VT_EMPTY);
  EXPECT_EQ(variable, 12);
  argument.vt = VT_EMPTY;
  EXPECT_EQ(call(nullptr), S_OK);
  object->Release();
  EXPECT_EQ(spy.blocks(), 0);
}

}  // namespace
}  // namespace velk::com
