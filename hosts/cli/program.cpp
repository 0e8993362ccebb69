#include "hosts/cli/program.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <sstream>

#include "hosts/cli/commands.h"
#include "hosts/cli/identity.h"
#include "hosts/cli/names.h"
#include "hosts/cli/table.h"

namespace norvane::cli {
namespace {

// Help that fits the terminal.
class Layout : public CLI::Formatter {
 public:
  std::string make_option_desc(const CLI::Option* option) const override {
    const std::size_t width = page_width(), column = get_column_width();
    return wrapped(CLI::Formatter::make_option_desc(option), width > column + 20 ? width - column : 0);
  }
  std::string make_footer(const CLI::App* app) const override {
    // Examples keep their lines, to be copied.
    std::string out;
    std::istringstream footer(CLI::Formatter::make_footer(app));
    for (std::string line; std::getline(footer, line); out += '\n')
      out += line.starts_with(' ') ? line : wrapped(line, page_width());
    return out;
  }
};

// "-40" and "-.5" are numbers; a blank in front keeps the parser from taking them for options.
std::vector<std::string> protected_numbers(std::vector<std::string> list) {
  for (std::string& text : list)
    if (text.size() > 1 && text[0] == '-' && (text[1] == '.' || (text[1] >= '0' && text[1] <= '9')))
      text.insert(text.begin(), ' ');
  return list;
}

void add_reading(CLI::App* sub, ReadingOptions& options) {
  sub->add_option("--blank", options.blank, "What a blank value means: refuse (as without the option) or default")
      ->check(CLI::IsMember({"refuse", "default"}));
  sub->add_flag("--no-defaults", options.no_defaults, "Refuse a call in which a default has a say in the result");
  sub->add_option("--c6plus", options.c6plus,
                  "Shares of n-hexane, n-heptane, n-octane, ... in an amount of C6+, for example 47,36,17")
      ->type_name("SHARES");
  sub->add_option("--atm", options.atmosphere,
                  "Pressure of the atmosphere, for example 1.01325bar; gauge values then stand for absolute ones")
      ->type_name("PRESSURE");
}

void add_decimal(CLI::App* sub, ReadingOptions& options) {
  sub->add_option("--decimal", options.decimal, "Decimal sign of files: . (as without the option) or ,")
      ->check(CLI::IsMember({".", ","}));
}

void add_precision(CLI::App* sub, int& precision) {
  sub->add_option("--precision", precision, "Significant digits of the results, 1 to 17")
      ->check(CLI::Range(1, 17))
      ->type_name("N");
}

void add_strict(CLI::App* sub, bool& strict) {
  sub->add_flag("--strict", strict, "Exit code 1 also for a result outside the range of the standard");
}

void add_jobs(CLI::App* sub, unsigned& jobs, const char* description) {
  sub->add_option("--jobs", jobs, description)->check(CLI::Range(1u, 256u))->type_name("N");
}

}  // namespace

struct Program::Parts {
  CLI::App app{"Calculations for custody-transfer flow measurement.", "norvane"};
  std::function<ExitCode(Output&)> command;

  ListOptions list;
  DescribeOptions describe;
  CallOptions call;
  EvalOptions eval;
  ConvertOptions convert;
  UnitsOptions units;
  DocOptions doc;
  CheckOptions check;
  ReportOptions report;
  BatchOptions batch;
  bool components_json = false;
  bool version = false;
  std::string shell;

  // A command, with a footer that explains it.
  template <class Options, class Function>
  CLI::App* add(const char* name, const char* description, const char* footer, Options& options, Function function) {
    CLI::App* sub = app.add_subcommand(name, description);
    sub->footer(footer);
    sub->callback([this, &options, function] {
      command = [&options, function](Output& out) { return function(options, out); };
    });
    return sub;
  }

  Parts() {
    app.formatter(std::make_shared<Layout>());
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 good, 1 a calculation has no result or failed a check, 2 wrong use or unreadable input, "
        "3 input or output failed.");
    app.add_flag("--version", version, "Version, commit, compiler and platform");
    add_catalogue();
    add_calls();
    add_units();
    add_unit_list();
    add_batch();
    add_audit();
    add_help();
  }

  void add_catalogue() {
    CLI::App* sub =
        add("list", "List the functions of the catalogue",
            "Examples:\n  norvane list viscosity\n  norvane list --standard ISO-5167\n  norvane list --keyword gas",
            list, cli::list);
    sub->add_option("word", list.word, "A word of name, title, description or keywords");
    CLI::Option* standard =
        sub->add_option("--standard", list.standard, "Functions of a standard; without one, all of them by standard")
            ->expected(0, 1)
            ->type_name("STANDARD");
    sub->parse_complete_callback([this, standard] { list.by_standard = standard->count() != 0; });
    sub->add_option("--category", list.category, "Category or sub-category, for example \"ISO\"");
    sub->add_option("--keyword", list.keyword, "Keyword, for example gas or metric");
    sub->add_flag("--all", list.all, "Hidden functions too");
    sub->add_flag("--json", list.json, "A JSON array of records");

    sub = add("describe", "Describe one function: inputs, outputs, units, ranges, defaults, status codes",
              "Examples:\n  norvane describe AGA8_M\n  norvane describe ISO-5167", describe, cli::describe);
    sub->add_option("id", describe.id, "Function, for example AGA8_M, or a standard")->required();
    sub->add_flag("--keys", describe.keys, "The keys of its inputs alone");
    sub->add_flag("--json", describe.json, "The record as a JSON object");

    sub =
        add("components", "List the components of a gas: order, names, synonyms",
            "A composition is a list of 22 mole fractions in this order, or named: methane=0.9 on a command line, "
            "{\"methane\":0.9} in JSON, a column \"methane [mol%]\" or a file of names and amounts. Blanks, hyphens "
            "and case of a name count for nothing.",
            components_json, components);
    sub->add_flag("--json", components_json, "A JSON array");

    sub = add("doc", "Write the reference of every function as Markdown", "Example: norvane doc --out docs/functions",
              doc, cli::doc);
    sub->add_option("--out", doc.folder, "Folder, made when it is missing")->type_name("FOLDER");
    sub->add_option("--traceability", doc.traceability,
                    "Page with the standard, the coefficient tables, the check values and the deviations of every "
                    "function")
        ->type_name("FILE");
  }

  void add_calls() {
    CLI::App* sub = add(
        "call", "Call one function",
        "Keys are the function's, in any case; blanks may be written as _ or -. A number may carry a unit, which "
        "is converted into the input's. An option is a number or its name. A gas is a list of 22 fractions, a "
        "file (of 22 fractions, or of names and amounts) or components by name. A range is a list or the cells of "
        "a CSV file (@- is standard input). Inputs that are left to their defaults are told on standard error.\n"
        "Examples:\n"
        "  norvane call AGA8_M pressure=870psia temperature=\"68 degF\" composition=@gas.csv\n"
        "  norvane call AGA8_M pressure=60 temperature=20 methane=95% ethane=5% edition=2017",
        call, cli::call);
    sub->add_option("id", call.id, "Function, for example AGA8_M")->required();
    sub->add_option("inputs", call.inputs, "key=value, key=[a,b,c], key=@file or component=amount");
    sub->add_flag("--json", call.json, "The answer as one line of JSON");
    add_reading(sub, call.reading);
    add_decimal(sub, call.reading);
    add_precision(sub, call.precision);
    add_strict(sub, call.strict);

    sub = add(
        "eval", "Answer calls as JSON Lines, from standard input to standard output",
        "A line is {\"function\":ID,\"inputs\":{key:value,...}}; its answer is that of call --json. \"ok\" in the "
        "answer is false when there is no result: the call was refused, its status is not 0, or the line could not "
        "be read, which \"error\" explains. \"defaulted\" names the inputs whose default had a say in the result. An "
        "\"id\" (text or number) is repeated in the answer.\n"
        "A flat list is one column, a list of lists is rows, {\"error\":\"#N/A\"} an error value. A text for a number "
        "may carry a unit: \"870 psia\". A gas may be {\"methane\":0.9,...}, and its components may stand beside the "
        "other inputs. null is a blank cell of a range; for a single value it is refused unless --blank=default is "
        "given. A key left out takes the input's default.\n"
        "Members of a file of check values (outputs, rtol, atol, rtols, atols, source) are skipped.",
        eval, cli::eval);
    add_reading(sub, eval.reading);
    add_strict(sub, eval.strict);
    add_jobs(sub, eval.jobs, "Threads (default: 1); answers keep the order of the lines");
  }

  void add_units() {
    CLI::App* sub = add("convert", "Convert a value from one unit to another",
                        "Example: norvane convert 100 degC degF", convert, cli::convert);
    sub->add_option("value", convert.value, "Number")->required();
    sub->add_option("from", convert.from, "Unit by key or symbol, for example degC or \u00B0C")->required();
    sub->add_option("to", convert.to, "Unit of the same quantity")->required();
    sub->add_flag("--json", convert.json, "{\"value\":number,\"unit\":key}");
  }

  void add_unit_list() {
    CLI::App* sub = add("units", "List units: key, symbol, factor into the base unit, what is odd about them",
                        "The base unit stands in brackets behind the quantity. Examples:\n"
                        "  norvane units \"gauge pressure\"\n  norvane units kg/h\n  norvane units barrel",
                        units, cli::units);
    sub->add_option("word", units.word, "A quantity, a unit, or a part of their names");
    sub->add_flag("--json", units.json, "A JSON array");
  }

  void add_audit() {
    CLI::App* sub = add(
        "check", "Calculate the published check values and compare",
        "Without a file these are the values of the standards and of independent calculations that are built into the "
        "program. A file of one's own holds lines of JSON,\n"
        "  {\"function\":ID,\"inputs\":{...},\"outputs\":{...},\"rtol\":1e-6,\"source\":\"...\"}\n"
        "or is CSV: columns of inputs as for batch, \"expected z\" for the output z, and perhaps rtol, atol, source and "
        "function. Without a tolerance the digits of the expected value give it. Exit code 1 when a case fails.",
        check, cli::check);
    sub->add_option("files", check.files, "Files of cases (default: those built in)")->type_name("FILE");
    sub->add_option("--function", check.function, "Function of a CSV file without that column")->type_name("ID");
    sub->add_option("--html", check.html, "Write a page to print and sign")->type_name("FILE");
    sub->add_flag("--json", check.json, "The result as JSON");
    add_reading(sub, check.reading);
    add_decimal(sub, check.reading);

    sub = add("report", "Write a calculation as a page to keep",
              "Inputs with units, limits and origin, outputs with status and range in words, standard and edition, "
              "messages, and what the program is known by; as HTML that prints on A4, or as Markdown.\n"
              "Examples:\n"
              "  norvane report AGA8_M pressure=60 methane=95% ethane=5% --sweep temperature=-20:60:5 --out z.html\n"
              "  norvane report ISO5167_Orifice --in cases.csv --out cases.html",
              report, cli::report);
    sub->add_option("id", report.id, "Function, for example AGA8_M")->required();
    sub->add_option("inputs", report.inputs, "key=value, as for call");
    sub->add_option("--in", report.in, "CSV file of cases, as for batch")->type_name("FILE");
    sub->add_option("--out", report.out, "File to write (default: standard output)")->type_name("FILE");
    sub->add_option("--format", report.format, "html or markdown (default: by the name of the file)")
        ->check(CLI::IsMember({"html", "markdown"}));
    sub->add_option("--sweep", report.sweep, "A table and a plot over one input")->type_name("KEY=FROM:TO:STEP");
    sub->add_option("--plot", report.plot, "Outputs of the table and the plot (default: the first)")
        ->delimiter(',')
        ->type_name("OUTPUT,...")
        ->allow_extra_args(false);
    add_reading(sub, report.reading);
    add_decimal(sub, report.reading);
    add_precision(sub, report.precision);
    add_strict(sub, report.strict);
  }

  void add_help() {
    CLI::App* sub = add("completion", "Print the completion script of a shell",
                        "Example: norvane completion bash > ~/.local/share/bash-completion/completions/norvane",
                        shell, [this](const std::string& name, Output& out) {
                          out.write(completion(app, name));
                          return exit_good;
                        });
    sub->add_option("shell", shell, "bash, zsh or fish")->required()->check(CLI::IsMember({"bash", "zsh", "fish"}));
    add("man", "Print the manual page", "Example: norvane man | man -l -", shell,
        [this](const std::string&, Output& out) {
          out.write(manual_page(app));
          return exit_good;
        });
  }

  void add_batch() {
    CLI::App* sub = add(
        "batch", "Call one function for every row of a CSV file",
        "The header names the inputs: a key, \"key [unit]\", \"composition[0]\" for a cell of a range, or a component "
        "of the gas (methane, \"n-butane [mol%]\", CO2, ...). All other columns are passed on in their place, so that "
        "the answer of one function is the input of the next; blank lines and lines that begin with # stay. The answer "
        "repeats the columns and adds outputs and messages; a summary goes to standard error.\n"
        "Comma, semicolon and tab are found out, as are sep=;, UTF-8, UTF-16 and Windows-1252.\n"
        "Examples:\n"
        "  norvane batch AGA8_M composition=@gas.csv --in states.csv --out answers.csv\n"
        "  norvane batch ISO5167_Orifice --map \"dens=mass density\" --set \"pipe diam=300\" --in hours.csv",
        batch, cli::batch);
    sub->add_option("id", batch.id, "Function, for example AGA8_M")->required();
    sub->add_option("inputs", batch.inputs, "key=value that holds for every row");
    sub->add_option("--in", batch.in, "CSV file to read (default: standard input)")->type_name("FILE");
    sub->add_option("--out", batch.out, "CSV file to write, complete or not at all (default: standard output)")
        ->type_name("FILE");
    sub->add_option("--map", batch.map, "Take an input from a column of another name")
        ->type_name("KEY=COLUMN")
        ->allow_extra_args(false);
    sub->add_option("--set", batch.set, "Give an input in place of a column of its name")
        ->type_name("KEY=VALUE")
        ->allow_extra_args(false);
    sub->add_option("--keep", batch.keep, "Repeat these columns only")
        ->delimiter(',')
        ->type_name("COLUMN,...")
        ->allow_extra_args(false);
    sub->add_flag("--only-outputs", batch.only_outputs, "Repeat no column but those of --keep");
    add_reading(sub, batch.reading);
    add_decimal(sub, batch.reading);
    add_precision(sub, batch.precision);
    add_strict(sub, batch.strict);
    add_jobs(sub, batch.jobs, "Threads (default: one for each processor)");
  }
};

Program::Program() : parts_(std::make_unique<Parts>()) {}
Program::~Program() = default;

ExitCode Program::run(std::vector<std::string> arguments, Output& out) {
  CLI::App& app = parts_->app;
  if (!arguments.empty() && arguments.front() == "--version") {
    out.write(version_text());
    return exit_good;
  }
  std::vector<std::string> names;
  for (const CLI::App* known : app.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(known->get_name());
  if (!arguments.empty() && !arguments.front().starts_with('-') &&
      std::find(names.begin(), names.end(), arguments.front()) == names.end())
    throw UsageError("there is no command " + in_quotes(arguments.front()) + did_you_mean(arguments.front(), names) +
                     "\nRun norvane --help for the commands.");
  arguments = protected_numbers(std::move(arguments));
  try {
    std::reverse(arguments.begin(), arguments.end());  // as the parser takes a vector
    app.parse(arguments);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text, complaint;
    const int result = app.exit(error, text, complaint);
    out.write(text.str());
    tell(complaint.str());
    return result == 0 ? exit_good : exit_usage;
  }
  return parts_->command(out);
}

}  // namespace norvane::cli
