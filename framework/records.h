// Records are data: how a function is described in the source of its standard.
//
// A record is a constexpr aggregate and reads like the table in a manual, one line an input or output:
//
//   constexpr record::Input inputs[] = {
//       record::name_input(),
//       record::input(u"pressure", u"Pressure", u"Absolute pressure.", unit::bar_a).otherwise(1.01325),
//       record::input(u"edition", u"Edition", u"Year of edition.; 1: 1994; 2: 2017", data_type::integer)
//           .within(1, 2).otherwise(1),
//   };
//
// The run-time specification (framework/function_spec.h) is built from it once, when the catalogue is built.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "framework/function_arg.h"
#include "units/unit_codes.h"

namespace norvane {

class Function_CContext;

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
  Function_Implementation implementation = nullptr;
  // Standard, edition and clauses, limits and remarks for the reference documentation; not part of the record
  // that hosts see. Paragraphs end with a line feed.
  std::u16string_view notes{};
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

inline constexpr StatusValue usual_status_values[] = {
    {1.0, u"FIOOR", u"argument error"},
    {2.0, u"CALCERR", u"calculation error"},
    {3.0, u"NOCONV", u"no convergency"},
};

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
