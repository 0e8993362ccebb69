#include "hosts/cli/row_calls.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "core/text.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/json_text.h"

namespace norvane::cli {
namespace {

bool is_out_of_range(const Function_COutput& output, double status) {
  return (output.type == enumeration::rangestatus && status != 0.0) ||
         (output.type == enumeration::rangestatus2 && status > 1.0);
}

// Why a row is worth a line of the summary although it has a result; `number` is that of an output.
template <class NumberOf>
std::string outside_text(const Function_CFunctionSpec& spec, const NumberOf& number) {
  std::string text;
  for (std::size_t i = 0; i < spec.output_count; ++i)
    if (is_out_of_range(spec.outputs[i], number(i)))
      text.append(text.empty() ? "" : ", ").append(to_utf8(spec.outputs[i].key));
  return "outside the range of the standard: " + text;
}

double number_of(const FUNCTION_ARG& value) {
  return value.kind == ARG_NUMBER ? value.number : value.kind == ARG_INTEGER ? value.integer : 0.0;
}

}  // namespace

void RowCalls::answer(std::string_view records, std::uint64_t first_line, std::string& out, Tally& tally) {
  plain_.clear();
  split(records, first_line);
  plain_.calculate();
  for (const Record& record : records_) {
    if (record.plain_row != Record::not_plain && plain_.good(record.plain_row)) {
      plain_row(record, out, tally);
      continue;
    }
    std::string converted;
    const bool good = all_utf8_ || is_utf8(record.text);
    if (!good) {
      converted = from_windows_1252(record.text);
      ++tally.reencoded;
    }
    other(good ? record.text : std::string_view(converted), record.line, out, tally);
  }
}

void RowCalls::split(std::string_view records, std::uint64_t first_line) {
  records_.clear();
  RecordEnds ends(format_.delimiter);
  all_utf8_ = is_utf8(records);
  const bool quotes = records.find('"') != std::string_view::npos;
  std::uint64_t line = first_line;
  for (std::size_t from = 0; from < records.size();) {
    const std::size_t end = std::min(ends.next(records, from), records.size());
    Record& record = records_.emplace_back();
    record = {records.substr(from, end - from), line, Record::not_plain};
    from = end;
    line += lines_of(record.text);
    // What has marks to lose or a line end within is not repeated as it stands.
    const std::string_view text = without_line_end(record.text);
    const bool as_it_is = all_utf8_ && !text.starts_with('#') && text.find('\r') == std::string_view::npos &&
                          (!quotes || text.find('"') == std::string_view::npos);
    if (as_it_is && plain_.add(text)) record.plain_row = plain_.size() - 1;
  }
}

void RowCalls::plain_row(const Record& record, std::string& out, Tally& tally) {
  const std::string_view text = without_line_end(record.text);
  if (columns_.keeps_all()) {
    out += text;
    out += format_.delimiter;
  } else {
    std::size_t from = 0;
    for (std::size_t i = 0; i < columns_.count(); ++i) {
      const std::size_t end = std::min(text.find(format_.delimiter, from), text.size());
      if (columns_.kept(i)) {
        out += text.substr(from, end - from);
        out += format_.delimiter;
      }
      from = end + 1;
    }
  }
  // Outputs behind the status: numbers and whole numbers, which are short enough.
  tail_.resize((longest_number + 3) * spec_.output_count + 3);
  char* to = tail_.data();
  *to++ = '0';
  Verdict verdict = Verdict::good;
  for (std::size_t i = 1; i < spec_.output_count; ++i) {
    const Function_COutput& output = spec_.outputs[i];
    const double value = plain_.output(record.plain_row, i);
    *to++ = format_.delimiter;
    if (output.place.kind == record::Field::Kind::number)
      to = write_number_cell(to, value);
    else
      to = std::to_chars(to, to + longest_number, static_cast<std::int64_t>(value)).ptr;
    if (is_out_of_range(output, value))
      verdict = Verdict::outside;
    else if (output.type == enumeration::rangestatus2 && value != 0.0 && verdict == Verdict::good)
      verdict = Verdict::extended;
  }
  *to++ = format_.delimiter;
  out.append(tail_.data(), to);
  out += format_.line_end;

  ++tally.rows;
  tally.count(verdict);
  tally.count_defaults(plain_.defaulted(record.plain_row), spec_.input_count);
  if (verdict == Verdict::outside && tally.wants_note())
    tally.note(record.line,
               outside_text(spec_, [&](std::size_t i) { return i == 0 ? 0.0 : plain_.output(record.plain_row, i); }));
}

// A line that stays as it is, or a row by a call of its own.
void RowCalls::other(std::string_view record, std::uint64_t line, std::string& out, Tally& tally) {
  if (is_blank(record) || is_comment(record))
    out += record;
  else
    row(record, line, out, tally);
}

// The cells of the kept columns, each with a delimiter behind it.
void RowCalls::append_kept(std::string& out, std::string_view record) {
  const std::string_view text = without_line_end(record);
  // A cell is repeated as it stands unless it has marks to lose or a line end to hide behind such.
  const bool as_it_is = columns_.keeps_all() && cells_.size() == columns_.count() &&
                        text.find('"') == std::string_view::npos && text.find('\r') == std::string_view::npos;
  if (as_it_is) {
    out += text;
    out += format_.delimiter;
  }
  // A row with too few or too many cells keeps the columns of the others.
  cells_.resize(columns_.count());
  if (as_it_is) return;
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (!columns_.kept(i)) continue;
    append_field(out, cells_[i], format_.delimiter);
    out += format_.delimiter;
  }
}

void RowCalls::row(std::string_view record, std::uint64_t line, std::string& out, Tally& tally) {
  ++tally.rows;
  std::string problem;
  session_.begin(spec_);
  try {
    if (!cells_.split(record, format_.delimiter)) throw UsageError("a quoted field is not closed");
    columns_.read(session_, cells_.all());
    left_to_defaults(session_, defaulted_);
    if (reading_.no_defaults) refuse_defaults(session_, defaulted_);
  } catch (const UsageError& error) {
    problem = error.what();
  }
  append_kept(out, record);
  if (problem.empty()) session_.run();
  for (std::size_t i = 0; i < spec_.output_count; ++i) {
    if (problem.empty()) append_cell(out, shown_output(session_, i));
    out += format_.delimiter;
  }
  std::string messages = problem;
  if (problem.empty()) {
    for (const Message& message : session_.messages())
      messages.append(messages.empty() ? "" : " | ").append(to_utf8(message.text));
  }
  append_field(out, messages, format_.delimiter);
  out += format_.line_end;

  if (!problem.empty()) {
    ++tally.refused;
    tally.note(line, problem);
    return;
  }
  const Verdict verdict = verdict_of(session_);
  tally.count(verdict);
  tally.count_defaults(defaulted_, spec_.input_count);
  if (verdict == Verdict::failed) {
    const std::string status = failure_text(session_);
    tally.note(line, messages.empty() ? status : status + ": " + messages);
  } else {
    if (verdict == Verdict::outside)
      tally.note(line, outside_text(spec_, [&](std::size_t i) { return number_of(session_.output(i)); }));

    if (has_warning(session_)) ++tally.with_warning;
  }
}

// At most longest_number + 2 characters.
char* RowCalls::write_number_cell(char* to, double value) const {
  if (!std::isfinite(value)) return std::copy_n("#NUM!", 5, to);
  char* const end = write_number(to, value, format_.precision);
  if (format_.decimal == '.') return end;
  char* const point = std::find(to, end, '.');
  if (point == end) return end;
  *point = format_.decimal;
  if (format_.decimal != format_.delimiter) return end;
  std::copy_backward(to, end, end + 1);
  *to = '"';
  end[1] = '"';
  return end + 2;
}

void RowCalls::append_cell(std::string& out, const FUNCTION_ARG& value) {
  switch (value.kind) {
    case ARG_NUMBER: {
      char text[longest_number + 2];
      out.append(text, write_number_cell(text, value.number));
      return;
    }
    case ARG_INTEGER: append_integer(out, value.integer); return;
    case ARG_BOOLEAN: out += value.boolean != 0 ? "TRUE" : "FALSE"; return;
    case ARG_STRING: append_field(out, to_utf8(value.text()), format_.delimiter); return;
    case ARG_ERROR: out += to_utf8(error_text(value.error)); return;
    case ARG_ARRAY: {
      // A function whose one output is a list: its cells in one field.
      std::string list, cell;
      for (std::uint64_t i = 0; i < value.count() && value.array.elements[i].kind != ARG_ARRAY; ++i) {
        cell.clear();
        append_cell(cell, value.array.elements[i]);
        list.append(i == 0 ? "" : " ").append(cell);
      }
      append_field(out, list, format_.delimiter);
      return;
    }
    default: return;
  }
}

}  // namespace norvane::cli
