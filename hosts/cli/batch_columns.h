// The columns of a batch: what each cell of a row means.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hosts/cli/session.h"

namespace norvane::cli {

struct BatchColumn {
  static constexpr std::size_t whole = static_cast<std::size_t>(-1);
  std::size_t input = 0;
  std::size_t cell = whole;  // place in a range, or the whole argument
  std::uint32_t unit = 0;    // of numbers that name none; 0: the input's own
};

class BatchColumns {
 public:
  // Reads the header: "pressure", "pressure [psia]", "composition[0]", "methane". `fixed` holds the arguments
  // that are the same for every row. Throws UsageError naming the column.
  BatchColumns(const Function_CFunctionSpec& spec, const std::vector<std::string>& header, Session& fixed);

  std::size_t count() const { return columns_.size(); }
  // Puts one row's cells into a call that was begun. Throws UsageError.
  void read(Session& session, const std::vector<std::string>& cells) const;

 private:
  BatchColumn column(const std::string& title) const;

  const Function_CFunctionSpec& spec_;
  std::vector<BatchColumn> columns_;
  std::vector<std::size_t> range_sizes_;  // of each input; 0: none built from cells
  std::vector<FUNCTION_ARG> fixed_;
  const Unit_CTypeAndUnitContainer& units_;
};

}  // namespace norvane::cli
