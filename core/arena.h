// Memory of one call: blocks that are rewound, not freed, between calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace norvane {

// Small requests are carved from a chain of 32 KiB blocks; larger ones are allocated on their own and freed
// at the next Reset. Nothing is freed one by one. A refused allocation is a null pointer, never an exception.
class Core_CArena {
 public:
  static constexpr std::size_t block_size = 32768;

  Core_CArena() noexcept;
  ~Core_CArena();
  Core_CArena(const Core_CArena&) = delete;
  Core_CArena& operator=(const Core_CArena&) = delete;

  // Size is padded up to a multiple of 4; the address is a multiple of the alignment (a power of two up to 16).
  void* Allocate(std::size_t size, std::size_t alignment = alignof(double)) noexcept {
    const std::size_t start = (used_ + alignment - 1) & ~(alignment - 1);
    const std::size_t padded = (size + 3) & ~std::size_t{3};
    if (current_ == nullptr || size > block_size || start + padded > block_size) return AllocateSlow(size);
    used_ = start + padded;
    return current_->bytes + start;
  }

  // Room for count objects of a trivial type, not initialised; null when the product does not fit or is refused.
  template <class T>
  T* AllocateArray(std::size_t count) noexcept {
    static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= 16);
    if (count > SIZE_MAX / 2 / sizeof(T)) return nullptr;
    return static_cast<T*>(Allocate(count * sizeof(T), alignof(T)));
  }

  // Keeps the first block, frees the rest and all large allocations.
  void Reset() noexcept {
    if (current_ != first_ || large_ != nullptr) ResetSlow();
    used_ = 0;
  }

  // At most this many blocks, and large allocations refused beyond as many blocks' worth of bytes; 0 for no limit.
  void SetBlockLimit(std::size_t blocks) noexcept { block_limit_ = blocks; }

 private:
  struct Block {
    alignas(16) unsigned char bytes[block_size];
    Block* next;
  };
  struct Chunk {  // of the stack of large allocations
    static constexpr std::size_t capacity = 16;
    void* pointers[capacity];
    std::size_t count;
    Chunk* below;
  };

  void* AllocateSlow(std::size_t size) noexcept;
  void* AllocateLarge(std::size_t size) noexcept;
  void ResetSlow() noexcept;
  static Block* NewBlock() noexcept;

  Block* first_;
  Block* current_;
  std::size_t used_ = 0;
  std::size_t block_count_;
  std::size_t block_limit_ = 0;
  std::size_t large_bytes_ = 0;
  Chunk* large_ = nullptr;
  Chunk* spare_ = nullptr;
};

}  // namespace norvane
