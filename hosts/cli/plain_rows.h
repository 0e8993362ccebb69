// Rows that hold nothing but plain numbers, calculated many at once.
//
// Most rows of most files are such. What is special about a row (a blank cell, a text, a unit, a quoted field) or about
// its answer (a status, a message, a number that is none) is left to the single call, which has the words for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "hosts/cli/batch_columns.h"
#include "hosts/module/batch.h"

namespace norvane::cli {

class PlainRows {
 public:
  PlainRows(const BatchColumns& columns, const Reading& reading, char delimiter);

  // Takes down the next row, which is given without its line end and holds no quotation mark. False when it is not
  // plain.
  bool add(std::string_view record);
  std::size_t size() const { return rows_; }
  void calculate();
  void clear() { rows_ = 0; }

  // Of a row that was calculated: false when the single call has more to say about it than its outputs.
  bool good(std::size_t row) const { return good_[row] != 0; }
  // An output behind the status.
  double output(std::size_t row, std::size_t index) const { return outputs_[(index - 1) * rows_ + row]; }
  // The inputs whose defaults have a say in the row's result.
  std::span<const std::size_t> defaulted(std::size_t row) const {
    return neo_pentane_ != none && row_of(row)[neo_pentane_] == 0.0 ? defaulted_without_neo_pentane_ : defaulted_;
  }

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  // Where the number of a column goes.
  struct Cell {
    std::size_t column;
    const Target* target;
    std::size_t place;            // in a row of numbers
    std::vector<double> options;  // the numbers that have a name, where others need a look
  };

  bool lay_out();
  bool lay_out(std::size_t input, std::size_t& cells, std::size_t& place, bool& varies);
  void find_defaults(std::size_t gas, std::size_t gas_place, bool gas_varies);
  const char* read(const char* text, const char* end, double& value) const;
  bool put(const Cell& cell, double value, double* row);
  void spread_c6plus(double amount, double* gas) const;
  double* row_of(std::size_t row) { return numbers_.data() + row * model_.size(); }
  const double* row_of(std::size_t row) const { return numbers_.data() + row * model_.size(); }

  const BatchColumns& columns_;
  const Function_CFunctionSpec& spec_;
  const Reading& reading_;
  const char delimiter_;
  const host::Signature* signature_;  // null when the function has to be called row by row
  Session session_;                   // for units and messages, never run

  std::vector<Cell> cells_;        // in the order of the columns
  std::vector<double> model_;      // a row before its cells are put in: zeros, and what is the same in every row
  std::vector<double> constants_;  // of inputs that no cell has a say in
  std::vector<host::Column> inputs_;
  std::vector<std::size_t> places_;  // of the inputs, in a row or in the constants
  std::size_t neo_pentane_ = none;   // its place in a row, when the mode for it is left to the default
  std::vector<std::size_t> defaulted_, defaulted_without_neo_pentane_;

  std::size_t rows_ = 0;
  std::vector<double> numbers_, outputs_;
  std::vector<double*> output_columns_;
  std::vector<std::uint32_t> statuses_;
  std::vector<std::uint8_t> good_;
  std::unique_ptr<bool[]> remarked_;  // as many as statuses
};

}  // namespace norvane::cli
