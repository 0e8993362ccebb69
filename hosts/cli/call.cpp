#include <cmath>

#include "core/text.h"
#include "hosts/cli/answer.h"
#include "hosts/cli/arguments.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/json_call.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/session.h"
#include "hosts/cli/table.h"
#include "hosts/module/meaning.h"

namespace norvane::cli {
namespace {

std::string scalar_text(const FUNCTION_ARG& value, int precision) {
  switch (value.kind) {
    case ARG_NUMBER: {
      if (precision == 0 || !std::isfinite(value.number)) return to_utf8(format_number(value.number));
      std::string text;
      append_number(text, value.number, precision);
      return text;
    }
    case ARG_INTEGER: return std::to_string(value.integer);
    case ARG_BOOLEAN: return value.boolean != 0 ? "TRUE" : "FALSE";
    case ARG_STRING: return to_utf8(value.text());
    case ARG_ERROR: return to_utf8(error_text(value.error));
    default: return "-";
  }
}

// "Range Status: Normal" for an option, "Mass Density" for a quantity.
std::string remark_of(const Function_COutput& output, const FUNCTION_ARG& value) {
  std::string remark = to_utf8(output.display_name.empty() ? output.description : output.display_name);
  std::string meaning;
  if (value.kind == ARG_NUMBER) meaning = to_utf8(host::meaning_of(output, value.number));
  if (value.kind == ARG_INTEGER) meaning = to_utf8(host::meaning_of(output, value.integer));
  if (meaning.empty()) return remark;
  return remark.empty() ? meaning : remark + ": " + meaning;
}

std::string table_of(const Session& session, int precision) {
  const Function_CFunctionSpec& spec = session.function();
  Table table;
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    const Function_COutput& output = spec.outputs[i];
    const FUNCTION_ARG& value = shown_output(session, i);
    if (value.kind != ARG_ARRAY) {
      table.add({to_utf8(output.key), scalar_text(value, precision), unit_text(session.units(), output.type),
                 remark_of(output, value)});
      continue;
    }
    for (std::uint32_t row = 0; row < value.array.rows; ++row) {
      std::string cells;
      for (std::uint32_t column = 0; column < value.array.columns; ++column)
        cells.append(column == 0 ? "" : "  ")
            .append(scalar_text(Function_CContext::Element(value, column, row), precision));
      table.add({row == 0 ? to_utf8(output.key) : std::string(), cells});
    }
  }
  return table.text(2, page_width());
}

void report(const Session& session, std::span<const std::size_t> defaulted) {
  std::string text;
  for (const ShownMessage& message : shown_messages(session))
    text.append(message.error ? "error: " : "warning: ").append(to_utf8(message.text)).append("\n");
  if (!session.good()) text += "no result: " + failure_text(session) + "\n";
  if (!defaulted.empty()) text += "note: defaults used: " + defaults_text(session, defaulted) + "\n";
  tell(text);
}

}  // namespace

ExitCode call(const CallOptions& options, Output& out) {
  const Function_CFunctionSpec& spec = find_function(options.id);
  const Reading reading = reading_of(options.reading);
  Session session;
  session.begin(spec);
  read_assignments(session, options.inputs, reading);
  std::vector<std::size_t> defaulted;
  left_to_defaults(session, defaulted);
  if (reading.no_defaults) refuse_defaults(session, defaulted);
  session.run();
  if (options.json) {
    append_answer(out.buffer(), session, defaulted);
    out.write("\n");
  } else {
    out.write(to_utf8(spec.id) + (spec.display_name.empty() ? "" : "  " + to_utf8(spec.display_name)) + "\n");
    out.write(table_of(session, options.precision));
    out.flush();
    report(session, defaulted);
  }
  const Verdict verdict = verdict_of(session);
  return verdict == Verdict::failed || (options.strict && verdict != Verdict::good) ? exit_calculation : exit_good;
}

}  // namespace norvane::cli
