// Rows of a batch with their outputs, to be held against the single calls.
#pragma once

#include <cmath>

#include "hosts/module/batch.h"
#include "tests/module/typed_arguments.h"

namespace norvane::test {

// Rows as columns of their own, a list as `cells` columns or as the cells of a row behind each other.
struct BatchTable {
  static constexpr double untouched = -7.25;

  BatchTable(const host::Signature& signature, std::size_t row_count, bool by_cell) : rows(row_count) {
    for (const host::PlannedInput& input : signature.plan.inputs) {
      const std::size_t cells = input.from == host::PlannedInput::From::list ? input.cells : 1;
      auto& numbers = values.emplace_back(cells * rows);
      columns.push_back(by_cell && cells > 1 ? host::Column{numbers.data(), 1, cells, rows}
                                             : host::Column{numbers.data(), cells, cells, 1});
    }
    for (std::size_t k = 0; k < signature.outputs.size(); ++k) {
      outputs.emplace_back(rows, untouched);
      places.push_back(outputs.back().data());
    }
    statuses.assign(rows, 77);
  }
  double& cell(std::size_t input, std::size_t row, std::size_t cell) {
    return values[input][row * columns[input].row_step + cell * columns[input].cell_step];
  }
  void put(const host::Signature& signature, const TypedArguments& arguments, std::size_t row) {
    for (std::size_t i = 0; i < signature.inputs.size(); ++i) {
      const bool list = signature.inputs[i].passing == host::Passing::range;
      for (std::size_t k = 0; k < columns[i].cells; ++k)
        cell(i, row, k) = list ? arguments.lists[i][k] : arguments.numbers[i];
    }
  }
  std::size_t run(const host::Signature& signature) {
    return run_batch(signature, rows, columns, places, statuses.data());
  }
  bool written() const {
    for (std::uint32_t status : statuses)
      if (status != 77) return true;
    for (const auto& column : outputs)
      for (double value : column)
        if (value != untouched) return true;
    return false;
  }
  // What is not as in the single call: "" for nothing.
  std::string fault(const host::Signature& signature, std::size_t row, const TypedResult& single) const {
    const bool ran = single.answer == host::TypedAnswer::delivered;
    if (statuses[row] != (ran ? single.status : host::batch_not_run))
      return "status " + std::to_string(statuses[row]) + ", alone " + std::to_string(single.status);
    for (std::size_t k = 0; k < signature.outputs.size(); ++k) {
      const double value = outputs[k][row];
      // The number that a single call delivers, as a batch writes it.
      const double expected = signature.outputs[k].passing == host::Passing::number
                                  ? std::bit_cast<double>(single.outputs[k])
                                  : static_cast<std::int32_t>(static_cast<std::uint32_t>(single.outputs[k]));
      const bool missing = std::isnan(value) && (!ran || single.status != 0);
      if (missing ? ran && expected != 0.0
                  : std::bit_cast<std::uint64_t>(value) != std::bit_cast<std::uint64_t>(expected))
        return "output " + std::to_string(k + 1) + " " + std::to_string(value) + ", alone " +
               std::to_string(expected);
    }
    return "";
  }

  std::size_t rows;
  std::vector<std::vector<double>> values;
  std::vector<host::Column> columns;
  std::deque<std::vector<double>> outputs;
  std::vector<double*> places;
  std::vector<std::uint32_t> statuses;
};

}  // namespace norvane::test
