// Calls of made-up methods with arguments of every type, form and order: what the method gets, what comes
// back to the caller, that nothing else of the caller's changes and that nothing is lost. VELK_FUZZ_SEED and
// VELK_FUZZ_CALLS stand for another seed and number of calls.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <deque>
#include <random>

#include "com/byte_array.h"
#include "com/call.h"
#include "com/serial_object.h"
#include "host_settings.h"
#include "values/runtime_error.h"

namespace velk::com {
namespace {

/// Stand for a value in the table of samples.
enum Fault : int { over = 100'000, none };

/// What a variant has to be to a method: the rows are those of variants.inc.
struct Sample {
  VARTYPE type;
  const wchar_t* made;       ///< the text that the system makes the value from
  int truth, byte, integer;  ///< or a `Fault`
  const char* text;          ///< none: no method takes such a variant, and `truth` is its fault
};

constexpr const wchar_t* omitted = L"left out";
constexpr const wchar_t* noNumber = L"NaN";
constexpr const wchar_t* infinite = L"infinity";
constexpr const wchar_t* square = L"two dimensions";
constexpr Sample samples[] = {
#include "variants.inc"
};

/// A variant that the system makes from a text; what cannot be made is empty.
VARIANT made(VARTYPE type, const std::wstring& text) {
  VARIANT variant{};
  variant.vt = VT_BSTR;
  variant.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  // Dates as numbers of days.
  VariantChangeTypeEx(&variant, &variant, LOCALE_INVARIANT, 0, type == VT_DATE ? VARTYPE{VT_R8} : type);
  variant.vt = type;
  return variant;
}

/// The type and the content of a variant, read without the component.
std::string shown(const VARIANT& variant) {
  const std::string type = std::to_string(variant.vt) + ":";
  if (variant.vt == byteArray && variant.parray != nullptr) {
    const SAFEARRAYBOUND& bound = variant.parray->rgsabound[0];
    return type + std::string(static_cast<const char*>(variant.parray->pvData), bound.cElements) + "@" +
           std::to_string(bound.lLbound);
  }
  VARIANT number = variant;
  if (number.vt == VT_DATE) number.vt = VT_R8;
  VARIANT text{};
  VariantChangeTypeEx(&text, &number, LOCALE_INVARIANT, 0, VT_BSTR);  // what has no text stays empty
  std::string content;
  for (UINT i = 0; i < SysStringLen(text.bstrVal); ++i) content += static_cast<char>(text.bstrVal[i]);
  VariantClear(&text);
  return type + content;
}

/// A variable of the caller's. `choice` is what it has at random.
struct Cell {
  Cell(const Sample& made, unsigned choice) : sample(&made), choice(choice) {
    make();
    value.vt = made.type;
    expected = shown(value);
    if (isPlainDecimal()) value.decVal.wReserved = reserved;
    before = value;
  }
  Cell(const Cell&) = delete;
  Cell& operator=(const Cell&) = delete;
  ~Cell() {
    if (is(fixed) && value.parray != nullptr) value.parray->fFeatures &= ~(FADF_FIXEDSIZE | FADF_STATIC);
    if (is(locked)) SafeArrayUnlock(value.parray);
    VariantClear(&value);
  }

  void make() {
    if (sample->made == square) {
      std::array<SAFEARRAYBOUND, 2> bounds{{{2, 0}, {2, 0}}};
      value.parray = SafeArrayCreate(VT_UI1, 2, bounds.data());
    } else if (sample->type == byteArray && !is(absent)) {
      SAFEARRAYBOUND bound{static_cast<ULONG>(std::strlen(sample->text)), lowest()};
      value.parray = SafeArrayCreate(VT_UI1, 1, &bound);
      std::memcpy(value.parray->pvData, sample->text, bound.cElements);
      if (is(fixed)) value.parray->fFeatures |= static_cast<USHORT>(isTyped() ? FADF_STATIC : FADF_FIXEDSIZE);
      if (is(locked)) SafeArrayLock(value.parray);
    } else if (sample->made == noNumber) {
      value.ullVal = sample->type == VT_R4 ? 0x7FA0'0001 : 0xFFF0'0000'0000'0001;  // they signal, both
    } else if (sample->made == infinite) {
      value.ullVal = 0xFFF0'0000'0000'0000;
    } else if (sample->type == VT_ERROR) {
      value.scode = sample->made == omitted ? DISP_E_PARAMNOTFOUND : E_FAIL;
    } else if (sample->text != nullptr || sample->type == VT_BSTR) {
      value = made(sample->type, sample->made);
    }
  }

  [[nodiscard]] bool isTyped() const { return choice % 2 != 0 && sample->type != VT_EMPTY; }
  enum Flavour : unsigned { plain, fixed, locked, absent };
  [[nodiscard]] bool is(Flavour flavour) const {
    return sample->type == byteArray && sample->text != nullptr && choice / 2 % 4 == flavour &&
           (flavour != absent || sample->text[0] == '\0');
  }
  [[nodiscard]] LONG lowest() const { return is(absent) ? 0 : static_cast<LONG>(choice / 8 % 3) - 1; }

  /// Where a host that refers to a variable of a fixed type has it: hosts keep them inside variants, too.
  void* inside() { return sample->type == VT_DECIMAL ? static_cast<void*>(&value.decVal) : &value.byref; }

  /// The value, also where a decimal variable is no part of a variant and has a reserved word of its own.
  [[nodiscard]] VARIANT content() const {
    VARIANT copy = value;
    if (isPlainDecimal()) copy.vt = value.decVal.wReserved == reserved ? VT_DECIMAL : VT_ILLEGAL;
    return copy;
  }

  /// Whether it holds what it has to. What is no result is not even written again; a new array can be
  /// resized.
  [[nodiscard]] bool isRight() const {
    if (!written) return std::memcmp(&before, &value, sizeof value) == 0 && shown(content()) == expected;
    constexpr USHORT vector = 0x2000;
    const bool isArray = value.vt == byteArray && value.parray != nullptr;
    return !(isArray && (value.parray->fFeatures & vector) != 0) && shown(content()) == expected;
  }

  static constexpr USHORT reserved = 0x4242;
  [[nodiscard]] bool isPlainDecimal() const { return isTyped() && sample->type == VT_DECIMAL; }

  const Sample* sample;
  unsigned choice;
  VARIANT value{};
  VARIANT before{};
  std::string expected;
  bool written = false;
};

// --- What has to come back

/// A result in the type of a variable, as the system converts it, into `content`.
HRESULT convertResult(const Value& value, const Cell& cell, std::string& content) {
  constexpr VARTYPE own[] = {VT_EMPTY, VT_BOOL, VT_UI1, VT_I2, VT_I4, VT_R8, VT_BSTR};
  const VARTYPE type = cell.sample->type;
  const std::string digits = toText(value);
  std::wstring wide;
  for (const char c : digits) wide += static_cast<wchar_t>(byteValue(c));
  VARIANT result = made(own[value.index()], wide);
  content = shown(result);
  HRESULT code = DISP_E_TYPEMISMATCH;
  if (type == byteArray && result.vt == VT_BSTR) {
    const LONG lowest = cell.isTyped() ? cell.lowest() : 0;
    content = std::to_string(type) + ":" + digits + "@" + std::to_string(lowest);
    code = S_OK;
  } else if (type != byteArray && type != VT_EMPTY) {
    code = VariantChangeTypeEx(&result, &result, LOCALE_INVARIANT, VARIANT_ALPHABOOL, type);
    if (SUCCEEDED(code)) content = shown(result);
  }
  VariantClear(&result);
  return code;
}

/// Notes what a cell has to hold behind a result, and returns what the call has to say of it.
HRESULT store(Cell& cell, const Value& value) {
  cell.written = true;
  if (!cell.isTyped() && cell.is(Cell::locked)) return DISP_E_ARRAYISLOCKED;
  std::string content;
  const HRESULT code = convertResult(value, cell, content);
  if (cell.isTyped() && FAILED(code)) return code;
  const bool isStiff = cell.isTyped() && (cell.is(Cell::fixed) || cell.is(Cell::locked));
  if (isStiff && content.size() != cell.expected.size()) return DISP_E_ARRAYISLOCKED;
  cell.expected = content;
  return S_OK;
}

// --- What a method has to get

constexpr HRESULT raises = E_INVALIDARG;  ///< stands for run-time error 5

int columnOf(const Sample& sample, Type wanted) {
  return wanted == Type::boolean   ? sample.truth
         : wanted == Type::byte    ? sample.byte
         : wanted == Type::integer ? sample.integer
                                   : 0;
}

HRESULT faultOfLoading(const Sample& sample, Type wanted) {
  if (sample.made == omitted) return S_OK;
  if (sample.text == nullptr && sample.type == VT_BSTR) return raises;
  if (sample.text == nullptr) return sample.truth == over ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
  return sample.type == byteArray && wanted != Type::text ? DISP_E_TYPEMISMATCH : S_OK;
}

HRESULT faultOfConverting(const Sample& sample, Type wanted) {
  const int column = columnOf(sample, wanted);
  return column == over ? DISP_E_OVERFLOW : column == none ? DISP_E_TYPEMISMATCH : S_OK;
}

bool isNumber(const Value& value, Type type, int number) {
  if (type == Type::boolean) return value == Value(number != 0);
  return holds(value, type) && toNumber(value) == number;
}

bool isExpected(const Value& value, const Sample& sample, Type wanted) {
  if (wanted == Type::text) return value == Value(std::string(sample.text));
  if (wanted == Type::variant) return toText(value) == sample.text;
  return isNumber(value, wanted, columnOf(sample, wanted));
}

// --- One call

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
    for (DISPID& id : ids_) {
      if (isOneIn(40)) id = static_cast<DISPID>(below(mostParameters + 3)) - 1;
    }
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
