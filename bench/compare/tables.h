// The tables of docs/performance.md.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bench/compare/worker.h"

namespace norvane::bench {

struct Options {
  int rounds = 15;
  double slice = 2e-3;  // processor time of a way's turn [s]
  std::string filter;
  std::string norvane;  // the program, to measure files; empty: not measured
  std::string python;   // an interpreter with the package; empty: not measured
  std::string write;    // the page to write
  bool check = false;
};

using Workers = std::vector<std::unique_ptr<Worker>>;

// Every calculation in every way, as so many times faster than the plain transcription.
std::string ratios(const std::vector<Case>& cases, const Workers& workers, const Options& options);
// AGA8_M by host; the case stands at this place.
std::string hosts(std::size_t of_case, const Workers& workers, const Options& options);
// Against the number of components; cases from `first` on, as component_cases() makes them.
std::string components(std::size_t first, const Workers& workers, const Options& options);
std::vector<Case> component_cases();
// Against the rows of a batch, and against cores.
std::string rows(const Options& options);
std::string cores(const Options& options);
// What it was measured on.
std::string machine(const Workers& workers);

}  // namespace norvane::bench
