// AGA-10 by the vector instructions of the processor. For the files of the report.
#pragma once

#include <array>
#include <cstddef>

#include "core/kernel.h"
#include "math/gas/aga8_table.h"

namespace norvane::AGA10 {

// Vibrations of the gases of a mixture, one behind the other, and what each adds to a property of its gas.
struct Vibrations {
  static constexpr std::size_t group = 8;  // places are filled up to a multiple of this
  static constexpr std::size_t most = (4 * AGA8::component_count + group - 1) / group * group;
  using List = std::array<double, most>;

  std::size_t count = 0;
  alignas(64) List weight, theta, sign;  // sign: 1 for a term in sinh, -1 for one in cosh
};
struct VibrationParts {
  alignas(64) Vibrations::List cp, h, s;
};

// Every kernel gives the bits of every other.
struct Kernel {
  // At a temperature T [K]; with or without those of the entropy.
  void (*vibrate)(const Vibrations& vibrations, double T, bool with_entropy, VibrationParts& parts) noexcept;
  // sum x ln x of the components that are present.
  double (*mixing)(const std::array<double, AGA8::component_count>& x) noexcept;
};

// The one of an instruction set; null where the program has none for it. Runs on processors with these instructions only.
const Kernel* kernel(InstructionSet set) noexcept;
// The one in use.
const Kernel& kernel() noexcept;

}  // namespace norvane::AGA10
