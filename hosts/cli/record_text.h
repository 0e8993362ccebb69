// What a function's record says, as text for people: shared by the descriptions and the reference.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/variant.h"
#include "framework/function_spec.h"
#include "units/unit_catalogue.h"

namespace norvane::cli {

// "1: 1994" of a description or an enumeration.
struct Option {
  std::string value;
  std::string text;
  std::string key;  // name by which a command line may give it; empty when there is none
};

// A description without its options, and the options: those that the record lists, or the members of an enumeration.
struct Description {
  std::string text;
  std::vector<Option> options;
};
Description description_of(const Function_CInput& input);
Description description_of(const Function_COutput& output);

// The values of an input that have a name: those of its record, or of its enumeration.
std::vector<Option> options_of(const Function_CInput& input);
// "1994" for the edition 1; empty when the value has no name.
std::string label_of(const Function_CInput& input, const Core_CVariant& value);

// "bar(a)", "int", "Neo-C5 mode"; empty for a value of any type.
std::string type_text(const Unit_CTypeAndUnitContainer& units, std::uint32_t type);
// Symbol of a unit; empty for anything else.
std::string unit_text(const Unit_CTypeAndUnitContainer& units, std::uint32_t type);
// Empty for an empty variant.
std::string variant_text(const Core_CVariant& value);
std::string number_text(double value);
// "0 to 10000", ">= 0", "<= 1" or empty.
std::string range_text(const Function_CInput& input);
// Comma-separated keywords as a list.
std::vector<std::string> keywords_of(const Function_CFunctionSpec& spec);
// A function's display name, its identifier when it has none.
std::string title_of(const Function_CFunctionSpec& spec);

}  // namespace norvane::cli
