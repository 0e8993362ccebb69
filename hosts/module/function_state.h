// What the typed calls of one thread keep of one function, and what its batches work in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "framework/retentive.h"
#include "hosts/module/signature.h"

namespace norvane::host {

struct FunctionState {
  // Throws std::bad_alloc.
  explicit FunctionState(const Signature& signature);

  const Signature* const signature;
  // What the calculation keeps from one call to the next; null for a calculation without memory.
  std::unique_ptr<Function_CData> data;
  void* memory = nullptr;

  // The last direct call: its inputs as 64-bit words, those of a list excepted; whether all of them fitted and stand in
  // the structure; whether there was an answer, and its outputs.
  bool taken = false;
  bool answered = false;
  std::uint64_t* words = nullptr;
  // The inputs that are lists, whose word is a pointer and says nothing, and those that are not.
  struct Place {
    std::uint16_t input = 0;
    std::uint16_t cells = 0;
    std::uint32_t offset = 0;
  };
  std::vector<Place> lists, numbers;
  // The outputs that leave as a float, and those that leave as a 32-bit number.
  std::vector<std::uint16_t> wide, narrow;
  std::uint64_t* outputs = nullptr;
  // The structures of a call; what no line fills has the prototype's values.
  std::byte* arguments = nullptr;
  std::byte* results = nullptr;

 private:
  std::unique_ptr<std::byte[]> block_;
};

// The rows that are calculated at once.
struct BatchMemory {
  static constexpr std::size_t most_rows = 256;

  const Signature* signature = nullptr;  // whose structures stand here
  std::size_t rows = 0;                  // as many rows of them
  std::size_t capacity = 0;              // bytes of each
  std::unique_ptr<std::byte[]> arguments;
  std::unique_ptr<std::byte[]> results;
  // Of each input: in how many of the rows stands the value that the first one has.
  std::vector<std::uint16_t> constant;
  Verdict verdicts[most_rows];
  bool done[most_rows];
  bool delivered[most_rows];
};

}  // namespace norvane::host
