// How a command ends: the exit codes, and the two exceptions that carry a message to the end of the program.
#pragma once

#include <stdexcept>
#include <string>

namespace norvane::cli {

enum ExitCode : int {
  exit_good = 0,
  exit_calculation = 1,  // a calculation answered with a non-zero status
  exit_usage = 2,        // wrong use, or input that cannot be read
  exit_io = 3            // input or output failed
};

// Wrong use or unreadable input; the message names what is wrong.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reading or writing failed.
class InputOutputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The user has asked the program to stop; see Interruption.
class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("interrupted") {}
};

}  // namespace norvane::cli
