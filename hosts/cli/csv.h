// Comma-separated values: records with quoted fields, CR LF or LF line ends, and an optional byte order mark.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace norvane::cli {

// Finds the ends of records in a text that arrives in pieces. A record that begins with '#' ends with its line.
class RecordEnds {
 public:
  explicit RecordEnds(char delimiter = ',') : delimiter_(delimiter) {}
  // Index past the line feed that ends the first record of `text` from `from` on, or npos when there is none.
  // The state is that of a record's start after an end was found, and carries on behind `text` after npos.
  std::size_t next(std::string_view text, std::size_t from);

 private:
  enum class State { record_start, comment, field_start, plain, quoted, quote_in_quoted };
  char delimiter_;
  State state_ = State::record_start;
};

// The record without its line end.
std::string_view without_line_end(std::string_view record);

// The fields of one record (its line end may be there or not): views of the record, or of what is left of a quoted
// field without its quotation marks. Both must outlive their use.
class Fields {
 public:
  // False when a quoted field is not closed.
  bool split(std::string_view record, char delimiter);
  std::size_t size() const { return views_.size(); }
  // Cuts off what is too much, adds blank fields where there are too few.
  void resize(std::size_t count) { views_.resize(count); }
  std::string_view operator[](std::size_t i) const { return views_[i]; }
  std::span<const std::string_view> all() const { return views_; }

 private:
  std::string_view unquoted(std::string_view text, std::size_t from, std::size_t& end, char delimiter, bool& closed);

  std::vector<std::string_view> views_;
  std::string unquoted_;
};

// The same as texts.
bool split_record(std::string_view record, char delimiter, std::vector<std::string>& fields);

// A field as it is written: in quotation marks when it needs them.
void append_field(std::string& out, std::string_view field, char delimiter);

// True for a line with nothing in it.
bool is_blank(std::string_view record);
// True for a line that is kept as it is: it begins with '#' and its first field is no error value such as #N/A.
bool is_comment(std::string_view record);
// Lines that a record takes in its file: one more than the line feeds inside it.
std::size_t lines_of(std::string_view record);

// ',' unless the line has none and has ';' or tabs instead.
char delimiter_of(std::string_view line);

// "sep=;", with which spreadsheets say the delimiter in a line of its own; 0 for any other line.
char separator_line(std::string_view line);
// The delimiter of a text whose first line may say it; that line is taken away. Comments do not count.
char take_delimiter(std::string_view& text);

inline constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";

}  // namespace norvane::cli
