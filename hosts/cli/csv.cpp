#include "hosts/cli/csv.h"

#include <algorithm>

#include "hosts/cli/session.h"

namespace norvane::cli {

std::size_t RecordEnds::next(std::string_view text, std::size_t from) {
  if (state_ == State::record_start) {
    // Without a quotation mark the record ends with its line.
    const std::size_t feed = text.find('\n', from);
    if (feed != std::string_view::npos && text.substr(from, feed - from).find('"') == std::string_view::npos)
      return feed + 1;
  }
  for (std::size_t i = from; i < text.size(); ++i) {
    const char c = text[i];
    switch (state_) {
      case State::record_start:
        if (c == '#') {
          state_ = State::comment;
          continue;
        }
        [[fallthrough]];
      case State::field_start:
        if (c == '"') {
          state_ = State::quoted;
          continue;
        }
        break;
      case State::comment:
      case State::plain: break;
      case State::quoted:
        if (c == '"') state_ = State::quote_in_quoted;
        continue;
      case State::quote_in_quoted:
        if (c == '"') {
          state_ = State::quoted;
          continue;
        }
        break;
    }
    if (c == '\n') {
      state_ = State::record_start;
      return i + 1;
    }
    if (state_ == State::comment) continue;
    state_ = c == delimiter_ ? State::field_start : State::plain;
  }
  return std::string_view::npos;
}

std::string_view without_line_end(std::string_view record) {
  if (record.ends_with('\n')) record.remove_suffix(1);
  if (record.ends_with('\r')) record.remove_suffix(1);
  return record;
}

// The field whose quotation mark stands at `from`, without the marks, up to the delimiter at `end`.
std::string_view Fields::unquoted(std::string_view text, std::size_t from, std::size_t& end, char delimiter,
                                  bool& closed) {
  const std::size_t first = unquoted_.size();
  const auto field = [&] { return std::string_view(unquoted_).substr(first); };
  std::size_t i = from + 1;
  for (;; ++i) {
    closed = i < text.size();
    if (!closed) return field();
    if (text[i] == '"' && (i + 1 >= text.size() || text[i + 1] != '"')) break;
    if (text[i] == '"') ++i;
    unquoted_ += text[i];
  }
  end = std::min(text.find(delimiter, i + 1), text.size());
  unquoted_.append(text, i + 1, end - i - 1);
  return field();
}

bool Fields::split(std::string_view record, char delimiter) {
  record = without_line_end(record);
  views_.clear();
  unquoted_.clear();
  // Enough for all of it: views of it stay good.
  unquoted_.reserve(record.size());
  for (std::size_t from = 0;; ++from) {
    std::size_t end = 0;
    bool closed = true;
    if (from < record.size() && record[from] == '"') {
      views_.push_back(unquoted(record, from, end, delimiter, closed));
      if (!closed) return false;
    } else {
      end = std::min(record.find(delimiter, from), record.size());
      views_.push_back(record.substr(from, end - from));
    }
    if (end == record.size()) return true;
    from = end;
  }
}

bool split_record(std::string_view record, char delimiter, std::vector<std::string>& fields) {
  Fields split;
  const bool closed = split.split(record, delimiter);
  fields.assign(split.all().begin(), split.all().end());
  return closed;
}

void append_field(std::string& out, std::string_view field, char delimiter) {
  if (std::none_of(field.begin(), field.end(),
                   [=](char c) { return c == '"' || c == '\r' || c == '\n' || c == delimiter; })) {
    out += field;
    return;
  }
  out += '"';
  for (const char c : field) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
}

bool is_blank(std::string_view record) { return record.find_first_not_of(" \t\r\n") == std::string_view::npos; }

bool is_comment(std::string_view record) {
  if (!record.starts_with('#')) return false;
  const std::size_t end = record.find_first_of(",;\t \r\n");
  return error_of_text(record.substr(0, end)) == ERROR_OK;
}

std::size_t lines_of(std::string_view record) {
  if (record.find('\n') == record.size() - 1) return 1;
  const auto feeds = static_cast<std::size_t>(std::count(record.begin(), record.end(), '\n'));
  return record.ends_with('\n') ? feeds : feeds + 1;
}

char separator_line(std::string_view line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  if (line.size() >= 2 && line.front() == '"' && line.back() == '"') line = line.substr(1, line.size() - 2);
  return line.size() == 5 && line.substr(0, 4) == "sep=" &&
                 std::string_view(",;\t|").find(line[4]) != std::string::npos
             ? line[4]
             : '\0';
}

char take_delimiter(std::string_view& text) {
  if (const char stated = separator_line(text.substr(0, text.find('\n'))); stated != '\0') {
    text.remove_prefix(std::min(text.size(), text.find('\n')) + (text.find('\n') == std::string_view::npos ? 0 : 1));
    return stated;
  }
  std::string_view rest = text;
  for (;;) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    if (end == std::string_view::npos || (!is_comment(line) && line.find_first_not_of(" \t\r") != std::string::npos))
      return delimiter_of(line);
    rest.remove_prefix(end + 1);
  }
}

char delimiter_of(std::string_view line) {
  bool quoted = false, semicolon = false, tab = false;
  for (const char c : line) {
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == ',') return ',';
    semicolon = semicolon || c == ';';
    tab = tab || c == '\t';
  }
  return semicolon ? ';' : tab ? '\t' : ',';
}

}  // namespace norvane::cli
