// GERG by every instruction set that this machine has, and rows of a batch, against the lone calculation, bit for bit.
#include "math/gas/gerg_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "tests/support/kernel_rows.h"

namespace norvane::test {
namespace {

using namespace GERG2008;

TEST(Kernels, GERG) {
  RandomRows random(20);
  std::size_t answered = 0, left = 0;
  for (int block = 0; block < 12; ++block) {
    const std::size_t rows = 160 + static_cast<std::size_t>(block % 9);  // numbers of rows that leave lanes over
    Mixture mixture;
    mixture.set(block % 3 == 0 ? Edition::gerg_2004 : Edition::gerg_2008, random.composition());
    std::vector<double> T(rows), p(rows), wanted(rows), rho(rows);
    std::vector<helmholtz::State> wanted_states(rows), states(rows);
    for (std::size_t i = 0; i < rows; ++i) {
      T[i] = random.temperature();
      p[i] = random.pressure();
      Isotherm isotherm;
      isotherm.set(mixture, T[i]);
      if (!isotherm.vapour_density(p[i], wanted[i])) wanted[i] = std::nan("");
      wanted_states[i] = state(mixture, isotherm, wanted[i], Entropy::leave_out);
    }
    for (InstructionSet set : instruction_sets) {
      const Kernel* kernel = GERG2008::kernel(set);
      if (kernel == nullptr || !has_instructions(set)) continue;
      SCOPED_TRACE(name_of(set));
      kernel->densities(mixture, T.data(), p.data(), rho.data(), rows);
      kernel->states(mixture, T.data(), wanted.data(), states.data(), rows);
      for (std::size_t i = 0; i < rows; ++i) {
        if (std::isnan(rho[i])) {
          left += std::isnan(wanted[i]) ? 0 : 1;
          continue;
        }
        ++answered;
        ASSERT_EQ(rho[i], wanted[i]) << T[i] << " K, " << p[i] << " MPa";
        ASSERT_EQ(std::memcmp(&states[i], &wanted_states[i], sizeof states[i]), 0)
            << T[i] << " K, " << p[i] << " MPa";
      }
    }
  }
  // The vibrations of the ideal gases, hot, cold and where exponentials end.
  std::size_t all[component_count];
  for (std::size_t i = 0; i < component_count; ++i) all[i] = component_count - 1 - i;
  for (double T : {1e-3, 1.0, 2.6, 90.0, 298.15, 700.0, 1e6}) {
    VibrationParts wanted{}, got{};
    GERG2008::kernel(InstructionSet::baseline)->vibrate(all, component_count, T, true, wanted);
    for (InstructionSet set : instruction_sets) {
      if (GERG2008::kernel(set) == nullptr || !has_instructions(set)) continue;
      GERG2008::kernel(set)->vibrate(all, component_count, T, true, got);
      ASSERT_EQ(std::memcmp(&wanted, &got, sizeof got), 0) << name_of(set) << ' ' << T;
    }
  }
  // Heavy gases are left to the lone search, which looks for loops of their isotherms.
  EXPECT_GT(answered, left / 2);
}

// Runs of one composition, single rows, and what a single call refuses.
TEST(Kernels, GERGRows) {
  RandomRows random(21);
  constexpr std::size_t rows = 1500;
  std::vector<Gas> in(rows);
  for (std::size_t i = 0; i < rows; ++i) {
    Gas& gas = in[i];
    if (i != 0) gas = in[i - 1];
    if (i == 0 || random.once_in(i / 150 * 4 + 1)) random.fill(gas.composition);
    gas.temperature = random.temperature() - 273.15;
    gas.pressure = random.pressure();
  }
  const auto compare = [&in](auto single, auto many) {
    CEquation memory, memory_of_rows;
    std::vector<GasAnswer> out(rows);
    const auto done = std::make_unique<bool[]>(rows);
    many(in.data(), out.data(), done.get(), rows, memory_of_rows);
    std::size_t answered = 0;
    for (std::size_t i = 0; i < rows; ++i) {
      if (!done[i]) continue;
      GasAnswer wanted;
      const Outcome outcome = single(in[i], wanted, memory);
      ASSERT_TRUE(outcome.good() && outcome.text[0] == 0);
      const double a[] = {wanted.z,
                          wanted.mass_density,
                          wanted.molar_density,
                          wanted.molar_mass,
                          wanted.speed_of_sound,
                          wanted.kappa,
                          static_cast<double>(wanted.range)};
      const double b[] = {out[i].z,
                          out[i].mass_density,
                          out[i].molar_density,
                          out[i].molar_mass,
                          out[i].speed_of_sound,
                          out[i].kappa,
                          static_cast<double>(out[i].range)};
      ASSERT_EQ(std::memcmp(a, b, sizeof a), 0) << i;
      ++answered;
    }
    EXPECT_GT(answered, rows / 10);
  };
  compare(gas_2008, gas_2008_rows);
  compare(density_2004, density_2004_rows);
}

}  // namespace
}  // namespace norvane::test
