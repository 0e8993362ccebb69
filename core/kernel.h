// Which vector instructions the calculations use: the widest that processor and program have, chosen once.
//
// NORVANE_KERNEL=x86-64, avx2 or avx512 in the environment of the process forces one, so that answers and speed can be
// compared. A name that is unknown, or that processor or program do not have, changes nothing. The answers are the same
// to the last bit with every one.
#pragma once

#include <array>
#include <cstddef>

// Files that are compiled for one instruction set are empty where the platform has none such.
#if defined(__x86_64__) && !defined(NORVANE_NO_KERNELS)
#define NORVANE_X86_KERNELS 1
#else
#define NORVANE_X86_KERNELS 0
#endif

namespace norvane {

enum class InstructionSet { baseline, avx2, avx512 };
inline constexpr std::array<InstructionSet, 3> instruction_sets = {InstructionSet::baseline, InstructionSet::avx2,
                                                                   InstructionSet::avx512};

// Whether this processor and operating system have it, and the program something that uses it.
bool has_instructions(InstructionSet set) noexcept;
// The one in use.
InstructionSet instructions_in_use() noexcept;
// "x86-64" ("arm64" on such a processor), "avx2", "avx512".
const char* name_of(InstructionSet set) noexcept;

// From what each instruction set has, null where it has nothing of its own, the one in use.
template <class Kernel>
const Kernel& kernel_in_use(const Kernel* (*of)(InstructionSet) noexcept) noexcept {
  const Kernel* chosen = of(instructions_in_use());
  return chosen != nullptr ? *chosen : *of(InstructionSet::baseline);
}

}  // namespace norvane
