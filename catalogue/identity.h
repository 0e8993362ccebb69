// What a number can be traced to: version, commit, and a checksum of everything that has a say in it.
//
// The checksum is the same in every build of one calculating part, on every system, and knows nothing of the hosts: a
// change of a host leaves it as it is. It is a CRC-32 over
//   records    of every function: identifiers, keys, types and units, limits, defaults, options, status values (not
//              the texts for readers),
//   tables     the coefficients of the standards, as they stand in memory,
//   units      factors and offsets of the catalogue of units,
//   equations  the SHA-256 of the calculating sources without their comments, found when the library was built.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/coefficients.h"

namespace norvane::catalogue {

struct Identity {
  std::string_view version, commit;
  std::uint32_t checksum = 0;  // of what is in memory now
  std::uint32_t built = 0;     // of what the library was built with
  bool intact() const noexcept { return checksum == built; }
};
// Computed anew with each call (about a tenth of a millisecond). A standard whose tables differ refuses from then on.
Identity identity();

// "1A2B3C4D".
std::string checksum_text(std::uint32_t checksum);
// "0.1.0, commit 1a2b3c4d5e6f, checksum 1A2B3C4D"; says so when the memory is not what was built.
std::string identity_text();

// The coefficient sets that the records name, each once, in the catalogue's order.
std::vector<const CoefficientSet*> coefficient_sets();
// CRC-32 of records, tables and units in memory: what the generator deposits.
std::uint32_t content_checksum();

}  // namespace norvane::catalogue
