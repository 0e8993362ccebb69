// Cuts a CSV file into blocks of whole records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hosts/cli/csv.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/platform.h"

namespace norvane::cli {

class RecordReader {
 public:
  RecordReader(int descriptor, std::string name) : descriptor_(descriptor), name_(std::move(name)) {}

  // Reads up to the end of the header record, which finds out encoding, delimiter and line ends. Throws UsageError
  // when there is none.
  void read_head();
  // Byte order mark, "sep=;", comments and blank lines that stand above the header, to be written as they are.
  const std::string& before_header() const { return before_header_; }
  // The header record, without its line end.
  const std::string& header() const { return header_; }
  char delimiter() const { return delimiter_; }
  std::string_view line_end() const { return line_end_; }
  // What a reader should know about the encoding, a line of text or nothing.
  const std::string& encoding_note() const { return encoding_note_; }

  // Whole records of about `target` characters and the number of their first line in the file; false at its end.
  bool next(std::string& block, std::uint64_t& first_line, std::size_t target);
  // True when next() has something to give without waiting for it.
  bool is_ready() const { return is_readable(descriptor_); }
  std::uint64_t bytes_read() const { return bytes_read_; }

 private:
  bool fill();
  bool fill_line();
  void check_length() const;
  std::string_view pending() const { return std::string_view(buffer_).substr(taken_); }
  std::string_view take(std::size_t count);
  std::string in_utf8(std::string_view text);

  int descriptor_;
  std::string name_;
  std::string buffer_;
  std::size_t taken_ = 0;    // of the buffer; the rest is pending
  std::size_t scanned_ = 0;  // of what is pending
  std::string bytes_;        // of UTF-16, as they were read
  std::uint64_t bytes_read_ = 0;
  std::uint64_t line_ = 1;
  std::optional<Utf16Decoder> utf16_;
  std::string before_header_, header_, encoding_note_;
  std::string_view line_end_ = "\n";
  char delimiter_ = ',';
  RecordEnds ends_{','};
};

}  // namespace norvane::cli
