// A calculation as a page to keep: what went in, what came out, by which standard, under which limits, made by what.
#include <algorithm>
#include <cmath>
#include <memory>

#include "core/text.h"
#include "hosts/cli/answer.h"
#include "hosts/cli/arguments.h"
#include "hosts/cli/batch_columns.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/csv.h"
#include "hosts/cli/document.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/identity.h"
#include "hosts/cli/input_file.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/quantity_text.h"
#include "hosts/cli/record_text.h"
#include "hosts/cli/standards.h"
#include "hosts/cli/values.h"
#include "hosts/module/meaning.h"

namespace norvane::cli {
namespace {

constexpr std::size_t most_cases = 1000;
constexpr std::size_t most_points = 1000;

// "temperature=-20:60:5".
struct Sweep {
  std::string name;  // as it was given, perhaps with a unit
  Target target;
  double from = 0.0, step = 0.0;
  std::size_t points = 0;

  double at(std::size_t i) const { return from + step * static_cast<double>(i); }
};

Sweep sweep_of(const std::string& text, const Function_CFunctionSpec& spec, const Reading& reading) {
  std::string_view key, values;
  split_assignment(text, key, values);
  Sweep sweep;
  sweep.name = key;
  Targets targets(spec);
  targets.add(key, reading, "--sweep " + in_quotes(key));
  sweep.target = targets.all().front();
  if (sweep.target.cell != Target::whole || sweep.target.record->is_array())
    throw UsageError("--sweep: " + sweep.target.name() + " takes no single value");
  const std::size_t first = values.find(':'),
                    second = first == std::string_view::npos ? first : values.find(':', first + 1);
  double to = 0.0;
  if (second == std::string_view::npos || !read_number(values.substr(0, first), '.', sweep.from) ||
      !read_number(values.substr(first + 1, second - first - 1), '.', to) ||
      !read_number(values.substr(second + 1), '.', sweep.step) || !std::isfinite(sweep.from) || !std::isfinite(to) ||
      !(std::fabs(sweep.step) > 0.0) || !std::isfinite(sweep.step))
    throw UsageError("--sweep: " + in_quotes(values) + " is not of the form from:to:step");
  // The end belongs to it although the steps do not add up to it in binary.
  const double steps = (to - sweep.from) / sweep.step + 1e-9;
  if (!(steps >= 0.0 && steps < static_cast<double>(most_points)))
    throw UsageError("--sweep: " + in_quotes(values) + " has no point or more than " + std::to_string(most_points));
  sweep.points = static_cast<std::size_t>(steps) + 1;
  return sweep;
}

std::string value_text(const FUNCTION_ARG& value, int precision) {
  switch (value.kind) {
    case ARG_NUMBER: {
      if (precision == 0 || !std::isfinite(value.number)) return to_utf8(format_number(value.number));
      std::string text;
      append_number(text, value.number, precision);
      return text;
    }
    case ARG_INTEGER: return std::to_string(value.integer);
    case ARG_BOOLEAN: return value.boolean != 0 ? "yes" : "no";
    case ARG_STRING: return to_utf8(value.text());
    case ARG_ERROR: return to_utf8(error_text(value.error));
    case ARG_ARRAY: return std::to_string(value.count()) + " values";
    default: return "-";
  }
}

bool number_of(const FUNCTION_ARG& value, double& number) {
  if (value.kind != ARG_NUMBER && value.kind != ARG_INTEGER) return false;
  number = value.kind == ARG_NUMBER ? value.number : value.integer;
  return true;
}

std::string title_of_line(std::u16string_view key, std::u16string_view display) {
  return to_utf8(display.empty() ? key : display);
}

class Report {
 public:
  Report(const Function_CFunctionSpec& spec, const ReportOptions& options)
      : spec_(spec), options_(options), page_("Calculation report: " + title_of(spec)) {
    page_.paragraph(to_utf8(spec.description));
    page_.table({"", ""},
                {{"Function", to_utf8(spec.id) + " (worksheet function " + to_utf8(spec.worksheet_name()) + ")"},
                 {"Standard", standard_of(spec)}});
  }

  void warn(const std::string& text) { page_.paragraph("Warning: " + text); }

  // A case: the session has its arguments and has not run.
  void add(Session& session, const std::string& heading) {
    if (!heading.empty()) page_.heading(heading);
    std::vector<std::size_t> defaulted;
    left_to_defaults(session, defaulted);
    add_inputs(session);
    session.run();
    add_outputs(session);
    ++cases_;
    if (!session.good()) ++failed_;
    if (verdict_of(session) == Verdict::outside || verdict_of(session) == Verdict::extended) ++off_range_;
  }

  // The same call for each value of one input.
  template <class Begin>
  void add(const Sweep& sweep, Session& session, const Reading& reading, const Begin& begin) {
    const std::string unit = symbol_of_target(sweep);
    const std::string x_title = sweep.target.name() + (unit.empty() ? "" : " [" + unit + "]");
    std::vector<std::size_t> shown = swept_outputs();
    std::vector<std::string> head = {x_title + ">"};
    for (const std::size_t i : shown) head.push_back(output_title(session, i) + ">");
    head.push_back("Status and range");
    std::vector<std::vector<std::string>> rows;
    std::vector<Curve> curves(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i) {
      curves[i].x_title = x_title;
      curves[i].y_title = output_title(session, shown[i]);
    }
    Targets targets(spec_);
    for (std::size_t point = 0; point < sweep.points; ++point) {
      begin(session);
      const double x = sweep.at(point);
      targets.put(session, sweep.target, read_number_cell(session, sweep.target, x, reading), reading);
      session.run();
      std::vector<std::string> row = {value_text(FUNCTION_ARG::Number(x), 12)};
      for (std::size_t i = 0; i < shown.size(); ++i) {
        const FUNCTION_ARG& value = shown_output(session, shown[i]);
        double y = NAN;
        number_of(value, y);
        curves[i].x.push_back(x);
        curves[i].y.push_back(y);
        row.push_back(value_text(value, options_.precision));
      }
      row.push_back(state_text(session));
      rows.push_back(std::move(row));
    }
    page_.heading("Over " + sweep.target.name());
    page_.table(std::move(head), std::move(rows));
    for (const Curve& curve : curves)
      if (std::string svg = svg_of(curve); !svg.empty()) page_.drawing(std::move(svg));
  }

  std::string finish(bool html) {
    if (!spec_.notes.empty()) {
      page_.heading("Standard, edition, limits");
      const std::string notes = to_utf8(spec_.notes);
      for (std::size_t from = 0; from < notes.size();) {
        const std::size_t end = std::min(notes.find('\n', from), notes.size());
        if (end > from) page_.paragraph(notes.substr(from, end - from));
        from = end + 1;
      }
    }
    add_identity(page_);
    return html ? page_.html() : page_.markdown();
  }

  ExitCode code(bool strict) const {
    return failed_ != 0 || (strict && off_range_ != 0) ? exit_calculation : exit_good;
  }

 private:
  void add_inputs(Session& session) {
    std::vector<std::vector<std::string>> rows, gas;
    for (std::size_t i = 0; i < spec_.input_count; ++i) {
      const Function_CInput& input = spec_.inputs[i];
      const FUNCTION_ARG& argument = session.argument(i);
      const bool given = argument.kind != ARG_MISSING;
      if (input.role == 1 && !given) continue;
      std::string value = given ? value_text(argument, 0) : variant_text(input.default_value);
      double number = 0.0;
      if (given && number_of(argument, number)) {
        for (const Option& option : options_of(input))
          if (option.value == number_text(number)) value += " (" + option.text + ")";
      } else if (const std::string label = label_of(input, input.default_value); !given && !label.empty()) {
        value += " (" + label + ")";
      }
      rows.push_back({title_of_line(input.key, input.display_name), to_utf8(input.key), value.empty() ? "-" : value,
                      unit_text(session.units(), input.type), range_text(input),
                      given           ? "given"
                      : value.empty() ? "not given"
                                      : "default"});
      if (!input.composition || argument.kind != ARG_ARRAY) continue;
      for (std::size_t cell = 0; cell < argument.count() && cell < component::count; ++cell) {
        const FUNCTION_ARG& amount = argument.array.elements[cell];
        if (number_of(amount, number) && number != 0.0)
          gas.push_back({std::string(component::table[cell].name), std::string(component::table[cell].formula),
                         value_text(amount, 0)});
      }
    }
    page_.heading("Inputs", 3);
    page_.table({"Input", "Key", "Value>", "Unit", "Limits", "Origin"}, std::move(rows));
    if (!gas.empty()) page_.table({"Component", "Formula", "Amount given>"}, std::move(gas));
  }

  void add_outputs(const Session& session) {
    std::vector<std::vector<std::string>> rows;
    for (std::size_t i = 0; i < spec_.output_count; ++i) {
      const Function_COutput& output = spec_.outputs[i];
      const FUNCTION_ARG& value = shown_output(session, i);
      double number = 0.0;
      std::string text = value_text(value, options_.precision);
      if (number_of(value, number))
        if (const std::string meaning = to_utf8(host::meaning_of(output, number)); !meaning.empty())
          text += " (" + meaning + ")";
      rows.push_back({title_of_line(output.key, output.display_name), to_utf8(output.key), text,
                      unit_text(session.units(), output.type)});
    }
    page_.heading("Outputs", 3);
    page_.table({"Output", "Key", "Value>", "Unit"}, std::move(rows));
    for (const ShownMessage& message : shown_messages(session))
      page_.paragraph((message.error ? "Error: " : "Warning: ") + to_utf8(message.text));
    page_.paragraph("Result: " + state_text(session) + ".");
  }

  static std::string state_text(const Session& session) {
    switch (verdict_of(session)) {
      case Verdict::good: return "good";
      case Verdict::extended: return "in the extended range of the standard";
      case Verdict::outside: return "outside the range of the standard";
      case Verdict::failed: break;
    }
    return "none, " + failure_text(session);
  }

  std::string output_title(const Session& session, std::size_t index) const {
    const std::string unit = unit_text(session.units(), spec_.outputs[index].type);
    return to_utf8(spec_.outputs[index].key) + (unit.empty() ? "" : " [" + unit + "]");
  }

  static std::string symbol_of_target(const Sweep& sweep) {
    std::string_view name = sweep.name, inside;
    if (split_brackets(name, name, inside)) return std::string(inside);
    return unit_text(Unit_CTypeAndUnitContainer::Instance(), sweep.target.record->type);
  }

  // Those of --plot; without it the first that is a number and no status.
  std::vector<std::size_t> swept_outputs() const {
    std::vector<std::size_t> found;
    std::vector<std::string> keys;
    for (const Function_COutput& output : spec_.output_records()) keys.push_back(to_utf8(output.key));
    for (const std::string& name : options_.plot) {
      const auto key =
          std::find_if(keys.begin(), keys.end(), [&](const auto& known) { return equal_names(known, name); });
      if (key == keys.end())
        throw UsageError("--plot: " + to_utf8(spec_.id) + " has no output " + in_quotes(name) +
                         did_you_mean(name, keys));
      found.push_back(static_cast<std::size_t>(key - keys.begin()));
    }
    for (std::size_t i = 0; i < spec_.output_count && found.empty(); ++i)
      if (spec_.outputs[i].role != 1 && kind_of_code(spec_.outputs[i].type) != CodeKind::enumeration)
        found.push_back(i);
    return found;
  }

  const Function_CFunctionSpec& spec_;
  const ReportOptions& options_;
  Document page_;
  std::size_t cases_ = 0, failed_ = 0, off_range_ = 0;
};

// The rows of a CSV file, each a case of its own.
void add_rows(Report& report, const Function_CFunctionSpec& spec, const ReportOptions& options,
              const Reading& reading) {
  BatchOptions batch;
  batch.id = options.id;
  batch.inputs = options.inputs;
  const std::string content = read_text_file(options.in);
  std::string_view text = content;
  const char delimiter = take_delimiter(text);
  RecordEnds ends(delimiter);
  std::vector<std::string> header;
  Fields cells;
  std::unique_ptr<BatchColumns> columns;
  Session session;
  std::size_t line = 1, cases = 0;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(ends.next(text, from), text.size());
    const std::string_view record = text.substr(from, end - from);
    const std::string place = shown_path(options.in) + ", line " + std::to_string(line);
    from = end;
    line += lines_of(record);
    if (is_comment(record) || is_blank(record)) continue;
    if (!cells.split(record, delimiter)) throw UsageError(place + ": a quoted field is not closed");
    if (columns == nullptr) {
      header.assign(cells.all().begin(), cells.all().end());
      columns = std::make_unique<BatchColumns>(spec, header, batch, reading);
      for (const std::string& warning : columns->warnings()) report.warn(warning);
      continue;
    }
    if (++cases > most_cases)
      throw UsageError(shown_path(options.in) + ": more than " + std::to_string(most_cases) +
                       " cases for one report");
    session.begin(spec);
    try {
      columns->read(session, cells.all());
    } catch (const UsageError& error) {
      throw UsageError(place + ": " + error.what());
    }
    report.add(session, "Case " + std::to_string(cases) + ": " + header[0] + " " + std::string(cells[0]));
  }
  if (cases == 0) throw UsageError(shown_path(options.in) + ": there is no row to report");
}

}  // namespace

ExitCode report(const ReportOptions& options, Output& out) {
  const Function_CFunctionSpec& spec = find_function(options.id);
  const Reading reading = reading_of(options.reading);
  Report report(spec, options);
  if (!options.in.empty()) {
    if (!options.sweep.empty()) throw UsageError("--sweep goes with a single case, not with --in");
    add_rows(report, spec, options, reading);
  } else {
    Session session;
    const auto begin = [&](Session& call) {
      call.begin(spec);
      read_assignments(call, options.inputs, reading);
    };
    begin(session);
    if (reading.no_defaults) {
      std::vector<std::size_t> defaulted;
      left_to_defaults(session, defaulted);
      refuse_defaults(session, defaulted);
    }
    report.add(session, "");
    if (!options.sweep.empty()) report.add(sweep_of(options.sweep, spec, reading), session, reading, begin);
  }
  const bool html = options.format.empty() ? options.out.ends_with(".html") || options.out.ends_with(".htm")
                                           : options.format == "html";
  const std::string text = report.finish(html);
  if (options.out.empty() || options.out == "-")
    out.write(text);
  else
    write_file(options.out, text);
  return report.code(options.strict);
}

}  // namespace norvane::cli
