// CRC-32 of IEEE 802.3: polynomial 0xEDB88320 (reflected), by table: one byte a step, or one 64-bit word.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace norvane {

// Table n advances a byte over n further bytes of zero; table 0 alone is the classical one.
inline constexpr std::array<std::array<std::uint32_t, 256>, 8> crc32_tables = [] {
  std::array<std::array<std::uint32_t, 256>, 8> tables{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? 0xEDB88320u ^ (value >> 1) : value >> 1;
    tables[0][i] = value;
  }
  for (std::size_t n = 1; n < tables.size(); ++n)
    for (std::size_t i = 0; i < 256; ++i)
      tables[n][i] = tables[0][tables[n - 1][i] & 0xFF] ^ (tables[n - 1][i] >> 8);
  return tables;
}();
inline constexpr const std::array<std::uint32_t, 256>& crc32_table = crc32_tables[0];

constexpr std::uint32_t crc32_step(std::uint32_t state, std::uint32_t byte) {
  return crc32_table[(state ^ byte) & 0xFF] ^ (state >> 8);
}

// The eight bytes of a word, lowest first: eight independent look-ups instead of a chain of eight.
constexpr std::uint32_t crc32_word(std::uint32_t state, std::uint64_t word) {
  const std::uint64_t x = word ^ state;
  return crc32_tables[7][x & 0xFF] ^ crc32_tables[6][x >> 8 & 0xFF] ^ crc32_tables[5][x >> 16 & 0xFF] ^
         crc32_tables[4][x >> 24 & 0xFF] ^ crc32_tables[3][x >> 32 & 0xFF] ^ crc32_tables[2][x >> 40 & 0xFF] ^
         crc32_tables[1][x >> 48 & 0xFF] ^ crc32_tables[0][x >> 56];
}

constexpr std::uint32_t crc32_update(std::uint32_t state, std::span<const std::uint8_t> bytes) {
  for (std::uint8_t byte : bytes) state = crc32_step(state, byte);
  return state;
}

}  // namespace norvane
