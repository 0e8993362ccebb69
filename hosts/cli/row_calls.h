// The calls of a batch: one for every row, answered by a row. Each thread has its own.
//
// Rows of plain numbers are calculated many at once. Those that turn out to need a word, and all others, are calculated
// by a call of their own, so that there is one place where a row is refused or explained.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "hosts/cli/batch_columns.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/plain_rows.h"
#include "hosts/cli/tally.h"

namespace norvane::cli {

// How the rows of the answer are written.
struct RowFormat {
  char delimiter = ',';
  char decimal = '.';
  int precision = 0;  // significant digits; 0: as many as tell the number from every other
  std::string_view line_end = "\n";
};

class RowCalls {
 public:
  RowCalls(const Function_CFunctionSpec& spec, const BatchColumns& columns, const Reading& reading,
           const RowFormat& format)
      : spec_(spec),
        columns_(columns),
        reading_(reading),
        format_(format),
        plain_(columns, reading, format.delimiter) {}

  // Answers every record of the block, whose first line has this number in the file. Blank lines and comments stay.
  void answer(std::string_view records, std::uint64_t first_line, std::string& out, Tally& tally);

 private:
  struct Record {
    static constexpr std::size_t not_plain = static_cast<std::size_t>(-1);
    std::string_view text;  // with its line end
    std::uint64_t line;
    std::size_t plain_row;
  };

  void split(std::string_view records, std::uint64_t first_line);
  void plain_row(const Record& record, std::string& out, Tally& tally);
  void other(std::string_view record, std::uint64_t line, std::string& out, Tally& tally);
  void row(std::string_view record, std::uint64_t line, std::string& out, Tally& tally);
  void append_kept(std::string& out, std::string_view record);
  void append_cell(std::string& out, const FUNCTION_ARG& value);
  char* write_number_cell(char* to, double value) const;

  const Function_CFunctionSpec& spec_;
  const BatchColumns& columns_;
  const Reading& reading_;
  RowFormat format_;
  Session session_;
  PlainRows plain_;
  std::vector<Record> records_;
  bool all_utf8_ = true;
  Fields cells_;
  std::string tail_;
  std::vector<std::size_t> defaulted_;
};

}  // namespace norvane::cli
