// CRC-32 of IEEE 802.3: polynomial 0xEDB88320 (reflected), one byte a step by table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace norvane {

inline constexpr std::array<std::uint32_t, 256> crc32_table = [] {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? 0xEDB88320u ^ (value >> 1) : value >> 1;
    table[i] = value;
  }
  return table;
}();

constexpr std::uint32_t crc32_step(std::uint32_t state, std::uint32_t byte) {
  return crc32_table[(state ^ byte) & 0xFF] ^ (state >> 8);
}

constexpr std::uint32_t crc32_update(std::uint32_t state, std::span<const std::uint8_t> bytes) {
  for (std::uint8_t byte : bytes) state = crc32_step(state, byte);
  return state;
}

}  // namespace norvane
