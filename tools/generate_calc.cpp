// The add-in for LibreOffice Calc: the interface of its functions, what its wizard says of them, and the places of the
// worksheet wrappers that they call.
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "hosts/excel/wrappers.h"
#include "tools/signatures.h"

namespace norvane::generate {
namespace {

// Worksheet functions alone: a name behind which another program calls is none.
bool shown(const Function_CFunctionSpec& spec) { return !spec.group->prefix.empty(); }

// Two digits, so that any order of names is the order of the parameters.
std::string parameter_name(std::size_t index) {
  const char name[] = {'p', static_cast<char>('0' + index / 10 % 10), static_cast<char>('0' + index % 10)};
  return {name, 3};
}

std::string xml(const std::string& text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '&': out += "&amp;"; break;
      default: out += c;
    }
  }
  return out;
}

// The name of a function's method, which is also what documents of Calc hold: the worksheet's without what UNOIDL does
// not allow in a name.
std::string method_name(const Function_CFunctionSpec& spec) {
  std::string name = narrow(spec.worksheet_name());
  std::erase(name, '_');
  return name;
}

void property(std::ostream& out, const char* name, const std::string& value, const std::string& indent) {
  out << indent << "<prop oor:name=\"" << name << "\"><value xml:lang=\"en-US\">" << value << "</value></prop>\n";
}

}  // namespace

// UNOIDL: every parameter any, a repeated last one a sequence.
void calc_idl(std::ostream& out, Specs specs) {
  out << "// Written by norvane_generate.\nmodule norvane { module calc {\n\ninterface XFunctions {\n";
  for (const Function_CFunctionSpec* spec : specs) {
    if (!shown(*spec)) continue;
    out << "  sequence< sequence<any> > " << method_name(*spec) << "(";
    for (std::size_t i = 0; i < spec->input_count; ++i) {
      const bool repeated = spec->has(FUNCTION_VARIABLE_INPUTS) && i + 1 == spec->input_count;
      out << (i > 0 ? ", " : "") << "[in] " << (repeated ? "sequence<any> " : "any ") << parameter_name(i);
    }
    out << ");\n";
  }
  out << "};\n\n}; };\n";
}

void calc_configuration(std::ostream& out, Specs specs) {
  out << R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:component-data xmlns:oor="http://openoffice.org/2001/registry" xmlns:xs="http://www.w3.org/2001/XMLSchema" oor:name="CalcAddIns" oor:package="org.openoffice.Office">
<node oor:name="AddInInfo">
 <node oor:name="norvane.calc.Functions" oor:op="replace">
  <node oor:name="AddInFunctions">
)";
  for (const Function_CFunctionSpec* spec : specs) {
    if (!shown(*spec)) continue;
    const std::string name = narrow(spec->worksheet_name());
    out << "   <node oor:name=\"" << method_name(*spec) << "\" oor:op=\"replace\">\n";
    property(out, "DisplayName", name, "    ");
    property(out, "Description", xml(narrow(spec->description)), "    ");
    out << "    <prop oor:name=\"Category\"><value>Add-In</value></prop>\n";
    // The name in workbooks of Excel, which marks the functions of an add-in.
    property(out, "CompatibilityName", "_xll." + name, "    ");
    out << "    <node oor:name=\"Parameters\">\n";
    for (std::size_t i = 0; i < spec->input_count; ++i) {
      out << "     <node oor:name=\"" << parameter_name(i) << "\" oor:op=\"replace\">\n";
      const Function_CInput& input = spec->inputs[i];
      const std::string form = form_of(input);
      property(out, "DisplayName", xml(narrow(input.key)), "      ");
      property(out, "Description", xml((form.empty() ? "" : "[" + form + "] ") + narrow(input.description)),
               "      ");
      out << "     </node>\n";
    }
    out << "    </node>\n   </node>\n";
  }
  out << "  </node>\n </node>\n</node>\n</oor:component-data>\n";
}

// {"nvAGA8M": {"entry": "xlWrapper12_Math_AGA8_M", "arguments": 6, "repeated": false}, ...}
void calc_functions(std::ostream& out, Specs specs) {
  nlohmann::ordered_json functions;
  for (const Function_CFunctionSpec* spec : specs) {
    if (!shown(*spec)) continue;
    const bool repeated = spec->has(FUNCTION_VARIABLE_INPUTS) && spec->input_count > 0;
    if (functions.contains(method_name(*spec))) throw std::runtime_error("two functions of one name in Calc");
    functions[method_name(*spec)] = {{"entry", "xlWrapper12_" + narrow(spec->group->name) + "_" + narrow(spec->id)},
                                     {"arguments", repeated ? excel::variable_arguments12 : spec->input_count},
                                     {"repeated", repeated}};
  }
  out << functions.dump(1) << "\n";
}

}  // namespace norvane::generate
