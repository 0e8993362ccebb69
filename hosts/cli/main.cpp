// norvane: the calculation library from the command line.
#include <CLI/CLI.hpp>
#include <exception>
#include <functional>
#include <new>
#include <sstream>

#include "hosts/cli/commands.h"
#include "hosts/cli/names.h"
#include "hosts/cli/platform.h"

namespace {

using namespace norvane::cli;

constexpr const char* exit_codes =
    "Exit codes: 0 good, 1 a calculation answered with a non-zero status, 2 wrong use or\n"
    "unreadable input, 3 input or output failed.";

// "-40" and "-.5" are numbers; a blank in front keeps the parser from taking them for options.
std::vector<std::string> protected_numbers(std::vector<std::string> list) {
  for (std::string& text : list)
    if (text.size() > 1 && text[0] == '-' && (text[1] == '.' || (text[1] >= '0' && text[1] <= '9')))
      text.insert(text.begin(), ' ');
  return list;
}

void tell_error(const std::string& text) { tell("norvane: " + text + "\n"); }

ExitCode run(std::vector<std::string> given, Output& out) {
  CLI::App app("Calculations for custody-transfer flow measurement.", "norvane");
  app.footer(exit_codes);
  app.require_subcommand(1);
  bool version = false;
  app.add_flag("--version", version, "Version, commit, compiler and platform");

  std::function<ExitCode()> command;
  const auto add = [&](const char* name, const char* description, const char* footer, auto& options, auto function) {
    CLI::App* sub = app.add_subcommand(name, description);
    sub->footer(footer);
    sub->callback([&options, &command, &out, function] { command = [&] { return function(options, out); }; });
    return sub;
  };

  ListOptions list_options;
  CLI::App* sub =
      add("list", "List the functions of the catalogue", "Example: norvane list --keyword gas", list_options, list);
  sub->add_option("--category", list_options.category, "Category or sub-category, for example \"ISO\"");
  sub->add_option("--keyword", list_options.keyword, "Keyword, for example gas or metric");
  sub->add_flag("--all", list_options.all, "Hidden functions too");
  sub->add_flag("--json", list_options.json, "A JSON array of records");

  DescribeOptions describe_options;
  sub = add("describe", "Describe one function: inputs, outputs, units, ranges, defaults, status codes",
            "Example: norvane describe AGA8_M", describe_options, describe);
  sub->add_option("id", describe_options.id, "Function, for example AGA8_M")->required();
  sub->add_flag("--json", describe_options.json, "The record as a JSON object");

  CallOptions call_options;
  sub = add("call", "Call one function",
            "Keys are the function's, in any case; blanks may be written as _ or -. "
            "A number may carry a unit, which\n"
            "is converted into the input's. A range is a list or the cells of a CSV file (@- is standard input).\n"
            "Example: norvane call AGA8_M pressure=870psia temperature=\"68 degF\" composition=@gas.csv",
            call_options, call);
  sub->add_option("id", call_options.id, "Function, for example AGA8_M")->required();
  sub->add_option("inputs", call_options.inputs, "key=value, key=[a,b,c] or key=@file");
  sub->add_flag("--json", call_options.json, "The answer as one line of JSON");

  bool no_options = false;
  add("eval", "Answer calls as JSON Lines, from standard input to standard output",
      "A line is {\"function\":ID,\"inputs\":{key:value,...}}; its answer is that of call --json. "
      "A flat list is one\n"
      "column, a list of lists is rows, {\"error\":\"#N/A\"} an error value, null a blank cell, "
      "a key left out an\n"
      "omitted argument. A line that cannot be read is answered by {\"error\":\"...\"}. "
      "Members of a file of check\n"
      "values (outputs, rtol, atol, rtols, atols, source) are skipped.",
      no_options, [](bool, Output& output) { return eval(output); });

  ConvertOptions convert_options;
  sub = add("convert", "Convert a value from one unit to another", "Example: norvane convert 100 degC degF",
            convert_options, convert);
  sub->add_option("value", convert_options.value, "Number")->required();
  sub->add_option("from", convert_options.from, "Unit by key or symbol, for example degC or \u00B0C")->required();
  sub->add_option("to", convert_options.to, "Unit of the same quantity")->required();
  sub->add_flag("--json", convert_options.json, "{\"value\":number,\"unit\":key}");

  DocOptions doc_options;
  sub = add("doc", "Write the reference of every function as Markdown", "Example: norvane doc --out docs/functions",
            doc_options, doc);
  sub->add_option("--out", doc_options.folder, "Folder, made when it is missing")->capture_default_str();

  BatchOptions batch_options;
  sub = add("batch", "Call one function for every row of a CSV file",
            "The header names the inputs: a key, \"key [unit]\", \"composition[0]\" for a cell of a range, "
            "or the name\n"
            "of a component of the gas (methane, n-butane, CO2, ...). "
            "The answer repeats the inputs and adds outputs\n"
            "and messages. Failed rows are summed up on standard error.\n"
            "Example: norvane batch AGA8_M composition=@gas.csv --in states.csv --out answers.csv",
            batch_options, batch);
  sub->add_option("id", batch_options.id, "Function, for example AGA8_M")->required();
  sub->add_option("inputs", batch_options.inputs, "key=value that holds for every row");
  sub->add_option("--in", batch_options.in, "CSV file to read (default: standard input)");
  sub->add_option("--out", batch_options.out, "CSV file to write, complete or not at all (default: standard output)");
  sub->add_option("--jobs", batch_options.jobs, "Threads (default: one for each processor)")
      ->check(CLI::Range(1u, 256u));

  if (!given.empty() && given.front() == "--version") {
    out.write(version_text());
    return exit_good;
  }
  std::vector<std::string> names;
  for (const CLI::App* known : app.get_subcommands([](const CLI::App*) { return true; }))
    names.push_back(known->get_name());
  if (!given.empty() && !given.front().starts_with('-') &&
      std::find(names.begin(), names.end(), given.front()) == names.end())
    throw UsageError("there is no command " + in_quotes(given.front()) + did_you_mean(given.front(), names) +
                     "\nRun norvane --help for the commands.");
  try {
    std::reverse(given.begin(), given.end());  // as the parser takes a vector
    app.parse(given);
  } catch (const CLI::ParseError& error) {
    std::ostringstream text, complaint;
    const int result = app.exit(error, text, complaint);
    out.write(text.str());
    tell(complaint.str());
    return result == 0 ? exit_good : exit_usage;
  }
  return command();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    prepare_standard_streams();
    Output out;
    const ExitCode code = run(protected_numbers(arguments(argc, argv)), out);
    out.flush();
    return code;
  } catch (const UsageError& error) {
    tell_error(error.what());
    return exit_usage;
  } catch (const std::bad_alloc&) {
    tell_error("not enough memory");
    return exit_io;
  } catch (const std::exception& error) {
    tell_error(error.what());
    return exit_io;
  }
}
