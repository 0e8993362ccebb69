// How a command reads the values it is given: its options --blank, --no-defaults, --c6plus, --atm and --decimal.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace norvane::cli {

// As they were typed.
struct ReadingOptions {
  std::string blank = "refuse";
  std::string c6plus;
  std::string atmosphere;
  std::string decimal = ".";
  bool no_defaults = false;
};

struct Reading {
  bool blank_is_default = false;
  bool no_defaults = false;
  char decimal = '.';
  // Shares of n-hexane and the heavier ones in a C6+ amount, in sum 1; empty: a C6+ amount is refused.
  std::vector<double> c6plus;
  // Atmospheric pressure in Pa, which lets gauge values stand for absolute ones and the other way round.
  std::optional<double> atmosphere;
};

// Throws UsageError naming the option.
Reading reading_of(const ReadingOptions& options);

}  // namespace norvane::cli
