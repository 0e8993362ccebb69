#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/text.h"
#include "framework/call.h"
#include "tests/support/call.h"
#include "tests/support/validation_model.h"

namespace norvane {
namespace {

using test::Arguments;
using test::infinite;
using test::not_a_number;
using test::TestContext;
using test::text;

// ---- Conversions -------------------------------------------------------------------------------------------------

// What an argument reads as: number, integer, boolean, text, unsigned, cells; "#3" where it fails with code 3.
std::string readings(TestContext& context, const FUNCTION_ARG& arg) {
  std::string all;
  const auto add = [&](bool good, const std::u16string& shown) {
    all += (all.empty() ? "" : " | ") + (good ? to_utf8(shown) : "#" + std::to_string(context.conversion_error()));
    context.Reset();
  };
  double number = 0.0;
  std::int32_t integer = 0;
  bool truth = false;
  std::u16string_view words;
  std::uint32_t count = 0;
  FUNCTION_ARG::Array cells{};
  bool good = context.ReadNumber(&arg, number);
  add(good, format_number(number));
  good = context.ReadInteger(&arg, integer);
  add(good, to_utf16(std::to_string(integer)));
  good = context.ReadBoolean(&arg, truth);
  add(good, truth ? u"yes" : u"no");
  good = context.ReadText(&arg, words);
  add(good, std::u16string(words));
  good = context.ReadUnsigned(&arg, count);
  add(good, to_utf16(std::to_string(count)));
  good = context.ReadArray(&arg, cells);
  add(good, to_utf16(std::to_string(cells.columns) + "x" + std::to_string(cells.rows)));
  return all;
}

TEST(Conversion, EveryKindIntoEveryOther) {
  FUNCTION_ARG inner = FUNCTION_ARG::Number(4.0);
  FUNCTION_ARG nested = FUNCTION_ARG::OfArray(1, 1, &inner);
  FUNCTION_ARG endless;
  endless = FUNCTION_ARG::OfArray(1, 1, &endless);
  FUNCTION_ARG unknown{};
  unknown.kind = 77;
  const struct {
    FUNCTION_ARG arg;
    const char* want;
  } rows[] = {
      {FUNCTION_ARG::Number(3.9), "3.9 | 3 | yes | 3.9 | 3 | 1x1"},
      {FUNCTION_ARG::Number(-3.9), "-3.9 | -3 | yes | -3.9 | #6 | 1x1"},
      {FUNCTION_ARG::Number(-0.0), "-0 | 0 | no | -0 | 0 | 1x1"},
      {FUNCTION_ARG::Number(-0.5), "-0.5 | 0 | yes | -0.5 | #6 | 1x1"},
      {FUNCTION_ARG::Number(4294967295.0), "4294967295 | 2147483647 | yes | 4294967295 | 4294967295 | 1x1"},
      {FUNCTION_ARG::Number(1e20), "1e+20 | 2147483647 | yes | 1e+20 | #6 | 1x1"},
      {FUNCTION_ARG::Number(infinite), "inf | 2147483647 | yes | inf | #6 | 1x1"},
      {FUNCTION_ARG::Number(not_a_number), "nan | 0 | yes | nan | #6 | 1x1"},
      {FUNCTION_ARG::Integer(-2147483647 - 1), "-2147483648 | -2147483648 | yes | -2147483648 | #6 | 1x1"},
      {FUNCTION_ARG::Boolean(false), "0 | 0 | no | FALSE | 0 | 1x1"},
      {text(u" 12.5\t"), "12.5 | #3 | yes |  12.5\t | 12 | 1x1"},
      {text(u"7"), "7 | 7 | yes | 7 | 7 | 1x1"},
      {text(u"0"), "0 | 0 | no | 0 | 0 | 1x1"},
      {text(u"True"), "#3 | #3 | yes | True | #3 | 1x1"},
      {text(u"yes"), "#3 | #3 | #3 | yes | #3 | 1x1"},
      {text(u""), "#3 | #3 | #3 |  | #3 | 1x1"},
      {FUNCTION_ARG::Empty(), "0 | 0 | no |  | 0 | #3"},
      {FUNCTION_ARG::Missing(), "#3 | #3 | #3 | #3 | #3 | #3"},
      {FUNCTION_ARG::Error(ERROR_NA), "#7 | #7 | #7 | #7 | #7 | #3"},
      {unknown, "#3 | #3 | #3 | #3 | #3 | #3"},
      {FUNCTION_ARG::OfArray(1, 1, &nested), "4 | 4 | yes | 4 | 4 | 1x1"},
      {endless, "#0 | #0 | #0 | #0 | #0 | 1x1"},  // without elements a scalar fails without a code
      {FUNCTION_ARG::OfArray(0, 3, &inner), "#0 | #0 | #0 | #0 | #0 | 0x3"},
      {FUNCTION_ARG::OfArray(2, 2, nullptr), "#0 | #0 | #0 | #0 | #0 | #3"},
  };
  TestContext context;
  for (const auto& row : rows) EXPECT_EQ(readings(context, row.arg), row.want) << "kind " << row.arg.kind;
}

TEST(Conversion, AbsentTextsAndUnits) {
  TestContext context;
  std::u16string_view value;
  EXPECT_TRUE(context.GetString(FUNCTION_ARG::Missing(), value) && value.empty());
  EXPECT_FALSE(context.GetText(FUNCTION_ARG::Missing(), value, false));
  bool truth = false;
  EXPECT_TRUE(context.ReadBoolean(nullptr, truth, true) && truth);
  const auto code_of = [&](FUNCTION_ARG arg) {
    std::uint32_t code = 0;
    return context.ReadIdentifier(&arg, code) ? code : 0xFFFFFFFFu;
  };
  EXPECT_EQ(code_of(text(u"MBAR")), unit::mbar);
  EXPECT_EQ(code_of(FUNCTION_ARG::Number(unit::mbar + 0.9)), unit::mbar);
  EXPECT_EQ(code_of(text(u"")), 0u);
  EXPECT_EQ(code_of(text(u"furlong")), 0xFFFFFFFFu);
}

TEST(Conversion, VariantsBothWays) {
  TestContext context;
  Core_CVariant variant;
  FUNCTION_ARG arg;
  EXPECT_TRUE(context.ToVariant(variant, FUNCTION_ARG::Error(7)));
  EXPECT_EQ(variant.tag(), Core_CVariant::INT32);  // an error becomes its number
  variant.SetError(7);
  EXPECT_TRUE(context.FromVariant(arg, variant));
  EXPECT_EQ(arg.kind, ARG_ERROR);
  variant.SetDateTime({5.0});
  EXPECT_FALSE(context.FromVariant(arg, variant));
  EXPECT_TRUE(arg.kind == ARG_NUMBER && arg.number == 0.0);
  variant.SetUInt16(65535);
  EXPECT_TRUE(context.FromVariant(arg, variant));
  EXPECT_EQ(arg.number, 65535.0);
  EXPECT_FALSE(context.ToVariant(variant, FUNCTION_ARG::OfArray(0, 0, nullptr)));
}

// ---- Checks ------------------------------------------------------------------------------------------------------

std::uint32_t nothing(Function_CContext&, FUNCTION_ARG*, std::size_t, FUNCTION_ARG&) { return 0; }

constexpr record::Input inputs_of_every_type[] = {
    record::name_input(),
    record::input(u"number", u"", u"", data_type::num).otherwise(390.0).within(-10.0, 1000.0),
    record::input(u"whole", u"", u"", data_type::integer).required(),
    record::input(u"date", u"", u"", data_type::date),
    record::input(u"truth", u"", u"", data_type::boolean).otherwise(true),
    record::input(u"unit", u"", u"", data_type::unit),
    record::input(u"enum", u"", u"", data_type::enumeration),
    record::input(u"address", u"", u"", data_type::ipaddr).otherwise(u"127.0.0.1"),
    record::input(u"any", u"", u"", data_type::any).required(),
    record::input(u"pressure", u"", u"", unit::bar_a).at_least(0.1),
    record::input(u"state", u"", u"", enumeration::rangestatus2).otherwise(0),
};

// The catalogue's functions have none of some types and flags: here are all of them.
TEST(Checks, AreThoseOfTheRulesForEveryTypeAndFlag) {
  Arguments pool;
  for (double value : {-1e300, -10.0, -10.5, -1.0, 0.0, 0.1, 0.5, 1.0, 7.0, 31.5, 1000.0, 1000.5, 16784648.0,
                       infinite, not_a_number, 67112192.0})
    pool.values.push_back(FUNCTION_ARG::Number(value));
  for (const char16_t* words : {u"",
                                u"12",
                                u" 0.5 ",
                                u"12x",
                                u"TRUE",
                                u"yes",
                                u"bar_a",
                                u"rangestatus2",
                                u"R2D2",
                                u"c1",
                                u"C",
                                u"1a",
                                u"Meter_1.A",
                                u"no name",
                                u"abcdefghijklmnopqrstuvwxyz_012345",
                                u"abcdefghijklmnopqrstuvwxyz_0123456-",
                                u"192.168.1.255",
                                u"192.168.1.256",
                                u"1.2.3",
                                u"1.2.3.",
                                u"1.2.3.4.5",
                                u"010.0.0.1",
                                u" 1.2.3.4",
                                u"1..2.3"})
    pool.values.push_back(text(words));
  for (const std::u16string& words :
       {std::u16string(199, u'x'), std::u16string(200, u'x'), u"-" + std::u16string(2000, u'1')})
    pool.values.push_back(pool.text(words));
  pool.values.insert(
      pool.values.end(),
      {FUNCTION_ARG::Missing(), FUNCTION_ARG::Empty(), FUNCTION_ARG::Integer(-3), FUNCTION_ARG::Integer(1),
       FUNCTION_ARG::Boolean(true), FUNCTION_ARG::Error(ERROR_NA), FUNCTION_ARG::OfArray(2, 2, nullptr),
       pool.cells({FUNCTION_ARG::Number(2.0), text(u"x")}), pool.cells({text(u"x")})});
  test::Random random(u"checks", 0, 0);
  for (std::uint32_t flags : {0u, 2u, 4u, 8u, 64u, 512u}) {
    const Function_CFunctionSpec spec(record::Function{.id = u"Every",
                                                       .flags = flags,
                                                       .name_input = 0,
                                                       .inputs = inputs_of_every_type,
                                                       .outputs = {},
                                                       .implementation = &nothing});
    TestContext context;
    for (int n = 0; n < 3000; ++n) {
      std::vector<FUNCTION_ARG> args(random.below(20) == 0 ? random.below(15) : spec.input_count,
                                     FUNCTION_ARG::Missing());
      for (FUNCTION_ARG& arg : args)
        if (random.below(3) == 0) arg = pool.values[random.below(pool.values.size())];
      const test::ValidationModel model(spec, args);
      const std::uint32_t status = context.Run(spec, args);
      ASSERT_EQ(context.messages, model.messages) << "flags " << flags << ", call " << n;
      ASSERT_EQ(status, model.status) << "flags " << flags << ", call " << n;
      ASSERT_EQ(context.flags, model.flags) << "flags " << flags << ", call " << n;
    }
  }
}

// ---- Calls -------------------------------------------------------------------------------------------------------

std::uint32_t sum_of_two(Function_CContext& context, FUNCTION_ARG* args, std::size_t count, FUNCTION_ARG& output) {
  Call call(context, args, count, output);
  const double a = call.number(1);
  const double b = call.number(2);
  if (call.failed()) return call.error();
  call.set_integer(0, 0);
  call.set(1, a + b);
  return call.done();
}

constexpr record::Input sum_inputs[] = {
    record::name_input(),
    record::input(u"a", u"First", u"First summand.", data_type::num).otherwise(390.0).at_least(-10.0),
    record::input(u"b", u"Second", u"Second summand.", data_type::num),
};
constexpr record::Output sum_outputs[] = {
    record::status_output(),
    record::output(u"sum", u"Sum", u"Sum.", data_type::num, u"SUM"),
    record::output(u"note", u"Note", u"Never written.", data_type::num, u"NOTE").failing(-1.0),
};

class Execute : public testing::Test {
 protected:
  static Function_CFunctionSpec spec_of(std::uint32_t flags) {
    return Function_CFunctionSpec(record::Function{.id = u"Sum",
                                                   .flags = flags,
                                                   .name_input = 0,
                                                   .inputs = sum_inputs,
                                                   .outputs = sum_outputs,
                                                   .implementation = &sum_of_two});
  }
  std::uint32_t run(const Function_CFunctionSpec& spec, double a, double b) {
    return context_.Run(spec, {FUNCTION_ARG::Missing(), FUNCTION_ARG::Number(a), FUNCTION_ARG::Number(b)});
  }
  std::string output() const { return test::bits_of(context_.output); }
  TestContext context_;
  const Function_CFunctionSpec spec_ = spec_of(FUNCTION_FALLBACK), strict_ = spec_of(0);
};

TEST_F(Execute, UnwrittenOutputsStayEmptyAndFailuresFallBack) {
  EXPECT_EQ(context_.Run(spec_, {FUNCTION_ARG::Missing(), FUNCTION_ARG::Missing(), text(u"10")}), 0u);
  EXPECT_EQ(output(), "1x3 i0 4079000000000000 -");  // the default and 10: 400
  EXPECT_EQ(context_.Run(spec_, {FUNCTION_ARG::Missing(), FUNCTION_ARG::Missing(), text(u"ten")}), 0u);
  EXPECT_EQ(context_.flags, FLAG_IMPLEMENTATION_FAILED | FLAG_OUTPUT_FALLBACK);
  EXPECT_EQ(output(), "1x3 3ff0000000000000 0000000000000000 bff0000000000000");
  // An overflow inside a column of outputs is a failure too, never an infinite number with success.
  EXPECT_EQ(run(strict_, 1e308, 1e308), ERROR_NUM);
  EXPECT_EQ(run(strict_, not_a_number, 0.0), ERROR_NUM);
  EXPECT_EQ(run(strict_, -10.5, 0.0), ERROR_VALUE);
  EXPECT_EQ(output(), "missing");  // the implementation did not run
}

TEST_F(Execute, TransposesForAWideCaller) {
  context_.caller.columns = 3;
  run(spec_, 1, 2);
  EXPECT_EQ(output().substr(0, 3), "3x1");
  EXPECT_EQ(context_.flags, FLAG_OUTPUT_TRANSPOSED);
  context_.caller.columns = 1;
  context_.caller.rows = 3;
  run(spec_, 1, 2);
  EXPECT_EQ(output().substr(0, 3), "1x3");
}

TEST_F(Execute, HooksRunAroundTheImplementation) {
  struct Log {
    std::u16string text;
    std::uint32_t answer;
  } before{u"", 0}, after{u"", 0};
  const auto hook = [](Function_CContext&, const Function_CFunctionSpec&, FUNCTION_ARG*, std::size_t, FUNCTION_ARG&,
                       std::uint32_t&, void* parameter) -> std::uint32_t {
    auto* log = static_cast<Log*>(parameter);
    log->text += u"*";
    return log->answer;
  };
  context_.AddPreCallHook(hook, &before);
  context_.AddPostCallHook(hook, &after);
  // With a hook the implementation runs even after a failed validation.
  EXPECT_EQ(run(strict_, -50, 2), 0u);
  EXPECT_EQ(context_.output.array.elements[1].number, -48.0);
  before.answer = ERROR_REF;
  EXPECT_EQ(run(strict_, 1, 2), ERROR_REF);
  EXPECT_EQ(output(), "missing");
  EXPECT_EQ(before.text, u"**");
  EXPECT_EQ(after.text, u"*");
}

TEST_F(Execute, ARefusedAllocationIsAnErrorNotACrash) {
  context_.Reset();
  context_.arena().SetBlockLimit(1);
  while (context_.Allocate(64) != nullptr) {
  }
  FUNCTION_ARG args[] = {FUNCTION_ARG::Missing(), FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(2)};
  FUNCTION_ARG refused = FUNCTION_ARG::Missing();
  std::uint32_t flags = 0;
  EXPECT_EQ(context_.Execute(spec_, args, 3, refused, flags), ERROR_VALUE);
  EXPECT_EQ(refused.kind, ARG_MISSING);
  EXPECT_FALSE(context_.SetText(refused, u"0123456789012345678901234567890123456789"));
}

TEST_F(Execute, StatusFillerMarksTheFunctionDisabled) {
  EXPECT_EQ(spec_.status_filler(context_, spec_, context_.output), 0u);
  EXPECT_EQ(output(), "1x3 i5 0000000000000000 bff0000000000000");
  FUNCTION_ARG none = FUNCTION_ARG::Missing();
  EXPECT_EQ(strict_.status_filler(context_, strict_, none), ERROR_OUTPUTMISMATCH);
}

TEST(ErrorText, CodesAndBeyond) {
  EXPECT_EQ(error_text(0), u"OK");
  EXPECT_EQ(error_text(12), u"#ACCESSOR!");
  EXPECT_EQ(error_text(13), u"#UNKNOWN!");
}

}  // namespace
}  // namespace norvane
