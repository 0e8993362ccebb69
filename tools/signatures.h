// What the writers of typed interfaces share.
#pragma once

#include <string>
#include <vector>

#include "hosts/module/parameter_names.h"
#include "tools/generate.h"

namespace norvane::generate {

struct Parameter {
  host::Passing passing;
  std::size_t index;  // of its record in the specification
  std::string name;
};

// A function as the typed interfaces show it.
struct Method {
  const Function_CFunctionSpec* spec;
  std::uint32_t id;
  std::vector<Parameter> inputs;
  std::vector<Parameter> outputs;
};

// The methods of this build, in the order of the typed interfaces.
std::vector<Method> methods();

// The C function of a method.
std::string export_name(const Method& method);

// Text for a comment in a C or IDL file: US-ASCII, and nothing that ends the comment.
std::string ascii(std::u16string_view text);

// "bar(a), 0 to 40, default 1.01325", "1: Add to iC5; 2: Add to nC5, default 1"; no text for a bare number.
std::string form_of(const Function_CInput& input);
std::string form_of(const Function_COutput& output);

// Stands for a blank at which `wrapped` does not break.
inline constexpr char unbroken = '\x01';

// Breaks text at blanks into lines of at most the given width, every one behind the prefix.
std::string wrapped(const std::string& text, const std::string& first_prefix, const std::string& prefix,
                    std::size_t width = 110);

}  // namespace norvane::generate
