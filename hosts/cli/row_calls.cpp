#include "hosts/cli/row_calls.h"

#include <algorithm>
#include <cmath>

#include "core/text.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/json_text.h"

namespace norvane::cli {
namespace {

// Why a row is worth a line of the summary although it has a result.
std::string outside_text(const Session& session) {
  std::string text;
  const Function_CFunctionSpec& spec = session.function();
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    const std::uint32_t type = spec.outputs[i].type;
    const FUNCTION_ARG& value = session.output(i);
    const double status = value.kind == ARG_NUMBER ? value.number : value.kind == ARG_INTEGER ? value.integer : 0.0;
    if ((type == enumeration::rangestatus && status != 0.0) || (type == enumeration::rangestatus2 && status > 1.0))
      text.append(text.empty() ? "" : ", ").append(to_utf8(spec.outputs[i].key));
  }
  return "outside the range of the standard: " + text;
}

}  // namespace

void RowCalls::answer(std::string_view records, std::uint64_t first_line, std::string& out, Tally& tally) {
  RecordEnds ends(format_.delimiter);
  std::uint64_t line = first_line;
  const bool all_utf8 = is_utf8(records);
  for (std::size_t from = 0; from < records.size();) {
    const std::size_t end = std::min(ends.next(records, from), records.size());
    const std::string_view record = records.substr(from, end - from);
    from = end;
    std::string converted;
    const bool good = all_utf8 || is_utf8(record);
    if (!good) {
      converted = from_windows_1252(record);
      ++tally.reencoded;
    }
    const std::string_view text = good ? record : std::string_view(converted);
    if (is_blank(text) || is_comment(text))
      out += text;
    else
      row(text, line, out, tally);
    line += lines_of(record);
  }
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
    if (verdict == Verdict::outside) tally.note(line, outside_text(session_));
    if (has_warning(session_)) ++tally.with_warning;
  }
}

void RowCalls::append_number_cell(std::string& out, double value) {
  if (!std::isfinite(value)) {
    out += "#NUM!";
    return;
  }
  const std::size_t start = out.size();
  append_number(out, value, format_.precision);
  if (format_.decimal == '.') return;
  const std::size_t point = out.find('.', start);
  if (point == std::string::npos) return;
  out[point] = format_.decimal;
  if (format_.decimal != format_.delimiter) return;
  out.insert(start, 1, '"');
  out += '"';
}

void RowCalls::append_cell(std::string& out, const FUNCTION_ARG& value) {
  switch (value.kind) {
    case ARG_NUMBER: append_number_cell(out, value.number); return;
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
