// How values cross a typed boundary: what each parameter is passed as and called, and calls through it.
#include "hosts/module/typed_call.h"

#include <gtest/gtest.h>

#include <new>
#include <set>
#include <thread>

#include "core/text.h"
#include "framework/call.h"

namespace norvane::host {
namespace {

std::uint32_t echo(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const double number = call.number(1);
  const auto list = call.numbers<3>(2);
  const int option = call.option(3);
  const bool flag = call.boolean(4);
  const std::u16string_view text = call.text(5);
  if (call.failed()) return call.error();
  if (option == 9) return call.status_only(2);
  call.set_integer(0, 0);
  call.set(1, number * 2);
  call.set(2, list[0] + list[1] + list[2]);
  call.set_integer(3, flag ? option : -option);
  call.set_text(4, text);
  return call.done();
}

// Keys as they come: blanks, points, digits first, words of C, and two that differ by nothing but their case.
constexpr record::Input inputs[] = {
    record::name_input(),
    record::input(u"Flow rate.", u"", u"", data_type::num).within(0, 100).otherwise(1.0),
    record::input(u"gas mix", u"", u"", data_type::num).range(),
    record::input(u"short", u"", u"Method.; 1: Fast; 2: Slow", data_type::num).otherwise(1),
    record::input(u"15 C", u"", u"", data_type::boolean).otherwise(true),
    record::input(u"flow-Rate", u"", u"", data_type::text).otherwise(u"none"),
};
constexpr record::Output outputs[] = {
    record::status_output(),
    record::output(u"flow rate", u"", u"", unit::bar_a, u""),
    record::output(u"gas mix count", u"", u"", data_type::num, u""),
    record::output(u"range", u"", u"", enumeration::rangestatus, u""),
    record::output(u"status", u"", u"", data_type::text, u""),
};
const record::Function echo_record = {
    .id = u"Echo", .name_input = 0, .inputs = inputs, .outputs = outputs, .implementation = &echo};

class TypedCallTest : public ::testing::Test {
 protected:
  // The parameter behind the name input, from 0.
  const Parameter& in(std::size_t i) const { return signature.inputs[i]; }
  bool begin(TypedCall& call) {
    static constexpr double list[] = {1, 2, 3};
    if (!call.begin(signature)) return false;
    call.set_number(in(0), 21.0);
    call.set_option(in(2), 2);
    return call.set_list(in(1), list, 3);
  }
  const Function_CFunctionSpec spec{echo_record};
  const Signature signature = make_signature(spec);
};

TEST_F(TypedCallTest, NamesAreIdentifiersAndUniqueWhateverTheirCase) {
  std::vector<std::string> names;
  for (const auto* list : {&signature.inputs, &signature.outputs})
    for (const Parameter& parameter : *list) names.push_back(parameter.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Flow_rate", "gas_mix", "short_", "input15_C", "flow_Rate_in",
                                             "flow_rate_out", "gas_mix_count_out", "range_", "status_out"}));
}

TEST_F(TypedCallTest, RecordsSayHowAValueIsPassed) {
  std::vector<Passing> passings;
  for (const auto* list : {&signature.inputs, &signature.outputs})
    for (const Parameter& parameter : *list) passings.push_back(parameter.passing);
  using enum Passing;
  EXPECT_EQ(passings, (std::vector<Passing>{number, range, option, option, text, number, number, option, text}));
}

TEST_F(TypedCallTest, ValuesArriveAndLeave) {
  TypedCall call;
  ASSERT_TRUE(begin(call));
  call.set_option(in(3), 7);
  ASSERT_TRUE(call.set_text(in(4), u"meter"));
  ASSERT_TRUE(call.run());
  std::uint32_t status = 9;
  std::uint32_t option = 9;
  double twice = 0;
  double sum = 0;
  std::u16string_view text;
  EXPECT_TRUE(call.fetch(0, status) && call.fetch(1, twice) && call.fetch(2, sum) && call.fetch(3, option) &&
              call.fetch(4, text));
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(twice, 42.0);
  EXPECT_EQ(sum, 6.0);
  EXPECT_EQ(option, 2u);
  EXPECT_EQ(text, u"meter");
  EXPECT_FALSE(call.fetch(5, twice) && twice != 0.0);  // no such output
}

TEST_F(TypedCallTest, WhatIsNotSetTakesItsDefaultAndWhatIsNotWrittenIsZero) {
  TypedCall call;
  ASSERT_TRUE(begin(call));
  ASSERT_TRUE(call.run());
  std::u16string_view text;
  EXPECT_TRUE(call.fetch(4, text));
  EXPECT_EQ(text, u"none");

  TypedCall failing;
  ASSERT_TRUE(begin(failing));
  failing.set_option(in(2), 9);
  ASSERT_TRUE(failing.run());
  std::uint32_t status = 0;
  double value = 1;
  EXPECT_TRUE(failing.fetch(0, status) && failing.fetch(1, value) && failing.fetch(4, text));
  EXPECT_EQ(status, 2u);
  EXPECT_EQ(value, 0.0);
  EXPECT_TRUE(text.empty());
}

TEST_F(TypedCallTest, RefusedArgumentsAreNamed) {
  TypedCall call;
  ASSERT_TRUE(begin(call));
  call.set_number(in(0), 100.5);
  EXPECT_FALSE(call.run());
  EXPECT_EQ(call.failure(), u"Echo: [2] Flow rate. (100.5) should be lower or equal than: 100");

  TypedCall brief;
  static constexpr double list[] = {1, 2, 3};
  ASSERT_TRUE(begin(brief));
  ASSERT_TRUE(brief.set_list(in(1), list, 2));
  EXPECT_FALSE(brief.run());
  EXPECT_EQ(brief.failure().find(u"Echo: "), 0u);

  EXPECT_FALSE(brief.set_list(in(1), nullptr, 3));
  EXPECT_FALSE(brief.set_list(in(1), list, 0));
  EXPECT_FALSE(brief.set_list(in(1), list, 0xFFFFFFFF));
}

TEST_F(TypedCallTest, AThreadThatCanHaveNoContextIsToldSo) {
  set_context_factory([](const Module&) -> std::unique_ptr<Function_CContext> { throw std::bad_alloc(); });
  bool began = true;
  std::thread([&] {
    TypedCall call;
    began = call.begin(signature);
  }).join();
  set_context_factory(nullptr);
  EXPECT_FALSE(began);
}

TEST(Signatures, EveryCalculationFunctionHasItsPlace) {
  std::set<std::u16string_view> order(interface_order().begin(), interface_order().end());
  EXPECT_EQ(order.size(), 106u);
  EXPECT_EQ(interface_order().front(), u"AGA10_M");
  EXPECT_EQ(find_signature(0u), nullptr);
  EXPECT_EQ(find_signature(107u), nullptr);
  EXPECT_EQ(find_signature(0xFFFFFFFFu), nullptr);
  for (const catalogue::Line& line : catalogue::lines()) {
    EXPECT_EQ(order.contains(line.id), line.group != GroupId::Extended) << to_utf8(line.id);
    const Signature* signature = find_signature(line.id);
    ASSERT_EQ(signature != nullptr, line.record != nullptr && line.group != GroupId::Extended) << to_utf8(line.id);
    if (signature == nullptr) continue;
    EXPECT_EQ(interface_order()[signature->id - 1], line.id);
    EXPECT_EQ(find_signature(signature->id), signature);
  }
}

}  // namespace
}  // namespace norvane::host
