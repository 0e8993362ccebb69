// Holds the calculations against evaluations of the same printed equations with 33 digits, over random states and over
// classes of states that are hard on rounding.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace norvane::referee {

// Deviations of one quantity in one class of states.
struct Row {
  std::string function, states, quantity;
  double limit;  // of the deviation
  std::vector<double> deviations;
  double worst = 0.0;
  std::string worst_state;

  double median() const;
};

// All rows, with so many states a class.
std::vector<Row> run(std::uint64_t seed, std::size_t states);

}  // namespace norvane::referee
