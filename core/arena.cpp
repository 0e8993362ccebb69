#include "core/arena.h"

#include <cstdlib>
#include <new>

namespace norvane {

Core_CArena::Block* Core_CArena::NewBlock() noexcept {
  Block* block = new (std::nothrow) Block;
  if (block != nullptr) block->next = nullptr;
  return block;
}

Core_CArena::Core_CArena() noexcept : first_(NewBlock()), current_(first_), block_count_(first_ != nullptr ? 1 : 0) {}

Core_CArena::~Core_CArena() {
  ResetSlow();
  delete first_;
  delete spare_;
}

void* Core_CArena::AllocateSlow(std::size_t size) noexcept {
  if (size > block_size) return AllocateLarge(size);
  if (block_limit_ != 0 && block_count_ >= block_limit_) return nullptr;
  Block* block = NewBlock();
  if (block == nullptr) return nullptr;
  (current_ != nullptr ? current_->next : first_) = block;
  current_ = block;
  ++block_count_;
  used_ = (size + 3) & ~std::size_t{3};
  return block->bytes;
}

void* Core_CArena::AllocateLarge(std::size_t size) noexcept {
  if (block_limit_ != 0 && size > block_limit_ * block_size - large_bytes_) return nullptr;
  if (large_ == nullptr || large_->count == Chunk::capacity) {
    Chunk* chunk = spare_ != nullptr ? spare_ : new (std::nothrow) Chunk;
    if (chunk == nullptr) return nullptr;
    spare_ = nullptr;
    chunk->count = 0;
    chunk->below = large_;
    large_ = chunk;
  }
  void* memory = std::malloc(size);
  if (memory == nullptr) return nullptr;
  large_->pointers[large_->count++] = memory;
  if (block_limit_ != 0) large_bytes_ += size;
  return memory;
}

void Core_CArena::ResetSlow() noexcept {
  while (large_ != nullptr) {
    while (large_->count > 0) std::free(large_->pointers[--large_->count]);
    Chunk* below = large_->below;
    if (spare_ == nullptr)
      spare_ = large_;
    else
      delete large_;
    large_ = below;
  }
  large_bytes_ = 0;
  if (first_ != nullptr) {
    for (Block* block = first_->next; block != nullptr;) {
      Block* next = block->next;
      delete block;
      block = next;
    }
    first_->next = nullptr;
    block_count_ = 1;
  }
  current_ = first_;
  used_ = 0;
}

}  // namespace norvane
