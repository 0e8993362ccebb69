#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/text.h"
#include "tests/framework/test_context.h"

namespace norvane {
namespace {

using test::TestContext;
using test::text;

constexpr double infinity = std::numeric_limits<double>::infinity();

// ---- Conversions -------------------------------------------------------------------------------------------------

TEST(Conversion, Numbers) {
  TestContext context;
  const auto number = [&](const FUNCTION_ARG& arg) {
    double value = -1.0;
    context.SetConversionError(0);
    return context.ReadNumber(&arg, value) ? value : -1000.0 - context.conversion_error();
  };
  EXPECT_EQ(number(FUNCTION_ARG::Integer(-3)), -3.0);
  EXPECT_EQ(number(FUNCTION_ARG::Boolean(true)), 1.0);
  EXPECT_EQ(number(text(u" 12.5\t")), 12.5);
  EXPECT_EQ(number(text(u"12.5x")), -1003.0);
  EXPECT_EQ(number(text(u" ")), -1003.0);
  EXPECT_EQ(number(FUNCTION_ARG::Empty()), 0.0);
  EXPECT_EQ(number(FUNCTION_ARG::Missing()), -1003.0);
  EXPECT_EQ(number(FUNCTION_ARG::Error(ERROR_NA)), -1007.0);
  FUNCTION_ARG inner = FUNCTION_ARG::Number(4.0);
  FUNCTION_ARG nested = FUNCTION_ARG::OfArray(1, 1, &inner);
  EXPECT_EQ(number(FUNCTION_ARG::OfArray(1, 1, &nested)), 4.0);
  EXPECT_EQ(number(FUNCTION_ARG::OfArray(0, 3, &inner)), -1000.0);  // fails without a code
  EXPECT_EQ(number(FUNCTION_ARG::OfArray(2, 2, nullptr)), -1000.0);
  FUNCTION_ARG endless;
  endless = FUNCTION_ARG::OfArray(1, 1, &endless);
  EXPECT_EQ(number(endless), -1000.0);
  FUNCTION_ARG unknown{};
  unknown.kind = 77;
  EXPECT_EQ(number(unknown), -1003.0);
}

TEST(Conversion, IntegersBooleansAndUnsigned) {
  TestContext context;
  std::int32_t value = 0;
  FUNCTION_ARG arg = FUNCTION_ARG::Number(3.9);
  EXPECT_TRUE(context.ReadInteger(&arg, value) && value == 3);
  arg = FUNCTION_ARG::Number(-3.9);
  EXPECT_TRUE(context.ReadInteger(&arg, value) && value == -3);
  arg = FUNCTION_ARG::Number(std::nan(""));
  EXPECT_TRUE(context.ReadInteger(&arg, value) && value == 0);
  arg = FUNCTION_ARG::Number(1e300);
  EXPECT_TRUE(context.ReadInteger(&arg, value) && value == 2147483647);
  bool truth = false;
  for (const char16_t* yes : {u"true", u"True", u"TRUE", u"2"}) {
    arg = text(yes);
    EXPECT_TRUE(context.ReadBoolean(&arg, truth) && truth);
  }
  arg = text(u"0");
  EXPECT_TRUE(context.ReadBoolean(&arg, truth) && !truth);
  arg = text(u"yes");
  EXPECT_FALSE(context.ReadBoolean(&arg, truth));
  EXPECT_EQ(context.conversion_error(), ERROR_VALUE);
  EXPECT_TRUE(context.ReadBoolean(nullptr, truth, true) && truth);
  std::uint32_t count = 0;
  arg = FUNCTION_ARG::Number(4294967295.0);
  EXPECT_TRUE(context.ReadUnsigned(&arg, count) && count == 4294967295u);
  for (double bad : {-0.5, 4294967296.0, infinity, std::nan("")}) {
    arg = FUNCTION_ARG::Number(bad);
    EXPECT_FALSE(context.ReadUnsigned(&arg, count));
    EXPECT_EQ(context.conversion_error(), ERROR_NUM);
  }
}

TEST(Conversion, TextsAndArrays) {
  TestContext context;
  std::u16string_view value;
  FUNCTION_ARG arg = FUNCTION_ARG::Boolean(false);
  EXPECT_TRUE(context.ReadText(&arg, value) && value == u"FALSE" && value.size() == 5);
  arg = FUNCTION_ARG::Number(1e20);
  EXPECT_TRUE(context.ReadText(&arg, value) && value == u"1e+20");
  arg = FUNCTION_ARG::Integer(-2147483647 - 1);
  EXPECT_TRUE(context.ReadText(&arg, value) && value == u"-2147483648");
  arg = FUNCTION_ARG::Missing();
  EXPECT_FALSE(context.ReadText(&arg, value));
  EXPECT_TRUE(context.GetString(arg, value) && value.empty());
  EXPECT_FALSE(context.GetText(arg, value, false));
  FUNCTION_ARG::Array array{};
  arg = text(u"7");
  ASSERT_TRUE(context.ReadArray(&arg, array));
  EXPECT_EQ(array.columns * array.rows, 1u);
  EXPECT_EQ(array.elements[0].text(), u"7");
  for (const FUNCTION_ARG& bad : {FUNCTION_ARG::Missing(), FUNCTION_ARG::Empty(), FUNCTION_ARG::Error(ERROR_REF),
                                  FUNCTION_ARG::OfArray(1, 1, nullptr)}) {
    EXPECT_FALSE(context.ReadArray(&bad, array));
    EXPECT_EQ(context.conversion_error(), ERROR_VALUE);
  }
  std::uint32_t code = 0;
  arg = text(u"MBAR");
  EXPECT_TRUE(context.ReadIdentifier(&arg, code) && code == unit::mbar);
  arg = text(u"");
  EXPECT_TRUE(context.ReadIdentifier(&arg, code) && code == 0);
  arg = text(u"furlong");
  EXPECT_FALSE(context.ReadIdentifier(&arg, code));
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
  FUNCTION_ARG none = FUNCTION_ARG::OfArray(0, 0, nullptr);
  EXPECT_FALSE(context.ToVariant(variant, none));
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
    record::input(u"a", u"First", u"First summand.", data_type::num).otherwise(390.0).within(-10.0, 1000.0),
    record::input(u"b", u"Second", u"Second summand.", data_type::integer),
    record::input(u"c", u"State", u"A state.", enumeration::rangestatus2).otherwise(0),
};
constexpr record::Output sum_outputs[] = {
    record::status_output(),
    record::output(u"sum", u"Sum", u"Sum.", data_type::num, u"SUM"),
    record::output(u"note", u"Note", u"Never written.", data_type::num, u"NOTE").failing(-1.0),
};

Function_CFunctionSpec sum_spec(std::uint32_t flags) {
  const record::Function record{.id = u"Sum",
                                .display = u"Sum",
                                .description = u"",
                                .flags = flags,
                                .name_input = 0,
                                .inputs = sum_inputs,
                                .outputs = sum_outputs,
                                .implementation = &sum_of_two};
  return Function_CFunctionSpec(record);
}

std::vector<FUNCTION_ARG> sum_args(FUNCTION_ARG a, FUNCTION_ARG b, FUNCTION_ARG c = FUNCTION_ARG::Missing(),
                                   FUNCTION_ARG name = FUNCTION_ARG::Missing()) {
  return {name, a, b, c};
}

TEST(Execute, DefaultsReachTheImplementationAndUnwrittenOutputsStayEmpty) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  EXPECT_EQ(context.Run(spec, sum_args(FUNCTION_ARG::Missing(), FUNCTION_ARG::Number(10.0))), 0u);
  EXPECT_EQ(context.flags, 0u);
  ASSERT_EQ(context.output.count(), 3u);
  EXPECT_EQ(context.output.array.elements[1].number, 400.0);
  EXPECT_EQ(context.output.array.elements[2].kind, ARG_EMPTY);
}

TEST(Execute, ArgumentCount) {
  TestContext context;
  context.EnableMessages(true);
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  EXPECT_EQ(context.Run(spec, {FUNCTION_ARG::Missing(), FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(1)}),
            ERROR_ARGCOUNT);
  ASSERT_EQ(context.messages.size(), 1u);
  EXPECT_EQ(context.messages[0], u"E Invalid number of arguments (3) specified, expected (4)");
  const auto variable = sum_spec(FUNCTION_VARIABLE_INPUTS);
  EXPECT_EQ(context.Run(variable, {FUNCTION_ARG::Missing(), FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(1)}), 0u);
  EXPECT_EQ(context.messages[0], u"E Invalid number of arguments (3) specified, expected at least (4)");
  // Further arguments of a variable list are checked by the last record.
  auto args = sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(1));
  args.push_back(FUNCTION_ARG::Number(9));
  EXPECT_EQ(context.Run(variable, args), ERROR_VALUE);
  EXPECT_EQ(context.messages[0], u"E [5] c (9) is not a valid Range status");
}

TEST(Execute, RangeChecksAreInclusiveReportEverythingAndMarkTheStatus) {
  TestContext context;
  context.EnableMessages(true);
  const auto strict = sum_spec(0);
  EXPECT_EQ(context.Run(strict, sum_args(FUNCTION_ARG::Number(1000.0), FUNCTION_ARG::Number(0))), 0u);
  EXPECT_EQ(context.Run(strict, sum_args(FUNCTION_ARG::Number(std::nan("")), FUNCTION_ARG::Number(0))), ERROR_NUM);
  EXPECT_EQ(
      context.Run(strict, sum_args(FUNCTION_ARG::Number(-10.5), FUNCTION_ARG::Number(0), FUNCTION_ARG::Number(7))),
      ERROR_VALUE);
  EXPECT_EQ(context.flags, FLAG_INPUT_INVALID);
  ASSERT_EQ(context.messages.size(), 2u);
  EXPECT_EQ(context.messages[0], u"W [2] a (-10.5) should be higher or equal than: -10");
  EXPECT_EQ(context.messages[1], u"E [4] c (7) is not a valid Range status");
  EXPECT_EQ(context.output.kind, ARG_MISSING);  // the implementation did not run
  EXPECT_EQ(context.Run(strict, sum_args(FUNCTION_ARG::Error(ERROR_NA), FUNCTION_ARG::Number(0))), ERROR_VALUE);
  EXPECT_EQ(context.messages[0], u"E [2] a (#N/A) is not a valid number");  // type check, then range check
  const auto unchecked = sum_spec(FUNCTION_NO_RANGE_CHECK);
  EXPECT_EQ(context.Run(unchecked, sum_args(FUNCTION_ARG::Number(1e6), FUNCTION_ARG::Number(0))), 0u);
}

TEST(Execute, TypeFaultsAreReportedOnlyAndOnlyWithMessages) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  context.EnableMessages(true);
  EXPECT_EQ(context.Run(spec, sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(31.5))), 0u);
  ASSERT_EQ(context.messages.size(), 1u);
  EXPECT_EQ(context.messages[0], u"E [3] b (31.5) is not a valid whole number");
  EXPECT_EQ(context.output.array.elements[1].number, 32.5);
  context.EnableMessages(false);
  context.Run(spec, sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(31.5)));
  EXPECT_TRUE(context.messages.empty());
}

TEST(Execute, FallbackOutputsReplaceAFailure) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  EXPECT_EQ(context.Run(spec, sum_args(FUNCTION_ARG::Number(1), text(u"ten"))), 0u);
  EXPECT_EQ(context.flags, FLAG_IMPLEMENTATION_FAILED | FLAG_OUTPUT_FALLBACK);
  EXPECT_EQ(context.output.array.elements[0].number, 1.0);
  EXPECT_EQ(context.output.array.elements[1].number, 0.0);
  EXPECT_EQ(context.output.array.elements[2].number, -1.0);
  // An overflow inside a column of outputs is a failure too, never an infinite number with success.
  EXPECT_EQ(context.Run(sum_spec(FUNCTION_NO_RANGE_CHECK),
                        sum_args(FUNCTION_ARG::Number(1e308), FUNCTION_ARG::Number(1e308))),
            ERROR_NUM);
}

TEST(Execute, TransposesForAWideCaller) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  context.caller.columns = 3;
  context.Run(spec, sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(2)));
  EXPECT_EQ(context.output.array.columns, 3u);
  EXPECT_EQ(context.output.array.rows, 1u);
  EXPECT_EQ(context.flags, FLAG_OUTPUT_TRANSPOSED);
  context.caller.columns = 1;
  context.caller.rows = 3;
  context.Run(spec, sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(2)));
  EXPECT_EQ(context.output.array.rows, 3u);
}

TEST(Execute, NamesFollowTheirRulesInOrder) {
  TestContext context;
  context.EnableMessages(true);
  const auto spec = sum_spec(FUNCTION_RETENTIVE);
  const auto complaint = [&](const char16_t* name) {
    context.Run(spec,
                sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(1), FUNCTION_ARG::Missing(), text(name)));
    return context.messages.empty() ? std::u16string(u"none") : context.messages[0];
  };
  EXPECT_EQ(complaint(u"Meter_1.A"), u"none");
  EXPECT_EQ(complaint(u""), u"E [1] Name cannot be optional or empty");
  EXPECT_NE(complaint(u"1a").find(u"begin with a decimal"), std::u16string::npos);
  EXPECT_NE(complaint(u"R2D2").find(u"'C' or 'R'"), std::u16string::npos);
  EXPECT_NE(complaint(u"c1").find(u"'C' or 'R'"), std::u16string::npos);
  EXPECT_EQ(complaint(u"C"), u"none");
  EXPECT_NE(complaint(u"abcdefghijklmnopqrstuvwxyz_0123456-").find(u"only the following"), std::u16string::npos);
  EXPECT_NE(complaint(u"abcdefghijklmnopqrstuvwxyz_012345").find(u"longer than 32"), std::u16string::npos);
  EXPECT_EQ(complaint(u"abcdefghijklmnopqrstuvwxyz_01234"), u"none");
}

TEST(Execute, LongValuesAreHiddenInErrorsAndCutInWarnings) {
  TestContext context;
  context.EnableMessages(true);
  const std::u16string long_text(250, u'x');
  context.Run(sum_spec(0), sum_args(FUNCTION_ARG::Number(1), text(long_text.c_str())));
  EXPECT_EQ(context.messages[0], u"E [3] b (...) is not a valid number");
  const std::u16string long_number = u"-" + std::u16string(2000, u'1');
  context.Run(sum_spec(0), sum_args(text(long_number.c_str()), FUNCTION_ARG::Number(1)));
  EXPECT_EQ(context.messages[0].size(), 511u + 2u);
}

TEST(Execute, HooksRunAroundTheImplementation) {
  TestContext context;
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
  context.AddPreCallHook(hook, &before);
  context.AddPostCallHook(hook, &after);
  const auto spec = sum_spec(0);
  // With a hook the implementation runs even after a failed validation.
  EXPECT_EQ(context.Run(spec, sum_args(FUNCTION_ARG::Number(-50), FUNCTION_ARG::Number(2))), 0u);
  EXPECT_EQ(context.output.array.elements[1].number, -48.0);
  before.answer = ERROR_REF;
  EXPECT_EQ(context.Run(spec, sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(2))), ERROR_REF);
  EXPECT_EQ(context.output.kind, ARG_MISSING);
  EXPECT_EQ(before.text, u"**");
  EXPECT_EQ(after.text, u"*");
}

TEST(Execute, ARefusedAllocationIsAnErrorNotACrash) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  context.Reset();
  context.arena().SetBlockLimit(1);
  while (context.Allocate(64) != nullptr) {
  }
  std::vector<FUNCTION_ARG> args = sum_args(FUNCTION_ARG::Number(1), FUNCTION_ARG::Number(2));
  FUNCTION_ARG output = FUNCTION_ARG::Missing();
  std::uint32_t flags = 0;
  EXPECT_EQ(context.Execute(spec, args.data(), args.size(), output, flags), ERROR_VALUE);
  EXPECT_EQ(output.kind, ARG_MISSING);
  EXPECT_FALSE(context.SetText(output, u"0123456789012345678901234567890123456789"));
}

TEST(Execute, StatusFillerMarksTheFunctionDisabled) {
  TestContext context;
  const auto spec = sum_spec(FUNCTION_FALLBACK);
  EXPECT_EQ(spec.status_filler(context, spec, context.output), 0u);
  EXPECT_EQ(context.output.array.elements[0].integer, 5);
  EXPECT_EQ(context.output.array.elements[2].number, -1.0);
  const auto bare = sum_spec(0);
  FUNCTION_ARG nothing = FUNCTION_ARG::Missing();
  EXPECT_EQ(bare.status_filler(context, bare, nothing), ERROR_OUTPUTMISMATCH);
}

TEST(ErrorText, CodesAndBeyond) {
  EXPECT_EQ(error_text(0), u"OK");
  EXPECT_EQ(error_text(12), u"#ACCESSOR!");
  EXPECT_EQ(error_text(13), u"#UNKNOWN!");
}

}  // namespace
}  // namespace norvane
