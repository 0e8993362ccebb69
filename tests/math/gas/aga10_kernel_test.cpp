// The vibrations of the ideal gases by every instruction set that this machine has, and rows of a batch, bit for bit.
#include "math/gas/aga10_kernel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "math/common/helmholtz.h"
#include "math/gas/aga10.h"
#include "tests/support/kernel_rows.h"

namespace norvane::test {
namespace {

using namespace AGA10;

TEST(Kernels, AGA10Vibrations) {
  RandomRows random(10);
  const auto same = [](const Vibrations::List& a, const Vibrations::List& b, std::size_t count) {
    return std::memcmp(a.data(), b.data(), count * sizeof(double)) == 0;
  };
  for (int i = 0; i < 5000; ++i) {
    Vibrations vibrations;
    vibrations.count = random.once_in(3) ? 49 : 1 + static_cast<std::size_t>(i) % Vibrations::most;
    for (std::size_t k = 0; k < Vibrations::most; ++k) {
      vibrations.weight[k] = random.between(-20.0, 80.0);
      vibrations.theta[k] = random.between(100.0, 3700.0);
      vibrations.sign[k] = random.once_in(2) ? 1.0 : -1.0;
    }
    const double T = random.temperature();
    const auto x = random.composition();
    for (bool with_entropy : {false, true}) {
      VibrationParts wanted, got;
      kernel(InstructionSet::baseline)->vibrate(vibrations, T, with_entropy, wanted);
      for (InstructionSet set : instruction_sets) {
        if (kernel(set) == nullptr || !has_instructions(set)) continue;
        SCOPED_TRACE(name_of(set));
        kernel(set)->vibrate(vibrations, T, with_entropy, got);
        ASSERT_TRUE(same(wanted.cp, got.cp, vibrations.count) && same(wanted.h, got.h, vibrations.count)) << T;
        ASSERT_TRUE(!with_entropy || same(wanted.s, got.s, vibrations.count)) << T;
        ASSERT_EQ(kernel(set)->mixing(x), helmholtz::mixing(x));
      }
    }
  }
}

// Rows as they are given: runs of one composition and mode, single rows, and what a single call refuses.
TEST(Kernels, AGA10Rows) {
  RandomRows random(11);
  constexpr std::size_t rows = 2000;
  std::vector<Gas> in(rows);
  for (std::size_t i = 0; i < rows; ++i) {
    Gas& gas = in[i];
    if (i != 0) gas = in[i - 1];
    if (i == 0 || random.once_in(i / 200 * 4 + 1)) random.fill(gas.composition);
    gas.neo_pentane = i < rows / 2 ? composition::add_to_i_pentane : composition::neglect;
    if (i == 0 || random.once_in(50)) gas.critical_flow = random.once_in(4) ? 2 : 1;
    gas.temperature = random.temperature() - 273.15;
    gas.pressure = random.pressure();
  }
  const auto compare = [&in](auto single, auto many) {
    CDetail memory, memory_of_rows;
    std::vector<Answer> out(rows);
    const auto done = std::make_unique<bool[]>(rows);
    many(in.data(), out.data(), done.get(), rows, memory_of_rows);
    std::size_t answered = 0;
    for (std::size_t i = 0; i < rows; ++i) {
      if (!done[i]) continue;
      Answer wanted;
      ASSERT_TRUE(single(in[i], wanted, memory).good());
      ASSERT_EQ(std::memcmp(&out[i].values, &wanted.values, sizeof wanted.values), 0) << i;
      ASSERT_EQ(out[i].range, wanted.range) << i;
      // What follows a batch finds a memory that is true.
      if (++answered % 100 == 0) {
        Answer after;
        ASSERT_TRUE(single(in[i], after, memory_of_rows).good());
        ASSERT_EQ(std::memcmp(&after.values, &wanted.values, sizeof wanted.values), 0) << i;
      }
    }
    EXPECT_GT(answered, rows / 4);
  };
  compare(speed_of_sound, speed_of_sound_rows);
  compare(all_properties, all_properties_rows);
}

}  // namespace
}  // namespace norvane::test
