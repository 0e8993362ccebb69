// Calls without the context: what they answer is what the context answers, and they answer whatever is plainly good.
#include "hosts/module/direct_call.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/text.h"
#include "framework/binding.h"
#include "hosts/module/function_state.h"
#include "hosts/module/typed_call.h"
#include "tests/module/typed_arguments.h"

namespace norvane::host {
namespace {

using test::TypedArguments;
using test::TypedResult;

struct Direct {
  bool good = false;
  std::vector<std::uint64_t> outputs;
};

constexpr std::uint64_t untouched = 0x5555555555555555;

Direct call_directly(const Signature& signature, const TypedArguments& arguments) {
  Direct result;
  result.outputs.assign(signature.outputs.size(), untouched);
  std::vector<void*> places;
  for (std::uint64_t& output : result.outputs) places.push_back(&output);
  result.good = direct_call(signature, arguments.values.data(), places.data());
  for (std::size_t k = 0; result.good && k < places.size(); ++k)
    if (signature.outputs[k].passing == Passing::option) result.outputs[k] &= 0xFFFFFFFF;
  return result;
}

TEST(DirectCall, AnswersWhatTheContextAnswersAndAllThatIsPlainlyGood) {
  std::size_t good = 0, left = 0;
  for (std::uint32_t id = 1; id <= interface_order().size(); ++id) {
    const Signature& signature = *find_signature(id);
    for (std::uint64_t number = 0; number < 96; ++number) {
      SCOPED_TRACE(to_utf8(signature.spec->id).append(" ").append(std::to_string(number)));
      const TypedArguments arguments(signature, number);
      const Direct first = call_directly(signature, arguments);
      const Direct again = call_directly(signature, arguments);
      const TypedResult context = test::call_through_context(signature, arguments);
      const bool plain = context.answer == TypedAnswer::delivered && context.status == 0 && last_message().empty();
      ASSERT_EQ(first.good, plain) << to_utf8(last_message());
      ASSERT_EQ(again.good, plain);
      const std::vector<std::uint64_t> nothing(signature.outputs.size(), untouched);
      ASSERT_EQ(first.outputs, plain ? context.outputs : nothing);
      ASSERT_EQ(again.outputs, first.outputs);
      ++(plain ? good : left);
    }
  }
  EXPECT_GT(good, 3000u);
  EXPECT_GT(left, 1500u);
}

// The calculations themselves, without the bounds that a record puts before them: any number ends with a status and a
// reason, or with finite results; and what was kept from the calls before, of which a call takes over much, changes no
// bit.
TEST(Calculations, AnswerAnyNumbersAsIfForTheFirstTime) {
  for (std::uint32_t id = 1; id <= interface_order().size(); ++id) {
    const Signature& signature = *find_signature(id);
    const record::Binding& binding = *signature.spec->binding;
    SCOPED_TRACE(to_utf8(signature.spec->id));
    FunctionState kept(signature);
    test::Random random(signature.spec->id, 0, 0);
    const std::uint64_t calls = signature.spec->id.find(u"GERG") != std::u16string_view::npos ? 200 : 2000;
    for (std::uint64_t n = 0; n < calls; ++n) {
      const TypedArguments drawn(signature, n);
      const bool anew = n % 5 == 0;
      if (anew) std::memcpy(kept.arguments, binding.arguments.prototype, binding.arguments.size);
      const std::size_t changed = random.below(signature.inputs.size());
      for (std::size_t i = anew ? 0 : changed; i < (anew ? signature.inputs.size() : changed + 1); ++i) {
        const PlannedInput& input = signature.plan.inputs[i];
        const auto put = [&](std::size_t cell, double value, std::size_t odds) {
          if (random.below(odds) == 0)
            value = random.below(2) == 0 ? random.hostile(0.0, 2.0 * value)
                                         : std::copysign(std::exp(random.within(-700.0, 700.0)), value);
          std::memcpy(kept.arguments + input.offset + cell * sizeof value, &value, sizeof value);
        };
        for (std::size_t cell = 0; cell < std::min<std::size_t>(input.cells, drawn.lists[i].size()); ++cell)
          put(cell, drawn.lists[i][cell], 90);
        if (input.from == PlannedInput::From::list) continue;
        bool fits = input.accept(drawn.numbers[i], kept.arguments) == Verdict::fits;
        if (input.kind == record::Field::Kind::number && !input.enumerated)
          put(0, drawn.numbers[i], 5);
        else  // what is none of its options ends every call before this
          for (int option = 0; option < 64 && !fits; ++option)
            fits = input.accept(option, kept.arguments) == Verdict::fits;
      }
      FunctionState fresh(signature);
      for (FunctionState* state : {&kept, &fresh})
        std::memcpy(state->results, binding.results.prototype, binding.results.size);
      const Outcome outcome = binding.calculate(kept.arguments, kept.results, kept.memory);
      const Outcome first = binding.calculate(kept.arguments, fresh.results, fresh.memory);
      ASSERT_EQ(outcome.status, first.status) << n;
      if (!outcome.good()) {
        ASSERT_NE(outcome.text[0], u'\0') << n;
        continue;
      }
      for (const PlannedOutput& output : signature.plan.outputs) {
        const double value = output.value(kept.results);
        ASSERT_TRUE(std::isfinite(value)) << n;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(output.value(fresh.results)))
            << n;
      }
    }
  }
}

class DirectAga8 : public ::testing::Test {
 protected:
  void SetUp() override {
    set(0, 60.0);
    set(1, 6.85);
    arguments.values[2] = {{.data = gas.data()}, static_cast<std::uint32_t>(gas.size())};
    arguments.values[3] = arguments.values[4] = {{.option = 1}, 0};
  }
  void set(std::size_t input, double value) { arguments.values[input] = {{.number = value}, 0}; }
  Direct call() { return call_directly(signature, arguments); }

  const Signature& signature = *find_signature(u"AGA8_M");
  std::vector<double> gas = {0.965, 0.003,  0.006,  0.018,  0.0045, 0, 0, 0, 0, 0, 0.001,
                             0.001, 0.0005, 0.0003, 0.0007, 0,      0, 0, 0, 0, 0, 0};
  TypedArguments arguments{signature, 0};
};

TEST_F(DirectAga8, KeepsNoAnswerThatIsNotItsInputs) {
  const Direct first = call();
  ASSERT_TRUE(first.good);
  // The numbers decide, not where they stand.
  std::vector<double> copy = gas;
  copy.resize(30, 5.0);  // what lies behind the list's first numbers is not read
  arguments.values[2] = {{.data = copy.data()}, 30};
  EXPECT_EQ(call().outputs, first.outputs);
  copy[0] -= 0.0001;
  copy[1] += 0.0001;
  const Direct other = call();
  EXPECT_NE(other.outputs, first.outputs);
  // A call that is left to the context leaves no half answer behind.
  for (const double pressure : {-1.0, std::numeric_limits<double>::quiet_NaN(), 1e300}) {
    set(0, pressure);
    EXPECT_FALSE(call().good);
    EXPECT_FALSE(call().good);
    set(0, 60.0);
    EXPECT_EQ(call().outputs, other.outputs);
  }
  arguments.values[2].count = 21;
  EXPECT_FALSE(call().good);
  arguments.values[2] = {{.data = nullptr}, 22};
  EXPECT_FALSE(call().good);
  arguments.values[4] = {{.option = 3}, 0};
  EXPECT_FALSE(call().good);
  SetUp();
  EXPECT_EQ(call().outputs, first.outputs);
}

TEST_F(DirectAga8, LeavesNullOutputsAndNestedCallsToTheContext) {
  ASSERT_TRUE(call().good);
  double z = -7.0;
  void* const places[] = {&z, nullptr, nullptr, nullptr, nullptr};
  EXPECT_FALSE(direct_call(signature, arguments.values.data(), places));
  EXPECT_EQ(z, -7.0);
  const HeldContext outer(nullptr);
  EXPECT_FALSE(call().good);
}

TEST_F(DirectAga8, PutsTheFloatingPointEnvironmentBack) {
  const Direct expected = call();
  for (double pressure : {61.0, 60.0}) {
    std::feclearexcept(FE_ALL_EXCEPT);
    std::fesetround(FE_UPWARD);
    set(0, pressure);
    const Direct again = call();
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(again.outputs == expected.outputs, pressure == 60.0);
  }
}

}  // namespace
}  // namespace norvane::host
