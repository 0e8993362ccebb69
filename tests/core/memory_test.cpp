#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "core/arena.h"
#include "core/variant.h"

namespace norvane {
namespace {

TEST(Arena, CarvesPadsAndMovesOn) {
  Core_CArena arena;
  auto* first = static_cast<unsigned char*>(arena.Allocate(3, 4));
  auto* second = static_cast<unsigned char*>(arena.Allocate(1, 4));
  EXPECT_EQ(second - first, 4);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(arena.Allocate(8)) % 8, 0u);
  EXPECT_NE(arena.Allocate(Core_CArena::block_size), nullptr);      // fits a block, not this one
  EXPECT_NE(arena.Allocate(Core_CArena::block_size + 1), nullptr);  // large: no block
  arena.Reset();
  EXPECT_EQ(arena.Allocate(3, 4), first);
}

TEST(Arena, LargeAllocationsAreFreedAtResetAndAgain) {
  Core_CArena arena;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 50; ++i) {  // several chunks of the stack
      void* memory = arena.Allocate(100000);
      ASSERT_NE(memory, nullptr);
      std::memset(memory, 1, 100000);
    }
    arena.Reset();
  }
}

TEST(Arena, RefusesBeyondTheLimit) {
  Core_CArena arena;
  arena.SetBlockLimit(2);
  EXPECT_NE(arena.Allocate(30000), nullptr);
  EXPECT_NE(arena.Allocate(30000), nullptr);
  EXPECT_EQ(arena.Allocate(30000), nullptr);
  EXPECT_EQ(arena.Allocate(1u << 20), nullptr);
  EXPECT_NE(arena.Allocate(8), nullptr);  // what is left of the last block
  EXPECT_EQ(arena.AllocateArray<double>(SIZE_MAX / 4), nullptr);
  arena.Reset();
  EXPECT_NE(arena.Allocate(30000), nullptr);
}

TEST(Variant, OwnsCopiesAndBorrows) {
  std::u16string text(40000, u'a');
  Core_CVariant owned;
  ASSERT_EQ(owned.SetText(text, true), CORE_RESULT_OK);
  Core_CVariant borrowed;
  borrowed.SetText(text, false);
  EXPECT_EQ(borrowed.AsText().size(), 32767u);
  const Core_CVariant copy = owned;
  text.assign(text.size(), u'b');
  EXPECT_EQ(copy.AsText(), std::u16string(40000, u'a'));
  EXPECT_EQ(borrowed.AsText()[0], u'b');
  ASSERT_EQ(owned.SetText(owned.AsText().substr(1, 3), true), CORE_RESULT_OK);  // its own text
  EXPECT_EQ(owned.AsText(), u"aaa");
  owned = Core_CVariant(1.5);
  EXPECT_EQ(owned.tag(), Core_CVariant::DOUBLE);
}

TEST(Variant, SharesBuffersAndArraysByCount) {
  Core_CVariant array;
  ASSERT_EQ(array.SetArray(3), CORE_RESULT_OK);
  ASSERT_EQ(array.Elements()[0].SetBuffer("abc", 3), CORE_RESULT_OK);
  ASSERT_EQ(array.Elements()[1].SetText(u"text", true), CORE_RESULT_OK);
  array.Elements()[2] = array.Elements()[0];
  EXPECT_EQ(array.Elements()[2].ReferenceCount(), 2u);
  {
    const Core_CVariant second = array;
    EXPECT_EQ(array.ReferenceCount(), 2u);
  }
  EXPECT_EQ(array.ReferenceCount(), 1u);
  double number = 0.0;
  EXPECT_EQ(array.ToDouble(number), CORE_RESULT_CONVERSION_ERROR);
  EXPECT_EQ(array.SetBuffer(nullptr, 3), CORE_RESULT_INVALID_ARG);
  EXPECT_EQ(array.tag(), Core_CVariant::ARRAY);
}

TEST(Variant, ConversionsAtTheirLimits) {
  Core_CVariant v;
  double number = 0.0;
  std::int32_t integer = 0;
  bool truth = false;
  v.SetUInt64(0x8000000000000000u);
  EXPECT_EQ(v.ToDouble(number), CORE_RESULT_CONVERSION_ERROR);
  EXPECT_EQ(v.ToBool(truth), CORE_RESULT_OK);
  EXPECT_TRUE(truth);
  v.SetUInt32(0x80000000u);
  EXPECT_EQ(v.ToInt32(integer), CORE_RESULT_CONVERSION_ERROR);
  v.SetDouble(2.5);
  EXPECT_EQ(v.ToInt32(integer), CORE_RESULT_CONVERSION_ERROR);
  v.SetDouble(-2147483648.0);
  EXPECT_EQ(v.ToInt32(integer), CORE_RESULT_OK);
  v.SetDouble(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(v.ToInt32(integer), CORE_RESULT_CONVERSION_ERROR);
  EXPECT_EQ(v.ToBool(truth), CORE_RESULT_OK);
  EXPECT_TRUE(truth);
  v.SetText(u" 7 ", false);
  EXPECT_EQ(v.ToDouble(number), CORE_RESULT_OK);
  EXPECT_EQ(number, 7.0);
  v.SetText(u"0.5", false);
  EXPECT_EQ(v.ToBool(truth), CORE_RESULT_CONVERSION_ERROR);  // texts are read as integers here
  v.SetDateTime({36526.5});
  EXPECT_EQ(v.ToDouble(number), CORE_RESULT_OK);
  EXPECT_EQ(number, 36526.5);
  v.Clear();
  EXPECT_EQ(v.ToInt32(integer), CORE_RESULT_OK);
  EXPECT_EQ(integer, 0);
}

TEST(Variant, EqualByValueNeverAcrossTextAndNumber) {
  Core_CVariant five;
  five.SetInt8(5);
  EXPECT_TRUE(five == Core_CVariant(5.0));
  Core_CVariant text;
  text.SetText(u"5", false);
  EXPECT_FALSE(five == text);
  Core_CVariant copy;
  copy.SetText(u"5", true);
  EXPECT_TRUE(text == copy);
  Core_CVariant error;
  error.SetError(5);
  EXPECT_FALSE(error == five);
  EXPECT_TRUE(Core_CVariant() == Core_CVariant());
  const Core_CVariant nan(std::nan(""));
  EXPECT_FALSE(nan == nan);
}

}  // namespace
}  // namespace norvane
