// GERG for several rows side by side, by AVX-512.
#include "core/kernel.h"

#if NORVANE_X86_KERNELS
#include "math/gas/gerg_lanes.h"

namespace norvane::GERG2008 {

extern const Kernel avx512_kernel;
const Kernel avx512_kernel = Lanes<lanes::Vector<8>::Value, InstructionSet::avx512>::kernel;

}  // namespace norvane::GERG2008
#endif
