#include "framework/binding.h"

#include <cstring>

#include "core/coefficients.h"
#include "core/text_buffer.h"
#include "framework/call.h"
#include "framework/data_accessor.h"

namespace norvane {
namespace {

using Kind = record::Field::Kind;
using Message = TextBuffer<320>;

template <class Value>
void store(std::byte* structure, const Function_CPlace& place, Value value) noexcept {
  std::memcpy(structure + place.offset, &value, sizeof value);
}

template <class Value>
Value load(const std::byte* structure, const Function_CPlace& place) noexcept {
  Value value;
  std::memcpy(&value, structure + place.offset, sizeof value);
  return value;
}

// The option that a number stands for: whole numbers are what it is truncated to. False for a NaN and for anything
// outside the list; 0.5 is not 0.
bool option_of(const Function_CInput& input, double given, int& option) noexcept {
  const bool whole = given > -2147483649.0 && given < 2147483648.0;
  option = whole ? static_cast<int>(given) : 0;
  if (!input.has_list()) return true;
  return whole && given >= input.minimum && option <= input.maximum;
}

void report_misfit(Call& call, std::size_t index, const Function_CInput& input) noexcept {
  if (!call.context().messages_enabled()) return;
  Message text;
  text << (input.place.kind == Kind::numbers ? u"has a cell outside its limits (" : u"is not one of the options (");
  if (input.choices.empty()) {
    text << input.minimum << u" to " << input.maximum;
  } else {
    for (const record::Option& choice : input.choices) {
      if (&choice != input.choices.data()) text << u"; ";
      text << choice.number << u": " << choice.label;
    }
  }
  text << u")";
  call.context().ReportError(index, text.view());
}

// A list of numbers; with bounds in the record each of its cells is held to them.
bool read_list(Call& call, std::size_t index, const Function_CInput& input, std::byte* structure) noexcept {
  const FUNCTION_ARG* arg = call.argument(index);
  if (input.may_be_left_out && (arg == nullptr || arg->kind == ARG_MISSING || arg->kind == ARG_EMPTY ||
                                (arg->kind == ARG_ARRAY && arg->count() == 0)))
    return true;
  double cells[largest_list];
  const std::span<double> values(cells, input.place.count);
  if (!call.numbers(index, values)) return true;  // the reader has noted the failure
  std::memcpy(structure + input.place.offset, cells, values.size_bytes());
  if (!input.has_minimum() && !input.has_maximum()) return true;
  for (double value : values)
    if (!(value >= input.minimum && value <= input.maximum)) return false;
  return true;
}

// The input that filled the blamed member, or none.
struct Blamed {
  const Function_CInput* input = nullptr;
  std::size_t index = 0;
  std::size_t cell = 0;
};

Blamed blamed_of(const Function_CFunctionSpec& spec, const std::byte* structure, const void* member) noexcept {
  if (member == nullptr) return {};
  const auto* at = static_cast<const std::byte*>(member);
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CPlace& place = spec.inputs[i].place;
    if (place.kind == Kind::none) continue;
    const std::byte* begin = structure + place.offset;
    if (at == begin) return {&spec.inputs[i], i, 0};
    if (place.kind == Kind::numbers && at > begin && at < begin + place.count * sizeof(double))
      return {&spec.inputs[i], i, static_cast<std::size_t>(at - begin) / sizeof(double)};
  }
  return {};
}

// The outcome's sentence with its limits in the blamed input's unit.
void explain(Call& call, const Function_CFunctionSpec& spec, const Outcome& outcome,
             const std::byte* structure) noexcept {
  Function_CContext& context = call.context();
  if (!context.messages_enabled() || outcome.text[0] == u'\0') return;
  const Blamed blamed = blamed_of(spec, structure, outcome.member);
  const record::Conversion* conversion = blamed.input != nullptr ? blamed.input->place.conversion : nullptr;
  Message text;
  if (blamed.cell != 0) text << u"cell " << blamed.cell + 1 << u" ";
  std::size_t limit = 0;
  const std::u16string_view sentence = outcome.text;
  std::size_t last = sentence.rfind(u'%');
  for (std::size_t i = 0; i < sentence.size(); ++i) {
    if (sentence[i] == u'$') {
      for (const char unit : outcome.name) text << static_cast<char16_t>(unit);
    } else if (sentence[i] == u'%' && limit < std::size(outcome.limits)) {
      const double value = outcome.limits[limit++];
      text << (conversion != nullptr ? conversion->from(value) : value);
      std::u16string_view symbol;
      if (i == last && blamed.input != nullptr && kind_of_code(blamed.input->type) == CodeKind::unit &&
          context.units().TextOfCode(blamed.input->type, symbol) == UNIT_OK)
        text << u" " << symbol;
    } else {
      text << sentence.substr(i, 1);
    }
  }
  if (outcome.status == success)
    context.ReportWarning(text.view());
  else if (blamed.input != nullptr)
    context.ReportError(blamed.index, text.view());
  else
    context.ReportError(text.view());
}

Outcome altered(const Function_CFunctionSpec& spec) noexcept {
  const CoefficientSet* set = altered_tables(spec);
  if (set == nullptr) return {};
  return failure(calculation_error,
                 u"the coefficient tables of $ are not those this library was built with: nothing is calculated")
      .naming(set->standard());
}

// A calculation that fails on a number that is none may see it too late to say whose it was.
void blame_what_is_not_finite(Call& call, const Function_CFunctionSpec& spec, const Outcome& outcome,
                              const std::byte* structure) noexcept {
  if (outcome.good() || !call.context().messages_enabled()) return;
  const Blamed blamed = blamed_of(spec, structure, outcome.member);
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CPlace& place = spec.inputs[i].place;
    const std::size_t cells = place.kind == Kind::number ? 1 : place.kind == Kind::numbers ? place.count : 0;
    for (std::size_t cell = 0; cell < cells; ++cell) {
      double value;
      std::memcpy(&value, structure + place.offset + cell * sizeof value, sizeof value);
      if (value - value == 0.0 || blamed.input == &spec.inputs[i]) continue;
      call.context().ReportError(i, u"is not a finite number");
      break;
    }
  }
}

// A good status does not make a good number: what no meter can have is delivered, and said.
void warn_of(Call& call, const Function_COutput& line, double value) noexcept {
  if (!call.context().messages_enabled() || !(value - value == 0.0)) return;
  std::u16string_view symbol;
  if (kind_of_code(line.type) != CodeKind::unit || call.context().units().TextOfCode(line.type, symbol) != UNIT_OK)
    symbol = {};
  Message text;
  text << u"output " << line.key << u" is " << value << (symbol.empty() ? u"" : u" ") << symbol
       << u", which is not physically possible (" << line.plausible_low << u" to " << line.plausible_high << u")";
  call.context().ReportWarning(text.view());
}

void deliver(Call& call, std::size_t index, const Function_COutput& line, const std::byte* results) noexcept {
  const Function_CPlace& place = line.place;
  switch (place.kind) {
    case Kind::number: {
      double value = load<double>(results, place);
      if (place.conversion != nullptr) value = place.conversion->from(value);
      if (!(value >= line.plausible_low && value <= line.plausible_high)) warn_of(call, line, value);
      call.set(index, value);
      break;
    }
    case Kind::whole: call.set_integer(index, load<int>(results, place)); break;
    case Kind::truth: call.set_integer(index, load<bool>(results, place) ? 1 : 0); break;
    default: break;
  }
}

}  // namespace

const CoefficientSet* altered_tables(const Function_CFunctionSpec& spec) noexcept {
  for (const CoefficientSet* set : spec.coefficients)
    if (!set->intact()) return set;
  return nullptr;
}

std::uint32_t run_bound(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                        FUNCTION_ARG& output) noexcept {
  const Function_CFunctionSpec& spec = *context.specification();
  const record::Binding& binding = *spec.binding;
  Call call(context, args, count, output);

  alignas(std::max_align_t) std::byte arguments[largest_structure];
  std::memcpy(arguments, binding.arguments.prototype, binding.arguments.size);
  constexpr std::size_t none = static_cast<std::size_t>(-1);
  std::size_t misfit = none;
  bool refuse_call = false;
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    const Function_CInput& input = spec.inputs[i];
    const Function_CPlace& place = input.place;
    switch (place.kind) {
      case Kind::none: break;
      case Kind::number: {
        const double given = call.number(i);
        store(arguments, place, place.conversion != nullptr ? place.conversion->to(given) : given);
        break;
      }
      case Kind::whole:
      case Kind::truth: {
        if (input.type == data_type::boolean) {
          store(arguments, place, call.boolean(i));
          break;
        }
        const double given = call.number(i);
        int option = 0;
        bool fits = option_of(input, given, option) || input.misfit == record::Misfit::pass;
        if (place.kind == Kind::truth) {
          fits = given == 0.0 || given == 1.0;
          store(arguments, place, given == 1.0);
        } else {
          store(arguments, place, option);
        }
        if (!fits && misfit == none) {
          misfit = i;
          refuse_call = input.misfit == record::Misfit::refuse;
        }
        break;
      }
      case Kind::numbers:
        if (!read_list(call, i, input, arguments) && misfit == none) {
          misfit = i;
          refuse_call = true;
        }
        break;
    }
  }
  std::u16string_view name;
  if (binding.remember != nullptr && spec.name_input >= 0) name = call.text(spec.name_input);
  if (call.failed()) return call.error();
  if (misfit != none) {
    const Function_CInput& input = spec.inputs[misfit];
    report_misfit(call, misfit, input);
    if (refuse_call) return ERROR_VALUE;
  }

  void* memory = nullptr;
  Function_CDataAccessor accessor;
  if (binding.remember != nullptr && misfit == none) {
    if (!accessor.Open(context, *spec.memory_type, name)) return ERROR_ACCESSOR;
    memory = binding.memory_of(*accessor.data());
  }

  alignas(std::max_align_t) std::byte results[largest_structure];
  std::memcpy(results, binding.results.prototype, binding.results.size);
  Outcome outcome;
  if (misfit != none) {
    outcome.status = argument_error;
  } else {
    outcome = altered(spec);
    if (outcome.good()) outcome = binding.calculate(arguments, results, memory);
    explain(call, spec, outcome, arguments);
    blame_what_is_not_finite(call, spec, outcome, arguments);
    if (outcome.status == refused) return ERROR_VALUE;
  }

  const bool all = outcome.good() || outcome.delivered;
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    const Function_COutput& line = spec.outputs[i];
    if (line.role == 1)
      call.set_integer(i, outcome.status);
    else if (all || line.with_any_status)
      deliver(call, i, line, results);
  }
  return call.done();
}

}  // namespace norvane
