#include "hosts/module/call_plan.h"

#include <algorithm>

#include "framework/binding.h"
#include "hosts/module/signature.h"

namespace norvane::host {
namespace {

using Kind = record::Field::Kind;
using From = PlannedInput::From;

template <class Value>
void store(std::byte* place, Value value) noexcept {
  std::memcpy(place, &value, sizeof value);
}

// False when the context asks more of this input than a plan can tell.
bool plan_input(const Function_CFunctionSpec& spec, std::size_t index, PlannedInput& to) {
  const Function_CInput& input = spec.inputs[index];
  to.record = index;
  to.kind = input.place.kind;
  to.offset = input.place.offset;
  to.to = input.place.conversion != nullptr ? input.place.conversion->to : nullptr;
  to.misfit = input.misfit;
  to.members = input.members;
  if (!spec.has(FUNCTION_NO_RANGE_CHECK)) {
    if (input.enumerated && !input.members_known) return false;
    to.enumerated = input.enumerated;
    if (input.has_minimum()) to.low = input.minimum;
    if (input.has_maximum()) to.high = input.maximum;
  }
  to.first = input.minimum;
  to.last = input.maximum;
  switch (input.type) {
    case data_type::text:
    case data_type::ipaddr:
    case data_type::date:
    case data_type::unit:
    case data_type::enumeration: return false;
    default: break;
  }
  const Passing passing = passing_of(input);
  if (passing == Passing::text || (passing == Passing::range) != (to.kind == Kind::numbers)) return false;
  if (passing == Passing::range) {
    to.from = From::list;
    to.cells = input.place.count;
    to.listed = input.has_minimum() || input.has_maximum();
    // Left out it has no first cell for the bounds.
    to.may_be_left_out = input.may_be_left_out && (spec.has(FUNCTION_NO_RANGE_CHECK) || !input.checked);
    return !input.enumerated && input.default_value.empty();
  }
  to.from = passing == Passing::number ? From::number : From::option;
  to.listed = input.has_list();
  if (input.type == data_type::boolean) {
    to.from = From::truth;
    if (to.kind == Kind::number || to.kind == Kind::whole) return false;
  }
  const FUNCTION_ARG& otherwise = input.ready_default;
  to.has_default = input.optional() && (otherwise.kind == ARG_NUMBER || otherwise.kind == ARG_BOOLEAN);
  if (to.has_default) to.otherwise = otherwise.kind == ARG_NUMBER ? otherwise.number : otherwise.boolean != 0;
  return true;
}

bool plan_output(const Function_COutput& output, PlannedOutput& to) {
  to.kind = output.place.kind;
  to.offset = output.place.offset;
  to.from = output.place.conversion != nullptr ? output.place.conversion->from : nullptr;
  to.with_any_status = output.with_any_status;
  constexpr double most = std::numeric_limits<double>::max();
  to.plausible_low = std::max(output.plausible_low, -most);
  to.plausible_high = std::min(output.plausible_high, most);
  const Passing passing = passing_of(output);
  to.wide = passing != Passing::option;
  if (passing == Passing::option) return output.role != 1 && to.kind != Kind::number;
  return output.role != 1 && passing == Passing::number;
}

}  // namespace

Verdict PlannedInput::accept(double given, std::byte* structure) const noexcept {
  if (given < low || given > high) return Verdict::outside;
  if (enumerated) {
    const bool small = given >= 0.0 && given < 64.0;
    const auto number = static_cast<unsigned>(small ? given : 0.0);
    if (!small || given != number || (members >> number & 1) == 0) return Verdict::outside;
  }
  std::byte* const place = structure + offset;
  bool fits = true;
  switch (kind) {
    case Kind::number: store(place, to != nullptr ? to(given) : given); break;
    case Kind::truth:
      store(place, from == From::truth ? given != 0.0 : given == 1.0);
      fits = from == From::truth || given == 0.0 || given == 1.0;
      break;
    case Kind::whole: {
      const bool whole = given > -2147483649.0 && given < 2147483648.0;
      const int option = whole ? static_cast<int>(given) : 0;
      store(place, option);
      fits = !listed || (whole && given >= first && option <= last) || misfit == record::Misfit::pass;
      break;
    }
    default: break;
  }
  if (fits) return Verdict::fits;
  return misfit == record::Misfit::refuse ? Verdict::refused : Verdict::misfit;
}

Verdict PlannedInput::judge(const std::byte* structure) const noexcept {
  for (std::size_t i = 0; i < cells; ++i) {
    double cell;
    std::memcpy(&cell, structure + offset + i * sizeof cell, sizeof cell);
    if (i == 0 && (cell < low || cell > high)) return Verdict::outside;
    if (!listed) return Verdict::fits;
    if (!(cell >= first && cell <= last)) return Verdict::refused;
  }
  return Verdict::fits;
}

CallPlan make_call_plan(const Function_CFunctionSpec& spec) {
  CallPlan plan;
  plan.complete = spec.binding != nullptr && spec.implementation == &run_bound && spec.output_count > 1 &&
                  spec.outputs[0].role == 1 && !spec.has(FUNCTION_VARIABLE_INPUTS) && !spec.has(FUNCTION_RETENTIVE) &&
                  !spec.has(FUNCTION_NO_VALIDATION);
  if (!plan.complete) return plan;
  for (std::size_t i = 0; i < spec.input_count; ++i) {
    if (static_cast<std::int32_t>(i) == spec.name_input) continue;
    plan.complete = plan_input(spec, i, plan.inputs.emplace_back()) && plan.complete;
  }
  for (std::size_t i = 1; i < spec.output_count; ++i)
    plan.complete = plan_output(spec.outputs[i], plan.outputs.emplace_back()) && plan.complete;
  return plan;
}

}  // namespace norvane::host
