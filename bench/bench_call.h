// A call through the whole path, repeated with the arguments that a benchmark changes in between.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string_view>
#include <vector>

#include "catalogue/catalogue.h"
#include "hosts/module/module.h"

namespace norvane::bench {

// Heap allocations of the process so far.
std::uint64_t allocations() noexcept;

class BenchCall {
 public:
  explicit BenchCall(std::u16string_view id) : spec_(catalogue::find(id)) {
    if (spec_ != nullptr) given_.assign(spec_->input_count, FUNCTION_ARG::Missing());
  }
  // False, and the benchmark marked as skipped, when this build has no such function.
  bool ready(benchmark::State& state) const {
    if (spec_ == nullptr) state.SkipWithError("not part of this build");
    return spec_ != nullptr;
  }
  FUNCTION_ARG& operator[](std::size_t input) { return given_[input]; }
  // The context may replace arguments by defaults, so each call gets a copy, as from a host.
  std::uint32_t operator()() noexcept {
    host::ThreadState& thread = *host::thread_state();
    Function_CContext& context = thread.context();
    context.Reset();
    auto* args = context.arena().AllocateArray<FUNCTION_ARG>(given_.size());
    for (std::size_t i = 0; i < given_.size(); ++i) args[i] = given_[i];
    std::uint32_t flags = 0;
    const std::uint32_t status = context.Execute(*spec_, args, given_.size(), output, flags, thread.slot(*spec_));
    benchmark::DoNotOptimize(output);
    return status;
  }
  FUNCTION_ARG output{};

 private:
  const Function_CFunctionSpec* spec_;
  std::vector<FUNCTION_ARG> given_;
};

// Reports heap allocations a call beside the time.
class AllocationCounter {
 public:
  explicit AllocationCounter(benchmark::State& state) : state_(state), before_(allocations()) {}
  ~AllocationCounter() {
    state_.counters["allocs"] =
        static_cast<double>(allocations() - before_) / static_cast<double>(state_.iterations());
  }

 private:
  benchmark::State& state_;
  std::uint64_t before_;
};

}  // namespace norvane::bench
