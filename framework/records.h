// Records are data: how a function is described in the source of its standard.
//
// A record is a constexpr aggregate and reads like the table in a manual, one line an input or output. A line of a
// calculation names the member that it fills or delivers (framework/binding.h):
//
//   constexpr record::Option editions[] = {{1, u"1994"}, {2, u"2017"}};
//   constexpr record::Input inputs[] = {
//       record::name_input(),
//       in<&Gas::pressure>(input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325)),
//       in<&Gas::edition>(input(u"edition", u"Edition", u"Year of edition.", data_type::integer)
//                             .options(editions).otherwise(1)),
//   };
//
// The run-time specification (framework/function_spec.h) is built from it once, when the catalogue is built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "core/outcome.h"
#include "framework/function_arg.h"
#include "units/unit_codes.h"

namespace norvane {

class CoefficientSet;
class Function_CContext;
class Function_CData;

// An implementation reads its arguments and writes its output through the context; it returns a worksheet
// error code, 0 for success, and never throws.
using Function_Implementation = std::uint32_t (*)(Function_CContext& context, FUNCTION_ARG* args, std::size_t count,
                                                  FUNCTION_ARG& output);

// Behaviour flags of a function.
enum FUNCTION_FLAGS : std::uint32_t {
  FUNCTION_VOLATILE = 1,
  FUNCTION_RETENTIVE = 2,
  FUNCTION_FALLBACK = 4,  // a failed call answers with the fallback outputs and success
  FUNCTION_NO_VALIDATION = 8,
  FUNCTION_HIDDEN = 16,
  FUNCTION_VARIABLE_INPUTS = 64,  // the last input may repeat
  FUNCTION_LIST_OUTPUT = 128,
  FUNCTION_NO_RANGE_CHECK = 512
};

enum INPUT_FLAGS : std::uint32_t {
  INPUT_OPTIONAL = 1,
  INPUT_HAS_MINIMUM = 2,
  INPUT_HAS_MAXIMUM = 4,
  INPUT_ARRAY = 16
};

enum class GroupId : std::uint8_t { Extended, Math, GergMath };

namespace record {

// A default or fallback value.
struct Value {
  enum class Kind : std::uint8_t { none, number, boolean, text, integer };
  Kind kind = Kind::none;
  double number = 0.0;
  std::u16string_view text{};
};

// One of the numbers an input or output can be, and what it stands for. The description lists them behind its text:
// "Year of edition." becomes "Year of edition.; 1: 1994; 2: 2017".
struct Option {
  int number = 0;
  std::u16string_view label{};
};

// What becomes of a number that is none of an input's options.
enum class Misfit : std::uint8_t {
  argument_error,  // status 1
  refuse,          // the call fails
  pass             // the calculation judges
};

// A record's unit into the calculation's, and back.
struct Conversion {
  double (*to)(double) noexcept;
  double (*from)(double) noexcept;
};

// A member of an argument or result structure.
struct Field {
  enum class Kind : std::uint8_t {
    none,
    number,  // double
    whole,   // int, or an enumeration of that size
    truth,   // bool
    numbers  // array of `count` doubles
  };
  using Step = void* (*)(void*);

  Kind kind = Kind::none;
  std::uint16_t count = 0;
  Step outer = nullptr;         // to the structure that `inner` starts from; null when that is the whole one
  Step inner = nullptr;         // to the member
  const void* owner = nullptr;  // identity of the whole structure
  const Conversion* conversion = nullptr;
};

// A calculation as the records see it: two structures and what happens between them.
struct Binding {
  struct Structure {
    std::size_t size = 0;
    const void* prototype = nullptr;  // what no line fills keeps the values of this one
    const void* identity = nullptr;
  };
  Function_Implementation run = nullptr;  // reads, calculates, writes
  Structure arguments{};
  Structure results{};
  Outcome (*calculate)(const void* arguments, void* results, void* memory) noexcept = nullptr;
  // The same for `rows` arguments that stand behind each other, into as many results that hold the prototype's values.
  // Where done[i] is set the result is bit for bit what `calculate` answers, with status 0 and no remark; the others
  // are calculated one by one. Null where there is none.
  void (*calculate_rows)(const void* arguments, void* results, bool* done, std::size_t rows,
                         void* memory) noexcept = nullptr;
  // What is kept from one call of the same name or calling place to the next; null for a calculation without memory.
  std::unique_ptr<Function_CData> (*remember)() noexcept = nullptr;
  void* (*memory_of)(Function_CData& data) noexcept = nullptr;
};

struct Input {
  std::u16string_view key{};
  std::u16string_view display{};
  std::u16string_view description{};
  std::uint32_t type = data_type::any;
  Value default_value{};
  double minimum = 0.0;
  double maximum = 0.0;
  std::uint32_t flags = INPUT_OPTIONAL;
  std::uint32_t role = 0;
  std::span<const Option> choices{};
  Misfit misfit = Misfit::argument_error;
  bool composition = false;      // the 22 amounts of a gas, in the order of math/common/components.h
  bool may_be_left_out = false;  // a list that counts as zeros when it is not given
  Field field{};

  // Default when the argument is omitted.
  constexpr Input otherwise(double value) const {
    Input copy = *this;
    copy.default_value = {Value::Kind::number, value, {}};
    return copy;
  }
  constexpr Input otherwise(int value) const { return otherwise(static_cast<double>(value)); }
  constexpr Input otherwise(bool value) const {
    Input copy = *this;
    copy.default_value = {Value::Kind::boolean, value ? 1.0 : 0.0, {}};
    return copy;
  }
  constexpr Input otherwise(std::u16string_view value) const {
    Input copy = *this;
    copy.default_value = {Value::Kind::text, 0.0, value};
    return copy;
  }
  // A literal would rather become a boolean than a view.
  constexpr Input otherwise(const char16_t* value) const { return otherwise(std::u16string_view(value)); }
  constexpr Input at_least(double low) const {
    Input copy = *this;
    copy.minimum = low;
    copy.flags |= INPUT_HAS_MINIMUM;
    return copy;
  }
  constexpr Input at_most(double high) const {
    Input copy = *this;
    copy.maximum = high;
    copy.flags |= INPUT_HAS_MAXIMUM;
    return copy;
  }
  // Inclusive bounds, checked by the context before the implementation runs.
  constexpr Input within(double low, double high) const { return at_least(low).at_most(high); }
  // A number of this list. Its first and last number are the bounds.
  constexpr Input options(std::span<const Option> list) const {
    Input copy = within(list.front().number, list.back().number);
    copy.choices = list;
    return copy;
  }
  constexpr Input unless(Misfit policy) const {
    Input copy = *this;
    copy.misfit = policy;
    return copy;
  }
  constexpr Input left_out_as_zeros() const {
    Input copy = *this;
    copy.may_be_left_out = true;
    return copy;
  }
  // The number goes through this conversion into its member.
  constexpr Input through(const Conversion& conversion) const {
    Input copy = *this;
    copy.field.conversion = &conversion;
    return copy;
  }
  constexpr Input keyed(std::u16string_view name) const {
    Input copy = *this;
    copy.key = name;
    return copy;
  }
  // Takes a range of cells.
  constexpr Input range() const {
    Input copy = *this;
    copy.flags |= INPUT_ARRAY;
    return copy;
  }
  constexpr Input required() const {
    Input copy = *this;
    copy.flags &= ~static_cast<std::uint32_t>(INPUT_OPTIONAL);
    return copy;
  }
  // The same input with another description, or another unit, for families of functions.
  constexpr Input described(std::u16string_view text) const {
    Input copy = *this;
    copy.description = text;
    return copy;
  }
  constexpr Input in_unit(std::uint32_t code) const {
    Input copy = *this;
    copy.type = code;
    return copy;
  }
};

struct StatusValue {
  double value = 0.0;
  std::u16string_view id{};
  std::u16string_view description{};
};

struct Output {
  std::u16string_view key{};
  std::u16string_view display;
  std::u16string_view description;
  std::uint32_t type = data_type::any;
  std::u16string_view tag{};       // short upper-case name for tag generation
  std::u16string_view tag_text{};  // text for tag generation
  Value fallback{};
  std::int32_t unit_input = -1;  // input whose value names this output's unit
  std::uint32_t role = 0;        // 1 for the status output
  std::span<const StatusValue> values{};
  std::span<const Option> choices{};
  bool with_any_status = false;  // delivered also when the status is not 0
  Field field{};
  double expected_low = 0.0, expected_high = 0.0;  // equal: none of its own

  // Value written when the call fails; without it the number 0.
  constexpr Output failing(double value) const {
    Output copy = *this;
    copy.fallback = {Value::Kind::number, value, {}};
    return copy;
  }
  constexpr Output failing_integer(int value) const {
    Output copy = *this;
    copy.fallback = {Value::Kind::integer, static_cast<double>(value), {}};
    return copy;
  }
  constexpr Output options(std::span<const Option> list) const {
    Output copy = *this;
    copy.choices = list;
    return copy;
  }
  constexpr Output always() const {
    Output copy = *this;
    copy.with_any_status = true;
    return copy;
  }
  // Bounds of what is physically possible, in the output's unit; without them those of its quantity hold.
  constexpr Output expected(double low, double high) const {
    Output copy = *this;
    copy.expected_low = low;
    copy.expected_high = high;
    return copy;
  }
  // The member goes back through this conversion into the output's unit.
  constexpr Output through(const Conversion& conversion) const {
    Output copy = *this;
    copy.field.conversion = &conversion;
    return copy;
  }
  constexpr Output meaning(std::span<const StatusValue> list) const {
    Output copy = *this;
    copy.values = list;
    return copy;
  }
  constexpr Output in_unit(std::uint32_t code) const {
    Output copy = *this;
    copy.type = code;
    return copy;
  }
};

struct Function {
  GroupId group = GroupId::Math;
  std::u16string_view id{};
  std::u16string_view display{};
  std::u16string_view description{};
  std::u16string_view category = u"Math";
  std::u16string_view subcategory{};
  std::u16string_view keywords{};
  std::uint32_t flags = FUNCTION_FALLBACK;
  std::int32_t name_input = -1;
  std::span<const Input> inputs{};
  std::span<const Output> outputs{};
  Function_Implementation implementation = nullptr;  // null: the binding's
  const Binding* binding = nullptr;
  // The tables that the numbers come from: the function refuses when they are not those that were built.
  std::span<const CoefficientSet* const> coefficients{};
  // Standard, edition and clauses, limits and remarks for the reference documentation; not part of the record
  // that hosts see. Paragraphs end with a line feed.
  std::u16string_view notes{};

  constexpr Function with(std::span<const CoefficientSet* const> sets) const {
    Function copy = *this;
    copy.coefficients = sets;
    return copy;
  }
};

constexpr Input input(std::u16string_view key, std::u16string_view display, std::u16string_view description,
                      std::uint32_t type) {
  return {key, display, description, type};
}

constexpr Output output(std::u16string_view key, std::u16string_view display, std::u16string_view description,
                        std::uint32_t type, std::u16string_view tag) {
  return {key, display, description, type, tag};
}

// The `Name` input, input 0 of every function that stores data or generates tags.
constexpr Input name_input() {
  Input name{u"Name", u"Name",
             u"Name, text and group-name used for tag-generating and optionally retentive storage (also see "
             u"nvName(..))",
             data_type::text};
  name.role = 1;
  return name;
}

inline constexpr StatusValue status_values[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"NOCONV", u"no convergency"},
    {4.0, u"COMPERR", u"composition error"},
};
inline constexpr std::span<const StatusValue> usual_status_values{status_values, 3};

// The status output, output 0 of every calculation function of the "Math" group.
constexpr Output status_output(std::span<const StatusValue> values = usual_status_values) {
  Output status{u"status", u"Status", u"", enumeration::mathfunctionstatus, u"STS"};
  status.role = 1;
  status.fallback = {Value::Kind::number, 1.0, {}};
  status.values = values;
  return status;
}

}  // namespace record
}  // namespace norvane
