// The coefficient tables of a standard as the identity of the library sees them: bytes with a checksum.
//
//   inline constexpr CoefficientTable tables[] = {rows_behind("components", components, &Component::name),
//                                              rows("pairs", pairs)};
//   inline constinit const CoefficientSet coefficient_set{"AGA-8", "AGA Report No. 8 (1994), tables ...", tables};
//
// The record of a function names the sets that its numbers come from. Before the first calculation with a set, and
// whenever the identity is asked for, the checksum of the bytes in memory is held against the one that the generator
// found when the library was built (core/seal.h); while they differ the functions refuse.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace norvane {

// Rows of numbers one behind the other. The first `skipped` bytes of a row are a pointer to its name, which
// differs from one load of the library to the next.
struct CoefficientTable {
  std::string_view name;
  const void* data = nullptr;
  std::size_t count = 0;
  std::size_t row_size = 0;
  std::size_t skipped = 0;
};

template <class Row, std::size_t n>
constexpr CoefficientTable rows(std::string_view name, const Row (&table)[n]) noexcept {
  return {name, table, n, sizeof(Row), 0};
}
template <class Row, std::size_t n>
constexpr CoefficientTable rows(std::string_view name, const std::array<Row, n>& table) noexcept {
  return {name, &table, n, sizeof(Row), 0};
}
// A table that is one structure.
template <class Structure>
constexpr CoefficientTable whole(std::string_view name, const Structure& table) noexcept {
  return {name, &table, 1, sizeof(Structure), 0};
}
// Rows that begin with the name of what they are about, a pointer or a view.
template <class Row, std::size_t n, class Name>
constexpr CoefficientTable rows_behind(std::string_view name, const Row (&table)[n], Name Row::*) noexcept {
  return {name, table, n, sizeof(Row), sizeof(Name)};
}

class CoefficientSet {
 public:
  constexpr CoefficientSet(std::string_view standard, std::string_view source,
                           std::span<const CoefficientTable> tables) noexcept
      : standard_(standard), source_(source), tables_(tables) {}

  std::string_view standard() const noexcept { return standard_; }
  // Where the figures are printed.
  std::string_view source() const noexcept { return source_; }
  std::span<const CoefficientTable> tables() const noexcept { return tables_; }
  // CRC-32 of the bytes as they are now.
  std::uint32_t checksum() const noexcept;
  // What verify() found last; verifies when nobody has yet.
  bool intact() const noexcept {
    const State known = state_.load(std::memory_order_relaxed);
    return known == State::intact || (known == State::unknown && verify());
  }
  // Whether the bytes are those that the library was built with.
  bool verify() const noexcept;

 private:
  enum class State : std::uint8_t { unknown, intact, changed };

  std::string_view standard_, source_;
  std::span<const CoefficientTable> tables_;
  mutable std::atomic<State> state_{State::unknown};
};

}  // namespace norvane
