// The kernels of every instruction set that this machine has against the lone calculation, bit for bit.
#include "math/gas/aga8_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>
#include <vector>

#include "tests/math/gas/gases.h"
#include "tests/support/kernel_rows.h"

namespace norvane::test {
namespace {

using namespace AGA8;

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

bool same(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

TEST(Kernels, TheOneAskedForIsInUse) {
  const char* wanted = std::getenv("NORVANE_KERNEL");
  const InstructionSet in_use = instructions_in_use();
  EXPECT_TRUE(has_instructions(in_use));
  for (InstructionSet set : instruction_sets)
    if (wanted != nullptr && std::string_view(wanted) == name_of(set) && has_instructions(set)) {
      EXPECT_EQ(in_use, set);
    }
}

// Densities of one gas and of a gas a row.
TEST(Kernels, AGA8) {
  RandomRows random(8);
  for (int block = 0; block < 40; ++block) {
    // Numbers of rows that leave lanes over.
    const std::size_t rows = 500 + static_cast<std::size_t>(block % 9);
    const Composition one = block == 0 ? gas_of_21 : random.composition();
    std::vector<Composition> x(rows);
    std::vector<const Composition*> places(rows);
    std::vector<double> T(rows), p(rows);
    for (std::size_t i = 0; i < rows; ++i) {
      x[i] = random.composition();
      places[i] = &x[i];
      T[i] = random.temperature();
      p[i] = random.pressure();
    }
    Mixture mixture, alone;
    mixture.set(one);
    std::vector<double> of_one(rows), of_each(rows), molar_mass(rows);
    const auto density = [&](const Mixture& of, std::size_t i) {
      Isotherm isotherm;
      isotherm.set(of, T[i]);
      double rho = not_a_number;
      return isotherm.density(p[i], rho) ? rho : not_a_number;
    };
    for (std::size_t i = 0; i < rows; ++i) {
      of_one[i] = density(mixture, i);
      alone.set(x[i]);
      molar_mass[i] = alone.molar_mass;
      of_each[i] = density(alone, i);
    }
    for (InstructionSet set : instruction_sets) {
      const Kernel* kernel = AGA8::kernel(set);
      if (kernel == nullptr || !has_instructions(set)) continue;
      SCOPED_TRACE(name_of(set));
      std::size_t answered = 0, left = 0;
      std::vector<double> rho(rows, -1.0), mass(rows, -1.0);
      const auto compare = [&](const std::vector<double>& wanted) {
        for (std::size_t i = 0; i < rows; ++i) {
          if (std::isnan(rho[i])) {
            left += std::isnan(wanted[i]) ? 0 : 1;
          } else {
            ++answered;
            ASSERT_TRUE(same(rho[i], wanted[i])) << T[i] << " K, " << p[i] << " MPa: " << rho[i];
          }
        }
      };
      kernel->densities(mixture, T.data(), p.data(), rho.data(), rows);
      compare(of_one);
      kernel->gases(places.data(), T.data(), p.data(), rho.data(), mass.data(), rows);
      compare(of_each);
      EXPECT_TRUE(mass == molar_mass);
      // What a kernel leaves to the lone calculation is rare.
      EXPECT_GT(answered, rows / 2);
      EXPECT_LE(left, rows / 20);
      PairSums of_baseline, of_kernel;
      for (std::size_t i = 0; i < rows; ++i) {
        AGA8::kernel(InstructionSet::baseline)->sum_pairs(x[i], of_baseline);
        kernel->sum_pairs(x[i], of_kernel);
        ASSERT_TRUE(of_baseline == of_kernel) << i;
      }
      // The parts of one state.
      const Kernel& baseline = *AGA8::kernel(InstructionSet::baseline);
      for (std::size_t i = 0; i < rows; i += 5) {
        Isotherm isotherm;
        ResidualIsotherm one_way, other_way;
        kernel->set(isotherm, mixture, T[i]);
        baseline.set_residual(one_way, mixture, T[i]);
        kernel->set_residual(other_way, mixture, T[i]);
        double found = not_a_number;
        ASSERT_EQ(kernel->density(isotherm, p[i], found), !std::isnan(of_one[i]));
        if (std::isnan(of_one[i])) continue;
        ASSERT_TRUE(isotherm.C == one_way.C && isotherm.B == one_way.B && isotherm.linear == one_way.linear);
        ASSERT_TRUE(other_way.C == one_way.C && other_way.rest == one_way.rest);
        ASSERT_TRUE(same(found, of_one[i]));
        ASSERT_TRUE(same(kernel->pressure(other_way, found), baseline.pressure(one_way, found)));
        const helmholtz::Residual wanted = baseline.residual(one_way, found),
                                  got = kernel->residual(other_way, found);
        ASSERT_EQ(std::memcmp(&wanted, &got, sizeof got), 0);
      }
    }
  }
}

// Rows as they are given: runs of one composition, single rows, and what a single call refuses.
template <class Single, class Rows>
void compare_rows(Single single, Rows many, unsigned seed) {
  RandomRows random(seed);
  constexpr std::size_t rows = 4000;
  std::vector<Gas> in(rows);
  for (std::size_t i = 0; i < rows; ++i) {
    Gas& gas = in[i];
    if (i != 0) gas = in[i - 1];
    if (i == 0 || random.once_in(i / 1000 * 4 + 1)) {
      random.fill(gas.composition);
      gas.neo_pentane = random.once_in(2) ? composition::add_to_i_pentane : composition::neglect;
    }
    gas.edition = random.once_in(5) ? 2 : 1;
    gas.temperature = random.temperature() - 273.15;
    gas.pressure = random.pressure();
  }
  CDetail memory, memory_of_rows;
  std::vector<Answer> out(rows);
  const auto done = std::make_unique<bool[]>(rows);
  many(in.data(), out.data(), done.get(), rows, memory_of_rows);
  std::size_t answered = 0, left = 0;
  for (std::size_t i = 0; i < rows; ++i) {
    Answer wanted;
    const Outcome outcome = single(in[i], wanted, memory);
    if (!done[i]) {
      left += outcome.good() ? 1 : 0;
      continue;
    }
    ++answered;
    ASSERT_TRUE(outcome.good());
    ASSERT_EQ(std::memcmp(&out[i].state, &wanted.state, sizeof wanted.state), 0) << i;
    ASSERT_EQ(out[i].range, wanted.range) << i;
  }
  EXPECT_GT(answered, rows / 3);
  EXPECT_LE(left, rows / 20);
}

TEST(Kernels, AGA8Rows) {
  compare_rows(state_of, state_of_rows, 1);
  compare_rows(state_of_unlimited, state_of_unlimited_rows, 2);
}

}  // namespace
}  // namespace norvane::test
