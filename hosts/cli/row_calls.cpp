#include "hosts/cli/row_calls.h"

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
  for (std::size_t from = 0; from < records.size();) {
    std::size_t end = ends.next(records, from);
    if (end == std::string_view::npos) end = records.size();
    const std::string_view record = records.substr(from, end - from);
    from = end;
    std::string converted;
    const bool good = is_utf8(record);
    if (!good) {
      converted = from_windows_1252(record);
      ++tally.reencoded;
    }
    const std::string_view text = good ? record : std::string_view(converted);
    if (text.find_first_not_of(" \t\r\n") == std::string_view::npos || is_comment(text))
      out += text;
    else
      row(text, line, out, tally);
    line += lines_of(record);
  }
}

void RowCalls::row(std::string_view record, std::uint64_t line, std::string& out, Tally& tally) {
  ++tally.rows;
  std::string problem;
  session_.begin(spec_);
  try {
    if (!split_record(record, format_.delimiter, cells_)) throw UsageError("a quoted field is not closed");
    columns_.read(session_, cells_);
    left_to_defaults(session_, defaulted_);
    if (reading_.no_defaults) refuse_defaults(session_, defaulted_);
  } catch (const UsageError& error) {
    problem = error.what();
  }
  // A row with too few or too many cells keeps the columns of the others.
  cells_.resize(columns_.count());
  for (std::size_t i = 0; i < cells_.size(); ++i) {
    if (!columns_.kept(i)) continue;
    append_field(out, cells_[i], format_.delimiter);
    out += format_.delimiter;
  }
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

void RowCalls::append_cell(std::string& out, const FUNCTION_ARG& value) {
  switch (value.kind) {
    case ARG_NUMBER:
      if (!std::isfinite(value.number)) {
        out += "#NUM!";
        return;
      }
      text_.clear();
      append_number(text_, value.number, format_.precision);
      if (format_.decimal == ',')
        if (const std::size_t point = text_.find('.'); point != std::string::npos) text_[point] = ',';
      append_field(out, text_, format_.delimiter);
      return;
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
