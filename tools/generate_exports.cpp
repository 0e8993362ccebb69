// The direct exports: their C source, the public header, and the lists of their names.
#include "tools/signatures.h"

namespace norvane::generate {
namespace {

using host::Parameter;
using host::Passing;
using host::Signature;

std::string export_name(const Signature& signature) { return "Norvane_" + narrow(signature.spec->id); }

std::vector<std::string> parameters(const Signature& signature) {
  const std::string gap(1, unbroken);
  std::vector<std::string> list;
  for (const Parameter& input : signature.inputs) {
    switch (input.passing) {
      case Passing::number: list.push_back("double" + gap + input.name); break;
      case Passing::option: list.push_back("uint32_t" + gap + input.name); break;
      case Passing::text: list.push_back("const char*" + gap + input.name); break;
      case Passing::range:
        list.push_back("const double*" + gap + input.name);
        list.push_back("uint32_t" + gap + input.name + "_count");
        break;
    }
  }
  for (const Parameter& output : signature.outputs) {
    switch (output.passing) {
      case Passing::text: list.push_back("const char**" + gap + output.name); break;
      case Passing::option: list.push_back("uint32_t*" + gap + output.name); break;
      default: list.push_back("double*" + gap + output.name); break;
    }
  }
  if (list.empty()) list.push_back("void");
  return list;
}

std::string prototype(const Signature& signature, const std::string& prefix) {
  std::string list;
  for (const std::string& parameter : parameters(signature)) list += (list.empty() ? "" : ", ") + parameter;
  const std::string start = prefix + "uint32_t " + export_name(signature) + "(";
  const std::string indent(start.size(), ' ');
  std::string text = wrapped(list, start, indent);
  text.pop_back();  // the last line end
  return text + ")";
}

std::string sentence(const std::string& form, std::u16string_view display, std::u16string_view description) {
  std::string text = form;
  if (!text.empty()) text += ". ";
  std::string says = ascii(description.empty() ? display : description);
  if (const std::size_t list = says.find(".;"); list != says.npos) says.erase(list, 1);
  return text + says;
}

void comment(std::ostream& out, const Signature& signature) {
  const Function_CFunctionSpec& spec = *signature.spec;
  std::size_t width = 6;
  for (const auto* list : {&signature.inputs, &signature.outputs})
    for (const Parameter& parameter : *list) width = std::max(width, parameter.name.size());
  const std::string indent = " *   " + std::string(width + 7, ' ');
  const auto line = [&](const std::string& name, const char* way, const std::string& text) {
    out << wrapped(text, " *   " + name + std::string(width - name.size() + 1, ' ') + way, indent);
  };

  out << "/* " << narrow(spec.id) << ": " << ascii(spec.display_name) << "\n";
  if (!spec.description.empty()) out << wrapped(ascii(spec.description), " * ", " * ");
  if (!spec.notes.empty()) out << wrapped(ascii(spec.notes), " * ", " * ");
  out << " *\n";
  for (const Parameter& parameter : signature.inputs) {
    const Function_CInput& input = spec.inputs[parameter.index];
    const std::string list = parameter.passing == Passing::range ? "list with its count. " : "";
    line(parameter.name, "[in]  ", list + sentence(form_of(input), input.display_name, input.description));
  }
  for (const Parameter& parameter : signature.outputs) {
    const Function_COutput& output = spec.outputs[parameter.index];
    line(parameter.name, "[out] ", sentence(form_of(output), output.display_name, output.description));
  }
  out << wrapped("the status (" + form_of(spec.outputs[0]) + "), NORVANE_NOT_RUN or NORVANE_NO_OUTPUT.",
                 " *   returns " + std::string(width, ' ').substr(std::min<std::size_t>(width, 7)), indent);
  out << " */\n";
}

std::string quoted(std::u16string_view text) {
  std::string result = "\"";
  for (char unit : narrow(text)) {
    if (unit == '"' || unit == '\\') result += '\\';
    result += unit == '\n' ? ' ' : unit;
  }
  return result + "\"";
}

template <class Record>
void described(std::ostream& out, const Parameter& parameter, const Record& record) {
  out << "{\"name\": \"" << parameter.name << "\", \"key\": " << quoted(record.key) << ", \"type\": \""
      << host::passing_name(parameter.passing) << "\", \"form\": " << quoted(to_utf16(form_of(record)));
}

void described_default(std::ostream& out, const Core_CVariant& value) {
  double number = 0.0;
  if (value.tag() == Core_CVariant::STRING || value.tag() == Core_CVariant::BORROWED_STRING) {
    out << ", \"default\": " << quoted(value.AsText());
  } else if (!value.empty() && value.ToDouble(number) == CORE_RESULT_OK) {
    out << ", \"default\": " << narrow(format_number(number));
  }
}

}  // namespace

void exports_header(std::ostream& out, Specs) {
  out << R"(/* norvane.h: the calculation functions of Norvane, for C and C++. Written by norvane_generate.
 *
 * Every function takes its inputs in the units that its comment gives, then a pointer for each output, and returns
 * its status: 0 for success, or a number that its comment explains. When the status is not 0 only the status has a
 * meaning; outputs that the function did not write are 0.
 *
 * Two returned values are no status of a function:
 *   NORVANE_NOT_RUN    nothing was calculated and no output was written: a null pointer for an output, a null list,
 *                      a list shorter than the function reads (an empty one, or one of more than 65536 numbers, too),
 *                      an argument outside its range, or no memory.
 *   NORVANE_NO_OUTPUT  the function ran, but an output could not be delivered.
 *
 * Numbers are 64-bit floats. Options, range statuses and yes/no values are 32-bit unsigned integers with the numbers
 * that the comments list. A list is a pointer to its first number and the count of its numbers, of which the
 * function reads the first ones. Texts are UTF-8 and end with a zero byte; a null text stands for the default, and a
 * text that was given out lives until the same thread calls a function again. Defaults are those of the worksheet
 * functions, given for orientation: here every input is passed.
 *
 * All functions may be called from any number of threads at once. Each keeps intermediate results of the calling
 * thread's last call, so calls that share a composition are faster on one thread.
 */
#ifndef NORVANE_H
#define NORVANE_H

#include <stdint.h>

#if defined(NORVANE_BUILD)
#if defined(_WIN32)
#define NORVANE_API
#else
#define NORVANE_API __attribute__((visibility("default")))
#endif
#elif defined(_WIN32)
#define NORVANE_API __declspec(dllimport)
#else
#define NORVANE_API
#endif

#define NORVANE_NOT_RUN 0xFFFFFFFFu
#define NORVANE_NO_OUTPUT 0xFFFFFFFEu

#ifdef __cplusplus
extern "C" {
#endif

/* "1.2.3": the version of the library that is loaded. */
NORVANE_API const char* norvane_version(void);
)";
  for (const Signature* signature : signatures()) {
    out << "\n";
    comment(out, *signature);
    out << prototype(*signature, "NORVANE_API ") << ";\n";
  }
  out << R"(
#ifdef __cplusplus
}
#endif

#endif
)";
}

void exports_source(std::ostream& out, Specs) {
  out << "/* Written by norvane_generate. */\n#define NORVANE_BUILD\n#include \"hosts/exports/runner.h\"\n"
         "#include \"norvane.h\"\n";
  for (const Signature* signature : signatures()) {
    out << "\n" << prototype(*signature, "") << " {\n";
    std::string in;
    for (const Parameter& input : signature->inputs) {
      in += in.empty() ? "" : ", ";
      switch (input.passing) {
        case Passing::number: in += "NORVANE_NUMBER(" + input.name + ")"; break;
        case Passing::option: in += "NORVANE_OPTION(" + input.name + ")"; break;
        case Passing::text: in += "NORVANE_TEXT(" + input.name + ")"; break;
        case Passing::range: in += "NORVANE_RANGE(" + input.name + "," + unbroken + input.name + "_count)"; break;
      }
    }
    std::string targets;
    for (const Parameter& output : signature->outputs) targets += (targets.empty() ? "" : ", ") + output.name;
    out << wrapped(in + "};", "  const norvane_value in[] = {", "      ")
        << wrapped(targets + "};", "  void* const out[] = {", "      ") << "  return NORVANE_RUN(" << signature->id
        << ", in, out);\n}\n";
  }
}

void exports_json(std::ostream& out, Specs) {
  out << "[";
  const char* separator = "\n";
  for (const Signature* signature : signatures()) {
    const Function_CFunctionSpec& spec = *signature->spec;
    out << separator << "{\"function\": \"" << narrow(spec.id) << "\", \"export\": \"" << export_name(*signature)
        << "\", \"dispatch_id\": " << signature->id << ", \"inputs\": [";
    const char* comma = "";
    for (const Parameter& parameter : signature->inputs) {
      out << comma;
      described(out, parameter, spec.inputs[parameter.index]);
      described_default(out, spec.inputs[parameter.index].default_value);
      out << "}";
      comma = ", ";
    }
    out << "], \"outputs\": [";
    comma = "";
    for (const Parameter& parameter : signature->outputs) {
      out << comma;
      described(out, parameter, spec.outputs[parameter.index]);
      out << "}";
      comma = ", ";
    }
    out << "]}";
    separator = ",\n";
  }
  out << "\n]\n";
}

void exports_names(std::ostream& out, Specs) {
  out << "norvane_version\n";
  for (const Signature* signature : signatures()) out << export_name(*signature) << "\n";
}

void exports_def(std::ostream& out, Specs specs) {
  out << "LIBRARY \"Norvane.XLL\"\nEXPORTS\n";
  exports_names(out, specs);
}

}  // namespace norvane::generate
