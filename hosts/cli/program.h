// The program's commands and options, described once: parsing, help, manual page and completions come from here.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosts/cli/errors.h"
#include "hosts/cli/output.h"

namespace CLI {
class App;
}

namespace norvane::cli {

class Program {
 public:
  Program();
  ~Program();

  // Runs what the arguments (without the program's name) say.
  ExitCode run(std::vector<std::string> arguments, Output& out);

  const CLI::App& app() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace norvane::cli
