// The direct exports: their C source, the public header, and the lists of their names.
#include "math/common/components.h"
#include "tools/signatures.h"

namespace norvane::generate {
namespace {

using host::Passing;

std::vector<std::string> parameters(const Method& method) {
  const std::string gap(1, unbroken);
  std::vector<std::string> list;
  for (const Parameter& input : method.inputs) {
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
  for (const Parameter& output : method.outputs) {
    switch (output.passing) {
      case Passing::text: list.push_back("const char**" + gap + output.name); break;
      case Passing::option: list.push_back("uint32_t*" + gap + output.name); break;
      default: list.push_back("double*" + gap + output.name); break;
    }
  }
  if (list.empty()) list.push_back("void");
  return list;
}

std::string prototype(const Method& method, const std::string& prefix) {
  std::string list;
  for (const std::string& parameter : parameters(method)) list += (list.empty() ? "" : ", ") + parameter;
  const std::string start = prefix + "uint32_t " + export_name(method) + "(";
  const std::string indent(start.size(), ' ');
  std::string text = wrapped(list, start, indent);
  text.pop_back();  // the last line end
  return text + ")";
}

std::string batch_prototype(const Method& method, const std::string& prefix) {
  const std::string start = prefix + "size_t " + export_name(method) + "_Batch(";
  const std::string gap(1, unbroken);
  std::string text = wrapped("size_t" + gap + "rows, const" + gap + "norvane_column*" + gap + "inputs, size_t" + gap +
                                 "input_count, double*" + gap + "const*" + gap + "outputs, size_t" + gap +
                                 "output_count, uint32_t*" + gap + "statuses",
                             start, std::string(start.size(), ' '));
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

void comment(std::ostream& out, const Method& method) {
  const Function_CFunctionSpec& spec = *method.spec;
  std::size_t width = 6;
  for (const auto* list : {&method.inputs, &method.outputs})
    for (const Parameter& parameter : *list) width = std::max(width, parameter.name.size());
  const std::string indent = " *   " + std::string(width + 7, ' ');
  const auto line = [&](const std::string& name, const char* way, const std::string& text) {
    out << wrapped(text, " *   " + name + std::string(width - name.size() + 1, ' ') + way, indent);
  };

  out << "/* " << narrow(spec.id) << ": " << ascii(spec.display_name) << "\n";
  if (!spec.description.empty()) out << wrapped(ascii(spec.description), " * ", " * ");
  if (!spec.notes.empty()) out << wrapped(ascii(spec.notes), " * ", " * ");
  out << " *\n";
  for (const Parameter& parameter : method.inputs) {
    const Function_CInput& input = spec.inputs[parameter.index];
    const char* list = "";
    if (input.composition) {
      list = "list of the amounts of enum norvane_component, with its count. ";
    } else if (parameter.passing == Passing::range) {
      list = "list with its count. ";
    }
    line(parameter.name, "[in]  ", list + sentence(form_of(input), input.display_name, input.description));
  }
  for (const Parameter& parameter : method.outputs) {
    const Function_COutput& output = spec.outputs[parameter.index];
    line(parameter.name, "[out] ", sentence(form_of(output), output.display_name, output.description));
  }
  out << wrapped("the status (" + form_of(spec.outputs[0]) + "), NORVANE_NOT_RUN or NORVANE_NO_OUTPUT.",
                 " *   returns " + std::string(width, ' ').substr(std::min<std::size_t>(width, 7)), indent);
  out << " */\n";
}

// The places of the components, the width of a comment behind them.
void components(std::ostream& out) {
  out << "\n/* Places in a gas composition: a list of 22 amounts, as fractions or in percent. */\n"
         "enum norvane_component {\n";
  for (std::size_t i = 0; i < component::count; ++i) {
    std::string name = "NORVANE_";
    for (const char c : component::table[i].name)
      name += c == ' ' || c == '-' ? '_' : static_cast<char>(fold_ascii_upper(static_cast<unsigned char>(c)));
    name += " = " + std::to_string(i) + ",";
    name.resize(std::max<std::size_t>(name.size(), 32), ' ');
    out << "  " << name << " /* " << component::table[i].formula << " */\n";
  }
  out << "  NORVANE_COMPONENTS = " << component::count << "\n};\n";
}

}  // namespace

void exports_header(std::ostream& out, Specs) {
  out << R"(/* norvane.h: the calculation functions of Norvane, for C and C++. Written by norvane_generate.
 *
 * Every function takes its inputs in the units that its comment gives, then a pointer for each output, and returns
 * its status: 0 for success, or a number that its comment explains. When the status is not 0 only the status has a
 * meaning; outputs that the function did not write are 0.
 *
 * Two returned values are no status of a function; norvane_last_message() says what was wrong:
 *   NORVANE_NOT_RUN    nothing was calculated and no output was written: a null pointer for an output, a list that is
 *                      shorter than the function reads or has more than 65536 numbers, an argument outside its range,
 *                      no memory, or a call from inside another call of the same thread.
 *   NORVANE_NO_OUTPUT  the function ran, but an output could not be delivered.
 *
 * Numbers are 64-bit floats. Options, range statuses and yes/no values are 32-bit unsigned integers with the numbers
 * that the comments list. A list is a pointer to its first number and the count of its numbers, of which the
 * function reads the first ones; with a null pointer or the count 0 it is left out, as a function allows that. Texts
 * are UTF-8 and end with a zero byte; a null text stands for the default, and a text that was given out lives until
 * the same thread calls a function again. Defaults are those of the worksheet functions, given for orientation: here
 * every input but lists and texts is passed.
 *
 * Many calls at once: every function has a batch, Norvane_AGA8_M_Batch beside Norvane_AGA8_M, all of one form, and
 * norvane_batch finds it by name. An input is a column of numbers (norvane_column), an output an array of as many
 * numbers as there are rows, in the order of the single function. See norvane_batch below.
 *
 * All functions may be called from any number of threads at once. Each keeps intermediate results of the calling
 * thread's last call, so calls that share a composition are faster on one thread.
 */
#ifndef NORVANE_H
#define NORVANE_H

#include <stddef.h>
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
#define NORVANE_BATCH_REFUSED ((size_t)-1)

#ifdef __cplusplus
extern "C" {
#endif

/* "1.2.3": the version of the library that is loaded. */
NORVANE_API const char* norvane_version(void);

/* "1.2.3, commit 0123456789ab, checksum 01234567": what the numbers can be traced to. The checksum is a CRC-32 over
 * function records, coefficient tables and units as they are in memory now, and over the equations as they were built;
 * it is the same on every system, and through every host. When the memory is not what was built the text says so, and
 * functions of the standards concerned answer status 2. UTF-8; it lives until the same thread asks again. */
NORVANE_API const char* norvane_identity(void);

/* The vector instructions that batches use: "x86-64", "avx2" or "avx512" ("arm64" on such a processor). The library
 * chooses when it is loaded; NORVANE_KERNEL in the environment forces one, if processor and library have it. The answers
 * are the same to the last bit. */
NORVANE_API const char* norvane_kernel(void);

/* What there is to say about the calling thread's last call: the refused argument with its value and limit, what
 * stands behind a status other than 0, or a remark on a good result; an empty text when there is nothing. UTF-8; it
 * lives until the same thread calls a function or asks again. */
NORVANE_API const char* norvane_last_message(void);

/* The meaning of a status or of another coded output: norvane_status_text("AGA8_M", 0, status), or output 5 for the
 * last output, the range status. Empty for a number without a meaning. UTF-8; it lives until the same thread asks
 * again. */
NORVANE_API const char* norvane_status_text(const char* function, uint32_t output, uint32_t code);

/* An input of a batch: a number a row, or a list of numbers a row. */
#if !defined(NORVANE_COLUMN)
#define NORVANE_COLUMN
typedef struct norvane_column {
  const double* values; /* the number of the first row; a list: its first number; null: left out */
  size_t row_step;      /* numbers from one row to the next; 0: the same for every row */
  size_t cells;         /* numbers of a list, 1 for a single value */
  size_t cell_step;     /* numbers from one cell of a list to the next */
} norvane_column;
#endif

/* Calls a function, by its name ("AGA8_M", any case), for each of the rows. The batch of every function below does the
 * same without looking for it.
 *   inputs        as many as the single function takes. Options and yes/no are numbers too: whole ones, any other is an
 *                 argument refused. A left out input takes its default, as the comments give it; where there is none,
 *                 and for a list that may not be left out, the batch is refused.
 *   outputs       as many as the single function has, each with room for all rows, or null where one is not wanted.
 *                 What the function did not write is NaN. An output must not share memory with an input.
 *   statuses      room for all rows: what the single function returns for the row's numbers. Every output of the row
 *                 is bit for bit what that call delivers. norvane_last_message() is empty after a batch: to learn what
 *                 was wrong with a row, call the single function with its numbers.
 *   returns       the number of rows whose status is not 0, or NORVANE_BATCH_REFUSED when the batch cannot be as it is;
 *                 nothing is written then, and norvane_last_message() says why. */
NORVANE_API size_t norvane_batch(const char* function, size_t rows, const norvane_column* inputs, size_t input_count,
                                 double* const* outputs, size_t output_count, uint32_t* statuses);

/* Converts numbers in place from a unit to another of the same quantity. Units are named as people write them:
 * bar(a), psia, degF, kg/h; mol% and mol/mol are scales of mole fractions. 0, or NORVANE_NOT_RUN when there is no such
 * conversion and no number was changed. The message, unless that pointer is null, tells why; with the result 0 it is
 * a warning that the conversion is not the physical one, or empty. UTF-8; it lives until the same thread converts
 * again. */
NORVANE_API uint32_t norvane_convert(const char* from, const char* to, double* values, size_t count,
                                     const char** message);
)";
  components(out);
  for (const Method& method : methods()) {
    out << "\n";
    comment(out, method);
    out << prototype(method, "NORVANE_API ") << ";\n" << batch_prototype(method, "NORVANE_API ") << ";\n";
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
  for (const Method& method : methods()) {
    out << "\n" << prototype(method, "") << " {\n";
    std::string in;
    for (const Parameter& input : method.inputs) {
      in += in.empty() ? "" : ", ";
      switch (input.passing) {
        case Passing::number: in += "NORVANE_NUMBER(" + input.name + ")"; break;
        case Passing::option: in += "NORVANE_OPTION(" + input.name + ")"; break;
        case Passing::text: in += "NORVANE_TEXT(" + input.name + ")"; break;
        case Passing::range: in += "NORVANE_RANGE(" + input.name + "," + unbroken + input.name + "_count)"; break;
      }
    }
    std::string targets;
    for (const Parameter& output : method.outputs) targets += (targets.empty() ? "" : ", ") + output.name;
    out << wrapped(in + "};", "  const norvane_value in[] = {", "      ")
        << wrapped(targets + "};", "  void* const out[] = {", "      ") << "  return NORVANE_RUN(" << method.id
        << ", in, out);\n}\n"
        << batch_prototype(method, "") << " {\n  return norvane_run_batch(" << method.id
        << ", rows, inputs, input_count, outputs, output_count, statuses);\n}\n";
  }
}

void exports_names(std::ostream& out, Specs) {
  out << "norvane_batch\nnorvane_convert\nnorvane_identity\nnorvane_kernel\nnorvane_last_message\nnorvane_status_text\n"
         "norvane_version\n";
  for (const Method& method : methods()) out << export_name(method) << "\n" << export_name(method) << "_Batch\n";
}

void exports_def(std::ostream& out, Specs specs) {
  out << "LIBRARY \"Norvane.XLL\"\nEXPORTS\n";
  exports_names(out, specs);
}

}  // namespace norvane::generate
