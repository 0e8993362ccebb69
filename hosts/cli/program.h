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

// The manual page, and the completion of a shell ("bash", "zsh" or "fish").
std::string manual_page(const CLI::App& app);
std::string completion(const CLI::App& app, const std::string& shell);

class Program {
 public:
  Program();
  ~Program();

  // Runs what the arguments (without the program's name) say.
  ExitCode run(std::vector<std::string> arguments, Output& out);

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace norvane::cli
