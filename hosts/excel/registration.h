// What a worksheet function is registered with: names, type letters and help texts, made from its specification.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "framework/function_spec.h"

namespace norvane::excel {

// Longest text that the host takes; a longer one makes it refuse the registration.
inline constexpr std::size_t max_registration_text = 255;
// Longest argument text and function text together.
inline constexpr std::size_t max_names_text = 252;

// Limits of a dialect.
struct Limits {
  bool excel12;
  std::size_t variable_arguments;
  std::size_t help_slots;
};
const Limits& limits_of(bool excel12) noexcept;

struct Registration {
  std::u16string procedure;
  std::u16string type;
  std::u16string function;
  std::u16string arguments;
  std::u16string macro_type;
  std::u16string help;
  std::vector<std::u16string> argument_helps;  // at most as many as there are slots
  std::size_t names_length = 0;                // of argument text and function text, before anything was cut
};
Registration describe_function(const Function_CFunctionSpec& spec, const Unit_CTypeAndUnitContainer& units,
                               const Limits& limits);

// At most so many characters, the last word whole where possible.
std::u16string cut_text(std::u16string_view text, std::size_t longest = max_registration_text);

// Registers the about command, with its entry in the Help menu, and every function of the library with the bound host.
// A refused function is reported to the debugger's output and does not stop the others; a refused command has no entry.
void register_all(const Function_CLibrary& library, const Unit_CTypeAndUnitContainer& units);

// Takes the entry out of the menu, when it is there.
void remove_menu_entry();

}  // namespace norvane::excel
