#include "core/coefficients.h"

#include <cstring>

#include "core/crc32.h"
#include "core/seal.h"

namespace norvane {
namespace {

std::uint64_t word_at(const std::uint8_t* bytes) noexcept {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::uint32_t add(std::uint32_t state, const std::uint8_t* bytes, std::size_t count) noexcept {
  for (; count >= 16; bytes += 16, count -= 16) state = crc32_words(state, word_at(bytes), word_at(bytes + 8));
  return crc32_update(state, {bytes, count});
}

}  // namespace

std::uint32_t CoefficientSet::checksum() const noexcept {
  std::uint32_t state = ~std::uint32_t{0};
  for (const CoefficientTable& table : tables_) {
    const auto* bytes = static_cast<const std::uint8_t*>(table.data);
    if (table.skipped == 0) {
      state = add(state, bytes, table.count * table.row_size);
      continue;
    }
    for (std::size_t row = 0; row < table.count; ++row)
      state = add(state, bytes + row * table.row_size + table.skipped, table.row_size - table.skipped);
  }
  return ~state;
}

bool CoefficientSet::verify() const noexcept {
  bool same = seal().sets.empty();
  for (const Seal::Set& set : seal().sets)
    if (set.standard == standard_) same = set.checksum == checksum();
  state_.store(same ? State::intact : State::changed, std::memory_order_relaxed);
  return same;
}

}  // namespace norvane
