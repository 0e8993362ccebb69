// What the typed calls of one thread keep of one function, and what its batches work in.
#pragma once

#include <cstddef>
#include <memory>

#include "framework/retentive.h"
#include "hosts/module/call_plan.h"

namespace norvane::host {

struct Signature;

struct FunctionState {
  // What the calculation keeps from one call to the next; null for a calculation without memory.
  std::unique_ptr<Function_CData> data;
  void* memory = nullptr;
};

// The rows that are calculated at once.
struct BatchMemory {
  static constexpr std::size_t most_rows = 256;

  const Signature* signature = nullptr;  // whose structures stand here
  std::size_t rows = 0;                  // as many rows of them
  std::size_t capacity = 0;              // bytes of each
  std::unique_ptr<std::byte[]> arguments;
  std::unique_ptr<std::byte[]> results;
  Verdict verdicts[most_rows];
  bool done[most_rows];
  bool delivered[most_rows];
};

}  // namespace norvane::host
