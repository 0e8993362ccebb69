// GERG for several rows side by side: the kernels by instruction set.
#include "math/gas/gerg_lanes.h"

namespace norvane::GERG2008 {

// In files of their own, compiled for their instructions.
extern const Kernel avx2_kernel, avx512_kernel;

const Kernel* kernel(InstructionSet set) noexcept {
  switch (set) {
    case InstructionSet::baseline: return &Lanes<lanes::Vector<2>::Value, InstructionSet::baseline>::kernel;
#if NORVANE_X86_KERNELS
    case InstructionSet::avx2: return &avx2_kernel;
    case InstructionSet::avx512: return &avx512_kernel;
#endif
    default: return nullptr;
  }
}

const Kernel& kernel() noexcept {
  static const Kernel& chosen = kernel_in_use<Kernel>(&kernel);
  return chosen;
}

}  // namespace norvane::GERG2008
