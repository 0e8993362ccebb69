// GERG for several rows side by side, by AVX2.
#include "core/kernel.h"

#if NORVANE_X86_KERNELS
#include "math/gas/gerg_lanes.h"

namespace norvane::GERG2008 {

extern const Kernel avx2_kernel;
const Kernel avx2_kernel = Lanes<lanes::Vector<4>::Value, InstructionSet::avx2>::kernel;

}  // namespace norvane::GERG2008
#endif
