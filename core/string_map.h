// Core_CCIStringMap: chained hash map with case-insensitive UTF-16 keys and insertion order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/crc32.h"
#include "core/text.h"

namespace norvane {

// CRC-32 over the code units, 'a' to 'z' folded to upper case, start value all ones, no final inversion.
// A unit above 0xFF is reduced to its low byte by the table index.
constexpr std::uint32_t case_insensitive_hash(std::u16string_view text) {
  std::uint32_t state = 0xFFFFFFFFu;
  for (char16_t unit : text) state = crc32_step(state, fold_ascii_upper(unit));
  return state;
}

// A new entry goes to the front of its bucket's chain and to the end of the insertion-ordered list. The
// bucket count starts at 4 and doubles as soon as the entry count reaches it. Inserting an existing key
// replaces its value and keeps its place. Nodes of erased entries are kept and used again.
template <class Value>
class Core_CCIStringMap {
 public:
  struct Node {
    std::u16string key;
    std::uint32_t hash = 0;
    Value value{};
    Node* chain = nullptr;     // next in the bucket
    Node* next = nullptr;      // next in insertion order
    Node* previous = nullptr;  // previous in insertion order
  };

  class Iterator {
   public:
    explicit Iterator(Node* node) : node_(node) {}
    Node& operator*() const { return *node_; }
    Node* operator->() const { return node_; }
    Iterator& operator++() {
      node_ = node_->next;
      return *this;
    }
    bool operator!=(const Iterator& other) const { return node_ != other.node_; }

   private:
    Node* node_;
  };

  Core_CCIStringMap() : buckets_(initial_buckets, nullptr) {}
  Core_CCIStringMap(const Core_CCIStringMap&) = delete;
  Core_CCIStringMap& operator=(const Core_CCIStringMap&) = delete;
  ~Core_CCIStringMap() {
    Clear();
    while (free_ != nullptr) delete std::exchange(free_, free_->next);
  }

  Value* Find(std::u16string_view key) const noexcept { return Find(key, case_insensitive_hash(key)); }

  Value& Insert(std::u16string_view key, Value value) {
    const std::uint32_t hash = case_insensitive_hash(key);
    if (Value* existing = Find(key, hash)) {
      *existing = std::move(value);
      return *existing;
    }
    if (count_ + 1 >= buckets_.size()) Rehash(buckets_.size() * 2);
    Node* node = TakeNode();
    node->key.assign(key);
    node->hash = hash;
    node->value = std::move(value);
    Link(node);
    node->previous = last_;
    node->next = nullptr;
    (last_ != nullptr ? last_->next : first_) = node;
    last_ = node;
    ++count_;
    return node->value;
  }

  bool Erase(std::u16string_view key) noexcept {
    const std::uint32_t hash = case_insensitive_hash(key);
    for (Node** link = &buckets_[hash % buckets_.size()]; *link != nullptr; link = &(*link)->chain) {
      Node* node = *link;
      if (node->hash != hash || !equal_ignoring_case(node->key, key)) continue;
      *link = node->chain;
      (node->previous != nullptr ? node->previous->next : first_) = node->next;
      (node->next != nullptr ? node->next->previous : last_) = node->previous;
      Recycle(node);
      --count_;
      return true;
    }
    return false;
  }

  void Clear() noexcept {
    while (first_ != nullptr) Recycle(std::exchange(first_, first_->next));
    last_ = nullptr;
    count_ = 0;
    for (Node*& bucket : buckets_) bucket = nullptr;
  }

  std::size_t Count() const noexcept { return count_; }
  std::size_t BucketCount() const noexcept { return buckets_.size(); }
  Iterator begin() const noexcept { return Iterator(first_); }
  Iterator end() const noexcept { return Iterator(nullptr); }

 private:
  static constexpr std::size_t initial_buckets = 4;

  Value* Find(std::u16string_view key, std::uint32_t hash) const noexcept {
    for (Node* node = buckets_[hash % buckets_.size()]; node != nullptr; node = node->chain)
      if (node->hash == hash && equal_ignoring_case(node->key, key)) return &node->value;
    return nullptr;
  }
  Node* TakeNode() {
    if (free_ == nullptr) return new Node;
    return std::exchange(free_, free_->next);
  }
  void Recycle(Node* node) noexcept {
    node->value = Value{};
    node->next = free_;
    free_ = node;
  }
  void Link(Node* node) noexcept {
    Node*& bucket = buckets_[node->hash % buckets_.size()];
    node->chain = bucket;
    bucket = node;
  }
  void Rehash(std::size_t count) {
    buckets_.assign(count, nullptr);
    for (Node* node = first_; node != nullptr; node = node->next) Link(node);
  }

  std::vector<Node*> buckets_;
  Node* first_ = nullptr;
  Node* last_ = nullptr;
  Node* free_ = nullptr;
  std::size_t count_ = 0;
};

}  // namespace norvane
