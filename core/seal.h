// What the library was built with: found by the generator, compiled into every program and library but the generator.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace norvane {

struct Seal {
  struct Set {
    std::string_view standard;
    std::uint32_t checksum;
  };

  std::string_view commit;
  std::string_view equations;  // SHA-256 of the calculating sources without their comments
  std::uint32_t content = 0;   // CRC-32 of records, coefficient tables and units
  std::span<const Set> sets;   // empty: nothing is deposited, and nothing can be held against it
};

const Seal& seal() noexcept;

}  // namespace norvane
