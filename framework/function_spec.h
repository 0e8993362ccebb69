// The run-time description of a function, its group, and the catalogue that holds them by worksheet name.
//
// Everything here is built once from the records (framework/records.h) and read-only while calls run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/once.h"
#include "core/string_map.h"
#include "core/variant.h"
#include "framework/function_arg.h"
#include "framework/records.h"

namespace norvane {

class Function_CRegisteredType;
class Unit_CTypeAndUnitContainer;

struct Function_CKeyword {
  std::u16string_view key;
  std::u16string_view display_name;
  std::u16string_view description;
  std::u16string_view keyword_group;
};

// One per family of functions.
struct Function_CGroup {
  std::u16string_view name;
  std::u16string_view description;
  std::u16string_view prefix;  // put before every identifier of the group on a worksheet
  std::uint32_t enabled = 1;
  std::span<const Function_CKeyword> keywords;

  static const Function_CGroup& Of(GroupId id) noexcept;
};

// Where a line's member stands in the structure of its calculation.
struct Function_CPlace {
  record::Field::Kind kind = record::Field::Kind::none;
  std::uint16_t count = 0;  // of a list
  std::uint32_t offset = 0;
  const record::Conversion* conversion = nullptr;
};

struct Function_CInput {
  std::uint32_t role = 0;  // 1 for the `Name` input
  std::u16string_view key;
  std::u16string_view display_name;
  std::u16string_view description;
  Core_CVariant default_value;
  std::uint32_t type = 0;
  double minimum = 0.0;  // valid with INPUT_HAS_MINIMUM
  double maximum = 0.0;  // valid with INPUT_HAS_MAXIMUM
  std::uint32_t flags = 0;
  // The numbers it can be, where the record lists them.
  std::span<const record::Option> choices;
  record::Misfit misfit = record::Misfit::argument_error;
  bool composition = false;  // the 22 amounts of a gas
  bool may_be_left_out = false;
  Function_CPlace place;
  // What is checked before a call, made ready: whether there is anything to check, the numbers (0 to 63) of the
  // enumeration's members as bits, and the default as a value.
  bool checked = false;
  bool enumerated = false;
  bool members_known = false;
  std::uint64_t members = 0;
  FUNCTION_ARG ready_default = FUNCTION_ARG::Missing();

  bool optional() const noexcept { return (flags & INPUT_OPTIONAL) != 0; }
  bool has_minimum() const noexcept { return (flags & INPUT_HAS_MINIMUM) != 0; }
  bool has_maximum() const noexcept { return (flags & INPUT_HAS_MAXIMUM) != 0; }
  bool is_array() const noexcept { return (flags & INPUT_ARRAY) != 0; }
  bool has_list() const noexcept { return has_minimum() && has_maximum(); }
};

struct Function_CStatusValue {
  std::u16string_view id;
  std::u16string_view description;
  double value = 0.0;
  std::uint32_t severity = 1;
};

struct Function_COutput {
  std::uint32_t role = 0;  // 1 for a status output
  std::u16string_view key;
  std::u16string_view display_name;
  std::u16string_view description;
  Core_CVariant fallback;
  std::uint32_t type = 0;
  std::int32_t unit_input = -1;
  std::u16string_view tag_name;
  std::u16string_view tag_text;
  std::size_t status_value_count = 0;
  std::unique_ptr<Function_CStatusValue[]> status_values;
  std::span<const record::Option> choices;
  bool with_any_status = false;
  Function_CPlace place;
  // A number outside these is a result that no meter can have, whatever the status says.
  double plausible_low = -std::numeric_limits<double>::infinity();
  double plausible_high = std::numeric_limits<double>::infinity();

  std::span<const Function_CStatusValue> values() const noexcept { return {status_values.get(), status_value_count}; }
};

class Function_CFunctionSpec;

// Fills the status outputs when no result could be produced.
using Function_StatusFiller = std::uint32_t (*)(Function_CContext& context, const Function_CFunctionSpec& spec,
                                                FUNCTION_ARG& output);

class Function_CFunctionSpec {
 public:
  Function_CFunctionSpec(const Function_CGroup& group, Function_Implementation implementation, std::u16string_view id,
                         std::u16string_view display_name, std::u16string_view description,
                         std::u16string_view category, std::uint32_t flags, std::size_t input_count,
                         std::size_t output_count);
  explicit Function_CFunctionSpec(const record::Function& record);
  Function_CFunctionSpec(Function_CFunctionSpec&&) noexcept;
  ~Function_CFunctionSpec();

  // Allocates the status-value records of one output in their initial state.
  Function_CStatusValue* AllocateStatusValues(std::size_t output, std::size_t count);

  const Function_CGroup* group;
  Function_Implementation implementation;
  Function_Implementation second_implementation;
  Function_StatusFiller status_filler;
  std::u16string_view id;
  std::u16string_view display_name;
  std::u16string_view description;
  std::u16string_view category;
  std::u16string_view subcategory;
  std::u16string_view keywords;
  std::uint32_t flags;
  std::size_t input_count;
  std::unique_ptr<Function_CInput[]> inputs;
  std::size_t output_count;
  std::unique_ptr<Function_COutput[]> outputs;
  std::int32_t name_input = -1;
  std::int32_t enabled_state = 1;
  // Place in the catalogue's order, the number of the function's data slot in callers without cells.
  std::size_t position = 0;
  std::u16string_view notes;
  // The calculation behind the implementation, and the type of what it keeps between calls; null for a function whose
  // implementation is written by hand.
  const record::Binding* binding = nullptr;
  std::span<const CoefficientSet* const> coefficients;
  std::unique_ptr<const Function_CRegisteredType> memory_type;

  bool has(FUNCTION_FLAGS flag) const noexcept { return (flags & flag) != 0; }
  // Whether the fallback outputs of a failed call show that it failed: by a status output, by a value of their own,
  // or because the 0 that stands for none is listed as the value of a failure.
  bool outputs_tell_failure() const noexcept;
  bool visible() const noexcept { return !has(FUNCTION_HIDDEN) && enabled_state == 1; }
  std::u16string worksheet_name() const { return std::u16string(group->prefix).append(id); }
  std::span<const Function_CInput> input_records() const noexcept { return {inputs.get(), input_count}; }
  std::span<const Function_COutput> output_records() const noexcept { return {outputs.get(), output_count}; }
  // Input record of argument i: with a variable number of inputs the last record repeats; else none beyond it.
  const Function_CInput* input_of(std::size_t i) const noexcept {
    if (i < input_count) return &inputs[i];
    return has(FUNCTION_VARIABLE_INPUTS) && input_count > 0 ? &inputs[input_count - 1] : nullptr;
  }

 private:
  std::u16string_view with_options(std::u16string_view description, std::span<const record::Option> choices);

  std::vector<std::unique_ptr<const std::u16string>> texts_;  // descriptions with their options
};

// The catalogue, by full worksheet name (prefix + id) without regard to case. Does not own the specifications.
class Function_CLibrary {
 public:
  Function_CLibrary() = default;
  // A catalogue that is filled when somebody first looks for a function in it; not for a constant object.
  explicit Function_CLibrary(void (*fill)(Function_CLibrary&)) : fill_(fill) {}
  virtual ~Function_CLibrary() = default;
  Function_CLibrary(const Function_CLibrary&) = delete;
  Function_CLibrary& operator=(const Function_CLibrary&) = delete;

  // A second specification under an existing name replaces the first and keeps its place.
  void Register(const Function_CFunctionSpec& spec);
  const Function_CFunctionSpec* Find(std::u16string_view worksheet_name) const noexcept;
  // As Find, but none for a hidden or disabled function.
  const Function_CFunctionSpec* FindVisible(std::u16string_view worksheet_name) const noexcept;
  // Entries in the order of registration.
  using Map = Core_CCIStringMap<const Function_CFunctionSpec*>;
  const Map& Entries() const noexcept;

 private:
  Map map_;
  void (*fill_)(Function_CLibrary&) = nullptr;
  mutable Once filled_;
};

// With FUNCTION_FALLBACK writes the fallback outputs, then sets every status output to the number of the
// enumeration value "function disabled". 0, or ERROR_OUTPUTMISMATCH when no status output was set.
std::uint32_t default_status_filler(Function_CContext& context, const Function_CFunctionSpec& spec,
                                    FUNCTION_ARG& output);

}  // namespace norvane
