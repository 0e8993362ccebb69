// Counts heap allocations: operator new replaced for the whole program.
#include <atomic>
#include <cstdlib>
#include <new>

#include "bench/bench_call.h"

namespace {
std::atomic<std::uint64_t> count{0};
}

void* operator new(std::size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  void* memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

std::uint64_t norvane::bench::allocations() noexcept { return count.load(std::memory_order_relaxed); }
