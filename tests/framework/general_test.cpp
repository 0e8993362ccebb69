#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "core/crc32.h"
#include "tests/support/call.h"

namespace norvane {
namespace {

using test::bits_of;
using test::Call;
using test::TestContext;
using test::text;

// The checksum of the bytes one by one, as the definition says.
void append(std::vector<std::uint8_t>& bytes, double value) {
  for (auto word = std::bit_cast<std::uint64_t>(value), n = std::uint64_t{8}; n != 0; --n, word >>= 8)
    bytes.push_back(static_cast<std::uint8_t>(word));
}

TEST(General, ChecksumsOfRanges) {
  std::vector<std::uint8_t> bytes;
  for (double value : {1.5, -7.25, 1e-300, 12.0, 1.0, 3.0, 0.0}) append(bytes, value);
  for (char c : {'A', '\0', '\x3B', '\x20'}) bytes.push_back(static_cast<std::uint8_t>(c));
  for (const char16_t* id : {u"CRC16", u"CRC32"}) {
    Call call(id);
    call.set(0, call.arguments().cells(
                    {FUNCTION_ARG::Number(1.5), FUNCTION_ARG::Number(-7.25), FUNCTION_ARG::Number(1e-300),
                     text(u" 12"), FUNCTION_ARG::Boolean(true), FUNCTION_ARG::Integer(3), FUNCTION_ARG::Empty(),
                     text(u"A\u203B"), FUNCTION_ARG::Missing(), text(u"")},
                    5));
    EXPECT_EQ(call.run(), 0);
    EXPECT_EQ(call.value(0), crc32_update(0, bytes));
    call.set(0, text(u"12")).run();
    const double of_text = call.value(0);
    call.set(0, 12.0).run();
    EXPECT_EQ(of_text, call.value(0));
  }
}

TEST(General, FunctionList) {
  Call call(u"FunctionList");
  const auto listed = [&call](const char16_t* category) {
    call.set(0, text(category)).run();
    return bits_of(call.output(0));
  };
  EXPECT_EQ(
      listed(u"general"),
      "1x11 \"nvBits2Num\" \"nvBitTest\" \"nvConvertUnit\" \"nvCRC16\" \"nvCRC32\" \"nvFunctionInputProperty\" "
      "\"nvFunctionList\" \"nvFunctionOutputProperty\" \"nvFunctionProperty\" \"nvFunctionTest\" \"nvNum2Num\"");
  EXPECT_NE(listed(u"math").find("\"nvInterpolationCurve\""), std::string::npos);
  EXPECT_EQ(listed(u"math").find("nvCRC16"), std::string::npos);
  EXPECT_EQ(listed(u"Flow"), "\"<< no functions found with category 'Flow'>>\"");
  EXPECT_EQ(listed(std::u16string(1000, u'x').c_str()).size(), 257u);
  // Hidden functions are not listed, and properties not told of them.
  std::size_t visible = 0;
  for (const Function_CFunctionSpec* spec : catalogue::specifications()) visible += spec->visible();
  listed(u"");
  EXPECT_EQ(call.output(0).count(), visible);
  call.set(0, FUNCTION_ARG::Missing()).run();
  EXPECT_EQ(call.output(0).count(), visible);
  Function_CFunctionSpec hidden(*catalogue::lines()[0].record);
  hidden.flags |= FUNCTION_HIDDEN;
  Function_CLibrary library;
  library.Register(hidden);
  TestContext context(library);
  EXPECT_EQ(context.Run(call.spec(), {FUNCTION_ARG::Missing()}), ERROR_OK);
  EXPECT_EQ(context.output.text(), u"<< no functions found>>");
  context.Run(*catalogue::find(u"FunctionProperty"), {text(u"nvBits2Num"), FUNCTION_ARG::Number(1)});
  EXPECT_EQ(context.messages.size(), 1u);
}

// One calling place whose table grows, shrinks and grows: its buffer follows.
TEST(General, InterpolationCurveKeepsTablesOfAnySize) {
  Call call(u"InterpolationCurve");
  for (std::uint32_t points : {2u, 5000u, 3u, 7000u}) {
    std::vector<FUNCTION_ARG> values;
    for (std::uint32_t i = 0; i < points; ++i)
      values.insert(values.end(), {FUNCTION_ARG::Number(i), FUNCTION_ARG::Number(2.0 * i)});
    EXPECT_EQ(call.set(1, 1.5).set(2, call.arguments().cells(values, 2)).run(), 0);
    EXPECT_EQ(call.value(0), 3.0);
    EXPECT_EQ(call[u"out of range"], points > 2 ? 0.0 : 1.0);
  }
  EXPECT_EQ(call.context().data_manager().Count(), 1u);
}

TEST(General, EverySymbolIsAUnitOrSeveral) {
  std::vector<std::uint32_t> codes;
  Call call(u"ConvertUnit");
  call.context().units().ListMembers(CodeKind::unit, 0, codes);
  for (const std::uint32_t code : codes) {
    const Unit_CEntry* entry = nullptr;
    ASSERT_EQ(call.context().units().UnitDetails(code, entry), UNIT_OK);
    for (const std::u16string& name : {std::u16string(entry->key), std::u16string(entry->text)}) {
      call.set(1, 7.0).set(2, text(name.c_str())).set(3, text(name.c_str()));
      const bool good = call.run() == 0;
      EXPECT_EQ(call.value(0), good ? 7.0 : 0.0);
      EXPECT_TRUE(good || name != entry->key) << to_utf8(name);
      ASSERT_EQ(call.context().messages.size(), good ? 0u : 2u) << to_utf8(name);
      for (const auto& message : call.context().messages)
        EXPECT_TRUE(message.ends_with(u"could mean multiple units"));
    }
  }
}

// Exactly the general functions without a status, an error or a failed test among their outputs show their error.
TEST(General, FailuresShow) {
  for (const Function_CFunctionSpec* spec : catalogue::specifications())
    EXPECT_EQ(spec->outputs_tell_failure(),
              spec->group->name != u"Extended" || spec->id == u"ConvertUnit" || spec->id == u"FunctionTest");
  Call call(u"BitTest");
  EXPECT_EQ(call.set(0, 5.0).set(1, 32.0).run(), Call::refused);
  EXPECT_EQ(call.shown_error(), ERROR_VALUE);
  EXPECT_EQ(call.set(1, 2.0).run(), 0);  // and the next call is a good one again
  EXPECT_EQ(call.shown_error(), ERROR_OK);
}

// The symbols are built once for all threads.
TEST(General, ConvertUnitFromManyThreads) {
  std::vector<std::thread> threads;
  std::vector<double> results(8);
  for (double& result : results) {
    threads.emplace_back([&result] {
      Call call(u"ConvertUnit");
      call.set(1, 2.0).set(2, text(u"kg/hr")).set(3, text(u"kg/d"));
      for (int i = 0; i < 100; ++i)
        if (call.run() == 0) result = call.value(0);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (double result : results) EXPECT_NEAR(result, 48.0, 1e-9);
}

}  // namespace
}  // namespace norvane
