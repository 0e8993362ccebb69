#include "core/kernel.h"

#include <cstdlib>
#include <cstring>

namespace norvane {

bool has_instructions(InstructionSet set) noexcept {
  switch (set) {
    case InstructionSet::baseline: return true;
#if NORVANE_X86_KERNELS
    case InstructionSet::avx2: return __builtin_cpu_supports("avx2") != 0;
    case InstructionSet::avx512:
      return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512dq") != 0;
#endif
    default: return false;
  }
}

const char* name_of(InstructionSet set) noexcept {
  switch (set) {
    case InstructionSet::avx2: return "avx2";
    case InstructionSet::avx512: return "avx512";
    default: break;
  }
#if defined(__aarch64__)
  return "arm64";
#else
  return "x86-64";
#endif
}

namespace {

InstructionSet choose() noexcept {
#if NORVANE_X86_KERNELS
  __builtin_cpu_init();
#endif
  if (const char* wanted = std::getenv("NORVANE_KERNEL"); wanted != nullptr)
    for (InstructionSet set : instruction_sets)
      if (std::strcmp(wanted, name_of(set)) == 0 && has_instructions(set)) return set;
  // The widest registers gain little over AVX2 and cost clock on some processors: only when they are asked for.
  return has_instructions(InstructionSet::avx2) ? InstructionSet::avx2 : InstructionSet::baseline;
}

}  // namespace

InstructionSet instructions_in_use() noexcept {
  static const InstructionSet chosen = choose();
  return chosen;
}

}  // namespace norvane
