// Binding: how the lines of a record meet the structures of a calculation.
//
//   struct Meter { double period; double temperature; bool corrected; };          // arguments
//   struct Density { double corrected; };                                         // results
//   Outcome density(const Meter& meter, Density& density) noexcept;
//
//   constexpr record::Input inputs[] = {
//       record::name_input(),
//       in<&Meter::period>(input(u"periodic time", u"Periodic Time", u"", unit::us).otherwise(650)),
//       in<&Meter::temperature>(input(u"temperature", u"Temperature", u"", unit::degF)).through(fahrenheit),
//       ...
//   constexpr record::Output outputs[] = {
//       record::status_output(),
//       out<&Density::corrected>(output(u"cor density", ...)),
//   ...
//   .inputs = inputs, .outputs = outputs, .binding = &bound<density>
//
// A line names the member it fills or delivers, so that two lines can change places and their members cannot. The
// calculation may take a third argument: what it keeps from one call of the same name or calling place to the next.
//
// A calculation that is faster for many rows at once has a second routine, `bound<density, density_rows>`:
//
//   void density_rows(const Meter* meters, Density* densities, bool* done, std::size_t rows) noexcept;
//
// and a memory behind that when `density` has one. It sets done[i] where densities[i] is bit for bit what `density`
// answers for meters[i], with status 0 and no remark; the other rows are calculated by `density` itself.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <tuple>
#include <type_traits>

#include "core/outcome.h"
#include "framework/records.h"
#include "framework/retentive.h"

namespace norvane {

class CoefficientSet;
class Function_CContext;
class Function_CFunctionSpec;

// Structures of a calculation are copied as bytes into places of this size.
inline constexpr std::size_t largest_structure = 1024;
// Cells of the longest list.
inline constexpr std::size_t largest_list = 32;

// The standard whose coefficient tables are not those that the library was built with, of those that the function's
// numbers come from; null when all are. Nothing is calculated with altered tables.
const CoefficientSet* altered_tables(const Function_CFunctionSpec& spec) noexcept;

// The implementation of every function that has a binding.
std::uint32_t run_bound(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                        FUNCTION_ARG& output) noexcept;

namespace binding {

template <class Structure>
inline constexpr char identity_of = 0;

template <class Pointer>
struct Member;
template <class Owner_, class Type_>
struct Member<Type_ Owner_::*> {
  using Owner = Owner_;
  using Type = Type_;
};
template <auto pointer>
using OwnerOf = typename Member<decltype(pointer)>::Owner;
template <auto pointer>
using TypeOf = typename Member<decltype(pointer)>::Type;

template <auto first, auto... rest>
void* follow(void* structure) {
  auto& member = static_cast<OwnerOf<first>*>(structure)->*first;
  if constexpr (sizeof...(rest) == 0)
    return &member;
  else
    return follow<rest...>(&member);
}

template <auto first, auto... rest>
struct LastOf {
  using Type = typename LastOf<rest...>::Type;
};
template <auto last>
struct LastOf<last> {
  using Type = TypeOf<last>;
};

template <class Type>
struct ListLength : std::integral_constant<std::size_t, 0> {};
template <std::size_t N>
struct ListLength<std::array<double, N>> : std::integral_constant<std::size_t, N> {};

template <class Type>
constexpr record::Field::Kind kind_of() {
  using Kind = record::Field::Kind;
  if constexpr (std::is_same_v<Type, double>)
    return Kind::number;
  else if constexpr (std::is_same_v<Type, bool>)
    return Kind::truth;
  else if constexpr (ListLength<Type>::value != 0)
    return Kind::numbers;
  else {
    static_assert((std::is_same_v<Type, int> || std::is_enum_v<Type>)&&sizeof(Type) == sizeof(int),
                  "a member is a double, a bool, an int, an enumeration of an int, or an array of doubles");
    return Kind::whole;
  }
}

template <auto... path>
constexpr record::Field field() {
  using Type = typename LastOf<path...>::Type;
  constexpr auto first = std::get<0>(std::tuple{path...});
  return {kind_of<Type>(), static_cast<std::uint16_t>(ListLength<Type>::value), nullptr, &follow<path...>,
          &identity_of<OwnerOf<first>>};
}

// A member that no chain of pointers reaches, such as a place in a list.
template <class Structure, class Type>
constexpr record::Field field_of(record::Field::Step member) {
  return {kind_of<Type>(), static_cast<std::uint16_t>(ListLength<Type>::value), nullptr, member,
          &identity_of<Structure>};
}

template <auto step, class Line>
constexpr Line inside(Line line) {
  if (line.field.kind == record::Field::Kind::none) return line;
  line.field.outer = &follow<step>;
  line.field.owner = &identity_of<OwnerOf<step>>;
  return line;
}

template <class Calculation>
struct Parts;
template <class Arguments_, class Results_>
struct Parts<Outcome (*)(const Arguments_&, Results_&) noexcept> {
  using Arguments = Arguments_;
  using Results = Results_;
  using Memory = void;
};
template <class Arguments_, class Results_, class Memory_>
struct Parts<Outcome (*)(const Arguments_&, Results_&, Memory_&) noexcept> {
  using Arguments = Arguments_;
  using Results = Results_;
  using Memory = Memory_;
};

template <class Arguments, class Results, class Memory>
struct Rows {
  using Routine = void (*)(const Arguments*, Results*, bool*, std::size_t, Memory&) noexcept;
};
template <class Arguments, class Results>
struct Rows<Arguments, Results, void> {
  using Routine = void (*)(const Arguments*, Results*, bool*, std::size_t) noexcept;
};

template <class Structure>
inline constexpr Structure prototype{};

template <class Structure>
constexpr record::Binding::Structure structure() {
  static_assert(std::is_trivially_copyable_v<Structure> && sizeof(Structure) <= largest_structure);
  return {sizeof(Structure), &prototype<Structure>, &identity_of<Structure>};
}

template <class Memory>
struct Kept final : Function_CData {
  Memory memory{};
};

template <auto calculation, auto... rows>
constexpr record::Binding bind() {
  static_assert(sizeof...(rows) <= 1);
  using P = Parts<decltype(calculation)>;
  using Arguments = typename P::Arguments;
  using Results = typename P::Results;
  using Memory = typename P::Memory;
  record::Binding result;
  result.run = &run_bound;
  result.arguments = structure<Arguments>();
  result.results = structure<Results>();
  if constexpr (std::is_void_v<Memory>) {
    result.calculate = [](const void* arguments, void* results, void*) noexcept {
      return calculation(*static_cast<const Arguments*>(arguments), *static_cast<Results*>(results));
    };
  } else {
    result.calculate = [](const void* arguments, void* results, void* memory) noexcept {
      return calculation(*static_cast<const Arguments*>(arguments), *static_cast<Results*>(results),
                         *static_cast<Memory*>(memory));
    };
    result.remember = []() noexcept -> std::unique_ptr<Function_CData> {
      try {
        return std::make_unique<Kept<Memory>>();
      } catch (...) {
        return nullptr;
      }
    };
    result.memory_of = [](Function_CData& data) noexcept -> void* {
      return &static_cast<Kept<Memory>&>(data).memory;
    };
  }
  if constexpr (sizeof...(rows) == 1) {
    result.calculate_rows = [](const void* arguments, void* results, bool* done, std::size_t count,
                               [[maybe_unused]] void* memory) noexcept {
      constexpr typename Rows<Arguments, Results, Memory>::Routine routine = std::get<0>(std::tuple{rows...});
      const auto* in = static_cast<const Arguments*>(arguments);
      auto* out = static_cast<Results*>(results);
      if constexpr (std::is_void_v<Memory>)
        routine(in, out, done, count);
      else
        routine(in, out, done, count, *static_cast<Memory*>(memory));
    };
  }
  return result;
}

}  // namespace binding

// The input fills this member; further pointers lead into structures within the structure.
template <auto... path>
constexpr record::Input in(record::Input line) {
  const record::Conversion* conversion = line.field.conversion;
  line.field = binding::field<path...>();
  line.field.conversion = conversion;
  return line;
}

// The output delivers this member.
template <auto... path>
constexpr record::Output out(record::Output line) {
  const record::Conversion* conversion = line.field.conversion;
  line.field = binding::field<path...>();
  line.field.conversion = conversion;
  return line;
}

// Lines that were written for a structure which is the member `step` of a larger one.
template <auto step, class Line, std::size_t N>
constexpr std::array<Line, N> within(std::array<Line, N> lines) {
  for (Line& line : lines) line = binding::inside<step>(line);
  return lines;
}

// Lines of several tables, one behind the other.
template <class Line, std::size_t... N>
constexpr auto join(const std::array<Line, N>&... parts) {
  std::array<Line, (N + ...)> all{};
  std::size_t next = 0;
  const auto append = [&](const auto& part) {
    for (const Line& line : part) all[next++] = line;
  };
  (append(parts), ...);
  return all;
}

template <auto calculation, auto... rows>
inline constexpr record::Binding bound = binding::bind<calculation, rows...>();

}  // namespace norvane
