// The commands. Each writes to the output, returns its exit code and throws UsageError or InputOutputError.
#pragma once

#include <string>
#include <vector>

#include "hosts/cli/errors.h"
#include "hosts/cli/output.h"
#include "hosts/cli/reading.h"

namespace norvane::cli {

struct ListOptions {
  std::string word;  // anywhere in name, title, description or keywords
  std::string category;
  std::string keyword;
  std::string standard;
  bool by_standard = false;  // grouped, with the names of the standards
  bool all = false;
  bool json = false;
};
ExitCode list(const ListOptions& options, Output& out);

struct DescribeOptions {
  std::string id;  // a function, or a standard
  bool keys = false;
  bool json = false;
};
ExitCode describe(const DescribeOptions& options, Output& out);

ExitCode components(bool json, Output& out);

struct CallOptions {
  std::string id;
  std::vector<std::string> inputs;
  ReadingOptions reading;
  int precision = 0;  // significant digits; 0: those of the text form
  bool json = false;
  bool strict = false;
};
ExitCode call(const CallOptions& options, Output& out);

struct EvalOptions {
  ReadingOptions reading;
  unsigned jobs = 1;
  bool strict = false;
};
ExitCode eval(const EvalOptions& options, Output& out);

struct ConvertOptions {
  std::string value, from, to;
  bool json = false;
};
ExitCode convert(const ConvertOptions& options, Output& out);

struct UnitsOptions {
  std::string word;
  bool json = false;
};
ExitCode units(const UnitsOptions& options, Output& out);

struct CheckOptions {
  std::vector<std::string> files;  // none: the values that are built in
  std::string function;            // of a CSV file that names none
  std::string html;                // page to sign
  ReadingOptions reading;
  bool json = false;
};
ExitCode check(const CheckOptions& options, Output& out);

struct ReportOptions {
  std::string id;
  std::vector<std::string> inputs;
  std::string in;                 // CSV file of cases
  std::string out;                // empty: standard output
  std::string format;             // html or markdown; empty: by the name of the file
  std::string sweep;              // key=from:to:step
  std::vector<std::string> plot;  // outputs over the sweep
  ReadingOptions reading;
  int precision = 0;
  bool strict = false;
};
ExitCode report(const ReportOptions& options, Output& out);

struct DocOptions {
  std::string folder;        // of the reference
  std::string traceability;  // file: what every function's numbers come from
};
ExitCode doc(const DocOptions& options, Output& out);

struct BatchOptions {
  std::string id;
  std::vector<std::string> inputs;  // key=value for every row
  std::vector<std::string> set;     // the same, in place of a column of that name
  std::vector<std::string> map;     // key=column
  std::vector<std::string> keep;    // columns that the answer repeats
  ReadingOptions reading;
  std::string in;     // empty: standard input
  std::string out;    // empty: standard output
  unsigned jobs = 0;  // 0: one for each processor
  int precision = 0;  // significant digits; 0: as many as it takes
  bool only_outputs = false;
  bool strict = false;
};
ExitCode batch(const BatchOptions& options, Output& out);

}  // namespace norvane::cli
