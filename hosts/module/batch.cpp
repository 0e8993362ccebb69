#include "hosts/module/batch.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include "framework/binding.h"
#include "hosts/module/function_state.h"
#include "hosts/module/module.h"
#include "hosts/module/typed_call.h"

namespace norvane::host {
namespace {

using Kind = record::Field::Kind;
using From = PlannedInput::From;
using End = LastCall::End;

constexpr double not_written = std::numeric_limits<double>::quiet_NaN();

// What is calculated at once stays in the processor's nearest memory.
constexpr std::size_t bytes_at_once = 49152;

const Function_CCallerInfo no_cells{};

// A whole number that 32 bits hold, with or without a sign, as the number that a call with them reads.
bool whole(double& value) noexcept {
  if (!(value >= -2147483648.0 && value <= 4294967295.0)) return false;
  const auto number = static_cast<std::int64_t>(value);
  if (static_cast<double>(number) != value) return false;
  value = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
  return true;
}

// One batch on its thread.
class Batch {
 public:
  Batch(const Signature& signature, std::span<const Column> inputs, std::span<double* const> outputs,
        std::uint32_t* statuses, bool* remarked, BatchMemory& memory, void* calculation_memory) noexcept
      : plan_(signature.plan),
        binding_(*signature.spec->binding),
        inputs_(inputs),
        outputs_(outputs),
        statuses_(statuses),
        remarked_(remarked),
        memory_(memory),
        calculation_memory_(calculation_memory),
        altered_(altered_tables(*signature.spec) != nullptr) {}

  // Room for the rows, their structures set up. False when memory is refused.
  bool prepare(const Signature& signature, std::size_t rows) noexcept {
    const std::size_t in = binding_.arguments.size;
    const std::size_t out = binding_.results.size;
    at_once_ = std::clamp<std::size_t>(bytes_at_once / (in + out), 16, BatchMemory::most_rows);
    const std::size_t needed = at_once_ * std::max(in, out);
    if (memory_.capacity < needed) {
      memory_.signature = nullptr;
      memory_.capacity = 0;
      memory_.arguments.reset(new (std::nothrow) std::byte[needed]);
      memory_.results.reset(new (std::nothrow) std::byte[needed]);
      if (memory_.arguments == nullptr || memory_.results == nullptr) return false;
      memory_.capacity = needed;
    }
    if (memory_.signature != &signature) {
      memory_.signature = nullptr;
      memory_.rows = 0;
      try {
        memory_.constant.assign(inputs_.size(), 0);
      } catch (...) {
        return false;
      }
      memory_.signature = &signature;
    }
    // What no line fills keeps the prototype's values from one batch to the next.
    for (; memory_.rows < std::min(rows, at_once_); ++memory_.rows)
      std::memcpy(arguments(memory_.rows), binding_.arguments.prototype, in);
    return true;
  }

  std::size_t run(std::size_t rows) noexcept {
    std::size_t failed = 0;
    for (std::size_t first = 0; first < rows; first += at_once_) {
      const std::size_t count = std::min(at_once_, rows - first);
      std::fill_n(memory_.verdicts, count, Verdict::fits);
      if (remarked_ != nullptr) std::fill_n(remarked_ + first, count, false);
      for (std::size_t i = 0; i < inputs_.size(); ++i) {
        const PlannedInput& input = plan_.inputs[i];
        const Column& column = inputs_[i];
        std::uint16_t& constant = memory_.constant[i];
        if (column.values == nullptr || column.row_step == 0) {
          fill_constant(input, column, count, constant);
          continue;
        }
        constant = 0;
        if (input.from == From::list)
          fill_list(input, column, first, count);
        else
          fill_value(input, column, first, count);
      }
      calculate(first, count);
      deliver(first, count);
      for (std::size_t i = 0; i < count; ++i) failed += statuses_[first + i] != 0;
    }
    return failed;
  }

 private:
  std::byte* arguments(std::size_t row) const noexcept {
    return memory_.arguments.get() + row * binding_.arguments.size;
  }
  std::byte* results(std::size_t row) const noexcept { return memory_.results.get() + row * binding_.results.size; }

  void judge(std::size_t row, Verdict verdict) noexcept {
    Verdict& of_row = memory_.verdicts[row];
    if (of_row == Verdict::fits || verdict == Verdict::outside) of_row = verdict;
  }

  static Verdict accept(const PlannedInput& input, double value, std::byte* structure) noexcept {
    if (input.from != From::number) {
      if (!whole(value)) return Verdict::outside;
      if (input.from == From::truth) value = value != 0.0 ? 1.0 : 0.0;
    }
    return input.accept(value, structure);
  }

  void copy_list(const PlannedInput& input, const double* cells, std::size_t step, std::byte* structure) noexcept {
    std::byte* place = structure + input.offset;
    if (step == 1) {
      std::memcpy(place, cells, input.cells * sizeof(double));
      return;
    }
    for (std::size_t cell = 0; cell < input.cells; ++cell)
      std::memcpy(place + cell * sizeof(double), cells + cell * step, sizeof(double));
  }

  static std::size_t size_of(const PlannedInput& input) noexcept {
    switch (input.kind) {
      case Kind::none: return 0;
      case Kind::whole: return sizeof(int);
      case Kind::truth: return sizeof(bool);
      default: return input.cells * sizeof(double);
    }
  }

  // The same for all rows: into the first of them, and from there into those that do not have it yet.
  void fill_constant(const PlannedInput& input, const Column& column, std::size_t count,
                     std::uint16_t& constant) noexcept {
    std::byte* const structure = arguments(0);
    const std::size_t size = size_of(input);
    alignas(double) std::byte before[largest_list * sizeof(double)];
    std::memcpy(before, structure + input.offset, size);
    Verdict verdict = Verdict::fits;
    if (input.from != From::list) {
      verdict = column.values != nullptr ? accept(input, *column.values, structure)
                                         : input.accept(input.otherwise, structure);
    } else if (column.values != nullptr) {
      copy_list(input, column.values, column.cell_step, structure);
      verdict = input.judge(structure);
    } else {
      const auto* prototype = static_cast<const std::byte*>(binding_.arguments.prototype);
      std::memcpy(structure + input.offset, prototype + input.offset, size);
    }
    if (constant == 0 || std::memcmp(before, structure + input.offset, size) != 0) constant = 1;
    for (; constant < count; ++constant)
      std::memcpy(arguments(constant) + input.offset, structure + input.offset, size);
    if (verdict == Verdict::fits) return;
    for (std::size_t i = 0; i < count; ++i) judge(i, verdict);
  }

  void fill_value(const PlannedInput& input, const Column& column, std::size_t first, std::size_t count) noexcept {
    const double* values = column.values + first * column.row_step;
    if (input.plain()) {
      for (std::size_t i = 0; i < count; ++i) {
        const double value = values[i * column.row_step];
        if (value < input.low || value > input.high) judge(i, Verdict::outside);
        const double stored = input.to != nullptr ? input.to(value) : value;
        std::memcpy(arguments(i) + input.offset, &stored, sizeof stored);
      }
      return;
    }
    for (std::size_t i = 0; i < count; ++i) judge(i, accept(input, values[i * column.row_step], arguments(i)));
  }

  void fill_list(const PlannedInput& input, const Column& column, std::size_t first, std::size_t count) noexcept {
    const double* cells = column.values + first * column.row_step;
    for (std::size_t i = 0; i < count; ++i)
      copy_list(input, cells + i * column.row_step, column.cell_step, arguments(i));
    if (!input.judged()) return;
    for (std::size_t i = 0; i < count; ++i) judge(i, input.judge(arguments(i)));
  }

  void calculate(std::size_t first, std::size_t count) noexcept {
    std::fill_n(memory_.done, count, false);
    fill_with_prototypes(count);
    if (binding_.calculate_rows != nullptr && !altered_) calculate_together(count);
    std::fill_n(statuses_ + first, count, 0);
    std::copy_n(memory_.done, count, memory_.delivered);
    for (std::size_t i = 0; i < count; ++i)
      if (!memory_.done[i])
        calculate_one(i, statuses_[first + i], remarked_ != nullptr ? remarked_ + first + i : nullptr);
  }

  void fill_with_prototypes(std::size_t count) noexcept {
    const std::size_t size = binding_.results.size;
    std::memcpy(results(0), binding_.results.prototype, size);
    for (std::size_t filled = 1; filled < count; filled *= 2)
      std::memcpy(results(filled), results(0), std::min(filled, count - filled) * size);
  }

  void calculate_together(std::size_t count) noexcept {
    Verdict* const end = memory_.verdicts + count;
    Verdict* const good = std::find(memory_.verdicts, end, Verdict::fits);
    if (good == end) return;
    // A row that is not to be calculated repeats one that is, so that the routine meets none that does not fit.
    const auto spare = static_cast<std::size_t>(good - memory_.verdicts);
    bool all = true;
    for (std::size_t i = 0; i < count; ++i) {
      if (memory_.verdicts[i] == Verdict::fits) continue;
      std::memcpy(arguments(i), arguments(spare), binding_.arguments.size);
      all = false;
    }
    binding_.calculate_rows(arguments(0), results(0), memory_.done, count, calculation_memory_);
    for (std::size_t i = 0; i < count; ++i) {
      if (!all && memory_.verdicts[i] != Verdict::fits) memory_.done[i] = false;
      // What the routine left behind where it was not done is nothing to go on from.
      if (!memory_.done[i]) std::memcpy(results(i), binding_.results.prototype, binding_.results.size);
    }
  }

  void calculate_one(std::size_t row, std::uint32_t& status, bool* remarked) noexcept {
    switch (memory_.verdicts[row]) {
      case Verdict::fits: break;
      case Verdict::misfit: status = argument_error; return;
      default: status = batch_not_run; return;
    }
    if (altered_) {
      status = calculation_error;
      return;
    }
    const Outcome outcome = binding_.calculate(arguments(row), results(row), calculation_memory_);
    if (outcome.status == refused) {
      memory_.verdicts[row] = Verdict::refused;
      status = batch_not_run;
      return;
    }
    status = static_cast<std::uint32_t>(outcome.status);
    if (remarked != nullptr) *remarked = outcome.text[0] != u'\0';
    memory_.delivered[row] = outcome.good() || outcome.delivered;
  }

  static bool finite(double value) noexcept { return value - value == 0.0; }

  bool take_back_later(std::size_t row) noexcept {
    memory_.verdicts[row] = Verdict::refused;
    memory_.delivered[row] = false;
    return true;
  }

  // The numbers as they are. False when one of them is not finite.
  bool copy_numbers(const PlannedOutput& output, double* to, std::size_t count) const noexcept {
    const std::byte* from = results(0) + output.offset;
    const std::size_t step = binding_.results.size;
    constexpr std::uint64_t exponent = 0x7FF0000000000000;
    bool all_finite = true;
    for (std::size_t i = 0; i < count; ++i, from += step) {
      std::uint64_t value;
      std::memcpy(&value, from, sizeof value);
      all_finite &= (value & exponent) != exponent;
      if (to != nullptr) std::memcpy(to + i, &value, sizeof value);
    }
    return all_finite;
  }

  // A number of rows that all have it. False when one of them is not finite.
  bool deliver_numbers(const PlannedOutput& output, double* to, std::size_t first, std::size_t count) noexcept {
    if (output.from == nullptr && remarked_ == nullptr && copy_numbers(output, to, count)) return true;
    bool good = true;
    for (std::size_t i = 0; i < count; ++i) {
      double value = output.load<double>(results(i));
      if (output.from != nullptr) value = output.from(value);
      if (remarked_ != nullptr && !output.plausible(value)) remarked_[first + i] = true;
      if (!finite(value)) good = !take_back_later(i);
      if (to != nullptr) to[i] = value;
    }
    return good;
  }

  void deliver(std::size_t first, std::size_t count) noexcept {
    bool broken = false;
    const bool all_delivered =
        std::find(memory_.delivered, memory_.delivered + count, false) == memory_.delivered + count;
    for (std::size_t k = 0; k < outputs_.size(); ++k) {
      const PlannedOutput& output = plan_.outputs[k];
      double* const to = outputs_[k] != nullptr ? outputs_[k] + first : nullptr;
      // Also one that is not wanted: that it is no finite number refuses the call.
      if (to == nullptr && output.kind != Kind::number) continue;
      if (output.kind == Kind::number && all_delivered) {
        broken = !deliver_numbers(output, to, first, count) || broken;
        continue;
      }
      for (std::size_t i = 0; i < count; ++i) {
        double value = not_written;
        if (output.kind != Kind::none &&
            (memory_.delivered[i] || (output.with_any_status && memory_.verdicts[i] <= Verdict::misfit))) {
          value = output.value(results(i));
          if (remarked_ != nullptr && output.kind == Kind::number && !output.plausible(value))
            remarked_[first + i] = true;
          if (!finite(value)) broken = take_back_later(i);
        }
        if (to != nullptr) to[i] = value;
      }
    }
    if (broken) take_back(first, count);
  }

  void take_back(std::size_t first, std::size_t count) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
      if (memory_.verdicts[i] != Verdict::refused) continue;
      statuses_[first + i] = batch_not_run;
      for (double* output : outputs_)
        if (output != nullptr) output[first + i] = not_written;
    }
  }

  const CallPlan& plan_;
  const record::Binding& binding_;
  std::span<const Column> inputs_;
  std::span<double* const> outputs_;
  std::uint32_t* statuses_;
  bool* remarked_;
  BatchMemory& memory_;
  void* calculation_memory_;
  bool altered_;  // the coefficient tables: no row is calculated
  std::size_t at_once_ = 0;
};

// Why the batch cannot be, as the rest of a sentence; empty when it can.
struct Complaint {
  const char16_t* text = u"";
  std::size_t number = 0;
  std::size_t record = LastCall::no_record;
};

constexpr Complaint no_memory{u"not enough memory for a batch"};

bool spans_memory(const Column& column, std::size_t rows, std::size_t cells) noexcept {
  constexpr std::size_t most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(double);
  const auto reach = [](std::size_t count, std::size_t step) {
    return count < 2 || step == 0 ? 0 : (step > most / (count - 1) ? most : (count - 1) * step);
  };
  return reach(rows, column.row_step) + reach(cells, column.cell_step) < most;
}

Complaint complaint_of(const PlannedInput& input, const Column& column, std::size_t rows) noexcept {
  const bool list = input.from == From::list;
  if (column.values == nullptr) {
    if (list && !input.may_be_left_out) return {u"needs a list of % numbers", input.cells, input.record};
    if (!list && !input.has_default) return {u"cannot be left out: it has no default", 0, input.record};
    return {};
  }
  if (!list && column.cells != 1) return {u"is a single value: its cells must be 1", 0, input.record};
  if (column.cells < input.cells) return {u"needs a list of % numbers", input.cells, input.record};
  if (column.cells > TypedCall::longest_list)
    return {u"is not a list of at most % numbers", TypedCall::longest_list, input.record};
  if (!spans_memory(column, rows, column.cells)) return {u"is larger than any memory", 0, input.record};
  return {};
}

Complaint complaint_of(const Signature& signature, std::size_t rows, std::span<const Column> inputs,
                       std::span<double* const> outputs, const std::uint32_t* statuses) noexcept {
  const CallPlan& plan = signature.plan;
  if (!plan.complete) return {u"cannot be called in batches"};
  if (inputs.size() != plan.inputs.size()) return {u"takes % inputs", plan.inputs.size()};
  if (outputs.size() != plan.outputs.size()) return {u"has % outputs behind the status", plan.outputs.size()};
  if (inputs.data() == nullptr && !inputs.empty()) return {u"the inputs are missing"};
  if (outputs.data() == nullptr && !outputs.empty()) return {u"the outputs are missing"};
  if (statuses == nullptr && rows != 0) return {u"the statuses have no place to go to"};
  if (!spans_memory({nullptr, 1, 1, 0}, rows, 1)) return {u"has more rows than any memory"};
  for (std::size_t i = 0; i < inputs.size(); ++i)
    if (const Complaint complaint = complaint_of(plan.inputs[i], inputs[i], rows); *complaint.text != u'\0')
      return complaint;
  return {};
}

std::size_t refuse(LastCall& last, const Signature& signature, const Complaint& complaint) noexcept {
  last = {End::no_batch, signature.spec, nullptr, complaint.record, complaint.text, complaint.number};
  return batch_refused;
}

}  // namespace

std::size_t run_batch(const Signature& signature, std::size_t rows, std::span<const Column> inputs,
                      std::span<double* const> outputs, std::uint32_t* statuses, bool* remarked) noexcept {
  const FloatingPointGuard guard;
  HeldContext held(&no_cells);
  if (!held) return batch_refused;
  ThreadState& state = held.state();
  const Complaint complaint = complaint_of(signature, rows, inputs, outputs, statuses);
  if (*complaint.text != u'\0') return refuse(state.last_call, signature, complaint);
  FunctionState* function = state.function_state(signature);
  BatchMemory* memory = state.batch_memory();
  if (function == nullptr || memory == nullptr) return refuse(state.last_call, signature, no_memory);
  Batch batch(signature, inputs, outputs, statuses, remarked, *memory, function->memory);
  if (!batch.prepare(signature, rows)) return refuse(state.last_call, signature, no_memory);
  return batch.run(rows);
}

std::size_t refuse_unknown_batch() noexcept {
  if (ThreadState* state = thread_state())
    state->last_call = {End::no_batch, nullptr, nullptr, LastCall::no_record, u"there is no such function", 0};
  return batch_refused;
}

}  // namespace norvane::host
