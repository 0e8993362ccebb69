// AGA-10 by AVX-512.
#include "core/kernel.h"

#if NORVANE_X86_KERNELS
#include "math/gas/aga10_lanes.h"

namespace norvane::AGA10 {

extern const Kernel avx512_kernel;
const Kernel avx512_kernel = Lanes<lanes::Vector<8>::Value, InstructionSet::avx512>::kernel;

}  // namespace norvane::AGA10
#endif
