#include "hosts/cli/csv.h"

#include <algorithm>

#include "hosts/cli/session.h"

namespace norvane::cli {

std::size_t RecordEnds::next(std::string_view text, std::size_t from) {
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

bool split_record(std::string_view record, char delimiter, std::vector<std::string>& fields) {
  if (record.ends_with('\n')) record.remove_suffix(1);
  if (record.ends_with('\r')) record.remove_suffix(1);
  std::size_t count = 0;
  const auto field = [&]() -> std::string& {
    if (count == fields.size()) fields.emplace_back();
    fields[count].clear();
    return fields[count++];
  };
  std::size_t i = 0;
  for (;;) {
    std::string& text = field();
    if (i < record.size() && record[i] == '"') {
      for (++i;; ++i) {
        if (i >= record.size()) {
          fields.resize(count);
          return false;
        }
        if (record[i] == '"' && (i + 1 >= record.size() || record[i + 1] != '"')) break;
        if (record[i] == '"') ++i;
        text += record[i];
      }
      ++i;
    }
    const std::size_t end = record.find(delimiter, i);
    text.append(record, i, end == std::string_view::npos ? end : end - i);
    if (end == std::string_view::npos) break;
    i = end + 1;
  }
  fields.resize(count);
  return true;
}

void append_field(std::string& out, std::string_view field, char delimiter) {
  const bool plain =
      field.find_first_of("\"\r\n") == std::string_view::npos && field.find(delimiter) == std::string_view::npos;
  if (plain) {
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

bool is_comment(std::string_view record) {
  if (!record.starts_with('#')) return false;
  const std::size_t end = record.find_first_of(",;\t \r\n");
  return error_of_text(record.substr(0, end)) == ERROR_OK;
}

std::size_t lines_of(std::string_view record) {
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
