// The columns of a batch: what each cell of a row means to the function, and which of them the answer repeats.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/commands.h"
#include "hosts/cli/target.h"

namespace norvane::cli {

class BatchColumns {
 public:
  // Reads the header: "pressure", "pressure [psia]", "composition[0]", "methane [mol%]"; any other column is passed
  // on, unless it looks like a slip for an input that nothing else gives. Throws UsageError naming the column.
  BatchColumns(const Function_CFunctionSpec& spec, const std::vector<std::string>& header,
               const BatchOptions& options, const Reading& reading);

  const Function_CFunctionSpec& function() const { return spec_; }
  std::size_t count() const { return header_.size(); }
  // Where values go: first the constants, whose values stand in their order, then the targets of columns.
  const Targets& targets() const { return targets_; }
  std::span<const FUNCTION_ARG> constants() const { return constant_values_; }
  std::size_t column_of(std::size_t target) const { return uses_[target - constant_values_.size()].column; }
  bool kept(std::size_t column) const { return kept_[column]; }
  bool keeps_all() const { return keeps_all_; }
  // The header of the answer: kept columns, outputs, messages. An output whose name is taken gets the function's before
  // it.
  std::string answer_header(char delimiter) const;
  // What the user should know about the units of columns and constants, once for all rows.
  const std::vector<std::string>& warnings() const { return warnings_; }
  // Puts one row's cells into a call that was begun. Throws UsageError.
  void read(Session& session, std::span<const std::string_view> cells) const;

 private:
  void find_targets(const BatchOptions& options, const std::vector<std::string>& constants, std::size_t first_set);
  void choose_kept(const BatchOptions& options);
  std::size_t column_named(std::string_view name, std::string_view option) const;
  void refuse_slip(const std::string& title) const;
  void refuse_missing() const;

  struct Use {
    std::size_t column;
    std::size_t target;
  };

  const Function_CFunctionSpec& spec_;
  const Reading& reading_;
  std::vector<std::string> header_;
  std::vector<bool> kept_;
  bool keeps_all_ = true;
  Session constants_;  // a call of its own, never run, that holds what is the same in every row
  std::vector<FUNCTION_ARG> constant_values_;
  Targets targets_;  // the constants first
  std::vector<Use> uses_;
  std::vector<std::string> warnings_;
};

}  // namespace norvane::cli
