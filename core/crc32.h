// CRC-32 of IEEE 802.3: polynomial 0xEDB88320 (reflected), by table: one byte a step, or one or two 64-bit words.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace norvane {

// Table n advances a byte over n further bytes of zero; table 0 alone is the classical one.
using Crc32Tables = std::array<std::array<std::uint32_t, 256>, 16>;
consteval Crc32Tables make_crc32_tables() {
  Crc32Tables tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? 0xEDB88320u ^ (value >> 1) : value >> 1;
    tables[0][i] = value;
  }
  for (std::size_t n = 1; n < tables.size(); ++n)
    for (std::size_t i = 0; i < 256; ++i) tables[n][i] = tables[0][tables[n - 1][i] & 0xFF] ^ (tables[n - 1][i] >> 8);
  return tables;
}
inline constexpr Crc32Tables crc32_tables = make_crc32_tables();
inline constexpr const std::array<std::uint32_t, 256>& crc32_table = crc32_tables[0];

constexpr std::uint32_t crc32_step(std::uint32_t state, std::uint32_t byte) {
  return crc32_table[(state ^ byte) & 0xFF] ^ (state >> 8);
}

// What the eight bytes of a word, lowest first, add to the state when `after` bytes follow them.
constexpr std::uint32_t crc32_share(std::uint64_t word, std::size_t after) {
  const auto* t = &crc32_tables[after];
  return t[7][word & 0xFF] ^ t[6][word >> 8 & 0xFF] ^ t[5][word >> 16 & 0xFF] ^ t[4][word >> 24 & 0xFF] ^
         t[3][word >> 32 & 0xFF] ^ t[2][word >> 40 & 0xFF] ^ t[1][word >> 48 & 0xFF] ^ t[0][word >> 56];
}

// One word, two words: independent look-ups instead of a chain of eight or sixteen.
constexpr std::uint32_t crc32_word(std::uint32_t state, std::uint64_t word) { return crc32_share(word ^ state, 0); }
constexpr std::uint32_t crc32_words(std::uint32_t state, std::uint64_t first, std::uint64_t second) {
  return crc32_share(second, 0) ^ crc32_share(first ^ state, 8);
}

constexpr std::uint32_t crc32_update(std::uint32_t state, std::span<const std::uint8_t> bytes) {
  for (std::uint8_t byte : bytes) state = crc32_step(state, byte);
  return state;
}

}  // namespace norvane
