// AGA-10 by AVX2.
#include "core/kernel.h"

#if NORVANE_X86_KERNELS
#include "math/gas/aga10_lanes.h"

namespace norvane::AGA10 {

extern const Kernel avx2_kernel;
const Kernel avx2_kernel = Lanes<lanes::Vector<4>::Value, InstructionSet::avx2>::kernel;

}  // namespace norvane::AGA10
#endif
