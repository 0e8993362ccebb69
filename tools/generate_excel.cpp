// The worksheet wrappers: two a function, each one call with the function's place in the catalogue.
#include "hosts/excel/wrappers.h"
#include "tools/generate.h"

namespace norvane::generate {

namespace {

struct Dialect {
  const char* digits;
  std::size_t variable_arguments;
};
constexpr Dialect dialects[] = {{"12", excel::variable_arguments12}, {"4", excel::variable_arguments4}};

std::size_t argument_count(const Function_CFunctionSpec& spec, const Dialect& dialect) {
  return spec.has(FUNCTION_VARIABLE_INPUTS) && spec.input_count > 0 ? dialect.variable_arguments : spec.input_count;
}

std::string wrapper_name(const Function_CFunctionSpec& spec, const Dialect& dialect) {
  return std::string("xlWrapper") + dialect.digits + "_" + narrow(spec.group->name) + "_" + narrow(spec.id);
}

}  // namespace

void excel_wrappers(std::ostream& out, Specs specs) {
  out << "// Written by norvane_generate.\n#include \"hosts/excel/wrappers.h\"\n\n"
         "using norvane::excel::XlRecord12;\nusing norvane::excel::XlRecord4;\n";
  for (const Function_CFunctionSpec* spec : specs) {
    for (const Dialect& dialect : dialects) {
      const std::string record = std::string("XlRecord") + dialect.digits;
      const std::size_t count = argument_count(*spec, dialect);
      out << "\nNORVANE_EXPORT " << record << "* " << wrapper_name(*spec, dialect) << "(";
      for (std::size_t i = 0; i < count; ++i) out << (i > 0 ? ", " : "") << record << "* a" << i;
      out << ") noexcept {\n";
      if (count > 0) {
        out << "  " << record << "* const args[] = {";
        for (std::size_t i = 0; i < count; ++i) out << (i > 0 ? ", " : "") << "a" << i;
        out << "};\n";
      }
      out << "  return norvane::excel::call_" << dialect.digits << "(" << spec->position << ", "
          << (count > 0 ? "args" : "nullptr") << ", " << count << ");\n}\n";
    }
  }
}

void excel_exports(std::ostream& out, Specs specs) {
  for (const Function_CFunctionSpec* spec : specs)
    for (const Dialect& dialect : dialects) out << wrapper_name(*spec, dialect) << "\n";
}

}  // namespace norvane::generate
