// A calculation that is measured in several ways, each with the same states.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#define NORVANE_BUILD
#include <norvane.h>

namespace norvane::bench {

inline constexpr std::size_t state_count = 512;  // of a case; calls take them in turn
inline constexpr std::size_t most_outputs = 32;

// What is measured: the plain transcription, the algorithm alone, a call of the context, of the C export, of a
// worksheet's wrapper, a row of the batch export.
enum class Ways : std::size_t { plain, algorithm, context, direct, wrapper, batch, count };
inline constexpr std::size_t way_count = static_cast<std::size_t>(Ways::count);

struct Way {
  std::function<void(std::size_t calls)> run;
  std::function<void(std::size_t state, double* out)>
      answer;  // in the order of the function's outputs; to be compared

  explicit operator bool() const { return static_cast<bool>(run); }
};

struct Case {
  std::string group, what;
  std::array<Way, way_count> ways{};
  std::vector<std::size_t> compared{};  // outputs, from 0 behind the status
  double tolerance = 1e-12;             // of them, relative, of the plain transcription

  Way& operator[](Ways way) { return ways[static_cast<std::size_t>(way)]; }
};

// A value that the compiler must take for used.
template <class Value>
inline void keep(const Value& value) {
  asm volatile("" : : "g"(&value) : "memory");
}

// ---- States ------------------------------------------------------------------------------------------------------

// An input: a number or list a state, or one for all.
struct Column {
  std::vector<double> values;
  std::size_t row_step = 0, cells = 1;

  const double* at(std::size_t state) const { return values.data() + state * row_step; }
};
using Columns = std::shared_ptr<const std::vector<Column>>;

inline Column same(double value) { return {{value}}; }
template <class List>
Column same_list(const List& list) {
  return {{list.begin(), list.end()}, 0, list.size()};
}
// Numbers spread over a range, in no order.
inline Column spread(double low, double high, std::size_t stride) {
  Column column{std::vector<double>(state_count), 1};
  for (std::size_t i = 0; i < state_count; ++i)
    column.values[i] = low + (high - low) * static_cast<double>(i * stride % state_count) / state_count;
  return column;
}

// ---- Ways --------------------------------------------------------------------------------------------------------

// `call` answers prepared arguments, `deliver` puts what it answers into the order of the outputs.
template <class Arguments, class Call, class Deliver>
Way timed(const std::shared_ptr<const std::vector<Arguments>>& prepared, const Call& call, const Deliver& deliver) {
  return {[prepared, call](std::size_t calls) {
            for (std::size_t i = 0; i < calls; ++i) keep(call((*prepared)[i % state_count]));
          },
          [prepared, call, deliver](std::size_t state, double* out) { deliver(call((*prepared)[state]), out); }};
}

// A C export; its parameters are those of the columns, lists followed by their counts, then pointers for the outputs.
template <class... Parameter>
Way direct(std::uint32_t (*function)(Parameter...), const Columns& columns) {
  struct Outputs {
    double numbers[most_outputs];
    std::uint32_t codes[most_outputs];
  };
  using Call = std::tuple<Parameter...>;
  const auto outputs = std::make_shared<Outputs>();
  const auto calls = std::make_shared<std::vector<Call>>();
  for (std::size_t i = 0; i < state_count; ++i) {
    std::size_t input = 0, output = 0;
    bool list = false;
    const auto next = [&]<class T>(std::type_identity<T>) -> T {
      if constexpr (std::is_same_v<T, double*>) {
        return &outputs->numbers[output++];
      } else if constexpr (std::is_same_v<T, std::uint32_t*>) {
        return &outputs->codes[output++];
      } else if constexpr (std::is_same_v<T, const double*>) {
        list = true;
        return (*columns)[input].at(i);
      } else {
        const Column& column = (*columns)[input++];
        return static_cast<T>(std::exchange(list, false) ? static_cast<double>(column.cells) : *column.at(i));
      }
    };
    calls->push_back(Call{next(std::type_identity<Parameter>{})...});
  }
  return {[=](std::size_t count) {
            for (std::size_t i = 0; i < count; ++i) keep(std::apply(function, (*calls)[i % state_count]));
          },
          [=](std::size_t state, double* out) {
            *outputs = {};
            const bool good = std::apply(function, (*calls)[state]) == 0;
            for (std::size_t k = 0; k < most_outputs; ++k) out[k] = good ? outputs->numbers[k] : std::nan("");
          }};
}

using BatchExport = std::size_t (*)(std::size_t, const norvane_column*, std::size_t, double* const*, std::size_t,
                                    std::uint32_t*);
// Blocks of `rows` rows (state_count at most); their time is that of a row.
Way batch(BatchExport function, const Columns& columns, std::size_t output_count, std::size_t rows = state_count);

// A call through the context, and one of a worksheet. Empty where there is no such function or host.
Way context(std::u16string_view id, const Columns& columns);
Way wrapper(std::u16string_view id, const Columns& columns);

// Everything that the function of this name is measured in besides the plain transcription and the algorithm.
template <class... Parameter>
void add_hosts(Case& made, std::u16string_view id, const Columns& columns, std::uint32_t (*function)(Parameter...),
               BatchExport rows) {
  constexpr std::size_t outputs =
      ((std::is_same_v<Parameter, double*> || std::is_same_v<Parameter, std::uint32_t*> ? 1 : 0) + ...);
  static_assert(outputs <= most_outputs);
  made[Ways::context] = context(id, columns);
  made[Ways::direct] = direct(function, columns);
  made[Ways::wrapper] = wrapper(id, columns);
  made[Ways::batch] = batch(rows, columns, outputs);
}

// ---- The cases ---------------------------------------------------------------------------------------------------

std::vector<Case> all_cases();
// With a gas of 1, 5, 11 or 21 components, one for all states or one a state.
Case aga8_case(std::size_t components, bool gas_a_row);
Case aga10_case(std::size_t components, bool gas_a_row);
Case gerg_case(std::size_t components, bool gas_a_row);
// The inputs of aga8_case.
std::vector<Column> aga8_columns(std::size_t components, bool gas_a_row);

}  // namespace norvane::bench
