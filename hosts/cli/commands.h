// The commands. Each writes to the output, returns its exit code and throws UsageError or InputOutputError.
#pragma once

#include <string>
#include <vector>

#include "hosts/cli/errors.h"
#include "hosts/cli/output.h"

namespace norvane::cli {

struct ListOptions {
  std::string category;
  std::string keyword;
  bool all = false;
  bool json = false;
};
ExitCode list(const ListOptions& options, Output& out);

struct DescribeOptions {
  std::string id;
  bool json = false;
};
ExitCode describe(const DescribeOptions& options, Output& out);

struct CallOptions {
  std::string id;
  std::vector<std::string> inputs;
  bool json = false;
};
ExitCode call(const CallOptions& options, Output& out);

ExitCode eval(Output& out);

struct ConvertOptions {
  std::string value, from, to;
  bool json = false;
};
ExitCode convert(const ConvertOptions& options, Output& out);

struct DocOptions {
  std::string folder = "docs/functions";
};
ExitCode doc(const DocOptions& options, Output& out);

struct BatchOptions {
  std::string id;
  std::vector<std::string> inputs;  // key=value for every row
  std::string in;                   // empty: standard input
  std::string out;                  // empty: standard output
  unsigned jobs = 0;                // 0: one for each processor
};
ExitCode batch(const BatchOptions& options, Output& out);

std::string version_text();

}  // namespace norvane::cli
