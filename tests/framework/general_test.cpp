#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/crc32.h"
#include "core/text.h"
#include "framework/context.h"

namespace norvane {
namespace {

class TestContext : public Function_CContext {
 public:
  using Function_CContext::Function_CContext;
  const Function_CCallerInfo* FetchCallerInfo() noexcept override { return &caller_; }
  void ReportMessage(std::uint32_t, std::u16string_view text) noexcept override { messages.push_back(to_utf8(text)); }
  std::vector<std::string> messages;

 private:
  Function_CCallerInfo caller_{};
};

// The general functions as they are, but without fallback outputs, so that a failed call shows its error.
class General : public ::testing::Test {
 protected:
  General() : context_(library_, Unit_CTypeAndUnitContainer::Instance()) {
    for (const catalogue::Line& line : catalogue::lines()) {
      if (line.record == nullptr) continue;
      specs_.emplace_back(*line.record).flags &= ~std::uint32_t{FUNCTION_FALLBACK};
      library_.Register(specs_.back());
    }
    context_.EnableMessages(true);
  }

  // The output, or the error that ended the call.
  FUNCTION_ARG run(std::u16string_view id, std::vector<FUNCTION_ARG> args) {
    context_.messages.clear();
    context_.Reset();
    FUNCTION_ARG output = FUNCTION_ARG::Missing();
    std::uint32_t flags = 0;
    const Function_CFunctionSpec* spec = library_.Find(std::u16string(u"nv").append(id));
    const std::uint32_t status =
        context_.Execute(*spec, args.data(), args.size(), output, flags, use_slot_ ? &slot_ : nullptr);
    return status != ERROR_OK ? FUNCTION_ARG::Error(status) : output;
  }

  // A range of cells in this storage order.
  FUNCTION_ARG range(std::uint32_t columns, std::uint32_t rows, std::vector<FUNCTION_ARG> cells) {
    EXPECT_EQ(cells.size(), std::size_t{columns} * rows);
    return FUNCTION_ARG::OfArray(columns, rows, ranges_.emplace_back(std::move(cells)).data());
  }
  FUNCTION_ARG numbers(std::uint32_t columns, std::uint32_t rows, const std::vector<double>& values) {
    std::vector<FUNCTION_ARG> cells;
    for (double value : values) cells.push_back(FUNCTION_ARG::Number(value));
    return range(columns, rows, std::move(cells));
  }

  Function_CLibrary library_;
  std::deque<Function_CFunctionSpec> specs_;
  std::deque<std::vector<FUNCTION_ARG>> ranges_;
  TestContext context_;
  std::uint64_t slot_ = 0;
  bool use_slot_ = false;
};

FUNCTION_ARG num(double value) { return FUNCTION_ARG::Number(value); }
FUNCTION_ARG text(std::u16string_view value) { return FUNCTION_ARG::String(value.data(), value.size()); }
FUNCTION_ARG error(std::uint32_t code) { return FUNCTION_ARG::Error(code); }
const FUNCTION_ARG none = FUNCTION_ARG::Missing();
const FUNCTION_ARG blank = FUNCTION_ARG::Empty();

// Values as a test reads them: "5", "TRUE", "text", "#N/A", "[1, 2]", "" for an empty one.
std::string show(const FUNCTION_ARG& value) {
  switch (value.kind) {
    case ARG_NUMBER: return to_utf8(format_number(value.number));
    case ARG_INTEGER: return std::to_string(value.integer);
    case ARG_BOOLEAN: return value.boolean != 0 ? "TRUE" : "FALSE";
    case ARG_STRING: return to_utf8(value.text());
    case ARG_ERROR: return to_utf8(error_text(value.error));
    case ARG_EMPTY: return "";
    case ARG_ARRAY: {
      std::string all = "[";
      for (std::uint64_t i = 0; i < value.count(); ++i)
        all.append(i != 0 ? ", " : "").append(show(value.array.elements[i]));
      return all + "]";
    }
    default: return "?";
  }
}

TEST_F(General, BitTest) {
  EXPECT_EQ(show(run(u"BitTest", {num(5), num(0)})), "1");
  EXPECT_EQ(show(run(u"BitTest", {num(5), num(1)})), "0");
  EXPECT_EQ(show(run(u"BitTest", {num(-1), num(31)})), "1");
  EXPECT_EQ(show(run(u"BitTest", {num(-1e300), num(31)})), "1");           // saturates
  EXPECT_EQ(show(run(u"BitTest", {num(4294967297.9), num(0)})), "1");      // low 32 bits of 2^32 + 1
  EXPECT_EQ(show(run(u"BitTest", {num(0x1p70 + 0x1p20), num(20)})), "1");  // beyond 64 bits as well
  EXPECT_EQ(show(run(u"BitTest", {text(u"6"), text(u"1")})), "1");
  for (double bit : {32.0, -1.0, 1e10}) EXPECT_EQ(show(run(u"BitTest", {num(5), num(bit)})), "#VALUE!");
  EXPECT_EQ(show(run(u"BitTest", {num(INFINITY), num(1)})), "#VALUE!");
  EXPECT_EQ(show(run(u"BitTest", {error(ERROR_NA), num(1)})), "#VALUE!");
}

TEST_F(General, Bits2NumCountsPlacesOfTheFirstRow) {
  EXPECT_EQ(show(run(u"Bits2Num", {numbers(3, 1, {1, 0, 1}), none})), "7");
  EXPECT_EQ(show(run(u"Bits2Num", {numbers(1, 3, {1, 0, 1}), num(10)})), "1");
  EXPECT_EQ(show(run(u"Bits2Num", {num(0), blank})), "1");
  EXPECT_EQ(show(run(u"Bits2Num", {blank, none})), "0");  // no array at all
  EXPECT_EQ(show(run(u"Bits2Num", {numbers(64, 1, std::vector<double>(64)), none})), "1.844674407371e+19");
  EXPECT_EQ(show(run(u"Bits2Num", {numbers(65, 1, std::vector<double>(65)), none})), "#VALUE!");
  EXPECT_EQ(show(run(u"Bits2Num", {numbers(3, 1, {1, 0, 1}), num(16)})), "#VALUE!");
  EXPECT_EQ(show(run(u"Bits2Num", {range(2, 1, {num(1), text(u"x")}), none})), "#VALUE!");
}

TEST_F(General, Num2Num) {
  const auto convert = [this](std::u16string_view value, double from, double to, double length) {
    return show(run(u"Num2Num", {text(value), num(from), num(to), num(length)}));
  };
  EXPECT_EQ(convert(u"ff", 16, 2, 0), "11111111");
  EXPECT_EQ(convert(u"FF", 16, 10, 5), "00255");
  EXPECT_EQ(convert(u"0", 10, 2, 0), "0");
  EXPECT_EQ(convert(u"100000000000000000", 10, 16, 0), "16345785D8A0000");
  EXPECT_EQ(convert(u"1", 10, 2, 64), std::string(63, '0') + "1");
  EXPECT_EQ(convert(u"100000000000000001", 10, 16, 0), "#VALUE!");
  EXPECT_EQ(convert(std::u16string(4000, u'9'), 10, 2, 0), "#VALUE!");
  for (std::u16string_view bad : {u"12", u"", u" 1", u"-1", u"1\u0130"}) EXPECT_EQ(convert(bad, 2, 10, 0), "#VALUE!");
  EXPECT_EQ(convert(u"1", 1, 10, 0), "#VALUE!");
  EXPECT_EQ(convert(u"1", 10, 17, 0), "#VALUE!");
  EXPECT_EQ(convert(u"1", 10, 10, 65), "#VALUE!");
}

// The checksum of the bytes one by one, as the definition says.
double byte_crc(const std::vector<std::uint8_t>& bytes) { return crc32_update(0, bytes); }
void append(std::vector<std::uint8_t>& bytes, double value) {
  for (auto word = std::bit_cast<std::uint64_t>(value), n = std::uint64_t{8}; n != 0; --n, word >>= 8)
    bytes.push_back(static_cast<std::uint8_t>(word));
}

TEST_F(General, ChecksumsOfRanges) {
  const std::uint8_t digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(crc32_update(0xFFFFFFFFu, digits) ^ 0xFFFFFFFFu, 0xCBF43926u);  // the published check value
  std::vector<std::uint8_t> bytes;
  for (double value : {1.5, -7.25, 1e-300, 12.0, 1.0, 3.0, 0.0}) append(bytes, value);
  for (char c : {'A', '\0', '\x3B', '\x20'}) bytes.push_back(static_cast<std::uint8_t>(c));
  const FUNCTION_ARG cells = range(5, 2,
                                   {num(1.5), num(-7.25), num(1e-300), text(u" 12"), FUNCTION_ARG::Boolean(true),
                                    FUNCTION_ARG::Integer(3), blank, text(u"A\u203B"), none, text(u"")});
  EXPECT_EQ(run(u"CRC32", {cells}).number, byte_crc(bytes));
  EXPECT_EQ(run(u"CRC16", {cells}).number, byte_crc(bytes));

  EXPECT_EQ(show(run(u"CRC32", {text(u"12")})), show(run(u"CRC32", {num(12)})));
  EXPECT_EQ(show(run(u"CRC32", {range(2, 1, {num(1), error(ERROR_NA)})})), "#N/A");
  EXPECT_EQ(show(run(u"CRC32", {blank})), "#VALUE!");
}

TEST_F(General, FunctionList) {
  const std::string listed = show(run(u"FunctionList", {text(u"general")}));
  EXPECT_EQ(listed,
            "[nvBits2Num, nvBitTest, nvConvertUnit, nvCRC16, nvCRC32, nvFunctionInputProperty, nvFunctionList, "
            "nvFunctionOutputProperty, nvFunctionProperty, nvFunctionTest, nvNum2Num]");
  const std::string math = show(run(u"FunctionList", {text(u"math")}));
  EXPECT_NE(math.find("nvInterpolationCurve"), std::string::npos);
  EXPECT_EQ(math.find("nvCRC16"), std::string::npos);
  const FUNCTION_ARG all = run(u"FunctionList", {none});
  EXPECT_EQ(all.array.columns, 1u);
  EXPECT_EQ(all.array.rows, run(u"FunctionList", {text(u"")}).array.rows);
  EXPECT_EQ(show(run(u"FunctionList", {text(u"Flow")})), "<< no functions found with category 'Flow'>>");
  EXPECT_EQ(run(u"FunctionList", {text(std::u16string(1000, u'x'))}).string.length, 255u);

  for (Function_CFunctionSpec& spec : specs_) spec.flags |= FUNCTION_HIDDEN;
  EXPECT_EQ(show(run(u"FunctionList", {none})), "<< no functions found>>");
}

TEST_F(General, PropertiesOfFunctions) {
  const auto property = [this](std::u16string_view function, FUNCTION_ARG which) {
    return show(run(u"FunctionProperty", {text(function), which}));
  };
  EXPECT_EQ(property(u"nvInterpolationCurve", num(1)), "Math");
  EXPECT_EQ(property(u"NVBITTEST", num(2)), "Extended");
  EXPECT_EQ(property(u"nvBitTest", num(4)), "nv");
  EXPECT_EQ(property(u"nvBitTest", num(5)), "FALSE");
  EXPECT_EQ(property(u"nvConvertUnit", num(7)), "4");
  EXPECT_EQ(property(u"nvConvertUnit", num(8)), "2");
  EXPECT_EQ(property(u"nvBitTest", num(9)), "-1");
  EXPECT_EQ(property(u"nvConvertUnit", num(9)), "0");
  EXPECT_EQ(property(u"BitTest", num(1)), "#N/A");  // without the prefix
  EXPECT_EQ(context_.messages, std::vector<std::string>{"[1] function (BitTest) is not a function"});
  EXPECT_EQ(property(u"nvBitTest", num(10)), "#VALUE!");
  EXPECT_EQ(property(u"nvBitTest", text(u"x")), "#VALUE!");
  EXPECT_EQ(show(run(u"FunctionProperty", {error(ERROR_NA), num(1)})), "#VALUE!");

  for (Function_CFunctionSpec& spec : specs_)
    if (spec.id == u"CRC16") spec.flags |= FUNCTION_HIDDEN;
  EXPECT_EQ(property(u"nvCRC16", num(1)), "#N/A");
}

TEST_F(General, PropertiesOfInputsAndOutputs) {
  const auto input = [this](std::u16string_view function, FUNCTION_ARG index, double which) {
    return show(run(u"FunctionInputProperty", {text(function), index, num(which)}));
  };
  EXPECT_EQ(input(u"nvConvertUnit", num(0), 1), "Name");
  EXPECT_EQ(input(u"nvConvertUnit", num(0), 5), "TRUE");
  EXPECT_EQ(input(u"nvConvertUnit", num(2), 3), "unit");
  EXPECT_EQ(input(u"nvCRC32", num(0), 3), "");  // any type
  EXPECT_EQ(input(u"nvConvertUnit", num(2), 4), "0");
  EXPECT_EQ(input(u"nvInterpolationCurve", num(3), 6), "TRUE");
  EXPECT_EQ(run(u"FunctionInputProperty", {text(u"nvBitTest"), num(0), num(7)}).kind, ARG_EMPTY);
  EXPECT_EQ(input(u"nvBitTest", num(1), 7), "0");
  EXPECT_EQ(input(u"nvBitTest", num(1), 8), "31");
  EXPECT_EQ(input(u"nvCRC32", num(0), 9), "TRUE");
  EXPECT_EQ(input(u"nvBitTest", num(2), 1), "#N/A");
  EXPECT_EQ(input(u"nvBitTest", text(u"x"), 1), "#VALUE!");
  EXPECT_EQ(input(u"nvBitTest", num(0), 11), "#VALUE!");
  EXPECT_EQ(input(u"nvBitTest", num(4294967296.0), 1), "#NUM!");
  specs_[0].flags |= FUNCTION_VARIABLE_INPUTS;  // "Scalar" stays FALSE
  for (double index : {0.0, 1.0}) EXPECT_EQ(input(u"nvBits2Num", num(index), 10), "FALSE");

  const auto output = [this](std::u16string_view function, double index, double which) {
    return show(run(u"FunctionOutputProperty", {text(function), num(index), num(which)}));
  };
  EXPECT_EQ(output(u"nvConvertUnit", 1, 1), "conversion error");
  EXPECT_EQ(output(u"nvInterpolationCurve", 1, 3), "date");
  EXPECT_EQ(output(u"nvConvertUnit", 1, 5), "1");
  EXPECT_EQ(output(u"nvFunctionList", 0, 6), "FALSE");
  EXPECT_EQ(output(u"nvFunctionList", 1, 6), "#N/A");
}

TEST_F(General, FunctionTestWithoutPrecision) {
  const auto test = [this](std::vector<FUNCTION_ARG> values, std::vector<FUNCTION_ARG> references) {
    const auto n = static_cast<std::uint32_t>(values.size());
    return show(run(u"FunctionTest",
                    {text(u"T1"), range(1, n, std::move(values)), range(1, n, std::move(references)), none}));
  };
  EXPECT_EQ(test({num(1), text(u"a"), FUNCTION_ARG::Integer(2), blank}, {num(1), text(u"a"), num(2), blank}),
            "[TRUE, TRUE, TRUE, TRUE, TRUE]");
  EXPECT_TRUE(context_.messages.empty());
  EXPECT_EQ(test({num(1), num(1), text(u"a"), num(NAN)}, {text(u"1"), num(1 + 1e-15), text(u"A"), num(NAN)}),
            "[FALSE, FALSE, FALSE, FALSE, FALSE]");
  EXPECT_EQ(context_.messages, std::vector<std::string>{"T1 - Test Failed"});
  // A reference of #N/A is not compared; another error is compared by its number.
  EXPECT_EQ(test({num(1), error(ERROR_NUM), error(ERROR_NUM)}, {error(ERROR_NA), error(ERROR_NUM), error(ERROR_REF)}),
            "[FALSE, TRUE, TRUE, FALSE]");
}

TEST_F(General, FunctionTestWithPrecision) {
  const auto passes = [this](double value, double reference, double precision) {
    return show(run(u"FunctionTest", {none, num(value), num(reference), num(precision)})) == "[TRUE, TRUE]";
  };
  EXPECT_TRUE(passes(100.0, 100.9, 0.01));
  EXPECT_FALSE(passes(100.0, 101.0, 0.01));  // strictly below
  EXPECT_FALSE(passes(0.0, 1e-20, 0.5));
  EXPECT_TRUE(passes(0.0, 0.0, 0.5));
  EXPECT_FALSE(passes(1.0, 1.0 + 1e-12, 1.0));
  EXPECT_TRUE(passes(1.0, 1.5, 1.1));
  EXPECT_EQ(show(run(u"FunctionTest", {none, text(u"x"), text(u"x"), num(0.1)})), "[FALSE, FALSE]");
}

TEST_F(General, FunctionTestShapes) {
  const FUNCTION_ARG column = numbers(1, 2, {1, 2});
  const FUNCTION_ARG row = numbers(2, 1, {1, 2});
  const FUNCTION_ARG square = numbers(2, 2, {1, 2, 3, 4});
  EXPECT_EQ(show(run(u"FunctionTest", {none, row, row, none})), "[TRUE, TRUE, TRUE]");
  EXPECT_EQ(show(run(u"FunctionTest", {none, row, column, none})), "#VALUE!");
  EXPECT_EQ(show(run(u"FunctionTest", {none, row, row, num(1)})), "#VALUE!");
  EXPECT_EQ(context_.messages, std::vector<std::string>{"all ranges should have the same dimensions"});
  EXPECT_EQ(show(run(u"FunctionTest", {none, square, square, none})), "#VALUE!");
  EXPECT_EQ(context_.messages, std::vector<std::string>{"ranges should be 1-dimensional"});
}

TEST_F(General, InterpolationCurve) {
  // Value, change time (always the epoch), out of range.
  const auto curve = [this](double input, FUNCTION_ARG table, bool extrapolate = true) {
    return show(run(u"InterpolationCurve", {none, num(input), table, FUNCTION_ARG::Boolean(extrapolate)}));
  };
  const FUNCTION_ARG two = numbers(2, 2, {0, 0, 10, 100});
  EXPECT_EQ(curve(5, two), "[50, 0, 0]");
  EXPECT_EQ(curve(10, two), "[100, 0, 0]");
  EXPECT_EQ(curve(0, two), "[0, 0, 1]");  // the first input counts as out of range
  EXPECT_EQ(curve(20, two), "[200, 0, 1]");
  EXPECT_EQ(curve(20, two, false), "[100, 0, 1]");
  EXPECT_EQ(curve(-1, two), "[-10, 0, 1]");
  EXPECT_EQ(curve(-1, two, false), "[0, 0, 1]");
  // The first input that does not increase ends the table.
  const FUNCTION_ARG cut = numbers(2, 4, {0, 0, 10, 100, 5, 7, 30, 900});
  EXPECT_EQ(curve(20, cut), "[200, 0, 1]");
  EXPECT_EQ(curve(20, cut, false), "[100, 0, 1]");
  EXPECT_EQ(curve(7, cut), "[70, 0, 0]");
  EXPECT_EQ(curve(7, numbers(2, 2, {3, 33, 3, 44})), "[33, 0, 0]");
  EXPECT_EQ(curve(7, numbers(2, 1, {3, 33})), "[0, 0, 0]");
  // The four layouts, and cells that are no numbers.
  for (const FUNCTION_ARG& table : {numbers(1, 6, {0, 0, 10, 100, 20, 300}), numbers(6, 1, {0, 0, 10, 100, 20, 300}),
                                    numbers(3, 2, {0, 10, 20, 0, 100, 300}),
                                    range(2, 3, {text(u"x"), none, text(u"10"), num(100), num(20), num(300)})})
    EXPECT_EQ(curve(15, table), "[200, 0, 0]");
  EXPECT_EQ(curve(1e308, numbers(2, 2, {0, 0, 1, 100})), "#NUM!");
}

TEST_F(General, InterpolationCurveRefusesOtherShapes) {
  const auto complaint = [this](std::uint32_t columns, std::uint32_t rows) {
    const FUNCTION_ARG table = numbers(columns, rows, std::vector<double>(columns * rows));
    EXPECT_EQ(show(run(u"InterpolationCurve", {none, num(1), table, none})), "#VALUE!");
    return context_.messages.empty() ? "" : context_.messages.front();
  };
  EXPECT_EQ(complaint(1, 3), "[3] reference values (0) should be an array with an even row-count");
  EXPECT_EQ(complaint(5, 1), "[3] reference values (0) should be an array with an even column-count");
  EXPECT_EQ(complaint(3, 3), "[3] reference values (0) should be an array with 1 or 2 columns or 1 or 2 rows");
  EXPECT_EQ(complaint(2, 0), "[3] reference values should be an array of either 1 or 2 columns wide");
  EXPECT_EQ(show(run(u"InterpolationCurve", {none, num(1), error(ERROR_NA), none})), "#VALUE!");
}

// One calling place whose table grows, shrinks and grows: its buffer follows.
TEST_F(General, InterpolationCurveKeepsTablesOfAnySize) {
  use_slot_ = true;
  for (std::uint32_t points : {2u, 5000u, 3u, 7000u}) {
    std::vector<double> values;
    for (std::uint32_t i = 0; i < points; ++i) values.insert(values.end(), {double(i), 2.0 * i});
    const FUNCTION_ARG table = numbers(2, points, values);
    EXPECT_EQ(show(run(u"InterpolationCurve", {none, num(1.5), table, none})),
              points > 2 ? "[3, 0, 0]" : "[3, 0, 1]");
  }
  EXPECT_EQ(context_.data_manager().Count(), 1u);
}

TEST_F(General, ConvertUnitFindsUnits) {
  const auto convert = [this](FUNCTION_ARG value, FUNCTION_ARG from, FUNCTION_ARG to) {
    return show(run(u"ConvertUnit", {none, value, from, to}));
  };
  EXPECT_EQ(convert(num(1), text(u"bar"), text(u"PSI")), "[14.503768078947, 0]");
  EXPECT_EQ(convert(num(1), num(16784648), text(u"Pa")), "[100, 0]");
  EXPECT_EQ(convert(num(1), text(u"16784648"), text(u"Pa")), "[100, 0]");
  EXPECT_EQ(convert(num(100), text(u"\u00B0c"), text(u"K")), "[373.15, 0]");  // by symbol
  EXPECT_EQ(convert(text(u"2"), text(u"short ton"), text(u"kg")), "[1814.36948, 0]");
  use_slot_ = true;
  EXPECT_EQ(convert(num(1), text(u"m3/hr"), text(u"m3/d")), "[24, 0]");
  EXPECT_EQ(convert(num(1), text(u"m3/hr"), text(u"m3/d")), "[24, 0]");
}

TEST_F(General, ConvertUnitSaysWhatIsWrong) {
  const auto message = [this](FUNCTION_ARG from, FUNCTION_ARG to) {
    EXPECT_EQ(show(run(u"ConvertUnit", {none, num(1), from, to})), "#VALUE!");
    return context_.messages.empty() ? "" : context_.messages.back();
  };
  EXPECT_EQ(message(text(u"kg/Sm3"), text(u"kg_m3")), "[3] input unit (kg/Sm3) could mean multiple units");
  EXPECT_EQ(message(text(u"Pa"), text(u"inH2O @ 60\u00B0F")),
            "[4] output unit (inH2O @ 60\u00B0F) could mean multiple units");
  EXPECT_EQ(message(text(u"bbl/hr"), text(u"m3_s")), "[3] input unit (bbl/hr) could mean multiple units");
  EXPECT_EQ(message(text(u"xyz"), text(u"kg_m3")), "[3] input unit (xyz) is not a valid unit");
  EXPECT_EQ(message(text(u"Pa"), num(12345)), "[4] output unit (12345) is not a valid unit");
  EXPECT_EQ(message(text(u"pressure"), text(u"Pa")), "[3] input unit (pressure) is not a valid unit");
  EXPECT_EQ(message(text(u"psia"), text(u"bar_g")), "Input- and Output unit are not of the same type");
  EXPECT_EQ(show(run(u"ConvertUnit", {none, num(1), text(u""), text(u"Pa")})), "#VALUE!");
  EXPECT_EQ(show(run(u"ConvertUnit", {none, num(1), text(u"Pa"), blank})), "#VALUE!");
  EXPECT_EQ(show(run(u"ConvertUnit", {none, num(1e308), text(u"GJ"), text(u"J")})), "#NUM!");
}

// The symbols are built once for all threads.
TEST_F(General, ConvertUnitFromManyThreads) {
  std::vector<std::thread> threads;
  std::vector<double> results(8);
  const Function_CFunctionSpec* spec = library_.Find(u"nvConvertUnit");
  for (double& result : results) {
    threads.emplace_back([this, spec, &result] {
      TestContext own(library_, Unit_CTypeAndUnitContainer::Instance());
      for (int i = 0; i < 100; ++i) {
        own.Reset();
        FUNCTION_ARG args[] = {none, num(2), text(u"kg/hr"), text(u"kg/d")};
        FUNCTION_ARG output;
        std::uint32_t flags = 0;
        if (own.Execute(*spec, args, 4, output, flags) == ERROR_OK) result = output.array.elements[0].number;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (double result : results) EXPECT_NEAR(result, 48.0, 1e-9);
}

// As hosts see it: a failed call answers with the fallback outputs.
TEST_F(General, FallbackOutputs) {
  for (Function_CFunctionSpec& spec : specs_) spec.flags |= FUNCTION_FALLBACK;
  EXPECT_EQ(show(run(u"ConvertUnit", {none, num(1), text(u"xyz"), text(u"Pa")})), "[0, 1]");
  EXPECT_EQ(show(run(u"BitTest", {num(5), num(32)})), "0");
}

}  // namespace
}  // namespace norvane
