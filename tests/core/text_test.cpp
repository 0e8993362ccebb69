#include "core/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "core/crc32.h"
#include "core/result.h"
#include "core/string_map.h"
#include "core/text_buffer.h"

namespace norvane {
namespace {

double parsed(std::u16string_view text) {
  double value = -12345.0;
  return parse_number(text, value) ? value : std::numeric_limits<double>::quiet_NaN();
}

TEST(ParseNumber, ReadsWhatTheCLibraryReads) {
  EXPECT_EQ(parsed(u" 12.5\t"), 12.5);
  EXPECT_EQ(parsed(u"+.5e1"), 5.0);
  EXPECT_EQ(parsed(u"-0x1.8p1"), -3.0);
  EXPECT_EQ(parsed(u"0x10"), 16.0);
  EXPECT_EQ(parsed(u"1e400"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parsed(u"-123456e400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(parsed(u"1e-400"), 0.0);
  EXPECT_EQ(parsed(u"0." + std::u16string(400, u'0') + u"1"), 0.0);
  EXPECT_EQ(parsed(std::u16string(400, u'9')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parsed(u"Infinity"), std::numeric_limits<double>::infinity());
  double value = 0.0;
  EXPECT_TRUE(parse_number(u"nan", value));
  EXPECT_TRUE(std::isnan(value));
}

TEST(ParseNumber, RefusesWhatIsNoNumber) {
  for (std::u16string_view text :
       {u"", u"  \t", u"12.5x", u"1,5", u"--1", u"+-1", u"-", u"0x", u"0xinf", u"0x-1", u"1 2", u"\u0661", u"e5"}) {
    double value = 7.0;
    EXPECT_FALSE(parse_number(text, value)) << to_utf8(text);
    EXPECT_EQ(value, 7.0);
  }
  EXPECT_TRUE(std::isnan(parsed(std::u16string(100000, u'1'))));
}

TEST(ParseInteger, SaturatesAndRefusesFractions) {
  std::int32_t value = 0;
  EXPECT_TRUE(parse_integer(u"\t-42 ", value));
  EXPECT_EQ(value, -42);
  EXPECT_TRUE(parse_integer(u"99999999999", value));
  EXPECT_EQ(value, 2147483647);
  EXPECT_TRUE(parse_integer(u"-99999999999", value));
  EXPECT_EQ(value, -2147483647 - 1);
  for (std::u16string_view text : {u"1.5", u"", u"0x10", u"+-3", u"3 3"}) EXPECT_FALSE(parse_integer(text, value));
}

TEST(Order, UnderlineComesBeforeLetters) {
  EXPECT_LT(compare_ignoring_case(u"AGA10_M", u"AGA10ex_M"), 0);
  EXPECT_LT(compare_ignoring_case(u"GPA_TP15", u"gpaA"), 0);
  EXPECT_LT(compare_ignoring_case(u"Sarasota", u"SGERG"), 0);
  EXPECT_EQ(compare_ignoring_case(u"crc16", u"CRC16"), 0);
}

TEST(FormatNumber, FourteenDigitsInTheGeneralForm) {
  EXPECT_EQ(format_number(0.1), u"0.1");
  EXPECT_EQ(format_number(100.0), u"100");
  EXPECT_EQ(format_number(1e20), u"1e+20");
  EXPECT_EQ(format_number(1.0 / 3.0), u"0.33333333333333");
  EXPECT_EQ(format_number(-1.23456789012345678e-300), u"-1.2345678901235e-300");
  EXPECT_EQ(format_number(0.0001), u"0.0001");
  EXPECT_EQ(format_number(99999999999999.5), u"1e+14");
}

TEST(Unicode, BrokenTextBecomesReplacementCharacters) {
  EXPECT_EQ(to_utf8(u"\u00B0C \U0001F600"),
            "\xC2\xB0"
            "C \xF0\x9F\x98\x80");
  const char16_t unpaired[] = {0xD83D, u'x', 0xDE00, 0};
  EXPECT_EQ(to_utf8(unpaired), "\xEF\xBF\xBDx\xEF\xBF\xBD");
  EXPECT_EQ(to_utf16("a\xC3(\xE2\x82"), u"a\uFFFD(\uFFFD\uFFFD");
  EXPECT_EQ(to_utf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");  // a surrogate in disguise
  EXPECT_EQ(to_utf16("\xC0\xAF"), u"\uFFFD\uFFFD");            // overlong
  EXPECT_EQ(to_utf16(to_utf8(u"\u0424\U0010FFFF")), u"\u0424\U0010FFFF");
}

TEST(Crc32, CheckValue) {
  const std::uint8_t digits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
  EXPECT_EQ(~crc32_update(0xFFFFFFFFu, digits), 0xCBF43926u);
  EXPECT_EQ(case_insensitive_hash(u"123456789"), 0x340BC6D9u);
  EXPECT_EQ(case_insensitive_hash(u"nvaga8_m"), case_insensitive_hash(u"NVAGA8_M"));
}

TEST(StringMap, KeepsOrderReplacesInPlaceAndReusesNodes) {
  Core_CCIStringMap<int> map;
  EXPECT_EQ(map.BucketCount(), 4u);
  for (int i = 0; i < 100; ++i) map.Insert(u"Key" + format_number(i), i);
  EXPECT_EQ(map.BucketCount(), 128u);
  map.Insert(u"KEY7", 700);
  EXPECT_EQ(map.Count(), 100u);
  int expected = 0;
  for (const auto& node : map) {
    EXPECT_EQ(node.value, expected == 7 ? 700 : expected);
    ++expected;
  }
  EXPECT_EQ(expected, 100);
  for (int i = 0; i < 100; i += 2) EXPECT_TRUE(map.Erase(u"key" + format_number(i)));
  EXPECT_FALSE(map.Erase(u"key0"));
  EXPECT_EQ(map.Find(u"key50"), nullptr);
  ASSERT_NE(map.Find(u"kEy51"), nullptr);
  EXPECT_EQ(map.begin()->value, 1);
  map.Insert(u"", 5);
  EXPECT_EQ(*map.Find(u""), 5);
  map.Clear();
  EXPECT_EQ(map.Count(), 0u);
  EXPECT_EQ(map.Find(u"key51"), nullptr);
}

TEST(StringMap, GrowsAsSoonAsTheCountReachesTheBuckets) {
  Core_CCIStringMap<int> map;
  for (int i = 0; i < 3; ++i) map.Insert(format_number(i), i);
  EXPECT_EQ(map.BucketCount(), 4u);
  map.Insert(u"3", 3);
  EXPECT_EQ(map.BucketCount(), 8u);
}

TEST(Result, NamesAndMisuse) {
  EXPECT_EQ(core_result_name(15), u"CORE_RESULT_OUF_OF_BOUNDS");
  EXPECT_EQ(core_result_name(26), u"CORE_RESULT_ALREADY_RUNNING");
  EXPECT_EQ(core_result_name(27), u"???");
  const Core_CExpected<int> failure(CORE_RESULT_TIMEOUT);
  EXPECT_FALSE(failure);
  EXPECT_EQ(failure.result(), CORE_RESULT_TIMEOUT);
  try {
    (void)failure.value();
    FAIL();
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "attempt to access value() while the expected is invalid");
  }
  EXPECT_EQ(Core_CExpected<int>(3).value(), 3);
}

TEST(TextBuffer, CutsWhatDoesNotFitAndSaysSo) {
  TextBuffer<12> text;
  text << u"[" << std::size_t{3} << u"] " << -7 << u' ' << 0.5;
  EXPECT_EQ(text.view(), u"[3] -7 0.5");
  EXPECT_FALSE(text.cut());
  text << std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(text.view(), u"[3] -7 0.5-9");
  EXPECT_TRUE(text.cut());
  EXPECT_EQ(text.c_str()[12], u'\0');
  TextBuffer<16> address;
  address << static_cast<const void*>(nullptr);
  EXPECT_EQ(address.view(), std::u16string(16, u'0'));
}

}  // namespace
}  // namespace norvane
