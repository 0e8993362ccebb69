#include "hosts/cli/json_call.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <nlohmann/json.hpp>
#include <vector>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "hosts/cli/composition_names.h"
#include "hosts/cli/errors.h"
#include "hosts/cli/json_reader.h"
#include "hosts/cli/json_text.h"
#include "hosts/cli/names.h"
#include "hosts/cli/values.h"

namespace norvane::cli {
namespace {

using nlohmann::json;

// A scalar as it was read; a text stands in the reader's pool.
struct Cell {
  enum class Kind : std::uint8_t { number, boolean, text, error, blank };
  Kind kind = Kind::blank;
  union {
    double number = 0.0;
    bool boolean;
    std::uint32_t error;
    struct {
      std::size_t offset, size;
    } text;
  };
};

// One input's value: its cells, row by row.
struct Value {
  enum class Shape : std::uint8_t { scalar, list, rows };
  std::string key;
  std::string gas;  // of {"composition":{"methane":0.9}}: the key around it, else empty
  std::size_t first_cell = 0;
  std::size_t cells = 0;
  std::size_t rows = 0;
  std::size_t columns = 0;
  Shape shape = Shape::scalar;
};

// Members of a file of check values, which a call does not need.
constexpr std::array<std::string_view, 6> skipped_members = {"outputs", "rtol", "atol", "rtols", "atols", "source"};

const std::vector<std::string> call_members = {"id", "function", "inputs"};

}  // namespace

// Receives the parser's events and keeps what a call needs; its buffers are used again for the next line. An
// event that no call allows stops the parser at once, so that depth and size of hostile text cost nothing.
struct JsonCalls::Reader {
  std::string id;  // as it is to be echoed, empty when there is none
  std::string function;
  std::vector<Value> inputs;  // the first `input_count` belong to this line
  std::size_t input_count = 0;
  std::vector<Cell> cells;
  std::string pool;
  std::string problem;

  // What may come next. In `list` a first row may come too, which makes it `rows`; `error` to `error_end` is the way
  // through {"error":"#N/A"}.
  enum class Place {
    start,
    call,
    id,
    function,
    inputs,
    value,
    list,
    rows,
    row,
    error,
    error_text,
    error_end,
    skipped,
    end
  };
  Place place = Place::start;
  Place around_error = Place::value;
  std::string gas;  // key of the object that names components
  std::uint32_t error_code = ERROR_OK;
  bool function_given = false;
  bool inputs_given = false;
  bool in_gas = false;  // within {"composition":{...}}
  std::size_t skipped_depth = 0;

  void reset(Place first) {
    place = first;
    id.clear();
    in_gas = false;
    function.clear();
    input_count = 0;
    cells.clear();
    pool.clear();
    problem.clear();
    function_given = inputs_given = false;
    skipped_depth = 0;
  }

  void begin_value(std::string_view key) {
    if (input_count == inputs.size()) inputs.emplace_back();
    Value& value = inputs[input_count++];
    value.key = key;
    value.gas.clear();
    value.first_cell = cells.size();
    value.cells = value.rows = value.columns = 0;
    value.shape = Value::Shape::scalar;
    place = Place::value;
  }
  Value& current() { return inputs[input_count - 1]; }

  bool null() { return place == Place::id ? echo("null") : scalar({}); }
  bool boolean(bool given) {
    if (place == Place::id) return echo(given ? "true" : "false");
    Cell cell;
    cell.kind = Cell::Kind::boolean;
    cell.boolean = given;
    return scalar(cell);
  }
  bool number_integer(json::number_integer_t given) {
    return place == Place::id ? echo(std::to_string(given)) : number(static_cast<double>(given));
  }
  bool number_unsigned(json::number_unsigned_t given) {
    return place == Place::id ? echo(std::to_string(given)) : number(static_cast<double>(given));
  }
  bool real(double given, std::string_view text) { return place == Place::id ? echo(text) : number(given); }
  bool text(std::string_view given) {
    if (place == Place::id) {
      append_text(id, given);
      return echo({});
    }
    if (place == Place::function) {
      function = given;
      place = Place::call;
      return true;
    }
    if (place == Place::error_text) {
      error_code = error_of_text(given);
      if (error_code == ERROR_OK) return refuse_here(in_quotes(given) + " is not an error value");
      place = Place::error_end;
      return true;
    }
    Cell cell;
    cell.kind = Cell::Kind::text;
    cell.text = {pool.size(), given.size()};
    if (place != Place::skipped) pool += given;
    return scalar(cell);
  }
  // The same events by the names of the other parser.
  bool number_float(json::number_float_t given, const std::string& text) { return real(given, text); }
  bool string(std::string& given) { return text(given); }
  bool key(std::string& given) { return name(given); }
  bool binary(json::binary_t&) { return false; }  // no part of JSON text

  bool start_object(std::size_t) {
    switch (place) {
      case Place::start: place = Place::call; return true;
      case Place::skipped: ++skipped_depth; return true;
      case Place::inputs: return true;
      case Place::value:
      case Place::list:
      case Place::rows:
      case Place::row:
        around_error = place;
        place = Place::error;
        return true;
      default: return refuse_here("");
    }
  }
  bool name(std::string_view given) {
    switch (place) {
      case Place::skipped: return true;
      case Place::call: return member(given);
      case Place::inputs:
        begin_value(given);
        if (in_gas) current().gas = gas;
        return true;
      case Place::error:
        if (given == "error") {
          place = Place::error_text;
          return true;
        }
        if (around_error != Place::value || in_gas) return refuse_here("");
        in_gas = true;
        gas = current().key;
        --input_count;
        begin_value(given);
        current().gas = gas;
        return true;
      default: return refuse_here("");
    }
  }
  bool end_object() {
    Cell cell;
    switch (place) {
      case Place::skipped: leave_skipped(); return true;
      case Place::inputs:
        if (!in_gas) place = Place::call;
        in_gas = false;
        return true;
      case Place::call: place = Place::end; return true;
      case Place::error_end:
        place = around_error;
        cell.kind = Cell::Kind::error;
        cell.error = error_code;
        return scalar(cell);
      default: return refuse_here("");
    }
  }
  bool start_array(std::size_t) {
    switch (place) {
      case Place::skipped: ++skipped_depth; return true;
      case Place::value:
        current().shape = Value::Shape::list;
        place = Place::list;
        return true;
      case Place::list:
        if (cells.size() != current().first_cell) return refuse_here("rows and single values are mixed");
        current().shape = Value::Shape::rows;
        [[fallthrough]];
      case Place::rows: place = Place::row; return true;
      case Place::row: return refuse_here("a list in a row");
      default: return refuse_here("");
    }
  }
  bool end_array() {
    if (place == Place::skipped) {
      leave_skipped();
      return true;
    }
    Value& value = current();
    if (place == Place::row) {
      value.cells = cells.size() - value.first_cell;
      if (value.rows == 0) value.columns = value.cells;
      ++value.rows;
      if (value.cells != value.rows * value.columns) return refuse_here("the rows differ in length");
      place = Place::rows;
      return true;
    }
    end_list(value);
    return true;
  }
  void end_list(Value& value) {
    value.cells = cells.size() - value.first_cell;
    if (value.shape == Value::Shape::list) {
      value.columns = 1;
      value.rows = value.cells;
    }
    place = Place::inputs;
  }
  // Lines repeat the gas of the line before, more often than not: the last list of numbers as it was written and as it
  // was read.
  std::string list_text;
  std::vector<Cell> list_cells;

  std::size_t repeated_list(std::string_view text) {
    if (place != Place::value || list_text.empty() || !text.starts_with(list_text)) return 0;
    Value& value = current();
    value.shape = Value::Shape::list;
    cells.insert(cells.end(), list_cells.begin(), list_cells.end());
    end_list(value);
    return list_text.size();
  }
  void list_ended(std::string_view text) {
    constexpr std::size_t longest = 4096;
    if (place != Place::inputs || current().shape != Value::Shape::list || text.size() > longest) return;
    const auto first = cells.begin() + static_cast<std::ptrdiff_t>(current().first_cell);
    if (std::any_of(first, cells.end(), [](const Cell& cell) { return cell.kind != Cell::Kind::number; })) return;
    list_text.clear();  // without memory for the cells there is no list
    list_cells.assign(first, cells.end());
    list_text = text;
  }
  bool parse_error(std::size_t position, const std::string&, const json::exception& exception) {
    // "[json.exception.parse_error.101] parse error at line 1, column 5: syntax error ...; last read: '...'"
    std::string_view text = exception.what();
    if (const std::size_t end = text.find("] "); end != std::string_view::npos) text.remove_prefix(end + 2);
    if (const std::size_t colon = text.find(": "); text.starts_with("parse error") && colon != std::string_view::npos)
      text.remove_prefix(colon + 2);
    problem = "not valid JSON at character " + std::to_string(position) + ": " + printable(text, 200);
    return false;
  }

 private:
  bool refuse(std::string text) {
    problem = std::move(text);
    return false;
  }
  bool refuse_here(std::string_view what) {
    switch (place) {
      case Place::start:
      case Place::call:
      case Place::end: return refuse("a call is an object with \"function\" and \"inputs\"");
      case Place::id: return refuse("\"id\" must be a text or a number");
      case Place::function: return refuse("\"function\" must be a text");
      case Place::inputs: return refuse("\"inputs\" must be an object");
      default: break;
    }
    return refuse(
        "input " + in_quotes(current().key) + ": " +
        (what.empty()
             ? "the objects that may stand here are {\"error\":\"#N/A\"} and, for a gas, {\"methane\":0.9,...}"
             : std::string(what)));
  }
  bool echo(std::string_view text) {
    id += text;
    place = Place::call;
    return true;
  }
  bool number(double given) {
    Cell cell;
    cell.kind = Cell::Kind::number;
    cell.number = given;
    if (place != Place::list && place != Place::row) return scalar(cell);
    cells.push_back(cell);
    return true;
  }
  bool scalar(const Cell& cell) {
    switch (place) {
      case Place::skipped:
        if (skipped_depth == 0) place = Place::call;
        return true;
      case Place::rows: return refuse_here("rows and single values are mixed");
      case Place::value: place = Place::inputs; break;
      case Place::list:
      case Place::row: break;
      default: return refuse_here("");
    }
    cells.push_back(cell);
    return true;
  }
  bool member(std::string_view given) {
    if (given == "id") {
      place = Place::id;
      return id.empty() || refuse("\"id\" is given twice");
    }
    if (given == "function" || given == "inputs") {
      bool& seen = given == "function" ? function_given : inputs_given;
      if (seen) return refuse(in_quotes(given) + " is given twice");
      seen = true;
      place = given == "function" ? Place::function : Place::inputs;
      return true;
    }
    if (std::find(skipped_members.begin(), skipped_members.end(), given) == skipped_members.end())
      return refuse("unknown member " + in_quotes(given) + did_you_mean(given, call_members));
    place = Place::skipped;
    return true;
  }
  void leave_skipped() {
    if (--skipped_depth == 0) place = Place::call;
  }
};

namespace {

FUNCTION_ARG argument_of(Session& session, const Target& target, const Cell& cell, std::string_view pool,
                         const Reading& reading) {
  switch (cell.kind) {
    case Cell::Kind::number: return read_number_cell(session, target, cell.number, reading);
    case Cell::Kind::boolean: return FUNCTION_ARG::Boolean(cell.boolean);
    case Cell::Kind::text: {
      const std::string_view text = pool.substr(cell.text.offset, cell.text.size);
      const std::uint32_t type = target.record->type;
      return type == data_type::any || type == data_type::unit ? session.text(text)
                                                               : read_cell(session, target, text, reading);
    }
    case Cell::Kind::error: return FUNCTION_ARG::Error(cell.error);
    case Cell::Kind::blank: break;
  }
  return FUNCTION_ARG::Empty();
}

FUNCTION_ARG argument_of(Session& session, const Target& target, const Value& value, const std::vector<Cell>& cells,
                         std::string_view pool, const Reading& reading) {
  if (value.shape == Value::Shape::scalar)
    return argument_of(session, target, cells[value.first_cell], pool, reading);
  if (target.cell != Target::whole)
    throw UsageError("input " + in_quotes(value.key) + " takes one value, not a list");
  FUNCTION_ARG array = session.array(value.columns, value.rows);
  const bool as_it_is = target.unit == 0 && target.options.empty() && target.scale == 1.0;
  for (std::size_t i = 0; i < value.cells; ++i) {
    const Cell& cell = cells[value.first_cell + i];
    array.array.elements[i] = as_it_is && cell.kind == Cell::Kind::number
                                  ? FUNCTION_ARG::Number(cell.number)
                                  : argument_of(session, target, cell, pool, reading);
  }
  return array;
}

// `begin` sets the reader up for the text.
template <class Begin>
bool parse(JsonCalls::Reader& reader, std::string_view text, const Begin& begin) {
  begin();
  if (JsonReader(text).read(reader)) return true;
  begin();
  // The parser takes a zero byte for the end of the text and would not see what follows.
  if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
    reader.problem = "not valid JSON at character " + std::to_string(zero + 1) + ": a zero byte";
    return false;
  }
  return json::sax_parse(text.data(), text.data() + text.size(), &reader);
}

}  // namespace

JsonCalls::JsonCalls(Reading reading)
    : reading_(std::move(reading)), reader_(std::make_unique<Reader>()), plans_(catalogue::count()) {}
JsonCalls::~JsonCalls() = default;

const Function_CFunctionSpec& JsonCalls::function(const std::string& id) {
  if (const auto found = functions_.find(id); found != functions_.end()) return *found->second;
  const Function_CFunctionSpec& spec = find_function(id);
  // Every spelling is an entry of its own; a few hundred are more than any honest caller uses.
  if (functions_.size() < 1000) functions_.emplace(id, &spec);
  return spec;
}

// Callers repeat the names of the line before, more often than not.
const Targets& JsonCalls::targets(const Function_CFunctionSpec& spec) {
  const std::span<const Value> inputs(reader_->inputs.data(), reader_->input_count);
  std::unique_ptr<Plan>& plan = plans_[spec.position];
  const auto same = [](const std::string& name, const Value& value) {
    // A key and the gas around it make one name; no key holds a zero byte.
    return value.gas.empty() ? name == value.key : name == value.key + '\0' + value.gas;
  };
  if (plan != nullptr && std::equal(plan->names.begin(), plan->names.end(), inputs.begin(), inputs.end(), same))
    return plan->targets;
  auto made = std::make_unique<Plan>(spec);
  for (const Value& value : inputs) {
    const std::string what = "input " + in_quotes(value.key);
    if (!value.gas.empty()) {
      const std::size_t gas = composition_input(spec);
      if (gas == spec.input_count || !equal_names(to_utf8(spec.inputs[gas].key), value.gas))
        throw UsageError("input " + in_quotes(value.gas) +
                         ": the only object that may stand here is {\"error\":\"#N/A\"}");
      if (component_named(value.key) == component::count && normalised(value.key) == normalised(value.gas))
        throw UsageError(what + " is no component of the gas");
    }
    made->targets.add(value.key, reading_, what);
    if (!value.gas.empty() && !made->targets.all().back().composition)
      throw UsageError(what + " is no component of the gas");
    made->names.push_back(value.gas.empty() ? value.key : value.key + '\0' + value.gas);
  }
  plan = std::move(made);
  return plan->targets;
}

void JsonCalls::call(std::string_view line) {
  Reader& reader = *reader_;
  if (line.find_first_not_of(" \t\r") == std::string_view::npos) throw UsageError("the line is empty");
  if (!parse(reader, line, [&] { reader.reset(Reader::Place::start); })) throw UsageError(reader.problem);
  if (!reader.function_given) throw UsageError("\"function\" is missing");
  const Function_CFunctionSpec& spec = function(reader.function);
  session_.begin(spec);
  const Targets& targets = this->targets(spec);
  targets.prepare(session_);
  for (std::size_t i = 0; i < reader.input_count; ++i) {
    const Target& target = targets.all()[i];
    targets.put(session_, target,
                argument_of(session_, target, reader.inputs[i], reader.cells, reader.pool, reading_), reading_);
  }
  left_to_defaults(session_, defaulted_);
  if (reading_.no_defaults) refuse_defaults(session_, defaulted_);
  session_.run();
}

JsonCalls::Answer JsonCalls::answer(std::string_view line, std::string& out) {
  // What was answered before this line stays, whatever is refused from here on.
  const std::size_t before = out.size();
  out.reserve(before + 256);
  reader_->reset(Reader::Place::start);
  try {
    try {
      call(line);
      append_answer(out, session_, defaulted_, reader_->id);
      verdict_ = verdict_of(session_);
      return session_.good() ? Answer::good : Answer::calculation_failed;
    } catch (const UsageError& error) {
      append_failure(out, error.what(), reader_->id);
    }
  } catch (const std::bad_alloc&) {
    out.resize(before);
    out += R"({"ok":false,"error":"not enough memory"})";
  }
  return Answer::unreadable;
}

void append_answer(std::string& out, const Session& session, std::span<const std::size_t> defaulted,
                   std::string_view id) {
  const Function_CFunctionSpec& spec = session.function();
  out += '{';
  if (!id.empty()) out.append("\"id\":").append(id) += ',';
  out += "\"function\":";
  append_text(out, spec.id);
  out += session.good() ? ",\"ok\":true" : ",\"ok\":false";
  out += ",\"status\":";
  append_integer(out, session.status());
  out += ",\"flags\":";
  append_integer(out, session.flags());
  out += ",\"flag_names\":[";
  if (session.flags() != 0) {
    const std::vector<std::string_view> names = flag_names(session.flags());
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (i != 0) out += ',';
      append_text(out, names[i]);
    }
  }
  out += "],\"outputs\":{";
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    if (i != 0) out += ',';
    append_text(out, spec.outputs[i].key);
    out += ':';
    append_value(out, shown_output(session, i));
  }
  out += "},\"messages\":[";
  for (std::size_t i = 0; i < session.messages().size(); ++i) {
    if (i != 0) out += ',';
    append_text(out, session.messages()[i].text);
  }
  out += "],\"defaulted\":[";
  for (std::size_t i = 0; i < defaulted.size(); ++i) {
    if (i != 0) out += ',';
    append_text(out, spec.inputs[defaulted[i]].key);
  }
  out += "]}";
}

void append_failure(std::string& out, std::string_view message, std::string_view id) {
  out += '{';
  if (!id.empty()) out.append("\"id\":").append(id) += ',';
  out += "\"ok\":false,\"error\":";
  append_text(out, message);
  out += '}';
}

bool read_json_value(Session& session, const Target& target, std::string_view text, const Reading& reading,
                     FUNCTION_ARG& value) {
  JsonCalls::Reader reader;
  const auto begin = [&] {
    reader.reset(JsonCalls::Reader::Place::value);
    reader.begin_value(target.name());
  };
  if (!parse(reader, text, begin)) return false;
  value = argument_of(session, target, reader.current(), reader.cells, reader.pool, reading);
  return true;
}

}  // namespace norvane::cli
