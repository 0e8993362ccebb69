// What became of the rows of a batch, and its summary for people.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "hosts/cli/answer.h"

namespace norvane::cli {

struct Tally {
  // A row that has no result, or one outside the range of the standard.
  struct Detail {
    std::uint64_t line;
    std::string reason;
  };

  std::uint64_t rows = 0;
  std::uint64_t good = 0, extended = 0, outside = 0;
  std::uint64_t failed = 0;   // no result
  std::uint64_t refused = 0;  // the row could not be read, no call was made
  std::uint64_t with_warning = 0;
  std::uint64_t reencoded = 0;           // lines that were not UTF-8
  std::vector<std::uint64_t> defaulted;  // rows in which an input was left to its default
  std::vector<Detail> details;

  // A reason that is not wanted any more costs a good deal to write.
  bool wants_note() const;
  void note(std::uint64_t line, std::string reason);
  void count(Verdict verdict);
  void count_defaults(std::span<const std::size_t> inputs, std::size_t input_count);
  void add(const Tally& other);
};

// "3 rows: 2 good, 1 outside the range of the standard", and the reasons of those that are not good.
std::string summary(const Tally& tally);

// "note: defaults used in every row: edition = 1 (1994); in 3 rows: density = 50 kg/m3", or nothing.
std::string defaults_note(const Tally& tally, const Session& session);

}  // namespace norvane::cli
